// benchmarks/recordsourceworkloads.h: the navigator's workloads, run the same way on every
// back end (open + count, sort change, find query, FindFirst by ID, MoveNext with all
// fields, Edit+Update, AddNew+Update, keyset memory). Each back end's benchmark program
// registers them with its own database.
#pragma once

#include "services/recordsource/database.h"

#include <functional>
#include <string>

namespace plx::bench {

struct BackEndUnderTest
{
    std::string prefix; // "BM_SqliteRs", "BM_FoxProRs"
    std::function<Database *()> database; // nullptr when the table cannot be made
    // Bytes the source holds for its keys (for the memory counters).
    std::function<size_t(const RecordSource &)> keysetBytes;
    // Drops what the back end keeps between queries (FoxPro: the ranks of earlier sorts and
    // the mappings of closed tables), so
    // that a workload can be measured as it runs the first time; nullptr when nothing is kept.
    std::function<void()> forgetKept;
    // Bytes the back end keeps between queries.
    std::function<size_t()> keptBytes;
};

void registerRecordSourceWorkloads(const BackEndUnderTest &backEnd);

} // namespace plx::bench
