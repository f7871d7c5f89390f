// services/recordsource/foxpro/cdxseek.cpp: finding records by a field through a CDX tag.
#include "services/recordsource/foxpro/cdxseek_p.h"

#include "services/recordsource/dbf/internal/cdxindex.h"

#include <algorithm>

namespace plx::foxpro {

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
