// apps/plxsql/textoutput.h: plxsql's plain text form of record-source values and rows.
#pragma once

#include "services/recordsource/recordsource.h"

#include <QTextStream>

namespace plx::plxsql {

// A value as plxsql prints it: Null as nothing, dates as YYYY-MM-DD (with hh:mm:ss for
// date-times), logicals as True/False, Numeric fields with their decimals, other numbers
// in the shortest exact decimal form, text as it is (tabs and line breaks as blanks, so
// one record stays one line).
QString plainText(const QVariant &value, const FieldInfo &field);

// The text with every line break (CR, LF, VT, FF, NEL, U+2028, U+2029) written as an escape
// (\n, \r, \u2028, ...), so that a message echoing a user's text stays one line.
QString oneLine(const QString &text);

// Writes the header line of field names and one tab-separated line per record, from the
// current record to the end. Returns the first error met.
Status writeRows(RecordSource &source, QTextStream &out);

} // namespace plx::plxsql
