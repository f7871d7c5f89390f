// services/recordsource/dbf/dbfrecordwrite.cpp: writeRecord, appendRecord and setDeleted.
#include "services/recordsource/dbf/internal/dbftable.h"

#include "services/recordsource/dbf/internal/cdxindex.h"

#include "services/recordsource/dbf/dbfio_p.h"
#include "services/recordsource/dbf/filemapping_p.h"
#include "services/recordsource/dbf/dbfmemo_p.h"
#include "services/recordsource/dbf/internal/dbftesthooks.h"
#include "services/recordsource/dbf/dbfvalue_p.h"

namespace plx {

namespace {

class HeaderLockGuard
{
public:
    HeaderLockGuard(DbfTable &t, int timeoutMs) : m_table(t), m_timeoutMs(timeoutMs) { }
    ~HeaderLockGuard()
    {
        if (m_held)
            (void)m_table.unlockHeader();
    }
    Status acquire()
    {
        Status s = m_table.lockHeader(m_timeoutMs);
        m_held = s.isOk();
        return s;
    }

private:
    DbfTable &m_table;
    int m_timeoutMs;
    bool m_held = false;
};

class RecordLockGuard
{
public:
    RecordLockGuard(DbfTable &t, quint32 recno) : m_table(t), m_recno(recno) { }
    ~RecordLockGuard()
    {
        if (m_owned)
            (void)m_table.unlockRecord(m_recno);
    }
    Status acquire()
    {
        if (m_table.holdsRecordLock(m_recno))
            return Status::ok();
        Status s = m_table.lockRecord(m_recno);
        m_owned = s.isOk();
        return s;
    }

private:
    DbfTable &m_table;
    quint32 m_recno;
    bool m_owned = false;
};

// One write's update of the index: the record's keys read before the table is written, the
// index locked and marked, then every changed key moved once the table holds the new record.
// An update left unfinished (a failed write) keeps its mark, so the index is rebuilt.
class IndexUpdate
{
public:
    IndexUpdate(CdxIndex *index, bool durable) : m_index(index), m_durable(durable) { }
    ~IndexUpdate()
    {
        if (m_begun)
            (void)m_index->endUpdate(false, false);
    }
    IndexUpdate(const IndexUpdate &) = delete;
    IndexUpdate &operator=(const IndexUpdate &) = delete;

    // `recno` 0: a record about to be appended, which has no keys yet. The keys are read
    // under the index lock, after beginUpdate() has read again the tags another object may
    // have added since.
    Status begin(quint32 recno)
    {
        if (!m_index)
            return Status::ok();
        Status s = m_index->beginUpdate();
        if (!s.isOk())
            return s;
        Result<CdxIndex::Keys> before = recno
            ? m_index->keysOf(recno)
            : Result<CdxIndex::Keys>(CdxIndex::Keys(m_index->tags().size()));
        if (!before.isOk()) {
            (void)m_index->endUpdate(true, false); // nothing was written
            return before.status();
        }
        m_before = std::move(*before);
        m_begun = true;
        return s;
    }

    Status finish(quint32 recno)
    {
        if (!m_index)
            return Status::ok();
        const Result<CdxIndex::Keys> after = m_index->keysOf(recno);
        const Status s =
            after.isOk() ? m_index->applyChange(recno, m_before, *after) : after.status();
        m_begun = false;
        const Status ended = m_index->endUpdate(s.isOk(), m_durable);
        return s.isOk() ? ended : s;
    }

private:
    CdxIndex *m_index;
    bool m_durable;
    bool m_begun = false;
    CdxIndex::Keys m_before;
};

} // namespace

Status DbfTable::encodeValues(QByteArray &rec, const QVariantList &values,
                              QList<QPair<int, QByteArray>> &memos, bool fresh) const
{
    if (values.size() > m_fields.size())
        return Status(Status::Code::InvalidArgument,
                      QStringLiteral("%1 values for a table of %2 fields")
                          .arg(values.size())
                          .arg(m_fields.size()));
    for (int i = 0; i < values.size(); ++i) {
        const DbfField &f = m_fields[i];
        if (dbfvalue::isMemo(f))
            continue;
        Status s = dbfvalue::encodeInline(f, values[i], m_header.codePage, rec.data() + f.offset);
        if (!s.isOk())
            return s;
    }
    for (int i = 0; i < values.size(); ++i) {
        const DbfField &f = m_fields[i];
        if (!dbfvalue::isMemo(f))
            continue;
        auto bytes = dbfvalue::memoBytes(f, values[i], m_header.codePage);
        if (!bytes.isOk())
            return bytes.status();
        const quint32 oldBlock = dbfvalue::memoBlock(f, rec.constData() + f.offset);
        if (!fresh && oldBlock == 0 && bytes->isEmpty())
            continue;
        if (!fresh && oldBlock != 0 && m_memo) {
            // An unchanged memo keeps its blocks: rewriting it would only grow the file.
            auto current = m_memo->read(oldBlock);
            if (current.isOk() && *current == *bytes)
                continue;
        }
        if (!bytes->isEmpty() && !m_memo)
            return dbfio::fileError(Status::Code::NotSupported, m_path,
                                    QStringLiteral("the memo file is missing"));
        memos.append({ i, *bytes });
    }
    return Status::ok();
}

Status DbfTable::writeMemos(QByteArray &rec, const QList<QPair<int, QByteArray>> &memos)
{
    for (const auto &[index, bytes] : memos) {
        const DbfField &f = m_fields[index];
        quint32 block = 0;
        if (!bytes.isEmpty()) {
            // New, durable memo blocks before the record that points at them; the old
            // blocks stay as they are, so the record on disk is wholly old until it is
            // rewritten in one write below.
            auto written = m_memo->write(bytes, dbfvalue::memoType(f), m_durable);
            if (!written.isOk())
                return written.status();
            block = *written;
        }
        dbfvalue::putMemoBlock(f, block, rec.data() + f.offset);
    }
    return Status::ok();
}

Status DbfTable::touchDate()
{
    const QDate today = QDate::currentDate();
    if (m_header.lastUpdate == today)
        return Status::ok();
    char d[3] = { char(today.year() % 100), char(today.month()), char(today.day()) };
    Status s = dbfio::writeAt(m_fd, 1, d, 3, m_path);
    if (s.isOk())
        m_header.lastUpdate = today;
    return s;
}

// Writes need a writable table and a record that exists; another program may have
// appended it since this object last read the header.
Status DbfTable::checkWritableRecord(quint32 recno)
{
    if (Status s = adoptNewIndex(); !s.isOk())
        return s;
    if (recno == 0 || recno > m_count) {
        auto count = refreshCount();
        if (!count.isOk())
            return count.status();
        if (recno == 0 || recno > *count)
            return Status(Status::Code::NotFound,
                          QStringLiteral("record %1 is not in the table").arg(recno));
    }
    return Status::ok();
}

Status DbfTable::writeRecord(quint32 recno, const QVariantList &values)
{
    if (Status s = checkWritableRecord(recno); !s.isOk())
        return s;
    RecordLockGuard lock(*this, recno);
    Status s = lock.acquire();
    if (!s.isOk())
        return s;
    // Read the record under the lock: another program may have changed it since.
    QByteArray rec(recordBytes(recno), m_header.recordLength);
    QList<QPair<int, QByteArray>> memos;
    s = encodeValues(rec, values, memos, false);
    if (!s.isOk())
        return s;
    IndexUpdate index(m_index.get(), m_durable);
    s = index.begin(recno);
    if (!s.isOk())
        return s;
    s = writeMemos(rec, memos);
    if (!s.isOk())
        return s;
    dbftest::crashIfArmed(dbftest::CrashPoint::WriteAfterMemo);
    const qint64 offset = m_header.headerLength + qint64(recno - 1) * m_header.recordLength;
    s = dbfio::writeAt(m_fd, offset + 1, rec.constData() + 1, rec.size() - 1, m_path);
    if (s.isOk())
        s = touchDate();
    if (s.isOk() && m_durable)
        s = dbfio::syncData(m_fd, m_path);
    if (s.isOk())
        s = index.finish(recno);
    return s;
}

Result<quint32> DbfTable::appendRecord(const QVariantList &values)
{
    if (!isWritable())
        return m_writable;
    const int recLen = m_header.recordLength;
    QByteArray rec(recLen + 1, ' ');
    rec[recLen] = 0x1A; // the end-of-file mark goes out in the same write as the record
    QList<QPair<int, QByteArray>> memos;
    Status s = encodeValues(rec, values, memos, true);
    if (!s.isOk())
        return s;
    HeaderLockGuard headerLock(*this, m_headerLockTimeoutMs);
    s = headerLock.acquire();
    if (s.isOk())
        s = adoptNewIndex();
    if (!s.isOk())
        return s;
    // Under the lock, count from the header and from the file size and take the larger, so
    // a record left by a writer that died before updating the header is never overwritten.
    Result<FileCounts> counts = readCounts();
    if (!counts.isOk())
        return counts.status();
    const quint64 next = qMax(counts->header, counts->physical) + 1;
    if (next >= 0x7FFFFFFE - 1 || m_header.headerLength + next * recLen > 0x7FFFFFFFu)
        return dbfio::fileError(Status::Code::IoError, m_path,
                                QStringLiteral("the table has reached FoxPro's 2 GB limit"));
    const auto recno = quint32(next);
    RecordLockGuard recordLock(*this, recno);
    s = recordLock.acquire();
    if (!s.isOk())
        return s;
    IndexUpdate index(m_index.get(), m_durable);
    s = index.begin(0);
    if (!s.isOk())
        return s;
    s = writeMemos(rec, memos);
    if (!s.isOk())
        return s;
    dbftest::crashIfArmed(dbftest::CrashPoint::AppendAfterMemo);
    const qint64 offset = m_header.headerLength + qint64(recno - 1) * recLen;
    s = dbfio::writeAt(m_fd, offset, rec.constData(), rec.size(), m_path);
    if (!s.isOk())
        return s;
    dbftest::crashIfArmed(dbftest::CrashPoint::AppendAfterRecord);
    s = writeHeaderCount(recno);
    if (s.isOk() && m_durable)
        s = dbfio::syncData(m_fd, m_path);
    if (!s.isOk())
        return s;
    m_header.physicalCount = recno;
    if (offset + rec.size() > m_mapping->length()) {
        s = remap(offset + rec.size());
        if (!s.isOk())
            return s;
    }
    m_count = recno;
    s = index.finish(recno);
    if (!s.isOk())
        return s;
    return recno;
}

Status DbfTable::sync()
{
    if (!isWritable())
        return m_writable;
    if (m_memo) {
        if (Status s = m_memo->sync(); !s.isOk())
            return s;
    }
    return dbfio::syncData(m_fd, m_path);
}

Status DbfTable::setDeleted(quint32 recno, bool deleted)
{
    if (Status s = checkWritableRecord(recno); !s.isOk())
        return s;
    RecordLockGuard lock(*this, recno);
    Status s = lock.acquire();
    if (!s.isOk())
        return s;
    IndexUpdate index(m_index.get(), m_durable);
    s = index.begin(recno);
    if (!s.isOk())
        return s;
    const char flag = deleted ? '*' : ' ';
    const qint64 offset = m_header.headerLength + qint64(recno - 1) * m_header.recordLength;
    s = dbfio::writeAt(m_fd, offset, &flag, 1, m_path);
    if (s.isOk())
        s = touchDate();
    if (s.isOk() && m_durable)
        s = dbfio::syncData(m_fd, m_path);
    if (s.isOk())
        s = index.finish(recno);
    return s;
}

Status DbfTable::reindex()
{
    if (!isWritable())
        return m_writable;
    if (!m_index)
        return Status(Status::Code::NotFound,
                      QStringLiteral("%1 has no structural index").arg(m_path));
    HeaderLockGuard headerLock(*this, m_headerLockTimeoutMs);
    if (Status s = headerLock.acquire(); !s.isOk())
        return s;
    if (Result<quint32> count = refreshCount(); !count.isOk())
        return count.status();
    return m_index->reindex();
}

} // namespace plx
