// services/recordsource/sqlite/sqlitedatabase_p.h: a SQLite database file as a Database.
//
// OpenDatabase(name, ..., "") lands here. The file is created when missing (unless
// read-only) and switched to WAL with synchronous=FULL, so other connections keep
// reading while one record is written and every Update is durable when it returns.
#pragma once

#include "services/recordsource/database.h"

namespace plx::sqlite {

// Opens the SQLite database file `path`. exclusive keeps other processes out while it is
// open; readOnly opens the file read-only and refuses every write.
Result<std::unique_ptr<Database>> openSqliteDatabase(const QString &path, bool exclusive,
                                                     bool readOnly);

} // namespace plx::sqlite
