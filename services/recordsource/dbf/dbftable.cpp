// services/recordsource/dbf/dbftable.cpp: opening a table: header, field descriptors, the
// checks FoxPro makes on open, companion files and the read-only mapping of the records.
#include "services/recordsource/dbf/internal/dbftable.h"

#include "services/codepages.h"
#include "services/recordsource/dbf/internal/cdxindex.h"
#include "services/recordsource/dbf/dbfio_p.h"
#include "services/recordsource/dbf/dbfmemo_p.h"
#include "services/recordsource/dbf/internal/dbftesthooks.h"
#include "services/recordsource/dbf/filemapping_p.h"

#include <QFileInfo>

namespace plx {

namespace {

// Room mapped beyond the end of the file, so that appends rarely need a new mapping. Pages
// past the end are never touched: only counted records are read.
constexpr qint64 kMapReserve = qint64(64) << 20;

bool isVfp(quint8 version)
{
    return version == 0x30 || version == 0x31 || version == 0x32;
}

bool isKnownVersion(quint8 version)
{
    return version == 0x03 || version == 0xF5 || version == 0x83 || version == 0x8B
        || isVfp(version);
}

QDate headerDate(const char *h)
{
    const int yy = static_cast<unsigned char>(h[1]);
    const int year = yy >= 100 ? 1900 + yy : (yy < 80 ? 2000 + yy : 1900 + yy);
    return QDate(year, static_cast<unsigned char>(h[2]), static_cast<unsigned char>(h[3]));
}

bool isMemoType(char type, int length)
{
    return type == 'M' || type == 'G' || type == 'P' || type == 'W'
        || (type == 'B' && length == 10); // dBASE binary memo
}

Status corrupt(const QString &path, const QString &problem)
{
    return dbfio::fileError(Status::Code::Corrupt, path, problem);
}

// Checks the field type letters the reader understands and the fixed widths that a decoder
// relies on, so a damaged descriptor can never make a read run past its field.
Status checkFieldType(const QString &path, const DbfField &f, bool vfp)
{
    static const char kFoxPro[] = "CNFDLMGP";
    static const char kVfp[] = "IBYTVQW0";
    const bool known = (f.type != 0 && strchr(kFoxPro, f.type))
        || (f.type != 0 && strchr(kVfp, f.type) && (vfp || f.type == 'B'));
    if (!known)
        return dbfio::fileError(Status::Code::NotSupported, path,
                                QStringLiteral("field %1 has the type '%2', which is not supported")
                                    .arg(f.name, QChar::fromLatin1(f.type)));
    const bool binary8 = vfp && (f.type == 'B' || f.type == 'Y' || f.type == 'T');
    if ((f.type == 'I' && f.length != 4) || (binary8 && f.length != 8))
        return corrupt(path,
                       QStringLiteral("field %1 of type %2 has the length %3")
                           .arg(f.name, QChar::fromLatin1(f.type))
                           .arg(f.length));
    return Status::ok();
}

// True when the bytes at `pos` of the file look like one more field descriptor (a name
// starting with a letter, a known type letter): then the header length is too short.
bool descriptorFollows(dbfio::FileHandle fd, qint64 pos)
{
    char d[32];
    auto got = dbfio::readAt(fd, pos, d, 32, QString());
    if (!got.isOk() || *got < 32)
        return false;
    const bool nameStart = (d[0] >= 'A' && d[0] <= 'Z') || (d[0] >= 'a' && d[0] <= 'z');
    return nameStart && d[11] != 0 && strchr("CNFDLMGPIBYTVQW", d[11]);
}

} // namespace

// Builds a DbfTable step by step; a friend so that DbfTable keeps no half-open state public.
class DbfTableOpener
{
public:
    static Status readHeader(DbfTable &t, qint64 size);
    static Status readFields(DbfTable &t, const QByteArray &header);
    static void chooseCodePage(DbfTable &t, int codePage);
    static void openCompanions(DbfTable &t, bool writable);
    static void decideWritable(DbfTable &t, bool writable, bool openedWritable);
    static void openIndex(DbfTable &t);
    // Records a problem that leaves the table readable but not writable: the sentence for
    // warnings() and the short reason for a status bar.
    static void readOnlyBecause(DbfTable &t, const QString &warning, const QString &reason)
    {
        t.m_warnings << warning;
        if (t.m_warningReason.isEmpty())
            t.m_warningReason = reason;
    }
};

Status DbfTableOpener::readHeader(DbfTable &t, qint64 size)
{
    if (size < 32)
        return corrupt(t.m_path,
                       QStringLiteral("the file is too short (%1 bytes) to be a table").arg(size));
    char h[32];
    auto got = dbfio::readAt(t.m_fd, 0, h, 32, t.m_path);
    if (!got.isOk())
        return got.status();
    DbfHeader &hd = t.m_header;
    hd.version = static_cast<quint8>(h[0]);
    if (!isKnownVersion(hd.version))
        return dbfio::fileError(
            Status::Code::NotSupported, t.m_path,
            QStringLiteral("version byte 0x%1 is not a FoxPro or dBASE III table this program "
                           "can open")
                .arg(
                    QString::number(hd.version, 16).toUpper().rightJustified(2, QLatin1Char('0'))));
    hd.lastUpdate = headerDate(h);
    hd.headerCount = dbfio::le32(h + 4);
    hd.headerLength = dbfio::le16(h + 8);
    hd.recordLength = dbfio::le16(h + 10);
    hd.tableFlags = static_cast<quint8>(h[28]);
    hd.codePageMark = static_cast<quint8>(h[29]);
    hd.visualFoxPro = isVfp(hd.version);
    hd.structuralIndex = (hd.tableFlags & 0x01) != 0;
    if (hd.recordLength <= 1)
        return corrupt(t.m_path,
                       QStringLiteral("the record length %1 is too small").arg(hd.recordLength));
    if (hd.headerLength < 32 + 32 + 1)
        return corrupt(
            t.m_path,
            QStringLiteral("the header length %1 leaves no room for fields").arg(hd.headerLength));
    if (hd.headerLength > size)
        return corrupt(t.m_path,
                       QStringLiteral("the header length %1 is larger than the file "
                                      "(%2 bytes)")
                           .arg(hd.headerLength)
                           .arg(size));
    QByteArray header(hd.headerLength, Qt::Uninitialized);
    got = dbfio::readAt(t.m_fd, 0, header.data(), header.size(), t.m_path);
    if (!got.isOk())
        return got.status();
    return readFields(t, header);
}

Status DbfTableOpener::readFields(DbfTable &t, const QByteArray &header)
{
    const DbfHeader &hd = t.m_header;
    int pos = 32;
    int offset = 1;
    int nullBit = 0;
    bool terminated = false;
    for (; pos + 32 <= header.size(); pos += 32) {
        const char *d = header.constData() + pos;
        // FoxPro ends the descriptors with 0x0D; some files carry 0x0A instead.
        if (d[0] == 0x0D || d[0] == 0x0A || d[0] == 0x00) {
            terminated = true;
            break;
        }
        DbfField f;
        const char *nul = static_cast<const char *>(memchr(d, 0, 11));
        f.name = QString::fromLatin1(d, nul ? nul - d : 11).trimmed(); // bytes after NUL ignored
        f.type = d[11];
        f.length = static_cast<unsigned char>(d[16]);
        f.decimals = static_cast<unsigned char>(d[17]);
        if (f.type == 'C' && !hd.visualFoxPro) { // Clipper's wide character fields
            f.length += f.decimals * 256;
            f.decimals = 0;
        }
        f.flags = hd.visualFoxPro ? static_cast<quint8>(d[18]) : 0;
        f.offset = offset;
        offset += f.length;
        Status s = checkFieldType(t.m_path, f, hd.visualFoxPro);
        if (!s.isOk())
            return s;
        if (f.type == '0' || (f.flags & 0x01)) { // _NullFlags: hidden system column
            t.m_nullFlagsOffset = f.offset;
            t.m_nullFlagsLength = f.length;
            continue;
        }
        // A varchar's "shorter than its slot" bit comes before its null bit, in field order.
        if (f.type == 'V' || f.type == 'Q')
            ++nullBit;
        if (f.flags & 0x02)
            f.nullBit = nullBit++;
        if (f.name.isEmpty())
            return corrupt(t.m_path,
                           QStringLiteral("field %1 has no name").arg(t.m_fields.size() + 1));
        t.m_fields.append(f);
    }
    if (!terminated && pos < header.size())
        terminated = header[pos] == 0x0D || header[pos] == 0x0A;
    else if (!terminated)
        terminated = !descriptorFollows(t.m_fd, pos); // tolerated: a header without terminator
    if (t.m_fields.isEmpty())
        return corrupt(t.m_path, QStringLiteral("the header describes no fields"));
    if (!terminated)
        return corrupt(t.m_path,
                       QStringLiteral("the header length %1 ends inside the field "
                                      "descriptors")
                           .arg(hd.headerLength));
    if (offset > hd.recordLength)
        return corrupt(t.m_path,
                       QStringLiteral("the fields need %1 bytes but the record length "
                                      "is %2")
                           .arg(offset)
                           .arg(hd.recordLength));
    if (offset < hd.recordLength)
        readOnlyBecause(t,
                        QStringLiteral("%1: the fields use %2 of the %3 bytes of a record; the "
                                       "table is read only")
                            .arg(QFileInfo(t.m_path).fileName())
                            .arg(offset)
                            .arg(hd.recordLength),
                        QStringLiteral("the table's records hold bytes no field describes"));
    if (t.m_nullFlagsOffset >= 0 && t.m_nullFlagsLength * 8 < nullBit)
        t.m_nullFlagsOffset = -1; // too short to hold the bits: ignore rather than misread
    for (const DbfField &f : std::as_const(t.m_fields))
        t.m_infos.append(f.info());
    return Status::ok();
}

void DbfTableOpener::chooseCodePage(DbfTable &t, int codePage)
{
    const int marked = codepages::codePageForMark(t.m_header.codePageMark);
    if (marked && codepages::isSupported(marked))
        t.m_header.codePage = marked;
    else
        t.m_header.codePage = codePage ? codePage : 1252;
    if (t.m_header.codePageMark && !marked)
        readOnlyBecause(t,
                        QStringLiteral("%1: unknown code page mark 0x%2; text is read as code "
                                       "page %3")
                            .arg(QFileInfo(t.m_path).fileName())
                            .arg(t.m_header.codePageMark, 2, 16, QLatin1Char('0'))
                            .arg(t.m_header.codePage),
                        QStringLiteral("the table's code page is unknown"));
}

void DbfTableOpener::openCompanions(DbfTable &t, bool writable)
{
    DbfHeader &hd = t.m_header;
    const QString name = QFileInfo(t.m_path).fileName();
    bool hasMemo = false;
    for (const DbfField &f : std::as_const(t.m_fields))
        hasMemo = hasMemo || isMemoType(f.type, f.length);
    if (hasMemo) {
        hd.memoKind = hd.version == 0x83 ? DbfMemoKind::Dbt3
            : hd.version == 0x8B         ? DbfMemoKind::Dbt4
                                         : DbfMemoKind::Fpt;
        const QString memoPath =
            dbfio::companionFile(t.m_path, hd.memoKind == DbfMemoKind::Fpt ? ".fpt" : ".dbt");
        if (memoPath.isEmpty()) {
            readOnlyBecause(t,
                            QStringLiteral("%1: the memo file is missing; memo fields cannot be "
                                           "read and the table is read only")
                                .arg(name),
                            QStringLiteral("the memo file is missing"));
        } else {
            const QString memoName = QFileInfo(memoPath).fileName();
            auto memo = DbfMemoFile::open(memoPath, hd.memoKind, writable);
            if (!memo.isOk() && writable) {
                memo = DbfMemoFile::open(memoPath, hd.memoKind, false);
                if (memo.isOk())
                    readOnlyBecause(
                        t,
                        QStringLiteral("%1: the memo file is write-protected; the "
                                       "table is read only")
                            .arg(name),
                        QStringLiteral("the memo file is write-protected (%1)").arg(memoName));
            }
            if (memo.isOk())
                t.m_memo = std::move(*memo);
            else
                readOnlyBecause(t, memo.status().message(),
                                QStringLiteral("the memo file cannot be read (%1)").arg(memoName));
        }
    }
    if (hd.structuralIndex && dbfio::companionFile(t.m_path, ".cdx").isEmpty())
        readOnlyBecause(t,
                        QStringLiteral("%1: the header announces a structural index but the .CDX "
                                       "file is missing; the table is read only")
                            .arg(name),
                        QStringLiteral("the table's index file is missing (%1.CDX)")
                            .arg(QFileInfo(t.m_path).completeBaseName()));
}

void DbfTableOpener::decideWritable(DbfTable &t, bool writable, bool openedWritable)
{
    const DbfHeader &hd = t.m_header;
    const QString name = QFileInfo(t.m_path).fileName();
    const QString version = QStringLiteral("0x%1").arg(
        QString::number(hd.version, 16).toUpper().rightJustified(2, QLatin1Char('0')));
    QString reason;
    QString shortReason;
    if (!writable) {
        reason = QStringLiteral("%1 is open read only").arg(name);
        shortReason = QStringLiteral("the table was opened read-only");
    } else if (!openedWritable) {
        reason = QStringLiteral("%1 is write-protected").arg(name);
        shortReason = QStringLiteral("the file is write-protected");
    } else if (hd.visualFoxPro) {
        reason = QStringLiteral("%1 is a Visual FoxPro table (version byte %2); it is read only "
                                "because writing it needs Visual FoxPro's null flags, "
                                "autoincrement counters and index formats")
                     .arg(name, version);
        shortReason = QStringLiteral("the table is in Visual FoxPro's format, which this program "
                                     "only reads");
    } else if (hd.version == 0x8B) {
        reason = QStringLiteral("%1 is a dBASE IV table with memo (version byte %2); it is read "
                                "only")
                     .arg(name, version);
        shortReason = QStringLiteral("the table is in dBASE IV's format with memos, which this "
                                     "program only reads");
    } else if (!t.m_warnings.isEmpty()) {
        reason = t.m_warnings.first();
        shortReason = t.m_warningReason;
    }
    if (!reason.isEmpty())
        t.m_writable = Status(Status::Code::NotSupported, reason);
    t.m_readOnlyReason = shortReason;
}

// A writable table keeps its index up to date or is not written at all: an index that cannot
// be maintained makes the table read only, saying which tag and why. A read-only table keeps
// a sound index for seeks only. An index an update left marked as cut short is rebuilt
// before the first write.
void DbfTableOpener::openIndex(DbfTable &t)
{
    if (!t.m_header.structuralIndex)
        return;
    const QString cdxPath = dbfio::companionFile(t.m_path, ".cdx");
    if (cdxPath.isEmpty())
        return;
    const bool canWrite = t.isWritable();
    Result<std::unique_ptr<CdxIndex>> index = CdxIndex::open(cdxPath, t, canWrite);
    Status problem = index.status();
    if (index.isOk()) {
        const Result<bool> stale = (*index)->stale();
        problem = stale.status();
        if (stale.isOk() && *stale && !canWrite)
            return;
        if (problem.isOk()) {
            t.m_index = std::move(*index);
            // Rebuilt from the table as it is now, under the header lock (DbfTable::reindex).
            if (*stale)
                problem = t.reindex();
            if (problem.isOk())
                return;
            t.m_index.reset();
        }
    }
    if (!canWrite)
        return;
    const QString name = QFileInfo(t.m_path).fileName();
    const QString reason = problem.code() == Status::Code::NotSupported
        ? problem.message()
        : QStringLiteral("%1 has a structural index (.CDX) that cannot be read (%2); writing "
                         "would leave the index stale for FoxPro and the other programs that "
                         "trust it, so the table is read only")
              .arg(name, problem.message());
    t.m_writable = Status(Status::Code::NotSupported, reason);
    t.m_readOnlyReason = QStringLiteral("the table has an index this program cannot keep up to "
                                        "date (%1)")
                             .arg(QFileInfo(cdxPath).fileName());
}

Status DbfTable::adoptNewIndex()
{
    if (!isWritable())
        return m_writable;
    if (m_index || m_header.structuralIndex)
        return Status::ok();
    char flags = 0;
    if (Result<qint64> got = dbfio::readAt(m_fd, 28, &flags, 1, m_path); !got.isOk())
        return got.status();
    if ((quint8(flags) & 0x01) == 0)
        return Status::ok();
    m_header.tableFlags = quint8(flags);
    m_header.structuralIndex = true;
    m_scheme = DbfLockScheme::Extended;
    DbfTableOpener::openIndex(*this);
    return m_writable;
}

DbfTable::DbfTable() : m_fd(dbfio::noFile()) { }

DbfTable::~DbfTable()
{
    dbfio::closeFile(m_fd);
}

Result<std::unique_ptr<DbfTable>> DbfTable::open(const QString &path, OpenMode mode, int codePage)
{
    std::unique_ptr<DbfTable> t(new DbfTable);
    t->m_path = path;
    if (!QFileInfo(path).isFile())
        return dbfio::fileError(Status::Code::NotFound, path,
                                QStringLiteral("the table file does not exist"));
    if (codePage != 0 && !codepages::isSupported(codePage))
        return Status(Status::Code::InvalidArgument,
                      QStringLiteral("code page %1 is not supported").arg(codePage));
    const bool wantWrite = mode == OpenMode::ReadWrite;
    dbfio::OpenError err;
    t->m_fd = dbfio::openFile(path, wantWrite, &err);
    bool openedWritable = wantWrite;
    if (!dbfio::isOpen(t->m_fd) && wantWrite && err.accessDenied) {
        t->m_fd = dbfio::openFile(path, false, &err);
        openedWritable = false;
    }
    if (!dbfio::isOpen(t->m_fd))
        return dbfio::fileError(Status::Code::IoError, path,
                                QStringLiteral("cannot open the table (error %1)").arg(err.code));
    auto size = dbfio::fileSize(t->m_fd, path);
    if (!size.isOk())
        return size.status();
    Status s = DbfTableOpener::readHeader(*t, *size);
    if (!s.isOk())
        return s;
    DbfTableOpener::chooseCodePage(*t, codePage);
    DbfHeader &hd = t->m_header;
    hd.physicalCount = quint32((*size - hd.headerLength) / hd.recordLength);
    if (hd.headerCount > hd.physicalCount) {
        // Another program may have appended between our size and our header read: it
        // writes the record before the count, so the file as it is now holds the record
        // the newer header counts. Only a file that still falls short is damaged.
        auto again = dbfio::fileSize(t->m_fd, path);
        if (again.isOk() && *again > *size) {
            size = again;
            hd.physicalCount = quint32((*size - hd.headerLength) / hd.recordLength);
        }
    }
    t->m_count = qMin(hd.headerCount, hd.physicalCount);
    if (hd.headerCount > hd.physicalCount)
        DbfTableOpener::readOnlyBecause(
            *t,
            QStringLiteral("%1: the header counts %2 records but the file holds only %3; the "
                           "table is read only")
                .arg(QFileInfo(path).fileName())
                .arg(hd.headerCount)
                .arg(hd.physicalCount),
            QStringLiteral("the table file is shorter than its header says"));
    DbfTableOpener::openCompanions(*t, openedWritable);
    DbfTableOpener::decideWritable(*t, wantWrite, openedWritable);
    t->m_scheme =
        (hd.structuralIndex || hd.visualFoxPro) ? DbfLockScheme::Extended : DbfLockScheme::FoxPro2;
    s = t->remap(*size);
    if (!s.isOk())
        return s;
    DbfTableOpener::openIndex(*t);
    return t;
}

Status DbfTable::remap(qint64 fileSize)
{
    Result<std::shared_ptr<const dbfio::FileMapping>> mapping =
        dbfio::FileMapping::acquire(m_fd, m_path, fileSize, kMapReserve);
    if (!mapping.isOk()) {
        m_count = 0;
        return mapping.status();
    }
    m_mapping = std::move(mapping).value();
    m_map = m_mapping->data();
    return Status::ok();
}

Result<DbfTable::FileCounts> DbfTable::readCounts() const
{
    char h[8];
    auto got = dbfio::readAt(m_fd, 0, h, 8, m_path);
    if (!got.isOk())
        return got.status();
    auto size = dbfio::fileSize(m_fd, m_path);
    if (!size.isOk())
        return size.status();
    FileCounts counts;
    counts.header = *got == 8 ? dbfio::le32(h + 4) : 0;
    counts.physical = *size > m_header.headerLength
        ? quint64(*size - m_header.headerLength) / m_header.recordLength
        : 0;
    counts.size = *size;
    return counts;
}

Result<quint32> DbfTable::refreshCount()
{
    Result<FileCounts> counts = readCounts();
    if (!counts.isOk())
        return counts.status();
    m_header.headerCount = quint32(counts->header);
    m_header.physicalCount = quint32(counts->physical);
    if (counts->size > m_mapping->length()) {
        Status s = remap(counts->size);
        if (!s.isOk())
            return s;
    }
    m_count = qMin(m_header.headerCount, m_header.physicalCount);
    return m_count;
}

Status DbfTable::scanRecords(const RecordRuns &visit) const
{
    if (m_count == 0)
        return Status::ok();
    if (!dbftest::scanByReads() && (!m_mapping || m_mapping->populated())) {
        (void)visit(1, recordBytes(1), m_count);
        return Status::ok();
    }
    constexpr qint64 kRunBytes = qint64(1) << 20;
    const qint64 recordLength = m_header.recordLength;
    const quint32 perRun = quint32(qMax<qint64>(1, kRunBytes / recordLength));
    QByteArray buffer(qsizetype(perRun * recordLength), Qt::Uninitialized);
    for (quint32 first = 1; first <= m_count; first += perRun) {
        const quint32 count = qMin(perRun, m_count - first + 1);
        const qint64 offset = m_header.headerLength + qint64(first - 1) * recordLength;
        Result<qint64> got =
            dbfio::readAt(m_fd, offset, buffer.data(), qint64(count) * recordLength, m_path);
        if (!got.isOk())
            return got.status();
        const quint32 whole = quint32(*got / recordLength); // fewer when the file shrank
        if (whole > 0 && !visit(first, buffer.constData(), whole))
            return Status::ok();
        if (whole < count)
            break;
    }
    return Status::ok();
}

void DbfTable::releaseIdleMappings()
{
    dbfio::FileMapping::releaseIdle();
}

Result<DbfChangeStamp> DbfTable::changeStamp() const
{
    // Read the counter first: a write that lands while the times are read moves it on for
    // the next stamp.
    DbfChangeStamp stamp;
    stamp.writeEpoch = dbfio::writeEpoch();
    Result<dbfio::FileStamp> file = dbfio::fileStamp(m_fd, m_path);
    if (!file.isOk())
        return file.status();
    stamp.file = file.value();
    stamp.count = m_count;
    constexpr qint64 kSettledNs = qint64(3) * 1000 * 1000 * 1000;
    stamp.settled = dbfio::nowNs() - qMax(stamp.file.modifiedNs, stamp.file.changedNs) > kSettledNs;
    return stamp;
}

int DbfTable::fieldIndex(const QString &name) const
{
    for (int i = 0; i < m_fields.size(); ++i) {
        if (m_fields[i].name.compare(name, Qt::CaseInsensitive) == 0)
            return i;
    }
    return -1;
}

} // namespace plx
