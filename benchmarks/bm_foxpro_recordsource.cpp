// benchmarks/bm_foxpro_recordsource.cpp: the navigator's workloads (recordsourceworkloads.h)
// on the FoxPro back end, on the generated table T.DBF (0xF5, ~3 % deleted records) in
// $PLX_BENCH_DIR/foxpro (default /tmp/plx-bench/foxpro), written on first use.
#include "benchmarks/recordsourceworkloads.h"

#include "apps/plxgen/benchtable.h"
#include "apps/plxgen/foxprowriter.h"
#include "services/recordsource/dbf/dbftable.h"
#include "services/recordsource/foxpro/foxprorecordsource.h"
#include "services/recordsource/foxpro/rankcache.h"

#include <QDir>
#include <QFile>

#include <benchmark/benchmark.h>

#include <cstdio>

namespace {

// The directory holding T.DBF, generating the table when it is missing.
QString foxProBenchDir()
{
    QString root = qEnvironmentVariable("PLX_BENCH_DIR");
    if (root.isEmpty())
        root = QStringLiteral("/tmp/plx-bench");
    const QString dir = root + QStringLiteral("/foxpro");
    if (QFile::exists(dir + QStringLiteral("/T.DBF")))
        return dir;
    // Written elsewhere first, so an interrupted run leaves no half table behind.
    const QString partial = root + QStringLiteral("/foxpro.part");
    QDir(partial).removeRecursively();
    std::fprintf(stderr, "generating the FoxPro benchmark table into %s ...\n", qPrintable(dir));
    const plx::Status s = plx::bench::writeFoxProBenchTable(partial, QStringLiteral("T"),
                                                            plx::bench::DefaultBenchRows);
    if (!s.isOk() || !QDir().rename(partial, dir)) {
        std::fprintf(stderr, "cannot generate the table: %s\n", qPrintable(s.toString()));
        return {};
    }
    return dir;
}

} // namespace

int main(int argc, char **argv)
{
    using namespace plx;
    bench::registerRecordSourceWorkloads(
        { "BM_FoxProRs",
          [] {
              static std::unique_ptr<Database> db = [] {
                  const QString dir = foxProBenchDir();
                  Result<std::unique_ptr<Database>> opened =
                      OpenDatabase(dir, false, false, QStringLiteral("FoxPro 2.6"));
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
