// services/recordsource/sqlite/sqliterecordsource_order.cpp: a saved record put back into
// its place in the keyset's order without reading the keyset again.
//
// SQLite compares the records itself (the statement's own ORDER BY, collations and all), two
// at a time, so the place found is the one a new query would give; the keyset is searched
// by halves, about twenty probes on a million records.
#include "services/recordsource/sqlite/internal/sqliterecordsource.h"

#include <sqlite3.h>

namespace plx::sqlite {

Result<bool> SqliteRecordSource::satisfiesWhere(qint64 key) const
{
    QString sql = QStringLiteral("SELECT 1 %1 WHERE %2.rowid = ?1")
                      .arg(m_select.fromClause, m_select.baseAlias);
    if (!m_select.whereClause.isEmpty())
        sql += QStringLiteral(" AND (%1)").arg(m_select.whereClause);
    Result<Statement> stmt = m_conn->prepare(sql);
    if (!stmt.isOk())
        return stmt.status();
    sqlite3_bind_int64(stmt->get(), 1, key);
    const int rc = sqlite3_step(stmt->get());
    if (rc != SQLITE_ROW && rc != SQLITE_DONE)
        return m_conn->engineError(QStringLiteral("cannot read record %1").arg(key), rc);
    return rc == SQLITE_ROW;
}

// The position `key` takes among the other keys (those of the keyset without the current
// one), which are taken to be in order.
Result<qint64> SqliteRecordSource::placeAmongOthers(qint64 key) const
{
    // Of two records, the one the order puts first; ties go by rowid, as a scan of the
    // table feeds them to the sort.
    Result<Statement> first = m_conn->prepare(
        QStringLiteral(
            "SELECT %1.rowid %2 WHERE %1.rowid IN (?1, ?2) ORDER BY %3, %1.rowid LIMIT 1")
            .arg(m_select.baseAlias, m_select.fromClause, m_select.orderClause));
    if (!first.isOk())
        return first.status();
    sqlite3_stmt *st = first->get();
    const qint64 current = m_pos;
    auto otherAt = [&](qint64 i) { return m_keys.at(i < current ? i : i + 1); };
    qint64 low = 0;
    qint64 high = m_keys.size() - 1;
    while (low < high) {
        const qint64 mid = low + (high - low) / 2;
        const qint64 probe = otherAt(mid);
        sqlite3_bind_int64(st, 1, probe);
        sqlite3_bind_int64(st, 2, key);
        const int rc = sqlite3_step(st);
        const bool probeFirst = rc == SQLITE_ROW && sqlite3_column_int64(st, 0) == probe;
        sqlite3_reset(st);
        if (rc != SQLITE_ROW && rc != SQLITE_DONE)
            return m_conn->engineError(QStringLiteral("cannot compare record %1").arg(key), rc);
        if (probeFirst)
            low = mid + 1;
        else
            high = mid;
    }
    return low;
}

bool SqliteRecordSource::placeCurrentInOrder()
{
    if (m_closed || !m_keyed || !m_plainShape || m_mode != EditMode::None || !hasCurrent())
        return false;
    const qint64 key = m_keys.at(m_pos);
    const Result<bool> member = satisfiesWhere(key);
    if (!member.isOk() || !member.value())
        return false;
    if (m_select.orderClause.isEmpty())
        return true; // no order to keep: the record stays where it is
    const Result<qint64> place = placeAmongOthers(key);
    if (!place.isOk())
        return false;
    m_keys.move(m_pos, place.value());
    (void)moveTo(place.value());
    return true;
}

} // namespace plx::sqlite
