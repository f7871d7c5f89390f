// fields/textstack_p.h: a text stack makes mvText rows and, unless the concrete stack does
// more, raises their double clicks as its own DblClick(Index).
#pragma once

#include "fields/rowstack_p.h"
#include "fields/textstack.h"

namespace plx {

class TextStackPrivate : public RowStackPrivate
{
    Q_DECLARE_PUBLIC(TextStack)

public:
    mvRow *createRow(qint16 index) override;
    void rowDoubleClicked(qint16 index) override;

    // Row n as a text row (nullptr outside 0..nUbound).
    mvText *textRow(qint16 n) const { return static_cast<mvText *>(rowAt(n)); }
};

} // namespace plx
