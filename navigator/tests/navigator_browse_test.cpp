// navigator/tests/navigator_browse_test.cpp: Browse and the search results in the grid form,
// from the navigator's buttons, on SQLite and on a FoxPro table file: the record chosen
// there becomes the navigator's, through one IDChange.
#include "navigator/tests/navigatorfixture.h"

#include "dialogs/recordsourcetablemodel.h"
#include "dialogs/tests/gridtesting.h"
#include "services/ini.h"
#include "services/recordsource/recordsource.h"

#include <QComboBox>
#include <QPushButton>
#include <QTableView>
#include <QTest>

namespace plx::test {
namespace {

using Browse = NavigatorTest;

QString idInRow(FrmGridEditBare *form, int row)
{
    return form->model()->index(row, 0).data().toString();
}

// Chooses `row` of the grid as a click would, then closes it as `close` says.
void choose(int row, const std::function<void(FrmGridEditBare *)> &close)
{
    whenGridShows([=](FrmGridEditBare *form) {
        form->grid()->setCurrentIndex(form->model()->index(row, 1));
        close(form);
    });
}

// With a sort and a filter in force the grid shows the navigator's records in its order,
// opens on its current record, leaves its record source where it is while the user moves,
// and the row chosen becomes the current record through one IDChange. The columns the user
// left are kept under the table's key.
TEST_P(Browse, TheChosenRowBecomesTheCurrentRecord)
{
    configure();
    nav->setSUserINIFile(dir.filePath(QStringLiteral("USER.INI")));
    nav->SetSQLFilterAndWhere(QStringLiteral("S names"), QStringLiteral("WHERE T.NAME LIKE 'S*'"),
                              true);
    nav->SetFindFromID(QStringLiteral("PLE0000005")); // SMYTHE, position 3
    events->clear();
    QStringList ids;
    qint32 sourcePosition = -2;
    whenGridShows([&](FrmGridEditBare *form) {
        EXPECT_EQ(form->windowTitle(), QStringLiteral("Browse records Facilities"));
        EXPECT_EQ(form->grid()->currentIndex().row(), 3);
        for (int row = 0; row < form->model()->rowCount(); ++row)
            ids << idInRow(form, row);
        form->grid()->setCurrentIndex(form->model()->index(2, 1));
        sourcePosition = nav->rs()->AbsolutePosition();
        form->close();
    });
    nav->findChild<QPushButton *>(QStringLiteral("cmdBrowse"))->click();
    EXPECT_EQ(ids.join(QLatin1Char(' ')),
              QStringLiteral("PLE0000010 PLE0000007 PLE0000009 PLE0000005 PLE0000004"));
    EXPECT_EQ(sourcePosition, 3);
    EXPECT_EQ(events->texts(),
              QStringList{ QStringLiteral("IDChange(PLE0000009) [IDBrowseGrid] initiator") });
    EXPECT_EQ(nav->sCurrentID(), QStringLiteral("PLE0000009"));
    QString layout;
    readINI(QStringLiteral("CONFIG"), QStringLiteral("BrowseGridCol Facilities"),
            nav->sUserINIFile(), layout, QString());
    EXPECT_TRUE(layout.startsWith(QStringLiteral("ID,ID,"))) << layout.toStdString();

    // Escape chooses nothing: nothing moves, nothing is raised.
    events->clear();
    choose(0, [](FrmGridEditBare *form) { QTest::keyClick(form->grid(), Qt::Key_Escape); });
    nav->IDBrowseGrid();
    EXPECT_TRUE(events->texts().isEmpty());
    EXPECT_EQ(nav->sCurrentID(), QStringLiteral("PLE0000009"));
}

// The find button shows what the find box found, in the sort's order, and the record
// chosen there becomes current with the tag "BrowseSearch".
TEST_P(Browse, SearchResultsAreBrowsedAfterTheFind)
{
    configure();
    auto *findBox = nav->findChild<QComboBox *>(QStringLiteral("cboFind"));
    findBox->setFocus();
    QTest::keyClicks(findBox, QStringLiteral("smi"));
    events->clear();
    QStringList ids;
    QString title;
    whenGridShows([&](FrmGridEditBare *form) {
        title = form->windowTitle();
        for (int row = 0; row < form->model()->rowCount(); ++row)
            ids << idInRow(form, row);
        form->grid()->setCurrentIndex(form->model()->index(1, 1));
        QTest::keyClick(form->grid(), Qt::Key_Return);
    });
    nav->findChild<QPushButton *>(QStringLiteral("cmdFind"))->click();
    EXPECT_EQ(title, QStringLiteral("Search results for Find: 'smi'"));
    EXPECT_EQ(ids.join(QLatin1Char(' ')), QStringLiteral("PLE0000007 PLE0000009"));
    EXPECT_EQ(events->texts(),
              QStringList{ QStringLiteral("IDChange(PLE0000009) [BrowseSearch] initiator") });
    EXPECT_EQ(nav->sCurrentID(), QStringLiteral("PLE0000009"));
}

// A text nobody searched for yet is searched first; when that finds nothing, its own box
// says so and no grid opens. Asked again, there is nothing to browse; the focus goes back
// to the find box.
TEST_P(Browse, NothingFoundOpensNoGrid)
{
    if (isServer())
        GTEST_SKIP() << kSymbolsFirst;
    configure();
    auto *findBox = nav->findChild<QComboBox *>(QStringLiteral("cboFind"));
    auto *button = nav->findChild<QPushButton *>(QStringLiteral("cmdFind"));
    findBox->setEditText(QStringLiteral("zz"));
    env.prompter.expectMsgBox(
        QStringLiteral("Nothing Found"),
        QStringLiteral("Search Name for 'zz'\r\n\r\nThe search did not find any records."),
        MsgStyle::Information, MsgAnswer::OK);
    button->click();
    env.prompter.expectMsgBox(QStringLiteral("Nothing to Browse"),
                              QStringLiteral("There are no search results to browse\r\n\r\n"
                                             "Enter what you want to search for and press the "
                                             "Enter key."),
                              MsgStyle::Information, MsgAnswer::OK);
    button->click();
    EXPECT_EQ(nav->focusWidget(), findBox);
    EXPECT_EQ(openGrid(), nullptr);
    EXPECT_EQ(nav->sCurrentID(), QStringLiteral("PLE0000006"));
    EXPECT_EQ(env.prompter.pending(), 0);
}

} // namespace

INSTANTIATE_TEST_SUITE_P(BackEnds, Browse, ::testing::ValuesIn(navigatorBackEnds()), backEndName);

} // namespace plx::test
