// The strict test prompter itself: if it let an unexpected box or a wrong style pass, every
// message-box test in the project would pass for the wrong reason.
#include "testing/scriptedprompter.h"

#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

using namespace plx;

TEST(ScriptedPrompterTest, AnswersExpectedBoxesInOrder)
{
    test::ScriptedPrompter p;
    p.expectMsgBox(QStringLiteral("T1"), QStringLiteral("one"), MsgAnswer::No);
    p.expectInputBox(QStringLiteral("T2"), QStringLiteral("two"), QStringLiteral("typed"));
    p.expectInputBox(QStringLiteral("T3"), QStringLiteral("three"), std::nullopt);
    EXPECT_EQ(p.msgBox(QStringLiteral("one"), 4, QStringLiteral("T1")), MsgAnswer::No);
    EXPECT_EQ(p.inputBox(QStringLiteral("two"), QStringLiteral("T2"), QString()),
              std::optional<QString>(QStringLiteral("typed")));
    EXPECT_EQ(p.inputBox(QStringLiteral("three"), QStringLiteral("T3"), QString()), std::nullopt);
    ASSERT_EQ(p.shown().size(), 3);
    EXPECT_EQ(p.shown().at(0).style, 4);
    EXPECT_EQ(p.pending(), 0);
}

TEST(ScriptedPrompterTest, UnexpectedWrongAndUnusedBoxesFailTheTest)
{
    EXPECT_NONFATAL_FAILURE(
        {
            test::ScriptedPrompter p;
            p.msgBox(QStringLiteral("x"), 0, QStringLiteral("T"));
        },
        "unexpected message box");
    EXPECT_NONFATAL_FAILURE(
        {
            test::ScriptedPrompter p;
            p.expectMsgBox(QStringLiteral("T"), QStringLiteral("x"), MsgAnswer::OK);
        },
        "never shown");
    EXPECT_NONFATAL_FAILURE(
        {
            test::ScriptedPrompter p;
            p.expectMsgBox(QStringLiteral("T"), QStringLiteral("x"), 64, MsgAnswer::OK);
            p.msgBox(QStringLiteral("x"), 0, QStringLiteral("T"));
        },
        "box style");
    EXPECT_NONFATAL_FAILURE(
        {
            test::ScriptedPrompter p;
            p.expectMsgBox(QStringLiteral("T"), QStringLiteral("x"), MsgAnswer::OK);
            p.msgBox(QStringLiteral("y"), 0, QStringLiteral("T"));
        },
        "box text");
}
