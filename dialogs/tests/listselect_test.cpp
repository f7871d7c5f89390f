// dialogs/tests/listselect_test.cpp: the select-and-order dialog: items move across and back
// keeping the host's order, blocks move up and down, the filter narrows what Choose All
// takes, and the mouse and keys do what the buttons do.
#include "dialogs/listselect.h"

#include <QAbstractButton>
#include <QLineEdit>
#include <QListWidget>
#include <QTest>

#include <gtest/gtest.h>

namespace plx::test {
namespace {

QStringList items(const char *texts)
{
    return QString::fromLatin1(texts).split(QLatin1Char(','), Qt::SkipEmptyParts);
}

class ListSelectTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        dialog.setItems(items("ID,NAME,CITY,AMOUNT,BORN,NAME"), items("CITY,NOPE,ID"));
    }

    QListWidget *list(const char *name) const
    {
        return dialog.findChild<QListWidget *>(QString::fromLatin1(name));
    }
    // Selects exactly `rows` of `name`, the first of them current.
    void select(const char *name, std::initializer_list<int> rows) const
    {
        QListWidget *l = list(name);
        l->clearSelection();
        l->setCurrentRow(*rows.begin(), QItemSelectionModel::NoUpdate);
        for (int row : rows)
            l->item(row)->setSelected(true);
    }

    ListSelectDialog dialog;
};

TEST_F(ListSelectTest, ItemsMoveAcrossAndBackInTheHostsOrder)
{
    EXPECT_EQ(dialog.chosenItems(), items("CITY,ID")) << "unknown and repeated items dropped";
    EXPECT_EQ(dialog.availableItems(), items("NAME,AMOUNT,BORN"));
    select("lstAvailable", { 2, 0 });
    dialog.Choose();
    EXPECT_EQ(dialog.chosenItems(), items("CITY,ID,NAME,BORN"));
    EXPECT_EQ(dialog.availableItems(), items("AMOUNT"));
    select("lstChosen", { 0, 3 });
    dialog.Unchoose();
    EXPECT_EQ(dialog.chosenItems(), items("ID,NAME"));
    EXPECT_EQ(dialog.availableItems(), items("CITY,AMOUNT,BORN")) << "back in the host's order";
    dialog.UnchooseAll();
    EXPECT_EQ(dialog.availableItems(), items("ID,NAME,CITY,AMOUNT,BORN"));

    // The filter narrows what Choose All takes; what it hides stays available.
    dialog.setFilterText(QStringLiteral("  n "));
    dialog.ChooseAll();
    EXPECT_EQ(dialog.chosenItems(), items("NAME,AMOUNT,BORN"));
    EXPECT_EQ(dialog.availableItems(), items("ID,CITY"));
    dialog.setFilterText(QString());
    EXPECT_FALSE(list("lstAvailable")->item(0)->isHidden());
}

TEST_F(ListSelectTest, BlocksMoveUpAndDownAndStopAtTheEdges)
{
    dialog.setItems(items("A,B,C,D,E"), items("A,B,C,D,E"));
    select("lstChosen", { 1, 3 });
    dialog.MoveUp();
    EXPECT_EQ(dialog.chosenItems(), items("B,A,D,C,E"));
    dialog.MoveUp();
    EXPECT_EQ(dialog.chosenItems(), items("B,A,D,C,E")) << "B is at the top: nothing moves";
    select("lstChosen", { 2, 3 });
    dialog.MoveDown();
    EXPECT_EQ(dialog.chosenItems(), items("B,A,E,D,C"));
    dialog.MoveDown();
    EXPECT_EQ(dialog.chosenItems(), items("B,A,E,D,C"));
    EXPECT_TRUE(list("lstChosen")->item(3)->isSelected());
    EXPECT_TRUE(list("lstChosen")->item(4)->isSelected());
}

TEST_F(ListSelectTest, MouseAndKeysDoWhatTheButtonsDo)
{
    dialog.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&dialog));
    QListWidget *available = list("lstAvailable");
    QListWidget *chosen = list("lstChosen");
    QTest::mouseDClick(available->viewport(), Qt::LeftButton, {},
                       available->visualItemRect(available->item(1)).center());
    EXPECT_EQ(dialog.chosenItems(), items("CITY,ID,AMOUNT"));
    available->setCurrentRow(0);
    QTest::keyClick(available, Qt::Key_Return);
    EXPECT_EQ(dialog.chosenItems(), items("CITY,ID,AMOUNT,NAME"));
    EXPECT_TRUE(dialog.isVisible()) << "Enter in a list is not OK";
    chosen->setCurrentRow(3);
    QTest::keyClick(chosen, Qt::Key_Up, Qt::ControlModifier);
    EXPECT_EQ(dialog.chosenItems(), items("CITY,ID,NAME,AMOUNT"));
    chosen->setCurrentRow(0);
    QTest::keyClick(chosen, Qt::Key_Delete);
    QTest::mouseDClick(chosen->viewport(), Qt::LeftButton, {},
                       chosen->visualItemRect(chosen->item(0)).center());
    EXPECT_EQ(dialog.chosenItems(), items("NAME,AMOUNT"));
    EXPECT_EQ(dialog.availableItems(), items("ID,CITY,BORN"));
    dialog.findChild<QAbstractButton *>(QStringLiteral("cmdChooseAll"))->click();
    EXPECT_EQ(dialog.chosenItems(), items("NAME,AMOUNT,ID,CITY,BORN"));
}

} // namespace
} // namespace plx::test
