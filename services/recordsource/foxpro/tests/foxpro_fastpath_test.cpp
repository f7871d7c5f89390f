// The FoxPro record source's fast paths must give exactly what the general evaluator gives:
// the find condition compiled to byte tests, the ranks kept between sorts (and dropped when
// the file changes, whoever changes it), and the ID search of a sorted keyset.
#include "services/recordsource/database.h"
#include "services/recordsource/dbf/internal/dbftable.h"
#include "services/recordsource/dbf/internal/dbftesthooks.h"
#include "services/recordsource/foxpro/internal/rankcache.h"
#include "services/recordsource/foxpro/tests/foxprotestsupport.h"
#include "tests/support/texts.h"

#include <QDeadlineTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QThread>

#include <gtest/gtest.h>

namespace plx {

namespace {

class FoxProFastPathTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_dir.isValid());
        foxpro::RankCache::global().clear();
    }

    // Creates P.DBF (ID C(4), NAME C(12), CITY C(8), code page 1252) with these rows.
    void makeTable(const QList<QStringList> &rows)
    {
        foxprotest::TableDef p{ QStringLiteral("P"),
                                foxprotest::textFields(
                                    { { "ID", 4 }, { "NAME", 12 }, { "CITY", 8 } }),
                                {} };
        for (const QStringList &row : rows)
            p.rows << QVariantList(row.begin(), row.end());
        ASSERT_NO_FATAL_FAILURE(foxprotest::writeTable(m_dir.path(), p));
    }

    QString path() const { return m_dir.filePath(QStringLiteral("P.DBF")); }

    std::unique_ptr<Database> database() { return foxprotest::openDirectory(m_dir.path()); }

    QStringList column(const QString &sql)
    {
        auto db = database();
        return db ? foxprotest::fieldOfEachRecord(*db, sql, QStringLiteral("ID")) : QStringList();
    }

    // Waits until the file's last change is old enough for its ranks to be kept.
    void waitUntilSettled()
    {
        QDeadlineTimer deadline(10000);
        for (;;) {
            auto table = DbfTable::open(path(), DbfTable::OpenMode::ReadOnly);
            ASSERT_TRUE(table.isOk());
            auto stamp = table.value()->changeStamp();
            ASSERT_TRUE(stamp.isOk());
            if (stamp->settled)
                return;
            ASSERT_FALSE(deadline.hasExpired()) << "the file never settled";
            QThread::msleep(200);
        }
    }

    // Overwrites the NAME of record `recno` in place, as another program would: plain file
    // writes, nothing of this process's table layer.
    void writeNameBehindOurBack(int recno, const QByteArray &name)
    {
        auto table = DbfTable::open(path(), DbfTable::OpenMode::ReadOnly);
        ASSERT_TRUE(table.isOk());
        // Field offsets count from the record's start, its delete flag included.
        const qint64 offset = table.value()->header().headerLength
            + qint64(recno - 1) * table.value()->header().recordLength
            + table.value()->fields().at(1).offset;
        table.value().reset();
        QFile f(path());
        ASSERT_TRUE(f.open(QIODevice::ReadWrite));
        ASSERT_TRUE(f.seek(offset));
        ASSERT_EQ(f.write(name.leftJustified(12, ' ')), 12);
    }

    QTemporaryDir m_dir;
};

} // namespace

// Each condition runs once through the byte tests and once with a term the tests cannot
// take ("AND 1 = 1"), which sends every record through the general evaluator.
TEST_F(FoxProFastPathTest, FindConditionAgreesWithTheEvaluator)
{
    const QStringList names = {
        QStringLiteral("smith"),     QStringLiteral("SMITH"),    QStringLiteral("Smithson"),
        QStringLiteral("Straße"),    QStringLiteral("STRASSE"),  QStringLiteral("strasse x"),
        QStringLiteral("sm"),        QStringLiteral("s"),        QString(),
        QStringLiteral("  sm lead"), QStringLiteral("SMITH, J"), QStringLiteral("SMITH,"),
        QStringLiteral("Élan"),      QStringLiteral("élan"),     QStringLiteral("ÉLAN2"),
        QStringLiteral("ß"),         QStringLiteral("SSA"),      QStringLiteral("123456789012"),
    };
    QList<QStringList> rows;
    for (int i = 0; i < names.size(); ++i)
        rows << QStringList{ QString::number(i), names[i],
                             QString::fromLatin1(i % 2 ? "PARIS" : "ROME") };
    makeTable(rows);

    QStringList conditions;
    for (const char16_t *prefix : { u"SM", u"S", u"STRASS", u"SS", u"SMITH, ", u"SMITH,", u"ÉL",
                                    u"  SM", u"123456789012", u"1234567890123", u"" })
        conditions << QStringLiteral("UCase([P.NAME]) LIKE '%1*'").arg(QString::fromUtf16(prefix));
    conditions << QStringLiteral("UCase([P.NAME]) LIKE 'SM*' AND UCase([P.CITY]) LIKE 'PA*'")
               << QStringLiteral("Ucase$([P.NAME]) LIKE 'SMITH*'");
    for (const QString &condition : conditions) {
        const QString fast =
            QStringLiteral("SELECT * from P WHERE %1 ORDER BY P.NAME, P.ID").arg(condition);
        const QString slow =
            QStringLiteral("SELECT * from P WHERE %1 AND 1 = 1 ORDER BY P.NAME, P.ID")
                .arg(condition);
        EXPECT_EQ(column(fast), column(slow)) << condition.toStdString();
    }
    // The cases that set the two apart before: the sharp s upper-cases to two letters, and a
    // value read without its trailing blanks does not hold a prefix that ends in a blank.
    EXPECT_EQ(column(QStringLiteral("SELECT * from P WHERE UCase([P.NAME]) LIKE 'STRASS*' "
                                    "ORDER BY P.ID")),
              QStringList({ QStringLiteral("3"), QStringLiteral("4"), QStringLiteral("5") }));
    EXPECT_EQ(column(QStringLiteral("SELECT * from P WHERE UCase([P.NAME]) LIKE 'SMITH, *' "
                                    "ORDER BY P.ID")),
              QStringList({ QStringLiteral("10") }));
}

TEST_F(FoxProFastPathTest, KeptRanksFollowEveryChangeToTheFile)
{
    makeTable({ test::texts({ "1", "delta", "X" }), test::texts({ "2", "bravo", "X" }),
                test::texts({ "3", "charlie", "X" }), test::texts({ "4", "alpha", "X" }) });
    const QString sorted = QStringLiteral("SELECT * from P ORDER BY P.NAME");

    // A file written a moment ago is not kept: a further write in the same clock tick would
    // leave its times as they are.
    EXPECT_EQ(column(sorted), test::texts({ "4", "2", "3", "1" }));
    EXPECT_EQ(foxpro::RankCache::global().bytes(), 0u);

    waitUntilSettled();
    EXPECT_EQ(column(sorted), test::texts({ "4", "2", "3", "1" }));
    EXPECT_GT(foxpro::RankCache::global().bytes(), 0u);
    // The find in the same order uses the kept ranks.
    EXPECT_EQ(column(QStringLiteral("SELECT * from P WHERE UCase([P.NAME]) LIKE '*A*' ORDER BY "
                                    "P.NAME")),
              test::texts({ "4", "2", "3", "1" }));

    // A write by this process.
    {
        auto db = database();
        auto rs = db->OpenRecordset(QStringLiteral("P"));
        ASSERT_TRUE(rs.isOk());
        ASSERT_TRUE(rs.value()->FindFirst(QStringLiteral("ID = '1'")).isOk());
        ASSERT_TRUE(rs.value()->Edit().isOk());
        ASSERT_TRUE(
            rs.value()->setValue(QStringLiteral("NAME"), QStringLiteral("aardvark")).isOk());
        ASSERT_TRUE(rs.value()->Update().isOk());
    }
    EXPECT_EQ(column(sorted), test::texts({ "1", "4", "2", "3" }));

    // A write by another program, long after the ranks were kept.
    waitUntilSettled();
    EXPECT_EQ(column(sorted), test::texts({ "1", "4", "2", "3" }));
    ASSERT_GT(foxpro::RankCache::global().bytes(), 0u);
    writeNameBehindOurBack(2, "zulu");
    EXPECT_EQ(column(sorted), test::texts({ "1", "4", "3", "2" }));
    EXPECT_EQ(column(QStringLiteral("SELECT * from P WHERE UCase([P.NAME]) LIKE 'Z*' ORDER BY "
                                    "P.NAME DESC, P.ID")),
              test::texts({ "2" }));
}

// A character field ranks differently in byte order and in the General order: ranks kept from
// a sort in one are never taken for the other, and both stay kept side by side.
TEST_F(FoxProFastPathTest, KeptRanksBelongToTheirCollatingSequence)
{
    makeTable({ test::texts({ "1", "beta", "X" }), test::texts({ "2", "Alpha", "X" }),
                test::texts({ "3", "alpha", "X" }), test::texts({ "4", "Beta", "X" }) });
    waitUntilSettled();
    auto general =
        OpenDatabase(m_dir.path(), false, false, QStringLiteral("FoxPro 2.6;Collate=General"));
    ASSERT_TRUE(general.isOk());
    const QString sorted = QStringLiteral("SELECT * from P ORDER BY P.NAME");
    auto generalOrder = [&] {
        return foxprotest::fieldOfEachRecord(*general.value(), sorted, QStringLiteral("ID"));
    };
    const QStringList machineIds = test::texts({ "2", "4", "3", "1" }); // Alpha Beta alpha beta
    const QStringList generalIds = test::texts({ "2", "3", "1", "4" }); // ties in record order

    EXPECT_EQ(column(sorted), machineIds);
    const size_t machineBytes = foxpro::RankCache::global().bytes();
    EXPECT_GT(machineBytes, 0u);
    EXPECT_EQ(generalOrder(), generalIds);
    const size_t bothBytes = foxpro::RankCache::global().bytes();
    EXPECT_GT(bothBytes, machineBytes);
    EXPECT_EQ(column(sorted), machineIds);
    EXPECT_EQ(generalOrder(), generalIds);
    EXPECT_EQ(foxpro::RankCache::global().bytes(), bothBytes);
}

// A sorted keyset finds the ID by a pass in file order; FindNext must still walk the matches
// in the keyset's order, for one match and for many.
TEST_F(FoxProFastPathTest, IdSearchInASortedKeysetFollowsTheKeysetOrder)
{
    QList<QStringList> rows;
    for (int i = 0; i < 30; ++i) {
        const QString id = i % 3 == 0 ? QStringLiteral("DUP") : QStringLiteral("U%1").arg(i);
        rows << QStringList{ id, QStringLiteral("N%1").arg(29 - i, 2, 10, QLatin1Char('0')),
                             QStringLiteral("C") };
    }
    makeTable(rows);
    auto db = database();
    auto rs = db->OpenRecordset(QStringLiteral("SELECT * from P ORDER BY P.NAME DESC"));
    ASSERT_TRUE(rs.isOk());
    RecordSource &r = *rs.value();

    QList<qint32> expected;
    for (; !r.isEOF(); (void)r.MoveNext()) {
        if (r.value(QStringLiteral("ID")).value().toString() == QLatin1String("DUP"))
            expected << r.AbsolutePosition();
    }
    ASSERT_EQ(expected.size(), 10);
    QList<qint32> found;
    ASSERT_TRUE(r.FindFirst(QStringLiteral("ID = 'DUP'")).isOk());
    while (!r.NoMatch()) {
        found << r.AbsolutePosition();
        ASSERT_TRUE(r.FindNext(QStringLiteral("ID = 'DUP'")).isOk());
    }
    EXPECT_EQ(found, expected);

    ASSERT_TRUE(r.FindFirst(QStringLiteral("ID = 'U14'")).isOk());
    ASSERT_FALSE(r.NoMatch());
    EXPECT_EQ(r.value(QStringLiteral("NAME")).value().toString(), QStringLiteral("N15"));
    ASSERT_TRUE(r.FindNext(QStringLiteral("ID = 'U14'")).isOk());
    EXPECT_TRUE(r.NoMatch());
    ASSERT_TRUE(r.FindFirst(QStringLiteral("ID = 'NONE'")).isOk());
    EXPECT_TRUE(r.NoMatch());
}

// The first pass over a large file whose mapping is still being populated reads the file in
// blocks of plain reads; it must select and order exactly what a pass over the mapping does,
// across block boundaries, with deleted records and a last block that is not full. The
// records are written with plain file writes, as another program would append them.
TEST_F(FoxProFastPathTest, BlockReadingPassMatchesThePassOverTheMapping)
{
    makeTable({});
    const int records = 120000; // 25 bytes each: nearly three blocks of 1 MB
    auto table = DbfTable::open(path(), DbfTable::OpenMode::ReadOnly);
    ASSERT_TRUE(table.isOk());
    const int recordLength = table.value()->header().recordLength;
    const qint64 headerLength = table.value()->header().headerLength;
    table.value().reset();
    QByteArray body;
    int live = 0;
    for (int i = 0; i < records; ++i) {
        const bool deleted = i % 7 == 3;
        live += deleted ? 0 : 1;
        const QByteArray name =
            QByteArray(1, char('A' + (i * 7919) % 26)) + QByteArray::number(i % 97);
        body += (deleted ? '*' : ' ') + QByteArray::number(i, 36).leftJustified(4, ' ')
            + name.leftJustified(12, ' ') + QByteArray("CITY").leftJustified(8, ' ');
    }
    ASSERT_EQ(body.size(), qsizetype(records) * recordLength);
    {
        QFile f(path());
        ASSERT_TRUE(f.open(QIODevice::ReadWrite));
        ASSERT_TRUE(f.seek(headerLength));
        ASSERT_EQ(f.write(body + QByteArray(1, '\x1A')), body.size() + 1);
        const quint32 count = records;
        char le[4] = { char(count & 0xFF), char((count >> 8) & 0xFF), char((count >> 16) & 0xFF),
                       char(count >> 24) };
        ASSERT_TRUE(f.seek(4));
        ASSERT_EQ(f.write(le, 4), 4);
    }
    const QStringList queries = {
        QStringLiteral("SELECT * from P ORDER BY P.NAME, P.ID"),
        QStringLiteral("SELECT * from P WHERE UCase([P.NAME]) LIKE 'K*' ORDER BY P.NAME DESC"),
        QStringLiteral("SELECT * from P WHERE P.ID = '%1' OR P.ID = '%2'")
            .arg(QString::number(39999, 36), QString::number(16000, 36)),
    };
    QList<QStringList> byMapping;
    for (const QString &q : queries)
        byMapping << column(q);
    ASSERT_EQ(byMapping[0].size(), live);
    EXPECT_EQ(byMapping[2],
              QStringList({ QString::number(16000, 36), QString::number(39999, 36) }));
    dbftest::setScanByReads(true);
    for (int i = 0; i < queries.size(); ++i)
        EXPECT_EQ(column(queries[i]), byMapping[i]) << queries[i].toStdString();
    dbftest::setScanByReads(false);
}

// Ranks are packed into one 64-bit integer when they fit; ten keys of 64 distinct values
// each over 64 records (6 bits apiece, plus 6 for the position) do not, and the comparison
// sort that takes over must order exactly as the packed one.
TEST_F(FoxProFastPathTest, KeysBeyondSixtyFourBitsSortAsTheFirstFit)
{
    QList<QStringList> rows;
    for (int i = 0; i < 64; ++i) {
        rows << QStringList{ QString::number(i),
                             QStringLiteral("N%1").arg((i * 37) % 64, 2, 10, QLatin1Char('0')),
                             QStringLiteral("C%1").arg(i % 5) };
    }
    makeTable(rows);
    QString many = QStringLiteral("P.CITY DESC");
    for (int k = 0; k < 10; ++k)
        many += QStringLiteral(", P.NAME");
    const QStringList packed =
        column(QStringLiteral("SELECT * from P ORDER BY P.CITY DESC, P.NAME"));
    const QStringList compared = column(QStringLiteral("SELECT * from P ORDER BY ") + many);
    ASSERT_EQ(packed.size(), 64);
    EXPECT_EQ(compared, packed);
    // And both are what the rows say: CITY descending, then NAME.
    QList<QStringList> expected = rows;
    std::stable_sort(expected.begin(), expected.end(),
                     [](const QStringList &a, const QStringList &b) {
                         return a[2] != b[2] ? a[2] > b[2] : a[1] < b[1];
                     });
    QStringList ids;
    for (const QStringList &row : expected)
        ids << row[0];
    EXPECT_EQ(packed, ids);
}

} // namespace plx
