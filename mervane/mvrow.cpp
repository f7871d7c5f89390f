// mervane/mvrow.cpp
#include "mervane/mvrow.h"
#include "mervane/mvrow_p.h"

#include "mervane/twips.h"

#include <QDate>
#include <QDateTime>
#include <QEvent>
#include <QScrollArea>

#include <cmath>
#include <utility>

namespace plx {

namespace {

bool isNull(const QVariant &v)
{
    return !v.isValid() || v.isNull();
}

// True when the table already holds `wanted` in `field`: text compared without the blanks
// FoxPro pads fixed-width fields with, numbers within the field's precision.
bool sameStored(const QVariant &held, const QVariant &wanted, const plx::FieldInfo &field)
{
    if (isNull(wanted))
        return isNull(held) || held.toString().trimmed().isEmpty();
    if (isNull(held))
        return false;
    switch (field.type) {
    case plx::FieldType::Integer:
    case plx::FieldType::Numeric:
    case plx::FieldType::Double:
        return std::fabs(held.toDouble() - wanted.toDouble())
            <= std::pow(10.0, -std::max(field.decimals, 6));
    case plx::FieldType::Boolean: return held.toBool() == wanted.toBool();
    case plx::FieldType::Date: return held.toDate() == wanted.toDate();
    case plx::FieldType::DateTime: return held.toDateTime() == wanted.toDateTime();
    default: break;
    }
    QString a = held.toString();
    QString b = wanted.toString();
    while (a.endsWith(QLatin1Char(' ')))
        a.chop(1);
    while (b.endsWith(QLatin1Char(' ')))
        b.chop(1);
    return a == b;
}

} // namespace

mvRowPrivate::~mvRowPrivate() = default;

plx::RowShade mvRowPrivate::shade() const
{
    return plx::rowShade(backRed(), backWhite(), backLightGray(), altGray != 0, locked);
}

void mvRowPrivate::showProblem(const QString &title, const QString &text, int style) const
{
    (void)plx::prompterOf(services).msgBox(text, style, title);
}

void mvRowPrivate::watch(QWidget *child) const
{
    child->installEventFilter(q_ptr);
}

void mvRowPrivate::applyGeometry()
{
    Q_Q(mvRow);
    q->setGeometry(plx::twipsToPixelsX(q, leftTw), plx::twipsToPixelsY(q, topTw),
                   plx::twipsToPixelsX(q, widthTw), plx::twipsToPixelsY(q, heightTw));
    applyGeometryPixels();
}

std::shared_ptr<plx::RecordSource> mvRowPrivate::source() const
{
    return binding ? binding->RecordSet() : nullptr;
}

int mvRowPrivate::boundField() const
{
    return binding ? binding->fieldIndex() : -1;
}

QString mvRowPrivate::writeFailure(const plx::Status &status) const
{
    if (status.code() == plx::Status::Code::Locked)
        return QStringLiteral("could not be saved: the record is locked by another user");
    if (status.message().contains(QLatin1String("code page")))
        return QStringLiteral("could not be saved: it has characters this table cannot store");
    return QStringLiteral("could not be saved: ") + status.message();
}

plx::Status mvRowPrivate::writePending(plx::RecordSource &rs, int index) const
{
    // Whoever started the edit writes the record, once, with every row's value in it: a
    // write per row would leave the record half saved when one of them fails.
    if (rs.editMode() != plx::EditMode::None)
        return rs.setValue(index, *pending);
    const plx::Result<QVariant> held = rs.value(index);
    if (held.isOk() && sameStored(held.value(), *pending, binding->fieldInfo()))
        return plx::Status::ok();
    plx::Status s = rs.Edit();
    if (!s.isOk())
        return s;
    s = rs.setValue(index, *pending);
    if (s.isOk())
        s = rs.Update();
    if (!s.isOk())
        (void)rs.CancelUpdate();
    return s;
}

mvRow::mvRow(std::unique_ptr<mvRowPrivate> dd, QWidget *parent)
    : QWidget(parent), d_ptr(std::move(dd))
{
    d_ptr->q_ptr = this;
    setFocusPolicy(Qt::StrongFocus);
}

mvRow::~mvRow()
{
    releaseDataBinding();
}

void mvRow::setServices(plx::Services *services)
{
    d_func()->services = services;
}

QString mvRow::Text() const
{
    return d_func()->currentText();
}

void mvRow::setText(const QString &text)
{
    d_func()->showText(text);
}

QString mvRow::Value() const
{
    return d_func()->currentText();
}

void mvRow::setValue(const QString &value)
{
    d_func()->showText(value);
}

bool mvRow::Locked() const
{
    return d_func()->locked;
}

void mvRow::setLocked(bool locked)
{
    Q_D(mvRow);
    d->locked = locked;
    d->applyLook();
}

qint32 mvRow::lAltGrayColor() const
{
    return d_func()->altGray;
}

void mvRow::setLAltGrayColor(qint32 altGray)
{
    Q_D(mvRow);
    d->altGray = altGray;
    d->applyLook();
}

qint16 mvRow::iHeight() const
{
    return d_func()->heightTw;
}

void mvRow::setIHeight(qint16 twips)
{
    Q_D(mvRow);
    d->heightTw = std::max<qint16>(twips, 0);
    d->applyGeometry();
}

int mvRow::leftTwips() const
{
    return d_func()->leftTw;
}

int mvRow::topTwips() const
{
    return d_func()->topTw;
}

int mvRow::widthTwips() const
{
    return d_func()->widthTw;
}

void mvRow::setTwipsGeometry(int left, int top, int width)
{
    Q_D(mvRow);
    d->leftTw = left;
    d->topTw = top;
    d->widthTw = std::max(width, 0);
    d->applyGeometry();
}

void mvRow::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    d_func()->applyGeometryPixels();
}

mvDataBinding *mvRow::DataBinding()
{
    Q_D(mvRow);
    if (!d->binding)
        d->binding = new mvDataBinding(this);
    return d->binding;
}

bool mvRow::hasDataBinding() const
{
    return d_func()->binding != nullptr;
}

void mvRow::releaseDataBinding()
{
    Q_D(mvRow);
    delete d->binding.data();
    d->binding = nullptr;
}

bool mvRow::isEditing() const
{
    return d_func()->editing;
}

plx::Status mvRow::UpdateDBF()
{
    Q_D(mvRow);
    const std::shared_ptr<plx::RecordSource> rs = d->source();
    if (!rs)
        return plx::Status(plx::Status::Code::InvalidArgument, QStringLiteral("no record source"));
    const int index = d->binding->fieldIndex();
    d->pending.reset();
    d->problem.clear();
    d->bufferedText.reset();
    if (index < 0) {
        // Showing the former record's value under a field that is not there would mislead.
        d->showText(QString());
        d->loadedText = d->beforeEdit = d->currentText();
        return plx::Status(plx::Status::Code::UnknownField,
                           QStringLiteral("no field %1").arg(d->binding->sFieldName()));
    }
    const plx::Result<QVariant> value = rs->value(index);
    // No current record (BOF/EOF) shows as empty, like a Null.
    d->showText(d->displayOf(value.isOk() ? value.value() : QVariant(), d->binding->fieldInfo()));
    d->loadedText = d->beforeEdit = d->currentText();
    return plx::Status::ok();
}

void mvRow::Edit()
{
    Q_D(mvRow);
    d->editing = true;
    d->beforeEdit = d->currentText();
}

void mvRow::CancelEdit()
{
    Q_D(mvRow);
    d->editing = false;
    d->pending.reset();
    d->problem.clear();
    d->bufferedText.reset();
    d->showText(d->beforeEdit);
}

bool mvRow::bValidate(bool bSilent, QString *reason)
{
    Q_D(mvRow);
    const QString text = d->currentText();
    QString why;
    const bool fieldTakesIt = text == d->loadedText || d->boundField() < 0
        || d->storedOf(text, d->binding->fieldInfo(), &why).has_value();
    if (fieldTakesIt) {
        why = d->locked ? QString() : hostRefusal();
        if (why.isEmpty())
            return true;
    }
    if (reason)
        *reason = why;
    if (!bSilent)
        d->showProblem(QStringLiteral("Invalid Entry"), sCaption() + QLatin1Char(' ') + why,
                       plx::MsgStyle::Exclamation);
    return false;
}

void mvRow::setRule(Rule rule)
{
    d_func()->rule = std::move(rule);
}

QString mvRow::hostRefusal()
{
    Q_D(mvRow);
    const QString text = d->currentText();
    QString why = d->rule ? d->rule(text) : QString();
    if (why.isEmpty())
        Q_EMIT Validate(text, why);
    return why;
}

void mvRow::EditUpdate()
{
    Q_D(mvRow);
    d->editing = false;
    d->problem.clear();
    const QString text = d->currentText();
    if (text == d->loadedText && !d->bufferedText)
        return;
    const std::shared_ptr<plx::RecordSource> rs = d->source();
    if (!rs || d->binding->fieldIndex() < 0) {
        d->problem = QStringLiteral("is not bound to a field of the record");
        return;
    }
    QString why;
    const std::optional<QVariant> stored = d->storedOf(text, d->binding->fieldInfo(), &why);
    if (!stored) {
        d->problem = why;
        return;
    }
    d->pending = stored;
    if (rs->editMode() != plx::EditMode::None) {
        const plx::Status s = rs->setValue(d->binding->fieldIndex(), *stored);
        if (!s.isOk()) {
            d->problem = d->writeFailure(s);
            d->pending.reset();
        } else {
            d->bufferedText = text;
        }
    }
}

QString mvRow::Save()
{
    Q_D(mvRow);
    QString problem = d->problem;
    d->problem.clear();
    if (problem.isEmpty() && d->pending) {
        const std::shared_ptr<plx::RecordSource> rs = d->source();
        const int index = d->boundField();
        if (!rs || index < 0) {
            problem = QStringLiteral("is not bound to a field of the record");
        } else {
            const plx::Status s = d->writePending(*rs, index);
            if (!s.isOk())
                problem = d->writeFailure(s);
        }
    }
    d->pending.reset();
    if (!problem.isEmpty()) {
        d->showProblem(QStringLiteral("Value Not Saved"),
                       sCaption() + QLatin1Char(' ') + problem
                           + QStringLiteral("\r\n\r\nThe field keeps its former value."),
                       plx::MsgStyle::Exclamation);
        // As the box says: the row shows the value the record keeps, not the refused one.
        d->showText(d->bufferedText.value_or(d->loadedText));
    }
    return problem;
}

bool mvRow::eventFilter(QObject *watched, QEvent *event)
{
    switch (event->type()) {
    case QEvent::MouseButtonDblClick: Q_EMIT DblClick(); break;
    case QEvent::FocusIn:
        d_func()->focusChanged(true);
        // The focused row must be on screen when the stack sits in a scroll area.
        for (QWidget *p = parentWidget(); p; p = p->parentWidget()) {
            if (auto *area = qobject_cast<QScrollArea *>(p)) {
                area->ensureWidgetVisible(this, 0, 0);
                break;
            }
        }
        break;
    case QEvent::FocusOut: d_func()->focusChanged(false); break;
    default: break;
    }
    return QWidget::eventFilter(watched, event);
}

void mvRow::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::EnabledChange
        || event->type() == QEvent::StyleChange)
        d_func()->applyLook();
}

} // namespace plx
