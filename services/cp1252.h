// services/cp1252.h: Windows-1252, the "ANSI" code page of the files and key texts.
//
// Settings files, the activity log and record keys are 8-bit text in Windows-1252, and
// character codes (CHR(n), key digits) are that code page's codes. Qt 6 has no codec for
// it, so the table lives here. Both directions are total: the five codes 1252 leaves
// undefined (0x81, 0x8D, 0x8F, 0x90, 0x9D) map to the C1 control characters of the same
// value, as Windows' own conversion does, so every byte survives a round trip.
#pragma once

#include <QByteArray>
#include <QString>

namespace plx::cp1252 {

// The character for code 0..255.
QChar toUnicode(unsigned char code);
// The code of a character; `fallback` (default '?') for a character 1252 cannot hold.
int fromUnicode(QChar ch, int fallback = '?');
// True when 1252 has a code for `ch`.
bool canEncode(QChar ch);

// Every byte as its 1252 character (total: each of the 256 codes has one).
QString decode(const QByteArray &bytes);
// Every character as its 1252 code, '?' for one 1252 cannot hold; as long as `text`.
QByteArray encode(const QString &text);

} // namespace plx::cp1252
