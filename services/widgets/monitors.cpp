// services/widgets/monitors.cpp: the monitor set, the virtual desktop and the monitor look-ups.
#include "services/widgets/monitors.h"

#include <QtMath>

#include <algorithm>
#include <cmath>
#include <limits>

namespace plx {

namespace {

constexpr double TwipsPerInch = 1440.0;
// The platform's usual resolution, for a monitor that reports none (and for no monitor).
constexpr double FallbackDpi = 96.0;

double twipsPerPixel(double dpi)
{
    return TwipsPerInch / (dpi > 0 ? dpi : FallbackDpi);
}

// How far apart two rectangles are along x plus along y (0 when they touch or overlap).
// A cheap measure of "nearest" that needs no square roots and never overflows.
qint64 gap(const QRect &a, const QRect &b)
{
    const qint64 dx = std::max<qint64>({ 0, qint64(b.left()) - (qint64(a.left()) + a.width()),
                                         qint64(a.left()) - (qint64(b.left()) + b.width()) });
    const qint64 dy = std::max<qint64>({ 0, qint64(b.top()) - (qint64(a.top()) + a.height()),
                                         qint64(a.top()) - (qint64(b.top()) + b.height()) });
    return dx + dy;
}

// Stored positions come from hand-editable files, so any number may arrive; Qt's own
// limit for widget coordinates keeps the result meaningful and the rounding defined.
qint32 boundedPixels(double pixels)
{
    if (!std::isfinite(pixels))
        return 0;
    return qint32(qRound64(std::clamp(pixels, -double(QWIDGETSIZE_MAX), double(QWIDGETSIZE_MAX))));
}

qint64 overlapArea(const QRect &a, const QRect &b)
{
    const QRect i = a.intersected(b);
    return i.isEmpty() ? 0 : qint64(i.width()) * i.height();
}

// Index of the monitor holding most of `area`, else the nearest; -1 without monitors.
// Ties go to the earlier monitor, so the primary wins an exact split.
qsizetype bestMonitor(const QList<clsMonitor> &monitors, const QRect &area)
{
    qsizetype best = -1;
    qint64 bestOverlap = 0;
    for (qsizetype i = 0; i < monitors.size(); ++i) {
        const qint64 o = overlapArea(monitors.at(i).rect(), area);
        if (o > bestOverlap) {
            bestOverlap = o;
            best = i;
        }
    }
    if (best >= 0)
        return best;
    qint64 bestGap = std::numeric_limits<qint64>::max();
    for (qsizetype i = 0; i < monitors.size(); ++i) {
        const qint64 g = gap(monitors.at(i).rect(), area);
        if (g < bestGap) {
            bestGap = g;
            best = i;
        }
    }
    return best;
}

} // namespace

clsMonitor::clsMonitor(const MonitorInfo &info)
    : m_handle(info.handle), m_height(info.geometry.height()), m_width(info.geometry.width()),
      m_left(info.geometry.left()), m_right(info.geometry.left() + info.geometry.width()),
      m_top(info.geometry.top()), m_bottom(info.geometry.top() + info.geometry.height())
{
    const QRect work = info.workArea.isEmpty() ? info.geometry : info.workArea;
    m_workLeft = work.left();
    m_workRight = work.left() + work.width();
    m_workTop = work.top();
    m_workBottom = work.top() + work.height();
}

clsMonitors::clsMonitors(const MonitorList *source) : m_source(monitorListOr(source))
{
    Refresh();
}

void clsMonitors::Refresh()
{
    const QList<MonitorInfo> infos = m_source.monitors();
    m_monitors.clear();
    m_desktop = QRect();
    for (const MonitorInfo &info : infos) {
        m_monitors.append(clsMonitor(info));
        m_desktop = m_desktop.united(info.geometry);
    }
    const MonitorInfo primary = infos.value(0);
    m_twipsPerPixelX = twipsPerPixel(infos.isEmpty() ? FallbackDpi : primary.logicalDpiX);
    m_twipsPerPixelY = twipsPerPixel(infos.isEmpty() ? FallbackDpi : primary.logicalDpiY);
}

clsMonitor clsMonitors::GetMonitorFromWindow(const QWidget *form) const
{
    if (!form)
        return {};
    // The frame, not the client area: it is what the user sees of the window. Before a
    // window is first shown its frame is not known yet and equals its geometry.
    const QRect frame = form->frameGeometry();
    return m_monitors.value(
        bestMonitor(m_monitors, frame.isEmpty() ? QRect(frame.topLeft(), QSize(1, 1)) : frame));
}

clsMonitor clsMonitors::GetMonitorFromXYPoint(qint32 x, qint32 y) const
{
    return m_monitors.value(bestMonitor(m_monitors, QRect(x, y, 1, 1)));
}

void clsMonitors::CenterFormOnMonitor(QWidget *form, const clsMonitor *monitor) const
{
    if (!form || m_monitors.isEmpty())
        return;
    const clsMonitor target = monitor ? *monitor : GetMonitorFromWindow(form);
    const QRect work = target.workRect();
    const QSize frame = form->frameGeometry().size();
    // Deliberate: a form larger than the work area is not centred past its top-left
    // corner, so its title bar (the only handle to move it) stays on the monitor.
    const int x = std::max(work.left(), work.left() + (work.width() - frame.width()) / 2);
    const int y = std::max(work.top(), work.top() + (work.height() - frame.height()) / 2);
    form->move(x, y);
}

qint32 clsMonitors::pixelsToTwipsX(qint32 pixels) const
{
    return qint32(qRound64(pixels * m_twipsPerPixelX));
}

qint32 clsMonitors::pixelsToTwipsY(qint32 pixels) const
{
    return qint32(qRound64(pixels * m_twipsPerPixelY));
}

qint32 clsMonitors::twipsToPixelsX(double twips) const
{
    return boundedPixels(twips / m_twipsPerPixelX);
}

qint32 clsMonitors::twipsToPixelsY(double twips) const
{
    return boundedPixels(twips / m_twipsPerPixelY);
}

} // namespace plx
