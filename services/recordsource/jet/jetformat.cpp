// services/recordsource/jet/jetformat.cpp: Format and Format$.
//
// Numbers are rounded half away from zero on their 15-digit decimal text, as Format shows
// them (Format(2.5, "0") is 3, Format(1.005, "0.00") is 1.01), which differs from Round's
// half to even on purpose.
#include "services/recordsource/jet/jetformat_p.h"

#include "services/recordsource/jet/internal/functionlibrary.h"
#include "services/recordsource/jet/internal/values.h"

#include <QRegularExpression>

#include <cmath>
#include <vector>

namespace plx::jet {

namespace {

const char *const kMonthNames[] = { "January",   "February", "March",    "April",
                                    "May",       "June",     "July",     "August",
                                    "September", "October",  "November", "December" };
const char *const kDayNames[] = { "Sunday",   "Monday", "Tuesday", "Wednesday",
                                  "Thursday", "Friday", "Saturday" };

// Splits a format at the ';' that are not quoted or escaped.
QStringList sections(const QString &format)
{
    QStringList out;
    QString cur;
    bool quoted = false;
    for (qsizetype i = 0; i < format.size(); ++i) {
        const QChar c = format.at(i);
        if (c == QLatin1Char('"'))
            quoted = !quoted;
        if (!quoted && c == QLatin1Char('\\') && i + 1 < format.size()) {
            cur += c;
            cur += format.at(++i);
            continue;
        }
        if (!quoted && c == QLatin1Char(';')) {
            out << cur;
            cur.clear();
            continue;
        }
        cur += c;
    }
    out << cur;
    return out;
}

enum class Kind { Number, Date, Text };

// What a custom format formats, from the characters outside quotes and escapes.
Kind kindOf(const QString &format)
{
    bool quoted = false;
    Kind kind = Kind::Number;
    for (qsizetype i = 0; i < format.size(); ++i) {
        const QChar c = format.at(i);
        if (c == QLatin1Char('"')) {
            quoted = !quoted;
            continue;
        }
        if (quoted)
            continue;
        if (c == QLatin1Char('\\')) {
            ++i;
            continue;
        }
        const QChar l = c.toLower();
        if (l == QLatin1Char('e') && i + 1 < format.size()
            && (format.at(i + 1) == QLatin1Char('+') || format.at(i + 1) == QLatin1Char('-'))) {
            ++i;
            continue;
        }
        if (QStringLiteral("dmyhnswqct").contains(l)
            || format.mid(i, 5).compare(QLatin1String("AM/PM"), Qt::CaseInsensitive) == 0
            || format.mid(i, 3).compare(QLatin1String("A/P"), Qt::CaseInsensitive) == 0)
            return Kind::Date;
        if (QStringLiteral("@&<>!").contains(c))
            kind = Kind::Text;
    }
    return kind;
}

// --- numbers -------------------------------------------------------------------------

// |x| rounded half away from zero to `decimals` places on its 15-digit decimal text: the
// integer digits (without leading zeros, "" for zero) and exactly `decimals` fraction digits.
void decimalParts(double ax, int decimals, QString *intPart, QString *fracPart)
{
    intPart->clear();
    fracPart->clear();
    if (ax == 0 || !std::isfinite(ax)) {
        *fracPart = QString(decimals, QLatin1Char('0'));
        return;
    }
    const QString e = QString::number(ax, 'e', 14); // d.dddddddddddddde+XX
    QString digits = e.left(1) + e.mid(2, 14);
    int exp10 = e.mid(e.indexOf(QLatin1Char('e')) + 1).toInt(); // value = 0.DIGITS * 10^(exp10+1)
    int pointAt = exp10 + 1; // digits before the decimal point
    const int keep = pointAt + decimals;
    if (keep < 0) {
        *fracPart = QString(decimals, QLatin1Char('0'));
        return;
    }
    if (keep < digits.size()) {
        const bool up = digits.at(keep) >= QLatin1Char('5');
        digits.truncate(keep);
        if (up) {
            int i = keep - 1;
            while (i >= 0 && digits.at(i) == QLatin1Char('9')) {
                digits[i] = QLatin1Char('0');
                --i;
            }
            if (i >= 0) {
                digits[i] = QChar(digits.at(i).unicode() + 1);
            } else {
                digits.prepend(QLatin1Char('1'));
                ++pointAt;
            }
        }
    }
    // Place the digits around the decimal point.
    if (pointAt <= 0) {
        digits = QString(-pointAt, QLatin1Char('0')) + digits;
        pointAt = 0;
    }
    while (digits.size() < pointAt + decimals)
        digits += QLatin1Char('0');
    QString ip = digits.left(pointAt);
    while (ip.startsWith(QLatin1Char('0')))
        ip.remove(0, 1);
    *intPart = ip;
    *fracPart = digits.mid(pointAt, decimals);
}

struct NumToken
{
    enum Type { Zero, Hash, Point, Comma, Percent, Exp, Literal } type;
    QString text; // Literal: the text; Exp: "E+", "e-", ...
};

std::vector<NumToken> numberTokens(const QString &s)
{
    std::vector<NumToken> out;
    for (qsizetype i = 0; i < s.size(); ++i) {
        const QChar c = s.at(i);
        if (c == QLatin1Char('"')) {
            const qsizetype end = s.indexOf(QLatin1Char('"'), i + 1);
            const qsizetype stop = end < 0 ? s.size() : end;
            out.push_back({ NumToken::Literal, s.mid(i + 1, stop - i - 1) });
            i = stop;
        } else if (c == QLatin1Char('\\')) {
            if (i + 1 < s.size())
                out.push_back({ NumToken::Literal, s.mid(++i, 1) });
        } else if (c == QLatin1Char('0')) {
            out.push_back({ NumToken::Zero, {} });
        } else if (c == QLatin1Char('#')) {
            out.push_back({ NumToken::Hash, {} });
        } else if (c == QLatin1Char('.')) {
            out.push_back({ NumToken::Point, {} });
        } else if (c == QLatin1Char(',')) {
            out.push_back({ NumToken::Comma, {} });
        } else if (c == QLatin1Char('%')) {
            out.push_back({ NumToken::Percent, {} });
        } else if ((c == QLatin1Char('E') || c == QLatin1Char('e')) && i + 1 < s.size()
                   && (s.at(i + 1) == QLatin1Char('+') || s.at(i + 1) == QLatin1Char('-'))) {
            out.push_back({ NumToken::Exp, s.mid(i, 2) });
            ++i;
        } else {
            out.push_back({ NumToken::Literal, QString(c) });
        }
    }
    // E+ and E- ask for scientific notation only with a digit placeholder after them.
    bool placeholderAfter = false;
    for (size_t i = out.size(); i-- > 0;) {
        NumToken &token = out[i];
        if (token.type == NumToken::Zero || token.type == NumToken::Hash)
            placeholderAfter = true;
        else if (token.type == NumToken::Exp && !placeholderAfter)
            token.type = NumToken::Literal;
    }
    return out;
}

bool isDigitToken(const NumToken &t)
{
    return t.type == NumToken::Zero || t.type == NumToken::Hash;
}

QString groupThousands(const QString &digits)
{
    QString out;
    const qsizetype n = digits.size();
    for (qsizetype i = 0; i < n; ++i) {
        if (i > 0 && (n - i) % 3 == 0)
            out += QLatin1Char(',');
        out += digits.at(i);
    }
    return out;
}

// A number section read once: its tokens and where the integer part, the decimal point and
// the exponent are.
struct NumberLayout
{
    std::vector<NumToken> t;
    size_t point = 0; // index of the decimal point, t.size() when none
    size_t exp = 0; // index of E+/E-, t.size() when none; the mantissa is [0, exp)
    size_t intEnd = 0; // the integer part is [0, intEnd)
    size_t firstIntDigit = 0; // t.size() when the integer part has no placeholder
    bool grouping = false;
    int scaleCommas = 0;
    int percents = 0;
    int intZeros = 0, decimals = 0, expZeros = 0;
};

NumberLayout layoutOf(const QString &section)
{
    NumberLayout l;
    l.t = numberTokens(section);
    std::vector<NumToken> &t = l.t;
    const size_t n = t.size();
    l.point = l.exp = n;
    for (size_t i = 0; i < n; ++i) {
        if (t[i].type == NumToken::Point && l.point == n && l.exp == n)
            l.point = i;
        if (t[i].type == NumToken::Exp && l.exp == n)
            l.exp = i;
    }
    l.intEnd = std::min(l.point, l.exp);
    size_t lastIntDigit = n;
    l.firstIntDigit = n;
    for (size_t i = 0; i < l.intEnd; ++i) {
        if (isDigitToken(t[i])) {
            if (l.firstIntDigit == n)
                l.firstIntDigit = i;
            lastIntDigit = i;
        }
    }
    // Commas: between two integer placeholders they group thousands; right after the last
    // integer placeholder each one divides by 1,000; anywhere else they are literal.
    if (lastIntDigit != n) {
        for (size_t i = l.firstIntDigit + 1; i < lastIntDigit; ++i) {
            if (t[i].type == NumToken::Comma) {
                l.grouping = true;
                t[i] = { NumToken::Literal, {} };
            }
        }
        for (size_t i = lastIntDigit + 1; i < l.intEnd && t[i].type == NumToken::Comma; ++i) {
            ++l.scaleCommas;
            t[i] = { NumToken::Literal, {} };
        }
    }
    for (size_t i = 0; i < n; ++i) {
        if (t[i].type == NumToken::Comma)
            t[i] = { NumToken::Literal, QStringLiteral(",") };
        l.percents += t[i].type == NumToken::Percent;
        if (!isDigitToken(t[i]))
            continue;
        if (i < l.intEnd)
            l.intZeros += t[i].type == NumToken::Zero;
        else if (i < l.exp)
            ++l.decimals;
        else
            l.expZeros += t[i].type == NumToken::Zero;
    }
    return l;
}

// The integer digits each placeholder shows: padded to the '0' placeholders and dealt out
// right to left, the leftmost placeholder taking any digits left over; with grouping the
// whole grouped number stands at the first placeholder.
std::vector<QString> integerTexts(const NumberLayout &l, QString ip)
{
    std::vector<QString> out(l.t.size());
    while (ip.size() < l.intZeros)
        ip.prepend(QLatin1Char('0'));
    if (l.firstIntDigit == l.t.size())
        return out;
    if (l.grouping) {
        out[l.firstIntDigit] = groupThousands(ip);
        return out;
    }
    qsizetype left = ip.size();
    for (size_t i = l.intEnd; i-- > 0;) {
        if (!isDigitToken(l.t[i]))
            continue;
        if (i == l.firstIntDigit) {
            out[i] = ip.left(left);
            left = 0;
        } else if (left > 0) {
            out[i] = ip.mid(left - 1, 1);
            --left;
        }
    }
    return out;
}

// Fraction digits left to right; a '#' shows its digit only when a later one is not 0.
std::vector<QString> fractionTexts(const NumberLayout &l, const QString &fp)
{
    std::vector<QString> out(l.t.size());
    int k = 0;
    for (size_t i = l.point + 1; i < l.exp && l.point < l.t.size(); ++i) {
        if (!isDigitToken(l.t[i]))
            continue;
        bool laterNonZero = false;
        for (int j = k; j < fp.size(); ++j)
            laterNonZero = laterNonZero || fp.at(j) != QLatin1Char('0');
        if (l.t[i].type == NumToken::Zero || laterNonZero)
            out[i] = fp.mid(k, 1);
        ++k;
    }
    return out;
}

// "E+03", "e-4", "E05": the sign as the token asks, the digits padded to its '0's.
QString exponentText(const NumToken &tok, int exponent, int zeros)
{
    QString digits = QString::number(std::abs(exponent));
    while (digits.size() < zeros)
        digits.prepend(QLatin1Char('0'));
    QString out = tok.text.left(1);
    if (exponent < 0)
        out += QLatin1Char('-');
    else if (tok.text.at(1) == QLatin1Char('+'))
        out += QLatin1Char('+');
    return out + digits;
}

// One number section applied to |x|; `negative` puts a minus sign in front when the value
// does not round to zero.
QString formatNumber(double x, const QString &section, bool negative)
{
    const NumberLayout l = layoutOf(section);
    const size_t n = l.t.size();
    x *= std::pow(100.0, l.percents);
    x /= std::pow(1000.0, l.scaleCommas);
    int exponent = 0;
    if (l.exp != n && x != 0) {
        // As many integer digits as the mantissa has '0' placeholders, at least one.
        const int lead = std::max(1, l.intZeros);
        exponent = int(std::floor(std::log10(x))) - (lead - 1);
        QString ip, fp;
        decimalParts(x / std::pow(10.0, exponent), l.decimals, &ip, &fp);
        if (ip.size() > lead) // rounding carried into a new digit
            ++exponent;
        x /= std::pow(10.0, exponent);
    }
    QString ip, fp;
    decimalParts(x, l.decimals, &ip, &fp);
    const bool allZero = ip.isEmpty() && !fp.contains(QRegularExpression(QStringLiteral("[1-9]")));
    const std::vector<QString> intText = integerTexts(l, ip);
    const std::vector<QString> fracText = fractionTexts(l, fp);

    QString out;
    for (size_t i = 0; i < n; ++i) {
        const NumToken &tok = l.t[i];
        switch (tok.type) {
        case NumToken::Zero:
        case NumToken::Hash:
            if (i < l.intEnd)
                out += intText[i];
            else if (i < l.exp)
                out += fracText[i];
            break;
        case NumToken::Point:
            if (i == l.point) {
                if (l.firstIntDigit == n)
                    out += ip; // ".00" still shows the integer digits
                out += QLatin1Char('.');
            }
            break;
        case NumToken::Percent: out += QLatin1Char('%'); break;
        case NumToken::Exp:
            // The exponent's placeholders are written here; literals after them follow.
            out += exponentText(tok, exponent, l.expZeros);
            for (size_t k = l.exp + 1; k < n; ++k) {
                if (!isDigitToken(l.t[k]))
                    out += l.t[k].text;
            }
            i = n;
            break;
        case NumToken::Literal:
        case NumToken::Comma: out += tok.text; break;
        }
    }
    return (negative && !allZero) ? QLatin1Char('-') + out : out;
}

// The Null section: only its literal text.
QString literalsOf(const QString &section)
{
    QString out;
    for (const NumToken &tok : numberTokens(section)) {
        if (tok.type == NumToken::Literal || tok.type == NumToken::Comma)
            out += tok.type == NumToken::Comma ? QStringLiteral(",") : tok.text;
    }
    return out;
}

// Applies the right section of a custom number format; nullopt for Null without a section.
std::optional<QString> customNumber(const QVariant &value, const QStringList &secs)
{
    auto section = [&secs](int i) {
        return i < secs.size() && !secs.at(i).isEmpty() ? std::optional<QString>(secs.at(i))
                                                        : std::nullopt;
    };
    if (isNull(value)) {
        if (std::optional<QString> s = section(3))
            return literalsOf(*s);
        return std::nullopt;
    }
    const double x = toNumber(value, 0).value();
    if (!std::isfinite(x))
        return toText(value);
    if (x < 0) {
        if (std::optional<QString> s = section(1))
            return formatNumber(-x, *s, false);
        return formatNumber(-x, secs.at(0), true);
    }
    if (x == 0) {
        if (std::optional<QString> s = section(2))
            return formatNumber(0, *s, false);
    }
    return formatNumber(x, secs.at(0), false);
}

// --- dates ---------------------------------------------------------------------------

int weekdayFrom(const QDate &d, int first)
{
    return (d.dayOfWeek() % 7 + 1 - first + 7) % 7 + 1;
}

int weekOfYear(const QDate &d, const FormatOptions &o)
{
    auto weekOneStart = [&](int year) {
        const QDate jan1(year, 1, 1);
        const int wd = weekdayFrom(jan1, o.firstDayOfWeek);
        QDate start = jan1.addDays(-(wd - 1));
        if ((o.firstWeekOfYear == 2 && 8 - wd < 4) || (o.firstWeekOfYear == 3 && wd != 1))
            start = start.addDays(7);
        return start;
    };
    QDate start = weekOneStart(d.year());
    if (d < start)
        start = weekOneStart(d.year() - 1);
    return int(start.daysTo(d) / 7) + 1;
}

QString customDate(const QDateTime &dt, const QString &f, const FormatOptions &o);

QString twoDigits(int v)
{
    return QStringLiteral("%1").arg(v, 2, 10, QLatin1Char('0'));
}

// One run of a date letter (d, dd, ..., yyyy, h, nn, ...) as text; `run` is the run's
// length and comes back as the number of letters used. Nullopt for a letter that is no
// date token (it is shown as it is).
std::optional<QString> dateToken(QChar letter, qsizetype *run, const QDateTime &dt,
                                 const FormatOptions &o, bool twelve, bool afterHour)
{
    const QDate d = dt.date();
    const QTime t = dt.time();
    const char l = char(letter.toLower().unicode());
    qsizetype &r = *run;
    switch (l) {
    case 'd':
        switch (r = std::min<qsizetype>(r, 6)) {
        case 1: return QString::number(d.day());
        case 2: return twoDigits(d.day());
        case 3: return QLatin1String(kDayNames[d.dayOfWeek() % 7]).left(3);
        case 4: return QLatin1String(kDayNames[d.dayOfWeek() % 7]);
        case 5: return customDate(dt, QStringLiteral("m/d/yyyy"), o);
        default: return customDate(dt, QStringLiteral("dddd, mmmm d, yyyy"), o);
        }
    case 'm':
        if (afterHour && r <= 2) // right after h or hh, m is the minute
            return r == 1 ? QString::number(t.minute()) : twoDigits(t.minute());
        switch (r = std::min<qsizetype>(r, 4)) {
        case 1: return QString::number(d.month());
        case 2: return twoDigits(d.month());
        case 3: return QLatin1String(kMonthNames[d.month() - 1]).left(3);
        default: return QLatin1String(kMonthNames[d.month() - 1]);
        }
    case 'y':
        if (r == 1)
            return QString::number(d.dayOfYear());
        return r == 2 ? twoDigits(d.year() % 100) : QString::number(d.year());
    case 'w':
        r = std::min<qsizetype>(r, 2);
        return QString::number(r == 1 ? weekdayFrom(d, o.firstDayOfWeek) : weekOfYear(d, o));
    case 'q': r = 1; return QString::number((d.month() - 1) / 3 + 1);
    case 'h': {
        r = std::min<qsizetype>(r, 2);
        int h = t.hour();
        if (twelve)
            h = h % 12 == 0 ? 12 : h % 12;
        return r == 2 ? twoDigits(h) : QString::number(h);
    }
    case 'n':
        r = std::min<qsizetype>(r, 2);
        return r == 1 ? QString::number(t.minute()) : twoDigits(t.minute());
    case 's':
        r = std::min<qsizetype>(r, 2);
        return r == 1 ? QString::number(t.second()) : twoDigits(t.second());
    case 'c': r = 1; return generalDateText(dt);
    case 't':
        if (r < 5)
            break;
        r = 5;
        return customDate(dt, QStringLiteral("h:nn:ss AM/PM"), o);
    default: break;
    }
    r = 1;
    return std::nullopt;
}

// The AM/PM markers at `i` (AM/PM, am/pm, A/P, a/p, AMPM); its length, 0 when none.
qsizetype amPmMarker(const QString &f, qsizetype i, const QTime &t, QString *out)
{
    const bool am = t.hour() < 12;
    if (f.mid(i, 5).compare(QLatin1String("AM/PM"), Qt::CaseInsensitive) == 0) {
        *out += am ? f.mid(i, 2) : f.mid(i + 3, 2);
        return 5;
    }
    if (f.mid(i, 4).compare(QLatin1String("AMPM"), Qt::CaseInsensitive) == 0) {
        *out += am ? QStringLiteral("AM") : QStringLiteral("PM");
        return 4;
    }
    if (f.mid(i, 3).compare(QLatin1String("A/P"), Qt::CaseInsensitive) == 0) {
        *out += am ? f.at(i) : f.at(i + 2);
        return 3;
    }
    return 0;
}

QString customDate(const QDateTime &dt, const QString &f, const FormatOptions &o)
{
    bool twelve = false;
    for (const char *ampm : { "AM/PM", "A/P", "AMPM" })
        twelve = twelve || f.contains(QLatin1String(ampm), Qt::CaseInsensitive);
    QString out;
    bool afterHour = false; // an 'm' right after h or hh is the minute
    for (qsizetype i = 0; i < f.size();) {
        const QChar c = f.at(i);
        if (c == QLatin1Char('"')) {
            const qsizetype end = f.indexOf(QLatin1Char('"'), i + 1);
            const qsizetype stop = end < 0 ? f.size() : end;
            out += f.mid(i + 1, stop - i - 1);
            i = stop + 1;
            continue;
        }
        if (c == QLatin1Char('\\')) {
            out += f.mid(i + 1, 1);
            i += 2;
            continue;
        }
        if (const qsizetype marker = amPmMarker(f, i, dt.time(), &out)) {
            i += marker;
            continue;
        }
        qsizetype run = 1;
        while (i + run < f.size() && f.at(i + run).toLower() == c.toLower())
            ++run;
        if (std::optional<QString> text = dateToken(c, &run, dt, o, twelve, afterHour)) {
            out += *text;
            afterHour = c.toLower() == QLatin1Char('h');
        } else {
            out += c;
        }
        i += run;
    }
    return out;
}

// --- text ----------------------------------------------------------------------------

QString customText(const QString &text, const QString &f)
{
    struct Piece
    {
        bool placeholder;
        bool ampersand;
        QString literal;
    };
    std::vector<Piece> pieces;
    bool lower = false, upper = false, leftToRight = false;
    for (qsizetype i = 0; i < f.size(); ++i) {
        const QChar c = f.at(i);
        if (c == QLatin1Char('"')) {
            const qsizetype end = f.indexOf(QLatin1Char('"'), i + 1);
            const qsizetype stop = end < 0 ? f.size() : end;
            pieces.push_back({ false, false, f.mid(i + 1, stop - i - 1) });
            i = stop;
        } else if (c == QLatin1Char('\\')) {
            if (i + 1 < f.size())
                pieces.push_back({ false, false, f.mid(++i, 1) });
        } else if (c == QLatin1Char('@') || c == QLatin1Char('&')) {
            pieces.push_back({ true, c == QLatin1Char('&'), {} });
        } else if (c == QLatin1Char('<')) {
            lower = true;
        } else if (c == QLatin1Char('>')) {
            upper = true;
        } else if (c == QLatin1Char('!')) {
            leftToRight = true;
        } else {
            pieces.push_back({ false, false, QString(c) });
        }
    }
    QString s = upper ? text.toUpper() : lower ? text.toLower() : text;
    qsizetype places = 0;
    for (const Piece &p : pieces)
        places += p.placeholder;
    if (places == 0) {
        // Only case or direction marks ("<", ">"): the whole text, after any literals.
        QString out;
        for (const Piece &p : pieces)
            out += p.literal;
        return out + s;
    }
    // Placeholders fill right to left (left to right after '!'); characters beyond them go
    // before the first placeholder (after the last one with '!').
    std::vector<QString> fill(pieces.size());
    if (leftToRight) {
        qsizetype k = 0, seen = 0;
        for (size_t i = 0; i < pieces.size(); ++i) {
            if (!pieces[i].placeholder)
                continue;
            ++seen;
            if (k < s.size()) {
                fill[i] = seen == places ? s.mid(k) : s.mid(k, 1);
                k = seen == places ? s.size() : k + 1;
            } else if (!pieces[i].ampersand) {
                fill[i] = QStringLiteral(" ");
            }
        }
    } else {
        qsizetype k = s.size(), seen = 0;
        for (size_t i = pieces.size(); i-- > 0;) {
            if (!pieces[i].placeholder)
                continue;
            ++seen;
            if (k > 0) {
                fill[i] = seen == places ? s.left(k) : s.mid(k - 1, 1);
                k = seen == places ? 0 : k - 1;
            } else if (!pieces[i].ampersand) {
                fill[i] = QStringLiteral(" ");
            }
        }
    }
    QString out;
    for (size_t i = 0; i < pieces.size(); ++i)
        out += pieces[i].placeholder ? fill[i] : pieces[i].literal;
    return out;
}

// --- named formats -------------------------------------------------------------------

const QDateTime *asDate(const QVariant &v, QDateTime *store)
{
    *store = fn::valueAsDate(v);
    return store->isValid() ? store : nullptr;
}

std::optional<QString> named(const QVariant &value, const QString &name, const FormatOptions &o,
                             bool *handled)
{
    *handled = true;
    const QString n = name.trimmed().toLower();
    static const struct
    {
        const char *name;
        const char *custom;
    } numberFormats[] = { { "currency", "$#,##0.00;($#,##0.00)" },
                          { "fixed", "0.00" },
                          { "standard", "#,##0.00" },
                          { "percent", "0.00%" },
                          { "scientific", "0.00E+00" } };
    static const struct
    {
        const char *name;
        const char *custom;
    } dateFormats[] = { { "long date", "dddd, mmmm d, yyyy" }, { "medium date", "dd-mmm-yy" },
                        { "short date", "m/d/yyyy" },          { "long time", "h:nn:ss AM/PM" },
                        { "medium time", "hh:nn AM/PM" },      { "short time", "hh:nn" } };
    const bool numeric = !isNull(value) && toNumber(value, 0).isOk();
    for (const auto &f : numberFormats) {
        if (n != QLatin1String(f.name))
            continue;
        if (isNull(value))
            return std::nullopt;
        if (!numeric)
            return toText(value);
        return customNumber(value, sections(QLatin1String(f.custom)));
    }
    for (const auto &f : dateFormats) {
        if (n != QLatin1String(f.name))
            continue;
        if (isNull(value))
            return std::nullopt;
        QDateTime store;
        const QDateTime *dt = asDate(value, &store);
        return dt ? customDate(*dt, QLatin1String(f.custom), o) : toText(value);
    }
    if (n == QLatin1String("general number")) {
        if (isNull(value))
            return std::nullopt;
        return numeric ? numberText(toNumber(value, 0).value()) : toText(value);
    }
    if (n == QLatin1String("general date")) {
        if (isNull(value))
            return std::nullopt;
        QDateTime store;
        const QDateTime *dt = asDate(value, &store);
        return dt ? generalDateText(*dt) : toText(value);
    }
    static const char *const truth[][3] = { { "yes/no", "Yes", "No" },
                                            { "true/false", "True", "False" },
                                            { "on/off", "On", "Off" } };
    for (const auto &t : truth) {
        if (n != QLatin1String(t[0]))
            continue;
        if (isNull(value))
            return std::nullopt;
        if (!numeric)
            return toText(value);
        return QLatin1String(toNumber(value, 0).value() != 0 ? t[1] : t[2]);
    }
    *handled = false;
    return std::nullopt;
}

// Format without a format: numbers plainly, dates as CStr writes them.
std::optional<QString> general(const QVariant &value)
{
    if (isNull(value))
        return std::nullopt;
    if (isDate(value))
        return generalDateText(toDateTime(value));
    return toText(value);
}

} // namespace

QString generalDateText(const QDateTime &dt)
{
    const QDate d = dt.date();
    const QTime t = dt.time();
    const bool timeOnly = d == fn::epochDate();
    QString s;
    if (!timeOnly)
        s = QStringLiteral("%1/%2/%3").arg(d.month()).arg(d.day()).arg(d.year());
    if (timeOnly || t != QTime(0, 0)) {
        if (!s.isEmpty())
            s += QLatin1Char(' ');
        s += t.toString(QStringLiteral("h:mm:ss AP"));
    }
    return s;
}

std::optional<QString> formatJet(const QVariant &value, const QString &format,
                                 const FormatOptions &options)
{
    if (format.isEmpty())
        return general(value);
    bool handled = false;
    std::optional<QString> n = named(value, format, options, &handled);
    if (handled)
        return n;
    const QStringList secs = sections(format);
    switch (kindOf(format)) {
    case Kind::Date: {
        if (isNull(value))
            return std::nullopt;
        QDateTime store;
        const QDateTime *dt = asDate(value, &store);
        return dt ? customDate(*dt, secs.at(0), options) : toText(value);
    }
    case Kind::Text: {
        const QString text = toText(value);
        if (isNull(value) || text.isEmpty()) {
            if (secs.size() > 1)
                return customText(QString(), secs.at(1));
            if (isNull(value))
                return std::nullopt;
        }
        return customText(text, secs.at(0));
    }
    case Kind::Number:
        if (!isNull(value) && !toNumber(value, 0).isOk())
            return toText(value); // text that is no number is shown as it is
        return customNumber(value, secs);
    }
    return std::nullopt;
}

namespace {

using R = Result<QVariant>;

R formatCall(const QVariant *a, int n, int pos, bool dollar)
{
    const char *name = dollar ? "Format$" : "Format";
    QString format;
    if (n > 1 && !isNull(a[1]))
        format = toText(a[1]);
    FormatOptions o;
    if (n > 2 && !isNull(a[2])) {
        Result<qint64> f = fn::wholeArg(name, a[2], 3, pos);
        if (!f.isOk())
            return f.status();
        if (f.value() < 0 || f.value() > 7)
            return fn::badArgument(name, pos, QStringLiteral("first day of week must be 0 to 7"));
        o.firstDayOfWeek = f.value() == 0 ? 1 : int(f.value());
    }
    if (n > 3 && !isNull(a[3])) {
        Result<qint64> w = fn::wholeArg(name, a[3], 4, pos);
        if (!w.isOk())
            return w.status();
        if (w.value() < 0 || w.value() > 3)
            return fn::badArgument(name, pos, QStringLiteral("first week of year must be 0 to 3"));
        o.firstWeekOfYear = w.value() == 0 ? 1 : int(w.value());
    }
    std::optional<QString> s = formatJet(a[0], format, o);
    if (!s)
        return dollar ? QVariant(QString()) : QVariant();
    return QVariant(*s);
}

R format(const QVariant *a, int n, TextCompare, int pos)
{
    return formatCall(a, n, pos, false);
}
R formatS(const QVariant *a, int n, TextCompare, int pos)
{
    return formatCall(a, n, pos, true);
}

const FunctionDef kFormat[] = {
    { "FORMAT", 1, 4, format },
    { "FORMAT$", 1, 4, formatS },
};

} // namespace

namespace fn {

std::span<const FunctionDef> formatFunctions()
{
    return kFormat;
}

} // namespace fn

} // namespace plx::jet
