// dialogs/tests/gridtesting.h: driving the modal browse grid from a test.
//
// The grid runs its own event loop (exec()), so a test hands over what the user does while
// it is open, and that runs as soon as the grid shows.
#pragma once

#include "dialogs/frmgrideditbare.h"

#include <QApplication>
#include <QTimer>

#include <functional>

namespace plx::test {

// The grid form shown now, or nullptr.
inline FrmGridEditBare *openGrid()
{
    for (QWidget *w : QApplication::topLevelWidgets())
        if (auto *form = qobject_cast<FrmGridEditBare *>(w); form && form->isVisible())
            return form;
    return nullptr;
}

// Runs `user` on the grid once it shows (polling the event loop), then closes the grid
// with close() if `user` left it open. `seen` tells whether the grid ever showed.
inline void whenGridShows(std::function<void(FrmGridEditBare *)> user, bool *seen = nullptr)
{
    auto *timer = new QTimer;
    timer->setInterval(5);
    QObject::connect(timer, &QTimer::timeout,
                     [timer, user = std::move(user), seen, ticks = 0]() mutable {
                         FrmGridEditBare *form = openGrid();
                         if (!form && ++ticks < 1000)
                             return;
                         timer->stop();
                         timer->deleteLater();
                         if (!form)
                             return; // never shown: the test's own checks say so
                         if (seen)
                             *seen = true;
                         user(form);
                         if (form->isVisible())
                             form->close();
                     });
    timer->start();
}

} // namespace plx::test
