// tests/support/child/settingslock.cpp: the settingslock role, another program that keeps a
// settings file locked.
//
//   settingslock FILE
// Takes the writers' exclusive lock on byte 0 of "FILE.lock" the way every writer of the
// product takes it, prints "locked" on its own line, and keeps the lock until its standard
// input is closed (or it is killed). Written without the library, so that it holds the lock
// as any other process would, whatever the library under test does.
#include "tests/support/child/roles.h"

#include <QFile>

#include <cstdio>
#include <iostream>
#include <string>

#ifdef Q_OS_WIN
#include <qt_windows.h>
#else
#include <cstring>
#include <fcntl.h>
#include <unistd.h>
#endif

namespace plx::testchild {
namespace {

bool lockForGood(const QString &lockPath)
{
#ifdef Q_OS_WIN
    HANDLE h = CreateFileW(reinterpret_cast<const wchar_t *>(lockPath.utf16()),
                           GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                           nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    OVERLAPPED ov = {};
    return h != INVALID_HANDLE_VALUE && LockFileEx(h, LOCKFILE_EXCLUSIVE_LOCK, 0, 1, 0, &ov);
#else
    // An open-file-description lock on byte 0, waited for; released when the process ends.
    const int fd = ::open(QFile::encodeName(lockPath).constData(), O_RDWR | O_CREAT, 0666);
    struct flock fl;
    std::memset(&fl, 0, sizeof fl);
    fl.l_type = F_WRLCK;
    fl.l_whence = SEEK_SET;
    fl.l_start = 0;
    fl.l_len = 1;
    return fd >= 0 && ::fcntl(fd, F_OFD_SETLKW, &fl) == 0;
#endif
}

} // namespace

int runSettingsLock(const QStringList &args)
{
    if (args.size() != 1)
        return 1;
    if (!lockForGood(args.at(0) + QStringLiteral(".lock")))
        return 2;
    std::printf("locked\n");
    std::fflush(stdout);
    std::string line;
    while (std::getline(std::cin, line)) { }
    return 0;
}

} // namespace plx::testchild
