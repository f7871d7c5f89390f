// services/recordsource/jet/internal/generalorder.h: the General text order, case-insensitive with
// accented letters beside their base letters.
//
// The order a user expects of a list of names, and the one Jet's General sort and FoxPro's
// SET COLLATE TO "GENERAL" give: "Adams" < "ANDERSON" < "Emile" < "Émile" < "Emilia". Two
// texts compare on two levels:
//   1. their letters without case and accents (letters Unicode does not decompose are read
//      as their base letter or spelled out: "Ø" as O, "Æ" as AE, "ß" as SS);
//   2. where those agree, their accents letter by letter, a letter without one first.
// Texts that differ only in case compare equal. Everything that is not a letter keeps its
// code point's place, so ASCII texts compare as their lower-case forms do, byte by byte.
#pragma once

#include <QString>

namespace plx::jet {

// A key for `text`: two texts compare in the General order as their keys compare code unit
// by code unit (QStringView::compare with Qt::CaseSensitive), and are equal in it exactly
// when their keys are. ASCII text is its own lower-case form.
QString generalSortKey(QStringView text);

// The canonical decomposition (NFD) of `text`, as QString::normalized gives it, in time
// linear in the text's length.
QString canonicalDecomposition(QStringView text);

// -1, 0 or 1 as `a` sorts before, with or after `b` in the General order. ASCII is compared
// in place; only a text with other characters has its key made.
int compareGeneral(QStringView a, QStringView b);
// The same with b's key made beforehand (generalSortKey(b)): a constant compared with every
// row is keyed once, not once a row.
int compareGeneral(QStringView a, QStringView b, QStringView bKey);

} // namespace plx::jet
