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

    // Shows `text` near the anchor and starts the timer; `timeoutMs` <= 0 keeps it until
    // closeMessage(). Resets the cancel request.
    void showMessage(const QString &text, int timeoutMs = 30000);
    // A second, smaller line under the text ("Counting records ..."); empty hides it.
    void setProgress(const QString &progress);
    void closeMessage();

    QString text() const;
    QString progress() const;
    bool cancelRequested() const { return m_cancelRequested; }

Q_SIGNALS:
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
