// mervane/mvtext_p.h: the text row's children and settings.
#pragma once

#include "mervane/mvrow_p.h"
#include "mervane/mvtext.h"

class QLabel;
class QLineEdit;
class QPlainTextEdit;

namespace plx {

class mvTextPrivate : public mvRowPrivate
{
    Q_DECLARE_PUBLIC(mvText)

public:
    // Makes the caption and the one-line editor; called once the row widget exists.
    void init();

    QString currentText() const override;
    void showText(const QString &text) override;
    QString displayOf(const QVariant &stored, const plx::FieldInfo &field) override;
    std::optional<QVariant> storedOf(const QString &typed, const plx::FieldInfo &field,
                                     QString *reason) const override;
    void applyLook() override;
    void applyGeometryPixels() override;
    void focusChanged(bool hasFocus) override;
    bool backRed() const override { return red; }
    bool backWhite() const override { return white; }
    bool backLightGray() const override { return ltGray; }

    // Switches between the one-line editor and the memo editor, keeping the text.
    void setMultiLine(bool on);
    // Tells the line editor's validator the mode and the length limit of the bound field.
    void applyValidator();

    QLabel *caption = nullptr;
    QLineEdit *line = nullptr;
    QPlainTextEdit *memo = nullptr;
    bool multiLine = false;
    bool memoCrLf = true; // memo line ends as the loaded memo had them (CR LF by default)

    QString mode;
    QString format;
    qint32 maxLength = 0;
    qint32 descWidthTw = 1440;
    bool allowNull = false;
    bool red = false;
    bool white = false;
    bool ltGray = false;
};

} // namespace plx
