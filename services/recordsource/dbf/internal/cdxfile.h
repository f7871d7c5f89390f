// services/recordsource/dbf/internal/cdxfile.h: a FoxPro structural compound index (.CDX),
// read.
//
// The file is 512-byte pages. Its first two pages are the header of the "tag of tags", a
// B-tree whose keys are the tag names and whose record numbers are the offsets of each tag's
// own two-page header. A tag header holds the tag's root page, key length, options, order,
// and its key and FOR expressions; the tag's keys are the leaves of its B-tree, in the byte
// order of their encoded form (see cdxkey.h).
//
// Every offset, count and link is checked against the file before it is followed, and every
// walk is bounded by the pages the file holds, so a damaged file opens or reads as a
// Corrupt Status naming the file and the page, never as a crash, a read past the end or an
// endless loop.
//
// Usage:
//     auto cdx = plx::CdxFile::open(plx::CdxFile::structuralIndexOf(tablePath));
//     if (!cdx.isOk()) return cdx.status();
//     for (const plx::CdxTag &tag : (*cdx)->tags())
//         auto keys = (*cdx)->readKeys(tag, plx::cdxkey::padByte(type));
#pragma once

#include "services/recordsource/dbf/internal/dbftable.h"
#include "services/recordsource/result.h"

#include <QByteArray>
#include <QList>
#include <QString>

#include <memory>

namespace plx {

// One tag: its place in the file and what its header says.
struct CdxTag
{
    QString name; // upper case, as FoxPro stores it
    quint32 headerOffset = 0;
    quint32 rootOffset = 0;
    quint32 freeListOffset = 0; // first free page, 0 (or -1) when none
    int keyLength = 0;
    quint8 options = 0; // the raw option byte (flags below)
    bool unique = false; // 0x01: one key per value
    bool hasFor = false; // 0x08: a FOR expression decides which records have a key
    bool compact = false; // 0x20: leaves are compressed (every file FoxPro 2.x+ writes)
    bool compound = false; // 0x40: the tag lives in a compound (.CDX) file
    bool descending = false; // word at 502 of the header
    QByteArray keyExpression; // as typed in INDEX ON, in the table's code page
    QByteArray forExpression; // empty when the tag has none
};

// One leaf entry of a tag.
struct CdxEntry
{
    QByteArray key; // keyLength bytes
    quint32 recno = 0;
    bool operator==(const CdxEntry &) const = default;
};

class CdxFile
{
public:
    ~CdxFile();
    CdxFile(const CdxFile &) = delete;
    CdxFile &operator=(const CdxFile &) = delete;

    // The structural index beside `tablePath` (same stem, extension .CDX in any letter
    // case); empty when there is none.
    static QString structuralIndexOf(const QString &tablePath);

    // Opens `path` read-only and reads the tag directory and every tag header. NotFound for
    // a missing file; Corrupt for a file shorter than its header, a directory or tag header
    // that points outside the file, an impossible key length or expression position.
    static Result<std::unique_ptr<CdxFile>> open(const QString &path);

    const QString &path() const { return m_path; }
    // In the directory's order (ascending by name).
    const QList<CdxTag> &tags() const { return m_tags; }
    // The tag called `name` (letter case ignored), or nullptr.
    const CdxTag *tag(const QString &name) const;

    // Every key of `tag` in stored order, trailing bytes restored as `pad` (see
    // cdxkey::padByte()). Corrupt, naming the page, for a page outside the file, a page
    // whose counts do not fit it, a page reached twice (a cycle) or a tree deeper than any
    // FoxPro writes.
    Result<QList<CdxEntry>> readKeys(const CdxTag &tag, char pad) const;

private:
    CdxFile();
    Status readDirectory();
    Result<CdxTag> readTagHeader(const QString &name, quint32 offset) const;
    Status readPage(quint32 offset, QByteArray *page) const;
    Status walk(quint32 root, int keyLength, char pad, QList<CdxEntry> *out) const;

    QString m_path;
    NativeFileHandle m_fd;
    qint64 m_size = 0;
    QList<CdxTag> m_tags;
};

} // namespace plx
