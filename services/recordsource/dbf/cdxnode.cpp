// services/recordsource/dbf/cdxnode.cpp: decoding interior and compact leaf pages.
#include "services/recordsource/dbf/cdxnode_p.h"

#include "services/recordsource/dbf/dbfio_p.h"

namespace plx::cdxnode {

namespace {

constexpr int kNodeHeader = 12;
constexpr int kLeafHeader = 24;

bool fail(QString *problem, const QString &why)
{
    *problem = why;
    return false;
}

bool decodeInterior(const char *page, int keyLength, int count, Node *node, QString *problem)
{
    const int entrySize = keyLength + 8;
    if (count * entrySize > kPageSize - kNodeHeader)
        return fail(problem, QStringLiteral("%1 keys do not fit an interior page").arg(count));
    for (int i = 0; i < count; ++i) {
        const char *p = page + kNodeHeader + qsizetype(i) * entrySize;
        node->entries.append({ QByteArray(p, keyLength), dbfio::be32(p + keyLength),
                               dbfio::be32(p + keyLength + 4) });
    }
    return true;
}

// The bit layout of a leaf's entries, read from its header.
struct LeafLayout
{
    quint32 recordMask = 0;
    int recordBits = 0;
    int dupBits = 0;
    int trailBits = 0;
    int entryBytes = 0;
};

bool readLayout(const char *page, LeafLayout *layout, QString *problem)
{
    layout->recordMask = dbfio::le32(page + 14);
    layout->recordBits = quint8(page[20]);
    layout->dupBits = quint8(page[21]);
    layout->trailBits = quint8(page[22]);
    layout->entryBytes = quint8(page[23]);
    const int bits = layout->recordBits + layout->dupBits + layout->trailBits;
    if (layout->entryBytes < 1 || layout->entryBytes > 8 || bits > layout->entryBytes * 8
        || layout->recordBits > 32 || layout->dupBits > 16 || layout->trailBits > 16)
        return fail(problem, QStringLiteral("the leaf's entry layout is impossible"));
    return true;
}

quint64 entryBits(const char *p, int bytes)
{
    quint64 bits = 0;
    for (int i = bytes - 1; i >= 0; --i)
        bits = (bits << 8) | quint8(p[i]);
    return bits;
}

bool decodeLeaf(const char *page, int keyLength, char pad, int count, Node *node, QString *problem)
{
    LeafLayout layout;
    if (!readLayout(page, &layout, problem))
        return false;
    const int entriesEnd = kLeafHeader + count * layout.entryBytes;
    if (entriesEnd > kPageSize)
        return fail(problem, QStringLiteral("%1 keys do not fit a leaf page").arg(count));
    const quint64 dupMask = (quint64(1) << layout.dupBits) - 1;
    const quint64 trailMask = (quint64(1) << layout.trailBits) - 1;
    int keyEnd = kPageSize; // the stored key bytes grow down from the end of the page
    QByteArray previous(keyLength, pad);
    for (int i = 0; i < count; ++i) {
        const quint64 bits =
            entryBits(page + kLeafHeader + qsizetype(i) * layout.entryBytes, layout.entryBytes);
        const auto recno = quint32(bits) & layout.recordMask;
        const auto dup = int((bits >> layout.recordBits) & dupMask);
        const auto trail = int((bits >> (layout.recordBits + layout.dupBits)) & trailMask);
        const int stored = keyLength - dup - trail;
        if (stored < 0 || (i == 0 && dup > 0) || keyEnd - stored < entriesEnd)
            return fail(problem,
                        QStringLiteral("key %1 of the leaf does not fit the page").arg(i + 1));
        keyEnd -= stored;
        QByteArray key = previous.left(dup);
        key.append(page + keyEnd, stored);
        key.append(trail, pad);
        node->entries.append({ key, recno, 0 });
        previous = std::move(key);
    }
    return true;
}

} // namespace

bool leafRecords(const char *page, std::vector<quint32> *records, QString *problem)
{
    LeafLayout layout;
    if ((dbfio::le16(page) & kLeafPage) == 0)
        return fail(problem, QStringLiteral("the page is no leaf"));
    if (!readLayout(page, &layout, problem))
        return false;
    const int count = dbfio::le16(page + 2);
    if (kLeafHeader + count * layout.entryBytes > kPageSize)
        return fail(problem, QStringLiteral("%1 keys do not fit a leaf page").arg(count));
    for (int i = 0; i < count; ++i) {
        const quint64 bits =
            entryBits(page + kLeafHeader + qsizetype(i) * layout.entryBytes, layout.entryBytes);
        records->push_back(quint32(bits) & layout.recordMask);
    }
    return true;
}

bool decode(const char *page, int keyLength, char pad, Node *node, QString *problem)
{
    node->attributes = dbfio::le16(page);
    node->left = dbfio::le32(page + 4);
    node->right = dbfio::le32(page + 8);
    node->entries.clear();
    const int count = dbfio::le16(page + 2);
    if (keyLength < 1 || keyLength + 8 > kPageSize - kNodeHeader)
        return fail(problem, QStringLiteral("the key length %1 is impossible").arg(keyLength));
    if (node->isLeaf())
        return decodeLeaf(page, keyLength, pad, count, node, problem);
    return decodeInterior(page, keyLength, count, node, problem);
}

} // namespace plx::cdxnode
