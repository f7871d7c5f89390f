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

int fileClose(sqlite3_file *f)
{
    return real(f)->pMethods->xClose(real(f));
}
int fileRead(sqlite3_file *f, void *buffer, int amount, sqlite3_int64 offset)
{
    return real(f)->pMethods->xRead(real(f), buffer, amount, offset);
}
int fileWrite(sqlite3_file *f, const void *buffer, int amount, sqlite3_int64 offset)
{
    if (g_full.load())
        return SQLITE_FULL;
    return real(f)->pMethods->xWrite(real(f), buffer, amount, offset);
}
int fileTruncate(sqlite3_file *f, sqlite3_int64 size)
{
    return real(f)->pMethods->xTruncate(real(f), size);
}
int fileSync(sqlite3_file *f, int flags)
{
    return real(f)->pMethods->xSync(real(f), flags);
}
int fileSize(sqlite3_file *f, sqlite3_int64 *size)
{
    return real(f)->pMethods->xFileSize(real(f), size);
}
int fileLock(sqlite3_file *f, int level)
{
    return real(f)->pMethods->xLock(real(f), level);
}
int fileUnlock(sqlite3_file *f, int level)
{
    return real(f)->pMethods->xUnlock(real(f), level);
}
int fileCheckReservedLock(sqlite3_file *f, int *out)
{
    return real(f)->pMethods->xCheckReservedLock(real(f), out);
}
int fileControl(sqlite3_file *f, int op, void *arg)
{
    return real(f)->pMethods->xFileControl(real(f), op, arg);
}
int fileSectorSize(sqlite3_file *f)
{
    return real(f)->pMethods->xSectorSize(real(f));
}
int fileDeviceCharacteristics(sqlite3_file *f)
{
    return real(f)->pMethods->xDeviceCharacteristics(real(f));
}
int fileShmMap(sqlite3_file *f, int region, int size, int extend, void volatile **out)
{
    return real(f)->pMethods->xShmMap(real(f), region, size, extend, out);
}
int fileShmLock(sqlite3_file *f, int offset, int n, int flags)
{
    return real(f)->pMethods->xShmLock(real(f), offset, n, flags);
}
void fileShmBarrier(sqlite3_file *f)
{
    real(f)->pMethods->xShmBarrier(real(f));
}
int fileShmUnmap(sqlite3_file *f, int deleteFlag)
{
    return real(f)->pMethods->xShmUnmap(real(f), deleteFlag);
}
int fileFetch(sqlite3_file *f, sqlite3_int64 offset, int amount, void **out)
{
    return real(f)->pMethods->xFetch(real(f), offset, amount, out);
}
int fileUnfetch(sqlite3_file *f, sqlite3_int64 offset, void *p)
{
    return real(f)->pMethods->xUnfetch(real(f), offset, p);
}

const sqlite3_io_methods kMethods = {
    3,
    fileClose,
    fileRead,
    fileWrite,
    fileTruncate,
    fileSync,
    fileSize,
    fileLock,
    fileUnlock,
    fileCheckReservedLock,
    fileControl,
    fileSectorSize,
    fileDeviceCharacteristics,
    fileShmMap,
    fileShmLock,
    fileShmBarrier,
    fileShmUnmap,
    fileFetch,
    fileUnfetch,
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
int vfsDelete(sqlite3_vfs *, const char *name, int syncDir)
{
    return g_real->xDelete(g_real, name, syncDir);
}
int vfsAccess(sqlite3_vfs *, const char *name, int flags, int *out)
{
    return g_real->xAccess(g_real, name, flags, out);
}
int vfsFullPathname(sqlite3_vfs *, const char *name, int size, char *out)
{
    return g_real->xFullPathname(g_real, name, size, out);
}
void *vfsDlOpen(sqlite3_vfs *, const char *name)
{
    return g_real->xDlOpen(g_real, name);
}
void vfsDlError(sqlite3_vfs *, int size, char *out)
{
    g_real->xDlError(g_real, size, out);
}
void (*vfsDlSym(sqlite3_vfs *, void *handle, const char *symbol))(void)
{
    return g_real->xDlSym(g_real, handle, symbol);
}
void vfsDlClose(sqlite3_vfs *, void *handle)
{
    g_real->xDlClose(g_real, handle);
}
int vfsRandomness(sqlite3_vfs *, int size, char *out)
{
    return g_real->xRandomness(g_real, size, out);
}
int vfsSleep(sqlite3_vfs *, int microseconds)
{
    return g_real->xSleep(g_real, microseconds);
}
int vfsCurrentTime(sqlite3_vfs *, double *out)
{
    return g_real->xCurrentTime(g_real, out);
}
int vfsGetLastError(sqlite3_vfs *, int size, char *out)
{
    return g_real->xGetLastError(g_real, size, out);
}
int vfsCurrentTimeInt64(sqlite3_vfs *, sqlite3_int64 *out)
{
    return g_real->xCurrentTimeInt64(g_real, out);
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
    vfs.xDelete = vfsDelete;
    vfs.xAccess = vfsAccess;
    vfs.xFullPathname = vfsFullPathname;
    vfs.xDlOpen = vfsDlOpen;
    vfs.xDlError = vfsDlError;
    vfs.xDlSym = vfsDlSym;
    vfs.xDlClose = vfsDlClose;
    vfs.xRandomness = vfsRandomness;
    vfs.xSleep = vfsSleep;
    vfs.xCurrentTime = vfsCurrentTime;
    vfs.xGetLastError = vfsGetLastError;
    vfs.xCurrentTimeInt64 = vfsCurrentTimeInt64;
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
