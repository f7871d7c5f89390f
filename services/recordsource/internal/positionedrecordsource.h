// services/recordsource/internal/positionedrecordsource.h: the position rules every keyset-driven
// record source shares.
//
// A back end keeps its records as an ordered list of keys (rowids, record numbers, held
// rows) and tells this class how many there are; the DAO rules for BOF/EOF, AbsolutePosition,
// RecordCount (records reached so far), the moves, the position after a Delete and
// FindFirst/FindNext live here once, so that every engine behaves the same way.
#pragma once

#include "services/recordsource/recordsource.h"

namespace plx {

class PositionedRecordSource : public RecordSource
{
public:
    bool isBOF() const override;
    bool isEOF() const override;
    qint32 AbsolutePosition() const override;
    Status setAbsolutePosition(qint32 position) override;
    qint32 RecordCount() const override;

    Status MoveFirst() override;
    Status MoveLast() override;
    Status MovePrevious() override;
    Status MoveNext() override;

    Status FindFirst(const QString &criterion) override;
    Status FindNext(const QString &criterion) override;
    bool NoMatch() const override { return m_noMatch; }

protected:
    // The number of records in the source's order.
    virtual qint64 size() const = 0;
    // Drops a pending edit and its lock (every move does, as moving off a record in DAO).
    virtual void endEdit() = 0;
    // The position of the first record at or after `start` that satisfies the criterion,
    // -1 when none does; an error for a bad criterion.
    virtual Result<qint64> locate(const QString &criterion, qint64 start) const = 0;

    bool hasCurrent() const;
    Status checkOpen() const;
    // checkOpen, then NotSupported with readOnlyReason() when the source cannot be written.
    Status checkOpenAndWritable() const;
    static Status closedError();
    // Makes `position` current (clamped to -1 .. size()), counting it as reached.
    Status moveTo(qint64 position);

    qint64 m_pos = -1; // -1 before the first record, size() after the last
    bool m_onDeleted = false; // the record at m_pos was deleted; m_pos names its successor
    qint64 m_reached = 0; // RecordCount: the furthest record visited, plus one
    bool m_noMatch = false;
    bool m_closed = false;
};

} // namespace plx
