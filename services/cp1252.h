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
bool canEncode(QChar ch);

QString decode(const QByteArray &bytes);
QByteArray encode(const QString &text);

} // namespace plx::cp1252
