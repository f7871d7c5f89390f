// services/recordsource/postgres/pgkeys_p.h: the last record IDs, kept in plx.idkeys.
//
// One row per table (its name in lower case) holds the last key handed out. A lease is a
// transaction on a connection of its own that holds the row locked (SELECT ... FOR UPDATE):
// another connection's lease waits, the record sources' statements on the database's own
// connection never do, and a holder whose connection dies lets go with it.
#pragma once

#include "services/recordsource/sharedkeys.h"

namespace plx::postgres {

class Connection;

// Takes the lease on `table`'s key row through `keys`, a connection used for nothing else
// while the lease lives; Locked when another lease still holds the row after `waitMs`.
Result<std::unique_ptr<KeyLease>> leaseKey(std::shared_ptr<Connection> keys, const QString &table,
                                           int waitMs);

} // namespace plx::postgres
