// services/recordsource/jet/generalorder.cpp: the General order's keys.
//
// A key is the text's base letters (the first level), then, only when some letter carries an
// accent, a separator and each letter's accents in turn, every letter's ended by a mark that
// sorts below all accents (the second level). The separator sorts below every base letter,
// so a text whose letters run out first sorts first whatever follows.
#include "services/recordsource/jet/internal/generalorder.h"

#include "services/recordsource/jet/internal/evaluationcounters.h"

#include <algorithm>

namespace plx::jet {

namespace {

constexpr QChar kLevelSeparator(0x0000);
constexpr QChar kLetterEnd(0x0001);

// Letters that Unicode does not decompose into a base letter and an accent, but that a reader
// files under one (case-folded forms; the letter itself becomes the first letter's accent so
// that "ø" and "o", "ß" and "ss" stay apart on the second level).
struct SpelledOut
{
    char16_t letter;
    const char16_t *as;
};
constexpr SpelledOut kSpelledOut[] = {
    { u'\u00E6', u"ae" }, // æ
    { u'\u0153', u"oe" }, // œ
    { u'\u00DF', u"ss" }, // ß
    { u'\u00F8', u"o" }, // ø
    { u'\u0111', u"d" }, // đ
    { u'\u00F0', u"d" }, // ð
    { u'\u0142', u"l" }, // ł
    { u'\u00FE', u"th" }, // þ
    { u'\u0131', u"i" }, // ı
    { u'\u0127', u"h" }, // ħ
};

const char16_t *spelledOut(QChar folded)
{
    for (const SpelledOut &s : kSpelledOut) {
        if (folded.unicode() == s.letter)
            return s.as;
    }
    return nullptr;
}

bool isAscii(QStringView text)
{
    return std::all_of(text.begin(), text.end(), [](QChar c) { return c.unicode() < 0x80; });
}

char16_t asciiLower(char16_t c)
{
    return c >= u'A' && c <= u'Z' ? char16_t(c - u'A' + u'a') : c;
}

// The two levels of a text, built letter by letter.
class KeyBuilder
{
public:
    explicit KeyBuilder(qsizetype size)
    {
        m_letters.reserve(size);
        m_accents.reserve(size);
    }

    void add(QChar c)
    {
        // Decomposed first, then folded: "İ" is I and a dot, and only then i.
        const QChar folded = c.toCaseFolded();
        if (c.isMark() && !m_letters.isEmpty()) {
            m_accents += folded;
            m_accented = true;
        } else if (const char16_t *as = spelledOut(folded)) {
            startLetter(QChar(as[0]));
            m_accents += folded;
            m_accented = true;
            for (const char16_t *p = as + 1; *p != 0; ++p)
                startLetter(QChar(*p));
        } else {
            startLetter(folded);
        }
    }

    QString key() &&
    {
        if (!m_accented)
            return std::move(m_letters);
        while (m_accents.endsWith(kLetterEnd))
            m_accents.chop(1);
        return m_letters + kLevelSeparator + m_accents;
    }

private:
    void startLetter(QChar letter)
    {
        if (!m_letters.isEmpty())
            m_accents += kLetterEnd;
        m_letters += letter;
    }

    QString m_letters;
    QString m_accents;
    bool m_accented = false;
};

// Whether canonical decomposition can restart at code point `c`: it and the first character of
// its decomposition combine with nothing before them (combining class 0), so no reordering
// of marks reaches across it.
bool startsDecompositionSegment(char32_t c)
{
    if (QChar::combiningClass(c) != 0)
        return false;
    const QString parts = QChar::decomposition(c);
    return parts.isEmpty() || QChar::combiningClass(parts.at(0).unicode()) == 0;
}

} // namespace

// In pieces of about kSegment characters cut where decomposition can restart: Qt decomposes
// a text by replacing each character in place, which moves the rest of the text each time,
// so a megabyte of accented letters would take minutes in one piece.
QString canonicalDecomposition(QStringView text)
{
    constexpr qsizetype kSegment = 64;
    QString out;
    out.reserve(text.size() + text.size() / 4);
    qsizetype begin = 0;
    qsizetype i = 0;
    while (i < text.size()) {
        const qsizetype at = i;
        char32_t c = text[i].unicode();
        if (text[i].isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate()) {
            c = QChar::surrogateToUcs4(text[i], text[i + 1]);
            ++i;
        }
        ++i;
        if (at - begin >= kSegment && startsDecompositionSegment(c)) {
            out +=
                text.sliced(begin, at - begin).toString().normalized(QString::NormalizationForm_D);
            begin = at;
        }
    }
    out += text.sliced(begin).toString().normalized(QString::NormalizationForm_D);
    return out;
}

QString generalSortKey(QStringView text)
{
    evaluationCounters().keyedCharacters += quint64(text.size());
    if (isAscii(text)) {
        QString key(text.size(), Qt::Uninitialized);
        for (qsizetype i = 0; i < text.size(); ++i)
            key[i] = QChar(asciiLower(text[i].unicode()));
        return key;
    }
    const QString letters = canonicalDecomposition(text);
    KeyBuilder builder(letters.size());
    for (const QChar c : letters)
        builder.add(c);
    return std::move(builder).key();
}

namespace {

// The General order of `a` and `b`; `keyOfB` gives b's key, made only when a character outside
// ASCII is met before the texts differ.
template<typename KeyOfB> int compareGeneralWith(QStringView a, QStringView b, KeyOfB keyOfB)
{
    // While both texts are ASCII each character is one letter without accents, so the first
    // difference decides as it would in the keys.
    const qsizetype n = std::min(a.size(), b.size());
    for (qsizetype i = 0; i < n; ++i) {
        const char16_t x = a[i].unicode(), y = b[i].unicode();
        if (x >= 0x80 || y >= 0x80) {
            const int c = QStringView(generalSortKey(a)).compare(keyOfB(), Qt::CaseSensitive);
            return c < 0 ? -1 : (c > 0 ? 1 : 0);
        }
        const char16_t lx = asciiLower(x), ly = asciiLower(y);
        if (lx != ly)
            return lx < ly ? -1 : 1;
    }
    // Whatever the longer text has left adds a letter or an accent, and sorts it after.
    return a.size() < b.size() ? -1 : (a.size() > b.size() ? 1 : 0);
}

} // namespace

int compareGeneral(QStringView a, QStringView b)
{
    QString key;
    return compareGeneralWith(a, b, [&key, b] {
        key = generalSortKey(b);
        return QStringView(key);
    });
}

int compareGeneral(QStringView a, QStringView b, QStringView bKey)
{
    return compareGeneralWith(a, b, [bKey] { return bKey; });
}

} // namespace plx::jet
