// benchmarks/bm_sqlite_recordsource.cpp: the navigator's workloads (recordsourceworkloads.h)
// on the SQLite back end. bm_sqlite_raw.cpp runs the same SQLite statements through the bare
// C API, for the layer's overhead.
#include "benchmarks/benchtablecache.h"
#include "benchmarks/recordsourceworkloads.h"

#include "services/recordsource/tablegen/benchtable.h"
#include "services/recordsource/sqlite/internal/sqliterecordsource.h"

#include <benchmark/benchmark.h>

int main(int argc, char **argv)
{
    using namespace plx;
    bench::registerRecordSourceWorkloads(
        { "BM_SqliteRs",
          [] {
              static std::unique_ptr<Database> db = [] {
                  const QString file = bench::sqliteBenchFile(bench::DefaultBenchRows);
                  Result<std::unique_ptr<Database>> opened =
                      OpenDatabase(file, false, false, QString());
                  return opened.isOk() ? std::move(opened).value() : nullptr;
              }();
              return db.get();
          },
          [](const RecordSource &rs) {
              return dynamic_cast<const sqlite::SqliteRecordSource &>(rs).keysetBytes();
          },
          nullptr, // SQLite keeps nothing of its own between queries
          nullptr });
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
