// benchmarks/bm_commands.cpp: the record commands through the toolbar handler, on the
// generated 1,000,000-record tables, with a stack of ten field rows as a form has them:
// EDIT, change one field, SAVE; NEW then SAVE; and NewIDPLX with its key file present.
//
//   build/benchmarks/bm_commands --benchmark_repetitions=3 --benchmark_report_aggregates_only=true
//
// The tables are copied first (the commands write), into $PLX_BENCH_DIR/commands.
#include "services/recordsource/tablegen/benchtable.h"
#include "benchmarks/benchtablecache.h"
#include "benchmarks/widgetbenchmain.h"

#include "fields/mvchecks.h"
#include "fields/mvname.h"
#include "navigator/mvplxrecs.h"
#include "services/recordsource/database.h"

#include <QDir>
#include <QFile>
#include <QScrollBar>

#include <benchmark/benchmark.h>

#include <memory>

namespace {

using namespace plx;

enum class Engine { SQLite, FoxPro };

// The user: OK to every box (the form has no parent form, so each save says it saves
// without validation).
class QuietPrompter : public Prompter
{
public:
    MsgAnswer msgBox(const QString &, int style, const QString &) override
    {
        return (style & 7) == MsgStyle::YesNo ? MsgAnswer::Yes : MsgAnswer::OK;
    }
    std::optional<QString> inputBox(const QString &, const QString &, const QString &) override
    {
        return std::nullopt;
    }
};

QString workCopy(Engine engine)
{
    QString root = qEnvironmentVariable("PLX_BENCH_DIR");
    if (root.isEmpty())
        root = QStringLiteral("/tmp/plx-bench");
    const QString dir = root + QStringLiteral("/commands");
    QDir(dir).removeRecursively();
    QDir().mkpath(dir);
    if (engine == Engine::FoxPro) {
        const QString from = bench::foxProBenchDir();
        if (from.isEmpty()
            || !QFile::copy(from + QStringLiteral("/T.DBF"), dir + QStringLiteral("/T.DBF"))
            || !QFile::copy(from + QStringLiteral("/T.FPT"), dir + QStringLiteral("/T.FPT")))
            return {};
        return dir + QStringLiteral("/T.DBF");
    }
    const QString from = bench::sqliteBenchFile(bench::DefaultBenchRows);
    if (from.isEmpty() || !QFile::copy(from, dir + QStringLiteral("/bench.sqlite")))
        return {};
    return dir + QStringLiteral("/bench.sqlite");
}

struct Form
{
    QuietPrompter prompter;
    Services services{ &prompter, nullptr, nullptr };
    mvPLXRecs nav;
    mvName rows;
    mvChecks checks;

    bool open(Engine engine)
    {
        const QString path = workCopy(engine);
        if (path.isEmpty())
            return false;
        nav.setServices(&services);
        nav.setSIDfield(QStringLiteral("ID"));
        nav.setSDescfield(QStringLiteral("NAME"));
        nav.setSDesc(QStringLiteral("Clients"));
        nav.setSUser(QStringLiteral("BENCH"));
        nav.setSParentID(QStringLiteral("PLE"));
        nav.AddSort(QStringLiteral("Name"), QStringLiteral("NAME, CITY"));
        if (engine == Engine::FoxPro) {
            nav.setSDBFPathFileName(path);
        } else {
            auto db = OpenDatabase(path, false, false, QString());
            if (!db.isOk())
                return false;
            std::shared_ptr<Database> shared(std::move(db.value()));
            nav.setDatabase(shared, QStringLiteral("T"), path);
            nav.setRs(std::shared_ptr<RecordSource>(
                shared->OpenRecordset(QStringLiteral("SELECT * from T")).value().release()));
        }
        const char *fields[] = { "ID",   "NAME",  "CITY",    "STATE",    "AMOUNT",
                                 "BORN", "NOTES", "PLSTART", "PLLASTREV" };
        rows.setNUbound(8);
        for (qint16 i = 0; i <= 8; ++i) {
            rows.setSCaption(i, QString::fromLatin1(fields[i]));
            rows.setSFieldName(i, QString::fromLatin1(fields[i]));
        }
        checks.setSCaption(0, QStringLiteral("Active"));
        checks.setSFieldName(0, QStringLiteral("ACTIVE"));
        nav.setCMervaneControls({ &rows, &checks });
        QObject::connect(&nav, &mvPLXRecs::IDChange, &rows, [this] {
            rows.UpdateDBF();
            checks.UpdateDBF();
        });
        nav.InitControl();
        nav.findChild<QScrollBar *>(QStringLiteral("HScroll1"))->setValue(500000);
        return nav.rs() != nullptr;
    }
};

void EditSave(benchmark::State &state, Engine engine)
{
    Form form;
    if (!form.open(engine)) {
        state.SkipWithError("no benchmark table");
        return;
    }
    int n = 0;
    for (auto _ : state) {
        form.nav.ClickButton(QStringLiteral("EDIT"));
        form.rows.setSValue(3,
                            QString::number(n++ % 50).rightJustified(2, QLatin1Char('0'))); // STATE
        form.nav.ClickButton(QStringLiteral("SAVE"));
        if (form.nav.bButtonEnable(QStringLiteral("SAVE")))
            state.SkipWithError("the save did not end the edit");
    }
}

void NewSave(benchmark::State &state, Engine engine)
{
    Form form;
    if (!form.open(engine)) {
        state.SkipWithError("no benchmark table");
        return;
    }
    // The first ID of a table without a key file reads the table's highest ID once; that
    // is a cost of the first NEW ever, not of every NEW.
    (void)form.nav.NewIDPLX();
    for (auto _ : state) {
        form.nav.ClickButton(QStringLiteral("NEW"));
        form.rows.setSValue(1, QStringLiteral("BENCHMARK, NEW"));
        form.nav.ClickButton(QStringLiteral("SAVE"));
        if (form.nav.bButtonEnable(QStringLiteral("SAVE")))
            state.SkipWithError("the new record was not saved");
    }
}

void NewID(benchmark::State &state, Engine engine)
{
    Form form;
    if (!form.open(engine)) {
        state.SkipWithError("no benchmark table");
        return;
    }
    (void)form.nav.NewIDPLX(); // the key file is made from the table once
    for (auto _ : state)
        if (form.nav.NewIDPLX().isEmpty())
            state.SkipWithError("no ID");
}

} // namespace

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("PLX_HARROWBY_DIR")) {
        QDir().mkpath(QStringLiteral("/tmp/plx-bench/inst"));
        qputenv("PLX_HARROWBY_DIR", "/tmp/plx-bench/inst");
    }
    return plx::bench::runWidgetBenchmarks(argc, argv, [] {
        for (auto [engine, prefix] : { std::pair{ Engine::SQLite, "BM_Cmd_SQLite_" },
                                       std::pair{ Engine::FoxPro, "BM_Cmd_FoxPro_" } }) {
            auto name = [prefix = prefix](const char *what) { return std::string(prefix) + what; };
            benchmark::RegisterBenchmark(name("EditSave").c_str(), EditSave, engine)
                ->Unit(benchmark::kMillisecond);
            benchmark::RegisterBenchmark(name("NewSave").c_str(), NewSave, engine)
                ->Unit(benchmark::kMillisecond)
                ->Iterations(5);
            benchmark::RegisterBenchmark(name("NewIDPLX").c_str(), NewID, engine)
                ->Unit(benchmark::kMillisecond);
        }
    });
}
