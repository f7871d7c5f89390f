// benchmarks/bm_sqlite_recordsource.cpp: the record source on SQLite, on the generated
// 1,000,000-record table T (see apps/plxgen). Measures what the navigator does:
//   BM_SqliteRs_OpenCount      open "T", MoveLast, RecordCount (the count after attach)
//   BM_SqliteRs_SortChange     open the sort query ORDER BY T.NAME, T.CITY and FindFirst
//                              the old record's ID (a sort change keeping the record)
//   BM_SqliteRs_FindQuery      open the find query UCase([T.NAME]) LIKE 'SM*' in that order
//                              and read its first record
//   BM_SqliteRs_FindFirstId    FindFirst by a CHR-coded ID on an open source
//   BM_SqliteRs_MoveNextFields MoveNext and read every field, per record
//   BM_SqliteRs_EditUpdate     Edit, set PLLASTREV, Update (durable)
//   BM_SqliteRs_KeyMemory      bytes of keyset per record of a 1,000,000-key source
// bm_sqlite_raw.cpp runs the same SQLite statements through the bare C API, for the
// layer's overhead.
#include "apps/plxgen/benchtable.h"
#include "benchmarks/benchtablecache.h"
#include "services/texthelpers.h"
#include "services/recordsource/sqlite/sqliterecordsource.h"

#include <QFile>

#include <benchmark/benchmark.h>

namespace {

using namespace plx;

constexpr qint64 Rows = bench::DefaultBenchRows;
const QString SortSql = QStringLiteral("SELECT * from T   ORDER BY T.NAME, T.CITY");
const QString FindSql =
    QStringLiteral("SELECT * from T WHERE UCase([T.NAME]) LIKE 'SM*' ORDER BY T.NAME, T.CITY");

// The record a find looks for: one from the middle of the table.
QString wantedId()
{
    return bench::BenchTableGenerator::idOf(Rows / 2 + 3);
}

Database *database()
{
    static std::unique_ptr<Database> db = [] {
        const QString file = bench::sqliteBenchFile(Rows);
        Result<std::unique_ptr<Database>> opened = OpenDatabase(file, false, false, QString());
        return opened.isOk() ? std::move(opened).value() : nullptr;
    }();
    return db.get();
}

std::unique_ptr<RecordSource> openOrSkip(benchmark::State &state, const QString &sql)
{
    if (!database()) {
        state.SkipWithError("no benchmark database");
        return nullptr;
    }
    Result<std::unique_ptr<RecordSource>> rs = database()->OpenRecordset(sql);
    if (!rs.isOk()) {
        state.SkipWithError(rs.status().toString().toUtf8().constData());
        return nullptr;
    }
    return std::move(rs).value();
}

void BM_SqliteRs_OpenCount(benchmark::State &state)
{
    for (auto _ : state) {
        auto rs = openOrSkip(state, QStringLiteral("T"));
        if (!rs)
            return;
        (void)rs->MoveLast();
        benchmark::DoNotOptimize(rs->RecordCount());
        state.counters["records"] = rs->RecordCount();
    }
}
BENCHMARK(BM_SqliteRs_OpenCount)->Unit(benchmark::kMillisecond);

void BM_SqliteRs_SortChange(benchmark::State &state)
{
    const QString criterion = QStringLiteral("T.ID = ") + strToASC(wantedId());
    for (auto _ : state) {
        auto rs = openOrSkip(state, SortSql);
        if (!rs)
            return;
        if (!rs->FindFirst(criterion).isOk() || rs->NoMatch()) {
            state.SkipWithError("the ID was not found");
            return;
        }
        benchmark::DoNotOptimize(rs->AbsolutePosition());
    }
}
BENCHMARK(BM_SqliteRs_SortChange)->Unit(benchmark::kMillisecond);

void BM_SqliteRs_FindQuery(benchmark::State &state)
{
    for (auto _ : state) {
        auto rs = openOrSkip(state, FindSql);
        if (!rs)
            return;
        benchmark::DoNotOptimize(rs->value(1));
    }
    if (auto rs = openOrSkip(state, FindSql); rs && rs->MoveLast().isOk())
        state.counters["hits"] = rs->RecordCount();
}
BENCHMARK(BM_SqliteRs_FindQuery)->Unit(benchmark::kMillisecond);

void BM_SqliteRs_FindFirstId(benchmark::State &state)
{
    auto rs = openOrSkip(state, QStringLiteral("T"));
    if (!rs)
        return;
    const QString criterion = QStringLiteral("ID = ") + strToASC(wantedId());
    for (auto _ : state) {
        if (!rs->FindFirst(criterion).isOk() || rs->NoMatch()) {
            state.SkipWithError("the ID was not found");
            return;
        }
    }
}
BENCHMARK(BM_SqliteRs_FindFirstId)->Unit(benchmark::kMillisecond);

void BM_SqliteRs_MoveNextFields(benchmark::State &state)
{
    auto rs = openOrSkip(state, SortSql);
    if (!rs)
        return;
    const int fields = rs->fieldInfos().size();
    for (auto _ : state) {
        if (rs->MoveNext().isOk() && rs->isEOF())
            (void)rs->MoveFirst();
        for (int i = 0; i < fields; ++i)
            benchmark::DoNotOptimize(rs->value(i));
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_SqliteRs_MoveNextFields)->Unit(benchmark::kMicrosecond);

void BM_SqliteRs_EditUpdate(benchmark::State &state)
{
    auto rs = openOrSkip(state, QStringLiteral("T"));
    if (!rs)
        return;
    (void)rs->setAbsolutePosition(1000);
    int n = 0;
    for (auto _ : state) {
        Status s = rs->Edit();
        if (s.isOk())
            s = rs->setValue(
                QStringLiteral("PLLASTREV"),
                QStringLiteral("11/22/2026 23:00:%1 BENCH").arg(n++ % 60, 2, 10, QLatin1Char('0')));
        if (s.isOk())
            s = rs->Update();
        if (!s.isOk()) {
            state.SkipWithError(s.toString().toUtf8().constData());
            return;
        }
    }
}
BENCHMARK(BM_SqliteRs_EditUpdate)->Unit(benchmark::kMicrosecond);

// Resident memory of the process in bytes (Linux), for the growth an open source causes.
double residentBytes()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray &line : status.readAll().split('\n')) {
        if (line.startsWith("VmRSS:"))
            return line.mid(6).trimmed().split(' ').first().toDouble() * 1024;
    }
    return 0;
}

void BM_SqliteRs_KeyMemory(benchmark::State &state)
{
    for (auto _ : state) {
        const double before = residentBytes();
        auto rs = openOrSkip(state, SortSql);
        if (!rs)
            return;
        (void)rs->MoveLast();
        const double after = residentBytes();
        const auto &source = dynamic_cast<const sqlite::SqliteRecordSource &>(*rs);
        state.counters["keyset_bytes_per_key"] = double(source.keysetBytes()) / rs->RecordCount();
        state.counters["rss_bytes_per_key"] = (after - before) / rs->RecordCount();
    }
}
BENCHMARK(BM_SqliteRs_KeyMemory)->Unit(benchmark::kMillisecond)->Iterations(1);

} // namespace

BENCHMARK_MAIN();
