// navigator/tests/findsession_test.cpp: the find box's session: the search list, what a key
// makes of the box's text, and finds with their widening on a real table of each back end.
#include "navigator/findsession_p.h"
#include "services/recordsource/querytext.h"
#include "navigator/tests/navigatorfixture.h"

#include "services/recordsource/recordsource.h"

namespace plx::test {
namespace {

TEST(FindSessionList, KeepsEachTextOnceWithTheIDItFoundLast)
{
    FindSession s;
    s.append(QStringLiteral("SNOW"));
    s.append(QStringLiteral("SMYTHE"));
    s.rememberFound(QStringLiteral("SNOW"), QStringLiteral("PLE0000004"));
    s.rememberFound(QStringLiteral("NOT LISTED"), QStringLiteral("PLE0000001"));
    s.append(QStringLiteral("SNOW")); // once only, moved to the end, its ID dropped
    EXPECT_EQ(s.texts(), (QStringList{ QStringLiteral("SMYTHE"), QStringLiteral("SNOW") }));
    EXPECT_EQ(s.foundIDs(), (QStringList{ QString(), QString() }));
    s.rememberFound(QStringLiteral("SNOW"), QStringLiteral("PLE0000004"));
    s.putFirst(QStringLiteral("  jones ")); // as typed
    s.putFirst(QStringLiteral("SNOW")); // Enter: first, keeping its ID
    EXPECT_EQ(s.texts(),
              (QStringList{ QStringLiteral("SNOW"), QStringLiteral("  jones "),
                            QStringLiteral("SMYTHE") }));
    EXPECT_EQ(s.foundIDs(), (QStringList{ QStringLiteral("PLE0000004"), QString(), QString() }));
    EXPECT_EQ(s.text(3), QString());
    s.clear();
    EXPECT_EQ(s.count(), 0);
    EXPECT_TRUE(s.foundIDs().isEmpty());
}

TEST(FindSessionTyping, TheListCompletesWhatIsTypedAndTheOfferedRestIsNotTyped)
{
    FindSession s;
    s.append(QStringLiteral("SMYTHE"));
    s.append(QStringLiteral("SNOW"));
    auto typed = s.character({ QStringLiteral("sMYTHE"), 1, 5 }, QStringLiteral("m"), 100);
    EXPECT_EQ(typed.typed, QStringLiteral("sm"));
    EXPECT_EQ(typed.shown, QStringLiteral("smYTHE")); // typed characters keep their case
    EXPECT_EQ(typed.entry, 0);
    typed = s.character({ QStringLiteral("smYTHE"), 2, 4 }, QStringLiteral("a"), 100);
    EXPECT_EQ(typed.shown, QStringLiteral("sma"));
    EXPECT_EQ(typed.entry, -1);
    // Backspace takes the offered rest and the character before it.
    EXPECT_EQ(s.backspace({ QStringLiteral("snOW"), 2, 2 }, 100)->shown, QStringLiteral("sMYTHE"));
    EXPECT_EQ(s.backspace({ QStringLiteral("abcd"), 1, 2 }, 100)->typed, QStringLiteral("ad"));
    EXPECT_EQ(s.backspace({ QStringLiteral("abc"), 1, 0 }, 100)->typed, QStringLiteral("bc"));
    EXPECT_FALSE(s.backspace({ QStringLiteral("abc"), 0, 0 }, 100));
    EXPECT_EQ(s.character({ QStringLiteral("abc"), 3, 0 }, QStringLiteral("d"), 3).typed,
              QStringLiteral("abc"));
}

// The table's database, noting the prefix each find statement looks for (what lies
// between "LIKE '" and "*'").
class RecordingDatabase : public Database
{
public:
    explicit RecordingDatabase(std::shared_ptr<Database> real) : m_real(std::move(real)) { }
    Result<std::unique_ptr<RecordSource>> OpenRecordset(const QString &sql) override
    {
        const qsizetype from = sql.indexOf(QLatin1String("LIKE '")) + 6;
        prefixes << sql.mid(from, sql.indexOf(QLatin1String("*'"), from) - from);
        return m_real->OpenRecordset(sql);
    }
    void Idle() override { m_real->Idle(); }
    QStringList tableNames() const override { return m_real->tableNames(); }
    TextCompare textCompare() const override { return m_real->textCompare(); }
    void Close() override { m_real->Close(); }
    QStringList prefixes;

private:
    std::shared_ptr<Database> m_real;
};

class Finds : public NavigatorTest
{
protected:
    FindSession::Outcome find(const QString &text,
                              const QString &sort = QStringLiteral("NAME, CITY"))
    {
        if (!recording) {
            openTable();
            recording = std::make_unique<RecordingDatabase>(tableDb);
        }
        recording->prefixes.clear();
        return session.find(*recording, QueryText(QStringLiteral("T")), sort, *tableRecords, text,
                            QStringLiteral("ID"));
    }
    QStringList prefixes() const { return recording->prefixes; }

    std::unique_ptr<RecordingDatabase> recording;
    FindSession session;
};

TEST_P(Finds, WidensToTheLongestStartThatFindsSomethingInAFewQueries)
{
    EXPECT_EQ(find(QStringLiteral(" smix ")), FindSession::Outcome::Found);
    EXPECT_EQ(session.foundID(), QStringLiteral("PLE0000007")); // SMITH of ATLANTA
    EXPECT_EQ(prefixes(),
              (QStringList{ QStringLiteral("SMIX"), QStringLiteral("SM"), QStringLiteral("SMI") }));
    EXPECT_EQ(find(QStringLiteral("zz")), FindSession::Outcome::NothingFound);
    EXPECT_EQ(prefixes(), (QStringList{ QStringLiteral("ZZ"), QStringLiteral("Z") }));
    // Beyond a text field's width nothing can match: a long paste is cut there first.
    EXPECT_EQ(find(QStringLiteral("SMALLWOOD") + QString(40, QLatin1Char('Q'))),
              FindSession::Outcome::Found);
    EXPECT_EQ(prefixes().first().size(), 30);
    EXPECT_EQ(session.foundID(), QStringLiteral("PLE0000010"));
}

TEST_P(Finds, TabPiecesQuotesAndPipesFindTheirRecords)
{
    const struct
    {
        const char *typed;
        const char *id;
    } cases[] = {
        { "smith\td", "PLE0000009" }, // second piece against the second sort field
        { "o'b", "PLE0000003" }, // a quote inside the literal
        { "A|B", "PLE0000002" }, // a pipe, rebuilt as a character code
        { "  jones ", "PLE0000001" }, // blanks around are not part of the text
    };
    for (const auto &c : cases) {
        EXPECT_EQ(find(QString::fromLatin1(c.typed)), FindSession::Outcome::Found) << c.typed;
        EXPECT_EQ(session.foundID(), QString::fromLatin1(c.id)) << c.typed;
    }
}

TEST_P(Finds, AFindThatCannotBeWrittenOrRunFails)
{
    EXPECT_EQ(find(QStringLiteral("S"), QStringLiteral("NOPE")), FindSession::Outcome::Failed);
    EXPECT_FALSE(session.failure().isOk());
    // Only tabs: no piece to look for, and nothing for the log.
    EXPECT_EQ(find(QStringLiteral("\t\t")), FindSession::Outcome::Failed);
    EXPECT_TRUE(session.failure().isOk());
    EXPECT_TRUE(prefixes().isEmpty());
}

INSTANTIATE_TEST_SUITE_P(BackEnds, Finds, ::testing::ValuesIn(navigatorBackEnds()), backEndName);

} // namespace
} // namespace plx::test
