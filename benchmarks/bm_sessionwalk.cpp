// benchmarks/bm_sessionwalk.cpp: user steps a second of the session walk on plxform's sample
// form (3,000 records), each step done through the form's widgets and checked against the
// walk's model, the table read back from disk every tenth step and after every write. The
// goal is 200 steps a second on the offscreen platform.
//
//   build/benchmarks/bm_sessionwalk --benchmark_repetitions=3 --benchmark_report_aggregates_only=true
#include "apps/plxform/tests/sessionwalk_runner.h"
#include "benchmarks/widgetbenchmain.h"

#include <benchmark/benchmark.h>

namespace {

using namespace plx::walk;

// One walk of `steps` steps per iteration, form opening included; the walk goes on past a
// failing check (counted in "failing_steps"), so every build measures the same work.
void walkSteps(benchmark::State &state, Backend backend)
{
    QString error;
    if (!prepareSample(&error)) {
        state.SkipWithError(error.toStdString().c_str());
        return;
    }
    WalkOptions options = walkOptionsFromEnvironment(backend);
    options.steps = int(state.range(0));
    options.diskCheckEvery = 10;
    options.stopAtFirstFailure = false;
    qint64 steps = 0;
    int failing = 0;
    for (auto _ : state) {
        options.seed = quint64(1000 + steps);
        const WalkResult result = runRandomWalk(options);
        steps += result.steps.size();
        failing += result.failuresPassed;
    }
    state.SetItemsProcessed(steps);
    state.counters["failing_steps"] = failing;
}

void BM_SessionWalk_FoxPro(benchmark::State &state)
{
    walkSteps(state, Backend::FoxPro);
}
void BM_SessionWalk_SQLite(benchmark::State &state)
{
    walkSteps(state, Backend::SQLite);
}

BENCHMARK(BM_SessionWalk_FoxPro)->Arg(400)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(BM_SessionWalk_SQLite)->Arg(400)->Unit(benchmark::kMillisecond)->Iterations(3);

} // namespace

int main(int argc, char **argv)
{
    return plx::bench::runWidgetBenchmarks(argc, argv);
}
