// A FoxPro table with a structural index, edited through the record source: every write
// keeps every tag consistent, a FindFirst by ID reads the ID tag and lands where a pass over
// the file lands, and a sort on ID reads the tag's order, equal to the ranked sort.
#include "services/recordsource/database.h"
#include "services/recordsource/dbf/internal/cdxindex.h"
#include "services/recordsource/dbf/internal/dbftable.h"
#include "services/recordsource/foxpro/tests/foxprotestsupport.h"
#include "services/texthelpers.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace plx {
namespace {

class FoxProCdxTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        foxprotest::TableDef p{ QStringLiteral("P"),
                                foxprotest::textFields({ { "ID", 8 }, { "NAME", 12 } }),
                                {} };
        for (int i = 0; i < 300; ++i)
            p.rows << QVariantList{ QStringLiteral("PLE%1").arg((i * 7919) % 400, 5, 10,
                                                                QLatin1Char('0')),
                                    QStringLiteral("name %1").arg(i % 37) };
        ASSERT_NO_FATAL_FAILURE(foxprotest::writeTable(m_dir.path(), p));
        {
            auto table = DbfTable::open(tablePath());
            ASSERT_TRUE(table.isOk());
            auto index = CdxIndex::create(m_dir.filePath(QStringLiteral("P.CDX")), **table,
                                          { { QStringLiteral("ID"), "ID", {}, 8 },
                                            { QStringLiteral("NAME"), "UPPER(NAME)", {}, 12 } });
            ASSERT_TRUE(index.isOk()) << index.status().message().toStdString();
        }
        QFile file(tablePath());
        ASSERT_TRUE(file.open(QIODevice::ReadWrite) && file.seek(28));
        ASSERT_EQ(file.write(QByteArray(1, '\x01')), 1);
    }

    QString tablePath() const { return m_dir.filePath(QStringLiteral("P.DBF")); }

    std::string indexProblem() const
    {
        auto table = DbfTable::open(tablePath(), DbfTable::OpenMode::ReadOnly);
        if (!table.isOk() || !(*table)->index())
            return "no index";
        return (*table)->index()->check().message().toStdString();
    }

    // Where a FindFirst on `criterion` lands: the record's NAME and ID, or "-".
    static QString landing(RecordSource &rs, const QString &criterion)
    {
        EXPECT_TRUE(rs.FindFirst(criterion).isOk());
        return rs.NoMatch() ? QStringLiteral("-")
                            : rs.value(QStringLiteral("NAME")).value().toString() + QLatin1Char('|')
                + rs.value(QStringLiteral("ID")).value().toString();
    }

    QTemporaryDir m_dir;
};

TEST_F(FoxProCdxTest, EditsKeepTheTagsAndFindFirstByIdAnswersAsAPass)
{
    auto db = foxprotest::openDirectory(m_dir.path());
    auto rs = db->OpenRecordset(QStringLiteral("SELECT * from P"));
    ASSERT_TRUE(rs.isOk());
    RecordSource &r = *rs.value();
    ASSERT_TRUE(r.AddNew().isOk());
    ASSERT_TRUE(r.setValue(QStringLiteral("ID"), QStringLiteral("PLE00007")).isOk());
    ASSERT_TRUE(r.setValue(QStringLiteral("NAME"), QStringLiteral("added")).isOk());
    ASSERT_TRUE(r.Update().isOk());
    EXPECT_EQ(indexProblem(), "");
    ASSERT_TRUE(r.MoveFirst().isOk());
    ASSERT_TRUE(r.Edit().isOk());
    ASSERT_TRUE(r.setValue(QStringLiteral("ID"), QStringLiteral("PLE99999")).isOk());
    ASSERT_TRUE(r.Update().isOk());
    EXPECT_EQ(indexProblem(), "");
    ASSERT_TRUE(r.MoveNext().isOk());
    ASSERT_TRUE(r.Delete().isOk());
    EXPECT_EQ(indexProblem(), "");

    QStringList probes{ QStringLiteral("PLE00007"), QStringLiteral("PLE99999"),
                        QStringLiteral("PLE00000"), QStringLiteral("PLE00399"),
                        QStringLiteral("PLE00400"), QStringLiteral("PLE"),
                        QStringLiteral("PLE000077") };
    {
        auto table = DbfTable::open(tablePath(), DbfTable::OpenMode::ReadOnly);
        ASSERT_TRUE(table.isOk());
        for (quint32 recno : { 2U, 3U, 150U, 301U })
            probes << (*table)->value(recno, 0).value().toString();
    }
    for (const char *sql : { "SELECT * from P", "SELECT * from P ORDER BY P.NAME" }) {
        auto sorted = db->OpenRecordset(QString::fromLatin1(sql));
        ASSERT_TRUE(sorted.isOk());
        for (const QString &id : probes) {
            // Comparing twice is no ID look-up: it takes the pass over the file.
            const QString passed =
                landing(*sorted.value(), QStringLiteral("ID >= %1 AND ID <= %1").arg(strToASC(id)));
            EXPECT_EQ(landing(*sorted.value(), QStringLiteral("ID = ") + strToASC(id)), passed)
                << sql << ' ' << id.toStdString();
        }
    }

    // A sort on ID alone reads the ID tag; ID twice is sorted by ranks: the same order.
    const auto order = [&](const char *by) {
        QStringList rows;
        auto sorted =
            db->OpenRecordset(QStringLiteral("SELECT * from P ORDER BY ") + QLatin1String(by));
        EXPECT_TRUE(sorted.isOk());
        for (RecordSource &s = *sorted.value(); !s.isEOF(); (void)s.MoveNext())
            rows << s.value(QStringLiteral("ID")).value().toString() + QLatin1Char('|')
                    + s.value(QStringLiteral("NAME")).value().toString();
        return rows;
    };
    const QStringList ranked = order("P.ID, P.ID");
    EXPECT_EQ(ranked.size(), 300);
    EXPECT_EQ(order("P.ID"), ranked);

    // The look-up reads the tag: a record whose key is taken out of it is not found by ID.
    auto table = DbfTable::open(tablePath(), DbfTable::OpenMode::ReadOnly);
    ASSERT_TRUE(table.isOk());
    auto index = CdxIndex::open(m_dir.filePath(QStringLiteral("P.CDX")), **table, true);
    ASSERT_TRUE(index.isOk());
    const auto keys = (*index)->keysOf(5);
    ASSERT_TRUE((*index)->beginUpdate().isOk());
    ASSERT_TRUE((*index)->applyChange(5, *keys, { std::nullopt, (*keys)[1] }).isOk());
    ASSERT_TRUE((*index)->endUpdate(true, false).isOk());
    const QString id = (*table)->value(5, 0).value().toString();
    auto fresh = db->OpenRecordset(QStringLiteral("SELECT * from P"));
    EXPECT_NE(landing(*fresh.value(), QStringLiteral("ID >= %1 AND ID <= %1").arg(strToASC(id))),
              QStringLiteral("-"));
    EXPECT_EQ(landing(*fresh.value(), QStringLiteral("ID = ") + strToASC(id)), QStringLiteral("-"));
    // A tag that lacks a record does not give the sort order.
    EXPECT_EQ(order("P.ID"), ranked);
}

} // namespace
} // namespace plx
