// A settings file parsed once must answer exactly as the profile reader does, whole values
// aside; and files too large to be settings files are refused before they are read.
#include "services/inisnapshot.h"

#include "services/ini.h"
#include "tests/support/testfiles.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace plx;
using namespace plx::test;

namespace {

// `head`, then zeros up to `size` bytes (a sparse file: no disk space taken).
void writeSized(const QString &path, const QByteArray &head, qint64 size)
{
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write(head);
    ASSERT_TRUE(f.resize(size));
}

// Every way of writing names and values a hand-edited file shows.
const QByteArray Awkward =
    "; comment = not a key\r\nBefore=any section\r\n[Main]\r\nName =  Ann  \r\nname=second\r\n"
    "Q1=\"quoted value\"\r\nQ2=' single '\r\nQ3=\"half\r\nEmpty=\r\n\tTabbed\t=\tt \t\r\n"
    "Eq=a=b\r\nno equals sign\r\n;Name=commented\r\n[main]\r\nOnlyLater=1\r\n"
    "  [Other] ; note\r\nName=Bob\n[Unclosed\r\nK=v\r\n[Caf\xe9]\r\nR\xe9sum\xe9=\x80 5\r\n"
    "[]\r\nNoName=1\r\n[Last]\r\nTail=no line end";

// Where the profile reader's answer is known by rule (first match, case-insensitive names,
// trimmed, one pair of enclosing quotes removed), it is given; the rest must only agree.
const struct
{
    const char *section;
    const char *key;
    const char *expected; // nullptr: whatever the profile reader says
} Lookups[] = {
    { "MAIN", "NAME", "Ann" },
    { " main ", " name ", "Ann" },
    { "Main", "Q1", "quoted value" },
    { "Main", "Q2", " single " },
    { "Main", "Q3", "\"half" },
    { "Main", "Empty", "" },
    { "Main", "Tabbed", nullptr },
    { "Main", "Eq", nullptr },
    { "Main", "Missing", "<none>" },
    { "main", "OnlyLater", "<none>" },
    { "Other", "name", "Bob" },
    { "Unclosed", "K", nullptr },
    { "CAF\xc9", "R\xc9SUM\xc9", nullptr },
    { "", "NoName", nullptr },
    { "Last", "Tail", nullptr },
    { "None", "Name", "<none>" },
    { "Main", "no equals sign", nullptr },
    { "Main", ";Name", nullptr },
    { "", "Before", nullptr },
};

class IniSnapshotTest : public ::testing::Test
{
protected:
    void SetUp() override { ASSERT_TRUE(dir.isValid()); }
    QString path(const char *name) const { return dir.filePath(QString::fromLatin1(name)); }
    QTemporaryDir dir;
};

} // namespace

TEST_F(IniSnapshotTest, AnswersEveryLookupAsTheProfileReaderDoes)
{
    for (const QByteArray &encoded : { Awkward, QByteArray("\xEF\xBB\xBF") + Awkward }) {
        const QString f = path("awkward.ini");
        writeBytes(f, encoded);
        const IniSnapshot snapshot = IniSnapshot::parse(encoded);
        for (const auto &[section, key, known] : Lookups) {
            const QString s = QString::fromLatin1(section);
            const QString k = QString::fromLatin1(key);
            QString expected;
            readINI(s, k, f, expected, QStringLiteral("<none>"));
            if (known)
                EXPECT_EQ(expected, QString::fromLatin1(known)) << "[" << section << "] " << key;
            EXPECT_EQ(snapshot.value(s, k, QStringLiteral("<none>")), expected)
                << "[" << section << "] " << key << (encoded.startsWith("\xEF") ? " (BOM)" : "");
        }
    }
}

TEST_F(IniSnapshotTest, ListsSectionsAndTheirKeysInFileOrder)
{
    const IniSnapshot snapshot = IniSnapshot::parse(Awkward);
    QStringList names;
    for (const IniSnapshot::Section &s : snapshot.sections())
        names << s.name;
    EXPECT_EQ(names,
              (QStringList{ QStringLiteral("Main"), QStringLiteral("main"), QStringLiteral("Other"),
                            QStringLiteral("Unclosed"), QStringLiteral("Caf\u00e9"), QString(),
                            QStringLiteral("Last") }));
    EXPECT_EQ(snapshot.sections().first().keys,
              (QStringList{ QStringLiteral("Name"), QStringLiteral("name"), QStringLiteral("Q1"),
                            QStringLiteral("Q2"), QStringLiteral("Q3"), QStringLiteral("Empty"),
                            QStringLiteral("Tabbed"), QStringLiteral("Eq"),
                            QStringLiteral("no equals sign") }));
    EXPECT_FALSE(snapshot.find(QStringLiteral("Main"), QStringLiteral("Missing")).has_value());
    EXPECT_EQ(snapshot.find(QStringLiteral("Main"), QStringLiteral("Empty")), QString());
}

TEST_F(IniSnapshotTest, ValuesAreWholeWhereTheProfileReaderCutsThem)
{
    const QString f = path("long.ini");
    const QString sorts = QStringLiteral("Name:NAME, CITY|").repeated(500); // 8,000 characters
    ASSERT_TRUE(writeINI(QStringLiteral("FORM"), QStringLiteral("Sorts"), f, sorts));
    QString cut;
    readINI(QStringLiteral("FORM"), QStringLiteral("Sorts"), f, cut, QString());
    EXPECT_EQ(cut, sorts.left(1998));
    EXPECT_EQ(
        IniSnapshot::parse(readBytes(f)).value(QStringLiteral("form"), QStringLiteral("SORTS")),
        sorts);
}

TEST_F(IniSnapshotTest, FilesOverSixteenMegabytesAreRefusedBeforeTheyAreRead)
{
    const QByteArray head = "[Filter one]\r\nWhere=NAME = 'A'\r\n";
    const QString huge = path("HBFiltersPLX.INI");
    writeSized(huge, head, kMaxSettingsFileBytes + 1);
    const QString refused = huge + QStringLiteral(" is larger than 16 MB and was not read");
    EXPECT_EQ(settingsFileSizeProblem(huge), refused);
    QString error;
    EXPECT_EQ(getINISections(huge, &error), QStringList{ QString() });
    EXPECT_EQ(error, refused);
    QString where;
    readINI(QStringLiteral("Filter one"), QStringLiteral("Where"), huge, where,
            QStringLiteral("none"));
    EXPECT_EQ(where, QStringLiteral("none")) << "read as a missing file";
    EXPECT_FALSE(
        writeINI(QStringLiteral("Filter two"), QStringLiteral("Where"), huge, QStringLiteral("1")));
    EXPECT_FALSE(deleteINISection(QStringLiteral("Filter one"), huge));
    EXPECT_EQ(QFile(huge).size(), kMaxSettingsFileBytes + 1) << "left as it was";

    // At the limit a file is still read.
    const QString atLimit = path("atlimit.ini");
    writeSized(atLimit, head, kMaxSettingsFileBytes);
    EXPECT_EQ(settingsFileSizeProblem(atLimit), QString());
    EXPECT_EQ(getINISections(atLimit, &error),
              (QStringList{ QString(), QStringLiteral("Filter one") }));
    EXPECT_EQ(error, QString());
    readINI(QStringLiteral("Filter one"), QStringLiteral("Where"), atLimit, where, QString());
    EXPECT_EQ(where, QStringLiteral("NAME = 'A'"));
    EXPECT_EQ(settingsFileSizeProblem(path("missing.ini")), QString());
}
