// dialogs/recordcursor.h: a position of its own over a record source that others share.
//
// The browse grid shows the navigator's own records, and the navigator's field controls
// stand on that source's current record. Opening the query a second time would cost a
// sort of the whole table, so the grid reads the same source instead, and this cursor keeps
// that invisible: every operation moves the source where the cursor stands, does its
// work, and puts the source back on the record it was on. The grid's row and the cursor
// move together; the source's own position never changes.
//
// GUI thread only, like the record source. A source being edited (an edit buffer open) is
// never moved: the cursor then reads nothing and finds nothing.
#pragma once

#include "services/recordsource/recordsource.h"

#include <functional>
#include <memory>
#include <optional>

namespace plx {

class RecordCursor
{
public:
    // Counts the records once (a MoveLast, undone), so count() is exact from the start.
    explicit RecordCursor(std::shared_ptr<RecordSource> source);

    qint32 count() const { return m_count; }
    const QList<FieldInfo> &fields() const { return m_source->fieldInfos(); }
    const RecordSource &source() const { return *m_source; }

    // The cursor's record: 0 .. count()-1, or -1 for none.
    qint32 position() const { return m_position; }
    // Out of range: -1.
    void setPosition(qint32 position);

    // Calls `row(position, values)` for records first .. first+rows-1 (cut at count()),
    // values in field order, Null as an invalid QVariant. False when the source could not
    // be read there (what was read before stays delivered).
    using RowReader = std::function<void(qint32 position, const QVariantList &values)>;
    bool readRows(qint32 first, qint32 rows, const RowReader &row);
    // The value of `field` in the cursor's record; Null with none.
    QVariant value(const QString &field);

    // Jet criterion search in the source's order: FindFirst from the top, or FindNext
    // after the cursor's record. Found: the cursor moves there and the record's position
    // comes back. Not found, or a criterion the engine refuses (`error` says why): the
    // cursor stays where it was.
    std::optional<qint32> find(const QString &criterion, bool next, Status *error = nullptr);
    // The position of the first record for which `criterion` holds; the cursor stays.
    std::optional<qint32> locate(const QString &criterion);

private:
    bool movable() const;

    std::shared_ptr<RecordSource> m_source;
    qint32 m_count = 0;
    qint32 m_position = -1;
};

} // namespace plx
