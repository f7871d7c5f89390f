// services/recordsource/postgres/pgdatabase_p.h: a PostgreSQL database as a Database.
//
// OpenDatabase(conninfo, ..., "PostgreSQL") lands here; conninfo is a libpq connection
// string ("host=... dbname=... user=...") or a postgresql:// URI. Tables are those of the
// connection's current schema (the first of its search_path).
#pragma once

#include "services/recordsource/database.h"

namespace plx::postgres {

Result<std::unique_ptr<Database>> openPostgresDatabase(const QString &conninfo,
                                                       const DatabaseOptions &options);

} // namespace plx::postgres
