// services/recordsource/sqlite/sqliterecordsource_edit.cpp: record locks and writes.
//
// A record's lock lives in the sidecar lock file. Update writes only the fields that were
// set, in one transaction, and returns once SQLite has synced it (synchronous=FULL).
#include "services/recordsource/sqlite/internal/sqliterecordsource.h"

#include "services/recordsource/sqlite/internal/sqlitevalues.h"

#include <sqlite3.h>

namespace plx::sqlite {

namespace {

QString quoted(const QString &name)
{
    return QLatin1Char('"') + QString(name).replace(QLatin1Char('"'), QStringLiteral("\"\""))
        + QLatin1Char('"');
}

} // namespace

QString SqliteRecordSource::quotedBase() const
{
    return quoted(m_select.baseTable);
}

Status SqliteRecordSource::lockCurrent()
{
    return m_lock.acquire(m_select.baseTable, m_keys.at(m_pos));
}

void SqliteRecordSource::releaseLock()
{
    m_lock.release();
}

Result<QVariantList> SqliteRecordSource::freshCurrentRow()
{
    m_cacheValid = false;
    if (Status s = loadCurrent(); !s.isOk())
        return s;
    return m_cache;
}

bool SqliteRecordSource::isComputed(int index) const
{
    return m_baseColumns.at(index).isEmpty();
}

Result<QVariant> SqliteRecordSource::normalizedValue(const QVariant &value, int index) const
{
    return normalizeValue(value, m_fields.at(index));
}

Status SqliteRecordSource::runWrite(Statement &stmt)
{
    Status s = m_conn->begin();
    if (!s.isOk())
        return s;
    const int rc = sqlite3_step(stmt.get());
    if (rc != SQLITE_DONE) {
        s = m_conn->writeError(m_select.baseTable, rc);
        m_conn->rollback();
        return s;
    }
    if (sqlite3_changes(m_conn->handle()) == 0) {
        m_conn->rollback();
        return Status(Status::Code::NotFound,
                      QStringLiteral("the record was deleted by another user"));
    }
    return m_conn->commit();
}

Status SqliteRecordSource::insertBuffer()
{
    QStringList columns;
    QStringList marks;
    for (int i = 0; i < m_fields.size(); ++i) {
        if (m_dirty.at(i)) {
            columns << quoted(m_baseColumns.at(i));
            marks << QStringLiteral("?%1").arg(columns.size());
        }
    }
    const QString sql = columns.isEmpty()
        ? QStringLiteral("INSERT INTO %1 DEFAULT VALUES").arg(quotedBase())
        : QStringLiteral("INSERT INTO %1 (%2) VALUES (%3)")
              .arg(quotedBase(), columns.join(QLatin1Char(',')), marks.join(QLatin1Char(',')));
    Result<Statement> stmt = m_conn->prepare(sql);
    if (!stmt.isOk())
        return stmt.status();
    int parameter = 0;
    for (int i = 0; i < m_fields.size(); ++i) {
        if (m_dirty.at(i))
            bindValue(stmt->get(), ++parameter, m_buffer.at(i), m_fields.at(i));
    }
    Status s = runWrite(stmt.value());
    if (!s.isOk())
        return s;
    m_keys.append(sqlite3_last_insert_rowid(m_conn->handle()));
    // A source counted to its end stays counted; the new record joins its end.
    if (m_reached == size() - 1)
        m_reached = size();
    return Status::ok();
}

Status SqliteRecordSource::updateBuffer()
{
    QStringList sets;
    for (int i = 0; i < m_fields.size(); ++i) {
        if (m_dirty.at(i))
            sets
                << QStringLiteral("%1 = ?%2").arg(quoted(m_baseColumns.at(i))).arg(sets.size() + 1);
    }
    if (sets.isEmpty())
        return Status::ok();
    Result<Statement> stmt = m_conn->prepare(QStringLiteral("UPDATE %1 SET %2 WHERE rowid = ?%3")
                                                 .arg(quotedBase(), sets.join(QLatin1Char(',')))
                                                 .arg(sets.size() + 1));
    if (!stmt.isOk())
        return stmt.status();
    int parameter = 0;
    for (int i = 0; i < m_fields.size(); ++i) {
        if (m_dirty.at(i))
            bindValue(stmt->get(), ++parameter, m_buffer.at(i), m_fields.at(i));
    }
    sqlite3_bind_int64(stmt->get(), ++parameter, m_keys.at(m_pos));
    return runWrite(stmt.value());
}

Status SqliteRecordSource::Delete()
{
    Status s = checkOpenAndWritable();
    if (!s.isOk())
        return s;
    if (!hasCurrent() || m_mode == EditMode::AddNew)
        return Status(Status::Code::NotFound, QStringLiteral("no current record to delete"));
    const qint64 key = m_keys.at(m_pos);
    // Deleting a record someone is editing would pull it from under their Update.
    if (!m_lock.isHeld()) {
        s = m_lock.acquire(m_select.baseTable, key);
        if (!s.isOk())
            return s;
    }
    Result<Statement> stmt =
        m_conn->prepare(QStringLiteral("DELETE FROM %1 WHERE rowid = ?1").arg(quotedBase()));
    if (!stmt.isOk()) {
        endEdit();
        return stmt.status();
    }
    sqlite3_bind_int64(stmt->get(), 1, key);
    s = runWrite(stmt.value());
    endEdit();
    // NotFound: someone else deleted it first; either way it is gone from this source.
    if (!s.isOk() && s.code() != Status::Code::NotFound)
        return s;
    m_keys.removeAt(m_pos);
    if (m_reached > m_pos)
        --m_reached;
    m_onDeleted = true;
    m_cacheValid = false;
    return s;
}

} // namespace plx::sqlite
