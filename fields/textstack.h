// fields/textstack.h: what the two text stacks (mvName, mvVIText) share: a stack of
// labelled text rows (mvText) with the per-row settings of a text row, raising a row's
// double click as its own DblClick(Index).
//
// The stacks differ in what a double click does and in the settings they add: mvName lets
// a row store an empty value as Null (bAllowNull), mvVIText fills a row from a list of
// allowed values. Everything else is here, so the two cannot drift apart.
#pragma once

#include "fields/rowstack.h"
#include "mervane/mvtext.h"

namespace plx {

class TextStackPrivate;

class TextStack : public RowStack
{
    Q_OBJECT
    Q_PROPERTY(qint32 DescWidthAll READ DescWidthAll WRITE setDescWidthAll)
    Q_PROPERTY(QStringList sCaptions READ sCaptions WRITE setSCaptions)

public:
    ~TextStack() override;

    // Per-row settings of mvText (see mervane/mvtext.h for what each does), n in
    // 0 .. nUbound. Out of range, getters give "" / 0 / false and setters do nothing.
    Q_INVOKABLE QString sCaption(qint16 n) const;
    Q_INVOKABLE void setSCaption(qint16 n, const QString &caption);
    // Every row's caption as one list, as sFieldNames.
    QStringList sCaptions() const;
    void setSCaptions(const QStringList &captions);
    Q_INVOKABLE void setSMode(qint16 n, const QString &mode);
    Q_INVOKABLE void setSFormat(qint16 n, const QString &format);
    Q_INVOKABLE void setMaxLength(qint16 n, qint32 length);
    Q_INVOKABLE qint32 DescWidth(qint16 n) const;
    Q_INVOKABLE void setDescWidth(qint16 n, qint32 twips);
    // Reads row 0's caption width; setting reaches every row that exists now (twips).
    qint32 DescWidthAll() const;
    void setDescWidthAll(qint32 twips);
    Q_INVOKABLE QString ToolTip(qint16 n) const;
    Q_INVOKABLE void setToolTip(qint16 n, const QString &tip);
    Q_INVOKABLE bool BackRed(qint16 n) const;
    Q_INVOKABLE void setBackRed(qint16 n, bool on);
    Q_INVOKABLE bool BackWhite(qint16 n) const;
    Q_INVOKABLE void setBackWhite(qint16 n, bool on);
    Q_INVOKABLE bool BackLtGray(qint16 n) const;
    Q_INVOKABLE void setBackLtGray(qint16 n, bool on);

    // Let every row's record source go (closing a table the stack opened itself once no one
    // shares it) and delete the binding objects; field names set before are lost with them.
    Q_INVOKABLE void Disconnect();
    Q_INVOKABLE void DisconnectDBF();

    // Row n as its own control (nullptr outside 0..nUbound).
    mvText *textRow(qint16 n) const;

    // Opens the text editor (plx::TextEditorDialog) on row n's value, for a memo or any
    // text too long for a row: titled with the row's caption, which also heads its
    // printout; limited to the smaller of the row's MaxLength and the field's defined size
    // (a memo has none); read-only while the row is locked or the stack disabled. Unless
    // cancelled, the edited text is shown in the row, to be written like a typed value.
    // Shift+F2 in a memo row does the same. Out of range: nothing.
    Q_INVOKABLE void EditText(qint16 n);

Q_SIGNALS:
    // Row `Index` was double-clicked.
    void DblClick(qint16 Index);

protected:
    // Takes `dd`, the state of the concrete stack.
    TextStack(std::unique_ptr<TextStackPrivate> dd, QWidget *parent);

    void keyPressEvent(QKeyEvent *event) override;

private:
    Q_DECLARE_PRIVATE(TextStack)
};

} // namespace plx
