// testing/scriptedprompter.cpp: the strict scripted prompter.
#include "testing/scriptedprompter.h"

#include <gtest/gtest.h>

namespace plx::test {

ScriptedPrompter::~ScriptedPrompter()
{
    for (const Expected &e : m_expected)
        ADD_FAILURE() << "expected " << (e.input ? "input" : "message") << " box never shown: \""
                      << e.title.toStdString() << "\" / \"" << e.text.toStdString() << "\"";
}

void ScriptedPrompter::expectMsgBox(const QString &title, const QString &text, MsgAnswer answer)
{
    m_expected.append({ false, title, text, std::nullopt, answer, std::nullopt });
}

void ScriptedPrompter::expectMsgBox(const QString &title, const QString &text, int style,
                                    MsgAnswer answer)
{
    m_expected.append({ false, title, text, style, answer, std::nullopt });
}

void ScriptedPrompter::expectInputBox(const QString &title, const QString &prompt,
                                      std::optional<QString> answer)
{
    m_expected.append({ true, title, prompt, std::nullopt, MsgAnswer::OK, std::move(answer) });
}

bool ScriptedPrompter::takeMatching(bool input, const QString &title, const QString &text,
                                    int style, Expected *out)
{
    const char *kind = input ? "input" : "message";
    if (m_expected.isEmpty()) {
        ADD_FAILURE() << "unexpected " << kind << " box: \"" << title.toStdString() << "\" / \""
                      << text.toStdString() << "\" style " << style;
        return false;
    }
    *out = m_expected.takeFirst();
    EXPECT_EQ(out->input, input) << "a " << kind << " box came where another kind was expected";
    EXPECT_EQ(out->title.toStdString(), title.toStdString()) << "box title";
    // A null expected text leaves the text to the test (an engine's own words, say).
    if (!out->text.isNull()) {
        EXPECT_EQ(out->text.toStdString(), text.toStdString()) << "box text";
    }
    if (out->style) {
        EXPECT_EQ(*out->style, style) << "box style of \"" << title.toStdString() << "\"";
    }
    return true;
}

MsgAnswer ScriptedPrompter::msgBox(const QString &prompt, int style, const QString &title)
{
    m_shown.append({ false, title, prompt, style });
    Expected e;
    // Unexpected boxes answer the most cautious choice of their button set.
    if (!takeMatching(false, title, prompt, style, &e))
        return (style & 0x7) == MsgStyle::YesNo ? MsgAnswer::No
            : (style & 0x7) == MsgStyle::OKOnly ? MsgAnswer::OK
                                                : MsgAnswer::Cancel;
    return e.answer;
}

std::optional<QString> ScriptedPrompter::inputBox(const QString &prompt, const QString &title,
                                                  const QString &defaultText)
{
    Q_UNUSED(defaultText);
    m_shown.append({ true, title, prompt, 0 });
    Expected e;
    if (!takeMatching(true, title, prompt, 0, &e))
        return std::nullopt;
    return e.inputAnswer;
}

} // namespace plx::test
