// fields/tests/mvvitext_test.cpp: the value-item stack opens the value-list editor on a row
// of a real table: what it hands the editor, what comes back, when nothing opens, and the
// boxes of its failures.
#include "fields/mvvitext.h"

#include "dialogs/frmvivalues.h"
#include "tests/support/modalwatch.h"
#include "services/ini.h"
#include "tests/support/envguard.h"
#include "tests/support/rowfixtures.h"

#include <QAbstractButton>
#include <QApplication>
#include <QLineEdit>
#include <QListWidget>
#include <QSignalSpy>
#include <QTest>

using namespace plx;
using namespace plx::rowtest;

namespace {

using EditorWatch = ModalWatch<frmVIValues>;

class ValueItemStackTest : public TableFixture<>
{
protected:
    void SetUp() override
    {
        guard.installAt(dir.path());
        listFile = dir.filePath(QStringLiteral("lists.ini"));
        ASSERT_TRUE(writeINI(QStringLiteral("ValueItems"), QStringLiteral("Programs"), listFile,
                             QStringLiteral("PT {Physical therapy}|OT|SP {Speech}")));
        makeT(Store::Sqlite, { smithRecord() });
        items.setServices(env.services());
        items.setNUbound(1);
        items.setSCaption(0, QStringLiteral("Name"));
        items.setSFieldName(0, QStringLiteral("NAME"));
        items.setSCaption(1, QStringLiteral("Notes"));
        items.setSFieldName(1, QStringLiteral("NOTES"));
        items.setSVINIFile(listFile);
        items.setSVINISec(QStringLiteral("ValueItems"));
        items.setSVINIVar(QStringLiteral("Programs"));
        items.setRecordSet(rs);
        items.UpdateDBF();
    }

    static void pick(frmVIValues *editor, int row)
    {
        editor->findChild<QListWidget *>(QStringLiteral("List1"))->setCurrentRow(row);
    }

    test::EnvGuard guard;
    QString listFile;
    mvVIText items;
};

} // namespace

TEST_F(ValueItemStackTest, TheEditorEditsTheRowsValueUnlessCancelled)
{
    QSignalSpy clicks(&items, &mvVIText::DblClick);
    items.setSValue(0, QStringLiteral(" OT "));
    {
        EditorWatch watch([&](frmVIValues *editor) {
            EXPECT_EQ(clicks.count(), 1) << "DblClick comes before the editor";
            EXPECT_EQ(editor->objectName(), QStringLiteral("frmVIValues"));
            EXPECT_EQ(editor->windowTitle(), QStringLiteral("Value Item List: Name"));
            EXPECT_EQ(editor->sValue(), QStringLiteral("OT"));
            EXPECT_EQ(editor->MaxLen(), 20) << "NAME is C(20)";
            EXPECT_EQ(editor->sVINIFile(), listFile);
            EXPECT_EQ(
                editor->entries(),
                QStringLiteral("PT {Physical therapy}|OT|SP {Speech}").split(QLatin1Char('|')));
            pick(editor, 0);
            editor->Insert();
        });
        items.SelectVI(0);
        EXPECT_EQ(watch.shown, 1);
        ASSERT_EQ(clicks.count(), 1);
        EXPECT_EQ(clicks.at(0).at(0).value<qint16>(), 0);
        EXPECT_EQ(items.sValue(0), QStringLiteral("OT,PT")) << "closing keeps the edit";
    }

    // A list change survives a cancel; the value does not. A memo has no length limit.
    EditorWatch cancelled([&](frmVIValues *editor) {
        EXPECT_GT(editor->MaxLen(), 1000000);
        env.prompter.expectInputBox(QStringLiteral("Value List"),
                                    QStringLiteral("Item to add to Value List:"),
                                    QStringLiteral("ST"));
        env.prompter.expectInputBox(QStringLiteral("Description"),
                                    QStringLiteral("Description for this item:"), QString());
        editor->Add();
        pick(editor, 3);
        editor->Insert();
        EXPECT_EQ(editor->sValue(), QStringLiteral("ST"));
        editor->findChild<QAbstractButton *>(QStringLiteral("cmdCancel"))->click();
    });
    QTest::mouseDClick(items.textRow(1)->findChild<QLineEdit *>(), Qt::LeftButton);
    EXPECT_EQ(cancelled.shown, 1);
    EXPECT_EQ(items.sValue(1), QString());
    EXPECT_EQ(
        getINIString(QStringLiteral("ValueItems"), QStringLiteral("Programs"), QString(), listFile),
        QStringLiteral("PT {Physical therapy}|OT|SP {Speech}|ST"));
    EXPECT_EQ(clicks.count(), 2);
}

TEST_F(ValueItemStackTest, ALockedOrDisabledControlRaisesDblClickOnly)
{
    QSignalSpy clicks(&items, &mvVIText::DblClick);
    EditorWatch watch([](frmVIValues *) {});
    items.setLocked(true);
    items.SelectVI(1);
    items.setLocked(false);
    items.setEnabled(false);
    items.SelectVI(0);
    QTest::qWait(20);
    EXPECT_EQ(clicks.count(), 2);
    EXPECT_EQ(watch.shown, 0);
}

TEST_F(ValueItemStackTest, FailuresNameTheStepTheyReached)
{
    EditorWatch watch([](frmVIValues *) {});
    const auto expectError = [this](const char *step) {
        env.prompter.expectMsgBox(QStringLiteral("mvVIText"),
                                  QStringLiteral("mvVIText Error ") + QString::fromLatin1(step),
                                  MsgStyle::Critical, MsgAnswer::OK);
    };
    expectError("Caption");
    items.SelectVI(2);
    items.setSFieldName(1, QStringLiteral("NO_SUCH_FIELD"));
    expectError("set MaxLen");
    items.SelectVI(1);
    mvVIText unbound;
    unbound.setServices(env.services());
    expectError("set MaxLen");
    unbound.SelectVI(0);
    EXPECT_EQ(watch.shown, 0);

    env.prompter.expectMsgBox(QStringLiteral("mvVIText"),
                              QStringLiteral("mvVIText.sValue array error: -1\r\n1"),
                              MsgStyle::Critical, MsgAnswer::OK);
    EXPECT_EQ(items.sValue(-1), QString());
    env.prompter.expectMsgBox(QStringLiteral("mvVIText"),
                              QStringLiteral("mvVIText.sValue array error: 2\r\n1"),
                              MsgStyle::Critical, MsgAnswer::OK);
    EXPECT_EQ(items.sValue(2), QString());
}
