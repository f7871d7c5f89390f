// services/recordsource/jet/internal/evaluationcounters.h: counts of the costly steps of
// evaluation.
//
// Tests read them to check that a statement's constant parts are worked out once, not once a
// row: a filter over 100 records with a constant Replace(...) runs Replace once; and that an
// engine parses a statement once per open. Counting costs one addition a step.
#pragma once

#include <QtGlobal>

namespace plx::jet {

struct EvaluationCounters
{
    quint64 functionCalls = 0; // functions of the library run
    quint64 patternCompilations = 0; // Like patterns compiled
    quint64 keyedCharacters = 0; // characters of the texts given General sort keys
    quint64 statementsParsed = 0; // SELECT texts parsed
};

// This thread's counters; `evaluationCounters() = {}` starts them again.
EvaluationCounters &evaluationCounters();

} // namespace plx::jet
