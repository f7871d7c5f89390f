// Every statement on a FoxPro table finishes or is refused within a time a user waits for: a
// megabyte constant is worked out once per statement, chains of 200,000 terms run (their
// constants looked up in a set) or are refused at once with the bound in one line, deep
// nesting is refused at its position, and a statement or find still running after 10 seconds
// stops with its message. Time is made to pass by a stepping clock, never waited for.
#include "services/recordsource/database.h"
#include "services/recordsource/foxpro/tests/foxprotestsupport.h"
#include "services/recordsource/jet/internal/deadline.h"
#include "services/recordsource/jet/internal/evaluationcounters.h"
#include "services/recordsource/jet/internal/generalorder.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace plx {

namespace {

constexpr int kRecords = 300;

const QString kTooLong =
    QStringLiteral("the query is too long to run (more than 1,000,000 terms); shorten the "
                   "condition");
const QString kStopped =
    QStringLiteral("the query was stopped after 10 seconds; use a simpler condition");

qint64 g_now = 0;
qint64 g_step = 0;
qint64 steppingClock()
{
    return g_now += g_step;
}

// A list of IDs as gtest prints it.
std::string listed(const QStringList &ids)
{
    return ids.join(QLatin1Char(',')).toStdString();
}

// "ID = 'R0' Or ID = 'R1' Or ..." with `n` alternatives from `first` on: four terms each.
QString idChain(int first, int n)
{
    QStringList terms;
    for (int i = first; i < first + n; ++i)
        terms << QStringLiteral("ID = 'R%1'").arg(i);
    return terms.join(QStringLiteral(" Or "));
}

class FoxProBoundsTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_dir.isValid());
        foxprotest::TableDef b{ QStringLiteral("B"),
                                foxprotest::textFields({ { "ID", 6 }, { "NAME", 12 } }),
                                {} };
        b.fields << FieldInfo{ QStringLiteral("AMOUNT"), FieldType::Numeric, 8, 0 };
        const QString names[] = { QStringLiteral("yyy"),        QStringLiteral("Adams"),
                                  QStringLiteral("\u00C9mile"), QStringLiteral("emile"),
                                  QStringLiteral("Zo\u00EB"),   QStringLiteral("f\u00E9e") };
        for (int i = 0; i < kRecords; ++i) {
            m_names << names[i % std::size(names)];
            b.rows << QVariantList{ QStringLiteral("R%1").arg(i), m_names.back(), i };
        }
        ASSERT_NO_FATAL_FAILURE(foxprotest::writeTable(m_dir.path(), b));
        m_binary = foxprotest::openDirectory(m_dir.path());
        auto general =
            OpenDatabase(m_dir.path(), false, false, QStringLiteral("FoxPro 2.6;Collate=General"));
        ASSERT_TRUE(m_binary && general.isOk());
        m_general = std::move(general).value();
        g_now = 0;
        g_step = 0;
        jet::setDeadlineClockForTesting(steppingClock);
    }

    void TearDown() override { jet::setDeadlineClockForTesting(nullptr); }

    // The IDs of the records whose NAME passes `keep`, in record order.
    QStringList idsWhere(const std::function<bool(const QString &)> &keep) const
    {
        QStringList ids;
        for (int i = 0; i < kRecords; ++i) {
            if (keep(m_names[i]))
                ids << QStringLiteral("R%1").arg(i);
        }
        return ids;
    }

    // The IDs `where` selects, in record order, or the error of the open.
    static Result<QStringList> select(Database &db, const QString &where)
    {
        auto rs = db.OpenRecordset(QStringLiteral("SELECT * FROM B WHERE ") + where);
        if (!rs.isOk())
            return rs.status();
        QStringList ids;
        for (RecordSource &r = *rs.value(); !r.isEOF(); (void)r.MoveNext())
            ids << r.value(QStringLiteral("ID")).value().toString();
        return ids;
    }

    std::unique_ptr<RecordSource> wholeTable()
    {
        auto rs = m_binary->OpenRecordset(QStringLiteral("SELECT * FROM B"));
        EXPECT_TRUE(rs.isOk());
        return rs.isOk() ? std::move(rs).value() : nullptr;
    }

    static void expectRefusal(const Status &s, Status::Code code, const QString &message)
    {
        EXPECT_EQ(codeName(s.code()).toStdString(), codeName(code).toStdString());
        EXPECT_EQ(s.message().left(200).toStdString(), message.toStdString());
        EXPECT_FALSE(s.message().contains(QLatin1Char('\n'))); // one line, for a message box
    }

    QTemporaryDir m_dir;
    QStringList m_names;
    std::unique_ptr<Database> m_binary;
    std::unique_ptr<Database> m_general;
};

TEST_F(FoxProBoundsTest, AMegabyteConstantIsWorkedOutOncePerStatement)
{
    const QString megabyte(1'000'000, QLatin1Char('x'));
    const QStringList yyy = idsWhere([](const QString &n) { return n == QLatin1String("yyy"); });
    jet::evaluationCounters() = {};
    Result<QStringList> ids = select(
        *m_binary,
        QStringLiteral("NAME = Left(Replace('%1', 'x', 'y'), 3) Or NAME Like '%1*'").arg(megabyte));
    ASSERT_TRUE(ids.isOk()) << ids.status().toString().toStdString();
    EXPECT_EQ(listed(ids.value()), listed(yyy));
    EXPECT_LE(jet::evaluationCounters().functionCalls, 2u); // Replace and Left, once each
    EXPECT_LE(jet::evaluationCounters().patternCompilations, 1u);

    // In the General order a megabyte of accented letters is keyed once, not once a record.
    const QString accented(1'000'000, QChar(0x00E9));
    const QString accentedKey = jet::generalSortKey(accented);
    jet::evaluationCounters() = {};
    ids = select(*m_general, QStringLiteral("NAME < '%1'").arg(accented));
    ASSERT_TRUE(ids.isOk()) << ids.status().toString().toStdString();
    EXPECT_EQ(listed(ids.value()), listed(idsWhere([&](const QString &n) {
                  return jet::compareGeneral(n, accented, accentedKey) < 0;
              })));
    EXPECT_LT(jet::evaluationCounters().keyedCharacters, 2'000'000u);

    // A find with one likewise.
    std::unique_ptr<RecordSource> rs = wholeTable();
    ASSERT_TRUE(rs);
    jet::evaluationCounters() = {};
    ASSERT_TRUE(
        rs->FindFirst(QStringLiteral("NAME & '' = Left(Replace('%1', 'x', 'y'), 3)").arg(megabyte))
            .isOk());
    EXPECT_FALSE(rs->NoMatch());
    EXPECT_EQ(rs->value(QStringLiteral("ID")).value().toString(), yyy.first());
    EXPECT_LE(jet::evaluationCounters().functionCalls, 2u);
}

TEST_F(FoxProBoundsTest, ChainsOfTwoHundredThousandTermsRunOrAreRefusedAtOnce)
{
    // 200,000 alternatives (800,000 terms) from R250 on: the records R250 to R299.
    const QStringList last50 = idsWhere([](const QString &) { return true; }).mid(250);
    Result<QStringList> ids = select(*m_binary, idChain(250, 200'000));
    ASSERT_TRUE(ids.isOk()) << ids.status().toString().toStdString();
    EXPECT_EQ(listed(ids.value()), listed(last50));
    QStringList items;
    for (int i = 250; i < 250 + 200'000; ++i)
        items << QStringLiteral("'R%1'").arg(i);
    ids = select(*m_general, QStringLiteral("ID In (%1)").arg(items.join(QLatin1Char(','))));
    ASSERT_TRUE(ids.isOk()) << ids.status().toString().toStdString();
    EXPECT_EQ(listed(ids.value()), listed(last50));
    // 200,000 pieces joined into one constant, and 200,000 Nots in a find.
    ids = select(*m_binary,
                 QStringLiteral("NAME = Left(") + QStringLiteral("'y' & ").repeated(199'999)
                     + QStringLiteral("'y', 3)"));
    ASSERT_TRUE(ids.isOk());
    EXPECT_EQ(listed(ids.value()),
              listed(idsWhere([](const QString &n) { return n == QLatin1String("yyy"); })));
    std::unique_ptr<RecordSource> rs = wholeTable();
    ASSERT_TRUE(rs);
    ASSERT_TRUE(
        rs->FindFirst(QStringLiteral("Not ").repeated(200'000) + QStringLiteral("ID = 'R7'"))
            .isOk());
    EXPECT_EQ(rs->value(QStringLiteral("ID")).value().toString(), QStringLiteral("R7"));

    // 250,001 alternatives are more than 1,000,000 terms: refused before anything runs, the
    // position kept.
    const QString tooLong = QStringLiteral("ID=1 Or ").repeated(250'000) + QStringLiteral("ID=1");
    expectRefusal(select(*m_binary, tooLong).status(), Status::Code::NotSupported, kTooLong);
    expectRefusal(rs->FindFirst(tooLong), Status::Code::NotSupported, kTooLong);
    EXPECT_EQ(rs->value(QStringLiteral("ID")).value().toString(), QStringLiteral("R7"));
    // A column list runs through SQLite, whose compiling grows with the square of the terms.
    auto columns =
        m_binary->OpenRecordset(QStringLiteral("SELECT ID FROM B WHERE ") + idChain(0, 12'501));
    expectRefusal(columns.status(), Status::Code::NotSupported,
                  QStringLiteral("the query is too long to run (more than 50,000 terms); "
                                 "shorten the condition"));
    columns =
        m_binary->OpenRecordset(QStringLiteral("SELECT ID FROM B WHERE ") + idChain(298, 1000));
    ASSERT_TRUE(columns.isOk()) << columns.status().toString().toStdString();
    ASSERT_TRUE(columns.value()->MoveLast().isOk());
    EXPECT_EQ(columns.value()->RecordCount(), 2);
}

TEST_F(FoxProBoundsTest, NestingTenThousandDeepIsRefusedWhereItGoesTooDeep)
{
    const QString deep = QStringLiteral("(").repeated(10'000) + QStringLiteral("ID = 'R1'")
        + QStringLiteral(")").repeated(10'000);
    // "SELECT * FROM B WHERE " is 22 characters; the 101st parenthesis is one too many.
    expectRefusal(select(*m_binary, deep).status(), Status::Code::Syntax,
                  QStringLiteral("expression nested deeper than 100 levels at position 123"));
    std::unique_ptr<RecordSource> rs = wholeTable();
    ASSERT_TRUE(rs);
    expectRefusal(rs->FindFirst(deep), Status::Code::Syntax,
                  QStringLiteral("expression nested deeper than 100 levels at position 101"));
    EXPECT_EQ(rs->AbsolutePosition(), 0);
}

TEST_F(FoxProBoundsTest, AStatementOrFindStillRunningAfterTenSecondsStops)
{
    const QString where = QStringLiteral("NAME & ID <> 'x'");
    std::unique_ptr<RecordSource> rs = wholeTable();
    ASSERT_TRUE(rs);
    ASSERT_TRUE(rs->MoveLast().isOk());
    // Five seconds pass at every look at the clock.
    g_step = 5000;
    expectRefusal(select(*m_binary, where).status(), Status::Code::NotSupported, kStopped);
    expectRefusal(select(*m_general, QStringLiteral("NAME Like '*q*'")).status(),
                  Status::Code::NotSupported, kStopped);
    expectRefusal(rs->FindFirst(QStringLiteral("NAME & ID = 'none'")), Status::Code::NotSupported,
                  kStopped);
    EXPECT_EQ(rs->AbsolutePosition(), kRecords - 1);
    auto joined = m_binary->OpenRecordset(QStringLiteral("SELECT ID FROM B WHERE ") + where);
    expectRefusal(joined.status(), Status::Code::NotSupported, kStopped);
    // The same with the clock standing still: everything runs.
    g_step = 0;
    Result<QStringList> ids = select(*m_binary, where);
    ASSERT_TRUE(ids.isOk());
    EXPECT_EQ(ids.value().size(), kRecords);
    ASSERT_TRUE(rs->FindFirst(QStringLiteral("NAME & ID = 'yyyR0'")).isOk());
    EXPECT_EQ(rs->AbsolutePosition(), 0);
    joined = m_binary->OpenRecordset(QStringLiteral("SELECT ID FROM B WHERE ") + where);
    ASSERT_TRUE(joined.isOk()) << joined.status().toString().toStdString();
}

} // namespace

} // namespace plx
