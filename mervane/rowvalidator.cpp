// mervane/rowvalidator.cpp
#include "mervane/rowvalidator_p.h"

#include <QRegularExpression>

namespace plx {

InputMode inputModeOf(const QString &mode)
{
    const QString m = mode.trimmed().toLower();
    if (m == QLatin1String("upper") || m == QLatin1String("ucase"))
        return InputMode::Upper;
    if (m == QLatin1String("digits"))
        return InputMode::Digits;
    if (m == QLatin1String("number") || m == QLatin1String("numeric"))
        return InputMode::Number;
    if (m == QLatin1String("date"))
        return InputMode::Date;
    return InputMode::Text;
}

QValidator::State RowValidator::validate(QString &input, int &pos) const
{
    Q_UNUSED(pos)
    if (m_mode == InputMode::Upper)
        input = input.toUpper();
    if (m_maxLength > 0 && input.size() > m_maxLength)
        return Invalid;
    static const QRegularExpression digits(QStringLiteral("^\\d*$"));
    static const QRegularExpression number(QStringLiteral("^[+-]?[\\d,]*\\.?\\d*%?$"));
    static const QRegularExpression date(QStringLiteral("^[\\d/.\\-]*$"));
    switch (m_mode) {
    case InputMode::Digits: return digits.match(input).hasMatch() ? Acceptable : Invalid;
    case InputMode::Number: return number.match(input).hasMatch() ? Acceptable : Invalid;
    case InputMode::Date: return date.match(input).hasMatch() ? Acceptable : Invalid;
    case InputMode::Text:
    case InputMode::Upper: break;
    }
    return Acceptable;
}

} // namespace plx
