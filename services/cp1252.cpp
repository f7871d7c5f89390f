// services/cp1252.cpp: the Windows-1252 table (only 0x80..0x9F differ from Latin-1).
#include "services/cp1252.h"

#include <array>

namespace plx::cp1252 {

namespace {

// 0x80..0x9F; the five undefined codes keep their C1 control value.
constexpr std::array<char16_t, 32> kHigh = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,
};

} // namespace

QChar toUnicode(unsigned char code)
{
    if (code >= 0x80 && code <= 0x9F)
        return QChar(kHigh[code - 0x80]);
    return QChar(char16_t(code));
}

int fromUnicode(QChar ch, int fallback)
{
    const char16_t u = ch.unicode();
    if (u < 0x80 || (u >= 0xA0 && u <= 0xFF))
        return u;
    for (int i = 0; i < int(kHigh.size()); ++i) {
        if (kHigh[i] == u)
            return 0x80 + i;
    }
    return fallback;
}

bool canEncode(QChar ch)
{
    return fromUnicode(ch, -1) >= 0;
}

QString decode(const QByteArray &bytes)
{
    QString text(bytes.size(), Qt::Uninitialized);
    QChar *out = text.data();
    for (char b : bytes)
        *out++ = toUnicode(static_cast<unsigned char>(b));
    return text;
}

QByteArray encode(const QString &text)
{
    QByteArray bytes(text.size(), Qt::Uninitialized);
    char *out = bytes.data();
    for (QChar ch : text)
        *out++ = static_cast<char>(fromUnicode(ch));
    return bytes;
}

} // namespace plx::cp1252
