// Collection look-ups and array growth: hosts find controls by name
// through these, and lists keep element 0 as a placeholder.
#include "services/texthelpers.h"

#include <QPushButton>

#include <gtest/gtest.h>

using namespace plx;

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
