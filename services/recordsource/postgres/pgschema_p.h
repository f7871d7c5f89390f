// services/recordsource/postgres/pgschema_p.h: what the engine installs in a database, in
// a schema of its own ("plx"), once, by whichever connection comes first:
//   plx.nocase      the collation of every text column the engine makes: ICU's root order
//                   at the second level, so case is ignored and accented letters sort right
//                   after their base letters ("Emile" < "Émile" < "Emilia"), as on SQLite
//   plx.idkeys      the last record-ID key handed out per table, advanced under a row lock
//   plx.changed()   the trigger function that tells listeners of "plx_changes" which table
//                   changed
//   plx.strict_text the $ forms of the text functions, which refuse Null
#pragma once

#include "services/recordsource/postgres/pgconnection_p.h"

namespace plx::postgres {

// Installs the schema unless it is there; concurrent first connections wait on one
// another rather than collide.
Status installSchema(const Connection &connection);
// The statements that make `table` report its changes (after it was created).
QString changeTriggerFor(const QString &table);

} // namespace plx::postgres
