// services/recordsource/dbf/xbasenumbers.cpp: numbers and dates in index expressions, with
// FoxPro's text forms (STR, DTOS, DTOC) and its reading of numbers from text (VAL).
#include "services/recordsource/dbf/xbaseoperations_p.h"

#include <algorithm>
#include <cmath>

namespace plx::xbase {

namespace {

// `value` with `decimals` digits behind the point, rounded half away from zero as FoxPro
// rounds. The nudge of a few units in the last place makes a decimal half that binary
// cannot hold exactly (1.005 is 1.00499999...) round up as it does in FoxPro.
QByteArray fixed(double value, int decimals)
{
    const double scale = std::pow(10.0, decimals);
    const double scaled = value * scale;
    const double rounded = std::round(scaled + std::copysign(std::abs(scaled) * 1e-12, scaled));
    if (rounded == 0)
        return QByteArray::number(0.0, 'f', decimals);
    return QByteArray::number(rounded / scale, 'f', decimals);
}

QByteArray dateDigits(const QDate &d, const char *format)
{
    return d.toString(QLatin1String(format)).toLatin1();
}

} // namespace

// STR(n [, length [, decimals]]): right-justified in `length` (10) characters with
// `decimals` (0) digits; fewer digits behind the point when they do not fit, asterisks when
// the whole part does not.
XbaseValue strOf(const Values &a, const Record &)
{
    const int length = a.size() > 1 ? int(std::clamp(number(a[1]), 0.0, 255.0)) : 10;
    const int decimals = a.size() > 2 ? int(std::clamp(number(a[2]), 0.0, 18.0)) : 0;
    for (int d = decimals; d >= 0; --d) {
        const QByteArray digits = fixed(number(a[0]), d);
        if (digits.size() <= length)
            return text(digits.rightJustified(length, ' '));
    }
    return text(QByteArray(length, '*'));
}

// VAL(text): the number at the start of the text after blanks, 0 when there is none.
XbaseValue valOf(const Values &a, const Record &)
{
    const QByteArray &s = a[0].text;
    qsizetype i = 0;
    while (i < s.size() && s[i] == ' ')
        ++i;
    const qsizetype start = i;
    if (i < s.size() && (s[i] == '-' || s[i] == '+'))
        ++i;
    bool point = false;
    while (i < s.size() && ((s[i] >= '0' && s[i] <= '9') || (s[i] == '.' && !point))) {
        point = point || s[i] == '.';
        ++i;
    }
    bool ok = false;
    const double n = s.mid(start, i - start).toDouble(&ok);
    return numeric(ok ? n : 0.0);
}

XbaseValue dtosOf(const Values &a, const Record &)
{
    return text(a[0].date.isValid() ? dateDigits(a[0].date, "yyyyMMdd") : QByteArray(8, ' '));
}

XbaseValue dtocOf(const Values &a, const Record &)
{
    return text(a[0].date.isValid() ? dateDigits(a[0].date, "MM/dd/yy") : "  /  /  ");
}

// Days are whole: FoxPro drops the fraction of a number added to a date. A blank date
// stays blank.
XbaseValue plus(const Values &a, const Record &)
{
    if (a[0].type == Type::Date || a[1].type == Type::Date) {
        const XbaseValue &d = a[0].type == Type::Date ? a[0] : a[1];
        const XbaseValue &n = a[0].type == Type::Date ? a[1] : a[0];
        return dateValue(d.date.isValid() ? d.date.addDays(qint64(std::trunc(number(n))))
                                          : QDate());
    }
    return numeric(number(a[0]) + number(a[1]));
}

XbaseValue minus(const Values &a, const Record &)
{
    if (a[0].type == Type::Date && a[1].type == Type::Date) {
        if (!a[0].date.isValid() || !a[1].date.isValid())
            return numeric(0);
        return numeric(double(a[1].date.daysTo(a[0].date)));
    }
    if (a[0].type == Type::Date)
        return dateValue(a[0].date.isValid() ? a[0].date.addDays(-qint64(std::trunc(number(a[1]))))
                                             : QDate());
    return numeric(number(a[0]) - number(a[1]));
}

XbaseValue times(const Values &a, const Record &)
{
    return numeric(number(a[0]) * number(a[1]));
}

// A division by zero gives infinity, which the evaluator reports as a numeric overflow.
XbaseValue divided(const Values &a, const Record &)
{
    return numeric(number(a[0]) / number(a[1]));
}

XbaseValue negated(const Values &a, const Record &)
{
    return numeric(-number(a[0]));
}

} // namespace plx::xbase
