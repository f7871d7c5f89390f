// services/recordsource/dbf/cdxtree.cpp: inserting, removing and finding keys in a tag's B-tree.
#include "services/recordsource/dbf/cdxtree_p.h"

#include <cstring>

namespace plx::cdxtree {

namespace {

// Far deeper than the few levels millions of keys need; a deeper tree is a damaged one.
constexpr int kMaxDepth = 64;

bool isPage(quint32 offset)
{
    return offset != 0 && offset != cdxnode::kNoPage;
}

int compareTo(const cdxnode::Entry &e, const QByteArray &key, quint32 recno)
{
    return compareEntries(e.key, e.recno, key, recno);
}

} // namespace

int compareEntries(const QByteArray &aKey, quint32 aRecno, const QByteArray &bKey, quint32 bRecno)
{
    const qsizetype n = std::min(aKey.size(), bKey.size());
    if (const int c = std::memcmp(aKey.constData(), bKey.constData(), size_t(n)); c != 0)
        return c;
    if (aKey.size() != bKey.size())
        return aKey.size() < bKey.size() ? -1 : 1;
    if (aRecno != bRecno)
        return aRecno < bRecno ? -1 : 1;
    return 0;
}

Status Tree::load(quint32 offset, cdxnode::Node *node) const
{
    char page[cdxnode::kPageSize];
    if (Status st = m_pages.read(offset, page); !st.isOk())
        return st;
    QString problem;
    if (!cdxnode::decode(page, m_tag.keyLength, m_tag.pad, node, &problem))
        return dbfio::fileError(
            Status::Code::Corrupt, m_pages.path(),
            QStringLiteral("the index page at %1 is damaged: %2").arg(offset).arg(problem));
    return {};
}

Status Tree::store(quint32 offset, const cdxnode::Node &node)
{
    char page[cdxnode::kPageSize];
    if (!cdxnode::encode(node, m_tag.keyLength, m_tag.pad, page))
        return dbfio::fileError(
            Status::Code::Corrupt, m_pages.path(),
            QStringLiteral("the keys of the page at %1 do not fit a page").arg(offset));
    return m_pages.write(offset, page);
}

Status Tree::setRoot(quint32 offset)
{
    return m_pages.writeWord(m_tag.headerOffset, offset);
}

// Patches one sibling link in place, leaving the rest of the page as it was written.
Status Tree::relink(quint32 offset, bool leftLink, quint32 value)
{
    char page[cdxnode::kPageSize];
    if (Status st = m_pages.read(offset, page); !st.isOk())
        return st;
    dbfio::putLe32(page + (leftLink ? 4 : 8), value);
    return m_pages.write(offset, page);
}

Status Tree::descend(const QByteArray &key, quint32 recno, Path *path) const
{
    path->clear();
    const Result<quint32> root = m_pages.readWord(m_tag.headerOffset);
    if (!root.isOk())
        return root.status();
    quint32 offset = *root;
    for (int depth = 0; depth <= kMaxDepth; ++depth) {
        Step step;
        step.offset = offset;
        if (Status st = load(offset, &step.node); !st.isOk())
            return st;
        const QList<cdxnode::Entry> &entries = step.node.entries;
        qsizetype i = 0;
        while (i < entries.size() && compareTo(entries[i], key, recno) < 0)
            ++i;
        if (step.node.isLeaf()) {
            step.index = i;
            path->append(std::move(step));
            return {};
        }
        if (entries.isEmpty())
            return dbfio::fileError(
                Status::Code::Corrupt, m_pages.path(),
                QStringLiteral("the interior index page at %1 has no keys").arg(offset));
        step.index = std::min(i, entries.size() - 1);
        offset = entries[step.index].child;
        path->append(std::move(step));
    }
    return dbfio::fileError(
        Status::Code::Corrupt, m_pages.path(),
        QStringLiteral("the index tree is deeper than %1 levels").arg(kMaxDepth));
}

Status Tree::insert(const QByteArray &key, quint32 recno)
{
    Path path;
    if (Status st = descend(key, recno, &path); !st.isOk())
        return st;
    Step &leaf = path.last();
    leaf.node.entries.insert(leaf.index, { key, recno, 0 });
    return rewrite(path, path.size() - 1);
}

Status Tree::remove(const QByteArray &key, quint32 recno)
{
    Path path;
    if (Status st = descend(key, recno, &path); !st.isOk())
        return st;
    Step &leaf = path.last();
    if (leaf.index >= leaf.node.entries.size()
        || compareTo(leaf.node.entries[leaf.index], key, recno) != 0)
        return dbfio::fileError(Status::Code::NotFound, m_pages.path(),
                                QStringLiteral("record %1 has no key in the index").arg(recno));
    leaf.node.entries.removeAt(leaf.index);
    return shrink(path, path.size() - 1);
}

Result<QList<quint32>> Tree::find(const QByteArray &key)
{
    Path path;
    if (Status st = descend(key, 0, &path); !st.isOk())
        return st;
    QList<quint32> found;
    cdxnode::Node node = path.last().node;
    qsizetype i = path.last().index;
    for (int pages = 0; pages < (1 << 20); ++pages) {
        for (; i < node.entries.size(); ++i) {
            if (node.entries[i].key != key)
                return found;
            found.append(node.entries[i].recno);
        }
        if (!isPage(node.right))
            return found;
        if (Status st = load(node.right, &node); !st.isOk())
            return st;
        i = 0;
    }
    return found;
}

Result<std::vector<quint32>> Tree::records() const
{
    Path path;
    if (Status st = descend(QByteArray(), 0, &path); !st.isOk())
        return st;
    std::vector<quint32> records;
    quint32 offset = path.last().offset;
    char page[cdxnode::kPageSize];
    QString problem;
    const Result<qint64> size = dbfio::fileSize(m_pages.handle(), m_pages.path());
    const qint64 pages = size.isOk() ? *size / cdxnode::kPageSize : 0;
    for (qint64 visited = 0; isPage(offset); ++visited) {
        if (visited > pages)
            return dbfio::fileError(Status::Code::Corrupt, m_pages.path(),
                                    QStringLiteral("the leaves' links form a cycle"));
        if (Status st = m_pages.read(offset, page); !st.isOk())
            return st;
        if (!cdxnode::leafRecords(page, &records, &problem))
            return dbfio::fileError(
                Status::Code::Corrupt, m_pages.path(),
                QStringLiteral("the index page at %1 is damaged: %2").arg(offset).arg(problem));
        offset = dbfio::le32(page + 8);
    }
    return records;
}

// Writes the node at `level` of `path`, splitting it when its entries outgrew the page.
Status Tree::rewrite(Path &path, qsizetype level)
{
    char page[cdxnode::kPageSize];
    if (!cdxnode::encode(path[level].node, m_tag.keyLength, m_tag.pad, page))
        return split(path, level);
    if (Status st = m_pages.write(path[level].offset, page); !st.isOk())
        return st;
    return updateParent(path, level);
}

Status Tree::updateParent(Path &path, qsizetype level)
{
    if (level == 0 || path[level].node.entries.isEmpty())
        return {};
    const cdxnode::Entry &last = path[level].node.entries.last();
    Step &parent = path[level - 1];
    cdxnode::Entry &entry = parent.node.entries[parent.index];
    if (entry.key == last.key && entry.recno == last.recno)
        return {};
    entry.key = last.key;
    entry.recno = last.recno;
    return rewrite(path, level - 1);
}

Status Tree::split(Path &path, qsizetype level)
{
    Step &step = path[level];
    cdxnode::Node right;
    right.attributes = step.node.attributes & ~cdxnode::kRootPage;
    const qsizetype half = step.node.entries.size() / 2;
    right.entries = step.node.entries.mid(half);
    step.node.entries.resize(half);
    const Result<quint32> rightOffset = m_pages.allocate();
    if (!rightOffset.isOk())
        return rightOffset.status();
    right.left = step.offset;
    right.right = step.node.right;
    if (isPage(step.node.right)) {
        if (Status st = relink(step.node.right, true, *rightOffset); !st.isOk())
            return st;
    }
    step.node.right = *rightOffset;
    if (Status st = store(*rightOffset, right); !st.isOk())
        return st;
    if (level == 0)
        return growRoot(step, right, *rightOffset);
    if (Status st = store(step.offset, step.node); !st.isOk())
        return st;
    const cdxnode::Entry &leftLast = step.node.entries.last();
    const cdxnode::Entry &rightLast = right.entries.last();
    Step &parent = path[level - 1];
    parent.node.entries[parent.index] = { leftLast.key, leftLast.recno, step.offset };
    parent.node.entries.insert(parent.index + 1, { rightLast.key, rightLast.recno, *rightOffset });
    return rewrite(path, level - 1);
}

Status Tree::growRoot(Step &left, const cdxnode::Node &right, quint32 rightOffset)
{
    left.node.attributes &= ~cdxnode::kRootPage;
    if (Status st = store(left.offset, left.node); !st.isOk())
        return st;
    cdxnode::Node root;
    root.attributes = cdxnode::kRootPage;
    const cdxnode::Entry &leftLast = left.node.entries.last();
    const cdxnode::Entry &rightLast = right.entries.last();
    root.entries = { { leftLast.key, leftLast.recno, left.offset },
                     { rightLast.key, rightLast.recno, rightOffset } };
    const Result<quint32> rootOffset = m_pages.allocate();
    if (!rootOffset.isOk())
        return rootOffset.status();
    if (Status st = store(*rootOffset, root); !st.isOk())
        return st;
    return setRoot(*rootOffset);
}

// After a remove: frees the node at `level` when it is empty (and its parent's entry with
// it), hands the root to its only child, or rewrites the node.
Status Tree::shrink(Path &path, qsizetype level)
{
    Step &step = path[level];
    if (level == 0 && !step.node.isLeaf() && step.node.entries.size() == 1) {
        cdxnode::Node child;
        const quint32 childOffset = step.node.entries.first().child;
        if (Status st = load(childOffset, &child); !st.isOk())
            return st;
        child.attributes |= cdxnode::kRootPage;
        if (Status st = store(childOffset, child); !st.isOk())
            return st;
        if (Status st = setRoot(childOffset); !st.isOk())
            return st;
        return m_pages.release(step.offset);
    }
    if (!step.node.entries.isEmpty())
        return rewrite(path, level);
    if (level == 0) {
        step.node.attributes |= cdxnode::kRootPage | cdxnode::kLeafPage;
        step.node.left = step.node.right = cdxnode::kNoPage;
        return store(step.offset, step.node);
    }
    if (isPage(step.node.left)) {
        if (Status st = relink(step.node.left, false, step.node.right); !st.isOk())
            return st;
    }
    if (isPage(step.node.right)) {
        if (Status st = relink(step.node.right, true, step.node.left); !st.isOk())
            return st;
    }
    if (Status st = m_pages.release(step.offset); !st.isOk())
        return st;
    Step &parent = path[level - 1];
    parent.node.entries.removeAt(parent.index);
    return shrink(path, level - 1);
}

} // namespace plx::cdxtree
