// services/recordsource/dbf/dbfnative_win.cpp: positioned I/O, stamps and mappings on Windows.
//
// Handles are opened shared for reading, writing and deleting, as FoxPro opens a table with
// SET EXCLUSIVE OFF; reads and writes name their offset in an OVERLAPPED structure on a
// synchronous handle, so no code relies on the handle's file pointer.
#include "services/recordsource/dbf/dbfio_p.h"
#include "services/recordsource/dbf/filemapping_p.h"

#include <QDir>

#include <windows.h>

namespace plx::dbfio {

namespace {

// FILETIME counts 100 ns steps from 1601; the stamps count nanoseconds from 1970.
constexpr qint64 kEpochDifference100ns = 116444736000000000LL;

qint64 nanoseconds(const FILETIME &t)
{
    const qint64 ticks = (qint64(t.dwHighDateTime) << 32) | qint64(t.dwLowDateTime);
    return (ticks - kEpochDifference100ns) * 100;
}

Status osError(const QString &path, const char *what, DWORD err)
{
    return Status(Status::Code::IoError,
                  QStringLiteral("%1: %2").arg(path, QString::fromLatin1(what)), int(err));
}

OVERLAPPED at(qint64 offset)
{
    OVERLAPPED ov = {};
    ov.Offset = DWORD(quint64(offset) & 0xFFFFFFFFu);
    ov.OffsetHigh = DWORD(quint64(offset) >> 32);
    return ov;
}

constexpr qint64 kMaxChunk = qint64(1) << 30;

} // namespace

FileHandle noFile()
{
    return INVALID_HANDLE_VALUE;
}

Result<qint64> readAt(FileHandle file, qint64 offset, char *data, qint64 length,
                      const QString &path)
{
    qint64 done = 0;
    while (done < length) {
        OVERLAPPED ov = at(offset + done);
        DWORD n = 0;
        const DWORD chunk = DWORD(qMin(length - done, kMaxChunk));
        if (!::ReadFile(file, data + done, chunk, &n, &ov)) {
            const DWORD err = ::GetLastError();
            if (err == ERROR_HANDLE_EOF)
                break;
            return osError(path, "cannot read", err);
        }
        if (n == 0)
            break;
        done += n;
    }
    return done;
}

Status writeAt(FileHandle file, qint64 offset, const char *data, qint64 length, const QString &path)
{
    countWrite();
    qint64 done = 0;
    while (done < length) {
        OVERLAPPED ov = at(offset + done);
        DWORD n = 0;
        const DWORD chunk = DWORD(qMin(length - done, kMaxChunk));
        if (!::WriteFile(file, data + done, chunk, &n, &ov))
            return osError(path, "cannot write", ::GetLastError());
        done += n;
    }
    return Status::ok();
}

Status syncData(FileHandle file, const QString &path)
{
    if (!::FlushFileBuffers(file))
        return osError(path, "cannot flush to disk", ::GetLastError());
    return Status::ok();
}

Result<qint64> fileSize(FileHandle file, const QString &path)
{
    LARGE_INTEGER size;
    if (!::GetFileSizeEx(file, &size))
        return osError(path, "cannot read the file size", ::GetLastError());
    return qint64(size.QuadPart);
}

Result<FileStamp> fileStamp(FileHandle file, const QString &path)
{
    BY_HANDLE_FILE_INFORMATION info;
    if (!::GetFileInformationByHandle(file, &info))
        return osError(path, "cannot read the file's status", ::GetLastError());
    FileStamp stamp;
    stamp.device = info.dwVolumeSerialNumber;
    stamp.inode = (quint64(info.nFileIndexHigh) << 32) | info.nFileIndexLow;
    stamp.size = qint64((quint64(info.nFileSizeHigh) << 32) | info.nFileSizeLow);
    stamp.modifiedNs = nanoseconds(info.ftLastWriteTime);
    stamp.changedNs = stamp.modifiedNs; // Windows keeps no separate change time here
    return stamp;
}

qint64 nowNs()
{
    FILETIME now;
    ::GetSystemTimePreciseAsFileTime(&now);
    return nanoseconds(now);
}

FileHandle openFile(const QString &path, bool writable, OpenError *err)
{
    const QString native = QDir::toNativeSeparators(path);
    HANDLE h = ::CreateFileW(reinterpret_cast<const wchar_t *>(native.utf16()),
                             GENERIC_READ | (writable ? GENERIC_WRITE : 0),
                             FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                             OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (h == INVALID_HANDLE_VALUE && err) {
        const DWORD e = ::GetLastError();
        err->code = int(e);
        err->accessDenied = e == ERROR_ACCESS_DENIED || e == ERROR_WRITE_PROTECT;
    }
    return h;
}

void closeFile(FileHandle file)
{
    if (file != INVALID_HANDLE_VALUE)
        ::CloseHandle(file);
}

FileMapping::~FileMapping()
{
    ::UnmapViewOfFile(m_data);
    ::CloseHandle(m_section);
}

Result<std::shared_ptr<const FileMapping>> FileMapping::create(FileHandle file, const QString &path,
                                                               qint64)
{
    // A read-only section cannot reach past the end of the file: map the file as it is now;
    // a table that outgrows it asks for a new one.
    Result<qint64> size = fileSize(file, path);
    if (!size.isOk())
        return size.status();
    HANDLE section = ::CreateFileMappingW(file, nullptr, PAGE_READONLY, 0, 0, nullptr);
    if (!section)
        return fileError(Status::Code::IoError, path,
                         QStringLiteral("cannot map the file (error %1)").arg(::GetLastError()));
    void *view = ::MapViewOfFile(section, FILE_MAP_READ, 0, 0, 0);
    if (!view) {
        const DWORD e = ::GetLastError();
        ::CloseHandle(section);
        return fileError(Status::Code::IoError, path,
                         QStringLiteral("cannot map the file (error %1)").arg(e));
    }
    std::shared_ptr<FileMapping> m(new FileMapping(static_cast<const char *>(view), *size));
    m->m_section = section;
    return std::shared_ptr<const FileMapping>(std::move(m));
}

} // namespace plx::dbfio
