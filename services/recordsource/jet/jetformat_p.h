// services/recordsource/jet/jetformat_p.h: the dialect's Format function, in the English
// (United States) locale that saved criteria assume.
//
// Named formats ("Currency", "Short Date", "Yes/No", ...) and custom ones: number formats
// of up to four sections (positive;negative;zero;Null) with 0 # . , % E+ E-, date formats
// with d..dddddd w ww m..mmmm q y yy yyyy h hh n nn s ss ttttt c and AM/PM, A/P, AMPM, and
// text formats with @ & < > !. Quoted text and \x are literal in every kind.
#pragma once

#include <QString>
#include <QVariant>

#include <optional>

namespace plx::jet {

struct FormatOptions
{
    int firstDayOfWeek = 1; // 1 Sunday .. 7 Saturday
    int firstWeekOfYear =
        1; // 1 the week of January 1, 2 the first 4-day week, 3 the first full week
};

// The text Format gives; nullopt for a Null result (a Null value without a section for it).
std::optional<QString> formatJet(const QVariant &value, const QString &format,
                                 const FormatOptions &options = {});

// A date as the dialect's CStr writes it: "1/31/2003", "7:00:00 AM" for a time alone,
// "1/31/2003 7:00:00 AM" for both.
QString generalDateText(const QDateTime &dt);

} // namespace plx::jet
