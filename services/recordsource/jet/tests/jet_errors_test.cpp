// Errors: malformed text, an unknown field, an unknown function and a type mismatch are
// distinct, name the offending token and its position, and never run part of a statement.
#include "services/recordsource/jet/internal/evaluator.h"
#include "services/recordsource/jet/internal/parser.h"

#include <gtest/gtest.h>

using namespace plx;
using namespace plx::jet;

namespace {

Status errorOf(const char *expression)
{
    Result<QVariant> v = evaluateStandalone(QString::fromUtf8(expression));
    return v.isOk() ? Status::ok() : v.status();
}

} // namespace

TEST(JetErrorsTest, EachKindOfFaultHasItsOwnCodeAndPosition)
{
    struct Case
    {
        const char *expression;
        Status::Code code;
        const char *mentions;
    };
    const Case cases[] = {
        { "1 +", Status::Code::Syntax, "position 4" },
        { "'abc", Status::Code::Syntax, "unterminated text literal 'abc at position 1" },
        { "(1 + 2", Status::Code::Syntax, "position 7" },
        { "1 2", Status::Code::Syntax, "'2' found at position 3" },
        { "NAME = 'x'", Status::Code::UnknownField, "'NAME' at position 1" },
        { "T.ID = 1", Status::Code::UnknownField, "'T.ID' at position 1" },
        { "NzX(Null, 1)", Status::Code::UnknownFunction, "'NzX' at position 1" },
        { "'abc' * 2", Status::Code::TypeMismatch, "'abc'" },
        { "UCase$(Null)", Status::Code::TypeMismatch,
          "invalid use of Null in UCase$ at position 1" },
        { "Chr$(Null)", Status::Code::TypeMismatch, "invalid use of Null" },
        { "1 / 0", Status::Code::InvalidArgument, "division by zero at position 3" },
        { "'a' Like 'a[xyz'", Status::Code::Syntax, "unclosed '['" },
        { "#45/45/2004#", Status::Code::Syntax, "invalid date #45/45/2004#" },
        { "Left('abc')", Status::Code::Syntax, "wrong number of arguments (1) for LEFT" },
        { "Chr(300)", Status::Code::InvalidArgument, "Chr" },
    };
    for (const Case &c : cases) {
        const Status s = errorOf(c.expression);
        EXPECT_EQ(s.code(), c.code) << c.expression << " gave " << s.toString().toStdString();
        EXPECT_TRUE(s.message().contains(QString::fromUtf8(c.mentions)))
            << c.expression << " gave " << s.message().toStdString();
    }
}

TEST(JetErrorsTest, OnlyOneStatementCanBeParsed)
{
    EXPECT_TRUE(parseSelect(QStringLiteral("SELECT * from T;")).isOk());
    const Result<SelectStatement> two =
        parseSelect(QStringLiteral("SELECT * from T; DELETE FROM T"));
    ASSERT_FALSE(two.isOk());
    EXPECT_EQ(two.status().code(), Status::Code::Syntax);
    EXPECT_TRUE(two.status().message().contains(QStringLiteral("'DELETE' found at position 18")));
}

// The grid find inserts the user's text unescaped between quotes; a quote in it must end
// in a syntax error, never in a different, valid query.
TEST(JetErrorsTest, GridFindTextWithAQuoteIsASyntaxError)
{
    for (const char *typed : { "O'NEIL", "X')>0 OR (1=1", "A'); DROP TABLE T; --", "'" }) {
        const QString criterion = QStringLiteral("InStr(Ucase$(IIF(IsNull(NAME), \" \",NAME)), '")
            + QString::fromUtf8(typed) + QStringLiteral("')>0");
        const Result<NodePtr> parsed = parseExpression(criterion);
        ASSERT_FALSE(parsed.isOk()) << typed;
        EXPECT_EQ(parsed.status().code(), Status::Code::Syntax) << typed;
    }
}
