// services/activitylog.cpp: writing activity-log entries.
#include "services/activitylog.h"

#include "services/cp1252.h"
#include "services/env.h"
#include "services/installdir.h"
#include "services/paths.h"
#include "services/texthelpers.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QFile>
#include <QFileInfo>

#ifdef Q_OS_WIN
#include <windows.h>
#else
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>
#endif

namespace plx {

namespace {

const QString crlf = QStringLiteral("\r\n");

#ifndef Q_OS_WIN
// O_APPEND makes the kernel place each write at the current end of the file, so one
// write() per entry keeps entries of concurrent processes whole.
bool appendBytes(const QString &diskPath, const QByteArray &bytes, QString *error)
{
    const int fd = ::open(QFile::encodeName(diskPath).constData(),
                          O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0666);
    if (fd < 0) {
        if (error)
            *error = QStringLiteral("cannot open %1: %2")
                         .arg(diskPath, QString::fromLocal8Bit(std::strerror(errno)));
        return false;
    }
    qsizetype done = 0;
    while (done < bytes.size()) {
        const ssize_t n = ::write(fd, bytes.constData() + done, size_t(bytes.size() - done));
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0) {
            if (error)
                *error = QStringLiteral("cannot write %1: %2")
                             .arg(diskPath, QString::fromLocal8Bit(std::strerror(errno)));
            ::close(fd);
            return false;
        }
        done += n;
    }
    ::close(fd);
    return true;
}
#else
// FILE_APPEND_DATA without FILE_WRITE_DATA makes every WriteFile land at the end of the
// file, atomically with respect to other appenders, like O_APPEND.
bool appendBytes(const QString &diskPath, const QByteArray &bytes, QString *error)
{
    HANDLE h = CreateFileW(reinterpret_cast<const wchar_t *>(diskPath.utf16()), FILE_APPEND_DATA,
                           FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_ALWAYS,
                           FILE_ATTRIBUTE_NORMAL, nullptr);
    if (h == INVALID_HANDLE_VALUE) {
        if (error)
            *error = QStringLiteral("cannot open %1 (error %2)").arg(diskPath).arg(GetLastError());
        return false;
    }
    DWORD written = 0;
    const BOOL ok = WriteFile(h, bytes.constData(), DWORD(bytes.size()), &written, nullptr);
    if ((!ok || written != DWORD(bytes.size())) && error)
        *error = QStringLiteral("cannot write %1 (error %2)").arg(diskPath).arg(GetLastError());
    CloseHandle(h);
    return ok && written == DWORD(bytes.size());
}
#endif

} // namespace

int componentRevision()
{
    if (!QCoreApplication::instance())
        return 0;
    const QStringList parts = QCoreApplication::applicationVersion().split(QLatin1Char('.'));
    return parts.size() >= 3 ? parts.at(2).toInt() : 0;
}

QString componentName()
{
    if (!QCoreApplication::instance())
        return QString();
    return QFileInfo(QCoreApplication::applicationFilePath()).completeBaseName();
}

QString formatLogEntry(const QString &where, const QString &what, const QDateTime &when)
{
    return QString(20, QLatin1Char('=')) + crlf + when.toString(QStringLiteral("yyyyMMdd hhmmss"))
        + QLatin1Char(' ') + where + crlf + what + crlf + QStringLiteral("PLX ") + componentName()
        + crlf + QStringLiteral("REV ") + QString::number(componentRevision()) + crlf;
}

bool logEntry(const QString &where, const QString &what, Services *services, QString *error)
{
    const QString path =
        setPathName(getHarrowbyDirectoryAny(), QStringLiteral("PLXLogFile.TXT"), false);
    const QByteArray entry = cp1252::encode(formatLogEntry(where, what, clockOf(services).now()));
    if (!appendBytes(toDiskPath(path), entry, error))
        return false; // the caller handles the failure; its own flow decides what runs next
    // The file is closed: give the UI its turn, so a long operation that logs stays alive.
    uiPumpOf(services).processEvents();
    return true;
}

} // namespace plx
