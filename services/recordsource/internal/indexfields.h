// services/recordsource/internal/indexfields.h: the fields an index is asked to cover.
#pragma once

#include "services/recordsource/database.h"

namespace plx {

// What an index on fields `names` of `table` covers: the table's name as stored and the
// fields, in that order, each matched without regard to case. NotFound for a missing table,
// InvalidArgument naming the first field the table lacks, or when none is named.
struct IndexedFields
{
    QString table;
    QList<FieldInfo> fields;
};

inline Result<IndexedFields> indexFields(const Database &db, const QString &table,
                                         const QStringList &names)
{
    Result<TableDescription> described = db.describeTable(table);
    if (!described.isOk())
        return described.status();
    if (names.isEmpty())
        return Status(Status::Code::InvalidArgument,
                      QStringLiteral("an index on %1 needs at least one field").arg(table));
    IndexedFields indexed{ described->name, {} };
    for (const QString &name : names) {
        const auto found = std::find_if(
            described->fields.begin(), described->fields.end(), [&](const FieldInfo &f) {
                return f.name.compare(name.trimmed(), Qt::CaseInsensitive) == 0;
            });
        if (found == described->fields.end())
            return Status(Status::Code::InvalidArgument,
                          QStringLiteral("the table %1 has no field %2").arg(table, name));
        indexed.fields << *found;
    }
    return indexed;
}

} // namespace plx
