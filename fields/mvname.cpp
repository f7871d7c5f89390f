// fields/mvname.cpp
#include "fields/mvname.h"

mvName::mvName(QWidget *parent) : RowStack(parent)
{
    initRows();
}

mvName::~mvName()
{
    DisconnectDBF();
}

mvRow *mvName::createRow(qint16 index)
{
    auto *r = new mvText(this);
    r->setObjectName(QStringLiteral("mvText1_%1").arg(index));
    r->setBAllowNull(false);
    return r;
}

QString mvName::sCaption(qint16 n) const
{
    return inRange(n) ? textRow(n)->sCaption() : QString();
}

void mvName::setSCaption(qint16 n, const QString &caption)
{
    if (inRange(n))
        textRow(n)->setSCaption(caption);
}

void mvName::setSMode(qint16 n, const QString &mode)
{
    if (inRange(n))
        textRow(n)->setSMode(mode);
}

void mvName::setSFormat(qint16 n, const QString &format)
{
    if (inRange(n))
        textRow(n)->setSFormat(format);
}

void mvName::setMaxLength(qint16 n, qint32 length)
{
    if (inRange(n))
        textRow(n)->setMaxLength(length);
}

qint32 mvName::DescWidth(qint16 n) const
{
    return inRange(n) ? textRow(n)->DescWidth() : 0;
}

void mvName::setDescWidth(qint16 n, qint32 twips)
{
    if (inRange(n))
        textRow(n)->setDescWidth(twips);
}

void mvName::setDescWidthAll(qint32 twips)
{
    for (qint16 i = 0; i <= nUbound(); ++i)
        textRow(i)->setDescWidth(twips);
}

QString mvName::ToolTip(qint16 n) const
{
    return inRange(n) ? textRow(n)->ToolTip() : QString();
}

void mvName::setToolTip(qint16 n, const QString &tip)
{
    if (inRange(n))
        textRow(n)->setToolTip(tip);
}

bool mvName::bAllowNull(qint16 n) const
{
    return inRange(n) && textRow(n)->bAllowNull();
}

void mvName::setBAllowNull(qint16 n, bool allow)
{
    if (inRange(n))
        textRow(n)->setBAllowNull(allow);
}

bool mvName::BackRed(qint16 n) const
{
    return inRange(n) && textRow(n)->BackRed();
}

void mvName::setBackRed(qint16 n, bool on)
{
    if (inRange(n))
        textRow(n)->setBackRed(on);
}

bool mvName::BackWhite(qint16 n) const
{
    return inRange(n) && textRow(n)->BackWhite();
}

void mvName::setBackWhite(qint16 n, bool on)
{
    if (inRange(n))
        textRow(n)->setBackWhite(on);
}

bool mvName::BackLtGray(qint16 n) const
{
    return inRange(n) && textRow(n)->BackLtGray();
}

void mvName::setBackLtGray(qint16 n, bool on)
{
    if (inRange(n))
        textRow(n)->setBackLtGray(on);
}
