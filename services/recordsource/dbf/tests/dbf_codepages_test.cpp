// services/recordsource/dbf/tests/dbf_codepages_test.cpp: the code-page tables. A wrong
// entry silently changes user text in a shared table, so each page is checked at known
// characters, every byte must survive a decode/encode round trip, and the header marks
// must name the pages FoxPro writes them for.
#include "services/codepages.h"

#include <gtest/gtest.h>

using namespace plx;

TEST(DbfCodePages, KnownCharactersDecodePerPage)
{
    struct Probe
    {
        int codePage;
        unsigned char byte;
        char16_t expected;
    };
    const Probe probes[] = {
        { 437, 0x82, u'\u00E9' },  { 437, 0xE1, u'\u00DF' },  { 850, 0x9D, u'\u00D8' },
        { 850, 0xA2, u'\u00F3' },  { 852, 0xA5, u'\u0105' },  { 852, 0xE6, u'\u0160' },
        { 866, 0x80, u'\u0410' },  { 866, 0xEF, u'\u044F' },  { 1250, 0x8A, u'\u0160' },
        { 1250, 0xB9, u'\u0105' }, { 1251, 0xC0, u'\u0410' }, { 1251, 0xFF, u'\u044F' },
        { 1252, 0x80, u'\u20AC' }, { 1252, 0xE9, u'\u00E9' },
    };
    for (const Probe &p : probes) {
        const char byte = char(p.byte);
        const QString text = codepages::decode(p.codePage, QByteArrayView(&byte, 1));
        ASSERT_EQ(text.size(), 1);
        EXPECT_EQ(text.at(0).unicode(), p.expected)
            << "code page " << p.codePage << " byte " << int(p.byte);
    }
}

TEST(DbfCodePages, EveryByteSurvivesARoundTrip)
{
    QByteArray all(256, '\0');
    for (int i = 0; i < 256; ++i)
        all[i] = char(i);
    for (int cp : { 437, 737, 850, 852, 857, 861, 865, 866, 874, 1250, 1251, 1252, 1253, 1254, 1255,
                    1256, 1257 }) {
        ASSERT_TRUE(codepages::isSupported(cp));
        const auto back = codepages::encode(cp, codepages::decode(cp, all));
        ASSERT_TRUE(back.has_value()) << cp;
        EXPECT_EQ(*back, all) << cp;
    }
    EXPECT_FALSE(codepages::encode(437, QStringLiteral("\u20AC")).has_value());
    EXPECT_FALSE(codepages::encode(866, QStringLiteral("\u00E9")).has_value());
    EXPECT_FALSE(codepages::isSupported(932));
}

TEST(DbfCodePages, HeaderMarksNameTheirPages)
{
    const std::pair<quint8, int> marks[] = { { 0x01, 437 },  { 0x02, 850 },  { 0x03, 1252 },
                                             { 0x64, 852 },  { 0x65, 866 },  { 0xC8, 1250 },
                                             { 0xC9, 1251 }, { 0x57, 1252 }, { 0x26, 866 } };
    for (const auto &[mark, cp] : marks)
        EXPECT_EQ(codepages::codePageForMark(mark), cp) << int(mark);
    EXPECT_EQ(codepages::codePageForMark(0x00), 0);
    EXPECT_EQ(codepages::codePageForMark(0xF0), 0);
    // Written marks are FoxPro's own, never the dBASE driver IDs that also decode.
    EXPECT_EQ(codepages::markForCodePage(1252), 0x03);
    EXPECT_EQ(codepages::markForCodePage(866), 0x65);
    EXPECT_EQ(codepages::markForCodePage(852), 0x64);
}
