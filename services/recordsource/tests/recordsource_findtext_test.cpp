// services/recordsource/tests/recordsource_findtext_test.cpp: the navigator's find with
// whatever a user types, on every back end. The query is built as the find builds it
// (upper-cased, quotes doubled, UCase([T.F]) LIKE 'TEXT*', pipes rebuilt from their code), so
// texts up to the find box's length limit, all pipes or quotes or wildcards, must give an
// answer or an error and never a crash or a hang; case is folded alike on both sides.
#include "services/texthelpers.h"
#include "services/recordsource/tests/contractfixture.h"

namespace plx::testing {
namespace {

class FindTextTest : public ::testing::TestWithParam<std::shared_ptr<BackEnd>>
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_dir.isValid());
        TableDef f{ QStringLiteral("F"),
                    { { QStringLiteral("ID"), FieldType::Text, 10, 0 },
                      { QStringLiteral("NAME"), FieldType::Text, 40, 0 } },
                    {} };
        const char16_t *names[] = { u"ßchmidt, Eva", u"Sscott, Al", u"Straße, Jo", u"|||Pipes",
                                    u"O'Neil|Pat",   u"smith, Ann", u"Ärger, Max", u"SCHMIDT" };
        int n = 0;
        for (const char16_t *name : names)
            f.rows << QVariantList{ QStringLiteral("ID%1").arg(++n), QString::fromUtf16(name) };
        Status s = GetParam()->createTables(m_dir.path(), { f });
        ASSERT_TRUE(s.isOk()) << s.toString().toStdString();
        m_db = orFail(GetParam()->open(m_dir.path()));
        ASSERT_TRUE(m_db);
    }

    // The find's query for a typed text, built as the navigator builds it.
    static QString findQuery(const QString &typed)
    {
        const QString text = fixQuoteInSQL(typed.trimmed().toUpper());
        return fixPipeInSQL(QStringLiteral("SELECT * from F WHERE UCase([F.NAME]) LIKE '") + text
                            + QStringLiteral("*' ORDER BY F.NAME, F.ID"));
    }

    // The IDs the find query gives, or the error it reports.
    Result<QStringList> find(const QString &typed)
    {
        Result<std::unique_ptr<RecordSource>> rs = m_db->OpenRecordset(findQuery(typed));
        if (!rs.isOk())
            return rs.status();
        QStringList ids = idsToEnd(*rs.value());
        std::sort(ids.begin(), ids.end());
        return ids;
    }

    QTemporaryDir m_dir;
    std::unique_ptr<Database> m_db;
};

TEST_P(FindTextTest, CaseIsFoldedAlikeInTheFindTextAndTheFields)
{
    // The find text and UCase upper-case with the full Unicode mapping: sharp s is "SS" in
    // both, so a user who types it finds the names that begin with it.
    const struct
    {
        const char16_t *typed;
        QStringList ids;
    } cases[] = {
        { u"ß", { QStringLiteral("ID1"), QStringLiteral("ID2") } },
        { u"ßch", { QStringLiteral("ID1") } },
        { u"sS", { QStringLiteral("ID1"), QStringLiteral("ID2") } },
        { u"straß", { QStringLiteral("ID3") } },
        { u"STRASSE", { QStringLiteral("ID3") } },
        { u"ärg", { QStringLiteral("ID7") } },
        { u"Sm", { QStringLiteral("ID6") } },
        { u"sch", { QStringLiteral("ID8") } },
    };
    for (const auto &c : cases) {
        const QString typed = QString::fromUtf16(c.typed);
        SCOPED_TRACE(typed.toStdString());
        Result<QStringList> ids = find(typed);
        ASSERT_TRUE(ids.isOk()) << ids.status().toString().toStdString();
        EXPECT_EQ(ids.value(), c.ids);
    }
}

TEST_P(FindTextTest, AnyTextUpToTheFindBoxLimitGivesAnAnswerOrAnError)
{
    // Pipes and quotes are found as typed.
    EXPECT_EQ(find(QStringLiteral("|||")).value(), QStringList{ QStringLiteral("ID4") });
    EXPECT_EQ(find(QStringLiteral("o'neil|")).value(), QStringList{ QStringLiteral("ID5") });
    // Each pipe becomes a term of an '&' chain: 7,000 and 50,000 of them, and the limit.
    for (int n : { 7000, 50000, kFindTextMaxLength }) {
        SCOPED_TRACE(n);
        Result<QStringList> ids = find(QStringLiteral("|").repeated(n));
        ASSERT_TRUE(ids.isOk()) << ids.status().toString().left(300).toStdString();
        EXPECT_TRUE(ids.value().isEmpty());
    }
    // Quotes, wildcards, brackets, tabs and letters in every mix the limit allows.
    const QString pieces[] = { QStringLiteral("'"),   QStringLiteral("''"),  QStringLiteral("|'"),
                               QStringLiteral("*?#"), QStringLiteral("[a-"), QStringLiteral("]"),
                               QStringLiteral("\t"),  QStringLiteral("ß"),   QStringLiteral("(") };
    for (int i = 0; i < int(std::size(pieces)); ++i) {
        QString typed;
        for (int k = 0; typed.size() < kFindTextMaxLength; ++k)
            typed += pieces[(i + k * (k % 3 + 1)) % std::size(pieces)];
        typed.truncate(kFindTextMaxLength);
        SCOPED_TRACE(typed.left(20).toStdString());
        Result<QStringList> ids = find(typed);
        if (ids.isOk())
            EXPECT_TRUE(ids.value().isEmpty());
        else
            EXPECT_EQ(ids.status().code(), Status::Code::Syntax)
                << ids.status().toString().left(300).toStdString();
    }
}

TEST_P(FindTextTest, FindFirstTakesLongChainsAndRefusesDeepNesting)
{
    Result<std::unique_ptr<RecordSource>> rs =
        m_db->OpenRecordset(QStringLiteral("SELECT * from F ORDER BY F.ID"));
    ASSERT_TRUE(rs.isOk());
    RecordSource &r = *rs.value();
    // 100,000 alternatives, the last one an ID written as character codes.
    const QString chain = QStringLiteral("F.ID = 'NONE' Or ").repeated(100000)
        + QStringLiteral("F.ID = ") + strToASC(QStringLiteral("ID3"));
    ASSERT_TRUE(r.FindFirst(chain).isOk());
    ASSERT_FALSE(r.NoMatch());
    EXPECT_EQ(textOf(r, QStringLiteral("ID")), QStringLiteral("ID3"));
    const qint32 at = r.AbsolutePosition();
    // Nesting past the limit is a syntax error that names it; nothing moves.
    const Status deep =
        r.FindFirst(QStringLiteral("UCase(").repeated(5000) + QStringLiteral("F.ID")
                    + QStringLiteral(")").repeated(5000) + QStringLiteral(" = 'ID1'"));
    EXPECT_EQ(deep.code(), Status::Code::Syntax);
    EXPECT_TRUE(deep.message().contains(QStringLiteral("nested deeper than 100 levels")))
        << deep.message().toStdString();
    EXPECT_EQ(r.AbsolutePosition(), at);
}

TEST_P(FindTextTest, IdsOutsideWindows1252AreFoundByTheirCharacterCodeCriterion)
{
    if (GetParam()->name() != QLatin1String("SQLite")
        && GetParam()->name() != QLatin1String("PostgreSQL"))
        GTEST_SKIP() << "a FoxPro table holds its code page's characters only";
    QTemporaryDir dir;
    const QString odd = QStringLiteral("PLE\u0100\u4E2D") + QString::fromUtf8("\xF0\x9F\x98\x80");
    TableDef t{ QStringLiteral("T"),
                { { QStringLiteral("ID"), FieldType::Text, 20, 0 },
                  { QStringLiteral("NAME"), FieldType::Text, 20, 0 } },
                { { QStringLiteral("PLE0000001"), QStringLiteral("A") },
                  { odd, QStringLiteral("B") },
                  { QStringLiteral("PLE??"), QStringLiteral("C") } } };
    ASSERT_TRUE(GetParam()->createTables(dir.path(), { t }).isOk());
    Result<std::unique_ptr<Database>> db = GetParam()->open(dir.path());
    ASSERT_TRUE(db.isOk());
    Result<std::unique_ptr<RecordSource>> rs =
        db.value()->OpenRecordset(QStringLiteral("SELECT * from T ORDER BY T.ID"));
    ASSERT_TRUE(rs.isOk());
    ASSERT_TRUE(rs.value()->FindFirst(QStringLiteral("T.ID = ") + strToASC(odd)).isOk());
    ASSERT_FALSE(rs.value()->NoMatch());
    EXPECT_EQ(textOf(*rs.value(), QStringLiteral("NAME")), QStringLiteral("B"));
}

INSTANTIATE_TEST_SUITE_P(AllBackEnds, FindTextTest, ::testing::ValuesIn(allBackEnds()),
                         backEndName);

} // namespace
} // namespace plx::testing
