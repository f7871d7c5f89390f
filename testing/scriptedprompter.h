// testing/scriptedprompter.h: a strict prompter for tests.
//
// The test lists the boxes it expects, in order, with the answer each gets. Every box
// shown is recorded (kind, title, text, style). A box nobody expected, or one whose title
// or text differs from the next expectation, is a test failure; so is an expectation left
// unused when the prompter is destroyed.
#pragma once

#include "services/prompter.h"

#include <QList>
#include <QString>

#include <optional>

namespace plx::test {

class ScriptedPrompter : public Prompter
{
public:
    struct Shown
    {
        bool input = false;
        QString title;
        QString text;
        int style = 0;
    };

    ~ScriptedPrompter() override;

    // The next box must be a message box with this title and text; it answers `answer`.
    // A null `text` accepts any text (the test then reads it from shown()).
    void expectMsgBox(const QString &title, const QString &text, MsgAnswer answer);
    // The same, also checking the style flags.
    void expectMsgBox(const QString &title, const QString &text, int style, MsgAnswer answer);
    // The next box must be an input box with this title and prompt; it returns `answer`
    // (std::nullopt: the user cancelled).
    void expectInputBox(const QString &title, const QString &prompt, std::optional<QString> answer);

    MsgAnswer msgBox(const QString &prompt, int style, const QString &title) override;
    std::optional<QString> inputBox(const QString &prompt, const QString &title,
                                    const QString &defaultText) override;

    // Every box shown so far, in order.
    const QList<Shown> &shown() const { return m_shown; }
    // Expectations not yet met.
    qsizetype pending() const { return m_expected.size(); }

private:
    struct Expected
    {
        bool input = false;
        QString title;
        QString text;
        std::optional<int> style;
        MsgAnswer answer = MsgAnswer::OK;
        std::optional<QString> inputAnswer;
    };
    bool takeMatching(bool input, const QString &title, const QString &text, int style,
                      Expected *out);

    QList<Expected> m_expected;
    QList<Shown> m_shown;
};

} // namespace plx::test
