// benchmarks/bm_foxpro_raw.cpp: the work behind bm_foxpro_recordsource.cpp's workloads done by
// plain loops over the mapped benchmark table (the file layer's DbfTable, no record source, no
// Jet), so that the FoxPro record source's own cost is the difference:
//   BM_FoxProRaw_OpenCount     open the table, list the records not deleted
//   BM_FoxProRaw_FindQuery     list the records whose NAME starts with "SM" in any case (the
//                              pass that selects the find's hits; they are not sorted)
//   BM_FoxProRaw_FindFirstId   the first record whose ID field holds one ID's padded bytes
//   BM_FoxProRaw_RowByKey      every field of one record read as text, per record
// A sort has no plain-loop counterpart worth the name: a comparison sort of a million records
// by their bytes takes seconds, where the record source ranks the distinct values once.
#include "benchmarks/benchtablecache.h"
#include "services/recordsource/dbf/internal/dbftable.h"

#include <benchmark/benchmark.h>

#include <cstring>
#include <memory>
#include <vector>

namespace {

using plx::DbfTable;
namespace bench = plx::bench;

std::unique_ptr<DbfTable> openTable()
{
    const QString dir = bench::foxProBenchDir();
    if (dir.isEmpty())
        return nullptr;
    auto table = DbfTable::open(dir + QStringLiteral("/T.DBF"), DbfTable::OpenMode::ReadOnly);
    return table.isOk() ? std::move(table).value() : nullptr;
}

DbfTable *table()
{
    static std::unique_ptr<DbfTable> t = openTable();
    return t.get();
}

std::vector<quint32> live(const DbfTable &t)
{
    std::vector<quint32> keys;
    keys.reserve(t.recordCount());
    for (quint32 r = 1; r <= t.recordCount(); ++r) {
        if (!t.isDeleted(r))
            keys.push_back(r);
    }
    return keys;
}

// The first live record whose field holds `padded` (the field's length of bytes).
qint64 firstWithId(const DbfTable &t, const QByteArray &padded)
{
    const int field = t.fieldIndex(QStringLiteral("ID"));
    for (quint32 r = 1; r <= t.recordCount(); ++r) {
        if (!t.isDeleted(r)
            && std::memcmp(t.fieldBytes(r, field), padded.constData(), size_t(padded.size())) == 0)
            return r;
    }
    return -1;
}

// The stored bytes of an ID from the middle of the table, as the workloads look one up.
QByteArray someId(const DbfTable &t)
{
    const int field = t.fieldIndex(QStringLiteral("ID"));
    return QByteArray(t.fieldBytes(t.recordCount() / 2, field), t.fields().at(field).length);
}

void BM_FoxProRaw_OpenCount(benchmark::State &state)
{
    const QString path = bench::foxProBenchDir() + QStringLiteral("/T.DBF");
    for (auto _ : state) {
        auto t = DbfTable::open(path, DbfTable::OpenMode::ReadOnly);
        if (!t.isOk()) {
            state.SkipWithError("no benchmark table");
            return;
        }
        benchmark::DoNotOptimize(live(*t.value()).size());
    }
}
BENCHMARK(BM_FoxProRaw_OpenCount)->Unit(benchmark::kMillisecond);

void BM_FoxProRaw_FindQuery(benchmark::State &state)
{
    if (!table())
        return state.SkipWithError("no benchmark table");
    const DbfTable &t = *table();
    const int name = t.fieldIndex(QStringLiteral("NAME"));
    for (auto _ : state) {
        std::vector<quint32> hits;
        for (quint32 r = 1; r <= t.recordCount(); ++r) {
            const QByteArrayView v = t.rawText(r, name);
            if (!t.isDeleted(r) && v.size() >= 2 && (v[0] | 0x20) == 's' && (v[1] | 0x20) == 'm')
                hits.push_back(r);
        }
        benchmark::DoNotOptimize(hits.data());
        state.counters["hits"] = double(hits.size());
    }
}
BENCHMARK(BM_FoxProRaw_FindQuery)->Unit(benchmark::kMillisecond);

void BM_FoxProRaw_FindFirstId(benchmark::State &state)
{
    if (!table())
        return state.SkipWithError("no benchmark table");
    const QByteArray id = someId(*table());
    for (auto _ : state)
        benchmark::DoNotOptimize(firstWithId(*table(), id));
}
BENCHMARK(BM_FoxProRaw_FindFirstId)->Unit(benchmark::kMillisecond);

void BM_FoxProRaw_RowByKey(benchmark::State &state)
{
    if (!table())
        return state.SkipWithError("no benchmark table");
    const DbfTable &t = *table();
    quint32 r = 0;
    for (auto _ : state) {
        r = r % t.recordCount() + 1;
        for (int f = 0; f < int(t.fields().size()); ++f)
            benchmark::DoNotOptimize(t.decode(t.rawText(r, f)));
    }
}
BENCHMARK(BM_FoxProRaw_RowByKey)->Unit(benchmark::kMicrosecond);

} // namespace

BENCHMARK_MAIN();
