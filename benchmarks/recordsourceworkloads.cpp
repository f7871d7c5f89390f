// benchmarks/recordsourceworkloads.cpp: the navigator's workloads on the generated
// 1,000,000-record table T (see services/recordsource/tablegen):
//   OpenCount      open "T", MoveLast, RecordCount (the count after attach)
//   OpenCountFirst the same with nothing kept from earlier opens (the first in a process)
//   SortChange     open the sort query ORDER BY T.NAME, T.CITY and FindFirst the old
//                  record's ID (a sort change keeping the record), nothing kept from
//                  earlier sorts; the navigator's record source on "T" stays open meanwhile
//   SortAgain      the same when the same sort ran before (the re-query after a save)
//   FindQuery      with the sort query open as the navigator's record source, open the find
//                  query UCase([T.NAME]) LIKE 'SM*' in that order, MoveLast, MoveFirst and
//                  read the first record's ID (the navigator's find, key by key)
//   FindQueryCold  the same with nothing kept from the sort
//   FindFirstId    FindFirst by a CHR-coded ID on an open source
//   MoveNextFields MoveNext and read every field, per record
//   EditUpdate     Edit, set PLLASTREV, Update (durable)
//   AddNewUpdate   AddNew, set ID and NAME, Update (durable)
//   KeyMemory      bytes of keyset per record of a 1,000,000-key source
#include "benchmarks/recordsourceworkloads.h"

#include "services/recordsource/tablegen/benchtable.h"
#include "services/texthelpers.h"

#include <QFile>

#include <benchmark/benchmark.h>

namespace plx::bench {

namespace {

constexpr qint64 Rows = bench::DefaultBenchRows;
const QString SortSql = QStringLiteral("SELECT * from T   ORDER BY T.NAME, T.CITY");
const QString FindSql =
    QStringLiteral("SELECT * from T WHERE UCase([T.NAME]) LIKE 'SM*' ORDER BY T.NAME, T.CITY");

// The record a find looks for: one from the middle of the table.
QString wantedId()
{
    return bench::BenchTableGenerator::idOf(Rows / 2 + 3);
}

const BackEndUnderTest *g_backEnd = nullptr;

Database *database()
{
    return g_backEnd->database();
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

void OpenCount(benchmark::State &state)
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

void forgetKept(benchmark::State &state)
{
    if (g_backEnd->forgetKept) {
        state.PauseTiming();
        g_backEnd->forgetKept();
        state.ResumeTiming();
    }
}

void OpenCountFirst(benchmark::State &state)
{
    for (auto _ : state) {
        forgetKept(state);
        auto rs = openOrSkip(state, QStringLiteral("T"));
        if (!rs)
            return;
        (void)rs->MoveLast();
        benchmark::DoNotOptimize(rs->RecordCount());
    }
}

void sortChange(benchmark::State &state, bool cold)
{
    const QString criterion = QStringLiteral("T.ID = ") + strToASC(wantedId());
    auto navigator = openOrSkip(state, QStringLiteral("T"));
    if (!navigator)
        return;
    if (!cold)
        (void)openOrSkip(state, SortSql);
    for (auto _ : state) {
        if (cold)
            forgetKept(state);
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

void SortChange(benchmark::State &state)
{
    sortChange(state, true);
}

void SortAgain(benchmark::State &state)
{
    sortChange(state, false);
}

void findQuery(benchmark::State &state, bool cold)
{
    auto navigator = openOrSkip(state, SortSql);
    if (!navigator)
        return;
    for (auto _ : state) {
        if (cold)
            forgetKept(state);
        auto rs = openOrSkip(state, FindSql);
        if (!rs)
            return;
        (void)rs->MoveLast();
        (void)rs->MoveFirst();
        benchmark::DoNotOptimize(rs->value(QStringLiteral("ID")));
    }
    if (auto rs = openOrSkip(state, FindSql); rs && rs->MoveLast().isOk())
        state.counters["hits"] = rs->RecordCount();
}

void FindQuery(benchmark::State &state)
{
    findQuery(state, false);
}

void FindQueryCold(benchmark::State &state)
{
    findQuery(state, true);
}

void FindFirstId(benchmark::State &state)
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

void MoveNextFields(benchmark::State &state)
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

void EditUpdate(benchmark::State &state)
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

void KeyMemory(benchmark::State &state)
{
    for (auto _ : state) {
        const double before = residentBytes();
        auto rs = openOrSkip(state, SortSql);
        if (!rs)
            return;
        (void)rs->MoveLast();
        const double after = residentBytes();
        state.counters["keyset_bytes_per_key"] =
            double(g_backEnd->keysetBytes(*rs)) / rs->RecordCount();
        state.counters["rss_bytes_per_key"] = (after - before) / rs->RecordCount();
        if (g_backEnd->keptBytes)
            state.counters["kept_bytes_per_key"] =
                double(g_backEnd->keptBytes()) / rs->RecordCount();
    }
}

void AddNewUpdate(benchmark::State &state)
{
    auto rs = openOrSkip(state, QStringLiteral("T"));
    if (!rs)
        return;
    int n = 0;
    for (auto _ : state) {
        Status s = rs->AddNew();
        if (s.isOk())
            s = rs->setValue(QStringLiteral("ID"), QStringLiteral("BENCH%1").arg(n++));
        if (s.isOk())
            s = rs->setValue(QStringLiteral("NAME"), QStringLiteral("ADDED, BY BENCHMARK"));
        if (s.isOk())
            s = rs->Update();
        if (!s.isOk()) {
            state.SkipWithError(s.toString().toUtf8().constData());
            return;
        }
    }
}

} // namespace

void registerRecordSourceWorkloads(const BackEndUnderTest &backEnd)
{
    static BackEndUnderTest kept;
    kept = backEnd;
    g_backEnd = &kept;
    auto name = [&](const char *workload) { return backEnd.prefix + "_" + workload; };
    benchmark::RegisterBenchmark(name("OpenCount").c_str(), OpenCount)
        ->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark(name("OpenCountFirst").c_str(), OpenCountFirst)
        ->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark(name("SortChange").c_str(), SortChange)
        ->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark(name("SortAgain").c_str(), SortAgain)
        ->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark(name("FindQuery").c_str(), FindQuery)
        ->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark(name("FindQueryCold").c_str(), FindQueryCold)
        ->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark(name("FindFirstId").c_str(), FindFirstId)
        ->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark(name("MoveNextFields").c_str(), MoveNextFields)
        ->Unit(benchmark::kMicrosecond);
    // Before the writes, while the table is settled and its ranks can be kept.
    benchmark::RegisterBenchmark(name("KeyMemory").c_str(), KeyMemory)
        ->Unit(benchmark::kMillisecond)
        ->Iterations(1);
    benchmark::RegisterBenchmark(name("EditUpdate").c_str(), EditUpdate)
        ->Unit(benchmark::kMicrosecond);
    benchmark::RegisterBenchmark(name("AddNewUpdate").c_str(), AddNewUpdate)
        ->Unit(benchmark::kMicrosecond)
        ->Iterations(200);
}

} // namespace plx::bench
