// The navigator's query texts and host clauses, translated and run on a real SQLite
// database with the Jet functions registered: each must find exactly the rows Jet would.
#include "services/recordsource/jetsqlite/tests/jetsqlitedb.h"

#include "tests/support/texts.h"

#include <gtest/gtest.h>

using namespace plx;
using namespace plx::jet;

namespace {

class JetSqliteTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        m_db.exec(QStringLiteral(
            "CREATE TABLE T (ID TEXT, NAME TEXT, CITY TEXT, AMOUNT NUMERIC, BORN DATE, ACTIVE "
            "BOOLEAN);"
            "INSERT INTO T VALUES ('PLE0000001', 'Smith, John A', 'Boston', 12.5, '1970-01-31', "
            "-1);"
            "INSERT INTO T VALUES ('PLE0000002', 'SMITHSON, ANNE', 'albany', 100, '1980-06-15', 0);"
            "INSERT INTO T VALUES ('PLE0000003', 'Jones, Mary', 'Chicago', NULL, NULL, -1);"
            "INSERT INTO T VALUES ('XYZ0000004', 'small, bob', 'Boston', 7, '1999-12-31', 0);"
            "INSERT INTO T VALUES ('PLE0000005', 'O''Neil|Pat', '\u00C9lan', 3, '2001-02-03', -1);"
            "INSERT INTO T VALUES ('PLE0000006', '\u00C9mile', 'boston', 1, '2002-02-02', 0);"
            "CREATE TABLE U (ID TEXT, NOTE TEXT);"
            "INSERT INTO U VALUES ('PLE0000001', 'first'), ('PLE0000003', 'third');"));
    }

    TableLookup lookup() const { return m_db.lookup(); }
    // The first column of every row of a statement in SQLite's dialect.
    QStringList firstColumn(const QString &sql) const { return m_db.rows(sql, 0); }

    QStringList run(const QString &jetSql)
    {
        Result<TranslatedSelect> t = translateSelect(jetSql, lookup());
        EXPECT_TRUE(t.isOk()) << jetSql.toStdString() << ": "
                              << t.status().toString().toStdString();
        return t.isOk() ? firstColumn(t->sql) : QStringList();
    }

    // The IDs of T's rows that a criterion finds, in ID order.
    QStringList find(const QString &criterion)
    {
        Result<TranslatedSelect> t =
            translateSelect(QStringLiteral("SELECT * from T ORDER BY T.ID"), lookup());
        Result<QString> c = translateCriterion(criterion, t.value(), lookup());
        EXPECT_TRUE(c.isOk()) << criterion.toStdString() << ": "
                              << c.status().toString().toStdString();
        if (!c.isOk())
            return {};
        return firstColumn(
            QStringLiteral("SELECT \"ID\" FROM T WHERE %1 ORDER BY \"ID\"").arg(c.value()));
    }

    jet::testing::JetSqliteDb m_db;
};

} // namespace

TEST_F(JetSqliteTest, SortQueryOrdersCaseInsensitivelyWithBlanksFromEmptyParts)
{
    // "SELECT * from " & table & " " & join & " " & where & " ORDER BY " & fields
    // The three Bostons tie whatever their case; among them "Émile" sorts with the e's,
    // before "small" and "Smith".
    EXPECT_EQ(run(QStringLiteral("SELECT * from T   ORDER BY T.CITY, T.NAME")),
              test::texts({ "PLE0000002", "PLE0000006", "XYZ0000004", "PLE0000001", "PLE0000003",
                            "PLE0000005" }));
    EXPECT_EQ(run(QStringLiteral("SELECT * from T ORDER BY T.AMOUNT DESC")).first(),
              QStringLiteral("PLE0000002"));
}

TEST_F(JetSqliteTest, FindQueryMatchesUpperCasedPrefixes)
{
    EXPECT_EQ(run(QStringLiteral(
                  "SELECT * from T WHERE UCase([T.NAME]) LIKE 'SM*'ORDER BY T.NAME, T.CITY")),
              test::texts({ "PLE0000004", "PLE0000001", "PLE0000002" })
                  .replaceInStrings(QStringLiteral("PLE0000004"), QStringLiteral("XYZ0000004")));
    EXPECT_EQ(run(QStringLiteral("SELECT * from T WHERE UCase([T.NAME]) LIKE 'SMITH*'AND "
                                 "UCase([T.CITY]) LIKE 'AL*'ORDER BY T.NAME")),
              test::texts({ "PLE0000002" }));
    // fixPipeInSQL turned O'NEIL|PAT into a literal rebuilt with chr(124); quotes doubled.
    EXPECT_EQ(run(QStringLiteral("SELECT * from T WHERE UCase([T.NAME]) LIKE 'O''NEIL' & chr(124) "
                                 "& 'P*'ORDER BY T.NAME")),
              test::texts({ "PLE0000005" }));
    // Non-ASCII letters fold too.
    EXPECT_EQ(run(QStringLiteral("SELECT * from T WHERE UCase([T.NAME]) LIKE 'ÉM*'")),
              test::texts({ "PLE0000006" }));
}

TEST_F(JetSqliteTest, IdCriterionWrittenAsCharacterCodesFindsTheRecord)
{
    EXPECT_EQ(
        find(QStringLiteral("T.ID = CHR(80) & CHR(76) & CHR(69) & CHR(48) & CHR(48) & CHR(48) & "
                            "CHR(48) & CHR(48) & CHR(48) & CHR(51)")),
        test::texts({ "PLE0000003" }));
    EXPECT_EQ(
        find(QStringLiteral("ID = CHR(112) & CHR(108) & CHR(101) & CHR(48) & CHR(48) & CHR(48) & "
                            "CHR(48) & CHR(48) & CHR(48) & CHR(49)")),
        test::texts({ "PLE0000001" })); // case-insensitive on SQLite sources
}

TEST_F(JetSqliteTest, LastIdQueryPutsTheHighestKeyFirst)
{
    EXPECT_EQ(
        run(QStringLiteral("Select * from T WHERE  Left([ID],3) = 'PLE' Order By ID DESC")),
        test::texts({ "PLE0000006", "PLE0000005", "PLE0000003", "PLE0000002", "PLE0000001" }));
}

TEST_F(JetSqliteTest, GridFindSearchesTheTextOfEveryValue)
{
    EXPECT_EQ(find(QStringLiteral("InStr(Ucase$(IIF(IsNull(CITY), \" \",CITY)), 'BOST')>0")),
              test::texts({ "PLE0000001", "PLE0000006", "XYZ0000004" }));
    // A numeric column is searched through its text; Null becomes a blank.
    EXPECT_EQ(find(QStringLiteral("InStr(Ucase$(IIF(IsNull(AMOUNT), \" \",AMOUNT)), '12.5')>0")),
              test::texts({ "PLE0000001" }));
    EXPECT_EQ(find(QStringLiteral("InStr(Ucase$(IIF(IsNull(AMOUNT), \" \",AMOUNT)), ' ')>0")),
              test::texts({ "PLE0000003" }));
}

TEST_F(JetSqliteTest, HostClausesUseJetOperators)
{
    EXPECT_EQ(find(QStringLiteral("BORN Between #12/31/1999# And #1/1/1990#")),
              test::texts({ "XYZ0000004" }));
    EXPECT_EQ(find(QStringLiteral("BORN >= #1/1/2001# And ACTIVE = True")),
              test::texts({ "PLE0000005" }));
    EXPECT_EQ(find(QStringLiteral("AMOUNT Is Null")), test::texts({ "PLE0000003" }));
    EXPECT_EQ(find(QStringLiteral("Not (AMOUNT > 5) And AMOUNT Is Not Null")),
              test::texts({ "PLE0000005", "PLE0000006" }));
    EXPECT_EQ(find(QStringLiteral("CITY In ('BOSTON', 'Chicago') And Year(BORN) < 2000")),
              test::texts({ "PLE0000001", "XYZ0000004" }));
    EXPECT_EQ(find(QStringLiteral("NAME Like '*, [A-Z]*' And Len(CITY) = 6")),
              test::texts({ "PLE0000001", "PLE0000002", "XYZ0000004" }));
    // A range matches both cases on a case-insensitive source.
    EXPECT_EQ(find(QStringLiteral("NAME Like '*[!a-z], *'")), QStringList());
    EXPECT_EQ(find(QStringLiteral("AMOUNT / 2 = 6.25")), test::texts({ "PLE0000001" }));
    EXPECT_EQ(find(QStringLiteral("Mid(ID, 4) & '' = '0000002'")), test::texts({ "PLE0000002" }));
}

TEST_F(JetSqliteTest, JoinsAndSelectListsTranslate)
{
    EXPECT_EQ(run(QStringLiteral(
                  "SELECT T.ID, U.NOTE FROM T INNER JOIN U ON T.ID = U.ID ORDER BY U.NOTE DESC")),
              test::texts({ "PLE0000003", "PLE0000001" }));
    Result<TranslatedSelect> t = translateSelect(
        QStringLiteral("SELECT * FROM (T LEFT JOIN U ON T.ID = U.ID) WHERE U.NOTE Is Null"),
        lookup());
    ASSERT_TRUE(t.isOk()) << t.status().toString().toStdString();
    EXPECT_TRUE(t->baseTable.isEmpty());
    EXPECT_EQ(t->outputNames.first(), QStringLiteral("T.ID")); // shared names are qualified
    EXPECT_EQ(firstColumn(t->sql).size(), 4);
}

TEST_F(JetSqliteTest, UnknownNamesAndTablesFailBeforeAnythingRuns)
{
    Result<TranslatedSelect> field = translateSelect(
        QStringLiteral("SELECT * from T WHERE UCase([T.NAMX]) LIKE 'A*'"), lookup());
    EXPECT_EQ(field.status().code(), Status::Code::UnknownField);
    EXPECT_TRUE(field.status().message().contains(QStringLiteral("'T.NAMX' at position 29")));
    Result<TranslatedSelect> table =
        translateSelect(QStringLiteral("SELECT * from NOPE"), lookup());
    EXPECT_EQ(table.status().code(), Status::Code::UnknownField);
    EXPECT_TRUE(table.status().message().contains(QStringLiteral("'NOPE' at position 15")));
    Result<TranslatedSelect> fn =
        translateSelect(QStringLiteral("SELECT * from T WHERE NzX(NAME) = 1"), lookup());
    EXPECT_EQ(fn.status().code(), Status::Code::UnknownFunction);
}

// A criterion's constant parts are computed once, so the ID chain reaches SQLite as one
// literal and a constant that cannot be computed fails before any row is read.
TEST_F(JetSqliteTest, ConstantPartsAreComputedBeforeTheQueryRuns)
{
    Result<TranslatedSelect> t = translateSelect(QStringLiteral("SELECT * from T"), lookup());
    Result<QString> c = translateCriterion(QStringLiteral("T.ID = CHR(80) & CHR(39) & CHR(124)"),
                                           t.value(), lookup());
    ASSERT_TRUE(c.isOk());
    EXPECT_TRUE(c.value().contains(QStringLiteral("'P''|'"))) << c.value().toStdString();
    EXPECT_FALSE(c.value().contains(QStringLiteral("jet_chr")));
    Result<QString> bad = translateCriterion(QStringLiteral("ID = CHR(300)"), t.value(), lookup());
    EXPECT_EQ(bad.status().code(), Status::Code::InvalidArgument);
}
