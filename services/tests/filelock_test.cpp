// The project's file locks through real files: two opens of one file in this process stand
// for two programs (open-file-description locks make no difference between them), so the
// settings writers, the tables' record locks and the ID key files all rest on what is
// checked here. The cross-process cases are in iniconcurrency_test and inilockwait_test.
#include "services/internal/filelock.h"

#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QThread>

#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <future>

using namespace plx;
using namespace plx::filelock;
using namespace std::chrono_literals;

namespace {

using State = Outcome::State;

// FoxPro locks records at 0x7FFFFFFE downwards and SQLite record locks lie above 2^40,
// both far beyond the end of the (empty) lock file.
constexpr quint64 kFoxProOffset = 0x7FFFFFFE;
constexpr quint64 kHighOffset = quint64(1) << 61;

class FileLockTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(dir.isValid());
        ASSERT_TRUE(first.isOpen());
        ASSERT_TRUE(second.isOpen());
    }

    QString lockPath() const { return dir.filePath(QStringLiteral("table.lock")); }

    QTemporaryDir dir;
    SidecarFile first{ lockPath() };
    SidecarFile second{ lockPath() };
};

} // namespace

TEST_F(FileLockTest, RangesOfOneFileExcludeEveryOtherOpenOfIt)
{
    for (const quint64 offset : { quint64(0), kFoxProOffset, kHighOffset }) {
        SCOPED_TRACE(offset);
        ASSERT_TRUE(tryLock(first.handle(), offset, 1, LockKind::Exclusive).isOk());
        const Outcome taken = tryLock(second.handle(), offset, 1, LockKind::Shared);
        EXPECT_EQ(taken.state, State::Busy);
        EXPECT_TRUE(taken.systemCode == EAGAIN || taken.systemCode == EACCES) << taken.systemCode;
        // The neighbouring bytes are free; the same open may lock its own range again.
        EXPECT_TRUE(tryLock(second.handle(), offset + 1, 1, LockKind::Exclusive).isOk());
        EXPECT_TRUE(tryLock(first.handle(), offset, 1, LockKind::Exclusive).isOk());
        ASSERT_TRUE(unlock(first.handle(), offset, 1).isOk());
        EXPECT_TRUE(tryLock(second.handle(), offset, 1, LockKind::Exclusive).isOk());
        ASSERT_TRUE(unlock(second.handle(), offset, 2).isOk());
    }
    // Readers share; a writer waits for all of them.
    ASSERT_TRUE(tryLock(first.handle(), 0, 1, LockKind::Shared).isOk());
    EXPECT_TRUE(tryLock(second.handle(), 0, 1, LockKind::Shared).isOk());
    EXPECT_EQ(tryLock(second.handle(), 0, 2, LockKind::Exclusive).state, State::Busy);
    // Unlocking what is not held is harmless.
    EXPECT_TRUE(unlock(first.handle(), 5, 1).isOk());
}

TEST_F(FileLockTest, ClosingTheFileReleasesItsLocks)
{
    auto holder = std::make_unique<SidecarFile>(lockPath());
    ASSERT_TRUE(tryLock(holder->handle(), 0, 1, LockKind::Exclusive).isOk());
    EXPECT_EQ(tryLock(first.handle(), 0, 1, LockKind::Exclusive).state, State::Busy);
    holder.reset();
    EXPECT_TRUE(tryLock(first.handle(), 0, 1, LockKind::Exclusive).isOk());
}

TEST_F(FileLockTest, AWaitTakesALockReleasedMeanwhileAndOtherwiseEndsOnTime)
{
    ASSERT_TRUE(tryLock(first.handle(), 0, 1, LockKind::Exclusive).isOk());
    QElapsedTimer timer;
    timer.start();
    EXPECT_EQ(lock(second.handle(), 0, 1, LockKind::Exclusive, 0ms).state, State::Busy);
    EXPECT_LT(timer.elapsed(), 50) << "a zero wait is one try";
    timer.restart();
    EXPECT_EQ(lock(second.handle(), 0, 1, LockKind::Exclusive, 200ms).state, State::Busy);
    EXPECT_GE(timer.elapsed(), 200);
    EXPECT_LT(timer.elapsed(), 1000);

    std::future<void> release = std::async(std::launch::async, [this] {
        QThread::msleep(100);
        (void)unlock(first.handle(), 0, 1);
    });
    timer.restart();
    EXPECT_TRUE(lock(second.handle(), 0, 1, LockKind::Exclusive, 5000ms).isOk());
    EXPECT_LT(timer.elapsed(), 1000);
    release.get();
}

TEST_F(FileLockTest, FailuresSayWhatFailedAndWhy)
{
    const SidecarFile missing(dir.filePath(QStringLiteral("no folder/x.lock")));
    EXPECT_FALSE(missing.isOpen());
    EXPECT_EQ(missing.openOutcome().state, State::Failed);
    EXPECT_EQ(missing.openOutcome().error, QStringLiteral("cannot open the lock file"));
    EXPECT_EQ(missing.openOutcome().systemCode, ENOENT);
    EXPECT_EQ(missing.openOutcome().systemText, QString::fromLocal8Bit(std::strerror(ENOENT)));

    const Outcome set = tryLock(-1, 0, 1, LockKind::Exclusive);
    EXPECT_EQ(set.state, State::Failed);
    EXPECT_EQ(set.error, QStringLiteral("cannot set a file lock"));
    EXPECT_EQ(set.systemCode, EBADF);
    // A refusal is not waited out.
    QElapsedTimer timer;
    timer.start();
    EXPECT_EQ(lock(-1, 0, 1, LockKind::Exclusive, 5000ms).state, State::Failed);
    EXPECT_LT(timer.elapsed(), 1000);
    EXPECT_EQ(unlock(-1, 0, 1).error, QStringLiteral("cannot release a file lock"));
}
