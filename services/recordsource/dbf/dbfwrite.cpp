// services/recordsource/dbf/dbfwrite.cpp: record writes, appends, deletion flags and locks.
//
// The write order is what keeps a shared table readable by every program at every instant
// (and after a crash): memo blocks before the record that points at them, the record (with
// the end-of-file mark) before the header count that makes it visible, and the header count
// only under the header lock. Each durable operation ends with one fdatasync before its
// locks are released, so the next locker reads what was written.
#include "services/recordsource/dbf/internal/dbftable.h"

#include "services/recordsource/dbf/dbfio_p.h"
#include "services/recordsource/dbf/dbfmemo_p.h"
#include "services/recordsource/dbf/internal/dbftesthooks.h"
#include "services/recordsource/dbf/dbfvalue_p.h"
#include "services/recordsource/internal/filelock.h"

#include <QFileInfo>

#include <atomic>
#include <cstdlib>

namespace plx {

namespace dbftest {

namespace {
std::atomic<CrashPoint> g_crashPoint{ CrashPoint::None };
}

void setCrashPoint(CrashPoint point)
{
    g_crashPoint = point;
}

void crashIfArmed(CrashPoint point)
{
    if (g_crashPoint.load() == point)
        std::_Exit(77);
}

namespace {
std::atomic<quint64> g_writesToCrash{ 0 };
}

void setCrashBeforeWrite(quint64 n)
{
    g_writesToCrash = n;
}

void beforeWrite()
{
    if (g_writesToCrash.load(std::memory_order_relaxed) != 0 && --g_writesToCrash == 0)
        std::_Exit(77);
}

namespace {
std::atomic<int> g_failWrites{ 0 };
}

void setFailWrites(int error)
{
    g_failWrites = error;
}

int injectedWriteError()
{
    return g_failWrites.load(std::memory_order_relaxed);
}

namespace {
std::atomic<bool> g_scanByReads{ false };
}

void setScanByReads(bool on)
{
    g_scanByReads = on;
}

bool scanByReads()
{
    return g_scanByReads.load(std::memory_order_relaxed);
}

} // namespace dbftest

namespace {

constexpr quint64 kFoxPro2Base = 0x40000000; // header byte, then + file offset of a record
constexpr quint64 kExtendedBase = 0x7FFFFFFE; // header byte, then - record number

void putDate(char *p, const QDate &d)
{
    p[0] = char(d.year() % 100); // FoxPro's form; dBASE's year - 1900 reads back the same
    p[1] = char(d.month());
    p[2] = char(d.day());
}

} // namespace

// Not const: the locks are state of the file that every program sharing it sees.
// NOLINTNEXTLINE(readability-make-member-function-const)
Status DbfTable::recordLockBytes(quint32 recno, bool lock)
{
    const quint64 a =
        kFoxPro2Base + m_header.headerLength + quint64(recno - 1) * m_header.recordLength;
    const quint64 b = kExtendedBase - recno;
    if (!lock) {
        (void)unlockRange(m_fd, b, 1);
        return unlockRange(m_fd, a, 1);
    }
    Status s = tryLockRange(m_fd, a, 1, LockKind::Exclusive);
    if (s.isOk()) {
        s = tryLockRange(m_fd, b, 1, LockKind::Exclusive);
        if (!s.isOk())
            (void)unlockRange(m_fd, a, 1);
    }
    return s;
}

Status DbfTable::lockRecord(quint32 recno)
{
    if (recno == 0 || recno >= kExtendedBase)
        return Status(Status::Code::InvalidArgument,
                      QStringLiteral("record %1 cannot be locked").arg(recno));
    if (m_recordLocks.contains(recno))
        return Status::ok();
    Status s = recordLockBytes(recno, true);
    if (s.code() == Status::Code::Locked)
        return dbfio::fileError(Status::Code::Locked, m_path,
                                QStringLiteral("record %1 is locked by another user").arg(recno));
    if (!s.isOk())
        return isWritable() ? s : m_writable;
    m_recordLocks.insert(recno);
    return Status::ok();
}

Status DbfTable::unlockRecord(quint32 recno)
{
    if (!m_recordLocks.remove(recno))
        return Status::ok();
    return recordLockBytes(recno, false);
}

Status DbfTable::lockHeader(int timeoutMs)
{
    if (m_headerLockDepth > 0) {
        ++m_headerLockDepth;
        return Status::ok();
    }
    Status s = lockRange(m_fd, kFoxPro2Base, 1, LockKind::Exclusive, timeoutMs);
    if (s.isOk()) {
        s = lockRange(m_fd, kExtendedBase, 1, LockKind::Exclusive, timeoutMs);
        if (!s.isOk())
            (void)unlockRange(m_fd, kFoxPro2Base, 1);
    }
    if (s.code() == Status::Code::Locked)
        return dbfio::fileError(Status::Code::Locked, m_path,
                                QStringLiteral("the table header is locked by another user"));
    if (!s.isOk())
        return isWritable() ? s : m_writable;
    m_headerLockDepth = 1;
    return Status::ok();
}

Status DbfTable::unlockHeader()
{
    if (m_headerLockDepth == 0 || --m_headerLockDepth > 0)
        return Status::ok();
    (void)unlockRange(m_fd, kExtendedBase, 1);
    return unlockRange(m_fd, kFoxPro2Base, 1);
}

Status DbfTable::writeHeaderCount(quint32 count)
{
    char h[7];
    const QDate today = QDate::currentDate();
    putDate(h, today);
    dbfio::putLe32(h + 3, count);
    Status s = dbfio::writeAt(m_fd, 1, h, sizeof h, m_path);
    if (s.isOk()) {
        m_header.lastUpdate = today;
        m_header.headerCount = count;
    }
    return s;
}

} // namespace plx
