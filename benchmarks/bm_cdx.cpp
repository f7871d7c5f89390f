// benchmarks/bm_cdx.cpp: the FoxPro back end on the generated 1,000,000-record table with a
// structural index (.CDX) on its ID and NAME fields, against the same table without one:
//   BM_Cdx_FindFirstId            FindFirst by ID in a record-order source, through the ID tag
//   BM_Cdx_FindFirstIdNoIndex     the same without an index (a pass over the file)
//   BM_Cdx_AddNewUpdate           AddNew, set ID and NAME, Update (durable), both tags kept
//   BM_Cdx_AddNewUpdateNoIndex    the same append without an index
//   BM_Cdx_SortById               a record source ordered by ID, read from the ID tag's leaves
//   BM_Cdx_SortByIdNoIndex        the same sort by ranks without an index, no ranks kept
//   BM_Cdx_Reindex                every tag rebuilt from the 1,000,000 records
// The tables are copies of $PLX_BENCH_DIR/foxpro/T.DBF (default /tmp/plx-bench) made on first
// use into foxpro-cdx (flagged, with T.CDX) and foxpro-plain; the appends grow both copies.
#include "benchmarks/benchtablecache.h"

#include "services/recordsource/database.h"
#include "services/recordsource/dbf/internal/cdxindex.h"
#include "services/recordsource/dbf/internal/dbftable.h"
#include "services/recordsource/foxpro/internal/rankcache.h"
#include "services/recordsource/tablegen/benchtable.h"
#include "services/texthelpers.h"

#include <QDir>
#include <QFile>

#include <benchmark/benchmark.h>

#include <cstdio>

namespace plx {
namespace {

bool copyTable(const QString &from, const QString &to)
{
    QDir().mkpath(to);
    for (const char *name : { "T.DBF", "T.FPT" }) {
        const QString source = from + QLatin1Char('/') + QLatin1String(name);
        if (QFile::exists(source)
            && !QFile::copy(source, to + QLatin1Char('/') + QLatin1String(name)))
            return false;
    }
    return true;
}

bool addIndex(const QString &dir)
{
    const QString path = dir + QStringLiteral("/T.DBF");
    {
        auto table = DbfTable::open(path, DbfTable::OpenMode::ReadOnly);
        if (!table.isOk())
            return false;
        const DbfTable &t = **table;
        const int id = t.fieldIndex(QStringLiteral("ID"));
        const int name = t.fieldIndex(QStringLiteral("NAME"));
        auto index =
            CdxIndex::create(dir + QStringLiteral("/T.CDX"), t,
                             { { QStringLiteral("ID"), "ID", {}, t.fields()[id].length },
                               { QStringLiteral("NAME"), "NAME", {}, t.fields()[name].length } });
        if (!index.isOk()) {
            std::fprintf(stderr, "%s\n", qPrintable(index.status().message()));
            return false;
        }
    }
    QFile file(path);
    return file.open(QIODevice::ReadWrite) && file.seek(28) && file.write("\x01", 1) == 1;
}

// The copy `name` of the benchmark table, made on first use (indexed when `indexed`).
QString benchCopy(const char *name, bool indexed)
{
    const QString source = bench::foxProBenchDir();
    if (source.isEmpty())
        return {};
    QString dir = QFileInfo(source).path() + QLatin1Char('/') + QLatin1String(name);
    if (QFile::exists(dir + QStringLiteral("/T.DBF")))
        return dir;
    const QString partial = dir + QStringLiteral(".part");
    QDir(partial).removeRecursively();
    std::fprintf(stderr, "copying the benchmark table into %s ...\n", qPrintable(dir));
    if (!copyTable(source, partial) || (indexed && !addIndex(partial))
        || !QDir().rename(partial, dir))
        return {};
    return dir;
}

Database *database(bool indexed)
{
    static std::unique_ptr<Database> dbs[2];
    std::unique_ptr<Database> &db = dbs[indexed ? 1 : 0];
    if (!db) {
        const QString dir = benchCopy(indexed ? "foxpro-cdx" : "foxpro-plain", indexed);
        auto opened = OpenDatabase(dir, false, false, QStringLiteral("FoxPro 2.6"));
        if (!dir.isEmpty() && opened.isOk())
            db = std::move(opened).value();
    }
    return db.get();
}

void findFirstId(benchmark::State &state, bool indexed)
{
    Database *db = database(indexed);
    auto rs = db ? db->OpenRecordset(QStringLiteral("SELECT * from T")) : Status();
    if (!db || !rs.isOk())
        return state.SkipWithError("no benchmark table");
    const QString criterion = QStringLiteral("T.ID = ")
        + strToASC(bench::BenchTableGenerator::idOf(bench::DefaultBenchRows / 2 + 3));
    for (auto _ : state) { // NOLINT(clang-analyzer-deadcode.DeadStores): the loop counter
        if (!rs.value()->FindFirst(criterion).isOk() || rs.value()->NoMatch())
            return state.SkipWithError("the ID is not found");
    }
}

void BM_Cdx_FindFirstId(benchmark::State &state)
{
    findFirstId(state, true);
}
BENCHMARK(BM_Cdx_FindFirstId)->Unit(benchmark::kMicrosecond);

void BM_Cdx_FindFirstIdNoIndex(benchmark::State &state)
{
    findFirstId(state, false);
}
BENCHMARK(BM_Cdx_FindFirstIdNoIndex)->Unit(benchmark::kMillisecond);

void addNewUpdate(benchmark::State &state, bool indexed)
{
    Database *db = database(indexed);
    auto rs = db ? db->OpenRecordset(QStringLiteral("SELECT * from T")) : Status();
    if (!db || !rs.isOk())
        return state.SkipWithError("no benchmark table");
    RecordSource &r = *rs.value();
    int n = 0;
    for (auto _ : state) { // NOLINT(clang-analyzer-deadcode.DeadStores): the loop counter
        Status s = r.AddNew();
        if (s.isOk())
            s = r.setValue(QStringLiteral("ID"), QStringLiteral("CDX%1").arg(n++));
        if (s.isOk())
            s = r.setValue(QStringLiteral("NAME"), QStringLiteral("ADDED, BY BENCHMARK"));
        if (s.isOk())
            s = r.Update();
        if (!s.isOk())
            return state.SkipWithError(s.toString().toUtf8().constData());
    }
}

void BM_Cdx_AddNewUpdate(benchmark::State &state)
{
    addNewUpdate(state, true);
}
BENCHMARK(BM_Cdx_AddNewUpdate)->Unit(benchmark::kMicrosecond);

void BM_Cdx_AddNewUpdateNoIndex(benchmark::State &state)
{
    addNewUpdate(state, false);
}
BENCHMARK(BM_Cdx_AddNewUpdateNoIndex)->Unit(benchmark::kMicrosecond);

void sortById(benchmark::State &state, bool indexed)
{
    Database *db = database(indexed);
    if (!db)
        return state.SkipWithError("no benchmark table");
    for (auto _ : state) { // NOLINT(clang-analyzer-deadcode.DeadStores): the loop counter
        state.PauseTiming();
        foxpro::RankCache::global().clear();
        state.ResumeTiming();
        auto rs = db->OpenRecordset(QStringLiteral("SELECT * from T ORDER BY T.ID"));
        if (!rs.isOk())
            return state.SkipWithError(rs.status().message().toUtf8().constData());
    }
}

void BM_Cdx_SortById(benchmark::State &state)
{
    sortById(state, true);
}
BENCHMARK(BM_Cdx_SortById)->Unit(benchmark::kMillisecond);

void BM_Cdx_SortByIdNoIndex(benchmark::State &state)
{
    sortById(state, false);
}
BENCHMARK(BM_Cdx_SortByIdNoIndex)->Unit(benchmark::kMillisecond);

void BM_Cdx_Reindex(benchmark::State &state)
{
    const QString dir = benchCopy("foxpro-cdx", true);
    auto table = DbfTable::open(dir + QStringLiteral("/T.DBF"), DbfTable::OpenMode::ReadOnly);
    if (dir.isEmpty() || !table.isOk())
        return state.SkipWithError("no benchmark table");
    auto index = CdxIndex::open(dir + QStringLiteral("/T.CDX"), **table, true);
    if (!index.isOk())
        return state.SkipWithError(index.status().message().toUtf8().constData());
    for (auto _ : state) { // NOLINT(clang-analyzer-deadcode.DeadStores): the loop counter
        if (Status s = (*index)->reindex(); !s.isOk())
            return state.SkipWithError(s.message().toUtf8().constData());
    }
    state.counters["records"] = double((*table)->recordCount());
}
BENCHMARK(BM_Cdx_Reindex)->Unit(benchmark::kMillisecond)->Iterations(3);

} // namespace
} // namespace plx

BENCHMARK_MAIN();
