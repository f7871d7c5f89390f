// Criteria evaluated over rows, as the FoxPro back end runs FindFirst and WHERE: names are
// bound to column indexes once, then each row is evaluated under the source's text
// comparison. FoxPro sources compare in binary, in the order of the Windows-1252 bytes.
#include "services/recordsource/jet/internal/evaluator.h"
#include "services/recordsource/jet/internal/parser.h"
#include "services/recordsource/jet/tests/jettestrows.h"
#include "tests/support/texts.h"

#include <gtest/gtest.h>

using namespace plx;
using namespace plx::jet;
using namespace plx::jet::testing;

namespace {

// The rows (by ID) for which the criterion is True.
QStringList matching(const char *criterion, TextCompare mode)
{
    const QList<QVariantList> rows = {
        { QStringLiteral("PLE1"), QStringLiteral("Smith"), 12.5 },
        { QStringLiteral("ple2"), QStringLiteral("smith"), QVariant() },
        { QStringLiteral("PLE3"), QStringLiteral("\u20ACuro"), 3 },
        { QStringLiteral("PLE4"), QStringLiteral("\u00E9cole"), -1 },
        { QStringLiteral("PLE5"), QVariant(), 0 },
    };
    NodePtr e = parsed(QString::fromUtf8(criterion));
    if (!e)
        return {};
    EXPECT_TRUE(jet::bind(e, resolve).isOk()) << criterion;
    QStringList found;
    for (const QVariantList &values : rows) {
        ListRow row(values);
        Result<QVariant> v = evaluate(*e, &row, mode);
        EXPECT_TRUE(v.isOk()) << criterion << ": " << v.status().toString().toStdString();
        if (v.isOk() && isTrue(v.value()))
            found << values[0].toString();
    }
    return found;
}

} // namespace

TEST(JetRowsTest, CriteriaFollowTheSourceTextComparison)
{
    struct Case
    {
        const char *criterion;
        TextCompare mode;
        QStringList ids;
    };
    const Case cases[] = {
        { "NAME = 'smith'", TextCompare::NoCase, test::texts({ "PLE1", "ple2" }) },
        { "NAME = 'smith'", TextCompare::Binary, test::texts({ "ple2" }) },
        { "ID = CHR(80) & CHR(76) & CHR(69) & CHR(49)", TextCompare::Binary,
          test::texts({ "PLE1" }) },
        { "Left([ID],3) = 'PLE'", TextCompare::Binary,
          test::texts({ "PLE1", "PLE3", "PLE4", "PLE5" }) },
        { "NAME Like 's*'", TextCompare::Binary, test::texts({ "ple2" }) },
        { "NAME Like 's*'", TextCompare::NoCase, test::texts({ "PLE1", "ple2" }) },
        { "UCase(NAME) Like 'SM*'", TextCompare::Binary, test::texts({ "PLE1", "ple2" }) },
        // Binary order is the code page's: 'S' (0x53) < 's' (0x73) < '€' (0x80) < 'é' (0xE9).
        { "NAME > 's'", TextCompare::Binary, test::texts({ "ple2", "PLE3", "PLE4" }) },
        { "NAME < '\u00E9'", TextCompare::Binary, test::texts({ "PLE1", "ple2", "PLE3" }) },
        // The General order files "école" under e, beside its base letter; "€" is no letter
        // and keeps its code point's place after the letters.
        { "NAME > 'T'", TextCompare::NoCase, test::texts({ "PLE3" }) },
        { "NAME < 'F'", TextCompare::NoCase, test::texts({ "PLE4" }) },
        { "AMOUNT Is Null Or NAME Is Null", TextCompare::Binary, test::texts({ "ple2", "PLE5" }) },
        { "AMOUNT Between 13 And 0", TextCompare::Binary, test::texts({ "PLE1", "PLE3", "PLE5" }) },
        { "AMOUNT In (3, -1) And Not NAME Like '*o'", TextCompare::Binary,
          test::texts({ "PLE4" }) },
        { "InStr(Ucase$(IIF(IsNull(AMOUNT), \" \",AMOUNT)), '.5')>0", TextCompare::Binary,
          test::texts({ "PLE1" }) },
        { "InStr(Ucase$(IIF(IsNull(NAME), \" \",NAME)), ' ')>0", TextCompare::Binary,
          test::texts({ "PLE5" }) },
    };
    for (const Case &c : cases)
        EXPECT_EQ(matching(c.criterion, c.mode), c.ids) << c.criterion;
}

TEST(JetRowsTest, BindingNamesAnUnknownFieldAndItsPosition)
{
    Result<NodePtr> e = parseExpression(QStringLiteral("NAME = 'x' And CITTY = 'y'"));
    ASSERT_TRUE(e.isOk());
    const Status s = jet::bind(e.value(), resolve);
    EXPECT_EQ(s.code(), Status::Code::UnknownField);
    EXPECT_TRUE(s.message().contains(QStringLiteral("'CITTY' at position 16")))
        << s.message().toStdString();
}

// A key written as character codes is computed once at binding; a failing constant still
// fails only when the branch that holds it is taken.
TEST(JetRowsTest, ConstantPartsAreComputedOnceWithoutLosingLaziness)
{
    Result<NodePtr> e =
        parseExpression(QStringLiteral("IIF(AMOUNT > 5, 1 / 0, CHR(65) & CHR(66))"));
    ASSERT_TRUE(e.isOk());
    ASSERT_TRUE(jet::bind(e.value(), resolve).isOk());
    ListRow small({ QStringLiteral("A"), QStringLiteral("B"), 1 });
    Result<QVariant> v = evaluate(*e.value(), &small, TextCompare::Binary);
    ASSERT_TRUE(v.isOk());
    EXPECT_EQ(formatValue(v.value()), QStringLiteral("\"AB\""));
    ListRow big({ QStringLiteral("A"), QStringLiteral("B"), 9 });
    EXPECT_EQ(evaluate(*e.value(), &big, TextCompare::Binary).status().code(),
              Status::Code::InvalidArgument);
}
