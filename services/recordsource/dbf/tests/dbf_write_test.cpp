// services/recordsource/dbf/tests/dbf_write_test.cpp: writing tables as FoxPro 2.6 does:
// record bytes, header count and date, end-of-file mark, memo block allocation and reuse,
// refused values, and locks at FoxPro's byte offsets.
#include "dbf_test_util.h"

#include "services/recordsource/dbf/internal/dbftable.h"

#include <QDate>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace plx::dbftestutil {

namespace {

quint32 le32(const QByteArray &b, int at)
{
    quint32 v = 0;
    std::memcpy(&v, b.constData() + at, 4);
    return v;
}

quint32 be32(const QByteArray &b, int at)
{
    const auto *u = reinterpret_cast<const unsigned char *>(b.constData() + at);
    return (quint32(u[0]) << 24) | (quint32(u[1]) << 16) | (quint32(u[2]) << 8) | u[3];
}

std::unique_ptr<DbfTable> openRw(const QString &path)
{
    auto t = DbfTable::open(path);
    EXPECT_TRUE(t.isOk()) << t.status().toString().toStdString();
    return t.isOk() ? std::move(*t) : nullptr;
}

// True when some other open file holds a write lock on byte `offset` of `path`.
bool byteLocked(const QString &path, quint64 offset)
{
    const int fd = ::open(QFile::encodeName(path).constData(), O_RDWR);
    struct flock fl;
    std::memset(&fl, 0, sizeof fl);
    fl.l_type = F_WRLCK;
    fl.l_whence = SEEK_SET;
    fl.l_start = off_t(offset);
    fl.l_len = 1;
    ::fcntl(fd, F_OFD_GETLK, &fl);
    ::close(fd);
    return fl.l_type != F_UNLCK;
}

} // namespace

TEST(DbfWrite, AppendedRecordsReadBackWithFoxProLayout)
{
    QTemporaryDir dir;
    const QString path = makeSmallTable(dir.path(), 0);
    auto t = openRw(path);
    ASSERT_TRUE(t);
    t->setDurable(false);
    auto r1 = t->appendRecord({ QStringLiteral("Smith"), 12, 3.5, QDate(1999, 12, 31), true,
                                QStringLiteral("first memo") });
    ASSERT_TRUE(r1.isOk()) << r1.status().toString().toStdString();
    auto r2 = t->appendRecord({ QStringLiteral("Jones") }); // the rest stays blank
    ASSERT_TRUE(r2.isOk());
    EXPECT_EQ(*r1, 1u);
    EXPECT_EQ(*r2, 2u);

    const QByteArray bytes = readBytes(path);
    const int hl = t->header().headerLength;
    const int rl = t->header().recordLength;
    EXPECT_EQ(hl, 32 + 6 * 32 + 1);
    EXPECT_EQ(bytes.size(), hl + 2 * rl + 1);
    EXPECT_EQ(bytes.at(bytes.size() - 1), '\x1A');
    EXPECT_EQ(le32(bytes, 4), 2u);
    EXPECT_EQ(quint8(bytes[0]), 0xF5);
    EXPECT_EQ(quint8(bytes[29]), 0x03); // code page 1252's mark
    const QDate today = QDate::currentDate();
    EXPECT_EQ(int(bytes[1]), today.year() % 100);
    EXPECT_EQ(int(bytes[2]), today.month());
    EXPECT_EQ(int(bytes[3]), today.day());
    EXPECT_EQ(bytes.mid(hl, rl), QByteArray(" Smith        12    3.5019991231T         8"));
    EXPECT_EQ(bytes.mid(hl + rl, rl), QByteArray(" Jones") + QByteArray(rl - 6, ' '));

    // Read back by a second object: the values as written, Null for the blank ones.
    auto again = openRw(path);
    ASSERT_TRUE(again);
    EXPECT_EQ(dumpTable(*again),
              QStringList({ QStringLiteral("L|s:Smith|n:12|n:3.5000|d:1999-12-31|b:1|s:first memo"),
                            QStringLiteral("L|s:Jones|null|null|null|null|null") }));
}

TEST(DbfWrite, ChangedMemosGoToNewBlocksAndUnchangedOnesKeepTheirs)
{
    QTemporaryDir dir;
    const QString path = makeSmallTable(dir.path(), 2);
    const QString fpt = dir.filePath(QStringLiteral("SMALL.FPT"));
    auto t = openRw(path);
    ASSERT_TRUE(t);
    const int notes = 5;
    auto blockOf = [&](quint32 recno) { return t->rawText(recno, notes).trimmed().toInt(); };
    EXPECT_EQ(blockOf(1), 8); // 64-byte blocks: the 512-byte header fills blocks 0-7
    EXPECT_EQ(blockOf(2), 9);
    EXPECT_EQ(be32(readBytes(fpt), 0), 10u);

    // Shorter text would fit the old block, but the old block stays live until the record
    // is rewritten: the new value goes to the next free block, the old one is left intact.
    const QByteArray oldBlock = readBytes(fpt).mid(qsizetype(8) * 64, 64);
    ASSERT_TRUE(t->writeRecord(1,
                               { QStringLiteral("NAME1"), 1, 1.5, QDate(2000, 1, 2), false,
                                 QStringLiteral("short") })
                    .isOk());
    EXPECT_EQ(blockOf(1), 10);
    EXPECT_EQ(be32(readBytes(fpt), 0), 11u);
    EXPECT_EQ(readBytes(fpt).mid(qsizetype(8) * 64, 64), oldBlock);
    EXPECT_EQ(t->value(1, notes)->toString(), QStringLiteral("short"));
    // Longer text: appended at the next free block, header advanced past it.
    const QString longText = QStringLiteral("0123456789").repeated(20);
    ASSERT_TRUE(
        t->writeRecord(1, { QStringLiteral("NAME1"), 1, 1.5, QDate(2000, 1, 2), false, longText })
            .isOk());
    EXPECT_EQ(blockOf(1), 11);
    EXPECT_EQ(be32(readBytes(fpt), 0), 11u + (8 + 200 + 63) / 64);
    // An unchanged memo keeps its block; a value written twice grows nothing.
    const QByteArray fptBefore = readBytes(fpt);
    ASSERT_TRUE(
        t->writeRecord(1, { QStringLiteral("OTHER"), 1, 1.5, QDate(2000, 1, 2), false, longText })
            .isOk());
    EXPECT_EQ(readBytes(fpt), fptBefore);
    EXPECT_EQ(t->value(1, notes)->toString(), longText);
    EXPECT_EQ(t->value(2, notes)->toString(), QStringLiteral("memo of record 2"));
    // Emptying a memo writes blanks into the pointer.
    ASSERT_TRUE(t->writeRecord(2, { QStringLiteral("NAME2"), 2, 3, QDate(), QVariant(), QString() })
                    .isOk());
    EXPECT_TRUE(t->rawText(2, notes).isEmpty());
}

// A refused value writes nothing; a delete writes its flag byte and nothing else.
TEST(DbfWrite, RefusedValuesWriteNothingAndADeleteOnlyItsFlag)
{
    QTemporaryDir dir;
    const QString path = makeSmallTable(dir.path(), 3);
    auto t = openRw(path);
    ASSERT_TRUE(t);
    const QByteArray before = readBytes(path);
    struct Case
    {
        QVariantList values;
        Status::Code code;
        const char *words;
    };
    const Case cases[] = {
        { { QStringLiteral("ELEVENCHARS") }, Status::Code::InvalidArgument, "field NAME" },
        { { QStringLiteral("A"), 123456 },
          Status::Code::InvalidArgument,
          "does not fit field QTY" },
        { { QStringLiteral("A"), 1, 1234567.5 }, Status::Code::InvalidArgument, "field PRICE" },
        { { QStringLiteral("A"), QStringLiteral("many") }, Status::Code::TypeMismatch, "a number" },
        { { QStringLiteral("A"), 1, 1, QStringLiteral("soon") },
          Status::Code::TypeMismatch,
          "a date" },
        { { QStringLiteral("A"), 1, 1, QDate(), QStringLiteral("maybe") },
          Status::Code::TypeMismatch,
          "a logical value" },
        { { QStringLiteral("\u4E2D") }, Status::Code::InvalidArgument, "code page 1252" },
        { { 1, 2, 3, 4, 5, 6, 7 }, Status::Code::InvalidArgument, "7 values" },
    };
    for (const Case &c : cases) {
        const Status s = t->writeRecord(2, c.values);
        EXPECT_EQ(s.code(), c.code) << s.message().toStdString();
        EXPECT_TRUE(s.message().contains(QLatin1String(c.words))) << s.message().toStdString();
        EXPECT_FALSE(t->appendRecord(c.values).isOk());
    }
    EXPECT_EQ(readBytes(path), before);

    ASSERT_TRUE(t->setDeleted(2, true).isOk());
    EXPECT_TRUE(t->isDeleted(2));
    EXPECT_FALSE(t->isDeleted(1));
    const QByteArray after = readBytes(path);
    const int at = t->header().headerLength + t->header().recordLength;
    EXPECT_EQ(after.at(at), '*');
    EXPECT_EQ(after.mid(at + 1), before.mid(at + 1));
    ASSERT_TRUE(t->setDeleted(2, false).isOk());
    EXPECT_FALSE(t->isDeleted(2));
    EXPECT_EQ(t->setDeleted(4, true).code(), Status::Code::NotFound);
}

TEST(DbfWrite, DbaseThreeTablesWriteDbtMemos)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("old.dbf"));
    auto t = DbfTable::create(
        path, { { QStringLiteral("name"), 'C', 8 }, { QStringLiteral("text"), 'M', 10 } }, 0x83,
        437);
    ASSERT_TRUE(t.isOk()) << t.status().toString().toStdString();
    (*t)->setDurable(false);
    ASSERT_TRUE((*t)->appendRecord({ QStringLiteral("a"), QStringLiteral("Grüße") }).isOk());
    ASSERT_TRUE(
        (*t)->appendRecord({ QStringLiteral("b"), QStringLiteral("x").repeated(600) }).isOk());
    auto again = DbfTable::open(path, DbfTable::OpenMode::ReadOnly);
    ASSERT_TRUE(again.isOk());
    EXPECT_EQ((*again)->header().memoKind, DbfMemoKind::Dbt3);
    EXPECT_EQ((*again)->codePage(), 437);
    EXPECT_EQ((*again)->value(1, 1)->toString(), QStringLiteral("Grüße"));
    EXPECT_EQ((*again)->value(2, 1)->toString(), QStringLiteral("x").repeated(600));
    EXPECT_EQ((*again)->fields()[0].name, QStringLiteral("NAME"));
    EXPECT_EQ(readBytes(dir.filePath(QStringLiteral("old.dbt"))).mid(512 + 5, 2),
              QByteArray("\x1A\x1A"));
}

// A memo is read with one call when it is short and in two when it is not: the lengths
// around that boundary, and values spanning many blocks, come back whole.
TEST(DbfWrite, FptMemosOfEveryLengthReadBackWhole)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("memo.dbf"));
    auto t = DbfTable::create(
        path, { { QStringLiteral("n"), 'N', 6 }, { QStringLiteral("text"), 'M', 10 } });
    ASSERT_TRUE(t.isOk()) << t.status().toString().toStdString();
    (*t)->setDurable(false);
    const QList<int> lengths = { 1, 55, 56, 503, 504, 505, 1000, 5000 };
    for (int length : lengths) {
        QString text;
        for (int i = 0; i < length; ++i)
            text += QChar(char16_t(u'a' + i % 26));
        ASSERT_TRUE((*t)->appendRecord({ length, text }).isOk());
    }
    t->reset();
    auto again = DbfTable::open(path, DbfTable::OpenMode::ReadOnly);
    ASSERT_TRUE(again.isOk());
    for (quint32 r = 1; r <= quint32(lengths.size()); ++r) {
        const QString text = (*again)->value(r, 1)->toString();
        ASSERT_EQ(text.size(), lengths[int(r - 1)]);
        EXPECT_EQ(text.back(), QChar(char16_t(u'a' + (text.size() - 1) % 26))) << text.size();
    }
}

TEST(DbfWrite, LocksUseFoxProByteOffsetsAndExcludeOtherObjects)
{
    QTemporaryDir dir;
    const QString path = makeSmallTable(dir.path(), 3);
    auto a = openRw(path);
    auto b = openRw(path);
    ASSERT_TRUE(a && b);
    const quint64 hl = a->header().headerLength;
    const quint64 rl = a->header().recordLength;
    ASSERT_TRUE(a->lockRecord(2).isOk());
    EXPECT_TRUE(byteLocked(path, 0x40000000 + hl + rl));
    EXPECT_TRUE(byteLocked(path, 0x7FFFFFFE - 2));
    EXPECT_FALSE(byteLocked(path, 0x7FFFFFFE - 1));

    const Status busy = b->lockRecord(2);
    EXPECT_EQ(busy.code(), Status::Code::Locked);
    EXPECT_TRUE(busy.message().contains(QLatin1String("SMALL.DBF")))
        << busy.message().toStdString();
    EXPECT_EQ(b->writeRecord(2, { QStringLiteral("X") }).code(), Status::Code::Locked);
    EXPECT_EQ(b->setDeleted(2, true).code(), Status::Code::Locked);
    EXPECT_TRUE(b->lockRecord(3).isOk());
    EXPECT_TRUE(a->writeRecord(2, { QStringLiteral("MINE") }).isOk()); // a holds it: allowed
    EXPECT_TRUE(a->holdsRecordLock(2)); // and keeps holding it

    ASSERT_TRUE(a->lockHeader(100).isOk());
    EXPECT_TRUE(byteLocked(path, 0x40000000));
    EXPECT_TRUE(byteLocked(path, 0x7FFFFFFE));
    EXPECT_EQ(b->lockHeader(50).code(), Status::Code::Locked);
    b->setHeaderLockTimeout(50);
    EXPECT_EQ(b->appendRecord({ QStringLiteral("Y") }).status().code(), Status::Code::Locked);
    ASSERT_TRUE(a->unlockHeader().isOk());
    ASSERT_TRUE(a->unlockRecord(2).isOk());
    EXPECT_TRUE(b->lockRecord(2).isOk());
    EXPECT_EQ(b->value(2, 0)->toString(), QStringLiteral("MINE"));
}

TEST(DbfWrite, InfoTextDescribesTheHeader)
{
    QTemporaryDir dir;
    const QString path = makeSmallTable(dir.path(), 4);
    auto t = openRw(path);
    ASSERT_TRUE(t);
    ASSERT_TRUE(t->setDeleted(3, true).isOk());
    const QString info = t->infoText();
    for (const char *line :
         { "Version byte: 0xF5 (FoxPro 2.x with .FPT memo)", "Code page: 1252 (mark 0x03)",
           "Records: 4 physical, 3 live, 1 deleted (header count 4)", "Header length: 225",
           "Record length: 43", "Fields: 6", "  PRICE      N(8,2)", "  NOTES      M(10)" })
        EXPECT_TRUE(info.contains(QLatin1String(line))) << line << "\n" << info.toStdString();
}

TEST(DbfWrite, CreateRefusesWhatFoxProCannotStore)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("bad.dbf"));
    EXPECT_FALSE(DbfTable::create(path, { { QStringLiteral("1ST"), 'C', 5 } }).isOk());
    EXPECT_FALSE(DbfTable::create(path, { { QStringLiteral("LONGERNAME1"), 'C', 5 } }).isOk());
    EXPECT_FALSE(DbfTable::create(path, { { QStringLiteral("A"), 'C', 255 } }).isOk());
    EXPECT_FALSE(DbfTable::create(path, { { QStringLiteral("A"), 'I', 4 } }).isOk());
    EXPECT_FALSE(DbfTable::create(path, { { QStringLiteral("A"), 'N', 5, 4 } }).isOk());
    EXPECT_FALSE(DbfTable::create(path, { { QStringLiteral("A"), 'M', 10 } }, 0x03).isOk());
    EXPECT_FALSE(DbfTable::create(path, { { QStringLiteral("A"), 'C', 5 } }, 0x30).isOk());
    EXPECT_FALSE(
        DbfTable::create(path, { { QStringLiteral("A"), 'C', 5 }, { QStringLiteral("a"), 'C', 5 } })
            .isOk());
    EXPECT_FALSE(QFile::exists(path));
    ASSERT_TRUE(DbfTable::create(path, { { QStringLiteral("A"), 'C', 5 } }).isOk());
    EXPECT_EQ(DbfTable::create(path, { { QStringLiteral("A"), 'C', 5 } }).status().code(),
              Status::Code::InvalidArgument);
}

} // namespace plx::dbftestutil
