// services/recordsource/sqlite/keyset.cpp: chunked storage of a record source's keys.
#include "services/recordsource/sqlite/internal/keyset.h"

#include <algorithm>

namespace plx::sqlite {

void KeySet::append(qint64 key)
{
    if (m_size == qint64(m_chunks.size()) * ChunkSize)
        m_chunks.push_back(std::make_unique_for_overwrite<qint64[]>(size_t(ChunkSize)));
    slot(m_size++) = key;
}

void KeySet::removeAt(qint64 index)
{
    if (index < 0 || index >= m_size)
        return;
    for (qint64 i = index; i < m_size - 1; ++i)
        slot(i) = at(i + 1);
    --m_size;
    if (m_size <= qint64(m_chunks.size() - 1) * ChunkSize)
        m_chunks.pop_back();
}

void KeySet::move(qint64 from, qint64 to)
{
    if (from < 0 || from >= m_size || to < 0 || to >= m_size || from == to)
        return;
    const qint64 key = at(from);
    if (from < to) {
        for (qint64 i = from; i < to; ++i)
            slot(i) = at(i + 1);
    } else {
        for (qint64 i = from; i > to; --i)
            slot(i) = at(i - 1);
    }
    slot(to) = key;
}

void KeySet::clear()
{
    m_chunks.clear();
    m_size = 0;
}

qint64 KeySet::indexWhere(qint64 from, const std::function<bool(qint64)> &match) const
{
    for (qint64 i = std::max<qint64>(from, 0); i < m_size; ++i) {
        if (match(at(i)))
            return i;
    }
    return -1;
}

qint64 KeySet::indexOf(qint64 from, qint64 key) const
{
    qint64 i = std::max<qint64>(from, 0);
    while (i < m_size) {
        const qint64 chunkEnd = std::min((i | ChunkMask) + 1, m_size);
        const qint64 *base = m_chunks[size_t(i >> ChunkBits)].get();
        const qint64 *begin = base + (i & ChunkMask);
        const qint64 *end = base + ((chunkEnd - 1) & ChunkMask) + 1;
        const qint64 *hit = std::find(begin, end, key);
        if (hit != end)
            return i + (hit - begin);
        i = chunkEnd;
    }
    return -1;
}

} // namespace plx::sqlite
