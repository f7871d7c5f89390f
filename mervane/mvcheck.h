// mervane/mvcheck.h: a row holding one labelled check box bound to one field.
//
// The row's value is exchanged as text, in the stored form of the bound field's type:
//   logical field   "True" / "False"
//   numeric field   "-1" / "0"; "1" / "0" once the field was seen holding a 1
//   text field      "T" / "F"; "Y" / "N" once the field was seen holding Y or N
// "" is an unchecked box that was never set (a Null field shows so and stays Null unless
// the box is clicked). Setting the value accepts any of these forms (and Yes/No, .T./.F.).
// With bBoldOnChk the caption of a checked box is bold.
#pragma once

#include "mervane/mvrow.h"

namespace plx {

class mvCheckPrivate;

class mvCheck : public mvRow
{
    Q_OBJECT
    Q_PROPERTY(bool bBoldOnChk READ bBoldOnChk WRITE setBBoldOnChk)
    Q_PROPERTY(bool Checked READ Checked)

public:
    explicit mvCheck(QWidget *parent = nullptr);

    // The box's label; '&' shows as itself, it marks no shortcut.
    QString sCaption() const override;
    void setSCaption(const QString &caption) override;

    // Takes effect at once on the caption of a box that is checked now.
    bool bBoldOnChk() const;
    void setBBoldOnChk(bool bold);
    // The box as shown: false for "" and for a text that is no logical.
    bool Checked() const;

    // Sets the value to "" (unchecked, never set), so a Null field stays Null on save.
    Q_INVOKABLE void Clear();

private:
    Q_DECLARE_PRIVATE(mvCheck)
};

} // namespace plx
