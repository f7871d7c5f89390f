// mervane/mvrow.cpp
#include "mervane/mvrow.h"

#include "mervane/twips.h"

#include <QDate>
#include <QDateTime>
#include <QEvent>
#include <QScrollArea>

#include <cmath>

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

mvRow::mvRow(QWidget *parent) : QWidget(parent)
{
    setFocusPolicy(Qt::StrongFocus);
}

mvRow::~mvRow()
{
    releaseDataBinding();
}

void mvRow::setLocked(bool locked)
{
    m_locked = locked;
    applyLook();
}

void mvRow::setLAltGrayColor(qint32 altGray)
{
    m_altGray = altGray;
    applyLook();
}

void mvRow::setIHeight(qint16 twips)
{
    m_heightTw = std::max<qint16>(twips, 0);
    applyGeometry();
}

void mvRow::setTwipsGeometry(int left, int top, int width)
{
    m_leftTw = left;
    m_topTw = top;
    m_widthTw = std::max(width, 0);
    applyGeometry();
}

void mvRow::applyGeometry()
{
    setGeometry(plx::twipsToPixelsX(this, m_leftTw), plx::twipsToPixelsY(this, m_topTw),
                plx::twipsToPixelsX(this, m_widthTw), plx::twipsToPixelsY(this, m_heightTw));
    applyGeometryPixels();
}

void mvRow::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    applyGeometryPixels();
}

mvDataBinding *mvRow::DataBinding()
{
    if (!m_binding)
        m_binding = new mvDataBinding(this);
    return m_binding;
}

void mvRow::releaseDataBinding()
{
    delete m_binding.data();
    m_binding = nullptr;
}

plx::RowShade mvRow::shade() const
{
    return plx::rowShade(backRed(), backWhite(), backLightGray(), m_altGray != 0, m_locked);
}

plx::Status mvRow::UpdateDBF()
{
    mvDataBinding *binding = m_binding;
    const std::shared_ptr<plx::RecordSource> rs = binding ? binding->RecordSet() : nullptr;
    if (!rs)
        return plx::Status(plx::Status::Code::InvalidArgument, QStringLiteral("no record source"));
    const int index = binding->fieldIndex();
    m_pending.reset();
    m_problem.clear();
    if (index < 0) {
        // Showing the former record's value under a field that is not there would mislead.
        showText(QString());
        m_loadedText = m_beforeEdit = currentText();
        return plx::Status(plx::Status::Code::UnknownField,
                           QStringLiteral("no field %1").arg(binding->sFieldName()));
    }
    const plx::Result<QVariant> value = rs->value(index);
    // No current record (BOF/EOF) shows as empty, like a Null.
    showText(displayOf(value.isOk() ? value.value() : QVariant(), binding->fieldInfo()));
    m_loadedText = m_beforeEdit = currentText();
    return plx::Status::ok();
}

void mvRow::Edit()
{
    m_editing = true;
    m_beforeEdit = currentText();
}

void mvRow::CancelEdit()
{
    m_editing = false;
    m_pending.reset();
    m_problem.clear();
    showText(m_beforeEdit);
}

bool mvRow::bValidate(bool bSilent, QString *reason)
{
    const QString text = currentText();
    if (text == m_loadedText || !m_binding || m_binding->fieldIndex() < 0)
        return true;
    QString why;
    if (storedOf(text, m_binding->fieldInfo(), &why))
        return true;
    if (reason)
        *reason = why;
    if (!bSilent)
        showProblem(QStringLiteral("Invalid Entry"), sCaption() + QLatin1Char(' ') + why,
                    plx::MsgStyle::Exclamation);
    return false;
}

void mvRow::EditUpdate()
{
    m_editing = false;
    m_problem.clear();
    const QString text = currentText();
    if (text == m_loadedText)
        return;
    mvDataBinding *binding = m_binding;
    const std::shared_ptr<plx::RecordSource> rs = binding ? binding->RecordSet() : nullptr;
    if (!rs || binding->fieldIndex() < 0) {
        m_problem = QStringLiteral("is not bound to a field of the record");
        return;
    }
    QString why;
    const std::optional<QVariant> stored = storedOf(text, binding->fieldInfo(), &why);
    if (!stored) {
        m_problem = why;
        return;
    }
    m_pending = stored;
    if (rs->editMode() != plx::EditMode::None) {
        const plx::Status s = rs->setValue(binding->fieldIndex(), *stored);
        if (!s.isOk()) {
            m_problem = writeFailure(s);
            m_pending.reset();
        }
    }
}

QString mvRow::writeFailure(const plx::Status &status) const
{
    if (status.code() == plx::Status::Code::Locked)
        return QStringLiteral("could not be saved: the record is locked by another user");
    if (status.message().contains(QLatin1String("code page")))
        return QStringLiteral("could not be saved: it has characters this table cannot store");
    return QStringLiteral("could not be saved: ") + status.message();
}

QString mvRow::Save()
{
    QString problem = m_problem;
    m_problem.clear();
    if (problem.isEmpty() && m_pending) {
        mvDataBinding *binding = m_binding;
        const std::shared_ptr<plx::RecordSource> rs = binding ? binding->RecordSet() : nullptr;
        const int index = binding ? binding->fieldIndex() : -1;
        plx::Status s;
        if (!rs || index < 0) {
            problem = QStringLiteral("is not bound to a field of the record");
        } else if (rs->editMode() != plx::EditMode::None) {
            // Whoever started the edit writes the record, once, with every row's value in
            // it: a write per row would leave the record half saved when one of them fails.
            s = rs->setValue(index, *m_pending);
        } else {
            const plx::Result<QVariant> held = rs->value(index);
            if (!held.isOk() || !sameStored(held.value(), *m_pending, binding->fieldInfo())) {
                s = rs->Edit();
                if (s.isOk()) {
                    s = rs->setValue(index, *m_pending);
                    if (s.isOk())
                        s = rs->Update();
                    if (!s.isOk())
                        (void)rs->CancelUpdate();
                }
            }
        }
        if (!s.isOk())
            problem = writeFailure(s);
    }
    m_pending.reset();
    if (!problem.isEmpty()) {
        showProblem(QStringLiteral("Value Not Saved"),
                    sCaption() + QLatin1Char(' ') + problem
                        + QStringLiteral("\r\n\r\nThe field keeps its former value."),
                    plx::MsgStyle::Exclamation);
        // As the box says: the row shows the value the record kept, not the refused one.
        showText(m_loadedText);
    }
    return problem;
}

void mvRow::showProblem(const QString &title, const QString &text, int style) const
{
    (void)plx::prompterOf(m_services).msgBox(text, style, title);
}

void mvRow::watch(QWidget *child)
{
    child->installEventFilter(this);
}

bool mvRow::eventFilter(QObject *watched, QEvent *event)
{
    switch (event->type()) {
    case QEvent::MouseButtonDblClick: Q_EMIT DblClick(); break;
    case QEvent::FocusIn:
        focusChanged(true);
        // The focused row must be on screen when the stack sits in a scroll area.
        for (QWidget *p = parentWidget(); p; p = p->parentWidget()) {
            if (auto *area = qobject_cast<QScrollArea *>(p)) {
                area->ensureWidgetVisible(this, 0, 0);
                break;
            }
        }
        break;
    case QEvent::FocusOut: focusChanged(false); break;
    default: break;
    }
    return QWidget::eventFilter(watched, event);
}

void mvRow::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::EnabledChange
        || event->type() == QEvent::StyleChange)
        applyLook();
}
