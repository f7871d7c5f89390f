// services/recordsource/dbf/cdxnodeencode.cpp: writing interior and compact leaf pages.
#include "services/recordsource/dbf/cdxnode_p.h"

#include "services/recordsource/dbf/dbfio_p.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace plx::cdxnode {

namespace {

constexpr int kNodeHeader = 12;
constexpr int kLeafHeader = 24;

void putLe16(char *p, quint16 v)
{
    p[0] = char(v & 0xFF);
    p[1] = char(v >> 8);
}

int trailingPad(const QByteArray &key, char pad)
{
    int n = 0;
    while (n < key.size() && key[key.size() - 1 - n] == pad)
        ++n;
    return n;
}

int sharedPrefix(const QByteArray &a, const QByteArray &b)
{
    const qsizetype n = std::min(a.size(), b.size());
    int i = 0;
    while (i < n && a[i] == b[i])
        ++i;
    return i;
}

// The duplicate and trailing counts of `key` after `previous`: the shared prefix first, then
// as much of the trailing pad as the rest of the key holds.
std::pair<int, int> counts(const QByteArray &previous, const QByteArray &key, char pad)
{
    const int dup = previous.isEmpty() ? 0 : sharedPrefix(previous, key);
    const int trail = std::min(trailingPad(key, pad), int(key.size()) - dup);
    return { dup, trail };
}

void writeHeader(const Node &node, char *page)
{
    putLe16(page, node.attributes);
    putLe16(page + 2, quint16(node.entries.size()));
    dbfio::putLe32(page + 4, node.left);
    dbfio::putLe32(page + 8, node.right);
}

bool encodeInterior(const Node &node, int keyLength, char *page)
{
    if (node.entries.size() > interiorCapacity(keyLength))
        return false;
    std::memset(page, 0, kPageSize);
    writeHeader(node, page);
    char *p = page + kNodeHeader;
    for (const Entry &e : node.entries) {
        std::memcpy(p, e.key.constData(), size_t(keyLength));
        dbfio::putBe32(p + keyLength, e.recno);
        dbfio::putBe32(p + keyLength + 4, e.child);
        p += keyLength + 8;
    }
    return true;
}

bool encodeLeaf(const Node &node, int keyLength, char pad, char *page)
{
    quint32 greatest = 0;
    for (const Entry &e : node.entries)
        greatest = std::max(greatest, e.recno);
    const PackedLayout layout = leafLayout(keyLength, greatest);
    std::memset(page, 0, kPageSize);
    const qsizetype entriesEnd = kLeafHeader + node.entries.size() * layout.entryBytes;
    int keyEnd = kPageSize;
    QByteArray previous;
    for (qsizetype i = 0; i < node.entries.size(); ++i) {
        const QByteArray &key = node.entries[i].key;
        const auto [dup, trail] = counts(previous, key, pad);
        const int stored = keyLength - dup - trail;
        if (keyEnd - stored < entriesEnd)
            return false;
        keyEnd -= stored;
        std::memcpy(page + keyEnd, key.constData() + dup, size_t(stored));
        const quint64 bits = quint64(node.entries[i].recno) | (quint64(dup) << layout.recordBits)
            | (quint64(trail) << (layout.recordBits + layout.countBits));
        char *entry = page + kLeafHeader + i * layout.entryBytes;
        for (int b = 0; b < layout.entryBytes; ++b)
            entry[b] = char((bits >> (8 * b)) & 0xFF);
        previous = key;
    }
    writeHeader(node, page);
    putLe16(page + 12, quint16(keyEnd - entriesEnd));
    const quint32 recordMask =
        layout.recordBits >= 32 ? 0xFFFFFFFFU : (quint32(1) << layout.recordBits) - 1;
    dbfio::putLe32(page + 14, recordMask);
    page[18] = char((1 << layout.countBits) - 1);
    page[19] = char((1 << layout.countBits) - 1);
    page[20] = char(layout.recordBits);
    page[21] = char(layout.countBits);
    page[22] = char(layout.countBits);
    page[23] = char(layout.entryBytes);
    return true;
}

} // namespace

PackedLayout leafLayout(int keyLength, quint32 greatestRecno)
{
    const auto countBits = int(std::bit_width(unsigned(keyLength)));
    const int recnoBits = std::max(1, int(std::bit_width(greatestRecno)));
    const int bytes = (recnoBits + 2 * countBits + 7) / 8;
    return { std::min(32, bytes * 8 - 2 * countBits), countBits, bytes };
}

int storedBytes(const QByteArray &previous, const QByteArray &key, char pad)
{
    const auto [dup, trail] = counts(previous, key, pad);
    return int(key.size()) - dup - trail;
}

int interiorCapacity(int keyLength)
{
    return (kPageSize - kNodeHeader) / (keyLength + 8);
}

bool encode(const Node &node, int keyLength, char pad, char *page)
{
    if (node.isLeaf())
        return encodeLeaf(node, keyLength, pad, page);
    return encodeInterior(node, keyLength, page);
}

} // namespace plx::cdxnode
