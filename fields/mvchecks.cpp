// fields/mvchecks.cpp
#include "fields/mvchecks.h"

mvChecks::mvChecks(QWidget *parent) : RowStack(parent)
{
    initRows();
}

mvChecks::~mvChecks()
{
    disconnectRows();
}

mvRow *mvChecks::createRow(qint16 index)
{
    auto *r = new mvCheck(this);
    r->setObjectName(QStringLiteral("mvCheck1_%1").arg(index));
    // A tab stop of its own, in the order of the row index (the stack links the order).
    r->setFocusPolicy(Qt::StrongFocus);
    return r;
}

void mvChecks::setSCaption(qint16 n, const QString &caption)
{
    if (inRange(n))
        checkRow(n)->setSCaption(caption);
}

bool mvChecks::bBoldOnChk() const
{
    return checkRow(0)->bBoldOnChk();
}

void mvChecks::setBBoldOnChk(bool bold)
{
    for (qint16 i = 0; i <= nUbound(); ++i)
        checkRow(i)->setBBoldOnChk(bold);
}
