// benchmarks/bm_foxpro_recordsource.cpp: the navigator's workloads (recordsourceworkloads.h)
// on the FoxPro back end, on the generated table T.DBF (0xF5, ~3 % deleted records) in
// $PLX_BENCH_DIR/foxpro (default /tmp/plx-bench/foxpro), written on first use.
// PLX_BENCH_COLLATE=General runs them in the General collating sequence
// ("FoxPro 2.6;Collate=General", named BM_FoxProRsGeneral_...); byte order otherwise.
#include "benchmarks/benchtablecache.h"
#include "benchmarks/recordsourceworkloads.h"

#include "services/recordsource/dbf/internal/dbftable.h"
#include "services/recordsource/foxpro/internal/foxprorecordsource.h"
#include "services/recordsource/foxpro/internal/rankcache.h"

#include <benchmark/benchmark.h>

int main(int argc, char **argv)
{
    using namespace plx;
    const bool general = qEnvironmentVariable("PLX_BENCH_COLLATE")
                             .compare(QLatin1String("General"), Qt::CaseInsensitive)
        == 0;
    static const QString connect =
        general ? QStringLiteral("FoxPro 2.6;Collate=General") : QStringLiteral("FoxPro 2.6");
    bench::registerRecordSourceWorkloads(
        { general ? "BM_FoxProRsGeneral" : "BM_FoxProRs",
          [] {
              static std::unique_ptr<Database> db = [] {
                  const QString dir = bench::foxProBenchDir();
                  Result<std::unique_ptr<Database>> opened =
                      OpenDatabase(dir, false, false, connect);
                  return opened.isOk() ? std::move(opened).value() : nullptr;
              }();
              return db.get();
          },
          [](const RecordSource &rs) {
              return dynamic_cast<const foxpro::FoxProRecordSource &>(rs).keysetBytes();
          },
          [] {
              foxpro::RankCache::global().clear();
              DbfTable::releaseIdleMappings();
          },
          [] { return foxpro::RankCache::global().bytes(); } });
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
