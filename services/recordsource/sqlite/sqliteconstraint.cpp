// services/recordsource/sqlite/sqliteconstraint.cpp: failed writes in words a user can act
// on.
//
// SQLite reports a refused value as "NOT NULL constraint failed: T.NAME" or "CHECK constraint
// failed: <constraint name or expression>". The user needs the field: NOT NULL and UNIQUE
// name it; for CHECK the columns are found in the rule's expression (looked up in the table's
// CREATE statement when the rule has a name).
#include "services/recordsource/sqlite/internal/sqliteconnection.h"

#include <QRegularExpression>

#include <sqlite3.h>

namespace plx::sqlite {

namespace {

// "A", "A and B", "A, B and C".
QString listed(const QStringList &names)
{
    if (names.size() < 2)
        return names.value(0);
    return names.mid(0, names.size() - 1).join(QStringLiteral(", ")) + QStringLiteral(" and ")
        + names.last();
}

QString valuesFor(const QStringList &columns)
{
    return columns.size() == 1 ? QStringLiteral("the value for %1").arg(columns.first())
                               : QStringLiteral("the values for %1").arg(listed(columns));
}

// The columns of "T.A, T.B" (SQLite's list for NOT NULL and UNIQUE), without the table.
QStringList columnsOfList(const QString &list, const QString &table)
{
    QStringList columns;
    const QString prefix = table + QLatin1Char('.');
    for (QString item : list.split(QStringLiteral(", "))) {
        if (item.startsWith(prefix, Qt::CaseInsensitive))
            item = item.mid(prefix.size());
        else if (item.contains(QLatin1Char('.')))
            item = item.section(QLatin1Char('.'), -1);
        columns << item;
    }
    return columns;
}

// The text in the parentheses that open at `open`, or empty when they never close.
QString parenthesized(const QString &sql, qsizetype open)
{
    int depth = 0;
    for (qsizetype i = open; i < sql.size(); ++i) {
        if (sql.at(i) == QLatin1Char('('))
            ++depth;
        else if (sql.at(i) == QLatin1Char(')') && --depth == 0)
            return sql.mid(open + 1, i - open - 1);
    }
    return {};
}

// The expression of the CHECK rule called `name` in a CREATE TABLE statement; empty when the
// statement names no such rule.
QString namedRule(const QString &createSql, const QString &name)
{
    const QRegularExpression rule(
        QStringLiteral("CONSTRAINT\\s+[\"`\\[]?%1[\"`\\]]?\\s+CHECK\\s*\\(")
            .arg(QRegularExpression::escape(name)),
        QRegularExpression::CaseInsensitiveOption);
    const QRegularExpressionMatch m = rule.match(createSql);
    return m.hasMatch() ? parenthesized(createSql, m.capturedEnd() - 1) : QString();
}

// The columns an expression mentions, in table order; text literals do not count.
QStringList columnsIn(const QString &expression, const QStringList &columns)
{
    static const QRegularExpression literal(QStringLiteral("'(?:[^']|'')*'"));
    const QString code = QString(expression).replace(literal, QStringLiteral("''"));
    QStringList found;
    for (const QString &column : columns) {
        const QRegularExpression word(
            QStringLiteral("(?<![\\w$])%1(?![\\w$])").arg(QRegularExpression::escape(column)),
            QRegularExpression::CaseInsensitiveOption);
        if (word.match(code).hasMatch())
            found << column;
    }
    return found;
}

} // namespace

Status Connection::writeError(const QString &table, int rc) const
{
    const QString text = QString::fromUtf8(sqlite3_errmsg(m_db));
    const QString detail = text.section(QStringLiteral("failed: "), 1);
    QString message;
    if (rc == SQLITE_CONSTRAINT_NOTNULL) {
        message = valuesFor(columnsOfList(detail, table)) + QStringLiteral(" may not be empty");
    } else if (rc == SQLITE_CONSTRAINT_UNIQUE || rc == SQLITE_CONSTRAINT_PRIMARYKEY) {
        const QStringList columns = columnsOfList(detail, table);
        message = valuesFor(columns)
            + (columns.size() == 1 ? QStringLiteral(" is already used by another record")
                                   : QStringLiteral(" are already used by another record"));
    } else if (rc == SQLITE_CONSTRAINT_CHECK) {
        const std::optional<jet::TableColumns> described = lookupTable(table);
        QString rule = namedRule(createStatement(table), detail);
        if (rule.isEmpty())
            rule = detail;
        const QStringList columns = described ? columnsIn(rule, described->columns) : QStringList();
        message = columns.isEmpty() ? QStringLiteral("the record is refused by the table's rule")
                                    : valuesFor(columns)
                + (columns.size() == 1 ? QStringLiteral(" is refused by the table's rule")
                                       : QStringLiteral(" are refused by the table's rule"));
    } else {
        return statusFor(rc, QStringLiteral("cannot write to %1").arg(table), text);
    }
    return Status(Status::Code::InvalidArgument, message, rc, text);
}

QString Connection::createStatement(const QString &table) const
{
    Result<Statement> stmt = prepare(QStringLiteral(
        "SELECT sql FROM sqlite_schema WHERE type = 'table' AND name = ?1 COLLATE NOCASE"));
    if (!stmt.isOk())
        return {};
    const QByteArray name = table.toUtf8();
    sqlite3_bind_text(stmt->get(), 1, name.constData(), int(name.size()), SQLITE_TRANSIENT);
    if (sqlite3_step(stmt->get()) != SQLITE_ROW)
        return {};
    return QString::fromUtf8(reinterpret_cast<const char *>(sqlite3_column_text(stmt->get(), 0)));
}

} // namespace plx::sqlite
