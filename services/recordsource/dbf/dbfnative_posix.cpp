// services/recordsource/dbf/dbfnative_posix.cpp: positioned I/O, stamps and mappings on
// POSIX systems.
#include "services/recordsource/dbf/dbfio_p.h"
#include "services/recordsource/dbf/internal/dbftesthooks.h"
#include "services/recordsource/dbf/filemapping_p.h"

#include <QFile>

#include <cerrno>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <sys/mman.h>
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

qint64 nanoseconds(const struct timespec &t)
{
    return qint64(t.tv_sec) * 1000000000 + t.tv_nsec;
}

} // namespace

FileHandle noFile()
{
    return -1;
}

Result<qint64> readAt(FileHandle file, qint64 offset, char *data, qint64 length,
                      const QString &path)
{
    qint64 done = 0;
    while (done < length) {
        const ssize_t n = ::pread(file, data + done, size_t(length - done), off_t(offset + done));
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

Status writeAt(FileHandle file, qint64 offset, const char *data, qint64 length, const QString &path)
{
    if (const int injected = dbftest::injectedWriteError(); injected != 0)
        return osError(path, "cannot write", injected);
    countWrite();
    qint64 done = 0;
    while (done < length) {
        const ssize_t n = ::pwrite(file, data + done, size_t(length - done), off_t(offset + done));
        if (n < 0) {
            if (errno == EINTR)
                continue;
            return osError(path, "cannot write", errno);
        }
        done += n;
    }
    return Status::ok();
}

Status syncData(FileHandle file, const QString &path)
{
    if (::fdatasync(file) != 0)
        return osError(path, "cannot flush to disk", errno);
    return Status::ok();
}

Result<qint64> fileSize(FileHandle file, const QString &path)
{
    struct stat st;
    if (::fstat(file, &st) != 0)
        return osError(path, "cannot read the file size", errno);
    return qint64(st.st_size);
}

Result<FileStamp> fileStamp(FileHandle file, const QString &path)
{
    struct stat st;
    if (::fstat(file, &st) != 0)
        return osError(path, "cannot read the file's status", errno);
    FileStamp stamp;
    stamp.device = quint64(st.st_dev);
    stamp.inode = quint64(st.st_ino);
    stamp.size = qint64(st.st_size);
    stamp.modifiedNs = nanoseconds(st.st_mtim);
    stamp.changedNs = nanoseconds(st.st_ctim);
    return stamp;
}

qint64 nowNs()
{
    struct timespec t;
    ::clock_gettime(CLOCK_REALTIME, &t);
    return nanoseconds(t);
}

FileHandle openFile(const QString &path, bool writable, OpenError *err)
{
    const QByteArray native = QFile::encodeName(path);
    int fd;
    do {
        fd = ::open(native.constData(), (writable ? O_RDWR : O_RDONLY) | O_CLOEXEC);
    } while (fd < 0 && errno == EINTR);
    if (fd < 0 && err) {
        err->code = errno;
        err->accessDenied = errno == EACCES || errno == EROFS || errno == EPERM;
    }
    return fd;
}

void closeFile(FileHandle file)
{
    if (file >= 0)
        ::close(file);
}

FileMapping::~FileMapping()
{
    if (m_populator.joinable())
        m_populator.join();
    ::munmap(const_cast<char *>(m_data), size_t(m_length));
}

Result<std::shared_ptr<const FileMapping>> FileMapping::create(FileHandle file, const QString &path,
                                                               qint64 length)
{
    // Mapping beyond the end of the file is allowed; those pages are never touched.
    void *p = ::mmap(nullptr, size_t(length), PROT_READ, MAP_SHARED, file, 0);
    if (p == MAP_FAILED)
        return fileError(Status::Code::IoError, path,
                         QStringLiteral("cannot map the file (error %1)").arg(errno));
    std::shared_ptr<FileMapping> mapping(new FileMapping(static_cast<const char *>(p), length));
#ifdef MADV_POPULATE_READ
    // Every reader passes over the whole table: enter the file's pages in one call instead of
    // a page fault for every few of them; on a thread when that takes a while. Only a hint:
    // older kernels refuse it, and then the pages come in as they are touched.
    constexpr qint64 kPopulateInBackground = qint64(8) << 20;
    Result<qint64> size = fileSize(file, path);
    const qint64 populate = size.isOk() ? qMin(*size, length) : 0;
    if (populate >= kPopulateInBackground) {
        mapping->m_populated.store(false, std::memory_order_release);
        FileMapping *m = mapping.get();
        m->m_populator = std::thread([m, populate] {
            (void)::madvise(const_cast<char *>(m->m_data), size_t(populate), MADV_POPULATE_READ);
            m->m_populated.store(true, std::memory_order_release);
        });
    } else if (populate > 0) {
        (void)::madvise(p, size_t(populate), MADV_POPULATE_READ);
    }
#endif
    return std::shared_ptr<const FileMapping>(std::move(mapping));
}

} // namespace plx::dbfio
