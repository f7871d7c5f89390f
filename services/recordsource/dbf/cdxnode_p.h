// services/recordsource/dbf/cdxnode_p.h: one 512-byte page of a compound index's B-tree.
//
// Interior page: attributes (2), key count (2), left and right sibling offsets (4 + 4), then
// per key the key bytes, the record number and the child page offset (both 4, big-endian);
// each key is the greatest key under its child.
// Leaf page ("compact"): attributes, key count, siblings, then free bytes (2), the record
// number mask (4), the duplicate and trailing count masks (1 + 1), the bits of record
// number, duplicate and trailing counts (1 + 1 + 1) and the bytes of one entry (1). The
// entries follow from byte 24, each a little-endian bit field: record number in the low
// bits, then the count of leading bytes shared with the previous key, then the count of
// trailing pad bytes dropped. The rest of each key is stored from the end of the page
// backwards, key after key.
// The decoders check every count against the page, so a damaged page is a sentence, never
// a read outside it.
#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include <vector>

namespace plx::cdxnode {

constexpr int kPageSize = 512;
constexpr quint16 kRootPage = 0x01;
constexpr quint16 kLeafPage = 0x02;
// FoxPro writes page offsets as -1 for "no sibling".
constexpr quint32 kNoPage = 0xFFFFFFFFU;

struct Entry
{
    QByteArray key; // keyLength bytes, pad bytes restored
    quint32 recno = 0;
    quint32 child = 0; // interior pages only: the page offset of the subtree
};

struct Node
{
    quint16 attributes = 0;
    quint32 left = kNoPage;
    quint32 right = kNoPage;
    QList<Entry> entries;
    bool isLeaf() const { return (attributes & kLeafPage) != 0; }
};

// Decodes the page at `page` (kPageSize bytes) of a tag with keys of `keyLength` bytes whose
// dropped trailing bytes are `pad`. On a damaged page returns false with the reason in
// `problem` (a sentence fragment such as "the key counts do not fit the page").
bool decode(const char *page, int keyLength, char pad, Node *node, QString *problem);

// Appends the record numbers of the leaf at `page`, in order, without decoding its keys;
// false with the reason in `problem` for a page that is no leaf or whose counts do not fit.
bool leafRecords(const char *page, std::vector<quint32> *records, QString *problem);

// How a leaf packs its entries: FoxPro gives the duplicate and trailing counts the bits the
// key length needs, takes the fewest whole bytes that also hold the leaf's greatest record
// number, and gives the record number every bit left over.
struct PackedLayout
{
    int recordBits = 0;
    int countBits = 0; // of the duplicate count and of the trailing count each
    int entryBytes = 0;
};
PackedLayout leafLayout(int keyLength, quint32 greatestRecno);

// The leaf bytes `key` takes after `previous` (empty for the first key of a leaf).
int storedBytes(const QByteArray &previous, const QByteArray &key, char pad);

// The largest number of entries an interior page holds.
int interiorCapacity(int keyLength);

// Writes `node` into `page` (kPageSize bytes) as FoxPro lays it out: a leaf compressed, an
// interior page plain; the unused middle of the page is zeroed. False, with `page`
// unspecified, when the entries do not fit one page.
bool encode(const Node &node, int keyLength, char pad, char *page);

} // namespace plx::cdxnode
