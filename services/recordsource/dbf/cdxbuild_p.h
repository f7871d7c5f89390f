// services/recordsource/dbf/cdxbuild_p.h: a tag's whole B-tree built at once from its sorted
// keys (a reindex), laid out as the pages key-by-key editing would have produced, filled.
//
// Leaves take as many keys as their compressed form holds; interior pages as many children
// as fit; every level is linked left to right, -1 at its ends; the root carries the root
// attribute, and an empty tag is one empty root leaf.
#pragma once

#include <QByteArray>
#include <QList>

namespace plx::cdxbuild {

struct SortedKeys
{
    const char *keys = nullptr; // count * keyLength bytes, in index order
    const quint32 *recnos = nullptr;
    qsizetype count = 0;
};

struct BuiltTree
{
    QByteArray pages; // page after page, the first at `firstOffset`
    quint32 root = 0;
};

// `leafBits` are extra attribute bits every leaf carries (Visual FoxPro's 0x04).
BuiltTree build(const SortedKeys &sorted, int keyLength, char pad, quint32 firstOffset,
                quint16 leafBits);

} // namespace plx::cdxbuild
