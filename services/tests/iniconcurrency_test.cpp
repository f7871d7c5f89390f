// Two processes changing one settings file at the same moment (writing different keys, or
// writing keys while deleting sections), and two processes logging at once: without one
// lock for every change and the re-read under it, one process's changes vanish; without
// one append per entry, log entries interleave.
#include "services/ini.h"

#include "tests/support/testchild.h"
#include "tests/support/testfiles.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <memory>
#include <vector>

using namespace plx;
using plx::test::TestChild;

namespace {

constexpr int keysPerWriter = 60;
constexpr int entriesPerLogger = 200;
constexpr int deletedSections = 60;

// The settings role of the test child, installed in `installDir`.
std::unique_ptr<TestChild> startChild(const QStringList &args, const QString &installDir)
{
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("PLX_HARROWBY_DIR"), installDir);
    return std::make_unique<TestChild>(QStringList{ QStringLiteral("settings") } + args, env);
}

void finish(const std::unique_ptr<TestChild> &child)
{
    EXPECT_EQ(child->exitCode(30000), 0) << child->errors().toStdString();
}

} // namespace

// Two processes change one settings file at once: two writers of different keys in one
// section (named in different case), and a writer beside the filter editor deleting other
// sections (filters). Every key written must be there, no deleted section written back, and
// what neither touched kept.
TEST(IniConcurrencyTest, TwoProcessesChangingOneFileLoseNothing)
{
    QByteArray goneSections;
    for (int i = 1; i <= deletedSections; ++i)
        goneSections += "[Gone" + QByteArray::number(i) + "]\r\nWhere=ID = " + QByteArray::number(i)
            + "\r\n\r\n";
    const QString keys = QString::number(keysPerWriter);
    const auto ini = [&keys](const char *section, const char *prefix) {
        return QStringList{ QStringLiteral("ini"), QString(), QString::fromLatin1(section),
                            QString::fromLatin1(prefix), keys };
    };
    const struct
    {
        const char *file;
        QByteArray seed;
        QList<QStringList> children; // the second argument becomes the file
        QByteArray keptStart;
        QStringList sections;
    } cases[] = {
        { "shared.ini",
          "; kept\r\n[Shared]\r\nStart=1\r\n",
          { ini("Shared", "A"), ini("shared", "B") },
          "; kept\r\n[Shared]\r\nStart=1\r\n",
          { QString(), QStringLiteral("Shared") } },
        { "HBFiltersPLX.INI",
          goneSections + "[Kept]\r\nStart=1\r\n",
          { ini("Kept", "K"),
            { QStringLiteral("deletesections"), QString(), QStringLiteral("Gone"),
              QString::number(deletedSections) } },
          "",
          { QString(), QStringLiteral("Kept") } },
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.file);
        QTemporaryDir dir;
        ASSERT_TRUE(dir.isValid());
        const QString file = dir.filePath(QString::fromLatin1(c.file));
        test::writeBytes(file, c.seed);
        std::vector<std::unique_ptr<TestChild>> children;
        for (QStringList args : c.children) {
            args[1] = file;
            children.push_back(startChild(args, dir.path()));
        }
        for (const auto &child : children)
            finish(child);

        QStringList lost;
        for (const QStringList &args : c.children) {
            for (int i = 1; args.first() == QLatin1String("ini") && i <= keysPerWriter; ++i) {
                const QString key = args.at(3) + QString::number(i);
                QString v;
                readINI(args.at(2), key, file, v, QStringLiteral("<lost>"));
                if (v != QStringLiteral("v") + QString::number(i))
                    lost << key;
            }
        }
        EXPECT_EQ(lost.join(QLatin1Char(' ')).toStdString(), "");
        EXPECT_TRUE(test::readBytes(file).startsWith(c.keptStart));
        EXPECT_EQ(getINISections(file), c.sections);
    }
}

TEST(ActivityLogConcurrencyTest, TwoProcessesLoggingAtOnceWriteWholeEntries)
{
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    auto a = startChild(
        { QStringLiteral("log"), QString::number(entriesPerLogger), QStringLiteral("alpha") },
        dir.path());
    auto b = startChild(
        { QStringLiteral("log"), QString::number(entriesPerLogger), QStringLiteral("beta") },
        dir.path());
    finish(a);
    finish(b);

    QFile log(dir.filePath(QStringLiteral("PLXLogFile.TXT")));
    ASSERT_TRUE(log.open(QIODevice::ReadOnly));
    const QList<QByteArray> lines = log.readAll().split('\n');
    // Six lines per entry (the message holds a line break), plus the empty piece after the
    // final CR LF.
    ASSERT_EQ(lines.size(), 2 * entriesPerLogger * 6 + 1);
    int nextOf[2] = { 1, 1 };
    for (qsizetype at = 0; at + 6 < lines.size(); at += 6) {
        ASSERT_EQ(lines.at(at), QByteArray(20, '=') + '\r') << "entry at line " << at;
        EXPECT_TRUE(lines.at(at + 1).endsWith(" testchild\r"));
        const QByteArray what = lines.at(at + 2);
        const int who = what.startsWith("alpha ") ? 0 : what.startsWith("beta ") ? 1 : -1;
        ASSERT_GE(who, 0) << what.toStdString();
        const QByteArray tag = who == 0 ? "alpha" : "beta";
        // Each process's entries arrive whole and in its own call order.
        EXPECT_EQ(what, tag + " entry " + QByteArray::number(nextOf[who]++) + '\r');
        EXPECT_EQ(lines.at(at + 3), "second line of " + tag + '\r');
        EXPECT_EQ(lines.at(at + 4), QByteArray("PLX plx_testchild\r"));
        EXPECT_EQ(lines.at(at + 5), QByteArray("REV 34\r"));
    }
    EXPECT_EQ(nextOf[0], entriesPerLogger + 1);
    EXPECT_EQ(nextOf[1], entriesPerLogger + 1);
}
