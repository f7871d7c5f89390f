// FoxPro tables under both collating sequences: Machine (the default, the code page's byte
// order) and General (the connect-string option Collate=General), which must order, select
// and find exactly as the SQLite engine does on the same values, in whatever code page the
// table is kept.
#include "services/recordsource/database.h"
#include "services/recordsource/dbf/internal/dbftable.h"
#include "services/recordsource/foxpro/tests/foxprotestsupport.h"
#include "services/recordsource/tests/sqlitebackend.h"
#include "tests/support/texts.h"

#include <QDir>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <numeric>

namespace plx {

namespace {

const QString kGeneral = QStringLiteral("FoxPro 2.6;Collate=General");

// Mixed case, accents, blanks, digits, and a Null, which a FoxPro character field cannot hold:
// it is written as blanks and reads back as "", tied with R05's "".
const char16_t *const kNames[][2] = {
    { u"R01", u"\u00C9mile" },
    { u"R02", u"adams" },
    { u"R03", u"ANDERSON" },
    { u"R04", nullptr },
    { u"R05", u"" },
    { u"R06", u"Adams" },
    { u"R07", u"emile" },
    { u"R08", u"9 Elms" },
    { u"R09", u"10 Downing" },
    { u"R10", u"Zo\u00EB" },
    { u"R11", u"zoe" },
    { u"R12", u"\u00D8rsted" },
    { u"R13", u"Orsted" },
    { u"R14", u"Stra\u00DFe" },
    { u"R15", u"STRASSE" },
    { u"R16", u"  lead" },
    { u"R17", u"EMILE" },
    { u"R18", u"Emilia" },
    { u"R19", u"\u00C6r\u00F8" },
    { u"R20", u"aero" },
};

QVariant nameOf(const char16_t *const row[2])
{
    return row[1] ? QVariant(QString::fromUtf16(row[1])) : QVariant();
}

class FoxProCollationTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_dir.isValid());
        for (int codePage : { 1252, 850 })
            ASSERT_NO_FATAL_FAILURE(makeTable(codePage));
        ASSERT_NO_FATAL_FAILURE(makeSqliteTable());
    }

    // P.DBF (ID C(4), NAME C(20)) in the folder of that code page.
    void makeTable(int codePage)
    {
        ASSERT_TRUE(QDir(m_dir.path()).mkpath(QString::number(codePage)));
        foxprotest::TableDef p{ QStringLiteral("P"),
                                foxprotest::textFields({ { "ID", 4 }, { "NAME", 20 } }),
                                {} };
        for (const auto &row : kNames)
            p.rows << QVariantList{ QString::fromUtf16(row[0]), nameOf(row) };
        ASSERT_NO_FATAL_FAILURE(foxprotest::writeTable(folder(codePage), p, codePage));
    }

    // The same values in a SQLite database, as the FoxPro table reads them (its Null as "").
    void makeSqliteTable()
    {
        foxprotest::TableDef p{ QStringLiteral("P"),
                                foxprotest::textFields({ { "ID", 4 }, { "NAME", 20 } }),
                                {} };
        for (const auto &row : kNames)
            p.rows << QVariantList{ QString::fromUtf16(row[0]),
                                    QString::fromUtf16(row[1] ? row[1] : u"") };
        ASSERT_TRUE(QDir(m_dir.path()).mkpath(QStringLiteral("sqlite")));
        const Status written =
            plx::testing::makeSqliteBackEnd()->createTables(sqliteFolder(), { p });
        ASSERT_TRUE(written.isOk()) << written.toString().toStdString();
    }

    QString folder(int codePage) const { return m_dir.filePath(QString::number(codePage)); }
    QString tablePath(int codePage) const { return folder(codePage) + QStringLiteral("/P.DBF"); }
    QString sqliteFolder() const { return m_dir.filePath(QStringLiteral("sqlite")); }

    static std::unique_ptr<Database> open(const QString &name, const QString &connect)
    {
        auto db = OpenDatabase(name, false, false, connect);
        EXPECT_TRUE(db.isOk()) << connect.toStdString() << ": "
                               << db.status().toString().toStdString();
        return db.isOk() ? std::move(db).value() : nullptr;
    }

    static QStringList ids(Database *db, const QString &sql)
    {
        return db ? foxprotest::fieldOfEachRecord(*db, sql, QStringLiteral("ID")) : QStringList();
    }

    // The IDs in FoxPro's index order for the table's bytes: the stored, blank-padded NAME
    // bytes compared as they are, ties in record order.
    QStringList byteOrder(int codePage) const
    {
        auto table = DbfTable::open(tablePath(codePage), DbfTable::OpenMode::ReadOnly);
        EXPECT_TRUE(table.isOk());
        if (!table.isOk())
            return {};
        const DbfTable &t = *table.value();
        std::vector<quint32> recnos(t.recordCount());
        std::iota(recnos.begin(), recnos.end(), 1u);
        std::stable_sort(recnos.begin(), recnos.end(), [&t](quint32 a, quint32 b) {
            return std::memcmp(t.fieldBytes(a, 1), t.fieldBytes(b, 1), 20) < 0;
        });
        QStringList out;
        for (const quint32 recno : recnos)
            out << t.value(recno, 0).value().toString();
        return out;
    }

    QTemporaryDir m_dir;
};

} // namespace

TEST_F(FoxProCollationTest, MachineIsTheDefaultAndTheCodePagesByteOrder)
{
    for (int codePage : { 1252, 850 }) {
        SCOPED_TRACE(codePage);
        const QStringList expected = byteOrder(codePage);
        ASSERT_EQ(expected.size(), 20);
        for (const QString &connect :
             { QStringLiteral("FoxPro 2.6"), QStringLiteral("FoxPro 2.6;Collate=Machine") }) {
            auto db = open(folder(codePage), connect);
            ASSERT_TRUE(db);
            EXPECT_EQ(db->textCompare(), TextCompare::Binary);
            EXPECT_EQ(ids(db.get(), QStringLiteral("SELECT * from P ORDER BY P.NAME")), expected);
            EXPECT_EQ(ids(db.get(), QStringLiteral("SELECT * from P WHERE NAME = 'emile'")),
                      test::texts({ "R07" }));
            EXPECT_EQ(ids(db.get(), QStringLiteral("SELECT * from P WHERE NAME Like 'e*'")),
                      test::texts({ "R07" }));
            EXPECT_EQ(ids(db.get(), QStringLiteral("SELECT * from P WHERE ID = 'r05'")),
                      QStringList());
        }
    }
}

TEST_F(FoxProCollationTest, GeneralOrdersCaseInsensitivelyWithAccentsBesideTheirLetters)
{
    const QStringList expected =
        test::texts({ "R04", "R05", "R16", "R09", "R08", "R02", "R06", "R20", "R19", "R03",
                      "R07", "R17", "R01", "R18", "R13", "R12", "R15", "R14", "R11", "R10" });
    for (int codePage : { 1252, 850 }) {
        SCOPED_TRACE(codePage);
        auto db = open(folder(codePage), kGeneral);
        ASSERT_TRUE(db);
        EXPECT_EQ(db->textCompare(), TextCompare::NoCase);
        EXPECT_EQ(ids(db.get(), QStringLiteral("SELECT * from P ORDER BY P.NAME, P.ID")), expected);
    }
}

// Every statement gives the same IDs in the same order on the SQLite engine and on both
// tables under General: sort orders both ways, comparisons, Like, InStr without a compare
// argument, Between, the find query, and a join (which runs through SQLite's virtual tables).
TEST_F(FoxProCollationTest, GeneralAgreesWithTheSqliteEngine)
{
    auto opened = plx::testing::makeSqliteBackEnd()->open(sqliteFolder());
    ASSERT_TRUE(opened.isOk()) << opened.status().toString().toStdString();
    const std::unique_ptr<Database> sqlite = std::move(opened).value();
    ASSERT_EQ(sqlite->textCompare(), TextCompare::NoCase);
    const char *const statements[] = {
        "SELECT * from P ORDER BY P.NAME, P.ID",
        "SELECT * from P ORDER BY P.NAME DESC, P.ID",
        "SELECT * from P WHERE NAME = 'EMILE' ORDER BY ID",
        "SELECT * from P WHERE NAME <> 'emile' AND NAME < 'B' ORDER BY NAME, ID",
        "SELECT * from P WHERE NAME >= '\u00E9MILE' ORDER BY NAME DESC, ID",
        "SELECT * from P WHERE NAME Like 'e*' ORDER BY ID",
        "SELECT * from P WHERE NAME Like '[a-b]*' ORDER BY ID",
        "SELECT * from P WHERE InStr(NAME, 'MIL') > 0 ORDER BY ID",
        "SELECT * from P WHERE NAME Between 'zz' And 'ORSTED' ORDER BY NAME, ID",
        "SELECT * from P WHERE UCase([P.NAME]) LIKE '\u00C9M*' ORDER BY P.NAME, P.ID",
        "SELECT * from P WHERE ID = 'r1' & '7' OR ID = 'R01' ORDER BY P.NAME DESC",
        // One statement on two lines. NOLINTNEXTLINE(bugprone-suspicious-missing-comma)
        "SELECT P.ID FROM P INNER JOIN P AS Q ON P.ID = Q.ID WHERE Q.NAME > 'STRASSE' ORDER BY "
        "P.NAME, P.ID",
    };
    for (int codePage : { 1252, 850 }) {
        auto db = open(folder(codePage), kGeneral);
        ASSERT_TRUE(db);
        for (const char *statement : statements) {
            const QString sql = QString::fromUtf8(statement);
            SCOPED_TRACE(QStringLiteral("%1: %2").arg(codePage).arg(sql).toStdString());
            const QStringList expected = ids(sqlite.get(), sql);
            EXPECT_FALSE(expected.isEmpty());
            EXPECT_EQ(ids(db.get(), sql).join(QLatin1Char(' ')).toStdString(),
                      expected.join(QLatin1Char(' ')).toStdString());
        }
    }
}

// FindFirst and FindNext follow the collating sequence, through the ID search of a sorted
// keyset, the walk of an unsorted one and the general evaluator alike.
TEST_F(FoxProCollationTest, FindsFollowTheCollatingSequence)
{
    struct Find
    {
        const char *criterion;
        QStringList general; // IDs found one after another, in the source's order
        QStringList machine;
    };
    const Find finds[] = {
        { "NAME = 'emile'", test::texts({ "R07", "R17" }), test::texts({ "R07" }) },
        { "NAME = 'emile' AND 1 = 1", test::texts({ "R07", "R17" }), test::texts({ "R07" }) },
        { "ID = 'r05'", test::texts({ "R05" }), {} },
        { "ID = CHR(114) & CHR(48) & CHR(53)", test::texts({ "R05" }), {} },
        { "ID = 'r05' AND 1 = 1", test::texts({ "R05" }), {} },
        { "NAME = 'stra\u00DFe'", test::texts({ "R14" }), {} },
        // Byte order: only the letters above 'z' in Windows-1252 (É, Ø, Æ) come after it.
        { "NAME > 'zoe'", test::texts({ "R10" }), test::texts({ "R01", "R12", "R19" }) },
    };
    for (const QString &order : { QStringLiteral("P"),
                                  QStringLiteral("SELECT * from P ORDER BY "
                                                 "P.ID DESC") }) {
        for (const QString &connect : { kGeneral, QStringLiteral("FoxPro 2.6") }) {
            auto db = open(folder(1252), connect);
            ASSERT_TRUE(db);
            auto rs = db->OpenRecordset(order);
            ASSERT_TRUE(rs.isOk()) << rs.status().toString().toStdString();
            RecordSource &r = *rs.value();
            for (const Find &f : finds) {
                SCOPED_TRACE((order + QStringLiteral(" / ") + connect + QStringLiteral(" / ")
                              + QString::fromUtf8(f.criterion))
                                 .toStdString());
                QStringList found;
                const QString criterion = QString::fromUtf8(f.criterion);
                ASSERT_TRUE(r.FindFirst(criterion).isOk());
                while (!r.NoMatch()) {
                    found << r.value(QStringLiteral("ID")).value().toString();
                    ASSERT_TRUE(r.FindNext(criterion).isOk());
                }
                QStringList expected = connect == kGeneral ? f.general : f.machine;
                if (order != QLatin1String("P"))
                    std::reverse(expected.begin(), expected.end());
                EXPECT_EQ(found.join(QLatin1Char(' ')).toStdString(),
                          expected.join(QLatin1Char(' ')).toStdString());
            }
        }
    }
}

// The fast paths under General answer as the evaluator does: the sort by ranked distinct
// values against the sort by each record's Jet value (NAME & ''), and the find condition's
// byte tests against a condition they cannot take.
TEST_F(FoxProCollationTest, GeneralFastPathsAgreeWithTheEvaluator)
{
    for (int codePage : { 1252, 850 }) {
        SCOPED_TRACE(codePage);
        auto db = open(folder(codePage), kGeneral);
        ASSERT_TRUE(db);
        EXPECT_EQ(ids(db.get(), QStringLiteral("SELECT * from P ORDER BY P.NAME, P.ID")),
                  ids(db.get(), QStringLiteral("SELECT * from P ORDER BY P.NAME & '', P.ID")));
        EXPECT_EQ(ids(db.get(), QStringLiteral("SELECT * from P ORDER BY P.NAME DESC")),
                  ids(db.get(), QStringLiteral("SELECT * from P ORDER BY P.NAME & '' DESC")));
        for (const char *prefix :
             { "E", "\u00C9", "em", "\u00E9MI", "STRA", "stra\u00DF", "\u00D8", "  L", "" }) {
            const QString condition =
                QStringLiteral("UCase([P.NAME]) LIKE '%1*'").arg(QString::fromUtf8(prefix));
            SCOPED_TRACE(condition.toStdString());
            const QString fast = QStringLiteral("SELECT * from P WHERE %1 ORDER BY P.ID");
            EXPECT_EQ(ids(db.get(), fast.arg(condition)),
                      ids(db.get(), fast.arg(condition + QStringLiteral(" AND 1 = 1"))));
        }
    }
}

TEST(FoxProCollateOptionTest, ConnectStringChoosesTheCollatingSequence)
{
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    const std::pair<const char *, TextCompare> cases[] = {
        { "FoxPro 2.6", TextCompare::Binary },
        { "FoxPro 2.6;Collate=Machine", TextCompare::Binary },
        { "FoxPro 2.6;Collate=General", TextCompare::NoCase },
        { "foxpro 2.6; COLLATE = general ", TextCompare::NoCase },
        { "FoxPro 2.6;CodePage=850;Collate=GENERAL", TextCompare::NoCase },
        { "FoxPro 2.6;Collate=MACHINE;CodePage=850", TextCompare::Binary },
    };
    for (const auto &[connect, expected] : cases) {
        auto db = OpenDatabase(dir.path(), false, false, QString::fromLatin1(connect));
        ASSERT_TRUE(db.isOk()) << connect << ": " << db.status().toString().toStdString();
        EXPECT_EQ(db.value()->textCompare(), expected) << connect;
    }
    for (const char *value : { "Latin1", "", "International" }) {
        const QString connect = QStringLiteral("FoxPro 2.6;Collate=%1").arg(QLatin1String(value));
        auto db = OpenDatabase(dir.path(), false, false, connect);
        ASSERT_FALSE(db.isOk()) << value;
        EXPECT_EQ(db.status().code(), Status::Code::InvalidArgument);
        EXPECT_EQ(db.status().message(),
                  QStringLiteral("unknown collating sequence \"%1\" in the connect string \"%2\": "
                                 "Collate is Machine or General")
                      .arg(QLatin1String(value), connect));
    }
}

} // namespace plx
