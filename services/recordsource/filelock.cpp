// services/recordsource/filelock.cpp: byte-range locks on POSIX (OFD locks) and Windows.
#include "services/recordsource/filelock_p.h"

#include <QElapsedTimer>
#include <QThread>

#ifdef _WIN32
#include <windows.h>
#else
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>
#endif

namespace plx {

namespace {

Status ioError(const char *what, int err)
{
#ifdef _WIN32
    return Status(Status::Code::IoError, QString::fromLatin1(what), err);
#else
    return Status(Status::Code::IoError, QString::fromLatin1(what), err,
                  QString::fromLocal8Bit(std::strerror(err)));
#endif
}

#ifndef _WIN32
Status setLock(int fd, short type, quint64 offset, quint64 length)
{
    struct flock fl;
    std::memset(&fl, 0, sizeof fl);
    fl.l_type = type;
    fl.l_whence = SEEK_SET;
    fl.l_start = static_cast<off_t>(offset);
    fl.l_len = static_cast<off_t>(length);
    fl.l_pid = 0; // required by F_OFD_SETLK
    if (::fcntl(fd, F_OFD_SETLK, &fl) == 0)
        return Status::ok();
    const int err = errno;
    if (err == EAGAIN || err == EACCES)
        return Status(Status::Code::Locked, QStringLiteral("the range is locked by another user"),
                      err);
    return ioError("cannot set a file lock", err);
}
#endif

} // namespace

Status tryLockRange(NativeFileHandle file, quint64 offset, quint64 length, LockKind kind)
{
#ifdef _WIN32
    OVERLAPPED ov = {};
    ov.Offset = DWORD(offset & 0xFFFFFFFFu);
    ov.OffsetHigh = DWORD(offset >> 32);
    DWORD flags = LOCKFILE_FAIL_IMMEDIATELY;
    if (kind == LockKind::Exclusive)
        flags |= LOCKFILE_EXCLUSIVE_LOCK;
    if (LockFileEx(file, flags, 0, DWORD(length & 0xFFFFFFFFu), DWORD(length >> 32), &ov))
        return Status::ok();
    const DWORD err = GetLastError();
    if (err == ERROR_LOCK_VIOLATION || err == ERROR_IO_PENDING)
        return Status(Status::Code::Locked, QStringLiteral("the range is locked by another user"),
                      int(err));
    return ioError("cannot set a file lock", int(err));
#else
    return setLock(file, kind == LockKind::Exclusive ? F_WRLCK : F_RDLCK, offset, length);
#endif
}

Status lockRange(NativeFileHandle file, quint64 offset, quint64 length, LockKind kind,
                 int timeoutMs)
{
    QElapsedTimer timer;
    timer.start();
    int pauseUs = 50;
    for (;;) {
        Status s = tryLockRange(file, offset, length, kind);
        if (s.code() != Status::Code::Locked || timer.elapsed() >= timeoutMs)
            return s;
        // Lock holders keep their locks for a write or two; back off gently.
        QThread::usleep(pauseUs);
        pauseUs = std::min(pauseUs * 2, 5000);
    }
}

Status unlockRange(NativeFileHandle file, quint64 offset, quint64 length)
{
#ifdef _WIN32
    OVERLAPPED ov = {};
    ov.Offset = DWORD(offset & 0xFFFFFFFFu);
    ov.OffsetHigh = DWORD(offset >> 32);
    if (UnlockFileEx(file, 0, DWORD(length & 0xFFFFFFFFu), DWORD(length >> 32), &ov)
        || GetLastError() == ERROR_NOT_LOCKED)
        return Status::ok();
    return ioError("cannot release a file lock", int(GetLastError()));
#else
    return setLock(file, F_UNLCK, offset, length);
#endif
}

LockFile::~LockFile()
{
#ifdef _WIN32
    CloseHandle(m_handle);
#else
    ::close(m_handle);
#endif
}

Result<std::unique_ptr<LockFile>> LockFile::open(const QString &path)
{
#ifdef _WIN32
    HANDLE h = CreateFileW(reinterpret_cast<const wchar_t *>(path.utf16()),
                           GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                           nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (h == INVALID_HANDLE_VALUE)
        return ioError("cannot open the lock file", int(GetLastError()));
    return std::unique_ptr<LockFile>(new LockFile(h, path));
#else
    const int fd = ::open(path.toLocal8Bit().constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
    if (fd < 0)
        return ioError("cannot open the lock file", errno);
    return std::unique_ptr<LockFile>(new LockFile(fd, path));
#endif
}

} // namespace plx
