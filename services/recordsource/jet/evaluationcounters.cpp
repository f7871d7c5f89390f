// services/recordsource/jet/evaluationcounters.cpp: the thread's evaluation counters.
#include "services/recordsource/jet/internal/evaluationcounters.h"

namespace plx::jet {

EvaluationCounters &evaluationCounters()
{
    thread_local EvaluationCounters counters;
    return counters;
}

} // namespace plx::jet
