// services/codepages.h: the single-byte code pages that stored text is in.
//
// A FoxPro table says in header byte 29 which code page its text is in (437, 850, 1252...).
// Qt 6 has no codecs for the DOS and most Windows code pages, so the tables live here:
// 437, 737, 850, 852, 857, 861, 865, 866, 874, 1250-1257. Decoding is total (every byte
// has a character); encoding fails for a character the page cannot hold.
#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

#include <optional>

namespace plx::codepages {

// The code page a header mark stands for: FoxPro's own marks (0x01 -> 437, 0x02 -> 850,
// 0x03 -> 1252, 0x64 -> 852, 0x65 -> 866, 0xC8 -> 1250, 0xC9 -> 1251, ...) and the dBASE
// language-driver IDs other tools write (0x57 -> 1252, ...). 0 for an unmarked table or an
// unknown mark.
int codePageForMark(quint8 mark);
// The FoxPro mark written for a code page; 0 when FoxPro has none or it is not supported.
quint8 markForCodePage(int codePage);
// True when decode()/encode() know the code page.
bool isSupported(int codePage);

// Bytes -> text. ASCII passes through; an unsupported code page decodes as 1252.
QString decode(int codePage, QByteArrayView bytes);
// Text -> bytes; std::nullopt when a character has no code in the page (or the page is not
// supported).
std::optional<QByteArray> encode(int codePage, const QString &text);

} // namespace plx::codepages
