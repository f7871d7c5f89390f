// mervane/mvcheck_p.h: the check-box row's box and the stored form it keeps to.
#pragma once

#include "mervane/mvcheck.h"
#include "mervane/mvrow_p.h"

#include <QCheckBox>

namespace plx {

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

class mvCheckPrivate : public mvRowPrivate
{
    Q_DECLARE_PUBLIC(mvCheck)

public:
    // The forms a box is stored in; which one depends on the field and what it held.
    enum class Form { Logical, MinusOne, One, TF, YN };

    // Makes the box; called once the row widget exists.
    void init();

    QString currentText() const override { return text; }
    void showText(const QString &shown) override;
    QString displayOf(const QVariant &stored, const plx::FieldInfo &field) override;
    std::optional<QVariant> storedOf(const QString &typed, const plx::FieldInfo &field,
                                     QString *reason) const override;
    void applyLook() override;
    void applyGeometryPixels() override;
    void focusChanged(bool hasFocus) override;

    // The text of a checked / unchecked box in the current form.
    QString formText(bool checked) const;
    // Takes the form a numeric or text field shows it is written in.
    void learnForm(const QVariant &stored, const plx::FieldInfo &field);
    void userToggled(bool checked);
    void applyFont();

    LockableCheckBox *box = nullptr;
    QString text; // the value as text ("" until set)
    Form form = Form::Logical;
    bool boldOnChk = false;
    bool focused = false;
};

} // namespace plx
