// services/recordsource/sqlite/sqliteengine.cpp: makes SQLite the engine of the empty
// connect string when this library is linked in.
//
// The symbol below is what the plx::sqlite target asks the linker to keep (see its
// CMakeLists.txt): nothing else refers to this file, and a linker only takes from a static
// library the objects something refers to.
#include "services/recordsource/database.h"
#include "services/recordsource/sqlite/sqlitedatabase_p.h"

namespace {

plx::Result<std::unique_ptr<plx::Database>> openSqlite(const QString &name,
                                                       const plx::DatabaseOptions &options)
{
    return plx::sqlite::openSqliteDatabase(name, options.exclusive, options.readOnly);
}

} // namespace

extern "C" const bool plx_sqlite_engine = plx::registerDatabaseEngine(QString(), &openSqlite);
