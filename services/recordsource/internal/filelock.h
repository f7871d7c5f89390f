// services/recordsource/internal/filelock.h: the project's byte-range file locks
// (services/internal/filelock.h) in the record sources' terms: every outcome is a Status,
// Locked when another user holds the range.
#pragma once

#include "services/internal/filelock.h"
#include "services/recordsource/result.h"

#include <QString>

#include <memory>

namespace plx {

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
    LockFile(const LockFile &) = delete;
    LockFile &operator=(const LockFile &) = delete;

    // Opens (creating when missing) `path` for locking.
    static Result<std::unique_ptr<LockFile>> open(const QString &path);

    // Not const although no member changes: taking and dropping locks changes what the file
    // and everyone sharing it see.
    // NOLINTBEGIN(readability-make-member-function-const)
    Status tryLock(quint64 offset, quint64 length, LockKind kind)
    {
        return tryLockRange(handle(), offset, length, kind);
    }
    Status lock(quint64 offset, quint64 length, LockKind kind, int timeoutMs)
    {
        return lockRange(handle(), offset, length, kind, timeoutMs);
    }
    Status unlock(quint64 offset, quint64 length) { return unlockRange(handle(), offset, length); }
    // NOLINTEND(readability-make-member-function-const)
    NativeFileHandle handle() const { return m_file.handle(); }
    const QString &path() const { return m_path; }

private:
    explicit LockFile(const QString &path) : m_file(path), m_path(path) { }
    filelock::SidecarFile m_file;
    QString m_path;
};

} // namespace plx
