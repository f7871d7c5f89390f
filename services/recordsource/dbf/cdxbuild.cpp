// services/recordsource/dbf/cdxbuild.cpp: packing sorted keys into leaves and interior pages.
#include "services/recordsource/dbf/cdxbuild_p.h"

#include "services/recordsource/dbf/cdxnode_p.h"
#include "services/recordsource/dbf/dbfio_p.h"

#include <algorithm>

namespace plx::cdxbuild {

namespace {

constexpr int kLeafHeader = 24;

int storedBytes(const char *previous, const char *key, int keyLength, char pad)
{
    int dup = 0;
    if (previous)
        while (dup < keyLength && previous[dup] == key[dup])
            ++dup;
    int trail = 0;
    while (trail < keyLength - dup && key[keyLength - 1 - trail] == pad)
        ++trail;
    return keyLength - dup - trail;
}

class Builder
{
public:
    Builder(int keyLength, char pad, quint32 firstOffset)
        : m_keyLength(keyLength), m_pad(pad), m_first(firstOffset)
    {
    }

    // Appends the level's nodes as pages and returns their entries for the level above.
    QList<cdxnode::Entry> writeLevel(QList<cdxnode::Node> &nodes)
    {
        QList<cdxnode::Entry> parents;
        const quint32 base = m_first + quint32(m_pages.size());
        for (qsizetype i = 0; i < nodes.size(); ++i) {
            cdxnode::Node &node = nodes[i];
            node.left = i == 0 ? cdxnode::kNoPage : base + quint32(i - 1) * cdxnode::kPageSize;
            node.right = i + 1 == nodes.size() ? cdxnode::kNoPage
                                               : base + quint32(i + 1) * cdxnode::kPageSize;
            if (nodes.size() == 1)
                node.attributes |= cdxnode::kRootPage;
            const qsizetype at = m_pages.size();
            m_pages.resize(at + cdxnode::kPageSize);
            cdxnode::encode(node, m_keyLength, m_pad, m_pages.data() + at);
            const cdxnode::Entry &last =
                node.entries.isEmpty() ? cdxnode::Entry{} : node.entries.last();
            parents.append({ last.key, last.recno, base + quint32(i) * cdxnode::kPageSize });
        }
        return parents;
    }

    QList<cdxnode::Node> leaves(const SortedKeys &sorted, quint16 leafBits) const
    {
        QList<cdxnode::Node> nodes;
        cdxnode::Node node;
        node.attributes = cdxnode::kLeafPage | leafBits;
        int stored = 0;
        quint32 greatest = 0;
        const char *previous = nullptr;
        for (qsizetype i = 0; i < sorted.count; ++i) {
            const char *key = sorted.keys + i * m_keyLength;
            const quint32 recno = sorted.recnos[i];
            const int bytes = storedBytes(previous, key, m_keyLength, m_pad);
            const quint32 top = std::max(greatest, recno);
            const int entryBytes = cdxnode::leafLayout(m_keyLength, top).entryBytes;
            if (kLeafHeader + (node.entries.size() + 1) * entryBytes + stored + bytes
                > cdxnode::kPageSize) {
                nodes.append(std::move(node));
                node = {};
                node.attributes = cdxnode::kLeafPage | leafBits;
                previous = nullptr;
                stored = 0;
                greatest = 0;
                --i;
                continue;
            }
            node.entries.append({ QByteArray(key, m_keyLength), recno, 0 });
            stored += bytes;
            greatest = top;
            previous = key;
        }
        if (!node.entries.isEmpty() || nodes.isEmpty())
            nodes.append(std::move(node));
        return nodes;
    }

    QList<cdxnode::Node> interiors(const QList<cdxnode::Entry> &children) const
    {
        const int capacity = cdxnode::interiorCapacity(m_keyLength);
        QList<cdxnode::Node> nodes;
        for (qsizetype i = 0; i < children.size(); i += capacity) {
            cdxnode::Node node;
            node.entries = children.mid(i, capacity);
            nodes.append(std::move(node));
        }
        return nodes;
    }

    BuiltTree finish()
    {
        const auto root = quint32(m_first + m_pages.size() - cdxnode::kPageSize);
        return { std::move(m_pages), root };
    }

private:
    int m_keyLength;
    char m_pad;
    quint32 m_first;
    QByteArray m_pages;
};

} // namespace

BuiltTree build(const SortedKeys &sorted, int keyLength, char pad, quint32 firstOffset,
                quint16 leafBits)
{
    Builder builder(keyLength, pad, firstOffset);
    QList<cdxnode::Node> level = builder.leaves(sorted, leafBits);
    QList<cdxnode::Entry> parents = builder.writeLevel(level);
    while (parents.size() > 1) {
        level = builder.interiors(parents);
        parents = builder.writeLevel(level);
    }
    return builder.finish();
}

} // namespace plx::cdxbuild
