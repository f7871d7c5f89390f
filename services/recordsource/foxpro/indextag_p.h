// services/recordsource/foxpro/indextag_p.h: the FoxPro tag an index on some fields becomes.
//
// FoxPro indexes an expression, not a list of fields: one field is indexed as itself, several
// as one text, character fields as stored, numbers through STR(field, length, decimals) and
// dates through DTOS(field), joined with +, as FoxPro programmers write such keys. The tag is
// named after the index, cut to FoxPro's 10 characters. Keys compare byte by byte (FoxPro's
// MACHINE collating sequence), the order of the engine's Binary text compare.
#pragma once

#include "services/recordsource/dbf/internal/cdxindex.h"
#include "services/recordsource/dbf/internal/dbftable.h"

namespace plx::foxpro {

// The tag `indexName` on `fields` (named as the table names them) of `table`.
// InvalidArgument, naming the problem, for a name FoxPro cannot take as a tag name, a field
// of a type no key can hold (logical, memo, binary) and a key longer than FoxPro's 240 bytes.
Result<CdxTagDefinition> indexTag(const DbfTable &table, const QString &indexName,
                                  const QStringList &fields);

} // namespace plx::foxpro
