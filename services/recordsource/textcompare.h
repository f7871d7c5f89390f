// services/recordsource/textcompare.h: how a record source compares text.
//
// Its own header because the Jet dialect (expressions, LIKE, ORDER BY) needs it without
// needing the databases that choose it.
#pragma once

namespace plx {

// How text is compared in expressions, LIKE, InStr and ORDER BY on a source.
// Case-insensitive on SQLite and PostgreSQL (Jet's own rule), machine byte order on
// FoxPro tables (Jet's FoxPro ISAM).
enum class TextCompare { NoCase, Binary };

} // namespace plx
