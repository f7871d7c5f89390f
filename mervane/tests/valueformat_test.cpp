// mervane/tests/valueformat_test.cpp: how values are shown through host formats and read
// back from what a user typed.
#include "mervane/valueformat.h"

#include <QDate>

#include <gtest/gtest.h>

using namespace plx;

namespace {

const FieldInfo Amount{ QStringLiteral("AMOUNT"), FieldType::Numeric, 12, 2 };
const FieldInfo Born{ QStringLiteral("BORN"), FieldType::Date, 8, 0 };

QString show(const QVariant &v, const FieldInfo &f, const char *format)
{
    return formatFieldValue(v, f, QString::fromLatin1(format));
}

} // namespace

TEST(ValueFormat, NumbersFollowTheHostsPatterns)
{
    EXPECT_EQ(show(1234.5, Amount, "0.00"), QStringLiteral("1234.50"));
    EXPECT_EQ(show(1234.5, Amount, "#,##0"), QStringLiteral("1,235"));
    EXPECT_EQ(show(1234567.891, Amount, "#,##0.00"), QStringLiteral("1,234,567.89"));
    EXPECT_EQ(show(-0.5, Amount, "0.00"), QStringLiteral("-0.50"));
    EXPECT_EQ(show(0.25, Amount, "0%"), QStringLiteral("25%"));
    EXPECT_EQ(show(3.1, Amount, "0.0#"), QStringLiteral("3.1"));
    EXPECT_EQ(show(7, Amount, "Standard"), QStringLiteral("7.00"));
    // Without a format a fixed-point field shows its own decimals.
    EXPECT_EQ(show(12.5, Amount, ""), QStringLiteral("12.50"));
    EXPECT_EQ(show(QVariant(), Amount, "0.00"), QString()) << "Null is shown as empty";
}

TEST(ValueFormat, DatesFollowTheHostsPatterns)
{
    const QDate d(2024, 3, 7);
    EXPECT_EQ(show(d, Born, ""), QStringLiteral("03/07/2024"));
    EXPECT_EQ(show(d, Born, "mm/dd/yyyy"), QStringLiteral("03/07/2024"));
    EXPECT_EQ(show(d, Born, "dd.mm.yy"), QStringLiteral("07.03.24"));
    EXPECT_EQ(show(d, Born, "d mmm yyyy"), QStringLiteral("7 Mar 2024"));
    EXPECT_EQ(show(d, Born, "Long Date"), QStringLiteral("March 7, 2024"));
    EXPECT_EQ(show(QVariant(), Born, "mm/dd/yyyy"), QString());
}

TEST(ValueFormat, TypedTextIsReadBackInTheFormatsOrder)
{
    EXPECT_EQ(parseNumberText(QStringLiteral(" 1,234.50 ")), 1234.5);
    EXPECT_EQ(parseNumberText(QStringLiteral("-.5")), -0.5);
    EXPECT_FALSE(parseNumberText(QStringLiteral("12a")));
    EXPECT_FALSE(parseNumberText(QStringLiteral("")));

    EXPECT_EQ(parseDateText(QStringLiteral("03/07/2024"), QString()), QDate(2024, 3, 7));
    EXPECT_EQ(parseDateText(QStringLiteral("07.03.24"), QStringLiteral("dd.mm.yy")),
              QDate(2024, 3, 7));
    EXPECT_EQ(parseDateText(QStringLiteral("3/7/45"), QString()), QDate(1945, 3, 7));
    EXPECT_EQ(parseDateText(QStringLiteral("2024-03-07"), QStringLiteral("dd.mm.yy")),
              QDate(2024, 3, 7));
    EXPECT_FALSE(parseDateText(QStringLiteral("02/30/2024"), QString())) << "no such day";
    EXPECT_FALSE(parseDateText(QStringLiteral("soon"), QString()));

    EXPECT_EQ(parseLogicalText(QStringLiteral("y")), true);
    EXPECT_EQ(parseLogicalText(QStringLiteral("False")), false);
    EXPECT_FALSE(parseLogicalText(QStringLiteral("maybe")));
}
