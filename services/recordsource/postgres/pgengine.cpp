// services/recordsource/postgres/pgengine.cpp: makes PostgreSQL the engine of the connect
// string "PostgreSQL" when this library is linked in.
//
// The symbol below is what the plx::postgres target asks the linker to keep (see its
// CMakeLists.txt): nothing else refers to this file.
#include "services/recordsource/postgres/pgdatabase_p.h"

extern "C" const bool plx_postgres_engine =
    plx::registerDatabaseEngine(QStringLiteral("PostgreSQL"), &plx::postgres::openPostgresDatabase);
