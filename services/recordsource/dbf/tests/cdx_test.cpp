// services/recordsource/dbf/tests/cdx_test.cpp: compound indexes read as FoxPro wrote them,
// agreeing with their tables through their key expressions, key encodings that sort as
// FoxPro's, and damaged index files refused with a clear Status.
#include "dbf_test_util.h"

#include "services/recordsource/dbf/internal/cdxfile.h"
#include "services/recordsource/dbf/internal/cdxkey.h"
#include "services/recordsource/dbf/internal/dbftable.h"
#include "services/recordsource/dbf/internal/xbaseexpression.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

using namespace plx;
using namespace plx::dbftestutil;

namespace {

QByteArray hex(const char *digits)
{
    return QByteArray::fromHex(digits);
}

void putLe(QByteArray &bytes, int at, quint32 value, int width)
{
    for (int i = 0; i < width; ++i)
        bytes[at + i] = char((value >> (8 * i)) & 0xFF);
}

// calls.CDX (Visual FoxPro): tag CALL_ID (header at 0x600, one leaf at 0xA00) and tag
// CONTACT_ID (header at 0x1200, one leaf at 0x1600), both over integer fields.
class CdxCalls : public ::testing::Test
{
protected:
    void SetUp() override
    {
        PLX_REQUIRE_SAMPLES();
        m_original = readBytes(samplePath(QStringLiteral("calls.CDX")));
        ASSERT_EQ(m_original.size(), 6144);
    }

    // Opens a copy of calls.CDX changed by `damage`.
    Result<std::unique_ptr<CdxFile>> openCopy(const QByteArray &bytes)
    {
        const QString path = m_dir.filePath(QStringLiteral("calls%1.cdx").arg(++m_copies));
        writeBytes(path, bytes);
        return CdxFile::open(path);
    }

    // Why a changed copy does not open, or why reading the keys of its tag `tag` fails;
    // empty when both succeed.
    std::string problemOf(const QByteArray &bytes, const char *tag = "CALL_ID")
    {
        auto cdx = openCopy(bytes);
        if (!cdx.isOk())
            return cdx.status().message().toStdString();
        const auto keys = (*cdx)->readKeys(*(*cdx)->tag(QLatin1String(tag)), '\0');
        return keys.isOk() ? std::string() : keys.status().message().toStdString();
    }

    QByteArray m_original;
    QTemporaryDir m_dir;
    int m_copies = 0;
};

TEST_F(CdxCalls, TagsAndKeysAgreeWithTheTableRecordForRecord)
{
    const QString tablePath = samplePath(QStringLiteral("calls.dbf"));
    ASSERT_TRUE(CdxFile::structuralIndexOf(tablePath).endsWith(QLatin1String("/calls.CDX")));
    auto cdx = CdxFile::open(CdxFile::structuralIndexOf(tablePath));
    ASSERT_TRUE(cdx.isOk()) << cdx.status().message().toStdString();
    auto table = DbfTable::open(tablePath, DbfTable::OpenMode::ReadOnly);
    ASSERT_TRUE(table.isOk());

    const QList<CdxTag> &tags = (*cdx)->tags();
    ASSERT_EQ(tags.size(), 2);
    struct Expected
    {
        const char *name;
        quint32 header;
        quint8 options;
    };
    // CONTACT_ID's header is the second of two copies in the file: the directory decides.
    const Expected expected[] = { { "CALL_ID", 0x600, 0x64 }, { "CONTACT_ID", 0x1200, 0x60 } };
    for (int t = 0; t < 2; ++t) {
        const CdxTag &tag = tags[t];
        SCOPED_TRACE(tag.name.toStdString());
        EXPECT_EQ(tag.name, QLatin1String(expected[t].name));
        EXPECT_EQ(tag.headerOffset, expected[t].header);
        EXPECT_EQ(tag.options, expected[t].options);
        EXPECT_EQ(tag.keyExpression, tag.name.toLower().toLatin1());
        EXPECT_TRUE(tag.forExpression.isEmpty());
        EXPECT_TRUE(tag.compact && tag.compound);
        EXPECT_FALSE(tag.unique || tag.hasFor || tag.descending);
        EXPECT_EQ(tag.keyLength, 4);

        auto expression = XbaseExpression::compile(tag.keyExpression, **table);
        ASSERT_TRUE(expression.isOk()) << expression.status().message().toStdString();
        EXPECT_EQ(expression->type(), cdxkey::KeyType::Integer);
        auto keys = (*cdx)->readKeys(tag, cdxkey::padByte(expression->type()));
        ASSERT_TRUE(keys.isOk()) << keys.status().message().toStdString();
        ASSERT_EQ(keys->size(), int((*table)->recordCount()));
        EXPECT_TRUE(
            std::is_sorted(keys->begin(), keys->end(),
                           [](const CdxEntry &a, const CdxEntry &b) { return a.key < b.key; }));
        QList<quint32> recnos;
        for (const CdxEntry &entry : std::as_const(*keys)) {
            recnos.append(entry.recno);
            const auto key = expression->key(entry.recno, tag.keyLength);
            ASSERT_TRUE(key.isOk()) << "record " << entry.recno;
            EXPECT_EQ(entry.key, *key) << "record " << entry.recno;
        }
        std::sort(recnos.begin(), recnos.end());
        for (int r = 0; r < recnos.size(); ++r)
            EXPECT_EQ(recnos[r], quint32(r + 1));
    }
    EXPECT_EQ((*cdx)->tag(QStringLiteral("Contact_Id")), &tags[1]);
    EXPECT_EQ((*cdx)->tag(QStringLiteral("SUBJECT")), nullptr);
}

TEST_F(CdxCalls, InteriorPagesAreWalkedAndTheirCyclesRefused)
{
    // A new root page above CALL_ID's leaf: one entry, the leaf's last key (16) and page.
    QByteArray bytes = m_original + QByteArray(512, '\0');
    const int root = 0x1800;
    putLe(bytes, root, 0x0001, 2);
    putLe(bytes, root + 2, 1, 2);
    putLe(bytes, root + 4, 0xFFFFFFFF, 4);
    putLe(bytes, root + 8, 0xFFFFFFFF, 4);
    bytes.replace(root + 12, 12,
                  hex("80000010"
                      "00000010"
                      "00000a00"));
    putLe(bytes, 0x600, root, 4);
    auto cdx = openCopy(bytes);
    ASSERT_TRUE(cdx.isOk());
    auto keys = (*cdx)->readKeys((*cdx)->tags()[0], '\0');
    ASSERT_TRUE(keys.isOk()) << keys.status().message().toStdString();
    ASSERT_EQ(keys->size(), 16);
    EXPECT_EQ(keys->front(), (CdxEntry{ cdxkey::integerKey(1), 1 }));
    EXPECT_EQ(keys->back(), (CdxEntry{ cdxkey::integerKey(16), 16 }));

    bytes.replace(root + 20, 4, hex("00001800"));
    EXPECT_EQ(problemOf(bytes),
              "calls2.cdx: the index page at 6144 is reached twice (its links form a cycle)");
}

TEST_F(CdxCalls, ForExpressionAndOrderComeFromTheTagHeader)
{
    // CALL_ID given a FOR clause after its key in the pool, marked unique and descending.
    QByteArray bytes = m_original;
    const QByteArray forClause("UPPE(subject) # 'X' .AND. call_id > 12");
    bytes.replace(0x600 + 512 + 8, forClause.size() + 1, forClause + '\0');
    putLe(bytes, 0x600 + 506, quint32(forClause.size() + 1), 2);
    putLe(bytes, 0x600 + 502, 1, 2);
    bytes[0x600 + 14] = char(0x64 | 0x08 | 0x01);
    auto cdx = openCopy(bytes);
    ASSERT_TRUE(cdx.isOk()) << cdx.status().message().toStdString();
    const CdxTag &tag = (*cdx)->tags()[0];
    EXPECT_TRUE(tag.hasFor && tag.unique && tag.descending);
    EXPECT_EQ(tag.keyExpression, "call_id");
    EXPECT_EQ(tag.forExpression, forClause);

    auto table =
        DbfTable::open(samplePath(QStringLiteral("calls.dbf")), DbfTable::OpenMode::ReadOnly);
    ASSERT_TRUE(table.isOk());
    auto condition = XbaseExpression::compile(tag.forExpression, **table);
    ASSERT_TRUE(condition.isOk()) << condition.status().message().toStdString();
    QList<quint32> passing;
    for (quint32 r = 1; r <= (*table)->recordCount(); ++r) {
        if (condition->evaluate(r)->logical)
            passing.append(r);
    }
    EXPECT_EQ(passing, (QList<quint32>{ 13, 14, 15, 16 }));

    putLe(bytes, 0x600 + 504, 600, 2);
    EXPECT_EQ(problemOf(bytes), "calls2.cdx: tag CALL_ID has its expression outside its header");
}

TEST_F(CdxCalls, DamagedFilesGiveAClearStatus)
{
    auto open = openCopy(m_original.left(1000));
    ASSERT_FALSE(open.isOk());
    EXPECT_EQ(open.status().code(), Status::Code::Corrupt);
    EXPECT_EQ(open.status().message().toStdString(),
              "calls1.cdx: the index is shorter than its header (1000 bytes)");

    EXPECT_EQ(problemOf(m_original.left(0x1700), "CONTACT_ID"),
              "calls2.cdx: the index points at offset 5632, outside its 5888 bytes");

    QByteArray wrongRoot = m_original;
    putLe(wrongRoot, 0x600, 0xA10, 4);
    EXPECT_EQ(problemOf(wrongRoot),
              "calls3.cdx: the index points at offset 2576, outside its 6144 bytes");

    QByteArray tooMany = m_original;
    putLe(tooMany, 0xA02, 300, 2);
    EXPECT_EQ(problemOf(tooMany),
              "calls4.cdx: the index page at 2560 is damaged: 300 keys do not fit a leaf page");
    putLe(tooMany, 0xA02, 200, 2); // the entries fit, the keys they claim do not
    EXPECT_EQ(problemOf(tooMany),
              "calls5.cdx: the index page at 2560 is damaged: key 36 of "
              "the leaf does not fit the page");

    QByteArray badDirectory = m_original;
    putLe(badDirectory, 0x418, 0x7000, 2); // CALL_ID's header offset in the tag directory
    EXPECT_EQ(problemOf(badDirectory),
              "calls6.cdx: the index points at offset 28672, outside its 6144 bytes");

    QByteArray badKeyLength = m_original;
    putLe(badKeyLength, 0x60C, 600, 2);
    EXPECT_EQ(problemOf(badKeyLength), "calls7.cdx: tag CALL_ID has the impossible key length 600");

    EXPECT_EQ(CdxFile::open(m_dir.filePath(QStringLiteral("none.cdx"))).status().code(),
              Status::Code::NotFound);
}

TEST(CdxKey, EncodingsSortAsTheirValuesAndRoundTrip)
{
    // Hand-computed: 1.0 is 3FF0..., its sign bit flipped; -1.0 is BFF0..., inverted; the
    // Julian day of 2000-01-01 is 2451545 (4142B42C80000000 as a double).
    EXPECT_EQ(cdxkey::numericKey(1.0), hex("bff0000000000000"));
    EXPECT_EQ(cdxkey::numericKey(-1.0), hex("400fffffffffffff"));
    EXPECT_EQ(cdxkey::numericKey(-0.0), cdxkey::numericKey(0.0));
    EXPECT_EQ(cdxkey::dateKey(QDate(2000, 1, 1)), hex("c142b42c80000000"));
    EXPECT_EQ(cdxkey::integerKey(1), hex("80000001")); // as calls.CDX stores CALL_ID 1
    EXPECT_EQ(cdxkey::integerKey(-1), hex("7fffffff"));
    EXPECT_EQ(cdxkey::characterKey("AB", 4), QByteArray("AB  "));
    EXPECT_EQ(cdxkey::characterKey("ABCDEF", 4), QByteArray("ABCD"));

    const double numbers[] = {
        -1e300, -12.5, -1.0, -0.001, 0.0, 0.001, 1.0, 12.5, 99999.99, 1e300
    };
    for (size_t i = 0; i < std::size(numbers); ++i) {
        const QByteArray key = cdxkey::numericKey(numbers[i]);
        EXPECT_EQ(cdxkey::numericFromKey(key), numbers[i]);
        if (i > 0) {
            EXPECT_LT(
                std::memcmp(cdxkey::numericKey(numbers[i - 1]).constData(), key.constData(), 8), 0)
                << numbers[i - 1] << " < " << numbers[i];
        }
    }
    const qint32 integers[] = { INT32_MIN, -70000, -1, 0, 1, 255, 256, INT32_MAX };
    for (size_t i = 1; i < std::size(integers); ++i) {
        EXPECT_LT(cdxkey::integerKey(integers[i - 1]), cdxkey::integerKey(integers[i]));
        EXPECT_EQ(cdxkey::integerFromKey(cdxkey::integerKey(integers[i])), integers[i]);
    }
    EXPECT_LT(cdxkey::dateKey(QDate()), cdxkey::dateKey(QDate(1899, 12, 30)));
    EXPECT_LT(cdxkey::dateKey(QDate(1999, 12, 31)), cdxkey::dateKey(QDate(2000, 1, 1)));
    EXPECT_EQ(cdxkey::dateFromKey(cdxkey::dateKey(QDate(2024, 2, 29))), QDate(2024, 2, 29));
    EXPECT_EQ(cdxkey::dateFromKey(cdxkey::dateKey(QDate())), QDate());
    EXPECT_EQ(cdxkey::dateFromKey(cdxkey::numericKey(1.5)), std::nullopt);
    EXPECT_LT(cdxkey::logicalKey(false), cdxkey::logicalKey(true));
    EXPECT_EQ(cdxkey::logicalFromKey("T"), true);
    EXPECT_EQ(cdxkey::logicalFromKey("X"), std::nullopt);
    EXPECT_EQ(cdxkey::integerFromKey("abc"), std::nullopt);
}

} // namespace
