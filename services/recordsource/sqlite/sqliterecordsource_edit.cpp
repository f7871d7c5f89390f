// services/recordsource/sqlite/sqliterecordsource_edit.cpp: the edit buffer, record locks
// and writes.
//
// Edit takes the record's lock in the sidecar lock file before anything else, then
// re-reads the record so that the buffer starts from the latest committed values. Update
// writes only the fields that were set, in one transaction, and returns once SQLite has
// synced it (synchronous=FULL).
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

Status notEditing()
{
    return Status(Status::Code::InvalidArgument,
                  QStringLiteral("Update or CancelUpdate without AddNew or Edit"));
}

} // namespace

QString SqliteRecordSource::quotedBase() const
{
    return quoted(m_select.baseTable);
}

void SqliteRecordSource::endEdit()
{
    m_mode = EditMode::None;
    m_buffer.clear();
    m_dirty.clear();
    m_lock.release();
}

Status SqliteRecordSource::AddNew()
{
    Status s = checkOpenAndWritable();
    if (!s.isOk())
        return s;
    endEdit();
    m_buffer = QVariantList(m_fields.size());
    m_dirty = QList<bool>(m_fields.size(), false);
    m_mode = EditMode::AddNew;
    return Status::ok();
}

Status SqliteRecordSource::Edit()
{
    Status s = checkOpenAndWritable();
    if (!s.isOk())
        return s;
    if (!hasCurrent())
        return Status(Status::Code::NotFound, QStringLiteral("no current record"));
    endEdit();
    const qint64 key = m_keys.at(m_pos);
    s = m_lock.acquire(m_select.baseTable, key);
    if (!s.isOk())
        return s;
    // Another user may have saved this record since we read it; start from their values.
    m_cacheValid = false;
    s = loadCurrent();
    if (!s.isOk()) {
        m_lock.release();
        return s;
    }
    m_buffer = m_cache;
    m_dirty = QList<bool>(m_fields.size(), false);
    m_mode = EditMode::Edit;
    return Status::ok();
}

Status SqliteRecordSource::setValue(int index, const QVariant &newValue)
{
    Status s = checkOpen();
    if (!s.isOk())
        return s;
    if (m_mode == EditMode::None)
        return Status(Status::Code::InvalidArgument,
                      QStringLiteral("a field can only be set between AddNew or Edit and Update"));
    if (index < 0 || index >= m_fields.size())
        return Status(Status::Code::InvalidArgument, QStringLiteral("no field %1").arg(index));
    if (m_baseColumns.at(index).isEmpty())
        return Status(
            Status::Code::NotSupported,
            QStringLiteral("field %1 is computed and cannot be set").arg(m_fields.at(index).name));
    Result<QVariant> normal = normalizeValue(newValue, m_fields.at(index));
    if (!normal.isOk())
        return normal.status();
    m_buffer[index] = normal.value();
    m_dirty[index] = true;
    return Status::ok();
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

Status SqliteRecordSource::Update()
{
    Status s = checkOpen();
    if (!s.isOk())
        return s;
    if (m_mode == EditMode::None)
        return notEditing();
    s = m_mode == EditMode::AddNew ? insertBuffer() : updateBuffer();
    // A write that failed for a full disk, an I/O error or a refused value keeps the edit,
    // buffer and lock, as the FoxPro engine does: the user can make room or change the
    // value and write again, or cancel. Only a record deleted meanwhile ends it, as its
    // lock protects nothing any more.
    if (s.isOk() || s.code() == Status::Code::NotFound)
        endEdit();
    m_cacheValid = false;
    return s;
}

Status SqliteRecordSource::CancelUpdate()
{
    Status s = checkOpen();
    if (!s.isOk())
        return s;
    if (m_mode == EditMode::None)
        return notEditing();
    endEdit();
    return Status::ok();
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
