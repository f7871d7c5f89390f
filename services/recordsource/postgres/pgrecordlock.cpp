// services/recordsource/postgres/pgrecordlock.cpp: advisory record locks.
#include "services/recordsource/postgres/pgrecordlock_p.h"

namespace plx::postgres {

namespace {

// The lock's two 32-bit halves: the table's OID and the key (keys beyond 2^31 share a
// lock with a smaller one, which only ever makes a lock stricter).
QString lockArgs(const QString &oid, qint64 key)
{
    return QStringLiteral("(%1)::oid::bigint::int4, %2")
        .arg(oid)
        .arg(qint32(quint32(quint64(key) & 0x7fffffff)));
}

} // namespace

Status RecordLock::acquire(const QString &table, qint64 key)
{
    release();
    if (m_conn->holdsLocally(table, key))
        return Status(
            Status::Code::Locked,
            QStringLiteral("record %1 of %2 is locked by another user").arg(key).arg(table));
    Result<PgResult> oid =
        m_conn->exec(QStringLiteral("SELECT $1::regclass::oid"), { quoteName(table).toUtf8() });
    if (!oid.isOk())
        return oid.status();
    const QString tableOid = oid->text(0, 0);
    Result<PgResult> got = m_conn->exec(
        QStringLiteral("SELECT pg_try_advisory_lock(%1)").arg(lockArgs(tableOid, key)));
    if (!got.isOk())
        return got.status();
    if (got->text(0, 0) != QLatin1String("t"))
        return Status(
            Status::Code::Locked,
            QStringLiteral("record %1 of %2 is locked by another user").arg(key).arg(table), 0,
            holderOf(tableOid, key));
    m_table = table;
    m_oid = tableOid;
    m_key = key;
    m_held = true;
    m_conn->noteLock(table, key);
    return Status::ok();
}

void RecordLock::release()
{
    if (!m_held || !m_conn)
        return;
    m_held = false;
    m_conn->dropLock(m_table, m_key);
    (void)m_conn->run(QStringLiteral("SELECT pg_advisory_unlock(%1)").arg(lockArgs(m_oid, m_key)));
}

QString RecordLock::holderOf(const QString &oid, qint64 key) const
{
    Result<PgResult> r = m_conn->exec(
        QStringLiteral("SELECT a.usename, a.application_name, a.client_addr, "
                       "to_char(a.state_change, 'YYYY-MM-DD HH24:MI:SS') FROM pg_locks l "
                       "JOIN pg_stat_activity a ON a.pid = l.pid WHERE l.locktype = 'advisory' "
                       "AND l.granted AND l.classid = (%1)::oid AND l.objid = %2::oid "
                       "AND l.objsubid = 2 LIMIT 1")
            .arg(oid)
            .arg(quint32(quint64(key) & 0x7fffffff)));
    if (!r.isOk() || r->rows() == 0)
        return {};
    // The server keeps no time for an advisory lock; the session's last statement ended
    // when the lock was taken, unless it has worked since.
    return QStringLiteral("held by %1 (%2%3), whose session was last active at %4")
        .arg(r->text(0, 0), r->text(0, 1),
             r->isNull(0, 2) ? QString() : QStringLiteral(" at ") + r->text(0, 2), r->text(0, 3));
}

} // namespace plx::postgres
