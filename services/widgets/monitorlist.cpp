// services/widgets/monitorlist.cpp: Qt's screens as the library's monitor list.
#include "services/widgets/monitorlist.h"

#include <QGuiApplication>
#include <QScreen>

namespace plx {

QList<MonitorInfo> QtMonitorList::monitors() const
{
    QList<MonitorInfo> list;
    // Without a GUI application there are no screens to ask (command-line tools).
    if (!qobject_cast<QGuiApplication *>(QCoreApplication::instance()))
        return list;
    const QScreen *primary = QGuiApplication::primaryScreen();
    const QList<QScreen *> screens = QGuiApplication::screens();
    for (const QScreen *screen : screens) {
        MonitorInfo info;
        info.geometry = screen->geometry();
        info.workArea = screen->availableGeometry();
        info.logicalDpiX = screen->logicalDotsPerInchX();
        info.logicalDpiY = screen->logicalDotsPerInchY();
        info.handle = reinterpret_cast<quintptr>(screen);
        info.name = screen->name();
        // Qt documents screens() as primary first; keep that true even if a platform
        // plugin reorders, since the primary monitor is the "screen" of the placement rules.
        if (screen == primary)
            list.prepend(info);
        else
            list.append(info);
    }
    return list;
}

const MonitorList &systemMonitorList()
{
    static const QtMonitorList list;
    return list;
}

const MonitorList &monitorListOr(const MonitorList *list)
{
    return list ? *list : systemMonitorList();
}

} // namespace plx
