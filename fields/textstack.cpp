// fields/textstack.cpp
#include "fields/textstack.h"
#include "fields/textstack_p.h"

namespace plx {

TextStack::TextStack(std::unique_ptr<TextStackPrivate> dd, QWidget *parent)
    : RowStack(std::move(dd), parent)
{
}

TextStack::~TextStack() = default;

mvRow *TextStackPrivate::createRow(qint16 index)
{
    auto *r = new mvText(q_ptr);
    r->setObjectName(QStringLiteral("mvText1_%1").arg(index));
    r->setBAllowNull(false);
    return r;
}

void TextStackPrivate::rowDoubleClicked(qint16 index)
{
    Q_Q(TextStack);
    Q_EMIT q->DblClick(index);
}

mvText *TextStack::textRow(qint16 n) const
{
    return static_cast<mvText *>(row(n));
}

void TextStack::Disconnect()
{
    DisconnectDBF();
}

void TextStack::DisconnectDBF()
{
    d_func()->disconnectRows();
}

QString TextStack::sCaption(qint16 n) const
{
    const mvText *r = textRow(n);
    return r ? r->sCaption() : QString();
}

void TextStack::setSCaption(qint16 n, const QString &caption)
{
    if (mvText *r = d_func()->textRow(n))
        r->setSCaption(caption);
}

void TextStack::setSMode(qint16 n, const QString &mode)
{
    if (mvText *r = d_func()->textRow(n))
        r->setSMode(mode);
}

void TextStack::setSFormat(qint16 n, const QString &format)
{
    if (mvText *r = d_func()->textRow(n))
        r->setSFormat(format);
}

void TextStack::setMaxLength(qint16 n, qint32 length)
{
    if (mvText *r = d_func()->textRow(n))
        r->setMaxLength(length);
}

qint32 TextStack::DescWidth(qint16 n) const
{
    const mvText *r = textRow(n);
    return r ? r->DescWidth() : 0;
}

void TextStack::setDescWidth(qint16 n, qint32 twips)
{
    if (mvText *r = d_func()->textRow(n))
        r->setDescWidth(twips);
}

qint32 TextStack::DescWidthAll() const
{
    return DescWidth(0);
}

void TextStack::setDescWidthAll(qint32 twips)
{
    Q_D(TextStack);
    for (qint16 i = 0; i <= nUbound(); ++i)
        d->textRow(i)->setDescWidth(twips);
}

QString TextStack::ToolTip(qint16 n) const
{
    const mvText *r = textRow(n);
    return r ? r->ToolTip() : QString();
}

void TextStack::setToolTip(qint16 n, const QString &tip)
{
    if (mvText *r = d_func()->textRow(n))
        r->setToolTip(tip);
}

bool TextStack::BackRed(qint16 n) const
{
    const mvText *r = textRow(n);
    return r && r->BackRed();
}

void TextStack::setBackRed(qint16 n, bool on)
{
    if (mvText *r = d_func()->textRow(n))
        r->setBackRed(on);
}

bool TextStack::BackWhite(qint16 n) const
{
    const mvText *r = textRow(n);
    return r && r->BackWhite();
}

void TextStack::setBackWhite(qint16 n, bool on)
{
    if (mvText *r = d_func()->textRow(n))
        r->setBackWhite(on);
}

bool TextStack::BackLtGray(qint16 n) const
{
    const mvText *r = textRow(n);
    return r && r->BackLtGray();
}

void TextStack::setBackLtGray(qint16 n, bool on)
{
    if (mvText *r = d_func()->textRow(n))
        r->setBackLtGray(on);
}

} // namespace plx
