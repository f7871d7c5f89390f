// dialogs/gridlayout.cpp
#include "dialogs/gridlayout.h"

#include "services/texthelpers.h"

#include <QStringList>

namespace plx {

namespace {

constexpr QChar kEntrySeparator = QLatin1Char('|');
constexpr QChar kItemSeparator = QLatin1Char(',');

// Wider than any screen is no width a user dragged: it is damage.
constexpr int kMaxWidthTwips = 1440 * 100;

int widthOf(const QString &item)
{
    bool ok = false;
    const int twips = trimSpaces(item).toInt(&ok);
    return ok && twips > 0 && twips <= kMaxWidthTwips ? twips : 0;
}

QString cleanTitle(QString title)
{
    title.replace(kEntrySeparator, QLatin1Char(' '));
    title.replace(kItemSeparator, QLatin1Char(' '));
    return trimSpaces(title);
}

} // namespace

GridLayout GridLayout::parse(const QString &value)
{
    QList<GridColumnEntry> columns;
    for (const QString &entry : value.split(kEntrySeparator)) {
        const QStringList items = entry.split(kItemSeparator);
        const QString field = trimSpaces(items.value(0));
        if (field.isEmpty())
            continue;
        const bool listedBefore =
            std::any_of(columns.cbegin(), columns.cend(), [&](const GridColumnEntry &c) {
                return c.field.compare(field, Qt::CaseInsensitive) == 0;
            });
        if (listedBefore)
            continue;
        const QString title = trimSpaces(items.value(1));
        columns.append({ field, title.isEmpty() ? field : title, widthOf(items.value(2)) });
    }
    return GridLayout(std::move(columns));
}

QString GridLayout::toString() const
{
    QStringList entries;
    for (const GridColumnEntry &column : m_columns) {
        const QString field = cleanTitle(column.field);
        if (field.isEmpty())
            continue;
        entries.append(field + kItemSeparator + cleanTitle(column.title) + kItemSeparator
                       + QString::number(qMax(0, column.widthTwips)));
    }
    return entries.join(kEntrySeparator);
}

} // namespace plx
