// services/filelock.cpp: byte-range locks on POSIX (open-file-description locks) and Windows.
#include "services/internal/filelock.h"

#include <QElapsedTimer>
#include <QFile>
#include <QThread>

#include <algorithm>

#ifdef _WIN32
#include <qt_windows.h>
#else
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>
#endif

namespace plx::filelock {

namespace {

Outcome busy(int systemCode)
{
    return { Outcome::State::Busy, systemCode, {}, {} };
}

Outcome failed(const char *what, int systemCode)
{
#ifdef _WIN32
    return { Outcome::State::Failed, systemCode, QString::fromLatin1(what), {} };
#else
    return { Outcome::State::Failed, systemCode, QString::fromLatin1(what),
             QString::fromLocal8Bit(std::strerror(systemCode)) };
#endif
}

#ifdef _WIN32
OVERLAPPED at(quint64 offset)
{
    OVERLAPPED ov = {};
    ov.Offset = DWORD(offset & 0xFFFFFFFFu);
    ov.OffsetHigh = DWORD(offset >> 32);
    return ov;
}
#else
Outcome setLock(int fd, short type, quint64 offset, quint64 length, const char *what)
{
    struct flock fl;
    std::memset(&fl, 0, sizeof fl);
    fl.l_type = type;
    fl.l_whence = SEEK_SET;
    fl.l_start = static_cast<off_t>(offset);
    fl.l_len = static_cast<off_t>(length);
    fl.l_pid = 0; // required by F_OFD_SETLK
    if (::fcntl(fd, F_OFD_SETLK, &fl) == 0)
        return {};
    const int err = errno;
    if (err == EAGAIN || err == EACCES)
        return busy(err);
    return failed(what, err);
}
#endif

} // namespace

Outcome tryLock(NativeFileHandle file, quint64 offset, quint64 length, LockKind kind)
{
#ifdef _WIN32
    OVERLAPPED ov = at(offset);
    DWORD flags = LOCKFILE_FAIL_IMMEDIATELY;
    if (kind == LockKind::Exclusive)
        flags |= LOCKFILE_EXCLUSIVE_LOCK;
    if (LockFileEx(file, flags, 0, DWORD(length & 0xFFFFFFFFu), DWORD(length >> 32), &ov))
        return {};
    const DWORD err = GetLastError();
    if (err == ERROR_LOCK_VIOLATION || err == ERROR_IO_PENDING)
        return busy(int(err));
    return failed("cannot set a file lock", int(err));
#else
    return setLock(file, kind == LockKind::Exclusive ? F_WRLCK : F_RDLCK, offset, length,
                   "cannot set a file lock");
#endif
}

Outcome lock(NativeFileHandle file, quint64 offset, quint64 length, LockKind kind,
             std::chrono::milliseconds wait)
{
    QElapsedTimer timer;
    timer.start();
    unsigned long pauseUs = 50;
    for (;;) {
        Outcome outcome = tryLock(file, offset, length, kind);
        if (outcome.state != Outcome::State::Busy || timer.elapsed() >= wait.count())
            return outcome;
        // Holders keep their locks for a write or two; back off gently.
        QThread::usleep(pauseUs);
        pauseUs = std::min(pauseUs * 2, 5000UL);
    }
}

Outcome unlock(NativeFileHandle file, quint64 offset, quint64 length)
{
#ifdef _WIN32
    OVERLAPPED ov = at(offset);
    if (UnlockFileEx(file, 0, DWORD(length & 0xFFFFFFFFu), DWORD(length >> 32), &ov)
        || GetLastError() == ERROR_NOT_LOCKED)
        return {};
    return failed("cannot release a file lock", int(GetLastError()));
#else
    return setLock(file, F_UNLCK, offset, length, "cannot release a file lock");
#endif
}

SidecarFile::SidecarFile(const QString &path)
{
#ifdef _WIN32
    m_handle = CreateFileW(reinterpret_cast<const wchar_t *>(path.utf16()),
                           GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                           nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (m_handle == INVALID_HANDLE_VALUE)
        m_opened = failed("cannot open the lock file", int(GetLastError()));
#else
    m_handle = ::open(QFile::encodeName(path).constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
    if (m_handle < 0)
        m_opened = failed("cannot open the lock file", errno);
#endif
}

SidecarFile::~SidecarFile()
{
    if (!isOpen())
        return;
#ifdef _WIN32
    CloseHandle(m_handle);
#else
    ::close(m_handle);
#endif
}

} // namespace plx::filelock
