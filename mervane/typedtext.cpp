// mervane/typedtext.cpp
#include "mervane/typedtext_p.h"

#include "mervane/valueformat.h"

#include "services/codepages.h"

#include <QDateTime>

#include <climits>
#include <cmath>

namespace {

// The first character of `text` that code page `codePage` cannot hold; empty when all fit
// (or the code page is unknown, as for SQLite, which stores every character).
QString firstUnstorable(const QString &text, int codePage)
{
    if (codePage == 0 || plx::codepages::encode(codePage, text))
        return QString();
    for (qsizetype i = 0; i < text.size(); ++i) {
        const qsizetype n = text.at(i).isHighSurrogate() && i + 1 < text.size() ? 2 : 1;
        QString ch = text.mid(i, n);
        if (!plx::codepages::encode(codePage, ch))
            return ch;
        i += n - 1;
    }
    return QString();
}

// Digits a number has before its decimal point.
int integerDigits(double d)
{
    const double whole = std::floor(std::fabs(d));
    return whole < 1 ? 1 : int(std::floor(std::log10(whole))) + 1;
}

// Says `why` a typed text cannot be stored, when the caller asked, and stores nothing.
std::optional<QVariant> refuse(QString *reason, const QString &why)
{
    if (reason)
        *reason = why;
    return std::nullopt;
}

// A whole number for an Integer field of `field.size` bytes (8 when unknown).
std::optional<QVariant> storedWhole(double d, const plx::FieldInfo &field, QString *reason)
{
    if (d != std::floor(d))
        return refuse(reason, QStringLiteral("is not a whole number"));
    const double limit = field.size == 2 ? 32767.0 : field.size == 4 ? 2147483647.0 : 9.2e18;
    if (std::fabs(d) > limit)
        return refuse(reason, QStringLiteral("is too large for this field"));
    return QVariant(qint64(d));
}

// A Numeric field holds field.size characters: rounded to its decimals, the number must
// leave room for the decimal point and a minus sign.
std::optional<QVariant> storedNumeric(double d, const plx::FieldInfo &field, QString *reason)
{
    const double rounded =
        std::round(d * std::pow(10.0, field.decimals)) / std::pow(10.0, field.decimals);
    const int room =
        field.size - field.decimals - (field.decimals > 0 ? 1 : 0) - (rounded < 0 ? 1 : 0);
    if (integerDigits(rounded) > room)
        return refuse(reason,
                      room > 0 ? QStringLiteral("is too large for this field (at most %1 "
                                                "digits before the decimal point)")
                                     .arg(room)
                               : QStringLiteral("is too large for this field"));
    return QVariant(rounded);
}

// Integer, Numeric and Double fields; a trailing '%' divides by 100.
std::optional<QVariant> storedNumber(const QString &text, const plx::FieldInfo &field,
                                     QString *reason)
{
    QString t = text.trimmed();
    const bool percent = t.endsWith(QLatin1Char('%'));
    if (percent)
        t.chop(1);
    std::optional<double> d = plx::parseNumberText(t);
    if (!d)
        return refuse(reason, QStringLiteral("is not a number"));
    if (percent)
        *d /= 100.0;
    if (field.type == plx::FieldType::Integer)
        return storedWhole(*d, field, reason);
    if (field.type == plx::FieldType::Numeric && field.size > 0)
        return storedNumeric(*d, field, reason);
    return QVariant(*d);
}

// Date and DateTime fields: the date in the row's `format`, for DateTime optionally followed
// by a blank and h:mm:ss or h:mm (midnight when left out).
std::optional<QVariant> storedDate(const QString &text, const plx::FieldInfo &field,
                                   const QString &format, QString *reason)
{
    QString t = text.trimmed();
    QTime time(0, 0);
    if (field.type == plx::FieldType::DateTime) {
        const qsizetype blank = t.indexOf(QLatin1Char(' '));
        if (blank > 0) {
            time = QTime::fromString(t.mid(blank + 1).trimmed(), QStringLiteral("h:mm:ss"));
            if (!time.isValid())
                time = QTime::fromString(t.mid(blank + 1).trimmed(), QStringLiteral("h:mm"));
            if (!time.isValid())
                return refuse(reason, QStringLiteral("is not a time of day (hh:mm:ss)"));
            t = t.left(blank);
        }
    }
    const std::optional<QDate> date = plx::parseDateText(t, format);
    if (!date) {
        const QString shape = format.trimmed().isEmpty() || format.contains(QLatin1Char(' '))
            ? QStringLiteral("mm/dd/yyyy")
            : format.trimmed().toLower();
        return refuse(reason, QStringLiteral("is not a date (%1)").arg(shape));
    }
    if (field.type == plx::FieldType::Date)
        return QVariant(*date);
    return QVariant(QDateTime(*date, time));
}

// Text and Memo fields: the length limit, the table's code page and the memo's line ends.
std::optional<QVariant> storedText(const QString &text, const plx::FieldInfo &field,
                                   const plx::TypedTextRules &rules, QString *reason)
{
    const int limit = plx::effectiveMaxLength(rules.maxLength, field);
    if (limit > 0 && text.size() > limit)
        return refuse(reason, QStringLiteral("is longer than %1 characters").arg(limit));
    const QString bad = firstUnstorable(text, rules.codePage);
    if (!bad.isEmpty())
        return refuse(reason,
                      QStringLiteral("contains the character \"%1\", which this table cannot "
                                     "store (code page %2)")
                          .arg(bad)
                          .arg(rules.codePage));
    if (field.type == plx::FieldType::Memo && rules.memoCrLf) {
        QString crlf = text;
        crlf.replace(QLatin1String("\r\n"), QLatin1String("\n"));
        crlf.replace(QLatin1Char('\n'), QLatin1String("\r\n"));
        return QVariant(crlf);
    }
    return QVariant(text);
}

} // namespace

namespace plx {

int effectiveMaxLength(int maxLength, const FieldInfo &field)
{
    int limit = maxLength > 0 ? maxLength : INT_MAX;
    if (field.type == FieldType::Text && field.size > 0)
        limit = std::min(limit, field.size);
    return limit == INT_MAX ? 0 : limit;
}

std::optional<QVariant> storedFromTyped(const QString &typed, const FieldInfo &field,
                                        const TypedTextRules &rules, QString *reason)
{
    const QString text = rules.mode == InputMode::Upper ? typed.toUpper() : typed;
    if (text.trimmed().isEmpty()) {
        if (rules.allowNull)
            return QVariant();
        if (field.type == FieldType::Text || field.type == FieldType::Memo)
            return QVariant(QString());
        return refuse(reason, QStringLiteral("needs a value"));
    }
    if (rules.mode == InputMode::Digits) {
        for (const QChar ch : text)
            if (!ch.isDigit() || ch.unicode() > 127)
                return refuse(reason, QStringLiteral("may only hold the digits 0 to 9"));
    }
    switch (field.type) {
    case FieldType::Text:
    case FieldType::Memo: return storedText(text, field, rules, reason);
    case FieldType::Integer:
    case FieldType::Numeric:
    case FieldType::Double: return storedNumber(text, field, reason);
    case FieldType::Date:
    case FieldType::DateTime: return storedDate(text, field, rules.format, reason);
    case FieldType::Boolean: {
        const std::optional<bool> b = parseLogicalText(text);
        if (!b)
            return refuse(reason, QStringLiteral("is not Yes or No"));
        return QVariant(*b);
    }
    case FieldType::Binary: break;
    }
    return refuse(reason, QStringLiteral("cannot be edited as text"));
}

} // namespace plx
