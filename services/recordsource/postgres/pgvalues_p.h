// services/recordsource/postgres/pgvalues_p.h: field types and values between the record
// source's QVariants and PostgreSQL's text forms.
//
// Text fields are varchar(n) under the engine's case-insensitive collation, memos text,
// Numeric numeric(w,d), dates date, date-times timestamp, Booleans boolean, bytes bytea.
#pragma once

#include "services/recordsource/postgres/pgconnection_p.h"

namespace plx::postgres {

// The field a column of type `typeOid` (with its atttypmod) is to a record source.
FieldInfo fieldInfoForType(const QString &name, unsigned typeOid, int typmod);
// The column type a field is made as ("varchar(20) COLLATE plx.nocase", "numeric(12,2)").
QString declaredTypeFor(const FieldInfo &field);
// The value of one cell of a result, typed by its column.
QVariant valueOf(const PgResult &result, int row, int column, const FieldInfo &field);
// A value as a parameter for a column of `field`'s type. TypeMismatch for a value the
// field cannot hold (a text that is no number for a numeric field, ...).
Result<PgParam> paramFor(const QVariant &value, const FieldInfo &field);

} // namespace plx::postgres
