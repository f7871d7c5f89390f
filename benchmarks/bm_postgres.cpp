// benchmarks/bm_postgres.cpp: the PostgreSQL engine on the generated 1,000,000-record table,
// each workload beside the same statements sent through bare libpq (what psql sends), so
// that the engine's own cost is the difference:
//   BM_Pg_OpenCount        OpenRecordset("T"), MoveLast, RecordCount
//     BM_PgRaw_Count       SELECT count(*)
//   BM_Pg_SortChange       OpenRecordset of the navigator's sort query
//     BM_PgRaw_SortKeys    the ordered key query it runs (binary keys)
//   BM_Pg_MoveNextAll      a full pass with MoveNext reading every field (per record)
//   BM_Pg_FindFirstId      FindFirst with a CHR-coded ID criterion, from the first record
//     BM_PgRaw_FindId      the translated criterion's key query
//   BM_Pg_EditUpdate       Edit, set CITY, Update (lock, re-read, write, unlock)
//     BM_PgRaw_Update      UPDATE ... WHERE plx_key = $1
// The database is the one PLX_BENCH_PG names (a libpq connection string or URI); its table
// T is generated there (plxgen --postgres) when it is missing.
#include "services/recordsource/database.h"
#include "services/recordsource/tablegen/benchtable.h"
#include "services/recordsource/tablegen/postgreswriter.h"
#include "services/texthelpers.h"

#include <benchmark/benchmark.h>
#include <libpq-fe.h>

#include <cstdio>

namespace {

using namespace plx;

constexpr qint64 Rows = bench::DefaultBenchRows;
const char *const kSortSql = "SELECT * from T   ORDER BY T.NAME, T.CITY";

// The statements the engine sends for the workloads above.
const char *const kRawCount = "SELECT count(*) FROM \"T\"";
const char *const kRawSortKeys =
    "SELECT \"T\".plx_key FROM \"T\" AS \"T\" ORDER BY \"T\".\"NAME\" COLLATE plx.nocase NULLS "
    "FIRST, \"T\".\"CITY\" COLLATE plx.nocase NULLS FIRST, \"T\".plx_key";

QString conninfo()
{
    return qEnvironmentVariable("PLX_BENCH_PG");
}

PGconn *rawConnection()
{
    static PGconn *conn = [] {
        PGconn *c = PQconnectdb(conninfo().toUtf8().constData());
        PGresult *r = PQexec(c, "SELECT count(*) FROM \"T\"");
        const bool present = PQresultStatus(r) == PGRES_TUPLES_OK
            && QByteArray(PQgetvalue(r, 0, 0)).toLongLong() == Rows;
        PQclear(r);
        if (!present) {
            std::fprintf(stderr, "generating %lld records into table T ...\n", Rows);
            const Status s = bench::writePostgresBenchTable(conninfo(), QStringLiteral("T"), Rows);
            if (!s.isOk())
                std::fprintf(stderr, "cannot generate T: %s\n", qPrintable(s.toString()));
        }
        return c;
    }();
    return conn;
}

bool ready(benchmark::State &state)
{
    if (conninfo().isEmpty()) {
        state.SkipWithError("set PLX_BENCH_PG to a libpq connection string (see the README)");
        return false;
    }
    if (PQstatus(rawConnection()) != CONNECTION_OK) {
        state.SkipWithError(PQerrorMessage(rawConnection()));
        return false;
    }
    return true;
}

Database &database()
{
    static std::unique_ptr<Database> db = [] {
        Result<std::unique_ptr<Database>> opened =
            OpenDatabase(conninfo(), false, false, QStringLiteral("PostgreSQL"));
        return opened.isOk() ? std::move(opened).value() : nullptr;
    }();
    return *db;
}

qint64 rawRows(const char *sql, int format, const char *const *params = nullptr, int count = 0)
{
    PGresult *r =
        PQexecParams(rawConnection(), sql, count, nullptr, params, nullptr, nullptr, format);
    const qint64 n = PQntuples(r);
    PQclear(r);
    return n;
}

QString idCriterion()
{
    return QStringLiteral("T.ID = ") + strToASC(bench::BenchTableGenerator::idOf(Rows / 2 + 3));
}

void BM_Pg_OpenCount(benchmark::State &state)
{
    if (!ready(state))
        return;
    for (auto _ : state) {
        auto rs = database().OpenRecordset(QStringLiteral("T"));
        (void)rs.value()->MoveLast();
        benchmark::DoNotOptimize(rs.value()->RecordCount());
    }
}
BENCHMARK(BM_Pg_OpenCount)->Unit(benchmark::kMillisecond);

void BM_PgRaw_Count(benchmark::State &state)
{
    if (!ready(state))
        return;
    for (auto _ : state)
        benchmark::DoNotOptimize(rawRows(kRawCount, 0));
}
BENCHMARK(BM_PgRaw_Count)->Unit(benchmark::kMillisecond);

void BM_Pg_SortChange(benchmark::State &state)
{
    if (!ready(state))
        return;
    for (auto _ : state) {
        auto rs = database().OpenRecordset(QString::fromLatin1(kSortSql));
        benchmark::DoNotOptimize(rs.value()->AbsolutePosition());
    }
}
BENCHMARK(BM_Pg_SortChange)->Unit(benchmark::kMillisecond);

void BM_PgRaw_SortKeys(benchmark::State &state)
{
    if (!ready(state))
        return;
    for (auto _ : state)
        benchmark::DoNotOptimize(rawRows(kRawSortKeys, 1));
}
BENCHMARK(BM_PgRaw_SortKeys)->Unit(benchmark::kMillisecond);

void BM_Pg_MoveNextAll(benchmark::State &state)
{
    if (!ready(state))
        return;
    auto rs = database().OpenRecordset(QString::fromLatin1(kSortSql));
    RecordSource &r = *rs.value();
    const int fields = int(r.fieldInfos().size());
    qint64 steps = 0;
    for (auto _ : state) {
        if (r.isEOF())
            (void)r.MoveFirst();
        for (int i = 0; i < fields; ++i)
            benchmark::DoNotOptimize(r.value(i));
        (void)r.MoveNext();
        ++steps;
    }
    state.SetItemsProcessed(steps);
}
BENCHMARK(BM_Pg_MoveNextAll)->Unit(benchmark::kMicrosecond)->Iterations(Rows);

void BM_Pg_FindFirstId(benchmark::State &state)
{
    if (!ready(state))
        return;
    auto rs = database().OpenRecordset(QString::fromLatin1(kSortSql));
    const QString criterion = idCriterion();
    for (auto _ : state) {
        (void)rs.value()->FindFirst(criterion);
        benchmark::DoNotOptimize(rs.value()->NoMatch());
    }
}
BENCHMARK(BM_Pg_FindFirstId)->Unit(benchmark::kMillisecond);

void BM_PgRaw_FindId(benchmark::State &state)
{
    if (!ready(state))
        return;
    const QByteArray sql = QStringLiteral("SELECT \"T\".plx_key FROM \"T\" AS \"T\" WHERE "
                                          "((\"T\".\"ID\") COLLATE plx.nocase = ('%1'))")
                               .arg(bench::BenchTableGenerator::idOf(Rows / 2 + 3))
                               .toUtf8();
    for (auto _ : state)
        benchmark::DoNotOptimize(rawRows(sql.constData(), 1));
}
BENCHMARK(BM_PgRaw_FindId)->Unit(benchmark::kMillisecond);

void BM_Pg_EditUpdate(benchmark::State &state)
{
    if (!ready(state))
        return;
    auto rs = database().OpenRecordset(QStringLiteral("T"));
    RecordSource &r = *rs.value();
    (void)r.setAbsolutePosition(qint32(Rows / 3));
    int n = 0;
    for (auto _ : state) {
        (void)r.Edit();
        (void)r.setValue(QStringLiteral("CITY"), QStringLiteral("Troy %1").arg(++n % 10));
        const Status s = r.Update();
        if (!s.isOk())
            state.SkipWithError(qPrintable(s.toString()));
    }
}
BENCHMARK(BM_Pg_EditUpdate)->Unit(benchmark::kMillisecond);

void BM_PgRaw_Update(benchmark::State &state)
{
    if (!ready(state))
        return;
    int n = 0;
    for (auto _ : state) {
        const QByteArray city = QStringLiteral("Troy %1").arg(++n % 10).toUtf8();
        const QByteArray key = QByteArray::number(Rows / 3);
        const char *params[] = { city.constData(), key.constData() };
        benchmark::DoNotOptimize(
            rawRows("UPDATE \"T\" SET \"CITY\" = $1 WHERE plx_key = $2", 0, params, 2));
    }
}
BENCHMARK(BM_PgRaw_Update)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
