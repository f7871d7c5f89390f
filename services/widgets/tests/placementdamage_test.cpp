// Saved form placements that a user's machine damaged: numbers no form could have been
// saved with. Each must leave the form at its designed size, centred, with one activity-log
// entry naming what was refused; before, 2147483647 or 1e308 twips made a window of Qt's
// largest size whose first paint crashed, and 1,000,000 twips took 17 GB to paint.
//
// The desk is one 1920 x 1080 monitor at 96 dpi (15 twips a pixel); the form is designed
// 400 x 300 at (200, 100), so centred it sits at (760, 390).
#include "services/widgets/formplacement.h"

#include "tests/support/envguard.h"
#include "services/widgets/tests/simulateddesks.h"
#include "tests/support/testfiles.h"

#include <QFile>
#include <QMainWindow>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <string>

using namespace plx;
using namespace plx::test;

namespace {

const QSize Designed(400, 300);
const QPoint Centred((1920 - 400) / 2, (1080 - 300) / 2);

class PlacementDamageFixture
{
protected:
    PlacementDamageFixture()
    {
        env.installAt(dir.path());
        form.setObjectName(QStringLiteral("frmVIValues"));
        form.setGeometry(QRect(QPoint(200, 100), Designed));
    }

    QString formsIni() const { return dir.filePath(QStringLiteral("forms.ini")); }
    QByteArray log() const { return readBytes(dir.filePath(QStringLiteral("PLXLogFile.TXT"))); }
    int logEntries() const { return int(log().count("====================\r\n")); }

    // The form's four keys: the sound values of a form last left at 600 x 400 at
    // (100, 100), with the named keys replaced.
    void saved(const QList<QPair<const char *, QByteArray>> &replaced)
    {
        QList<QPair<const char *, QByteArray>> keys{
            { "X", "1500" }, { "Y", "1500" }, { "W", "9000" }, { "H", "6000" }
        };
        for (auto &[ending, value] : keys)
            for (const auto &[which, damaged] : replaced)
                if (qstrcmp(ending, which) == 0)
                    value = damaged;
        QByteArray text("[CONFIG]\r\n");
        for (const auto &[ending, value] : keys)
            text += QByteArray("frmVIValues-") + ending + '=' + value + "\r\n";
        QFile f(formsIni());
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
        f.write(text);
    }

    EnvGuard env;
    QTemporaryDir dir;
    FixedMonitorList desk{ oneMonitor() };
    QMainWindow form;
};

struct Damage
{
    const char *name;
    QList<QPair<const char *, QByteArray>> values;
    std::string logged; // what the log entry says of the refused values
};

void PrintTo(const Damage &d, std::ostream *out)
{
    *out << d.name;
}

// One damaged key, logged as "frmVIValues-KEY=VALUE (why)".
Damage oneKey(const char *name, const char *key, const char *value, const char *why)
{
    return { name,
             { { key, QByteArray(value) } },
             std::string("frmVIValues-") + key + '=' + value + " (" + why + ')' };
}

class PlacementDamageTest : public PlacementDamageFixture, public ::testing::TestWithParam<Damage>
{
};

} // namespace

TEST_P(PlacementDamageTest, TheFormOpensCentredAtItsDesignedSizeAndOneEntryIsLogged)
{
    const Damage &damage = GetParam();
    saved(damage.values);
    restoreFormPlacement(&form, QString(), formsIni(), &desk);

    ASSERT_EQ(form.size(), Designed);
    EXPECT_EQ(form.pos(), Centred);
    // It paints as any form of its size does.
    EXPECT_EQ(form.grab().size(), Designed);
    EXPECT_EQ(logEntries(), 1);
    const QByteArray entry = log();
    EXPECT_TRUE(
        entry.contains(" restoreFormPlacement\r\n" + QFile::encodeName(formsIni()) + ": refused "))
        << entry.toStdString();
    EXPECT_TRUE(entry.contains(QByteArray::fromStdString(damage.logged))) << entry.toStdString();
    EXPECT_TRUE(entry.contains("; the form opens centred at its default size\r\n"));
}

INSTANTIATE_TEST_SUITE_P(
    DamagedSettings, PlacementDamageTest,
    ::testing::Values(
        Damage{ "HugeSizes",
                { { "W", "2147483647" }, { "H", "2147483647" } },
                "frmVIValues-H=2147483647 (larger than the desktop), "
                "frmVIValues-W=2147483647 (larger than the desktop)" },
        oneKey("AstronomicSize", "W", "1e308", "larger than the desktop"),
        oneKey("MillionTwipsHigh", "H", "1000000", "larger than the desktop"),
        oneKey("JustWiderThanTheDesktop", "W", "28815", "larger than the desktop"),
        oneKey("NegativeWidth", "W", "-9000", "negative"),
        oneKey("OnePixelHigh", "H", "15", "smaller than 32 pixels"),
        oneKey("SizeNotANumber", "H", "abc", "not a number"),
        oneKey("SizeInfinite", "W", "inf", "not a number"),
        oneKey("SizeNaN", "H", "nan", "not a number"),
        oneKey("SizeOverflows", "W", "1e999", "not a number"),
        oneKey("HugeLeft", "X", "2147483647", "too far from every monitor"),
        oneKey("FarAboveTop", "Y", "-1e308", "too far from every monitor"),
        oneKey("MillionTwipsLeft", "X", "-1000000", "too far from every monitor"),
        oneKey("PositionNotANumber", "X", "left", "not a number"),
        oneKey("PositionInfinite", "Y", "-inf", "not a number"),
        Damage{ "EverythingDamaged",
                { { "X", "nan" }, { "Y", "1e308" }, { "W", "0x7fffffff" }, { "H", "-1" } },
                "frmVIValues-H=-1 (negative), frmVIValues-W=0x7fffffff (smaller than 32 pixels), "
                "frmVIValues-X=nan (not a number), "
                "frmVIValues-Y=1e308 (too far from every monitor)" }),
    [](const ::testing::TestParamInfo<Damage> &param) { return std::string(param.param.name); });

namespace {

class PlacementValuesTest : public PlacementDamageFixture, public ::testing::Test
{
};

} // namespace

TEST_F(PlacementValuesTest, NothingSavedAndSoundValuesAreNoDamage)
{
    // A stored 0 size leaves that side alone; a blank value is the default; neither is
    // logged, and the rest of the placement is restored.
    saved({ { "W", "0" }, { "X", "" } });
    restoreFormPlacement(&form, QString(), formsIni(), &desk);
    EXPECT_EQ(form.size(), QSize(400, 400));
    EXPECT_EQ(form.pos(), QPoint(200, 100)) << "a blank left keeps the designed left";
    saved({ { "Y", " " }, { "H", "0" } });
    form.setGeometry(QRect(QPoint(200, 100), Designed));
    restoreFormPlacement(&form, QString(), formsIni(), &desk);
    EXPECT_EQ(form.geometry(), QRect(100, 100, 600, 300));

    // The smallest side, the whole desktop, and a form far off the desktop but within
    // reach of a monitor unplugged since: ordinary placements, the usual rules.
    saved({ { "W", "480" }, { "H", "16200" }, { "X", "-240000" }, { "Y", "0" } });
    restoreFormPlacement(&form, QString(), formsIni(), &desk);
    EXPECT_EQ(form.size(), QSize(32, 1080));
    EXPECT_EQ(form.pos(), QPoint(192, 0)) << "pulled back a tenth of the desktop in";
    // Wider than one monitor, not than two.
    saved({ { "W", "40000" } });
    desk.setMonitors(secondOnTheRight());
    restoreFormPlacement(&form, QString(), formsIni(), &desk);
    EXPECT_EQ(form.size(), QSize(2667, 400));
    EXPECT_EQ(logEntries(), 0) << log().toStdString();
}

TEST_F(PlacementValuesTest, EachRestoreAloneRefusesItsOwnValues)
{
    saved({ { "W", "1e308" }, { "X", "9e99" } });
    restoreFormSize(&form, QString(), 0, 0, formsIni(), &desk);
    EXPECT_EQ(form.size(), QSize(400, 400)) << "the height is sound, the width left alone";
    EXPECT_EQ(logEntries(), 1);
    EXPECT_TRUE(log().contains(" restoreFormSize\r\n"));
    restoreFormPosition(&form, QString(), 0, 0, formsIni(), &desk);
    EXPECT_EQ(form.pos(), QPoint((1920 - 400) / 2, (1080 - 400) / 2));
    EXPECT_EQ(logEntries(), 2);
    EXPECT_TRUE(log().contains(" restoreFormPosition\r\n"));
    EXPECT_TRUE(log().contains("frmVIValues-X=9e99 (too far from every monitor)"));
}
