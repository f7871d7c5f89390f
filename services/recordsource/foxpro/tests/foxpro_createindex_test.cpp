// Database::createIndex on a FoxPro table: the tag lands in the structural .CDX the header
// announces, holds the keys FoxPro would, is kept up to date by a record source opened before
// it existed, and is what a sort and a FindFirst then read.
#include "services/recordsource/dbf/internal/cdxindex.h"
#include "services/recordsource/dbf/internal/dbftable.h"
#include "services/recordsource/dbf/internal/dbftesthooks.h"
#include "services/recordsource/foxpro/tests/foxprotestsupport.h"
#include "services/texthelpers.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cerrno>

namespace plx {
namespace {

using Code = Status::Code;

class FoxProCreateIndexTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        m_db = foxprotest::openDirectory(m_dir.path());
        ASSERT_TRUE(m_db);
        const QList<FieldInfo> fields{ { QStringLiteral("ID"), FieldType::Text, 6, 0 },
                                       { QStringLiteral("NAME"), FieldType::Text, 10, 0 },
                                       { QStringLiteral("QTY"), FieldType::Numeric, 5, 1 },
                                       { QStringLiteral("BORN"), FieldType::Date, 8, 0 },
                                       { QStringLiteral("OK"), FieldType::Boolean, 1, 0 } };
        ASSERT_TRUE(m_db->createTable(QStringLiteral("P"), fields).isOk());
        QList<QVariantList> rows;
        for (int i = 0; i < 200; ++i)
            rows << QVariantList{ QStringLiteral("P%1").arg((i * 37) % 200, 3, 10,
                                                            QLatin1Char('0')),
                                  QStringLiteral("name %1").arg(i % 13), (i % 17) - 8.5,
                                  QDate(2020, 1, 1).addDays((i * 11) % 300), i % 2 == 0 };
        ASSERT_TRUE(m_db->appendRecords(QStringLiteral("P"), rows).isOk());
    }

    QString tablePath() const { return m_dir.filePath(QStringLiteral("P.DBF")); }

    // The tags of the table's index as "NAME key length", and check()'s verdict.
    QStringList tags() const
    {
        auto table = DbfTable::open(tablePath(), DbfTable::OpenMode::ReadOnly);
        if (!table.isOk() || !(*table)->index())
            return { QStringLiteral("no index") };
        QStringList out;
        for (const CdxTag &t : (*table)->index()->tags())
            out << QStringLiteral("%1 %2 %3")
                       .arg(t.name, QString::fromLatin1(t.keyExpression))
                       .arg(t.keyLength);
        const Status checked = (*table)->index()->check();
        out << (checked.isOk() ? QStringLiteral("sound") : checked.message());
        return out;
    }

    QStringList ids(const char *sql) const
    {
        return foxprotest::fieldOfEachRecord(*m_db, QString::fromLatin1(sql), QStringLiteral("ID"));
    }

    QTemporaryDir m_dir;
    std::unique_ptr<Database> m_db;
};

TEST_F(FoxProCreateIndexTest, TagsLandInTheStructuralIndexAndStaySoundThroughOpenSources)
{
    auto early = m_db->OpenRecordset(QStringLiteral("P"));
    ASSERT_TRUE(early.isOk());
    ASSERT_TRUE(m_db->createIndex(QStringLiteral("p"), QStringLiteral("P_IDENTIFIER"),
                                  { QStringLiteral("id") })
                    .isOk());
    QFile dbf(tablePath());
    ASSERT_TRUE(dbf.open(QIODevice::ReadOnly));
    EXPECT_EQ(dbf.readAll().at(28), '\x01');
    EXPECT_EQ(tags(), (QStringList{ QStringLiteral("P_IDENTIFI ID 6"), QStringLiteral("sound") }));

    // A source opened before the index existed keeps it up to date.
    RecordSource &r = *early.value();
    ASSERT_TRUE(r.Edit().isOk());
    ASSERT_TRUE(r.setValue(QStringLiteral("ID"), QStringLiteral("A0")).isOk());
    ASSERT_TRUE(r.Update().isOk());
    ASSERT_TRUE(
        m_db->createIndex(QStringLiteral("P"), QStringLiteral("BY_NAME"),
                          { QStringLiteral("NAME"), QStringLiteral("QTY"), QStringLiteral("BORN") })
            .isOk());
    ASSERT_TRUE(
        m_db->createIndex(QStringLiteral("P"), QStringLiteral("BY_QTY"), { QStringLiteral("QTY") })
            .isOk());
    ASSERT_TRUE(r.AddNew().isOk());
    ASSERT_TRUE(r.setValue(QStringLiteral("ID"), QStringLiteral("B1")).isOk());
    ASSERT_TRUE(r.setValue(QStringLiteral("QTY"), -3).isOk());
    ASSERT_TRUE(r.Update().isOk());
    ASSERT_TRUE(r.MoveLast().isOk());
    ASSERT_TRUE(r.Delete().isOk());
    EXPECT_EQ(tags(),
              (QStringList{ QStringLiteral("BY_NAME NAME+STR(QTY,5,1)+DTOS(BORN) 23"),
                            QStringLiteral("BY_QTY QTY 8"), QStringLiteral("P_IDENTIFI ID 6"),
                            QStringLiteral("sound") }));

    // The name as cut to ten characters is taken; a logical field has no key.
    const Status clash = m_db->createIndex(QStringLiteral("P"), QStringLiteral("P_IDENTIFIES"),
                                           { QStringLiteral("NAME") });
    EXPECT_EQ(clash.code(), Code::InvalidArgument);
    EXPECT_EQ(clash.message(), QStringLiteral("an index named P_IDENTIFIES exists already"));
    const Status logical =
        m_db->createIndex(QStringLiteral("P"), QStringLiteral("BY_OK"), { QStringLiteral("OK") });
    EXPECT_EQ(logical.message(), QStringLiteral("the field OK cannot be part of a FoxPro index"));
    EXPECT_EQ(
        m_db->createIndex(QStringLiteral("P"), QStringLiteral("9LIVES"), { QStringLiteral("ID") })
            .code(),
        Code::InvalidArgument);
}

TEST_F(FoxProCreateIndexTest, ASortAndAFindFirstReadTheNewTag)
{
    const QStringList ranked = ids("SELECT * FROM P ORDER BY ID, ID");
    ASSERT_TRUE(
        m_db->createIndex(QStringLiteral("P"), QStringLiteral("P_ID"), { QStringLiteral("ID") })
            .isOk());
    EXPECT_EQ(ids("SELECT * FROM P ORDER BY ID"), ranked);

    // Record 5 filed under another key: the sort and the find by ID go by the tag.
    auto table = DbfTable::open(tablePath(), DbfTable::OpenMode::ReadOnly);
    ASSERT_TRUE(table.isOk());
    auto index = CdxIndex::open(m_dir.filePath(QStringLiteral("P.CDX")), **table, true);
    ASSERT_TRUE(index.isOk());
    const auto keys = (*index)->keysOf(5);
    ASSERT_TRUE(keys.isOk());
    ASSERT_TRUE((*index)->beginUpdate().isOk());
    ASSERT_TRUE((*index)->applyChange(5, *keys, { QByteArray("      ") }).isOk());
    ASSERT_TRUE((*index)->endUpdate(true, false).isOk());
    const QString id = (*table)->value(5, 0).value().toString();
    QStringList tagged = ranked;
    tagged.move(tagged.indexOf(id), 0);
    EXPECT_EQ(ids("SELECT * FROM P ORDER BY ID"), tagged);
    auto rs = m_db->OpenRecordset(QStringLiteral("P"));
    ASSERT_TRUE(rs.isOk());
    ASSERT_TRUE(
        rs.value()->FindFirst(QStringLiteral("ID >= %1 AND ID <= %1").arg(strToASC(id))).isOk());
    EXPECT_FALSE(rs.value()->NoMatch());
    ASSERT_TRUE(rs.value()->FindFirst(QStringLiteral("ID = ") + strToASC(id)).isOk());
    EXPECT_TRUE(rs.value()->NoMatch());
}

// A write the full disk refuses before the index is touched lets go of the index lock: the
// next object on the table opens it writable and the tag is whole.
TEST_F(FoxProCreateIndexTest, AWriteAFullDiskRefusesLeavesTheIndexUsable)
{
    ASSERT_TRUE(
        m_db->createIndex(QStringLiteral("P"), QStringLiteral("P_ID"), { QStringLiteral("ID") })
            .isOk());
    auto rs = m_db->OpenRecordset(QStringLiteral("P"));
    ASSERT_TRUE(rs.isOk());
    ASSERT_TRUE(rs.value()->Edit().isOk());
    ASSERT_TRUE(rs.value()->setValue(QStringLiteral("ID"), QStringLiteral("Z9")).isOk());
    dbftest::setFailWrites(ENOSPC);
    const Status full = rs.value()->Update();
    dbftest::setFailWrites(0);
    EXPECT_EQ(full.code(), Code::IoError);
    ASSERT_TRUE(rs.value()->CancelUpdate().isOk());
    auto later = DbfTable::open(tablePath());
    ASSERT_TRUE(later.isOk());
    EXPECT_EQ((*later)->writable().message(), QString());
    EXPECT_EQ(tags().last(), QStringLiteral("sound"));
}

} // namespace
} // namespace plx
