// navigator/tests/navigator_core_test.cpp: configuration, count, stepping, the scroll bar,
// sort changes and the toolbar's buttons, on SQLite and on a FoxPro table file.
#include "navigator/tests/navigatorfixture.h"

#include "navigator/navigatortext_p.h"
#include "services/recordsource/recordsource.h"

#include <QAction>
#include <QFile>
#include <QTemporaryDir>
#include <QComboBox>
#include <QDir>
#include <QGroupBox>
#include <QPushButton>
#include <QScrollBar>
#include <QToolBar>

#include <stdexcept>

namespace plx::test {
namespace {

using Core = NavigatorTest;

QString frameTitle(mvPLXRecs &nav)
{
    return nav.findChild<QGroupBox *>(QStringLiteral("fraControls"))->title();
}

TEST(NavigatorText, CountsAreGroupedInThousands)
{
    EXPECT_EQ(formatRecordCount(0), QStringLiteral("0"));
    EXPECT_EQ(formatRecordCount(999), QStringLiteral("999"));
    EXPECT_EQ(formatRecordCount(1234), QStringLiteral("1,234"));
    EXPECT_EQ(formatRecordCount(1250000), QStringLiteral("1,250,000"));
    EXPECT_EQ(formatRecordCount(100000), QStringLiteral("100,000"));
}

TEST(NavigatorConfig, InitControlReportsEachMissingPieceInOrder)
{
    TestServices env;
    mvPLXRecs nav;
    nav.setServices(env.services());
    nav.AddSort(QString(), QStringLiteral("NAME"));
    nav.AddSort(QStringLiteral("City"), QStringLiteral("  "));
    EXPECT_EQ(nav.InitControl(),
              QStringLiteral("AddSort: Blank Name for field NAME\r\n"
                             "AddSort: Blank Field for name City\r\n"
                             "No RecordSet specified"));
    EXPECT_EQ(frameTitle(nav), QStringLiteral("No Records"));
    // Without a record source EDIT, COPY and DELETE stay off.
    nav.setRs(nullptr);
    EXPECT_FALSE(nav.bButtonEnable(QStringLiteral("EDIT")));
    EXPECT_FALSE(nav.bButtonEnable(QStringLiteral("COPY")));
    EXPECT_FALSE(nav.bButtonEnable(QStringLiteral("DELETE")));
}

TEST_P(Core, InitControlWithoutIdFieldOrSortsSaysSo)
{
    attach();
    EXPECT_EQ(nav->InitControl(), QStringLiteral("No ID Field specified"));
    nav->setSIDfield(QStringLiteral("ID"));
    EXPECT_EQ(nav->InitControl(), QStringLiteral("No Sorts specified"));
    EXPECT_EQ(nav->findChild<QComboBox *>(QStringLiteral("cboSort"))->count(), 0);
    EXPECT_EQ(frameTitle(*nav), QStringLiteral("10 records"));
    EXPECT_EQ(env.prompter.shown().size(), 0);
}

TEST_P(Core, InitControlSortsByTheFirstSortAndRaisesSortChange)
{
    nav->setSIDfield(QStringLiteral("ID"));
    nav->AddSort(QStringLiteral("Name"), QStringLiteral("NAME, CITY"));
    nav->AddSort(QStringLiteral("ID"), QStringLiteral("ID"));
    attach();
    events->clear();
    ASSERT_EQ(nav->InitControl(), QString());
    auto *sorts = nav->findChild<QComboBox *>(QStringLiteral("cboSort"));
    ASSERT_EQ(sorts->count(), 2);
    EXPECT_EQ(sorts->itemData(1).toInt(), 1);
    EXPECT_EQ(sorts->currentText(), QStringLiteral("Name"));
    EXPECT_EQ(nav->sSort(), QStringLiteral("NAME, CITY"));
    EXPECT_EQ(
        events->texts(),
        QStringList{ QStringLiteral("SortChange(NAME, CITY) [SetRS after setHScroll] initiator") });
    EXPECT_TRUE(nav->findChild<QComboBox *>(QStringLiteral("cboFind"))->isEnabled());
}

TEST_P(Core, SortFieldTextChoosesTheSortShown)
{
    nav->setSIDfield(QStringLiteral("ID"));
    nav->AddSort(QStringLiteral("Name"), QStringLiteral("NAME, CITY"));
    nav->AddSort(QStringLiteral("ID"), QStringLiteral("ID"));
    nav->setSSort(QStringLiteral("ID"));
    attach();
    ASSERT_EQ(nav->InitControl(), QString());
    EXPECT_EQ(nav->findChild<QComboBox *>(QStringLiteral("cboSort"))->currentText(),
              QStringLiteral("ID"));
    // The record current before the sort stays current, now at its place in ID order.
    EXPECT_EQ(nav->sCurrentID(), QStringLiteral("PLE0000005"));
    EXPECT_EQ(nav->rs()->AbsolutePosition(), 4);
}

TEST_P(Core, BackAndNextRaiseIDChangeOnlyWhenTheyMove)
{
    if (isServer())
        GTEST_SKIP() << kSymbolsFirst;
    configure();
    auto *back = nav->findChild<QPushButton *>(QStringLiteral("cmdRecBack"));
    auto *next = nav->findChild<QPushButton *>(QStringLiteral("cmdRecNext"));
    auto *bar = nav->findChild<QScrollBar *>(QStringLiteral("HScroll1"));
    EXPECT_EQ(nav->sCurrentID(), QStringLiteral("PLE0000006")); // ADAMS
    back->click(); // already first: nothing
    EXPECT_TRUE(events->events().isEmpty());
    next->click();
    next->click();
    EXPECT_EQ(events->texts(),
              (QStringList{ QStringLiteral("IDChange(PLE0000002) [cmdRecNext_Click] initiator"),
                            QStringLiteral("IDChange(PLE0000008) [cmdRecNext_Click] initiator") }));
    // The bar followed without an event of its own.
    EXPECT_EQ(bar->value(), 2);
    events->clear();
    back->click();
    EXPECT_EQ(events->texts(),
              QStringList{ QStringLiteral("IDChange(PLE0000002) [cmdRecBack_Click] initiator") });

    bar->setValue(9);
    events->clear();
    next->click(); // last record: nothing moves, no event
    EXPECT_TRUE(events->events().isEmpty());
    EXPECT_EQ(nav->sCurrentID(), QStringLiteral("PLE0000004")); // SNOW, still current
}

TEST_P(Core, ScrollBarValueIsThePositionAndRaisesOneIDChange)
{
    configure();
    auto *bar = nav->findChild<QScrollBar *>(QStringLiteral("HScroll1"));
    EXPECT_EQ(bar->minimum(), 0);
    EXPECT_EQ(bar->maximum(), 9);
    bar->setValue(3);
    EXPECT_EQ(events->texts(),
              QStringList{ QStringLiteral("IDChange(PLE0000001) [HScroll1_change] initiator") });
    EXPECT_EQ(nav->rs()->AbsolutePosition(), 3);
    // IDs longer than seven characters carry their parent's ID in front.
    EXPECT_EQ(nav->sParentID(), QStringLiteral("PLE"));
}

TEST_P(Core, SortChangeKeepsTheCurrentRecord)
{
    configure();
    nav->findChild<QScrollBar *>(QStringLiteral("HScroll1"))->setValue(4); // O'BRIEN
    events->clear();
    auto *sorts = nav->findChild<QComboBox *>(QStringLiteral("cboSort"));
    sorts->setCurrentIndex(1);
    Q_EMIT sorts->activated(1);
    EXPECT_EQ(events->texts(),
              QStringList{ QStringLiteral("SortChange(ID) [SetRS after setHScroll] initiator") });
    EXPECT_EQ(nav->sCurrentID(), QStringLiteral("PLE0000003"));
    EXPECT_EQ(nav->rs()->AbsolutePosition(), 2);
    EXPECT_EQ(nav->findChild<QScrollBar *>(QStringLiteral("HScroll1"))->value(), 2);
    EXPECT_EQ(frameTitle(*nav), QStringLiteral("10 records"));

    // RSRefresh runs the same steps without a user behind them.
    nav->setBInitiator(false);
    events->clear();
    nav->RSRefresh();
    EXPECT_EQ(events->texts(),
              QStringList{ QStringLiteral("SortChange(ID) [SetRS after setHScroll] -") });
    EXPECT_EQ(nav->sCurrentID(), QStringLiteral("PLE0000003"));
}

TEST_P(Core, ButtonsAreFoundByCaptionInAnyCase)
{
    configure();
    EXPECT_TRUE(nav->bButtonEnable(QStringLiteral("EDIT")));
    EXPECT_TRUE(nav->bButtonEnable(QStringLiteral("edit")));
    EXPECT_FALSE(nav->bButtonEnable(QStringLiteral("Save")));
    env.prompter.expectMsgBox(QStringLiteral("mvPLXRecs Facilities"),
                              QStringLiteral("Button key not found: Bogus"), 0, MsgAnswer::OK);
    nav->ClickButton(QStringLiteral("Bogus"));
    env.prompter.expectMsgBox(QStringLiteral("mvPLXRecs Facilities"),
                              QStringLiteral("Button not enabled: SAVE"), 0, MsgAnswer::OK);
    nav->ClickButton(QStringLiteral("SAVE"));
    EXPECT_EQ(env.prompter.pending(), 0);

    nav->setSButtonTip(QStringLiteral("NEW"), QStringLiteral("Create a new client"));
    QAction *newButton = nav->findChild<QToolBar *>(QStringLiteral("tbrBtm"))->actions().first();
    EXPECT_EQ(newButton->toolTip(), QStringLiteral("Create a new client"));
    EXPECT_EQ(newButton->objectName(), QStringLiteral("NEW"));
}

TEST_P(Core, DisablingAndEnablingRestoresEveryButtonState)
{
    configure();
    nav->setBButtonEnable(QStringLiteral("New"), false);
    nav->setBButtonEnable(QStringLiteral("Cancel"), true);
    nav->setEnabled(false);
    EXPECT_FALSE(nav->bButtonEnable(QStringLiteral("EDIT")));
    EXPECT_FALSE(nav->findChild<QComboBox *>(QStringLiteral("cboSort"))->isEnabled());
    nav->setEnabled(true);
    EXPECT_FALSE(nav->bButtonEnable(QStringLiteral("NEW")));
    EXPECT_TRUE(nav->bButtonEnable(QStringLiteral("EDIT")));
    EXPECT_FALSE(nav->bButtonEnable(QStringLiteral("SAVE")));
    EXPECT_TRUE(nav->bButtonEnable(QStringLiteral("CANCEL")));
    EXPECT_TRUE(nav->findChild<QComboBox *>(QStringLiteral("cboSort"))->isEnabled());

    // A parent form disabling the navigator is the same change as the navigator's own.
    QWidget form;
    nav->setParent(&form);
    form.setEnabled(false);
    EXPECT_FALSE(nav->bButtonEnable(QStringLiteral("CANCEL")));
    form.setEnabled(true);
    EXPECT_TRUE(nav->bButtonEnable(QStringLiteral("CANCEL")));
    nav->setParent(nullptr);

    nav->setBRecDisplay(false);
    EXPECT_FALSE(nav->bButtonEnable(QStringLiteral("EDIT")));
    EXPECT_FALSE(nav->bButtonEnable(QStringLiteral("COPY")));
    nav->setBRecDisplay(true);
    EXPECT_TRUE(nav->bButtonEnable(QStringLiteral("DELETE")));
}

TEST_P(Core, ObsoleteMembersSayTheyAreGoneAndChangeNothing)
{
    configure();
    const QString title = QStringLiteral("mvPLXRecs Facilities");
    for (const char *text : { "Get_lDelayMS function no longer supported in PLXRecs",
                              "Let_lDelayMS function no longer supported in PLXRecs",
                              "Get_lListIndex function no longer supported in PLXRecs",
                              "Let_lListIndex function no longer supported in PLXRecs",
                              "SetFindFromList function no longer supported in PLXRecs",
                              "sButtonEnable no longer used" })
        env.prompter.expectMsgBox(title, QString::fromLatin1(text), 0, MsgAnswer::OK);
    // Through the property system and by name, as a script would reach them.
    (void)nav->property("lDelayMS");
    nav->setProperty("lDelayMS", 5);
    (void)nav->property("lListIndex");
    nav->setProperty("lListIndex", 5);
    QMetaObject::invokeMethod(nav.get(), "SetFindFromList", Q_ARG(qint32, 2));
    QString ignored;
    QMetaObject::invokeMethod(nav.get(), "sButtonEnable", Q_RETURN_ARG(QString, ignored),
                              Q_ARG(QString, QStringLiteral("EDIT")));
    EXPECT_EQ(env.prompter.pending(), 0);
    EXPECT_TRUE(events->events().isEmpty());
}

TEST_P(Core, ASecondConnectIsRefusedWithTheConnectedPath)
{
    configure();
    const QString connected = nav->sDBFPathFileName();
    env.prompter.expectMsgBox(QStringLiteral("Already Connected"),
                              QStringLiteral("mvPLXRecs already connected to:\r\n\r\n") + connected
                                  + QStringLiteral("\r\n\r\n") + alreadyConnectedSupportText(),
                              0, MsgAnswer::OK);
    nav->setSDBFPathFileName(dir.filePath(QStringLiteral("OTHER.DBF")));
    EXPECT_EQ(nav->sDBFPathFileName(), connected);
    EXPECT_EQ(frameTitle(*nav), QStringLiteral("10 records"));
}

// A host's slot that throws ends the navigator's operation there: the exception stays in
// the navigator, which notes it in the activity log.
TEST_P(Core, AnExceptionFromAHostsSlotEndsTheOperationAndIsLogged)
{
    configure();
    QObject::connect(nav.get(), &mvPLXRecs::IDChange,
                     [](const QString &) { throw std::runtime_error("the host failed"); });
    EXPECT_NO_THROW(nav->SetFindFromID(QStringLiteral("PLE0000008")));
    EXPECT_EQ(nav->sCurrentID(), QStringLiteral("PLE0000008"));
    QFile log(dir.filePath(QStringLiteral("inst/PLXLogFile.TXT")));
    ASSERT_TRUE(log.open(QIODevice::ReadOnly));
    EXPECT_TRUE(QString::fromLatin1(log.readAll())
                    .contains(QStringLiteral("mvPLXRecs Facilities: SetFindFromID stopped by an "
                                             "error: the host failed")));
}

INSTANTIATE_TEST_SUITE_P(BackEnds, Core, ::testing::ValuesIn(navigatorBackEnds()), backEndName);

} // namespace
} // namespace plx::test

namespace plx::test {
namespace {

// A FoxPro table with a structural index is shown and searched, but never written: the
// index would go stale for the FoxPro programs that trust it.
TEST(NavigatorIndexedTable, IsBrowsedAndFoundButWritingIsOffWithTheReason)
{
    const QString samples = QStringLiteral(PLX_TESTDATA_DIR);
    if (!QFile::exists(samples + QStringLiteral("/calls.dbf"))) {
        if (qEnvironmentVariable("CI") == QLatin1String("true"))
            FAIL() << "the sample tables are missing: " << samples.toStdString();
        GTEST_SKIP() << "the sample tables are not beside this checkout (" << samples.toStdString()
                     << ")";
    }
    QTemporaryDir dir;
    for (const char *file : { "calls.dbf", "calls.FPT", "calls.CDX" }) {
        const QString name = QString::fromLatin1(file);
        ASSERT_TRUE(QFile::copy(samples + QLatin1Char('/') + name, dir.filePath(name)));
        QFile(dir.filePath(name)).setPermissions(QFile::ReadOwner | QFile::WriteOwner);
    }
    const QByteArray before = [&] {
        QFile f(dir.filePath(QStringLiteral("calls.dbf")));
        return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
    }();
    RecordingPrompter boxes;
    Services services{ &boxes, nullptr, nullptr };
    mvPLXRecs nav;
    nav.setServices(&services);
    nav.setSIDfield(QStringLiteral("CALL_ID"));
    nav.setSDesc(QStringLiteral("Calls"));
    nav.AddSort(QStringLiteral("Subject"), QStringLiteral("SUBJECT"));
    nav.AddSort(QStringLiteral("Call"), QStringLiteral("CALL_ID"));
    nav.setSDBFPathFileName(dir.filePath(QStringLiteral("calls.dbf")));
    ASSERT_EQ(nav.InitControl(), QString());
    EXPECT_EQ(nav.findChild<QGroupBox *>(QStringLiteral("fraControls"))->title(),
              QStringLiteral("16 records"));
    auto *sorts = nav.findChild<QComboBox *>(QStringLiteral("cboSort"));
    sorts->setCurrentIndex(1);
    Q_EMIT sorts->activated(1);
    nav.findChild<QScrollBar *>(QStringLiteral("HScroll1"))->setValue(0);
    nav.findChild<QPushButton *>(QStringLiteral("cmdRecNext"))->click();
    EXPECT_EQ(nav.sCurrentID(), QStringLiteral("2"));
    nav.SetFindFromID(QStringLiteral("7"));
    EXPECT_EQ(nav.sCurrentID(), QStringLiteral("7"));

    // Every command that would write is off, and says why.
    const QString reason = nav.rs()->readOnlyReason();
    EXPECT_FALSE(reason.isEmpty());
    for (const char *key : { "NEW", "EDIT", "COPY", "DELETE" }) {
        QAction *button = nav.findChild<QAction *>(QString::fromLatin1(key));
        ASSERT_NE(button, nullptr);
        EXPECT_FALSE(button->isEnabled()) << key;
        EXPECT_EQ(button->toolTip(), reason) << key;
    }
    nav.ClickButton(QStringLiteral("EDIT"));
    EXPECT_EQ(boxes.texts, QStringList{ QStringLiteral("Button not enabled: EDIT") });
    EXPECT_FALSE(nav.bButtonEnable(QStringLiteral("SAVE")));
    EXPECT_EQ(nav.NewIDPLX(), QString());
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files).size(), 3); // no key file, no notes
    QFile after(dir.filePath(QStringLiteral("calls.dbf")));
    ASSERT_TRUE(after.open(QIODevice::ReadOnly));
    EXPECT_EQ(after.readAll(), before);
}

} // namespace
} // namespace plx::test
