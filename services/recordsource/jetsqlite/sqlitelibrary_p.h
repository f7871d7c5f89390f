// services/recordsource/jetsqlite/sqlitelibrary_p.h: the dialect's function library bound
// to SQLite. Private to the SQLite binding of the dialect.
#pragma once

#include "services/recordsource/jet/internal/ast.h"
#include "services/recordsource/result.h"

#include <functional>

struct sqlite3;
struct sqlite3_context;
struct sqlite3_value;

namespace plx::jet {

// Nz(value [, valueIfNull]) in SQLite: COALESCE(value, valueIfNull or ''), SQLite's own
// operation, so that Nz(CITY, '') costs what IIF(IsNull(CITY), '', CITY) costs. `sub`
// translates an argument.
Result<QString> translateNz(const Node &call,
                            const std::function<Result<QString>(const Node &)> &sub);

// The generic SQLite binding of a function (its FunctionDef is the user data), and the
// direct bindings that replace it where a filter would pay for the conversions on every
// row (DatePart). An SQLite result code.
void callGenericJetFunction(sqlite3_context *ctx, int argc, sqlite3_value **argv);
int registerFastLibraryFunctions(sqlite3 *db);

// SQLite keeps dates as ISO text; a date that a function returns carries this subtype so
// that the next function reads it as a date again. The flags declare that the functions
// read and set subtypes.
constexpr unsigned kSqliteDateSubtype = 'D';
extern const int kSqliteSubtypeFlags;

} // namespace plx::jet
