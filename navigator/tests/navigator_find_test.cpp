// navigator/tests/navigator_find_test.cpp: the find box typed into as a user does, the
// search list, and the filters, on SQLite and on a FoxPro table file.
#include "navigator/tests/navigatorfixture.h"

#include "services/ini.h"
#include "services/recordsource/recordsource.h"

#include <QComboBox>
#include <QGroupBox>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QTest>

namespace plx::test {
namespace {

using Find = NavigatorTest;
using Filters = NavigatorTest;

QComboBox *findBox(mvPLXRecs &nav)
{
    return nav.findChild<QComboBox *>(QStringLiteral("cboFind"));
}

void pressEnter(mvPLXRecs &nav)
{
    QTest::keyClick(findBox(nav), Qt::Key_Return);
}

TEST_P(Find, EnterRunsExactlyOneFindAndKeepsTheText)
{
    configure();
    findBox(*nav)->setEditText(QStringLiteral("smith"));
    pressEnter(*nav);
    // SetFindFromID tells the host first (it names no code path of its own, so the tag of
    // the last event stands), then the find itself.
    EXPECT_EQ(
        events->texts(),
        (QStringList{
            QStringLiteral("IDChange(PLE0000007) [HScroll1_change] initiator"),
            QStringLiteral("IDChange(PLE0000007) [SetFindRS after SetFindFromID] initiator") }));
    EXPECT_EQ(nav->sCurrentID(), QStringLiteral("PLE0000007")); // SMITH of ATLANTA comes first
    EXPECT_EQ(nav->findChild<QScrollBar *>(QStringLiteral("HScroll1"))->value(), 6);
    EXPECT_EQ(nav->nSearchList(), 1);
    EXPECT_EQ(nav->sSearchList(0), QStringLiteral("smith"));
    EXPECT_EQ(nav->sIDfromList(0), QStringLiteral("PLE0000007"));
    QLineEdit *edit = findBox(*nav)->lineEdit();
    EXPECT_EQ(edit->selectionStart(), 0);
    EXPECT_EQ(edit->selectedText(), QStringLiteral("smith"));
}

TEST_P(Find, TypingShowsTheSearchListsCompletionWithTheRestHighlighted)
{
    configure();
    nav->sSearchListADD(QStringLiteral("SMYTHE"));
    findBox(*nav)->setFocus();
    QTest::keyClicks(findBox(*nav), QStringLiteral("sm"));
    // Each key finds at once: SetFindFromID's IDChange, then the find's; no box.
    EXPECT_EQ(events->names().count(QStringLiteral("IDChange")), 4);
    EXPECT_EQ(env.prompter.shown().size(), 0);
    QLineEdit *edit = findBox(*nav)->lineEdit();
    EXPECT_EQ(edit->text(), QStringLiteral("smYTHE"));
    EXPECT_EQ(edit->selectionStart(), 2);
    EXPECT_EQ(edit->selectedText(), QStringLiteral("YTHE"));
    // The find ran on the whole offered text.
    EXPECT_EQ(nav->sCurrentID(), QStringLiteral("PLE0000005"));
    nav->sSearchListCLR();
    EXPECT_EQ(nav->nSearchList(), 0);
    EXPECT_EQ(edit->text(), QStringLiteral("smYTHE")); // what is typed stays
}

TEST_P(Find, NothingFoundAndNoSortAreToldInTheirOwnWords)
{
    configure();
    nav->findChild<QScrollBar *>(QStringLiteral("HScroll1"))->setValue(3);
    events->clear();
    env.prompter.expectMsgBox(
        QStringLiteral("Nothing Found"),
        QStringLiteral("Search Name for 'zz'\r\n\r\nThe search did not find any records."), 64,
        MsgAnswer::OK);
    findBox(*nav)->setEditText(QStringLiteral(" zz"));
    pressEnter(*nav);
    EXPECT_EQ(env.prompter.pending(), 0);
    EXPECT_TRUE(events->events().isEmpty());
    EXPECT_EQ(nav->sCurrentID(), QStringLiteral("PLE0000001"));

    // An empty box: Enter does nothing at all.
    findBox(*nav)->setEditText(QStringLiteral("   "));
    pressEnter(*nav);
    EXPECT_TRUE(events->events().isEmpty());

    env.prompter.expectMsgBox(QStringLiteral("ID Error"),
                              QStringLiteral("Error in ID from list: 7\r\n\r\n"), 0, MsgAnswer::OK);
    EXPECT_EQ(nav->sIDfromList(7), QString());

    auto *sorts = nav->findChild<QComboBox *>(QStringLiteral("cboSort"));
    sorts->setCurrentIndex(-1);
    env.prompter.expectMsgBox(
        QStringLiteral("No Sort Selected"),
        QStringLiteral("You cannot use the search function unless you have selected a Sort order."),
        0, MsgAnswer::OK);
    findBox(*nav)->setEditText(QStringLiteral("SMITH"));
    pressEnter(*nav);
    EXPECT_EQ(env.prompter.pending(), 0);
    EXPECT_TRUE(events->events().isEmpty());
}

TEST_P(Find, SetFindFromIDMovesToTheRecordAndTellsTheHost)
{
    configure();
    nav->SetFindFromID(QStringLiteral("PLE0000008"));
    ASSERT_EQ(events->names(), QStringList{ QStringLiteral("IDChange") });
    EXPECT_EQ(events->events().first().argument, QStringLiteral("PLE0000008"));
    EXPECT_EQ(nav->findChild<QScrollBar *>(QStringLiteral("HScroll1"))->value(), 2);
    // The bar was set by the navigator: no second event came from it.
    EXPECT_EQ(events->events().size(), 1);
}

void writeFilters(const QString &dir)
{
    const QString file = dir + QStringLiteral("/HBFiltersPLX.INI");
    ASSERT_TRUE(writeINI(QStringLiteral("Boston only"), QStringLiteral("Where"), file,
                         QStringLiteral("WHERE T.CITY = 'BOSTON'")));
    ASSERT_TRUE(writeINI(QStringLiteral("Smiths"), QStringLiteral("Where"), file,
                         QStringLiteral("WHERE T.NAME LIKE 'SMITH*'")));
}

QStringList items(QComboBox *box)
{
    QStringList out;
    for (int i = 0; i < box->count(); ++i)
        out << box->itemText(i);
    return out;
}

TEST_P(Filters, TheFilterFileBesideTheTableFillsTheList)
{
    writeFilters(dir.path());
    configure();
    nav->InitFilters();
    auto *filters = nav->findChild<QComboBox *>(QStringLiteral("cboFilter"));
    EXPECT_EQ(items(filters),
              (QStringList{ QStringLiteral("Boston only"), QStringLiteral("Smiths"),
                            QStringLiteral(" [None]") }));
    EXPECT_TRUE(events->events().isEmpty());
}

TEST_P(Filters, WithoutAFilterFileOnlyNoneIsOffered)
{
    configure();
    nav->InitFilters();
    EXPECT_EQ(items(nav->findChild<QComboBox *>(QStringLiteral("cboFilter"))),
              QStringList{ QStringLiteral(" [None]") });
}

TEST_P(Filters, ChoosingReportsAndTheHostsAnswerRequeries)
{
    writeFilters(dir.path());
    configure();
    nav->InitFilters();
    nav->findChild<QScrollBar *>(QStringLiteral("HScroll1"))->setValue(2); // BROWN of BOSTON
    events->clear();
    auto *filters = nav->findChild<QComboBox *>(QStringLiteral("cboFilter"));
    // The host answers FilterChange the way hosts do.
    QObject::connect(nav.get(), &mvPLXRecs::FilterChange, nav.get(), [this](const QString &filter) {
        if (filter == QStringLiteral(" [None]"))
            nav->SetSQLFilterAndWhere(QString(), QString(), true);
        else
            nav->SetSQLFilterAndWhere(filter, QStringLiteral("WHERE T.CITY = 'BOSTON'"), true);
    });
    filters->setCurrentIndex(0);
    EXPECT_EQ(
        events->texts(),
        QStringList{ QStringLiteral("FilterChange(Boston only) [cboFilter_click] initiator") });
    EXPECT_EQ(nav->findChild<QGroupBox *>(QStringLiteral("fraControls"))->title(),
              QStringLiteral("2 records"));
    EXPECT_EQ(nav->sCurrentID(), QStringLiteral("PLE0000008")); // kept: still in the result
    EXPECT_EQ(nav->sSQLWhere(), QStringLiteral("WHERE T.CITY = 'BOSTON'"));
    EXPECT_EQ(filters->currentText(), QStringLiteral("Boston only"));

    events->clear();
    filters->setCurrentIndex(2);
    EXPECT_EQ(events->texts(),
              QStringList{ QStringLiteral("FilterChange( [None]) [cboFilter_click] initiator") });
    EXPECT_EQ(nav->findChild<QGroupBox *>(QStringLiteral("fraControls"))->title(),
              QStringLiteral("10 records"));
    EXPECT_EQ(nav->sCurrentID(), QStringLiteral("PLE0000008"));
}

TEST_P(Filters, AFilterThatDropsTheRecordMovesToTheFirstAndWithoutRefreshNothingMoves)
{
    configure();
    nav->findChild<QScrollBar *>(QStringLiteral("HScroll1"))->setValue(3); // JONES of AUSTIN
    nav->SetSQLFilterAndWhere(QStringLiteral("Boston only"),
                              QStringLiteral("WHERE T.CITY = 'BOSTON'"), false);
    EXPECT_EQ(nav->findChild<QGroupBox *>(QStringLiteral("fraControls"))->title(),
              QStringLiteral("10 records"));
    EXPECT_EQ(nav->sCurrentID(), QStringLiteral("PLE0000001"));
    nav->RSRefresh();
    EXPECT_EQ(nav->findChild<QGroupBox *>(QStringLiteral("fraControls"))->title(),
              QStringLiteral("2 records"));
    nav->SetSQLFilterAndWhere(QString(), QStringLiteral("WHERE T.NAME LIKE 'SMITH*'"), true);
    EXPECT_EQ(nav->sCurrentID(), QStringLiteral("PLE0000007")); // BROWN is gone: the first
    EXPECT_EQ(nav->findChild<QGroupBox *>(QStringLiteral("fraControls"))->title(),
              QStringLiteral("2 records"));
    EXPECT_TRUE(events->names().filter(QStringLiteral("FilterChange")).isEmpty());

    // The filter button asks the host to edit the filters.
    events->clear();
    nav->setBInitiator(false);
    Q_EMIT nav->findChild<QPushButton *>(QStringLiteral("cmdFilter"))->clicked();
    EXPECT_EQ(events->texts(), QStringList{ QStringLiteral("FilterEdit() [cmdFilter_click] -") });
}

// A saved filter whose condition cannot run (damaged, or written for another table)
// changes nothing: the records, the current one, the box, and the sorts that follow.
TEST_P(Filters, AFilterThatCannotRunLeavesEverythingAsItWas)
{
    writeFilters(dir.path());
    configure();
    nav->InitFilters();
    auto *filters = nav->findChild<QComboBox *>(QStringLiteral("cboFilter"));
    QString where = QStringLiteral("WHERE T.CITY = 'BOSTON'");
    QObject::connect(nav.get(), &mvPLXRecs::FilterChange, nav.get(), [&](const QString &filter) {
        nav->SetSQLFilterAndWhere(filter, where, true);
    });
    filters->setCurrentIndex(0); // Boston only
    nav->findChild<QScrollBar *>(QStringLiteral("HScroll1"))->setValue(1);
    const QString current = nav->sCurrentID();

    where = QStringLiteral("WHERE T.NOSUCH = 1 OR (((");
    env.prompter.expectMsgBox(QStringLiteral("Filter Not Applied"), QString(), MsgAnswer::OK);
    filters->setCurrentIndex(2); // " [None]" stands in for any other pick
    ASSERT_EQ(env.prompter.shown().size(), 1);
    const QString said = env.prompter.shown().first().text;
    const QString lead = QStringLiteral("The filter '[None]' could not be applied:\r\n\r\n");
    EXPECT_TRUE(said.startsWith(lead)) << said.toStdString();
    EXPECT_GT(said.size(), lead.size()) << "the engine's reason follows";
    EXPECT_FALSE(said.mid(lead.size()).contains(QLatin1Char('\n'))) << "in one line";
    EXPECT_EQ(filters->currentText(), QStringLiteral("Boston only"));
    EXPECT_EQ(nav->sSQLWhere(), QStringLiteral("WHERE T.CITY = 'BOSTON'"));
    EXPECT_EQ(nav->sCurrentID(), current);
    EXPECT_EQ(nav->findChild<QGroupBox *>(QStringLiteral("fraControls"))->title(),
              QStringLiteral("2 records"));

    // The next sort change runs, on the filter in force.
    auto *sorts = nav->findChild<QComboBox *>(QStringLiteral("cboSort"));
    sorts->setCurrentIndex(1);
    Q_EMIT sorts->activated(1);
    EXPECT_EQ(nav->sCurrentID(), current);
    EXPECT_EQ(nav->findChild<QGroupBox *>(QStringLiteral("fraControls"))->title(),
              QStringLiteral("2 records"));
}

INSTANTIATE_TEST_SUITE_P(BackEnds, Find, ::testing::ValuesIn(navigatorBackEnds()), backEndName);
INSTANTIATE_TEST_SUITE_P(BackEnds, Filters, ::testing::ValuesIn(navigatorBackEnds()), backEndName);

} // namespace
} // namespace plx::test
