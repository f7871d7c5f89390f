// fields/mvname.cpp
#include "fields/mvname.h"
#include "fields/mvname_p.h"

mvName::mvName(QWidget *parent) : RowStack(std::make_unique<mvNamePrivate>(), parent) { }

mvName::~mvName() = default;

mvRow *mvNamePrivate::createRow(qint16 index)
{
    auto *r = new mvText(q_ptr);
    r->setObjectName(QStringLiteral("mvText1_%1").arg(index));
    r->setBAllowNull(false);
    return r;
}

void mvNamePrivate::rowDoubleClicked(qint16 index)
{
    Q_Q(mvName);
    Q_EMIT q->DblClick(index);
}

mvText *mvName::textRow(qint16 n) const
{
    return static_cast<mvText *>(row(n));
}

void mvName::Disconnect()
{
    DisconnectDBF();
}

void mvName::DisconnectDBF()
{
    d_func()->disconnectRows();
}

QString mvName::sCaption(qint16 n) const
{
    const mvText *r = textRow(n);
    return r ? r->sCaption() : QString();
}

void mvName::setSCaption(qint16 n, const QString &caption)
{
    if (mvText *r = d_func()->textRow(n))
        r->setSCaption(caption);
}

void mvName::setSMode(qint16 n, const QString &mode)
{
    if (mvText *r = d_func()->textRow(n))
        r->setSMode(mode);
}

void mvName::setSFormat(qint16 n, const QString &format)
{
    if (mvText *r = d_func()->textRow(n))
        r->setSFormat(format);
}

void mvName::setMaxLength(qint16 n, qint32 length)
{
    if (mvText *r = d_func()->textRow(n))
        r->setMaxLength(length);
}

qint32 mvName::DescWidth(qint16 n) const
{
    const mvText *r = textRow(n);
    return r ? r->DescWidth() : 0;
}

void mvName::setDescWidth(qint16 n, qint32 twips)
{
    if (mvText *r = d_func()->textRow(n))
        r->setDescWidth(twips);
}

qint32 mvName::DescWidthAll() const
{
    return DescWidth(0);
}

void mvName::setDescWidthAll(qint32 twips)
{
    Q_D(mvName);
    for (qint16 i = 0; i <= nUbound(); ++i)
        d->textRow(i)->setDescWidth(twips);
}

QString mvName::ToolTip(qint16 n) const
{
    const mvText *r = textRow(n);
    return r ? r->ToolTip() : QString();
}

void mvName::setToolTip(qint16 n, const QString &tip)
{
    if (mvText *r = d_func()->textRow(n))
        r->setToolTip(tip);
}

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

bool mvName::BackRed(qint16 n) const
{
    const mvText *r = textRow(n);
    return r && r->BackRed();
}

void mvName::setBackRed(qint16 n, bool on)
{
    if (mvText *r = d_func()->textRow(n))
        r->setBackRed(on);
}

bool mvName::BackWhite(qint16 n) const
{
    const mvText *r = textRow(n);
    return r && r->BackWhite();
}

void mvName::setBackWhite(qint16 n, bool on)
{
    if (mvText *r = d_func()->textRow(n))
        r->setBackWhite(on);
}

bool mvName::BackLtGray(qint16 n) const
{
    const mvText *r = textRow(n);
    return r && r->BackLtGray();
}

void mvName::setBackLtGray(qint16 n, bool on)
{
    if (mvText *r = d_func()->textRow(n))
        r->setBackLtGray(on);
}
