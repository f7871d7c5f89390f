// services/recordsource/sqlite/sqlitedatabase_p.h: a SQLite database file as a Database.
//
// OpenDatabase(name, ..., "") lands here; the connect string ";Create=Yes" makes a new
// empty database when the file is missing (NotFound otherwise). The file keeps its journal
// mode; the connection runs with synchronous=FULL, so every Update is durable when it
// returns.
#pragma once

#include "services/recordsource/database.h"
#include "services/recordsource/sqlite/internal/sqliteconnection.h"

namespace plx::sqlite {

// Opens the SQLite database file `path` (see Connection::open for what the options do and
// when the database opens read-only).
Result<std::unique_ptr<Database>> openSqliteDatabase(const QString &path,
                                                     const ConnectOptions &options);

} // namespace plx::sqlite
