// services/recordsource/tablegen/postgreswriter.h: the benchmark table on a PostgreSQL server.
#pragma once

#include "services/recordsource/result.h"

#include <QString>

namespace plx::bench {

// Creates (replacing any earlier one) table `table` in the database that the libpq
// connection string or URI `conninfo` names, with `rows` records of the benchmark table, as
// the PostgreSQL engine makes tables (createTable, then appendRecords in batches), plus
// indexes on ID and on NAME, CITY, as a host would keep for its lookups and sort orders.
Status writePostgresBenchTable(const QString &conninfo, const QString &table, qint64 rows);

} // namespace plx::bench
