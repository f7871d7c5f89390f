// The SELECT forms hosts write (column lists, aliases, T.*, the join nestings Jet
// parenthesises, keyword case, a trailing ';'), run on SQLite, and the binary order that
// FoxPro-like sources use.
#include "services/recordsource/jetsqlite/tests/jetsqlitedb.h"
#include "tests/support/texts.h"

#include <gtest/gtest.h>

using namespace plx;
using namespace plx::jet;

namespace {

class JetSelectTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        m_db.exec(QStringLiteral(
            "CREATE TABLE T (ID TEXT, NAME TEXT);"
            "INSERT INTO T VALUES ('1', 'beta'), ('2', 'Alpha'), ('3', '\u20ACuro'),"
            " ('4', '\u00E9cole'), ('5', 'Zulu');"
            "CREATE TABLE U (ID TEXT, NOTE TEXT, \"T.NAME\" TEXT);"
            "INSERT INTO U VALUES ('1', 'one', 'x'), ('2', 'two', 'y'), ('9', 'nine', 'z');"));
    }

    // Every row of a translated statement, its columns joined by '|'.
    QStringList rows(const QString &jetSql, TextCompare mode = TextCompare::NoCase)
    {
        Result<TranslatedSelect> t = translateSelect(jetSql, m_db.lookup(), mode);
        EXPECT_TRUE(t.isOk()) << jetSql.toStdString() << ": "
                              << t.status().toString().toStdString();
        return t.isOk() ? m_db.rows(t->sql) : QStringList();
    }
    TableLookup lookup() const { return m_db.lookup(); }

    jet::testing::JetSqliteDb m_db;
};

} // namespace

TEST_F(JetSelectTest, HostSelectFormsRunOnSqlite)
{
    struct Case
    {
        const char *sql;
        QStringList rows;
    };
    const Case cases[] = {
        { "select ID, NAME as N from T where ID <= '2' order by name;",
          test::texts({ "2|Alpha", "1|beta" }) },
        { "SELECT X.NAME FROM T AS X WHERE X.ID = '5'", test::texts({ "Zulu" }) },
        { "SELECT [T].[NAME], [U].NOTE FROM T INNER JOIN U ON T.ID = U.ID ORDER BY [T].[ID]",
          test::texts({ "beta|one", "Alpha|two" }) },
        { "SELECT U.NOTE, T.ID FROM T RIGHT OUTER JOIN U ON T.ID = U.ID ORDER BY U.ID DESC",
          test::texts({ "nine|", "two|2", "one|1" }) },
        { "SELECT U.* FROM (T INNER JOIN U ON T.ID = U.ID) LEFT JOIN T AS T2 ON T2.ID = U.ID "
          "WHERE T2.NAME Like 'B*'",
          test::texts({ "1|one|x" }) },
        { "SELECT T.ID FROM T LEFT JOIN U ON T.ID = U.ID WHERE U.ID Is Null ORDER BY T.ID",
          test::texts({ "3", "4", "5" }) },
        // [T.NAME] names U's column of that exact name before it is read as table T, field NAME.
        { "SELECT U.ID FROM U WHERE [T.NAME] = 'Y'", test::texts({ "2" }) },
        { "SELECT T.ID FROM T WHERE [T.NAME] = 'ZULU'", test::texts({ "5" }) },
    };
    for (const Case &c : cases)
        EXPECT_EQ(rows(QString::fromUtf8(c.sql)), c.rows) << c.sql;
}

TEST_F(JetSelectTest, OrderFollowsTheSourceTextComparison)
{
    // The General order: case ignored, "école" beside the other e's (before Zulu), "€" no
    // letter and after them all.
    EXPECT_EQ(rows(QStringLiteral("SELECT NAME FROM T ORDER BY NAME")),
              test::texts({ "Alpha", "beta",
                            "\xC3\xA9"
                            "cole",
                            "Zulu",
                            "\xE2\x82\xAC"
                            "uro" }));
    // Binary: upper case before lower case, and the Windows-1252 bytes decide: € is 0x80,
    // é is 0xE9, although € has the higher code point.
    EXPECT_EQ(rows(QStringLiteral("SELECT NAME FROM T ORDER BY NAME"), TextCompare::Binary),
              test::texts({ "Alpha", "Zulu", "beta",
                            "\xE2\x82\xAC"
                            "uro",
                            "\xC3\xA9"
                            "cole" }));
    EXPECT_EQ(rows(QStringLiteral("SELECT ID FROM T WHERE NAME > 'a'"), TextCompare::Binary),
              test::texts({ "1", "3", "4" }));
}

TEST_F(JetSelectTest, MalformedSelectsAreSyntaxErrors)
{
    for (const char *sql :
         { "SELECT * from T; SELECT * from U", "SELECT * T", "SELECT * from T ORDER ID",
           "SELECT * from T INNER JOIN U T.ID = U.ID", "SELECT NAME, from T", "DELETE FROM T" }) {
        Result<TranslatedSelect> t = translateSelect(QString::fromUtf8(sql), lookup());
        EXPECT_EQ(t.status().code(), Status::Code::Syntax) << sql;
        EXPECT_TRUE(t.status().message().contains(QStringLiteral("position"))) << sql;
    }
}
