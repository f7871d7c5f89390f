// benchmarks/bm_sqlite_raw.cpp: the SQLite statements behind bm_sqlite_recordsource.cpp,
// run through the bare C API on the same generated table, so that the record-source
// layer's own cost is the difference:
//   BM_SqliteRaw_OpenCount       step the keyset statement of "T" (rowids in order)
//   BM_SqliteRaw_SortFindId      the sort keyset plus the criterion's rowid query
//   BM_SqliteRaw_FindQuery       step the find query's keyset, read its first row
//   BM_SqliteRaw_FindFirstId     the rowid query of a CHR-coded ID criterion
//   BM_SqliteRaw_RowByKey        read every column of one row by rowid, per record
//   BM_SqliteRaw_Update          BEGIN IMMEDIATE; UPDATE ... WHERE rowid; COMMIT
//   BM_SqliteRaw_FullStatement   step the translated sort statement reading every
//                                column (what the sqlite3 shell does for the query)
// The statements come from the same Jet translation the record source uses.
#include "services/recordsource/tablegen/benchtable.h"
#include "benchmarks/benchtablecache.h"
#include "services/texthelpers.h"
#include "services/recordsource/jetsqlite/internal/sqlitetranslate.h"

#include <benchmark/benchmark.h>
#include <cstdio>
#include <sqlite3.h>

namespace {

using namespace plx;

constexpr qint64 Rows = bench::DefaultBenchRows;

struct Raw
{
    sqlite3 *db = nullptr;
    jet::TableColumns columns;
    jet::TranslatedSelect sort, table, find;
    QString idCriterion, tableIdCriterion;
};

jet::TranslatedSelect translate(const Raw &raw, const QString &sql)
{
    const jet::TableLookup lookup = [&raw](const QString &) { return std::optional(raw.columns); };
    Result<jet::TranslatedSelect> t = jet::translateSelect(sql, lookup);
    return t.isOk() ? t.value() : jet::TranslatedSelect();
}

QString keysetSql(const jet::TranslatedSelect &s)
{
    QString sql = QStringLiteral("SELECT %1.rowid %2").arg(s.baseAlias, s.fromClause);
    if (!s.whereClause.isEmpty())
        sql += QStringLiteral(" WHERE ") + s.whereClause;
    if (!s.orderClause.isEmpty())
        sql += QStringLiteral(" ORDER BY %1, %2.rowid").arg(s.orderClause, s.baseAlias);
    return sql;
}

const Raw &raw()
{
    static Raw r = [] {
        Raw x;
        const QByteArray file = bench::sqliteBenchFile(Rows).toUtf8();
        sqlite3_open_v2(file.constData(), &x.db, SQLITE_OPEN_READWRITE, nullptr);
        sqlite3_exec(x.db, "PRAGMA synchronous=FULL", nullptr, nullptr, nullptr);
        (void)jet::registerJetFunctions(x.db);
        x.columns.table = QStringLiteral("T");
        for (const FieldInfo &f : bench::benchTableFields())
            x.columns.columns << f.name;
        x.sort = translate(x, QStringLiteral("SELECT * from T   ORDER BY T.NAME, T.CITY"));
        x.table = translate(x, QStringLiteral("SELECT * FROM [T]"));
        x.find = translate(x,
                           QStringLiteral("SELECT * from T WHERE UCase([T.NAME]) LIKE 'SM*' "
                                          "ORDER BY T.NAME, T.CITY"));
        const QString id = strToASC(bench::BenchTableGenerator::idOf(Rows / 2 + 3));
        const jet::TableLookup lookup = [&x](const QString &) { return std::optional(x.columns); };
        Result<QString> c1 = jet::translateCriterion(QStringLiteral("ID = ") + id, x.table, lookup);
        Result<QString> c2 =
            jet::translateCriterion(QStringLiteral("T.ID = ") + id, x.sort, lookup);
        x.idCriterion = c1.isOk() ? c1.value() : QString();
        x.tableIdCriterion = c2.isOk() ? c2.value() : QString();
        // The statements measured, for running them in the sqlite3 shell as well.
        for (const QString &sql : { keysetSql(x.table), keysetSql(x.sort), keysetSql(x.find),
                                    x.sort.sql, QStringLiteral("WHERE ") + x.idCriterion })
            std::fprintf(stderr, "statement: %s\n", qPrintable(sql));
        return x;
    }();
    return r;
}

sqlite3_stmt *prepare(const QString &sql)
{
    sqlite3_stmt *st = nullptr;
    sqlite3_prepare_v2(raw().db, sql.toUtf8().constData(), -1, &st, nullptr);
    return st;
}

// Steps a statement to its end, keeping column 0 of every row as the keyset does.
qint64 stepAll(const QString &sql, std::vector<qint64> *keys = nullptr)
{
    sqlite3_stmt *st = prepare(sql);
    qint64 n = 0;
    while (sqlite3_step(st) == SQLITE_ROW) {
        if (keys)
            keys->push_back(sqlite3_column_int64(st, 0));
        ++n;
    }
    sqlite3_finalize(st);
    return n;
}

void BM_SqliteRaw_OpenCount(benchmark::State &state)
{
    for (auto _ : state) {
        std::vector<qint64> keys;
        benchmark::DoNotOptimize(stepAll(keysetSql(raw().table), &keys));
    }
}
BENCHMARK(BM_SqliteRaw_OpenCount)->Unit(benchmark::kMillisecond);

void BM_SqliteRaw_SortFindId(benchmark::State &state)
{
    const QString findSql =
        QStringLiteral("SELECT %1.rowid %2 WHERE (%3)")
            .arg(raw().sort.baseAlias, raw().sort.fromClause, raw().tableIdCriterion);
    for (auto _ : state) {
        std::vector<qint64> keys;
        stepAll(keysetSql(raw().sort), &keys);
        benchmark::DoNotOptimize(stepAll(findSql));
    }
}
BENCHMARK(BM_SqliteRaw_SortFindId)->Unit(benchmark::kMillisecond);

void BM_SqliteRaw_FindQuery(benchmark::State &state)
{
    for (auto _ : state) {
        std::vector<qint64> keys;
        benchmark::DoNotOptimize(stepAll(keysetSql(raw().find), &keys));
    }
}
BENCHMARK(BM_SqliteRaw_FindQuery)->Unit(benchmark::kMillisecond);

void BM_SqliteRaw_FindFirstId(benchmark::State &state)
{
    const QString sql = QStringLiteral("SELECT %1.rowid %2 WHERE (%3)")
                            .arg(raw().table.baseAlias, raw().table.fromClause, raw().idCriterion);
    for (auto _ : state)
        benchmark::DoNotOptimize(stepAll(sql));
}
BENCHMARK(BM_SqliteRaw_FindFirstId)->Unit(benchmark::kMillisecond);

void BM_SqliteRaw_RowByKey(benchmark::State &state)
{
    std::vector<qint64> keys;
    stepAll(keysetSql(raw().sort), &keys);
    sqlite3_stmt *st =
        prepare(QStringLiteral("SELECT %1 %2 WHERE %3.rowid = ?1")
                    .arg(raw().sort.selectList, raw().sort.fromClause, raw().sort.baseAlias));
    size_t at = 0;
    for (auto _ : state) {
        sqlite3_bind_int64(st, 1, keys.at(at++ % keys.size()));
        if (sqlite3_step(st) == SQLITE_ROW) {
            for (int i = 0; i < sqlite3_column_count(st); ++i)
                benchmark::DoNotOptimize(sqlite3_column_text(st, i));
        }
        sqlite3_reset(st);
    }
    sqlite3_finalize(st);
}
BENCHMARK(BM_SqliteRaw_RowByKey)->Unit(benchmark::kMicrosecond);

void BM_SqliteRaw_Update(benchmark::State &state)
{
    sqlite3_stmt *st = prepare(QStringLiteral("UPDATE T SET PLLASTREV = ?1 WHERE rowid = ?2"));
    int n = 0;
    for (auto _ : state) {
        const QByteArray stamp = QStringLiteral("11/22/2026 23:00:%1 RAW")
                                     .arg(n++ % 60, 2, 10, QLatin1Char('0'))
                                     .toUtf8();
        int rc = sqlite3_exec(raw().db, "BEGIN IMMEDIATE", nullptr, nullptr, nullptr);
        sqlite3_bind_text(st, 1, stamp.constData(), -1, SQLITE_TRANSIENT);
        sqlite3_bind_int64(st, 2, 1001);
        if (rc == SQLITE_OK && sqlite3_step(st) != SQLITE_DONE)
            rc = SQLITE_ERROR;
        sqlite3_reset(st);
        if (rc == SQLITE_OK)
            rc = sqlite3_exec(raw().db, "COMMIT", nullptr, nullptr, nullptr);
        if (rc != SQLITE_OK) {
            state.SkipWithError(sqlite3_errmsg(raw().db));
            break;
        }
    }
    sqlite3_finalize(st);
}
BENCHMARK(BM_SqliteRaw_Update)->Unit(benchmark::kMicrosecond);

void BM_SqliteRaw_FullStatement(benchmark::State &state)
{
    for (auto _ : state) {
        sqlite3_stmt *st = prepare(raw().sort.sql);
        while (sqlite3_step(st) == SQLITE_ROW) {
            for (int i = 0; i < sqlite3_column_count(st); ++i)
                benchmark::DoNotOptimize(sqlite3_column_text(st, i));
        }
        sqlite3_finalize(st);
    }
}
BENCHMARK(BM_SqliteRaw_FullStatement)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
