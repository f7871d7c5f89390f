// apps/plxsql/commands.h: what plxsql can do, and the back ends it can open.
//
// A back end is one row of backEnds(): the option that names it, and how it opens its
// database argument. Adding an engine (e.g. "--foxpro DIR") is one more row.
#pragma once

#include "services/recordsource/database.h"

#include <QTextStream>

#include <functional>

namespace plx::plxsql {

struct BackEnd
{
    const char *option; // "--sqlite"
    const char *argumentName; // "FILE"
    const char *description;
    std::function<Result<std::unique_ptr<Database>>(const QString &argument)> open;
};

const QList<BackEnd> &backEnds();

// Runs one command line (without the program name), printing results to `out`.
Status run(const QStringList &args, QTextStream &out);

} // namespace plx::plxsql
