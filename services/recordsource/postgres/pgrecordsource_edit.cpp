// services/recordsource/postgres/pgrecordsource_edit.cpp: the edit buffer, record locks and
// writes.
//
// Edit takes the record's advisory lock first, then re-reads the record so that the buffer
// starts from the latest committed values. Update writes only the fields that were set, in
// one statement (its own transaction), and returns once the server has committed it.
#include "services/recordsource/postgres/pgrecordsource_p.h"

#include "services/recordsource/postgres/pgvalues_p.h"

#include <QDateTime>

namespace plx::postgres {

namespace {

Status notEditing()
{
    return Status(Status::Code::InvalidArgument,
                  QStringLiteral("Update or CancelUpdate without AddNew or Edit"));
}

// The value as the field will hold it: a text within its size, a number, a date; the
// same checks the other engines make before anything is written.
Result<QVariant> normalized(const QVariant &value, const FieldInfo &field)
{
    if (!value.isValid() || value.isNull())
        return QVariant();
    if (field.type == FieldType::Text && field.size > 0 && value.toString().size() > field.size)
        return Status(Status::Code::InvalidArgument,
                      QStringLiteral("the text is longer than field %1 (%2 characters)")
                          .arg(field.name)
                          .arg(field.size));
    Result<PgParam> param = paramFor(value, field);
    if (!param.isOk())
        return param.status();
    switch (field.type) {
    case FieldType::Integer: return QVariant(qlonglong(value.toDouble()));
    case FieldType::Numeric:
    case FieldType::Double: return QVariant(value.toDouble());
    case FieldType::Boolean: return QVariant(*param.value() == "t");
    case FieldType::Date: return QVariant(value.toDateTime().date());
    case FieldType::DateTime: return QVariant(value.toDateTime());
    case FieldType::Binary: return QVariant(value.toByteArray());
    case FieldType::Text:
    case FieldType::Memo: break;
    }
    return QVariant(value.toString());
}

} // namespace

void PgRecordSource::endEdit()
{
    m_mode = EditMode::None;
    m_buffer.clear();
    m_dirty.clear();
    m_lock.release();
}

Status PgRecordSource::AddNew()
{
    Status s = checkOpenAndWritable();
    if (!s.isOk())
        return s;
    endEdit();
    m_buffer = QVariantList(m_select.fields.size());
    m_dirty = QList<bool>(m_select.fields.size(), false);
    m_mode = EditMode::AddNew;
    return Status::ok();
}

Status PgRecordSource::Edit()
{
    Status s = checkOpenAndWritable();
    if (!s.isOk())
        return s;
    if (!hasCurrent())
        return Status(Status::Code::NotFound, QStringLiteral("no current record"));
    endEdit();
    s = m_lock.acquire(baseTable(), m_keys[size_t(m_pos)]);
    if (!s.isOk())
        return s;
    forgetRows(); // another user may have saved this record since it was read
    Result<QVariantList> row = currentRow();
    if (!row.isOk()) {
        m_lock.release();
        return row.status();
    }
    m_buffer = row.value();
    m_dirty = QList<bool>(m_select.fields.size(), false);
    m_mode = EditMode::Edit;
    return Status::ok();
}

Status PgRecordSource::setValue(int index, const QVariant &newValue)
{
    Status s = checkOpen();
    if (!s.isOk())
        return s;
    if (m_mode == EditMode::None)
        return Status(Status::Code::InvalidArgument,
                      QStringLiteral("a field can only be set between AddNew or Edit and Update"));
    if (index < 0 || index >= m_select.fields.size())
        return Status(Status::Code::InvalidArgument, QStringLiteral("no field %1").arg(index));
    if (m_select.baseColumns.at(index).isEmpty())
        return Status(Status::Code::NotSupported,
                      QStringLiteral("field %1 is computed and cannot be set")
                          .arg(m_select.fields.at(index).name));
    Result<QVariant> value = normalized(newValue, m_select.fields.at(index));
    if (!value.isOk())
        return value.status();
    m_buffer[index] = value.value();
    m_dirty[index] = true;
    return Status::ok();
}

Status PgRecordSource::insertBuffer()
{
    QStringList columns;
    QStringList marks;
    QList<PgParam> params;
    for (int i = 0; i < m_select.fields.size(); ++i) {
        if (!m_dirty.at(i))
            continue;
        columns << quoteName(m_select.baseColumns.at(i));
        params << paramFor(m_buffer.at(i), m_select.fields.at(i)).value();
        marks << QStringLiteral("$%1").arg(params.size());
    }
    const QString sql = columns.isEmpty()
        ? QStringLiteral("INSERT INTO %1 DEFAULT VALUES RETURNING %2")
              .arg(quoteName(baseTable()), KeyColumn)
        : QStringLiteral("INSERT INTO %1 (%2) VALUES (%3) RETURNING %4")
              .arg(quoteName(baseTable()), columns.join(QLatin1Char(',')),
                   marks.join(QLatin1Char(',')), KeyColumn);
    Result<PgResult> r = m_conn->exec(sql, params);
    if (!r.isOk())
        return r.status();
    m_keys.push_back(r->text(0, 0).toLongLong());
    // A source counted to its end stays counted; the new record joins its end.
    if (m_reached == size() - 1)
        m_reached = size();
    return Status::ok();
}

Status PgRecordSource::updateBuffer()
{
    QStringList sets;
    QList<PgParam> params;
    for (int i = 0; i < m_select.fields.size(); ++i) {
        if (!m_dirty.at(i))
            continue;
        params << paramFor(m_buffer.at(i), m_select.fields.at(i)).value();
        sets << QStringLiteral("%1 = $%2")
                    .arg(quoteName(m_select.baseColumns.at(i)))
                    .arg(params.size());
    }
    if (sets.isEmpty())
        return Status::ok();
    params << QByteArray::number(m_keys[size_t(m_pos)]);
    Result<PgResult> r =
        m_conn->exec(QStringLiteral("UPDATE %1 SET %2 WHERE %3 = $%4")
                         .arg(quoteName(baseTable()), sets.join(QLatin1Char(',')), KeyColumn)
                         .arg(params.size()),
                     params);
    if (!r.isOk())
        return r.status();
    if (r->affected() == 0)
        return Status(Status::Code::NotFound,
                      QStringLiteral("the record was deleted by another user"));
    return Status::ok();
}

Status PgRecordSource::Update()
{
    Status s = checkOpen();
    if (!s.isOk())
        return s;
    if (m_mode == EditMode::None)
        return notEditing();
    s = m_mode == EditMode::AddNew ? insertBuffer() : updateBuffer();
    // A refused value or a lost connection keeps the edit, buffer and lock (the user can
    // change the value or retry); a record deleted meanwhile ends it.
    if (s.isOk() || s.code() == Status::Code::NotFound)
        endEdit();
    forgetRows();
    return s;
}

Status PgRecordSource::CancelUpdate()
{
    Status s = checkOpen();
    if (!s.isOk())
        return s;
    if (m_mode == EditMode::None)
        return notEditing();
    endEdit();
    return Status::ok();
}

Status PgRecordSource::Delete()
{
    Status s = checkOpenAndWritable();
    if (!s.isOk())
        return s;
    if (!hasCurrent() || m_mode == EditMode::AddNew)
        return Status(Status::Code::NotFound, QStringLiteral("no current record to delete"));
    const qint64 key = m_keys[size_t(m_pos)];
    // Deleting a record someone is editing would pull it from under their Update.
    if (!m_lock.isHeld()) {
        s = m_lock.acquire(baseTable(), key);
        if (!s.isOk())
            return s;
    }
    Result<PgResult> r = m_conn->exec(
        QStringLiteral("DELETE FROM %1 WHERE %2 = $1").arg(quoteName(baseTable()), KeyColumn),
        { QByteArray::number(key) });
    endEdit();
    if (!r.isOk())
        return r.status();
    m_keys.erase(m_keys.begin() + m_pos);
    if (m_reached > m_pos)
        --m_reached;
    m_onDeleted = true;
    forgetRows();
    return Status::ok();
}

} // namespace plx::postgres
