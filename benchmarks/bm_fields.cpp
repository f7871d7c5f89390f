// benchmarks/bm_fields.cpp: the field stacks on the generated 1,000,000-record table T, on
// SQLite and on FoxPro files: a stack of 20 text rows and 10 check boxes bound to the
// navigator's record source.
//   ShowRecord      UpdateDBF on both stacks (every row loads its field of the current
//                   record); the move to the record is not timed
//   EditUpdateSave  the record in edit, three rows and two boxes changed by the user (not
//                   timed): EditUpdate and Save on both stacks. Save commits the edit buffer
//                   (one durable write), because the navigator's next Edit would drop it
//   NavigatorSave   the same followed by the navigator's own Edit, stamp and Update (a
//                   second durable write): the whole SAVE as the user waits for it
// Only AMOUNT, PLLASTREV and ACTIVE of one record are written (same lengths, values put
// back afterwards), so that the table stays what the other benchmarks expect.
#include "services/recordsource/tablegen/foxprowriter.h"
#include "benchmarks/benchtablecache.h"
#include "benchmarks/widgetbenchmain.h"
#include "fields/mvchecks.h"
#include "fields/mvname.h"

#include "services/recordsource/database.h"

#include <QDir>
#include <QFile>

#include <benchmark/benchmark.h>

#include <memory>

namespace {

using namespace plx;

constexpr qint32 RecordPosition = 500003;

Database *database(bool foxPro)
{
    static std::unique_ptr<Database> sqlite;
    static std::unique_ptr<Database> fox;
    std::unique_ptr<Database> &db = foxPro ? fox : sqlite;
    if (!db) {
        auto opened = foxPro
            ? OpenDatabase(bench::foxProBenchDir(), false, false, QStringLiteral("FoxPro 2.6"))
            : OpenDatabase(bench::sqliteBenchFile(1000000), false, false, QString());
        if (opened.isOk())
            db = std::move(opened).value();
    }
    return db.get();
}

// The host form: 20 text rows over the table's fields (repeated) and 10 check boxes.
struct Form
{
    QWidget host;
    mvName *names = new mvName(&host);
    mvChecks *checks = new mvChecks(&host);
    std::shared_ptr<RecordSource> rs;

    explicit Form(Database &db)
    {
        static const char *fields[] = { "ID",   "NAME",  "CITY",    "STATE",     "AMOUNT",
                                        "BORN", "NOTES", "PLSTART", "PLLASTREV", "ACTIVE" };
        names->setNUbound(19);
        for (qint16 i = 0; i < 20; ++i) {
            names->setSCaption(i, QString::fromLatin1(fields[i % 10]));
            names->setSFieldName(i, QString::fromLatin1(fields[i % 10]));
        }
        names->setSFormat(4, QStringLiteral("#,##0.00"));
        names->setSFormat(5, QStringLiteral("mm/dd/yyyy"));
        checks->setNUbound(9);
        for (qint16 i = 0; i < 10; ++i) {
            checks->setSCaption(i, QStringLiteral("Active %1").arg(i));
            checks->setSFieldName(i, QStringLiteral("ACTIVE"));
        }
        auto opened = db.OpenRecordset(QStringLiteral("T"));
        if (opened.isOk())
            rs = std::shared_ptr<RecordSource>(std::move(opened).value());
        if (rs)
            (void)rs->setAbsolutePosition(RecordPosition);
        names->setRecordSet(rs);
        checks->setRecordSet(rs);
        names->UpdateDBF();
        checks->UpdateDBF();
    }
};

void ShowRecord(benchmark::State &state, bool foxPro)
{
    Database *db = database(foxPro);
    if (!db) {
        state.SkipWithError("no benchmark table");
        return;
    }
    Form form(*db);
    qint32 position = RecordPosition;
    for (auto _ : state) {
        state.PauseTiming();
        position = position == RecordPosition ? RecordPosition + 1 : RecordPosition;
        (void)form.rs->setAbsolutePosition(position);
        state.ResumeTiming();
        form.names->UpdateDBF();
        form.checks->UpdateDBF();
    }
    benchmark::DoNotOptimize(form.names->sValue(1));
}

// The user's typing before a save: new values in AMOUNT and PLLASTREV rows, two boxes
// toggled; `flip` alternates between two sets of values so that every save changes them.
void typeChanges(Form &form, bool flip)
{
    form.names->setSValue(4, flip ? QStringLiteral("1,234.50") : QStringLiteral("4,321.00"));
    form.names->setSValue(8,
                          flip ? QStringLiteral("11/23/2026 20:00:00 BENCH")
                               : QStringLiteral("11/23/2026 21:00:00 BENCH"));
    form.checks->setSValue(0, flip ? QStringLiteral("True") : QStringLiteral("False"));
    form.checks->setSValue(1, flip ? QStringLiteral("True") : QStringLiteral("False"));
}

void save(benchmark::State &state, bool foxPro, bool navigatorToo)
{
    Database *db = database(foxPro);
    if (!db) {
        state.SkipWithError("no benchmark table");
        return;
    }
    Form form(*db);
    // What the record held, put back at the end.
    const QVariant amount = form.rs->value(QStringLiteral("AMOUNT")).value();
    const QVariant lastRev = form.rs->value(QStringLiteral("PLLASTREV")).value();
    const QVariant active = form.rs->value(QStringLiteral("ACTIVE")).value();
    bool flip = false;
    for (auto _ : state) {
        state.PauseTiming();
        form.names->UpdateDBF();
        form.checks->UpdateDBF();
        if (!form.rs->Edit().isOk()) {
            state.SkipWithError("Edit failed");
            return;
        }
        flip = !flip;
        typeChanges(form, flip);
        state.ResumeTiming();
        form.names->EditUpdate();
        form.checks->EditUpdate();
        benchmark::DoNotOptimize(form.names->Save());
        benchmark::DoNotOptimize(form.checks->Save());
        if (navigatorToo) {
            (void)form.rs->Edit();
            (void)form.rs->setValue(QStringLiteral("PLLASTREV"),
                                    flip ? QStringLiteral("11/23/2026 20:00:01 BENCH")
                                         : QStringLiteral("11/23/2026 21:00:01 BENCH"));
            if (!form.rs->Update().isOk()) {
                state.SkipWithError("Update failed");
                return;
            }
        }
    }
    // Outside the timed loop: put the record back.
    if (form.rs->editMode() != EditMode::None)
        (void)form.rs->CancelUpdate();
    if (form.rs->Edit().isOk()) {
        (void)form.rs->setValue(QStringLiteral("AMOUNT"), amount);
        (void)form.rs->setValue(QStringLiteral("PLLASTREV"), lastRev);
        (void)form.rs->setValue(QStringLiteral("ACTIVE"), active);
        (void)form.rs->Update();
    }
}

void BM_Fields_ShowRecord_Sqlite(benchmark::State &s)
{
    ShowRecord(s, false);
}
void BM_Fields_ShowRecord_FoxPro(benchmark::State &s)
{
    ShowRecord(s, true);
}
void BM_Fields_EditUpdateSave_Sqlite(benchmark::State &s)
{
    save(s, false, false);
}
void BM_Fields_EditUpdateSave_FoxPro(benchmark::State &s)
{
    save(s, true, false);
}
void BM_Fields_NavigatorSave_Sqlite(benchmark::State &s)
{
    save(s, false, true);
}
void BM_Fields_NavigatorSave_FoxPro(benchmark::State &s)
{
    save(s, true, true);
}

} // namespace

BENCHMARK(BM_Fields_ShowRecord_Sqlite)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Fields_ShowRecord_FoxPro)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Fields_EditUpdateSave_Sqlite)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Fields_EditUpdateSave_FoxPro)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Fields_NavigatorSave_Sqlite)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Fields_NavigatorSave_FoxPro)->Unit(benchmark::kMicrosecond);

int main(int argc, char **argv)
{
    // The rows are widgets; no window is shown, so no display is needed.
    return plx::bench::runWidgetBenchmarks(argc, argv);
}
