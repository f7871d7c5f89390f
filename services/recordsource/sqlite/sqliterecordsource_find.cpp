// services/recordsource/sqlite/sqliterecordsource_find.cpp: FindFirst and FindNext.
//
// The criterion is translated once and evaluated by SQLite over the base table:
// "SELECT rowid FROM <from> WHERE (<criterion>)" gives the matching rowids, and the
// first of them at or after the start position in the keyset's order wins. Looking a
// record up by ID therefore costs one pass of the engine over the table plus one scan
// of the 8-byte keys, never a read of each record's values.
#include "services/recordsource/sqlite/internal/sqliterecordsource.h"

#include <sqlite3.h>

#include <algorithm>

namespace plx::sqlite {

Result<qint64> SqliteRecordSource::locate(const QString &criterion, qint64 start) const
{
    Result<QString> sql =
        jet::translateCriterion(criterion, m_select, m_conn->tableLookup(), m_conn->textCompare());
    if (!sql.isOk())
        return sql.status();
    return m_keyed ? findKeyed(sql.value(), start) : findHeld(sql.value(), start);
}

Result<qint64> SqliteRecordSource::findKeyed(const QString &sqlCriterion, qint64 start) const
{
    if (start >= size())
        return qint64(-1);
    Result<Statement> stmt =
        m_conn->prepare(QStringLiteral("SELECT %1.rowid %2 WHERE (%3)")
                            .arg(m_select.baseAlias, m_select.fromClause, sqlCriterion));
    if (!stmt.isOk())
        return stmt.status();
    std::vector<qint64> matches;
    int rc;
    while ((rc = sqlite3_step(stmt->get())) == SQLITE_ROW)
        matches.push_back(sqlite3_column_int64(stmt->get(), 0));
    if (rc != SQLITE_DONE)
        return m_conn->engineError(
            QStringLiteral("cannot evaluate the criterion %1").arg(sqlCriterion), rc);
    if (matches.empty())
        return qint64(-1);
    if (matches.size() == 1)
        return m_keys.indexOf(start, matches.front());
    std::sort(matches.begin(), matches.end());
    return m_keys.indexWhere(start, [&matches](qint64 key) {
        return std::binary_search(matches.begin(), matches.end(), key);
    });
}

// Held rows have no key: the criterion is evaluated over the same statement in the same
// order, giving one flag per held row.
Result<qint64> SqliteRecordSource::findHeld(const QString &sqlCriterion, qint64 start) const
{
    if (!m_plainShape)
        return Status(Status::Code::NotSupported,
                      QStringLiteral("FindFirst is not available on a grouped query"));
    if (start >= size())
        return qint64(-1);
    QString sql = QStringLiteral("SELECT CASE WHEN (%1) THEN 1 ELSE 0 END %2")
                      .arg(sqlCriterion, m_select.fromClause);
    if (!m_select.whereClause.isEmpty())
        sql += QStringLiteral(" WHERE ") + m_select.whereClause;
    if (!m_select.orderClause.isEmpty())
        sql += QStringLiteral(" ORDER BY ") + m_select.orderClause;
    Result<Statement> stmt = m_conn->prepare(sql);
    if (!stmt.isOk())
        return stmt.status();
    qint64 row = 0;
    int rc;
    while ((rc = sqlite3_step(stmt->get())) == SQLITE_ROW) {
        if (row >= start && sqlite3_column_int(stmt->get(), 0) != 0)
            return row;
        ++row;
    }
    if (rc != SQLITE_DONE)
        return m_conn->engineError(
            QStringLiteral("cannot evaluate the criterion %1").arg(sqlCriterion), rc);
    return qint64(-1);
}

} // namespace plx::sqlite
