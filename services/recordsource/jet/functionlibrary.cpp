// services/recordsource/jet/functionlibrary.cpp: the look-up of the wider function library
// and the argument readers and error texts its groups share.
#include "services/recordsource/jet/internal/functionlibrary.h"

#include "services/recordsource/jet/internal/evaluationcounters.h"
#include "services/recordsource/jet/internal/lexer.h"
#include "services/recordsource/jet/internal/values.h"

#include <QHash>
#include <QRegularExpression>

#include <vector>

namespace plx::jet {

namespace {

struct Library
{
    std::vector<const FunctionDef *> all;
    QHash<QString, const FunctionDef *> byName;

    Library()
    {
        for (auto group : { fn::textFunctions(), fn::conversionFunctions(), fn::numberFunctions(),
                            fn::dateFunctions(), fn::formatFunctions() }) {
            for (const FunctionDef &def : group) {
                all.push_back(&def);
                byName.insert(QLatin1String(def.name), &def);
            }
        }
    }
};

const Library &library()
{
    static const Library lib;
    return lib;
}

// The documented spellings; anything missing falls back to the upper-case name.
const char *const kDisplayNames[] = {
    "Abs",      "Asc",     "CBool",   "CByte",       "CCur",      "CDate",      "CDbl",
    "Chr",      "ChrW",    "Choose",  "CInt",        "CLng",      "CSng",       "CStr",
    "CVar",     "Date",    "DateAdd", "DateDiff",    "DatePart",  "DateSerial", "DateValue",
    "Day",      "Exp",     "Fix",     "Format",      "Hex",       "Hour",       "InStr",
    "InStrRev", "Int",     "IsDate",  "IsEmpty",     "IsNumeric", "LCase",      "Left",
    "Len",      "Log",     "LTrim",   "Mid",         "Minute",    "Month",      "MonthName",
    "Now",      "Nz",      "Oct",     "Replace",     "Right",     "Round",      "RTrim",
    "Second",   "Sgn",     "Space",   "Sqr",         "Str",       "StrComp",    "StrReverse",
    "String",   "Switch",  "Time",    "TimeSerial",  "TimeValue", "Trim",       "UCase",
    "Val",      "VarType", "Weekday", "WeekdayName", "Year",
};

} // namespace

const FunctionDef *findLibraryFunction(const QString &upperName)
{
    return library().byName.value(upperName, nullptr);
}

std::span<const FunctionDef *const> libraryFunctions()
{
    return library().all;
}

bool isClockFunction(const QString &upperName)
{
    static const QStringList clocks = { QStringLiteral("DATE"), QStringLiteral("DATE$"),
                                        QStringLiteral("NOW"), QStringLiteral("TIME"),
                                        QStringLiteral("TIME$") };
    return clocks.contains(upperName);
}

QString functionDisplayName(const QString &upperName)
{
    const bool dollar = upperName.endsWith(QLatin1Char('$'));
    const QString bare = dollar ? upperName.chopped(1) : upperName;
    for (const char *name : kDisplayNames) {
        if (bare.compare(QLatin1String(name), Qt::CaseInsensitive) == 0)
            return QLatin1String(name) + (dollar ? QStringLiteral("$") : QString());
    }
    return upperName;
}

Result<QVariant> callFunction(const FunctionDef &def, const QVariant *args, int count,
                              TextCompare mode, int pos)
{
    ++evaluationCounters().functionCalls;
    Result<QVariant> r = def.call(args, count, mode, pos);
    if (r.isOk())
        return r;
    // The older functions report conversions without their own name; add it before the
    // position so that every message reads "... in Name at position n".
    const QString name = functionDisplayName(QLatin1String(def.name));
    const QString msg = r.status().message();
    for (const char *joint : { " in ", " of " }) {
        if (msg.contains(QLatin1String(joint) + name + QStringLiteral(" at "), Qt::CaseInsensitive))
            return r;
    }
    const QString at = QStringLiteral(" at position ");
    const qsizetype i = msg.lastIndexOf(at);
    const QString named = i < 0 ? msg + QStringLiteral(" in ") + name
                                : msg.left(i) + QStringLiteral(" in ") + name + msg.mid(i);
    return Status(r.status().code(), named);
}

namespace fn {

Status invalidNull(const char *fn, int pos)
{
    return Status(
        Status::Code::TypeMismatch,
        QStringLiteral("invalid use of Null in %1 at position %2").arg(QLatin1String(fn)).arg(pos));
}

Status badArgument(const char *fn, int pos, const QString &why)
{
    QString msg = QStringLiteral("invalid procedure call or argument in %1 at position %2")
                      .arg(QLatin1String(fn))
                      .arg(pos);
    if (!why.isEmpty())
        msg += QStringLiteral(": ") + why;
    return Status(Status::Code::InvalidArgument, msg);
}

Status overflow(const char *fn, int pos)
{
    return Status(Status::Code::InvalidArgument,
                  QStringLiteral("overflow in %1 at position %2").arg(QLatin1String(fn)).arg(pos));
}

Status typeMismatch(const char *fn, int argument, const QVariant &v, const char *wanted, int pos)
{
    return Status(
        Status::Code::TypeMismatch,
        QStringLiteral("type mismatch in argument %1 of %2 at position %3: '%4' is not %5")
            .arg(argument)
            .arg(QLatin1String(fn))
            .arg(pos)
            .arg(toText(v), QLatin1String(wanted)));
}

Result<double> numberArg(const char *fn, const QVariant &v, int argument, int pos)
{
    if (isNull(v))
        return invalidNull(fn, pos);
    Result<double> d = toNumber(v, pos);
    if (!d.isOk())
        return typeMismatch(fn, argument, v, "a number", pos);
    return d;
}

Result<qint64> wholeArg(const char *fn, const QVariant &v, int argument, int pos)
{
    Result<double> d = numberArg(fn, v, argument, pos);
    if (!d.isOk())
        return d.status();
    const double r = roundHalfEven(d.value());
    if (!(r > -9.2e18 && r < 9.2e18))
        return overflow(fn, pos);
    return qint64(r);
}

Result<QDateTime> dateArg(const char *fn, const QVariant &v, int argument, int pos)
{
    if (isNull(v))
        return invalidNull(fn, pos);
    const QDateTime dt = valueAsDate(v);
    if (!dt.isValid())
        return typeMismatch(fn, argument, v, "a date", pos);
    return dt;
}

Result<TextCompare> compareArg(const char *fn, const QVariant &v, int argument, TextCompare mode,
                               int pos)
{
    Result<qint64> c = wholeArg(fn, v, argument, pos);
    if (!c.isOk())
        return c.status();
    switch (c.value()) {
    case 0: return TextCompare::Binary;
    case 1: return TextCompare::NoCase;
    case 2:
    case -1: return mode;
    default: return badArgument(fn, pos, QStringLiteral("compare must be -1, 0, 1 or 2"));
    }
}

namespace {

int monthFromName(const QString &name)
{
    static const char *const months[] = { "jan", "feb", "mar", "apr", "may", "jun",
                                          "jul", "aug", "sep", "oct", "nov", "dec" };
    static const char *const full[] = { "january",   "february", "march",    "april",
                                        "may",       "june",     "july",     "august",
                                        "september", "october",  "november", "december" };
    const QString n = name.toLower();
    for (int i = 0; i < 12; ++i) {
        if (n == QLatin1String(months[i]) || n == QLatin1String(full[i]))
            return i + 1;
    }
    return 0;
}

int fullYear(const QString &digits)
{
    int y = digits.toInt();
    if (digits.size() <= 2)
        y += y < 30 ? 2000 : 1900; // the dialect's two-digit year window
    return y;
}

} // namespace

QDateTime readDateText(const QString &text)
{
    const QString s = text.trimmed();
    if (s.isEmpty())
        return {};
    QDateTime dt = parseDateText(s);
    if (dt.isValid())
        return dt;
    dt = parseJetDate(s);
    if (dt.isValid())
        return dt;
    // English month names: "January 31, 2003", "Jan 31 2003", "31 January 2003",
    // "31-Jan-03" (the Medium Date form), each with an optional time after it.
    static const QRegularExpression monthFirst(
        QStringLiteral("^([A-Za-z]{3,9})\\.?[ -](\\d{1,2}),?[ -](\\d{2,4})(?:\\s+(.*))?$"));
    static const QRegularExpression dayFirst(
        QStringLiteral("^(\\d{1,2})[ -]([A-Za-z]{3,9})\\.?,?[ -](\\d{2,4})(?:\\s+(.*))?$"));
    int month = 0, day = 0, year = 0;
    QString rest;
    if (QRegularExpressionMatch m = monthFirst.match(s); m.hasMatch()) {
        month = monthFromName(m.captured(1));
        day = m.captured(2).toInt();
        year = fullYear(m.captured(3));
        rest = m.captured(4);
    } else if (QRegularExpressionMatch d = dayFirst.match(s); d.hasMatch()) {
        day = d.captured(1).toInt();
        month = monthFromName(d.captured(2));
        year = fullYear(d.captured(3));
        rest = d.captured(4);
    }
    const QDate d(year, month, day);
    if (month == 0 || !d.isValid())
        return {};
    if (rest.trimmed().isEmpty())
        return QDateTime(d, QTime(0, 0));
    const QDateTime t = parseJetDate(rest);
    if (!t.isValid() || t.date() != epochDate())
        return {};
    return QDateTime(d, t.time());
}

QDateTime valueAsDate(const QVariant &v)
{
    if (isNull(v))
        return {};
    if (isText(v))
        return readDateText(v.toString());
    if (isBoolean(v))
        return serialToDate(v.toBool() ? -1.0 : 0.0);
    return toDateTime(v);
}

bool valueAsDateParts(const QVariant &v, QDate *date, QTime *time)
{
    switch (v.typeId()) {
    case QMetaType::QDate:
        *date = v.toDate();
        *time = QTime(0, 0);
        return date->isValid();
    case QMetaType::QDateTime: {
        const QDateTime dt = v.toDateTime();
        *date = dt.date();
        *time = dt.time();
        return dt.isValid();
    }
    case QMetaType::QString: {
        // The stored forms 'YYYY-MM-DD' and 'YYYY-MM-DD hh:mm:ss' directly, the rest through
        // the full reader.
        const QString s = v.toString();
        const auto num = [&s](qsizetype from, qsizetype count) {
            int n = 0;
            for (qsizetype i = from; i < from + count; ++i) {
                const char16_t c = s.at(i).unicode();
                if (c < u'0' || c > u'9')
                    return -1;
                n = n * 10 + (c - u'0');
            }
            return n;
        };
        if ((s.size() == 10 || s.size() == 19) && s.at(4) == u'-' && s.at(7) == u'-') {
            const int y = num(0, 4), mo = num(5, 2), d = num(8, 2);
            int h = 0, mi = 0, se = 0;
            bool ok = y >= 0 && mo >= 0 && d >= 0;
            if (ok && s.size() == 19) {
                h = num(11, 2), mi = num(14, 2), se = num(17, 2);
                ok = (s.at(10) == u' ' || s.at(10) == u'T') && s.at(13) == u':' && s.at(16) == u':'
                    && h >= 0 && mi >= 0 && se >= 0;
            }
            if (ok) {
                *date = QDate(y, mo, d);
                *time = QTime(h, mi, se);
                return date->isValid() && time->isValid();
            }
        }
        break;
    }
    default: break;
    }
    const QDateTime dt = valueAsDate(v);
    *date = dt.date();
    *time = dt.time();
    return dt.isValid();
}

Result<DateParts> datePartsArg(const char *fn, const QVariant &v, int argument, int pos)
{
    if (isNull(v))
        return invalidNull(fn, pos);
    DateParts parts;
    if (!valueAsDateParts(v, &parts.date, &parts.time))
        return typeMismatch(fn, argument, v, "a date", pos);
    return parts;
}

std::optional<double> wrapRadixValue(quint64 value)
{
    if (value <= 0xFFFFu)
        return double(value > 0x7FFFu ? qint64(value) - 0x10000 : qint64(value));
    if (value <= 0xFFFFFFFFu)
        return double(value > 0x7FFFFFFFu ? qint64(value) - 0x100000000LL : qint64(value));
    return std::nullopt;
}

} // namespace fn

} // namespace plx::jet
