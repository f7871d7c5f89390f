// samples/hostapp/hostapp_test.cpp: a host's test of its form, written with the installed
// test kit (plx::testing). The form's navigator runs on a small real table; the user's
// answers to the message boxes are scripted, so a box with another title or text, or one
// that never comes, fails the test; the events are read as the host's handlers see them.
#include "navigator/mvplxrecs.h"
#include "testing/eventrecorder.h"
#include "testing/fakeenv.h"
#include "testing/smalltable.h"

#include <gtest/gtest.h>

using plx::test::Engine;

namespace {

plx::test::TableContent facilities()
{
    using plx::FieldType;
    return { QStringLiteral("FACILITY"),
             { { QStringLiteral("ID"), FieldType::Text, 10, 0 },
               { QStringLiteral("NAME"), FieldType::Text, 30, 0 } },
             { { QStringLiteral("PLE0000001"), QStringLiteral("SMITH") },
               { QStringLiteral("PLE0000002"), QStringLiteral("JONES") } } };
}

int recordsOnDisk(const plx::test::SmallTable &table)
{
    std::unique_ptr<plx::Database> db = table.reopen();
    auto rs = db->OpenRecordset(QStringLiteral("FACILITY"));
    if (!rs.isOk())
        return -1;
    if (!rs.value()->isEOF())
        (void)rs.value()->MoveLast();
    return rs.value()->RecordCount();
}

class FacilityForm : public ::testing::TestWithParam<Engine>
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(table.isOk());
        // The navigator's activity log stays in the test's folder.
        qputenv("PLX_HARROWBY_DIR", table.folder().toUtf8());
        nav.setServices(env.services());
        nav.setSIDfield(QStringLiteral("ID"));
        nav.setSDescfield(QStringLiteral("NAME"));
        nav.AddSort(QStringLiteral("Name"), QStringLiteral("NAME"));
        table.attach(nav);
        ASSERT_EQ(nav.InitControl(), QString());
        events.clear();
    }
    void TearDown() override { qunsetenv("PLX_HARROWBY_DIR"); }

    plx::test::SmallTable table{ GetParam(), facilities() };
    plx::test::TestServices env;
    plx::mvPLXRecs nav;
    plx::test::EventRecorder events{ &nav };
};

TEST_P(FacilityForm, DeleteAsksTwiceThenRemovesTheRecord)
{
    ASSERT_EQ(nav.sCurrentID(), QStringLiteral("PLE0000001")); // SMITH, current before the sort
    // A Yes/No question whose default button is No, so Enter does not delete.
    const int question = plx::MsgStyle::YesNo | plx::MsgStyle::DefaultButton2;
    env.prompter.expectMsgBox(
        QStringLiteral("Delete Record?"),
        QStringLiteral("Are you sure you want to delete this record?\r\nSMITH"), question,
        plx::MsgAnswer::Yes);
    env.prompter.expectMsgBox(QStringLiteral("Are you sure?"),
                              QStringLiteral("Are you sure you want to delete this record?"),
                              question, plx::MsgAnswer::Yes);
    nav.ClickButton(QStringLiteral("DELETE"));
    EXPECT_EQ(events.texts(),
              QStringList{ QStringLiteral(
                  "RecDelete(PLE0000001) [ButtonClick: Delete (RecDelete)] initiator") });
    EXPECT_EQ(recordsOnDisk(table), 1);
}

std::string engineTestName(const ::testing::TestParamInfo<Engine> &param)
{
    return plx::test::engineName(param.param).toStdString();
}

INSTANTIATE_TEST_SUITE_P(Engines, FacilityForm, ::testing::Values(Engine::SQLite, Engine::FoxPro),
                         engineTestName);

} // namespace
