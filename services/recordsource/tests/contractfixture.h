// services/recordsource/tests/contractfixture.h: the tables and helpers the contract and
// lock suites share.
//
// Table T holds the kinds of rows the navigator meets: names that share prefixes in mixed
// case, one name twice (so the second sort key decides), an ID with a quote, a pipe and a
// blank, an ID that does not start with "PLE", and a record with a Null date. Table BIG
// has enough records for counting to matter.
#pragma once

#include "services/recordsource/tests/backend.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <functional>

// Readable failure messages for texts.
inline void PrintTo(const QString &text, std::ostream *os)
{
    *os << '"' << text.toStdString() << '"';
}

namespace plx::testing {

inline const QString OddId = QStringLiteral("PLE'A|B C");
constexpr int BigRows = 300;

// What `result` holds; nullptr and a test failure giving its status when it holds an error.
template<typename T> std::unique_ptr<T> orFail(Result<std::unique_ptr<T>> result)
{
    EXPECT_TRUE(result.isOk()) << result.status().toString().toStdString();
    return result.isOk() ? std::move(result).value() : nullptr;
}

QList<TableDef> contractTables();
// The rows of T as the tests expect them, for computing expected orders.
const TableDef &peopleTable();

// The trimmed text of a field of the current record ("" for Null or no record): FoxPro
// pads text fields with blanks, SQLite does not.
QString textOf(const RecordSource &rs, const QString &field);
// IDs from the current record to the end.
QStringList idsToEnd(RecordSource &rs);

class RecordSourceContractTest : public ::testing::TestWithParam<std::shared_ptr<BackEnd>>
{
protected:
    void SetUp() override;
    // A new, independent connection to the same files.
    std::unique_ptr<Database> openAgain() const;
    std::unique_ptr<RecordSource> open(Database &db, const QString &sql) const;
    std::unique_ptr<RecordSource> open(const QString &sql) const { return open(*m_db, sql); }
    // Makes the record with this ID current, by the navigator's character-code criterion.
    void goToId(RecordSource &rs, const QString &id) const;
    // The IDs of T's rows that pass `keep`, ordered by NAME then CITY under the database's
    // own text comparison.
    QStringList expectedByNameCity(const std::function<bool(const QVariantList &)> &keep) const;

    QTemporaryDir m_dir;
    std::unique_ptr<Database> m_db;
};

// Test output names the back end instead of printing a pointer.
inline void PrintTo(const std::shared_ptr<BackEnd> &backEnd, std::ostream *os)
{
    *os << backEnd->name().toStdString();
}

std::string backEndName(const ::testing::TestParamInfo<std::shared_ptr<BackEnd>> &info);

} // namespace plx::testing
