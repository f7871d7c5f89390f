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
// (blank: the field's own form).
QString formatFieldValue(const QVariant &value, const FieldInfo &field, const QString &format);

// A number typed by a user: blanks and thousands separators ignored, '.' as the decimal
// point, a leading sign or a trailing '-'/'%' not accepted. std::nullopt when it is none.
std::optional<double> parseNumberText(const QString &text);

// A date typed by a user, read in the order of `format`'s day, month and year tokens
// (MM/DD/YYYY when the format has none); two-digit years fall in 1930..2029. Also accepts
// YYYY-MM-DD. std::nullopt when it is no valid date.
std::optional<QDate> parseDateText(const QString &text, const QString &format);

// A logical typed by a user: True/False, T/F, Yes/No, Y/N, 1/0 (any case). std::nullopt
// otherwise.
std::optional<bool> parseLogicalText(const QString &text);

} // namespace plx
