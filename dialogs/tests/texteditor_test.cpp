// dialogs/tests/texteditor_test.cpp: the text editor: the count against the maximum and OK's
// refusal, find and replace with undo, the read-only mode, and a printout read back from a
// real PDF file with pdftotext.
#include "dialogs/texteditor.h"

#include "testing/fakeenv.h"

#include <QPlainTextEdit>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace plx::test {
namespace {

class TextEditorTest : public ::testing::Test
{
protected:
    void SetUp() override { editor.setServices(env.services()); }
    QPlainTextEdit *edit() const
    {
        return editor.findChild<QPlainTextEdit *>(QStringLiteral("txtText"));
    }

    TestServices env;
    TextEditorDialog editor;
};

TEST_F(TextEditorTest, ATextLongerThanTheMaximumIsRefusedNotCut)
{
    editor.setText(QStringLiteral("Prefers calls after 4 pm."));
    EXPECT_EQ(editor.countText(), QStringLiteral("25 characters"));
    editor.setMaxLength(20);
    EXPECT_EQ(editor.countText(), QStringLiteral("25 of 20 characters"));
    editor.show();
    env.prompter.expectMsgBox(
        QStringLiteral("Text Too Long"),
        QStringLiteral("The text has 25 characters; this field holds at "
                       "most 20.\r\n\r\nShorten the text before you save it."),
        MsgStyle::Exclamation, MsgAnswer::OK);
    editor.accept();
    EXPECT_TRUE(editor.isVisible());
    EXPECT_EQ(editor.text(), QStringLiteral("Prefers calls after 4 pm.")) << "nothing cut";
    edit()->setPlainText(QStringLiteral("Calls after 4 pm."));
    EXPECT_EQ(editor.countText(), QStringLiteral("17 of 20 characters"));
    editor.accept();
    EXPECT_EQ(editor.result(), QDialog::Accepted);
}

TEST_F(TextEditorTest, FindAndReplaceWrapAroundAndUndoAsOneStep)
{
    editor.setText(QStringLiteral("Mail the invoice.\nMAIL the receipt.\nCall first."));
    EXPECT_TRUE(editor.findNext(QStringLiteral("mail")));
    EXPECT_TRUE(editor.findNext(QStringLiteral("mail")));
    EXPECT_EQ(edit()->textCursor().selectionStart(), 18);
    EXPECT_TRUE(editor.findNext(QStringLiteral("mail"))) << "wraps round to the start";
    EXPECT_EQ(edit()->textCursor().selectionStart(), 0);
    env.prompter.expectMsgBox(QStringLiteral("Find"), QStringLiteral("\"mail\" was not found."),
                              MsgStyle::Information, MsgAnswer::OK);
    EXPECT_FALSE(editor.findNext(QStringLiteral("mail"), true));

    // The selection is replaced, then the next one is looked for: there is none.
    env.prompter.expectMsgBox(QStringLiteral("Find"), QStringLiteral("\"Mail\" was not found."),
                              MsgStyle::Information, MsgAnswer::OK);
    editor.replaceNext(QStringLiteral("Mail"), QStringLiteral("Post"), true);
    EXPECT_EQ(editor.text(), QStringLiteral("Post the invoice.\nMAIL the receipt.\nCall first."));
    EXPECT_EQ(editor.replaceAll(QStringLiteral("the"), QStringLiteral("a")), 2);
    EXPECT_EQ(editor.text(), QStringLiteral("Post a invoice.\nMAIL a receipt.\nCall first."));
    edit()->undo();
    EXPECT_EQ(editor.text(), QStringLiteral("Post the invoice.\nMAIL the receipt.\nCall first."));

    editor.setReadOnly(true);
    EXPECT_EQ(editor.replaceAll(QStringLiteral("the"), QStringLiteral("a")), 0);
    editor.replaceNext(QStringLiteral("Post"), QStringLiteral("x"));
    EXPECT_TRUE(editor.text().startsWith(QStringLiteral("Post the")));
    EXPECT_TRUE(edit()->isReadOnly());
}

TEST_F(TextEditorTest, ThePrintoutCarriesTheHeaderAndTheWholeText)
{
    const QString pdftotext = QStandardPaths::findExecutable(QStringLiteral("pdftotext"));
    if (pdftotext.isEmpty())
        GTEST_SKIP() << "pdftotext (poppler-utils) is not installed";
    QStringList lines;
    for (int i = 1; i <= 120; ++i)
        lines << QStringLiteral("Line %1 of the note: Müller paid €%1.").arg(i);
    editor.setText(lines.join(QLatin1Char('\n')));
    editor.setPrintHeader(QStringLiteral("Notes of SMITH, JOHN"));
    QTemporaryDir dir;
    const QString pdf = dir.filePath(QStringLiteral("note.pdf"));
    ASSERT_TRUE(editor.printToPdf(pdf));

    QProcess reader;
    reader.start(pdftotext,
                 { QStringLiteral("-enc"), QStringLiteral("UTF-8"), pdf, QStringLiteral("-") });
    ASSERT_TRUE(reader.waitForFinished(30000));
    const QString printed = QString::fromUtf8(reader.readAllStandardOutput());
    const QStringList pages = printed.split(QLatin1Char('\f'), Qt::SkipEmptyParts);
    ASSERT_GE(pages.size(), 2) << "120 lines take more than one page";
    EXPECT_TRUE(pages.first().trimmed().startsWith(QStringLiteral("Notes of SMITH, JOHN")));
    for (const QString &line : { lines.first(), lines.at(59), lines.last() })
        EXPECT_TRUE(printed.contains(line)) << line.toStdString();
    EXPECT_LT(printed.indexOf(lines.at(9)), printed.indexOf(lines.at(10))) << "in order";
}

} // namespace
} // namespace plx::test
