// apps/plxform/tests/sessionwalk_test.cpp: long user sessions on plxform's sample form, on
// the FoxPro table and on its SQLite twin: seeded random walks checked step by step against
// a model of the rules, the scripts of data losses users met kept as regression cases, and
// replay of a printed script.
//
//   PLX_WALK_SEED=n, PLX_WALK_STEPS=n      another bounded walk
//   PLX_WALK_LONG_STEPS=n                   runs the long walk (the walk_long target: 20000)
//   PLX_WALK_SCRIPT=file                    replays a script a failing walk printed
//   PLX_WALK_ID_ROW_TYPED=1                 the user may type over IDs (forms that do not
//                                           make them; the sample form keeps them read only)
//   PLX_WALK_REFUSE_DUPLICATE_IDS=1         then an ID another record holds must be refused
//   PLX_WALK_NO_STATUS_CHECK=1              leaves the status bar unchecked
#include "apps/plxform/tests/sessionwalk_runner.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

#include <cstdio>

namespace plx::walk {
namespace {

quint64 envOr(const char *name, quint64 fallback)
{
    bool ok = false;
    const quint64 v = qEnvironmentVariable(name).toULongLong(&ok);
    return ok ? v : fallback;
}

class SessionWalk : public ::testing::TestWithParam<Backend>
{
protected:
    void SetUp() override
    {
        QString error;
        ASSERT_TRUE(prepareSample(&error)) << error.toStdString();
    }

    WalkOptions options() const { return walkOptionsFromEnvironment(GetParam()); }

    // Runs a random walk; a failure is shrunk, printed, kept in a file and reported.
    void walk(WalkOptions o, qint64 shrinkMilliseconds)
    {
        const WalkResult result = runRandomWalk(o);
        if (!result.failure)
            return;
        // PLX_WALK_SHRINK_REPLAYS and PLX_WALK_SHRINK_MS give a stubborn failure more time.
        const QList<Step> shrunk =
            shrinkFailingWalk(o, result, int(envOr("PLX_WALK_SHRINK_REPLAYS", 400)),
                              qint64(envOr("PLX_WALK_SHRINK_MS", quint64(shrinkMilliseconds))));
        const WalkResult again = replaySteps(o, shrunk);
        const WalkFailure failure = again.failure.value_or(*result.failure);
        const QString script = failureScript(o, shrunk, failure);
        const QString file = QDir::temp().filePath(
            QStringLiteral("plx-walk-%1-%2.txt").arg(backendName(o.backend)).arg(o.seed));
        QFile out(file);
        if (out.open(QIODevice::WriteOnly))
            out.write(script.toUtf8());
        ADD_FAILURE() << "walk of " << result.steps.size()
                      << " steps failed: " << result.failure->message.toStdString()
                      << "\nshrunk to " << shrunk.size() << " steps (" << file.toStdString()
                      << "):\n"
                      << script.toStdString();
    }

    // Runs a kept script; it must pass.
    void expectScriptPasses(const char *script)
    {
        QList<Step> steps;
        QString error;
        ASSERT_TRUE(parseScript(QString::fromUtf8(script), &steps, &error)) << error.toStdString();
        const WalkResult result = replaySteps(options(), steps);
        EXPECT_FALSE(result.failure.has_value()) << "[" << result.failure->kind.toStdString()
                                                 << "] " << result.failure->message.toStdString();
    }
};

TEST_P(SessionWalk, BoundedRandomWalkKeepsFormTableAndRulesTogether)
{
    WalkOptions o = options();
    o.seed = envOr("PLX_WALK_SEED", GetParam() == Backend::FoxPro ? 20261124 : 20261125);
    o.steps = int(envOr("PLX_WALK_STEPS", 2500));
    o.diskCheckEvery = 10;
    o.crossCheckWithPython = true;
    walk(o, 20000);
}

TEST_P(SessionWalk, LongRandomWalk)
{
    const quint64 steps = envOr("PLX_WALK_LONG_STEPS", 0);
    if (steps == 0)
        GTEST_SKIP() << "the long walk runs with PLX_WALK_LONG_STEPS (target walk_long)";
    WalkOptions o = options();
    o.seed = envOr("PLX_WALK_SEED", 7);
    o.steps = int(steps);
    o.diskCheckEvery = 25;
    o.crossCheckWithPython = true;
    walk(o, 300000);
}

// A user kept a new record (Cancel, No), stepped back to an older record, edited it and
// cancelled: the form asked again to delete "the New record", and Yes deleted the older one.
TEST_P(SessionWalk, CancellingAnOlderRecordsEditAfterKeepingANewOneDeletesNothing)
{
    expectScriptPasses("NEW\n"
                       "CANCEL\nANSWER No\n"
                       "BACK\nBACK\n"
                       "EDIT\n"
                       "CANCEL\nANSWER Yes\n");
    // The same loss after COPY, as the walk of seed 2 found it.
    expectScriptPasses("COPY\n"
                       "CANCEL\nANSWER No\n"
                       "BACK\n"
                       "EDIT\n"
                       "CANCEL\nANSWER Yes\n");
}

// A user typed an ID of their own over a new record's and saved: Edit then jumped to the
// first record of the order, and Save overwrote it. The form now keeps the ID it made:
// the typing changes nothing, and Edit after the save edits the saved record.
TEST_P(SessionWalk, EditAfterSavingANewRecordUnderATypedIDEditsThatRecord)
{
    expectScriptPasses("NEW\n"
                       "TYPE ID PLEW000123\n"
                       "TYPE NAME Quarry Hill Manor\n"
                       "TYPE CITY Camden\n"
                       "SAVE\n"
                       "EDIT\n"
                       "TYPE NAME Quarry Hill Gardens\n"
                       "SAVE\n");
}

// Values a row refuses are told, the table keeps the former ones, and after SAVE the rows
// show what the table kept.
TEST_P(SessionWalk, RefusedValuesAreNotLeftOnScreenAfterSave)
{
    expectScriptPasses("EDIT\n"
                       "TYPE BEDS 12a\n"
                       "TYPE OPENED 13/45/2020\n"
                       "TYPE RATE 123456.78\n"
                       "TYPE CITY WWWWWWWWWWWWWWWWWWWWWWWWWWWWW\n"
                       "SAVE\n"
                       "NEXT\nBACK\n");
}

// A save the full disk stopped leaves the typed City in the record's edit buffer; a too
// long City refused at the next save must then show that value, which is what a later save
// writes, not the one loaded before the edit (the row showed one and would have saved the
// other). Typing the loaded value back must be written too.
TEST_P(SessionWalk, ARefusedValueAfterAFailedSaveShowsWhatTheRecordKeeps)
{
    expectScriptPasses("EDIT\n"
                       "TYPE CITY Salem Residenc\n"
                       "FULLSAVE\n"
                       "TYPE CITY WWWWWWWWWWWWWWWWWWWWWWWWWW\n"
                       "FULLSAVE\n"
                       "TYPE CITY Austin\n"
                       "SAVE\n");
}

// The status bar follows a new record through its save.
TEST_P(SessionWalk, StatusBarShowsTheSavedNewRecordsPosition)
{
    expectScriptPasses("SORT City\n"
                       "NEW\n"
                       "TYPE NAME Birch Manor\n"
                       "TYPE CITY Austin\n"
                       "SAVE\n");
}

// A kept new record sits at the end of the records: the scroll bar stands at it and
// reaches it, so dragging the bar to the end shows it (the bar stood at 0, one short).
TEST_P(SessionWalk, ScrollBarReachesAKeptNewRecord)
{
    expectScriptPasses("FILTER Opened since 2000\n"
                       "NEW\n"
                       "CANCEL\nANSWER No\n"
                       "SCROLL 1215\n");
}

TEST_P(SessionWalk, ReplaysTheScriptOfPLX_WALK_SCRIPT)
{
    const QString path = qEnvironmentVariable("PLX_WALK_SCRIPT");
    if (path.isEmpty())
        GTEST_SKIP() << "set PLX_WALK_SCRIPT to a script a failing walk printed";
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
    const QString script = QString::fromUtf8(file.readAll());
    if (script.contains(QLatin1String("# backend "))
        && !script.contains(QLatin1String("# backend ") + backendName(GetParam())))
        GTEST_SKIP() << "the script was made on the other back end";
    expectScriptPasses(script.toUtf8().constData());
}

// The walk's own readers, python3-dbf and the SQLite twin read the same sample.
TEST(SessionWalkReaders, ReadTheSampleAlikeOnBothBackEndsAndWithPythonDbf)
{
    QString error;
    ASSERT_TRUE(prepareSample(&error)) << error.toStdString();
    const Table &fox = pristineTable(Backend::FoxPro);
    EXPECT_EQ(fox.size(), 3000);
    // The same data, but for Null: the SQLite copy leaves empty fields Null.
    Table sqlite = pristineTable(Backend::SQLite);
    int nulls = 0;
    for (Record &record : sqlite)
        for (QString &value : record)
            if (isNullPlain(value)) {
                value.clear();
                ++nulls;
            }
    EXPECT_GT(nulls, 0);
    EXPECT_EQ(tableDifferences(fox, sqlite), QStringList());
    // A record with a memo and a date, as the sample's own data holds them.
    const auto withNotes = std::find_if(fox.begin(), fox.end(), [](const Record &r) {
        return r.value(QStringLiteral("NOTES")).contains(QLatin1Char('\n'));
    });
    ASSERT_NE(withNotes, fox.end());
    EXPECT_EQ(withNotes->value(QStringLiteral("OPENED")).size(), 8);
    Table python;
    ASSERT_TRUE(readFoxProWithPythonDbf(sampleTablePath(Backend::FoxPro), &python, &error))
        << error.toStdString();
    EXPECT_EQ(tableDifferences(fox, python), QStringList());
}

INSTANTIATE_TEST_SUITE_P(BackEnds, SessionWalk, ::testing::Values(Backend::FoxPro, Backend::SQLite),
                         [](const auto &param) { return backendName(param.param).toStdString(); });

} // namespace
} // namespace plx::walk
