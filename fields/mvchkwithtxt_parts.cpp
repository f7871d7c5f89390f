// fields/mvchkwithtxt_parts.cpp: the settings and values the unit passes on to one of its
// parts: the check box (…Chk) or the text stack (…Txt and the text stack's own names).
#include "fields/mvchkwithtxt.h"
#include "fields/mvchkwithtxt_p.h"

#include "services/texthelpers.h"

#include <utility>

namespace plx {

QString mvChkWithTxt::sCaptionChk() const
{
    return d_func()->chk->sCaption();
}

void mvChkWithTxt::setSCaptionChk(const QString &caption)
{
    d_func()->chk->setSCaption(caption);
}

QString mvChkWithTxt::sCaptionTxt(qint16 n) const
{
    const mvName *txt = d_func()->txt;
    return n >= 0 && n <= txt->nUbound() ? txt->sCaption(n) : QString();
}

void mvChkWithTxt::setSCaptionTxt(qint16 n, const QString &caption)
{
    mvName *txt = d_func()->txt;
    if (n >= 0 && n <= txt->nUbound())
        txt->setSCaption(n, caption);
}

QString mvChkWithTxt::sFieldNameChk() const
{
    return d_func()->chk->DataBinding()->sFieldName();
}

void mvChkWithTxt::setSFieldNameChk(const QString &name)
{
    Q_D(mvChkWithTxt);
    d->chk->DataBinding()->setSFieldName(name);
    d->yieldOnce();
}

QString mvChkWithTxt::sFieldNameTxt(qint16 n) const
{
    return d_func()->txt->sFieldName(n);
}

void mvChkWithTxt::setSFieldNameTxt(qint16 n, const QString &name)
{
    d_func()->txt->setSFieldName(n, name);
}

void mvChkWithTxt::setRuleChk(mvRow::Rule rule)
{
    d_func()->chk->setRule(std::move(rule));
}

void mvChkWithTxt::setRuleTxt(qint16 n, mvRow::Rule rule)
{
    d_func()->txt->setRule(n, std::move(rule));
}

QString mvChkWithTxt::sValueChk() const
{
    return plx::trimSpaces(d_func()->chk->Value());
}

void mvChkWithTxt::setSValueChk(const QVariant &value)
{
    d_func()->chk->setValue(value.isNull() || !value.isValid() ? QString() : value.toString());
}

void mvChkWithTxt::setSValueChk(const QString &value)
{
    setSValueChk(QVariant(value));
}

QString mvChkWithTxt::sValueTxt(qint16 n) const
{
    const mvName *txt = d_func()->txt;
    return n >= 0 && n <= txt->nUbound() ? txt->sValue(n) : QString();
}

void mvChkWithTxt::setSValueTxt(qint16 n, const QVariant &value)
{
    d_func()->txt->setSValue(n, value);
}

void mvChkWithTxt::setSModeTxt(qint16 n, const QString &mode)
{
    d_func()->txt->setSMode(n, mode);
}

void mvChkWithTxt::setSFormat(qint16 n, const QString &format)
{
    d_func()->txt->setSFormat(n, format);
}

void mvChkWithTxt::setMaxLengthTxt(qint16 n, qint32 length)
{
    d_func()->txt->setMaxLength(n, length);
}

qint32 mvChkWithTxt::DescWidthAll() const
{
    return d_func()->txt->DescWidthAll();
}

void mvChkWithTxt::setDescWidthAll(qint32 twips)
{
    d_func()->txt->setDescWidthAll(twips);
}

qint32 mvChkWithTxt::DescWidth(qint16 n) const
{
    return d_func()->txt->DescWidth(n);
}

void mvChkWithTxt::setDescWidth(qint16 n, qint32 twips)
{
    d_func()->txt->setDescWidth(n, twips);
}

qint16 mvChkWithTxt::iHeight(qint16 n) const
{
    return d_func()->txt->iHeight(n);
}

void mvChkWithTxt::setIHeight(qint16 n, qint16 twips)
{
    d_func()->txt->setIHeight(n, twips);
}

bool mvChkWithTxt::BackRed(qint16 n) const
{
    return d_func()->txt->BackRed(n);
}

void mvChkWithTxt::setBackRed(qint16 n, bool on)
{
    d_func()->txt->setBackRed(n, on);
}

bool mvChkWithTxt::BackWhite(qint16 n) const
{
    return d_func()->txt->BackWhite(n);
}

void mvChkWithTxt::setBackWhite(qint16 n, bool on)
{
    d_func()->txt->setBackWhite(n, on);
}

bool mvChkWithTxt::BackLtGray(qint16 n) const
{
    return d_func()->txt->BackLtGray(n);
}

void mvChkWithTxt::setBackLtGray(qint16 n, bool on)
{
    d_func()->txt->setBackLtGray(n, on);
}

qint32 mvChkWithTxt::BackColor() const
{
    return d_func()->txt->BackColor();
}

void mvChkWithTxt::setBackColor(qint32 color)
{
    d_func()->txt->setBackColor(color);
}

void mvChkWithTxt::ClearChk()
{
    d_func()->chk->Clear();
}

void mvChkWithTxt::ClearTxt(qint16 n)
{
    (void)d_func()->txt->Clear(n);
}

void mvChkWithTxt::ClearAll()
{
    Q_D(mvChkWithTxt);
    d->chk->Clear();
    d->txt->ClearAll();
}

qint32 mvChkWithTxt::lAltGrayColor() const
{
    return d_func()->txt->lAltGrayColor();
}

void mvChkWithTxt::setLAltGrayColor(qint32 altGray)
{
    Q_D(mvChkWithTxt);
    d->txt->setLAltGrayColor(altGray);
    d->chk->setLAltGrayColor(altGray);
}

bool mvChkWithTxt::bBoldOnChk() const
{
    return d_func()->chk->bBoldOnChk();
}

void mvChkWithTxt::setBBoldOnChk(bool bold)
{
    d_func()->chk->setBBoldOnChk(bold);
}

} // namespace plx
