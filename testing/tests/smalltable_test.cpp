// The kit's small tables: what a host's test writes is what the engine reads back from the
// file, a table the engine refuses fails the test, and an attached table drives a
// navigator whose events the recorder sees.
#include "navigator/mvplxrecs.h"
#include "testing/eventrecorder.h"
#include "testing/fakeenv.h"
#include "testing/smalltable.h"

#include <QDate>
#include <QPushButton>

#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

namespace plx {
namespace {

using test::Engine;

test::TableContent people()
{
    return { QStringLiteral("PEOPLE"),
             { { QStringLiteral("ID"), FieldType::Text, 10, 0 },
               { QStringLiteral("NAME"), FieldType::Text, 20, 0 },
               { QStringLiteral("AMOUNT"), FieldType::Numeric, 8, 2 },
               { QStringLiteral("BORN"), FieldType::Date, 8, 0 },
               { QStringLiteral("ACTIVE"), FieldType::Boolean, 1, 0 },
               { QStringLiteral("NOTES"), FieldType::Memo, 10, 0 } },
             { { QStringLiteral("PLE0000002"), QStringLiteral("ADAMS"), 12.5, QDate(1971, 3, 4),
                 true, QStringLiteral("first line\nsecond line") },
               { QStringLiteral("PLE0000001"), QStringLiteral("JONES"), -3.25, QDate(1999, 12, 31),
                 false, QStringLiteral("x") } } };
}

class SmallTableTest : public ::testing::TestWithParam<Engine>
{
};

TEST_P(SmallTableTest, ReadsBackEveryRowThroughANewConnection)
{
    test::SmallTable table(GetParam(), people());
    ASSERT_TRUE(table.isOk());
    std::unique_ptr<Database> again = table.reopen();
    ASSERT_TRUE(again);
    Result<std::unique_ptr<RecordSource>> rs = again->OpenRecordset(QStringLiteral("PEOPLE"));
    ASSERT_TRUE(rs.isOk());
    RecordSource &records = *rs.value();
    const QList<FieldInfo> &fields = table.content().fields;
    for (const QVariantList &row : table.content().rows) {
        ASSERT_FALSE(records.isEOF());
        for (int i = 0; i < fields.size(); ++i) {
            const QVariant read = records.value(i).value();
            const QVariant &written = row.at(i);
            // Text fields come back padded to their width from a FoxPro file.
            const QString shown =
                fields.at(i).type == FieldType::Text ? read.toString().trimmed() : read.toString();
            EXPECT_EQ(shown.toStdString(), written.toString().toStdString())
                << fields.at(i).name.toStdString();
        }
        (void)records.MoveNext();
    }
    EXPECT_TRUE(records.isEOF());
}

TEST_P(SmallTableTest, AValueTheFieldCannotHoldFailsTheTest)
{
    test::TableContent content = people();
    content.rows[1][3] = QStringLiteral("not a date");
    bool made = true;
    EXPECT_NONFATAL_FAILURE(made = test::SmallTable(GetParam(), content).isOk(),
                            "cannot make table PEOPLE");
    EXPECT_FALSE(made);
}

TEST_P(SmallTableTest, AttachedTableDrivesANavigatorWhoseEventsAreRecorded)
{
    test::SmallTable table(GetParam(), people());
    ASSERT_TRUE(table.isOk());
    // The navigator's activity log goes to the table's folder, not the machine's.
    qputenv("PLX_HARROWBY_DIR", table.folder().toUtf8());
    test::TestServices env;
    mvPLXRecs nav;
    nav.setServices(env.services());
    test::EventRecorder events(&nav);
    nav.setSIDfield(QStringLiteral("ID"));
    nav.setSDescfield(QStringLiteral("NAME"));
    nav.AddSort(QStringLiteral("Name"), QStringLiteral("NAME"));
    table.attach(nav);
    ASSERT_EQ(nav.InitControl(), QString());
    ASSERT_EQ(nav.sCurrentID(), QStringLiteral("PLE0000002")); // ADAMS, first by name
    events.clear();
    nav.findChild<QPushButton *>(QStringLiteral("cmdRecNext"))->click();
    EXPECT_EQ(events.texts(),
              QStringList{ QStringLiteral("IDChange(PLE0000001) [cmdRecNext_Click] initiator") });
    qunsetenv("PLX_HARROWBY_DIR");
}

std::string engineTestName(const ::testing::TestParamInfo<Engine> &param)
{
    return test::engineName(param.param).toStdString();
}

INSTANTIATE_TEST_SUITE_P(Engines, SmallTableTest, ::testing::Values(Engine::SQLite, Engine::FoxPro),
                         engineTestName);

} // namespace
} // namespace plx
