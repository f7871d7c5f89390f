// services/recordsource/jet/values.cpp: conversions and comparisons of Jet values.
#include "services/recordsource/jet/internal/values.h"

#include "services/cp1252.h"
#include "services/recordsource/jet/internal/functionlibrary.h"
#include "services/recordsource/jet/internal/generalorder.h"
#include "services/recordsource/jet/jetformat_p.h"
#include "services/recordsource/jet/internal/lexer.h"

#include <QRegularExpression>

#include <algorithm>
#include <cmath>
#include <optional>

namespace plx::jet {

namespace {

const QDate kEpoch(1899, 12, 30);

Status mismatch(const QVariant &v, int pos)
{
    return Status(Status::Code::TypeMismatch,
                  QStringLiteral("type mismatch: '%1' is not a number at position %2")
                      .arg(toText(v))
                      .arg(pos));
}

} // namespace

bool isText(const QVariant &v)
{
    return v.typeId() == QMetaType::QString;
}

bool isDate(const QVariant &v)
{
    return v.typeId() == QMetaType::QDateTime || v.typeId() == QMetaType::QDate;
}

bool isBoolean(const QVariant &v)
{
    return v.typeId() == QMetaType::Bool;
}

bool isNumeric(const QVariant &v)
{
    switch (v.typeId()) {
    case QMetaType::Double:
    case QMetaType::Float:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Bool: return true;
    default: return false;
    }
}

double roundHalfEven(double d)
{
    return std::nearbyint(d); // the default rounding mode is to nearest, ties to even
}

QString numberText(double d)
{
    if (std::isnan(d))
        return QStringLiteral("NaN");
    if (d == 0)
        return QStringLiteral("0");
    if (std::fabs(d) < 1e15 && d == std::trunc(d))
        return QString::number(qint64(d));
    QString s = QString::number(d, 'g', 15);
    if (!s.contains(QLatin1Char('e')))
        return s;
    // Plain decimal even for very large or very small numbers.
    const int exponent = int(std::floor(std::log10(std::fabs(d))));
    const int decimals = std::max(0, 14 - exponent);
    s = QString::number(d, 'f', std::min(decimals, 330));
    if (s.contains(QLatin1Char('.'))) {
        while (s.endsWith(QLatin1Char('0')))
            s.chop(1);
        if (s.endsWith(QLatin1Char('.')))
            s.chop(1);
    }
    return s;
}

double dateToSerial(const QDateTime &dt)
{
    const double days = double(kEpoch.daysTo(dt.date()));
    const double frac = dt.time().msecsSinceStartOfDay() / 86400000.0;
    // Serials before the epoch keep the time as a positive fraction of the negative day.
    return days < 0 ? days - frac : days + frac;
}

QDateTime serialToDate(double serial)
{
    const double whole = std::trunc(serial);
    const double frac = std::fabs(serial - whole);
    const QDate d = kEpoch.addDays(qint64(whole));
    const int ms = int(std::llround(frac * 86400000.0));
    return QDateTime(d, QTime(0, 0).addMSecs(std::min(ms, 86399999)));
}

namespace {

// 'YYYY-MM-DD' or 'YYYY-MM-DD hh:mm:ss', the form SQLite keeps dates in, read without a
// regular expression: a filter on a date field reads one per row.
std::optional<QDateTime> storedIsoDate(QStringView s)
{
    if (s.size() != 10 && s.size() != 19)
        return std::nullopt;
    auto digits = [s](qsizetype from, qsizetype count, int *out) {
        int v = 0;
        for (qsizetype i = from; i < from + count; ++i) {
            const char16_t c = s[i].unicode();
            if (c < u'0' || c > u'9')
                return false;
            v = v * 10 + (c - u'0');
        }
        *out = v;
        return true;
    };
    int y, mo, d, h = 0, mi = 0, se = 0;
    if (!digits(0, 4, &y) || s[4] != u'-' || !digits(5, 2, &mo) || s[7] != u'-'
        || !digits(8, 2, &d))
        return std::nullopt;
    if (s.size() == 19
        && ((s[10] != u' ' && s[10] != u'T') || !digits(11, 2, &h) || s[13] != u':'
            || !digits(14, 2, &mi) || s[16] != u':' || !digits(17, 2, &se)))
        return std::nullopt;
    const QDate date(y, mo, d);
    const QTime time(h, mi, se);
    if (!date.isValid() || !time.isValid())
        return QDateTime();
    return QDateTime(date, time);
}

} // namespace

QDateTime parseDateText(const QString &text)
{
    if (std::optional<QDateTime> stored = storedIsoDate(text))
        return *stored;
    static const QRegularExpression iso(
        QStringLiteral("^(\\d{4})-(\\d{2})-(\\d{2})(?:[ T](\\d{2}):(\\d{2})(?::(\\d{2}))?)?$"));
    const QString s = text.trimmed();
    if (QRegularExpressionMatch m = iso.match(s); m.hasMatch()) {
        const QDate d(m.captured(1).toInt(), m.captured(2).toInt(), m.captured(3).toInt());
        const QTime t(m.captured(4).toInt(), m.captured(5).toInt(), m.captured(6).toInt());
        if (d.isValid() && t.isValid())
            return QDateTime(d, t);
        return {};
    }
    static const QRegularExpression us(QStringLiteral("^\\d{1,2}/\\d{1,2}/\\d{2,4}( .*)?$"));
    if (us.match(s).hasMatch()) {
        // The lexer's reader understands the month-first forms with times and AM/PM.
        return parseJetDate(s);
    }
    return {};
}

QDateTime toDateTime(const QVariant &v)
{
    if (v.typeId() == QMetaType::QDateTime)
        return v.toDateTime();
    if (v.typeId() == QMetaType::QDate)
        return QDateTime(v.toDate(), QTime(0, 0));
    if (isText(v))
        return parseDateText(v.toString());
    if (isNumeric(v) && !isBoolean(v))
        return serialToDate(v.toDouble());
    return {};
}

Result<double> toNumber(const QVariant &v, int pos)
{
    if (isBoolean(v))
        return v.toBool() ? -1.0 : 0.0;
    if (isNumeric(v))
        return v.toDouble();
    if (isDate(v))
        return dateToSerial(toDateTime(v));
    if (isText(v)) {
        QString s = v.toString().trimmed();
        if (s.startsWith(QLatin1String("&H"), Qt::CaseInsensitive)
            || s.startsWith(QLatin1String("&O"), Qt::CaseInsensitive)) {
            // 16- and 32-bit wrap-around: "&HFFFF" is -1, as the Integer it spells.
            bool ok = false;
            const qulonglong n =
                s.mid(2).toULongLong(&ok, s.at(1).toUpper() == QLatin1Char('H') ? 16 : 8);
            if (ok) {
                if (const std::optional<double> wrapped = fn::wrapRadixValue(n))
                    return *wrapped;
            }
        } else {
            s.remove(QLatin1Char(','));
            bool ok = false;
            const double d = s.toDouble(&ok);
            if (ok && !s.isEmpty())
                return d;
        }
    }
    return mismatch(v, pos);
}

QString toText(const QVariant &v)
{
    if (isNull(v))
        return QString();
    if (isBoolean(v))
        return v.toBool() ? QStringLiteral("True") : QStringLiteral("False");
    if (isDate(v))
        return generalDateText(toDateTime(v)); // a time alone prints as a time
    if (isNumeric(v))
        return numberText(v.toDouble());
    return v.toString();
}

namespace {

// The byte a character has in Windows-1252; characters the code page cannot hold sort
// after all of its bytes, by code point.
int binaryRank(QChar c)
{
    if (c.unicode() < 0x80)
        return c.unicode();
    const int code = cp1252::fromUnicode(c, -1);
    return code >= 0 ? code : 0x100 + c.unicode();
}

} // namespace

int compareText(QStringView a, QStringView b, TextCompare mode)
{
    if (mode == TextCompare::Binary) {
        // Binary sources (FoxPro tables) compared the code page's bytes, so "€" (0x80)
        // sorts before "é" (0xE9) although its code point is higher.
        const qsizetype n = std::min(a.size(), b.size());
        for (qsizetype i = 0; i < n; ++i) {
            if (a[i] == b[i])
                continue;
            return binaryRank(a[i]) < binaryRank(b[i]) ? -1 : 1;
        }
        return a.size() < b.size() ? -1 : (a.size() > b.size() ? 1 : 0);
    }
    return compareGeneral(a, b);
}

Result<int> compareValues(const QVariant &a, const QVariant &b, TextCompare mode, int pos)
{
    if (isText(a) && isText(b))
        return compareText(a.toString(), b.toString(), mode);
    if (isDate(a) || isDate(b)) {
        const QDateTime da = toDateTime(a);
        const QDateTime db = toDateTime(b);
        if (!da.isValid())
            return mismatch(a, pos);
        if (!db.isValid())
            return mismatch(b, pos);
        return da < db ? -1 : (da > db ? 1 : 0);
    }
    Result<double> x = toNumber(a, pos);
    if (!x.isOk())
        return x.status();
    Result<double> y = toNumber(b, pos);
    if (!y.isOk())
        return y.status();
    return x.value() < y.value() ? -1 : (x.value() > y.value() ? 1 : 0);
}

} // namespace plx::jet
