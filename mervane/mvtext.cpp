// mervane/mvtext.cpp
#include "mervane/mvtext.h"
#include "mervane/mvtext_p.h"

#include "mervane/twips.h"
#include "mervane/typedtext_p.h"
#include "mervane/valueformat.h"

#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>

namespace plx {

mvText::mvText(QWidget *parent) : mvRow(std::make_unique<mvTextPrivate>(), parent)
{
    d_func()->init();
    setTwipsGeometry(0, 0, 4800);
}

void mvTextPrivate::init()
{
    Q_Q(mvText);
    caption = new QLabel(q);
    caption->setObjectName(QStringLiteral("lblCaption"));
    caption->setTextFormat(Qt::PlainText);
    caption->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    line = new QLineEdit(q);
    line->setObjectName(QStringLiteral("txtValue"));
    line->setValidator(new plx::RowValidator(line));
    q->setFocusProxy(line);
    watch(line);
    watch(caption);
    // The editors made just above take the row's shading before the row is first shown.
    applyLook();
}

QString mvText::sCaption() const
{
    return d_func()->caption->text();
}

void mvText::setSCaption(const QString &caption)
{
    d_func()->caption->setText(caption);
}

QString mvText::sMode() const
{
    return d_func()->mode;
}

void mvText::setSMode(const QString &mode)
{
    Q_D(mvText);
    d->mode = mode;
    d->applyValidator();
}

QString mvText::sFormat() const
{
    return d_func()->format;
}

void mvText::setSFormat(const QString &format)
{
    d_func()->format = format;
}

qint32 mvText::MaxLength() const
{
    return d_func()->maxLength;
}

void mvText::setMaxLength(qint32 length)
{
    Q_D(mvText);
    d->maxLength = std::max(length, 0);
    d->applyValidator();
}

qint32 mvText::DescWidth() const
{
    return d_func()->descWidthTw;
}

void mvText::setDescWidth(qint32 twips)
{
    Q_D(mvText);
    d->descWidthTw = std::max(twips, 0);
    d->applyGeometryPixels();
}

bool mvText::bAllowNull() const
{
    return d_func()->allowNull;
}

void mvText::setBAllowNull(bool allow)
{
    d_func()->allowNull = allow;
}

bool mvText::BackRed() const
{
    return d_func()->red;
}

void mvText::setBackRed(bool on)
{
    Q_D(mvText);
    d->red = on;
    d->applyLook();
}

bool mvText::BackWhite() const
{
    return d_func()->white;
}

void mvText::setBackWhite(bool on)
{
    Q_D(mvText);
    d->white = on;
    d->applyLook();
}

bool mvText::BackLtGray() const
{
    return d_func()->ltGray;
}

void mvText::setBackLtGray(bool on)
{
    Q_D(mvText);
    d->ltGray = on;
    d->applyLook();
}

QString mvText::ToolTip() const
{
    return toolTip();
}

void mvText::setToolTip(const QString &tip)
{
    Q_D(mvText);
    QWidget::setToolTip(tip);
    d->caption->setToolTip(tip);
    d->line->setToolTip(tip);
    if (d->memo)
        d->memo->setToolTip(tip);
}

bool mvText::isMultiLine() const
{
    return d_func()->multiLine;
}

void mvTextPrivate::applyValidator()
{
    auto *validator = static_cast<plx::RowValidator *>(const_cast<QValidator *>(line->validator()));
    const plx::FieldInfo field = binding ? binding->fieldInfo() : plx::FieldInfo{};
    validator->configure(plx::inputModeOf(mode), plx::effectiveMaxLength(maxLength, field));
}

void mvTextPrivate::setMultiLine(bool on)
{
    Q_Q(mvText);
    if (on == multiLine)
        return;
    const QString text = currentText();
    multiLine = on;
    if (on && !memo) {
        memo = new QPlainTextEdit(q);
        memo->setObjectName(QStringLiteral("txtMemo"));
        // Tab moves on to the next row, as in every other row, instead of typing a tab.
        memo->setTabChangesFocus(true);
        memo->setToolTip(q->toolTip());
        watch(memo);
        QWidget::setTabOrder(line, memo);
    }
    line->setVisible(!on);
    if (memo)
        memo->setVisible(on);
    q->setFocusProxy(on ? static_cast<QWidget *>(memo) : line);
    caption->setAlignment(Qt::AlignLeft | (on ? Qt::AlignTop : Qt::AlignVCenter));
    showText(text);
    applyLook();
    applyGeometryPixels();
}

// The memo editor exists whenever multiLine is set; asking for both keeps that plain.
QString mvTextPrivate::currentText() const
{
    return multiLine && memo ? memo->toPlainText() : line->text();
}

void mvTextPrivate::showText(const QString &text)
{
    if (multiLine && memo) {
        memo->setPlainText(text);
    } else {
        line->setText(text);
        line->setCursorPosition(0);
    }
}

QString mvTextPrivate::displayOf(const QVariant &stored, const plx::FieldInfo &field)
{
    setMultiLine(field.type == plx::FieldType::Memo);
    applyValidator();
    QString text = plx::formatFieldValue(stored, field, format);
    if (field.type == plx::FieldType::Memo) {
        memoCrLf = text.contains(QLatin1String("\r\n")) || !text.contains(QLatin1Char('\n'));
        text.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    } else if (field.type == plx::FieldType::Text) {
        // Fixed-width fields come padded with blanks; the user should not type behind them.
        while (text.endsWith(QLatin1Char(' ')))
            text.chop(1);
    }
    return text;
}

std::optional<QVariant> mvTextPrivate::storedOf(const QString &typed, const plx::FieldInfo &field,
                                                QString *reason) const
{
    plx::TypedTextRules rules;
    rules.mode = plx::inputModeOf(mode);
    rules.format = format;
    rules.maxLength = maxLength;
    rules.allowNull = allowNull;
    rules.codePage = binding ? binding->CodePage() : 0;
    rules.memoCrLf = memoCrLf;
    return plx::storedFromTyped(typed, field, rules, reason);
}

void mvTextPrivate::applyLook()
{
    if (!line)
        return; // called before init(): the editors come right after the row itself
    const QPalette p = plx::shadedPalette(q_ptr->palette(), shade());
    line->setPalette(p);
    line->setReadOnly(locked);
    if (memo) {
        memo->setPalette(p);
        memo->setReadOnly(locked);
    }
}

void mvTextPrivate::focusChanged(bool hasFocus)
{
    // The caption of the focused row takes the highlight colour, so the row with the
    // cursor is found at a glance even in a long stack.
    const QWidget *q = q_ptr;
    QPalette p = q->palette();
    if (hasFocus)
        p.setColor(QPalette::WindowText, q->palette().color(QPalette::Active, QPalette::Highlight));
    caption->setPalette(p);
    QFont f = q->font();
    f.setUnderline(hasFocus);
    caption->setFont(f);
}

void mvTextPrivate::applyGeometryPixels()
{
    const QWidget *q = q_ptr;
    const int desc = std::min(plx::twipsToPixelsX(q, descWidthTw), q->width());
    const int gap = desc > 0 ? 4 : 0;
    caption->setGeometry(0, 0, std::max(desc - gap, 0), q->height());
    QWidget *editor = multiLine ? static_cast<QWidget *>(memo) : line;
    editor->setGeometry(desc, 0, std::max(q->width() - desc, 0), q->height());
}

} // namespace plx
