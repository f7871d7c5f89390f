// services/recordsource/textcompare.h: how a record source compares text.
//
// Its own header because the Jet dialect (expressions, LIKE, ORDER BY) needs it without
// needing the databases that choose it.
#pragma once

namespace plx {

// How text is compared in expressions, LIKE, InStr and ORDER BY on a source.
//   NoCase  the General order: case-insensitive, accented letters beside their base letters
//           ("Adams" < "ANDERSON" < "Emile" < "Émile" < "Emilia"). Jet's own rule, so the
//           SQLite engine's, and FoxPro tables opened with "FoxPro 2.6;Collate=General".
//   Binary  the code page's byte order, case-sensitive ("ANDERSON" < "Adams" < "adams"):
//           FoxPro tables by default, as Jet's FoxPro driver compared them (FoxPro's MACHINE
//           collating sequence).
enum class TextCompare { NoCase, Binary };

} // namespace plx
