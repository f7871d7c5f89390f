// apps/plxsql/plxsql_test.cpp: plxsql as a user runs it: the printed rows, the count,
// typed expression values, and the error and usage exits.
#include "tests/support/texts.h"

#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>
#include <sqlite3.h>

using plx::test::texts;

namespace {

struct Outcome
{
    int exitCode = -1;
    QString out;
    QString err;
};

Outcome plxsql(const QStringList &args)
{
    QProcess p;
    p.start(QStringLiteral(PLXSQL_PATH), args);
    p.waitForFinished(20000);
    return { p.exitCode(), QString::fromUtf8(p.readAllStandardOutput()),
             QString::fromUtf8(p.readAllStandardError()) };
}

// plxsql on the database or directory `at`, its other arguments written as UTF-8 literals.
Outcome plxsql(const char *option, const QString &at, std::initializer_list<const char *> args)
{
    return plxsql(QStringList{ QString::fromLatin1(option), at } + texts(args));
}

class PlxsqlTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_dir.isValid());
        m_file = m_dir.filePath(QStringLiteral("t.sqlite"));
        sqlite3 *db = nullptr;
        ASSERT_EQ(sqlite3_open(m_file.toUtf8().constData(), &db), SQLITE_OK);
        const char *sql = "CREATE TABLE T (ID CHAR(10), NAME CHAR(30), AMOUNT NUMERIC(8,2), "
                          "BORN DATE, ACTIVE BOOLEAN, NOTES MEMO);"
                          "INSERT INTO T VALUES ('PLE1', 'Smith, Ann', 12.5, '1970-01-02', -1, "
                          "'two\tparts');"
                          "INSERT INTO T VALUES ('PLE2', 'SMALL, BOB', 3, NULL, 0, NULL);"
                          "INSERT INTO T VALUES ('PLE3', 'Jones, Al', 0.25, '2001-12-31', 0, '');";
        ASSERT_EQ(sqlite3_exec(db, sql, nullptr, nullptr, nullptr), SQLITE_OK);
        sqlite3_close(db);
    }
    QTemporaryDir m_dir;
    QString m_file;
};

TEST_F(PlxsqlTest, QueryPrintsHeaderAndTabSeparatedPlainRows)
{
    const Outcome r = plxsql(
        "--sqlite", m_file, { "SELECT * from T WHERE UCase([T.NAME]) LIKE 'SM*' ORDER BY T.NAME" });
    ASSERT_EQ(r.exitCode, 0) << r.err.toStdString();
    EXPECT_EQ(r.out,
              QStringLiteral("ID\tNAME\tAMOUNT\tBORN\tACTIVE\tNOTES\n"
                             "PLE2\tSMALL, BOB\t3.00\t\tFalse\t\n"
                             "PLE1\tSmith, Ann\t12.50\t1970-01-02\tTrue\ttwo parts\n"));
}

TEST_F(PlxsqlTest, CountPrintsTheRecordCountAfterMoveLast)
{
    Outcome r = plxsql("--sqlite", m_file, { "--count", "T" });
    EXPECT_EQ(r.exitCode, 0);
    EXPECT_EQ(r.out, QStringLiteral("3\n"));
    r = plxsql("--sqlite", m_file, { "--count", "SELECT * FROM T WHERE ID = 'NONE'" });
    EXPECT_EQ(r.out, QStringLiteral("0\n"));
}

// The index is made in the file (another program sees it in sqlite_master) and a query
// ordered by its field still gives the dialect's order.
TEST_F(PlxsqlTest, IndexMakesAnIndexInTheDialectsOrder)
{
    const Outcome made = plxsql("--sqlite", m_file, { "--index", "T", "T_NAME", "name, id" });
    ASSERT_EQ(made.exitCode, 0) << made.err.toStdString();
    EXPECT_EQ(made.out, QStringLiteral("index T_NAME on T (name, id)\n"));
    sqlite3 *db = nullptr;
    ASSERT_EQ(sqlite3_open(m_file.toUtf8().constData(), &db), SQLITE_OK);
    sqlite3_stmt *stmt = nullptr;
    ASSERT_EQ(sqlite3_prepare_v2(db, "SELECT sql FROM sqlite_master WHERE name = 'T_NAME'", -1,
                                 &stmt, nullptr),
              SQLITE_OK);
    ASSERT_EQ(sqlite3_step(stmt), SQLITE_ROW);
    EXPECT_STREQ(reinterpret_cast<const char *>(sqlite3_column_text(stmt, 0)),
                 "CREATE INDEX \"T_NAME\" ON \"T\" (\"NAME\" COLLATE JETNOCASE, \"ID\" COLLATE "
                 "JETNOCASE)");
    sqlite3_finalize(stmt);
    sqlite3_close(db);
    const Outcome sorted = plxsql("--sqlite", m_file, { "SELECT ID from T ORDER BY NAME" });
    EXPECT_EQ(sorted.out, QStringLiteral("ID\nPLE3\nPLE2\nPLE1\n"));
    const Outcome again = plxsql("--sqlite", m_file, { "--index", "T", "T_NAME", "ID" });
    EXPECT_EQ(again.exitCode, 1);
    EXPECT_EQ(again.err,
              QStringLiteral("Error: Invalid argument: an index named T_NAME exists already\n"));
}

TEST_F(PlxsqlTest, ErrorsPrintOneErrorLineAndExitOne)
{
    const QStringList file{ QStringLiteral("--sqlite"), m_file };
    for (const QStringList &args :
         { file + texts({ "SELECT * FROM T WHERE (" }), file + texts({ "SELECT NOSUCH FROM T" }),
           file,
           // Line breaks the input brings into the message are shown escaped.
           file + texts({ u"SELECT [NO\r\nSUCH\u2028FIELD] FROM T" }),
           texts({ "--eval", "1 'two\nlines'" }), texts({ "--bogus", "x" }) }) {
        const Outcome r = plxsql(args);
        EXPECT_EQ(r.exitCode, 1) << args.join(QLatin1Char(' ')).toStdString();
        EXPECT_TRUE(r.err.startsWith(QLatin1String("Error:"))) << r.err.toStdString();
        EXPECT_EQ(r.err.count(QLatin1Char('\n')), 1);
        EXPECT_TRUE(r.out.isEmpty());
    }
    const Outcome echoed = plxsql(texts({ "--eval", "1 'a\nb'" }));
    EXPECT_EQ(echoed.err,
              QStringLiteral("Error: Syntax error: an operator expected but 'a\\nb' found at "
                             "position 3\n"));
    const Outcome usage = plxsql({});
    EXPECT_EQ(usage.exitCode, 2);
    EXPECT_TRUE(usage.err.startsWith(QLatin1String("usage:")));
}

TEST(PlxsqlEvalTest, EvalPrintsTypedValues)
{
    const QList<std::pair<QString, QString>> cases{
        { QStringLiteral("UCase('say \"hi\"')"), QStringLiteral("\"SAY \"\"HI\"\"\"") },
        { QStringLiteral("1 + 2.5"), QStringLiteral("3.5") },
        { QStringLiteral("3 > 2"), QStringLiteral("True") },
        { QStringLiteral("Null"), QStringLiteral("Null") },
        { QStringLiteral("#12/31/2025#"), QStringLiteral("#12/31/2025#") },
        { QStringLiteral("CHR(80) & CHR(76)"), QStringLiteral("\"PL\"") },
        { QStringLiteral("Nz(Null, 'none')"), QStringLiteral("\"none\"") },
        { QStringLiteral("Format(#1/27/1993#, 'Long Date')"),
          QStringLiteral("\"Wednesday, January 27, 1993\"") },
        { QStringLiteral("DateAdd('m', 1, #1/31/1995#)"), QStringLiteral("#02/28/1995#") },
        { QStringLiteral("TimeSerial(16, 35, 17)"), QStringLiteral("#16:35:17#") },
    };
    for (const auto &[expression, printed] : cases) {
        const Outcome r = plxsql({ QStringLiteral("--eval"), expression });
        EXPECT_EQ(r.exitCode, 0) << expression.toStdString() << r.err.toStdString();
        EXPECT_EQ(r.out, printed + QLatin1Char('\n')) << expression.toStdString();
    }
    const Outcome bad = plxsql(texts({ "--eval", "1 +" }));
    EXPECT_EQ(bad.exitCode, 1);
    EXPECT_TRUE(bad.err.startsWith(QLatin1String("Error:")));
    // A function's error names it and where its call stands.
    const Outcome interval = plxsql(texts({ "--eval", "DateAdd('x', 1, Now())" }));
    EXPECT_EQ(interval.exitCode, 1);
    EXPECT_TRUE(interval.err.contains(QLatin1String("in DateAdd at position 1")))
        << interval.err.toStdString();
}

} // namespace

// The FoxPro back end through the shell: the same query on a directory made by the
// generator, and the header description of --info.
TEST(PlxsqlFoxProTest, QueriesAndDescribesAFoxProDirectory)
{
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    QProcess gen;
    gen.start(QStringLiteral(PLXGEN_PATH),
              { QStringLiteral("--foxpro"), dir.path(), QStringLiteral("--rows"),
                QStringLiteral("100") });
    ASSERT_TRUE(gen.waitForFinished(20000));
    ASSERT_EQ(gen.exitCode(), 0) << gen.readAllStandardError().toStdString();

    // 100 records, of which number 17, 50 and 83 are marked deleted.
    const Outcome count =
        plxsql("--foxpro", dir.path(), { "--count", "SELECT * from T ORDER BY T.NAME, T.CITY" });
    ASSERT_EQ(count.exitCode, 0) << count.err.toStdString();
    EXPECT_EQ(count.out, QStringLiteral("97\n"));

    const Outcome info = plxsql("--foxpro", dir.path(), { "--info", "t" });
    ASSERT_EQ(info.exitCode, 0) << info.err.toStdString();
    EXPECT_TRUE(info.out.contains(QStringLiteral("Version byte: 0xF5")));
    EXPECT_TRUE(info.out.contains(QStringLiteral("Code page: 1252 (mark 0x03)")));
    EXPECT_TRUE(info.out.contains(QStringLiteral("Records: 100 physical, 97 live, 3 deleted")));
    EXPECT_TRUE(info.out.contains(QStringLiteral("AMOUNT     N(12,2)")));

    const Outcome missing = plxsql("--foxpro", dir.path(), { "SELECT * from NOPE" });
    EXPECT_EQ(missing.exitCode, 1);
    EXPECT_TRUE(missing.err.startsWith(QStringLiteral("Error:")));
}

// A database made by the sqlite3 tool, with plain declared types, reads the same way.
TEST(PlxsqlSqliteToolTest, ReadsADatabaseMadeByTheSqlite3Tool)
{
    QTemporaryDir dir;
    const QString file = dir.filePath(QStringLiteral("tool.db"));
    QProcess tool;
    tool.start(QStringLiteral("sqlite3"),
               { file,
                 QStringLiteral("CREATE TABLE T (ID TEXT, NAME TEXT);"
                                "INSERT INTO T VALUES ('PLE0000002', 'jones'), "
                                "('PLE0000001', 'Smith'), ('XYZ0000003', 'smithers');") });
    if (!tool.waitForFinished(20000) || tool.exitCode() != 0)
        GTEST_SKIP() << "the sqlite3 tool is not available";
    const Outcome r = plxsql("--sqlite", file,
                             { "Select * from T WHERE  Left([ID],3) = 'PLE' Order By ID DESC" });
    ASSERT_EQ(r.exitCode, 0) << r.err.toStdString();
    EXPECT_EQ(r.out, QStringLiteral("ID\tNAME\nPLE0000002\tjones\nPLE0000001\tSmith\n"));
    const Outcome count = plxsql(
        "--sqlite", file, { "--count", "SELECT * from T WHERE UCase([T.NAME]) LIKE 'SMITH*'" });
    EXPECT_EQ(count.out, QStringLiteral("2\n"));
}
