// services/recordsource/jet/jetformat.cpp: Format and Format$.
//
// Numbers are rounded half away from zero on their 15-digit decimal text, as Format shows
// them (Format(2.5, "0") is 3, Format(1.005, "0.00") is 1.01), which differs from Round's
// half to even on purpose.
#include "services/recordsource/jet/jetformat.h"

#include "services/recordsource/jet/functionlibrary.h"
#include "services/recordsource/jet/values.h"

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

// One number section applied to |x|; `negative` puts a minus sign in front when the value
// does not round to zero.
QString formatNumber(double x, const QString &section, bool negative)
{
    std::vector<NumToken> t = numberTokens(section);
    const size_t n = t.size();
    size_t point = n, exp = n;
    for (size_t i = 0; i < n; ++i) {
        if (t[i].type == NumToken::Point && point == n && exp == n)
            point = i;
        if (t[i].type == NumToken::Exp && exp == n)
            exp = i;
    }
    const size_t mantissaEnd = exp; // tokens of the mantissa: [0, mantissaEnd)
    const size_t intEnd = std::min(point, mantissaEnd);
    // Commas: between two integer placeholders they group thousands; right after the last
    // integer placeholder each one divides by 1,000.
    size_t firstIntDigit = n, lastIntDigit = n;
    for (size_t i = 0; i < intEnd; ++i) {
        if (isDigitToken(t[i])) {
            if (firstIntDigit == n)
                firstIntDigit = i;
            lastIntDigit = i;
        }
    }
    bool grouping = false;
    int scaleCommas = 0;
    if (lastIntDigit != n) {
        for (size_t i = firstIntDigit + 1; i < lastIntDigit; ++i) {
            if (t[i].type == NumToken::Comma) {
                grouping = true;
                t[i] = { NumToken::Literal, {} };
            }
        }
        for (size_t i = lastIntDigit + 1; i < intEnd && t[i].type == NumToken::Comma; ++i) {
            ++scaleCommas;
            t[i] = { NumToken::Literal, {} };
        }
    }
    for (NumToken &tok : t) {
        if (tok.type == NumToken::Comma)
            tok = { NumToken::Literal, QStringLiteral(",") };
        if (tok.type == NumToken::Percent)
            x *= 100;
    }
    x /= std::pow(1000.0, scaleCommas);

    int intZeros = 0, decimals = 0, expZeros = 0;
    for (size_t i = 0; i < n; ++i) {
        if (!isDigitToken(t[i]))
            continue;
        if (i < intEnd) {
            intZeros += t[i].type == NumToken::Zero;
        } else if (i < mantissaEnd) {
            ++decimals;
        } else {
            expZeros += t[i].type == NumToken::Zero;
        }
    }

    int exponent = 0;
    if (exp != n && x != 0) {
        // As many integer digits as the mantissa has '0' placeholders, at least one.
        const int lead = std::max(1, intZeros);
        exponent = int(std::floor(std::log10(x))) - (lead - 1);
        QString ip, fp;
        decimalParts(x / std::pow(10.0, exponent), decimals, &ip, &fp);
        if (ip.size() > lead) // rounding carried into a new digit
            ++exponent;
        x /= std::pow(10.0, exponent);
    }
    QString ip, fp;
    decimalParts(x, decimals, &ip, &fp);
    const bool allZero = ip.isEmpty() && !fp.contains(QRegularExpression(QStringLiteral("[1-9]")))
        && (exp == n || x == 0);

    // Integer digits, padded to the '0' placeholders, are dealt out right to left; the
    // leftmost placeholder takes any digits left over.
    while (ip.size() < intZeros)
        ip.prepend(QLatin1Char('0'));
    std::vector<QString> intText(n);
    if (grouping) {
        if (firstIntDigit != n)
            intText[firstIntDigit] = groupThousands(ip);
    } else {
        qsizetype left = ip.size();
        for (size_t i = intEnd; i-- > 0;) {
            if (!isDigitToken(t[i]))
                continue;
            if (i == firstIntDigit) {
                intText[i] = ip.left(left);
                left = 0;
            } else if (left > 0) {
                intText[i] = ip.mid(left - 1, 1);
                --left;
            }
        }
    }
    // Fraction digits left to right; a '#' shows its digit only when a later one is not 0.
    std::vector<QString> fracText(n);
    {
        int k = 0;
        for (size_t i = point + 1; i < mantissaEnd && point < n; ++i) {
            if (!isDigitToken(t[i]))
                continue;
            bool laterNonZero = false;
            for (int j = k; j < fp.size(); ++j)
                laterNonZero = laterNonZero || fp.at(j) != QLatin1Char('0');
            if (t[i].type == NumToken::Zero || laterNonZero)
                fracText[i] = fp.mid(k, 1);
            ++k;
        }
    }

    QString out;
    bool intWritten = false;
    for (size_t i = 0; i < n; ++i) {
        const NumToken &tok = t[i];
        switch (tok.type) {
        case NumToken::Zero:
        case NumToken::Hash:
            if (i < intEnd) {
                out += intText[i];
                intWritten = true;
            } else if (i < mantissaEnd) {
                out += fracText[i];
            }
            break;
        case NumToken::Point:
            if (i == point) {
                if (!intWritten && firstIntDigit == n)
                    out += ip; // ".00" still shows the integer digits
                out += QLatin1Char('.');
            }
            break;
        case NumToken::Percent: out += QLatin1Char('%'); break;
        case NumToken::Exp: {
            QString digits = QString::number(std::abs(exponent));
            while (digits.size() < expZeros)
                digits.prepend(QLatin1Char('0'));
            out += tok.text.at(0);
            if (exponent < 0)
                out += QLatin1Char('-');
            else if (tok.text.at(1) == QLatin1Char('+'))
                out += QLatin1Char('+');
            out += digits;
            i = n; // the exponent's placeholders are written here
            for (size_t k = exp + 1; k < t.size(); ++k) {
                if (!isDigitToken(t[k]))
                    out += t[k].text;
            }
            break;
        }
        case NumToken::Literal:
        case NumToken::Comma: out += tok.text; break;
        }
    }
    return (negative && !allZero) ? QLatin1Char('-') + out : out;
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
            return formatNumber(0, *s, false).remove(QRegularExpression(QStringLiteral("\\d")));
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

QString customDate(const QDateTime &dt, const QString &f, const FormatOptions &o)
{
    const QDate d = dt.date();
    const QTime t = dt.time();
    bool twelve = false;
    for (const char *ampm : { "AM/PM", "A/P", "AMPM" })
        twelve = twelve || f.contains(QLatin1String(ampm), Qt::CaseInsensitive);
    auto hour = [&](bool two) {
        int h = t.hour();
        if (twelve)
            h = h % 12 == 0 ? 12 : h % 12;
        return two ? QStringLiteral("%1").arg(h, 2, 10, QLatin1Char('0')) : QString::number(h);
    };
    auto two = [](int v) { return QStringLiteral("%1").arg(v, 2, 10, QLatin1Char('0')); };

    QString out;
    bool afterHour = false; // an 'm' right after h or hh is the minute
    for (qsizetype i = 0; i < f.size();) {
        const QChar c = f.at(i);
        const QChar l = c.toLower();
        qsizetype run = 1;
        while (i + run < f.size() && f.at(i + run).toLower() == l)
            ++run;
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
        if (f.mid(i, 5).compare(QLatin1String("AM/PM"), Qt::CaseInsensitive) == 0) {
            const QString s = t.hour() < 12 ? f.mid(i, 2) : f.mid(i + 3, 2);
            out += s;
            i += 5;
            continue;
        }
        if (f.mid(i, 4).compare(QLatin1String("AMPM"), Qt::CaseInsensitive) == 0) {
            out += t.hour() < 12 ? QStringLiteral("AM") : QStringLiteral("PM");
            i += 4;
            continue;
        }
        if (f.mid(i, 3).compare(QLatin1String("A/P"), Qt::CaseInsensitive) == 0) {
            out += t.hour() < 12 ? f.at(i) : f.at(i + 2);
            i += 3;
            continue;
        }
        bool token = true;
        if (l == QLatin1Char('d')) {
            switch (std::min<qsizetype>(run, 6)) {
            case 1: out += QString::number(d.day()); break;
            case 2: out += two(d.day()); break;
            case 3: out += QLatin1String(kDayNames[d.dayOfWeek() % 7]).left(3); break;
            case 4: out += QLatin1String(kDayNames[d.dayOfWeek() % 7]); break;
            case 5: out += customDate(dt, QStringLiteral("m/d/yyyy"), o); break;
            default: out += customDate(dt, QStringLiteral("dddd, mmmm d, yyyy"), o); break;
            }
        } else if (l == QLatin1Char('m')) {
            if (afterHour && run <= 2) {
                out += run == 1 ? QString::number(t.minute()) : two(t.minute());
            } else {
                switch (std::min<qsizetype>(run, 4)) {
                case 1: out += QString::number(d.month()); break;
                case 2: out += two(d.month()); break;
                case 3: out += QLatin1String(kMonthNames[d.month() - 1]).left(3); break;
                default: out += QLatin1String(kMonthNames[d.month() - 1]); break;
                }
            }
        } else if (l == QLatin1Char('y')) {
            if (run == 1)
                out += QString::number(d.dayOfYear());
            else if (run == 2)
                out += two(d.year() % 100);
            else
                out += QString::number(d.year());
        } else if (l == QLatin1Char('w')) {
            out += QString::number(run == 1 ? weekdayFrom(d, o.firstDayOfWeek) : weekOfYear(d, o));
            run = std::min<qsizetype>(run, 2);
        } else if (l == QLatin1Char('q')) {
            out += QString::number((d.month() - 1) / 3 + 1);
            run = 1;
        } else if (l == QLatin1Char('h')) {
            run = std::min<qsizetype>(run, 2);
            out += hour(run == 2);
        } else if (l == QLatin1Char('n')) {
            run = std::min<qsizetype>(run, 2);
            out += run == 1 ? QString::number(t.minute()) : two(t.minute());
        } else if (l == QLatin1Char('s')) {
            run = std::min<qsizetype>(run, 2);
            out += run == 1 ? QString::number(t.second()) : two(t.second());
        } else if (l == QLatin1Char('c')) {
            out += generalDateText(dt);
            run = 1;
        } else if (l == QLatin1Char('t') && run >= 5) {
            out += customDate(dt, QStringLiteral("h:nn:ss AM/PM"), o);
            run = 5;
        } else {
            token = false;
            out += c;
            run = 1;
        }
        if (token)
            afterHour = l == QLatin1Char('h');
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
