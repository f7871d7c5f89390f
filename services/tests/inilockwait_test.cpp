// A settings file whose writers' lock another process keeps: readers never wait, writers
// wait the bounded time, then write without the lock and say so in the activity log. Before
// the bound, plxform hung for ever on the first setting it saved. The test takes about four
// seconds: two waits of the bound.
#include "services/ini.h"

#include "tests/support/envguard.h"
#include "tests/support/testchild.h"
#include "tests/support/testfiles.h"

#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <chrono>
#include <future>

using namespace plx;
using namespace plx::test;
using namespace std::chrono_literals;

namespace {

// A second process holding the lock on `settingsFile` until release() or destruction.
class LockHolder
{
public:
    explicit LockHolder(const QString &settingsFile)
        : m_child({ QStringLiteral("settingslock"), settingsFile }),
          m_locked(m_child.readLine(10000) == QLatin1String("locked"))
    {
    }

    bool locked() const { return m_locked; }
    // The holder lets go when its input ends; one that does not is killed.
    void release()
    {
        m_child.closeInput();
        if (m_child.exitCode(10000) != 0)
            m_child.kill();
    }

private:
    test::TestChild m_child;
    bool m_locked = false;
};

class IniLockWaitTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(dir.isValid());
        env.installAt(dir.path());
        QFile seed(settings());
        ASSERT_TRUE(seed.open(QIODevice::WriteOnly));
        seed.write("[CONFIG]\r\nKept=1\r\n");
    }

    QString settings() const { return dir.filePath(QStringLiteral("PLXFORM.INI")); }
    QByteArray log() const { return readBytes(dir.filePath(QStringLiteral("PLXLogFile.TXT"))); }

    // writeINI, timed, on a thread of its own so that a writer that never returns fails
    // the test instead of hanging it: `holder` is then released and the writer finishes.
    bool timedWrite(const QString &value, LockHolder &holder, qint64 *elapsedMs)
    {
        QElapsedTimer timer;
        timer.start();
        std::future<bool> write = std::async(std::launch::async, [this, value] {
            return writeINI(QStringLiteral("CONFIG"), QStringLiteral("Saved"), settings(), value);
        });
        if (write.wait_for(kSettingsLockWait + 5s) != std::future_status::ready) {
            ADD_FAILURE() << "writeINI still waiting for the lock after "
                          << (kSettingsLockWait + 5s).count() << " ms";
            holder.release();
        }
        const bool written = write.get();
        *elapsedMs = timer.elapsed();
        return written;
    }

    EnvGuard env;
    QTemporaryDir dir;
};

} // namespace

TEST_F(IniLockWaitTest, AWriterWaitsTheBoundThenWritesWithoutTheLockAndLogsIt)
{
    LockHolder holder(settings());
    ASSERT_TRUE(holder.locked());

    // Readers take no lock: the value is there at once.
    QElapsedTimer timer;
    timer.start();
    QString kept;
    readINI(QStringLiteral("CONFIG"), QStringLiteral("Kept"), settings(), kept, QString());
    EXPECT_EQ(kept, QStringLiteral("1"));
    EXPECT_LT(timer.elapsed(), 1000);

    qint64 elapsed = 0;
    EXPECT_TRUE(timedWrite(QStringLiteral("after the wait"), holder, &elapsed));
    const qint64 bound = kSettingsLockWait.count();
    EXPECT_GE(elapsed, bound - 50) << "the lock was not waited for";
    EXPECT_LT(elapsed, bound + 3000);
    EXPECT_EQ(readBytes(settings()), "[CONFIG]\r\nKept=1\r\nSaved=after the wait\r\n");
    const QByteArray entries = log();
    EXPECT_EQ(entries.count("====================\r\n"), 1);
    EXPECT_TRUE(entries.contains(" writeINI\r\n" + QFile::encodeName(settings())
                                 + " stayed locked by another program for 2000 ms; written "
                                   "without the lock\r\n"))
        << entries.toStdString();

    // While the other program keeps it, further writes neither wait nor log again: saving
    // several settings costs one wait.
    EXPECT_TRUE(timedWrite(QStringLiteral("second"), holder, &elapsed));
    EXPECT_LT(elapsed, bound / 2);
    EXPECT_EQ(log(), entries);

    // Once the other program lets go, writers take the lock again and log nothing...
    holder.release();
    EXPECT_TRUE(timedWrite(QStringLiteral("locked again"), holder, &elapsed));
    EXPECT_LT(elapsed, bound / 2);
    EXPECT_EQ(log(), entries);
    QString saved;
    readINI(QStringLiteral("CONFIG"), QStringLiteral("Saved"), settings(), saved, QString());
    EXPECT_EQ(saved, QStringLiteral("locked again"));

    // ... and the next program to keep it is waited for again.
    LockHolder another(settings());
    ASSERT_TRUE(another.locked());
    EXPECT_TRUE(timedWrite(QStringLiteral("third"), another, &elapsed));
    EXPECT_GE(elapsed, bound - 50);
    EXPECT_EQ(log().count("====================\r\n"), 2);
}
