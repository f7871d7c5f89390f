// services/recordsource/foxpro/statementbounds_p.h: how much one statement on a FoxPro table
// may ask of the engine.
//
// Every statement, filter, sort and find the engine runs finishes or is refused within a
// time a user waits for:
//   - a text longer than 4,000,000 characters, or of more than 1,000,000 terms (names,
//     keywords, constants and operators: "A = 1 Or A = 2" has seven), is refused before it
//     is parsed, with NotSupported: "the query is too long to run (more than 1,000,000
//     terms); shorten the condition". Parsing a text at the bound takes about a second. A
//     join or a column list, which SQLite runs, is refused beyond 50,000 terms;
//   - an expression nested deeper than 100 levels is refused by the parser (Syntax,
//     jet::kMaxExpressionDepth): "expression nested deeper than 100 levels at position 101";
//   - a statement or a find still running after 10 seconds stops, with NotSupported: "the
//     query was stopped after 10 seconds; use a simpler condition". The scans check the clock
//     between records, the evaluator between the parts of one record, and the SQLite path in
//     the tables' virtual tables between rows.
// A filter a user writes is a few hundred characters of a few dozen terms. The bounds leave
// room for machine-made texts: the find of a 65,536-character text of pipes (about 330,000
// terms) and an ID criterion of 100,000 alternatives (500,000 terms) run. Such a criterion,
// an In list or Or chain of IDs, costs about one comparison a record, because its constants
// are looked up in a set; a 1 MB constant is worked out once per statement, not once a record.
#pragma once

#include "services/recordsource/jet/internal/deadline.h"
#include "services/recordsource/jet/internal/lexer.h"

namespace plx::foxpro {

inline constexpr qsizetype kMaxStatementCharacters = 4'000'000;
inline constexpr int kMaxStatementTerms = 1'000'000;
// SQLite takes time that grows with the square of a statement's constants to compile it
// (10,000 "A = n" alternatives take half a second, 40,000 nine), and cannot be stopped while
// it does.
inline constexpr int kMaxSqliteStatementTerms = 50'000;
inline constexpr qint64 kStatementTimeLimitMs = 10'000;

// The text bounds, for the parser: of the statements the engine runs itself, and of those
// it runs through SQLite.
jet::ParseLimits statementLimits();
jet::ParseLimits sqliteStatementLimits();

// "the query was stopped after 10 seconds; use a simpler condition"
Status statementStopped();

// Arms the time limit on this thread for as long as it lives: the evaluator and the scans
// then fail with statementStopped() once the limit has passed.
class StatementDeadline
{
public:
    StatementDeadline() : m_deadline(kStatementTimeLimitMs, statementStopped()) { }

private:
    jet::ScopedDeadline m_deadline;
};

} // namespace plx::foxpro
