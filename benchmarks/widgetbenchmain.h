// benchmarks/widgetbenchmain.h: the main of the benchmarks that drive real widgets.
//
// They run on Qt's offscreen platform unless QT_QPA_PLATFORM says otherwise, and keep its
// notes on every window ("This plugin does not support ...") out of the results.
#pragma once

#include <QApplication>

#include <benchmark/benchmark.h>

#include <cstdio>
#include <functional>

namespace plx::bench {

// Sets up the platform and a QApplication, lets `registerBenchmarks` add the benchmarks
// that need it, and runs those selected on the command line.
inline int runWidgetBenchmarks(int argc, char **argv,
                               const std::function<void()> &registerBenchmarks = {})
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_LOGGING_RULES", "qt.qpa.*=false");
    qInstallMessageHandler([](QtMsgType type, const QMessageLogContext &, const QString &message) {
        if (type != QtDebugMsg && type != QtInfoMsg
            && !message.startsWith(QLatin1String("This plugin does not")))
            std::fprintf(stderr, "%s\n", qPrintable(message));
    });
    QApplication app(argc, argv);
    if (registerBenchmarks)
        registerBenchmarks();
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}

} // namespace plx::bench
