// services/recordsource/dbf/cdxtree_p.h: one tag's B-tree, edited key by key.
//
// Entries are ordered by key bytes, then by record number, so that every (key, record)
// pair has one place. An interior entry holds the greatest pair under its child. An insert
// that overflows a page splits it in two (the upper half to a new page, linked between the
// page and its right neighbour) and adds the new page to the parent, splitting upwards and
// growing a new root when the old one splits. A remove that empties a page frees it onto the
// free list and takes it out of its parent and its level's sibling chain; a root left with
// one child hands the root over to it. Parent keys follow the greatest key of their child.
#pragma once

#include "services/recordsource/dbf/cdxnode_p.h"
#include "services/recordsource/dbf/cdxpages_p.h"

#include <optional>

namespace plx::cdxtree {

struct Tag
{
    quint32 headerOffset = 0; // the root's offset is the header's first word
    int keyLength = 0;
    char pad = ' ';
};

class Tree
{
public:
    Tree(cdxpages::PageFile &pages, const Tag &tag) : m_pages(pages), m_tag(tag) { }

    Status insert(const QByteArray &key, quint32 recno);
    // NotFound (naming the record) when the pair is not in the tree.
    Status remove(const QByteArray &key, quint32 recno);
    // The record numbers filed under `key`, in order.
    Result<QList<quint32>> find(const QByteArray &key);
    // Every record number of the tree in key order, read from the leaves left to right.
    Result<std::vector<quint32>> records() const;

private:
    struct Step
    {
        quint32 offset = 0;
        cdxnode::Node node;
        qsizetype index = 0;
    };
    using Path = QList<Step>;

    Status load(quint32 offset, cdxnode::Node *node) const;
    Status store(quint32 offset, const cdxnode::Node &node);
    Status descend(const QByteArray &key, quint32 recno, Path *path) const;
    Status rewrite(Path &path, qsizetype level);
    Status split(Path &path, qsizetype level);
    Status growRoot(Step &left, const cdxnode::Node &right, quint32 rightOffset);
    Status updateParent(Path &path, qsizetype level);
    Status shrink(Path &path, qsizetype level);
    Status relink(quint32 offset, bool leftLink, quint32 value);
    Status setRoot(quint32 offset);

    cdxpages::PageFile &m_pages;
    Tag m_tag;
};

// Compares (key, recno) pairs in index order.
int compareEntries(const QByteArray &aKey, quint32 aRecno, const QByteArray &bKey, quint32 bRecno);

} // namespace plx::cdxtree
