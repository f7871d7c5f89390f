// services/recordsource/dbf/cdxcreate.cpp: a new compound index for a table.
//
// Writes the headers FoxPro writes for INDEX ON ... TAG (the file header and tag directory,
// one two-page header per tag with its expressions in the pool of its second page, an
// empty root leaf per tag), then builds the trees from the table with reindex().
#include "services/recordsource/dbf/cdxindex_p.h"

#include "services/recordsource/dbf/dbfio_p.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>

namespace plx {

namespace {

constexpr int kHeaderSize = 2 * cdxnode::kPageSize;
constexpr int kTagNameLength = 10;
constexpr quint8 kCompact = 0x20;
constexpr quint8 kCompound = 0x40;
constexpr quint8 kStructural = 0x80;

void putLe16(char *p, quint16 v)
{
    p[0] = char(v & 0xFF);
    p[1] = char(v >> 8);
}

// A tag header: root, key length, options, order and the expression pool (key first).
QByteArray tagHeader(quint32 root, int keyLength, quint8 options, bool descending,
                     const QByteArray &key, const QByteArray &filter)
{
    QByteArray header(kHeaderSize, '\0');
    char *h = header.data();
    dbfio::putLe32(h, root);
    putLe16(h + 12, quint16(keyLength));
    h[14] = char(options);
    h[15] = 0x01;
    putLe16(h + 502, descending ? 1 : 0);
    const auto keyBytes = quint16(key.size() + 1);
    putLe16(h + 504, keyBytes); // the FOR clause follows the key's NUL
    putLe16(h + 506, quint16(filter.size() + 1));
    putLe16(h + 508, 0);
    putLe16(h + 510, keyBytes);
    header.replace(cdxnode::kPageSize, key.size(), key);
    header.replace(cdxnode::kPageSize + keyBytes, filter.size(), filter);
    return header;
}

QByteArray emptyRootLeaf(int keyLength, char pad)
{
    cdxnode::Node node;
    node.attributes = cdxnode::kRootPage | cdxnode::kLeafPage;
    QByteArray page(cdxnode::kPageSize, '\0');
    cdxnode::encode(node, keyLength, pad, page.data());
    return page;
}

} // namespace

Result<std::unique_ptr<CdxIndex>> CdxIndex::create(const QString &path, const DbfTable &table,
                                                   const QList<CdxTagDefinition> &tags)
{
    if (QFileInfo::exists(path))
        return dbfio::fileError(Status::Code::InvalidArgument, path,
                                QStringLiteral("the index file exists already"));
    for (const CdxTagDefinition &t : tags) {
        if (t.name.isEmpty() || t.name.size() > kTagNameLength || t.keyLength < 1
            || t.keyLength > 240 || t.key.size() + t.filter.size() + 2 > cdxnode::kPageSize)
            return Status(Status::Code::InvalidArgument,
                          QStringLiteral("the tag %1 cannot be created").arg(t.name));
    }
    QList<CdxTagDefinition> sorted = tags;
    std::sort(sorted.begin(), sorted.end(),
              [](const auto &a, const auto &b) { return a.name.toUpper() < b.name.toUpper(); });
    const quint32 firstTree =
        quint32(kHeaderSize + cdxnode::kPageSize + sorted.size() * kHeaderSize);
    QByteArray file = tagHeader(kHeaderSize, kTagNameLength, kCompact | kCompound | kStructural,
                                false, QByteArray(), QByteArray());
    cdxnode::Node directory;
    directory.attributes = cdxnode::kRootPage | cdxnode::kLeafPage;
    QByteArray trees;
    for (qsizetype i = 0; i < sorted.size(); ++i) {
        QByteArray name = sorted[i].name.toUpper().toLatin1();
        name.append(kTagNameLength - name.size(), ' ');
        directory.entries.append({ name, quint32(kHeaderSize * (i + 1) + cdxnode::kPageSize), 0 });
    }
    QByteArray dirPage(cdxnode::kPageSize, '\0');
    cdxnode::encode(directory, kTagNameLength, ' ', dirPage.data());
    file.append(dirPage);
    for (qsizetype i = 0; i < sorted.size(); ++i) {
        const CdxTagDefinition &t = sorted[i];
        const quint8 options =
            kCompact | kCompound | (t.unique ? 0x01 : 0) | (t.filter.isEmpty() ? 0 : 0x08);
        const quint32 root = firstTree + quint32(i) * cdxnode::kPageSize;
        file.append(tagHeader(root, t.keyLength, options, t.descending, t.key, t.filter));
        trees.append(emptyRootLeaf(t.keyLength, ' '));
    }
    file.append(trees);
    QFile out(path);
    if (!out.open(QIODevice::WriteOnly | QIODevice::NewOnly) || out.write(file) != file.size()
        || !out.flush())
        return dbfio::fileError(Status::Code::IoError, path,
                                QStringLiteral("cannot write the index file"));
    Result<std::unique_ptr<CdxIndex>> index = open(path, table, true);
    if (!index.isOk())
        return index.status();
    if (Status st = (*index)->reindex(); !st.isOk())
        return st;
    return index;
}

} // namespace plx
