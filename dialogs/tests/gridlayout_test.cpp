// dialogs/tests/gridlayout_test.cpp: the column layout value read and written.
#include "dialogs/columnfind.h"
#include "dialogs/gridlayout.h"

#include <QRandomGenerator>

#include <gtest/gtest.h>

namespace plx {

void PrintTo(const GridColumnEntry &c, std::ostream *out);

namespace {

QString latin(const char *text)
{
    return QString::fromLatin1(text);
}

// What is written reads back the same; a separator in a title cannot split the value.
TEST(GridLayout, WrittenValuesReadBack)
{
    const GridLayout layout({ { latin("NAME"), latin("Name, first|last"), 2400 },
                              { latin("ID"), latin("ID"), 0 },
                              { latin("my field"), latin("  Mine  "), 15 } });
    const QString value = layout.toString();
    EXPECT_EQ(value, latin("NAME,Name  first last,2400|ID,ID,0|my field,Mine,15"));
    const GridLayout back = GridLayout::parse(value);
    ASSERT_EQ(back.columns().size(), 3);
    EXPECT_EQ(back.columns()[0].title, latin("Name  first last"));
    EXPECT_EQ(back.toString(), value);
}

// Damaged values read as far as they make sense: blank field names (a trailing "|"), a
// field listed twice, widths that are no width, items added by a later version.
TEST(GridLayout, DamagedValuesReadAsFarAsTheyMakeSense)
{
    const GridLayout layout = GridLayout::parse(
        latin(" NAME , Name ,2400,extra,more||,Lost,100|ID|name,Again,50|CITY,,-3|ZIP,Zip,9e9|"
              "AGE,Age,12abc|"));
    const QList<GridColumnEntry> expected = { { latin("NAME"), latin("Name"), 2400 },
                                              { latin("ID"), latin("ID"), 0 },
                                              { latin("CITY"), latin("CITY"), 0 },
                                              { latin("ZIP"), latin("Zip"), 0 },
                                              { latin("AGE"), latin("Age"), 0 } };
    EXPECT_EQ(layout.columns(), expected);
    for (const char *empty : { "", "|", " | , |,,,", "," })
        EXPECT_TRUE(GridLayout::parse(latin(empty)).isEmpty()) << empty;
    // Whatever a damaged file holds, reading never fails and what it gives writes back.
    QRandomGenerator random(20261124);
    const QString alphabet = latin("AB,|, 0129-x");
    for (int i = 0; i < 2000; ++i) {
        QString noise;
        for (int n = int(random.bounded(40)); n > 0; --n)
            noise += alphabet.at(int(random.bounded(alphabet.size())));
        const GridLayout parsed = GridLayout::parse(noise);
        EXPECT_EQ(GridLayout::parse(parsed.toString()).columns(), parsed.columns())
            << noise.toStdString();
    }
}

// The column find's criterion, piece for piece; the text goes in as typed.
TEST(ColumnFind, CriterionAndContinuing)
{
    EXPECT_EQ(ColumnFind::criterion(latin("NAME"), latin("O'B")),
              latin("InStr(Ucase$(IIF(IsNull(NAME), \" \",NAME)), 'O'B')>0"));
    EXPECT_EQ(ColumnFind::criterion(latin("first name"), latin("X")),
              latin("InStr(Ucase$(IIF(IsNull([first name]), \" \",[first name])), 'X')>0"));
    ColumnFind find;
    EXPECT_FALSE(find.continues(latin("NAME"), latin("SM")));
    find.found(latin("NAME"), latin("SM"));
    EXPECT_TRUE(find.continues(latin("NAME"), latin("SM")));
    EXPECT_FALSE(find.continues(latin("CITY"), latin("SM")));
    EXPECT_FALSE(find.continues(latin("NAME"), latin("SMI")));
    find.restart();
    EXPECT_FALSE(find.continues(latin("NAME"), latin("SM")));
}

} // namespace
} // namespace plx
