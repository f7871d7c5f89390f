// services/recordsource/dbf/tests/dbf_robustness_test.cpp: damaged files give the readable
// records or an error that names the file and the problem, never a crash, a hang or a write.
// Each case starts from a table this layer wrote and damages one thing.
#include "dbf_test_util.h"

#include "services/recordsource/dbf/internal/dbftable.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <functional>

using namespace plx;
using namespace plx::dbftestutil;

namespace {

struct Damaged
{
    QTemporaryDir dir;
    QString path;
    QByteArray bytes;
    int headerLength = 0;
    int recordLength = 0;

    explicit Damaged(int records = 5)
    {
        path = makeSmallTable(dir.path(), records);
        bytes = readBytes(path);
        auto t = DbfTable::open(path, DbfTable::OpenMode::ReadOnly);
        headerLength = (*t)->header().headerLength;
        recordLength = (*t)->header().recordLength;
    }
    // Writes the damaged bytes, opens them and checks that opening wrote nothing.
    Result<std::unique_ptr<DbfTable>>
    reopen(DbfTable::OpenMode mode = DbfTable::OpenMode::ReadWrite)
    {
        writeBytes(path, bytes);
        auto t = DbfTable::open(path, mode);
        EXPECT_EQ(readBytes(path), bytes) << "opening a damaged table changed it";
        return t;
    }
};

void expectError(const Result<std::unique_ptr<DbfTable>> &t, Status::Code code, const char *words)
{
    ASSERT_FALSE(t.isOk());
    EXPECT_EQ(t.status().code(), code) << t.status().toString().toStdString();
    EXPECT_TRUE(t.status().message().startsWith(QLatin1String("SMALL.DBF: ")))
        << t.status().message().toStdString();
    EXPECT_TRUE(t.status().message().contains(QLatin1String(words)))
        << t.status().message().toStdString();
}

} // namespace

TEST(DbfRobustness, TruncatedFileShowsTheWholeRecordsReadOnly)
{
    Damaged d;
    d.bytes.truncate(d.headerLength + 2 * d.recordLength + 7); // inside record 3
    auto t = d.reopen();
    ASSERT_TRUE(t.isOk()) << t.status().toString().toStdString();
    EXPECT_EQ((*t)->recordCount(), 2u);
    EXPECT_EQ((*t)->value(2, 0)->toString(), QStringLiteral("NAME2"));
    EXPECT_EQ((*t)->value(3, 0).status().code(), Status::Code::NotFound);
    ASSERT_EQ((*t)->warnings().size(), 1);
    EXPECT_TRUE((*t)->warnings().first().contains(QLatin1String("counts 5 records but the file "
                                                                "holds only 2")));
    EXPECT_EQ((*t)->appendRecord({ QStringLiteral("X") }).status().code(),
              Status::Code::NotSupported);
    EXPECT_EQ(readBytes(d.path), d.bytes);
}

TEST(DbfRobustness, HeaderCountLargerThanTheFileIsCappedAtTheFile)
{
    Damaged d;
    d.bytes[7] = char(0x40); // 0x40000005 records claimed
    auto t = d.reopen(DbfTable::OpenMode::ReadOnly);
    ASSERT_TRUE(t.isOk());
    EXPECT_EQ((*t)->recordCount(), 5u);
    EXPECT_EQ((*t)->header().headerCount, 0x40000005u);
    EXPECT_EQ((*t)->value(5, 1)->toLongLong(), 5);
}

// Header lengths that contradict the file or the fields, a file too short for a header, and
// version bytes of formats this layer does not know: each refused, naming what is wrong.
TEST(DbfRobustness, UnreadableHeadersAreRefusedByName)
{
    using Code = Status::Code;
    const struct
    {
        std::function<void(Damaged &)> damage;
        Code code;
        const char *words;
    } cases[] = {
        { [](Damaged &d) { d.bytes.replace(8, 2, QByteArray("\x80\0", 2)); }, Code::Corrupt,
          "ends inside the field descriptors" },
        { [](Damaged &d) { d.bytes.replace(8, 2, "\xFF\x7F"); }, Code::Corrupt,
          "larger than the file" },
        { [](Damaged &d) { d.bytes[10] = char(d.recordLength - 5); }, Code::Corrupt,
          "the record length is 38" },
        { [](Damaged &d) { d.bytes.truncate(20); }, Code::Corrupt, "too short" },
        { [](Damaged &d) { d.bytes[0] = 0x02; }, Code::NotSupported, "0x02" },
        { [](Damaged &d) { d.bytes[0] = 0x04; }, Code::NotSupported, "0x04" },
        { [](Damaged &d) { d.bytes[0] = char(0x8C); }, Code::NotSupported, "0x8C" },
        { [](Damaged &d) { d.bytes[0] = char(0xF6); }, Code::NotSupported, "0xF6" },
        { [](Damaged &d) { d.bytes[0] = 0x00; }, Code::NotSupported, "0x00" },
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.words);
        Damaged d;
        c.damage(d);
        expectError(d.reopen(), c.code, c.words);
    }
}

TEST(DbfRobustness, MemoPointerPastTheEndIsAnErrorForThatValueOnly)
{
    Damaged d;
    const int notes = d.headerLength + 2 * d.recordLength + 1 + 10 + 5 + 8 + 8 + 1;
    d.bytes.replace(notes, 10, QByteArray("     99999"));
    auto t = d.reopen();
    ASSERT_TRUE(t.isOk());
    auto bad = (*t)->value(3, 5);
    ASSERT_FALSE(bad.isOk());
    EXPECT_EQ(bad.status().code(), Status::Code::Corrupt);
    EXPECT_TRUE(bad.status().message().startsWith(QLatin1String("SMALL.FPT: memo block 99999")))
        << bad.status().message().toStdString();
    EXPECT_EQ((*t)->value(2, 5)->toString(), QStringLiteral("memo of record 2"));
    EXPECT_EQ((*t)->value(3, 0)->toString(), QStringLiteral("NAME3"));

    // A block whose length runs past the end of the file.
    QByteArray fpt = readBytes(d.dir.filePath(QStringLiteral("SMALL.FPT")));
    fpt[8 * 64 + 4] = char(0x7F);
    writeBytes(d.dir.filePath(QStringLiteral("SMALL.FPT")), fpt);
    auto longMemo = (*t)->value(1, 5);
    ASSERT_FALSE(longMemo.isOk());
    EXPECT_TRUE(longMemo.status().message().contains(QLatin1String("past the end of the file")));
}

TEST(DbfRobustness, MissingMemoFileOpensReadOnly)
{
    Damaged d;
    QFile::remove(d.dir.filePath(QStringLiteral("SMALL.FPT")));
    auto t = d.reopen();
    ASSERT_TRUE(t.isOk());
    ASSERT_EQ((*t)->warnings().size(), 1);
    EXPECT_TRUE((*t)->warnings().first().contains(QLatin1String("memo file is missing")));
    EXPECT_EQ((*t)->value(1, 0)->toString(), QStringLiteral("NAME1"));
    EXPECT_EQ((*t)->value(1, 5).status().code(), Status::Code::Corrupt);
    EXPECT_EQ((*t)->writeRecord(1, { QStringLiteral("X") }).code(), Status::Code::NotSupported);
}

TEST(DbfRobustness, OddButHarmlessHeadersStillRead)
{
    Damaged d;
    // Garbage after the NUL of a field name, garbage displacements, and 0x0A as terminator.
    d.bytes.replace(32 + 5, 6, QByteArray("\x01xyz\xFF!", 6));
    d.bytes.replace(32 + 12, 4, QByteArray("\xDE\xAD\xBE\xEF", 4));
    d.bytes[d.headerLength - 1] = 0x0A;
    auto t = d.reopen();
    ASSERT_TRUE(t.isOk()) << t.status().toString().toStdString();
    EXPECT_EQ((*t)->fields()[0].name, QStringLiteral("NAME"));
    EXPECT_EQ((*t)->fields()[0].offset, 1);
    EXPECT_EQ((*t)->value(4, 0)->toString(), QStringLiteral("NAME4"));
    EXPECT_TRUE((*t)->warnings().isEmpty());
    EXPECT_TRUE((*t)->isWritable());
}

TEST(DbfRobustness, StructuralIndexMakesTheTableReadOnlyAndSaysWhy)
{
    Damaged d;
    d.bytes[28] = 0x01;
    writeBytes(d.dir.filePath(QStringLiteral("small.cdx")), QByteArray(1024, '\0'));
    auto t = d.reopen();
    ASSERT_TRUE(t.isOk());
    EXPECT_TRUE((*t)->warnings().isEmpty());
    EXPECT_EQ((*t)->lockScheme(), DbfLockScheme::Extended);
    const Status s = (*t)->writeRecord(1, { QStringLiteral("X") });
    EXPECT_EQ(s.code(), Status::Code::NotSupported);
    EXPECT_TRUE(s.message().contains(QLatin1String("structural index")))
        << s.message().toStdString();
    EXPECT_TRUE(s.message().contains(QLatin1String("stale")));
    EXPECT_EQ((*t)->appendRecord({}).status().message(), s.message());
    EXPECT_EQ((*t)->setDeleted(1, true).message(), s.message());
    EXPECT_EQ(readBytes(d.path), d.bytes);
}
