// tests/support/child/settings.cpp: the settings role, a second program changing one
// settings file or activity log at the same moment as another.
// The installation directory comes from PLX_HARROWBY_DIR.
#include "tests/support/child/roles.h"

#include "services/activitylog.h"
#include "services/env.h"
#include "services/ini.h"

#include <QCoreApplication>

namespace plx::testchild {
namespace {

// Logging from a helper needs no event loop; the pump does nothing.
class NoPump : public UiPump
{
public:
    void processEvents() override { }
};

// FILE SECTION KEYPREFIX COUNT: KEYPREFIX1=v1 .. KEYPREFIXn=vn, one writeINI each.
int writeKeys(const QStringList &args)
{
    const int count = args.value(3).toInt();
    for (int i = 1; i <= count; ++i) {
        const QString n = QString::number(i);
        if (!writeINI(args.at(1), args.at(2) + n, args.at(0), QStringLiteral("v") + n))
            return 2;
    }
    return 0;
}

// FILE PREFIX COUNT: deletes sections PREFIX1 .. PREFIXn.
int deleteSections(const QStringList &args)
{
    const int count = args.value(2).toInt();
    for (int i = 1; i <= count; ++i) {
        if (!deleteINISection(args.at(1) + QString::number(i), args.at(0)))
            return 2;
    }
    return 0;
}

// COUNT TAG: entries of two lines each, "TAG entry i" and "second line of TAG".
int writeLog(const QStringList &args)
{
    const int count = args.value(0).toInt();
    NoPump pump;
    SystemClock clock;
    Services services{ nullptr, &clock, &pump };
    for (int i = 1; i <= count; ++i) {
        const QString what = args.value(1) + QStringLiteral(" entry ") + QString::number(i)
            + QStringLiteral("\r\nsecond line of ") + args.value(1);
        if (!logEntry(QStringLiteral("testchild"), what, &services))
            return 2;
    }
    return 0;
}

} // namespace

int runSettings(const QStringList &args)
{
    QCoreApplication::setApplicationVersion(QStringLiteral("1.2.34"));
    const QString mode = args.value(0);
    const QStringList rest = args.mid(1);
    if (mode == QLatin1String("ini") && rest.size() == 4)
        return writeKeys(rest);
    if (mode == QLatin1String("deletesections") && rest.size() == 3)
        return deleteSections(rest);
    if (mode == QLatin1String("log") && rest.size() == 2)
        return writeLog(rest);
    return 1;
}

} // namespace plx::testchild
