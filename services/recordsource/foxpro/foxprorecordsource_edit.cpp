// services/recordsource/foxpro/foxprorecordsource_edit.cpp: AddNew, Edit, Update,
// CancelUpdate and Delete through the table file layer, which writes as FoxPro does and
// takes FoxPro's record locks.
#include "services/recordsource/foxpro/internal/foxprorecordsource.h"

#include "services/recordsource/jet/internal/values.h"

namespace plx::foxpro {

namespace {

Status mismatch(const FieldInfo &f, const QVariant &value)
{
    return Status(
        Status::Code::TypeMismatch,
        QStringLiteral("'%1' is no value for the field %2").arg(jet::toText(value), f.name));
}

// The value as the field keeps it, checked when it is set so that Update cannot fail on it:
// text within the field's width, numbers, dates and logicals from their own types or from
// text that reads as one.
Result<QVariant> fieldValue(const FieldInfo &f, const QVariant &value)
{
    if (jet::isNull(value))
        return QVariant();
    switch (f.type) {
    case FieldType::Text:
        if (value.toString().size() > f.size)
            return Status(Status::Code::InvalidArgument,
                          QStringLiteral("the value for %1 is longer than its %2 characters")
                              .arg(f.name)
                              .arg(f.size));
        return QVariant(jet::toText(value));
    case FieldType::Memo: return QVariant(jet::toText(value));
    case FieldType::Integer:
    case FieldType::Numeric:
    case FieldType::Double: {
        Result<double> d = jet::toNumber(value, 0);
        if (!d.isOk())
            return mismatch(f, value);
        return QVariant(d.value());
    }
    case FieldType::Boolean: {
        if (jet::isText(value)) {
            const QString t = value.toString().trimmed().toUpper();
            if (t == QLatin1String("TRUE") || t == QLatin1String("T") || t == QLatin1String("Y"))
                return QVariant(true);
            if (t == QLatin1String("FALSE") || t == QLatin1String("F") || t == QLatin1String("N"))
                return QVariant(false);
        }
        Result<double> d = jet::toNumber(value, 0);
        if (!d.isOk())
            return mismatch(f, value);
        return QVariant(d.value() != 0);
    }
    case FieldType::Date:
    case FieldType::DateTime: {
        const QDateTime dt = jet::toDateTime(value);
        if (!dt.isValid() || jet::isBoolean(value))
            return mismatch(f, value);
        return f.type == FieldType::Date ? QVariant(dt.date()) : QVariant(dt);
    }
    case FieldType::Binary: return value;
    }
    return value;
}

} // namespace

Status FoxProRecordSource::checkWritable() const
{
    if (m_readOnlyReason.isEmpty())
        return Status::ok();
    // The table layer's full sentence goes along for the log.
    return Status(Status::Code::NotSupported, m_readOnlyReason, 0, m_table->writable().message());
}

void FoxProRecordSource::endEdit()
{
    if (m_mode == EditMode::Edit && m_table && m_editRecno != 0)
        (void)m_table->unlockRecord(m_editRecno);
    m_mode = EditMode::None;
    m_buffer.clear();
    m_editRecno = 0;
}

Status FoxProRecordSource::AddNew()
{
    if (Status s = checkOpen(); !s.isOk())
        return s;
    if (Status w = checkWritable(); !w.isOk())
        return w;
    endEdit();
    m_buffer = QVariantList(m_table->fieldInfos().size());
    m_mode = EditMode::AddNew;
    return Status::ok();
}

Status FoxProRecordSource::Edit()
{
    if (Status s = checkOpen(); !s.isOk())
        return s;
    if (Status w = checkWritable(); !w.isOk())
        return w;
    if (!hasCurrent())
        return Status(Status::Code::NotFound, QStringLiteral("no current record to edit"));
    endEdit();
    const quint32 recno = m_keys[size_t(m_pos)];
    if (Status s = m_table->lockRecord(recno); !s.isOk())
        return s; // Locked: another user (or another record source) is editing it
    if (m_table->isDeleted(recno)) {
        (void)m_table->unlockRecord(recno);
        return Status(Status::Code::NotFound,
                      QStringLiteral("record %1 was deleted by another user").arg(recno));
    }
    Result<QVariantList> values = m_table->record(recno);
    if (!values.isOk()) {
        (void)m_table->unlockRecord(recno);
        return values.status();
    }
    m_buffer = values.value();
    m_editRecno = recno;
    m_mode = EditMode::Edit;
    return Status::ok();
}

Status FoxProRecordSource::setValue(int index, const QVariant &value)
{
    if (Status s = checkOpen(); !s.isOk())
        return s;
    if (m_mode == EditMode::None)
        return Status(Status::Code::InvalidArgument,
                      QStringLiteral("a value can only be set between AddNew or Edit and Update"));
    if (index < 0 || index >= m_buffer.size())
        return Status(Status::Code::InvalidArgument, QStringLiteral("no field %1").arg(index));
    const FieldInfo &field = m_table->fieldInfos().at(index);
    Result<QVariant> converted = fieldValue(field, value);
    if (!converted.isOk())
        return converted.status();
    // Text the table's code page cannot hold is refused now, naming the field, rather
    // than at Update, where the whole record would fail.
    if ((field.type == FieldType::Text || field.type == FieldType::Memo)
        && !jet::isNull(converted.value()) && !m_table->encode(converted.value().toString()).isOk())
        return Status(Status::Code::InvalidArgument,
                      QStringLiteral("the text for field %1 has characters that code page %2 "
                                     "cannot hold")
                          .arg(field.name)
                          .arg(m_table->codePage()));
    m_buffer[index] = converted.value();
    return Status::ok();
}

Status FoxProRecordSource::Update()
{
    if (Status s = checkOpen(); !s.isOk())
        return s;
    if (m_mode == EditMode::AddNew) {
        Result<quint32> added = m_table->appendRecord(m_buffer);
        if (!added.isOk())
            return added.status();
        // The new record joins the end of this source; the former record stays current.
        m_keys.push_back(added.value());
        noteOwnWrite();
        endEdit();
        return Status::ok();
    }
    if (m_mode == EditMode::Edit) {
        Status s = m_table->writeRecord(m_editRecno, m_buffer);
        if (!s.isOk())
            return s; // the edit stays open, so the user can correct the value
        noteOwnWrite();
        endEdit();
        return Status::ok();
    }
    return Status(Status::Code::InvalidArgument, QStringLiteral("Update without AddNew or Edit"));
}

Status FoxProRecordSource::CancelUpdate()
{
    if (Status s = checkOpen(); !s.isOk())
        return s;
    if (m_mode == EditMode::None)
        return Status(Status::Code::InvalidArgument,
                      QStringLiteral("CancelUpdate without an edit"));
    endEdit();
    return Status::ok();
}

Status FoxProRecordSource::Delete()
{
    if (Status s = checkOpen(); !s.isOk())
        return s;
    if (Status w = checkWritable(); !w.isOk())
        return w;
    if (!hasCurrent())
        return Status(Status::Code::NotFound, QStringLiteral("no current record to delete"));
    endEdit();
    const quint32 recno = m_keys[size_t(m_pos)];
    // setDeleted takes the record lock itself: a record someone is editing is not deleted.
    if (Status s = m_table->setDeleted(recno, true); !s.isOk())
        return s;
    m_keys.erase(m_keys.begin() + m_pos);
    m_onDeleted = true;
    noteOwnWrite();
    return Status::ok();
}

} // namespace plx::foxpro
