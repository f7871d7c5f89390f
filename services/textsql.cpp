// services/textsql.cpp: the encoders used when keys and user text go into SQL text.
//
// Record IDs never appear in SQL as quoted literals: they are written as CHR(n) chains so
// that quotes, pipes and other awkward characters in a key cannot break the statement.
// Codes are Windows-1252 codes in both directions, so encode/decode stay symmetrical.
#include "services/texthelpers.h"

#include "services/cp1252.h"

namespace plx {

QString fixPipeInSQL(const QString &text)
{
    QString out = text;
    return out.replace(QLatin1Char('|'), QStringLiteral("' & chr(124) & '"));
}

QString fixQuoteInSQL(const QString &text)
{
    const QChar quote = QLatin1Char('\'');
    QString s = text;
    // Enclosing quotes belong to the literal, not to the value: hide them during the scan.
    const bool enclosed = s.startsWith(quote) && s.endsWith(quote);
    if (enclosed) {
        s.front() = QLatin1Char(' ');
        s.back() = QLatin1Char(' ');
    }
    // One pass, the same result as searching from each quote onwards: an existing pair is
    // left alone (which makes the function idempotent), a lone quote is doubled, and the
    // scan goes on behind the pair either way.
    QString out;
    out.reserve(s.size() + s.count(quote));
    const qsizetype n = s.size();
    for (qsizetype i = 0; i < n; ++i) {
        const QChar c = s.at(i);
        out.append(c);
        if (c != quote)
            continue;
        out.append(quote);
        if (i + 1 < n && s.at(i + 1) == quote)
            ++i;
    }
    if (enclosed) {
        out.front() = quote;
        out.back() = quote;
    }
    return out;
}

QString strToASC(const QString &text)
{
    // Deliberate: the count is the trimmed length but the characters are read from the
    // untrimmed start, so leading blanks are encoded and the tail is lost. Stored criteria
    // and keys were built this way; changing it would stop them matching. The pieces are
    // joined as modAddALine(result, piece, " & ", false) joins them (a piece is never blank),
    // in one growing text rather than a new copy per piece.
    const qint32 n = getLenTrim(text);
    QString result;
    result.reserve(qsizetype(n) * 10);
    for (qint32 i = 0; i < n; ++i) {
        if (i > 0)
            result += QStringLiteral(" & ");
        const QChar c = text.at(i);
        if (cp1252::canEncode(c))
            result += QStringLiteral("CHR(%1)").arg(cp1252::fromUnicode(c));
        else
            result += QStringLiteral("ChrW(%1)").arg(c.unicode());
    }
    return result;
}

QString keyToASC(const QString &key)
{
    QString out;
    out.reserve(key.size() * 3);
    for (QChar c : key)
        out += QString::number(cp1252::fromUnicode(c)).rightJustified(3, QLatin1Char('0'));
    return out;
}

QString ascToKey(const QString &digits, qint16 step, bool *ok)
{
    if (ok)
        *ok = true;
    QString out;
    if (step < 1) {
        if (ok)
            *ok = false;
        return out;
    }
    const qint32 n = getLenTrim(digits);
    for (qint32 pos = 0; pos < n; pos += step) {
        bool groupOk = false;
        // Deliberate: always three characters, whatever the step.
        const int code = digits.mid(pos, 3).trimmed().toInt(&groupOk);
        if (!groupOk || code < 0 || code > 255) {
            if (ok)
                *ok = false;
            return out;
        }
        out.append(cp1252::toUnicode(static_cast<unsigned char>(code)));
    }
    return out;
}

} // namespace plx
