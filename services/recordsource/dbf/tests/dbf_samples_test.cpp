// services/recordsource/dbf/tests/dbf_samples_test.cpp: real tables written by FoxPro, Visual
// FoxPro, dBASE and Clipper-family tools open, describe themselves as their provenance says,
// and read the same values that python3-dbfread reads.
#include "dbf_test_util.h"

#include "services/recordsource/dbf/internal/dbftable.h"

#include <QDateTime>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace plx;
using namespace plx::dbftestutil;

namespace {

struct SampleShape
{
    const char *file;
    quint8 version;
    quint32 records;
    quint32 deleted;
    quint16 headerLength;
    quint16 recordLength;
    int fields;
    int codePage;
    DbfMemoKind memo;
    const char *firstField;
    char firstType;
    int firstLength;
    bool writableWhenOpenedForWriting;
};

// The facts each sample's provenance records (header, counts, fields, memo kind).
const SampleShape kSamples[] = {
    { "afox5.dbf", 0x30, 2, 0, 456, 50, 5, 1252, DbfMemoKind::Fpt, "ID", 'C', 10, false },
    { "calls.dbf", 0x30, 16, 0, 488, 283, 6, 1252, DbfMemoKind::Fpt, "CALL_ID", 'I', 4, false },
    { "cp1251.dbf", 0x30, 4, 0, 360, 105, 2, 1251, DbfMemoKind::None, "RN", 'N', 4, false },
    { "dbase_83.dbf", 0x83, 67, 0, 513, 805, 15, 1252, DbfMemoKind::Dbt3, "ID", 'N', 19, true },
    { "dbase_f5.dbf", 0xF5, 975, 0, 1921, 969, 59, 1252, DbfMemoKind::Fpt, "NF", 'N', 5, true },
    { "people.dbf", 0x03, 3, 1, 97, 25, 2, 1252, DbfMemoKind::None, "NAME", 'C', 16, true },
    { "pr90.dbf", 0xF5, 5, 0, 609, 505, 18, 1252, DbfMemoKind::Fpt, "ACCOUNT", 'N', 8, true },
    { "vfp9_memo_bs1.dbf", 0x30, 5, 0, 360, 15, 2, 1252, DbfMemoKind::Fpt, "CODE", 'C', 10, false },
};

std::unique_ptr<DbfTable> openSample(const char *file, int codePage = 0)
{
    auto t = DbfTable::open(samplePath(QString::fromLatin1(file)), DbfTable::OpenMode::ReadOnly,
                            codePage);
    EXPECT_TRUE(t.isOk()) << file << ": " << t.status().toString().toStdString();
    return t.isOk() ? std::move(*t) : nullptr;
}

} // namespace

TEST(DbfSamples, HeadersMatchTheirProvenance)
{
    PLX_REQUIRE_SAMPLES();
    for (const SampleShape &s : kSamples) {
        SCOPED_TRACE(s.file);
        auto t = openSample(s.file);
        ASSERT_TRUE(t);
        const DbfHeader &h = t->header();
        EXPECT_EQ(h.version, s.version);
        EXPECT_EQ(t->recordCount(), s.records);
        EXPECT_EQ(h.headerLength, s.headerLength);
        EXPECT_EQ(h.recordLength, s.recordLength);
        EXPECT_EQ(t->fields().size(), s.fields);
        EXPECT_EQ(t->codePage(), s.codePage);
        EXPECT_EQ(h.memoKind, s.memo);
        EXPECT_EQ(t->fields().first().name, QLatin1String(s.firstField));
        EXPECT_EQ(t->fields().first().type, s.firstType);
        EXPECT_EQ(t->fields().first().length, s.firstLength);
        quint32 deleted = 0;
        for (quint32 r = 1; r <= t->recordCount(); ++r)
            deleted += t->isDeleted(r) ? 1 : 0;
        EXPECT_EQ(deleted, s.deleted);
        // Read only because it was opened so; the reason names the file.
        EXPECT_EQ(t->writable().code(), Status::Code::NotSupported);
        EXPECT_TRUE(t->writable().message().contains(QLatin1String(s.file)));
    }
}

TEST(DbfSamples, ValuesMatchDbfread)
{
    PLX_REQUIRE_SAMPLES();
    if (!pythonReady())
        GTEST_SKIP() << "/usr/bin/python3 lacks dbf or dbfread";
    for (const SampleShape &s : kSamples) {
        SCOPED_TRACE(s.file);
        auto t = openSample(s.file);
        ASSERT_TRUE(t);
        bool ok = false;
        const QStringList expected =
            runInterop({ QStringLiteral("dump-dbfread"), samplePath(QString::fromLatin1(s.file)),
                         QString::number(t->codePage()) },
                       &ok);
        ASSERT_TRUE(ok);
        const QStringList actual = dumpTable(*t);
        ASSERT_EQ(actual.size(), expected.size());
        for (int i = 0; i < actual.size(); ++i)
            EXPECT_EQ(actual[i].toStdString(), expected[i].toStdString()) << "line " << i;
    }
}

TEST(DbfSamples, TypicalValuesReadAsTheToolsWroteThem)
{
    PLX_REQUIRE_SAMPLES();
    // Clipper's wide character field: length byte 44, decimals byte 1 = 300 bytes.
    auto pr90 = openSample("pr90.dbf");
    ASSERT_TRUE(pr90);
    const int note = pr90->fieldIndex(QStringLiteral("note"));
    ASSERT_GE(note, 0);
    EXPECT_EQ(pr90->fields()[note].length, 300);
    EXPECT_EQ(pr90->fields()[note].decimals, 0);
    EXPECT_EQ(pr90->fieldInfos()[note].size, 300);

    // An unmarked table opened as code page 850 shows its DOS text correctly.
    auto f5 = openSample("dbase_f5.dbf", 850);
    ASSERT_TRUE(f5);
    EXPECT_EQ(f5->codePage(), 850);
    const int obse = f5->fieldIndex(QStringLiteral("OBSE"));
    bool foundJose = false;
    for (quint32 r = 1; r <= f5->recordCount() && !foundJose; ++r) {
        auto v = f5->value(r, obse);
        ASSERT_TRUE(v.isOk()) << v.status().toString().toStdString();
        foundJose = v->toString().contains(QStringLiteral("jos\u00E9"));
    }
    EXPECT_TRUE(foundJose);

    // The Russian table is marked 0xC9 and decodes to Cyrillic.
    auto ru = openSample("cp1251.dbf");
    ASSERT_TRUE(ru);
    const QString name = ru->value(1, 1)->toString();
    ASSERT_FALSE(name.isEmpty());
    EXPECT_GE(name.at(0).unicode(), 0x0400);
    EXPECT_LE(name.at(0).unicode(), 0x04FF);

    // Visual FoxPro integer and datetime fields, and a memo with 1-byte blocks.
    auto calls = openSample("calls.dbf");
    ASSERT_TRUE(calls);
    EXPECT_EQ(calls->value(1, 0)->toInt(), 1);
    EXPECT_EQ(calls->value(1, 2)->toDateTime(), QDateTime(QDate(1994, 11, 21), QTime(13, 35, 39)));
    auto bs1 = openSample("vfp9_memo_bs1.dbf");
    ASSERT_TRUE(bs1);
    EXPECT_EQ(bs1->value(1, 1)->toString(), QStringLiteral("Some notes here\r\n"));

    // people.dbf: the second of three records is deleted; the year byte 114 means 2014.
    auto people = openSample("people.dbf");
    ASSERT_TRUE(people);
    EXPECT_EQ(people->header().lastUpdate, QDate(2014, 8, 2));
    EXPECT_EQ(people->value(1, 0)->toString(), QStringLiteral("Alice"));
    EXPECT_EQ(people->rawText(1, 0), QByteArrayView("Alice"));
}

TEST(DbfSamples, WriteRefusalsSayWhy)
{
    PLX_REQUIRE_SAMPLES();
    // Opened for writing (a copy: the shared samples are never opened for writing), the
    // Visual FoxPro table with its CDX explains why it stays read only, and is not touched.
    QTemporaryDir dir;
    const QString copy = dir.filePath(QStringLiteral("calls.dbf"));
    for (const char *name : { "calls.dbf", "calls.FPT", "calls.CDX" })
        QFile::copy(samplePath(QString::fromLatin1(name)), dir.filePath(QString::fromLatin1(name)));
    QFile::setPermissions(copy, QFile::ReadOwner | QFile::WriteOwner);
    const QByteArray before = readBytes(copy);
    auto calls = DbfTable::open(copy);
    ASSERT_TRUE(calls.isOk());
    const Status s = (*calls)->setDeleted(1, true);
    EXPECT_EQ(s.code(), Status::Code::NotSupported);
    EXPECT_TRUE(s.message().contains(QLatin1String("Visual FoxPro"))) << s.message().toStdString();
    EXPECT_EQ((*calls)->lockScheme(), DbfLockScheme::Extended);
    EXPECT_EQ(readBytes(copy), before);

    // The structural-index flag without a .CDX file: opens read only with a warning.
    auto ru =
        DbfTable::open(samplePath(QStringLiteral("cp1251.dbf")), DbfTable::OpenMode::ReadOnly);
    ASSERT_TRUE(ru.isOk());
    ASSERT_EQ((*ru)->warnings().size(), 1);
    EXPECT_TRUE((*ru)->warnings().first().contains(QLatin1String(".CDX file is missing")));

    auto f5 = openSample("dbase_f5.dbf");
    ASSERT_TRUE(f5);
    EXPECT_EQ(f5->lockScheme(), DbfLockScheme::FoxPro2);
    EXPECT_TRUE(f5->warnings().isEmpty());
}
