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
};

void registerRecordSourceWorkloads(const BackEndUnderTest &backEnd);

} // namespace plx::bench
