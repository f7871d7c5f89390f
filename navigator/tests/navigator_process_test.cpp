// navigator/tests/navigator_process_test.cpp: two users in two processes on one table:
// a record one of them edits is denied to the other, naming the holder, until the holder
// is gone; and records both create at the same moment never share an ID.
#include "navigator/tests/navigatorfixture.h"

#include "services/recordsource/recordsource.h"
#include "services/texthelpers.h"
#include "tests/support/testchild.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <QSet>
#include <QSysInfo>
#include <QThread>

namespace plx::test {
namespace {

using TwoUsers = NavigatorTest;

QString kindOf(const std::string &backEnd)
{
    return backEnd == "FoxPro" ? QStringLiteral("foxpro")
        : backEnd == "SQLite"  ? QStringLiteral("sqlite")
                               : QStringLiteral("postgresql");
}

TEST_P(TwoUsers, ARecordHeldElsewhereIsDeniedUntilItsHolderDies)
{
    configure();
    QProcess holder;
    holder.start(testChildProgram(),
                 { QStringLiteral("navigator"), QStringLiteral("hold"), kindOf(GetParam()),
                   tablePath(), QStringLiteral("PLE0000008"), QStringLiteral("BOB") });
    ASSERT_TRUE(holder.waitForReadyRead(20000)) << holder.readAllStandardError().toStdString();
    ASSERT_EQ(holder.readLine().trimmed(), QByteArray("HELD"));

    RecordingPrompter boxes;
    Services recording{ &boxes, &env.clock, &env.pump };
    nav->setServices(&recording);
    nav->SetFindFromID(QStringLiteral("PLE0000008"));
    events->clear();
    nav->ClickButton(QStringLiteral("EDIT"));
    ASSERT_EQ(boxes.titles, QStringList{ QStringLiteral("Access Denied") });
    const QString text = boxes.texts.first();
    EXPECT_TRUE(text.startsWith(
        QStringLiteral("This record is locked.  \r\nPlease try again later\r\n\r\n")));
    EXPECT_TRUE(text.contains(QStringLiteral("\r\nHeld by BOB on ") + QSysInfo::machineHostName()
                              + QStringLiteral(" since ")))
        << text.toStdString();
    EXPECT_TRUE(events->events().isEmpty());
    EXPECT_TRUE(nav->bButtonEnable(QStringLiteral("EDIT")));
    EXPECT_FALSE(nav->bButtonEnable(QStringLiteral("SAVE")));

    // A holder that dies takes its lock with it; its note is then ignored. A server lets go
    // once its session sees the connection closed, a moment after the process is gone:
    // until then the user is still told the record is locked.
    holder.kill();
    holder.waitForFinished();
    nav->ClickButton(QStringLiteral("EDIT"));
    for (int retry = 0; isServer() && boxes.titles.size() > 1 && retry < 50; ++retry) {
        QThread::msleep(100);
        boxes.titles = { boxes.titles.first() };
        nav->ClickButton(QStringLiteral("EDIT"));
    }
    EXPECT_EQ(boxes.titles.size(), 1);
    EXPECT_EQ(events->names(), QStringList{ QStringLiteral("RecEditStart") });
}

TEST_P(TwoUsers, RecordsCreatedAtOnceNeverShareAnID)
{
    configure();
    constexpr int perUser = 500;
    QProcess users[2];
    for (QProcess &user : users)
        user.start(testChildProgram(),
                   { QStringLiteral("navigator"), QStringLiteral("create"), kindOf(GetParam()),
                     tablePath(), QString::number(perUser), QStringLiteral("USER") });
    QStringList handedOut;
    for (QProcess &user : users) {
        ASSERT_TRUE(user.waitForFinished(240000));
        EXPECT_EQ(user.exitCode(), 0);
        // The child has no parent form: each save says it saves without validation, and
        // nothing else may be said (no failed ID, no refused save).
        const QStringList said = QString::fromUtf8(user.readAllStandardError())
                                     .split(QLatin1Char('\n'), Qt::SkipEmptyParts);
        for (const QString &line : said)
            EXPECT_TRUE(line.startsWith(QLatin1String("box: Saving without Validation"))
                        || line.startsWith(QLatin1String("QStandardPaths")))
                << line.toStdString();
        handedOut += QString::fromLatin1(user.readAllStandardOutput())
                         .split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    }
    EXPECT_EQ(handedOut.size(), 2 * perUser);
    EXPECT_EQ(QSet<QString>(handedOut.begin(), handedOut.end()).size(), 2 * perUser);

    // The table holds them all, once each, read by a database opened afterwards.
    Result<std::unique_ptr<Database>> db = backEnd->open(dir.path());
    ASSERT_TRUE(db.isOk());
    Result<std::unique_ptr<RecordSource>> rs =
        db.value()->OpenRecordset(QStringLiteral("SELECT * from T"));
    ASSERT_TRUE(rs.isOk());
    QMap<QString, int> ids;
    qint32 records = 0;
    for (; !rs.value()->isEOF(); (void)rs.value()->MoveNext(), ++records)
        ++ids[keyToASC(rtrimSpaces(rs.value()->value(QStringLiteral("ID")).value().toString()))];
    EXPECT_EQ(records, 10 + 2 * perUser);
    for (const QString &id : handedOut)
        EXPECT_EQ(ids.value(id), 1) << "handed out but not in the table once: " << id.toStdString();
    EXPECT_EQ(ids.size(), 10 + 2 * perUser);
    for (auto it = ids.cbegin(); it != ids.cend(); ++it)
        EXPECT_EQ(it.value(), 1) << "ID " << it.key().toStdString() << " is on " << it.value()
                                 << " records";

    if (isFoxPro()) {
        // A third program reading the files sees every record too. Keys may hold bytes
        // that Windows-1252 leaves undefined, so the IDs are read as code page 437 bytes.
        QProcess probe;
        probe.start(QStringLiteral("/usr/bin/python3"),
                    { QStringLiteral("-c"), QStringLiteral("import dbf") });
        if (!probe.waitForFinished(30000) || probe.exitCode() != 0)
            GTEST_SKIP() << "python3-dbf is not installed";
        QProcess python;
        python.start(
            QStringLiteral("/usr/bin/python3"),
            { QStringLiteral("-c"),
              QStringLiteral("import dbf,sys\nt=dbf.Table(sys.argv[1],codepage='cp437');t.open()\n"
                             "ids=[r['id'].rstrip(' ') for r in t if not dbf.is_deleted(r)]\n"
                             "print(len(ids),len(set(ids)))"),
              tablePath() });
        ASSERT_TRUE(python.waitForFinished(60000));
        EXPECT_EQ(python.exitCode(), 0) << python.readAllStandardError().toStdString();
        EXPECT_EQ(python.readAllStandardOutput().trimmed(), QByteArray("1010 1010"));
    }
}

// A user's SAVE ended by a kill before each of its writes in turn: the record is then the
// old one under its old stamp or the new one under a new stamp, never new data under the
// old stamp, and the next user can edit it.
TEST(SaveKilled, AtEveryWriteLeavesDataAndStampTogether)
{
    QTemporaryDir dir;
    qputenv("PLX_HARROWBY_DIR", dir.filePath(QStringLiteral("inst")).toUtf8());
    QDir().mkpath(dir.filePath(QStringLiteral("inst/WORK-PLX")));
    const std::shared_ptr<testing::BackEnd> fox = testing::backEndNamed(QStringLiteral("FoxPro"));
    ASSERT_TRUE(fox);
    const QString id = QStringLiteral("PLE0000008");
    // NAME and PLLASTREV of the record, as a fresh reader sees them.
    auto readBack = [&](const QString &path) {
        auto db = fox->open(QFileInfo(path).absolutePath());
        EXPECT_TRUE(db.isOk());
        if (!db.isOk())
            return QStringList();
        auto rs = db.value()->OpenRecordset(QStringLiteral("SELECT * from T WHERE ID = '") + id
                                            + QStringLiteral("'"));
        EXPECT_TRUE(rs.isOk());
        if (!rs.isOk() || rs.value()->RecordCount() != 1)
            return QStringList();
        return QStringList{
            rs.value()->value(QStringLiteral("NAME")).value().toString().trimmed(),
            rs.value()->value(QStringLiteral("PLLASTREV")).value().toString().trimmed()
        };
    };
    int kills = 0;
    for (int n = 1; n <= 32; ++n) {
        SCOPED_TRACE(n);
        const QString round = dir.filePath(QString::number(n));
        QDir().mkpath(round);
        ASSERT_TRUE(fox->createTables(round, { facilityTable() }).isOk());
        const QString path = fox->tableFile(round, QStringLiteral("T"));
        const QStringList before = readBack(path);
        QProcess victim;
        victim.start(testChildProgram(),
                     { QStringLiteral("navigator"), QStringLiteral("killatsave"),
                       QStringLiteral("foxpro"), path, id, QString::number(n) });
        ASSERT_TRUE(victim.waitForFinished(20000));
        const int code = victim.exitCode();
        ASSERT_TRUE(code == 0 || code == 77) << code << victim.readAllStandardError().toStdString();
        const QStringList now = readBack(path);
        ASSERT_EQ(now.size(), 2);
        if (now == before) {
            EXPECT_EQ(code, 77);
        } else {
            EXPECT_EQ(now[0], QStringLiteral("SAVED BY THE VICTIM"));
            EXPECT_NE(now[1], before[1]) << "new data under the old stamp";
            EXPECT_FALSE(now[1].isEmpty());
        }
        if (code == 0)
            break; // the save finished before its nth write
        ++kills;
    }
    EXPECT_GE(kills, 1) << "every write of the save is a kill point";
    qunsetenv("PLX_HARROWBY_DIR");
}

// Another user's new record reaches the count while the navigator rests, and only then: an
// edit in progress keeps its record source until it ends.
TEST_P(TwoUsers, AnotherUsersRecordIsReadOnceTheEditEnds)
{
    if (isServer())
        GTEST_SKIP() << kSymbolsFirst;
    configure();
    openTable();
    nav->setLWatchMS(10);
    const qint32 before = nav->rs()->RecordCount();
    const auto waitForRefresh = [&](int ms) {
        QElapsedTimer waited;
        waited.start();
        while (waited.elapsed() < ms) {
            QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
            for (const SeenEvent &e : events->events())
                if (e.eventInfo == QLatin1String("ChangedByOthers"))
                    return true;
        }
        return false;
    };
    nav->ClickButton(QStringLiteral("EDIT"));
    events->clear();
    ASSERT_TRUE(tableRecords->AddNew().isOk());
    ASSERT_TRUE(tableRecords->setValue(QStringLiteral("ID"), QStringLiteral("PLE0000011")).isOk());
    ASSERT_TRUE(tableRecords->setValue(QStringLiteral("NAME"), QStringLiteral("AARDVARK")).isOk());
    ASSERT_TRUE(tableRecords->Update().isOk());
    EXPECT_FALSE(waitForRefresh(300));
    EXPECT_EQ(nav->rs()->RecordCount(), before);

    nav->ClickButton(QStringLiteral("CANCEL"));
    events->clear();
    ASSERT_TRUE(waitForRefresh(3000));
    EXPECT_EQ(events->texts().size(), 1) << events->texts().join(QLatin1Char('\n')).toStdString();
    EXPECT_EQ(events->events().first().name, QStringLiteral("IDChange"));
    EXPECT_EQ(events->events().first().argument, QStringLiteral("PLE0000006"));
    EXPECT_TRUE(events->events().first().initiator);
    EXPECT_EQ(nav->rs()->RecordCount(), before + 1);
    EXPECT_EQ(nav->sCurrentID(), QStringLiteral("PLE0000006"));

    // A change is read once: the navigator rests without reading again.
    events->clear();
    EXPECT_FALSE(waitForRefresh(200));
}

INSTANTIATE_TEST_SUITE_P(BackEnds, TwoUsers, ::testing::ValuesIn(navigatorBackEnds()), backEndName);

} // namespace
} // namespace plx::test
