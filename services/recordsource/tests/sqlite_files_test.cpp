// services/recordsource/tests/sqlite_files_test.cpp: SQLite files as other programs left
// them: their journal mode stays theirs, a WAL file in a write-protected folder still opens
// for browsing, and a value the table's rules refuse is reported by its column.
#include "services/recordsource/database.h"
#include "services/recordsource/tests/sqlitefilefixture.h"
#include "tests/support/testfiles.h"
#include "tests/support/writeprotection.h"

#include <QDate>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace plx {
namespace {

using Code = Status::Code;

class SqliteFileTest : public testing::SqliteFileFixture
{
protected:
    // The journal mode as the file records it: header bytes 18 and 19 are 1 for a rollback
    // journal, 2 for WAL.
    QByteArray versionBytes() const { return test::readBytes(m_file).mid(18, 2); }
};

// Another program chose the journal mode; browsing and writing through us must not change it.
TEST_F(SqliteFileTest, OpeningAndWritingKeepTheFilesJournalMode)
{
    for (const char *mode : { "DELETE", "WAL" }) {
        SCOPED_TRACE(mode);
        QFile::remove(m_file);
        exec(QStringLiteral("PRAGMA journal_mode=%1; CREATE TABLE T (ID TEXT, QTY INT);"
                            "INSERT INTO T VALUES ('A', 1);")
                 .arg(QLatin1String(mode)));
        const QByteArray before = versionBytes();
        ASSERT_EQ(before, QByteArray(2, mode[0] == 'W' ? '\2' : '\1'));
        {
            auto db = openDb();
            ASSERT_TRUE(db);
            auto rs = db->OpenRecordset(QStringLiteral("T"));
            ASSERT_TRUE(rs.isOk());
            ASSERT_TRUE(rs.value()->Edit().isOk());
            ASSERT_TRUE(rs.value()->setValue(QStringLiteral("QTY"), 2).isOk());
            ASSERT_TRUE(rs.value()->Update().isOk());
            db->Idle();
        }
        EXPECT_EQ(versionBytes(), before);
        EXPECT_EQ(rawText("PRAGMA journal_mode"), QLatin1String(mode).toString().toLower());
    }
}

// A WAL file can only be read with its "-shm" index, which a write-protected folder does not
// let SQLite make: it still opens, for browsing.
TEST_F(SqliteFileTest, AWalFileInAWriteProtectedFolderOpensForBrowsing)
{
    exec(QStringLiteral("PRAGMA journal_mode=WAL; CREATE TABLE T (ID TEXT);"
                        "INSERT INTO T VALUES ('A'), ('B'), ('C');"));
    ASSERT_FALSE(QFile::exists(m_file + QStringLiteral("-shm")));
    test::WriteProtection folder(m_dir.path());
    if (!folder.failure().isEmpty())
        GTEST_SKIP() << folder.failure().toStdString();
    auto db = openDb();
    ASSERT_TRUE(db);
    auto rs = db->OpenRecordset(QStringLiteral("SELECT * FROM T ORDER BY ID DESC"));
    ASSERT_TRUE(rs.isOk()) << rs.status().toString().toStdString();
    EXPECT_EQ(rs.value()->value(0).value().toString(), QStringLiteral("C"));
    ASSERT_TRUE(rs.value()->MoveLast().isOk());
    EXPECT_EQ(rs.value()->RecordCount(), 3);
    EXPECT_EQ(rs.value()->readOnlyReason(), QStringLiteral("the folder is write-protected"));
    EXPECT_EQ(rs.value()->Edit().message(), QStringLiteral("the folder is write-protected"));
}

class SqliteRuleTest : public SqliteFileTest
{
protected:
    void SetUp() override
    {
        SqliteFileTest::SetUp();
        exec(QStringLiteral("CREATE TABLE ITEMS (ID TEXT PRIMARY KEY, NAME TEXT NOT NULL, "
                            "QTY INT CHECK (QTY >= 0), STARTS DATE, ENDS DATE, "
                            "CONSTRAINT in_order CHECK (STARTS <= ENDS), "
                            "CHECK (ID <> 'NAME'));"
                            "INSERT INTO ITEMS VALUES ('A1', 'bolt', 5, NULL, NULL);"));
        m_db = openDb();
        ASSERT_TRUE(m_db);
        auto rs = m_db->OpenRecordset(QStringLiteral("ITEMS"));
        ASSERT_TRUE(rs.isOk());
        m_rs = std::move(rs).value();
    }

    // Adds a record with these values; the Status of its Update.
    Status add(const QList<std::pair<const char *, QVariant>> &values) const
    {
        if (Status s = m_rs->AddNew(); !s.isOk())
            return s;
        for (const auto &[field, value] : values) {
            if (Status s = m_rs->setValue(QString::fromLatin1(field), value); !s.isOk())
                return s;
        }
        return m_rs->Update();
    }

    std::unique_ptr<Database> m_db;
    std::unique_ptr<RecordSource> m_rs;
};

// The user has to know which field to correct; SQLite's own words stay for the log.
TEST_F(SqliteRuleTest, RefusedValuesNameTheirColumns)
{
    Status s = add({ { "ID", QStringLiteral("B2") } });
    EXPECT_EQ(s.code(), Code::InvalidArgument);
    EXPECT_EQ(s.message(), QStringLiteral("the value for NAME may not be empty"));
    EXPECT_EQ(s.engineMessage(), QStringLiteral("NOT NULL constraint failed: ITEMS.NAME"));

    s = add({ { "ID", QStringLiteral("B2") }, { "NAME", QStringLiteral("nut") }, { "QTY", -1 } });
    EXPECT_EQ(s.code(), Code::InvalidArgument);
    EXPECT_EQ(s.message(), QStringLiteral("the value for QTY is refused by the table's rule"));

    s = add({ { "ID", QStringLiteral("B2") },
              { "NAME", QStringLiteral("nut") },
              { "STARTS", QDate(2025, 5, 2) },
              { "ENDS", QDate(2025, 5, 1) } });
    EXPECT_EQ(s.message(),
              QStringLiteral("the values for STARTS and ENDS are refused by the table's rule"));
    EXPECT_TRUE(s.engineMessage().contains(QStringLiteral("in_order")));

    // A column's name inside a text literal of the rule does not count.
    s = add({ { "ID", QStringLiteral("NAME") }, { "NAME", QStringLiteral("nut") } });
    EXPECT_EQ(s.message(), QStringLiteral("the value for ID is refused by the table's rule"));

    s = add({ { "ID", QStringLiteral("A1") }, { "NAME", QStringLiteral("nut") } });
    EXPECT_EQ(s.message(), QStringLiteral("the value for ID is already used by another record"));

    // Nothing refused was written, and a correct record still is.
    ASSERT_TRUE(add({ { "ID", QStringLiteral("B2") }, { "NAME", QStringLiteral("nut") } }).isOk());
    ASSERT_TRUE(m_rs->MoveLast().isOk());
    EXPECT_EQ(m_rs->RecordCount(), 2);
}

// The refused edit goes on, buffer and lock kept: the user corrects the value and writes
// again, or cancels and finds the record as it was.
TEST_F(SqliteRuleTest, AnEditThatBreaksARuleNamesTheColumnAndGoesOn)
{
    ASSERT_TRUE(m_rs->Edit().isOk());
    ASSERT_TRUE(m_rs->setValue(QStringLiteral("NAME"), QVariant()).isOk());
    const Status s = m_rs->Update();
    EXPECT_EQ(s.message(), QStringLiteral("the value for NAME may not be empty"));
    EXPECT_EQ(m_rs->editMode(), EditMode::Edit);
    ASSERT_TRUE(m_rs->setValue(QStringLiteral("NAME"), QStringLiteral("nut")).isOk());
    ASSERT_TRUE(m_rs->Update().isOk());
    EXPECT_EQ(m_rs->editMode(), EditMode::None);
    EXPECT_EQ(m_rs->value(QStringLiteral("NAME")).value().toString(), QStringLiteral("nut"));

    ASSERT_TRUE(m_rs->Edit().isOk());
    ASSERT_TRUE(m_rs->setValue(QStringLiteral("NAME"), QVariant()).isOk());
    EXPECT_FALSE(m_rs->Update().isOk());
    ASSERT_TRUE(m_rs->CancelUpdate().isOk());
    EXPECT_EQ(m_rs->value(QStringLiteral("NAME")).value().toString(), QStringLiteral("nut"));
}

} // namespace
} // namespace plx
