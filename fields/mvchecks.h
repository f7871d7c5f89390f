// fields/mvchecks.h: a stack of labelled check boxes (mvCheck), each bound to one field,
// driven like the text stack (mvName). The stored form of a box follows its field's type
// (see mervane/mvcheck.h). Rows are in the Tab order of their index.
#pragma once

#include "fields/rowstack.h"
#include "mervane/mvcheck.h"

namespace plx {

class mvChecksPrivate;

class mvChecks : public RowStack
{
    Q_OBJECT
    Q_PROPERTY(bool bBoldOnChk READ bBoldOnChk WRITE setBBoldOnChk)
    Q_PROPERTY(QStringList sCaptions READ sCaptions WRITE setSCaptions)

public:
    explicit mvChecks(QWidget *parent = nullptr);
    ~mvChecks() override;

    // Row n's caption (n in 0 .. nUbound; out of range does nothing).
    Q_INVOKABLE void setSCaption(qint16 n, const QString &caption);
    // Every row's caption as one list, as sFieldNames.
    QStringList sCaptions() const;
    void setSCaptions(const QStringList &captions);
    // Row 0's flag; setting it reaches every row that exists now.
    bool bBoldOnChk() const;
    void setBBoldOnChk(bool bold);

    // Row n as its own control (nullptr outside 0..nUbound).
    mvCheck *checkRow(qint16 n) const;

private:
    Q_DECLARE_PRIVATE(mvChecks)
};

} // namespace plx
