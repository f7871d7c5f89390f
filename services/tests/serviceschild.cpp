// services/tests/serviceschild.cpp: a helper process for the cross-process tests.
//
//   services_child ini <file> <section> <keyPrefix> <count>   writes keyPrefix1..count
//   services_child deletesections <file> <prefix> <count>     deletes sections prefix1..count
//   services_child log <count> <tag>                           logs count entries
// The installation directory comes from PLX_HARROWBY_DIR. Exit code 0 on success.
#include "services/activitylog.h"
#include "services/env.h"
#include "services/ini.h"

#include <QCoreApplication>
#include <QStringList>

namespace {

// Logging from a helper needs no event loop; the pump does nothing.
class NoPump : public plx::UiPump
{
public:
    void processEvents() override { }
};

int writeKeys(const QStringList &args)
{
    const int count = args.value(5).toInt();
    for (int i = 1; i <= count; ++i) {
        const QString n = QString::number(i);
        if (!plx::writeINI(args.at(3), args.at(4) + n, args.at(2), QStringLiteral("v") + n))
            return 2;
    }
    return 0;
}

int deleteSections(const QStringList &args)
{
    const int count = args.value(4).toInt();
    for (int i = 1; i <= count; ++i) {
        if (!plx::deleteINISection(args.at(3) + QString::number(i), args.at(2)))
            return 2;
    }
    return 0;
}

int writeLog(const QStringList &args)
{
    const int count = args.value(2).toInt();
    NoPump pump;
    plx::SystemClock clock;
    plx::Services services{ nullptr, &clock, &pump };
    for (int i = 1; i <= count; ++i) {
        const QString what = args.value(3) + QStringLiteral(" entry ") + QString::number(i)
            + QStringLiteral("\r\nsecond line of ") + args.value(3);
        if (!plx::logEntry(QStringLiteral("serviceschild"), what, &services))
            return 2;
    }
    return 0;
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationVersion(QStringLiteral("1.2.34"));
    const QStringList args = QCoreApplication::arguments();
    if (args.value(1) == QStringLiteral("ini") && args.size() == 6)
        return writeKeys(args);
    if (args.value(1) == QStringLiteral("deletesections") && args.size() == 5)
        return deleteSections(args);
    if (args.value(1) == QStringLiteral("log") && args.size() == 4)
        return writeLog(args);
    return 1;
}
