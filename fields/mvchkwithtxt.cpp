// fields/mvchkwithtxt.cpp
#include "fields/mvchkwithtxt.h"

#include "mervane/twips.h"

#include "services/texthelpers.h"

#include <QFileInfo>

mvChkWithTxt::mvChkWithTxt(QWidget *parent) : QWidget(parent)
{
    m_chk = new mvCheck(this);
    m_chk->setObjectName(QStringLiteral("mvCheck1"));
    m_txt = new mvName(this);
    m_txt->setObjectName(QStringLiteral("mvName1"));
    // The check box at the top left, the text stack right below it on the same left edge.
    m_chk->setTwipsGeometry(0, 0, plx::pixelsToTwipsX(this, width()));
    m_txt->move(m_chk->x(), m_chk->y() + m_chk->height());
    connect(m_txt, &mvName::DblClick, this, &mvChkWithTxt::DblClick);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    fitHeight();
}

QSize mvChkWithTxt::sizeHint() const
{
    return QSize(qMax(width(), 300), m_txt->y() + m_txt->sizeHint().height());
}

QSize mvChkWithTxt::minimumSizeHint() const
{
    return QSize(200, m_txt->y() + m_txt->sizeHint().height());
}

mvChkWithTxt::~mvChkWithTxt()
{
    Disconnect();
}

void mvChkWithTxt::setServices(plx::Services *services)
{
    m_services = services;
    m_chk->setServices(services);
    m_txt->setServices(services);
}

QString mvChkWithTxt::sCaptionTxt(qint16 n) const
{
    return n >= 0 && n <= m_txt->nUbound() ? m_txt->sCaption(n) : QString();
}

void mvChkWithTxt::setSCaptionTxt(qint16 n, const QString &caption)
{
    if (n >= 0 && n <= m_txt->nUbound())
        m_txt->setSCaption(n, caption);
}

void mvChkWithTxt::setNUbound(qint16 n)
{
    m_txt->setNUbound(n);
    fitHeight();
}

void mvChkWithTxt::fitHeight()
{
    // In a layout the unit keeps the height of its check box and rows.
    updateGeometry();
    resize(width(), m_txt->y() + m_txt->height());
}

void mvChkWithTxt::setSFieldNameChk(const QString &name)
{
    m_chk->DataBinding()->setSFieldName(name);
    plx::uiPumpOf(m_services).processEvents();
}

QString mvChkWithTxt::sValueChk() const
{
    return plx::trimSpaces(m_chk->Value());
}

void mvChkWithTxt::setSValueChk(const QVariant &value)
{
    m_chk->setValue(value.isNull() || !value.isValid() ? QString() : value.toString());
}

QString mvChkWithTxt::sValueTxt(qint16 n) const
{
    return n >= 0 && n <= m_txt->nUbound() ? m_txt->sValue(n) : QString();
}

void mvChkWithTxt::ClearAll()
{
    m_chk->Clear();
    m_txt->ClearAll();
}

void mvChkWithTxt::setSDBFPathFileName(const QString &path)
{
    if (!QFileInfo::exists(path) || QFileInfo(path).isDir()) {
        (void)plx::prompterOf(m_services)
            .msgBox(QStringLiteral("Database file not found:\r\n") + path, plx::MsgStyle::Critical,
                    QStringLiteral("File Not Found"));
        return;
    }
    m_txt->setSDBFPathFileName(path);
    mvDataBinding *b = m_chk->DataBinding();
    b->setDBFPathFileName(path);
    b->setDBFFileName(m_txt->row(0)->DataBinding()->DBFFileName());
    b->setRecordSet(m_txt->RecordSet());
}

void mvChkWithTxt::Update()
{
    m_txt->Update();
    (void)m_chk->UpdateDBF();
}

void mvChkWithTxt::Disconnect()
{
    if (m_chk->hasDataBinding()) {
        m_chk->DataBinding()->Disconnect();
        m_chk->releaseDataBinding();
    }
    m_txt->Disconnect();
}

void mvChkWithTxt::Edit()
{
    m_txt->Edit();
    m_chk->Edit();
}

void mvChkWithTxt::setLAltGrayColor(qint32 altGray)
{
    m_txt->setLAltGrayColor(altGray);
    m_chk->setLAltGrayColor(altGray);
}

bool mvChkWithTxt::bEdit(bool bSilent, QString *vReturn)
{
    QString collected;
    const bool texts = m_txt->bEdit(bSilent, &collected);
    QString reason;
    const bool check = m_chk->bValidate(bSilent, &reason);
    if (!check)
        collected = plx::modAddALine(collected, m_chk->sCaption() + QLatin1Char(' ') + reason,
                                     QStringLiteral("\r\n"), false);
    if (vReturn)
        *vReturn = collected;
    return texts && check;
}

void mvChkWithTxt::EditUpdate()
{
    m_txt->EditUpdate();
    m_chk->EditUpdate();
}

void mvChkWithTxt::CancelEdit()
{
    m_txt->CancelEdit();
    m_chk->CancelEdit();
}

QString mvChkWithTxt::Save()
{
    (void)m_chk->Save();
    return m_txt->Save();
}

void mvChkWithTxt::setLocked(bool locked)
{
    m_txt->setLocked(locked);
    m_chk->setLocked(locked);
}

void mvChkWithTxt::setEnabled(bool enabled)
{
    m_txt->setEnabled(enabled);
    m_chk->setEnabled(enabled);
    QWidget::setEnabled(enabled);
}

std::shared_ptr<plx::RecordSource> mvChkWithTxt::RecordSet() const
{
    return m_chk->hasDataBinding() ? m_chk->DataBinding()->RecordSet() : nullptr;
}

void mvChkWithTxt::setRecordSet(std::shared_ptr<plx::RecordSource> source)
{
    m_chk->DataBinding()->setRecordSet(source);
    m_txt->setRecordSet(std::move(source));
}

void mvChkWithTxt::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    const int chkWidth = width() - m_chk->x();
    m_chk->setTwipsGeometry(m_chk->leftTwips(), m_chk->topTwips(),
                            plx::pixelsToTwipsX(this, chkWidth));
    m_txt->setGeometry(m_txt->x(), m_chk->y() + m_chk->height(), chkWidth, m_txt->height());
}
