// fields/mvchkwithtxt.h: one bound check box on top of a stack of bound text rows, for a
// yes/no field and the text fields that belong to it (a flag and its details).
//
// Check-box operations end in Chk, text-row operations end in Txt (or keep the text
// stack's names), whole-unit operations go to both parts: the text stack first, then the
// check box.
#pragma once

#include "fields/mvname.h"
#include "mervane/mvcheck.h"

#include "services/widgets/boundcontrol.h"

#include <QStringList>

#include <memory>

namespace plx {

class mvChkWithTxtPrivate;

class mvChkWithTxt : public QWidget, public plx::BoundControl
{
    Q_OBJECT
    Q_PROPERTY(QString sCaptionChk READ sCaptionChk WRITE setSCaptionChk)
    // An int property, as RowStack's.
    Q_PROPERTY(int nUbound READ nUbound WRITE setNUbound)
    Q_PROPERTY(QString sFieldNameChk READ sFieldNameChk WRITE setSFieldNameChk)
    Q_PROPERTY(QString sValueChk READ sValueChk WRITE setSValueChk)
    Q_PROPERTY(qint32 DescWidthAll READ DescWidthAll WRITE setDescWidthAll)
    Q_PROPERTY(qint32 BackColor READ BackColor WRITE setBackColor)
    Q_PROPERTY(QString sDBFPathFileName READ sDBFPathFileName WRITE setSDBFPathFileName)
    Q_PROPERTY(bool Locked READ Locked WRITE setLocked)
    Q_PROPERTY(bool Enabled READ Enabled WRITE setEnabled)
    Q_PROPERTY(qint32 lAltGrayColor READ lAltGrayColor WRITE setLAltGrayColor)
    Q_PROPERTY(bool bBoldOnChk READ bBoldOnChk WRITE setBBoldOnChk)
    Q_PROPERTY(QStringList sCaptionsTxt READ sCaptionsTxt WRITE setSCaptionsTxt)
    Q_PROPERTY(QStringList sFieldNamesTxt READ sFieldNamesTxt WRITE setSFieldNamesTxt)

public:
    explicit mvChkWithTxt(QWidget *parent = nullptr);
    ~mvChkWithTxt() override;

    // Passed on to the check box and the text stack.
    void setServices(plx::Services *services) override;
    plx::Services *services() const override;

    // Captions. Text rows are indexed 0 .. nUbound; out of range gives "" / does nothing.
    QString sCaptionChk() const;
    void setSCaptionChk(const QString &caption);
    Q_INVOKABLE QString sCaptionTxt(qint16 n) const;
    Q_INVOKABLE void setSCaptionTxt(qint16 n, const QString &caption);

    // The text stack's highest row index (RowStack::setNUbound); the unit's height follows.
    qint16 nUbound() const;
    void setNUbound(qint16 n);

    // Bound field names, looked up at the next Update. Text rows out of range: "" /
    // nothing.
    QString sFieldNameChk() const;
    void setSFieldNameChk(const QString &name);
    Q_INVOKABLE QString sFieldNameTxt(qint16 n) const;
    Q_INVOKABLE void setSFieldNameTxt(qint16 n, const QString &name);

    // Host rules (mvRow::setRule) for the check box and for text row n (out of range:
    // nothing); bEdit lists their refusals with the parts' own.
    void setRuleChk(mvRow::Rule rule);
    void setRuleTxt(qint16 n, mvRow::Rule rule);
    // The text rows' captions and field names as lists, row 0 first: the rows edited as
    // one property each (Qt Designer, .ui files). A longer list adds text rows; a shorter
    // one leaves the rows after it as they are.
    QStringList sCaptionsTxt() const;
    void setSCaptionsTxt(const QStringList &captions);
    QStringList sFieldNamesTxt() const;
    void setSFieldNamesTxt(const QStringList &names);

    // The check box's value text without surrounding blanks (the forms of
    // mervane/mvcheck.h; "" never set). Setting a Null gives "", anything else is shown as
    // its text; like mvRow::setValue, nothing is written until EditUpdate/Save.
    QString sValueChk() const;
    void setSValueChk(const QVariant &value);
    void setSValueChk(const QString &value);
    // RowStack::sValue/setSValue of the text rows, except that reading out of range gives ""
    // (checked against the text stack's nUbound first) instead of throwing.
    Q_INVOKABLE QString sValueTxt(qint16 n) const;
    Q_INVOKABLE void setSValueTxt(qint16 n, const QVariant &value);

    // Per-row text settings, passed on to the text stack (mvName): n in 0 .. nUbound,
    // out of range gives "" / 0 / false and does nothing. Widths and heights in twips.
    Q_INVOKABLE void setSModeTxt(qint16 n, const QString &mode);
    Q_INVOKABLE void setSFormat(qint16 n, const QString &format);
    Q_INVOKABLE void setMaxLengthTxt(qint16 n, qint32 length);
    qint32 DescWidthAll() const;
    void setDescWidthAll(qint32 twips);
    Q_INVOKABLE qint32 DescWidth(qint16 n) const;
    Q_INVOKABLE void setDescWidth(qint16 n, qint32 twips);
    Q_INVOKABLE qint16 iHeight(qint16 n) const;
    Q_INVOKABLE void setIHeight(qint16 n, qint16 twips);
    Q_INVOKABLE bool BackRed(qint16 n) const;
    Q_INVOKABLE void setBackRed(qint16 n, bool on);
    Q_INVOKABLE bool BackWhite(qint16 n) const;
    Q_INVOKABLE void setBackWhite(qint16 n, bool on);
    Q_INVOKABLE bool BackLtGray(qint16 n) const;
    Q_INVOKABLE void setBackLtGray(qint16 n, bool on);
    // The text stack's background (an OLE colour, -1: the palette's); the check box row
    // keeps its own.
    qint32 BackColor() const;
    void setBackColor(qint32 color);

    // Show "" (the check box: unchecked, never set) without writing anything; ClearTxt out
    // of range does nothing. ClearAll clears the check box first, then every text row.
    Q_INVOKABLE void ClearChk();
    Q_INVOKABLE void ClearTxt(qint16 n);
    Q_INVOKABLE void ClearAll();

    // When the file exists: the text stack binds to it and the check box shares its record
    // source; otherwise the one "File Not Found" box.
    // Reading gives the text stack's path.
    void setSDBFPathFileName(const QString &path);
    QString sDBFPathFileName() const;

    // Update loads the current record into the text rows, then the check box. Disconnect
    // lets the check box's source go, then the text stack's (RowStack binding objects and
    // their field names are dropped; the destructor calls it). Edit: the text rows, then the
    // check box remember what CancelEdit returns to.
    Q_INVOKABLE void Update();
    Q_INVOKABLE void Disconnect();
    Q_INVOKABLE void Edit();

    // Non-zero: the alternate grey on the text rows that exist now and on the check box.
    qint32 lAltGrayColor() const;
    void setLAltGrayColor(qint32 altGray);
    bool bBoldOnChk() const;
    void setBBoldOnChk(bool bold);

    // plx::BoundControl. UpdateDBF is Update (the parts load themselves). bEdit validates
    // the text rows, then the check box, and collects the refusals of both ("caption
    // reason" lines). Save saves the check box first, then the text rows, and returns the
    // text stack's answer (always ""): each part shows its own failure. Locked reads the
    // check box; RecordSet is the check box's source (nullptr when it has none). Enabling
    // or disabling sets both parts explicitly, through setEnabled or QWidget's alike, as
    // RowStack does.
    void UpdateDBF() override;
    Q_INVOKABLE bool bEdit(bool bSilent, QVariant &vReturn) override;
    using plx::BoundControl::bEdit;
    Q_INVOKABLE void EditUpdate() override;
    Q_INVOKABLE void CancelEdit() override;
    Q_INVOKABLE QString Save() override;
    bool Locked() const override;
    void setLocked(bool locked) override;
    bool Enabled() const override;
    void setEnabled(bool enabled) override;
    QString Name() const override;
    std::shared_ptr<plx::RecordSource> RecordSet() const override;
    void setRecordSet(std::shared_ptr<plx::RecordSource> source) override;

    mvCheck *checkBox() const;
    mvName *textStack() const;

Q_SIGNALS:
    // Text row `Index` was double-clicked; the check box raises none.
    void DblClick(qint16 Index);

public:
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    const std::unique_ptr<mvChkWithTxtPrivate> d_ptr;
    Q_DECLARE_PRIVATE(mvChkWithTxt)
};

} // namespace plx
