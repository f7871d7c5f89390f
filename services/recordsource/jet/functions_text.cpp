// services/recordsource/jet/functions_text.cpp: Nz, StrComp, Replace, Space, String,
// StrReverse, InStrRev and the '$' forms of the trims. Without a compare argument the
// comparisons follow the source's own rule, as InStr does: text on SQLite and in --eval,
// binary on FoxPro tables (whose Xbase collation was ASCII).
#include "services/recordsource/jet/internal/functionlibrary.h"

#include "services/cp1252.h"
#include "services/recordsource/jet/internal/values.h"

namespace plx::jet::fn {

namespace {

// The longest text Space and String build: a filter runs them per row, so a mistyped
// count must fail rather than take gigabytes.
constexpr qint64 kMaxBuiltText = 1 << 20;

// Nz(value [, valueIfNull]): in a query expression a Null without the second argument
// becomes the zero-length string.
R nz(const QVariant *a, int n, TextCompare, int)
{
    if (!isNull(a[0]))
        return a[0];
    return n > 1 ? a[1] : QVariant(QString());
}

R strComp(const QVariant *a, int n, TextCompare mode, int pos)
{
    if (n > 2) {
        Result<TextCompare> m = compareArg("StrComp", a[2], 3, mode, pos);
        if (!m.isOk())
            return m.status();
        mode = m.value();
    }
    if (isNull(a[0]) || isNull(a[1]))
        return QVariant();
    return QVariant(double(compareText(toText(a[0]), toText(a[1]), mode)));
}

// Replace(expression, find, replace [, start [, count [, compare]]]): the result starts at
// `start`, as the documentation says ("not a copy of the original string from start to
// finish").
R replace(const QVariant *a, int n, TextCompare mode, int pos)
{
    for (int i = 0; i < 3; ++i) {
        if (isNull(a[i]))
            return invalidNull("Replace", pos);
    }
    qint64 start = 1, count = -1;
    if (n > 3) {
        Result<qint64> s = wholeArg("Replace", a[3], 4, pos);
        if (!s.isOk())
            return s.status();
        if (s.value() < 1)
            return badArgument("Replace", pos, QStringLiteral("start must be at least 1"));
        start = s.value();
    }
    if (n > 4) {
        Result<qint64> c = wholeArg("Replace", a[4], 5, pos);
        if (!c.isOk())
            return c.status();
        if (c.value() < -1)
            return badArgument("Replace", pos, QStringLiteral("count must be -1 or more"));
        count = c.value();
    }
    if (n > 5) {
        Result<TextCompare> m = compareArg("Replace", a[5], 6, mode, pos);
        if (!m.isOk())
            return m.status();
        mode = m.value();
    }
    const QString text = toText(a[0]);
    if (start > text.size())
        return QVariant(QString());
    QString s = text.mid(qsizetype(start - 1));
    const QString find = toText(a[1]);
    const QString with = toText(a[2]);
    if (find.isEmpty() || count == 0)
        return QVariant(s);
    const Qt::CaseSensitivity cs =
        mode == TextCompare::Binary ? Qt::CaseSensitive : Qt::CaseInsensitive;
    QString out;
    qsizetype from = 0;
    qint64 done = 0;
    while (count < 0 || done < count) {
        const qsizetype at = s.indexOf(find, from, cs);
        if (at < 0)
            break;
        out += QStringView(s).mid(from, at - from);
        out += with;
        from = at + find.size();
        ++done;
    }
    out += QStringView(s).mid(from);
    return QVariant(out);
}

R space(const QVariant *a, int, TextCompare, int pos)
{
    Result<qint64> len = wholeArg("Space", a[0], 1, pos);
    if (!len.isOk())
        return len.status();
    if (len.value() < 0 || len.value() > kMaxBuiltText)
        return badArgument("Space", pos);
    return QVariant(QString(qsizetype(len.value()), QLatin1Char(' ')));
}

// String(number, character): character is a code (taken Mod 256, in Windows-1252) or a
// text whose first character repeats. Null in either gives Null.
R string(const QVariant *a, int, TextCompare, int pos)
{
    if (isNull(a[0]) || isNull(a[1]))
        return QVariant();
    Result<qint64> len = wholeArg("String", a[0], 1, pos);
    if (!len.isOk())
        return len.status();
    if (len.value() < 0 || len.value() > kMaxBuiltText)
        return badArgument("String", pos);
    QChar c;
    if (isText(a[1])) {
        const QString s = a[1].toString();
        if (s.isEmpty())
            return badArgument("String", pos, QStringLiteral("the character is empty"));
        c = s.at(0);
    } else {
        Result<qint64> code = wholeArg("String", a[1], 2, pos);
        if (!code.isOk())
            return code.status();
        c = cp1252::toUnicode(static_cast<unsigned char>(((code.value() % 256) + 256) % 256));
    }
    return QVariant(QString(qsizetype(len.value()), c));
}

template<R (*F)(const QVariant *, int, TextCompare, int)>
R dollar(const QVariant *a, int n, TextCompare m, int pos, const char *name)
{
    for (int i = 0; i < n; ++i) {
        if (isNull(a[i]))
            return invalidNull(name, pos);
    }
    return F(a, n, m, pos);
}

R spaceS(const QVariant *a, int n, TextCompare m, int pos)
{
    return dollar<space>(a, n, m, pos, "Space$");
}
R stringS(const QVariant *a, int n, TextCompare m, int pos)
{
    return dollar<string>(a, n, m, pos, "String$");
}

R strReverse(const QVariant *a, int, TextCompare, int pos)
{
    if (isNull(a[0]))
        return invalidNull("StrReverse", pos);
    const QString s = toText(a[0]);
    QString out;
    out.reserve(s.size());
    for (qsizetype i = s.size(); i > 0; --i) {
        // Keep surrogate pairs together.
        if (i >= 2 && s.at(i - 1).isLowSurrogate() && s.at(i - 2).isHighSurrogate()) {
            out += s.at(i - 2);
            out += s.at(i - 1);
            --i;
        } else {
            out += s.at(i - 1);
        }
    }
    return QVariant(out);
}

// InStrRev(stringcheck, stringmatch [, start [, compare]]): start -1 (the default) is the
// last character; a match must end at or before start.
R inStrRev(const QVariant *a, int n, TextCompare mode, int pos)
{
    qint64 start = -1;
    if (n > 2) {
        Result<qint64> s = wholeArg("InStrRev", a[2], 3, pos);
        if (!s.isOk())
            return s.status();
        if (s.value() == 0 || s.value() < -1)
            return badArgument("InStrRev", pos, QStringLiteral("start must be -1 or at least 1"));
        start = s.value();
    }
    if (n > 3) {
        Result<TextCompare> m = compareArg("InStrRev", a[3], 4, mode, pos);
        if (!m.isOk())
            return m.status();
        mode = m.value();
    }
    if (isNull(a[0]) || isNull(a[1]))
        return QVariant();
    const QString check = toText(a[0]);
    const QString match = toText(a[1]);
    if (check.isEmpty())
        return QVariant(0.0);
    if (start == -1)
        start = check.size();
    if (start > check.size())
        return QVariant(0.0);
    if (match.isEmpty())
        return QVariant(double(start));
    const qsizetype from = qsizetype(start) - match.size();
    if (from < 0)
        return QVariant(0.0);
    const Qt::CaseSensitivity cs =
        mode == TextCompare::Binary ? Qt::CaseSensitive : Qt::CaseInsensitive;
    return QVariant(double(check.lastIndexOf(match, from, cs) + 1));
}

QString trimSpaces(const QString &s, bool front, bool back)
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
R ltrimS(const QVariant *a, int, TextCompare, int pos)
{
    return isNull(a[0]) ? R(invalidNull("LTrim$", pos))
                        : R(QVariant(trimSpaces(toText(a[0]), true, false)));
}
R rtrimS(const QVariant *a, int, TextCompare, int pos)
{
    return isNull(a[0]) ? R(invalidNull("RTrim$", pos))
                        : R(QVariant(trimSpaces(toText(a[0]), false, true)));
}

const FunctionDef kText[] = {
    { "NZ", 1, 2, nz },
    { "STRCOMP", 2, 3, strComp },
    { "REPLACE", 3, 6, replace },
    { "SPACE", 1, 1, space },
    { "SPACE$", 1, 1, spaceS },
    { "STRING", 2, 2, string },
    { "STRING$", 2, 2, stringS },
    { "STRREVERSE", 1, 1, strReverse },
    { "INSTRREV", 2, 4, inStrRev },
    { "LTRIM$", 1, 1, ltrimS },
    { "RTRIM$", 1, 1, rtrimS },
};

} // namespace

std::span<const FunctionDef> textFunctions()
{
    return kText;
}

} // namespace plx::jet::fn
