// Blank tests, null replacement, number conversion, delimited fields, file names and the
// non-empty-file test: the helpers every control leans on for its plain text work.
#include "services/texthelpers.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace plx;

TEST(TextBasicsTest, BlankMeansOnlySpaces)
{
    EXPECT_EQ(getLenTrim(QStringLiteral("   ")), 0);
    EXPECT_EQ(getLenTrim(QString()), 0);
    EXPECT_EQ(getLenTrim(QStringLiteral("  ab c ")), 4);
    // A tab is not a blank to the hosts' Trim: it counts.
    EXPECT_EQ(getLenTrim(QStringLiteral("\t")), 1);
}

TEST(TextBasicsTest, ChkNullsReplacesNullAndOnlyExactlyEmptyText)
{
    const QVariant x(QStringLiteral("x"));
    EXPECT_EQ(chkNulls(QVariant(QString()), x, true), x);
    EXPECT_EQ(chkNulls(QVariant(QStringLiteral(" ")), x, true), QVariant(QStringLiteral(" ")));
    EXPECT_EQ(chkNulls(QVariant(), x, false), x);
    EXPECT_EQ(chkNulls(QVariant(QString()), x, false), QVariant(QString()));
    EXPECT_EQ(chkNulls(QVariant(0), x, true), QVariant(0));
}

TEST(TextBasicsTest, CValPConvertsCleansAndFallsBackToZero)
{
    EXPECT_DOUBLE_EQ(cValP(QVariant(QStringLiteral(" 12.5 "))), 12.5);
    EXPECT_DOUBLE_EQ(cValP(QVariant(42)), 42);
    EXPECT_DOUBLE_EQ(cValP(QVariant(QStringLiteral("$1,234.50 net"))), 1234.5);
    EXPECT_DOUBLE_EQ(cValP(QVariant(QStringLiteral("-3 kg"))), -3);
    EXPECT_DOUBLE_EQ(cValP(QVariant(QStringLiteral("abc"))), 0);
    EXPECT_DOUBLE_EQ(cValP(QVariant()), 0);
    EXPECT_DOUBLE_EQ(cValP(QVariant(QStringLiteral("1e999"))), 0); // numeric, out of range
    EXPECT_DOUBLE_EQ(cValP(QVariant(true)), -1);
    // Words a number parser may know are still no numbers here.
    EXPECT_DOUBLE_EQ(cValP(QVariant(QStringLiteral("inf"))), 0);
    EXPECT_DOUBLE_EQ(cValP(QVariant(QStringLiteral("nan"))), 0);
}

TEST(TextBasicsTest, ArrayUBoundFallsBackForUndimensionedArraysAndOtherDimensions)
{
    EXPECT_EQ(arrayUBound(QStringList(), -7, 1), -7);
    EXPECT_EQ(arrayUBound(QStringList{ QString(), QStringLiteral("a") }, -1, 1), 1);
    EXPECT_EQ(arrayUBound(QStringList{ QString() }, -1, 2), -1);
    EXPECT_EQ(arrayUBound(QVariantList{ 1, 2, 3 }, -1, 1), 2);
}

TEST(TextBasicsTest, FileExistLenTellsMissingEmptyAndFilledFilesApart)
{
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    const QString empty = dir.filePath(QStringLiteral("empty.txt"));
    const QString filled = dir.filePath(QStringLiteral("filled.txt"));
    QFile(empty).open(QIODevice::WriteOnly);
    QFile f(filled);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write("x");
    f.close();
    EXPECT_TRUE(getFileExistLEN(filled, false));
    EXPECT_FALSE(getFileExistLEN(empty, false));
    EXPECT_TRUE(getFileExistLEN(empty, true));
    EXPECT_FALSE(getFileExistLEN(dir.filePath(QStringLiteral("missing.txt")), true));
    EXPECT_FALSE(getFileExistLEN(dir.path(), true)); // a directory is not a file
    EXPECT_FALSE(getFileExistLEN(QStringLiteral("  "), true));
}

TEST(TextBasicsTest, DelimitedFieldsKeepEmptyPiecesAndUseTheDefaultOutOfRange)
{
    const QString t = QStringLiteral("a,b,,d");
    const QString comma = QStringLiteral(",");
    const QString z = QStringLiteral("z");
    EXPECT_EQ(getDelimField(t, comma, 3, z), QString());
    EXPECT_EQ(getDelimField(t, comma, 4, z), QStringLiteral("d"));
    EXPECT_EQ(getDelimField(t, comma, 5, z), z);
    EXPECT_EQ(getDelimField(t, comma, 0, z), z);
    EXPECT_EQ(getDelimField(QStringLiteral(" a | b "), QStringLiteral("|"), 2, z),
              QStringLiteral(" b "));
    EXPECT_EQ(getDelimField(QString(), comma, 1, z), z);
    EXPECT_EQ(getDelimCount(QString(), comma), 0);
    EXPECT_EQ(getDelimCount(QStringLiteral("a"), comma), 1);
    EXPECT_EQ(getDelimCount(t, comma), 4);
    EXPECT_EQ(getDelimCount(QStringLiteral("a--b--c"), QStringLiteral("--")), 3);
}

TEST(TextBasicsTest, ModAddALineSkipsBlankPartsUnlessAsked)
{
    const QString sep = QStringLiteral(", ");
    EXPECT_EQ(modAddALine(QStringLiteral("  "), QStringLiteral("b"), sep, false),
              QStringLiteral("b"));
    EXPECT_EQ(modAddALine(QStringLiteral("a"), QStringLiteral(" "), sep, false),
              QStringLiteral("a"));
    EXPECT_EQ(modAddALine(QStringLiteral("a"), QStringLiteral(" "), sep, true),
              QStringLiteral("a,  "));
    EXPECT_EQ(modAddALine(QStringLiteral("a "), QStringLiteral(" b"), sep, false),
              QStringLiteral("a ,  b"));
}

TEST(TextFileNamesTest, SplitsAtTheLastBackslashAndTheFirstDot)
{
    const QString p = QStringLiteral("C:\\Data\\Sub\\file.name.txt");
    EXPECT_EQ(getFileName(p), QStringLiteral("file.name.txt"));
    EXPECT_EQ(getFileTitle(p), QStringLiteral("file"));
    EXPECT_EQ(getFileDir(p), QStringLiteral("C:\\Data\\Sub\\"));
    EXPECT_EQ(getPathNoExt(p), QStringLiteral("C:\\Data\\Sub\\file"));
    EXPECT_EQ(getFileTitle(QStringLiteral("C:\\a.b\\c")), QStringLiteral("c"));
    EXPECT_EQ(getFileTitle(QStringLiteral("c.d.e")), QStringLiteral("c"));
    EXPECT_EQ(getFileName(QStringLiteral("plain.txt")), QStringLiteral("plain.txt"));
    EXPECT_EQ(getFileDir(QStringLiteral("plain.txt")), QString());
}

TEST(TextFileNamesTest, SetPathNameJoinsWithOneBackslashOnly)
{
    EXPECT_EQ(setPathName(QStringLiteral("C:\\x\\"), QStringLiteral("\\y.txt"), false),
              QStringLiteral("C:\\x\\y.txt"));
    EXPECT_EQ(setPathName(QStringLiteral("C:\\x\\"), QStringLiteral("\\y.txt"), true),
              QStringLiteral("C:/x/y.txt"));
    EXPECT_EQ(setPathName(QStringLiteral("C:\\x"), QStringLiteral("\\\\x "), false),
              QStringLiteral("C:\\x\\x"));
    EXPECT_EQ(setPathName(QStringLiteral("C:\\x  "), QStringLiteral("/ x"), false),
              QStringLiteral("C:\\x\\x"));
    // Deliberate quirks: only "\" counts as a trailing separator.
    EXPECT_EQ(setPathName(QStringLiteral("C:/x/"), QStringLiteral("y"), false),
              QStringLiteral("C:/x/\\y"));
    EXPECT_EQ(setPathName(QString(), QStringLiteral("y"), false), QStringLiteral("\\y"));
    // A buffer terminator at the end of the directory is dropped.
    EXPECT_EQ(setPathName(QStringLiteral("C:\\x\\") + QChar(0), QStringLiteral("y"), false),
              QStringLiteral("C:\\x\\y"));
}
