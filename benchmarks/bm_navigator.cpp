// benchmarks/bm_navigator.cpp: the navigator as a user drives it, with its widgets live
// (offscreen), on the generated 1,000,000-record tables: attach and show the count, a sort
// change back to the same record, one find keystroke, one Next click, holding Next down,
// and the memory a navigator holds beyond its record source.
//
//   build/benchmarks/bm_navigator --benchmark_repetitions=3 --benchmark_report_aggregates_only=true
#include "benchmarks/benchtablecache.h"
#include "benchmarks/widgetbenchmain.h"
#include "services/recordsource/tablegen/benchtable.h"

#include "navigator/mvplxrecs.h"
#include "services/recordsource/database.h"
#include "testing/fakeenv.h"

#include <QApplication>
#include <QComboBox>
#include <QElapsedTimer>
#include <QFile>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QTest>

#include <benchmark/benchmark.h>

#include <memory>

namespace {

using namespace plx;

enum class Engine { SQLite, FoxPro };

// Boxes are answered by nobody: a benchmark that shows one has failed.
test::TestServices &services()
{
    static test::TestServices env;
    return env;
}

std::unique_ptr<mvPLXRecs> makeNavigator(Engine engine)
{
    auto nav = std::make_unique<mvPLXRecs>();
    nav->setServices(services().services());
    nav->setSIDfield(QStringLiteral("ID"));
    nav->setSDescfield(QStringLiteral("NAME"));
    nav->setSDesc(QStringLiteral("Clients"));
    nav->resize(720, 160);
    nav->show();
    if (engine == Engine::FoxPro) {
        nav->setSDBFPathFileName(bench::foxProBenchDir() + QStringLiteral("/T.DBF"));
    } else {
        const QString file = bench::sqliteBenchFile(bench::DefaultBenchRows);
        Result<std::unique_ptr<Database>> db = OpenDatabase(file, false, false, QString());
        if (!db.isOk())
            return nullptr;
        std::shared_ptr<Database> shared(std::move(db.value()));
        Result<std::unique_ptr<RecordSource>> rs =
            shared->OpenRecordset(QStringLiteral("SELECT * from T"));
        if (!rs.isOk())
            return nullptr;
        nav->setDatabase(shared, QStringLiteral("T"), file);
        nav->setRs(std::shared_ptr<RecordSource>(std::move(rs.value())));
    }
    return nav;
}

// A navigator sorted by name, as a form shows it after InitControl.
std::unique_ptr<mvPLXRecs> sortedNavigator(Engine engine)
{
    auto nav = makeNavigator(engine);
    if (!nav)
        return nullptr;
    nav->AddSort(QStringLiteral("Name"), QStringLiteral("NAME, CITY"));
    nav->AddSort(QStringLiteral("ID"), QStringLiteral("ID"));
    nav->InitControl();
    return nav;
}

void AttachAndCount(benchmark::State &state, Engine engine)
{
    for (auto _ : state) {
        auto nav = makeNavigator(engine);
        if (!nav) {
            state.SkipWithError("no benchmark table");
            return;
        }
        QApplication::processEvents();
        benchmark::DoNotOptimize(nav->rs()->RecordCount());
        state.PauseTiming();
        nav.reset();
        state.ResumeTiming();
    }
}

void SortChange(benchmark::State &state, Engine engine)
{
    auto nav = sortedNavigator(engine);
    if (!nav) {
        state.SkipWithError("no benchmark table");
        return;
    }
    nav->findChild<QScrollBar *>(QStringLiteral("HScroll1"))->setValue(123456);
    const QString id = nav->sCurrentID();
    auto *sorts = nav->findChild<QComboBox *>(QStringLiteral("cboSort"));
    int next = 1;
    for (auto _ : state) {
        sorts->setCurrentIndex(next);
        Q_EMIT sorts->activated(next);
        next = 1 - next;
        if (nav->sCurrentID() != id)
            state.SkipWithError("the sort lost the current record");
    }
}

void FindKeystroke(benchmark::State &state, Engine engine)
{
    auto nav = sortedNavigator(engine);
    if (!nav) {
        state.SkipWithError("no benchmark table");
        return;
    }
    auto *find = nav->findChild<QComboBox *>(QStringLiteral("cboFind"));
    QString seen;
    QObject::connect(nav.get(), &mvPLXRecs::IDChange, [&seen](const QString &id) { seen = id; });
    // Typed texts that exist, so each keystroke runs one query (no widening).
    const struct
    {
        const char *typed;
        Qt::Key key;
    } strokes[] = {
        { "SM", Qt::Key_I }, { "JO", Qt::Key_N }, { "BR", Qt::Key_O }, { "WI", Qt::Key_L }
    };
    int i = 0;
    for (auto _ : state) {
        state.PauseTiming();
        const auto &stroke = strokes[i++ % 4];
        find->lineEdit()->setText(QString::fromLatin1(stroke.typed));
        find->lineEdit()->end(false);
        seen.clear();
        state.ResumeTiming();
        QTest::keyClick(find, stroke.key);
        if (seen.isEmpty())
            state.SkipWithError("the keystroke found nothing");
    }
}

void NextClick(benchmark::State &state, Engine engine)
{
    auto nav = sortedNavigator(engine);
    if (!nav) {
        state.SkipWithError("no benchmark table");
        return;
    }
    nav->findChild<QScrollBar *>(QStringLiteral("HScroll1"))->setValue(0);
    auto *next = nav->findChild<QPushButton *>(QStringLiteral("cmdRecNext"));
    auto *bar = nav->findChild<QScrollBar *>(QStringLiteral("HScroll1"));
    qint64 changes = 0;
    QObject::connect(nav.get(), &mvPLXRecs::IDChange, [&changes, &nav] {
        changes += nav->sEventInfo() == QLatin1String("cmdRecNext_Click");
    });
    for (auto _ : state) {
        if (bar->value() == bar->maximum()) {
            state.PauseTiming();
            bar->setValue(0);
            state.ResumeTiming();
        }
        next->click();
    }
    if (changes != qint64(state.iterations()))
        state.SkipWithError("a click raised no IDChange");
}

// Holding Next down for one second: records stepped, each with its IDChange.
void HoldNext(benchmark::State &state, Engine engine)
{
    auto nav = sortedNavigator(engine);
    if (!nav) {
        state.SkipWithError("no benchmark table");
        return;
    }
    nav->findChild<QScrollBar *>(QStringLiteral("HScroll1"))->setValue(0);
    auto *next = nav->findChild<QPushButton *>(QStringLiteral("cmdRecNext"));
    qint64 changes = 0;
    QObject::connect(nav.get(), &mvPLXRecs::IDChange, [&changes] { ++changes; });
    double seconds = 0;
    for (auto _ : state) {
        QElapsedTimer held;
        QTest::mousePress(next, Qt::LeftButton);
        held.start();
        while (held.elapsed() < 1350) // the first repeat waits 350 ms
            QApplication::processEvents(QEventLoop::AllEvents, 5);
        QTest::mouseRelease(next, Qt::LeftButton);
        seconds += 1.0;
    }
    state.counters["records_per_s"] = double(changes) / seconds;
}

long residentBytes()
{
    QFile statm(QStringLiteral("/proc/self/statm"));
    if (!statm.open(QIODevice::ReadOnly))
        return 0;
    const QList<QByteArray> fields = statm.readAll().split(' ');
    return fields.size() > 1 ? fields[1].toLong() * 4096 : 0;
}

// A find whose text nothing starts with beyond its first letters, pasted and entered:
// the widening costs the same for a text of ten characters as for one of 100,000.
void FindPastedText(benchmark::State &state, Engine engine)
{
    auto nav = sortedNavigator(engine);
    if (!nav) {
        state.SkipWithError("no benchmark table");
        return;
    }
    auto *find = nav->findChild<QComboBox *>(QStringLiteral("cboFind"));
    const QString text = QStringLiteral("SMI") + QString(int(state.range(0)) - 3, QLatin1Char('Q'));
    for (auto _ : state) {
        find->lineEdit()->setText(text);
        QTest::keyClick(find, Qt::Key_Return);
        if (!nav->sCurrentID().startsWith(QLatin1String("PLE")))
            state.SkipWithError("the find found nothing");
    }
}

// Resident memory a navigator adds to its record source: sorted, stepped, with a find
// record source open, per record of the table.
void NavigatorMemory(benchmark::State &state, Engine engine)
{
    {
        auto warm = sortedNavigator(engine);
    } // fonts, styles, mappings: not the navigator's
    for (auto _ : state) {
        auto nav = sortedNavigator(engine);
        if (!nav) {
            state.SkipWithError("no benchmark table");
            return;
        }
        const long before = residentBytes();
        auto *find = nav->findChild<QComboBox *>(QStringLiteral("cboFind"));
        find->lineEdit()->setText(QStringLiteral("SM"));
        QTest::keyClick(find, Qt::Key_I);
        for (int i = 0; i < 1000; ++i)
            nav->findChild<QPushButton *>(QStringLiteral("cmdRecNext"))->click();
        const long after = residentBytes();
        state.counters["bytes_per_record"] =
            double(after - before) / double(nav->rs()->RecordCount());
    }
}

void registerAll(Engine engine, const char *prefix)
{
    auto name = [prefix](const char *what) { return std::string(prefix) + what; };
    benchmark::RegisterBenchmark(name("AttachAndCount").c_str(), AttachAndCount, engine)
        ->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark(name("SortChange").c_str(), SortChange, engine)
        ->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark(name("FindKeystroke").c_str(), FindKeystroke, engine)
        ->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark(name("FindPastedText").c_str(), FindPastedText, engine)
        ->Arg(10)
        ->Arg(100000)
        ->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark(name("NextClick").c_str(), NextClick, engine)
        ->Unit(benchmark::kMicrosecond);
    benchmark::RegisterBenchmark(name("HoldNext").c_str(), HoldNext, engine)
        ->Iterations(2)
        ->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark(name("Memory").c_str(), NavigatorMemory, engine)
        ->Iterations(1)
        ->Unit(benchmark::kMillisecond);
}

} // namespace

int main(int argc, char **argv)
{
    return plx::bench::runWidgetBenchmarks(argc, argv, [] {
        registerAll(Engine::SQLite, "BM_Nav_SQLite_");
        registerAll(Engine::FoxPro, "BM_Nav_FoxPro_");
    });
}
