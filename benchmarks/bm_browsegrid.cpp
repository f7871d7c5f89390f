// benchmarks/bm_browsegrid.cpp: the browse grid on the generated 1,000,000-record tables,
// through the real widgets (offscreen), over the navigator's own record source sorted by
// name as a form shows it: the grid opened and painted with the current record in view, a
// page down and a jump by the scroll bar repainted, the memory the grid holds beyond the
// record source, and a column Find that finds nothing (a pass over every record) against
// the same criterion run by the record source on its own.
//
//   build/benchmarks/bm_browsegrid --benchmark_repetitions=3 --benchmark_report_aggregates_only=true
#include "benchmarks/benchtablecache.h"
#include "benchmarks/widgetbenchmain.h"
#include "services/recordsource/tablegen/benchtable.h"

#include "dialogs/columnfind.h"
#include "dialogs/frmgrideditbare.h"
#include "dialogs/recordsourcetablemodel.h"
#include "services/env.h"
#include "services/recordsource/database.h"

#include <QHeaderView>
#include <QPushButton>
#include <QRandomGenerator>
#include <QScrollBar>
#include <QTableView>
#include <QTemporaryDir>
#include <QTest>

#include <benchmark/benchmark.h>

#include <malloc.h>

#include <memory>

namespace {

using namespace plx;

enum class Engine { SQLite, FoxPro };

const QString kMissing = QStringLiteral("QQXQQ"); // in no name: the find reads every record

// Answers the Find box with kMissing and every message box with OK, counting them.
class AnsweringPrompter : public Prompter
{
public:
    int boxes = 0;
    MsgAnswer msgBox(const QString &, int, const QString &) override
    {
        ++boxes;
        return MsgAnswer::OK;
    }
    std::optional<QString> inputBox(const QString &, const QString &, const QString &) override
    {
        return kMissing;
    }
};

AnsweringPrompter &prompter()
{
    static AnsweringPrompter answering;
    return answering;
}

Services *services()
{
    static Services bundle{ &prompter(), nullptr, nullptr };
    return &bundle;
}

QString settingsFile()
{
    static QTemporaryDir dir;
    return dir.filePath(QStringLiteral("USER.INI"));
}

// The navigator's records: the table in name order, counted, current record half way.
std::shared_ptr<RecordSource> sortedRecords(Engine engine)
{
    static std::shared_ptr<Database> databases[2];
    std::shared_ptr<Database> &db = databases[int(engine)];
    if (!db) {
        Result<std::unique_ptr<Database>> opened = engine == Engine::FoxPro
            ? OpenDatabase(bench::foxProBenchDir(), false, false, QStringLiteral("FoxPro 2.6"))
            : OpenDatabase(bench::sqliteBenchFile(bench::DefaultBenchRows), false, false,
                           QString());
        if (!opened.isOk())
            return nullptr;
        db = std::move(opened.value());
    }
    Result<std::unique_ptr<RecordSource>> rs =
        db->OpenRecordset(QStringLiteral("SELECT * from T ORDER BY T.NAME, T.CITY"));
    if (!rs.isOk())
        return nullptr;
    std::shared_ptr<RecordSource> records(std::move(rs.value()));
    (void)records->MoveLast();
    (void)records->setAbsolutePosition(records->RecordCount() / 2);
    return records;
}

// What IDBrowseGrid does before it waits for the user: the form over the records, opening
// on the current one.
std::unique_ptr<FrmGridEditBare> openGrid(const std::shared_ptr<RecordSource> &records)
{
    auto form = std::make_unique<FrmGridEditBare>(
        FrmGridEditBare::Setup{ QStringLiteral("Browse records Clients"), records, settingsFile(),
                                QStringLiteral("BrowseGridCol Clients"),
                                records->AbsolutePosition(), QString(), services() });
    form->show();
    QApplication::processEvents();
    return form;
}

void OpenAndPaint(benchmark::State &state, Engine engine)
{
    auto records = sortedRecords(engine);
    if (!records) {
        state.SkipWithError("no benchmark table");
        return;
    }
    const qint32 current = records->AbsolutePosition();
    for (auto _ : state) {
        auto form = openGrid(records);
        form->grid()->viewport()->repaint();
        state.PauseTiming();
        const QModelIndex top = form->grid()->indexAt(QPoint(4, 4));
        const QModelIndex bottom =
            form->grid()->indexAt(QPoint(4, form->grid()->viewport()->height() - 4));
        if (top.row() > current || bottom.row() < current)
            state.SkipWithError("the current record is not in view");
        form->close();
        form.reset();
        state.ResumeTiming();
    }
}

void PageDown(benchmark::State &state, Engine engine)
{
    auto records = sortedRecords(engine);
    if (!records) {
        state.SkipWithError("no benchmark table");
        return;
    }
    auto form = openGrid(records);
    QTableView *grid = form->grid();
    grid->setFocus();
    grid->viewport()->repaint();
    for (auto _ : state) {
        QTest::keyClick(grid, Qt::Key_PageDown);
        grid->viewport()->repaint();
    }
    form->close();
}

void ScrollBarJump(benchmark::State &state, Engine engine)
{
    auto records = sortedRecords(engine);
    if (!records) {
        state.SkipWithError("no benchmark table");
        return;
    }
    auto form = openGrid(records);
    QScrollBar *bar = form->grid()->verticalScrollBar();
    QRandomGenerator random(20261124);
    for (auto _ : state) {
        bar->setValue(int(random.bounded(bar->maximum() + 1)));
        form->grid()->viewport()->repaint();
    }
    form->close();
}

// A model that holds nothing: what a bare QTableView of that many rows costs by itself.
class EmptyRows : public QAbstractTableModel
{
public:
    explicit EmptyRows(int rows) : m_rows(rows) { }
    int rowCount(const QModelIndex & = QModelIndex()) const override { return m_rows; }
    int columnCount(const QModelIndex & = QModelIndex()) const override { return 10; }
    QVariant data(const QModelIndex &, int) const override { return {}; }

private:
    int m_rows;
};

double bareViewBytesPerRecord(int rows)
{
    const size_t before = mallinfo2().uordblks;
    EmptyRows model(rows);
    QTableView view;
    view.verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    view.setModel(&model);
    view.show();
    view.viewport()->repaint();
    return (double(mallinfo2().uordblks) - double(before)) / rows;
}

// Heap the grid keeps beyond its record source, per record, after the user paged through
// a thousand screens at random places; beside it what Qt's QTableView alone keeps for the
// same number of rows (its row header holds one entry per row).
void GridMemory(benchmark::State &state, Engine engine)
{
    auto records = sortedRecords(engine);
    if (!records) {
        state.SkipWithError("no benchmark table");
        return;
    }
    {
        auto warm = openGrid(records); // fonts, styles: not the grid's
        warm->grid()->viewport()->repaint();
        warm->close();
    }
    for (auto _ : state) {
        const size_t before = mallinfo2().uordblks;
        auto form = openGrid(records);
        QScrollBar *bar = form->grid()->verticalScrollBar();
        QRandomGenerator random(7);
        for (int i = 0; i < 1000; ++i) {
            bar->setValue(int(random.bounded(bar->maximum() + 1)));
            form->grid()->viewport()->repaint();
        }
        const size_t after = mallinfo2().uordblks;
        state.counters["bytes_per_record"] =
            (double(after) - double(before)) / double(records->RecordCount());
        form->close();
        form.reset();
        state.counters["bare_qtableview_bytes_per_record"] =
            bareViewBytesPerRecord(records->RecordCount());
    }
}

// The column Find of the NAME column, from the button to the "Not Found" box.
void ColumnFindInGrid(benchmark::State &state, Engine engine)
{
    auto records = sortedRecords(engine);
    if (!records) {
        state.SkipWithError("no benchmark table");
        return;
    }
    auto form = openGrid(records);
    const int name = records->fieldIndex(QStringLiteral("NAME"));
    auto *find = form->findChild<QPushButton *>(QStringLiteral("cmdFind"));
    const int boxesBefore = prompter().boxes;
    for (auto _ : state) {
        form->grid()->selectColumn(name);
        find->click();
    }
    if (prompter().boxes - boxesBefore != int(state.iterations()))
        state.SkipWithError("the find did not end in one Not Found box");
    form->close();
}

// The same criterion run by the record source itself: FindFirst, position put back.
void ColumnFindBackEnd(benchmark::State &state, Engine engine)
{
    auto records = sortedRecords(engine);
    if (!records) {
        state.SkipWithError("no benchmark table");
        return;
    }
    const QString criterion = ColumnFind::criterion(QStringLiteral("NAME"), kMissing);
    const qint32 before = records->AbsolutePosition();
    for (auto _ : state) {
        if (!records->FindFirst(criterion).isOk() || !records->NoMatch())
            state.SkipWithError("the criterion matched or failed");
        (void)records->setAbsolutePosition(before);
    }
}

void registerAll(Engine engine, const char *prefix)
{
    auto name = [prefix](const char *what) { return std::string(prefix) + what; };
    benchmark::RegisterBenchmark(name("OpenAndPaint").c_str(), OpenAndPaint, engine)
        ->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark(name("PageDown").c_str(), PageDown, engine)
        ->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark(name("ScrollBarJump").c_str(), ScrollBarJump, engine)
        ->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark(name("Memory").c_str(), GridMemory, engine)
        ->Iterations(1)
        ->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark(name("ColumnFind").c_str(), ColumnFindInGrid, engine)
        ->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark(name("ColumnFindBackEnd").c_str(), ColumnFindBackEnd, engine)
        ->Unit(benchmark::kMillisecond);
}

} // namespace

int main(int argc, char **argv)
{
    return plx::bench::runWidgetBenchmarks(argc, argv, [] {
        registerAll(Engine::SQLite, "BM_Grid_SQLite_");
        registerAll(Engine::FoxPro, "BM_Grid_FoxPro_");
    });
}
