// services/recordsource/jet/functions_date.cpp: Time, Hour, Minute, Second, Weekday,
// DateSerial, TimeSerial, DateValue, TimeValue, DateAdd, DateDiff, DatePart, MonthName,
// WeekdayName, Date$ and Time$ (Date, Now, Year, Month and Day are in functions.cpp).
//
// Arithmetic on times goes through whole seconds counted from the serial epoch rather
// than QDateTime::addSecs, so that local-time rules (daylight saving) never move a value:
// the dialect's dates carry no time zone.
#include "services/recordsource/jet/internal/functionlibrary.h"

#include "services/recordsource/jet/internal/values.h"

namespace plx::jet::fn {

namespace {

constexpr qint64 kDay = 86400;

qint64 toSeconds(const DateParts &dt)
{
    return epochDate().daysTo(dt.date) * kDay + dt.time.msecsSinceStartOfDay() / 1000;
}

qint64 floorDiv(qint64 a, qint64 b)
{
    const qint64 q = a / b;
    return (a % b != 0 && (a < 0) != (b < 0)) ? q - 1 : q;
}

QDateTime fromSeconds(qint64 secs)
{
    const qint64 days = floorDiv(secs, kDay);
    const qint64 rest = secs - days * kDay;
    return QDateTime(epochDate().addDays(days), QTime(0, 0).addSecs(int(rest)));
}

bool inRange(const QDate &d)
{
    return d.isValid() && d.year() >= 100 && d.year() <= 9999;
}

// Weekday 1..7 counted from `first` (1 Sunday .. 7 Saturday; 0 means the system's
// setting, Sunday in the United States).
int weekdayFrom(const QDate &d, int first)
{
    const int sundayBased = d.dayOfWeek() % 7 + 1; // Sunday 1 .. Saturday 7
    return (sundayBased - first + 7) % 7 + 1;
}

Result<int> firstDayArg(const char *fn, const QVariant *a, int n, int index, int pos)
{
    if (n <= index)
        return 1;
    Result<qint64> f = wholeArg(fn, a[index], index + 1, pos);
    if (!f.isOk())
        return f.status();
    if (f.value() < 0 || f.value() > 7)
        return badArgument(fn, pos, QStringLiteral("first day of week must be 0 to 7"));
    return f.value() == 0 ? 1 : int(f.value());
}

Result<int> firstWeekArg(const char *fn, const QVariant *a, int n, int index, int pos)
{
    if (n <= index)
        return 1;
    Result<qint64> f = wholeArg(fn, a[index], index + 1, pos);
    if (!f.isOk())
        return f.status();
    if (f.value() < 0 || f.value() > 3)
        return badArgument(fn, pos, QStringLiteral("first week of year must be 0 to 3"));
    return f.value() == 0 ? 1 : int(f.value());
}

enum class Interval { Year, Quarter, Month, DayOfYear, Day, Weekday, Week, Hour, Minute, Second };

Result<Interval> intervalArg(const char *fn, const QVariant &v, int pos)
{
    if (isNull(v))
        return invalidNull(fn, pos);
    // Compared in place, without a lower-cased copy: a filter reads the interval per row.
    const QString text = toText(v);
    const QStringView s = QStringView(text).trimmed();
    static const struct
    {
        const char *code;
        Interval interval;
    } codes[] = { { "yyyy", Interval::Year }, { "q", Interval::Quarter },
                  { "m", Interval::Month },   { "y", Interval::DayOfYear },
                  { "d", Interval::Day },     { "w", Interval::Weekday },
                  { "ww", Interval::Week },   { "h", Interval::Hour },
                  { "n", Interval::Minute },  { "s", Interval::Second } };
    for (const auto &c : codes) {
        if (s.compare(QLatin1String(c.code), Qt::CaseInsensitive) == 0)
            return c.interval;
    }
    return badArgument(fn, pos, QStringLiteral("unknown interval '%1'").arg(toText(v)));
}

// A date argument that may be Null (the function then gives Null): `null` says which.
Result<DateParts> optionalDate(const char *fn, const QVariant &v, int argument, int pos, bool *null)
{
    *null = isNull(v);
    if (*null)
        return DateParts();
    return datePartsArg(fn, v, argument, pos);
}

R timeNow(const QVariant *, int, TextCompare, int)
{
    const QTime t = QTime::currentTime();
    return QVariant(QDateTime(epochDate(), QTime(t.hour(), t.minute(), t.second())));
}
R dateText(const QVariant *, int, TextCompare, int)
{
    return QVariant(QDate::currentDate().toString(QStringLiteral("MM-dd-yyyy")));
}
R timeText(const QVariant *, int, TextCompare, int)
{
    return QVariant(QTime::currentTime().toString(QStringLiteral("hh:mm:ss")));
}

R timePart(const QVariant *a, int pos, const char *fn, int part)
{
    bool null = false;
    Result<DateParts> dt = optionalDate(fn, a[0], 1, pos, &null);
    if (!dt.isOk())
        return dt.status();
    if (null)
        return QVariant();
    const QTime t = dt.value().time;
    return QVariant(double(part == 0 ? t.hour() : part == 1 ? t.minute() : t.second()));
}
R hour(const QVariant *a, int, TextCompare, int pos)
{
    return timePart(a, pos, "Hour", 0);
}
R minute(const QVariant *a, int, TextCompare, int pos)
{
    return timePart(a, pos, "Minute", 1);
}
R second(const QVariant *a, int, TextCompare, int pos)
{
    return timePart(a, pos, "Second", 2);
}

R weekday(const QVariant *a, int n, TextCompare, int pos)
{
    Result<int> first = firstDayArg("Weekday", a, n, 1, pos);
    if (!first.isOk())
        return first.status();
    bool null = false;
    Result<DateParts> dt = optionalDate("Weekday", a[0], 1, pos, &null);
    if (!dt.isOk())
        return dt.status();
    if (null)
        return QVariant();
    return QVariant(double(weekdayFrom(dt.value().date, first.value())));
}

// DateSerial(year, month, day): months and days beyond their range roll over into the next
// (or previous) month and year; years 0-29 are 2000-2029 and 30-99 are 1930-1999.
R dateSerial(const QVariant *a, int, TextCompare, int pos)
{
    qint64 v[3];
    for (int i = 0; i < 3; ++i) {
        if (isNull(a[i]))
            return QVariant();
        Result<qint64> w = wholeArg("DateSerial", a[i], i + 1, pos);
        if (!w.isOk())
            return w.status();
        v[i] = w.value();
    }
    qint64 year = v[0];
    if (year >= 0 && year < 30)
        year += 2000;
    else if (year >= 30 && year < 100)
        year += 1900;
    if (year < 100 || year > 9999 || std::abs(v[1]) > 120000 || std::abs(v[2]) > 4000000)
        return badArgument("DateSerial", pos);
    const QDate d = QDate(int(year), 1, 1).addMonths(int(v[1] - 1)).addDays(v[2] - 1);
    if (!inRange(d))
        return badArgument("DateSerial", pos);
    return QVariant(QDateTime(d, QTime(0, 0)));
}

R timeSerial(const QVariant *a, int, TextCompare, int pos)
{
    qint64 v[3];
    for (int i = 0; i < 3; ++i) {
        if (isNull(a[i]))
            return QVariant();
        Result<qint64> w = wholeArg("TimeSerial", a[i], i + 1, pos);
        if (!w.isOk())
            return w.status();
        if (std::abs(w.value()) > 32767)
            return overflow("TimeSerial", pos);
        v[i] = w.value();
    }
    const qint64 secs = v[0] * 3600 + v[1] * 60 + v[2];
    return QVariant(serialToDate(double(secs) / double(kDay)));
}

R dateValue(const QVariant *a, int, TextCompare, int pos)
{
    bool null = false;
    Result<DateParts> dt = optionalDate("DateValue", a[0], 1, pos, &null);
    if (!dt.isOk())
        return dt.status();
    if (null)
        return QVariant();
    return QVariant(QDateTime(dt.value().date, QTime(0, 0)));
}

R timeValue(const QVariant *a, int, TextCompare, int pos)
{
    bool null = false;
    Result<DateParts> dt = optionalDate("TimeValue", a[0], 1, pos, &null);
    if (!dt.isOk())
        return dt.status();
    if (null)
        return QVariant();
    return QVariant(QDateTime(epochDate(), dt.value().time));
}

// DateAdd(interval, number, date): months and years keep the day where the month has it
// and take the month's last day otherwise (1/31 + 1 month = 2/28).
R dateAdd(const QVariant *a, int, TextCompare, int pos)
{
    Result<Interval> iv = intervalArg("DateAdd", a[0], pos);
    if (!iv.isOk())
        return iv.status();
    Result<qint64> num = wholeArg("DateAdd", a[1], 2, pos);
    if (!num.isOk())
        return num.status();
    bool null = false;
    Result<DateParts> dt = optionalDate("DateAdd", a[2], 3, pos, &null);
    if (!dt.isOk())
        return dt.status();
    if (null)
        return QVariant();
    const qint64 k = num.value();
    if (std::abs(k) > 400000000LL)
        return badArgument("DateAdd", pos);
    const DateParts &d = dt.value();
    QDateTime out;
    switch (iv.value()) {
    case Interval::Year: out = QDateTime(d.date.addYears(int(k)), d.time); break;
    case Interval::Quarter: out = QDateTime(d.date.addMonths(int(k * 3)), d.time); break;
    case Interval::Month: out = QDateTime(d.date.addMonths(int(k)), d.time); break;
    case Interval::DayOfYear:
    case Interval::Day:
    case Interval::Weekday: out = fromSeconds(toSeconds(d) + k * kDay); break;
    case Interval::Week: out = fromSeconds(toSeconds(d) + k * 7 * kDay); break;
    case Interval::Hour: out = fromSeconds(toSeconds(d) + k * 3600); break;
    case Interval::Minute: out = fromSeconds(toSeconds(d) + k * 60); break;
    case Interval::Second: out = fromSeconds(toSeconds(d) + k); break;
    }
    if (!inRange(out.date()))
        return badArgument("DateAdd", pos, QStringLiteral("the date leaves years 100 to 9999"));
    return QVariant(out);
}

// DateDiff counts the boundaries crossed between the two dates: year ends for "yyyy",
// midnights for "d", hour marks for "h", first days of a week for "ww"; "w" counts whole
// weeks.
R dateDiff(const QVariant *a, int n, TextCompare, int pos)
{
    Result<Interval> iv = intervalArg("DateDiff", a[0], pos);
    if (!iv.isOk())
        return iv.status();
    Result<int> first = firstDayArg("DateDiff", a, n, 3, pos);
    if (!first.isOk())
        return first.status();
    if (Result<int> w = firstWeekArg("DateDiff", a, n, 4, pos); !w.isOk())
        return w.status();
    bool null1 = false, null2 = false;
    Result<DateParts> d1 = optionalDate("DateDiff", a[1], 2, pos, &null1);
    if (!d1.isOk())
        return d1.status();
    Result<DateParts> d2 = optionalDate("DateDiff", a[2], 3, pos, &null2);
    if (!d2.isOk())
        return d2.status();
    if (null1 || null2)
        return QVariant();
    const QDate x = d1.value().date, y = d2.value().date;
    const qint64 s1 = toSeconds(d1.value()), s2 = toSeconds(d2.value());
    qint64 r = 0;
    switch (iv.value()) {
    case Interval::Year: r = y.year() - x.year(); break;
    case Interval::Quarter:
        r = (y.year() * 4 + (y.month() - 1) / 3) - (x.year() * 4 + (x.month() - 1) / 3);
        break;
    case Interval::Month: r = (y.year() * 12 + y.month()) - (x.year() * 12 + x.month()); break;
    case Interval::DayOfYear:
    case Interval::Day: r = x.daysTo(y); break;
    case Interval::Weekday: r = x.daysTo(y) / 7; break;
    case Interval::Week: {
        const QDate w1 = x.addDays(-(weekdayFrom(x, first.value()) - 1));
        const QDate w2 = y.addDays(-(weekdayFrom(y, first.value()) - 1));
        r = w1.daysTo(w2) / 7;
        break;
    }
    case Interval::Hour: r = floorDiv(s2, 3600) - floorDiv(s1, 3600); break;
    case Interval::Minute: r = floorDiv(s2, 60) - floorDiv(s1, 60); break;
    case Interval::Second: r = s2 - s1; break;
    }
    return QVariant(double(r));
}

// Week of the year: week 1 holds January 1 (firstweekofyear 1), or is the first week with
// four days of the new year (2), or the first full week (3). Days before week 1 belong to
// the last week of the year before.
int weekOfYear(const QDate &d, int firstDay, int firstWeek)
{
    auto weekOneStart = [&](int year) {
        const QDate jan1(year, 1, 1);
        const int wd = weekdayFrom(jan1, firstDay);
        QDate start = jan1.addDays(-(wd - 1));
        if ((firstWeek == 2 && 8 - wd < 4) || (firstWeek == 3 && wd != 1))
            start = start.addDays(7);
        return start;
    };
    QDate start = weekOneStart(d.year());
    if (d < start)
        start = weekOneStart(d.year() - 1);
    return int(start.daysTo(d) / 7) + 1;
}

R datePart(const QVariant *a, int n, TextCompare, int pos)
{
    Result<Interval> iv = intervalArg("DatePart", a[0], pos);
    if (!iv.isOk())
        return iv.status();
    Result<int> first = firstDayArg("DatePart", a, n, 2, pos);
    if (!first.isOk())
        return first.status();
    Result<int> week = firstWeekArg("DatePart", a, n, 3, pos);
    if (!week.isOk())
        return week.status();
    bool null = false;
    Result<DateParts> dt = optionalDate("DatePart", a[1], 2, pos, &null);
    if (!dt.isOk())
        return dt.status();
    if (null)
        return QVariant();
    const QDate d = dt.value().date;
    const QTime t = dt.value().time;
    int r = 0;
    switch (iv.value()) {
    case Interval::Year: r = d.year(); break;
    case Interval::Quarter: r = (d.month() - 1) / 3 + 1; break;
    case Interval::Month: r = d.month(); break;
    case Interval::DayOfYear: r = d.dayOfYear(); break;
    case Interval::Day: r = d.day(); break;
    case Interval::Weekday: r = weekdayFrom(d, first.value()); break;
    case Interval::Week: r = weekOfYear(d, first.value(), week.value()); break;
    case Interval::Hour: r = t.hour(); break;
    case Interval::Minute: r = t.minute(); break;
    case Interval::Second: r = t.second(); break;
    }
    return QVariant(double(r));
}

const char *const kMonths[] = { "January",   "February", "March",    "April",
                                "May",       "June",     "July",     "August",
                                "September", "October",  "November", "December" };
const char *const kDays[] = { "Sunday",   "Monday", "Tuesday", "Wednesday",
                              "Thursday", "Friday", "Saturday" };

Result<bool> abbreviateArg(const char *fn, const QVariant *a, int n, int index, int pos)
{
    if (n <= index)
        return false;
    Result<double> b = numberArg(fn, a[index], index + 1, pos);
    if (!b.isOk())
        return b.status();
    return b.value() != 0;
}

R monthName(const QVariant *a, int n, TextCompare, int pos)
{
    Result<qint64> m = wholeArg("MonthName", a[0], 1, pos);
    if (!m.isOk())
        return m.status();
    if (m.value() < 1 || m.value() > 12)
        return badArgument("MonthName", pos, QStringLiteral("month must be 1 to 12"));
    Result<bool> abbr = abbreviateArg("MonthName", a, n, 1, pos);
    if (!abbr.isOk())
        return abbr.status();
    const QString name = QLatin1String(kMonths[m.value() - 1]);
    return QVariant(abbr.value() ? name.left(3) : name);
}

R weekdayName(const QVariant *a, int n, TextCompare, int pos)
{
    Result<qint64> w = wholeArg("WeekdayName", a[0], 1, pos);
    if (!w.isOk())
        return w.status();
    if (w.value() < 1 || w.value() > 7)
        return badArgument("WeekdayName", pos, QStringLiteral("weekday must be 1 to 7"));
    Result<bool> abbr = abbreviateArg("WeekdayName", a, n, 1, pos);
    if (!abbr.isOk())
        return abbr.status();
    Result<int> first = firstDayArg("WeekdayName", a, n, 2, pos);
    if (!first.isOk())
        return first.status();
    const QString name = QLatin1String(kDays[(w.value() - 1 + first.value() - 1) % 7]);
    return QVariant(abbr.value() ? name.left(3) : name);
}

const FunctionDef kDate[] = {
    { "TIME", 0, 0, timeNow },          { "DATE$", 0, 0, dateText },
    { "TIME$", 0, 0, timeText },        { "HOUR", 1, 1, hour },
    { "MINUTE", 1, 1, minute },         { "SECOND", 1, 1, second },
    { "WEEKDAY", 1, 2, weekday },       { "DATESERIAL", 3, 3, dateSerial },
    { "TIMESERIAL", 3, 3, timeSerial }, { "DATEVALUE", 1, 1, dateValue },
    { "TIMEVALUE", 1, 1, timeValue },   { "DATEADD", 3, 3, dateAdd },
    { "DATEDIFF", 3, 5, dateDiff },     { "DATEPART", 2, 4, datePart },
    { "MONTHNAME", 1, 2, monthName },   { "WEEKDAYNAME", 1, 3, weekdayName },
};

} // namespace

std::span<const FunctionDef> dateFunctions()
{
    return kDate;
}

} // namespace plx::jet::fn
