// services/recordsource/foxpro/idindex.cpp: the process's kept ID indexes.
#include "services/recordsource/foxpro/idindex_p.h"

#include <QMutex>
#include <QMutexLocker>

#include <algorithm>
#include <deque>
#include <memory>

namespace plx::foxpro {

namespace {

// Look-ups against the same file contents before the index is built: the first two pass
// over the file (a sort change looks its old record up once; NewIDPLX twice per candidate).
constexpr int kLookupsBeforeBuild = 2;
// Indexes kept at once (8 MB each for a million records).
constexpr size_t kKeptIndexes = 2;

// FNV-1a over the folded bytes.
quint32 foldedHash(QByteArrayView bytes, const ByteFold &fold)
{
    quint32 h = 2166136261U;
    for (const char c : bytes) {
        h ^= fold[quint8(c)];
        h *= 16777619U;
    }
    return h;
}

// (hash << 32 | record number), sorted: a look-up is one binary search, and the records of
// one hash come out in ascending order.
using Entries = std::vector<quint64>;

Entries build(const DbfTable &table, int field, const ByteFold &fold)
{
    Entries entries;
    const quint32 count = table.recordCount();
    entries.reserve(count);
    for (quint32 recno = 1; recno <= count; ++recno) {
        if (!table.isDeleted(recno))
            entries.push_back(quint64(foldedHash(table.rawText(recno, field), fold)) << 32 | recno);
    }
    std::sort(entries.begin(), entries.end());
    return entries;
}

// A stamp that shows every write: sub-second file times move with each one; whole seconds
// (or coarser) only once the file has been left alone.
bool trusted(const DbfChangeStamp &stamp)
{
    return stamp.settled || stamp.file.modifiedNs % 1000000000 != 0;
}

struct Kept
{
    DbfChangeStamp stamp;
    int field;
    TextCompare compare;
    ByteFold fold;
    int lookups = 0;
    std::shared_ptr<const Entries> entries;
};

class KeptIndexes
{
public:
    static KeptIndexes &global()
    {
        static KeptIndexes kept;
        return kept;
    }

    // The index for the file as `stamp` shows it, built now when it is its turn; null when
    // the caller should pass over the file instead.
    std::shared_ptr<const Entries> find(const DbfTable &table, const DbfChangeStamp &stamp,
                                        int field, TextCompare compare, const ByteFold &fold)
    {
        QMutexLocker lock(&m_mutex);
        auto it = std::find_if(m_kept.begin(), m_kept.end(), [&](const Kept &k) {
            return k.stamp.sameFile(stamp) && k.field == field && k.compare == compare
                && k.fold == fold;
        });
        if (it == m_kept.end() || !it->stamp.sameContents(stamp)) {
            if (it != m_kept.end())
                m_kept.erase(it);
            m_kept.push_front({ stamp, field, compare, fold, 1, nullptr });
            if (m_kept.size() > kKeptIndexes)
                m_kept.pop_back();
            return nullptr;
        }
        if (!it->entries && ++it->lookups > kLookupsBeforeBuild)
            it->entries = std::make_shared<const Entries>(build(table, field, fold));
        return it->entries;
    }

private:
    QMutex m_mutex;
    std::deque<Kept> m_kept; // most recently made first
};

} // namespace

std::optional<std::vector<quint32>> indexedCandidates(const DbfTable &table, int field,
                                                      TextCompare compare, const ByteFold &fold,
                                                      QByteArrayView wanted)
{
    const Result<DbfChangeStamp> stamp = table.changeStamp();
    if (!stamp.isOk() || !trusted(stamp.value()))
        return std::nullopt;
    const std::shared_ptr<const Entries> entries =
        KeptIndexes::global().find(table, stamp.value(), field, compare, fold);
    if (!entries)
        return std::nullopt;
    const quint64 hash = quint64(foldedHash(wanted, fold)) << 32;
    std::vector<quint32> found;
    for (auto it = std::lower_bound(entries->begin(), entries->end(), hash);
         it != entries->end() && (*it & ~quint64(0xFFFFFFFFU)) == hash; ++it)
        found.push_back(quint32(*it & 0xFFFFFFFFU));
    return found;
}

qint64 firstPositionOf(const std::vector<quint32> &keys, bool keysAscend,
                       const std::vector<quint32> &found, qint64 start)
{
    const qint64 from = std::max<qint64>(start, 0);
    if (found.empty() || from >= qint64(keys.size()))
        return -1;
    if (keysAscend) {
        qint64 best = -1;
        for (const quint32 recno : found) {
            const auto at = std::lower_bound(keys.begin() + from, keys.end(), recno);
            if (at != keys.end() && *at == recno) {
                const qint64 i = at - keys.begin();
                best = best < 0 ? i : std::min(best, i);
            }
        }
        return best;
    }
    for (qint64 i = from; i < qint64(keys.size()); ++i) {
        if (std::binary_search(found.begin(), found.end(), keys[size_t(i)]))
            return i;
    }
    return -1;
}

} // namespace plx::foxpro
