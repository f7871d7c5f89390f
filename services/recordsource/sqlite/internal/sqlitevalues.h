// services/recordsource/sqlite/internal/sqlitevalues.h: how the record-source field types are kept
// in SQLite columns.
//
// SQLite stores values by storage class and keeps only the declared type of a column, so
// the declared type decides the field type the controls see:
//   TEXT, CHAR(n), VARCHAR(n)    Text, Size n (255 when TEXT has no width, Jet's maximum)
//   MEMO, LONGTEXT, CLOB          Memo
//   INTEGER, INT, LONG, ...       Integer
//   NUMERIC(w,d), DECIMAL(w,d)    Numeric, Size w, decimals d
//   REAL, DOUBLE, FLOAT           Double
//   BOOLEAN, LOGICAL, BIT         Boolean, stored as the integers -1 (True) and 0
//   DATE                          Date, stored as ISO text 'YYYY-MM-DD'
//   DATETIME, TIMESTAMP           DateTime, stored as 'YYYY-MM-DD hh:mm:ss'
//   BLOB, BINARY                  Binary
// A column without a declared type (an expression of a query) is read by storage class.
#pragma once

#include "services/recordsource/recordsource.h"

struct sqlite3_stmt;

namespace plx::sqlite {

// The declared type that makes a column read back as `field` (CHAR(20), NUMERIC(12,2), ...).
QString declaredTypeFor(const FieldInfo &field);

// A field of a result column: its name and declared type (empty for an expression).
FieldInfo fieldInfoFromDeclaredType(const QString &name, const QString &declaredType);

// Reads column `column` of the statement's current row as the controls expect the type.
// `typed` is false for expression columns, which are read by storage class.
QVariant readColumn(sqlite3_stmt *stmt, int column, const FieldInfo &field, bool typed);

// Checks and converts a value assigned to a field into the form readColumn returns:
// TypeMismatch when it cannot be converted, InvalidArgument when a text is longer than
// the field's Size. Null (an invalid or null QVariant) passes as Null.
Result<QVariant> normalizeValue(const QVariant &value, const FieldInfo &field);

// Binds a value returned by normalizeValue to parameter `parameter` (1-based).
void bindValue(sqlite3_stmt *stmt, int parameter, const QVariant &value, const FieldInfo &field);

} // namespace plx::sqlite
