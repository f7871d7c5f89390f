// services/widgets/tests/simulateddesks.h: monitor arrangements the placement tests run on, so the
// rules are checked on desks this machine does not have.
#pragma once

#include "services/widgets/monitorlist.h"

namespace plx::test {

inline MonitorInfo monitorAt(int x, int y, int width, int height, quintptr handle,
                             double dpi = 96.0, QRect workArea = {})
{
    MonitorInfo m;
    m.geometry = QRect(x, y, width, height);
    m.workArea = workArea;
    m.logicalDpiX = dpi;
    m.logicalDpiY = dpi;
    m.handle = handle;
    m.name = QStringLiteral("Monitor %1").arg(handle);
    return m;
}

// 1920 x 1080 at the origin, a 40-pixel task bar at the bottom.
inline MonitorInfo primaryMonitor(double dpi = 96.0)
{
    return monitorAt(0, 0, 1920, 1080, 1, dpi, QRect(0, 0, 1920, 1040));
}

inline QList<MonitorInfo> oneMonitor(double dpi = 96.0)
{
    return { primaryMonitor(dpi) };
}

// A smaller second monitor (1280 x 1024) right of the primary: desktop 3200 x 1080.
inline QList<MonitorInfo> secondOnTheRight()
{
    return { primaryMonitor(), monitorAt(1920, 0, 1280, 1024, 2) };
}

// The same second monitor left of the primary: the desktop starts at x = -1280.
inline QList<MonitorInfo> secondOnTheLeft()
{
    return { primaryMonitor(), monitorAt(-1280, 0, 1280, 1024, 2) };
}

// A 1920 x 1200 monitor above the primary: the desktop starts at y = -1200.
inline QList<MonitorInfo> secondAbove()
{
    return { primaryMonitor(), monitorAt(0, -1200, 1920, 1200, 2) };
}

} // namespace plx::test
