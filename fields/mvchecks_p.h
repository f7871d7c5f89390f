// fields/mvchecks_p.h: the check-box stack makes mvCheck rows, each a tab stop of its own.
#pragma once

#include "fields/mvchecks.h"
#include "fields/rowstack_p.h"

namespace plx {

class mvChecksPrivate : public RowStackPrivate
{
public:
    mvRow *createRow(qint16 index) override;

    // Row n as a check-box row (nullptr outside 0..nUbound).
    mvCheck *checkRow(qint16 n) const { return static_cast<mvCheck *>(rowAt(n)); }
};

} // namespace plx
