// services/recordsource/dbf/dbfio_p.h: small file primitives shared by the table and memo code.
//
// Positioned reads and writes on a native handle (no shared file position, so a read
// never disturbs a write), the little- and big-endian integers of the two file formats, and
// the error sentences, which always name the file so that a user can tell which of a
// directory's tables is damaged.
#pragma once

#include "services/recordsource/dbf/internal/dbftable.h"
#include "services/recordsource/internal/filelock.h"
#include "services/recordsource/result.h"

#include <QByteArray>
#include <QString>

namespace plx::dbfio {

using FileHandle = NativeFileHandle;

// The handle value of no open file.
FileHandle noFile();
inline bool isOpen(FileHandle h)
{
    return h != noFile();
}

// Reads exactly `length` bytes at `offset` (fewer only at end of file: the count is returned).
Result<qint64> readAt(FileHandle file, qint64 offset, char *data, qint64 length,
                      const QString &path);
// Writes all `length` bytes at `offset`.
Status writeAt(FileHandle file, qint64 offset, const char *data, qint64 length,
               const QString &path);
// The data (not necessarily the inode times) reaches the disk.
Status syncData(FileHandle file, const QString &path);
Result<qint64> fileSize(FileHandle file, const QString &path);

// Why an open failed: the system's error code, and whether it was a refusal of the access
// asked for (a read-only file or share), after which a read-only open may still succeed.
struct OpenError
{
    int code = 0;
    bool accessDenied = false;
};
// Opens for reading, or for reading and writing, shared with every other program (FoxPro's
// SET EXCLUSIVE OFF); noFile() and the reason in `err` on failure.
FileHandle openFile(const QString &path, bool writable, OpenError *err);
void closeFile(FileHandle file);

// Which file an open handle names and when it last changed, to tell whether anything derived
// from its contents still holds.
using FileStamp = DbfFileStamp;
Result<FileStamp> fileStamp(FileHandle file, const QString &path);
// The wall clock in the same nanoseconds as FileStamp's times.
qint64 nowNs();

// Counts the writes this process has made to any table or memo file. A file's times may not
// move on a write that follows the previous one closely, this counter always does.
quint64 writeEpoch();
// Moves the counter on; writeAt() calls it before it writes, so that a reader who compares the
// counter before and after a pass over the file sees a write that landed in between.
void countWrite();

// The file beside `path` with the same stem and extension `ext` (".fpt"), letter case of
// the extension (and stem) ignored as FoxPro on a case-insensitive share; empty if none.
QString companionFile(const QString &path, const char *ext);

quint16 le16(const char *p);
quint32 le32(const char *p);
quint32 be32(const char *p);
quint16 be16(const char *p);
void putLe32(char *p, quint32 v);
void putBe32(char *p, quint32 v);
void putBe16(char *p, quint16 v);

// "NAME.DBF: problem": the sentence every error of this layer starts with.
Status fileError(Status::Code code, const QString &path, const QString &problem);

} // namespace plx::dbfio
