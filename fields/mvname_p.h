// fields/mvname_p.h: the text stack makes mvText rows and raises their double clicks as
// its own DblClick(Index).
#pragma once

#include "fields/mvname.h"
#include "fields/rowstack_p.h"

class mvNamePrivate : public RowStackPrivate
{
    Q_DECLARE_PUBLIC(mvName)

public:
    mvRow *createRow(qint16 index) override;
    void rowDoubleClicked(qint16 index) override;

    // Row n as a text row (nullptr outside 0..nUbound).
    mvText *textRow(qint16 n) const { return static_cast<mvText *>(rowAt(n)); }
};
