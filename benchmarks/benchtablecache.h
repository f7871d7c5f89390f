// benchmarks/benchtablecache.h: where the benchmarks find their generated tables.
//
// Generating the 1,000,000-record table takes a while, so it is written once into
// $PLX_BENCH_DIR (or /tmp/plx-bench) and reused by every later run.
#pragma once

#include <QString>

namespace plx::bench {

// The path of the SQLite benchmark database with table T of `rows` records, generating
// it first when it is missing. Empty when it cannot be made (the reason goes to stderr).
QString sqliteBenchFile(qint64 rows);

// The directory holding the FoxPro benchmark table T.DBF (+ T.FPT) of the default
// 1,000,000 records, generating it first when it is missing. Empty when it cannot be made.
QString foxProBenchDir();

} // namespace plx::bench
