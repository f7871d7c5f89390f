// services/recordsource/recordsource.cpp: the parts of the record-source surface that are
// the same for every back end (field look-up by name, the DAO Field handles).
#include "services/recordsource/recordsource.h"

namespace plx {

RecordSource::~RecordSource() = default;

int RecordSource::fieldIndex(const QString &name) const
{
    const QString wanted = name.trimmed();
    const QList<FieldInfo> &fields = fieldInfos();
    for (int i = 0; i < fields.size(); ++i) {
        if (fields.at(i).name.compare(wanted, Qt::CaseInsensitive) == 0)
            return i;
    }
    return -1;
}

Result<QVariant> RecordSource::value(const QString &name) const
{
    const int index = fieldIndex(name);
    if (index < 0)
        return Status(Status::Code::UnknownField, QStringLiteral("no field named %1").arg(name));
    return value(index);
}

Status RecordSource::setValue(const QString &name, const QVariant &newValue)
{
    const int index = fieldIndex(name);
    if (index < 0)
        return Status(Status::Code::UnknownField, QStringLiteral("no field named %1").arg(name));
    return setValue(index, newValue);
}

QString Field::Name() const
{
    return isValid() ? m_source->fieldInfos().at(m_index).name : QString();
}

QVariant Field::Value() const
{
    if (!isValid())
        return {};
    Result<QVariant> v = m_source->value(m_index);
    return v.isOk() ? v.value() : QVariant();
}

Status Field::setValue(const QVariant &value) const
{
    if (!isValid())
        return Status(Status::Code::UnknownField, QStringLiteral("no such field"));
    return m_source->setValue(m_index, value);
}

int Field::Size() const
{
    return isValid() ? m_source->fieldInfos().at(m_index).size : 0;
}

FieldType Field::Type() const
{
    return isValid() ? m_source->fieldInfos().at(m_index).type : FieldType::Text;
}

int FieldList::Count() const
{
    return int(m_source->fieldInfos().size());
}

Field FieldList::Item(int index) const
{
    if (index < 0 || index >= Count())
        return Field(nullptr, -1);
    return Field(m_source, index);
}

Field FieldList::Item(const QString &name) const
{
    const int index = m_source->fieldIndex(name);
    return Field(index < 0 ? nullptr : m_source, index);
}

} // namespace plx
