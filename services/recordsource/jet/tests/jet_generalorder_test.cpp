// The General text order: case ignored, accented letters beside their base letters, accents
// deciding only between texts whose letters agree; and the quick comparison agrees with the
// keys everywhere.
#include "services/recordsource/jet/internal/generalorder.h"
#include "services/recordsource/jet/internal/values.h"
#include "tests/support/texts.h"

#include <QStringList>

#include <gtest/gtest.h>

#include <algorithm>

using namespace plx;
using namespace plx::jet;

namespace {

int sign(int v)
{
    return v < 0 ? -1 : (v > 0 ? 1 : 0);
}

} // namespace

TEST(JetGeneralOrderTest, SortsNamesAsAReaderExpects)
{
    // Each text sorts after the one before it.
    const QStringList ordered = test::texts({
        u"",
        u" lead",
        u"10 Downing",
        u"9 Elms",
        u"adams",
        u"Aero",
        u"\u00C6r\u00F8", // Ærø: æ is spelled out, then its mark decides
        u"Aeroe",
        u"ANDERSON",
        u"Emile",
        u"\u00C9mile", // Émile next to Emile, after it
        u"\u00E9mile!",
        u"Emilia",
        u"Orsted",
        u"\u00D8rsted",
        u"strasse",
        u"Stra\u00DFe",
        u"strassf",
        u"zoe",
        u"Zo\u00EB",
        u"\u20ACuro",
    });
    for (qsizetype i = 1; i < ordered.size(); ++i) {
        SCOPED_TRACE(ordered[i].toStdString());
        EXPECT_EQ(compareGeneral(ordered[i - 1], ordered[i]), -1);
        EXPECT_EQ(compareGeneral(ordered[i], ordered[i - 1]), 1);
    }
    for (const auto &[a, b] : { std::pair{ u"ADAMS", u"adams" },
                                { u"\u00C9MILE", u"\u00E9mile" },
                                { u"STRA\u00DFE", u"stra\u00DFe" },
                                { u"\u00D8", u"\u00F8" } }) {
        SCOPED_TRACE(QString::fromUtf16(a).toStdString());
        EXPECT_EQ(compareGeneral(QString::fromUtf16(a), QString::fromUtf16(b)), 0);
        EXPECT_EQ(generalSortKey(QString::fromUtf16(a)), generalSortKey(QString::fromUtf16(b)));
    }
    // A decomposed accent is the same text as the precomposed letter.
    EXPECT_EQ(compareGeneral(QString::fromUtf16(u"E\u0301mile"), QString::fromUtf16(u"\u00E9mile")),
              0);
}

// The ASCII walk of compareGeneral() answers without keys; every pair must still come out as
// the keys say, and sorting by either must give one order.
TEST(JetGeneralOrderTest, ComparisonAgreesWithTheKeys)
{
    const QStringList samples = test::texts({
        u"",        u"a",       u"A",       u"ab", u"a\u0301", u"\u00E1",  u"\u00E1b",  u"ae",
        u"\u00E6",  u"\u00C6b", u"afa",     u"ss", u"\u00DF",  u"\u00DFa", u"ssa",      u"z",
        u"Z\u00FC", u"zu",      u"{",       u"~",  u"\u20AC",  u"SMITH",   u"smith",    u"Smith,",
        u"smith ",  u"\u0130",  u"i\u0307", u"I",  u"\u0301",  u"\u0301a", u"a\u0000b",
    });
    for (const QString &a : samples) {
        for (const QString &b : samples) {
            SCOPED_TRACE((a + QStringLiteral(" | ") + b).toStdString());
            const int byKey = sign(generalSortKey(a).compare(generalSortKey(b), Qt::CaseSensitive));
            EXPECT_EQ(compareGeneral(a, b), byKey);
            EXPECT_EQ(compareText(a, b, TextCompare::NoCase), byKey);
        }
    }
    QStringList byCompare = samples;
    std::stable_sort(byCompare.begin(), byCompare.end(),
                     [](const QString &a, const QString &b) { return compareGeneral(a, b) < 0; });
    QStringList byKey = samples;
    std::stable_sort(byKey.begin(), byKey.end(), [](const QString &a, const QString &b) {
        return generalSortKey(a) < generalSortKey(b);
    });
    EXPECT_EQ(byCompare, byKey);
}

// Binary stays the code page's byte order, case first: nothing of the General order leaks
// into it.
TEST(JetGeneralOrderTest, BinaryOrderIsUntouched)
{
    const QStringList ordered =
        test::texts({ u"ANDERSON", u"Adams", u"Emile", u"adams", u"\u20ACuro", u"\u00C9mile" });
    for (qsizetype i = 1; i < ordered.size(); ++i)
        EXPECT_EQ(compareText(ordered[i - 1], ordered[i], TextCompare::Binary), -1)
            << ordered[i].toStdString();
}
