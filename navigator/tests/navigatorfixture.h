// navigator/tests/navigatorfixture.h: a navigator on a real table, on each back end, with
// every event recorded as the host sees it.
#pragma once

#include "navigator/mvplxrecs.h"
#include "services/recordsource/database.h"
#include "services/recordsource/tests/backend.h"
#include "testing/eventrecorder.h"
#include "testing/fakeenv.h"

#include <QStringList>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <memory>
#include <ostream>

// Readable QString values in test failure messages.
inline void PrintTo(const QString &text, std::ostream *out)
{
    *out << '"' << text.toStdString() << '"';
}

namespace plx::test {

// Answers OK to everything and keeps what it was shown, for texts that name this machine.
class RecordingPrompter : public Prompter
{
public:
    QStringList titles, texts;
    MsgAnswer msgBox(const QString &prompt, int, const QString &title) override
    {
        titles << title;
        texts << prompt;
        return MsgAnswer::OK;
    }
    std::optional<QString> inputBox(const QString &, const QString &, const QString &) override
    {
        return std::nullopt;
    }
};

// The table every navigator test uses: ID, NAME, CITY and the audit fields, with names
// chosen to exercise the find (prefixes shared, a quote, a pipe).
testing::TableDef facilityTable();

class NavigatorTest : public ::testing::TestWithParam<std::string>
{
protected:
    void SetUp() override;
    void TearDown() override;

    bool isFoxPro() const { return GetParam() == "FoxPro"; }
    bool isServer() const { return GetParam() == "PostgreSQL"; }
    // The server's ICU order puts symbols before letters, so "A|B PARTNERS" comes before
    // "ADAMS" there: tests that step from the first record by name do not hold on it.
    static constexpr const char *kSymbolsFirst =
        "the server's ICU order puts \"A|B PARTNERS\" before \"ADAMS\"";
    // Attaches the table: by file path for FoxPro, through setDatabase + setRs for SQLite.
    void attach();
    // The usual host set-up: ID field, two sorts, attach, InitControl; then the first
    // record by name (ADAMS) is made current and the events so far are forgotten.
    void configure();
    QString tablePath() const;
    // The table as a host opens it, for the parts of the navigator tested without it:
    // `tableDb` and `tableRecords` ("SELECT * from T").
    void openTable();

    TestServices env;
    QTemporaryDir dir;
    std::shared_ptr<testing::BackEnd> backEnd;
    std::unique_ptr<mvPLXRecs> nav;
    std::unique_ptr<EventRecorder> events;
    std::shared_ptr<Database> tableDb;
    std::unique_ptr<RecordSource> tableRecords;
};

// The back ends the navigator's tests run on: SQLite and FoxPro, and PostgreSQL where the
// contract suite runs on it.
std::vector<std::string> navigatorBackEnds();
std::string backEndName(const ::testing::TestParamInfo<std::string> &info);

} // namespace plx::test
