// navigator/idkeystore_p.h: where the last ID handed out for a table is kept.
//
// Table files keep it in a one-line key file beside the table, locked in a lock file of its
// own while a navigator advances it; a database that keeps the keys itself (SharedKeys: a
// server, where the users share no folder) keeps it in its own table under a row lock. The
// allocator reads, rebuilds and advances the key the same way through either.
#pragma once

#include "services/recordsource/result.h"

#include <QString>

#include <memory>

namespace plx {

class Database;

class IdKeyStore
{
public:
    virtual ~IdKeyStore() = default;

    // The store of `tableFile`'s key (a table file, or a database's folder joined with the
    // table name) or, when `db` keeps keys itself, of `table` in it; nullptr when neither
    // can keep one.
    static std::unique_ptr<IdKeyStore> forTable(Database *db, const QString &table,
                                                const QString &tableFile);

    // Takes the store for this navigator alone, waiting up to `waitMs` for another: "" or why not.
    virtual QString acquire(int waitMs) = 0;
    // Whether a key is kept at all (a missing one is rebuilt from the table).
    virtual bool exists() const = 0;
    // The key line kept (21 digits when it is one of ours).
    virtual QString read() const = 0;
    // Keeps `line`: "" or why it could not (a full disk, a write-protected folder).
    virtual QString write(const QString &line) = 0;
    // Makes what was written lasting and lets others in: "" or why not.
    virtual QString finish() = 0;
    // Where the key is kept, as the user is told it.
    virtual QString location() const = 0;
    // What the user's message calls it ("record ID key file").
    virtual QString noun() const = 0;
};

} // namespace plx
