// services/recordsource/jet/tests/jet_prepare_test.cpp: a tree bound for one text
// comparison works out its constant parts once (folded values, compiled Like patterns, look-up
// sets, General keys) and answers every row as the tree bound without that knowledge does;
// texts beyond an engine's bounds are refused before parsing; an armed deadline stops an
// evaluation.
#include "services/recordsource/jet/internal/deadline.h"
#include "services/recordsource/jet/internal/evaluationcounters.h"
#include "services/recordsource/jet/internal/evaluator.h"
#include "services/recordsource/jet/internal/generalorder.h"
#include "services/recordsource/jet/internal/parser.h"
#include "services/recordsource/jet/tests/jettestrows.h"

#include <gtest/gtest.h>

using namespace plx;
using namespace plx::jet;
using namespace plx::jet::testing;

namespace {

// Rows of every kind a field can hold: text in both cases and with accents, numbers, text
// that reads as a number, Null, dates.
QList<QVariantList> sampleRows()
{
    return {
        { QStringLiteral("A1"), QStringLiteral("Smith"), 12.5, QDate(1990, 1, 2) },
        { QStringLiteral("a1"), QStringLiteral("smith"), QVariant(), QDate(1991, 3, 4) },
        { QStringLiteral("B2"), QStringLiteral("\u00C9mile"), 3, QVariant() },
        { QStringLiteral("C3"), QStringLiteral("emile"), -1, QDate(1990, 1, 2) },
        { QVariant(), QVariant(), 0, QDate(2000, 5, 6) },
        { QStringLiteral("5"), QStringLiteral("5"), 5, QDate(1990, 1, 2) },
        { QStringLiteral("D4"), QStringLiteral("yyy"), true, QDate(1999, 9, 9) },
    };
}

// Each row's value, or its error's message, as one line of text.
std::string answers(const NodePtr &tree, TextCompare mode)
{
    QStringList out;
    for (const QVariantList &values : sampleRows()) {
        ListRow row(values);
        Result<QVariant> v = evaluate(*tree, &row, mode);
        out << (v.isOk() ? formatValue(v.value()) : v.status().message());
    }
    return out.join(QStringLiteral(" | ")).toStdString();
}

// The answers of the tree bound for `mode` against those of the tree bound without it.
void expectSameAnswers(const QString &text, TextCompare mode)
{
    SCOPED_TRACE(text.left(100).toStdString());
    NodePtr plain = parsed(text);
    NodePtr prepared = parsed(text);
    ASSERT_TRUE(plain && prepared);
    ASSERT_TRUE(jet::bind(plain, resolve).isOk());
    ASSERT_TRUE(jet::bind(prepared, resolve, mode).isOk());
    EXPECT_EQ(answers(prepared, mode), answers(plain, mode));
}

QString alternatives(const QString &field, const QStringList &constants, bool fieldFirst = true)
{
    QStringList terms;
    for (const QString &c : constants)
        terms << (fieldFirst ? field + QStringLiteral(" = ") + c
                             : c + QStringLiteral(" = ") + field);
    return terms.join(QStringLiteral(" Or "));
}

TEST(JetPrepare, ABoundTreeAnswersEveryRowAsComparingOneByOneDoes)
{
    const QStringList texts = { QStringLiteral("'smith'"), QStringLiteral("'A1'"),
                                QStringLiteral("'emile'"), QStringLiteral("'x'"),
                                QStringLiteral("'5'") };
    const QStringList numbers = { QStringLiteral("12.5"), QStringLiteral("-1"), QStringLiteral("5"),
                                  QStringLiteral("True"), QStringLiteral("7") };
    const QString cases[] = {
        // Runs of equalities on one field, either way round, inside other terms.
        alternatives(QStringLiteral("NAME"), texts),
        alternatives(QStringLiteral("ID"), texts, false) + QStringLiteral(" Or AMOUNT > 4"),
        QStringLiteral("AMOUNT < 0 Or ") + alternatives(QStringLiteral("AMOUNT"), numbers),
        QStringLiteral("Not (") + alternatives(QStringLiteral("NAME"), texts)
            + QStringLiteral(" Or NAME = Null)"),
        // Constants of the other kind: read as numbers, or a type mismatch, as one by one.
        alternatives(QStringLiteral("AMOUNT"), texts),
        alternatives(QStringLiteral("NAME"), numbers),
        alternatives(QStringLiteral("BORN"), texts),
        QStringLiteral("ID In (") + texts.join(QLatin1Char(',')) + QStringLiteral(")"),
        QStringLiteral("AMOUNT Not In (") + numbers.join(QLatin1Char(',')) + QStringLiteral(")"),
        QStringLiteral("AMOUNT In ('12.5', '5', '1', 'x')"),
        QStringLiteral("NAME In ('\u00C9MILE', 'x', 'y', 'z', Null)"),
        // Comparisons and Between with constant texts, Like with constant patterns.
        QStringLiteral("NAME < '\u00E9mile' And NAME >= 'EMILE'"),
        QStringLiteral("NAME Between '\u00E9' And 'Z'"),
        QStringLiteral("NAME Like 'S' & 'm*'"),
        QStringLiteral("NAME Not Like '[a-z]*'"),
        // Constant parts of every kind, and IIF with a constant condition.
        QStringLiteral("Replace('smith', 'S', 'x') = NAME"),
        QStringLiteral("InStr('SMITH EMILE', 'mile') = AMOUNT + 2"),
        QStringLiteral("IIF('a' = 'A', NAME, ID) = 'smith'"),
        QStringLiteral("IIF(1 = 2, 1 / 0, NAME)"),
        QStringLiteral("StrComp('a', 'A') = AMOUNT"),
    };
    for (TextCompare mode : { TextCompare::Binary, TextCompare::NoCase }) {
        for (const QString &text : cases)
            expectSameAnswers(text, mode);
    }
}

TEST(JetPrepare, ConstantsOfAMegabyteAreWorkedOutOncePerStatement)
{
    const QString megabyte(1'000'000, QLatin1Char('x'));
    const QString accented(1'000'000, QChar(0x00E9));
    const int rows = int(sampleRows().size());
    struct Case
    {
        QString text;
        TextCompare mode;
        quint64 EvaluationCounters::*counter;
        quint64 bound; // the most the whole evaluation may count
    };
    const Case cases[] = {
        { QStringLiteral("Left(Replace('%1', 'x', 'y'), 3) = NAME").arg(megabyte),
          TextCompare::Binary, &EvaluationCounters::functionCalls, 2 },
        { QStringLiteral("NAME Like '%1*' Or NAME Like 'S*'").arg(megabyte), TextCompare::Binary,
          &EvaluationCounters::patternCompilations, 2 },
        { QStringLiteral("NAME < '%1'").arg(accented), TextCompare::NoCase,
          &EvaluationCounters::keyedCharacters, 1'000'000 + 100 },
        { QStringLiteral("NAME Between 'a' And '%1'").arg(accented), TextCompare::NoCase,
          &EvaluationCounters::keyedCharacters, 1'000'000 + 100 },
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.text.left(40).toStdString());
        NodePtr tree = parsed(c.text);
        ASSERT_TRUE(tree);
        evaluationCounters() = {};
        ASSERT_TRUE(jet::bind(tree, resolve, c.mode).isOk());
        const std::string once = answers(tree, c.mode);
        EXPECT_LE(evaluationCounters().*c.counter, c.bound);
        // Bound without the comparison, the same tree pays for the constant on every row.
        NodePtr plain = parsed(c.text);
        ASSERT_TRUE(jet::bind(plain, resolve).isOk());
        evaluationCounters() = {};
        EXPECT_EQ(answers(plain, c.mode), once);
        EXPECT_GE(evaluationCounters().*c.counter, quint64(rows));
    }
}

TEST(JetGeneralOrder, DecompositionInPiecesIsQtsDecomposition)
{
    // Accented letters, marks to reorder (a cedilla after an acute must come first),
    // precomposed Hangul, characters beyond 16 bits with marks, and a text with no place
    // to cut.
    const QString pieces[] = { QStringLiteral("\u00E9"),          QStringLiteral("a\u0301\u0327"),
                               QStringLiteral("\uAC01"),          QStringLiteral("x"),
                               QStringLiteral("\U0001D15E"),      QStringLiteral("\u0301"),
                               QStringLiteral("\u1E69\u0323"),    QStringLiteral("\u0F73"),
                               QStringLiteral("\U0001D165\u0301") };
    for (int stride = 1; stride < 8; ++stride) {
        QString text;
        for (int i = 0; text.size() < 5000; i += stride)
            text += pieces[i % std::size(pieces)];
        EXPECT_EQ(canonicalDecomposition(text), text.normalized(QString::NormalizationForm_D))
            << stride;
    }
    const QString marks(3000, QChar(0x0301));
    EXPECT_EQ(canonicalDecomposition(marks), marks.normalized(QString::NormalizationForm_D));
    // A megabyte of accented letters is keyed in one linear pass.
    const QString accented(1'000'000, QChar(0x00E9));
    const QString key = generalSortKey(accented);
    EXPECT_TRUE(key.startsWith(QStringLiteral("eee")));
    EXPECT_EQ(compareGeneral(accented, QStringLiteral("E\u0301"),
                             generalSortKey(QStringLiteral("E\u0301"))),
              1);
}

TEST(JetLimits, TextsBeyondAnEnginesBoundsAreRefusedBeforeParsing)
{
    ParseLimits limits;
    limits.maxCharacters = 1000;
    limits.maxTerms = 30;
    // "A = 1 Or " is four terms; parentheses and commas are none.
    const QString atTheBound = QStringLiteral("A = 1 Or ").repeated(7) + QStringLiteral("((A))");
    EXPECT_TRUE(parseExpression(atTheBound, limits).isOk());
    const struct
    {
        QString text;
        QString message;
    } refused[] = {
        { atTheBound + QStringLiteral(" Or B"),
          QStringLiteral("the query is too long to run (more than 30 terms); shorten the "
                         "condition") },
        { QStringLiteral("A In (") + QStringLiteral("1,").repeated(40) + QStringLiteral("1)"),
          QStringLiteral("the query is too long to run (more than 30 terms); shorten the "
                         "condition") },
        { QStringLiteral("'%1'").arg(QString(999, QLatin1Char('x'))),
          QStringLiteral("the query is too long to run (more than 1,000 characters); shorten "
                         "the condition") },
    };
    for (const auto &r : refused) {
        Result<NodePtr> e = parseExpression(r.text, limits);
        ASSERT_FALSE(e.isOk());
        EXPECT_EQ(e.status().code(), Status::Code::NotSupported);
        EXPECT_EQ(e.status().message(), r.message);
        Result<SelectStatement> s =
            parseSelect(QStringLiteral("SELECT * FROM T WHERE ") + r.text, limits);
        EXPECT_EQ(s.status().message(), r.message);
    }
    // Without bounds the same texts parse.
    for (const auto &r : refused)
        EXPECT_TRUE(parseExpression(r.text).isOk());
}

qint64 g_fakeNow = 0;
qint64 g_fakeStep = 0;
qint64 steppingClock()
{
    return g_fakeNow += g_fakeStep;
}

class JetDeadlineTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        g_fakeNow = 0;
        g_fakeStep = 0;
        setDeadlineClockForTesting(steppingClock);
    }
    void TearDown() override { setDeadlineClockForTesting(nullptr); }

    static Result<QVariant> evaluateChain()
    {
        NodePtr tree = parsed(QStringLiteral("NAME & ").repeated(5000) + QStringLiteral("''"));
        EXPECT_TRUE(jet::bind(tree, resolve).isOk());
        ListRow row(sampleRows().front());
        return evaluate(*tree, &row, TextCompare::Binary);
    }
};

TEST_F(JetDeadlineTest, AnArmedDeadlineStopsAnEvaluationWithItsError)
{
    const Status stopped(Status::Code::NotSupported, QStringLiteral("stopped"));
    EXPECT_TRUE(evaluateChain().isOk()); // nothing armed: time passing stops nothing
    g_fakeStep = 1000;
    EXPECT_TRUE(evaluateChain().isOk());
    {
        const ScopedDeadline deadline(10'000, stopped);
        Result<QVariant> v = evaluateChain();
        ASSERT_FALSE(v.isOk());
        EXPECT_EQ(v.status().message(), QStringLiteral("stopped"));
        {
            // A later, looser deadline does not lift the one in force.
            const ScopedDeadline looser(60'000, Status(Status::Code::Engine, QStringLiteral("x")));
            EXPECT_EQ(evaluateChain().status().message(), QStringLiteral("stopped"));
        }
    }
    EXPECT_TRUE(evaluateChain().isOk()); // disarmed when it went
    g_fakeStep = 0;
    const ScopedDeadline still(10'000, stopped);
    EXPECT_TRUE(evaluateChain().isOk()); // armed, but the clock stands still
}

} // namespace
