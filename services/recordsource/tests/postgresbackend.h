// services/recordsource/tests/postgresbackend.h: the PostgreSQL back end of the contract
// suite.
#pragma once

#include "services/recordsource/tests/backend.h"

namespace plx::testing {

// Each test folder becomes a database of its own on the test program's throwaway server
// (services/recordsource/postgres/tests/pgserver.h), named after the folder, so a child
// process given the folder reaches the same database. Tables are made through the engine's
// createTable and appendRecords. Keeps no table file: tableFile() is "".
std::shared_ptr<BackEnd> makePostgresBackEnd();
// The database that stands for test folder `dir`.
QString postgresDatabaseFor(const QString &dir);
// Whether the suite runs on PostgreSQL: the server binaries are there, or CI=true (where
// their absence must fail). Otherwise says once on stderr why it does not.
bool postgresJoinsTheSuite();

} // namespace plx::testing
