// services/recordsource/sqlite/recordlock.cpp: record locks in the "-plxlock" sidecar file.
#include "services/recordsource/sqlite/internal/recordlock.h"

namespace plx::sqlite {

namespace {

constexpr int TableBits = 22; // leaves the top bit of the signed file offset clear
constexpr int RowidBits = 40;

quint32 fnv1a(const QByteArray &bytes)
{
    quint32 h = 2166136261u;
    for (char c : bytes) {
        h ^= quint8(c);
        h *= 16777619u;
    }
    return h;
}

} // namespace

RecordLock::RecordLock(const QString &databasePath)
{
    if (!databasePath.isEmpty() && databasePath != QLatin1String(":memory:"))
        m_lockPath = databasePath + QStringLiteral("-plxlock");
}

quint64 RecordLock::offsetFor(const QString &table, qint64 rowid)
{
    const quint64 tableHash = fnv1a(table.toLower().toUtf8()) & ((1u << TableBits) - 1);
    const quint64 row = quint64(rowid) & ((quint64(1) << RowidBits) - 1);
    return (tableHash << RowidBits) | row;
}

Status RecordLock::acquire(const QString &table, qint64 rowid)
{
    release();
    if (m_lockPath.isEmpty()) {
        m_held = true;
        return Status::ok();
    }
    if (!m_file) {
        Result<std::unique_ptr<LockFile>> file = LockFile::open(m_lockPath);
        if (!file.isOk())
            return file.status();
        m_file = std::move(file).value();
    }
    const quint64 offset = offsetFor(table, rowid);
    Status s = m_file->tryLock(offset, 1, LockKind::Exclusive);
    if (!s.isOk()) {
        if (s.code() == Status::Code::Locked)
            return Status(
                Status::Code::Locked,
                QStringLiteral("record %1 of %2 is locked by another user").arg(rowid).arg(table),
                s.engineCode(), s.engineMessage());
        return s;
    }
    m_offset = offset;
    m_held = true;
    return Status::ok();
}

void RecordLock::release()
{
    if (!m_held)
        return;
    m_held = false;
    if (m_file)
        (void)m_file->unlock(m_offset, 1);
}

} // namespace plx::sqlite
