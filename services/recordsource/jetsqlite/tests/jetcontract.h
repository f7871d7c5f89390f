// Runs Jet expressions both ways, through the evaluator (as --eval and the FoxPro back end
// do) and translated to SQLite (as the SQLite back end does), and checks that both give
// the value the dialect's documentation gives.
//
// On the SQLite side every text and number literal is first moved into a column of a
// one-row table, so the registered SQLite functions really run instead of a constant the
// translator computed in advance.
#pragma once

#include "services/recordsource/status.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <ostream>
#include <string>
#include <vector>

namespace plx::jet::testing {

struct Case
{
    const char *expression;
    // As the shell prints it: "text", 12.5, True, Null, #01/31/2003#, #07:00:00#.
    const char *expected;
};

void expectBothWays(const std::vector<Case> &cases);

// Cases that one documented rule gives, named as a test is.
struct CaseGroup
{
    const char *name;
    std::vector<Case> cases;
};

inline void PrintTo(const CaseGroup &group, std::ostream *os)
{
    *os << group.name;
}

inline std::string groupName(const ::testing::TestParamInfo<CaseGroup> &info)
{
    return info.param.name;
}

struct ErrorCase
{
    const char *expression; // may use the columns of errorRow below
    Status::Code code; // the evaluator's code; SQLite reports an engine error
    const char *mentions; // text both messages must contain
};

// Errors, with the same text on both sides: the expressions run over one row whose columns
// are S = 'Boston', N = 12.5, Z = Null, D = #1/31/2003#.
void expectErrorBothWays(std::initializer_list<ErrorCase> cases);

} // namespace plx::jet::testing
