// services/recordsource/dbf/tests/dbf_formats_test.cpp: the read-only formats no shared
// sample covers, built byte by byte: a Visual FoxPro table with nullable fields and its
// hidden _NullFlags column, and a dBASE IV table with its own .DBT memo layout.
#include "dbf_test_util.h"

#include "services/recordsource/dbf/internal/dbftable.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cstring>

using namespace plx;
using namespace plx::dbftestutil;

namespace {

// One 32-byte field descriptor.
QByteArray descriptor(const char *name, char type, int length, quint8 flags = 0)
{
    QByteArray d(32, '\0');
    std::memcpy(d.data(), name, std::strlen(name));
    d[11] = type;
    d[16] = char(length);
    d[18] = char(flags);
    return d;
}

QByteArray header(quint8 version, int records, int headerLength, int recordLength)
{
    QByteArray h(32, '\0');
    h[0] = char(version);
    h[1] = 24;
    h[2] = 6;
    h[3] = 30;
    h[4] = char(records);
    h[8] = char(headerLength & 0xFF);
    h[9] = char(headerLength >> 8);
    h[10] = char(recordLength);
    h[29] = 0x03;
    return h;
}

} // namespace

TEST(DbfFormats, VisualFoxProNullFlagsMakeValuesNull)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("vfp.dbf"));
    // V(6) takes the first bit ("shorter than its slot") and then its null bit; NAME and
    // QTY are nullable, so the bits run V-length 0, V-null 1, NAME 2, QTY 3.
    QByteArray file = header(0x30, 2, 32 + 4 * 32 + 1 + 263, 1 + 6 + 5 + 4 + 1);
    file += descriptor("NOTE", 'V', 6, 0x02);
    file += descriptor("NAME", 'C', 5, 0x02);
    file += descriptor("QTY", 'I', 4, 0x02);
    file += descriptor("_NullFlags", '0', 1, 0x05);
    file += '\x0D';
    file += QByteArray(263, '\0');
    file += QByteArray(" memo  abc  \x07\x00\x00\x00\x00", 17); // nothing null
    file += QByteArray(" \0\0\0\0\0\0     \x00\x00\x00\x00\x0E", 17); // V, NAME, QTY null
    file += '\x1A';
    writeBytes(path, file);

    auto t = DbfTable::open(path, DbfTable::OpenMode::ReadOnly);
    ASSERT_TRUE(t.isOk()) << t.status().toString().toStdString();
    ASSERT_EQ((*t)->fields().size(), 3); // _NullFlags stays hidden
    EXPECT_EQ((*t)->fields()[1].nullBit, 2);
    EXPECT_EQ((*t)->value(1, 0)->toString(), QStringLiteral("memo"));
    EXPECT_EQ((*t)->value(1, 1)->toString(), QStringLiteral("abc"));
    EXPECT_EQ((*t)->value(1, 2)->toInt(), 7);
    for (int f = 0; f < 3; ++f)
        EXPECT_FALSE((*t)->value(2, f)->isValid()) << "field " << f;
    EXPECT_EQ((*t)->fieldInfos()[2].type, FieldType::Integer);
}

TEST(DbfFormats, DbaseFourMemosReadAndStayReadOnly)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("d4.dbf"));
    QByteArray file = header(0x8B, 1, 32 + 2 * 32 + 1, 1 + 4 + 10);
    file += descriptor("NAME", 'C', 4);
    file += descriptor("TXT", 'M', 10);
    file += '\x0D';
    file += QByteArray(" abcd         1\x1A");
    writeBytes(path, file);
    QByteArray dbt(512, '\0');
    dbt[0] = 2;
    dbt[20] = 0x00; // block size 512, little-endian at 20
    dbt[21] = 0x02;
    dbt += QByteArray("\xFF\xFF\x08\x00\x0D\x00\x00\x00hello", 13);
    writeBytes(dir.filePath(QStringLiteral("d4.dbt")), dbt);

    auto t = DbfTable::open(path);
    ASSERT_TRUE(t.isOk()) << t.status().toString().toStdString();
    EXPECT_EQ((*t)->header().memoKind, DbfMemoKind::Dbt4);
    EXPECT_EQ((*t)->value(1, 1)->toString(), QStringLiteral("hello"));
    const Status s = (*t)->writeRecord(1, { QStringLiteral("x") });
    EXPECT_EQ(s.code(), Status::Code::NotSupported);
    EXPECT_TRUE(s.message().contains(QLatin1String("dBASE IV"))) << s.message().toStdString();
    EXPECT_EQ((*t)->header().lastUpdate, QDate(2024, 6, 30));
}
