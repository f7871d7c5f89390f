// tests/support/fulldisk.cpp: the FoxPro write hook and a SQLite file layer whose writes
// fail while the disk is "full".
#include "tests/support/fulldisk.h"

#include "services/recordsource/dbf/internal/dbftesthooks.h"

#include <sqlite3.h>

#include <atomic>
#include <cerrno>

namespace plx::test {

namespace {

std::atomic<bool> g_full{ false };
sqlite3_vfs *g_real = nullptr;

// Our file: the real layer's file lives right behind it.
struct File
{
    sqlite3_file base;
    sqlite3_file *real;
};

sqlite3_file *real(sqlite3_file *f)
{
    return reinterpret_cast<File *>(f)->real;
}

// Every file method but xWrite, and every method of the layer itself, hands the call on
// to the real layer unchanged.
template<auto Method> struct FileToReal;
template<typename R, typename... A, R (*sqlite3_io_methods::*Method)(sqlite3_file *, A...)>
struct FileToReal<Method>
{
    static R call(sqlite3_file *f, A... args)
    {
        return (real(f)->pMethods->*Method)(real(f), args...);
    }
};

template<auto Method> struct VfsToReal;
template<typename R, typename... A, R (*sqlite3_vfs::*Method)(sqlite3_vfs *, A...)>
struct VfsToReal<Method>
{
    static R call(sqlite3_vfs *, A... args) { return (g_real->*Method)(g_real, args...); }
};

int fileWrite(sqlite3_file *f, const void *buffer, int amount, sqlite3_int64 offset)
{
    if (g_full.load())
        return SQLITE_FULL;
    return real(f)->pMethods->xWrite(real(f), buffer, amount, offset);
}

const sqlite3_io_methods kMethods = {
    3,
    FileToReal<&sqlite3_io_methods::xClose>::call,
    FileToReal<&sqlite3_io_methods::xRead>::call,
    fileWrite,
    FileToReal<&sqlite3_io_methods::xTruncate>::call,
    FileToReal<&sqlite3_io_methods::xSync>::call,
    FileToReal<&sqlite3_io_methods::xFileSize>::call,
    FileToReal<&sqlite3_io_methods::xLock>::call,
    FileToReal<&sqlite3_io_methods::xUnlock>::call,
    FileToReal<&sqlite3_io_methods::xCheckReservedLock>::call,
    FileToReal<&sqlite3_io_methods::xFileControl>::call,
    FileToReal<&sqlite3_io_methods::xSectorSize>::call,
    FileToReal<&sqlite3_io_methods::xDeviceCharacteristics>::call,
    FileToReal<&sqlite3_io_methods::xShmMap>::call,
    FileToReal<&sqlite3_io_methods::xShmLock>::call,
    FileToReal<&sqlite3_io_methods::xShmBarrier>::call,
    FileToReal<&sqlite3_io_methods::xShmUnmap>::call,
    FileToReal<&sqlite3_io_methods::xFetch>::call,
    FileToReal<&sqlite3_io_methods::xUnfetch>::call,
};

int vfsOpen(sqlite3_vfs *, sqlite3_filename name, sqlite3_file *f, int flags, int *outFlags)
{
    auto *ours = reinterpret_cast<File *>(f);
    ours->real = reinterpret_cast<sqlite3_file *>(ours + 1);
    ours->base.pMethods = nullptr;
    const int rc = g_real->xOpen(g_real, name, ours->real, flags, outFlags);
    // SQLite closes only a file whose methods are set: ours when the real one's are.
    if (ours->real->pMethods)
        ours->base.pMethods = &kMethods;
    return rc;
}

} // namespace

void FullDisk::prepare()
{
    static sqlite3_vfs vfs;
    if (g_real)
        return;
    sqlite3_initialize();
    g_real = sqlite3_vfs_find(nullptr);
    vfs.iVersion = 2;
    vfs.szOsFile = int(sizeof(File)) + g_real->szOsFile;
    vfs.mxPathname = g_real->mxPathname;
    vfs.zName = "plx-fulldisk";
    vfs.xOpen = vfsOpen;
    vfs.xDelete = VfsToReal<&sqlite3_vfs::xDelete>::call;
    vfs.xAccess = VfsToReal<&sqlite3_vfs::xAccess>::call;
    vfs.xFullPathname = VfsToReal<&sqlite3_vfs::xFullPathname>::call;
    vfs.xDlOpen = VfsToReal<&sqlite3_vfs::xDlOpen>::call;
    vfs.xDlError = VfsToReal<&sqlite3_vfs::xDlError>::call;
    vfs.xDlSym = VfsToReal<&sqlite3_vfs::xDlSym>::call;
    vfs.xDlClose = VfsToReal<&sqlite3_vfs::xDlClose>::call;
    vfs.xRandomness = VfsToReal<&sqlite3_vfs::xRandomness>::call;
    vfs.xSleep = VfsToReal<&sqlite3_vfs::xSleep>::call;
    vfs.xCurrentTime = VfsToReal<&sqlite3_vfs::xCurrentTime>::call;
    vfs.xGetLastError = VfsToReal<&sqlite3_vfs::xGetLastError>::call;
    vfs.xCurrentTimeInt64 = VfsToReal<&sqlite3_vfs::xCurrentTimeInt64>::call;
    sqlite3_vfs_register(&vfs, 1);
}

FullDisk::FullDisk()
{
    prepare();
    g_full = true;
    dbftest::setFailWrites(ENOSPC);
}

FullDisk::~FullDisk()
{
    g_full = false;
    dbftest::setFailWrites(0);
}

} // namespace plx::test
