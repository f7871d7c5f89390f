// services/recordsource/dbf/tests/dbf_process_test.cpp: several processes on one table.
// Concurrent appends lose and tear nothing; record locks exclude other processes; a process
// killed in the middle of a write leaves a table every reader can open.
#include "dbf_test_util.h"

#include "services/recordsource/dbf/internal/dbftable.h"
#include "tests/support/testchild.h"

#include <QSet>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace plx;
using namespace plx::dbftestutil;
using plx::test::TestChild;

namespace {

// The test child in its table role.
QStringList tableChild(const char *mode, const QString &path, const QString &arg)
{
    return { QStringLiteral("table"), QString::fromLatin1(mode), path, arg };
}

bool finishedOk(TestChild &child)
{
    const int code = child.exitCode();
    if (code != 0)
        ADD_FAILURE() << "child failed (" << code << "): " << child.errors().toStdString();
    return code == 0;
}

void expectReadersAgree(const QString &path)
{
    if (!pythonReady())
        return;
    auto t = DbfTable::open(path, DbfTable::OpenMode::ReadOnly);
    ASSERT_TRUE(t.isOk());
    bool ok = false;
    const QStringList viaDbf = runInterop({ QStringLiteral("dump-dbf"), path }, &ok);
    ASSERT_TRUE(ok);
    const QStringList viaDbfread =
        runInterop({ QStringLiteral("dump-dbfread"), path, QStringLiteral("1252") }, &ok);
    ASSERT_TRUE(ok);
    const QStringList ours = dumpTable(**t);
    EXPECT_EQ(ours, viaDbf);
    // dbfread reads up to the end-of-file mark rather than the header count, so it also
    // shows a complete record whose count the dead writer never wrote.
    ASSERT_GE(viaDbfread.size(), ours.size());
    EXPECT_EQ(viaDbfread.mid(0, ours.size()), ours);
}

} // namespace

TEST(DbfProcesses, TwoProcessesAppendingLoseAndTearNothing)
{
    QTemporaryDir dir;
    const QString path = makeSmallTable(dir.path(), 0);
    TestChild a(tableChild("append", path, QStringLiteral("1000")) << QStringLiteral("AAA"));
    TestChild b(tableChild("append", path, QStringLiteral("1000")) << QStringLiteral("BBB"));
    ASSERT_TRUE(finishedOk(a));
    ASSERT_TRUE(finishedOk(b));

    auto t = DbfTable::open(path, DbfTable::OpenMode::ReadOnly);
    ASSERT_TRUE(t.isOk());
    EXPECT_EQ((*t)->recordCount(), 2000u);
    EXPECT_EQ((*t)->header().headerCount, 2000u);
    EXPECT_EQ((*t)->header().physicalCount, 2000u);
    QSet<QString> seen;
    for (quint32 r = 1; r <= 2000; ++r) {
        auto rec = (*t)->record(r);
        ASSERT_TRUE(rec.isOk()) << rec.status().toString().toStdString();
        const QString tag = rec->at(0).toString();
        const qint64 n = rec->at(1).toLongLong();
        ASSERT_TRUE(tag == QLatin1String("AAA") || tag == QLatin1String("BBB")) << r;
        // Every field of a record comes from the same append: nothing torn.
        EXPECT_DOUBLE_EQ(rec->at(2).toDouble(), n * 0.25);
        EXPECT_EQ(rec->at(5).toString(), QStringLiteral("%1 memo %2").arg(tag).arg(n));
        seen.insert(tag + QString::number(n));
    }
    EXPECT_EQ(seen.size(), 2000);
    const QByteArray bytes = readBytes(path);
    EXPECT_EQ(bytes.at(bytes.size() - 1), '\x1A');
}

TEST(DbfProcesses, RecordLockedByAnotherProcessIsReportedLocked)
{
    QTemporaryDir dir;
    const QString path = makeSmallTable(dir.path(), 3);
    TestChild child(tableChild("lock", path, QStringLiteral("2")));
    ASSERT_EQ(child.readLine(), QStringLiteral("locked"));

    auto t = DbfTable::open(path);
    ASSERT_TRUE(t.isOk());
    EXPECT_EQ((*t)->lockRecord(2).code(), Status::Code::Locked);
    EXPECT_EQ((*t)->writeRecord(2, { QStringLiteral("X") }).code(), Status::Code::Locked);
    EXPECT_TRUE((*t)->lockRecord(1).isOk()); // a different record: both succeed
    EXPECT_TRUE((*t)->writeRecord(3, { QStringLiteral("Y") }).isOk());

    // Our lock on record 1 is seen by another process too.
    TestChild second(tableChild("lock", path, QStringLiteral("1")));
    EXPECT_EQ(second.readLine(), QStringLiteral("busy"));
    second.send(QString());
    ASSERT_TRUE(finishedOk(second));

    child.send(QString());
    ASSERT_TRUE(finishedOk(child));
    EXPECT_TRUE((*t)->lockRecord(2).isOk()); // released when the holder ended
}

TEST(DbfProcesses, ProcessKilledMidWriteLeavesAReadableTable)
{
    struct Case
    {
        const char *point;
        quint32 countAfter; // records our reader shows after the crash
        const char *firstName; // NAME of record 1 afterwards
    };
    const Case cases[] = {
        { "1", 3, "NAME1" }, // memo written, record not: table unchanged
        { "2", 3, "NAME1" }, // record written, count not: header still says 3
        { "3", 3, "NAME1" }, // writeRecord: new memo written, record not rewritten
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.point);
        QTemporaryDir dir;
        const QString path = makeSmallTable(dir.path(), 3);
        TestChild child(tableChild("crash", path, QString::fromLatin1(c.point)));
        EXPECT_EQ(child.exitCode(10000), 77) << child.errors().toStdString();

        auto t = DbfTable::open(path);
        ASSERT_TRUE(t.isOk()) << t.status().toString().toStdString();
        EXPECT_EQ((*t)->recordCount(), c.countAfter);
        EXPECT_EQ((*t)->value(1, 0)->toString(), QLatin1String(c.firstName));
        for (quint32 r = 1; r <= 3; ++r)
            EXPECT_EQ((*t)->value(r, 5)->toString(), QStringLiteral("memo of record %1").arg(r));
        expectReadersAgree(path);

        // The next append goes after anything the dead writer left, never over it.
        auto next = (*t)->appendRecord({ QStringLiteral("AFTER") });
        ASSERT_TRUE(next.isOk());
        EXPECT_EQ(*next, QByteArrayView(c.point) == QByteArrayView("2") ? 5u : 4u);
        EXPECT_EQ((*t)->value(*next, 0)->toString(), QStringLiteral("AFTER"));
        expectReadersAgree(path);
    }
}

// A writer killed before each of its writes in turn (as a tracer stopping it at every write
// system call would) leaves the table as it was before the operation or as it is after it:
// never a record with its old fields and its new memo, for our reader and for python-dbf.
TEST(DbfProcesses, WriterKilledAtEveryWriteLeavesEachRecordWholeOldOrNew)
{
    auto snapshot = [](const QString &path) {
        auto t = DbfTable::open(path, DbfTable::OpenMode::ReadOnly);
        EXPECT_TRUE(t.isOk()) << t.status().toString().toStdString();
        return t.isOk() ? dumpTable(**t) : QStringList();
    };
    // Runs `op` in a child on a fresh table, ended before its nth write (0: never).
    auto run = [](const QString &dir, const char *op, int n) {
        TestChild child(tableChild("killat", dir, QString::fromLatin1(op)) << QString::number(n));
        const int code = child.exitCode(20000);
        if (code != 0 && code != 77)
            ADD_FAILURE() << child.errors().toStdString();
        return code;
    };
    // The fewest writes each operation makes: an update writes the memo's blocks, the memo
    // header and the record; an add those and the table header; a delete the flag alone.
    const struct
    {
        const char *op;
        int writes;
    } ops[] = { { "update", 3 }, { "add", 4 }, { "delete", 1 } };
    for (const auto &[op, writes] : ops) {
        SCOPED_TRACE(op);
        QTemporaryDir whole;
        const QString wholePath = makeSmallTable(whole.path(), 3);
        const QStringList before = snapshot(wholePath);
        ASSERT_EQ(run(whole.path(), op, 0), 0);
        const QStringList after = snapshot(wholePath);
        ASSERT_NE(after, before);

        int kills = 0;
        for (int n = 1; n <= 64; ++n) {
            SCOPED_TRACE(n);
            QTemporaryDir dir;
            const QString path = makeSmallTable(dir.path(), 3);
            const int code = run(dir.path(), op, n);
            ASSERT_TRUE(code == 0 || code == 77);
            const QStringList now = snapshot(path);
            EXPECT_TRUE(now == before || now == after) << now.join(QLatin1Char('\n')).toStdString();
            if (pythonReady()) {
                bool ok = false;
                EXPECT_EQ(runInterop({ QStringLiteral("dump-dbf"), path }, &ok), now);
                EXPECT_TRUE(ok);
            }
            if (code == 0)
                break; // the operation finished before its nth write
            ++kills;
        }
        EXPECT_GE(kills, writes) << "every write of the operation is a kill point";
    }
}
