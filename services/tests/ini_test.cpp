// Settings files through real files: what the Windows profile functions did must still
// hold, since hosts and support staff edit these files by hand.
#include "services/ini.h"
#include "tests/support/testfiles.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace plx;
using namespace plx::test;

namespace {

QString read(const QString &file, const char *section, const char *key, const QString &def = {})
{
    QString v;
    readINI(QString::fromLatin1(section), QString::fromLatin1(key), file, v, def);
    return v;
}

class IniTest : public ::testing::Test
{
protected:
    void SetUp() override { ASSERT_TRUE(dir.isValid()); }
    QString path(const char *name) const { return dir.filePath(QString::fromLatin1(name)); }
    QTemporaryDir dir;
};

} // namespace

// The lookups of a hand-edited file: inisnapshot_test.cpp. A value that is there, even
// empty, wins over the default; the default comes back trimmed.
TEST_F(IniTest, AMissingKeyOrFileGivesTheTrimmedDefault)
{
    const QString f = path("a.ini");
    writeBytes(f, "[Main]\r\nEmpty=\r\n");
    EXPECT_EQ(read(f, "Main", "Empty", QStringLiteral("dflt")), QString());
    EXPECT_EQ(read(f, "Main", "Missing", QStringLiteral("  dflt ")), QStringLiteral("dflt"));
    EXPECT_EQ(read(path("none.ini"), "Main", "Name", QStringLiteral("d")), QStringLiteral("d"));
}

TEST_F(IniTest, LongValuesAreCutTo1998Characters)
{
    const QString f = path("long.ini");
    const QString longValue(2000, QLatin1Char('x'));
    ASSERT_TRUE(writeINI(QStringLiteral("S"), QStringLiteral("K"), f, longValue));
    const QString back = read(f, "S", "K");
    EXPECT_EQ(back.size(), 1998);
    EXPECT_EQ(back, longValue.left(1998));
    const QString fits(1998, QLatin1Char('y'));
    ASSERT_TRUE(writeINI(QStringLiteral("S"), QStringLiteral("K2"), f, fits));
    EXPECT_EQ(read(f, "S", "K2"), fits);
}

TEST_F(IniTest, WritesKeepEveryOtherLineByteForByte)
{
    const QString f = path("keep.ini");
    const QByteArray before = "; Settings for PLX\r\n[CONFIG]\r\n  Indented = yes \r\n"
                              "Key=old\r\n# other comment\r\n\r\n[Next]\nLfLine=1\nLast=\xe9t\xe9";
    writeBytes(f, before);
    ASSERT_TRUE(
        writeINI(QStringLiteral("config"), QStringLiteral("KEY"), f, QStringLiteral("  new  ")));
    EXPECT_EQ(readBytes(f),
              QByteArray("; Settings for PLX\r\n[CONFIG]\r\n  Indented = yes \r\nKEY=new\r\n"
                         "# other comment\r\n\r\n[Next]\nLfLine=1\nLast=\xe9t\xe9"));
    // A new key goes after the section's last line, before the blank separator.
    ASSERT_TRUE(
        writeINI(QStringLiteral("CONFIG"), QStringLiteral("Added"), f, QStringLiteral("1")));
    ASSERT_TRUE(writeINI(QStringLiteral("Next"), QStringLiteral("Tail"), f, QStringLiteral("t")));
    EXPECT_EQ(readBytes(f),
              QByteArray("; Settings for PLX\r\n[CONFIG]\r\n  Indented = yes \r\nKEY=new\r\n"
                         "# other comment\r\nAdded=1\r\n\r\n[Next]\nLfLine=1\nLast=\xe9t\xe9\r\n"
                         "Tail=t\r\n"));
    EXPECT_EQ(read(f, "Next", "Last"), QString::fromUtf8("\xc3\xa9t\xc3\xa9"));
}

TEST_F(IniTest, WriteCreatesFileAndSectionInWindows1252WithCrLf)
{
    const QString f = path("new.ini");
    ASSERT_TRUE(writeINI(QStringLiteral(" One "), QStringLiteral(" A "), f,
                         QString::fromUtf8(" caf\xc3\xa9 \xe2\x82\xac ")));
    ASSERT_TRUE(writeINI(QStringLiteral("Two"), QStringLiteral("B"), f, QStringLiteral("2")));
    EXPECT_EQ(readBytes(f), QByteArray("[One]\r\nA=caf\xe9 \x80\r\n\r\n[Two]\r\nB=2\r\n"));
    EXPECT_EQ(read(f, "one", "a"), QString::fromUtf8("caf\xc3\xa9 \xe2\x82\xac"));
    // A blank key or section writes nothing; a missing directory fails without a trace.
    EXPECT_FALSE(writeINI(QStringLiteral("One"), QStringLiteral(" "), f, QStringLiteral("x")));
    EXPECT_FALSE(writeINI(QStringLiteral("S"), QStringLiteral("K"), path("nodir/x.ini"),
                          QStringLiteral("x")));
    EXPECT_FALSE(QFile::exists(path("nodir")));
}

TEST_F(IniTest, DeletingASectionRemovesEveryCopyAndKeepsTheRestByteForByte)
{
    const QString f = path("filters.ini");
    writeBytes(f,
               "; Filters\r\n[Texas]\r\nWhere=STATE = 'TX'\r\n\r\n[Big]\nWhere=BEDS > 9\n\r\n"
               "[ texas ]\r\nWhere=an older copy\r\n[Last]\r\nWhere=\xe9");
    ASSERT_TRUE(deleteINISection(QStringLiteral(" TEXAS "), f));
    EXPECT_EQ(readBytes(f),
              QByteArray("; Filters\r\n[Big]\nWhere=BEDS > 9\n\r\n[Last]\r\nWhere=\xe9"));
    ASSERT_TRUE(deleteINISection(QStringLiteral("last"), f));
    EXPECT_EQ(readBytes(f), QByteArray("; Filters\r\n[Big]\nWhere=BEDS > 9\n\r\n"));
    // A section or file that is not there is deleted already; nothing is written.
    EXPECT_TRUE(deleteINISection(QStringLiteral("Texas"), f));
    EXPECT_EQ(readBytes(f), QByteArray("; Filters\r\n[Big]\nWhere=BEDS > 9\n\r\n"));
    EXPECT_TRUE(deleteINISection(QStringLiteral("Any"), path("none.ini")));
    EXPECT_FALSE(QFile::exists(path("none.ini")));
    // A blank name deletes nothing; a file that cannot be written is a failure.
    EXPECT_FALSE(deleteINISection(QStringLiteral(" "), f));
    EXPECT_FALSE(deleteINISection(QStringLiteral("Big"), path("nodir/x.ini")));
}

TEST_F(IniTest, ReadsLfFilesAndUtf8FilesWithByteOrderMark)
{
    const QString lf = path("lf.ini");
    writeBytes(lf, "[S]\nA=1\nB = two \n");
    EXPECT_EQ(read(lf, "S", "B"), QStringLiteral("two"));
    const QString bom = path("bom.ini");
    writeBytes(bom, "\xEF\xBB\xBF[S]\r\nName=J\xC3\xBCrgen\r\n");
    EXPECT_EQ(read(bom, "S", "Name"), QString::fromUtf8("J\xC3\xBCrgen"));
    // The file stays UTF-8 with its mark when written.
    ASSERT_TRUE(writeINI(QStringLiteral("S"), QStringLiteral("City"), bom,
                         QString::fromUtf8("K\xC3\xB6ln")));
    EXPECT_EQ(readBytes(bom),
              QByteArray("\xEF\xBB\xBF[S]\r\nName=J\xC3\xBCrgen\r\nCity=K\xC3\xB6ln\r\n"));
    EXPECT_EQ(getINISections(bom), (QStringList{ QString(), QStringLiteral("S") }));
}

TEST_F(IniTest, TypedReadersParseAndFallBack)
{
    const QString f = path("typed.ini");
    writeBytes(f,
               "[T]\r\nB1=  true \r\nB2=Yes\r\nB3=0\r\nB4=-1\r\nD1=abc\r\nD2= 3.25\r\n"
               "I1=2.5\r\nI2=3.5\r\nI3=40000\r\nBlank=\r\n");
    EXPECT_TRUE(getINIBool(QStringLiteral("T"), QStringLiteral("B1"), false, f));
    EXPECT_FALSE(getINIBool(QStringLiteral("T"), QStringLiteral("B2"), true, f));
    EXPECT_FALSE(getINIBool(QStringLiteral("T"), QStringLiteral("B3"), true, f));
    EXPECT_TRUE(getINIBool(QStringLiteral("T"), QStringLiteral("B4"), false, f));
    EXPECT_TRUE(getINIBool(QStringLiteral("T"), QStringLiteral("Missing"), true, f));
    EXPECT_FALSE(getINIBool(QStringLiteral("T"), QStringLiteral("Blank"), true, f));
    EXPECT_DOUBLE_EQ(getINIDouble(QStringLiteral("T"), QStringLiteral("Missing"), 2.5, f), 2.5);
    EXPECT_DOUBLE_EQ(getINIDouble(QStringLiteral("T"), QStringLiteral("D1"), 2.5, f), 0);
    EXPECT_DOUBLE_EQ(getINIDouble(QStringLiteral("T"), QStringLiteral("D2"), 2.5, f), 3.25);
    EXPECT_DOUBLE_EQ(getINIDouble(QStringLiteral("T"), QStringLiteral("Blank"), 2.5, f), 0);
    EXPECT_EQ(getINIInt(QStringLiteral("T"), QStringLiteral("Missing"), 7, f), 7);
    EXPECT_EQ(getINIInt(QStringLiteral("T"), QStringLiteral("I1"), 7, f), 2); // half to even
    EXPECT_EQ(getINIInt(QStringLiteral("T"), QStringLiteral("I2"), 7, f), 4);
    EXPECT_EQ(getINIInt(QStringLiteral("T"), QStringLiteral("I3"), 7, f), 0); // overflow
    EXPECT_EQ(getINIInt(QStringLiteral("T"), QStringLiteral("D1"), 7, f), 0);
}

TEST_F(IniTest, SectionsAreListedFromIndexOneAsOftenAsTheyOccur)
{
    EXPECT_EQ(getINISections(path("missing.ini")), QStringList{ QString() });
    const QString empty = path("empty.ini");
    writeBytes(empty, "");
    EXPECT_EQ(getINISections(empty), QStringList{ QString() });
    const QString f = path("s.ini");
    writeBytes(f,
               "[ ]\r\n[Sect] ; note\r\n   [Indented]\r\nx=[NotHeader]\r\n[]\r\n"
               "; [Commented]\r\n[sect]\r\n[Open\r\n[ Spaced ]\r\n");
    EXPECT_EQ(getINISections(f),
              (QStringList{ QString(), QStringLiteral("Sect"), QStringLiteral("Indented"),
                            QStringLiteral("sect"), QStringLiteral("Spaced") }));
}

TEST_F(IniTest, UnreadableSettingsFileIsReportedBySectionListing)
{
    const QString f = path("locked.ini");
    writeBytes(f, "[A]\r\n");
    QString error = QStringLiteral("stale");
    EXPECT_EQ(getINISections(f, &error), (QStringList{ QString(), QStringLiteral("A") }));
    EXPECT_TRUE(error.isEmpty());
    ASSERT_TRUE(QFile::setPermissions(f, QFileDevice::Permissions()));
    QFile probe(f);
    if (probe.open(QIODevice::ReadOnly))
        GTEST_SKIP() << "permissions do not stop this user from reading (root)";
    EXPECT_EQ(getINISections(f, &error), QStringList{ QString() });
    EXPECT_FALSE(error.isEmpty());
}
