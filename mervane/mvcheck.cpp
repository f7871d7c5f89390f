// mervane/mvcheck.cpp
#include "mervane/mvcheck.h"
#include "mervane/mvcheck_p.h"

#include "mervane/valueformat.h"

namespace plx {

mvCheck::mvCheck(QWidget *parent) : mvRow(std::make_unique<mvCheckPrivate>(), parent)
{
    d_func()->init();
    setTwipsGeometry(0, 0, 4800);
}

void mvCheckPrivate::init()
{
    Q_Q(mvCheck);
    box = new LockableCheckBox(q);
    box->setObjectName(QStringLiteral("chkValue"));
    q->setFocusProxy(box);
    watch(box);
    QObject::connect(box, &QCheckBox::clicked, q, [this](bool checked) { userToggled(checked); });
    applyLook();
}

QString mvCheck::sCaption() const
{
    return d_func()->box->text();
}

void mvCheck::setSCaption(const QString &caption)
{
    // '&' in a caption is text, not a shortcut marker.
    QString shown = caption;
    d_func()->box->setText(shown.replace(QLatin1Char('&'), QLatin1String("&&")));
}

bool mvCheck::bBoldOnChk() const
{
    return d_func()->boldOnChk;
}

void mvCheck::setBBoldOnChk(bool bold)
{
    Q_D(mvCheck);
    d->boldOnChk = bold;
    d->applyFont();
}

bool mvCheck::Checked() const
{
    return d_func()->box->isChecked();
}

void mvCheck::Clear()
{
    d_func()->showText(QString());
}

QString mvCheckPrivate::formText(bool checked) const
{
    switch (form) {
    case Form::Logical: return checked ? QStringLiteral("True") : QStringLiteral("False");
    case Form::MinusOne: return checked ? QStringLiteral("-1") : QStringLiteral("0");
    case Form::One: return checked ? QStringLiteral("1") : QStringLiteral("0");
    case Form::TF: return checked ? QStringLiteral("T") : QStringLiteral("F");
    case Form::YN: return checked ? QStringLiteral("Y") : QStringLiteral("N");
    }
    return QString();
}

void mvCheckPrivate::userToggled(bool checked)
{
    text = formText(checked);
    applyFont();
}

void mvCheckPrivate::showText(const QString &shown)
{
    const std::optional<bool> b = plx::parseLogicalText(shown);
    box->setChecked(b.value_or(false));
    // A form the row understands is kept in the row's own form; anything else is kept as
    // it is, so that validation can name it.
    text = shown.trimmed().isEmpty() ? QString() : b ? formText(*b) : shown;
    applyFont();
}

void mvCheckPrivate::learnForm(const QVariant &stored, const plx::FieldInfo &field)
{
    const bool null = !stored.isValid() || stored.isNull();
    switch (field.type) {
    case plx::FieldType::Boolean: form = Form::Logical; break;
    case plx::FieldType::Integer:
    case plx::FieldType::Numeric:
    case plx::FieldType::Double:
        // Fields written by other programs hold 1 for true; keep to what the field holds.
        // Anything but a stored 1 means -1, unless the field has shown 1 before.
        if (!null && stored.toDouble() == 1.0)
            form = Form::One;
        else if ((!null && stored.toDouble() == -1.0) || form != Form::One)
            form = Form::MinusOne;
        break;
    default: {
        const QString t = null ? QString() : stored.toString().trimmed().toUpper();
        // Anything but Y/N means T/F, unless the field has shown Y/N before.
        if (t == QLatin1String("Y") || t == QLatin1String("N"))
            form = Form::YN;
        else if (t == QLatin1String("T") || t == QLatin1String("F") || form != Form::YN)
            form = Form::TF;
        break;
    }
    }
}

QString mvCheckPrivate::displayOf(const QVariant &stored, const plx::FieldInfo &field)
{
    learnForm(stored, field);
    if (!stored.isValid() || stored.isNull())
        return QString();
    if (field.type == plx::FieldType::Boolean)
        return formText(stored.toBool());
    if (field.type == plx::FieldType::Integer || field.type == plx::FieldType::Numeric
        || field.type == plx::FieldType::Double)
        return formText(stored.toDouble() != 0.0);
    const std::optional<bool> b = plx::parseLogicalText(stored.toString());
    return b ? formText(*b) : QString();
}

std::optional<QVariant> mvCheckPrivate::storedOf(const QString &typed, const plx::FieldInfo &field,
                                                 QString *reason) const
{
    bool checked = false;
    if (!typed.trimmed().isEmpty()) {
        const std::optional<bool> b = plx::parseLogicalText(typed);
        if (!b) {
            if (reason)
                *reason = QStringLiteral("is not Yes or No");
            return std::nullopt;
        }
        checked = *b;
    }
    switch (field.type) {
    case plx::FieldType::Boolean: return QVariant(checked);
    case plx::FieldType::Integer:
    case plx::FieldType::Numeric:
    case plx::FieldType::Double: return QVariant(checked ? (form == Form::One ? 1 : -1) : 0);
    case plx::FieldType::Text:
    case plx::FieldType::Memo: return QVariant(formText(checked).left(1));
    default: break;
    }
    if (reason)
        *reason = QStringLiteral("is bound to a field that cannot hold Yes or No");
    return std::nullopt;
}

void mvCheckPrivate::applyFont()
{
    QFont f = q_ptr->font();
    f.setBold(boldOnChk && box->isChecked());
    f.setUnderline(focused);
    box->setFont(f);
}

void mvCheckPrivate::applyLook()
{
    if (!box)
        return; // called before init(): the box comes right after the row itself
    box->locked = locked;
    const QPalette own = q_ptr->palette();
    const plx::RowShade s = shade();
    QPalette p = plx::shadedPalette(own, s);
    if (s == plx::RowShade::Locked)
        p = own;
    box->setPalette(p);
    box->setAutoFillBackground(s != plx::RowShade::Normal && s != plx::RowShade::Locked);
    // A locked box shows its state in the disabled text colour, without being disabled:
    // it can still be reached with Tab.
    QPalette dimmed = box->palette();
    if (locked)
        for (QPalette::ColorGroup g : { QPalette::Active, QPalette::Inactive })
            dimmed.setColor(g, QPalette::WindowText,
                            own.color(QPalette::Disabled, QPalette::WindowText));
    box->setPalette(dimmed);
}

void mvCheckPrivate::focusChanged(bool hasFocus)
{
    focused = hasFocus;
    applyFont();
}

void mvCheckPrivate::applyGeometryPixels()
{
    box->setGeometry(0, 0, q_ptr->width(), q_ptr->height());
}

} // namespace plx
