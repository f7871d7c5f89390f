// mervane/mvtext.h: a row of a caption and a text field bound to one field.
//
// The caption stands left in DescWidth twips, the value field takes the rest of the row.
// A memo field is edited over several lines (a plain-text editor filling the row's
// height, Tab still moving on to the next row). sMode restricts what can be typed:
//   "" or "Text"         anything
//   "Upper"              anything, turned to upper case as it is typed
//   "Digits"             0-9 only
//   "Number"             a signed decimal number (thousands separators allowed)
//   "Date"               digits and the separators / - .
// MaxLength limits typing; 0 (the default) means the field's own size for text fields.
// sFormat is the display format of numbers and dates (valueformat.h). An empty value is
// stored as Null when bAllowNull is set, otherwise as empty text where the field has one.
#pragma once

#include "mervane/mvrow.h"

namespace plx {

class mvTextPrivate;

class mvText : public mvRow
{
    Q_OBJECT
    Q_PROPERTY(QString sMode READ sMode WRITE setSMode)
    Q_PROPERTY(QString sFormat READ sFormat WRITE setSFormat)
    Q_PROPERTY(qint32 MaxLength READ MaxLength WRITE setMaxLength)
    Q_PROPERTY(qint32 DescWidth READ DescWidth WRITE setDescWidth)
    Q_PROPERTY(bool bAllowNull READ bAllowNull WRITE setBAllowNull)
    Q_PROPERTY(bool BackRed READ BackRed WRITE setBackRed)
    Q_PROPERTY(bool BackWhite READ BackWhite WRITE setBackWhite)
    Q_PROPERTY(bool BackLtGray READ BackLtGray WRITE setBackLtGray)
    Q_PROPERTY(QString ToolTip READ ToolTip WRITE setToolTip)

public:
    explicit mvText(QWidget *parent = nullptr);

    // Plain text: no markup, no shortcut marker.
    QString sCaption() const override;
    void setSCaption(const QString &caption) override;

    // One of the modes above, read without regard to case; any other text types as "Text".
    // In "Upper" mode the value is also stored in upper case; "Digits" refuses anything
    // but 0-9 on validation as well.
    QString sMode() const;
    void setSMode(const QString &mode);
    // Used from the next UpdateDBF (what is shown now is not reformatted) and to read dates
    // back in its day/month/year order.
    QString sFormat() const;
    void setSFormat(const QString &format);
    // Negative becomes 0. For a text field the smaller of this and the field's size holds;
    // a longer value is refused on validation ("is longer than N characters").
    qint32 MaxLength() const;
    void setMaxLength(qint32 length);
    // Width of the caption part in twips; negative becomes 0 (no caption, the value takes
    // the whole row), more than the row is cut to the row's width.
    qint32 DescWidth() const;
    void setDescWidth(qint32 twips);
    // Off (the default): an empty value is stored as "" in text and memo fields and refused
    // ("needs a value") in fields of other types.
    bool bAllowNull() const;
    void setBAllowNull(bool allow);
    // Background flags of the value field (see rowpalette.h for which one wins); they take
    // effect at once and also over a locked row's look.
    bool BackRed() const;
    void setBackRed(bool on);
    bool BackWhite() const;
    void setBackWhite(bool on);
    bool BackLtGray() const;
    void setBackLtGray(bool on);
    // Shown over the caption and the value field alike.
    QString ToolTip() const;
    void setToolTip(const QString &tip);

    // True while the row edits a memo field over several lines; decided by the field's type
    // at each UpdateDBF.
    bool isMultiLine() const;

private:
    Q_DECLARE_PRIVATE(mvText)
};

} // namespace plx
