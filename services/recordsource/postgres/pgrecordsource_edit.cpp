// services/recordsource/postgres/pgrecordsource_edit.cpp: record locks and writes.
//
// A record's lock is an advisory lock. Update writes only the fields that were set, in one
// statement (its own transaction), and returns once the server has committed it.
#include "services/recordsource/postgres/pgrecordsource_p.h"

#include "services/recordsource/postgres/pgvalues_p.h"

#include <QDateTime>

namespace plx::postgres {

namespace {

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

Status PgRecordSource::lockCurrent()
{
    return m_lock.acquire(baseTable(), m_keys[size_t(m_pos)]);
}

void PgRecordSource::releaseLock()
{
    m_lock.release();
}

Result<QVariantList> PgRecordSource::freshCurrentRow()
{
    forgetRows();
    return currentRow();
}

bool PgRecordSource::isComputed(int index) const
{
    return m_select.baseColumns.at(index).isEmpty();
}

Result<QVariant> PgRecordSource::normalizedValue(const QVariant &value, int index) const
{
    return normalized(value, m_select.fields.at(index));
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
