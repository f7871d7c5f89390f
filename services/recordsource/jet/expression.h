// services/recordsource/jet/expression.h: a Jet expression evaluated on its own.
//
// For tools and hosts that want the dialect's value of an expression that names no field
// ("1 + 2", "Format(#1/2/2003#, 'yyyy')", "DateAdd('m', 1, Now())"), the same value a
// criterion's constant parts have on every engine.
#pragma once

#include "services/recordsource/result.h"

#include <QString>
#include <QVariant>

namespace plx::jet {

// Parses and evaluates an expression without fields, comparing text case-insensitively.
// Syntax or UnknownFunction (with the position) for a malformed text or an unknown name,
// a function's own error (naming it and its position) when it fails; Null is an invalid
// QVariant.
Result<QVariant> evaluateExpression(const QString &expression);

// The value as the dialect's shell prints it: text in double quotes (inner quotes
// doubled), numbers in plain decimal, True or False, Null, dates as #MM/DD/YYYY# or
// #MM/DD/YYYY hh:mm:ss#.
QString expressionValueText(const QVariant &value);

} // namespace plx::jet
