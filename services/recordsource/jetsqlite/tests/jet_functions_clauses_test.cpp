// The wider functions in the host's WHERE and ORDER BY texts, run by both back ends on real
// files: a SQLite database and a FoxPro 2.6 table holding the same records. Each query must
// give the same records in the same order on both.
#include "services/recordsource/database.h"
#include "services/recordsource/tests/backend.h"
#include "tests/support/texts.h"

#include <QDate>
#include <QDir>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace plx;

namespace {

// Table T on every back end, written in each one's own storage conventions.
plx::testing::TableDef people()
{
    plx::testing::TableDef t{ QStringLiteral("T"),
                              { { QStringLiteral("ID"), FieldType::Text, 10, 0 },
                                { QStringLiteral("CITY"), FieldType::Text, 20, 0 },
                                { QStringLiteral("BORN"), FieldType::Date, 8, 0 },
                                { QStringLiteral("AMOUNT"), FieldType::Numeric, 10, 2 } },
                              {} };
    t.rows << QVariantList{ QStringLiteral("PLE1"), QStringLiteral("Boston"), QDate(1970, 1, 31),
                            12.5 } // a Saturday
           << QVariantList{ QStringLiteral("PLE2"), QStringLiteral("Denver"), QDate(1980, 6, 15),
                            100 }
           << QVariantList{ QStringLiteral("PLE3"), QStringLiteral("Austin"), QDate(1999, 12, 31),
                            7 }
           << QVariantList{ QStringLiteral("PLE4"), QStringLiteral("Chicago"), QDate(2001, 2, 3),
                            3 }; // a Saturday
    return t;
}

class JetFunctionsClausesTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_dir.isValid());
        for (const char *name : { "SQLite", "FoxPro" }) {
            const QString folder = m_dir.filePath(QString::fromLatin1(name));
            ASSERT_TRUE(QDir().mkpath(folder));
            const Status made = plx::testing::backEndNamed(QString::fromLatin1(name))
                                    ->createTables(folder, { people() });
            ASSERT_TRUE(made.isOk()) << made.toString().toStdString();
        }
    }

    // The IDs a query gives on one back end, in its order.
    QStringList ids(const char *backEnd, const QString &sql) const
    {
        auto db = plx::testing::backEndNamed(QString::fromLatin1(backEnd))
                      ->open(m_dir.filePath(QString::fromLatin1(backEnd)));
        EXPECT_TRUE(db.isOk()) << db.status().toString().toStdString();
        if (!db.isOk())
            return {};
        auto rs = db.value()->OpenRecordset(sql);
        EXPECT_TRUE(rs.isOk()) << sql.toStdString() << ": " << rs.status().toString().toStdString();
        QStringList out;
        for (RecordSource *r = rs.isOk() ? rs.value().get() : nullptr; r && !r->isEOF();
             (void)r->MoveNext())
            out << r->value(QStringLiteral("ID")).value().toString().trimmed();
        return out;
    }

    void expectOnEach(const char *sql, const QStringList &onSqlite, const QStringList &onFoxPro)
    {
        const QString text = QString::fromUtf8(sql);
        EXPECT_EQ(ids("SQLite", text), onSqlite) << "SQLite: " << sql;
        EXPECT_EQ(ids("FoxPro", text), onFoxPro) << "FoxPro: " << sql;
    }

    void expectOnBoth(const char *sql, const QStringList &expected)
    {
        expectOnEach(sql, expected, expected);
    }

    QTemporaryDir m_dir;
};

} // namespace

TEST_F(JetFunctionsClausesTest, HostWhereTextsUseTheWiderFunctions)
{
    expectOnBoth("SELECT * from T WHERE DatePart('yyyy', BORN) < 1990 ORDER BY ID",
                 test::texts({ "PLE1", "PLE2" }));
    expectOnBoth("SELECT * from T WHERE Format(AMOUNT, '0.00') = '12.50'", test::texts({ "PLE1" }));
    expectOnBoth("SELECT * from T WHERE DateDiff('yyyy', BORN, #1/1/2000#) > 20",
                 test::texts({ "PLE1" }));
    expectOnBoth("SELECT * from T WHERE Switch(AMOUNT > 50, 'big', AMOUNT > 5, 'mid') = 'mid' "
                 "ORDER BY ID",
                 test::texts({ "PLE1", "PLE3" }));
    expectOnBoth("SELECT * from T WHERE Nz(CITY, '') = 'Denver'", test::texts({ "PLE2" }));
    expectOnBoth("SELECT * from T WHERE StrComp(CITY, 'boston', 1) = 0", test::texts({ "PLE1" }));
    expectOnBoth("SELECT * from T WHERE Weekday(BORN) = 7 ORDER BY ID",
                 test::texts({ "PLE1", "PLE4" }));
    expectOnBoth("SELECT * from T WHERE Round(AMOUNT) Mod 2 = 0 And CCur(AMOUNT) < 50 ORDER BY ID",
                 test::texts({ "PLE1" }));
}

TEST_F(JetFunctionsClausesTest, OrderByTextsUseTheWiderFunctions)
{
    expectOnBoth("SELECT * from T ORDER BY Format(BORN, 'mmdd')",
                 test::texts({ "PLE1", "PLE4", "PLE2", "PLE3" }));
    expectOnBoth("SELECT * from T ORDER BY DatePart('d', BORN) DESC, ID",
                 test::texts({ "PLE1", "PLE3", "PLE2", "PLE4" }));
    expectOnBoth("SELECT * from T ORDER BY StrReverse(CITY)",
                 test::texts({ "PLE3", "PLE1", "PLE4", "PLE2" }));
}

// Without a compare argument StrComp, InStrRev and Replace compare as the source does, as
// InStr and '=' do: case-insensitively on SQLite, by byte on FoxPro tables (whose Xbase
// collation was ASCII). An explicit compare argument gives the same on both.
TEST_F(JetFunctionsClausesTest, TheDefaultCompareIsTheSources)
{
    expectOnEach("SELECT * from T WHERE StrComp(CITY, 'BOSTON') = 0", test::texts({ "PLE1" }), {});
    expectOnEach("SELECT * from T WHERE InStrRev(CITY, 'O') > 0 ORDER BY ID",
                 test::texts({ "PLE1", "PLE4" }), {});
    expectOnEach("SELECT * from T WHERE Replace(CITY, 'O', '') = 'Bstn'", test::texts({ "PLE1" }),
                 {});
    expectOnBoth("SELECT * from T WHERE StrComp(CITY, 'BOSTON', 1) = 0", test::texts({ "PLE1" }));
    expectOnBoth("SELECT * from T WHERE InStrRev(CITY, 'O', -1, 0) > 0", {});
}
