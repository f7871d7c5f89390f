// services/recordsource/filelock_p.h: byte-range locks shared between processes.
//
// Record and header locks of every file-based back end are byte ranges of a file, the way
// FoxPro, Clipper and Jet lock records on a share. On Linux they are open-file-description
// locks (F_OFD_SETLK): they belong to one open file, not to the process, so two record
// sources in one process exclude each other just as two processes do, and the kernel drops
// them when the holder dies, so a crashed program never blocks anyone for good. On Windows
// they are LockFileEx locks, which have the same properties.
//
// Offsets are unsigned 64-bit: FoxPro's lock offsets lie near 0x7FFFFFFE and beyond the
// end of the file, which is allowed.
#pragma once

#include "services/recordsource/result.h"

#include <QString>

#include <memory>

namespace plx {

#ifdef _WIN32
using NativeFileHandle = void *; // HANDLE
#else
using NativeFileHandle = int;
#endif

enum class LockKind { Shared, Exclusive };

// Tries once. Locked when another open file (in any process) holds a conflicting lock,
// IoError for any other failure.
Status tryLockRange(NativeFileHandle file, quint64 offset, quint64 length, LockKind kind);
// Retries tryLockRange until it succeeds or `timeoutMs` has passed (then Locked).
Status lockRange(NativeFileHandle file, quint64 offset, quint64 length, LockKind kind,
                 int timeoutMs);
// Releases a range taken through the same handle. Unlocking a range not held is harmless.
Status unlockRange(NativeFileHandle file, quint64 offset, quint64 length);

// A file held open only for its locks (a sidecar lock file). Closing it releases every
// lock taken through it.
class LockFile
{
public:
    ~LockFile();
    LockFile(const LockFile &) = delete;
    LockFile &operator=(const LockFile &) = delete;

    // Opens (creating when missing) `path` for locking.
    static Result<std::unique_ptr<LockFile>> open(const QString &path);

    // Not const although no member changes: taking and dropping locks changes what the file
    // and everyone sharing it see.
    // NOLINTBEGIN(readability-make-member-function-const)
    Status tryLock(quint64 offset, quint64 length, LockKind kind)
    {
        return tryLockRange(m_handle, offset, length, kind);
    }
    Status lock(quint64 offset, quint64 length, LockKind kind, int timeoutMs)
    {
        return lockRange(m_handle, offset, length, kind, timeoutMs);
    }
    Status unlock(quint64 offset, quint64 length) { return unlockRange(m_handle, offset, length); }
    // NOLINTEND(readability-make-member-function-const)
    NativeFileHandle handle() const { return m_handle; }
    const QString &path() const { return m_path; }

private:
    LockFile(NativeFileHandle handle, QString path) : m_handle(handle), m_path(std::move(path)) { }
    NativeFileHandle m_handle;
    QString m_path;
};

} // namespace plx
