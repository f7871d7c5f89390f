// services/recordsource/jet/evaluator_p.h: runs a Jet expression over a row.
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

#include "services/recordsource/jet/ast_p.h"
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

// Assigns column indexes to every Column node of the tree.
Status bind(const NodePtr &root, const ColumnResolver &resolve);

// Evaluates a bound tree. `row` may be null when the expression has no columns.
Result<QVariant> evaluate(const Node &node, const Row *row, TextCompare mode);

// A WHERE or FindFirst condition holds only when its value is True (not False, not Null).
bool isTrue(const QVariant &value);

// Parses and evaluates an expression without fields, comparing text case-insensitively.
Result<QVariant> evaluateStandalone(const QString &expression);

// The value as the shell prints it: text in double quotes (inner quotes doubled), numbers
// in plain decimal, True or False, Null, dates as #MM/DD/YYYY# or #MM/DD/YYYY hh:mm:ss#.
QString formatValue(const QVariant &value);

} // namespace plx::jet
