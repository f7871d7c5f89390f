// services/recordsource/dbf/dbfio_p.h: small file primitives shared by the table and memo code.
//
// Positioned reads and writes on a native descriptor (no shared file position, so a read
// never disturbs a write), the little- and big-endian integers of the two file formats, and
// the error sentences, which always name the file so that a user can tell which of a
// directory's tables is damaged.
#pragma once

#include "services/recordsource/result.h"

#include <QByteArray>
#include <QString>

namespace plx::dbfio {

// Reads exactly `length` bytes at `offset` (fewer only at end of file: the count is returned).
Result<qint64> readAt(int fd, qint64 offset, char *data, qint64 length, const QString &path);
// Writes all `length` bytes at `offset`.
Status writeAt(int fd, qint64 offset, const char *data, qint64 length, const QString &path);
// fdatasync: the data (not necessarily the inode times) reaches the disk.
Status syncData(int fd, const QString &path);
Result<qint64> fileSize(int fd, const QString &path);

// Opens for reading, or for reading and writing; -1 and the errno in `err` on failure.
int openFile(const QString &path, bool writable, int *err);
void closeFile(int fd);

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
