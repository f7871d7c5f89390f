// services/recordsource/foxpro/cdxseek_p.h: look-ups by a field's value through the table's
// structural index.
//
// A tag whose key expression is the field itself (no FOR clause, not unique) holds every
// record's field bytes, blank-padded, in byte order: the records with a given text are the
// entries under that key, which a descent from the tag's root finds in a few page reads
// instead of a pass over the file. Used only for the binary comparison (MACHINE collation is
// byte order) and only while the index is not marked as left stale by a cut-short update;
// the caller still tests each record, so a record another program is rewriting at that
// moment is never reported with a value it does not hold.
#pragma once

#include "services/recordsource/dbf/internal/dbftable.h"

#include <QByteArrayView>

#include <optional>
#include <vector>

namespace plx::foxpro {

// The live records whose character field `field` may equal `wanted` (in the table's code
// page), ascending; nothing when no tag serves the field.
std::optional<std::vector<quint32>> cdxCandidates(const DbfTable &table, int field,
                                                  QByteArrayView wanted);

// The live records of the whole table in the order of character field `field`'s tag (the
// order an ORDER BY on the field gives in binary comparison: blank-padded bytes, ties in
// record order); nothing when no tag serves the field, or when the tag does not hold exactly
// the table's live records (an index another program left behind its table).
std::optional<std::vector<quint32>> cdxOrder(const DbfTable &table, int field);

} // namespace plx::foxpro
