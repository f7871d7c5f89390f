// services/recordsource/dbf/internal/cdxkey.h: the bytes a FoxPro index key is stored as.
//
// A compound index compares keys with memcmp, so every value is written in a form whose byte
// order is its sort order, exactly as FoxPro and Visual FoxPro write it:
//   character  the code-page bytes, blank-padded (or cut) to the key length (SET COLLATE
//              "MACHINE"; other collation sequences store weights, which this does not make);
//   numeric    the IEEE double, big-endian, sign bit flipped for a positive value and every
//              bit inverted for a negative one;
//   date       the numeric key of the Julian day number;
//   logical    "T" or "F";
//   integer    (Visual FoxPro I) the value plus 0x80000000, big-endian.
// Each encoder has its decoder, so that a key read from a file can be shown and checked.
#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QDate>

#include <optional>

namespace plx::cdxkey {

enum class KeyType { Character, Numeric, Date, Logical, Integer };

// A leaf stores a key without its trailing run of this byte: blanks for character keys,
// zero bytes for the binary ones.
char padByte(KeyType type);

QByteArray characterKey(QByteArrayView codePageBytes, int keyLength);

QByteArray numericKey(double value);
// The double of an 8-byte numeric key; nullopt for any other length.
std::optional<double> numericFromKey(QByteArrayView key);

// A blank date is stored as day 0, which sorts before every real date.
QByteArray dateKey(const QDate &date);
// The date of an 8-byte date key; a null QDate for day 0; nullopt for a malformed key.
std::optional<QDate> dateFromKey(QByteArrayView key);

QByteArray logicalKey(bool value);
std::optional<bool> logicalFromKey(QByteArrayView key);

QByteArray integerKey(qint32 value);
std::optional<qint32> integerFromKey(QByteArrayView key);

} // namespace plx::cdxkey
