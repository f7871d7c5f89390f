// navigator/navigatortext.cpp
#include "navigator/navigatortext_p.h"

#include "services/recordsource/status.h"

#include <QRegularExpression>

#include <algorithm>
#include <array>

namespace plx {

QString formatRecordCount(qint64 count)
{
    // Not QLocale: the separator is part of the control's fixed format, whatever the
    // user's locale says.
    const bool negative = count < 0;
    QString digits = QString::number(negative ? -count : count);
    for (qsizetype at = digits.size() - 3; at > 0; at -= 3)
        digits.insert(at, QLatin1Char(','));
    return negative ? QLatin1Char('-') + digits : digits;
}

namespace {

bool isReservedWord(const QString &name)
{
    // The words of the dialect that cannot name a table or field unbracketed.
    static const std::array<const char *, 46> words = {
        "ALL",      "ALTER",  "AND",    "AS",       "ASC",    "BETWEEN", "BY",     "CREATE",
        "DATABASE", "DELETE", "DESC",   "DISTINCT", "DROP",   "EQV",     "EXISTS", "FALSE",
        "FROM",     "GROUP",  "HAVING", "IMP",      "IN",     "INNER",   "INSERT", "INTO",
        "IS",       "JOIN",   "LEFT",   "LIKE",     "MOD",    "NOT",     "NULL",   "ON",
        "OR",       "ORDER",  "OUTER",  "RIGHT",    "SELECT", "SET",     "TABLE",  "TOP",
        "TRUE",     "UNION",  "UPDATE", "VALUES",   "WHERE",  "XOR",
    };
    const QByteArray upper = name.toUpper().toLatin1();
    return std::any_of(words.begin(), words.end(), [&](const char *word) { return upper == word; });
}

} // namespace

QString jetName(const QString &name)
{
    static const QRegularExpression plain(QStringLiteral("^[A-Za-z_][A-Za-z0-9_]*$"));
    if (name.startsWith(QLatin1Char('['))
        || (plain.match(name).hasMatch() && !isReservedWord(name)))
        return name;
    return QLatin1Char('[') + name + QLatin1Char(']');
}

QString jetQualified(const QString &table, const QString &field)
{
    const QString t = jetName(table);
    const QString f = jetName(field);
    if (t == table && f == field)
        return table + QLatin1Char('.') + field;
    return t + QLatin1Char('.') + f;
}

QString jetSortPiece(const QString &table, const QString &piece)
{
    QString field = piece;
    QString direction;
    for (const QString &word : { QStringLiteral(" DESC"), QStringLiteral(" ASC") }) {
        if (field.endsWith(word, Qt::CaseInsensitive)) {
            direction = field.right(word.size());
            field.chop(word.size());
            field = field.trimmed();
            break;
        }
    }
    return jetQualified(table, field) + direction;
}

QString alreadyConnectedSupportText()
{
    return QStringLiteral("Please contact PLX Controls support (support@plxcontrols.example) "
                          "if this navigator should be connected to another table.");
}

QString statusForUser(const Status &status)
{
    const QString &reason = status.engineMessage();
    if (reason.isEmpty() || status.message().contains(reason, Qt::CaseInsensitive))
        return status.message();
    return status.message() + QStringLiteral(" (") + reason + QStringLiteral(")");
}

} // namespace plx
