// The navigator's query texts and host clauses, translated and run on a real SQLite
// database with the Jet functions registered: each must find exactly the rows Jet would.
#include "services/recordsource/jetsqlite/internal/sqlitetranslate.h"

#include <sqlite3.h>

#include <gtest/gtest.h>

using namespace plx;
using namespace plx::jet;

namespace {

class JetSqliteTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_EQ(sqlite3_open(":memory:", &m_db), SQLITE_OK);
        ASSERT_TRUE(registerJetFunctions(m_db).isOk());
        exec(
            "CREATE TABLE T (ID TEXT, NAME TEXT, CITY TEXT, AMOUNT NUMERIC, BORN DATE, ACTIVE "
            "BOOLEAN);"
            "INSERT INTO T VALUES ('PLE0000001', 'Smith, John A', 'Boston', 12.5, '1970-01-31', "
            "-1);"
            "INSERT INTO T VALUES ('PLE0000002', 'SMITHSON, ANNE', 'albany', 100, '1980-06-15', 0);"
            "INSERT INTO T VALUES ('PLE0000003', 'Jones, Mary', 'Chicago', NULL, NULL, -1);"
            "INSERT INTO T VALUES ('XYZ0000004', 'small, bob', 'Boston', 7, '1999-12-31', 0);"
            "INSERT INTO T VALUES ('PLE0000005', 'O''Neil|Pat', 'Élan', 3, '2001-02-03', -1);"
            "INSERT INTO T VALUES ('PLE0000006', 'Émile', 'boston', 1, '2002-02-02', 0);"
            "CREATE TABLE U (ID TEXT, NOTE TEXT);"
            "INSERT INTO U VALUES ('PLE0000001', 'first'), ('PLE0000003', 'third');");
    }
    void TearDown() override { sqlite3_close(m_db); }

    void exec(const char *sql)
    {
        char *err = nullptr;
        ASSERT_EQ(sqlite3_exec(m_db, sql, nullptr, nullptr, &err), SQLITE_OK) << err;
    }

    TableLookup lookup()
    {
        return [this](const QString &name) -> std::optional<TableColumns> {
            for (const char *t : { "T", "U" }) {
                if (name.compare(QLatin1String(t), Qt::CaseInsensitive) != 0)
                    continue;
                TableColumns cols;
                cols.table = QLatin1String(t);
                sqlite3_stmt *st = nullptr;
                const QByteArray q = QByteArray("PRAGMA table_info(") + t + ")";
                sqlite3_prepare_v2(m_db, q.constData(), -1, &st, nullptr);
                while (sqlite3_step(st) == SQLITE_ROW)
                    cols.columns << QString::fromUtf8(
                        reinterpret_cast<const char *>(sqlite3_column_text(st, 1)));
                sqlite3_finalize(st);
                return cols;
            }
            return std::nullopt;
        };
    }

    // Runs a translated statement and returns its first column, one entry per row.
    QStringList firstColumn(const QString &sql)
    {
        QStringList rows;
        sqlite3_stmt *st = nullptr;
        const QByteArray utf8 = sql.toUtf8();
        EXPECT_EQ(sqlite3_prepare_v2(m_db, utf8.constData(), -1, &st, nullptr), SQLITE_OK)
            << sqlite3_errmsg(m_db) << " in " << utf8.constData();
        int rc;
        while ((rc = sqlite3_step(st)) == SQLITE_ROW)
            rows << QString::fromUtf8(reinterpret_cast<const char *>(sqlite3_column_text(st, 0)));
        EXPECT_EQ(rc, SQLITE_DONE) << sqlite3_errmsg(m_db);
        sqlite3_finalize(st);
        return rows;
    }

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

    sqlite3 *m_db = nullptr;
};

QStringList ids(std::initializer_list<const char *> list)
{
    QStringList out;
    for (const char *s : list)
        out << QString::fromUtf8(s);
    return out;
}

} // namespace

TEST_F(JetSqliteTest, SortQueryOrdersCaseInsensitivelyWithBlanksFromEmptyParts)
{
    // "SELECT * from " & table & " " & join & " " & where & " ORDER BY " & fields
    // The three Bostons tie whatever their case; among them "Émile" sorts with the e's,
    // before "small" and "Smith".
    EXPECT_EQ(run(QStringLiteral("SELECT * from T   ORDER BY T.CITY, T.NAME")),
              ids({ "PLE0000002", "PLE0000006", "XYZ0000004", "PLE0000001", "PLE0000003",
                    "PLE0000005" }));
    EXPECT_EQ(run(QStringLiteral("SELECT * from T ORDER BY T.AMOUNT DESC")).first(),
              QStringLiteral("PLE0000002"));
}

TEST_F(JetSqliteTest, FindQueryMatchesUpperCasedPrefixes)
{
    EXPECT_EQ(run(QStringLiteral(
                  "SELECT * from T WHERE UCase([T.NAME]) LIKE 'SM*'ORDER BY T.NAME, T.CITY")),
              ids({ "PLE0000004", "PLE0000001", "PLE0000002" })
                  .replaceInStrings(QStringLiteral("PLE0000004"), QStringLiteral("XYZ0000004")));
    EXPECT_EQ(run(QStringLiteral("SELECT * from T WHERE UCase([T.NAME]) LIKE 'SMITH*'AND "
                                 "UCase([T.CITY]) LIKE 'AL*'ORDER BY T.NAME")),
              ids({ "PLE0000002" }));
    // fixPipeInSQL turned O'NEIL|PAT into a literal rebuilt with chr(124); quotes doubled.
    EXPECT_EQ(run(QStringLiteral("SELECT * from T WHERE UCase([T.NAME]) LIKE 'O''NEIL' & chr(124) "
                                 "& 'P*'ORDER BY T.NAME")),
              ids({ "PLE0000005" }));
    // Non-ASCII letters fold too.
    EXPECT_EQ(run(QStringLiteral("SELECT * from T WHERE UCase([T.NAME]) LIKE 'ÉM*'")),
              ids({ "PLE0000006" }));
}

TEST_F(JetSqliteTest, IdCriterionWrittenAsCharacterCodesFindsTheRecord)
{
    EXPECT_EQ(
        find(QStringLiteral("T.ID = CHR(80) & CHR(76) & CHR(69) & CHR(48) & CHR(48) & CHR(48) & "
                            "CHR(48) & CHR(48) & CHR(48) & CHR(51)")),
        ids({ "PLE0000003" }));
    EXPECT_EQ(
        find(QStringLiteral("ID = CHR(112) & CHR(108) & CHR(101) & CHR(48) & CHR(48) & CHR(48) & "
                            "CHR(48) & CHR(48) & CHR(48) & CHR(49)")),
        ids({ "PLE0000001" })); // case-insensitive on SQLite sources
}

TEST_F(JetSqliteTest, LastIdQueryPutsTheHighestKeyFirst)
{
    EXPECT_EQ(run(QStringLiteral("Select * from T WHERE  Left([ID],3) = 'PLE' Order By ID DESC")),
              ids({ "PLE0000006", "PLE0000005", "PLE0000003", "PLE0000002", "PLE0000001" }));
}

TEST_F(JetSqliteTest, GridFindSearchesTheTextOfEveryValue)
{
    EXPECT_EQ(find(QStringLiteral("InStr(Ucase$(IIF(IsNull(CITY), \" \",CITY)), 'BOST')>0")),
              ids({ "PLE0000001", "PLE0000006", "XYZ0000004" }));
    // A numeric column is searched through its text; Null becomes a blank.
    EXPECT_EQ(find(QStringLiteral("InStr(Ucase$(IIF(IsNull(AMOUNT), \" \",AMOUNT)), '12.5')>0")),
              ids({ "PLE0000001" }));
    EXPECT_EQ(find(QStringLiteral("InStr(Ucase$(IIF(IsNull(AMOUNT), \" \",AMOUNT)), ' ')>0")),
              ids({ "PLE0000003" }));
}

TEST_F(JetSqliteTest, HostClausesUseJetOperators)
{
    EXPECT_EQ(find(QStringLiteral("BORN Between #12/31/1999# And #1/1/1990#")),
              ids({ "XYZ0000004" }));
    EXPECT_EQ(find(QStringLiteral("BORN >= #1/1/2001# And ACTIVE = True")), ids({ "PLE0000005" }));
    EXPECT_EQ(find(QStringLiteral("AMOUNT Is Null")), ids({ "PLE0000003" }));
    EXPECT_EQ(find(QStringLiteral("Not (AMOUNT > 5) And AMOUNT Is Not Null")),
              ids({ "PLE0000005", "PLE0000006" }));
    EXPECT_EQ(find(QStringLiteral("CITY In ('BOSTON', 'Chicago') And Year(BORN) < 2000")),
              ids({ "PLE0000001", "XYZ0000004" }));
    EXPECT_EQ(find(QStringLiteral("NAME Like '*, [A-Z]*' And Len(CITY) = 6")),
              ids({ "PLE0000001", "PLE0000002", "XYZ0000004" }));
    // A range matches both cases on a case-insensitive source.
    EXPECT_EQ(find(QStringLiteral("NAME Like '*[!a-z], *'")), ids({}));
    EXPECT_EQ(find(QStringLiteral("AMOUNT / 2 = 6.25")), ids({ "PLE0000001" }));
    EXPECT_EQ(find(QStringLiteral("Mid(ID, 4) & '' = '0000002'")), ids({ "PLE0000002" }));
}

TEST_F(JetSqliteTest, JoinsAndSelectListsTranslate)
{
    EXPECT_EQ(run(QStringLiteral(
                  "SELECT T.ID, U.NOTE FROM T INNER JOIN U ON T.ID = U.ID ORDER BY U.NOTE DESC")),
              ids({ "PLE0000003", "PLE0000001" }));
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
