// services/recordsource/jet/internal/evaluator.h: runs a Jet expression over a row.
//
// Used where no SQL engine evaluates the expression: FindFirst and WHERE on FoxPro tables,
// and expressions evaluated alone (plxsql --eval). Bind once (field names to column
// indexes), then evaluate per row without any name look-up.
//
//     Result<NodePtr> e = parseExpression(QStringLiteral("UCase(NAME) Like 'SM*'"));
//     Status s = bind(e.value(), [&](const Node &col) { return indexOf(col); });
//     Result<QVariant> v = evaluate(*e.value(), row, TextCompare::Binary);
//     if (v.isOk() && isTrue(v.value())) ...
#pragma once

#include "services/recordsource/jet/internal/ast.h"
#include "services/recordsource/result.h"
#include "services/recordsource/textcompare.h"

#include <functional>

namespace plx::jet {

// The values of the current row, by the column indexes that bind() assigned.
class Row
{
public:
    virtual ~Row() = default;
    virtual QVariant value(int column) const = 0;
};

// Gives the column index of a Column node (its table, name and wholeBracket), or an
// UnknownField error that names the field and its position.
using ColumnResolver = std::function<Result<int>(const Node &column)>;

// Assigns column indexes to every Column node of the tree, and computes the parts that are
// the same for every row and under either text comparison.
Status bind(const NodePtr &root, const ColumnResolver &resolve);
// The same for a tree that will be evaluated under `mode` only (an engine's statement or
// find): every constant part is computed here, comparisons, Like, In, InStr, Replace and the
// branch an IIF with a constant condition takes included; constant Like patterns are
// compiled; In lists of constants, and runs of "field = constant" joined by Or, become
// look-up sets; constant texts compared in the General order are keyed. A row then costs
// what its non-constant parts cost, however long the constants are.
Status bind(const NodePtr &root, const ColumnResolver &resolve, TextCompare mode);

// Evaluates a bound tree. `row` may be null when the expression has no columns. Fails with
// the deadline's error once a deadline armed on this thread has passed (internal/deadline.h).
Result<QVariant> evaluate(const Node &node, const Row *row, TextCompare mode);

// A WHERE or FindFirst condition holds only when its value is True (not False, not Null).
bool isTrue(const QVariant &value);

// Parses and evaluates an expression without fields, comparing text case-insensitively.
Result<QVariant> evaluateStandalone(const QString &expression);

// The value as the shell prints it: text in double quotes (inner quotes doubled), numbers
// in plain decimal, True or False, Null, dates as #MM/DD/YYYY# or #MM/DD/YYYY hh:mm:ss#.
QString formatValue(const QVariant &value);

} // namespace plx::jet
