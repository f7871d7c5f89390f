// navigator/tests/navigatorfixture.cpp
#include "navigator/tests/navigatorfixture.h"

#include "services/recordsource/recordsource.h"
#include "services/recordsource/tests/postgresbackend.h"

#include <QDir>
#include <QScrollBar>

namespace plx::test {

testing::TableDef facilityTable()
{
    testing::TableDef t;
    t.name = QStringLiteral("T");
    t.fields = {
        { QStringLiteral("ID"), FieldType::Text, 10, 0 },
        { QStringLiteral("NAME"), FieldType::Text, 30, 0 },
        { QStringLiteral("CITY"), FieldType::Text, 20, 0 },
        { QStringLiteral("PLSTART"), FieldType::Text, 30, 0 },
        { QStringLiteral("PLLASTREV"), FieldType::Text, 30, 0 },
    };
    // File order differs from every sort order on purpose.
    const char *rows[][3] = {
        { "PLE0000005", "SMYTHE", "BOSTON" }, { "PLE0000001", "JONES", "AUSTIN" },
        { "PLE0000009", "SMITH", "DENVER" },  { "PLE0000003", "O'BRIEN", "CHICAGO" },
        { "PLE0000007", "SMITH", "ATLANTA" }, { "PLE0000002", "A|B PARTNERS", "ELGIN" },
        { "PLE0000008", "BROWN", "BOSTON" },  { "PLE0000004", "SNOW", "FARGO" },
        { "PLE0000006", "ADAMS", "GARY" },    { "PLE0000010", "SMALLWOOD", "HOUSTON" },
    };
    for (const auto &r : rows)
        t.rows.append({ QString::fromLatin1(r[0]), QString::fromLatin1(r[1]),
                        QString::fromLatin1(r[2]), QVariant(), QVariant() });
    return t;
}

void NavigatorTest::SetUp()
{
    ASSERT_TRUE(dir.isValid());
    // The activity log and the work directory of this test (and of the processes it
    // starts) stay in its own folder.
    QDir().mkpath(dir.filePath(QStringLiteral("inst")));
    qputenv("PLX_HARROWBY_DIR", dir.filePath(QStringLiteral("inst")).toUtf8());
    backEnd = testing::backEndNamed(QString::fromStdString(GetParam()));
    ASSERT_NE(backEnd, nullptr);
    ASSERT_TRUE(backEnd->createTables(dir.path(), { facilityTable() }).isOk());
    nav = std::make_unique<mvPLXRecs>();
    nav->setServices(env.services());
    events = std::make_unique<EventRecorder>(nav.get());
}

void NavigatorTest::TearDown()
{
    tableRecords.reset();
    events.reset();
    nav.reset();
    qunsetenv("PLX_HARROWBY_DIR");
}

QString NavigatorTest::tablePath() const
{
    return isFoxPro() ? dir.filePath(QStringLiteral("T.DBF"))
                      : dir.filePath(QStringLiteral("contract.sqlite"));
}

void NavigatorTest::attach()
{
    if (isFoxPro()) {
        nav->setSDBFPathFileName(tablePath());
        return;
    }
    Result<std::unique_ptr<Database>> db = backEnd->open(dir.path());
    ASSERT_TRUE(db.isOk()) << db.status().message().toStdString();
    std::shared_ptr<Database> shared(std::move(db.value()));
    Result<std::unique_ptr<RecordSource>> rs =
        shared->OpenRecordset(QStringLiteral("SELECT * from T"));
    ASSERT_TRUE(rs.isOk());
    nav->setDatabase(shared, QStringLiteral("T"), tablePath());
    nav->setRs(std::shared_ptr<RecordSource>(std::move(rs.value())));
}

void NavigatorTest::openTable()
{
    Result<std::unique_ptr<Database>> opened = backEnd->open(dir.path());
    ASSERT_TRUE(opened.isOk());
    tableDb = std::move(opened.value());
    Result<std::unique_ptr<RecordSource>> rs =
        tableDb->OpenRecordset(QStringLiteral("SELECT * from T"));
    ASSERT_TRUE(rs.isOk());
    tableRecords = std::move(rs.value());
}

void NavigatorTest::configure()
{
    nav->setSIDfield(QStringLiteral("ID"));
    nav->setSDescfield(QStringLiteral("NAME"));
    nav->setSDesc(QStringLiteral("Facilities"));
    nav->AddSort(QStringLiteral("Name"), QStringLiteral("NAME, CITY"));
    nav->AddSort(QStringLiteral("ID"), QStringLiteral("ID"));
    attach();
    ASSERT_EQ(nav->InitControl(), QString());
    // The sort kept the record that was current before it (the first in file order).
    ASSERT_EQ(nav->sCurrentID(), QStringLiteral("PLE0000005"));
    nav->findChild<QScrollBar *>(QStringLiteral("HScroll1"))->setValue(0);
    events->clear();
}

std::vector<std::string> navigatorBackEnds()
{
    std::vector<std::string> names{ "SQLite", "FoxPro" };
    if (testing::postgresJoinsTheSuite())
        names.emplace_back("PostgreSQL");
    return names;
}

std::string backEndName(const ::testing::TestParamInfo<std::string> &info)
{
    return info.param;
}

} // namespace plx::test
