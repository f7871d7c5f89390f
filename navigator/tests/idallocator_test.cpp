// navigator/tests/idallocator_test.cpp: the ID allocator on a real table of each back end:
// the odometer, the key file as users' machines leave it, and candidates already taken.
#include "navigator/idallocator_p.h"
#include "navigator/tests/navigatorfixture.h"

#include "services/cp1252.h"
#include "services/paths.h"
#include "services/recordsource/postgres/tests/pgserver.h"
#include "services/recordsource/recordsource.h"
#include "services/recordsource/sharedkeys.h"
#include "services/recordsource/tests/postgresbackend.h"

#include <QDir>
#include <QFile>

namespace plx::test {
namespace {

TEST(IdAllocatorOdometer, WrapsPast255SkipsTheBlankAndReportsACarryIntoThePrefix)
{
    QStringList logged;
    auto log = [&logged](const QString &line) { logged << line; };
    const QChar c255 = cp1252::toUnicode(255);
    EXPECT_EQ(IdAllocator::PLXIDIncrement(QStringLiteral("PLE0000009"), log),
              QStringLiteral("PLE000000:"));
    EXPECT_EQ(IdAllocator::PLXIDIncrement(QStringLiteral("PLE000000") + c255, log),
              QStringLiteral("PLE000001") + QChar(1));
    EXPECT_EQ(IdAllocator::PLXIDIncrement(QStringLiteral("PLE000000") + QChar(31), log),
              QStringLiteral("PLE000000!"));
    EXPECT_TRUE(logged.isEmpty());
    EXPECT_EQ(IdAllocator::PLXIDIncrement(QStringLiteral("PLE") + QString(7, c255), log),
              QStringLiteral("PLF") + QString(7, cp1252::toUnicode(1)));
    EXPECT_EQ(logged, QStringList{ QStringLiteral("Error in PLXIDIncrement; k=3") });
}

// The facility table (highest ID PLE0000010) as a navigator hands it to the allocator.
class Ids : public NavigatorTest
{
protected:
    void SetUp() override
    {
        NavigatorTest::SetUp();
        openTable();
        // As the navigator names it: the table file, or the database's folder + the table.
        table = { tableDb,
                  tableRecords.get(),
                  fromDiskPath(isFoxPro() ? tablePath() : dir.filePath(QStringLiteral("T"))),
                  isFoxPro(),
                  QueryText(QStringLiteral("T")),
                  QStringLiteral("ID"),
                  QStringLiteral("NAME"),
                  QStringLiteral("Facilities"),
                  QStringLiteral("ANN"),
                  env.services() };
        keyFile = IdAllocator::keyFilePath(table.file);
    }

    // The stored key: the key file's bytes, or the server's key row.
    QByteArray keyLine() const
    {
        if (isServer())
            return server("SELECT last_key FROM plx.idkeys WHERE table_name = 't'").toLatin1();
        QFile file(keyFile);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    // The next stored key as the allocator writes it.
    QByteArray expectedLine(const char *code) const
    {
        return isServer() ? QByteArray(code) : QByteArray(code) + "\r\n";
    }
    // Leaves `line` as the stored key, or none at all for nullptr.
    void storeKey(const char *line)
    {
        if (isServer()) {
            server("DELETE FROM plx.idkeys WHERE table_name = 't'");
            if (line)
                server(QStringLiteral("INSERT INTO plx.idkeys VALUES ('t', '%1')")
                           .arg(QString::fromLatin1(line)));
            return;
        }
        QFile::remove(keyFile);
        if (line) {
            QFile file(keyFile);
            ASSERT_TRUE(file.open(QIODevice::WriteOnly));
            file.write(QByteArray(line) + "\r\n");
        }
    }
    QString server(const QString &sql) const
    {
        return testing::PgServer::instance().psql(testing::postgresDatabaseFor(dir.path()), sql);
    }
    QString server(const char *sql) const { return server(QString::fromLatin1(sql)); }

    IdAllocator ids;
    IdAllocator::Table table;
    QString keyFile;
};

// Key files as users' machines leave them: missing, damaged by another program, the last
// key there is, restored from an older backup. Each ends with the next free ID and a key
// file that holds it, the damaged ones also with one box that says so.
TEST_P(Ids, EveryKeyFileLeadsToTheNextFreeID)
{
    if (!isServer())
        EXPECT_EQ(keyFile, dir.filePath(QStringLiteral("T_IDLast7.TXT")));
    const struct
    {
        const char *line;
        bool told;
    } cases[] = {
        { nullptr, false }, // missing: rebuilt from the table
        { "abcdefghijklmnopqrstu", true }, // not digits
        { "999048048048048048048", true }, // a code above 255
        { "000048048048048048048", true }, // a NUL
        { "032048048048048048048", true }, // the blank
        { "255255255255255255255", true }, // the last key: the next would carry into "PLE"
        { "04804804804804804804", true }, // one digit short
        { "048048048048048048049", false }, // a backup: nine IDs behind the table
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.line ? c.line : "missing");
        storeKey(c.line);
        if (c.told)
            env.prompter.expectMsgBox(QStringLiteral("Record ID Error"), QString(), 64,
                                      MsgAnswer::OK);
        EXPECT_EQ(ids.newID(table, QStringLiteral("PLE")), QStringLiteral("PLE0000011"));
        EXPECT_EQ(keyLine(), expectedLine("048048048048048049049"));
        EXPECT_EQ(env.prompter.pending(), 0);
        if (c.told) {
            EXPECT_TRUE(env.prompter.shown().last().text.startsWith(
                QStringLiteral("Unexpected results for Last ID in Facilities\r\n")));
        }
    }
    EXPECT_EQ(ids.newID(table, QStringLiteral("PLE")), QStringLiteral("PLE0000012"));

    // A key that cannot be written is named as such, in one box, and where it is kept.
    if (isServer()) {
        server("CREATE FUNCTION plx.frozen() RETURNS trigger LANGUAGE plpgsql AS "
               "$$ BEGIN RAISE EXCEPTION 'the keys are frozen'; END $$; "
               "CREATE TRIGGER frozen BEFORE UPDATE ON plx.idkeys "
               "FOR EACH ROW EXECUTE FUNCTION plx.frozen()");
    } else {
        QFile::remove(keyFile);
        ASSERT_TRUE(QDir().mkdir(keyFile));
    }
    env.prompter.expectMsgBox(QStringLiteral("Record ID Error"), QString(), 16, MsgAnswer::OK);
    EXPECT_EQ(ids.newID(table, QStringLiteral("PLE")), QString());
    EXPECT_TRUE(ids.problemShown());
    const QString said = env.prompter.shown().last().text;
    EXPECT_TRUE(said.startsWith(
        isServer() ? QStringLiteral("The record ID key for Facilities cannot be used:\r\n"
                                    "plx.idkeys, row t\r\n\r\n")
                   : QStringLiteral("The record ID key file for Facilities cannot be used:\r\n")))
        << said.toStdString();
    EXPECT_TRUE(said.endsWith(QStringLiteral("\r\n\r\nNew record has NOT been created.")));
    if (isServer()) {
        EXPECT_TRUE(said.contains(QStringLiteral("the keys are frozen")));
        // Nothing stayed half done: the row still holds the last key handed out.
        EXPECT_EQ(keyLine(), expectedLine("048048048048048049050"));
    }
}

// Two users advancing one key: the second waits for the first, and one that dies while it
// holds the key lets go of it, leaving the key as it was.
TEST_P(Ids, ALeaseOnTheServersKeyHoldsOffOthersUntilItEnds)
{
    if (!isServer())
        GTEST_SKIP() << "table files keep their keys in a key file";
    auto *keys = dynamic_cast<SharedKeys *>(tableDb.get());
    ASSERT_NE(keys, nullptr);
    Result<std::unique_ptr<Database>> other = backEnd->open(dir.path());
    ASSERT_TRUE(other.isOk());
    auto *otherKeys = dynamic_cast<SharedKeys *>(other.value().get());

    Result<std::unique_ptr<KeyLease>> first = keys->leaseKey(QStringLiteral("T"), 1000);
    ASSERT_TRUE(first.isOk()) << first.status().message().toStdString();
    EXPECT_TRUE(first.value()->lastKey().isNull()); // no key stored yet
    ASSERT_TRUE(first.value()->store(QStringLiteral("048048048048048048065")).isOk());
    Result<std::unique_ptr<KeyLease>> waiting = otherKeys->leaseKey(QStringLiteral("t"), 200);
    EXPECT_EQ(waiting.status().code(), Status::Code::Locked);

    // The holder's connection goes without committing: the key is as it was.
    tableRecords.reset();
    first = Status::ok();
    tableDb.reset();
    Result<std::unique_ptr<KeyLease>> second = otherKeys->leaseKey(QStringLiteral("T"), 5000);
    ASSERT_TRUE(second.isOk()) << second.status().message().toStdString();
    EXPECT_TRUE(second.value()->lastKey().isNull());
    ASSERT_TRUE(second.value()->store(QStringLiteral("048048048048048048066")).isOk());
    ASSERT_TRUE(second.value()->commit().isOk());
    EXPECT_EQ(keyLine(), QByteArray("048048048048048048066"));
}

// Eleven candidates in a row that other records hold: the allocator gives up after ten
// attempts and names the last record that held one.
TEST_P(Ids, GivesUpAfterTenTakenCandidates)
{
    // The key file is rebuilt from the highest generated ID, 0000010: ABC0000011 comes first.
    QString id = QStringLiteral("ABC0000011");
    for (int n = 1; n <= 11; ++n, id = IdAllocator::PLXIDIncrement(id, nullptr)) {
        ASSERT_TRUE(tableRecords->AddNew().isOk());
        ASSERT_TRUE(tableRecords->setValue(QStringLiteral("ID"), id).isOk());
        ASSERT_TRUE(
            tableRecords->setValue(QStringLiteral("NAME"), QStringLiteral("HOLDER %1").arg(n))
                .isOk());
        ASSERT_TRUE(tableRecords->Update().isOk());
    }
    env.prompter.expectMsgBox(QStringLiteral("Error on New Record ID"), QString(), 16,
                              MsgAnswer::OK);
    EXPECT_EQ(ids.newID(table, QStringLiteral("ABC")), QString());
    const QString said = env.prompter.shown().last().text;
    EXPECT_TRUE(said.startsWith(QStringLiteral("Duplicate ID Error in mvPLXRecs.NewIDPLX\r\n"
                                               "Desc Field: HOLDER 11")))
        << said.toStdString();
    EXPECT_TRUE(said.endsWith(QStringLiteral("\r\nUnsuccessful after 10 attempts")));
}

INSTANTIATE_TEST_SUITE_P(BackEnds, Ids, ::testing::ValuesIn(navigatorBackEnds()), backEndName);

} // namespace
} // namespace plx::test
