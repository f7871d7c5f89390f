// mervane/valueformat.h: how a field value is shown in a text row and read back from it.
//
// Rows show numbers and dates through the host's format strings in the dialect hosts
// already write ("0.00", "#,##0", "#,##0.00", "mm/dd/yyyy", "dd.mm.yy", "General Number",
// "Fixed", "Standard", "Short Date", "Long Date"), and read what the user typed back into
// the field's own type. Null is shown as the empty text. Without a format, numbers show
// the field's own decimals, dates MM/DD/YYYY (the form the audit stamps use) and logicals
// True/False.
#pragma once

#include "services/recordsource/recordsource.h"

#include <QString>
#include <QVariant>

#include <optional>

namespace plx {

// The text a row shows for `value` of a field described by `field`, through `format`
// (blank: the field's own form). Null gives "". A format that is no number (date) pattern
// falls back to the field's own form, so a wrong format never hides a value. A DateTime
// shows " hh:mm:ss" behind the date unless its time is midnight. Text and Memo are shown
// as stored (format ignored); Binary as "".
QString formatFieldValue(const QVariant &value, const FieldInfo &field, const QString &format);

// A number typed by a user: blanks and ',' thousands separators ignored, '.' as the
// decimal point, an optional leading sign and exponent. A trailing '-' or '%' is not
// accepted (callers that allow a percentage strip it first). std::nullopt when it is none,
// for "" and for a value out of the range of double.
std::optional<double> parseNumberText(const QString &text);

// A date typed by a user: three numbers separated by '/', '-' or '.', read in the order of
// `format`'s day, month and year tokens (MM/DD/YYYY when the format has none); years of
// one or two digits fall in 1930..2029. Also accepts YYYY-MM-DD. std::nullopt when it is
// no valid date (31 February, month 13) or has a time or any other text.
std::optional<QDate> parseDateText(const QString &text, const QString &format);

// A logical typed by a user: True/False, T/F, Yes/No, Y/N, .T./.F., 1 or -1 / 0 (any
// case, blanks around ignored). std::nullopt otherwise, also for "".
std::optional<bool> parseLogicalText(const QString &text);

} // namespace plx
