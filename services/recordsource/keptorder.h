// services/recordsource/keptorder.h: a record source that puts a record it wrote back into
// its place in the order.
//
// A keyset-driven source keeps the order it read at open: a record changed or added since
// stays where it was (an added one at the end) until the records are read again, and on a
// million records reading them again costs far more than the write. A source that can
// compare two of its records by its own ORDER BY offers this instead; callers ask for it
// with dynamic_cast and read the records again when it is not offered or refuses.
#pragma once

namespace plx {

class KeptOrder
{
public:
    KeptOrder() = default;
    KeptOrder(const KeptOrder &) = delete;
    KeptOrder &operator=(const KeptOrder &) = delete;
    virtual ~KeptOrder() = default;

    // Moves the current record to where the source's order puts it among the others (among
    // records that compare equal, anywhere in their run) and keeps it current. False, with
    // nothing moved, when the place cannot be known: the record no longer satisfies the
    // source's WHERE, it was deleted, or the source holds no order it can compare by. Only
    // the current record moves: every other record is assumed to be in its place.
    virtual bool placeCurrentInOrder() = 0;
};

} // namespace plx
