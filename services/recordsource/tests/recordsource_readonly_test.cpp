// services/recordsource/tests/recordsource_readonly_test.cpp: a source that cannot be
// written says why, on every back end, and refuses each write at once with that reason,
// while browsing goes on; a path that is not there is NotFound and stays not there.
#include "services/recordsource/tests/contractfixture.h"
#include "tests/support/writeprotection.h"

#include <QElapsedTimer>

#include <optional>

namespace plx::testing {
namespace {

using Code = Status::Code;

TableDef notesTable()
{
    return { QStringLiteral("T"),
             { { QStringLiteral("ID"), FieldType::Text, 10, 0 },
               { QStringLiteral("NOTES"), FieldType::Memo, 0, 0 } },
             { { QStringLiteral("A1"), QStringLiteral("first") },
               { QStringLiteral("B2"), QStringLiteral("second") } } };
}

class ReadOnlySourceTest : public ::testing::TestWithParam<std::shared_ptr<BackEnd>>
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_dir.isValid());
        const Status s = GetParam()->createTables(m_dir.path(), { notesTable() });
        ASSERT_TRUE(s.isOk()) << s.toString().toStdString();
        m_file = GetParam()->tableFile(m_dir.path(), QStringLiteral("T"));
    }

    // Browses the table, then tries every write: each must fail at once with `reason`, and
    // the file must be as it was.
    void expectBrowsableButRefused(Database &db, const QString &reason) const
    {
        const QByteArray before = stored();
        ASSERT_FALSE(before.isEmpty());

        auto rs = db.OpenRecordset(QStringLiteral("SELECT * from T ORDER BY T.ID"));
        ASSERT_TRUE(rs.isOk()) << rs.status().toString().toStdString();
        RecordSource &t = *rs.value();
        EXPECT_EQ(t.readOnlyReason(), reason);
        ASSERT_TRUE(t.MoveLast().isOk());
        EXPECT_EQ(t.RecordCount(), 2);
        EXPECT_EQ(textOf(t, QStringLiteral("NOTES")), QStringLiteral("second"));
        const std::pair<const char *, std::function<Status()>> writes[] = {
            { "Edit", [&t] { return t.Edit(); } },
            { "AddNew", [&t] { return t.AddNew(); } },
            { "Delete", [&t] { return t.Delete(); } },
        };
        for (const auto &[name, write] : writes) {
            QElapsedTimer clock;
            clock.start();
            const Status s = write();
            EXPECT_LT(clock.elapsed(), 500) << name;
            EXPECT_EQ(s.code(), Code::NotSupported) << name;
            EXPECT_EQ(s.message(), reason) << name;
            EXPECT_EQ(t.editMode(), EditMode::None) << name;
        }
        EXPECT_EQ(textOf(t, QStringLiteral("ID")), QStringLiteral("B2"));
        EXPECT_EQ(stored(), before);
    }

    // The table as stored: its file's bytes, or for a back end that keeps its tables on a
    // server, its records read through a connection of their own.
    QByteArray stored() const
    {
        if (!m_file.isEmpty()) {
            QFile file(m_file);
            return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
        }
        auto db = GetParam()->open(m_dir.path());
        auto rs = db.isOk() ? db.value()->OpenRecordset(QStringLiteral("T"))
                            : Result<std::unique_ptr<RecordSource>>(db.status());
        QByteArray records;
        for (; rs.isOk() && !rs.value()->isEOF(); (void)rs.value()->MoveNext())
            records += (textOf(*rs.value(), QStringLiteral("ID")) + QLatin1Char('=')
                        + textOf(*rs.value(), QStringLiteral("NOTES")) + QLatin1Char('\n'))
                           .toUtf8();
        return records;
    }

    std::unique_ptr<Database> openDatabase(bool readOnly = false) const
    {
        return orFail(GetParam()->open(m_dir.path(), readOnly));
    }

    QTemporaryDir m_dir;
    QString m_file;
};

// The control for the cases below: the same files, not protected, are written.
TEST_P(ReadOnlySourceTest, AWritableSourceHasNoReasonAndIsWritten)
{
    auto db = openDatabase();
    ASSERT_TRUE(db);
    auto rs = db->OpenRecordset(QStringLiteral("T"));
    ASSERT_TRUE(rs.isOk());
    EXPECT_EQ(rs.value()->readOnlyReason(), QString());
    ASSERT_TRUE(rs.value()->Edit().isOk());
    ASSERT_TRUE(rs.value()->setValue(QStringLiteral("NOTES"), QStringLiteral("changed")).isOk());
    EXPECT_TRUE(rs.value()->Update().isOk());
}

// Each reason a source cannot be written, one at a time: the database opened read-only, the
// folder and the table file write-protected.
TEST_P(ReadOnlySourceTest, EachReasonForReadOnlyIsSaid)
{
    const struct
    {
        const char *reason;
        bool readOnly; // else `protectedPath` refuses writes
        QString protectedPath;
    } cases[] = {
        { "the database was opened read-only", true, QString() },
        { "the folder is write-protected", false, m_dir.path() },
        { "the file is write-protected", false, m_file },
    };
    for (const auto &[reason, readOnly, protectedPath] : cases) {
        SCOPED_TRACE(reason);
        if (!readOnly && m_file.isEmpty())
            continue; // tables on a server: no folder or file to protect
        std::optional<test::WriteProtection> protection;
        if (!readOnly) {
            protection.emplace(protectedPath);
            if (!protection->failure().isEmpty())
                GTEST_SKIP() << protection->failure().toStdString();
        }
        auto db = openDatabase(readOnly);
        ASSERT_TRUE(db);
        expectBrowsableButRefused(*db, QString::fromLatin1(reason));
    }
}

// A mistyped path must not become a new, empty database.
TEST_P(ReadOnlySourceTest, AMissingPathIsNotFoundAndNotCreated)
{
    const QString missing = m_dir.filePath(QStringLiteral("elsewhere"));
    for (bool readOnly : { false, true }) {
        auto db = GetParam()->open(missing, readOnly);
        EXPECT_EQ(db.status().code(), Code::NotFound) << readOnly;
        EXPECT_TRUE(db.status().message().contains(QStringLiteral("not found")))
            << db.status().message().toStdString();
        EXPECT_FALSE(QFileInfo::exists(missing));
        EXPECT_FALSE(QFileInfo::exists(GetParam()->tableFile(missing, QStringLiteral("T"))));
    }
}

INSTANTIATE_TEST_SUITE_P(AllBackEnds, ReadOnlySourceTest, ::testing::ValuesIn(allBackEnds()),
                         backEndName);

} // namespace
} // namespace plx::testing
