// services/recordsource/postgres/pgrecordlock_p.h: the record lock Edit takes.
//
// A session-level advisory lock keyed by the table's OID and the record's key, taken with
// pg_try_advisory_lock: another connection's Edit sees it at once, no transaction stays
// open while a user edits (so autovacuum and the other sources on the connection carry
// on), and the server drops it when the holder's connection ends, however it ends. Two
// sources on one connection share the server session, so the connection also notes its
// own sources' locks. A refused lock names the holder as the server knows it: its user,
// its application name and when its session was last active.
#pragma once

#include "services/recordsource/postgres/pgconnection_p.h"

namespace plx::postgres {

class RecordLock
{
public:
    explicit RecordLock(std::shared_ptr<Connection> connection) : m_conn(std::move(connection)) { }
    ~RecordLock() { release(); }
    RecordLock(const RecordLock &) = delete;
    RecordLock &operator=(const RecordLock &) = delete;

    // Locked (naming the holder) when anyone else holds the record.
    Status acquire(const QString &table, qint64 key);
    void release();
    bool isHeld() const { return m_held; }
    void detach()
    {
        release();
        m_conn.reset();
    }

private:
    QString holderOf(const QString &oid, qint64 key) const;

    std::shared_ptr<Connection> m_conn;
    QString m_table;
    QString m_oid;
    qint64 m_key = 0;
    bool m_held = false;
};

} // namespace plx::postgres
