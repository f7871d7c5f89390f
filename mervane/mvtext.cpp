// mervane/mvtext.cpp
#include "mervane/mvtext.h"

#include "mervane/rowvalidator_p.h"
#include "mervane/twips.h"
#include "mervane/valueformat.h"

#include "services/codepages.h"

#include <QDateTime>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>

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

} // namespace

mvText::mvText(QWidget *parent) : mvRow(parent)
{
    m_caption = new QLabel(this);
    m_caption->setObjectName(QStringLiteral("lblCaption"));
    m_caption->setTextFormat(Qt::PlainText);
    m_caption->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    m_line = new QLineEdit(this);
    m_line->setObjectName(QStringLiteral("txtValue"));
    m_line->setValidator(new plx::RowValidator(m_line));
    setFocusProxy(m_line);
    watch(m_line);
    watch(m_caption);
    // Qualified on purpose: during construction only this class's look can apply, and the
    // editors made just above must take the row's shading before the row is first shown.
    mvText::applyLook();
    setTwipsGeometry(0, 0, 4800);
}

QString mvText::sCaption() const
{
    return m_caption->text();
}

void mvText::setSCaption(const QString &caption)
{
    m_caption->setText(caption);
}

void mvText::setSMode(const QString &mode)
{
    m_mode = mode;
    applyValidator();
}

void mvText::setMaxLength(qint32 length)
{
    m_maxLength = std::max(length, 0);
    applyValidator();
}

void mvText::setDescWidth(qint32 twips)
{
    m_descWidthTw = std::max(twips, 0);
    applyGeometryPixels();
}

void mvText::setBackRed(bool on)
{
    m_red = on;
    applyLook();
}

void mvText::setBackWhite(bool on)
{
    m_white = on;
    applyLook();
}

void mvText::setBackLtGray(bool on)
{
    m_ltGray = on;
    applyLook();
}

void mvText::setToolTip(const QString &tip)
{
    QWidget::setToolTip(tip);
    m_caption->setToolTip(tip);
    m_line->setToolTip(tip);
    if (m_memo)
        m_memo->setToolTip(tip);
}

int mvText::effectiveMaxLength(const plx::FieldInfo &field) const
{
    int limit = m_maxLength > 0 ? m_maxLength : INT_MAX;
    if (field.type == plx::FieldType::Text && field.size > 0)
        limit = std::min(limit, field.size);
    return limit == INT_MAX ? 0 : limit;
}

void mvText::applyValidator()
{
    auto *validator =
        static_cast<plx::RowValidator *>(const_cast<QValidator *>(m_line->validator()));
    const mvDataBinding *binding =
        hasDataBinding() ? const_cast<mvText *>(this)->DataBinding() : nullptr;
    const plx::FieldInfo field = binding ? binding->fieldInfo() : plx::FieldInfo{};
    validator->configure(plx::inputModeOf(m_mode), effectiveMaxLength(field));
}

void mvText::setMultiLine(bool on)
{
    if (on == m_multiLine)
        return;
    const QString text = currentText();
    m_multiLine = on;
    if (on && !m_memo) {
        m_memo = new QPlainTextEdit(this);
        m_memo->setObjectName(QStringLiteral("txtMemo"));
        // Tab moves on to the next row, as in every other row, instead of typing a tab.
        m_memo->setTabChangesFocus(true);
        m_memo->setToolTip(toolTip());
        watch(m_memo);
        QWidget::setTabOrder(m_line, m_memo);
    }
    m_line->setVisible(!on);
    if (m_memo)
        m_memo->setVisible(on);
    setFocusProxy(on ? static_cast<QWidget *>(m_memo) : m_line);
    m_caption->setAlignment(Qt::AlignLeft | (on ? Qt::AlignTop : Qt::AlignVCenter));
    showText(text);
    applyLook();
    applyGeometryPixels();
}

QString mvText::currentText() const
{
    return m_multiLine ? m_memo->toPlainText() : m_line->text();
}

void mvText::showText(const QString &text)
{
    if (m_multiLine) {
        m_memo->setPlainText(text);
    } else {
        m_line->setText(text);
        m_line->setCursorPosition(0);
    }
}

QString mvText::displayOf(const QVariant &stored, const plx::FieldInfo &field)
{
    setMultiLine(field.type == plx::FieldType::Memo);
    applyValidator();
    QString text = plx::formatFieldValue(stored, field, m_format);
    if (field.type == plx::FieldType::Memo) {
        m_memoCrLf = text.contains(QLatin1String("\r\n")) || !text.contains(QLatin1Char('\n'));
        text.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    } else if (field.type == plx::FieldType::Text) {
        // Fixed-width fields come padded with blanks; the user should not type behind them.
        while (text.endsWith(QLatin1Char(' ')))
            text.chop(1);
    }
    return text;
}

std::optional<QVariant> mvText::storedOf(const QString &typed, const plx::FieldInfo &field,
                                         QString *reason) const
{
    const plx::InputMode mode = plx::inputModeOf(m_mode);
    const QString text = mode == plx::InputMode::Upper ? typed.toUpper() : typed;
    if (text.trimmed().isEmpty()) {
        if (m_allowNull)
            return QVariant();
        if (field.type == plx::FieldType::Text || field.type == plx::FieldType::Memo)
            return QVariant(QString());
        return refuse(reason, QStringLiteral("needs a value"));
    }
    if (mode == plx::InputMode::Digits) {
        for (const QChar ch : text)
            if (!ch.isDigit() || ch.unicode() > 127)
                return refuse(reason, QStringLiteral("may only hold the digits 0 to 9"));
    }
    switch (field.type) {
    case plx::FieldType::Text:
    case plx::FieldType::Memo: return storedText(text, field, reason);
    case plx::FieldType::Integer:
    case plx::FieldType::Numeric:
    case plx::FieldType::Double: return storedNumber(text, field, reason);
    case plx::FieldType::Date:
    case plx::FieldType::DateTime: return storedDate(text, field, m_format, reason);
    case plx::FieldType::Boolean: {
        const std::optional<bool> b = plx::parseLogicalText(text);
        if (!b)
            return refuse(reason, QStringLiteral("is not Yes or No"));
        return QVariant(*b);
    }
    case plx::FieldType::Binary: break;
    }
    return refuse(reason, QStringLiteral("cannot be edited as text"));
}

std::optional<QVariant> mvText::storedText(const QString &text, const plx::FieldInfo &field,
                                           QString *reason) const
{
    const int limit = effectiveMaxLength(field);
    if (limit > 0 && text.size() > limit)
        return refuse(reason, QStringLiteral("is longer than %1 characters").arg(limit));
    const int codePage =
        hasDataBinding() ? const_cast<mvText *>(this)->DataBinding()->CodePage() : 0;
    const QString bad = firstUnstorable(text, codePage);
    if (!bad.isEmpty())
        return refuse(reason,
                      QStringLiteral("contains the character \"%1\", which this table cannot "
                                     "store (code page %2)")
                          .arg(bad)
                          .arg(codePage));
    if (field.type == plx::FieldType::Memo && m_memoCrLf) {
        QString crlf = text;
        crlf.replace(QLatin1String("\r\n"), QLatin1String("\n"));
        crlf.replace(QLatin1Char('\n'), QLatin1String("\r\n"));
        return QVariant(crlf);
    }
    return QVariant(text);
}

void mvText::applyLook()
{
    const QPalette p = plx::shadedPalette(palette(), shade());
    m_line->setPalette(p);
    m_line->setReadOnly(Locked());
    if (m_memo) {
        m_memo->setPalette(p);
        m_memo->setReadOnly(Locked());
    }
}

void mvText::focusChanged(bool hasFocus)
{
    // The caption of the focused row takes the highlight colour, so the row with the
    // cursor is found at a glance even in a long stack.
    QPalette p = palette();
    if (hasFocus)
        p.setColor(QPalette::WindowText, palette().color(QPalette::Active, QPalette::Highlight));
    m_caption->setPalette(p);
    QFont f = font();
    f.setUnderline(hasFocus);
    m_caption->setFont(f);
}

void mvText::applyGeometryPixels()
{
    const int desc = std::min(plx::twipsToPixelsX(this, m_descWidthTw), width());
    const int gap = desc > 0 ? 4 : 0;
    m_caption->setGeometry(0, 0, std::max(desc - gap, 0), height());
    QWidget *editor = m_multiLine ? static_cast<QWidget *>(m_memo) : m_line;
    editor->setGeometry(desc, 0, std::max(width() - desc, 0), height());
}
