// The activity log entry, byte for byte: support staff read these files with tools that
// expect exactly five CR LF lines per entry in Windows-1252.
#include "services/activitylog.h"

#include "tests/support/envguard.h"
#include "testing/fakeenv.h"
#include "tests/support/testfiles.h"

#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace plx;

namespace {

QByteArray logBytes(const QTemporaryDir &dir)
{
    return test::readBytes(dir.filePath(QStringLiteral("PLXLogFile.TXT")));
}

} // namespace

TEST(ActivityLogTest, EntriesAreFiveCrLfLinesAppendedInCallOrder)
{
    test::EnvGuard guard;
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    guard.installAt(dir.path());
    const QString oldVersion = QCoreApplication::applicationVersion();
    QCoreApplication::setApplicationVersion(QStringLiteral("3.1.17"));
    test::TestServices env;

    ASSERT_TRUE(logEntry(QStringLiteral("mvPLXRecs.cboFind"),
                         QString::fromUtf8("cboFind_Click with no text \xe2\x82\xac"),
                         env.services()));
    ASSERT_TRUE(logEntry(QStringLiteral("second"), QString(), env.services()));
    QCoreApplication::setApplicationVersion(oldVersion);

    const QByteArray tail = "PLX " + componentName().toLocal8Bit() + "\r\nREV 17\r\n";
    EXPECT_EQ(logBytes(dir),
              "====================\r\n20240105 093007 mvPLXRecs.cboFind\r\n"
              "cboFind_Click with no text \x80\r\n"
                  + tail + "====================\r\n20240105 093007 second\r\n\r\n" + tail);
    EXPECT_EQ(componentName(), QStringLiteral("services_tests"));
    EXPECT_EQ(env.pump.count(), 2);
}

TEST(ActivityLogTest, RevisionIsZeroWithoutAThirdVersionPart)
{
    const QString oldVersion = QCoreApplication::applicationVersion();
    QCoreApplication::setApplicationVersion(QStringLiteral("2.5"));
    EXPECT_EQ(componentRevision(), 0);
    QCoreApplication::setApplicationVersion(oldVersion);
    const QDateTime t(QDate(2026, 12, 31), QTime(23, 5, 9));
    EXPECT_TRUE(formatLogEntry(QStringLiteral("w"), QStringLiteral("a\r\nb"), t)
                    .startsWith(QStringLiteral("====================\r\n20261231 230509 w\r\n"
                                               "a\r\nb\r\nPLX ")));
}

TEST(ActivityLogTest, UnwritableLogIsReportedToTheCaller)
{
    test::EnvGuard guard;
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    guard.installAt(dir.filePath(QStringLiteral("missing-dir")));
    test::TestServices env;
    QString error;
    EXPECT_FALSE(logEntry(QStringLiteral("w"), QStringLiteral("x"), env.services(), &error));
    EXPECT_FALSE(error.isEmpty());
    EXPECT_EQ(env.pump.count(), 0); // a failed entry goes straight back to the caller
}
