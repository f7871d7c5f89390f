// fields/mvname.h: a stack of labelled text rows (mvText), each bound to one field.
//
//     auto *names = new mvName(form);
//     names->setNUbound(2);                       // rows 0..2; set before per-row settings
//     names->setSCaption(0, "Name");  names->setSFieldName(0, "NAME");
//     names->setSCaption(1, "City");  names->setSFieldName(1, "CITY");
//     names->setSCaption(2, "Amount"); names->setSFieldName(2, "AMOUNT");
//     names->setSFormat(2, "#,##0.00");
//     names->setRecordSet(rs);                    // or setSDBFPathFileName("C:\\data\\T.DBF")
//     names->UpdateDBF();                         // show the current record
//
// The navigator drives it through plx::BoundControl: Locked, bEdit, EditUpdate, Save,
// CancelEdit, UpdateDBF.
#pragma once

#include "fields/rowstack.h"
#include "mervane/mvtext.h"

class mvNamePrivate;

class mvName : public RowStack
{
    Q_OBJECT
    Q_PROPERTY(qint32 DescWidthAll READ DescWidthAll WRITE setDescWidthAll)

public:
    explicit mvName(QWidget *parent = nullptr);
    ~mvName() override;

    // Per-row settings of mvText (see mervane/mvtext.h for what each does), n in
    // 0 .. nUbound. Out of range, getters give "" / 0 / false and setters do nothing.
    Q_INVOKABLE QString sCaption(qint16 n) const;
    Q_INVOKABLE void setSCaption(qint16 n, const QString &caption);
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
    Q_INVOKABLE bool bAllowNull(qint16 n) const;
    Q_INVOKABLE void setBAllowNull(qint16 n, bool allow);
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

Q_SIGNALS:
    // Row `Index` was double-clicked.
    void DblClick(qint16 Index);

private:
    Q_DECLARE_PRIVATE(mvName)
};
