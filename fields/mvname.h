// fields/mvname.h: a stack of labelled text rows (mvText), each bound to one field.
//
//     auto *names = new plx::mvName(form);
//     names->setNUbound(2);                       // rows 0..2; set before per-row settings
//     names->setSCaption(0, "Name");  names->setSFieldName(0, "NAME");
//     names->setSCaption(1, "City");  names->setSFieldName(1, "CITY");
//     names->setSCaption(2, "Amount"); names->setSFieldName(2, "AMOUNT");
//     names->setSFormat(2, "#,##0.00");
//     names->setRecordSet(rs);                    // or setSDBFPathFileName("C:\\data\\T.DBF")
//     names->UpdateDBF();                         // show the current record
//
// The navigator drives it through plx::BoundControl: Locked, bEdit, EditUpdate, Save,
// CancelEdit, UpdateDBF. The per-row settings are those of every text stack (textstack.h).
#pragma once

#include "fields/textstack.h"

namespace plx {

class mvName : public TextStack
{
    Q_OBJECT

public:
    explicit mvName(QWidget *parent = nullptr);
    ~mvName() override;

    // Row n stores an empty value as Null (n in 0 .. nUbound; out of range gives false and
    // does nothing).
    Q_INVOKABLE bool bAllowNull(qint16 n) const;
    Q_INVOKABLE void setBAllowNull(qint16 n, bool allow);

private:
    Q_DECLARE_PRIVATE(TextStack)
};

} // namespace plx
