// services/recordsource/foxpro/idindex_p.h: the records of a table file by the value of one
// character field, kept in memory while the file stays unchanged, for look-ups by ID.
//
// A FoxPro table without a structural index has nothing to find a record by but a pass over
// the file, and NewIDPLX looks each candidate ID up twice (in the navigator's records and in
// the file as it is now). The index is a sorted list of (hash of the field's folded bytes,
// record number), 8 bytes a record, built from the file on the third look-up against the same
// file contents (a sort change's single look-up never pays for it) and dropped as soon as the
// file's change stamp moves: a write by any process or table object, an append, a delete. A
// stamp is trusted at once on a file system that keeps sub-second file times, otherwise only
// once the file has been left alone for a few seconds (DbfChangeStamp::settled), so that a
// write within the same tick of a coarse clock is never missed.
#pragma once

#include "services/recordsource/dbf/internal/dbftable.h"
#include "services/recordsource/textcompare.h"

#include <QByteArrayView>

#include <array>
#include <optional>
#include <vector>

namespace plx::foxpro {

// What each byte of the field compares as: itself, or (in the General order) the lowest byte
// whose character equals it.
using ByteFold = std::array<quint8, 256>;

// The records whose field `field`, folded through `fold`, may equal `wanted` (already in the
// table's code page), in ascending record order and without deleted records; the caller tests
// each (different texts can share a hash). Nothing when no index of the file as it is now is
// kept or worth building yet: the caller then passes over the file.
std::optional<std::vector<quint32>> indexedCandidates(const DbfTable &table, int field,
                                                      TextCompare compare, const ByteFold &fold,
                                                      QByteArrayView wanted);

// The first position at or after `start` in `keys` (record numbers, ascending when
// `keysAscend`) that holds one of `found` (ascending); -1 when none does.
qint64 firstPositionOf(const std::vector<quint32> &keys, bool keysAscend,
                       const std::vector<quint32> &found, qint64 start);

} // namespace plx::foxpro
