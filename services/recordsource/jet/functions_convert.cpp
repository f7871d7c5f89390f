// services/recordsource/jet/functions_convert.cpp: the conversions (CBool, CByte, CDate,
// CSng, CCur, CVar), the tests (IsNumeric, IsDate, IsEmpty, VarType) and the choices
// (Choose, Switch). Conversions refuse Null ("invalid use of Null") except CVar, which
// keeps it.
#include "services/recordsource/jet/internal/functionlibrary.h"

#include "services/recordsource/jet/internal/values.h"

#include <cmath>

namespace plx::jet::fn {

namespace {

R cbool(const QVariant *a, int, TextCompare, int pos)
{
    if (isNull(a[0]))
        return invalidNull("CBool", pos);
    if (isBoolean(a[0]))
        return a[0];
    if (isText(a[0])) {
        const QString s = a[0].toString().trimmed();
        if (s.compare(QLatin1String("True"), Qt::CaseInsensitive) == 0)
            return QVariant(true);
        if (s.compare(QLatin1String("False"), Qt::CaseInsensitive) == 0)
            return QVariant(false);
    }
    Result<double> d = numberArg("CBool", a[0], 1, pos);
    if (!d.isOk())
        return d.status();
    return QVariant(d.value() != 0);
}

R cbyte(const QVariant *a, int, TextCompare, int pos)
{
    Result<double> d = numberArg("CByte", a[0], 1, pos);
    if (!d.isOk())
        return d.status();
    const double r = roundHalfEven(d.value());
    if (r < 0 || r > 255)
        return overflow("CByte", pos);
    return QVariant(r);
}

R cdate(const QVariant *a, int, TextCompare, int pos)
{
    if (isNull(a[0]))
        return invalidNull("CDate", pos);
    QDateTime dt = valueAsDate(a[0]);
    if (!dt.isValid() && isText(a[0])) {
        // A numeric text is a serial, as the number itself is.
        Result<double> d = toNumber(a[0], pos);
        if (d.isOk())
            dt = serialToDate(d.value());
    }
    if (!dt.isValid())
        return typeMismatch("CDate", 1, a[0], "a date", pos);
    if (dt.date().year() < 100 || dt.date().year() > 9999)
        return overflow("CDate", pos);
    return QVariant(dt);
}

// A Single keeps about 7 significant digits; round there so that CSng(1.1) reads 1.1
// rather than the float's 1.10000002384186.
R csng(const QVariant *a, int, TextCompare, int pos)
{
    Result<double> d = numberArg("CSng", a[0], 1, pos);
    if (!d.isOk())
        return d.status();
    if (std::fabs(d.value()) > 3.402823466e38)
        return overflow("CSng", pos);
    const float f = float(d.value());
    return QVariant(QString::number(double(f), 'g', 7).toDouble());
}

// Currency: a scaled integer of four decimals, rounded half to even.
R ccur(const QVariant *a, int, TextCompare, int pos)
{
    Result<double> d = numberArg("CCur", a[0], 1, pos);
    if (!d.isOk())
        return d.status();
    if (std::fabs(d.value()) > 922337203685477.5807)
        return overflow("CCur", pos);
    // Through the decimal text, so that 1.00005 is the tie it is written as.
    const double scaled = QString::number(d.value() * 10000.0, 'g', 15).toDouble();
    return QVariant(roundHalfEven(scaled) / 10000.0);
}

R cvar(const QVariant *a, int, TextCompare, int)
{
    return a[0];
}

R isNumericFn(const QVariant *a, int, TextCompare, int)
{
    if (isNull(a[0]) || isDate(a[0]))
        return QVariant(false);
    if (isNumeric(a[0]))
        return QVariant(true);
    return QVariant(toNumber(a[0], 0).isOk());
}

R isDateFn(const QVariant *a, int, TextCompare, int)
{
    if (isDate(a[0]))
        return QVariant(true);
    return QVariant(isText(a[0]) && readDateText(a[0].toString()).isValid());
}

// Fields and expressions are never Empty (an uninitialised Variant): Null is not Empty.
R isEmptyFn(const QVariant *, int, TextCompare, int)
{
    return QVariant(false);
}

// VarType: the values carry no Integer/Long/Double subtype of their own, so a number is
// classed by its value, as a literal of that value would be (5 is an Integer, 100000 a
// Long, 2.5 a Double).
R varType(const QVariant *a, int, TextCompare, int)
{
    const QVariant &v = a[0];
    if (isNull(v))
        return QVariant(1.0);
    if (isBoolean(v))
        return QVariant(11.0);
    if (isDate(v))
        return QVariant(7.0);
    if (isText(v))
        return QVariant(8.0);
    const double d = v.toDouble();
    if (d != std::trunc(d))
        return QVariant(5.0);
    if (d >= -32768 && d <= 32767)
        return QVariant(2.0);
    if (d >= -2147483648.0 && d <= 2147483647.0)
        return QVariant(3.0);
    return QVariant(5.0);
}

// Choose(index, choice-1, ...): every choice is evaluated; an index outside the list gives
// Null. A fractional index is rounded as VBA converts it.
R choose(const QVariant *a, int n, TextCompare, int pos)
{
    Result<qint64> index = wholeArg("Choose", a[0], 1, pos);
    if (!index.isOk())
        return index.status();
    if (index.value() < 1 || index.value() > n - 1)
        return QVariant();
    return a[index.value()];
}

// Switch(expr-1, value-1, ...): the value of the first True expression; Null when none is.
R switchFn(const QVariant *a, int n, TextCompare, int pos)
{
    if (n % 2 != 0)
        return badArgument("Switch", pos,
                           QStringLiteral("it takes pairs of conditions and values"));
    for (int i = 0; i < n; i += 2) {
        if (isNull(a[i]))
            continue;
        Result<double> d = toNumber(a[i], pos);
        if (!d.isOk())
            return typeMismatch("Switch", i + 1, a[i], "a condition", pos);
        if (d.value() != 0)
            return a[i + 1];
    }
    return QVariant();
}

// SQLite passes at most 127 arguments to a function, one of which is the compare mode.
constexpr int kMaxList = 126;

const FunctionDef kConvert[] = {
    { "CBOOL", 1, 1, cbool },
    { "CBYTE", 1, 1, cbyte },
    { "CDATE", 1, 1, cdate },
    { "CSNG", 1, 1, csng },
    { "CCUR", 1, 1, ccur },
    { "CVAR", 1, 1, cvar },
    { "ISNUMERIC", 1, 1, isNumericFn },
    { "ISDATE", 1, 1, isDateFn },
    { "ISEMPTY", 1, 1, isEmptyFn },
    { "VARTYPE", 1, 1, varType },
    { "CHOOSE", 2, kMaxList, choose },
    { "SWITCH", 2, kMaxList, switchFn },
};

} // namespace

std::span<const FunctionDef> conversionFunctions()
{
    return kConvert;
}

} // namespace plx::jet::fn
