// The wider functions in the host's WHERE and ORDER BY texts, run by both back ends on real
// files: a SQLite database and a FoxPro 2.6 table holding the same records. Each query must
// give the same records in the same order on both.
#include "services/recordsource/database.h"
#include "services/recordsource/dbf/internal/dbftable.h"
#include "tests/support/texts.h"

#include <QTemporaryDir>

#include <sqlite3.h>

#include <gtest/gtest.h>

using namespace plx;

namespace {

struct Person
{
    const char *id;
    const char *city;
    QDate born;
    double amount;
};

const Person kPeople[] = {
    { "PLE1", "Boston", QDate(1970, 1, 31), 12.5 }, // a Saturday
    { "PLE2", "Denver", QDate(1980, 6, 15), 100 },
    { "PLE3", "Austin", QDate(1999, 12, 31), 7 },
    { "PLE4", "Chicago", QDate(2001, 2, 3), 3 }, // a Saturday
};

class JetFunctionsClausesTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_dir.isValid());
        // FoxPro: T.DBF in a directory opened as a database.
        QList<DbfField> fields;
        DbfField f;
        f.name = QStringLiteral("ID"), f.type = 'C', f.length = 10;
        fields << f;
        f.name = QStringLiteral("CITY"), f.length = 20;
        fields << f;
        f.name = QStringLiteral("BORN"), f.type = 'D', f.length = 8;
        fields << f;
        f.name = QStringLiteral("AMOUNT"), f.type = 'N', f.length = 10, f.decimals = 2;
        fields << f;
        ASSERT_TRUE(QDir().mkpath(m_dir.filePath(QStringLiteral("fox"))));
        auto table = DbfTable::create(m_dir.filePath(QStringLiteral("fox/T.DBF")), fields);
        ASSERT_TRUE(table.isOk()) << table.status().toString().toStdString();
        for (const Person &p : kPeople) {
            ASSERT_TRUE(table.value()
                            ->appendRecord({ QString::fromLatin1(p.id), QString::fromLatin1(p.city),
                                             p.born, p.amount })
                            .isOk());
        }

        // SQLite: the same records with the back end's column types.
        sqlite3 *db = nullptr;
        ASSERT_EQ(
            sqlite3_open(m_dir.filePath(QStringLiteral("t.sqlite")).toUtf8().constData(), &db),
            SQLITE_OK);
        QString sql =
            QStringLiteral("CREATE TABLE T (ID TEXT, CITY TEXT, BORN DATE, AMOUNT NUMERIC);");
        for (const Person &p : kPeople)
            sql +=
                QStringLiteral("INSERT INTO T VALUES ('%1', '%2', '%3', %4);")
                    .arg(QLatin1String(p.id), QLatin1String(p.city), p.born.toString(Qt::ISODate))
                    .arg(p.amount);
        char *err = nullptr;
        EXPECT_EQ(sqlite3_exec(db, sql.toUtf8().constData(), nullptr, nullptr, &err), SQLITE_OK)
            << (err ? err : "");
        sqlite3_free(err);
        sqlite3_close(db);
    }

    // The IDs a query gives on one back end, in its order.
    static QStringList ids(Database *db, const QString &sql)
    {
        QStringList out;
        if (!db)
            return out;
        auto rs = db->OpenRecordset(sql);
        EXPECT_TRUE(rs.isOk()) << sql.toStdString() << ": " << rs.status().toString().toStdString();
        if (!rs.isOk())
            return out;
        for (RecordSource &r = *rs.value(); !r.isEOF(); (void)r.MoveNext())
            out << r.value(QStringLiteral("ID")).value().toString().trimmed();
        return out;
    }

    void expectOnEach(const char *sql, const QStringList &onSqlite, const QStringList &onFoxPro)
    {
        auto sqlite =
            OpenDatabase(m_dir.filePath(QStringLiteral("t.sqlite")), false, false, QString());
        ASSERT_TRUE(sqlite.isOk()) << sqlite.status().toString().toStdString();
        auto fox = OpenDatabase(m_dir.filePath(QStringLiteral("fox")), false, false,
                                QStringLiteral("FoxPro 2.6"));
        ASSERT_TRUE(fox.isOk()) << fox.status().toString().toStdString();
        const QString text = QString::fromUtf8(sql);
        EXPECT_EQ(ids(sqlite.value().get(), text), onSqlite) << "SQLite: " << sql;
        EXPECT_EQ(ids(fox.value().get(), text), onFoxPro) << "FoxPro: " << sql;
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
