// dialogs/columnfind.cpp
#include "dialogs/columnfind.h"

namespace plx {

namespace {

bool isPlainIdentifier(const QString &name)
{
    if (name.isEmpty() || !(name.front().isLetter() || name.front() == QLatin1Char('_')))
        return false;
    return std::all_of(name.cbegin(), name.cend(),
                       [](QChar c) { return c.isLetterOrNumber() || c == QLatin1Char('_'); });
}

} // namespace

QString ColumnFind::criterion(const QString &field, const QString &text)
{
    const QString f = isPlainIdentifier(field) || field.startsWith(QLatin1Char('['))
        ? field
        : QLatin1Char('[') + field + QLatin1Char(']');
    return QStringLiteral("InStr(") + QStringLiteral("Ucase$(") + QStringLiteral("IIF(")
        + QStringLiteral("IsNull(") + f + QStringLiteral("), \" \",") + f + QStringLiteral(")")
        + QStringLiteral(")") + QStringLiteral(",") + QStringLiteral(" '") + text
        + QStringLiteral("')>0");
}

QString ColumnFind::prompt(const QString &caption)
{
    return QStringLiteral("What to you want to find in the ") + caption
        + QStringLiteral(" column?");
}

QString ColumnFind::notFoundText(const QString &text, const QString &caption, bool continuing)
{
    if (continuing)
        return QStringLiteral("No more records containing '") + text
            + QStringLiteral("' were found in the column labeled") + caption;
    return QStringLiteral("'") + text + QStringLiteral("' was not found in the column labeled")
        + caption;
}

bool ColumnFind::continues(const QString &field, const QString &text) const
{
    return m_any && field == m_field && text == m_text;
}

void ColumnFind::found(const QString &field, const QString &text)
{
    m_field = field;
    m_text = text;
    m_any = true;
}

void ColumnFind::restart()
{
    m_any = false;
}

} // namespace plx
