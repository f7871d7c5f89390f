// dialogs/floatingmessage.cpp
#include "dialogs/floatingmessage.h"

#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QVBoxLayout>

namespace plx {

FloatingMessage::FloatingMessage(QWidget *anchor)
    : QFrame(anchor ? anchor->window() : nullptr,
             Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint),
      m_anchor(anchor), m_text(new QLabel(this)), m_progress(new QLabel(this)),
      m_cancel(new QPushButton(tr("Cancel"), this))
{
    setObjectName(QStringLiteral("frmFloatingMessage"));
    setFrameShape(QFrame::StyledPanel);
    setAutoFillBackground(true);
    m_text->setObjectName(QStringLiteral("lblMessage"));
    m_progress->setObjectName(QStringLiteral("lblProgress"));
    m_cancel->setObjectName(QStringLiteral("cmdCancel"));
    QFont bold = m_text->font();
    bold.setBold(true);
    m_text->setFont(bold);
    m_progress->setVisible(false);

    auto *texts = new QVBoxLayout;
    texts->addWidget(m_text);
    texts->addWidget(m_progress);
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(12, 8, 8, 8);
    row->addLayout(texts, 1);
    row->addWidget(m_cancel, 0, Qt::AlignVCenter);

    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, &FloatingMessage::closeMessage);
    connect(m_cancel, &QPushButton::clicked, this, [this] {
        m_cancelRequested = true;
        Q_EMIT cancelled();
        closeMessage();
    });
}

void FloatingMessage::showMessage(const QString &text, int timeoutMs)
{
    m_cancelRequested = false;
    m_text->setText(text);
    setProgress(QString());
    adjustSize();
    placeNearAnchor();
    show();
    raise();
    if (timeoutMs > 0)
        m_timer.start(timeoutMs);
    else
        m_timer.stop();
}

void FloatingMessage::setProgress(const QString &progress)
{
    m_progress->setText(progress);
    m_progress->setVisible(!progress.isEmpty());
}

void FloatingMessage::closeMessage()
{
    m_timer.stop();
    hide();
}

QString FloatingMessage::text() const
{
    return m_text->text();
}

QString FloatingMessage::progress() const
{
    return m_progress->text();
}

// Centred over the anchor's top edge and kept on the anchor's screen, so it is seen where
// the user is looking without covering the record being loaded.
void FloatingMessage::placeNearAnchor()
{
    if (!m_anchor)
        return;
    const QPoint topLeft = m_anchor->mapToGlobal(QPoint(0, 0));
    QPoint pos(topLeft.x() + (m_anchor->width() - width()) / 2, topLeft.y() + 8);
    if (QScreen *screen = m_anchor->screen()) {
        const QRect area = screen->availableGeometry();
        pos.setX(qBound(area.left(), pos.x(), qMax(area.left(), area.right() - width())));
        pos.setY(qBound(area.top(), pos.y(), qMax(area.top(), area.bottom() - height())));
    }
    move(pos);
}

} // namespace plx
