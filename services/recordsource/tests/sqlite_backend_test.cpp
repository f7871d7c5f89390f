// services/recordsource/tests/sqlite_backend_test.cpp: what only the SQLite back end
// promises: how declared types map to fields and how values are stored, held (join)
// sources, and sources that outlive their Database (read-only databases: the contract suite).
#include "services/recordsource/database.h"
#include "services/recordsource/tests/sqlitefilefixture.h"
#include "tests/support/testfiles.h"

#include <QDate>
#include <QDateTime>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace plx {
namespace {

using Code = Status::Code;

class SqliteBackEndTest : public testing::SqliteFileFixture
{
protected:
    void SetUp() override
    {
        SqliteFileFixture::SetUp();
        exec(QStringLiteral(
            "CREATE TABLE K (CODE VARCHAR(12), LABEL TEXT, BODY LONGTEXT, N INT, "
            "PRICE DECIMAL(8,3), RATIO REAL, FLAG BIT, SEEN DATETIME, DAY DATE, RAW BLOB);"
            "INSERT INTO K VALUES ('A1', 'alpha', 'long', 7, 1.5, 0.25, -1, "
            "'2024-02-29 13:14:15', '2024-03-01', x'0102');"
            "INSERT INTO K VALUES ('B2', NULL, NULL, NULL, NULL, NULL, 0, NULL, NULL, NULL);"
            "CREATE TABLE U (CODE CHAR(12), OWNER CHAR(20));"
            "INSERT INTO U VALUES ('A1', 'ann'), ('B2', 'bob'), ('A1', 'al');"));
    }
    std::unique_ptr<RecordSource> openRs(Database &db, const QString &sql)
    {
        Result<std::unique_ptr<RecordSource>> rs = db.OpenRecordset(sql);
        EXPECT_TRUE(rs.isOk()) << rs.status().toString().toStdString();
        return rs.isOk() ? std::move(rs).value() : nullptr;
    }
};

TEST_F(SqliteBackEndTest, DeclaredTypesBecomeFieldTypesAndTypedValues)
{
    auto db = openDb();
    auto rs = openRs(*db, QStringLiteral("K"));
    ASSERT_TRUE(rs);
    const QList<FieldInfo> &f = rs->fieldInfos();
    QList<FieldType> types;
    for (const FieldInfo &field : f)
        types << field.type;
    EXPECT_EQ(
        types,
        (QList<FieldType>{ FieldType::Text, FieldType::Text, FieldType::Memo, FieldType::Integer,
                           FieldType::Numeric, FieldType::Double, FieldType::Boolean,
                           FieldType::DateTime, FieldType::Date, FieldType::Binary }));
    EXPECT_EQ(f[0].size, 12);
    EXPECT_EQ(f[1].size, 255);
    EXPECT_EQ(f[4].size, 8);
    EXPECT_EQ(f[4].decimals, 3);

    EXPECT_EQ(rs->value(3).value(), QVariant(qlonglong(7)));
    EXPECT_EQ(rs->value(6).value(), QVariant(true));
    EXPECT_EQ(rs->value(7).value().toDateTime(), QDateTime(QDate(2024, 2, 29), QTime(13, 14, 15)));
    EXPECT_EQ(rs->value(8).value().toDate(), QDate(2024, 3, 1));
    EXPECT_EQ(rs->value(9).value().toByteArray(), QByteArray("\x01\x02", 2));
    ASSERT_TRUE(rs->MoveNext().isOk());
    EXPECT_EQ(rs->value(6).value(), QVariant(false));
    for (int i : { 1, 2, 3, 4, 5, 7, 8, 9 })
        EXPECT_FALSE(rs->value(i).value().isValid()) << i;
}

// Other programs read the file: dates must stay ISO text and logicals -1/0.
TEST_F(SqliteBackEndTest, WrittenDatesAndLogicalsKeepTheStoredForms)
{
    auto db = openDb();
    auto rs = openRs(*db, QStringLiteral("K"));
    ASSERT_TRUE(rs);
    ASSERT_TRUE(rs->AddNew().isOk());
    ASSERT_TRUE(rs->setValue(QStringLiteral("CODE"), QStringLiteral("C3")).isOk());
    ASSERT_TRUE(rs->setValue(QStringLiteral("FLAG"), true).isOk());
    ASSERT_TRUE(
        rs->setValue(QStringLiteral("SEEN"), QDateTime(QDate(2025, 1, 2), QTime(3, 4, 5))).isOk());
    ASSERT_TRUE(rs->setValue(QStringLiteral("DAY"), QStringLiteral("12/31/2025")).isOk());
    ASSERT_TRUE(rs->setValue(QStringLiteral("PRICE"), 2.34567).isOk());
    ASSERT_TRUE(rs->setValue(QStringLiteral("N"), QStringLiteral("42")).isOk());
    EXPECT_EQ(rs->setValue(QStringLiteral("N"), QStringLiteral("many")).code(), Code::TypeMismatch);
    EXPECT_EQ(rs->setValue(QStringLiteral("CODE"), QStringLiteral("THIRTEEN CHRS")).code(),
              Code::InvalidArgument);
    ASSERT_TRUE(rs->Update().isOk());
    EXPECT_EQ(rawText("SELECT FLAG FROM K WHERE CODE='C3'"), QStringLiteral("-1"));
    EXPECT_EQ(rawText("SELECT SEEN FROM K WHERE CODE='C3'"), QStringLiteral("2025-01-02 03:04:05"));
    EXPECT_EQ(rawText("SELECT DAY FROM K WHERE CODE='C3'"), QStringLiteral("2025-12-31"));
    EXPECT_EQ(rawText("SELECT PRICE FROM K WHERE CODE='C3'"), QStringLiteral("2.346"));
    EXPECT_EQ(rawText("SELECT N FROM K WHERE CODE='C3'"), QStringLiteral("42"));
}

// Programs outside this layer take no record locks; their delete must not let our Update
// report success for a record that is gone.
TEST_F(SqliteBackEndTest, UpdateOfARecordDeletedByAnotherProgramFails)
{
    auto db = openDb();
    auto rs = openRs(*db, QStringLiteral("K"));
    ASSERT_TRUE(rs);
    ASSERT_TRUE(rs->Edit().isOk());
    ASSERT_TRUE(rs->setValue(QStringLiteral("N"), 8).isOk());
    exec(QStringLiteral("DELETE FROM K WHERE CODE = 'A1'"));
    EXPECT_EQ(rs->Update().code(), Code::NotFound);
    EXPECT_EQ(rs->editMode(), EditMode::None);
    EXPECT_EQ(rawText("SELECT count(*) FROM K"), QStringLiteral("1"));
}

TEST_F(SqliteBackEndTest, JoinIsReadOnlyAndFindsInItsOrder)
{
    auto db = openDb();
    auto rs = openRs(*db,
                     QStringLiteral("SELECT K.CODE, U.OWNER FROM K INNER JOIN U ON K.CODE = U.CODE "
                                    "ORDER BY U.OWNER"));
    ASSERT_TRUE(rs);
    ASSERT_TRUE(rs->MoveLast().isOk());
    EXPECT_EQ(rs->RecordCount(), 3);
    ASSERT_TRUE(rs->FindFirst(QStringLiteral("K.CODE = 'A1'")).isOk());
    EXPECT_EQ(rs->AbsolutePosition(), 0);
    ASSERT_TRUE(rs->FindNext(QStringLiteral("K.CODE = 'A1'")).isOk());
    EXPECT_EQ(rs->AbsolutePosition(), 1);
    EXPECT_EQ(rs->value(1).value().toString(), QStringLiteral("ann"));
    EXPECT_EQ(rs->Edit().code(), Code::NotSupported);
    EXPECT_EQ(rs->AddNew().code(), Code::NotSupported);
}

TEST_F(SqliteBackEndTest, SourceOutlivesItsDatabaseAndFailsAfterClose)
{
    auto db = openDb();
    EXPECT_EQ(db->tableNames(), QStringList({ QStringLiteral("K"), QStringLiteral("U") }));
    auto rs = openRs(*db, QStringLiteral("K"));
    ASSERT_TRUE(rs);
    db.reset();
    ASSERT_TRUE(rs->MoveNext().isOk());
    EXPECT_EQ(rs->value(0).value().toString(), QStringLiteral("B2"));
    ASSERT_TRUE(rs->Edit().isOk());
    rs->Close();
    EXPECT_EQ(rs->MoveFirst().code(), Code::InvalidArgument);
    EXPECT_FALSE(rs->value(0).isOk());
    EXPECT_TRUE(rs->isBOF() && rs->isEOF());
}

// A mistyped path must not silently become a new, empty database: only the Create option
// makes one, and never for a read-only open.
TEST(SqliteOpenDatabaseTest, AMissingFileIsNotFoundUnlessCreateIsAskedFor)
{
    QTemporaryDir dir;
    const QString file = dir.filePath(QStringLiteral("new.sqlite"));
    for (bool readOnly : { false, true }) {
        const Status s = OpenDatabase(file, false, readOnly, QString()).status();
        EXPECT_EQ(s.code(), Code::NotFound);
        EXPECT_EQ(s.message(), QStringLiteral("the database %1 was not found").arg(file));
    }
    EXPECT_EQ(OpenDatabase(file, false, true, QStringLiteral(";Create=Yes")).status().code(),
              Code::NotFound);
    EXPECT_FALSE(QFile::exists(file));

    auto created = OpenDatabase(file, false, false, QStringLiteral(";create=yes"));
    ASSERT_TRUE(created.isOk()) << created.status().toString().toStdString();
    EXPECT_TRUE(QFile::exists(file));
    EXPECT_TRUE(created.value()->tableNames().isEmpty());
    // An existing file opens as it is under the same option.
    EXPECT_TRUE(OpenDatabase(file, false, false, QStringLiteral(";Create=Yes")).isOk());
}

TEST(SqliteOpenDatabaseTest, AFileThatIsNoDatabaseFailsAtOpen)
{
    QTemporaryDir dir;
    const QString file = dir.filePath(QStringLiteral("notes.txt"));
    ASSERT_NO_FATAL_FAILURE(test::writeBytes(
        file, QByteArray("just some text, long enough to be read as a header").repeated(20)));
    EXPECT_EQ(OpenDatabase(file, false, false, QString()).status().code(), Code::Corrupt);
    EXPECT_EQ(OpenDatabase(file, false, true, QString()).status().code(), Code::Corrupt);
}

} // namespace
} // namespace plx
