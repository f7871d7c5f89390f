// apps/plxform/screenfit.cpp
#include "apps/plxform/screenfit.h"

#include <QGuiApplication>
#include <QScreen>
#include <QWidget>

namespace plx::form {

namespace {

// Room left for the title bar and borders before the window is shown and has a frame.
constexpr int kFrameAllowance = 40;

} // namespace

void fitOnScreen(QWidget *window)
{
    QScreen *screen = window->screen() ? window->screen() : QGuiApplication::primaryScreen();
    if (!screen)
        return;
    const QRect area = screen->availableGeometry();
    const QRect frame = window->frameGeometry();
    const QSize extra = window->isVisible() ? frame.size() - window->size()
                                            : QSize(kFrameAllowance / 4, kFrameAllowance);
    const QSize most(qMax(1, area.width() - extra.width()),
                     qMax(1, area.height() - extra.height()));
    const QSize minimum = window->minimumSize();
    // A minimum size larger than the screen would keep the window from fitting.
    window->setMinimumSize(minimum.boundedTo(most));
    window->resize(window->size().boundedTo(most));
    // A window not yet placed is placed by the window system (a dialog over its parent).
    if (!window->isVisible() && !window->testAttribute(Qt::WA_Moved))
        return;
    QRect placed(window->pos(), window->size() + extra);
    if (placed.right() > area.right())
        placed.moveRight(area.right());
    if (placed.bottom() > area.bottom())
        placed.moveBottom(area.bottom());
    if (placed.left() < area.left())
        placed.moveLeft(area.left());
    if (placed.top() < area.top())
        placed.moveTop(area.top());
    window->move(placed.topLeft());
}

} // namespace plx::form
