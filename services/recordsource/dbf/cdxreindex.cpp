// services/recordsource/dbf/cdxreindex.cpp: rebuilding a whole compound index from its table.
//
// The new file keeps the old file header and each tag's header (expressions, options, the
// bytes this program does not interpret) and lays out: the file header, the tag directory
// as one leaf at 0x400, the tag headers in name order, then each tag's tree, filled.
#include "services/recordsource/dbf/cdxindex_p.h"

#include "services/recordsource/dbf/cdxbuild_p.h"
#include "services/recordsource/dbf/dbfio_p.h"
#include "services/recordsource/dbf/internal/dbftable.h"
#include "services/recordsource/internal/filelock.h"

#include <QFile>

#include <algorithm>
#include <cstring>
#include <numeric>

namespace plx {

namespace {

constexpr quint32 kHeaderSize = 2 * cdxnode::kPageSize;
constexpr quint32 kDirectoryAt = kHeaderSize;
constexpr quint32 kFirstTagAt = kDirectoryAt + cdxnode::kPageSize;
constexpr int kTagNameLength = 10;
constexpr quint64 kIndexLockAt = 0x7FFFFFFE;

// A tag's keys gathered from the table, in index order.
struct TagKeys
{
    QByteArray keys;
    QList<quint32> recnos;
};

TagKeys sortedKeys(const QByteArray &keys, const QList<quint32> &recnos, int keyLength, bool unique)
{
    QList<quint32> order(recnos.size());
    std::iota(order.begin(), order.end(), 0U);
    const char *k = keys.constData();
    std::sort(order.begin(), order.end(), [&](quint32 a, quint32 b) {
        const int c = std::memcmp(k + qsizetype(a) * keyLength, k + qsizetype(b) * keyLength,
                                  size_t(keyLength));
        return c != 0 ? c < 0 : recnos[a] < recnos[b];
    });
    TagKeys out;
    out.keys.reserve(keys.size());
    for (const quint32 i : std::as_const(order)) {
        const char *key = k + qsizetype(i) * keyLength;
        if (unique && !out.recnos.isEmpty()
            && std::memcmp(out.keys.constData() + out.keys.size() - keyLength, key,
                           size_t(keyLength))
                == 0)
            continue;
        out.keys.append(key, keyLength);
        out.recnos.append(recnos[i]);
    }
    return out;
}

QByteArray directoryLeaf(const QList<CdxTag> &tags)
{
    cdxnode::Node node;
    node.attributes = cdxnode::kRootPage | cdxnode::kLeafPage;
    for (qsizetype t = 0; t < tags.size(); ++t) {
        QByteArray name = tags[t].name.toLatin1().left(kTagNameLength);
        name.append(kTagNameLength - name.size(), ' ');
        node.entries.append({ name, kFirstTagAt + quint32(t) * kHeaderSize, 0 });
    }
    QByteArray page(cdxnode::kPageSize, '\0');
    cdxnode::encode(node, kTagNameLength, ' ', page.data());
    return page;
}

} // namespace

Result<QByteArray> CdxIndex::rebuiltFile() const
{
    const qsizetype tagCount = tags().size();
    QByteArray file(kFirstTagAt + tagCount * kHeaderSize, '\0');
    if (Result<qint64> got = dbfio::readAt(m_fd, 0, file.data(), kHeaderSize, path()); !got.isOk())
        return got.status();
    dbfio::putLe32(file.data(), kDirectoryAt);
    dbfio::putLe32(file.data() + cdxpages::kFreeListAt, 0);
    dbfio::putLe32(file.data() + cdxpages::kUpdateMarkAt, cdxpages::kUpdateMark);
    const QByteArray directory = directoryLeaf(tags());
    std::memcpy(file.data() + kDirectoryAt, directory.constData(), cdxnode::kPageSize);
    QList<QByteArray> keys(tagCount);
    QList<QList<quint32>> recnos(tagCount);
    for (quint32 r = 1; r <= m_table->recordCount(); ++r) {
        const Result<Keys> k = keysOf(r);
        if (!k.isOk())
            return k.status();
        for (qsizetype t = 0; t < tagCount; ++t) {
            if ((*k)[t]) {
                keys[t].append(*(*k)[t]);
                recnos[t].append(r);
            }
        }
    }
    for (qsizetype t = 0; t < tagCount; ++t) {
        const CdxTag &tag = tags()[t];
        char *header = file.data() + kFirstTagAt + t * kHeaderSize;
        if (Result<qint64> got = dbfio::readAt(m_fd, tag.headerOffset, header, kHeaderSize, path());
            !got.isOk())
            return got.status();
        const TagKeys sorted = sortedKeys(keys[t], recnos[t], tag.keyLength, tag.unique);
        keys[t].clear();
        const cdxbuild::BuiltTree tree = cdxbuild::build(
            { sorted.keys.constData(), sorted.recnos.constData(), sorted.recnos.size() },
            tag.keyLength, m_compiled[size_t(t)].pad, quint32(file.size()),
            m_table->header().visualFoxPro ? 0x04 : 0);
        dbfio::putLe32(header, tree.root);
        dbfio::putLe32(header + cdxpages::kFreeListAt, 0);
        file.append(tree.pages);
    }
    return file;
}

Status CdxIndex::reindex()
{
    if (!m_writable)
        return Status(Status::Code::NotSupported,
                      QStringLiteral("%1 is open read only").arg(path()));
    const bool held = m_locked;
    if (!held) {
        if (Status st = lockRange(m_fd, kIndexLockAt, 1, LockKind::Exclusive, 5000); !st.isOk())
            return st;
        m_locked = true;
    }
    Status st = cdxpages::PageFile(m_fd, path()).markUpdate();
    Result<QByteArray> file = st.isOk() ? rebuiltFile() : Result<QByteArray>(st);
    if (file.isOk())
        st = dbfio::writeAt(m_fd, 0, file->constData(), file->size(), path());
    else
        st = file.status();
    if (st.isOk() && !QFile::resize(path(), file->size()))
        st = dbfio::fileError(Status::Code::IoError, path(),
                              QStringLiteral("cannot shorten the rebuilt index"));
    if (st.isOk())
        st = cdxpages::PageFile(m_fd, path()).endUpdate();
    if (st.isOk())
        st = dbfio::syncData(m_fd, path());
    if (st.isOk())
        st = reload();
    if (!held) {
        (void)unlockRange(m_fd, kIndexLockAt, 1);
        m_locked = false;
    }
    return st;
}

} // namespace plx
