// The monitor set: the desktop it measures in pixels and twips, the monitor of a point or a
// window, and what a refresh sees after a monitor was unplugged. Simulated desks stand in
// for monitors this machine does not have; one test reads Qt's real screens.
#include "services/widgets/monitors.h"

#include "services/widgets/tests/simulateddesks.h"

#include <QGuiApplication>
#include <QScreen>
#include <QWidget>

#include <gtest/gtest.h>

namespace plx::test {

namespace {

struct Desktop
{
    int left, top, width, height;
};

void expectDesktop(const clsMonitors &m, Desktop px, Desktop twips)
{
    EXPECT_EQ(m.DesktopLeft(), px.left);
    EXPECT_EQ(m.DesktopTop(), px.top);
    EXPECT_EQ(m.DesktopWidth(), px.width);
    EXPECT_EQ(m.DesktopHeight(), px.height);
    EXPECT_EQ(m.DesktopLeftTwps(), twips.left);
    EXPECT_EQ(m.DesktopTopTwps(), twips.top);
    EXPECT_EQ(m.DesktopWidthTwps(), twips.width);
    EXPECT_EQ(m.DesktopHeightTwps(), twips.height);
}

} // namespace

TEST(MonitorsTest, TwipsFollowThePrimaryMonitorsResolutionPerAxis)
{
    // 1440 twips to the logical inch: 15 a pixel at 96 dpi, 12 at 120, 10 at 144.
    const FixedMonitorList at96(oneMonitor(96));
    expectDesktop(clsMonitors(&at96), { 0, 0, 1920, 1080 }, { 0, 0, 28800, 16200 });
    const FixedMonitorList at120(oneMonitor(120));
    expectDesktop(clsMonitors(&at120), { 0, 0, 1920, 1080 }, { 0, 0, 23040, 12960 });
    const FixedMonitorList at144(oneMonitor(144));
    expectDesktop(clsMonitors(&at144), { 0, 0, 1920, 1080 }, { 0, 0, 19200, 10800 });

    MonitorInfo uneven = primaryMonitor();
    uneven.logicalDpiX = 96;
    uneven.logicalDpiY = 144;
    const FixedMonitorList unevenList({ uneven });
    const clsMonitors m(&unevenList);
    EXPECT_EQ(m.DesktopWidthTwps(), 28800) << "x uses the x resolution";
    EXPECT_EQ(m.DesktopHeightTwps(), 10800) << "y uses the y resolution";

    // The primary's factor holds for the whole desktop, whatever the second reports.
    QList<MonitorInfo> mixed = secondOnTheRight();
    mixed[1].logicalDpiX = mixed[1].logicalDpiY = 192;
    const FixedMonitorList mixedList(mixed);
    EXPECT_EQ(clsMonitors(&mixedList).DesktopWidthTwps(), 3200 * 15);
}

TEST(MonitorsTest, DesktopHoldsEveryMonitorWhereverItSits)
{
    const FixedMonitorList right(secondOnTheRight());
    expectDesktop(clsMonitors(&right), { 0, 0, 3200, 1080 }, { 0, 0, 48000, 16200 });
    const FixedMonitorList left(secondOnTheLeft());
    expectDesktop(clsMonitors(&left), { -1280, 0, 3200, 1080 }, { -19200, 0, 48000, 16200 });
    const FixedMonitorList above(secondAbove());
    expectDesktop(clsMonitors(&above), { 0, -1200, 1920, 2280 }, { 0, -18000, 28800, 34200 });

    const clsMonitors m(&right);
    ASSERT_EQ(m.Count(), 2);
    EXPECT_EQ(m.PrimaryMonitor().Handle(), 1u);
    EXPECT_EQ(m.Monitors().at(1).Handle(), 2u);
}

TEST(MonitorsTest, MonitorRecordHasExclusiveEdgesAndItsWorkArea)
{
    const clsMonitor primary(primaryMonitor());
    EXPECT_EQ(primary.Handle(), 1u);
    EXPECT_EQ(primary.rect(), QRect(0, 0, 1920, 1080));
    EXPECT_EQ(primary.Right(), 1920) << "Right = Left + Width";
    EXPECT_EQ(primary.Bottom(), 1080);
    EXPECT_EQ(primary.WorkLeft(), 0);
    EXPECT_EQ(primary.WorkTop(), 0);
    EXPECT_EQ(primary.WorkRight(), 1920);
    EXPECT_EQ(primary.WorkBottom(), 1040) << "the task bar is not work area";

    // A platform that reports no work area: the whole monitor is work area.
    const clsMonitor second(monitorAt(-1280, 100, 1280, 1024, 7));
    EXPECT_EQ(second.Right(), 0);
    EXPECT_EQ(second.Bottom(), 1124);
    EXPECT_EQ(second.workRect(), QRect(-1280, 100, 1280, 1024));
}

TEST(MonitorsTest, PointsBelongToTheMonitorHoldingThemElseTheNearest)
{
    const FixedMonitorList list(secondOnTheRight());
    const clsMonitors m(&list);
    EXPECT_EQ(m.GetMonitorFromXYPoint(0, 0).Handle(), 1u);
    EXPECT_EQ(m.GetMonitorFromXYPoint(1919, 1079).Handle(), 1u);
    EXPECT_EQ(m.GetMonitorFromXYPoint(1920, 0).Handle(), 2u) << "the right edge is exclusive";
    EXPECT_EQ(m.GetMonitorFromXYPoint(3199, 1023).Handle(), 2u);
    // Below the shorter second monitor: inside the desktop, on no monitor.
    EXPECT_EQ(m.GetMonitorFromXYPoint(3000, 1050).Handle(), 2u);
    EXPECT_EQ(m.GetMonitorFromXYPoint(1900, 1070).Handle(), 1u);
    EXPECT_EQ(m.GetMonitorFromXYPoint(-500, 500).Handle(), 1u);
    EXPECT_EQ(m.GetMonitorFromXYPoint(9000, -9000).Handle(), 2u);
}

TEST(MonitorsTest, WindowsBelongToTheMonitorHoldingMostOfThem)
{
    const FixedMonitorList list(secondOnTheRight());
    const clsMonitors m(&list);
    QWidget form;
    form.setGeometry(1700, 100, 400, 300); // 220 pixels on the primary, 180 on the second
    EXPECT_EQ(m.GetMonitorFromWindow(&form).Handle(), 1u);
    form.move(1800, 100); // 120 on the primary, 280 on the second
    EXPECT_EQ(m.GetMonitorFromWindow(&form).Handle(), 2u);
    form.move(5000, 2000); // on no monitor: the nearest
    EXPECT_EQ(m.GetMonitorFromWindow(&form).Handle(), 2u);
    form.move(-3000, 200);
    EXPECT_EQ(m.GetMonitorFromWindow(&form).Handle(), 1u);
    EXPECT_EQ(m.GetMonitorFromWindow(nullptr), clsMonitor());
}

TEST(MonitorsTest, RefreshSeesAMonitorUnplugged)
{
    FixedMonitorList list(secondOnTheRight());
    clsMonitors m(&list);
    list.setMonitors(oneMonitor());
    EXPECT_EQ(m.Count(), 2) << "a snapshot until Refresh";
    EXPECT_EQ(m.DesktopWidth(), 3200);
    m.Refresh();
    EXPECT_EQ(m.Count(), 1);
    expectDesktop(m, { 0, 0, 1920, 1080 }, { 0, 0, 28800, 16200 });
    EXPECT_EQ(m.GetMonitorFromXYPoint(2500, 500).Handle(), 1u);

    list.setMonitors({});
    m.Refresh();
    EXPECT_EQ(m.Count(), 0);
    expectDesktop(m, { 0, 0, 0, 0 }, { 0, 0, 0, 0 });
    EXPECT_EQ(m.TwipsPerPixelX(), 15.0);
    EXPECT_EQ(m.GetMonitorFromXYPoint(10, 10), clsMonitor());
}

TEST(MonitorsTest, CenterFormOnMonitorUsesTheWorkArea)
{
    QList<MonitorInfo> desk = secondOnTheRight();
    desk[1].workArea = QRect(1920, 24, 1280, 1000); // a panel along the top
    const FixedMonitorList list(desk);
    const clsMonitors m(&list);
    QWidget form;
    form.resize(400, 300);

    const clsMonitor second = m.Monitors().at(1);
    m.CenterFormOnMonitor(&form, &second);
    EXPECT_EQ(form.pos(), QPoint(1920 + (1280 - 400) / 2, 24 + (1000 - 300) / 2));

    // No monitor given: the monitor the form is on (here the primary, task bar excluded).
    form.move(100, 100);
    m.CenterFormOnMonitor(&form);
    EXPECT_EQ(form.pos(), QPoint((1920 - 400) / 2, (1040 - 300) / 2));
    form.move(2900, 900);
    m.CenterFormOnMonitor(&form);
    EXPECT_EQ(form.pos(), QPoint(2360, 374));

    // Larger than the work area: the title bar stays on the monitor.
    form.resize(1500, 1200);
    m.CenterFormOnMonitor(&form, &second);
    EXPECT_EQ(form.pos(), QPoint(1920, 24));

    const FixedMonitorList none;
    form.move(7, 8);
    clsMonitors(&none).CenterFormOnMonitor(&form);
    EXPECT_EQ(form.pos(), QPoint(7, 8));
}

TEST(MonitorsTest, QtScreensAreTheDefaultList)
{
    const QList<QScreen *> screens = QGuiApplication::screens();
    ASSERT_FALSE(screens.isEmpty());
    const QScreen *primary = QGuiApplication::primaryScreen();
    const QList<MonitorInfo> infos = QtMonitorList().monitors();
    ASSERT_EQ(infos.size(), screens.size());
    EXPECT_EQ(infos.first().geometry, primary->geometry());
    EXPECT_EQ(infos.first().workArea, primary->availableGeometry());
    EXPECT_EQ(infos.first().handle, reinterpret_cast<quintptr>(primary));

    const clsMonitors m; // Qt's screens
    EXPECT_DOUBLE_EQ(m.TwipsPerPixelX(), 1440.0 / primary->logicalDotsPerInchX());
    EXPECT_DOUBLE_EQ(m.TwipsPerPixelY(), 1440.0 / primary->logicalDotsPerInchY());
    EXPECT_EQ(QRect(m.DesktopLeft(), m.DesktopTop(), m.DesktopWidth(), m.DesktopHeight()),
              primary->virtualGeometry());
    EXPECT_EQ(m.PrimaryMonitor().rect(), primary->geometry());
}

} // namespace plx::test
