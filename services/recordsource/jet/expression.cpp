// services/recordsource/jet/expression.cpp: the public face of the evaluator.
#include "services/recordsource/jet/expression.h"

#include "services/recordsource/jet/internal/evaluator.h"

namespace plx::jet {

Result<QVariant> evaluateExpression(const QString &expression)
{
    return evaluateStandalone(expression);
}

QString expressionValueText(const QVariant &value)
{
    return formatValue(value);
}

} // namespace plx::jet
