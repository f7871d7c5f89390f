// Saved form positions and sizes through real settings files, and the rule that keeps a
// restored form reachable, on simulated desks: one monitor, two side by side, one above the
// other, different sizes and resolutions, a monitor unplugged since the last save.
//
// All forms here are 400 x 300 pixels, at 96 dpi 6000 x 4500 twips, so a tenth of the form
// is 600 twips wide and 450 high. The primary monitor is 1920 x 1080 (28800 x 16200 twips).
#include "services/widgets/formplacement.h"

#include "services/ini.h"
#include "services/widgets/monitors.h"
#include "tests/support/envguard.h"
#include "services/widgets/tests/simulateddesks.h"
#include "tests/support/testfiles.h"

#include <QFile>
#include <QGuiApplication>
#include <QMainWindow>
#include <QScreen>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

namespace plx::test {

namespace {

// Where setFormCenter puts a 400 x 300 form on the primary monitor.
const QPoint CentredOnPrimary((1920 - 400) / 2, (1080 - 300) / 2);

class FormPlacementTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(dir.isValid());
        env.installAt(dir.path());
        form.setObjectName(QStringLiteral("frmVIValues"));
        form.setGeometry(200, 100, 400, 300);
    }

    QString formsIni() const { return dir.filePath(QStringLiteral("forms.ini")); }
    QString defaultsIni() const { return dir.filePath(QStringLiteral("HBDEFAULTS.INI")); }

    // "MultipleMonitors" as the machine's defaults file says.
    void setMultipleMonitors(const char *value)
    {
        writeBytes(defaultsIni(), QByteArray("[CONFIG]\r\nMultipleMonitors=") + value + "\r\n");
    }
    // A settings file holding one saved position of the form (twips).
    void savedPosition(const char *x, const char *y)
    {
        writeBytes(formsIni(),
                   QByteArray("[CONFIG]\r\nfrmVIValues-X=") + x + "\r\nfrmVIValues-Y=" + y
                       + "\r\n");
    }
    // Restores the saved position onto the desk `monitors`; returns where the form went.
    QPoint restoreOn(const QList<MonitorInfo> &monitors)
    {
        desk.setMonitors(monitors);
        restoreFormPosition(&form, QString(), 0, 0, formsIni(), &desk);
        return form.pos();
    }

    EnvGuard env;
    QTemporaryDir dir;
    FixedMonitorList desk{ oneMonitor() };
    QMainWindow form;
};

} // namespace

TEST_F(FormPlacementTest, KeyBaseIsTheNameAndSuffixJoinedByOneBlank)
{
    EXPECT_EQ(formKeyBase(&form, QString()), QStringLiteral("frmVIValues"));
    EXPECT_EQ(formKeyBase(&form, QStringLiteral("Grid")), QStringLiteral("frmVIValues Grid"));
    EXPECT_EQ(formKeyBase(&form, QStringLiteral(" Grid ")), QStringLiteral("frmVIValues  Grid"));
    QMainWindow unnamed;
    EXPECT_EQ(formKeyBase(&unnamed, QStringLiteral("Grid")), QStringLiteral("QMainWindow Grid"));

    // An empty suffix gives keys such as frmVIValues-X.
    ASSERT_TRUE(saveFormPlacement(&form, QString(), formsIni(), &desk));
    ASSERT_TRUE(saveFormPlacement(&form, QStringLiteral("Grid"), formsIni(), &desk));
    EXPECT_EQ(readBytes(formsIni()),
              "[CONFIG]\r\nfrmVIValues-X=3000\r\nfrmVIValues-Y=1500\r\n"
              "frmVIValues-H=4500\r\nfrmVIValues-W=6000\r\n"
              "frmVIValues Grid-X=3000\r\nfrmVIValues Grid-Y=1500\r\n"
              "frmVIValues Grid-H=4500\r\nfrmVIValues Grid-W=6000\r\n");
}

TEST_F(FormPlacementTest, SavesTwipsAtTheScreensResolution)
{
    desk.setMonitors(oneMonitor(144)); // 10 twips a pixel
    form.setGeometry(-37, 100, 640, 481);
    ASSERT_TRUE(saveFormPosition(&form, QString(), formsIni(), &desk));
    ASSERT_TRUE(saveFormSize(&form, QString(), formsIni(), &desk));
    EXPECT_EQ(readBytes(formsIni()),
              "[CONFIG]\r\nfrmVIValues-X=-370\r\nfrmVIValues-Y=1000\r\n"
              "frmVIValues-H=4810\r\nfrmVIValues-W=6400\r\n");

    // ... and reads them back at that resolution.
    QMainWindow again;
    again.setObjectName(QStringLiteral("frmVIValues"));
    desk.setMonitors({ monitorAt(0, 0, 1920, 1080, 1, 144), monitorAt(-1280, 0, 1280, 1024, 2) });
    restoreFormPlacement(&again, QString(), formsIni(), &desk);
    EXPECT_EQ(again.pos(), QPoint(-37, 100));
    EXPECT_EQ(again.size(), QSize(640, 481));
}

TEST_F(FormPlacementTest, NothingIsSavedOutsideTheNormalState)
{
    const QByteArray before = "[CONFIG]\r\nfrmVIValues-X=15\r\nfrmVIValues-Y=30\r\n"
                              "frmVIValues-H=45\r\nfrmVIValues-W=60\r\n";
    writeBytes(formsIni(), before);
    for (Qt::WindowState state :
         { Qt::WindowMinimized, Qt::WindowMaximized, Qt::WindowFullScreen }) {
        form.setWindowState(state);
        EXPECT_FALSE(saveFormPosition(&form, QString(), formsIni(), &desk)) << state;
        EXPECT_FALSE(saveFormSize(&form, QString(), formsIni(), &desk)) << state;
        EXPECT_FALSE(saveFormPlacement(&form, QString(), formsIni(), &desk)) << state;
        EXPECT_EQ(readBytes(formsIni()), before) << "the normal-state geometry survives";
    }
    form.setWindowState(Qt::WindowNoState);
    form.setGeometry(200, 100, 400, 300);
    EXPECT_TRUE(saveFormPlacement(&form, QString(), formsIni(), &desk));
    EXPECT_NE(readBytes(formsIni()), before);
    EXPECT_FALSE(saveFormPlacement(nullptr, QString(), formsIni(), &desk));
}

TEST_F(FormPlacementTest, ABlankFileMeansTheDefaultsFile)
{
    ASSERT_TRUE(saveFormPlacement(&form, QString(), QStringLiteral("  "), &desk));
    EXPECT_EQ(readBytes(defaultsIni()),
              "[CONFIG]\r\nfrmVIValues-X=3000\r\nfrmVIValues-Y=1500\r\n"
              "frmVIValues-H=4500\r\nfrmVIValues-W=6000\r\n");
    EXPECT_FALSE(QFile::exists(formsIni()));

    QMainWindow again;
    again.setObjectName(QStringLiteral("frmVIValues"));
    again.setGeometry(0, 0, 100, 100);
    restoreFormPlacement(&again, QString(), QString(), &desk);
    EXPECT_EQ(again.geometry(), QRect(200, 100, 400, 300));
}

TEST_F(FormPlacementTest, RestoreSizeTakesOnlyPositiveNumbers)
{
    const auto restoreFrom = [this](const QByteArray &lines, qint32 defH, qint32 defW) {
        writeBytes(formsIni(), "[CONFIG]\r\n" + lines);
        form.resize(400, 300);
        restoreFormSize(&form, QString(), defH, defW, formsIni(), &desk);
        return form.size();
    };
    EXPECT_EQ(restoreFrom("frmVIValues-H=7500\r\nfrmVIValues-W=9000\r\n", 0, 0), QSize(600, 500));
    // A stored 0 or negative value leaves that side alone.
    EXPECT_EQ(restoreFrom("frmVIValues-H=0\r\nfrmVIValues-W=9000\r\n", 0, 0), QSize(600, 300));
    EXPECT_EQ(restoreFrom("frmVIValues-H=7500\r\nfrmVIValues-W=-9000\r\n", 0, 0), QSize(400, 500));
    // Not a number: converted as numbers in the hosts' files always were.
    EXPECT_EQ(restoreFrom("frmVIValues-H=abc\r\nfrmVIValues-W=9,000 twips\r\n", 0, 0),
              QSize(600, 300));
    // Missing keys: the given defaults, or the current size for a default below 1.
    EXPECT_EQ(restoreFrom("", 3000, 4500), QSize(300, 200));
    EXPECT_EQ(restoreFrom("", 0, -5), QSize(400, 300));
    EXPECT_EQ(restoreFrom("frmVIValues-W=1500\r\n", 3000, 0), QSize(100, 200));
}

TEST_F(FormPlacementTest, RestorePositionDefaultsToTheGivenOrCurrentPosition)
{
    writeBytes(formsIni(), "[CONFIG]\r\nOther-X=1\r\n");
    restoreFormPosition(&form, QString(), 0, 0, formsIni(), &desk);
    EXPECT_EQ(form.pos(), QPoint(200, 100)) << "a first opening keeps the designed position";
    restoreFormPosition(&form, QString(), 1500, 750, formsIni(), &desk);
    EXPECT_EQ(form.pos(), QPoint(100, 50));
    restoreFormPosition(&form, QString(), 4500, -1, formsIni(), &desk);
    EXPECT_EQ(form.pos(), QPoint(300, 50));
}

TEST_F(FormPlacementTest, AShownWindowKeepsItsPlaceAcrossSessions)
{
    // Restored before show(), saved after the user moved it: the way hosts use it, with Qt's
    // real screens (a window manager may add a frame; the numbers must not drift with it).
    const QRect primary = QGuiApplication::primaryScreen()->availableGeometry();
    form.setGeometry(primary.left() + 40, primary.top() + 60, 300, 200);
    ASSERT_TRUE(saveFormPlacement(&form, QString(), formsIni()));
    const QByteArray saved = readBytes(formsIni());

    QMainWindow shown;
    shown.setObjectName(QStringLiteral("frmVIValues"));
    restoreFormPlacement(&shown, QString(), formsIni());
    shown.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&shown));
    EXPECT_EQ(shown.pos(), form.pos());
    EXPECT_EQ(shown.size(), form.size());
    ASSERT_TRUE(saveFormPlacement(&shown, QString(), formsIni()));
    EXPECT_EQ(readBytes(formsIni()), saved);
}

// A restored form keeps a tenth of itself on the primary monitor ("MultipleMonitors" 0) or
// on the whole desktop (otherwise, and by default); where it would not, it is centred on the
// primary monitor.
TEST_F(FormPlacementTest, ARestoredFormStaysReachable)
{
    const QPoint centred = CentredOnPrimary;
    const struct
    {
        const char *multipleMonitors; // nullptr: the defaults file does not say
        const char *x;
        const char *y;
        QList<MonitorInfo> desk;
        QPoint expected;
        const char *why;
    } cases[] = {
        { "0", "-15", "750", oneMonitor(), { 192, 50 }, "off the left: a tenth (2880) in" },
        { "0", "1500", "-1", oneMonitor(), { 100, 108 }, "off the top: a tenth (1620) down" },
        { "0", "0", "0", oneMonitor(), { 0, 0 }, "exactly on the edge is on the screen" },
        { "0", "-1", "-1", oneMonitor(), { 192, 108 }, "off both" },
        { "0", "28200", "750", oneMonitor(), { 1880, 50 }, "28200 + 600 = 28800 still shows" },
        { "0", "28201", "750", oneMonitor(), centred, "one twip more does not" },
        { "0", "1500", "15750", oneMonitor(), { 100, 1050 }, "15750 + 450 = 16200 still shows" },
        { "0", "1500", "15751", oneMonitor(), centred, "one twip more does not" },
        { "0", "-15", "0", oneMonitor(), { 192, 0 }, "a pixel off the left: pulled back" },
        { "0", "25800", "0", oneMonitor(), { 1720, 0 }, "half off the right: left alone" },
        { "0", "0", "13950", oneMonitor(), { 0, 930 }, "half off the bottom: left alone" },
        { "0", "30000", "1500", secondOnTheRight(), centred, "the second monitor is ignored" },
        { "0", "-15000", "1500", secondOnTheLeft(), { 192, 100 }, "so is one left of it" },
        { nullptr, "30000", "1500", secondOnTheRight(), { 2000, 100 }, "on the right one" },
        { nullptr, "-15000", "1500", secondOnTheLeft(), { -1000, 100 }, "on the left one" },
        { nullptr, "1500", "-15000", secondAbove(), { 100, -1000 }, "on the one above" },
        { "TRUE", "30000", "1500", oneMonitor(), centred, "its monitor was unplugged" },
        { "-1", "47400", "0", secondOnTheRight(), { 3160, 0 }, "the desktop ends at 48000" },
        { "-1", "47401", "0", secondOnTheRight(), centred, "one twip more does not show" },
        { "-1", "0", "15750", secondAbove(), { 0, 1050 }, "the monitor above adds no bottom" },
        { "-1", "0", "15751", secondAbove(), centred, "one twip more does not show" },
        { "-1", "-19200", "0", secondOnTheLeft(), { -1280, 0 }, "the desktop starts at -19200" },
        { "-1", "-19201", "0", secondOnTheLeft(), { 320, 0 }, "a desktop's tenth (4800) in" },
        { "-1", "0", "-18000", secondAbove(), { 0, -1200 }, "the desktop starts at -18000" },
        { "-1", "0", "-18001", secondAbove(), { 0, 228 }, "a tenth of its 34200 down" },
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(std::string(c.x) + ", " + c.y + ": " + c.why);
        if (c.multipleMonitors)
            setMultipleMonitors(c.multipleMonitors);
        else
            QFile::remove(defaultsIni());
        savedPosition(c.x, c.y);
        EXPECT_EQ(restoreOn(c.desk), c.expected);
    }
}

TEST_F(FormPlacementTest, MultipleMonitorsIsReadFromTheDefaultsFileOnly)
{
    // The form's own settings file says 0; the machine's defaults file does not: multi.
    writeBytes(formsIni(),
               "[CONFIG]\r\nMultipleMonitors=0\r\nfrmVIValues-X=30000\r\nfrmVIValues-Y=1500\r\n");
    EXPECT_EQ(restoreOn(secondOnTheRight()), QPoint(2000, 100));
    for (const char *value : { " true ", "1", "-1" }) {
        setMultipleMonitors(value);
        EXPECT_EQ(restoreOn(secondOnTheRight()), QPoint(2000, 100)) << value;
    }
    for (const char *value : { "0", "Yes", "" }) {
        setMultipleMonitors(value);
        EXPECT_EQ(restoreOn(secondOnTheRight()), CentredOnPrimary) << value;
    }
}

TEST(ReachableFormPositionTest, DividesExactlyByTen)
{
    // Sizes that are not multiples of ten catch a rule that rounds its tenths.
    const FixedMonitorList wide({ monitorAt(0, 0, 1921, 1081, 1) }); // 28815 x 16215 twips
    const clsMonitors m(&wide);
    const QRectF frame(0, 0, 6005, 4505); // tenths 600.5 and 450.5
    EXPECT_EQ(reachableFormPosition(frame.translated(28214.5, 0), false, m), QPointF(28214.5, 0));
    EXPECT_EQ(reachableFormPosition(frame.translated(28214.6, 0), false, m),
              QPointF((28815 - 6005) / 2.0, (16215 - 4505) / 2.0));
    EXPECT_EQ(reachableFormPosition(frame.translated(0, 15764.5), true, m), QPointF(0, 15764.5));
    EXPECT_EQ(reachableFormPosition(frame.translated(0, 15764.6), true, m), QPointF(11405, 5855));
    EXPECT_EQ(reachableFormPosition(frame.translated(-0.5, -0.5), true, m),
              QPointF(2881.5, 1621.5));
    EXPECT_EQ(reachableFormPosition(frame.translated(-0.5, -0.5), false, m),
              QPointF(2881.5, 1621.5));
    // Without monitors there is nothing to be reachable on: the position stays.
    const FixedMonitorList none;
    EXPECT_EQ(reachableFormPosition(frame.translated(-5000, 99999), true, clsMonitors(&none)),
              QPointF(-5000, 99999));
}

TEST_F(FormPlacementTest, SetFormCenterUsesThePrimaryMonitor)
{
    desk.setMonitors(secondOnTheRight());
    setFormCenter(&form, &desk);
    EXPECT_EQ(form.pos(), CentredOnPrimary) << "not the middle of the whole desktop";
    desk.setMonitors(oneMonitor(144));
    form.move(0, 0);
    setFormCenter(&form, &desk);
    EXPECT_EQ(form.pos(), CentredOnPrimary) << "the same place at any resolution";
    // A primary that does not sit at the desktop's origin.
    desk.setMonitors({ monitorAt(1280, 0, 1920, 1080, 1), monitorAt(0, 0, 1280, 1024, 2) });
    setFormCenter(&form, &desk);
    EXPECT_EQ(form.pos(), CentredOnPrimary + QPoint(1280, 0));
}

} // namespace plx::test
