// navigator/tests/idallocator_test.cpp: the ID allocator on a real table of each back end:
// the odometer, the key file as users' machines leave it, and candidates already taken.
#include "navigator/idallocator_p.h"
#include "navigator/tests/navigatorfixture.h"

#include "services/cp1252.h"
#include "services/paths.h"
#include "services/recordsource/recordsource.h"

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

    QByteArray keyLine() const
    {
        QFile file(keyFile);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    IdAllocator ids;
    IdAllocator::Table table;
    QString keyFile;
};

// Key files as users' machines leave them: missing, damaged by another program, the last
// key there is, restored from an older backup. Each ends with the next free ID and a key
// file that holds it, the damaged ones also with one box that says so.
TEST_P(Ids, EveryKeyFileLeadsToTheNextFreeID)
{
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
        QFile::remove(keyFile);
        if (c.line) {
            QFile file(keyFile);
            ASSERT_TRUE(file.open(QIODevice::WriteOnly));
            file.write(QByteArray(c.line) + "\r\n");
        }
        if (c.told)
            env.prompter.expectMsgBox(QStringLiteral("Record ID Error"), QString(), 64,
                                      MsgAnswer::OK);
        EXPECT_EQ(ids.newID(table, QStringLiteral("PLE")), QStringLiteral("PLE0000011"));
        EXPECT_EQ(keyLine(), QByteArray("048048048048048049049\r\n"));
        EXPECT_EQ(env.prompter.pending(), 0);
        if (c.told) {
            EXPECT_TRUE(env.prompter.shown().last().text.startsWith(
                QStringLiteral("Unexpected results for Last ID in Facilities\r\n")));
        }
    }
    EXPECT_EQ(ids.newID(table, QStringLiteral("PLE")), QStringLiteral("PLE0000012"));

    // A key file that cannot be written is named as such, in one box.
    QFile::remove(keyFile);
    ASSERT_TRUE(QDir().mkdir(keyFile));
    env.prompter.expectMsgBox(QStringLiteral("Record ID Error"), QString(), 16, MsgAnswer::OK);
    EXPECT_EQ(ids.newID(table, QStringLiteral("PLE")), QString());
    EXPECT_TRUE(ids.problemShown());
    EXPECT_TRUE(env.prompter.shown().last().text.startsWith(
        QStringLiteral("The record ID key file for Facilities cannot be used:\r\n")));
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

INSTANTIATE_TEST_SUITE_P(BackEnds, Ids, ::testing::Values("SQLite", "FoxPro"), backEndName);

} // namespace
} // namespace plx::test
