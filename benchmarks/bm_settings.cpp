// benchmarks/bm_settings.cpp: reading settings files users make large.
//
//   LoadFormDescription/<rows>   plxform reads a form description of <rows> text rows
//                                ([ROWn] with Field=Fn, ~26 bytes a row: 100,000 rows are
//                                2.6 MB), every row checked and kept.
// The files are written once per run into a temporary folder.
#include "apps/plxform/formdescription.h"

#include <QFile>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

namespace {

QString descriptionOf(int rows)
{
    static QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("rows%1.ini").arg(rows));
    if (QFile::exists(path))
        return path;
    QByteArray text = "[FORM]\r\nFile=/data/T.DBF\r\nDesc=Many\r\n";
    for (int i = 1; i <= rows; ++i) {
        const QByteArray n = QByteArray::number(i);
        text += "[ROW" + n + "]\r\nField=F" + n + "\r\n";
    }
    QFile f(path);
    if (!f.open(QIODevice::WriteOnly) || f.write(text) != text.size())
        return QString();
    return path;
}

void LoadFormDescription(benchmark::State &state)
{
    const int rows = int(state.range(0));
    const QString path = descriptionOf(rows);
    if (path.isEmpty()) {
        state.SkipWithError("cannot write the description");
        return;
    }
    for (auto _ : state) {
        QStringList warnings;
        const plx::Result<plx::form::FormDescription> read =
            plx::form::loadFormDescription(path, &warnings);
        if (!read.isOk() || read.value().rows.size() != rows) {
            state.SkipWithError("the description was not read whole");
            return;
        }
        benchmark::DoNotOptimize(read.value().rows.data());
    }
    state.SetItemsProcessed(state.iterations() * rows);
    state.counters["bytes"] = double(QFile(path).size());
}

BENCHMARK(LoadFormDescription)->Arg(1000)->Arg(100000)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
