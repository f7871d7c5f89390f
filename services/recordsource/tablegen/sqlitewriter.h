// services/recordsource/tablegen/sqlitewriter.h: the benchmark table in a SQLite database file.
#pragma once

#include "services/recordsource/result.h"

#include <QString>

namespace plx::bench {

// Creates (replacing any earlier one) table `table` in the SQLite file `path` with `rows`
// records of the benchmark table, in the declared types the SQLite back end reads back
// (CHAR(n), NUMERIC(12,2), DATE, BOOLEAN, MEMO), plus indexes on ID and on NAME, CITY in
// the dialect's case-insensitive order (COLLATE JETNOCASE), as a host keeps for its look-ups
// and sort orders. A program that opens the file must have that collation registered
// (jet::registerJetFunctions) to write to the table.
Status writeSqliteBenchTable(const QString &path, const QString &table, qint64 rows);

} // namespace plx::bench
