// tests/support/writeprotection.h: makes a file or folder refuse writes for the length of a
// test, also for root.
//
// Tests often run as root in containers, where clearing the write bits stops nobody. Then
// the file system's immutable attribute is set as well (Linux; it needs the capability
// CAP_LINUX_IMMUTABLE, which root usually has). Either way the protection is proved by
// trying to write, and a test that cannot get it skips, saying why, instead of passing
// without having tested anything:
//
//     plx::test::WriteProtection lock(dir.filePath("T.DBF"));
//     if (!lock.failure().isEmpty())
//         GTEST_SKIP() << lock.failure().toStdString();
//
// Declare it after the QTemporaryDir it protects something in, so that it is lifted before
// the folder is removed.
#pragma once

#include <QFile>
#include <QFileInfo>

#ifdef __linux__
#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <unistd.h>
#endif

namespace plx::test {

class WriteProtection
{
public:
    explicit WriteProtection(QString path) : m_path(std::move(path))
    {
        m_permissions = QFile::permissions(m_path);
        QFile::setPermissions(
            m_path,
            m_permissions
                & ~(QFile::WriteOwner | QFile::WriteUser | QFile::WriteGroup | QFile::WriteOther));
        if (refusesWrites())
            return;
        m_immutable = setImmutable(true);
        if (!m_immutable)
            m_failure = QStringLiteral("cannot write-protect %1: clearing its write bits does "
                                       "not stop this user (root?), and the immutable attribute "
                                       "cannot be set here")
                            .arg(m_path);
        else if (!refusesWrites())
            m_failure = QStringLiteral("%1 still accepts writes when immutable").arg(m_path);
    }
    ~WriteProtection()
    {
        if (m_immutable)
            (void)setImmutable(false);
        QFile::setPermissions(m_path, m_permissions);
    }
    WriteProtection(const WriteProtection &) = delete;
    WriteProtection &operator=(const WriteProtection &) = delete;

    // Empty when the path refuses writes now; otherwise why it could not be made to.
    const QString &failure() const { return m_failure; }

private:
    // Tries: a file is opened for writing (nothing is written), a folder gets a new file.
    bool refusesWrites() const
    {
        if (QFileInfo(m_path).isDir()) {
            QFile probe(m_path + QStringLiteral("/.write-probe"));
            if (!probe.open(QIODevice::WriteOnly | QIODevice::NewOnly))
                return true;
            probe.close();
            probe.remove();
            return false;
        }
        QFile file(m_path);
        return !file.open(QIODevice::ReadWrite | QIODevice::ExistingOnly);
    }

    bool setImmutable(bool on) const
    {
#ifdef __linux__
        const int fd =
            ::open(QFile::encodeName(m_path).constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
        if (fd < 0)
            return false;
        int flags = 0;
        bool done = ::ioctl(fd, FS_IOC_GETFLAGS, &flags) == 0;
        if (done) {
            flags = on ? (flags | FS_IMMUTABLE_FL) : (flags & ~FS_IMMUTABLE_FL);
            done = ::ioctl(fd, FS_IOC_SETFLAGS, &flags) == 0;
        }
        ::close(fd);
        return done;
#else
        Q_UNUSED(on);
        return false;
#endif
    }

    QString m_path;
    QFileDevice::Permissions m_permissions;
    bool m_immutable = false;
    QString m_failure;
};

} // namespace plx::test
