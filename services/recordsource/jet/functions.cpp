// services/recordsource/jet/functions.cpp: UCase, Left, Mid, InStr, Chr, Val, CLng and the
// rest, with VBA's rules for Null: the plain forms pass Null through, the '$' forms and the
// conversions raise "Invalid use of Null".
#include "services/recordsource/jet/internal/functions.h"

#include "services/cp1252.h"
#include "services/recordsource/jet/internal/functionlibrary.h"
#include "services/recordsource/jet/internal/values.h"

#include <cmath>

namespace plx::jet {

namespace {

using R = Result<QVariant>;

Status invalidNull(int pos)
{
    return Status(Status::Code::TypeMismatch,
                  QStringLiteral("invalid use of Null at position %1").arg(pos));
}

Status badArgument(const char *fn, int pos)
{
    return Status(Status::Code::InvalidArgument,
                  QStringLiteral("invalid procedure call or argument in %1 at position %2")
                      .arg(QLatin1String(fn))
                      .arg(pos));
}

// A whole-number argument (lengths, positions, codes): banker's rounding, Null refused.
Result<qint64> wholeArg(const QVariant &v, int pos)
{
    if (isNull(v))
        return invalidNull(pos);
    Result<double> d = toNumber(v, pos);
    if (!d.isOk())
        return d.status();
    return qint64(roundHalfEven(d.value()));
}

R ucase(const QVariant *a, int, TextCompare, int)
{
    return isNull(a[0]) ? QVariant() : QVariant(toText(a[0]).toUpper());
}
R ucaseS(const QVariant *a, int n, TextCompare m, int pos)
{
    return isNull(a[0]) ? R(invalidNull(pos)) : ucase(a, n, m, pos);
}
R lcase(const QVariant *a, int, TextCompare, int)
{
    return isNull(a[0]) ? QVariant() : QVariant(toText(a[0]).toLower());
}
R lcaseS(const QVariant *a, int n, TextCompare m, int pos)
{
    return isNull(a[0]) ? R(invalidNull(pos)) : lcase(a, n, m, pos);
}

R left(const QVariant *a, int, TextCompare, int pos)
{
    Result<qint64> len = wholeArg(a[1], pos);
    if (!len.isOk())
        return len.status();
    if (len.value() < 0)
        return badArgument("Left", pos);
    if (isNull(a[0]))
        return QVariant();
    return QVariant(toText(a[0]).left(qsizetype(len.value())));
}
R leftS(const QVariant *a, int n, TextCompare m, int pos)
{
    return isNull(a[0]) ? R(invalidNull(pos)) : left(a, n, m, pos);
}
R right(const QVariant *a, int, TextCompare, int pos)
{
    Result<qint64> len = wholeArg(a[1], pos);
    if (!len.isOk())
        return len.status();
    if (len.value() < 0)
        return badArgument("Right", pos);
    if (isNull(a[0]))
        return QVariant();
    return QVariant(toText(a[0]).right(qsizetype(len.value())));
}
R rightS(const QVariant *a, int n, TextCompare m, int pos)
{
    return isNull(a[0]) ? R(invalidNull(pos)) : right(a, n, m, pos);
}
R mid(const QVariant *a, int n, TextCompare, int pos)
{
    Result<qint64> start = wholeArg(a[1], pos);
    if (!start.isOk())
        return start.status();
    if (start.value() < 1)
        return badArgument("Mid", pos);
    qint64 len = -1;
    if (n > 2) {
        Result<qint64> l = wholeArg(a[2], pos);
        if (!l.isOk())
            return l.status();
        if (l.value() < 0)
            return badArgument("Mid", pos);
        len = l.value();
    }
    if (isNull(a[0]))
        return QVariant();
    const QString s = toText(a[0]);
    if (start.value() > s.size())
        return QVariant(QString());
    return QVariant(s.mid(qsizetype(start.value() - 1), qsizetype(len)));
}
R midS(const QVariant *a, int n, TextCompare m, int pos)
{
    return isNull(a[0]) ? R(invalidNull(pos)) : mid(a, n, m, pos);
}
R len(const QVariant *a, int, TextCompare, int)
{
    return isNull(a[0]) ? QVariant() : QVariant(double(toText(a[0]).size()));
}

QString trimmed(const QString &s, bool front, bool back)
{
    qsizetype b = 0, e = s.size();
    if (front)
        while (b < e && s.at(b) == QLatin1Char(' '))
            ++b;
    if (back)
        while (e > b && s.at(e - 1) == QLatin1Char(' '))
            --e;
    return s.mid(b, e - b);
}
R trim(const QVariant *a, int, TextCompare, int)
{
    return isNull(a[0]) ? QVariant() : QVariant(trimmed(toText(a[0]), true, true));
}
R trimS(const QVariant *a, int n, TextCompare m, int pos)
{
    return isNull(a[0]) ? R(invalidNull(pos)) : trim(a, n, m, pos);
}
R ltrim(const QVariant *a, int, TextCompare, int)
{
    return isNull(a[0]) ? QVariant() : QVariant(trimmed(toText(a[0]), true, false));
}
R rtrim(const QVariant *a, int, TextCompare, int)
{
    return isNull(a[0]) ? QVariant() : QVariant(trimmed(toText(a[0]), false, true));
}

// InStr([start,] s1, s2 [, compare]); compare 0 binary, 1 text, 2 the database's rule.
R instr(const QVariant *a, int n, TextCompare mode, int pos)
{
    qint64 start = 1;
    int first = 0;
    if (n >= 3) {
        Result<qint64> s = wholeArg(a[0], pos);
        if (!s.isOk())
            return s.status();
        if (s.value() < 1)
            return badArgument("InStr", pos);
        start = s.value();
        first = 1;
    }
    if (n == 4) {
        Result<qint64> c = wholeArg(a[3], pos);
        if (!c.isOk())
            return c.status();
        if (c.value() == 0)
            mode = TextCompare::Binary;
        else if (c.value() == 1)
            mode = TextCompare::NoCase;
        else if (c.value() != 2 && c.value() != -1)
            return badArgument("InStr", pos);
    }
    const QVariant &v1 = a[first];
    const QVariant &v2 = a[first + 1];
    if (isNull(v1) || isNull(v2))
        return QVariant();
    const QString s1 = toText(v1);
    const QString s2 = toText(v2);
    if (s1.isEmpty())
        return QVariant(0.0);
    if (start > s1.size())
        return QVariant(0.0);
    if (s2.isEmpty())
        return QVariant(double(start));
    const Qt::CaseSensitivity cs =
        mode == TextCompare::Binary ? Qt::CaseSensitive : Qt::CaseInsensitive;
    const qsizetype at = s1.indexOf(s2, qsizetype(start - 1), cs);
    return QVariant(double(at + 1));
}

R chr(const QVariant *a, int, TextCompare, int pos)
{
    if (isNull(a[0]))
        return QVariant();
    Result<qint64> code = wholeArg(a[0], pos);
    if (!code.isOk())
        return code.status();
    if (code.value() < 0 || code.value() > 255)
        return badArgument("Chr", pos);
    return QVariant(QString(cp1252::toUnicode(static_cast<unsigned char>(code.value()))));
}
// ChrW(n): the character of UTF-16 code unit n (-32768..65535, negative n counting from
// 65536 as in VBA). Keys holding characters Windows-1252 cannot hold are written with it.
R chrw(const QVariant *a, int, TextCompare, int pos)
{
    if (isNull(a[0]))
        return QVariant();
    Result<qint64> code = wholeArg(a[0], pos);
    if (!code.isOk())
        return code.status();
    if (code.value() < -32768 || code.value() > 65535)
        return badArgument("ChrW", pos);
    return QVariant(QString(QChar(char16_t(code.value() & 0xFFFF))));
}
R chrS(const QVariant *a, int n, TextCompare m, int pos)
{
    return isNull(a[0]) ? R(invalidNull(pos)) : chr(a, n, m, pos);
}
R asc(const QVariant *a, int, TextCompare, int pos)
{
    if (isNull(a[0]))
        return invalidNull(pos);
    const QString s = toText(a[0]);
    if (s.isEmpty())
        return badArgument("Asc", pos);
    return QVariant(double(cp1252::fromUnicode(s.at(0))));
}

// Val reads a leading number, skipping blanks, tabs and line feeds anywhere.
R val(const QVariant *a, int, TextCompare, int pos)
{
    if (isNull(a[0]))
        return invalidNull(pos);
    QString s = toText(a[0]);
    s.remove(QLatin1Char(' '));
    s.remove(QLatin1Char('\t'));
    s.remove(QLatin1Char('\n'));
    s.remove(QLatin1Char('\r'));
    if (s.startsWith(QLatin1String("&H"), Qt::CaseInsensitive)
        || s.startsWith(QLatin1String("&O"), Qt::CaseInsensitive)) {
        const int base = s.at(1).toUpper() == QLatin1Char('H') ? 16 : 8;
        auto isDigitOf = [base](QChar c) {
            const int v = c.digitValue();
            if (v >= 0)
                return v < base;
            const QChar u = c.toUpper();
            return base == 16 && u >= QLatin1Char('A') && u <= QLatin1Char('F');
        };
        qsizetype e = 2;
        while (e < s.size() && isDigitOf(s.at(e)))
            ++e;
        bool ok = false;
        const qulonglong n = s.mid(2, e - 2).toULongLong(&ok, base);
        if (!ok)
            return QVariant(0.0);
        // &HFFFF is the Integer -1 and &HFFFFFFFF the Long -1, as VBA reads them.
        const std::optional<double> wrapped = fn::wrapRadixValue(n);
        if (!wrapped)
            return fn::overflow("Val", pos);
        return QVariant(*wrapped);
    }
    qsizetype e = 0;
    if (e < s.size() && (s.at(e) == QLatin1Char('-') || s.at(e) == QLatin1Char('+')))
        ++e;
    while (e < s.size() && s.at(e).isDigit())
        ++e;
    if (e < s.size() && s.at(e) == QLatin1Char('.')) {
        ++e;
        while (e < s.size() && s.at(e).isDigit())
            ++e;
    }
    if (e < s.size() && (s.at(e) == QLatin1Char('e') || s.at(e) == QLatin1Char('E'))) {
        qsizetype k = e + 1;
        if (k < s.size() && (s.at(k) == QLatin1Char('-') || s.at(k) == QLatin1Char('+')))
            ++k;
        if (k < s.size() && s.at(k).isDigit()) {
            while (k < s.size() && s.at(k).isDigit())
                ++k;
            e = k;
        }
    }
    bool ok = false;
    const double d = s.left(e).toDouble(&ok);
    return QVariant(ok ? d : 0.0);
}

R str(const QVariant *a, int, TextCompare, int pos)
{
    if (isNull(a[0]))
        return QVariant();
    Result<double> d = toNumber(a[0], pos);
    if (!d.isOk())
        return d.status();
    const QString text = numberText(d.value());
    return QVariant(d.value() < 0 ? text : QLatin1Char(' ') + text);
}
R strS(const QVariant *a, int n, TextCompare m, int pos)
{
    return isNull(a[0]) ? R(invalidNull(pos)) : str(a, n, m, pos);
}
R cstr(const QVariant *a, int, TextCompare, int pos)
{
    return isNull(a[0]) ? R(invalidNull(pos)) : R(QVariant(toText(a[0])));
}
R cdbl(const QVariant *a, int, TextCompare, int pos)
{
    if (isNull(a[0]))
        return invalidNull(pos);
    Result<double> d = toNumber(a[0], pos);
    return d.isOk() ? R(QVariant(d.value())) : R(d.status());
}
R whole(const QVariant *a, int pos, double low, double high, const char *name)
{
    if (isNull(a[0]))
        return invalidNull(pos);
    Result<double> d = toNumber(a[0], pos);
    if (!d.isOk())
        return d.status();
    const double r = roundHalfEven(d.value());
    if (r < low || r > high)
        return Status(
            Status::Code::InvalidArgument,
            QStringLiteral("overflow in %1 at position %2").arg(QLatin1String(name)).arg(pos));
    return QVariant(r);
}
R clng(const QVariant *a, int, TextCompare, int pos)
{
    return whole(a, pos, -2147483648.0, 2147483647.0, "CLng");
}
R cint(const QVariant *a, int, TextCompare, int pos)
{
    return whole(a, pos, -32768.0, 32767.0, "CInt");
}

R today(const QVariant *, int, TextCompare, int)
{
    return QVariant(QDateTime(QDate::currentDate(), QTime(0, 0)));
}
R now(const QVariant *, int, TextCompare, int)
{
    const QDateTime n = QDateTime::currentDateTime();
    return QVariant(
        QDateTime(n.date(), QTime(n.time().hour(), n.time().minute(), n.time().second())));
}
R datePart(const QVariant *a, int pos, int part)
{
    if (isNull(a[0]))
        return QVariant();
    // Read as parts: a QDateTime in local time would cost more than the filter around it.
    QDate d;
    QTime t;
    if (!fn::valueAsDateParts(a[0], &d, &t))
        return Status(Status::Code::TypeMismatch,
                      QStringLiteral("type mismatch: '%1' is not a date at position %2")
                          .arg(toText(a[0]))
                          .arg(pos));
    return QVariant(double(part == 0 ? d.year() : part == 1 ? d.month() : d.day()));
}
R year(const QVariant *a, int, TextCompare, int pos)
{
    return datePart(a, pos, 0);
}
R month(const QVariant *a, int, TextCompare, int pos)
{
    return datePart(a, pos, 1);
}
R day(const QVariant *a, int, TextCompare, int pos)
{
    return datePart(a, pos, 2);
}

const FunctionDef kFunctions[] = {
    { "UCASE", 1, 1, ucase },   { "UCASE$", 1, 1, ucaseS }, { "LCASE", 1, 1, lcase },
    { "LCASE$", 1, 1, lcaseS }, { "LEFT", 2, 2, left },     { "LEFT$", 2, 2, leftS },
    { "RIGHT", 2, 2, right },   { "RIGHT$", 2, 2, rightS }, { "MID", 2, 3, mid },
    { "MID$", 2, 3, midS },     { "LEN", 1, 1, len },       { "TRIM", 1, 1, trim },
    { "TRIM$", 1, 1, trimS },   { "LTRIM", 1, 1, ltrim },   { "RTRIM", 1, 1, rtrim },
    { "INSTR", 2, 4, instr },   { "CHR", 1, 1, chr },       { "CHRW", 1, 1, chrw },
    { "CHR$", 1, 1, chrS },     { "ASC", 1, 1, asc },       { "VAL", 1, 1, val },
    { "STR", 1, 1, str },       { "STR$", 1, 1, strS },     { "CSTR", 1, 1, cstr },
    { "CLNG", 1, 1, clng },     { "CINT", 1, 1, cint },     { "CDBL", 1, 1, cdbl },
    { "DATE", 0, 0, today },    { "NOW", 0, 0, now },       { "YEAR", 1, 1, year },
    { "MONTH", 1, 1, month },   { "DAY", 1, 1, day },
};

} // namespace

Status checkArity(const QString &name, int count, int minArgs, int maxArgs, int pos)
{
    if (count >= minArgs && count <= maxArgs)
        return Status::ok();
    return Status(Status::Code::Syntax,
                  QStringLiteral("wrong number of arguments (%1) for %2 at position %3")
                      .arg(count)
                      .arg(name)
                      .arg(pos));
}

const FunctionDef *findFunction(const QString &upperName)
{
    for (const FunctionDef &f : kFunctions) {
        if (upperName == QLatin1String(f.name))
            return &f;
    }
    return findLibraryFunction(upperName);
}

} // namespace plx::jet
