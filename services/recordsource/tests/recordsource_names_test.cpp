// services/recordsource/tests/recordsource_names_test.cpp: tables whose names are not
// identifiers, on every back end. Files come named "91.dbf", "my people.dbf" or "ORDER.DBF"
// (a Jet keyword); SQLite tables "my people" or "order". The controls name them in
// brackets inside their query texts, and hosts open them by their plain names.
#include "services/recordsource/tests/contractfixture.h"

namespace plx::testing {
namespace {

using Code = Status::Code;

QList<TableDef> oddlyNamedTables()
{
    const FieldInfo id{ QStringLiteral("ID"), FieldType::Text, 10, 0 };
    const FieldInfo name{ QStringLiteral("NAME"), FieldType::Text, 20, 0 };
    const FieldInfo order{ QStringLiteral("ORDER"), FieldType::Numeric, 5, 0 };
    return {
        { QStringLiteral("my people"),
          { id, name },
          { { QStringLiteral("P1"), QStringLiteral("ANN") },
            { QStringLiteral("P2"), QStringLiteral("BOB") },
            { QStringLiteral("P3"), QStringLiteral("ALF") } } },
        { QStringLiteral("91"),
          { id, name },
          { { QStringLiteral("N1"), QStringLiteral("NINETY") },
            { QStringLiteral("N2"), QStringLiteral("ONE") } } },
        { QStringLiteral("ORDER"),
          { id, order },
          { { QStringLiteral("O1"), 3 },
            { QStringLiteral("O2"), 1 },
            { QStringLiteral("O3"), 2 } } },
    };
}

class OddTableNamesTest : public ::testing::TestWithParam<std::shared_ptr<BackEnd>>
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_dir.isValid());
        const Status s = GetParam()->createTables(m_dir.path(), oddlyNamedTables());
        ASSERT_TRUE(s.isOk()) << s.toString().toStdString();
        m_db = orFail(GetParam()->open(m_dir.path()));
        ASSERT_TRUE(m_db);
    }

    // The IDs of every record `tableOrSql` opens on, in its order.
    QStringList ids(Database &db, const QString &tableOrSql) const
    {
        auto rs = db.OpenRecordset(tableOrSql);
        EXPECT_TRUE(rs.isOk()) << tableOrSql.toStdString() << ": "
                               << rs.status().toString().toStdString();
        return rs.isOk() ? idsToEnd(*rs.value()) : QStringList();
    }
    QStringList ids(const QString &tableOrSql) const { return ids(*m_db, tableOrSql); }

    QTemporaryDir m_dir;
    std::unique_ptr<Database> m_db;
};

TEST_P(OddTableNamesTest, OpenByPlainOrBracketedNameAndInStatements)
{
    const QStringList people{ QStringLiteral("P1"), QStringLiteral("P2"), QStringLiteral("P3") };
    for (const char *text : { "my people", "[my people]", "  My People ",
                              "SELECT * from [my people]", "SELECT * FROM [MY PEOPLE];" })
        EXPECT_EQ(ids(QString::fromLatin1(text)), people) << text;
    const QStringList ninetyOne{ QStringLiteral("N1"), QStringLiteral("N2") };
    for (const char *text : { "91", "[91]", "SELECT * from [91]" })
        EXPECT_EQ(ids(QString::fromLatin1(text)), ninetyOne) << text;
    const QStringList orders{ QStringLiteral("O1"), QStringLiteral("O2"), QStringLiteral("O3") };
    for (const char *text : { "ORDER", "[order]", "SELECT * from [ORDER]" })
        EXPECT_EQ(ids(QString::fromLatin1(text)), orders) << text;

    QStringList names = m_db->tableNames();
    names.replaceInStrings(QStringLiteral("order"), QStringLiteral("ORDER"), Qt::CaseInsensitive);
    for (const char *table : { "my people", "91", "ORDER" })
        EXPECT_TRUE(names.contains(QString::fromLatin1(table))) << names.join(u'|').toStdString();
}

// The texts the navigator builds: sort, find (with the whole "[table.field]" in brackets),
// the ID criterion; a field named by a keyword too.
TEST_P(OddTableNamesTest, NavigatorQueryTextsWorkOnBracketedNames)
{
    EXPECT_EQ(ids(QStringLiteral("SELECT * from [my people]  WHERE UCase([my people.NAME]) LIKE "
                                 "'A*' ORDER BY [my people].NAME")),
              QStringList({ QStringLiteral("P3"), QStringLiteral("P1") }));
    EXPECT_EQ(ids(QStringLiteral("SELECT * from [91] ORDER BY [91].NAME DESC")),
              QStringList({ QStringLiteral("N2"), QStringLiteral("N1") }));
    EXPECT_EQ(ids(QStringLiteral("SELECT * from [ORDER] WHERE [ORDER].[ORDER] > 1 ORDER BY "
                                 "[ORDER].[ORDER] DESC")),
              QStringList({ QStringLiteral("O1"), QStringLiteral("O3") }));

    auto rs = m_db->OpenRecordset(QStringLiteral("SELECT * from [ORDER] ORDER BY [ORDER]"));
    ASSERT_TRUE(rs.isOk()) << rs.status().toString().toStdString();
    ASSERT_TRUE(rs.value()->FindFirst(QStringLiteral("[ORDER] = 3")).isOk());
    ASSERT_FALSE(rs.value()->NoMatch());
    EXPECT_EQ(textOf(*rs.value(), QStringLiteral("ID")), QStringLiteral("O1"));
    EXPECT_EQ(rs.value()->AbsolutePosition(), 2);
}

TEST_P(OddTableNamesTest, RecordsOfSuchTablesAreWritten)
{
    auto rs = m_db->OpenRecordset(QStringLiteral("my people"));
    ASSERT_TRUE(rs.isOk()) << rs.status().toString().toStdString();
    RecordSource &people = *rs.value();
    EXPECT_EQ(people.readOnlyReason(), QString());
    ASSERT_TRUE(people.Edit().isOk());
    ASSERT_TRUE(people.setValue(QStringLiteral("NAME"), QStringLiteral("ANNE")).isOk());
    Status s = people.Update();
    ASSERT_TRUE(s.isOk()) << s.toString().toStdString();
    ASSERT_TRUE(people.AddNew().isOk());
    ASSERT_TRUE(people.setValue(QStringLiteral("ID"), QStringLiteral("P4")).isOk());
    s = people.Update();
    ASSERT_TRUE(s.isOk()) << s.toString().toStdString();

    auto again = GetParam()->open(m_dir.path());
    ASSERT_TRUE(again.isOk());
    EXPECT_EQ(ids(*again.value(), QStringLiteral("SELECT * FROM [my people] WHERE NAME = 'ANNE'")),
              QStringList({ QStringLiteral("P1") }));
    EXPECT_EQ(ids(*again.value(), QStringLiteral("[my people]")).size(), 4);
}

TEST_P(OddTableNamesTest, AnUnknownNameIsNotFoundWhateverItsForm)
{
    for (const char *text : { "no such people", "[no such people]", "[92]", "SELECT * FROM [92]" })
        EXPECT_EQ(m_db->OpenRecordset(QString::fromLatin1(text)).status().code(), Code::NotFound)
            << text;
}

INSTANTIATE_TEST_SUITE_P(AllBackEnds, OddTableNamesTest, ::testing::ValuesIn(allBackEnds()),
                         backEndName);

} // namespace
} // namespace plx::testing
