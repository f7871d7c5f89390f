// dialogs/floatingmessage.h: the small timed message that floats near a control while it
// connects, counts or sorts.
//
// It shows one line of text, a second line for progress, and a Cancel button. It closes by
// itself when its timer runs out, so a forgotten message never stays on the screen. Long
// work asks cancelRequested() between its steps and gives up when the user pressed Cancel.
#pragma once

#include <QFrame>
#include <QTimer>

class QLabel;
class QPushButton;

namespace plx {

class FloatingMessage : public QFrame
{
    Q_OBJECT

public:
    // `anchor` is the widget the message floats over (its window is the parent).
    explicit FloatingMessage(QWidget *anchor);

    // Shows `text` centred over the anchor's top edge (kept on its screen) and starts the
    // timer; `timeoutMs` <= 0 keeps it until closeMessage(). Resets the cancel request and
    // clears the progress line. Calling it again while shown replaces the text and restarts
    // the timer.
    void showMessage(const QString &text, int timeoutMs = 30000);
    // A second, smaller line under the text ("Counting records ..."); empty hides it.
    void setProgress(const QString &progress);
    // Hides the message and stops its timer; harmless when it is not shown. The timer
    // running out calls it too, without raising cancelled().
    void closeMessage();

    // The two lines as last set ("" before the first showMessage).
    QString text() const;
    QString progress() const;
    // True once the user pressed Cancel, until the next showMessage().
    bool cancelRequested() const { return m_cancelRequested; }

Q_SIGNALS:
    // The user pressed Cancel: raised after cancelRequested() became true and before the
    // message closes. Never raised for a timeout or closeMessage().
    void cancelled();

private:
    void placeNearAnchor();

    QWidget *m_anchor;
    QLabel *m_text;
    QLabel *m_progress;
    QPushButton *m_cancel;
    QTimer m_timer;
    bool m_cancelRequested = false;
};

} // namespace plx
