// services/recordsource/foxpro/dbfvtab_p.h: FoxPro tables as a SQLite virtual-table module.
//
// Statements the FoxPro record source does not run itself (joins across the directory's
// tables) run through SQLite: each table file becomes a read-only virtual table, and the
// Jet front end translates the statement as for any SQLite database.
//
//     registerDbfModule(db);
//     CREATE VIRTUAL TABLE "CUSTOMER" USING dbf('/data/CUSTOMER.DBF', 850);  -- code page of
//                                                      -- an unmarked table, optional
//     SELECT ... FROM "CUSTOMER" AS "C" INNER JOIN ...
//
// Columns carry declared types (CHAR(n), NUMERIC(w,d), DATE, BOOLEAN, MEMO) so the SQLite
// record source reads them back as the same field types; the rowid is the record number;
// deleted records are skipped; text is decoded from the table's code page to UTF-8.
//
// With a time limit, a statement of the connection that is still reading a table when the
// limit has passed since it began fails, with the limit's message as SQLite's error text.
#pragma once

#include "services/recordsource/result.h"

struct sqlite3;

namespace plx::foxpro {

// Installs the "dbf" module on a connection; `timeLimitMs` 0 for no time limit.
Status registerDbfModule(sqlite3 *db, qint64 timeLimitMs = 0, const QString &stoppedMessage = {});

} // namespace plx::foxpro
