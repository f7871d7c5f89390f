// apps/plxform/tests/sessionwalk_driver.h: plxform's window driven the way a user drives it,
// on a copy of the sample files: toolbar buttons by caption, typing into rows, Back and
// Next, the scroll bar, the sort, find and filter boxes, closing and opening the form
// again. Every box goes to the walk's own prompter, which answers from the step and keeps
// what it was shown.
#pragma once

#include "apps/plxform/formdescription.h"
#include "apps/plxform/tests/sessionwalk_script.h"
#include "apps/plxform/tests/sessionwalk_table.h"
#include "services/env.h"

#include <QDateTime>

#include <memory>

namespace plx::form {
class HostForm;
}

namespace plx::walk {

struct ShownBox
{
    QString title;
    QString text;
    int style = 0;
};

// Answers the Yes/No and Yes/No/Cancel boxes of a step from the step's answers, in order
// (No, or Cancel, when they run out: the cautious choice); OK boxes with OK. Keeps every
// box it was shown.
class WalkPrompter : public Prompter
{
public:
    void beginStep(const QList<MsgAnswer> &answers);
    QList<ShownBox> takeShown();

    MsgAnswer msgBox(const QString &prompt, int style, const QString &title) override;
    std::optional<QString> inputBox(const QString &prompt, const QString &title,
                                    const QString &defaultText) override;

private:
    QList<MsgAnswer> m_answers;
    QList<ShownBox> m_shown;
};

// A clock the walk moves on by a second a step, so audit stamps are known in advance.
class WalkClock : public Clock
{
public:
    QDateTime now() override { return m_now; }
    void tick() { m_now = m_now.addSecs(1); }

private:
    QDateTime m_now{ QDate(2026, 3, 7), QTime(14, 5, 9) };
};

// A UI pump that does nothing: the walk runs the event loop itself between steps.
class QuietPump : public UiPump
{
public:
    void processEvents() override { }
};

// What the form shows after a step.
struct FormView
{
    QString currentID; // without the blanks a fixed-width field pads with
    int position = -1; // the navigator's record position (its source's AbsolutePosition)
    int scrollValue = -1; // HScroll1's value
    int scrollMaximum = -1; // and its maximum
    QString countText; // fraControls' title
    QString status; // the status bar's position text
    bool editing = false; // SAVE enabled
    bool browsingButtons = false; // NEW, EDIT, COPY, DELETE enabled
    QMap<QString, QString> rows; // field -> sValue
    bool navigationEnabled = false; // cboSort, cboFind, cboFilter
};

class FormDriver
{
public:
    // `dataDir` holds the copy of the sample the walk works on.
    FormDriver(Backend backend, const QString &dataDir);
    ~FormDriver();
    FormDriver(const FormDriver &) = delete;
    FormDriver &operator=(const FormDriver &) = delete;

    // Opens the form; false with `error`.
    bool open(QString *error);
    // Performs `step` as a user would; a control the user cannot use (disabled, locked)
    // is left alone, as the user would have to.
    void perform(const Step &step);
    FormView view() const;

    bool readTable(Table *table, QString *error, QStringList *duplicates) const;
    QString tablePath() const;
    Backend backend() const { return m_backend; }
    WalkPrompter &prompter() { return m_prompter; }
    WalkClock &clock() { return m_clock; }
    form::HostForm *window() const { return m_window.get(); }

private:
    void clickToolbar(const QString &caption);
    void typeInto(const QString &field, const QString &text);
    void pickSort(const QString &name);
    void find(const QString &text);
    void pickFilter(const QString &name);
    void reopen();

    Backend m_backend;
    QString m_dataDir;
    form::FormDescription m_description;
    WalkPrompter m_prompter;
    WalkClock m_clock;
    QuietPump m_pump;
    Services m_services{ &m_prompter, &m_clock, &m_pump };
    std::unique_ptr<form::HostForm> m_window;
};

} // namespace plx::walk
