// services/recordsource/internal/indexfields.h: the fields an index is asked to cover.
#pragma once

#include "services/recordsource/database.h"

namespace plx {

// The fields of `table` named by `names`, in that order, each matched without regard to
// case; InvalidArgument naming the first one the table lacks, or when none is named.
inline Result<QList<FieldInfo>> indexFields(const TableDescription &table, const QStringList &names)
{
    if (names.isEmpty())
        return Status(Status::Code::InvalidArgument,
                      QStringLiteral("an index on %1 needs at least one field").arg(table.name));
    QList<FieldInfo> fields;
    for (const QString &name : names) {
        const auto found =
            std::find_if(table.fields.begin(), table.fields.end(), [&](const FieldInfo &f) {
                return f.name.compare(name.trimmed(), Qt::CaseInsensitive) == 0;
            });
        if (found == table.fields.end())
            return Status(Status::Code::InvalidArgument,
                          QStringLiteral("the table %1 has no field %2").arg(table.name, name));
        fields << *found;
    }
    return fields;
}

} // namespace plx
