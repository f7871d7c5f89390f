// services/recordsource/jet/generalorder.cpp: the General order's keys.
//
// A key is the text's base letters (the first level), then, only when some letter carries an
// accent, a separator and each letter's accents in turn, every letter's ended by a mark that
// sorts below all accents (the second level). The separator sorts below every base letter,
// so a text whose letters run out first sorts first whatever follows.
#include "services/recordsource/jet/generalorder_p.h"

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

} // namespace

QString generalSortKey(QStringView text)
{
    if (isAscii(text)) {
        QString key(text.size(), Qt::Uninitialized);
        for (qsizetype i = 0; i < text.size(); ++i)
            key[i] = QChar(asciiLower(text[i].unicode()));
        return key;
    }
    const QString decomposed = text.toString().normalized(QString::NormalizationForm_D);
    KeyBuilder builder(decomposed.size());
    for (const QChar c : decomposed)
        builder.add(c);
    return std::move(builder).key();
}

int compareGeneral(QStringView a, QStringView b)
{
    // While both texts are ASCII each character is one letter without accents, so the first
    // difference decides as it would in the keys.
    const qsizetype n = std::min(a.size(), b.size());
    for (qsizetype i = 0; i < n; ++i) {
        const char16_t x = a[i].unicode(), y = b[i].unicode();
        if (x >= 0x80 || y >= 0x80) {
            const int c = generalSortKey(a).compare(generalSortKey(b), Qt::CaseSensitive);
            return c < 0 ? -1 : (c > 0 ? 1 : 0);
        }
        const char16_t lx = asciiLower(x), ly = asciiLower(y);
        if (lx != ly)
            return lx < ly ? -1 : 1;
    }
    // Whatever the longer text has left adds a letter or an accent, and sorts it after.
    return a.size() < b.size() ? -1 : (a.size() > b.size() ? 1 : 0);
}

} // namespace plx::jet
