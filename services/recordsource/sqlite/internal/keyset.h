// services/recordsource/sqlite/internal/keyset.h: the ordered rowids of an open record source.
//
// A million-record source keeps a million keys for as long as it is open, so they are
// stored in fixed chunks of 8-byte keys: growing never copies the keys already read and
// never holds two copies at once (a doubling std::vector peaks at three times the final
// size while it grows), so the whole keyset costs 8 bytes a record plus one pointer per
// 65,536 records.
#pragma once

#include <QtGlobal>

#include <functional>
#include <memory>
#include <vector>

namespace plx::sqlite {

class KeySet
{
public:
    qint64 size() const { return m_size; }
    bool isEmpty() const { return m_size == 0; }
    qint64 at(qint64 index) const
    {
        return m_chunks[size_t(index >> ChunkBits)][index & ChunkMask];
    }
    void append(qint64 key);
    // Removes the key at `index`; the keys behind it move up one place.
    void removeAt(qint64 index);
    // Moves the key at `from` to `to`; the keys between them move one place towards `from`.
    void move(qint64 from, qint64 to);
    void clear();
    // The first index at or after `from` whose key satisfies `match`; -1 when none does.
    qint64 indexWhere(qint64 from, const std::function<bool(qint64)> &match) const;
    // The first index at or after `from` holding `key`; -1 when there is none.
    qint64 indexOf(qint64 from, qint64 key) const;
    // Bytes held for the keys.
    size_t bytes() const { return m_chunks.size() * ChunkSize * sizeof(qint64); }

private:
    static constexpr int ChunkBits = 16;
    static constexpr qint64 ChunkSize = qint64(1) << ChunkBits;
    static constexpr qint64 ChunkMask = ChunkSize - 1;

    qint64 &slot(qint64 index) { return m_chunks[size_t(index >> ChunkBits)][index & ChunkMask]; }

    std::vector<std::unique_ptr<qint64[]>> m_chunks;
    qint64 m_size = 0;
};

} // namespace plx::sqlite
