// dialogs/valuelist.cpp
#include "dialogs/valuelist_p.h"

#include "services/ini.h"
#include "services/inisnapshot.h"
#include "services/paths.h"
#include "services/texthelpers.h"

#include <QFile>

namespace plx::valuelist {

namespace {

const QString kEntrySeparator = QStringLiteral("|");

} // namespace

QString entryValue(const QString &entry)
{
    return trimSpaces(getDelimField(entry, QStringLiteral("{"), 1, QStringLiteral("AWK ERROR")));
}

QString makeEntry(const QString &value, const QString &description)
{
    if (getLenTrim(description) < 1)
        return value;
    return value + QStringLiteral(" {") + trimSpaces(description) + QLatin1Char('}');
}

std::optional<QString> inserted(const QString &data, const QString &value, qint64 maxLen)
{
    const QString current = trimSpaces(data);
    const QString next = trimSpaces(current.isEmpty() ? value : current + QLatin1Char(',') + value);
    if (maxLen < next.size())
        return std::nullopt;
    return next;
}

QString removed(const QString &data, const QString &value)
{
    QString result = data;
    result.replace(value + QLatin1Char(','), QString());
    result.replace(QLatin1Char(',') + value, QString());
    result.replace(value, QString());
    return result;
}

bool Location::isComplete() const
{
    return getLenTrim(file) >= 1 && getLenTrim(section) >= 1 && getLenTrim(key) >= 1;
}

QStringList load(const Location &where)
{
    if (!where.isComplete() || !settingsFileSizeProblem(where.file).isEmpty())
        return {};
    QFile file(toDiskPath(trimSpaces(where.file)));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QString stored =
        IniSnapshot::parse(file.readAll()).value(trimSpaces(where.section), trimSpaces(where.key));
    QStringList entries;
    for (const QString &field : stored.split(kEntrySeparator)) {
        if (getLenTrim(field) >= 1)
            entries << field;
    }
    return entries;
}

bool save(const Location &where, const QStringList &entries)
{
    if (!where.isComplete())
        return false;
    return writeINI(where.section, where.key, where.file, entries.join(kEntrySeparator));
}

} // namespace plx::valuelist
