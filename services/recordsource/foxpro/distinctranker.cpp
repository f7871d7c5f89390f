// services/recordsource/foxpro/distinctranker.cpp: numbering and ranking distinct values.
#include "services/recordsource/foxpro/distinctranker_p.h"

#include <algorithm>
#include <cstring>

namespace plx::foxpro {

namespace {

// The first eight bytes of a value as a big-endian integer (blank padded when shorter), so
// that comparing the integers compares the bytes.
quint64 leadingBytes(const char *p, size_t length)
{
    unsigned char b[8] = { ' ', ' ', ' ', ' ', ' ', ' ', ' ', ' ' };
    std::memcpy(b, p, std::min<size_t>(length, 8));
    quint64 v = 0;
    for (unsigned char c : b)
        v = (v << 8) | c;
    return v;
}

} // namespace

DistinctRanker::DistinctRanker(size_t length) : m_length(length), m_buckets(1024, 0) { }

quint32 DistinctRanker::insert(size_t bucket, const char *p, quint64 hash)
{
    m_values.insert(m_values.end(), p, p + m_length);
    m_hashes.push_back(hash);
    m_buckets[bucket] = (hash & kTagMask) | m_hashes.size();
    return quint32(m_hashes.size() - 1);
}

void DistinctRanker::grow()
{
    std::vector<quint64> grown(m_buckets.size() * 2, 0);
    const size_t mask = grown.size() - 1;
    for (size_t id = 0; id < m_hashes.size(); ++id) {
        size_t i = size_t(m_hashes[id]) & mask;
        while (grown[i] != 0)
            i = (i + 1) & mask;
        grown[i] = (m_hashes[id] & kTagMask) | (id + 1);
    }
    m_buckets.swap(grown);
}

std::vector<quint32> DistinctRanker::ranksOfIds() const
{
    // Sort by the leading bytes, the rest only to settle ties.
    struct Distinct
    {
        quint64 lead;
        quint32 id;
    };
    std::vector<Distinct> order(m_hashes.size());
    for (size_t id = 0; id < order.size(); ++id)
        order[id] = { leadingBytes(m_values.data() + id * m_length, m_length), quint32(id) };
    const char *values = m_values.data();
    const size_t length = m_length;
    std::sort(order.begin(), order.end(), [values, length](const Distinct &a, const Distinct &b) {
        if (a.lead != b.lead)
            return a.lead < b.lead;
        if (length <= 8)
            return false;
        return std::memcmp(values + size_t(a.id) * length + 8, values + size_t(b.id) * length + 8,
                           length - 8)
            < 0;
    });
    std::vector<quint32> rank(order.size());
    for (size_t r = 0; r < order.size(); ++r)
        rank[order[r].id] = quint32(r);
    return rank;
}

std::vector<quint32> DistinctRanker::ranksOfIds(const SortKeyOf &keyOf) const
{
    // As above: the first four code units of the key as one integer, the rest only to settle
    // ties.
    struct Keyed
    {
        quint64 lead;
        QString key;
        quint32 id;
    };
    std::vector<Keyed> order(m_hashes.size());
    for (size_t id = 0; id < order.size(); ++id) {
        QString key = keyOf(QByteArrayView(m_values.data() + id * m_length, qsizetype(m_length)));
        quint64 lead = 0;
        for (qsizetype i = 0; i < 4; ++i)
            lead = (lead << 16) | (i < key.size() ? key.at(i).unicode() : 0u);
        order[id] = { lead, std::move(key), quint32(id) };
    }
    std::sort(order.begin(), order.end(), [](const Keyed &a, const Keyed &b) {
        return a.lead != b.lead ? a.lead < b.lead : a.key < b.key;
    });
    std::vector<quint32> rank(order.size());
    quint32 r = 0;
    for (size_t i = 0; i < order.size(); ++i) {
        if (i > 0 && order[i - 1].key != order[i].key)
            ++r;
        rank[order[i].id] = r;
    }
    return rank;
}

} // namespace plx::foxpro
