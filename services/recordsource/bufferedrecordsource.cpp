// services/recordsource/bufferedrecordsource.cpp
#include "services/recordsource/internal/bufferedrecordsource.h"

namespace plx {

namespace {

Status notEditing()
{
    return Status(Status::Code::InvalidArgument,
                  QStringLiteral("Update or CancelUpdate without AddNew or Edit"));
}

} // namespace

void BufferedRecordSource::endEdit()
{
    m_mode = EditMode::None;
    m_buffer.clear();
    m_dirty.clear();
    releaseLock();
}

Status BufferedRecordSource::AddNew()
{
    Status s = checkOpenAndWritable();
    if (!s.isOk())
        return s;
    endEdit();
    m_buffer = QVariantList(fieldInfos().size());
    m_dirty = QList<bool>(fieldInfos().size(), false);
    m_mode = EditMode::AddNew;
    return Status::ok();
}

Status BufferedRecordSource::Edit()
{
    Status s = checkOpenAndWritable();
    if (!s.isOk())
        return s;
    if (!hasCurrent())
        return Status(Status::Code::NotFound, QStringLiteral("no current record"));
    endEdit();
    s = lockCurrent();
    if (!s.isOk())
        return s;
    Result<QVariantList> row = freshCurrentRow();
    if (!row.isOk()) {
        releaseLock();
        return row.status();
    }
    m_buffer = row.value();
    m_dirty = QList<bool>(fieldInfos().size(), false);
    m_mode = EditMode::Edit;
    return Status::ok();
}

Status BufferedRecordSource::setValue(int index, const QVariant &value)
{
    Status s = checkOpen();
    if (!s.isOk())
        return s;
    if (m_mode == EditMode::None)
        return Status(Status::Code::InvalidArgument,
                      QStringLiteral("a field can only be set between AddNew or Edit and Update"));
    if (index < 0 || index >= fieldInfos().size())
        return Status(Status::Code::InvalidArgument, QStringLiteral("no field %1").arg(index));
    if (isComputed(index))
        return Status(Status::Code::NotSupported,
                      QStringLiteral("field %1 is computed and cannot be set")
                          .arg(fieldInfos().at(index).name));
    Result<QVariant> normal = normalizedValue(value, index);
    if (!normal.isOk())
        return normal.status();
    m_buffer[index] = normal.value();
    m_dirty[index] = true;
    return Status::ok();
}

Status BufferedRecordSource::Update()
{
    Status s = checkOpen();
    if (!s.isOk())
        return s;
    if (m_mode == EditMode::None)
        return notEditing();
    s = m_mode == EditMode::AddNew ? insertBuffer() : updateBuffer();
    if (s.isOk() || s.code() == Status::Code::NotFound)
        endEdit();
    forgetReadValues();
    return s;
}

Status BufferedRecordSource::CancelUpdate()
{
    Status s = checkOpen();
    if (!s.isOk())
        return s;
    if (m_mode == EditMode::None)
        return notEditing();
    endEdit();
    return Status::ok();
}

} // namespace plx
