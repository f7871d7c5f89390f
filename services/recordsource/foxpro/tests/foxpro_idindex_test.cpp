// Look-ups by ID through the kept ID index answer exactly what a pass over the file answers,
// in both text orders (IDs differing only in case or accent), and follow every change to the
// file: a record another table object adds or deletes, an ID another program overwrites.
#include "services/recordsource/database.h"
#include "services/recordsource/dbf/internal/dbftable.h"
#include "services/recordsource/foxpro/tests/foxprotestsupport.h"
#include "services/texthelpers.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace plx;

namespace {

const char16_t *const kIds[] = { u"PLEa1", u"PLEA1", u"PLE\u00E91", u"PLE\u00C91", u"PLEe1",
                                 u"PLEb2", u"PLEb2", u"PLE'3",      u"PLE|4",      u"PLE 5" };

class FoxProIdIndexTest : public ::testing::TestWithParam<const char *>
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_dir.isValid());
        foxprotest::TableDef p{ QStringLiteral("P"),
                                foxprotest::textFields({ { "ID", 8 }, { "NAME", 8 } }),
                                {} };
        int n = 0;
        for (const char16_t *id : kIds)
            p.rows << QVariantList{ QString::fromUtf16(id), QStringLiteral("N%1").arg(9 - n++) };
        ASSERT_NO_FATAL_FAILURE(foxprotest::writeTable(m_dir.path(), p));
    }

    std::unique_ptr<Database> database()
    {
        auto db = OpenDatabase(m_dir.path(), false, false, QString::fromLatin1(GetParam()));
        EXPECT_TRUE(db.isOk());
        return db.isOk() ? std::move(db).value() : nullptr;
    }

    // Where FindFirst by `id` lands in `rs` (its NAME), or "-" for no match.
    static QString landing(RecordSource &rs, const QString &id)
    {
        EXPECT_TRUE(rs.FindFirst(QStringLiteral("ID = ") + strToASC(id)).isOk());
        return rs.NoMatch() ? QStringLiteral("-")
                            : rs.value(QStringLiteral("NAME")).value().toString();
    }

    // The NAMEs of the records a WHERE on the ID selects, as NewIDPLX asks the file.
    QStringList holders(Database &db, const QString &id)
    {
        return foxprotest::fieldOfEachRecord(
            db, QStringLiteral("SELECT * from P WHERE ID = ") + strToASC(id),
            QStringLiteral("NAME"));
    }

    QString path() const { return m_dir.filePath(QStringLiteral("P.DBF")); }

    QTemporaryDir m_dir;
};

} // namespace

TEST_P(FoxProIdIndexTest, AnswersAsThePassOverTheFile)
{
    auto db = database();
    for (const char *sql : { "SELECT * from P", "SELECT * from P ORDER BY P.NAME" }) {
        auto rs = db->OpenRecordset(QString::fromLatin1(sql));
        ASSERT_TRUE(rs.isOk());
        QStringList probes{ QStringLiteral("PLEz9"), QStringLiteral("PLEa") };
        for (const char16_t *id : kIds)
            probes << QString::fromUtf16(id);
        for (const QString &id : probes) {
            // The first look-ups pass over the file; the later ones are answered by the index.
            const QString passed = landing(*rs.value(), id);
            const QStringList held = holders(*db, id);
            for (int again = 0; again < 3; ++again) {
                EXPECT_EQ(landing(*rs.value(), id), passed) << sql << ' ' << id.toStdString();
                EXPECT_EQ(holders(*db, id), held) << id.toStdString();
            }
        }
    }
    // Case and accent twins: one record each in byte order, both in the General order.
    const QStringList twins = holders(*db, QStringLiteral("PLEa1"));
    EXPECT_EQ(twins,
              QString::fromLatin1(GetParam()).contains(QLatin1String("General"))
                  ? QStringList({ QStringLiteral("N9"), QStringLiteral("N8") })
                  : QStringList({ QStringLiteral("N9") }));
}

TEST_P(FoxProIdIndexTest, FollowsEveryChangeToTheFile)
{
    auto db = database();
    auto warm = [&](const QString &id) {
        for (int i = 0; i < 4; ++i)
            (void)holders(*db, id);
    };
    warm(QStringLiteral("PLEb2"));
    // A record another table object adds.
    {
        auto other = database();
        auto rs = other->OpenRecordset(QStringLiteral("P"));
        ASSERT_TRUE(rs.isOk());
        ASSERT_TRUE(rs.value()->AddNew().isOk());
        ASSERT_TRUE(rs.value()->setValue(QStringLiteral("ID"), QStringLiteral("PLEnew")).isOk());
        ASSERT_TRUE(rs.value()->setValue(QStringLiteral("NAME"), QStringLiteral("ADDED")).isOk());
        ASSERT_TRUE(rs.value()->Update().isOk());
    }
    EXPECT_EQ(holders(*db, QStringLiteral("PLEnew")), QStringList{ QStringLiteral("ADDED") });
    // One it deletes.
    warm(QStringLiteral("PLEb2"));
    {
        auto other = database();
        auto rs = other->OpenRecordset(QStringLiteral("SELECT * from P WHERE NAME = 'N4'"));
        ASSERT_TRUE(rs.isOk());
        ASSERT_TRUE(rs.value()->Delete().isOk());
    }
    EXPECT_EQ(holders(*db, QStringLiteral("PLEb2")), QStringList{ QStringLiteral("N3") });
    // An ID another program overwrites with plain file writes.
    warm(QStringLiteral("PLE'3"));
    {
        auto table = DbfTable::open(path(), DbfTable::OpenMode::ReadOnly);
        ASSERT_TRUE(table.isOk());
        const qint64 offset = table.value()->header().headerLength
            + 7 * qint64(table.value()->header().recordLength)
            + table.value()->fields().at(0).offset;
        table.value().reset();
        QFile f(path());
        ASSERT_TRUE(f.open(QIODevice::ReadWrite));
        ASSERT_TRUE(f.seek(offset));
        ASSERT_EQ(f.write("PLEx3   "), 8);
    }
    EXPECT_EQ(holders(*db, QStringLiteral("PLE'3")), QStringList());
    EXPECT_EQ(holders(*db, QStringLiteral("PLEx3")), QStringList{ QStringLiteral("N2") });
}

INSTANTIATE_TEST_SUITE_P(TextOrders, FoxProIdIndexTest,
                         ::testing::Values("FoxPro 2.6", "FoxPro 2.6;Collate=General"));
