// services/recordsource/sharedkeys.h: a database that keeps the last record IDs handed out.
//
// The record commands give every new record an ID made from the last one handed out for
// its table. With table files that last key lives in a small file beside the table, locked
// while it is advanced. A database server has no folder the users share, so a database that
// can keep the keys itself offers this instead; callers ask for it with dynamic_cast and
// keep a key file when it is not offered.
//
// A key is advanced in a lease: taking it waits for (and then holds off) every other
// connection advancing the same table's key, in every process, until the lease commits or
// is given up, so no two leases ever see the same last key. A holder that dies gives the
// lease up with it.
#pragma once

#include "services/recordsource/result.h"

#include <QString>

#include <memory>

namespace plx {

class KeyLease
{
public:
    KeyLease() = default;
    KeyLease(const KeyLease &) = delete;
    KeyLease &operator=(const KeyLease &) = delete;
    // Gives the lease up; what was stored and not committed is forgotten.
    virtual ~KeyLease() = default;

    // The table's last key as stored, or a null QString when none has been stored yet.
    virtual QString lastKey() const = 0;
    // Stores `key` as the table's last key, seen by others once committed. The lease stays
    // held: a caller may store again (a key rebuilt, then advanced).
    virtual Status store(const QString &key) = 0;
    // Makes the last key stored durable and ends the lease.
    virtual Status commit() = 0;
    // Where the keys live, as a user or support would look for them.
    virtual QString location() const = 0;
};

class SharedKeys
{
public:
    SharedKeys() = default;
    SharedKeys(const SharedKeys &) = delete;
    SharedKeys &operator=(const SharedKeys &) = delete;
    virtual ~SharedKeys() = default;

    // Takes the lease on `table`'s key, waiting up to `waitMs` for another holder: Locked
    // when it is still held then, another error when the keys cannot be reached.
    virtual Result<std::unique_ptr<KeyLease>> leaseKey(const QString &table, int waitMs) = 0;
};

} // namespace plx
