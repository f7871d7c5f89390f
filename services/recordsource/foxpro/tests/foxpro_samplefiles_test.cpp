// Table files other programs wrote (copies of the shared samples), opened as a user would:
// under file names that are no identifiers, and read-only for each reason a table can have,
// which the record source announces and every write repeats.
#include "services/recordsource/database.h"
#include "services/recordsource/dbf/internal/dbftable.h"
#include "services/recordsource/foxpro/tests/foxprotestsupport.h"
#include "tests/support/testfiles.h"
#include "tests/support/writeprotection.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <optional>

namespace plx {
namespace {

using Code = Status::Code;

class FoxProSampleFilesTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_dir.isValid());
        if (!QFile::exists(m_samples + QStringLiteral("/people.dbf"))) {
            if (qEnvironmentVariable("CI") == QLatin1String("true"))
                FAIL() << "the sample tables are missing: " << m_samples.toStdString();
            GTEST_SKIP() << "the sample tables are not beside this checkout ("
                         << m_samples.toStdString() << ")";
        }
    }

    // Copies a sample into the test folder under `as` (its own name by default), writable.
    QString copy(const QByteArray &sample, const QString &as = {}) const
    {
        const QString name = QString::fromLatin1(sample);
        QString target = m_dir.filePath(as.isEmpty() ? name : as);
        QFile::remove(target); // a fresh copy when a test takes the same sample again
        EXPECT_TRUE(QFile::copy(m_samples + QLatin1Char('/') + name, target)) << sample.constData();
        QFile::setPermissions(target, QFile::ReadOwner | QFile::WriteOwner);
        return target;
    }

    std::unique_ptr<Database> database() const { return foxprotest::openDirectory(m_dir.path()); }

    // Opens `table`: its reason must be `reason`. A table with a reason refuses each write at
    // once with it, leaving the file as it was; one without takes an edit.
    void expectReason(const QString &table, const QString &file, const QString &reason) const
    {
        const QByteArray before = test::readBytes(file);
        auto db = database();
        ASSERT_TRUE(db);
        auto rs = db->OpenRecordset(table);
        ASSERT_TRUE(rs.isOk()) << rs.status().toString().toStdString();
        RecordSource &r = *rs.value();
        EXPECT_EQ(r.readOnlyReason(), reason);
        if (reason.isEmpty()) {
            EXPECT_TRUE(r.Edit().isOk());
            EXPECT_TRUE(r.CancelUpdate().isOk());
            return;
        }
        ASSERT_TRUE(r.MoveLast().isOk());
        EXPECT_GT(r.RecordCount(), 0);
        for (int write = 0; write < 3; ++write) {
            QElapsedTimer clock;
            clock.start();
            const Status s = write == 0 ? r.Edit() : write == 1 ? r.AddNew() : r.Delete();
            EXPECT_LT(clock.elapsed(), 500) << write;
            EXPECT_EQ(s.code(), Code::NotSupported) << write;
            EXPECT_EQ(s.message(), reason) << write;
        }
        EXPECT_EQ(test::readBytes(file), before);
    }

    const QString m_samples = QStringLiteral(PLX_TESTDATA_DIR);
    QTemporaryDir m_dir;
};

// A file another program wrote, under names that are no identifiers and with a lower-case
// extension (opening such names by plain or bracketed text is the contract suite's case on
// tables written here): every name is a table, and a join, which runs in SQLite, finds them
// as quoted virtual tables.
TEST_F(FoxProSampleFilesTest, FilesNamedByNumbersBlanksOrKeywordsOpen)
{
    copy("people.dbf", QStringLiteral("91.dbf"));
    copy("people.dbf", QStringLiteral("my people.dbf"));
    copy("people.dbf", QStringLiteral("ORDER.DBF"));
    auto db = database();
    ASSERT_TRUE(db);
    const QStringList tables = db->tableNames();
    for (const char *name : { "91", "my people", "ORDER" })
        EXPECT_TRUE(tables.contains(QString::fromLatin1(name))) << name;

    // people.dbf holds three records, one of them deleted.
    const QString name = QStringLiteral("NAME");
    QStringList descending = foxprotest::fieldOfEachRecord(*db, QStringLiteral("[ORDER]"), name);
    ASSERT_EQ(descending.size(), 2);
    std::sort(descending.begin(), descending.end(), std::greater<>());
    EXPECT_EQ(foxprotest::fieldOfEachRecord(
                  *db,
                  QStringLiteral("SELECT A.NAME FROM [my people] AS A INNER JOIN [91] AS B "
                                 "ON A.NAME = B.NAME ORDER BY A.NAME DESC"),
                  name),
              descending);
}

// dBASE III's catalogue has a field named ORDER.
TEST_F(FoxProSampleFilesTest, AFieldNamedByAKeywordIsReadInBrackets)
{
    copy("dbase_83.dbf");
    copy("dbase_83.dbt");
    auto table = DbfTable::open(m_dir.filePath(QStringLiteral("dbase_83.dbf")),
                                DbfTable::OpenMode::ReadOnly);
    ASSERT_TRUE(table.isOk());
    const int orderField = table.value()->fieldIndex(QStringLiteral("ORDER"));
    ASSERT_GE(orderField, 0);
    QList<double> positive;
    for (quint32 r = 1; r <= table.value()->recordCount(); ++r) {
        const double order = table.value()->value(r, orderField).value().toDouble();
        if (!table.value()->isDeleted(r) && order > 0)
            positive << order;
    }
    std::sort(positive.begin(), positive.end());
    ASSERT_FALSE(positive.isEmpty());

    auto db = database();
    ASSERT_TRUE(db);
    const QStringList read = foxprotest::fieldOfEachRecord(
        *db,
        QStringLiteral("SELECT * from dbase_83 WHERE [ORDER] > 0 ORDER BY dbase_83.[ORDER], ID"),
        QStringLiteral("ORDER"));
    QList<double> got;
    for (const QString &v : read)
        got << v.toDouble();
    EXPECT_EQ(got, positive);
}

// Each sample as another program left it, and each way it can stop being writable here. A
// structural index must be kept up to date by whoever writes the table (FoxPro and the
// programs beside it trust it), so a table announcing one is only read. Protecting the table
// file or the folder is the contract suite's case; the memo file is FoxPro's own.
TEST_F(FoxProSampleFilesTest, EachReasonATableIsOnlyReadIsSaid)
{
    const auto announceIndex = [](const QString &dbf) {
        QFile file(dbf);
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        ASSERT_TRUE(file.seek(28));
        ASSERT_EQ(file.write(QByteArray(1, '\x01')), 1); // the header announces a .CDX
    };
    const struct
    {
        const char *table;
        const char *companions; // files copied beside the .dbf, '|' between them
        bool announcesIndex;
        const char *indexFile; // a .CDX copied in under this name, or nullptr
        const char *protectedFile; // nullptr: none
        const char *reason;
    } cases[] = {
        { "dbase_f5", "dbase_f5.fpt", false, nullptr, nullptr, "" },
        { "pr90", "pr90.fpt", false, nullptr, nullptr, "" },
        { "calls", "calls.FPT|calls.CDX", false, nullptr, nullptr,
          "the table is in Visual FoxPro's format, which this program only reads" },
        { "dbase_f5", "dbase_f5.fpt", true, nullptr, nullptr,
          "the table's index file is missing (dbase_f5.CDX)" },
        { "dbase_f5", "dbase_f5.fpt", true, "DBASE_F5.CDX", nullptr,
          "the table has an index this program cannot keep up to date (DBASE_F5.CDX)" },
        { "pr90", "pr90.fpt", false, nullptr, "pr90.fpt",
          "the memo file is write-protected (pr90.fpt)" },
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.reason);
        ASSERT_TRUE(QDir(m_dir.path()).removeRecursively() && QDir().mkpath(m_dir.path()));
        const QString file = copy(c.table + QByteArray(".dbf"));
        for (const QString &companion : QString::fromLatin1(c.companions).split(QLatin1Char('|')))
            copy(companion.toLatin1());
        if (c.announcesIndex) {
            ASSERT_NO_FATAL_FAILURE(announceIndex(file));
        }
        if (c.indexFile)
            copy("calls.CDX", QString::fromLatin1(c.indexFile));
        std::optional<test::WriteProtection> protection;
        if (c.protectedFile) {
            protection.emplace(m_dir.filePath(QString::fromLatin1(c.protectedFile)));
            if (!protection->failure().isEmpty())
                GTEST_SKIP() << protection->failure().toStdString();
        }
        expectReason(QString::fromLatin1(c.table), file, QString::fromLatin1(c.reason));
    }
}

} // namespace
} // namespace plx
