// services/inilock.cpp: the settings-file writers' lock and its bounded wait.
#include "services/inilock_p.h"

#include <QDeadlineTimer>
#include <QFile>
#include <QThread>

#ifndef Q_OS_WIN
#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>
#endif

namespace plx {

namespace {

// Short enough that a lock released during the wait is taken at once, long enough not to
// spin: writers hold the lock for one small file's rewrite.
constexpr unsigned long kRetryMs = 10;

} // namespace

SettingsFileLock::SettingsFileLock(const QString &diskPath, std::chrono::milliseconds wait)
{
    const QString lockPath = diskPath + QStringLiteral(".lock");
#ifdef Q_OS_WIN
    m_handle = CreateFileW(reinterpret_cast<const wchar_t *>(lockPath.utf16()),
                           GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                           nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (m_handle == INVALID_HANDLE_VALUE)
        return;
#else
    m_fd = ::open(QFile::encodeName(lockPath).constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
    if (m_fd < 0)
        return;
#endif
    const QDeadlineTimer deadline(wait);
    m_state = State::Busy;
    while (!tryLock()) {
        if (deadline.hasExpired())
            return;
        QThread::msleep(kRetryMs);
    }
    m_state = State::Locked;
}

bool SettingsFileLock::tryLock() const
{
#ifdef Q_OS_WIN
    OVERLAPPED ov = {};
    return LockFileEx(m_handle, LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY, 0, 1, 0, &ov);
#else
    int rc;
    do {
        rc = ::flock(m_fd, LOCK_EX | LOCK_NB);
    } while (rc != 0 && errno == EINTR);
    return rc == 0;
#endif
}

SettingsFileLock::~SettingsFileLock()
{
#ifdef Q_OS_WIN
    if (m_handle != INVALID_HANDLE_VALUE) {
        OVERLAPPED ov = {};
        if (m_state == State::Locked)
            UnlockFileEx(m_handle, 0, 1, 0, &ov);
        CloseHandle(m_handle);
    }
#else
    if (m_fd >= 0)
        ::close(m_fd); // releases the flock
#endif
}

} // namespace plx
