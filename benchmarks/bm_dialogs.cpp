// benchmarks/bm_dialogs.cpp: the dialogs a field opens, as the user waits for them.
//   ValueListOpen   the value-list editor of a 5,000-entry list (each "V<n> {Description
//                   of item <n>}", about 150 KB in the settings file): made, its
//                   placement restored, the list read from the file, shown and painted
//   TextEditorOpen  the text editor on a 1 MB memo (80-character lines): made, the text
//                   set, shown and painted
// Goals (README): 50 ms and 100 ms.
#include "benchmarks/widgetbenchmain.h"
#include "dialogs/frmvivalues.h"
#include "dialogs/texteditor.h"

#include "services/ini.h"

#include <QTemporaryDir>

#include <benchmark/benchmark.h>

namespace {

using namespace plx;

void ValueListOpen(benchmark::State &state)
{
    QTemporaryDir dir;
    // The editor keeps its placement in the defaults file of the installation directory.
    qputenv("PLX_HARROWBY_DIR", dir.path().toLocal8Bit());
    resetDefaultsINI();
    const QString file = dir.filePath(QStringLiteral("lists.ini"));
    QStringList entries;
    for (int i = 1; i <= 5000; ++i)
        entries << QStringLiteral("V%1 {Description of item %1}").arg(i);
    (void)writeINI(QStringLiteral("ValueItems"), QStringLiteral("Programs"), file,
                   entries.join(QLatin1Char('|')));
    for (auto _ : state) {
        frmVIValues editor;
        editor.setSVINIFile(file);
        editor.setSVINISec(QStringLiteral("ValueItems"));
        editor.setSVINIVar(QStringLiteral("Programs"));
        editor.setSValue(QStringLiteral("V1,V2"));
        editor.setMaxLen(250);
        editor.InitForm();
        editor.show();
        QApplication::processEvents();
        benchmark::DoNotOptimize(editor.entries().size());
        editor.hide();
    }
    state.counters["entries"] = double(entries.size());
}

void TextEditorOpen(benchmark::State &state)
{
    const QString line = QString(79, QLatin1Char('x')) + QLatin1Char('\n');
    const QString memo = line.repeated(1024 * 1024 / line.size());
    for (auto _ : state) {
        TextEditorDialog editor;
        editor.setText(memo);
        editor.setMaxLength(0);
        editor.show();
        QApplication::processEvents();
        benchmark::DoNotOptimize(editor.countText());
        editor.hide();
    }
    state.counters["chars"] = double(memo.size());
}

} // namespace

int main(int argc, char **argv)
{
    return bench::runWidgetBenchmarks(argc, argv, [] {
        benchmark::RegisterBenchmark("ValueListOpen", ValueListOpen)->Unit(benchmark::kMillisecond);
        benchmark::RegisterBenchmark("TextEditorOpen", TextEditorOpen)
            ->Unit(benchmark::kMillisecond);
    });
}
