// List-control and collection look-ups and array growth: hosts find sort orders and
// controls by name through these, and lists keep element 0 as a placeholder.
#include "services/texthelpers.h"

#include <QComboBox>
#include <QListWidget>
#include <QPushButton>

#include <gtest/gtest.h>

using namespace plx;

TEST(TextListsTest, SetComboBoxSelectsTheFirstTrimmedMatch)
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

TEST(TextListsTest, SetComboBoxWorksOnListBoxes)
{
    QListWidget list;
    list.addItems({ QStringLiteral("a"), QStringLiteral("B ") });
    EXPECT_EQ(setComboBox(&list, QStringLiteral("b"), true), 1);
    EXPECT_EQ(list.currentRow(), 1);
    EXPECT_EQ(setComboBox(&list, QStringLiteral("b"), false), -1);
    EXPECT_EQ(list.currentRow(), -1);
}

TEST(TextListsTest, KeyInCollectionComparesTrimmedUpperCaseNames)
{
    QPushButton a, b;
    a.setObjectName(QStringLiteral("cmdSave"));
    b.setObjectName(QStringLiteral("txtName"));
    const QObjectList all{ &a, nullptr, &b };
    EXPECT_TRUE(keyInCollection(QStringLiteral(" CMDSAVE "), all));
    EXPECT_TRUE(keyInCollection(QStringLiteral("txtname"), all));
    EXPECT_FALSE(keyInCollection(QStringLiteral("cmdCancel"), all));
    EXPECT_FALSE(keyInCollection(QStringLiteral("x"), QObjectList()));
}

TEST(TextListsTest, IncRedimStartsUndimensionedArraysAtFirstIndex)
{
    QStringList texts;
    EXPECT_EQ(incRedim(texts, 1), 1);
    ASSERT_EQ(texts.size(), 2);
    EXPECT_TRUE(texts.at(0).isEmpty());
    addToArray(texts, QStringLiteral("b"), 1);
    EXPECT_EQ(texts, (QStringList{ QString(), QString(), QStringLiteral("b") }));

    QStringList zeroBased;
    addToArray(zeroBased, QStringLiteral("a"), 0);
    addToArray(zeroBased, QStringLiteral("b"), 0);
    EXPECT_EQ(zeroBased, (QStringList{ QStringLiteral("a"), QStringLiteral("b") }));

    QVariantList values;
    addToArray(values, QVariant(5), 1);
    addToArray(values, QVariant(), 1);
    ASSERT_EQ(values.size(), 3);
    EXPECT_FALSE(values.at(0).isValid());
    EXPECT_EQ(values.at(1), QVariant(5));
    EXPECT_FALSE(values.at(2).isValid());
}
