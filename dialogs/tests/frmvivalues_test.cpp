// dialogs/tests/frmvivalues_test.cpp: the value-list editor: its controls, Insert and
// Remove on the data value, Enter and double click in the list, the list kept in a real
// settings file through Add and Delete, the cancel flag, and its saved placement.
#include "dialogs/frmvivalues.h"

#include "services/ini.h"
#include "tests/support/envguard.h"
#include "testing/fakeenv.h"
#include "tests/support/testfiles.h"

#include <QAbstractButton>
#include <QGroupBox>
#include <QLabel>
#include <QListWidget>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

namespace plx::test {
namespace {

const QString kSection = QStringLiteral("ValueItems");
const QString kKey = QStringLiteral("Programs");

class ValueListEditorTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        guard.installAt(dir.path());
        listFile = dir.filePath(QStringLiteral("lists.ini"));
        editor.setServices(env.services());
        editor.setSVINIFile(listFile);
        editor.setSVINISec(kSection);
        editor.setSVINIVar(kKey);
    }

    // Writes `stored` as the list, opens the editor on it with `data` and `maxLen`.
    void open(const QString &stored, const QString &data = QString(), int maxLen = 100)
    {
        writeBytes(listFile, "[ValueItems]\r\nPrograms=" + stored.toUtf8() + "\r\n");
        editor.setSValue(data);
        editor.setMaxLen(maxLen);
        editor.InitForm();
    }
    QListWidget *list() const { return editor.findChild<QListWidget *>(QStringLiteral("List1")); }
    QString label() const { return editor.findChild<QLabel *>(QStringLiteral("Label1"))->text(); }
    void insert(int row)
    {
        list()->setCurrentRow(row);
        editor.Insert();
    }
    void remove(int row)
    {
        list()->setCurrentRow(row);
        editor.Remove();
    }
    void expectInfo(const char *title, const QString &text)
    {
        env.prompter.expectMsgBox(QString::fromLatin1(title), text, MsgStyle::Information,
                                  MsgAnswer::OK);
    }
    void expectAdd(const std::optional<QString> &value, const std::optional<QString> &description)
    {
        env.prompter.expectInputBox(QStringLiteral("Value List"),
                                    QStringLiteral("Item to add to Value List:"), value);
        if (description)
            env.prompter.expectInputBox(QStringLiteral("Description"),
                                        QStringLiteral("Description for this item:"), description);
    }
    QString stored() const { return getINIString(kSection, kKey, QStringLiteral("?"), listFile); }

    QTemporaryDir dir;
    EnvGuard guard;
    TestServices env;
    QString listFile;
    frmVIValues editor;
};

TEST_F(ValueListEditorTest, ControlsCarryTheirNamesCaptionsAndTips)
{
    struct Button
    {
        const char *name, *frame, *caption, *tip;
    };
    const Button buttons[] = {
        { "cmdAdd", "fraValList", "Add", "Add a new value to the list" },
        { "cmdDel", "fraValList", "Delete", "Delete the selected value from the list" },
        { "cmdInsert", "fraVariable", "Insert", "Insert selected value into data" },
        { "cmdRemove", "fraVariable", "Remove", "Remove selected valuefrom data" },
        { "cmdCancel", "fraVariable", "Cancel", "Remove selected valuefrom data" },
    };
    for (const Button &b : buttons) {
        auto *button = editor.findChild<QAbstractButton *>(QString::fromLatin1(b.name));
        ASSERT_TRUE(button) << b.name;
        EXPECT_EQ(button->text().remove(QLatin1Char('&')), QString::fromLatin1(b.caption));
        EXPECT_EQ(button->toolTip(), QString::fromLatin1(b.tip));
        EXPECT_TRUE(
            editor.findChild<QGroupBox *>(QString::fromLatin1(b.frame))->isAncestorOf(button));
    }
    const auto frame = [&](const char *name) {
        return editor.findChild<QGroupBox *>(QString::fromLatin1(name));
    };
    EXPECT_EQ(frame("fraValList")->title(), QStringLiteral("Value List"));
    EXPECT_EQ(frame("fraVariable")->title(), QStringLiteral("Variable"));
    EXPECT_EQ(frame("fraList")->title(), QStringLiteral("Values"));
    EXPECT_TRUE(
        frame("fraVariable")->isAncestorOf(editor.findChild<QLabel *>(QStringLiteral("Label1"))));
    EXPECT_TRUE(frame("fraList")->isAncestorOf(list()));
    EXPECT_EQ(editor.windowTitle(), QStringLiteral("Value Item List"));

    // Frames stacked top to bottom; the values frame takes the height that is left.
    editor.show();
    for (int height : { 400, 700 }) {
        editor.resize(420, height);
        QApplication::processEvents();
        EXPECT_LT(frame("fraValList")->geometry().bottom(), frame("fraVariable")->geometry().top());
        EXPECT_LT(frame("fraVariable")->geometry().bottom(), frame("fraList")->geometry().top());
        EXPECT_GT(frame("fraList")->geometry().bottom(), height - 20);
        EXPECT_GT(list()->width(), 420 - 60);
    }
}

TEST_F(ValueListEditorTest, InsertAndRemoveFollowThePlainSubstringRules)
{
    open(QStringLiteral("A {first}|B|AB|DE|D"));
    insert(0);
    EXPECT_EQ(label(), QStringLiteral("A"));
    insert(1);
    EXPECT_EQ(editor.sValue(), QStringLiteral("A,B"));
    insert(1);
    EXPECT_EQ(editor.sValue(), QStringLiteral("A,B,B")) << "no duplicate check on the data";
    remove(0);
    EXPECT_EQ(editor.sValue(), QStringLiteral("B,B"));
    remove(1);
    EXPECT_EQ(editor.sValue(), QString());
    EXPECT_EQ(label(), QString());

    // Removing A from AB,A cuts the longer value too.
    editor.setSValue(QStringLiteral("AB,A"));
    remove(0);
    EXPECT_EQ(editor.sValue(), QStringLiteral("B"));
    expectInfo("Nothing To Do",
               QStringLiteral("The selected value (A) is not found in the current data value."));
    remove(0);

    // MaxLen 5 with ABC: ABC,DE (6) is refused, ABC,D (5) fits.
    editor.setMaxLen(5);
    editor.setSValue(QStringLiteral("ABC"));
    expectInfo("Insufficient Data Length",
               QStringLiteral("The data where you want to insert this value has a maximum "
                              "length of 5\r\n\r\nThere is not enough room to add the selected "
                              "value.\r\n\r\nUse the 'Remove' button to remove one or more "
                              "values from the data so you can insert this one."));
    insert(3);
    EXPECT_EQ(editor.sValue(), QStringLiteral("ABC"));
    insert(4);
    EXPECT_EQ(editor.sValue(), QStringLiteral("ABC,D"));

    list()->setCurrentRow(-1);
    expectInfo("Nothing Selected",
               QStringLiteral("You must first select the item on the list you want to insert."));
    editor.Insert();
    expectInfo("Nothing Selected",
               QStringLiteral("You must first select the item on the list you want to remove."));
    editor.Remove();
    editor.Delete(); // no selection: no box
    EXPECT_EQ(env.prompter.pending(), 0);
}

TEST_F(ValueListEditorTest, EnterAndDoubleClickInsertExactlyOnce)
{
    open(QStringLiteral("PT {Physical therapy}|OT"));
    editor.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&editor));
    QTest::keyClick(list(), Qt::Key_Return); // nothing selected: nothing happens
    EXPECT_EQ(editor.sValue(), QString());
    EXPECT_TRUE(editor.isVisible());
    list()->setCurrentRow(1);
    QTest::keyClick(list(), Qt::Key_Return);
    EXPECT_EQ(editor.sValue(), QStringLiteral("OT"));
    const QPoint onPT = list()->visualItemRect(list()->item(0)).center();
    // A double click as the platform delivers it: press, release, double click, release.
    QTest::mousePress(list()->viewport(), Qt::LeftButton, {}, onPT);
    QTest::mouseRelease(list()->viewport(), Qt::LeftButton, {}, onPT);
    QTest::mouseDClick(list()->viewport(), Qt::LeftButton, {}, onPT);
    QTest::mouseRelease(list()->viewport(), Qt::LeftButton, {}, onPT);
    EXPECT_EQ(editor.sValue(), QStringLiteral("OT,PT"));
    EXPECT_EQ(list()->currentRow(), 0);
    EXPECT_TRUE(editor.isVisible()) << "Enter is not the editor's default button";
}

TEST_F(ValueListEditorTest, AddAndDeleteKeepTheListInTheSettingsFile)
{
    open(QStringLiteral("PT {Physical therapy}|OT"));
    expectAdd(QStringLiteral("  ST "), QStringLiteral(" Speech  "));
    editor.Add();
    expectAdd(QStringLiteral("RT"), QString());
    editor.Add();
    EXPECT_EQ(stored(), QStringLiteral("PT {Physical therapy}|OT|ST {Speech}|RT"));

    // The same entry again, with or without a description, is refused; the same value with
    // another description is a new entry.
    for (const auto &[value, description] :
         { std::pair{ "PT", "Physical therapy" }, std::pair{ "OT", "" } }) {
        const QString entry = QString::fromLatin1(value)
            + (*description ? QStringLiteral(" {%1}").arg(QString::fromLatin1(description))
                            : QString());
        expectAdd(QString::fromLatin1(value), QString::fromLatin1(description));
        expectInfo("Duplicate Value",
                   QStringLiteral("This value is already in the list:\r\n\r\n") + entry
                       + QStringLiteral("\r\n\r\nYou cannot have duplicate values in the list."));
        editor.Add();
    }
    expectAdd(QStringLiteral("OT"), QStringLiteral("Occupational"));
    editor.Add();
    expectAdd(QStringLiteral("   "), std::nullopt); // blank: no second box
    editor.Add();
    expectAdd(std::nullopt, std::nullopt);
    editor.Add();
    EXPECT_EQ(stored(),
              QStringLiteral("PT {Physical therapy}|OT|ST {Speech}|RT|OT {Occupational}"));

    const auto expectDelete = [this](const char *entry, MsgAnswer answer) {
        env.prompter.expectMsgBox(
            QStringLiteral("Delete From List?"),
            QStringLiteral("Are you sure you want to DELETE this value from the list?\r\n\r\n")
                + QString::fromLatin1(entry),
            260, answer);
    };
    list()->setCurrentRow(2);
    expectDelete("ST {Speech}", MsgAnswer::No);
    editor.Delete();
    expectDelete("ST {Speech}", MsgAnswer::Yes);
    editor.Delete();
    EXPECT_EQ(stored(), QStringLiteral("PT {Physical therapy}|OT|RT|OT {Occupational}"));

    // A new editor reads the list back from the file.
    frmVIValues again;
    again.setSVINIFile(listFile);
    again.setSVINISec(kSection);
    again.setSVINIVar(kKey);
    again.InitForm();
    EXPECT_EQ(again.entries(), editor.entries());
}

TEST_F(ValueListEditorTest, OpeningWithoutAChangeLeavesTheFileAsItWas)
{
    // Blank fields are skipped, the quotes and blanks the reader removes stay in the file.
    const QByteArray before = "; programs\r\n[ValueItems]\r\nPrograms = \" A||  |B {b} \" \r\n"
                              "[CONFIG]\r\nfrmVIValues-X=900\r\n";
    writeBytes(listFile, before);
    editor.setMaxLen(10);
    editor.InitForm();
    EXPECT_EQ(editor.entries(), QStringList({ QStringLiteral(" A"), QStringLiteral("B {b} ") }));
    insert(0);
    insert(1);
    remove(0);
    EXPECT_EQ(editor.sValue(), QStringLiteral("B"));
    editor.close();
    EXPECT_EQ(readBytes(listFile), before);

    // A list longer than the settings readers return is read whole.
    QStringList many;
    for (int i = 0; i < 500; ++i)
        many << QStringLiteral("V%1 {Value number %1}").arg(i);
    open(many.join(QLatin1Char('|')));
    EXPECT_EQ(editor.entries(), many);

    // Any blank coordinate: no list is read or written; a blank file is no file.
    frmVIValues loose;
    loose.setServices(env.services());
    loose.setSVINISec(kSection);
    loose.setSVINIVar(kKey);
    writeBytes(dir.filePath(QStringLiteral("HBDEFAULTS.INI")), "[ValueItems]\r\nPrograms=X\r\n");
    loose.InitForm();
    EXPECT_EQ(loose.entries(), QStringList());
    env.prompter.expectInputBox(QStringLiteral("Value List"),
                                QStringLiteral("Item to add to Value List:"), QStringLiteral("Y"));
    env.prompter.expectInputBox(QStringLiteral("Description"),
                                QStringLiteral("Description for this item:"), QString());
    loose.Add();
    EXPECT_EQ(loose.entries(), QStringList({ QStringLiteral("Y") }));
    EXPECT_EQ(
        getINIString(kSection, kKey, QString(), dir.filePath(QStringLiteral("HBDEFAULTS.INI"))),
        QStringLiteral("X"));
}

TEST_F(ValueListEditorTest, OnlyCancelSetsTheFlagAndThePlacementIsKept)
{
    open(QStringLiteral("A"));
    editor.show();
    editor.move(130, 90);
    editor.resize(450, 520);
    editor.close();
    EXPECT_FALSE(editor.bCancel()) << "closing is not cancelling";

    frmVIValues again;
    again.setServices(env.services());
    again.InitForm();
    EXPECT_EQ(again.pos(), QPoint(130, 90));
    EXPECT_EQ(again.size(), QSize(450, 520));
    again.show();
    QTest::keyClick(&again, Qt::Key_Escape);
    EXPECT_FALSE(again.isVisible());
    EXPECT_FALSE(again.bCancel());
    again.show();
    again.findChild<QAbstractButton *>(QStringLiteral("cmdCancel"))->click();
    EXPECT_FALSE(again.isVisible());
    EXPECT_TRUE(again.bCancel());
}

} // namespace
} // namespace plx::test
