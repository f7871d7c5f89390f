// The directory checker's dialogue (exact titles, texts and flags, since hosts and users
// know them) and path creation level by level.
#include "services/paths.h"

#include "testing/fakeenv.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace plx;

namespace {

const QString missingLead = QStringLiteral("The specified path does not exist:\r\n");

} // namespace

TEST(PathsTest, ExistingDirectoryPassesWithoutABoxAndLosesOneTrailingBackslash)
{
    QTemporaryDir tmp;
    ASSERT_TRUE(tmp.isValid());
    test::TestServices env;
    QString path = QStringLiteral("  ") + fromDiskPath(tmp.path()) + QStringLiteral("\\ ");
    EXPECT_TRUE(getPathExist(path, false, false, env.services()));
    EXPECT_EQ(path, fromDiskPath(tmp.path()));
    QString native = tmp.path() + QStringLiteral("/");
    EXPECT_TRUE(getPathExist(native, false, true, env.services()));
}

TEST(PathsTest, MissingDirectoryIsReportedOrCreatedOnRequest)
{
    QTemporaryDir tmp;
    ASSERT_TRUE(tmp.isValid());
    const QString target = fromDiskPath(tmp.path()) + QStringLiteral("\\a\\b");
    test::TestServices env;
    env.prompter.expectMsgBox(QStringLiteral("Path Error"),
                              missingLead + target
                                  + QStringLiteral("\r\n\r\nYou must specify an existing "
                                                   "path for this function."),
                              MsgStyle::OKOnly | MsgStyle::Information, MsgAnswer::OK);
    QString p = target;
    EXPECT_FALSE(getPathExist(p, false, false, env.services()));

    const QString question =
        missingLead + target + QStringLiteral("\r\n\r\nDo you want to create the new path?");
    env.prompter.expectMsgBox(QStringLiteral("Path Not Found"), question, 4 + 64, MsgAnswer::No);
    EXPECT_FALSE(getPathExist(p, false, true, env.services()));
    EXPECT_FALSE(QFileInfo(toDiskPath(target)).exists());

    env.prompter.expectMsgBox(QStringLiteral("Path Not Found"), question, 4 + 64, MsgAnswer::Yes);
    EXPECT_TRUE(getPathExist(p, false, true, env.services()));
    EXPECT_TRUE(QFileInfo(toDiskPath(target)).isDir());
}

TEST(PathsTest, BlankPathTakesTheCurrentDirectoryAfterConfirmation)
{
    const QString current = QDir::toNativeSeparators(QDir::currentPath());
    const QString text = QStringLiteral("Since no path was specified, the program will use the "
                                        "path:\r\n\r\n")
        + current;
    test::TestServices env;
    env.prompter.expectMsgBox(QStringLiteral("Path Specification"), text, 321, MsgAnswer::Cancel);
    QString blank = QStringLiteral(" ");
    EXPECT_FALSE(getPathExist(blank, true, false, env.services()));
    env.prompter.expectMsgBox(QStringLiteral("Path Specification"), text, 321, MsgAnswer::OK);
    blank = QString();
    EXPECT_TRUE(getPathExist(blank, true, false, env.services()));
    EXPECT_EQ(blank, current);
    EXPECT_EQ(env.prompter.shown().size(), 2);
}

TEST(PathsTest, BlankPathWithoutCurrentDirectoryIsAMissingPath)
{
    test::TestServices env;
    env.prompter.expectMsgBox(QStringLiteral("Path Not Found"),
                              missingLead
                                  + QStringLiteral("\r\n\r\nDo you want to create the new path?"),
                              4 + 64, MsgAnswer::Yes);
    QString blank = QStringLiteral("  ");
    EXPECT_FALSE(getPathExist(blank, false, true, env.services()));
    EXPECT_EQ(blank, QString());
    env.prompter.expectMsgBox(QStringLiteral("Path Error"),
                              missingLead
                                  + QStringLiteral("\r\n\r\nYou must specify an existing "
                                                   "path for this function."),
                              MsgStyle::OKOnly | MsgStyle::Information, MsgAnswer::OK);
    EXPECT_FALSE(getPathExist(blank, false, false, env.services()));
}

TEST(PathsTest, MakePathCreatesEveryLevelWithEitherSeparator)
{
    QTemporaryDir tmp;
    ASSERT_TRUE(tmp.isValid());
    makePath(fromDiskPath(tmp.path()) + QStringLiteral("\\a\\b\\c"));
    EXPECT_TRUE(QFileInfo(tmp.filePath(QStringLiteral("a/b/c"))).isDir());
    makePath(tmp.path() + QStringLiteral("/x/y"));
    EXPECT_TRUE(QFileInfo(tmp.filePath(QStringLiteral("x/y"))).isDir());
    makePath(fromDiskPath(tmp.path()) + QStringLiteral("\\a\\b\\c")); // existing: harmless
    makePath(QStringLiteral("   "));
}

TEST(PathsTest, ShortNameFallsBackToTheLongName)
{
    const QString missing = QStringLiteral("C:\\No Such Folder\\long file name.txt");
    EXPECT_EQ(getShortName(missing), missing);
}
