// Selecting combo and list box items by text: the navigator shows the sort order and the
// filter in force this way, so trimming and case rules must hold exactly.
#include "services/widgets/listcontrols.h"

#include <QComboBox>
#include <QListWidget>

#include <gtest/gtest.h>

using namespace plx;

TEST(ListControlsTest, SetComboBoxSelectsTheFirstTrimmedMatch)
{
    QComboBox combo;
    combo.addItems({ QStringLiteral(" Name "), QStringLiteral("ID"), QStringLiteral("name") });
    EXPECT_EQ(setComboBox(&combo, QStringLiteral("name"), false), 2);
    EXPECT_EQ(combo.currentIndex(), 2);
    EXPECT_EQ(setComboBox(&combo, QStringLiteral(" NAME"), true), 0);
    EXPECT_EQ(combo.currentIndex(), 0);
    EXPECT_EQ(setComboBox(&combo, QStringLiteral("none"), true), -1);
    EXPECT_EQ(combo.currentIndex(), -1);
    EXPECT_EQ(setComboBox(static_cast<QComboBox *>(nullptr), QStringLiteral("ID"), true), -1);
}

TEST(ListControlsTest, SetComboBoxWorksOnListBoxes)
{
    QListWidget list;
    list.addItems({ QStringLiteral("a"), QStringLiteral("B ") });
    EXPECT_EQ(setComboBox(&list, QStringLiteral("b"), true), 1);
    EXPECT_EQ(list.currentRow(), 1);
    EXPECT_EQ(setComboBox(&list, QStringLiteral("b"), false), -1);
    EXPECT_EQ(list.currentRow(), -1);
}
