// apps/plxform/tests/plxform_process_test.cpp: two plxform processes on one table, driven
// by scripts: records both create at once never share an ID, and a record one of them
// edits is denied to the other with the holder's name.
#include "apps/plxform/sampledata.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QSet>
#include <QSysInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace plx::form {
namespace {

class TwoForms : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(dir.isValid());
        Result<SamplePaths> sample = ensureSample(dir.path());
        ASSERT_TRUE(sample.isOk()) << sample.status().message().toStdString();
        table = sample.value().foxProTable;
    }

    QProcess *start(const QString &name, const QByteArray &script, const QString &user)
    {
        const QString file = dir.filePath(name + QStringLiteral(".txt"));
        QFile f(file);
        EXPECT_TRUE(f.open(QIODevice::WriteOnly));
        f.write(script);
        f.close();
        auto *p = new QProcess;
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(QStringLiteral("PLX_HARROWBY_DIR"), dir.path());
        env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
        env.insert(QStringLiteral("USER"), user);
        p->setProcessEnvironment(env);
        p->start(QStringLiteral(PLXFORM), { table, QStringLiteral("--script"), file });
        processes.emplace_back(p);
        return p;
    }

    QTemporaryDir dir;
    QString table;
    std::vector<std::unique_ptr<QProcess>> processes;
};

QStringList boxes(QProcess &p)
{
    QStringList out;
    for (const QString &line : QString::fromUtf8(p.readAllStandardError()).split(QLatin1Char('\n')))
        if (line.startsWith(QLatin1String("box: ")))
            out << line;
    return out;
}

TEST_F(TwoForms, RecordsCreatedAtOnceGetDistinctIDs)
{
    const QByteArray script = "repeat 150\nclick New\nset NAME Scripted Care Center\nset CITY "
                              "Salem\nclick Save\nprint id\nend\n";
    QProcess *a = start(QStringLiteral("a"), script, QStringLiteral("ann"));
    QProcess *b = start(QStringLiteral("b"), script, QStringLiteral("bob"));
    QStringList ids;
    for (QProcess *p : { a, b }) {
        ASSERT_TRUE(p->waitForFinished(240000));
        EXPECT_EQ(p->exitCode(), 0) << p->readAllStandardError().toStdString();
        EXPECT_TRUE(boxes(*p).isEmpty()) << boxes(*p).join(QLatin1Char('\n')).toStdString();
        ids += QString::fromLatin1(p->readAllStandardOutput())
                   .split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    }
    EXPECT_EQ(ids.size(), 300);
    EXPECT_EQ(QSet<QString>(ids.begin(), ids.end()).size(), 300);

    // Another program reading the file sees every record once.
    QProcess python;
    python.start(
        QStringLiteral("/usr/bin/python3"),
        { QStringLiteral("-c"),
          QStringLiteral("import dbf,sys\nt=dbf.Table(sys.argv[1],codepage='cp437');t.open()\n"
                         "ids=[r['id'] for r in t if not dbf.is_deleted(r)]\n"
                         "print(len(ids),len(set(ids)),sum(1 for r in t if "
                         "r['name'].strip()=='Scripted Care Center'))"),
          table });
    ASSERT_TRUE(python.waitForFinished(60000));
    if (python.exitCode() != 0 && python.readAllStandardError().contains("No module named"))
        GTEST_SKIP() << "python3-dbf is not installed";
    EXPECT_EQ(python.readAllStandardOutput().trimmed(), QByteArray("3300 3300 300"));
}

TEST_F(TwoForms, ARecordInEditIsDeniedToTheOtherFormNamingItsHolder)
{
    QProcess *holder = start(QStringLiteral("holder"),
                             "find PLE\nclick Edit\nprint ready\nwait 60\n", QStringLiteral("ann"));
    ASSERT_TRUE(holder->waitForReadyRead(60000)) << holder->readAllStandardError().toStdString();
    ASSERT_EQ(holder->readAllStandardOutput().trimmed(), QByteArray("ready"));

    QProcess *other =
        start(QStringLiteral("other"), "find PLE\nclick Edit\n", QStringLiteral("bob"));
    ASSERT_TRUE(other->waitForFinished(60000));
    const QStringList denied = boxes(*other);
    ASSERT_EQ(denied.size(), 1) << denied.join(QLatin1Char('\n')).toStdString();
    EXPECT_TRUE(denied[0].startsWith(QStringLiteral(
        "box: Access Denied: This record is locked.   | Please try again later |  | ")))
        << denied[0].toStdString();
    EXPECT_TRUE(denied[0].contains(QStringLiteral(" | Held by ANN on ")
                                   + QSysInfo::machineHostName() + QStringLiteral(" since ")))
        << denied[0].toStdString();

    // Once the holder is gone, the record can be edited.
    holder->kill();
    holder->waitForFinished();
    QProcess *again =
        start(QStringLiteral("again"), "find PLE\nclick Edit\nclick Save\n", QStringLiteral("bob"));
    ASSERT_TRUE(again->waitForFinished(60000));
    EXPECT_TRUE(boxes(*again).isEmpty()) << boxes(*again).join(QLatin1Char('\n')).toStdString();
}

} // namespace
} // namespace plx::form
