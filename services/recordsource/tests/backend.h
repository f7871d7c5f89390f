// services/recordsource/tests/backend.h: how the contract suite makes a database on each
// back end.
//
// The contract suite describes its tables once (names, typed fields, rows) and asks each
// back end to write them as real files in a temporary folder and open them. A back end
// joins the suite by adding one BackEnd to allBackEnds() (backends.cpp); the tests stay
// the same for every engine.
#pragma once

#include "services/recordsource/database.h"

#include <QVariantList>

#include <memory>
#include <vector>

namespace plx::testing {

struct TableDef
{
    QString name;
    QList<FieldInfo> fields;
    QList<QVariantList> rows; // one value per field, Null as an invalid QVariant
};

class BackEnd
{
public:
    virtual ~BackEnd() = default;
    // A name usable in a test name: letters and digits only ("SQLite").
    virtual QString name() const = 0;
    // Writes `tables` as the back end's files inside `dir` (an empty folder). Test set-up
    // failures are returned, not asserted, so the test can report them.
    virtual Status createTables(const QString &dir, const QList<TableDef> &tables) const = 0;
    // Opens the database kept in `dir` (read-only as OpenDatabase's readOnly); called again
    // for a second, independent connection.
    virtual Result<std::unique_ptr<Database>> open(const QString &dir, bool readOnly) const = 0;
    Result<std::unique_ptr<Database>> open(const QString &dir) const { return open(dir, false); }
    Result<std::unique_ptr<Database>> openReadOnly(const QString &dir) const
    {
        return open(dir, true);
    }
    // The file that holds `table` inside `dir` (for SQLite the one database file).
    virtual QString tableFile(const QString &dir, const QString &table) const = 0;
};

// Every back end the suite runs on.
const std::vector<std::shared_ptr<BackEnd>> &allBackEnds();
// The back end with this name; nullptr when there is none.
std::shared_ptr<BackEnd> backEndNamed(const QString &name);

} // namespace plx::testing
