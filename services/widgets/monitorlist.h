// services/widgets/monitorlist.h: where the monitor classes get their monitors from.
//
// The placement rules depend on how many monitors there are, where they sit and how fine
// their resolution is. Those facts come through this small seam so that the rules can be
// checked with simulated desks (two side by side, one above the other, a monitor that has
// been unplugged) on a machine that has none of them. Hosts never need it: every function
// that takes a `const MonitorList *` reads Qt's screens when given nullptr.
#pragma once

#include <QList>
#include <QRect>
#include <QString>

#include <utility>

namespace plx {

// One monitor as the platform reports it, in Qt's desktop coordinates (logical pixels).
struct MonitorInfo
{
    QRect geometry; // the whole monitor
    QRect workArea; // the monitor less task bars and docks; an empty rectangle means "all of it"
    double logicalDpiX = 96.0; // logical dots per inch; twips per pixel = 1440 / dpi
    double logicalDpiY = 96.0;
    quintptr handle = 0; // identifies the monitor for as long as it stays attached
    QString name;
};

// The source of the monitor list. The first monitor of the list is the primary one: the
// "screen" of the single-screen rules, and the one whose resolution converts pixels to twips.
class MonitorList
{
public:
    virtual ~MonitorList() = default;
    // A fresh snapshot, primary first. May be empty when no display is attached.
    virtual QList<MonitorInfo> monitors() const = 0;
};

// Qt's screens (QGuiApplication::screens(), whose first entry is the primary screen).
// Needs a QGuiApplication; without one the list is empty.
class QtMonitorList : public MonitorList
{
public:
    QList<MonitorInfo> monitors() const override;
};

// A list held in memory: simulated desks in tests, or a host that lays out its forms on a
// fixed, known arrangement. setMonitors() stands for plugging monitors in or out.
class FixedMonitorList : public MonitorList
{
public:
    FixedMonitorList() = default;
    explicit FixedMonitorList(QList<MonitorInfo> list) : m_list(std::move(list)) { }
    QList<MonitorInfo> monitors() const override { return m_list; }
    void setMonitors(QList<MonitorInfo> list) { m_list = std::move(list); }

private:
    QList<MonitorInfo> m_list;
};

// The list every function uses when given nullptr: a process-wide QtMonitorList.
const MonitorList &systemMonitorList();
// `list`, or systemMonitorList() for nullptr.
const MonitorList &monitorListOr(const MonitorList *list);

} // namespace plx
