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

class QLabel;
class QLineEdit;
class QPlainTextEdit;

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
    QString sMode() const { return m_mode; }
    void setSMode(const QString &mode);
    // Used from the next UpdateDBF (what is shown now is not reformatted) and to read dates
    // back in its day/month/year order.
    QString sFormat() const { return m_format; }
    void setSFormat(const QString &format) { m_format = format; }
    // Negative becomes 0. For a text field the smaller of this and the field's size holds;
    // a longer value is refused on validation ("is longer than N characters").
    qint32 MaxLength() const { return m_maxLength; }
    void setMaxLength(qint32 length);
    // Width of the caption part in twips; negative becomes 0 (no caption, the value takes
    // the whole row), more than the row is cut to the row's width.
    qint32 DescWidth() const { return m_descWidthTw; }
    void setDescWidth(qint32 twips);
    // Off (the default): an empty value is stored as "" in text and memo fields and refused
    // ("needs a value") in fields of other types.
    bool bAllowNull() const { return m_allowNull; }
    void setBAllowNull(bool allow) { m_allowNull = allow; }
    // Background flags of the value field (see rowpalette.h for which one wins); they take
    // effect at once and also over a locked row's look.
    bool BackRed() const { return m_red; }
    void setBackRed(bool on);
    bool BackWhite() const { return m_white; }
    void setBackWhite(bool on);
    bool BackLtGray() const { return m_ltGray; }
    void setBackLtGray(bool on);
    // Shown over the caption and the value field alike.
    QString ToolTip() const { return toolTip(); }
    void setToolTip(const QString &tip);

    // True while the row edits a memo field over several lines; decided by the field's type
    // at each UpdateDBF.
    bool isMultiLine() const { return m_multiLine; }

protected:
    QString currentText() const override;
    void showText(const QString &text) override;
    QString displayOf(const QVariant &stored, const plx::FieldInfo &field) override;
    std::optional<QVariant> storedOf(const QString &typed, const plx::FieldInfo &field,
                                     QString *reason) const override;
    void applyLook() override;
    void applyGeometryPixels() override;
    bool backRed() const override { return m_red; }
    bool backWhite() const override { return m_white; }
    bool backLightGray() const override { return m_ltGray; }
    void focusChanged(bool hasFocus) override;

private:
    void setMultiLine(bool on);
    void applyValidator();
    int effectiveMaxLength(const plx::FieldInfo &field) const;
    // storedOf() for Text and Memo fields: the length limit, the table's code page and the
    // memo's line ends.
    std::optional<QVariant> storedText(const QString &text, const plx::FieldInfo &field,
                                       QString *reason) const;

    QLabel *m_caption;
    QLineEdit *m_line;
    QPlainTextEdit *m_memo = nullptr;
    bool m_multiLine = false;
    bool m_memoCrLf = true; // memo line ends as the loaded memo had them (CR LF by default)

    QString m_mode;
    QString m_format;
    qint32 m_maxLength = 0;
    qint32 m_descWidthTw = 1440;
    bool m_allowNull = false;
    bool m_red = false;
    bool m_white = false;
    bool m_ltGray = false;
};
