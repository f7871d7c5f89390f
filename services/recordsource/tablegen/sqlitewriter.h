// services/recordsource/tablegen/sqlitewriter.h: the benchmark table in a SQLite database file.
#pragma once

#include "services/recordsource/result.h"

#include <QString>

namespace plx::bench {

// Creates (replacing any earlier one) table `table` in the SQLite file `path` with `rows`
// records of the benchmark table, in the declared types the SQLite back end reads back
// (CHAR(n), NUMERIC(12,2), DATE, BOOLEAN, MEMO), plus case-insensitive indexes on ID and
// on NAME, CITY, as a host would keep for its lookups and sort orders.
Status writeSqliteBenchTable(const QString &path, const QString &table, qint64 rows);

} // namespace plx::bench
