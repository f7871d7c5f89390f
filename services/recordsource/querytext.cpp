// services/recordsource/querytext.cpp
#include "services/recordsource/querytext.h"

#include "services/texthelpers.h"

#include <QRegularExpression>

#include <algorithm>
#include <array>

namespace plx {

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

// `text` in brackets, as a function argument wants a column: "[T.NAME]". A text that
// brackets its names already ("[my people].[NAME]") stands as it is.
QString inBrackets(const QString &text)
{
    return text.contains(QLatin1Char('[')) ? text : QLatin1Char('[') + text + QLatin1Char(']');
}

// A sort piece's field and its direction word: "NAME DESC" -> "NAME", " DESC".
std::pair<QString, QString> splitDirection(const QString &piece)
{
    for (const QString &word : { QStringLiteral(" DESC"), QStringLiteral(" ASC") }) {
        if (piece.endsWith(word, Qt::CaseInsensitive))
            return { piece.left(piece.size() - word.size()).trimmed(), piece.right(word.size()) };
    }
    return { piece, QString() };
}

const QString kSelectFrom = QStringLiteral("SELECT * from ");

} // namespace

QString QueryText::name(const QString &name)
{
    static const QRegularExpression plain(QStringLiteral("^[A-Za-z_][A-Za-z0-9_]*$"));
    if (name.startsWith(QLatin1Char('['))
        || (plain.match(name).hasMatch() && !isReservedWord(name)))
        return name;
    return QLatin1Char('[') + name + QLatin1Char(']');
}

QString QueryText::qualified(const QString &field) const
{
    const QString t = name(m_table);
    const QString f = name(field);
    if (t == m_table && f == field)
        return m_table + QLatin1Char('.') + field;
    return t + QLatin1Char('.') + f;
}

QString QueryText::orderByList(const QString &sortFields) const
{
    QStringList pieces;
    const qint16 count = getDelimCount(sortFields, QStringLiteral(","));
    for (qint16 i = 1; i <= count; ++i) {
        const QString piece =
            trimSpaces(getDelimField(sortFields, QStringLiteral(","), i, QString()));
        if (getLenTrim(piece) < 1)
            continue;
        const auto [field, direction] = splitDirection(piece);
        pieces.append(qualified(field) + direction);
    }
    return pieces.join(QStringLiteral(", "));
}

QString QueryText::selectAll(const QString &sortFields) const
{
    const QString orderBy = orderByList(sortFields);
    return kSelectFrom + name(m_table)
        + (getLenTrim(orderBy) >= 1 ? QStringLiteral(" ORDER BY ") + orderBy : QString());
}

QString QueryText::selectWhere(const QString &criterion) const
{
    return kSelectFrom + name(m_table) + QStringLiteral(" WHERE ") + criterion;
}

QString QueryText::records(const QString &join, const QString &where,
                           const QString &sortFields) const
{
    const QString orderBy = orderByList(sortFields);
    const QString orderClause =
        getLenTrim(orderBy) >= 1 ? QStringLiteral(" ORDER BY ") + orderBy : QString();
    return kSelectFrom + name(m_table) + QLatin1Char(' ') + join + QLatin1Char(' ') + where
        + QLatin1Char(' ') + orderClause;
}

QString QueryText::find(const QString &search, const QString &sortFields) const
{
    const QString escaped = fixQuoteInSQL(search);
    QString conditions;
    const qint16 pieces = getDelimCount(escaped, QStringLiteral("\t"));
    for (qint16 i = 1; i <= pieces; ++i) {
        const QString piece = getDelimField(escaped, QStringLiteral("\t"), i, QString());
        const QString field =
            trimSpaces(getDelimField(sortFields, QStringLiteral(","), i, QString()));
        if (getLenTrim(piece) < 1 || getLenTrim(field) < 1)
            continue;
        if (!conditions.isEmpty())
            conditions += QStringLiteral("AND ");
        conditions += QStringLiteral("UCase(") + inBrackets(qualified(field))
            + QStringLiteral(") LIKE '") + piece + QStringLiteral("*'") + QLatin1Char(' ');
    }
    if (conditions.isEmpty())
        return QString();
    return fixPipeInSQL(kSelectFrom + name(m_table) + QStringLiteral(" WHERE ") + conditions
                        + QStringLiteral("ORDER BY ") + orderByList(sortFields));
}

QString QueryText::idCriterion(const QString &idField, const QString &id) const
{
    return name(idField) + QStringLiteral(" = ") + strToASC(id);
}

QString QueryText::qualifiedIdCriterion(const QString &idField, const QString &id) const
{
    return qualified(idField) + QStringLiteral(" = ") + strToASC(id);
}

QString QueryText::highestGeneratedID(const QString &idField) const
{
    // Two blanks after WHERE: the text is shown and logged as support knows it.
    return QStringLiteral("Select * from ") + name(m_table) + QStringLiteral(" WHERE  Left(")
        + inBrackets(idField) + QStringLiteral(",3) = 'PLE'") + QStringLiteral(" Order By ")
        + name(idField) + QStringLiteral(" DESC");
}

} // namespace plx
