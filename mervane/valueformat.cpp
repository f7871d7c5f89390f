// mervane/valueformat.cpp
#include "mervane/valueformat.h"

#include <QDate>
#include <QDateTime>
#include <QLocale>
#include <QRegularExpression>
#include <QStringList>

#include <cmath>

namespace plx {

namespace {

bool isNull(const QVariant &v)
{
    return !v.isValid() || v.isNull();
}

// The named number formats of the dialect, as pattern strings.
QString namedNumberPattern(const QString &format)
{
    const QString f = format.trimmed().toLower();
    if (f == QLatin1String("general number"))
        return QString();
    if (f == QLatin1String("fixed"))
        return QStringLiteral("0.00");
    if (f == QLatin1String("standard") || f == QLatin1String("currency"))
        return QStringLiteral("#,##0.00");
    if (f == QLatin1String("percent"))
        return QStringLiteral("0.00%");
    return format;
}

bool isNumberPattern(const QString &pattern)
{
    static const QRegularExpression re(QStringLiteral("^[#0,.%]+$"));
    return re.match(pattern).hasMatch();
}

// "0.00", "#,##0", "#,##0.00", "0%": decimals after the point, grouping when a ',' stands
// before it, at least as many integer digits as '0's before it.
QString formatNumber(double d, const QString &pattern)
{
    const bool percent = pattern.endsWith(QLatin1Char('%'));
    const QString p = percent ? pattern.chopped(1) : pattern;
    const qsizetype point = p.indexOf(QLatin1Char('.'));
    const QString intPart = point < 0 ? p : p.left(point);
    const QString fracPart = point < 0 ? QString() : p.mid(point + 1);
    const int decimals = int(fracPart.count(QLatin1Char('0')) + fracPart.count(QLatin1Char('#')));
    const int minDecimals = int(fracPart.count(QLatin1Char('0')));
    const bool group = intPart.contains(QLatin1Char(','));
    const int minInt = int(intPart.count(QLatin1Char('0')));
    if (percent)
        d *= 100.0;
    QString digits = QString::number(std::fabs(d), 'f', decimals);
    // '#' places after the point drop trailing zeros down to the '0' places.
    if (decimals > minDecimals) {
        while (digits.endsWith(QLatin1Char('0'))
               && digits.size() - digits.indexOf(QLatin1Char('.')) - 1 > minDecimals)
            digits.chop(1);
        if (digits.endsWith(QLatin1Char('.')))
            digits.chop(1);
    }
    const qsizetype dot = digits.indexOf(QLatin1Char('.'));
    QString whole = dot < 0 ? digits : digits.left(dot);
    const QString frac = dot < 0 ? QString() : digits.mid(dot);
    if (whole == QLatin1String("0") && minInt == 0)
        whole.clear();
    while (whole.size() < minInt)
        whole.prepend(QLatin1Char('0'));
    if (group) {
        for (qsizetype i = whole.size() - 3; i > 0; i -= 3)
            whole.insert(i, QLatin1Char(','));
    }
    QString out = whole + frac;
    if (out.isEmpty())
        out = QStringLiteral("0");
    const bool negative = d < 0 && out.contains(QRegularExpression(QStringLiteral("[1-9]")));
    return (negative ? QStringLiteral("-") : QString()) + out
        + (percent ? QStringLiteral("%") : QString());
}

QString namedDatePattern(const QString &format)
{
    const QString f = format.trimmed().toLower();
    if (f == QLatin1String("short date"))
        return QStringLiteral("mm/dd/yyyy");
    if (f == QLatin1String("long date"))
        return QStringLiteral("mmmm d, yyyy");
    if (f == QLatin1String("medium date"))
        return QStringLiteral("dd-mmm-yy");
    return format;
}

bool isDatePattern(const QString &pattern)
{
    const QString p = pattern.toLower();
    return p.contains(QLatin1Char('d')) || p.contains(QLatin1Char('y'))
        || p.contains(QLatin1Char('m'));
}

// The dialect's date tokens (d dd ddd dddd m mm mmm mmmm yy yyyy, any case) with anything
// else copied as it is.
QString formatDate(const QDate &date, const QString &pattern)
{
    static const QLocale c = QLocale::c();
    QString out;
    const QString p = pattern.toLower();
    for (qsizetype i = 0; i < p.size();) {
        const QChar ch = p.at(i);
        qsizetype run = 1;
        while (i + run < p.size() && p.at(i + run) == ch)
            ++run;
        if (ch == QLatin1Char('d')) {
            if (run == 1)
                out += QString::number(date.day());
            else if (run == 2)
                out += QStringLiteral("%1").arg(date.day(), 2, 10, QLatin1Char('0'));
            else if (run == 3)
                out += c.dayName(date.dayOfWeek(), QLocale::ShortFormat);
            else
                out += c.dayName(date.dayOfWeek(), QLocale::LongFormat);
        } else if (ch == QLatin1Char('m')) {
            if (run == 1)
                out += QString::number(date.month());
            else if (run == 2)
                out += QStringLiteral("%1").arg(date.month(), 2, 10, QLatin1Char('0'));
            else if (run == 3)
                out += c.monthName(date.month(), QLocale::ShortFormat);
            else
                out += c.monthName(date.month(), QLocale::LongFormat);
        } else if (ch == QLatin1Char('y')) {
            if (run <= 2)
                out += QStringLiteral("%1").arg(date.year() % 100, 2, 10, QLatin1Char('0'));
            else
                out += QStringLiteral("%1").arg(date.year(), 4, 10, QLatin1Char('0'));
        } else {
            out += pattern.mid(i, run);
        }
        i += run;
    }
    return out;
}

QString plainNumber(const QVariant &value, const FieldInfo &field)
{
    const double d = value.toDouble();
    if (field.type == FieldType::Integer || value.typeId() == QMetaType::LongLong
        || value.typeId() == QMetaType::Int)
        return QString::number(value.toLongLong());
    if (field.type == FieldType::Numeric)
        return QString::number(d, 'f', field.decimals);
    return QString::number(d, 'g', 15);
}

} // namespace

QString formatFieldValue(const QVariant &value, const FieldInfo &field, const QString &format)
{
    if (isNull(value))
        return QString();
    switch (field.type) {
    case FieldType::Integer:
    case FieldType::Numeric:
    case FieldType::Double: {
        const QString pattern = namedNumberPattern(format);
        if (!pattern.trimmed().isEmpty() && isNumberPattern(pattern))
            return formatNumber(value.toDouble(), pattern);
        return plainNumber(value, field);
    }
    case FieldType::Date:
    case FieldType::DateTime: {
        const QDate date =
            value.typeId() == QMetaType::QDateTime ? value.toDateTime().date() : value.toDate();
        if (!date.isValid())
            return QString();
        const QString pattern = namedDatePattern(format);
        QString text = formatDate(date,
                                  isDatePattern(pattern) && !pattern.trimmed().isEmpty()
                                      ? pattern
                                      : QStringLiteral("mm/dd/yyyy"));
        if (field.type == FieldType::DateTime && value.typeId() == QMetaType::QDateTime
            && value.toDateTime().time() != QTime(0, 0))
            text += value.toDateTime().time().toString(QStringLiteral(" hh:mm:ss"));
        return text;
    }
    case FieldType::Boolean:
        return value.toBool() ? QStringLiteral("True") : QStringLiteral("False");
    case FieldType::Binary: return QString();
    case FieldType::Text:
    case FieldType::Memo: break;
    }
    return value.toString();
}

std::optional<double> parseNumberText(const QString &text)
{
    QString t = text.trimmed();
    t.remove(QLatin1Char(','));
    t.remove(QLatin1Char(' '));
    if (t.isEmpty())
        return std::nullopt;
    static const QRegularExpression re(
        QStringLiteral("^[+-]?(\\d+\\.?\\d*|\\.\\d+)([eE][+-]?\\d+)?$"));
    if (!re.match(t).hasMatch())
        return std::nullopt;
    bool ok = false;
    const double d = t.toDouble(&ok);
    if (!ok || !std::isfinite(d))
        return std::nullopt;
    return d;
}

std::optional<QDate> parseDateText(const QString &text, const QString &format)
{
    const QString t = text.trimmed();
    static const QRegularExpression iso(QStringLiteral("^(\\d{4})-(\\d{1,2})-(\\d{1,2})$"));
    if (const auto m = iso.match(t); m.hasMatch()) {
        const QDate d(m.captured(1).toInt(), m.captured(2).toInt(), m.captured(3).toInt());
        return d.isValid() ? std::optional<QDate>(d) : std::nullopt;
    }
    static const QRegularExpression parts(
        QStringLiteral("^(\\d{1,4})[/.\\-](\\d{1,2})[/.\\-](\\d{1,4})$"));
    const auto m = parts.match(t);
    if (!m.hasMatch())
        return std::nullopt;
    // The order of day, month and year in the format; MM/DD/YYYY without one.
    QString order;
    for (const QChar ch : namedDatePattern(format).toLower()) {
        const QChar k = ch == QLatin1Char('d') || ch == QLatin1Char('m') || ch == QLatin1Char('y')
            ? ch
            : QChar();
        if (!k.isNull() && !order.contains(k))
            order += k;
    }
    if (order.size() != 3)
        order = QStringLiteral("mdy");
    int day = 0, month = 0, year = 0;
    int yearDigits = 0;
    for (int i = 0; i < 3; ++i) {
        const QString piece = m.captured(i + 1);
        const int v = piece.toInt();
        switch (order.at(i).unicode()) {
        case 'd': day = v; break;
        case 'm': month = v; break;
        default:
            year = v;
            yearDigits = int(piece.size());
            break;
        }
    }
    if (yearDigits <= 2)
        year += year < 30 ? 2000 : 1900;
    const QDate d(year, month, day);
    return d.isValid() ? std::optional<QDate>(d) : std::nullopt;
}

std::optional<bool> parseLogicalText(const QString &text)
{
    const QString t = text.trimmed().toUpper();
    if (t == QLatin1String("TRUE") || t == QLatin1String("T") || t == QLatin1String("YES")
        || t == QLatin1String("Y") || t == QLatin1String("1") || t == QLatin1String("-1")
        || t == QLatin1String(".T."))
        return true;
    if (t == QLatin1String("FALSE") || t == QLatin1String("F") || t == QLatin1String("NO")
        || t == QLatin1String("N") || t == QLatin1String("0") || t == QLatin1String(".F."))
        return false;
    return std::nullopt;
}

} // namespace plx
