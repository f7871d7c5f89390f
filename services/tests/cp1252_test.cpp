// Guards the Windows-1252 table: every byte must survive decode/encode, and the
// characters that differ from Latin-1 must land on their own codes.
#include "services/cp1252.h"

#include <gtest/gtest.h>

using namespace plx;

TEST(Cp1252Test, EveryByteSurvivesARoundTrip)
{
    QByteArray all;
    for (int i = 0; i < 256; ++i)
        all.append(char(i));
    const QString text = cp1252::decode(all);
    ASSERT_EQ(text.size(), 256);
    EXPECT_EQ(cp1252::encode(text), all);
}

TEST(Cp1252Test, HighCodesAreTheWindowsCharacters)
{
    EXPECT_EQ(cp1252::toUnicode(0x80), QChar(0x20AC)); // euro sign
    EXPECT_EQ(cp1252::toUnicode(0x9F), QChar(0x0178)); // Y with diaeresis
    EXPECT_EQ(cp1252::fromUnicode(QChar(0x2019)), 0x92);
    EXPECT_EQ(cp1252::fromUnicode(QChar(0x00E9)), 0xE9);
    EXPECT_EQ(cp1252::fromUnicode(QChar(0x4E2D)), '?'); // not representable
    EXPECT_FALSE(cp1252::canEncode(QChar(0x4E2D)));
}
