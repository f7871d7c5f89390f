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

#include <QList>
#include <QWidget>

class RowStack : public QWidget, public plx::BoundControl
{
    Q_OBJECT
    Q_PROPERTY(qint16 nUbound READ nUbound WRITE setNUbound)
    Q_PROPERTY(qint16 iVspacing READ iVspacing WRITE setIVspacing)
    Q_PROPERTY(qint16 DBFType READ DBFType WRITE setDBFType)
    Q_PROPERTY(QString Filter READ Filter)
    Q_PROPERTY(QString sDBFPathFileName READ sDBFPathFileName WRITE setSDBFPathFileName)
    Q_PROPERTY(bool Locked READ Locked WRITE setLocked)
    Q_PROPERTY(bool Enabled READ Enabled WRITE setEnabled)
    Q_PROPERTY(qint32 lAltGrayColor READ lAltGrayColor WRITE setLAltGrayColor)
    Q_PROPERTY(qint32 BackColor READ BackColor WRITE setBackColor)

public:
    ~RowStack() override;

    // Passed on to every row now and to rows added later; nullptr: library-wide defaults.
    void setServices(plx::Services *services) override;

    // The highest row index. Growing adds rows below the last one (same left edge, empty,
    // with the start values of a new row); shrinking deletes the rows above n with their
    // bindings. A negative n keeps row 0 only. The stack's height follows.
    qint16 nUbound() const { return qint16(m_rows.size() - 1); }
    void setNUbound(qint16 n);
    // Twips between rows; used for rows added afterwards only (the rows in place stay).
    qint16 iVspacing() const { return m_vspacing; }
    void setIVspacing(qint16 twips) { m_vspacing = twips; }

    // Reading 0 stores and returns 1 (a FoxPro table file). Type 1 makes
    // setSDBFPathFileName name the table after the file; other types leave it as it was.
    qint16 DBFType() const;
    void setDBFType(qint16 type) { m_dbfType = type; }
    // The WHERE text (without "WHERE") the next setSDBFPathFileName opens the table with.
    QString Filter() const { return m_filter; }
    // Set only from inside the library (a filtered file binding).
    void setFilterText(const QString &filter) { m_filter = filter; }

    // Binds every row to the table file at `path` (see the class comment); a missing file
    // (or a folder) is told once in a "File Not Found" box and changes nothing. A file that
    // exists but cannot be opened is not reported: every row then gets row 0's former
    // source (none at first).
    // Reading gives row 0's path, "" before any was set.
    virtual void setSDBFPathFileName(const QString &path);
    QString sDBFPathFileName() const;

    // An OLE colour (0x00BBGGRR): the background of the control and of the rows that exist
    // now; -1 (the default) until set: the palette's own.
    qint32 BackColor() const { return m_backColor; }
    void setBackColor(qint32 color);
    // Non-zero: every row that exists now shows the alternate grey.
    qint32 lAltGrayColor() const { return m_altGray; }
    void setLAltGrayColor(qint32 altGray);

    // Indexed accessors: n is 0 .. nUbound. Out of range, getters give 0 / "" and setters
    // do nothing. Row heights are in twips; changing one does not move the rows below it.
    Q_INVOKABLE qint16 iHeight(qint16 n) const;
    Q_INVOKABLE void setIHeight(qint16 n, qint16 twips);
    // The row's bound field name; the new name is looked up at the next UpdateDBF.
    Q_INVOKABLE QString sFieldName(qint16 n) const;
    Q_INVOKABLE void setSFieldName(qint16 n, const QString &name);
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
    Q_INVOKABLE void Update() { UpdateDBF(); }
    // mvRow::Save on every row; each row shows its own failure, so this always returns "".
    Q_INVOKABLE QString SaveDBF();

    // plx::BoundControl, the operations the navigator drives. bEdit validates every row (a
    // box per refusing row unless bSilent) and collects "caption reason" lines joined by
    // "\r\n" into vReturn; Save is SaveDBF. Locked reads row 0; setLocked and setEnabled
    // reach the rows that exist now. RecordSet is row 0's source (nullptr before any).
    Q_INVOKABLE void UpdateDBF() override;
    Q_INVOKABLE bool bEdit(bool bSilent, QString *vReturn = nullptr) override;
    Q_INVOKABLE void EditUpdate() override;
    Q_INVOKABLE void CancelEdit() override;
    Q_INVOKABLE QString Save() override;
    bool Locked() const override;
    void setLocked(bool locked) override;
    bool Enabled() const override { return isEnabled(); }
    void setEnabled(bool enabled) override;
    QString Name() const override { return objectName(); }
    std::shared_ptr<plx::RecordSource> RecordSet() const override;
    void setRecordSet(std::shared_ptr<plx::RecordSource> source) override;

    // Row n (nullptr outside 0..nUbound).
    mvRow *row(qint16 n) const { return inRange(n) ? m_rows.at(n) : nullptr; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    explicit RowStack(QWidget *parent);

    // Makes row `index` (a child of this widget), with the start values of a new row.
    virtual mvRow *createRow(qint16 index) = 0;
    // Called once row `index` is placed, shown and wired.
    virtual void rowAdded(mvRow *row, qint16 index)
    {
        Q_UNUSED(row)
        Q_UNUSED(index)
    }
    // Row `index` reported a double click.
    virtual void rowDoubleClicked(qint16 index) { Q_UNUSED(index) }
    // Makes row 0; every stack's constructor calls it once.
    void initRows();

    bool inRange(qint16 n) const { return n >= 0 && n < m_rows.size(); }
    const QList<mvRow *> &rows() const { return m_rows; }
    plx::Services *services() const override { return m_services; }
    void yieldOnce();
    // Asks every row's binding object to disconnect and releases it.
    void disconnectRows();
    // The one "File Not Found" box for a missing table file.
    void fileNotFound(const QString &path) const;

    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void addRow();
    void layoutWidths();
    void fitHeight();
    // Calls `fn` on every row in order; what one row throws is swallowed.
    template<typename Fn> void forEachRow(Fn fn) const;

    QList<mvRow *> m_rows;
    plx::Services *m_services = nullptr;
    qint16 m_vspacing = 60;
    int m_fittedHeight = 0; // pixels: the height the rows need
    mutable qint16 m_dbfType = 0;
    QString m_filter;
    qint32 m_backColor = -1; // -1: the palette's own
    qint32 m_altGray = 0;
};
