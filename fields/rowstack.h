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

#include "services/boundcontrol.h"
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

    void setServices(plx::Services *services);

    qint16 nUbound() const { return qint16(m_rows.size() - 1); }
    void setNUbound(qint16 n);
    qint16 iVspacing() const { return m_vspacing; }
    void setIVspacing(qint16 twips) { m_vspacing = twips; }

    // Reading 0 stores and returns 1 (a FoxPro table file).
    qint16 DBFType() const;
    void setDBFType(qint16 type) { m_dbfType = type; }
    QString Filter() const { return m_filter; }
    // Set only from inside the library (a filtered file binding).
    void setFilterText(const QString &filter) { m_filter = filter; }

    // Binds every row to the table file at `path` (see the class comment); a missing file is
    // told once in a "File Not Found" box and changes nothing.
    virtual void setSDBFPathFileName(const QString &path);
    QString sDBFPathFileName() const;

    // An OLE colour (0x00BBGGRR): the control's own background.
    qint32 BackColor() const { return m_backColor; }
    void setBackColor(qint32 color);
    qint32 lAltGrayColor() const { return m_altGray; }
    void setLAltGrayColor(qint32 altGray);

    Q_INVOKABLE qint16 iHeight(qint16 n) const;
    Q_INVOKABLE void setIHeight(qint16 n, qint16 twips);
    Q_INVOKABLE QString sFieldName(qint16 n) const;
    Q_INVOKABLE void setSFieldName(qint16 n, const QString &name);
    // No bounds check on reading (an index outside 0..nUbound throws std::out_of_range,
    // the row array's indexing error); writing checks and stores "" for a Null.
    Q_INVOKABLE QString sValue(qint16 n) const;
    Q_INVOKABLE void setSValue(qint16 n, const QVariant &value);
    Q_INVOKABLE QVariant Clear(qint16 n);
    Q_INVOKABLE void ClearAll();

    Q_INVOKABLE void Edit();
    Q_INVOKABLE void Update() { UpdateDBF(); }
    Q_INVOKABLE QString SaveDBF();

    // plx::BoundControl, the operations the navigator drives.
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
    plx::Services *services() const { return m_services; }
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
