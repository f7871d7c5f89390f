// services/recordsource/jet/evaluatorprepare_p.h: what binding for one text comparison works
// out once per statement, so that a row costs only what its non-constant parts cost.
//
// - Like with a constant pattern: the pattern compiled.
// - In with constant items: a look-up set (constantset_p.h).
// - A run of "X = constant" terms on one field joined by Or (ID = 'A' Or ID = 'B' ...):
//   one In node with a set, which keeps the run as written for a value the set cannot judge.
// - Comparisons and Between in the General order: the sort key of each constant text, so a
//   long constant is not keyed again for every row.
#pragma once

#include "services/recordsource/jet/internal/ast.h"
#include "services/recordsource/jet/constantset_p.h"
#include "services/recordsource/jet/internal/like.h"
#include "services/recordsource/textcompare.h"

#include <optional>
#include <vector>

namespace plx::jet {

struct PreparedNode
{
    TextCompare mode = TextCompare::Binary; // the comparison it was made for
    std::optional<LikePattern> pattern;
    std::optional<ConstantSet> set;
    NodePtr orRun; // an In made from an Or run: the run as written
    std::vector<std::optional<QString>> generalKeys; // by operand: the key of a constant text
};

// The node's prepared data when it was made for `mode`; null otherwise.
inline const PreparedNode *preparedFor(const Node &node, TextCompare mode)
{
    return node.prepared && node.prepared->mode == mode ? node.prepared.get() : nullptr;
}

// Prepares a bound tree (its constant parts already computed) for evaluation under `mode`.
void prepare(const NodePtr &root, TextCompare mode);

} // namespace plx::jet
