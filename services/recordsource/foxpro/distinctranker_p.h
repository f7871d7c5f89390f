// services/recordsource/foxpro/distinctranker_p.h: ranks of fixed-length byte values.
//
// Tables repeat their values a lot (names, cities, states): numbering the distinct values as
// they come, sorting only the distinct ones and then comparing small integers is far cheaper
// than comparing the bytes of every pair of records. The distinct values are copied together,
// so that comparing them does not wander over the whole file.
#pragma once

#include "services/recordsource/textcompare.h"

#include <QByteArrayView>
#include <QString>

#include <cstring>
#include <functional>
#include <vector>

namespace plx::foxpro {

class DistinctRanker
{
public:
    explicit DistinctRanker(size_t length);

    // The id of the value's `length` bytes at `p`: 0, 1, 2... in order of first appearance.
    quint32 add(const char *p)
    {
        if (m_hashes.size() * 2 >= m_buckets.size())
            grow();
        const quint64 h = hashOf(p);
        const quint64 tag = h & kTagMask;
        const size_t mask = m_buckets.size() - 1;
        for (size_t i = size_t(h) & mask;; i = (i + 1) & mask) {
            const quint64 bucket = m_buckets[i];
            if (bucket == 0)
                return insert(i, p, h);
            const quint32 id = quint32(bucket) - 1;
            if ((bucket & kTagMask) == tag && equal(id, p))
                return id;
        }
    }

    // rank[id]: the position of value `id` among the distinct values in byte order.
    std::vector<quint32> ranksOfIds() const;
    // rank[id] in the order of the values' sort keys, `keyOf` asked once per distinct value
    // (its `length` bytes); values whose keys are equal share a rank.
    using SortKeyOf = std::function<QString(QByteArrayView value)>;
    std::vector<quint32> ranksOfIds(const SortKeyOf &keyOf) const;

private:
    // A bucket holds id + 1 (0 = empty) in its low half and the high half of the value's hash
    // in the other, so that a probe touches the stored bytes only when the hashes agree.
    static constexpr quint64 kTagMask = 0xFFFFFFFF00000000ull;

    quint64 hashOf(const char *p) const
    {
        quint64 h = 0x9E3779B97F4A7C15ull ^ m_length;
        size_t i = 0;
        for (; i + 8 <= m_length; i += 8) {
            quint64 w;
            std::memcpy(&w, p + i, 8);
            h = (h ^ w) * 0xFF51AFD7ED558CCDull;
            h ^= h >> 32;
        }
        for (; i < m_length; ++i)
            h = (h ^ static_cast<unsigned char>(p[i])) * 0x100000001B3ull;
        return h ^ (h >> 29);
    }
    // Word by word: the values are short, and a library call per probe costs more than the
    // comparison.
    bool equal(quint32 id, const char *p) const
    {
        const char *v = m_values.data() + size_t(id) * m_length;
        size_t i = 0;
        for (; i + 8 <= m_length; i += 8) {
            quint64 a, b;
            std::memcpy(&a, v + i, 8);
            std::memcpy(&b, p + i, 8);
            if (a != b)
                return false;
        }
        for (; i < m_length; ++i) {
            if (v[i] != p[i])
                return false;
        }
        return true;
    }
    quint32 insert(size_t bucket, const char *p, quint64 hash);
    void grow();

    size_t m_length;
    std::vector<char> m_values; // the distinct values, m_length bytes each
    std::vector<quint64> m_hashes; // per id
    std::vector<quint64> m_buckets;
};

// An ORDER BY field whose values are numbered during the scan that selects the records, while
// each record's bytes are in the cache anyway: of the selected records in keyset order, or of
// every record of the file (deleted ones too) in record order when the ranks are to be kept.
struct ScanRanking
{
    size_t orderIndex; // the ORDER BY item
    int field;
    int offset; // of the field in the record
    TextCompare order; // how a character field's values rank; byte order for the others
    bool everyRecord;
    DistinctRanker ranker;
    std::vector<quint32> ids;
};

} // namespace plx::foxpro
