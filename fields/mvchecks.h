// fields/mvchecks.h: a stack of labelled check boxes (mvCheck), each bound to one field,
// driven like the text stack (mvName). The stored form of a box follows its field's type
// (see mervane/mvcheck.h). Rows are in the Tab order of their index.
#pragma once

#include "fields/rowstack.h"
#include "mervane/mvcheck.h"

class mvChecks : public RowStack
{
    Q_OBJECT
    Q_PROPERTY(bool bBoldOnChk READ bBoldOnChk WRITE setBBoldOnChk)

public:
    explicit mvChecks(QWidget *parent = nullptr);
    ~mvChecks() override;

    Q_INVOKABLE void setSCaption(qint16 n, const QString &caption);
    // Row 0's flag; setting it reaches every row that exists now.
    bool bBoldOnChk() const;
    void setBBoldOnChk(bool bold);

    mvCheck *checkRow(qint16 n) const { return static_cast<mvCheck *>(row(n)); }

protected:
    mvRow *createRow(qint16 index) override;
};
