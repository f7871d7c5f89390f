// tests/support/modalwatch.h: acting in a dialog that a control opens with exec().
//
// The control returns only when its dialog has closed, so the test hands over beforehand
// what the user does in it. While a watch lives, each time a dialog of type Dialog is the
// active modal window the watch counts it, runs the user's part, and closes the dialog
// with close() when the user's part left it open.
#pragma once

#include <QApplication>
#include <QTimer>

#include <functional>

template<typename Dialog> class ModalWatch
{
public:
    explicit ModalWatch(std::function<void(Dialog *)> user) : m_user(std::move(user))
    {
        m_timer.setInterval(5);
        QObject::connect(&m_timer, &QTimer::timeout, [this] {
            auto *dialog = qobject_cast<Dialog *>(QApplication::activeModalWidget());
            if (!dialog)
                return;
            ++shown;
            m_user(dialog);
            if (dialog->isVisible())
                dialog->close();
        });
        m_timer.start();
    }
    int shown = 0;

private:
    std::function<void(Dialog *)> m_user;
    QTimer m_timer;
};
