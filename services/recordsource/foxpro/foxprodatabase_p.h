// services/recordsource/foxpro/foxprodatabase_p.h: a directory of FoxPro 2.6 table files
// opened as a database (connect string "FoxPro 2.6").
//
// Every .DBF file of the directory is a table named by its file title, matched without
// regard to case. Text compares in the code page's byte order, case-sensitively, as Jet's
// FoxPro driver does with its default ASCII collating sequence; the finds of the controls
// stay case-insensitive because they compare UCase() of both sides.
#pragma once

#include "services/recordsource/database.h"

namespace plx::foxpro {

// Opens `directory`. NotFound when it is not a directory. Tables are opened when a record
// source needs them; readOnly opens every table read-only. `codePage` (0: none) is the code
// page of tables whose header carries no code-page mark; unmarked tables read as 1252
// otherwise.
Result<std::unique_ptr<Database>> openDatabase(const QString &directory, bool readOnly,
                                               int codePage = 0);

} // namespace plx::foxpro
