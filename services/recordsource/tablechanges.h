// services/recordsource/tablechanges.h: a record source that can tell when others changed
// its table.
//
// Several users keep one table: a navigator wants to know when another user added,
// changed or deleted records, so that it can read its records again (the count, a changed
// current record) without the user asking. Asking is cheap (no round trip, no read of the
// table) so that a navigator can ask every second or two. Callers reach it with
// dynamic_cast; a source that cannot tell does not offer it.
#pragma once

namespace plx {

class TableChanges
{
public:
    TableChanges() = default;
    TableChanges(const TableChanges &) = delete;
    TableChanges &operator=(const TableChanges &) = delete;
    virtual ~TableChanges() = default;

    // True once after another connection (another user, another process, another database
    // object of this one) has written to the source's table since the source read its
    // records or since the last time this said true. Writes through this source never
    // count. How finely an engine can tell is its own: see the engine's documentation.
    virtual bool changedElsewhere() = 0;
};

} // namespace plx
