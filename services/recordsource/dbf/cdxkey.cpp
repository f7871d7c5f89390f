// services/recordsource/dbf/cdxkey.cpp: FoxPro's sortable key bytes and their decoding.
#include "services/recordsource/dbf/internal/cdxkey.h"

#include <bit>
#include <cmath>
#include <cstdint>

namespace plx::cdxkey {

namespace {

constexpr quint64 kSignBit = quint64(1) << 63;
constexpr quint32 kIntegerBias = 0x80000000U;

QByteArray bigEndian(quint64 bits, int bytes)
{
    QByteArray out(bytes, '\0');
    for (int i = 0; i < bytes; ++i)
        out[i] = char((bits >> (8 * (bytes - 1 - i))) & 0xFF);
    return out;
}

quint64 fromBigEndian(QByteArrayView key)
{
    quint64 bits = 0;
    for (char c : key)
        bits = (bits << 8) | quint8(c);
    return bits;
}

} // namespace

char padByte(KeyType type)
{
    return type == KeyType::Character ? ' ' : '\0';
}

QByteArray characterKey(QByteArrayView codePageBytes, int keyLength)
{
    QByteArray key =
        codePageBytes.first(qMin(codePageBytes.size(), qsizetype(keyLength))).toByteArray();
    key.append(keyLength - key.size(), ' ');
    return key;
}

QByteArray numericKey(double value)
{
    // -0.0 and 0.0 are the same number to FoxPro; one key for both keeps them equal.
    if (value == 0.0)
        value = 0.0;
    const auto bits = std::bit_cast<quint64>(value);
    return bigEndian((bits & kSignBit) ? ~bits : (bits | kSignBit), 8);
}

std::optional<double> numericFromKey(QByteArrayView key)
{
    if (key.size() != 8)
        return std::nullopt;
    const quint64 stored = fromBigEndian(key);
    return std::bit_cast<double>((stored & kSignBit) ? (stored & ~kSignBit) : ~stored);
}

QByteArray dateKey(const QDate &date)
{
    return numericKey(date.isValid() ? double(date.toJulianDay()) : 0.0);
}

std::optional<QDate> dateFromKey(QByteArrayView key)
{
    const std::optional<double> day = numericFromKey(key);
    if (!day || *day != std::floor(*day) || *day < 0)
        return std::nullopt;
    if (*day == 0)
        return QDate();
    return QDate::fromJulianDay(qint64(*day));
}

QByteArray logicalKey(bool value)
{
    return QByteArray(1, value ? 'T' : 'F');
}

std::optional<bool> logicalFromKey(QByteArrayView key)
{
    if (key.size() != 1 || (key[0] != 'T' && key[0] != 'F'))
        return std::nullopt;
    return key[0] == 'T';
}

QByteArray integerKey(qint32 value)
{
    return bigEndian(quint32(value) + kIntegerBias, 4);
}

std::optional<qint32> integerFromKey(QByteArrayView key)
{
    if (key.size() != 4)
        return std::nullopt;
    return qint32(quint32(fromBigEndian(key)) - kIntegerBias);
}

} // namespace plx::cdxkey
