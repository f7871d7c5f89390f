// services/recordsource/foxpro/foxprorecordsource_sort.cpp: ORDER BY over the keyset.
//
// Every key becomes one small integer per record, its rank: for character, date and logical
// fields the rank of the stored bytes among the field's distinct values (FoxPro's own index
// order; a character field in the General order ranks its distinct values by their sort
// keys instead), for anything else the rank of the Jet value. The ranks of all keys are packed into
// one 64-bit integer where they fit, and the records sorted by that integer with a stable
// radix sort, which leaves ties in record order.
#include "services/recordsource/foxpro/internal/foxprorecordsource.h"
#include "services/recordsource/foxpro/recordrow_p.h"

#include "services/recordsource/jet/internal/values.h"

#include <algorithm>
#include <bit>
#include <numeric>

namespace plx::foxpro {

namespace {

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

// The ranks of `expr`'s Jet values over the records `recnos`, in keyset order, text compared
// as `collate` says: equal values share a rank, Null ranks first.
Result<std::vector<quint32>> valueRanks(const jet::Node &expr, RecordRow &row,
                                        const std::vector<quint32> &recnos, TextCompare collate)
{
    const size_t n = recnos.size();
    std::vector<QVariant> values(n);
    for (size_t i = 0; i < n; ++i) {
        row.setRecord(recnos[i]);
        Result<QVariant> v = jet::evaluate(expr, &row, collate);
        if (!v.isOk())
            return v.status();
        values[i] = v.value();
    }
    auto valueLess = [&values, collate](quint32 a, quint32 b) {
        const QVariant &x = values[a], &y = values[b];
        if (jet::isNull(x) || jet::isNull(y))
            return jet::isNull(x) && !jet::isNull(y); // Null first
        Result<int> c = jet::compareValues(x, y, collate, 0);
        return c.isOk() && c.value() < 0;
    };
    std::vector<quint32> byValue(n);
    std::iota(byValue.begin(), byValue.end(), quint32(0));
    std::stable_sort(byValue.begin(), byValue.end(), valueLess);
    std::vector<quint32> ranks(n);
    quint32 r = 0;
    for (size_t i = 0; i < n; ++i) {
        if (i > 0 && valueLess(byValue[i - 1], byValue[i]))
            ++r;
        ranks[byValue[i]] = r;
    }
    return ranks;
}

// The two ways FoxProRecordSource::sort() orders its keyset. They take the key list as
// `auto` because its element type, KeyRanks, is private to the record source.

// One 64-bit integer per record: the ranks, first key highest, above the record's index in
// the keyset. A stable radix sort on the rank bits then leaves ties in record order.
void sortByPackedRanks(const auto &keys, int rankBits, std::vector<quint32> &recnos)
{
    const size_t n = recnos.size();
    const int indexBits = bitsFor(quint32(n - 1));
    std::vector<quint64> packed(n);
    for (size_t i = 0; i < n; ++i) {
        quint64 v = 0;
        for (const auto &k : keys)
            v = (v << bitsFor(k.top)) | k.rank(recnos, i);
        packed[i] = (v << indexBits) | i;
    }
    radixSort(packed, indexBits, rankBits);
    const quint64 indexMask = (quint64(1) << indexBits) - 1;
    std::vector<quint32> sorted(n);
    for (size_t i = 0; i < n; ++i)
        sorted[i] = recnos[size_t(packed[i] & indexMask)];
    recnos = std::move(sorted);
}

// Several keys with many distinct values each, too wide to pack: compare rank by rank.
void sortByComparingRanks(const auto &keys, std::vector<quint32> &recnos)
{
    const size_t n = recnos.size();
    std::vector<quint32> byIndex(n);
    std::iota(byIndex.begin(), byIndex.end(), quint32(0));
    std::sort(byIndex.begin(), byIndex.end(), [&](quint32 a, quint32 b) {
        for (const auto &k : keys) {
            const quint32 x = k.rank(recnos, a), y = k.rank(recnos, b);
            if (x != y)
                return x < y;
        }
        return a < b;
    });
    std::vector<quint32> sorted(n);
    for (size_t i = 0; i < n; ++i)
        sorted[i] = recnos[byIndex[i]];
    recnos = std::move(sorted);
}

} // namespace

// Sorts the keys. Character, date and logical fields compare by their stored bytes (blank
// padded, so shorter texts come first, in the code page's byte order as FoxPro's own
// indexes), character fields in the General order by their text's sort keys; numeric fields
// by value; any other expression by its Jet value. Nulls first, ties in record order.
Status FoxProRecordSource::sort(const std::vector<jet::OrderItem> &order,
                                std::vector<std::optional<KeyRanks>> byteKeys)
{
    if (order.empty() || m_keys.size() < 2)
        return Status::ok();
    const size_t n = m_keys.size();
    std::vector<KeyRanks> keys;
    RecordRow row(*m_table);
    for (size_t k = 0; k < order.size(); ++k) {
        const jet::OrderItem &item = order[k];
        KeyRanks key;
        if (byteKeys[k]) {
            key = std::move(*byteKeys[k]);
        } else {
            Result<std::vector<quint32>> ranks = valueRanks(*item.expr, row, m_keys, m_collate);
            if (!ranks.isOk())
                return ranks.status();
            key.own = std::move(ranks).value();
        }
        key.descending = item.descending;
        quint32 top = 0;
        for (size_t i = 0; i < n; ++i)
            top = std::max(top, key.raw(m_keys, i));
        key.top = top;
        keys.push_back(std::move(key));
    }

    int rankBits = 0;
    for (const KeyRanks &k : keys)
        rankBits += bitsFor(k.top);
    if (rankBits + bitsFor(quint32(n - 1)) <= 64)
        sortByPackedRanks(keys, rankBits, m_keys);
    else
        sortByComparingRanks(keys, m_keys);
    return Status::ok();
}

} // namespace plx::foxpro
