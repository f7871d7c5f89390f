// services/recordsource/foxpro/internal/rankcache.h: the ranks of a field's values over a whole
// table, kept between queries.
//
// Sorting a million records by NAME, CITY spends most of its time ranking the distinct values
// of each key; the navigator then sends the find query, in that same order, on every
// keystroke, and the sort query again after every save. The ranks of a whole-table sort are
// kept here, per file and field, and reused for as long as the file's change stamp shows it
// unchanged, and for the text order they were made in (a character field ranks differently
// in byte order and in the General order). Ranks are only stored for a settled file (see
// DbfChangeStamp): a file written a moment ago could be written again without its times moving.
#pragma once

#include "services/recordsource/dbf/internal/dbftable.h"
#include "services/recordsource/textcompare.h"

#include <QMutex>

#include <deque>
#include <memory>
#include <vector>

namespace plx::foxpro {

class RankCache
{
public:
    // rank[recno]: the position of the record's value among the field's distinct values in
    // the text order they were made in (index 0 unused); values equal in it share a rank.
    using Ranks = std::shared_ptr<const std::vector<quint32>>;

    static RankCache &global();

    // The ranks stored for this field of the file with this stamp in this text order; null
    // when there are none or the file changed since (then they are dropped).
    Ranks find(const DbfChangeStamp &stamp, int field, TextCompare order);
    // Keeps `ranks`, dropping the least recently used ones beyond the budget.
    void store(const DbfChangeStamp &stamp, int field, TextCompare order, Ranks ranks);
    void clear();
    size_t bytes() const;

    // The most the cache holds (4 bytes per record and field: 64 MB are two keys of an
    // eight-million-record table).
    static constexpr size_t kBudgetBytes = size_t(64) << 20;

private:
    struct Entry
    {
        DbfChangeStamp stamp;
        int field;
        TextCompare order;
        Ranks ranks;
    };
    mutable QMutex m_mutex;
    std::deque<Entry> m_entries; // most recently used first
};

} // namespace plx::foxpro
