// Two processes changing one settings file at the same moment (writing different keys, or
// writing keys while deleting sections), and two processes logging at once: without one
// lock for every change and the re-read under it, one process's changes vanish; without
// one append per entry, log entries interleave.
#include "services/ini.h"

#include "tests/support/testchild.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <memory>

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

TEST(IniConcurrencyTest, TwoProcessesWritingDifferentKeysLoseNeither)
{
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    const QString file = dir.filePath(QStringLiteral("shared.ini"));
    QFile seed(file);
    ASSERT_TRUE(seed.open(QIODevice::WriteOnly));
    seed.write("; kept\r\n[Shared]\r\nStart=1\r\n");
    seed.close();

    auto a = startChild({ QStringLiteral("ini"), file, QStringLiteral("Shared"),
                          QStringLiteral("A"), QString::number(keysPerWriter) },
                        dir.path());
    auto b = startChild({ QStringLiteral("ini"), file, QStringLiteral("shared"),
                          QStringLiteral("B"), QString::number(keysPerWriter) },
                        dir.path());
    finish(a);
    finish(b);

    for (int i = 1; i <= keysPerWriter; ++i) {
        const QString n = QString::number(i);
        for (const QString &prefix : { QStringLiteral("A"), QStringLiteral("B") }) {
            QString v;
            readINI(QStringLiteral("Shared"), prefix + n, file, v, QStringLiteral("<lost>"));
            EXPECT_EQ(v, QStringLiteral("v") + n) << (prefix + n).toStdString();
        }
    }
    QFile result(file);
    ASSERT_TRUE(result.open(QIODevice::ReadOnly));
    EXPECT_TRUE(result.readAll().startsWith("; kept\r\n[Shared]\r\nStart=1\r\n"));
    EXPECT_EQ(getINISections(file), (QStringList{ QString(), QStringLiteral("Shared") }));
}

// The filter editor deletes a filter (a section) while another program saves a setting in
// the same file: the delete must neither drop the setting nor have its section written back.
TEST(IniConcurrencyTest, DeletingSectionsWhileAnotherProcessWritesLosesNothing)
{
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    const QString file = dir.filePath(QStringLiteral("HBFiltersPLX.INI"));
    QFile seed(file);
    ASSERT_TRUE(seed.open(QIODevice::WriteOnly));
    for (int i = 1; i <= deletedSections; ++i)
        seed.write("[Gone" + QByteArray::number(i) + "]\r\nWhere=ID = " + QByteArray::number(i)
                   + "\r\n\r\n");
    seed.write("[Kept]\r\nStart=1\r\n");
    seed.close();

    auto writer = startChild({ QStringLiteral("ini"), file, QStringLiteral("Kept"),
                               QStringLiteral("K"), QString::number(keysPerWriter) },
                             dir.path());
    auto deleter = startChild({ QStringLiteral("deletesections"), file, QStringLiteral("Gone"),
                                QString::number(deletedSections) },
                              dir.path());
    finish(writer);
    finish(deleter);

    QStringList lost;
    for (int i = 1; i <= keysPerWriter; ++i) {
        const QString n = QString::number(i);
        QString v;
        readINI(QStringLiteral("Kept"), QStringLiteral("K") + n, file, v, QStringLiteral("<lost>"));
        if (v != QStringLiteral("v") + n)
            lost << QStringLiteral("K") + n;
    }
    EXPECT_EQ(lost.join(QLatin1Char(' ')).toStdString(), "");
    EXPECT_EQ(getINISections(file).join(QLatin1Char(' ')).toStdString(), " Kept");
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
