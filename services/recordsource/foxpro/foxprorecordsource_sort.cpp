// services/recordsource/foxpro/foxprorecordsource_sort.cpp: ORDER BY over the keyset.
//
// Every key becomes one small integer per record, its rank: for character, date and logical
// fields the rank of the stored bytes among the field's distinct values (FoxPro's own index
// order), for anything else the rank of the Jet value. The ranks of all keys are packed into
// one 64-bit integer where they fit, and the records sorted by that integer with a stable
// radix sort, which leaves ties in record order.
#include "services/recordsource/foxpro/foxprorecordsource.h"
#include "services/recordsource/foxpro/rankcache.h"
#include "services/recordsource/foxpro/recordrow_p.h"

#include "services/recordsource/jet/values.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <numeric>

namespace plx::foxpro {

namespace {

using jet::NodeKind;

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

// The rank of each listed record's stored bytes of one field among the distinct values, in
// byte order: rank[i] for the record recnoAt(i), i < count. Tables repeat their values a lot
// (names, cities, states), so sorting the distinct values and then comparing small integers
// is far cheaper than comparing the bytes of every pair. The distinct values are copied
// together, so that comparing them does not wander over the whole file.
template<typename RecnoAt>
std::vector<quint32> byteRanks(const DbfTable &table, int field, size_t count, RecnoAt recnoAt)
{
    const size_t length = size_t(table.fields().at(field).length);
    auto hashOf = [length](const char *p) {
        quint64 h = 0x9E3779B97F4A7C15ull ^ length;
        size_t i = 0;
        for (; i + 8 <= length; i += 8) {
            quint64 w;
            std::memcpy(&w, p + i, 8);
            h = (h ^ w) * 0xFF51AFD7ED558CCDull;
            h ^= h >> 32;
        }
        for (; i < length; ++i)
            h = (h ^ static_cast<unsigned char>(p[i])) * 0x100000001B3ull;
        return h ^ (h >> 29);
    };
    // An open-addressing table of distinct values (ids + 1, 0 = empty), grown at half load.
    std::vector<char> arena; // the distinct values, `length` bytes each
    std::vector<quint64> distinctHash;
    std::vector<quint32> buckets(1024, 0);
    auto insert = [&](const char *p, quint64 h) -> quint32 {
        const size_t mask = buckets.size() - 1;
        for (size_t i = size_t(h) & mask;; i = (i + 1) & mask) {
            const quint32 slot = buckets[i];
            if (slot == 0) {
                arena.insert(arena.end(), p, p + length);
                distinctHash.push_back(h);
                buckets[i] = quint32(distinctHash.size());
                return quint32(distinctHash.size() - 1);
            }
            if (distinctHash[slot - 1] == h
                && std::memcmp(arena.data() + size_t(slot - 1) * length, p, length) == 0)
                return slot - 1;
        }
    };
    std::vector<quint32> rank(count);
    for (size_t r = 0; r < count; ++r) {
        if (distinctHash.size() * 2 >= buckets.size()) {
            std::vector<quint32> grown(buckets.size() * 2, 0);
            const size_t mask = grown.size() - 1;
            for (size_t d = 0; d < distinctHash.size(); ++d) {
                size_t i = size_t(distinctHash[d]) & mask;
                while (grown[i] != 0)
                    i = (i + 1) & mask;
                grown[i] = quint32(d + 1);
            }
            buckets.swap(grown);
        }
        const char *p = table.fieldBytes(recnoAt(r), field);
        rank[r] = insert(p, hashOf(p));
    }
    // Sort the distinct values by their leading bytes, the rest only to settle ties.
    struct Distinct
    {
        quint64 lead;
        quint32 id;
    };
    std::vector<Distinct> order(distinctHash.size());
    for (size_t d = 0; d < order.size(); ++d)
        order[d] = { leadingBytes(arena.data() + d * length, length), quint32(d) };
    const char *values = arena.data();
    std::sort(order.begin(), order.end(), [values, length](const Distinct &a, const Distinct &b) {
        if (a.lead != b.lead)
            return a.lead < b.lead;
        if (length <= 8)
            return false;
        return std::memcmp(values + size_t(a.id) * length + 8, values + size_t(b.id) * length + 8,
                           length - 8)
            < 0;
    });
    std::vector<quint32> rankOfId(order.size());
    for (size_t r = 0; r < order.size(); ++r)
        rankOfId[order[r].id] = quint32(r);
    for (quint32 &r : rank)
        r = rankOfId[r];
    return rank;
}

// Stable least-significant-digit radix sort of `values` on bits [low, low + bits), 11 bits a
// pass; a pass whose digit is the same for every value is skipped.
void radixSort(std::vector<quint64> &values, int low, int bits)
{
    constexpr int kDigitBits = 11;
    constexpr quint64 kMask = (quint64(1) << kDigitBits) - 1;
    std::vector<quint64> scratch(values.size());
    std::vector<size_t> count(size_t(kMask) + 1);
    for (int shift = low; shift < low + bits; shift += kDigitBits) {
        std::fill(count.begin(), count.end(), 0);
        for (const quint64 v : values)
            ++count[(v >> shift) & kMask];
        if (std::find(count.begin(), count.end(), values.size()) != count.end())
            continue;
        size_t sum = 0;
        for (size_t &c : count)
            sum += std::exchange(c, sum);
        for (const quint64 v : values)
            scratch[count[(v >> shift) & kMask]++] = v;
        values.swap(scratch);
    }
}

int bitsFor(quint32 maxValue)
{
    return maxValue == 0 ? 0 : int(std::bit_width(maxValue));
}

} // namespace

// The byte ranks of a C, D or L field for the keyset. A query over (most of) the whole table
// ranks every record and keeps the ranks for the next query on the same file (the find in
// the same order); a narrower query uses kept ranks when there are some, else ranks only
// its own records.
FoxProRecordSource::KeyRanks FoxProRecordSource::fieldRanks(int field) const
{
    const DbfTable &table = *m_table;
    Result<DbfChangeStamp> stamp = table.changeStamp();
    KeyRanks result;
    if (stamp.isOk()) {
        result.kept = RankCache::global().find(stamp.value(), field);
        const bool wholeTable = m_keys.size() * 2 >= size_t(table.recordCount());
        if (!result.kept && wholeTable && stamp->settled) {
            // Indexed by record number: entry 0 stands for no record and ranks record 1.
            std::vector<quint32> ranks =
                byteRanks(table, field, size_t(table.recordCount()) + 1,
                          [](size_t i) { return quint32(std::max<size_t>(i, 1)); });
            result.kept = std::make_shared<const std::vector<quint32>>(std::move(ranks));
            Result<DbfChangeStamp> after = table.changeStamp();
            if (after.isOk() && after->sameContents(stamp.value()))
                RankCache::global().store(stamp.value(), field, result.kept);
        }
    }
    if (result.kept && !m_keys.empty() && m_keys.back() >= result.kept->size())
        result.kept = nullptr; // records appended since: rank them afresh
    if (!result.kept)
        result.own = byteRanks(table, field, m_keys.size(), [this](size_t i) { return m_keys[i]; });
    return result;
}

// Sorts the keys. Character, date and logical fields compare by their stored bytes (blank
// padded, so shorter texts come first, in the code page's byte order as FoxPro's own
// indexes); numeric fields by value; any other expression by its Jet value. Nulls first,
// ties in record order.
Status FoxProRecordSource::sort(const std::vector<jet::OrderItem> &order)
{
    if (order.empty() || m_keys.size() < 2)
        return Status::ok();
    const DbfTable &table = *m_table;
    const size_t n = m_keys.size();
    std::vector<KeyRanks> keys;
    RecordRow row(table);
    for (const jet::OrderItem &item : order) {
        const bool column = item.expr->kind == NodeKind::Column;
        const char type = column ? table.fields().at(item.expr->column).type : 0;
        KeyRanks key;
        if (type == 'C' || type == 'D' || type == 'L') {
            key = fieldRanks(item.expr->column);
        } else {
            std::vector<QVariant> values(n);
            for (size_t i = 0; i < n; ++i) {
                row.setRecord(m_keys[i]);
                Result<QVariant> v = jet::evaluate(*item.expr, &row, TextCompare::Binary);
                if (!v.isOk())
                    return v.status();
                values[i] = v.value();
            }
            auto valueLess = [&values](quint32 a, quint32 b) {
                const QVariant &x = values[a], &y = values[b];
                if (jet::isNull(x) || jet::isNull(y))
                    return jet::isNull(x) && !jet::isNull(y); // Null first
                Result<int> c = jet::compareValues(x, y, TextCompare::Binary, 0);
                return c.isOk() && c.value() < 0;
            };
            std::vector<quint32> byValue(n);
            std::iota(byValue.begin(), byValue.end(), quint32(0));
            std::stable_sort(byValue.begin(), byValue.end(), valueLess);
            key.own.resize(n);
            quint32 r = 0;
            for (size_t i = 0; i < n; ++i) {
                if (i > 0 && valueLess(byValue[i - 1], byValue[i]))
                    ++r;
                key.own[byValue[i]] = r;
            }
        }
        key.descending = item.descending;
        quint32 top = 0;
        for (size_t i = 0; i < n; ++i)
            top = std::max(top, key.raw(m_keys, i));
        key.top = top;
        keys.push_back(std::move(key));
    }

    // One 64-bit integer per record: the ranks, first key highest, above the record's index
    // in the keyset. A stable radix sort on the rank bits then leaves ties in record order.
    const int indexBits = bitsFor(quint32(n - 1));
    int rankBits = 0;
    for (const KeyRanks &k : keys)
        rankBits += bitsFor(k.top);
    if (rankBits + indexBits <= 64) {
        std::vector<quint64> packed(n);
        for (size_t i = 0; i < n; ++i) {
            quint64 v = 0;
            for (const KeyRanks &k : keys)
                v = (v << bitsFor(k.top)) | k.rank(m_keys, i);
            packed[i] = (v << indexBits) | i;
        }
        radixSort(packed, indexBits, rankBits);
        const quint64 indexMask = (quint64(1) << indexBits) - 1;
        std::vector<quint32> sorted(n);
        for (size_t i = 0; i < n; ++i)
            sorted[i] = m_keys[size_t(packed[i] & indexMask)];
        m_keys = std::move(sorted);
        return Status::ok();
    }
    // Several keys with many distinct values each: compare rank by rank.
    std::vector<quint32> byIndex(n);
    std::iota(byIndex.begin(), byIndex.end(), quint32(0));
    std::sort(byIndex.begin(), byIndex.end(), [&](quint32 a, quint32 b) {
        for (const KeyRanks &k : keys) {
            const quint32 x = k.rank(m_keys, a), y = k.rank(m_keys, b);
            if (x != y)
                return x < y;
        }
        return a < b;
    });
    std::vector<quint32> sorted(n);
    for (size_t i = 0; i < n; ++i)
        sorted[i] = m_keys[byIndex[i]];
    m_keys = std::move(sorted);
    return Status::ok();
}

} // namespace plx::foxpro
