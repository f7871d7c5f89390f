// testing/smalltable.h: a small real table for a test, in a folder of its own.
//
// The table is written through the engine's own createTable and appendRecords, the way a
// host's setup program would make it, then opened as a host opens it. Everything lives in
// a temporary folder that goes with the object. Set-up failures are reported as test
// failures, and isOk() tells the test to stop.
//
//     plx::test::SmallTable table(plx::test::Engine::FoxPro,
//         { QStringLiteral("PEOPLE"),
//           { { QStringLiteral("ID"), plx::FieldType::Text, 10, 0 },
//             { QStringLiteral("NAME"), plx::FieldType::Text, 30, 0 } },
//           { { QStringLiteral("PLE0000001"), QStringLiteral("SMITH") } } });
//     ASSERT_TRUE(table.isOk());
//     table.attach(*nav);
#pragma once

#include "services/recordsource/database.h"

#include <QList>
#include <QString>
#include <QTemporaryDir>
#include <QVariantList>

#include <memory>

namespace plx {
class mvPLXRecs;
}

namespace plx::test {

// The engines a table can be made in: a SQLite database file, or a FoxPro 2.6 table file
// (.DBF, with an .FPT beside it when a field is a memo).
enum class Engine { SQLite, FoxPro };

// "SQLite" or "FoxPro", usable in a test's name.
QString engineName(Engine engine);

struct TableContent
{
    QString name;
    QList<FieldInfo> fields;
    QList<QVariantList> rows; // values in field order; QVariant() is Null (blank in FoxPro)
};

class SmallTable
{
public:
    SmallTable(Engine engine, TableContent content);
    SmallTable(const SmallTable &) = delete;
    SmallTable &operator=(const SmallTable &) = delete;
    ~SmallTable();

    // False when the table could not be made (the test has failed already).
    bool isOk() const { return m_database != nullptr; }
    Engine engine() const { return m_engine; }
    const TableContent &content() const { return m_content; }
    // The temporary folder: the SQLite file or the FoxPro table is in it, and a test may
    // put its own files (settings, logs) beside them.
    QString folder() const { return m_dir.path(); }
    // The database file (SQLite) or the table file NAME.DBF (FoxPro): what a navigator's
    // side files sit beside, and for FoxPro what sDBFPathFileName takes.
    QString tableFile() const;

    // The database the table was made in, kept open.
    std::shared_ptr<Database> database() const { return m_database; }
    // A record source on `tableOrSql` (the whole table when empty); nullptr and a test
    // failure when it cannot be opened.
    std::shared_ptr<RecordSource> open(const QString &tableOrSql = QString()) const;
    // A second, independent connection: reads what was saved, not what a source caches.
    std::unique_ptr<Database> reopen() const;
    // Attaches the table to a navigator the way a host does: a FoxPro table by its file,
    // a SQLite table through setDatabase and setRs.
    void attach(mvPLXRecs &nav) const;

private:
    QString databaseName() const;
    QString connect() const;

    Engine m_engine;
    TableContent m_content;
    QTemporaryDir m_dir;
    std::shared_ptr<Database> m_database;
};

} // namespace plx::test
