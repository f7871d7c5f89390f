// The encoders that put keys and user text into SQL: a wrong quote doubling breaks or
// opens statements, and a code mismatch makes saved IDs unfindable.
#include "services/texthelpers.h"

#include "services/cp1252.h"

#include <gtest/gtest.h>

using namespace plx;

TEST(TextSqlTest, FixQuoteDoublesLoneQuotesAndKeepsPairsAndEnclosingQuotes)
{
    EXPECT_EQ(fixQuoteInSQL(QStringLiteral("O'Neil")), QStringLiteral("O''Neil"));
    EXPECT_EQ(fixQuoteInSQL(QStringLiteral("O''Neil")), QStringLiteral("O''Neil"));
    EXPECT_EQ(fixQuoteInSQL(QStringLiteral("'O'Neil'")), QStringLiteral("'O''Neil'"));
    EXPECT_EQ(fixQuoteInSQL(QStringLiteral("'")), QStringLiteral("'"));
    EXPECT_EQ(fixQuoteInSQL(QStringLiteral("a'b'c")), QStringLiteral("a''b''c"));
    EXPECT_EQ(fixQuoteInSQL(QStringLiteral("no quote")), QStringLiteral("no quote"));
}

TEST(TextSqlTest, FixQuoteIsIdempotentForEveryShortMixOfQuotesAndLetters)
{
    // Every text of up to seven characters over {a, '}: a second pass must change nothing,
    // or text fixed twice on its way to the database would grow extra quotes.
    for (int len = 0; len <= 7; ++len) {
        for (int bits = 0; bits < (1 << len); ++bits) {
            QString s;
            for (int i = 0; i < len; ++i)
                s.append((bits >> i) & 1 ? QLatin1Char('\'') : QLatin1Char('a'));
            const QString once = fixQuoteInSQL(s);
            EXPECT_EQ(fixQuoteInSQL(once), once) << "input " << s.toStdString();
        }
    }
}

TEST(TextSqlTest, FixPipeRebuildsEveryPipeFromItsCode)
{
    EXPECT_EQ(fixPipeInSQL(QStringLiteral("a|b||")),
              QStringLiteral("a' & chr(124) & 'b' & chr(124) & '' & chr(124) & '"));
    EXPECT_EQ(fixPipeInSQL(QStringLiteral("plain")), QStringLiteral("plain"));
}

TEST(TextSqlTest, StrToAscEncodesWindows1252Codes)
{
    EXPECT_EQ(strToASC(QStringLiteral("AB")), QStringLiteral("CHR(65) & CHR(66)"));
    EXPECT_EQ(strToASC(QStringLiteral("   ")), QString());
    EXPECT_EQ(strToASC(QString(QChar(0x20AC)) + QStringLiteral("'")),
              QStringLiteral("CHR(128) & CHR(39)"));
}

TEST(TextSqlTest, StrToAscWithLeadingBlanksLosesTheTail)
{
    // Deliberate: the count is the trimmed length, read from the untrimmed start.
    EXPECT_EQ(strToASC(QStringLiteral("  AB")), QStringLiteral("CHR(32) & CHR(32)"));
    EXPECT_EQ(strToASC(QStringLiteral(" ABC ")), QStringLiteral("CHR(32) & CHR(65) & CHR(66)"));
    EXPECT_EQ(strToASC(QStringLiteral("AB  ")), QStringLiteral("CHR(65) & CHR(66)"));
}

TEST(TextSqlTest, KeyToAscAndAscToKeyRoundTripEveryCode)
{
    EXPECT_EQ(keyToASC(QStringLiteral("A1")), QStringLiteral("065049"));
    EXPECT_EQ(ascToKey(QStringLiteral("065049"), 3), QStringLiteral("A1"));
    EXPECT_EQ(keyToASC(QString()), QString());
    for (int code = 1; code <= 255; ++code) {
        const QString key = QString(cp1252::toUnicode(static_cast<unsigned char>(code)));
        const QString digits = keyToASC(key);
        ASSERT_EQ(digits.size(), 3) << code;
        EXPECT_EQ(digits.toInt(), code);
        bool ok = false;
        EXPECT_EQ(ascToKey(digits, 3, &ok), key) << "code " << code;
        EXPECT_TRUE(ok);
    }
}

TEST(TextSqlTest, AscToKeyReportsBadGroups)
{
    bool ok = true;
    EXPECT_EQ(ascToKey(QStringLiteral("065x49"), 3, &ok), QStringLiteral("A"));
    EXPECT_FALSE(ok);
    ok = true;
    ascToKey(QStringLiteral("300"), 3, &ok); // not a code
    EXPECT_FALSE(ok);
    ok = true;
    ascToKey(QStringLiteral("065"), 0, &ok); // a step that never advances
    EXPECT_FALSE(ok);
    // The group is always three wide, whatever the step: step 4 skips the separator.
    ok = false;
    EXPECT_EQ(ascToKey(QStringLiteral("065-066"), 4, &ok), QStringLiteral("AB"));
    EXPECT_TRUE(ok);
}
