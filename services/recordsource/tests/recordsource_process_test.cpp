// services/recordsource/tests/recordsource_process_test.cpp: record locks between two
// processes. The second process is recordsource_lockchild, opening the same files with
// the same back end; a lock must hold against it, end with Update, and die with it.
#include "services/recordsource/tests/contractfixture.h"

#include <QProcess>

namespace plx::testing {
namespace {

using Code = Status::Code;

constexpr int ChildTimeoutMs = 10000;

class Child
{
public:
    Child(const QString &backEnd, const QString &dir, const QString &id, const char *mode)
    {
        m_process.start(QStringLiteral(PLX_LOCK_CHILD),
                        { backEnd, dir, id, QString::fromLatin1(mode) });
    }
    ~Child()
    {
        if (m_process.state() != QProcess::NotRunning) {
            m_process.kill();
            m_process.waitForFinished(ChildTimeoutMs);
        }
    }
    QString readLine()
    {
        while (!m_process.canReadLine()) {
            if (!m_process.waitForReadyRead(ChildTimeoutMs))
                return QStringLiteral("<no answer: %1>")
                    .arg(QString::fromLocal8Bit(m_process.readAllStandardError()));
        }
        return QString::fromUtf8(m_process.readLine()).trimmed();
    }
    void send(const QString &line) { m_process.write((line + QLatin1Char('\n')).toUtf8()); }
    void killHard()
    {
        m_process.kill(); // SIGKILL: the child gets no chance to release anything
        m_process.waitForFinished(ChildTimeoutMs);
    }
    bool finish() { return m_process.waitForFinished(ChildTimeoutMs); }

private:
    QProcess m_process;
};

QString tryEditInChild(const QString &backEnd, const QString &dir, const QString &id)
{
    Child child(backEnd, dir, id, "try");
    const QString answer = child.readLine();
    child.finish();
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
    Child saver(GetParam()->name(), m_dir.path(), QStringLiteral("PLE0000005"), "hold");
    ASSERT_EQ(saver.readLine(), QStringLiteral("HELD"));
    EXPECT_EQ(rs->Edit().code(), Code::Locked);
    saver.send(QStringLiteral("update Utica"));
    ASSERT_EQ(saver.readLine(), QStringLiteral("UPDATED"));
    ASSERT_TRUE(rs->Edit().isOk());
    EXPECT_EQ(textOf(*rs, QStringLiteral("CITY")), QStringLiteral("Utica"));
    ASSERT_TRUE(rs->CancelUpdate().isOk());
    saver.send(QStringLiteral("quit"));
    saver.finish();

    // Given a child that holds the lock and is killed: its lock dies with it.
    Child victim(GetParam()->name(), m_dir.path(), QStringLiteral("PLE0000005"), "hold");
    ASSERT_EQ(victim.readLine(), QStringLiteral("HELD"));
    EXPECT_EQ(rs->Edit().code(), Code::Locked);
    victim.killHard();
    EXPECT_TRUE(rs->Edit().isOk());
}

} // namespace
} // namespace plx::testing
