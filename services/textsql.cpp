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
    qsizetype start = 0;
    for (;;) {
        const qsizetype at = s.indexOf(quote, start);
        if (at < 0)
            break;
        // An existing pair is left alone, which makes the function idempotent.
        if (s.mid(at, 2) != QStringLiteral("''"))
            s.insert(at, quote);
        start = at + 2;
    }
    if (enclosed) {
        s.front() = quote;
        s.back() = quote;
    }
    return s;
}

QString strToASC(const QString &text)
{
    QString result;
    // Deliberate: the count is the trimmed length but the characters are read from the
    // untrimmed start, so leading blanks are encoded and the tail is lost. Stored criteria
    // and keys were built this way; changing it would stop them matching.
    const qint32 n = getLenTrim(text);
    for (qint32 i = 0; i < n; ++i) {
        const QString piece = QStringLiteral("CHR(%1)").arg(cp1252::fromUnicode(text.at(i)));
        result = modAddALine(result, piece, QStringLiteral(" & "), false);
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
