// services/recordsource/dbf/cdxcheck.cpp: the consistency checker of a compound index.
//
// Every tag is walked level by level from its root: each level's pages must be linked left
// to right in the order their parent lists them (-1 at both ends), interior keys must be the
// last key of their child, leaves must all sit at one depth and the keys must rise in
// (key, record number) order. The keys found must be exactly those the table gives: one per
// record that passes the FOR clause (deleted records included), each the key expression's
// value on its record, and for a unique tag one per key, under the lowest record. The free
// list must stay inside the file, end, and share no page with a tree.
#include "services/recordsource/dbf/cdxindex_p.h"

#include "services/recordsource/dbf/internal/dbftable.h"

#include <QSet>

#include <algorithm>

namespace plx {

namespace {

Status inconsistent(const QString &path, const QString &what)
{
    return dbfio::fileError(Status::Code::Corrupt, path, what);
}

struct Walked
{
    QList<cdxnode::Entry> entries;
    QSet<quint32> pages;
};

QString keyText(const QByteArray &key)
{
    return QString::fromLatin1(key.toHex());
}

} // namespace

namespace cdxcheck {

// One level of a tag's tree: its pages in order, each with its decoded node.
struct Level
{
    QList<quint32> offsets;
    QList<cdxnode::Node> nodes;
};

Status checkLevel(const cdxpages::PageFile &pages, const CdxTag &tag, char pad, bool rootLevel,
                  Level &level, Walked *walked, Level *below)
{
    const QString name = QStringLiteral("tag %1: ").arg(tag.name);
    for (qsizetype i = 0; i < level.offsets.size(); ++i) {
        const quint32 offset = level.offsets[i];
        if (walked->pages.contains(offset))
            return inconsistent(pages.path(),
                                name + QStringLiteral("page %1 is reached twice").arg(offset));
        walked->pages.insert(offset);
        char page[cdxnode::kPageSize];
        if (Status st = pages.read(offset, page); !st.isOk())
            return st;
        cdxnode::Node &node = level.nodes.emplace_back();
        QString problem;
        if (!cdxnode::decode(page, tag.keyLength, pad, &node, &problem))
            return inconsistent(pages.path(),
                                name + QStringLiteral("page %1: %2").arg(offset).arg(problem));
        const quint32 left = i == 0 ? cdxnode::kNoPage : level.offsets[i - 1];
        const quint32 right =
            i + 1 == level.offsets.size() ? cdxnode::kNoPage : level.offsets[i + 1];
        if (node.left != left || node.right != right)
            return inconsistent(
                pages.path(),
                name
                    + QStringLiteral("page %1 links to %2 and %3 instead of %4 and %5")
                          .arg(offset)
                          .arg(node.left)
                          .arg(node.right)
                          .arg(left)
                          .arg(right));
        if (((node.attributes & cdxnode::kRootPage) != 0) != rootLevel)
            return inconsistent(
                pages.path(),
                name + QStringLiteral("page %1 has the wrong root attribute").arg(offset));
        if (node.entries.isEmpty() && !(rootLevel && node.isLeaf()))
            return inconsistent(pages.path(),
                                name + QStringLiteral("page %1 is empty").arg(offset));
        if (node.isLeaf() != level.nodes.first().isLeaf())
            return inconsistent(
                pages.path(),
                name + QStringLiteral("page %1 is not at its level's depth").arg(offset));
        if (node.isLeaf()) {
            walked->entries.append(node.entries);
            continue;
        }
        for (const cdxnode::Entry &e : std::as_const(node.entries))
            below->offsets.append(e.child);
    }
    return {};
}

// The parent entries of `upper` must each be the last entry of their child in `lower`.
Status checkParentKeys(const QString &path, const CdxTag &tag, const Level &upper,
                       const Level &lower)
{
    qsizetype child = 0;
    for (const cdxnode::Node &node : upper.nodes) {
        for (const cdxnode::Entry &e : node.entries) {
            const cdxnode::Node &c = lower.nodes[child++];
            if (c.entries.isEmpty() || c.entries.last().key != e.key
                || c.entries.last().recno != e.recno)
                return inconsistent(
                    path,
                    QStringLiteral("tag %1: the interior key of page %2 is not its last key")
                        .arg(tag.name)
                        .arg(e.child));
        }
    }
    return {};
}

Status walkTag(const cdxpages::PageFile &pages, const CdxTag &tag, char pad, Walked *walked)
{
    const Result<quint32> root = pages.readWord(tag.headerOffset);
    if (!root.isOk())
        return root.status();
    Level level;
    level.offsets = { *root };
    Level upper;
    for (int depth = 0; !level.offsets.isEmpty(); ++depth) {
        if (depth > 64)
            return inconsistent(pages.path(), QStringLiteral("tag %1 is too deep").arg(tag.name));
        Level below;
        if (Status st = checkLevel(pages, tag, pad, depth == 0, level, walked, &below); !st.isOk())
            return st;
        if (depth > 0) {
            if (Status st = checkParentKeys(pages.path(), tag, upper, level); !st.isOk())
                return st;
        }
        upper = std::move(level);
        level = std::move(below);
    }
    return {};
}

} // namespace cdxcheck

Status CdxIndex::checkTag(int t, QSet<quint32> *treePages) const
{
    const CdxTag &tag = tags()[t];
    const cdxpages::PageFile pages(m_fd, path());
    Walked walked;
    if (Status st = cdxcheck::walkTag(pages, tag, m_compiled[size_t(t)].pad, &walked); !st.isOk())
        return st;
    treePages->unite(walked.pages);
    QList<cdxnode::Entry> expected;
    for (quint32 r = 1; r <= m_table->recordCount(); ++r) {
        const Result<Keys> keys = keysOf(r);
        if (!keys.isOk())
            return keys.status();
        if ((*keys)[t])
            expected.append({ *(*keys)[t], r, 0 });
    }
    std::sort(expected.begin(), expected.end(), [](const auto &a, const auto &b) {
        return cdxtree::compareEntries(a.key, a.recno, b.key, b.recno) < 0;
    });
    if (tag.unique)
        expected.erase(std::unique(expected.begin(), expected.end(),
                                   [](const auto &a, const auto &b) { return a.key == b.key; }),
                       expected.end());
    const QList<cdxnode::Entry> &found = walked.entries;
    for (qsizetype i = 0; i < std::max(found.size(), expected.size()); ++i) {
        if (i > 0 && i < found.size()
            && cdxtree::compareEntries(found[i - 1].key, found[i - 1].recno, found[i].key,
                                       found[i].recno)
                >= 0)
            return inconsistent(
                path(),
                QStringLiteral("tag %1: the keys of records %2 and %3 are out of order")
                    .arg(tag.name)
                    .arg(found[i - 1].recno)
                    .arg(found[i].recno));
        // At the first difference, the entry that sorts first is the one the other side lacks.
        const bool missing = i >= found.size()
            || (i < expected.size()
                && cdxtree::compareEntries(expected[i].key, expected[i].recno, found[i].key,
                                           found[i].recno)
                    < 0);
        if (missing)
            return inconsistent(path(),
                                QStringLiteral("tag %1: record %2 has no key %3 in the index")
                                    .arg(tag.name)
                                    .arg(expected[i].recno)
                                    .arg(keyText(expected[i].key)));
        if (i >= expected.size() || found[i].key != expected[i].key
            || found[i].recno != expected[i].recno)
            return inconsistent(path(),
                                QStringLiteral("tag %1: the index files record %2 under key %3, "
                                               "which the table does not give it")
                                    .arg(tag.name)
                                    .arg(found[i].recno)
                                    .arg(keyText(found[i].key)));
    }
    return {};
}

Status CdxIndex::check() const
{
    const Result<bool> marked = stale();
    if (!marked.isOk())
        return marked.status();
    if (*marked)
        return inconsistent(
            path(), QStringLiteral("an update of the index was cut short; it needs rebuilding"));
    QSet<quint32> treePages;
    for (qsizetype t = 0; t < tags().size(); ++t) {
        if (Status st = checkTag(int(t), &treePages); !st.isOk())
            return st;
    }
    const cdxpages::PageFile pages(m_fd, path());
    Result<quint32> next = pages.readWord(cdxpages::kFreeListAt);
    QSet<quint32> free;
    while (next.isOk() && *next != 0 && *next != cdxnode::kNoPage) {
        if (*next % cdxnode::kPageSize != 0 || free.contains(*next) || treePages.contains(*next)
            || *next < 2 * cdxnode::kPageSize)
            return inconsistent(path(),
                                QStringLiteral("the free list is damaged at page %1").arg(*next));
        free.insert(*next);
        char page[cdxnode::kPageSize];
        if (Status st = pages.read(*next, page); !st.isOk())
            return st;
        next = pages.readWord(*next);
    }
    return next.status();
}

} // namespace plx
