// Finding the installation directory: the override, the executable search, the
// "HBRegistry.INI" fallback, and the support report when everything fails. A wrong answer
// here sends every settings file and the log to the wrong place.
#include "services/installdir.h"

#include "tests/support/envguard.h"
#include "tests/support/testfiles.h"
#include "services/ini.h"
#include "services/paths.h"
#include "services/texthelpers.h"
#include "testing/fakeenv.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace plx {

namespace {

class InstallDirTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(tmp.isValid());
        qunsetenv("PLX_HARROWBY_DIR");
        QDir(tmp.path()).mkpath(QStringLiteral("component"));
        QDir(tmp.path()).mkpath(QStringLiteral("emptybin"));
        setComponentDir(tmp.filePath(QStringLiteral("component")));
        qputenv("PATH", tmp.filePath(QStringLiteral("emptybin")).toLocal8Bit());
        setFamilyExecutables(
            { QStringLiteral("plx-missing-one"), QStringLiteral("plx-missing-two") });
    }
    QString componentFile(const char *name) const
    {
        return tmp.filePath(QStringLiteral("component/") + QString::fromLatin1(name));
    }
    QByteArray supportReport() const { return test::readBytes(componentFile("HBTecSup.Txt")); }

    test::EnvGuard guard;
    QTemporaryDir tmp;
};

} // namespace

TEST_F(InstallDirTest, OverrideVariableGivesTheDirectoryWithTrailingSeparator)
{
    guard.installAt(tmp.path() + QStringLiteral("//"));
    const QString dir = getHarrowbyDirectoryAny();
    EXPECT_EQ(dir, fromDiskPath(tmp.path()) + QLatin1Char('\\'));
    // Joined names reach the real files.
    EXPECT_EQ(
        QDir::cleanPath(toDiskPath(setPathName(dir, QStringLiteral("HBDEFAULTS.INI"), false))),
        QDir::cleanPath(tmp.filePath(QStringLiteral("HBDEFAULTS.INI"))));
    EXPECT_TRUE(supportReport().isEmpty());
}

#ifndef Q_OS_WIN
TEST_F(InstallDirTest, FirstFamilyExecutableOnPathGivesItsDirectory)
{
    const QString bin = tmp.filePath(QStringLiteral("bin"));
    QDir().mkpath(bin);
    const QString exe = bin + QStringLiteral("/hbsecond");
    ASSERT_NO_FATAL_FAILURE(test::writeBytes(exe, "#!/bin/sh\n"));
    QFile::setPermissions(exe, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    qputenv("PATH", bin.toLocal8Bit());
    setFamilyExecutables({ QStringLiteral("hbfirst"), QStringLiteral("hbsecond") });
    EXPECT_EQ(getHarrowbyDirectoryAny(), fromDiskPath(bin) + QLatin1Char('\\'));
    EXPECT_TRUE(supportReport().isEmpty());
}
#endif

TEST_F(InstallDirTest, RegistryIniBesideTheComponentIsTheFallback)
{
    ASSERT_NO_FATAL_FAILURE(test::writeBytes(componentFile("HBRegistry.INI"),
                                             "[config]\r\nharrowbydirectory = D:\\X\r\n"));
    EXPECT_EQ(getHarrowbyDirectoryAny(), QStringLiteral("D:\\X"));
    EXPECT_TRUE(supportReport().isEmpty());
    // Doubled separators at the end are cleaned up to one.
    ASSERT_TRUE(writeINI(QStringLiteral("CONFIG"), QStringLiteral("HarrowbyDirectory"),
                         componentFile("HBRegistry.INI"), QStringLiteral("D:\\X\\\\\\")));
    EXPECT_EQ(getHarrowbyDirectoryAny(), QStringLiteral("D:\\X\\"));
}

TEST_F(InstallDirTest, BothStagesFailingAppendTheSupportReportTwice)
{
    EXPECT_EQ(getHarrowbyDirectoryAny(), QString());
    const QByteArray body = "No Registry Entry found; try INI file\r\n"
                            "Unable to get Harrowby Directory from Windows Registry\r\n"
                            "0 \r\n"
#ifdef Q_OS_WIN
                            "Registry Key: SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\App "
                            "Paths\\plx-missing-two\r\n";
#else
                            "Registry Key: plx-missing-two\r\n";
#endif
    const QByteArray once = "Error in getHarrowbyDirectoryAny\r\n" + body
        + "Empty return in getHarrowbyDirectoryAny\r\n" + body;
    EXPECT_EQ(supportReport(), once);
    // Appended, never overwritten.
    getHarrowbyDirectoryAny();
    EXPECT_EQ(supportReport(), once + once);
}

TEST_F(InstallDirTest, FamilyListComesFromTheSetterThenTheEnvironment)
{
    setFamilyExecutables({});
    qputenv("PLX_FAMILY_EXECUTABLES", "a;b;;c");
    EXPECT_EQ(familyExecutables(),
              (QStringList{ QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c") }));
    setFamilyExecutables({ QStringLiteral("x") });
    EXPECT_EQ(familyExecutables(), QStringList{ QStringLiteral("x") });
    qunsetenv("PLX_FAMILY_EXECUTABLES");
    setFamilyExecutables({});
    EXPECT_EQ(familyExecutables().size(), 6);
}

TEST_F(InstallDirTest, BlankSettingsFileMeansTheDefaultsFileOfTheInstallation)
{
    guard.installAt(tmp.path());
    ASSERT_NO_FATAL_FAILURE(test::writeBytes(tmp.filePath(QStringLiteral("HBDEFAULTS.INI")),
                                             "[CONFIG]\r\nColor=blue\r\nFlag=TRUE\r\n"));
    QString file = QStringLiteral("  ");
    EXPECT_EQ(getINIString(QStringLiteral("CONFIG"), QStringLiteral("Color"), QString(), file),
              QStringLiteral("blue"));
    EXPECT_EQ(file, getDefaultsINI());
    EXPECT_EQ(getFileName(file), QStringLiteral("HBDEFAULTS.INI"));
    EXPECT_TRUE(getINIBool(QStringLiteral("CONFIG"), QStringLiteral("Flag"), false, QString()));
    // The path is held for the process: moving the installation does not move it.
    const QString held = getDefaultsINI();
    qputenv("PLX_HARROWBY_DIR", tmp.filePath(QStringLiteral("elsewhere")).toLocal8Bit());
    EXPECT_EQ(getDefaultsINI(), held);
    resetDefaultsINI();
    EXPECT_NE(getDefaultsINI(), held);
}

TEST_F(InstallDirTest, WorkDirIsCreatedOnYesAndReportedOnNo)
{
    guard.installAt(tmp.path());
    const QString expected = fromDiskPath(tmp.path()) + QStringLiteral("\\WORK-PLX");
    for (MsgAnswer answer : { MsgAnswer::No, MsgAnswer::Yes }) {
        test::TestServices env;
        env.prompter.expectMsgBox(
            QStringLiteral("Path Not Found"),
            QStringLiteral("The specified path does not exist:\r\n") + expected
                + QStringLiteral("\r\n\r\nDo you want to create the new path?"),
            68, answer);
        if (answer == MsgAnswer::No)
            env.prompter.expectMsgBox(QStringLiteral("Path Error"),
                                      QStringLiteral("Error on path\r\n") + expected, 64,
                                      MsgAnswer::OK);
        EXPECT_EQ(getWorkDir(env.services()), expected);
        EXPECT_EQ(QFileInfo(tmp.filePath(QStringLiteral("WORK-PLX"))).isDir(),
                  answer == MsgAnswer::Yes);
    }
    test::TestServices quiet; // exists now: no box at all
    EXPECT_EQ(getWorkDir(quiet.services()), expected);
}

} // namespace plx
