// services/recordsource/tests/recordsource_process_test.cpp: record locks between two
// processes. The second process is the test child's recordlock role, opening the same files
// with the same back end; a lock must hold against it, end with Update, and die with it.
#include "services/recordsource/tests/contractfixture.h"
#include "tests/support/testchild.h"

#include <QThread>

namespace plx::testing {
namespace {

using Code = Status::Code;
using test::TestChild;

QStringList lockChild(const QString &backEnd, const QString &dir, const QString &id,
                      const char *mode)
{
    return { QStringLiteral("recordlock"), backEnd, dir, id, QString::fromLatin1(mode) };
}

QString tryEditInChild(const QString &backEnd, const QString &dir, const QString &id)
{
    TestChild child(lockChild(backEnd, dir, id, "try"));
    QString answer = child.readLine();
    child.exitCode();
    return answer;
}

TEST_P(RecordSourceContractTest, EditLockHoldsAgainstAnotherProcessUntilUpdate)
{
    auto rs = open(QStringLiteral("T"));
    ASSERT_TRUE(rs);
    goToId(*rs, OddId);
    ASSERT_TRUE(rs->Edit().isOk());
    EXPECT_EQ(tryEditInChild(GetParam()->name(), m_dir.path(), OddId), codeName(Code::Locked));
    EXPECT_EQ(tryEditInChild(GetParam()->name(), m_dir.path(), QStringLiteral("PLE0000002")),
              QStringLiteral("OK"));
    ASSERT_TRUE(rs->setValue(QStringLiteral("CITY"), QStringLiteral("Troy")).isOk());
    ASSERT_TRUE(rs->Update().isOk());
    EXPECT_EQ(tryEditInChild(GetParam()->name(), m_dir.path(), OddId), QStringLiteral("OK"));
}

TEST_P(RecordSourceContractTest, AnotherProcessesLockBlocksEditUntilItsUpdateOrDeath)
{
    auto rs = open(QStringLiteral("T"));
    ASSERT_TRUE(rs);
    goToId(*rs, QStringLiteral("PLE0000005"));

    // Given a child that holds the lock and then saves.
    TestChild saver(
        lockChild(GetParam()->name(), m_dir.path(), QStringLiteral("PLE0000005"), "hold"));
    ASSERT_EQ(saver.readLine(), QStringLiteral("HELD"));
    EXPECT_EQ(rs->Edit().code(), Code::Locked);
    saver.send(QStringLiteral("update Utica"));
    ASSERT_EQ(saver.readLine(), QStringLiteral("UPDATED"));
    ASSERT_TRUE(rs->Edit().isOk());
    EXPECT_EQ(textOf(*rs, QStringLiteral("CITY")), QStringLiteral("Utica"));
    ASSERT_TRUE(rs->CancelUpdate().isOk());
    saver.send(QStringLiteral("quit"));
    saver.exitCode();

    // Given a child that holds the lock and is killed: its lock dies with it.
    TestChild victim(
        lockChild(GetParam()->name(), m_dir.path(), QStringLiteral("PLE0000005"), "hold"));
    ASSERT_EQ(victim.readLine(), QStringLiteral("HELD"));
    EXPECT_EQ(rs->Edit().code(), Code::Locked);
    victim.kill();
    // A file lock goes with the process; a server ends the dead client's session (and its
    // locks) as soon as it reads the closed socket, a moment later on a loaded machine.
    Status edit = rs->Edit();
    for (int tries = 0; tries < 100 && edit.code() == Code::Locked; ++tries) {
        QThread::msleep(20);
        edit = rs->Edit();
    }
    EXPECT_TRUE(edit.isOk()) << edit.toString().toStdString();
}

} // namespace
} // namespace plx::testing
