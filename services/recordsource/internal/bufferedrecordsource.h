// services/recordsource/internal/bufferedrecordsource.h: the edit cycle of a record source
// that writes through SQL.
//
// AddNew and Edit start a buffer of the record's field values, setValue fills it (checked
// against the field, so a bad value is refused before anything is written), Update writes
// the fields that were set and CancelUpdate forgets them. Edit takes the record's lock
// first and starts from the record as it is stored now, not as it was read. The engines
// say how to lock, read, check and write; the rules of the cycle live here once.
#pragma once

#include "services/recordsource/internal/positionedrecordsource.h"

namespace plx {

class BufferedRecordSource : public PositionedRecordSource
{
public:
    Status setValue(int index, const QVariant &value) override;
    EditMode editMode() const override { return m_mode; }
    Status AddNew() override;
    Status Edit() override;
    // A write that failed for a full disk, a lost connection or a refused value keeps the
    // edit, its buffer and its lock: the user can make room, change the value or retry, or
    // cancel. Only a record deleted meanwhile (NotFound) ends it, as its lock protects
    // nothing any more.
    Status Update() override;
    Status CancelUpdate() override;

protected:
    // Drops the buffer and the record's lock.
    void endEdit() override;

    // Takes the current record's lock: Locked when another user holds it.
    virtual Status lockCurrent() = 0;
    virtual void releaseLock() = 0;
    // The current record's values as stored now (another user may have saved it since).
    virtual Result<QVariantList> freshCurrentRow() = 0;
    // Whether field `index` is computed by the query and cannot be written.
    virtual bool isComputed(int index) const = 0;
    // `value` as field `index` will hold it, or why it cannot.
    virtual Result<QVariant> normalizedValue(const QVariant &value, int index) const = 0;
    // Writes the buffer's set fields as a new record, or into the current record.
    virtual Status insertBuffer() = 0;
    virtual Status updateBuffer() = 0;
    // Forgets any values read, after a write.
    virtual void forgetReadValues() = 0;

    EditMode m_mode = EditMode::None;
    QVariantList m_buffer;
    QList<bool> m_dirty; // the fields setValue set since AddNew or Edit
};

} // namespace plx
