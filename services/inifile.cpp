// services/inifile.cpp: the settings-file reader and the locked, atomic writer.
#include "services/ini.h"

#include "services/iniprofile_p.h"
#include "services/paths.h"
#include "services/texthelpers.h"

#include <QFile>
#include <QSaveFile>

#ifdef Q_OS_WIN
#include <windows.h>
#else
#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>
#endif

namespace plx {

namespace {

// The reader is offered 1,999 characters of a 2,000-character buffer and keeps one for its
// terminator, so the longest value it returns has 1,998 characters.
constexpr qsizetype maxValueLength = 1998;

QByteArray readAll(const QString &diskPath, bool *exists)
{
    QFile f(diskPath);
    *exists = f.open(QIODevice::ReadOnly);
    return *exists ? f.readAll() : QByteArray();
}

// Holds an exclusive lock on "<file>.lock" for its lifetime; serialises writers of one
// settings file across processes. The lock dies with the process, so a crash never
// blocks the next writer.
class WriteLock
{
public:
    explicit WriteLock(const QString &diskPath)
    {
        const QString lockPath = diskPath + QStringLiteral(".lock");
#ifdef Q_OS_WIN
        m_handle = CreateFileW(reinterpret_cast<const wchar_t *>(lockPath.utf16()),
                               GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                               nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
        if (m_handle == INVALID_HANDLE_VALUE)
            return;
        OVERLAPPED ov = {};
        m_locked = LockFileEx(m_handle, LOCKFILE_EXCLUSIVE_LOCK, 0, 1, 0, &ov);
#else
        m_fd = ::open(QFile::encodeName(lockPath).constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
        if (m_fd < 0)
            return;
        int rc;
        do {
            rc = ::flock(m_fd, LOCK_EX);
        } while (rc != 0 && errno == EINTR);
        m_locked = rc == 0;
#endif
    }
    ~WriteLock()
    {
#ifdef Q_OS_WIN
        if (m_handle != INVALID_HANDLE_VALUE) {
            OVERLAPPED ov = {};
            if (m_locked)
                UnlockFileEx(m_handle, 0, 1, 0, &ov);
            CloseHandle(m_handle);
        }
#else
        if (m_fd >= 0)
            ::close(m_fd); // releases the flock
#endif
    }
    WriteLock(const WriteLock &) = delete;
    WriteLock &operator=(const WriteLock &) = delete;
    bool locked() const
    {
        return m_locked;
    }

private:
    bool m_locked = false;
#ifdef Q_OS_WIN
    HANDLE m_handle = INVALID_HANDLE_VALUE;
#else
    int m_fd = -1;
#endif
};

// Temporary file beside the target, synced to disk, then renamed over it.
bool replaceFile(const QString &diskPath, const QByteArray &contents)
{
    QSaveFile out(diskPath);
    if (!out.open(QIODevice::WriteOnly))
        return false;
    if (out.write(contents) != contents.size()) {
        out.cancelWriting();
        return false;
    }
    if (!out.flush()) {
        out.cancelWriting();
        return false;
    }
#ifndef Q_OS_WIN
    ::fsync(out.handle());
#endif
    return out.commit();
}

} // namespace

void readINI(const QString &section, const QString &key, const QString &file, QString &value,
             const QString &def)
{
    bool exists = false;
    const QByteArray contents = readAll(toDiskPath(trimSpaces(file)), &exists);
    QString found;
    if (!exists || !IniProfile::parse(contents).find(trimSpaces(section), trimSpaces(key), &found))
        found = trimSpaces(def);
    value = found.left(maxValueLength);
}

bool writeINI(const QString &section, const QString &key, const QString &file, const QString &value)
{
    const QString s = trimSpaces(section);
    const QString k = trimSpaces(key);
    const QString f = trimSpaces(file);
    if (s.isEmpty() || k.isEmpty() || f.isEmpty())
        return false;
    const QString diskPath = toDiskPath(f);
    const WriteLock lock(diskPath);
    if (!lock.locked())
        return false;
    // Re-read under the lock: another process may have written since we last looked.
    bool exists = false;
    IniProfile profile = IniProfile::parse(readAll(diskPath, &exists));
    profile.set(s, k, trimSpaces(value));
    return replaceFile(diskPath, profile.serialize());
}

} // namespace plx
