// services/widgets/monitors.h: the monitors attached to the machine and the desktop they make up.
//
// clsMonitors takes a snapshot of the monitor list (Qt's screens unless another
// plx::MonitorList is given), measures the virtual desktop that holds them all, and answers
// which monitor holds a window or a point. The placement functions (services/widgets/formplacement.h)
// use it to keep restored forms reachable; hosts may use it to put a form on a monitor.
//
// Units: monitor rectangles and the Desktop* properties are in pixels of Qt's desktop
// coordinates; the Desktop*Twps properties are the same in twips. Twips per pixel come from
// the primary monitor's logical resolution (1440 twips to the logical inch, so 15 at 96 dpi,
// 10 at 144 dpi). One factor serves the whole desktop because Qt already lays every monitor
// out in the same logical pixels, whatever each monitor's own scale.
//
// GUI thread only (Qt's screens live there).
#pragma once

#include "services/widgets/monitorlist.h"

#include <QList>
#include <QObject>
#include <QPoint>
#include <QRect>
#include <QWidget>

namespace plx {

// One monitor: a plain record. Right and Bottom are exclusive edges (Right = Left + Width),
// as in the platform's rectangles the hosts were written against; the Work* edges describe
// the work area (the monitor less task bars) the same way. Setting one property never changes
// another.
class clsMonitor
{
    Q_GADGET
    Q_PROPERTY(quintptr Handle READ Handle WRITE setHandle)
    Q_PROPERTY(qint32 Height READ Height WRITE setHeight)
    Q_PROPERTY(qint32 Width READ Width WRITE setWidth)
    Q_PROPERTY(qint32 Left READ Left WRITE setLeft)
    Q_PROPERTY(qint32 Right READ Right WRITE setRight)
    Q_PROPERTY(qint32 Top READ Top WRITE setTop)
    Q_PROPERTY(qint32 Bottom READ Bottom WRITE setBottom)
    Q_PROPERTY(qint32 WorkLeft READ WorkLeft WRITE setWorkLeft)
    Q_PROPERTY(qint32 WorkRight READ WorkRight WRITE setWorkRight)
    Q_PROPERTY(qint32 WorkTop READ WorkTop WRITE setWorkTop)
    Q_PROPERTY(qint32 WorkBottom READ WorkBottom WRITE setWorkBottom)

public:
    clsMonitor() = default;
    // The record of `info`; an empty work area stands for the whole monitor.
    explicit clsMonitor(const MonitorInfo &info);

    quintptr Handle() const { return m_handle; }
    void setHandle(quintptr v) { m_handle = v; }
    qint32 Height() const { return m_height; }
    void setHeight(qint32 v) { m_height = v; }
    qint32 Width() const { return m_width; }
    void setWidth(qint32 v) { m_width = v; }
    qint32 Left() const { return m_left; }
    void setLeft(qint32 v) { m_left = v; }
    qint32 Right() const { return m_right; }
    void setRight(qint32 v) { m_right = v; }
    qint32 Top() const { return m_top; }
    void setTop(qint32 v) { m_top = v; }
    qint32 Bottom() const { return m_bottom; }
    void setBottom(qint32 v) { m_bottom = v; }
    qint32 WorkLeft() const { return m_workLeft; }
    void setWorkLeft(qint32 v) { m_workLeft = v; }
    qint32 WorkRight() const { return m_workRight; }
    void setWorkRight(qint32 v) { m_workRight = v; }
    qint32 WorkTop() const { return m_workTop; }
    void setWorkTop(qint32 v) { m_workTop = v; }
    qint32 WorkBottom() const { return m_workBottom; }
    void setWorkBottom(qint32 v) { m_workBottom = v; }

    // The rectangles as Qt rectangles (pixels).
    QRect rect() const { return QRect(m_left, m_top, m_right - m_left, m_bottom - m_top); }
    QRect workRect() const
    {
        return QRect(m_workLeft, m_workTop, m_workRight - m_workLeft, m_workBottom - m_workTop);
    }

    friend bool operator==(const clsMonitor &, const clsMonitor &) = default;

private:
    quintptr m_handle = 0;
    qint32 m_height = 0;
    qint32 m_width = 0;
    qint32 m_left = 0;
    qint32 m_right = 0;
    qint32 m_top = 0;
    qint32 m_bottom = 0;
    qint32 m_workLeft = 0;
    qint32 m_workRight = 0;
    qint32 m_workTop = 0;
    qint32 m_workBottom = 0;
};

// The set of monitors and the virtual desktop (the smallest rectangle holding every
// monitor). A snapshot: it changes only on Refresh().
class clsMonitors
{
    Q_GADGET
    Q_PROPERTY(qint32 DesktopLeft READ DesktopLeft)
    Q_PROPERTY(qint32 DesktopTop READ DesktopTop)
    Q_PROPERTY(qint32 DesktopWidth READ DesktopWidth)
    Q_PROPERTY(qint32 DesktopHeight READ DesktopHeight)
    Q_PROPERTY(qint32 DesktopLeftTwps READ DesktopLeftTwps)
    Q_PROPERTY(qint32 DesktopTopTwps READ DesktopTopTwps)
    Q_PROPERTY(qint32 DesktopWidthTwps READ DesktopWidthTwps)
    Q_PROPERTY(qint32 DesktopHeightTwps READ DesktopHeightTwps)

public:
    // Reads `source` (Qt's screens for nullptr) at once. Does not take ownership of
    // `source`, which must outlive this object.
    explicit clsMonitors(const MonitorList *source = nullptr);

    qint32 DesktopLeft() const { return m_desktop.left(); }
    qint32 DesktopTop() const { return m_desktop.top(); }
    qint32 DesktopWidth() const { return m_desktop.width(); }
    qint32 DesktopHeight() const { return m_desktop.height(); }
    qint32 DesktopLeftTwps() const { return pixelsToTwipsX(DesktopLeft()); }
    qint32 DesktopTopTwps() const { return pixelsToTwipsY(DesktopTop()); }
    qint32 DesktopWidthTwps() const { return pixelsToTwipsX(DesktopWidth()); }
    qint32 DesktopHeightTwps() const { return pixelsToTwipsY(DesktopHeight()); }

    // The monitor that holds most of `form`'s frame; when the frame lies on no monitor,
    // the nearest one. A default (all-zero) record when there are no monitors.
    Q_INVOKABLE plx::clsMonitor GetMonitorFromWindow(const QWidget *form) const;
    // The monitor that holds the point (pixels); when none does, the nearest one.
    Q_INVOKABLE plx::clsMonitor GetMonitorFromXYPoint(qint32 x, qint32 y) const;
    // Centres `form`'s frame on the work area of `monitor`, or of the monitor that holds
    // the form when `monitor` is nullptr. A form larger than the work area keeps its title
    // bar and left edge on the work area. Does nothing for a null form or without monitors.
    Q_INVOKABLE void CenterFormOnMonitor(QWidget *form,
                                         const plx::clsMonitor *monitor = nullptr) const;
    // Re-reads the monitor list and the desktop metrics (after monitors were plugged in or
    // out, or a resolution changed).
    Q_INVOKABLE void Refresh();

    // The monitors, primary first.
    QList<clsMonitor> Monitors() const { return m_monitors; }
    qint32 Count() const { return qint32(m_monitors.size()); }
    // The primary monitor (a default record when there are none).
    clsMonitor PrimaryMonitor() const { return m_monitors.value(0); }

    // Twips per pixel of the primary monitor (15 at 96 dpi; 15 when there are no monitors).
    double TwipsPerPixelX() const { return m_twipsPerPixelX; }
    double TwipsPerPixelY() const { return m_twipsPerPixelY; }
    // Conversions with those factors, rounded to the nearest whole unit.
    qint32 pixelsToTwipsX(qint32 pixels) const;
    qint32 pixelsToTwipsY(qint32 pixels) const;
    qint32 twipsToPixelsX(double twips) const;
    qint32 twipsToPixelsY(double twips) const;

private:
    const MonitorList &m_source;
    QList<clsMonitor> m_monitors;
    QRect m_desktop;
    double m_twipsPerPixelX = 15.0;
    double m_twipsPerPixelY = 15.0;
};

} // namespace plx
