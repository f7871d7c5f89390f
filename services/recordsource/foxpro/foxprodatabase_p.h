// services/recordsource/foxpro/foxprodatabase_p.h: a directory of FoxPro 2.6 table files
// opened as a database (connect string "FoxPro 2.6").
//
// Every .DBF file of the directory is a table named by its file title, matched without
// regard to case. Text compares in the code page's byte order, case-sensitively, as Jet's
// FoxPro driver does with its default ASCII collating sequence (FoxPro's MACHINE); the finds
// of the controls stay case-insensitive because they compare UCase() of both sides. The
// General collating sequence compares text as the SQLite engine does instead:
// case-insensitively, accented letters beside their base letters (jet/generalorder_p.h).
//
// Limits: every statement and find finishes or is refused within a time a user waits for.
// Texts over 4,000,000 characters or 1,000,000 terms (50,000 for joins and column lists,
// which SQLite runs) are refused before they are parsed, nesting deeper than 100 levels by
// the parser, and a statement or find still running after 10 seconds stops: "the query was
// stopped after 10 seconds; use a simpler condition" (statementbounds_p.h).
#pragma once

#include "services/recordsource/database.h"

namespace plx::foxpro {

// Opens `directory`. NotFound when it is not a directory. Tables are opened when a record
// source needs them; readOnly opens every table read-only. `codePage` (0: none) is the code
// page of tables whose header carries no code-page mark; unmarked tables read as 1252
// otherwise. `collate` is Binary for the MACHINE collating sequence, NoCase for GENERAL; it
// applies to criteria, sort orders and finds alike.
Result<std::unique_ptr<Database>> openDatabase(const QString &directory, bool readOnly,
                                               int codePage = 0,
                                               TextCompare collate = TextCompare::Binary);

} // namespace plx::foxpro
