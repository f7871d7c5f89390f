// services/recordsource/dbf/cdxindex.cpp: opening an index for maintenance and applying one
// record's change to every tag.
#include "services/recordsource/dbf/cdxindex_p.h"

#include "services/recordsource/dbf/dbfio_p.h"
#include "services/recordsource/dbf/internal/dbftable.h"
#include "services/recordsource/internal/filelock.h"

#include <QRegularExpression>

namespace plx {

namespace {

// FoxPro's index lock: one byte of the index file, taken exclusively to write.
constexpr quint64 kIndexLockAt = 0x7FFFFFFE;

Status cannotMaintain(const CdxTag &tag, const QString &why)
{
    return Status(Status::Code::NotSupported,
                  QStringLiteral("Index tag %1 (%2) cannot be maintained; the table is "
                                 "read-only.")
                      .arg(tag.name, QString::fromLatin1(tag.keyExpression)),
                  0, why);
}

// A collation sequence other than "MACHINE" stores weights, not code-page bytes; its name
// is the one run of capital letters in the tag header's reserved bytes.
QString collationOf(const QByteArray &header)
{
    static const QRegularExpression name(QStringLiteral("[A-Z]{4,}"));
    const QString text = QString::fromLatin1(header.mid(16, 480).replace('\0', ' '));
    const QRegularExpressionMatch m = name.match(text);
    return m.hasMatch() ? m.captured() : QString();
}

QByteArray squeezed(QByteArray text)
{
    text = text.toUpper();
    text.replace(' ', QByteArray());
    return text;
}

} // namespace

CdxIndex::~CdxIndex()
{
    if (m_locked)
        (void)unlockRange(m_fd, kIndexLockAt, 1);
    dbfio::closeFile(m_fd);
}

Result<std::unique_ptr<CdxIndex>> CdxIndex::open(const QString &path, const DbfTable &table,
                                                 bool writable)
{
    std::unique_ptr<CdxIndex> index(new CdxIndex);
    index->m_table = &table;
    index->m_writable = writable;
    index->m_fd = dbfio::noFile();
    dbfio::OpenError err;
    index->m_fd = dbfio::openFile(path, writable, &err);
    if (!dbfio::isOpen(index->m_fd))
        return dbfio::fileError(
            Status::Code::IoError, path,
            QStringLiteral("cannot open the index file (error %1)").arg(err.code));
    Result<std::unique_ptr<CdxFile>> file = CdxFile::open(path);
    if (!file.isOk())
        return file.status();
    index->m_file = std::move(*file);
    if (Status st = index->compileTags(); !st.isOk())
        return st;
    return index;
}

Status CdxIndex::compileTags()
{
    m_compiled.clear();
    for (const CdxTag &tag : tags()) {
        QByteArray header(cdxnode::kPageSize, '\0');
        const Result<qint64> got =
            dbfio::readAt(m_fd, tag.headerOffset, header.data(), header.size(), path());
        if (!got.isOk())
            return got.status();
        if (const QString collation = collationOf(header);
            !collation.isEmpty() && collation != QLatin1String("MACHINE"))
            return cannotMaintain(tag,
                                  QStringLiteral("its collation sequence is %1").arg(collation));
        Result<XbaseExpression> key = XbaseExpression::compile(tag.keyExpression, *m_table);
        if (!key.isOk())
            return cannotMaintain(tag, key.status().message());
        const char pad = cdxkey::padByte(key->type());
        Compiled compiled{ std::move(*key), std::nullopt, pad };
        if (!tag.forExpression.isEmpty()) {
            Result<XbaseExpression> filter = XbaseExpression::compile(tag.forExpression, *m_table);
            if (!filter.isOk())
                return cannotMaintain(tag, filter.status().message());
            if (filter->type() != cdxkey::KeyType::Logical)
                return cannotMaintain(tag, QStringLiteral("its FOR clause is not a condition"));
            compiled.filter = std::move(*filter);
        }
        m_compiled.push_back(std::move(compiled));
    }
    return {};
}

// Another program may have rebuilt the file (new tag headers) since it was read: the
// counter it raised says so.
Status CdxIndex::reload()
{
    Result<std::unique_ptr<CdxFile>> file = CdxFile::open(path());
    if (!file.isOk())
        return file.status();
    m_file = std::move(*file);
    return compileTags();
}

Result<CdxIndex::Keys> CdxIndex::keysOf(quint32 recno) const
{
    Keys keys;
    keys.reserve(qsizetype(m_compiled.size()));
    for (qsizetype t = 0; t < qsizetype(m_compiled.size()); ++t) {
        const Compiled &c = m_compiled[size_t(t)];
        if (c.filter) {
            const Result<XbaseValue> pass = c.filter->evaluate(recno);
            if (!pass.isOk())
                return pass.status();
            if (!pass->logical) {
                keys.append(std::nullopt);
                continue;
            }
        }
        Result<QByteArray> key = c.key.key(recno, tags()[t].keyLength);
        if (!key.isOk())
            return key.status();
        keys.append(std::move(*key));
    }
    return keys;
}

Status CdxIndex::beginUpdate(int timeoutMs)
{
    if (!m_writable)
        return Status(Status::Code::NotSupported,
                      QStringLiteral("%1 is open read only").arg(path()));
    if (Status st = lockRange(m_fd, kIndexLockAt, 1, LockKind::Exclusive, timeoutMs); !st.isOk())
        return st;
    m_locked = true;
    Status st = markBegun();
    if (!st.isOk()) {
        // Nothing was written (a full disk refuses the mark): the lock goes with the refusal,
        // or every later reader and writer of the index would wait on it in vain.
        (void)unlockRange(m_fd, kIndexLockAt, 1);
        m_locked = false;
    }
    return st;
}

// Under the index lock: the tags read again when another writer moved the counter, and
// the update's mark set.
Status CdxIndex::markBegun()
{
    cdxpages::PageFile pages(m_fd, path());
    const Result<quint32> counter = pages.readWord(cdxpages::kCounterAt);
    if (!counter.isOk())
        return counter.status();
    if (*counter != m_counter) {
        if (Status st = reload(); !st.isOk())
            return st;
        m_counter = *counter;
    }
    return pages.markUpdate();
}

Status CdxIndex::endUpdate(bool completed, bool durable)
{
    Status st;
    cdxpages::PageFile pages(m_fd, path());
    if (completed)
        st = pages.endUpdate();
    if (st.isOk() && durable)
        st = dbfio::syncData(m_fd, path());
    const Result<quint32> counter = pages.readWord(cdxpages::kCounterAt);
    if (counter.isOk())
        m_counter = *counter;
    if (m_locked)
        (void)unlockRange(m_fd, kIndexLockAt, 1);
    m_locked = false;
    return st;
}

// The mark is also there while another process is in the middle of an update: it holds the
// index lock throughout, so the mark is read under the lock (shared, which a read-only file
// can take), and what is found there is an update nobody is finishing.
Result<bool> CdxIndex::stale() const
{
    const cdxpages::PageFile pages(m_fd, path());
    if (m_locked)
        return pages.updateMarked();
    if (Status st = lockRange(m_fd, kIndexLockAt, 1, LockKind::Shared, 5000); !st.isOk())
        return st;
    Result<bool> marked = pages.updateMarked();
    (void)unlockRange(m_fd, kIndexLockAt, 1);
    return marked;
}

Status CdxIndex::applyChange(quint32 recno, const Keys &before, const Keys &after)
{
    for (qsizetype t = 0; t < tags().size() && t < before.size() && t < after.size(); ++t) {
        if (before[t] == after[t])
            continue;
        if (before[t]) {
            if (Status st = removeKey(int(t), *before[t], recno); !st.isOk())
                return st;
        }
        if (after[t]) {
            if (Status st = addKey(int(t), *after[t], recno); !st.isOk())
                return st;
        }
    }
    return {};
}

// A unique tag keeps a key under the lowest record that has it: when that record lets the
// key go, the next record with the key takes its place.
Status CdxIndex::removeKey(int tag, const QByteArray &key, quint32 recno)
{
    cdxpages::PageFile pages(m_fd, path());
    cdxtree::Tree tree(pages, cdxindex::treeTag(tags()[tag], m_compiled[size_t(tag)].pad));
    if (!tags()[tag].unique)
        return tree.remove(key, recno);
    const Result<QList<quint32>> filed = tree.find(key);
    if (!filed.isOk())
        return filed.status();
    if (!filed->contains(recno))
        return {};
    if (Status st = tree.remove(key, recno); !st.isOk())
        return st;
    const Result<std::optional<quint32>> next = firstRecordWith(tag, key, recno);
    if (!next.isOk())
        return next.status();
    return *next ? tree.insert(key, **next) : Status();
}

Status CdxIndex::addKey(int tag, const QByteArray &key, quint32 recno)
{
    cdxpages::PageFile pages(m_fd, path());
    cdxtree::Tree tree(pages, cdxindex::treeTag(tags()[tag], m_compiled[size_t(tag)].pad));
    if (!tags()[tag].unique)
        return tree.insert(key, recno);
    const Result<QList<quint32>> filed = tree.find(key);
    if (!filed.isOk())
        return filed.status();
    if (!filed->isEmpty() && filed->first() < recno)
        return {};
    if (!filed->isEmpty()) {
        if (Status st = tree.remove(key, filed->first()); !st.isOk())
            return st;
    }
    return tree.insert(key, recno);
}

Result<std::optional<quint32>> CdxIndex::firstRecordWith(int tag, const QByteArray &key,
                                                         quint32 except) const
{
    for (quint32 r = 1; r <= m_table->recordCount(); ++r) {
        if (r == except)
            continue;
        const Result<Keys> keys = keysOf(r);
        if (!keys.isOk())
            return keys.status();
        if ((*keys)[tag] == key)
            return std::optional<quint32>(r);
    }
    return std::optional<quint32>();
}

int CdxIndex::tagWithExpression(const QByteArray &expression) const
{
    const QByteArray wanted = squeezed(expression);
    for (qsizetype t = 0; t < tags().size(); ++t) {
        if (!tags()[t].hasFor && !tags()[t].unique && squeezed(tags()[t].keyExpression) == wanted)
            return int(t);
    }
    return -1;
}

Result<QList<quint32>> CdxIndex::find(int tag, const QByteArray &key) const
{
    cdxpages::PageFile pages(m_fd, path());
    cdxtree::Tree tree(pages, cdxindex::treeTag(tags()[tag], m_compiled[size_t(tag)].pad));
    return tree.find(key);
}

Result<std::vector<quint32>> CdxIndex::recordsInOrder(int tag) const
{
    cdxpages::PageFile pages(m_fd, path());
    const cdxtree::Tree tree(pages, cdxindex::treeTag(tags()[tag], m_compiled[size_t(tag)].pad));
    return tree.records();
}

} // namespace plx
