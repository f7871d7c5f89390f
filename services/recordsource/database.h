// services/recordsource/database.h: an open database and the way to open one.
//
// A database hands out record sources from a table name or a Jet SQL text. Which engine
// serves it is decided by the connect string, as with DAO's OpenDatabase:
//   ""             a SQLite database file (the embedded default); created when missing
//   "FoxPro 2.6"   a directory of FoxPro 2.6 table files; each file is a table named by
//                  its file title. "FoxPro 2.6;CodePage=850" reads tables without a
//                  code-page mark in that code page (Windows-1252 otherwise).
// Record sources keep what they need of the database alive, so a source may outlive the
// Database object that opened it.
#pragma once

#include "services/recordsource/recordsource.h"

#include <QStringList>

#include <memory>

namespace plx {

// How text is compared in expressions, LIKE, InStr and ORDER BY on a source.
// Case-insensitive on SQLite and PostgreSQL (Jet's own rule), machine byte order on
// FoxPro tables (Jet's FoxPro ISAM).
enum class TextCompare { NoCase, Binary };

class Database
{
public:
    virtual ~Database();

    // Opens a record source on a table name or on a SELECT statement in Jet SQL.
    virtual Result<std::unique_ptr<RecordSource>> OpenRecordset(const QString &tableOrSql) = 0;
    // Asks the engine to finish pending work (writes, lock releases). Never fails.
    virtual void Idle() = 0;
    virtual QStringList tableNames() const = 0;
    virtual TextCompare textCompare() const = 0;
    virtual void Close() = 0;
};

// Opens `name` with the engine chosen by `connect` (see above). readOnly refuses every
// write through the database's record sources.
Result<std::unique_ptr<Database>> OpenDatabase(const QString &name, bool exclusive, bool readOnly,
                                               const QString &connect);

} // namespace plx
