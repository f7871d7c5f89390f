// mervane/mvcheck.cpp
#include "mervane/mvcheck.h"

#include "mervane/valueformat.h"

#include <QCheckBox>

namespace {

// A check box that a locked row keeps from changing, while it still takes the focus so
// that a locked stack can be read with the keyboard.
class LockableCheckBox : public QCheckBox
{
public:
    explicit LockableCheckBox(QWidget *parent) : QCheckBox(parent) { }
    bool locked = false;

protected:
    void nextCheckState() override
    {
        if (!locked)
            QCheckBox::nextCheckState();
    }
};

} // namespace

mvCheck::mvCheck(QWidget *parent) : mvRow(parent)
{
    m_box = new LockableCheckBox(this);
    m_box->setObjectName(QStringLiteral("chkValue"));
    setFocusProxy(m_box);
    watch(m_box);
    connect(m_box, &QCheckBox::clicked, this, &mvCheck::userToggled);
    mvCheck::applyLook(); // this class's look: no subclass exists yet while constructing
    setTwipsGeometry(0, 0, 4800);
}

QString mvCheck::sCaption() const
{
    return m_box->text();
}

void mvCheck::setSCaption(const QString &caption)
{
    // '&' in a caption is text, not a shortcut marker.
    QString shown = caption;
    m_box->setText(shown.replace(QLatin1Char('&'), QLatin1String("&&")));
}

bool mvCheck::Checked() const
{
    return m_box->isChecked();
}

void mvCheck::setBBoldOnChk(bool bold)
{
    m_boldOnChk = bold;
    applyFont();
}

QString mvCheck::formText(bool checked) const
{
    switch (m_form) {
    case Form::Logical: return checked ? QStringLiteral("True") : QStringLiteral("False");
    case Form::MinusOne: return checked ? QStringLiteral("-1") : QStringLiteral("0");
    case Form::One: return checked ? QStringLiteral("1") : QStringLiteral("0");
    case Form::TF: return checked ? QStringLiteral("T") : QStringLiteral("F");
    case Form::YN: return checked ? QStringLiteral("Y") : QStringLiteral("N");
    }
    return QString();
}

void mvCheck::userToggled(bool checked)
{
    m_text = formText(checked);
    applyFont();
}

void mvCheck::showText(const QString &text)
{
    const std::optional<bool> b = plx::parseLogicalText(text);
    m_box->setChecked(b.value_or(false));
    // A form the row understands is kept in the row's own form; anything else is kept as
    // it is, so that validation can name it.
    m_text = text.trimmed().isEmpty() ? QString() : b ? formText(*b) : text;
    applyFont();
}

QString mvCheck::displayOf(const QVariant &stored, const plx::FieldInfo &field)
{
    const bool null = !stored.isValid() || stored.isNull();
    switch (field.type) {
    case plx::FieldType::Boolean: m_form = Form::Logical; break;
    case plx::FieldType::Integer:
    case plx::FieldType::Numeric:
    case plx::FieldType::Double:
        // Fields written by other programs hold 1 for true; keep to what the field holds.
        // Anything but a stored 1 means -1, unless the field has shown 1 before.
        if (!null && stored.toDouble() == 1.0)
            m_form = Form::One;
        else if ((!null && stored.toDouble() == -1.0) || m_form != Form::One)
            m_form = Form::MinusOne;
        break;
    default: {
        const QString t = null ? QString() : stored.toString().trimmed().toUpper();
        // Anything but Y/N means T/F, unless the field has shown Y/N before.
        if (t == QLatin1String("Y") || t == QLatin1String("N"))
            m_form = Form::YN;
        else if (t == QLatin1String("T") || t == QLatin1String("F") || m_form != Form::YN)
            m_form = Form::TF;
        break;
    }
    }
    if (null)
        return QString();
    if (field.type == plx::FieldType::Boolean)
        return formText(stored.toBool());
    if (field.type == plx::FieldType::Integer || field.type == plx::FieldType::Numeric
        || field.type == plx::FieldType::Double)
        return formText(stored.toDouble() != 0.0);
    const std::optional<bool> b = plx::parseLogicalText(stored.toString());
    return b ? formText(*b) : QString();
}

std::optional<QVariant> mvCheck::storedOf(const QString &text, const plx::FieldInfo &field,
                                          QString *reason) const
{
    bool checked = false;
    if (!text.trimmed().isEmpty()) {
        const std::optional<bool> b = plx::parseLogicalText(text);
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
    case plx::FieldType::Double: return QVariant(checked ? (m_form == Form::One ? 1 : -1) : 0);
    case plx::FieldType::Text:
    case plx::FieldType::Memo: return QVariant(formText(checked).left(1));
    default: break;
    }
    if (reason)
        *reason = QStringLiteral("is bound to a field that cannot hold Yes or No");
    return std::nullopt;
}

void mvCheck::applyFont()
{
    QFont f = font();
    f.setBold(m_boldOnChk && m_box->isChecked());
    f.setUnderline(m_hasFocus);
    m_box->setFont(f);
}

void mvCheck::applyLook()
{
    static_cast<LockableCheckBox *>(m_box)->locked = Locked();
    const plx::RowShade s = shade();
    QPalette p = plx::shadedPalette(palette(), s);
    if (s == plx::RowShade::Locked)
        p = palette();
    m_box->setPalette(p);
    m_box->setAutoFillBackground(s != plx::RowShade::Normal && s != plx::RowShade::Locked);
    // A locked box shows its state in the disabled text colour, without being disabled:
    // it can still be reached with Tab.
    QPalette text = m_box->palette();
    if (Locked())
        for (QPalette::ColorGroup g : { QPalette::Active, QPalette::Inactive })
            text.setColor(g, QPalette::WindowText,
                          palette().color(QPalette::Disabled, QPalette::WindowText));
    m_box->setPalette(text);
}

void mvCheck::focusChanged(bool hasFocus)
{
    m_hasFocus = hasFocus;
    applyFont();
}

void mvCheck::applyGeometryPixels()
{
    m_box->setGeometry(0, 0, width(), height());
}
