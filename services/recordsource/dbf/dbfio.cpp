// services/recordsource/dbf/dbfio.cpp: positioned POSIX I/O and byte-order helpers.
#include "services/recordsource/dbf/dbfio_p.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace plx::dbfio {

namespace {

Status osError(const QString &path, const char *what, int err)
{
    return Status(Status::Code::IoError,
                  QStringLiteral("%1: %2").arg(path, QString::fromLatin1(what)), err,
                  QString::fromLocal8Bit(std::strerror(err)));
}

} // namespace

Result<qint64> readAt(int fd, qint64 offset, char *data, qint64 length, const QString &path)
{
    qint64 done = 0;
    while (done < length) {
        const ssize_t n = ::pread(fd, data + done, size_t(length - done), off_t(offset + done));
        if (n < 0) {
            if (errno == EINTR)
                continue;
            return osError(path, "cannot read", errno);
        }
        if (n == 0)
            break;
        done += n;
    }
    return done;
}

Status writeAt(int fd, qint64 offset, const char *data, qint64 length, const QString &path)
{
    qint64 done = 0;
    while (done < length) {
        const ssize_t n = ::pwrite(fd, data + done, size_t(length - done), off_t(offset + done));
        if (n < 0) {
            if (errno == EINTR)
                continue;
            return osError(path, "cannot write", errno);
        }
        done += n;
    }
    return Status::ok();
}

Status syncData(int fd, const QString &path)
{
    if (::fdatasync(fd) != 0)
        return osError(path, "cannot flush to disk", errno);
    return Status::ok();
}

Result<qint64> fileSize(int fd, const QString &path)
{
    struct stat st;
    if (::fstat(fd, &st) != 0)
        return osError(path, "cannot read the file size", errno);
    return qint64(st.st_size);
}

int openFile(const QString &path, bool writable, int *err)
{
    const QByteArray native = QFile::encodeName(path);
    int fd;
    do {
        fd = ::open(native.constData(), (writable ? O_RDWR : O_RDONLY) | O_CLOEXEC);
    } while (fd < 0 && errno == EINTR);
    if (fd < 0 && err)
        *err = errno;
    return fd;
}

void closeFile(int fd)
{
    if (fd >= 0)
        ::close(fd);
}

QString companionFile(const QString &path, const char *ext)
{
    const QFileInfo info(path);
    const QString wanted = info.completeBaseName() + QLatin1String(ext);
    const QString direct = info.dir().filePath(wanted);
    if (QFileInfo::exists(direct))
        return direct;
    const QStringList entries = info.dir().entryList(QDir::Files | QDir::Hidden);
    for (const QString &name : entries) {
        if (name.compare(wanted, Qt::CaseInsensitive) == 0)
            return info.dir().filePath(name);
    }
    return {};
}

quint16 le16(const char *p)
{
    const auto *u = reinterpret_cast<const unsigned char *>(p);
    return quint16(u[0] | (u[1] << 8));
}

quint32 le32(const char *p)
{
    const auto *u = reinterpret_cast<const unsigned char *>(p);
    return quint32(u[0]) | (quint32(u[1]) << 8) | (quint32(u[2]) << 16) | (quint32(u[3]) << 24);
}

quint32 be32(const char *p)
{
    const auto *u = reinterpret_cast<const unsigned char *>(p);
    return (quint32(u[0]) << 24) | (quint32(u[1]) << 16) | (quint32(u[2]) << 8) | quint32(u[3]);
}

quint16 be16(const char *p)
{
    const auto *u = reinterpret_cast<const unsigned char *>(p);
    return quint16((u[0] << 8) | u[1]);
}

void putLe32(char *p, quint32 v)
{
    for (int i = 0; i < 4; ++i)
        p[i] = char((v >> (8 * i)) & 0xFF);
}

void putBe32(char *p, quint32 v)
{
    for (int i = 0; i < 4; ++i)
        p[i] = char((v >> (8 * (3 - i))) & 0xFF);
}

void putBe16(char *p, quint16 v)
{
    p[0] = char(v >> 8);
    p[1] = char(v & 0xFF);
}

Status fileError(Status::Code code, const QString &path, const QString &problem)
{
    return Status(code, QStringLiteral("%1: %2").arg(QFileInfo(path).fileName(), problem));
}

} // namespace plx::dbfio
