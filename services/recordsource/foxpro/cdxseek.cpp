// services/recordsource/foxpro/cdxseek.cpp: finding records by a field through a CDX tag.
#include "services/recordsource/foxpro/cdxseek_p.h"

#include "services/recordsource/dbf/internal/cdxindex.h"

#include <algorithm>

namespace plx::foxpro {

namespace {

// The tag on `field` itself, usable now; -1 when there is none.
int usableTag(const DbfTable &table, int field)
{
    const CdxIndex *index = table.index();
    if (!index || field < 0 || field >= table.fields().size() || table.fields()[field].type != 'C')
        return -1;
    const int tag = index->tagWithExpression(table.fields()[field].name.toLatin1());
    if (tag < 0 || index->keyLength(tag) != table.fields()[field].length)
        return -1;
    const Result<bool> stale = index->stale();
    return stale.isOk() && !*stale ? tag : -1;
}

} // namespace

std::optional<std::vector<quint32>> cdxOrder(const DbfTable &table, int field)
{
    const int tag = usableTag(table, field);
    if (tag < 0)
        return std::nullopt;
    Result<std::vector<quint32>> records = table.index()->recordsInOrder(tag);
    if (!records.isOk())
        return std::nullopt;
    const quint32 count = table.recordCount();
    std::vector<bool> seen(size_t(count) + 1, false);
    std::vector<quint32> live;
    live.reserve(records->size());
    for (const quint32 recno : *records) {
        if (recno == 0 || recno > count || seen[recno])
            return std::nullopt;
        seen[recno] = true;
        if (!table.isDeleted(recno))
            live.push_back(recno);
    }
    for (quint32 recno = 1; recno <= count; ++recno) {
        if (!seen[recno])
            return std::nullopt; // a record the tag does not hold
    }
    return live;
}

std::optional<std::vector<quint32>> cdxCandidates(const DbfTable &table, int field,
                                                  QByteArrayView wanted)
{
    const CdxIndex *index = table.index();
    if (!index || field < 0 || field >= table.fields().size() || table.fields()[field].type != 'C')
        return std::nullopt;
    const int tag = index->tagWithExpression(table.fields()[field].name.toLatin1());
    if (tag < 0 || index->keyLength(tag) != table.fields()[field].length)
        return std::nullopt;
    if (wanted.size() > index->keyLength(tag))
        return std::vector<quint32>(); // longer than the field: no record holds it
    const Result<bool> stale = index->stale();
    if (!stale.isOk() || *stale)
        return std::nullopt;
    const Result<QList<quint32>> filed =
        index->find(tag, cdxkey::characterKey(wanted, index->keyLength(tag)));
    if (!filed.isOk())
        return std::nullopt;
    std::vector<quint32> records;
    records.reserve(size_t(filed->size()));
    for (const quint32 recno : *filed) {
        if (recno <= table.recordCount() && !table.isDeleted(recno))
            records.push_back(recno);
    }
    std::sort(records.begin(), records.end());
    return records;
}

} // namespace plx::foxpro
