// fields/tests/textstack_test.cpp: a text stack opens the text editor on a memo row: the
// edited text comes back unless cancelled, a locked row only shows it, the row's length
// limit holds, and Shift+F2 opens it from a memo row only.
#include "dialogs/texteditor.h"
#include "fields/mvname.h"
#include "tests/support/modalwatch.h"
#include "tests/support/rowfixtures.h"

#include <QAbstractButton>
#include <QDialogButtonBox>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTest>

using namespace plx;
using namespace plx::rowtest;

namespace {

using EditorWatch = ModalWatch<TextEditorDialog>;

class MemoRowTest : public TableFixture<>
{
protected:
    void SetUp() override
    {
        makeT(Store::Sqlite, { smithRecord() });
        names.setServices(env.services());
        names.setNUbound(1);
        names.setSCaption(0, QStringLiteral("Name"));
        names.setSFieldName(0, QStringLiteral("NAME"));
        names.setSCaption(1, QStringLiteral("Notes"));
        names.setSFieldName(1, QStringLiteral("NOTES"));
        names.setRecordSet(rs);
        names.UpdateDBF();
    }
    static void type(TextEditorDialog *editor, const QString &text)
    {
        editor->findChild<QPlainTextEdit *>()->setPlainText(text);
    }

    mvName names;
};

} // namespace

TEST_F(MemoRowTest, TheEditorsTextComesBackUnlessCancelled)
{
    names.setSValue(1, QStringLiteral("first line"));
    names.show();
    QApplication::setActiveWindow(&names);
    ASSERT_TRUE(QTest::qWaitForWindowActive(&names));
    ASSERT_TRUE(names.textRow(1)->isMultiLine());
    auto *memo = names.textRow(1)->findChild<QPlainTextEdit *>();
    memo->setFocus();
    EditorWatch accepted([](TextEditorDialog *editor) {
        EXPECT_EQ(editor->windowTitle(), QStringLiteral("Notes"));
        EXPECT_EQ(editor->printHeader(), QStringLiteral("Notes"));
        EXPECT_EQ(editor->text(), QStringLiteral("first line"));
        EXPECT_EQ(editor->maxLength(), 0) << "a memo has no defined size";
        type(editor, QStringLiteral("first line\nsecond line"));
        editor->accept();
    });
    QTest::keyClick(memo, Qt::Key_F2, Qt::ShiftModifier);
    EXPECT_EQ(accepted.shown, 1);
    EXPECT_EQ(names.textRow(1)->Value(), QStringLiteral("first line\nsecond line"));

    // Shift+F2 in a one-line row opens nothing.
    auto *line = names.textRow(0)->findChild<QLineEdit *>();
    line->setFocus();
    QTest::keyClick(line, Qt::Key_F2, Qt::ShiftModifier);
    EXPECT_EQ(accepted.shown, 1);
}

TEST_F(MemoRowTest, CancelALockAndTheLengthLimitKeepTheRowAsItWas)
{
    {
        EditorWatch cancelled([](TextEditorDialog *editor) {
            type(editor, QStringLiteral("dropped"));
            editor->reject();
        });
        names.EditText(1);
        EXPECT_EQ(cancelled.shown, 1);
        EXPECT_EQ(names.textRow(1)->Value(), QString());
    }
    {
        names.setLocked(true);
        EditorWatch locked([](TextEditorDialog *editor) {
            EXPECT_TRUE(editor->isReadOnly());
            editor->accept();
        });
        names.EditText(1);
        EXPECT_EQ(locked.shown, 1);
        names.setLocked(false);
    }
    // NAME is C(20); a smaller MaxLength of the row wins.
    names.setMaxLength(0, 12);
    EditorWatch limited([this](TextEditorDialog *editor) {
        EXPECT_EQ(editor->maxLength(), 12);
        type(editor, QStringLiteral("SMITHERSON-JONES"));
        env.prompter.expectMsgBox(QStringLiteral("Text Too Long"), QString(), MsgAnswer::OK);
        editor->accept();
        EXPECT_TRUE(editor->isVisible()) << "refused, still open";
        editor->reject();
    });
    names.EditText(0);
    EXPECT_EQ(limited.shown, 1);
    EXPECT_EQ(names.sValue(0), QStringLiteral("SMITH"));
}
