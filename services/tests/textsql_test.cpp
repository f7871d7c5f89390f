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

// The specified algorithm, step by step: find the next quote from the search start, double
// it unless it begins a pair, continue two characters behind it.
QString fixQuoteReference(const QString &text)
{
    const QChar quote = QLatin1Char('\'');
    QString s = text;
    const bool enclosed = s.startsWith(quote) && s.endsWith(quote);
    if (enclosed) {
        s.front() = QLatin1Char(' ');
        s.back() = QLatin1Char(' ');
    }
    for (qsizetype start = 0, at; (at = s.indexOf(quote, start)) >= 0; start = at + 2) {
        if (s.mid(at, 2) != QStringLiteral("''"))
            s.insert(at, quote);
    }
    if (enclosed) {
        s.front() = quote;
        s.back() = quote;
    }
    return s;
}

TEST(TextSqlTest, FixQuoteGivesTheSpecifiedResultForEveryShortTextAndLongOnes)
{
    // Every text of up to eight characters over {a, ', blank}, then long ones: the one-pass
    // scan must agree with the specified search-and-insert loop character for character,
    // and a second pass must change nothing (text fixed twice on its way to the database
    // would grow extra quotes).
    const QChar alphabet[] = { QLatin1Char('a'), QLatin1Char('\''), QLatin1Char(' ') };
    for (int len = 0; len <= 8; ++len) {
        int total = 1;
        for (int i = 0; i < len; ++i)
            total *= 3;
        for (int n = 0; n < total; ++n) {
            QString s;
            for (int i = 0, k = n; i < len; ++i, k /= 3)
                s.append(alphabet[k % 3]);
            const QString once = fixQuoteInSQL(s);
            ASSERT_EQ(once, fixQuoteReference(s)) << "input " << s.toStdString();
            ASSERT_EQ(fixQuoteInSQL(once), once) << "input " << s.toStdString();
        }
    }
    QString mixed;
    for (int i = 0; i < 5000; ++i)
        mixed.append(alphabet[(i * 7 + i / 3) % 3]);
    EXPECT_EQ(fixQuoteInSQL(mixed), fixQuoteReference(mixed));
    // The find box's longest text of lone quotes between letters doubles every one of them.
    const QString quotes = QStringLiteral("a'").repeated(kFindTextMaxLength / 2);
    EXPECT_EQ(fixQuoteInSQL(quotes), QStringLiteral("a''").repeated(kFindTextMaxLength / 2));
}

TEST(TextSqlTest, FixPipeRebuildsEveryPipeFromItsCode)
{
    EXPECT_EQ(fixPipeInSQL(QStringLiteral("a|b||")),
              QStringLiteral("a' & chr(124) & 'b' & chr(124) & '' & chr(124) & '"));
    EXPECT_EQ(fixPipeInSQL(QStringLiteral("plain")), QStringLiteral("plain"));
}

TEST(TextSqlTest, StrToAscKeepsEveryWindows1252CodeAndWritesOtherCharactersAsChrW)
{
    for (int code = 1; code <= 255; ++code) {
        if (code == ' ')
            continue; // a blank alone is blank: ""
        const QChar c = cp1252::toUnicode(static_cast<unsigned char>(code));
        EXPECT_EQ(strToASC(QString(c) + QLatin1Char('A')),
                  QStringLiteral("CHR(%1) & CHR(65)").arg(code))
            << code;
    }
    // Characters 1252 cannot hold: their UTF-16 code units, which ChrW reads back.
    EXPECT_EQ(strToASC(QStringLiteral("A\u0100")), QStringLiteral("CHR(65) & ChrW(256)"));
    EXPECT_EQ(strToASC(QStringLiteral("\u4E2D'")), QStringLiteral("ChrW(20013) & CHR(39)"));
    EXPECT_EQ(strToASC(QString::fromUtf8("\xF0\x9F\x98\x80")),
              QStringLiteral("ChrW(55357) & ChrW(56832)"));
    // A find-box-sized ID is encoded in one pass.
    const QString longId = QStringLiteral("AB").repeated(kFindTextMaxLength / 2);
    const QString encoded = strToASC(longId);
    EXPECT_EQ(encoded.size(), qsizetype(kFindTextMaxLength) * 10 - 3);
    EXPECT_TRUE(encoded.endsWith(QStringLiteral("CHR(65) & CHR(66)")));
}

TEST(TextSqlTest, StrToAscWithLeadingBlanksLosesTheTail)
{
    // Deliberate: the count is the trimmed length, read from the untrimmed start.
    EXPECT_EQ(strToASC(QStringLiteral("   ")), QString());
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
