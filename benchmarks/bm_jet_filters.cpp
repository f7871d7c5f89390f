// benchmarks/bm_jet_filters.cpp: host filters written with the dialect's wider functions
// against the same filters written with the functions the controls always had, on the
// 1,000,000-record table T of both back ends (SQLite: $PLX_BENCH_DIR/bench-1000000.sqlite,
// FoxPro: $PLX_BENCH_DIR/foxpro/T.DBF; default /tmp/plx-bench, written on first use).
//
// Each iteration opens "SELECT * from T WHERE <filter>" and moves to its last record, the
// navigator's count after a filter change. Pairs to compare (new / old):
//   Nz        Nz(CITY, '') = 'Denver'            IIF(IsNull(CITY), '', CITY) = 'Denver'
//   DatePart  DatePart('yyyy', BORN) = 1990      Year(BORN) = 1990
//   InStrRev  InStrRev(NAME, ',') > 7            InStr(NAME, ',') > 7
// and, on FoxPro, statements whose constants must be worked out once, not once a record:
//   MegabyteConstant  NAME = Replace('<1,000,000 x>', 'x', 'y') Or CITY Like '<1,000,000 x>*'
//   OrChain10000      AMOUNT = 1 Or AMOUNT = 2 Or ... Or AMOUNT = 10000
#include "benchmarks/benchtablecache.h"

#include "services/recordsource/tablegen/benchtable.h"
#include "services/recordsource/tablegen/foxprowriter.h"
#include "services/recordsource/database.h"

#include <QDir>
#include <QFile>

#include <benchmark/benchmark.h>

#include <cstdio>
#include <memory>

namespace {

using namespace plx;

Database *sqliteDb()
{
    static std::unique_ptr<Database> db = [] {
        Result<std::unique_ptr<Database>> opened =
            OpenDatabase(bench::sqliteBenchFile(bench::DefaultBenchRows), false, false, QString());
        return opened.isOk() ? std::move(opened).value() : nullptr;
    }();
    return db.get();
}

Database *foxProDb()
{
    static std::unique_ptr<Database> db = [] {
        Result<std::unique_ptr<Database>> opened =
            OpenDatabase(bench::foxProBenchDir(), false, false, QStringLiteral("FoxPro 2.6"));
        return opened.isOk() ? std::move(opened).value() : nullptr;
    }();
    return db.get();
}

void runFilter(benchmark::State &state, Database *db, const QString &filter)
{
    if (!db) {
        state.SkipWithError("no benchmark database");
        return;
    }
    const QString sql = QStringLiteral("SELECT * from T WHERE ") + filter;
    qint64 hits = 0;
    for (auto _ : state) {
        Result<std::unique_ptr<RecordSource>> rs = db->OpenRecordset(sql);
        if (!rs.isOk()) {
            state.SkipWithError(rs.status().toString().toUtf8().constData());
            return;
        }
        (void)rs.value()->MoveLast();
        hits = rs.value()->RecordCount();
        benchmark::DoNotOptimize(hits);
    }
    state.counters["hits"] = double(hits);
}

const char *const kNzNew = "Nz(CITY, '') = 'Denver'";
const char *const kNzOld = "IIF(IsNull(CITY), '', CITY) = 'Denver'";
const char *const kDatePartNew = "DatePart('yyyy', BORN) = 1990";
const char *const kDatePartOld = "Year(BORN) = 1990";
const char *const kInStrRevNew = "InStrRev(NAME, ',') > 7";
const char *const kInStrRevOld = "InStr(NAME, ',') > 7";

#define PLX_FILTER_BENCH(NAME, DB, FILTER) \
    void NAME(benchmark::State &state) \
    { \
        runFilter(state, DB(), QLatin1String(FILTER)); \
    } \
    BENCHMARK(NAME)->Unit(benchmark::kMillisecond)->MinTime(2.0);

PLX_FILTER_BENCH(BM_SqliteFilter_NzNew, sqliteDb, kNzNew)
PLX_FILTER_BENCH(BM_SqliteFilter_NzOld, sqliteDb, kNzOld)
PLX_FILTER_BENCH(BM_SqliteFilter_DatePartNew, sqliteDb, kDatePartNew)
PLX_FILTER_BENCH(BM_SqliteFilter_DatePartOld, sqliteDb, kDatePartOld)
PLX_FILTER_BENCH(BM_SqliteFilter_InStrRevNew, sqliteDb, kInStrRevNew)
PLX_FILTER_BENCH(BM_SqliteFilter_InStrRevOld, sqliteDb, kInStrRevOld)
PLX_FILTER_BENCH(BM_FoxProFilter_NzNew, foxProDb, kNzNew)
PLX_FILTER_BENCH(BM_FoxProFilter_NzOld, foxProDb, kNzOld)
PLX_FILTER_BENCH(BM_FoxProFilter_DatePartNew, foxProDb, kDatePartNew)
PLX_FILTER_BENCH(BM_FoxProFilter_DatePartOld, foxProDb, kDatePartOld)
PLX_FILTER_BENCH(BM_FoxProFilter_InStrRevNew, foxProDb, kInStrRevNew)
PLX_FILTER_BENCH(BM_FoxProFilter_InStrRevOld, foxProDb, kInStrRevOld)

#undef PLX_FILTER_BENCH

QString megabyteConstantFilter()
{
    const QString megabyte(1'000'000, QLatin1Char('x'));
    return QStringLiteral("NAME = Replace('%1', 'x', 'y') Or CITY Like '%1*'").arg(megabyte);
}

QString orChainFilter(int terms)
{
    QStringList alternatives;
    for (int i = 1; i <= terms; ++i)
        alternatives << QStringLiteral("AMOUNT = %1").arg(i);
    return alternatives.join(QStringLiteral(" Or "));
}

void BM_FoxProFilter_MegabyteConstant(benchmark::State &state)
{
    runFilter(state, foxProDb(), megabyteConstantFilter());
}
BENCHMARK(BM_FoxProFilter_MegabyteConstant)->Unit(benchmark::kMillisecond)->MinTime(2.0);

void BM_FoxProFilter_OrChain10000(benchmark::State &state)
{
    runFilter(state, foxProDb(), orChainFilter(10000));
}
BENCHMARK(BM_FoxProFilter_OrChain10000)->Unit(benchmark::kMillisecond)->MinTime(2.0);

} // namespace

BENCHMARK_MAIN();
