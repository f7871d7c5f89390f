// services/recordsource/recordsource.h: the DAO-style record source every control works on.
//
// A record source is an ordered set of records from one table or query, with one current
// record or none. The controls move through it, read and write its fields by name, and
// take a record lock with Edit. Every back end (SQLite, FoxPro table files, PostgreSQL)
// implements this interface; the contract suite in services/recordsource/tests checks
// them all against the same expectations.
//
// Names follow DAO where they are safe. BOF/EOF are isBOF()/isEOF() because EOF is a C
// macro. Fields(name).Value is Fields().Item(name).Value() or value(name).
//
// Not thread-safe: one record source is used from one thread (the GUI thread).
#pragma once

#include "services/recordsource/result.h"

#include <QList>
#include <QString>
#include <QVariant>

namespace plx {

enum class FieldType {
    Text, // fixed-width character data; Size is the defined width
    Memo, // long text
    Integer, // whole number
    Numeric, // fixed-point decimal (FoxPro N/F); Size is the width, decimals the scale
    Double, // binary floating point
    Boolean, // logical
    Date, // date without time
    DateTime, // date and time
    Binary, // bytes
};

struct FieldInfo
{
    QString name;
    FieldType type = FieldType::Text;
    int size = 0; // defined maximum length of a text value, byte width otherwise
    int decimals = 0; // digits behind the decimal point (Numeric)
};

enum class EditMode { None, Edit, AddNew };

class RecordSource;

// A handle on one field of the current record, as DAO's Field object.
// Valid while its record source lives.
class Field
{
public:
    // Field `index` of `source`. FieldList::Item makes these and checks the index first.
    Field(RecordSource *source, int index) : m_source(source), m_index(index) { }
    // False for a field asked for by a name the source does not have.
    bool isValid() const { return m_source != nullptr && m_index >= 0; }
    // The field's name as the table defines it; empty when invalid.
    QString Name() const;
    // The value of the current record (or of the edit buffer); Null when there is no
    // current record or no such field.
    QVariant Value() const;
    // RecordSource::setValue for this field; UnknownField when invalid.
    Status setValue(const QVariant &value) const;
    // FieldInfo::size; 0 when invalid.
    int Size() const;
    // FieldInfo::type; Text when invalid.
    FieldType Type() const;

private:
    RecordSource *m_source;
    int m_index;
};

// DAO's Fields collection: by name (case-insensitive) and by position, in table order.
class FieldList
{
public:
    explicit FieldList(RecordSource *source) : m_source(source) { }
    // The number of fields.
    int Count() const;
    // The field at `index` (0-based, table order), or by name without regard to case; an
    // invalid Field when there is no such field.
    Field Item(int index) const;
    Field Item(const QString &name) const;
    Field operator()(const QString &name) const { return Item(name); }
    Field operator[](int index) const { return Item(index); }

private:
    RecordSource *m_source;
};

// Not copyable: a record source holds a position, an edit buffer and record locks that
// belong to exactly one object. Hand it around as std::shared_ptr or std::unique_ptr.
class RecordSource
{
public:
    RecordSource() = default;
    RecordSource(const RecordSource &) = delete;
    RecordSource &operator=(const RecordSource &) = delete;
    virtual ~RecordSource();

    // Position. Both flags are true on an empty record source. Either means there is no
    // current record.
    virtual bool isBOF() const = 0;
    virtual bool isEOF() const = 0;
    // 0-based index of the current record in this source's order; -1 with no current record.
    virtual qint32 AbsolutePosition() const = 0;
    // Makes record `position` (0 .. RecordCount()-1) current; InvalidArgument otherwise.
    virtual Status setAbsolutePosition(qint32 position) = 0;
    // The number of records reached so far: exact once the last record has been visited
    // (MoveLast), as with DAO dynasets. 0 on an empty source.
    virtual qint32 RecordCount() const = 0;

    // Moving past either end sets BOF/EOF and leaves no current record. Moving when
    // already at BOF (MovePrevious) or EOF (MoveNext) is InvalidArgument, as in DAO.
    virtual Status MoveFirst() = 0;
    virtual Status MoveLast() = 0;
    virtual Status MovePrevious() = 0;
    virtual Status MoveNext() = 0;

    // Makes the first (FindFirst) or next after the current (FindNext) record in this
    // source's order for which the Jet criterion is true current. With no match NoMatch()
    // is true and the caller restores the position it remembered. A malformed criterion
    // or an unknown field is an error Status and moves nothing.
    virtual Status FindFirst(const QString &criterion) = 0;
    virtual Status FindNext(const QString &criterion) = 0;
    virtual bool NoMatch() const = 0;

    // Fields in the table's order.
    virtual const QList<FieldInfo> &fieldInfos() const = 0;
    // Index of a field by name, case-insensitive; -1 when there is none.
    int fieldIndex(const QString &name) const;
    // Value of a field of the current record, or of the edit buffer while editing.
    // Null is an invalid QVariant. NotFound with no current record.
    virtual Result<QVariant> value(int index) const = 0;
    // The same by field name (case-insensitive); UnknownField for a name the source lacks.
    Result<QVariant> value(const QString &name) const;
    // Only valid between AddNew/Edit and Update; InvalidArgument otherwise, TypeMismatch
    // or InvalidArgument for a value the field cannot hold.
    virtual Status setValue(int index, const QVariant &value) = 0;
    // The same by field name (case-insensitive); UnknownField for a name the source lacks.
    Status setValue(const QString &name, const QVariant &value);
    // DAO's Fields collection of this source; valid while the source lives.
    FieldList Fields() { return FieldList(this); }

    // Editing. AddNew starts an empty edit buffer; Update appends the record at the end
    // of this source (its key joins the end of the order) and the record that was
    // current before AddNew stays current. Edit takes the current record's lock: Locked
    // when anyone else (another process or another record source) holds it. Update
    // writes the buffer durably and releases the lock; CancelUpdate drops the buffer and
    // the lock. Delete removes the current record; afterwards there is no current record
    // until the caller moves.
    // None outside an edit; Edit between Edit and Update/CancelUpdate; AddNew likewise.
    virtual EditMode editMode() const = 0;
    // Why this source refuses every write (a write-protected file or folder, an index the
    // engine cannot keep up to date), in words fit for a status bar; empty when it can be
    // written. Edit, AddNew and Delete fail on such a source with this reason.
    virtual QString readOnlyReason() const { return {}; }
    virtual Status AddNew() = 0;
    virtual Status Edit() = 0;
    virtual Status Update() = 0;
    virtual Status CancelUpdate() = 0;
    virtual Status Delete() = 0;

    // Releases the source's resources and locks; every later call fails.
    virtual void Close() = 0;
};

} // namespace plx
