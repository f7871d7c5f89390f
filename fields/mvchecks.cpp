// fields/mvchecks.cpp
#include "fields/mvchecks.h"
#include "fields/mvchecks_p.h"

namespace plx {

mvChecks::mvChecks(QWidget *parent) : RowStack(std::make_unique<mvChecksPrivate>(), parent) { }

mvChecks::~mvChecks() = default;

mvRow *mvChecksPrivate::createRow(qint16 index)
{
    auto *r = new mvCheck(q_ptr);
    r->setObjectName(QStringLiteral("mvCheck1_%1").arg(index));
    // A tab stop of its own, in the order of the row index (the stack links the order).
    r->setFocusPolicy(Qt::StrongFocus);
    return r;
}

mvCheck *mvChecks::checkRow(qint16 n) const
{
    return static_cast<mvCheck *>(row(n));
}

void mvChecks::setSCaption(qint16 n, const QString &caption)
{
    if (mvCheck *r = d_func()->checkRow(n))
        r->setSCaption(caption);
}

bool mvChecks::bBoldOnChk() const
{
    return checkRow(0)->bBoldOnChk();
}

void mvChecks::setBBoldOnChk(bool bold)
{
    Q_D(mvChecks);
    for (qint16 i = 0; i <= nUbound(); ++i)
        d->checkRow(i)->setBBoldOnChk(bold);
}

} // namespace plx
