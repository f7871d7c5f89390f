// services/recordsource/jet/internal/functions.h: the VBA functions Jet queries may call.
//
// One implementation serves the evaluator and the SQLite functions, so a criterion gives
// the same answer on every back end. IIF and IsNull are not here: they are part of the
// evaluator and the translator because IIF must not evaluate the branch it does not take.
#pragma once

#include "services/recordsource/result.h"
#include "services/recordsource/textcompare.h"

#include <QVariant>

namespace plx::jet {

struct FunctionDef
{
    const char *name; // upper case, '$' kept
    int minArgs;
    int maxArgs;
    // args are already evaluated; `mode` is the source's text comparison (InStr's
    // default); `pos` is the call's position for error messages.
    Result<QVariant> (*call)(const QVariant *args, int count, TextCompare mode, int pos);
};

// Syntax error naming the call when it has fewer than `minArgs` or more than `maxArgs`
// arguments.
Status checkArity(const QString &name, int count, int minArgs, int maxArgs, int pos);

// nullptr for a name that is not a function (IIF and ISNULL included: see above).
const FunctionDef *findFunction(const QString &upperName);

} // namespace plx::jet
