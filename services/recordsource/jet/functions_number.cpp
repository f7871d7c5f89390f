// services/recordsource/jet/functions_number.cpp: Abs, Int, Fix, Round, Sgn, Sqr, Exp,
// Log, Hex and Oct. The plain forms pass Null through; Hex$ and Oct$ refuse it.
#include "services/recordsource/jet/internal/functionlibrary.h"

#include "services/recordsource/jet/internal/values.h"

#include <cmath>

namespace plx::jet::fn {

namespace {

// Reads the one numeric argument of a Null-propagating function; `null` is set when the
// argument is Null.
Result<double> operand(const char *fn, const QVariant &v, int pos, bool *null)
{
    *null = isNull(v);
    if (*null)
        return 0.0;
    return numberArg(fn, v, 1, pos);
}

#define PLX_UNARY(NAME, FN, EXPR) \
    R NAME(const QVariant *a, int, TextCompare, int pos) \
    { \
        bool null = false; \
        Result<double> r = operand(FN, a[0], pos, &null); \
        if (!r.isOk()) \
            return r.status(); \
        if (null) \
            return QVariant(); \
        const double x = r.value(); \
        EXPR \
    }

PLX_UNARY(absFn, "Abs", return QVariant(std::fabs(x));)
PLX_UNARY(intFn, "Int", return QVariant(std::floor(x));)
PLX_UNARY(fixFn, "Fix", return QVariant(std::trunc(x));)
PLX_UNARY(sgnFn, "Sgn", return QVariant(x > 0 ? 1.0 : (x < 0 ? -1.0 : 0.0));)
PLX_UNARY(sqrFn, "Sqr", if (x < 0) return badArgument("Sqr", pos, QStringLiteral("negative"));
          return QVariant(std::sqrt(x));)
PLX_UNARY(expFn, "Exp", if (x > 709.782712893384) return overflow("Exp", pos);
          return QVariant(std::exp(x));)
PLX_UNARY(logFn, "Log", if (x <= 0) return badArgument("Log", pos, QStringLiteral("not positive"));
          return QVariant(std::log(x));)

#undef PLX_UNARY

// Round(number [, decimals]) rounds half to even. The decimal text of the value decides
// what a tie is, so Round(2.675, 2) is 2.68 as written, not 2.67 as its binary value.
R roundFn(const QVariant *a, int n, TextCompare, int pos)
{
    qint64 decimals = 0;
    if (n > 1) {
        Result<qint64> d = wholeArg("Round", a[1], 2, pos);
        if (!d.isOk())
            return d.status();
        if (d.value() < 0 || d.value() > 22)
            return badArgument("Round", pos, QStringLiteral("decimals must be 0 to 22"));
        decimals = d.value();
    }
    if (isNull(a[0]))
        return QVariant();
    Result<double> x = numberArg("Round", a[0], 1, pos);
    if (!x.isOk())
        return x.status();
    const double scale = std::pow(10.0, double(decimals));
    const double scaled = x.value() * scale;
    if (!std::isfinite(scaled) || std::fabs(scaled) >= 4.5e15)
        return QVariant(x.value());
    // 15 significant digits: the precision a Double is written with.
    const double written = QString::number(scaled, 'g', 15).toDouble();
    return QVariant(roundHalfEven(written) / scale);
}

// Hex and Oct print a whole number as VBA's Integer (16 bits) or Long (32 bits) holds it,
// so negative numbers come out in two's complement: Hex(-1) is FFFF.
R radix(const QVariant *a, int pos, int base, const char *fn, bool refuseNull)
{
    if (isNull(a[0]))
        return refuseNull ? R(invalidNull(fn, pos)) : R(QVariant());
    Result<qint64> v = wholeArg(fn, a[0], 1, pos);
    if (!v.isOk())
        return v.status();
    qint64 x = v.value();
    if (x < -2147483648LL || x > 2147483647LL)
        return overflow(fn, pos);
    if (x < 0)
        x += x >= -32768 ? 0x10000 : 0x100000000LL;
    return QVariant(QString::number(x, base).toUpper());
}
R hexFn(const QVariant *a, int, TextCompare, int pos)
{
    return radix(a, pos, 16, "Hex", false);
}
R hexS(const QVariant *a, int, TextCompare, int pos)
{
    return radix(a, pos, 16, "Hex$", true);
}
R octFn(const QVariant *a, int, TextCompare, int pos)
{
    return radix(a, pos, 8, "Oct", false);
}
R octS(const QVariant *a, int, TextCompare, int pos)
{
    return radix(a, pos, 8, "Oct$", true);
}

const FunctionDef kNumber[] = {
    { "ABS", 1, 1, absFn },     { "INT", 1, 1, intFn }, { "FIX", 1, 1, fixFn },
    { "ROUND", 1, 2, roundFn }, { "SGN", 1, 1, sgnFn }, { "SQR", 1, 1, sqrFn },
    { "EXP", 1, 1, expFn },     { "LOG", 1, 1, logFn }, { "HEX", 1, 1, hexFn },
    { "HEX$", 1, 1, hexS },     { "OCT", 1, 1, octFn }, { "OCT$", 1, 1, octS },
};

} // namespace

std::span<const FunctionDef> numberFunctions()
{
    return kNumber;
}

} // namespace plx::jet::fn
