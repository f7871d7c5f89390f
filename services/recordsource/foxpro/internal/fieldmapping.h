// services/recordsource/foxpro/internal/fieldmapping.h: the FoxPro 2.6 field that holds a value of
// a record-source field type, for programs that create tables (generators, test set-ups).
#pragma once

#include "services/recordsource/dbf/internal/dbftable.h"

namespace plx::foxpro {

// Text -> C(size, 254 when unsized), Memo and Binary -> M, Integer -> N(11), Numeric ->
// N(size, decimals), Double -> F(20, 6), Boolean -> L, Date and DateTime -> D (FoxPro 2.6
// has no date-time type).
DbfField dbfFieldFor(const FieldInfo &field);

} // namespace plx::foxpro
