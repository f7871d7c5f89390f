// services/recordsource/dbf/tests/xbaseexpression_test.cpp: index expressions give FoxPro's
// results, hand-computed from FoxPro's rules, and refuse what they cannot evaluate.
#include "dbf_test_util.h"

#include "services/recordsource/dbf/internal/dbftable.h"
#include "services/recordsource/dbf/internal/xbaseexpression.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace plx;

namespace {

// Three records in code page 1252: the second deleted, the third all blank.
class XbaseExpressionTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        auto created = DbfTable::create(m_dir.filePath(QStringLiteral("small.dbf")),
                                        { { QStringLiteral("NAME"), 'C', 12 },
                                          { QStringLiteral("CITY"), 'C', 8 },
                                          { QStringLiteral("QTY"), 'N', 8, 2 },
                                          { QStringLiteral("BORN"), 'D', 8 },
                                          { QStringLiteral("OK"), 'L', 1 } });
        ASSERT_TRUE(created.isOk()) << created.status().message().toStdString();
        m_table = std::move(*created);
        m_table->setDurable(false);
        ASSERT_TRUE(m_table
                        ->appendRecord({ QStringLiteral("Zoë smith"), QStringLiteral("Rome"), 12.5,
                                         QDate(2024, 2, 29), true })
                        .isOk());
        ASSERT_TRUE(m_table
                        ->appendRecord({ QStringLiteral("  ab"), QStringLiteral("Oslo"), -3,
                                         QDate(1999, 12, 31), false })
                        .isOk());
        ASSERT_TRUE(
            m_table->appendRecord({ QVariant(), QVariant(), QVariant(), QVariant(), QVariant() })
                .isOk());
        ASSERT_TRUE(m_table->setDeleted(2, true).isOk());
    }

    // The value of `text` on `recno` as FoxPro's ? command shows it: texts as they are,
    // numbers shortest, dates as DTOS, logicals as .T./.F.
    QString shown(const char *text, quint32 recno)
    {
        // Expressions are stored in the table's code page, like its texts.
        auto expression =
            XbaseExpression::compile(*m_table->encode(QString::fromUtf8(text)), *m_table);
        if (!expression.isOk())
            return expression.status().message();
        auto value = expression->evaluate(recno);
        if (!value.isOk())
            return value.status().message();
        switch (value->type) {
        case cdxkey::KeyType::Character: return m_table->decode(value->text) + QLatin1Char('|');
        case cdxkey::KeyType::Numeric: return QString::number(value->number);
        case cdxkey::KeyType::Integer: return QString::number(value->integer);
        case cdxkey::KeyType::Date: return value->date.toString(QStringLiteral("yyyyMMdd"));
        case cdxkey::KeyType::Logical:
            return value->logical ? QStringLiteral(".T.") : QStringLiteral(".F.");
        }
        return {};
    }

    QTemporaryDir m_dir;
    std::unique_ptr<DbfTable> m_table;
};

struct Case
{
    const char *expression;
    quint32 recno;
    const char *expected; // UTF-8; a text ends with "|" so that its blanks show
};

TEST_F(XbaseExpressionTest, GivesFoxProResults)
{
    const Case cases[] = {
        { "UPPER(name)", 1, "ZOË SMITH   |" },
        { "lower(LEFT(name, 3))", 1, "zoë|" },
        { "RIGHT(ALLTRIM(name), 5) + '.'", 1, "smith.|" },
        { "SUBSTR(name, 5, 3)", 1, "smi|" },
        { "SUBS(name, 5)", 1, "smith   |" },
        { "SUBSTR(name, 13)", 1, "|" },
        { "LTRIM(name) + TRIM(city) + RTRIM(city)", 2, "ab        OsloOslo|" },
        { "city - name", 1, "RomeZoë smith       |" },
        { "small->city + [!]", 1, "Rome    !|" },
        { "STR(qty)", 1, "        13|" },
        { "STR(qty, 8, 2)", 1, "   12.50|" },
        { "STR(qty, 4, 2)", 1, "12.5|" },
        { "STR(-1234.5, 4)", 1, "****|" },
        { "STR(1.005, 5, 2)", 1, " 1.01|" },
        { "STR(qty, 3)", 2, " -3|" },
        { "DTOS(born) + DTOC(born)", 1, "2024022902/29/24|" },
        { "DTOS(born) + DTOC(born)", 3, "          /  /  |" },
        { "DTOS(born - 1) + DTOS(born + 1.9)", 1, "2024022820240301|" },
        { "born - {^2024-01-01}", 1, "unexpected \"{\"" },
        { "VAL('  12.5abc') + VAL('x') + VAL(city)", 1, "12.5" },
        { "-qty * 2 / 4", 1, "-6.25" },
        { "IIF(ok, 'yes', 'no ')", 1, "yes|" },
        { "IIF(ok, 'yes', 'no ')", 2, "no |" },
        { "DELETED()", 2, ".T." },
        { "DELE()", 1, ".F." },
        { "name = 'Zoë'", 1, ".T." },
        { "name == 'Zoë'", 1, ".F." },
        { "'Zoë' = name", 1, ".F." },
        { "'smith' $ name .AND. !ok = .F.", 1, ".T." },
        { ".NOT. ok .OR. qty > 12", 2, ".T." },
        { "born < {}", 1, "unexpected" },
        { "born <= born + 1 .AND. qty # 12 .AND. city <> 'Oslo' .AND. qty >= 12.5", 1, ".T." },
        { "qty", 3, "0" },
        { "ok", 3, ".F." },
    };
    for (const Case &c : cases) {
        const QString expected = QString::fromUtf8(c.expected);
        const QString got = shown(c.expression, c.recno);
        if (expected.endsWith(QLatin1Char('|')) || expected.startsWith(QLatin1Char('.'))
            || expected[0].isDigit() || expected[0] == QLatin1Char('-'))
            EXPECT_EQ(got, expected) << c.expression;
        else
            EXPECT_TRUE(got.contains(expected)) << c.expression << ": " << got.toStdString();
    }
}

TEST_F(XbaseExpressionTest, RefusesWhatItCannotEvaluate)
{
    struct Refusal
    {
        const char *expression;
        Status::Code code;
        const char *message;
    };
    const Refusal refusals[] = {
        { "nosuch + name", Status::Code::UnknownField,
          "NOSUCH is no field of the table in \"nosuch + name\"" },
        { "SOUNDEX(name)", Status::Code::UnknownFunction,
          "SOUNDEX is no function this index reader knows in \"SOUNDEX(name)\"" },
        { "name + qty", Status::Code::TypeMismatch,
          "+ cannot take these operands in \"name + qty\"" },
        { "LEFT(name)", Status::Code::TypeMismatch,
          "LEFT cannot take these operands in \"LEFT(name)\"" },
        { "UPPER(name", Status::Code::Syntax,
          "a \",\" or \")\" must follow an argument of UPPER in \"UPPER(name\"" },
        { "UPPER(", Status::Code::Syntax, "the expression ends too soon in \"UPPER(\"" },
        { "'abc", Status::Code::Syntax, "a text without its closing quote in \"'abc\"" },
        { "name name", Status::Code::Syntax, "unexpected \"NAME\" in \"name name\"" },
    };
    for (const Refusal &r : refusals) {
        auto compiled = XbaseExpression::compile(QByteArray(r.expression), *m_table);
        ASSERT_FALSE(compiled.isOk()) << r.expression;
        EXPECT_EQ(compiled.status().code(), r.code) << r.expression;
        EXPECT_EQ(compiled.status().message().toStdString(), r.message);
    }
    for (const QByteArray &deep : { QByteArray(200, '(') + "qty" + QByteArray(200, ')'),
                                    QByteArray(200, '-') + "qty", "qty" + QByteArray(600, ' ') }) {
        EXPECT_EQ(XbaseExpression::compile(deep, *m_table).status().code(), Status::Code::Syntax)
            << deep.left(20).constData();
    }

    auto overflow = XbaseExpression::compile("qty / (qty - qty)", *m_table);
    ASSERT_TRUE(overflow.isOk());
    EXPECT_EQ(overflow->evaluate(1).status().message().toStdString(),
              "numeric overflow in record 1");
    EXPECT_EQ(overflow->evaluate(4).status().code(), Status::Code::InvalidArgument);
}

TEST_F(XbaseExpressionTest, KeysHaveTheTypeAndBytesOfTheTag)
{
    auto name = XbaseExpression::compile("UPPER(name) + DTOS(born)", *m_table);
    ASSERT_TRUE(name.isOk());
    EXPECT_EQ(name->type(), cdxkey::KeyType::Character);
    EXPECT_EQ(*name->key(1, 24), QByteArray("ZO\xCB SMITH   20240229    "));
    auto qty = XbaseExpression::compile("qty", *m_table);
    EXPECT_EQ(qty->type(), cdxkey::KeyType::Numeric);
    EXPECT_EQ(*qty->key(2, 8), cdxkey::numericKey(-3));
    auto born = XbaseExpression::compile("born", *m_table);
    EXPECT_EQ(*born->key(1, 8), cdxkey::dateKey(QDate(2024, 2, 29)));
    auto ok = XbaseExpression::compile("ok", *m_table);
    EXPECT_EQ(*ok->key(1, 1), cdxkey::logicalKey(true));
}

} // namespace
