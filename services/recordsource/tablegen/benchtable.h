// services/recordsource/tablegen/benchtable.h: the benchmark table, record by record.
//
// The table the benchmarks and load tests run on: N records shaped like a host's
// customer table, deterministic for a given seed so that every back end and every run
// sees the same data. The writers for each engine (SQLite, FoxPro files) take the
// field list and pull rows from BenchTableGenerator.
//
//   ID C(20)        "PLE" + 7 key characters; every tenth record is a child whose ID is
//                   its parent's ID + 7 more characters (17 characters)
//   NAME C(40)      "Last, First M", surnames Zipf-distributed, many sharing prefixes
//                   (SMITH, SMITHSON, SMALL, ...), a quarter of them in upper case
//   CITY C(30), STATE C(2), AMOUNT N(12,2), BORN D, ACTIVE L
//   NOTES memo      one record in three has a note
//   PLSTART C(30), PLLASTREV C(30)  audit stamps "MM/DD/YYYY hh:mm:ss USER"
#pragma once

#include "services/recordsource/recordsource.h"

#include <random>

namespace plx::bench {

constexpr int DefaultBenchRows = 1000000;
constexpr quint64 DefaultBenchSeed = 20261122;

QList<FieldInfo> benchTableFields();

class BenchTableGenerator
{
public:
    explicit BenchTableGenerator(quint64 seed = DefaultBenchSeed);
    // The next record, one value per field of benchTableFields(); Null as QVariant().
    QVariantList next();
    // The ID record `index` (0-based) gets, without generating the records before it.
    static QString idOf(qint64 index);

private:
    double uniform();
    int below(int n);
    QString personName();
    QString stamp();

    std::mt19937_64 m_random;
    qint64 m_index = 0;
};

} // namespace plx::bench
