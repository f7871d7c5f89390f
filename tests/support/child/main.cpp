// tests/support/child/main.cpp: plx_testchild dispatches on its first argument to one role
// (roles.h). One program for every cross-process test, so that a new test adds a role
// instead of another executable with its own start-up.
#include "tests/support/child/roles.h"

#include <QApplication>
#include <QCoreApplication>

#include <memory>

namespace {

// The navigator role shows widgets (offscreen, its platform notes silenced); every other
// role needs no more than an event-loop-free core application.
std::unique_ptr<QCoreApplication> makeApplication(int &argc, char **argv, bool widgets)
{
    if (!widgets)
        return std::make_unique<QCoreApplication>(argc, argv);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_LOGGING_RULES", "qt.qpa.*=false");
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
    return std::make_unique<QApplication>(argc, argv);
}

} // namespace

int main(int argc, char **argv)
{
    const QByteArray role = argc > 1 ? QByteArray(argv[1]) : QByteArray();
    const std::unique_ptr<QCoreApplication> app = makeApplication(argc, argv, role == "navigator");
    const QStringList args = QCoreApplication::arguments().mid(2);
    if (role == "settings")
        return plx::testchild::runSettings(args);
    if (role == "settingslock")
        return plx::testchild::runSettingsLock(args);
    if (role == "table")
        return plx::testchild::runTable(args);
    if (role == "recordlock")
        return plx::testchild::runRecordLock(args);
    if (role == "navigator")
        return plx::testchild::runNavigator(args);
    return 64;
}
