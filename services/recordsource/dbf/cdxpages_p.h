// services/recordsource/dbf/cdxpages_p.h: the pages of a compound index opened for writing.
//
// Reads and writes whole 512-byte pages, hands out pages (the head of the free list first,
// else a new page at the end of the file) and takes them back onto the free list. The free
// list starts at the file header's word at 4; a free page holds the offset of the next free
// page in its first four bytes (0 ends the list) and zeros elsewhere.
//
// The file header also carries the update counter (big-endian, at 8) that every writer
// raises so that readers caching pages know to drop them, and, at 480 (in the reserved
// bytes no FoxPro file we have seen uses), this program's mark of
// an update in progress: set before the first page of an update is written, cleared with
// the counter's raise after the last, so that an update cut short (a killed process, a full
// disk) leaves an index known to need rebuilding.
#pragma once

#include "services/recordsource/dbf/dbfio_p.h"
#include "services/recordsource/result.h"

#include <QByteArray>
#include <QString>

namespace plx::cdxpages {

constexpr quint32 kFreeListAt = 4;
constexpr quint32 kCounterAt = 8;
constexpr quint32 kUpdateMarkAt = 480;
// "PLXU": an update of this program has begun and not ended.
constexpr quint32 kUpdateMark = 0x55584C50U;

class PageFile
{
public:
    // `file` stays owned by the caller and must be open for reading and writing.
    PageFile(dbfio::FileHandle file, QString path) : m_file(file), m_path(std::move(path)) { }

    const QString &path() const { return m_path; }
    dbfio::FileHandle handle() const { return m_file; }
    Status read(quint32 offset, char *page) const;
    Status write(quint32 offset, const char *page);
    // Writes a few bytes inside a page (a tag header's root, the file header's words).
    Status writeWord(quint32 offset, quint32 value);
    Result<quint32> readWord(quint32 offset) const;

    // A page to write a new node into.
    Result<quint32> allocate();
    // Puts `offset` at the head of the free list.
    Status release(quint32 offset);

    Result<bool> updateMarked() const;
    Status markUpdate();
    // Raises the counter, then clears the mark.
    Status endUpdate();

private:
    Result<qint64> size() const;
    dbfio::FileHandle m_file;
    QString m_path;
};

} // namespace plx::cdxpages
