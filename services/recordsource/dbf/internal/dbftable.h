// services/recordsource/dbf/internal/dbftable.h: one FoxPro 2.x table file (.DBF) with its memo
// file.
//
// The file layer of the FoxPro back end. It opens a .DBF (and its .FPT or .DBT memo file),
// maps it read-only so that a scan of a million records touches no heap, decodes and
// encodes field values in the table's code page, and writes records, appends and deletion
// flags the way FoxPro 2.6 does, so that FoxPro, Harbour and Clipper programs sharing the
// files keep working: record written before the header count, end-of-file mark 0x1A,
// last-update date as year % 100, memo blocks appended at the next free block or reused in
// place, locks at FoxPro's byte offsets (both locking schemes, see lockRecord()).
//
// Version bytes 0x03, 0xF5 (FPT memo) and 0x83 (dBASE III DBT memo) are read and written.
// Visual FoxPro (0x30, 0x31, 0x32) and dBASE IV memo tables (0x8B) are read only. A table
// with a structural .CDX index is written only when every tag can be kept up to date (see
// cdxindex.h): each write then updates every tag under the index lock, and a table whose
// index cannot be maintained (a tag this program cannot evaluate, a damaged file) is read
// only, because writing it would leave the index stale for the programs that trust it.
// Every other version byte is refused on open.
//
// Usage:
//     auto table = plx::DbfTable::open(QStringLiteral("/data/CUSTOMER.DBF"),
//                                      plx::DbfTable::OpenMode::ReadWrite);
//     if (!table.isOk()) return table.status();
//     int name = (*table)->fieldIndex(QStringLiteral("NAME"));
//     for (quint32 r = 1; r <= (*table)->recordCount(); ++r)
//         if (!(*table)->isDeleted(r) && (*table)->rawText(r, name).startsWith("SM")) ...
//     auto added = (*table)->appendRecord({QStringLiteral("SMITH"), 42, QDate::currentDate()});
//
// Threads: a DbfTable is used by one thread at a time. Several DbfTable objects on the same
// file, in one process or in several, exclude each other through the locks.
#pragma once

#include "services/recordsource/internal/filelock.h"
#include "services/recordsource/recordsource.h"
#include "services/recordsource/result.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QDate>
#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <functional>
#include <memory>

namespace plx {

// One field descriptor.
struct DbfField
{
    QString name; // upper case as stored, at most 10 characters
    char type = 'C'; // C N F D L M G P, or a Visual FoxPro letter (I B Y T V Q W) when reading
    int length = 0; // bytes in the record; Clipper's wide C (high byte in decimals) resolved
    int decimals = 0; // digits behind the point for N and F; 0 for a wide C
    int offset = 0; // from the start of the record; the first field is at 1 (after the flag)
    quint8 flags = 0; // Visual FoxPro field flags (0x02 nullable, 0x04 binary); 0 otherwise
    int nullBit = -1; // bit of the field in Visual FoxPro's _NullFlags column; -1 when none

    // The record-source description: C -> Text (size = length), N/F -> Numeric, D -> Date,
    // L -> Boolean, M -> Memo, G/P/Q/W -> Binary, I -> Integer, B -> Double, Y -> Numeric
    // (4 decimals), T -> DateTime, V -> Text.
    FieldInfo info() const;
};

enum class DbfMemoKind {
    None, // no memo fields
    Fpt, // FoxPro .FPT: big-endian header, typed blocks
    Dbt3, // dBASE III .DBT: 512-byte blocks, text ended by 0x1A
    Dbt4, // dBASE IV .DBT (read only)
};

// Which byte offsets FoxPro locks for this table (see lockRecord()).
enum class DbfLockScheme {
    FoxPro2, // no structural CDX, not Visual FoxPro: 0x40000000 + the record's file offset
    Extended, // structural CDX or Visual FoxPro: 0x7FFFFFFE - recno
};

// The header as read at open (recordCount refreshed by refreshCount()).
struct DbfHeader
{
    quint8 version = 0; // byte 0
    QDate lastUpdate; // bytes 1-3, year read as 1900+yy for yy >= 100 or yy >= 80
    quint32 headerCount = 0; // record count stored in the header
    quint32 physicalCount = 0; // whole records the file holds: (size - headerLength) / recordLength
    quint16 headerLength = 0; // offset of the first record
    quint16 recordLength = 0; // including the delete flag
    quint8 tableFlags = 0; // byte 28: 0x01 structural CDX, 0x02 memo (VFP), 0x04 DBC
    quint8 codePageMark = 0; // byte 29; 0 when unmarked
    int codePage = 1252; // the code page text is decoded with (mark, override or 1252)
    DbfMemoKind memoKind = DbfMemoKind::None;
    bool structuralIndex = false; // tableFlags & 0x01
    bool visualFoxPro = false; // version 0x30, 0x31 or 0x32
};

class DbfMemoFile;
class CdxIndex;
struct CdxTagDefinition;
namespace dbfio {
class FileMapping;
}

// What anything derived from a table's contents (the ranks of a sort, say) depends on: the
// file's identity, size and times, the records counted, and the process's write counter.
// Two equal stamps mean nothing was written in between, except by another program so soon
// after the previous write that the file system's clock did not move; `settled` says the last
// write is old enough (a few seconds, above the coarsest file-time granularity of the file
// systems a share may use) for that to be ruled out.
struct DbfFileStamp
{
    quint64 device = 0;
    quint64 inode = 0;
    qint64 size = 0;
    qint64 modifiedNs = 0; // nanoseconds of the file system's clock
    qint64 changedNs = 0;
    bool operator==(const DbfFileStamp &) const = default;
};

struct DbfChangeStamp
{
    DbfFileStamp file;
    quint64 writeEpoch = 0;
    quint32 count = 0;
    bool settled = false;
    bool sameFile(const DbfChangeStamp &o) const
    {
        return file.device == o.file.device && file.inode == o.file.inode;
    }
    bool sameContents(const DbfChangeStamp &o) const
    {
        return file == o.file && writeEpoch == o.writeEpoch && count == o.count;
    }
};

class DbfTable
{
public:
    enum class OpenMode { ReadOnly, ReadWrite };

    ~DbfTable();
    DbfTable(const DbfTable &) = delete;
    DbfTable &operator=(const DbfTable &) = delete;

    // Opens `path` (the memo file is found beside it, letter case ignored). `codePage` 0 means
    // "from the header's mark, 1252 when unmarked or unknown"; any other supported code page
    // overrides an unmarked or unknown mark (a known mark always wins). Errors, each starting
    // with the file name: NotFound for a missing file; NotSupported for a version byte or
    // field type this layer cannot read (the message names the byte); Corrupt for a header
    // that contradicts itself or the file (header length, record length, no fields); IoError;
    // InvalidArgument for an unsupported `codePage`.
    // ReadWrite on a table that cannot be written opens it anyway: writable() says why writes
    // will be refused. A truncated file opens with the records it holds.
    static Result<std::unique_ptr<DbfTable>>
    open(const QString &path, OpenMode mode = OpenMode::ReadWrite, int codePage = 0);

    // Creates a new empty table (and its memo file when a field is M, G or P) and opens it
    // read-write. `version` 0 picks 0xF5 with memo fields, else 0x03; 0x83 writes a dBASE III
    // .DBT instead of an .FPT. Field offsets are computed; names are upper-cased. Refuses
    // (InvalidArgument) an existing file, a bad name, type or length, and a code page without
    // a mark. Memo files are created with 64-byte blocks, as FoxPro's default SET BLOCKSIZE.
    static Result<std::unique_ptr<DbfTable>> create(const QString &path,
                                                    const QList<DbfField> &fieldList,
                                                    quint8 version = 0, int codePage = 1252);

    const QString &path() const { return m_path; }
    const DbfHeader &header() const { return m_header; }
    // The fields in table order. Hidden Visual FoxPro system columns (_NullFlags) are not
    // listed.
    const QList<DbfField> &fields() const { return m_fields; }
    const QList<FieldInfo> &fieldInfos() const { return m_infos; }
    // Index of a field by name, case-insensitive; -1 when there is none.
    int fieldIndex(const QString &name) const;
    int codePage() const { return m_header.codePage; }
    DbfLockScheme lockScheme() const { return m_scheme; }
    // Problems found at open that did not stop it (structural-CDX flag without a .CDX file,
    // header count larger than the file, missing memo file, ...), one sentence each.
    const QStringList &warnings() const { return m_warnings; }

    // Ok when writes are allowed; otherwise NotSupported (or the open mode's InvalidArgument)
    // with the sentence that every write call returns, e.g. why a CDX table is read only.
    Status writable() const { return m_writable; }
    bool isWritable() const { return m_writable.isOk(); }
    // The same reason in a few words for a status bar ("the file is write-protected", "the
    // table has an index this program cannot keep up to date (CALLS.CDX)"); empty when
    // writes are allowed.
    const QString &readOnlyReason() const { return m_readOnlyReason; }

    // Records usable now: min(header count, records physically in the file), as of open or
    // the last refreshCount()/appendRecord(). Record numbers run 1..recordCount().
    quint32 recordCount() const { return m_count; }
    // Re-reads the header count and the file size (another program may have appended) and
    // remaps the file when it grew. Returns the new recordCount().
    Result<quint32> refreshCount();

    // ---- fast raw access (no allocation; valid until the next refreshCount/append) ----

    // The record's bytes (recordLength of them, the delete flag first); nullptr when `recno`
    // is outside 1..recordCount().
    const char *recordBytes(quint32 recno) const
    {
        if (recno == 0 || recno > m_count)
            return nullptr;
        return m_map + m_header.headerLength + qsizetype(recno - 1) * m_header.recordLength;
    }
    // True when the delete flag is '*'; any other byte counts as live, as FoxPro reads it.
    bool isDeleted(quint32 recno) const
    {
        const char *rec = recordBytes(recno);
        return rec && rec[0] == '*';
    }
    // The field's stored bytes as stored, blank padded (fields()[field].length of them), or
    // nullptr when out of range. Padded C values compare with memcmp in the order FoxPro's
    // index keys (also blank padded) sort in, with no trimming per comparison.
    const char *fieldBytes(quint32 recno, int field) const
    {
        const char *rec = recordBytes(recno);
        if (!rec || field < 0 || field >= m_fields.size())
            return nullptr;
        return rec + m_fields[field].offset;
    }
    // The field's stored bytes with trailing blanks and NULs removed (C, N, D, L...): the
    // comparator-friendly form of a C value in code-page byte order. Empty when out of range.
    QByteArrayView rawText(quint32 recno, int field) const
    {
        const char *rec = recordBytes(recno);
        if (!rec || field < 0 || field >= m_fields.size())
            return {};
        const char *p = rec + m_fields[field].offset;
        qsizetype n = m_fields[field].length;
        while (n > 0 && (p[n - 1] == ' ' || p[n - 1] == '\0'))
            --n;
        return QByteArrayView(p, n);
    }

    // Passes over every record in record order, handing `visit` runs of consecutive records:
    // (first record number, bytes of `count` records one recordLength apart). The bytes are
    // valid during the call only. Normally that is one run straight from the mapping; while
    // the mapping of a large file is still being entered, runs of plain reads, which cost a
    // copy but no page faults. `visit` returns false to stop early.
    using RecordRuns = std::function<bool(quint32 first, const char *records, quint32 count)>;
    Status scanRecords(const RecordRuns &visit) const;

    // ---- decoded values ----

    // One field of one record. Null (an invalid QVariant) for blank N/F/D/L/T, for empty
    // G/P/W memos and for a Visual FoxPro field whose null flag is set. C/V -> QString
    // (trailing blanks removed; blank = empty string), N/F -> qint64 when the field has no
    // decimals and the value fits, else double; D -> QDate; L -> bool; M -> QString (empty
    // when blank); G/P/Q/W -> QByteArray; I -> int; B -> double; Y -> double; T -> QDateTime.
    // NotFound for a bad record or field number; Corrupt (naming the file)
    // for a memo pointer past the end of the memo file or a missing memo file.
    Result<QVariant> value(quint32 recno, int field) const;
    // All fields of a record, in field order.
    Result<QVariantList> record(quint32 recno) const;
    // Code-page conversions of this table.
    QString decode(QByteArrayView bytes) const;
    // Fails (InvalidArgument) when a character has no code in the table's code page.
    Result<QByteArray> encode(const QString &text) const;

    // ---- writing (each refused with writable() when the table is read only) ----

    // Replaces the first values.size() fields of record `recno` (values in field order, Null
    // = blank; fields past the end of `values` keep their contents). The record
    // lock is taken for the write when this object does not hold it already (Locked when
    // someone else does) and released afterwards; a lock held through lockRecord() stays.
    // A memo whose text is unchanged keeps its block; a changed one is rewritten in place when
    // it fits its old blocks, else appended. InvalidArgument for a value the field cannot
    // hold (text longer than the field, number too wide, unencodable character, wrong count).
    Status writeRecord(quint32 recno, const QVariantList &values);
    // Appends a record as FoxPro does: header lock, count from header and file size, memo
    // blocks first, record + 0x1A in one write, then the header count and date. Missing
    // trailing values are blank. Returns the new record number.
    Result<quint32> appendRecord(const QVariantList &values);
    // Sets or clears the '*' flag (only byte 0 of the record is written), under the record
    // lock as writeRecord().
    Status setDeleted(quint32 recno, bool deleted);
    // When true (the default) every write is followed by fdatasync before locks are released.
    void setDurable(bool durable) { m_durable = durable; }
    // Makes the writes made so far reach the disk, memo blocks first, so a batch written
    // without durability ends as safely as one written record by record.
    Status sync();

    // ---- locks (FoxPro's byte offsets, open-file-description locks) ----
    //
    // A record lock takes the byte of both schemes (0x40000000 + headerLength +
    // (recno-1) * recordLength and 0x7FFFFFFE - recno), so FoxPro and Harbour processes that
    // chose either scheme see it; the header lock takes 0x40000000 and 0x7FFFFFFE.

    // Tries once: Ok, or Locked when anyone else (another process or another DbfTable of this
    // process) holds it. Locking a record this object already holds succeeds.
    Status lockRecord(quint32 recno);
    Status unlockRecord(quint32 recno);
    bool holdsRecordLock(quint32 recno) const { return m_recordLocks.contains(recno); }
    // Retries for up to `timeoutMs` (then Locked); nests within this object.
    Status lockHeader(int timeoutMs = 5000);
    // How long appendRecord() waits for the header lock (FoxPro's SET REPROCESS); 5000 ms.
    void setHeaderLockTimeout(int timeoutMs) { m_headerLockTimeoutMs = timeoutMs; }
    Status unlockHeader();

    // ---- the structural index (.CDX) ----

    // The index kept with the table; nullptr when the table has none, or when it cannot be
    // used (damaged, a tag that cannot be evaluated, left stale on a read-only table).
    // Writable tables keep it up to date on every write: the index lock is taken after the
    // table's locks, the table written first, then every tag whose key changed.
    const CdxIndex *index() const { return m_index.get(); }
    // Rebuilds every tag from the table under the header and index locks.
    Status reindex();
    // Adds `tag` to the structural index, as INDEX ON ... TAG does: a table without one gets
    // a new .CDX beside it and the header's structural-index flag; an existing index is
    // rewritten whole with its tags and the new one, under the header and index locks, and
    // the other objects on the file read the new tags at their next write (the index's
    // update counter moves). InvalidArgument for a tag name in use or a stray .CDX the
    // header does not announce; the table's writable() when it cannot be written.
    Status addIndexTag(const CdxTagDefinition &tag);

    // The header description: version byte, code page, record counts (physical and live),
    // header and record length, and one line per field with type, length and decimals.
    QString infoText() const;

    // The stamp of the file as it is now.
    Result<DbfChangeStamp> changeStamp() const;

    // Tables of one file share one read-only mapping, and the last few mappings outlive their
    // tables so that the next open finds the pages mapped; this lets go of those idle ones.
    static void releaseIdleMappings();

private:
    DbfTable();
    friend class DbfTableOpener;
    Status remap(qint64 fileSize);
    // The counts as the file holds them now: the header's, and the whole records in the file.
    struct FileCounts
    {
        quint64 header = 0;
        quint64 physical = 0;
        qint64 size = 0;
    };
    Result<FileCounts> readCounts() const;
    Status writeHeaderCount(quint32 count);
    Status touchDate();
    // Encodes `values` over the record image `rec`: inline fields first (so a bad value fails
    // before anything is written), then the memo values into `memos` (field, bytes) pairs of
    // memos that changed.
    Status encodeValues(QByteArray &rec, const QVariantList &values,
                        QList<QPair<int, QByteArray>> &memos, bool fresh) const;
    Status writeMemos(QByteArray &rec, const QList<QPair<int, QByteArray>> &memos);
    Status recordLockBytes(quint32 recno, bool lock);
    Status checkWritableRecord(quint32 recno);
    // Another object on the file may have given it its first structural index since this
    // one opened it: before a write, the header's flag is read again and the index opened.
    Status adoptNewIndex();
    Status createStructuralIndex(const CdxTagDefinition &tag);

    QString m_path;
    DbfHeader m_header;
    QList<DbfField> m_fields;
    QList<FieldInfo> m_infos;
    QStringList m_warnings;
    QString m_warningReason; // the short reason of the first warning
    Status m_writable;
    QString m_readOnlyReason;
    DbfLockScheme m_scheme = DbfLockScheme::FoxPro2;
    int m_nullFlagsOffset = -1; // offset of _NullFlags in the record; -1 when none
    int m_nullFlagsLength = 0;
    NativeFileHandle m_fd; // dbfio::noFile() until opened
    std::shared_ptr<const dbfio::FileMapping> m_mapping; // shared with the file's other tables
    const char *m_map = nullptr; // m_mapping->data(), read inline by recordBytes()
    quint32 m_count = 0;
    bool m_durable = true;
    int m_headerLockDepth = 0;
    int m_headerLockTimeoutMs = 5000;
    QSet<quint32> m_recordLocks;
    std::unique_ptr<DbfMemoFile> m_memo;
    std::unique_ptr<CdxIndex> m_index;
};

} // namespace plx
