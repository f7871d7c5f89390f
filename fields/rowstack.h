// fields/rowstack.h: what the text stack (mvName) and the check-box stack (mvChecks) share.
//
// A stack is a vertical array of row controls, indices 0 .. nUbound (row 0 always exists).
// It lays the rows out in twips, forwards the edit life cycle to every row in row order,
// combines their answers, binds every row to one record source, and opens a FoxPro table
// file once for all rows (sDBFPathFileName). A row that fails during a loop over the rows
// never stops the loop: the next row still gets its turn.
//
// Settings that go to every row (Locked, lAltGrayColor, DescWidthAll, bBoldOnChk) reach the
// rows that exist at the time of the call only; hosts set nUbound first.
#pragma once

#include "mervane/mvrow.h"

#include "services/widgets/boundcontrol.h"
#include "services/env.h"

#include <QStringList>
#include <QWidget>

#include <memory>

namespace plx {

class RowStackPrivate;

class RowStack : public QWidget, public plx::BoundControl
{
    Q_OBJECT
    // The row count and spacing are int properties (their accessors stay 16-bit): form
    // designers and .ui files know no 16-bit numbers.
    Q_PROPERTY(int nUbound READ nUbound WRITE setNUbound)
    Q_PROPERTY(int iVspacing READ iVspacing WRITE setIVspacing)
    Q_PROPERTY(qint16 DBFType READ DBFType WRITE setDBFType)
    Q_PROPERTY(QString Filter READ Filter)
    Q_PROPERTY(QString sDBFPathFileName READ sDBFPathFileName WRITE setSDBFPathFileName)
    Q_PROPERTY(bool Locked READ Locked WRITE setLocked)
    Q_PROPERTY(bool Enabled READ Enabled WRITE setEnabled)
    Q_PROPERTY(qint32 lAltGrayColor READ lAltGrayColor WRITE setLAltGrayColor)
    Q_PROPERTY(qint32 BackColor READ BackColor WRITE setBackColor)
    Q_PROPERTY(QStringList sFieldNames READ sFieldNames WRITE setSFieldNames)

public:
    ~RowStack() override;

    // Passed on to every row now and to rows added later; nullptr: library-wide defaults.
    void setServices(plx::Services *services) override;

    // The highest row index. Growing adds rows below the last one (same left edge, empty,
    // with the start values of a new row); shrinking deletes the rows above n with their
    // bindings. A negative n keeps row 0 only. The stack's height follows.
    qint16 nUbound() const;
    void setNUbound(qint16 n);
    // Twips between rows; used for rows added afterwards only (the rows in place stay).
    qint16 iVspacing() const;
    void setIVspacing(qint16 twips);

    // Reading 0 stores and returns 1 (a FoxPro table file). Type 1 makes
    // setSDBFPathFileName name the table after the file; other types leave it as it was.
    qint16 DBFType() const;
    void setDBFType(qint16 type);
    // The WHERE text (without "WHERE") the next setSDBFPathFileName opens the table with.
    QString Filter() const;
    // Set only from inside the library (a filtered file binding).
    void setFilterText(const QString &filter);

    // Binds every row to the table file at `path` (see the class comment); a missing file
    // (or a folder) is told once in a "File Not Found" box and changes nothing. A file that
    // exists but cannot be opened is not reported: every row then gets row 0's former
    // source (none at first).
    // Reading gives row 0's path, "" before any was set.
    virtual void setSDBFPathFileName(const QString &path);
    QString sDBFPathFileName() const;

    // An OLE colour (0x00BBGGRR): the background of the control and of the rows that exist
    // now; -1 (the default) until set: the palette's own.
    qint32 BackColor() const;
    void setBackColor(qint32 color);
    // Non-zero: every row that exists now shows the alternate grey.
    qint32 lAltGrayColor() const;
    void setLAltGrayColor(qint32 altGray);

    // Indexed accessors: n is 0 .. nUbound. Out of range, getters give 0 / "" and setters
    // do nothing. Row heights are in twips; changing one does not move the rows below it.
    Q_INVOKABLE qint16 iHeight(qint16 n) const;
    Q_INVOKABLE void setIHeight(qint16 n, qint16 twips);
    // The row's bound field name; the new name is looked up at the next UpdateDBF.
    Q_INVOKABLE QString sFieldName(qint16 n) const;
    Q_INVOKABLE void setSFieldName(qint16 n, const QString &name);
    // Every row's field name, row 0 first: the rows edited as one property (Qt Designer,
    // .ui files). A longer list adds rows (nUbound grows to fit); a shorter one leaves
    // the rows after it as they are.
    QStringList sFieldNames() const;
    void setSFieldNames(const QStringList &names);
    // The row's shown text without surrounding blanks. No bounds check on reading (an index
    // outside 0..nUbound throws std::out_of_range, the row array's indexing error); writing
    // checks (out of range does nothing) and stores "" for a Null. Writing only shows the
    // text, as mvRow::setValue.
    Q_INVOKABLE QString sValue(qint16 n) const;
    Q_INVOKABLE void setSValue(qint16 n, const QVariant &value);
    // Shows "" in row n (out of range: nothing); always returns an invalid (Null) QVariant.
    Q_INVOKABLE QVariant Clear(qint16 n);
    // Clear on every row.
    Q_INVOKABLE void ClearAll();

    // mvRow::Edit on every row (remembers what CancelEdit returns to; unlocks nothing).
    Q_INVOKABLE void Edit();
    Q_INVOKABLE void Update();
    // mvRow::Save on every row; each row shows its own failure, so this always returns "".
    Q_INVOKABLE QString SaveDBF();

    // plx::BoundControl, the operations the navigator drives. bEdit validates every row (a
    // box per refusing row unless bSilent) and collects "caption reason" lines joined by
    // "\r\n" into vReturn; Save is SaveDBF. Locked reads row 0; setLocked reaches the rows
    // that exist now. RecordSet is row 0's source (nullptr before any).
    Q_INVOKABLE void UpdateDBF() override;
    Q_INVOKABLE bool bEdit(bool bSilent, QVariant &vReturn) override;
    using plx::BoundControl::bEdit;
    Q_INVOKABLE void EditUpdate() override;
    Q_INVOKABLE void CancelEdit() override;
    Q_INVOKABLE QString Save() override;
    bool Locked() const override;
    void setLocked(bool locked) override;
    // Enabling or disabling the stack sets every row and every part of a row explicitly,
    // so that a row a host disabled on its own comes back with the stack. QWidget's
    // setEnabled on the stack does the same; a parent's enabling reaches the rows as Qt
    // passes it on.
    bool Enabled() const override;
    void setEnabled(bool enabled) override;
    QString Name() const override;
    std::shared_ptr<plx::RecordSource> RecordSet() const override;
    void setRecordSet(std::shared_ptr<plx::RecordSource> source) override;

    // Row n (nullptr outside 0..nUbound).
    mvRow *row(qint16 n) const;

    // A host's own rule for row n ("is required"; see mvRow::setRule), asked while the row
    // is unlocked; out of range does nothing. A row the rule refuses is one line of bEdit's
    // text like a row the field refuses: "caption reason".
    //
    //     names->setRule(0, [](const QString &text) {
    //         return text.trimmed().isEmpty() ? QStringLiteral("is required") : QString();
    //     });
    //
    // A host that connects instead answers ValidateRow.
    void setRule(qint16 n, mvRow::Rule rule);
    // What row n's rule, then a ValidateRow slot, says of its shown text: "" when they
    // accept (or n is outside 0..nUbound), else the reason.
    Q_INVOKABLE QString sRefusal(qint16 n);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

Q_SIGNALS:
    // Row `Index` asks after its rule accepted: a slot refuses `sValue` by setting
    // `sReason`, which comes back through the reference (direct connections only).
    void ValidateRow(qint16 Index, const QString &sValue, QString &sReason);

protected:
    // Takes `dd`, the state of the concrete stack, which makes its rows; row 0 is made here.
    RowStack(std::unique_ptr<RowStackPrivate> dd, QWidget *parent);

    plx::Services *services() const override;
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;

    const std::unique_ptr<RowStackPrivate> d_ptr;

private:
    Q_DECLARE_PRIVATE(RowStack)
};

} // namespace plx
