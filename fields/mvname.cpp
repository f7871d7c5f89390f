// fields/mvname.cpp
#include "fields/mvname.h"
#include "fields/textstack_p.h"

namespace plx {

mvName::mvName(QWidget *parent) : TextStack(std::make_unique<TextStackPrivate>(), parent) { }

mvName::~mvName() = default;

bool mvName::bAllowNull(qint16 n) const
{
    const mvText *r = textRow(n);
    return r && r->bAllowNull();
}

void mvName::setBAllowNull(qint16 n, bool allow)
{
    if (mvText *r = d_func()->textRow(n))
        r->setBAllowNull(allow);
}

} // namespace plx
