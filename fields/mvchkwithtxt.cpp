// fields/mvchkwithtxt.cpp: the unit's two parts, their layout, their binding and the edit
// life cycle that goes to both.
#include "fields/mvchkwithtxt.h"
#include "fields/mvchkwithtxt_p.h"

#include "mervane/twips.h"

#include "services/texthelpers.h"

#include <QEvent>

namespace plx {

mvChkWithTxt::mvChkWithTxt(QWidget *parent)
    : QWidget(parent), d_ptr(std::make_unique<mvChkWithTxtPrivate>())
{
    d_ptr->q_ptr = this;
    d_ptr->init();
}

void mvChkWithTxtPrivate::init()
{
    Q_Q(mvChkWithTxt);
    chk = new mvCheck(q);
    chk->setObjectName(QStringLiteral("mvCheck1"));
    txt = new mvName(q);
    txt->setObjectName(QStringLiteral("mvName1"));
    // The check box at the top left, the text stack right below it on the same left edge.
    chk->setTwipsGeometry(0, 0, plx::pixelsToTwipsX(q, q->width()));
    txt->move(chk->x(), chk->y() + chk->height());
    QObject::connect(txt, &mvName::DblClick, q, &mvChkWithTxt::DblClick);
    q->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    fitHeight();
}

mvChkWithTxt::~mvChkWithTxt()
{
    Disconnect();
}

QSize mvChkWithTxt::sizeHint() const
{
    const mvName *txt = d_func()->txt;
    return QSize(qMax(width(), 300), txt->y() + txt->sizeHint().height());
}

QSize mvChkWithTxt::minimumSizeHint() const
{
    const mvName *txt = d_func()->txt;
    return QSize(200, txt->y() + txt->sizeHint().height());
}

void mvChkWithTxtPrivate::fitHeight()
{
    Q_Q(mvChkWithTxt);
    // In a layout the unit keeps the height of its check box and rows.
    q->updateGeometry();
    q->resize(q->width(), txt->y() + txt->height());
}

void mvChkWithTxt::resizeEvent(QResizeEvent *event)
{
    Q_D(mvChkWithTxt);
    QWidget::resizeEvent(event);
    const int chkWidth = width() - d->chk->x();
    d->chk->setTwipsGeometry(d->chk->leftTwips(), d->chk->topTwips(),
                             plx::pixelsToTwipsX(this, chkWidth));
    d->txt->setGeometry(d->txt->x(), d->chk->y() + d->chk->height(), chkWidth, d->txt->height());
}

void mvChkWithTxt::setServices(plx::Services *services)
{
    Q_D(mvChkWithTxt);
    d->services = services;
    d->chk->setServices(services);
    d->txt->setServices(services);
}

plx::Services *mvChkWithTxt::services() const
{
    return d_func()->services;
}

mvCheck *mvChkWithTxt::checkBox() const
{
    return d_func()->chk;
}

mvName *mvChkWithTxt::textStack() const
{
    return d_func()->txt;
}

qint16 mvChkWithTxt::nUbound() const
{
    return d_func()->txt->nUbound();
}

void mvChkWithTxt::setNUbound(qint16 n)
{
    Q_D(mvChkWithTxt);
    d->txt->setNUbound(n);
    d->fitHeight();
}

void mvChkWithTxt::setSDBFPathFileName(const QString &path)
{
    Q_D(mvChkWithTxt);
    if (!d->tableFileFound(path))
        return;
    d->txt->setSDBFPathFileName(path);
    mvDataBinding *b = d->chk->DataBinding();
    b->setDBFPathFileName(path);
    b->setDBFFileName(d->txt->row(0)->DataBinding()->DBFFileName());
    b->setRecordSet(d->txt->RecordSet());
}

QString mvChkWithTxt::sDBFPathFileName() const
{
    return d_func()->txt->sDBFPathFileName();
}

std::shared_ptr<plx::RecordSource> mvChkWithTxt::RecordSet() const
{
    mvCheck *chk = d_func()->chk;
    return chk->hasDataBinding() ? chk->DataBinding()->RecordSet() : nullptr;
}

void mvChkWithTxt::setRecordSet(std::shared_ptr<plx::RecordSource> source)
{
    Q_D(mvChkWithTxt);
    d->chk->DataBinding()->setRecordSet(source);
    d->txt->setRecordSet(std::move(source));
}

void mvChkWithTxt::Update()
{
    Q_D(mvChkWithTxt);
    d->txt->Update();
    (void)d->chk->UpdateDBF();
}

void mvChkWithTxt::UpdateDBF()
{
    Update();
}

void mvChkWithTxt::Disconnect()
{
    Q_D(mvChkWithTxt);
    if (d->chk->hasDataBinding()) {
        d->chk->DataBinding()->Disconnect();
        d->chk->releaseDataBinding();
    }
    d->txt->Disconnect();
}

void mvChkWithTxt::Edit()
{
    Q_D(mvChkWithTxt);
    d->txt->Edit();
    d->chk->Edit();
}

bool mvChkWithTxt::bEdit(bool bSilent, QVariant &vReturn)
{
    Q_D(mvChkWithTxt);
    QVariant textRefusals;
    const bool texts = d->txt->bEdit(bSilent, textRefusals);
    QString collected = textRefusals.toString();
    QString reason;
    const bool check = d->chk->bValidate(bSilent, &reason);
    if (!check)
        collected = plx::modAddALine(collected, d->chk->sCaption() + QLatin1Char(' ') + reason,
                                     QStringLiteral("\r\n"), false);
    vReturn = collected;
    return texts && check;
}

void mvChkWithTxt::EditUpdate()
{
    Q_D(mvChkWithTxt);
    d->txt->EditUpdate();
    d->chk->EditUpdate();
}

void mvChkWithTxt::CancelEdit()
{
    Q_D(mvChkWithTxt);
    d->txt->CancelEdit();
    d->chk->CancelEdit();
}

QString mvChkWithTxt::Save()
{
    Q_D(mvChkWithTxt);
    (void)d->chk->Save();
    return d->txt->Save();
}

bool mvChkWithTxt::Locked() const
{
    return d_func()->chk->Locked();
}

void mvChkWithTxt::setLocked(bool locked)
{
    Q_D(mvChkWithTxt);
    d->txt->setLocked(locked);
    d->chk->setLocked(locked);
}

bool mvChkWithTxt::Enabled() const
{
    return isEnabled();
}

void mvChkWithTxt::setEnabled(bool enabled)
{
    QWidget::setEnabled(enabled);
    // As RowStack::setEnabled: the parts are set even when the unit's own state stays.
    d_func()->enableParts(enabled);
}

void mvChkWithTxtPrivate::setPartsEnabled(bool enabled)
{
    txt->setEnabled(enabled);
    chk->setEnabled(enabled);
}

void mvChkWithTxt::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::EnabledChange)
        d_func()->enabledChanged(*this);
}

QString mvChkWithTxt::Name() const
{
    return objectName();
}

} // namespace plx
