// services/recordsource/database.h: an open database, the way to open one, and the
// registry of the engines that can.
//
// A database hands out record sources from a table name or a Jet SQL text. Which engine
// serves it is decided by the connect string, as with DAO's OpenDatabase: the part before
// the first ';' names the engine, the rest are options for it. The engines that come with
// the library register themselves when their library is linked in (plx::sqlite,
// plx::foxpro; plx::backends has both):
//   ""             a SQLite database file (the embedded default); NotFound when missing,
//                  ";Create=Yes" makes a new empty database there
//   "FoxPro 2.6"   a directory of FoxPro 2.6 table files; each file is a table named by
//                  its file title. "FoxPro 2.6;CodePage=850" reads tables without a
//                  code-page mark in that code page (Windows-1252 otherwise).
//                  "FoxPro 2.6;Collate=General" compares text as the SQLite engine does
//                  (case-insensitive, accents beside their letters); Collate=Machine, the
//                  default, compares the code page's bytes.
// Record sources keep what they need of the database alive, so a source may outlive the
// Database object that opened it.
#pragma once

#include "services/recordsource/recordsource.h"
#include "services/recordsource/textcompare.h"

#include <QStringList>

#include <memory>

namespace plx {

// A table as its engine describes it.
struct TableDescription
{
    QString name; // as the engine stores it
    QList<FieldInfo> fields; // in table order, as a record source on the table has them
    // The engine's own account of how the table is kept, for people to read; the FoxPro
    // engine's is the file header (version, code page, record counts, lengths, field shapes),
    // the SQLite engine's the table's CREATE statement.
    QString storage;
};

// An open database of one engine. Used from one thread; not copyable, because its record
// sources share its connection.
class Database
{
public:
    Database() = default;
    Database(const Database &) = delete;
    Database &operator=(const Database &) = delete;
    virtual ~Database();

    // Opens a record source on a table name or on a SELECT statement in Jet SQL. NotFound
    // for an unknown table, Syntax (with the position) for a malformed statement,
    // UnknownField or UnknownFunction for a name the statement cannot resolve. The source
    // is positioned on its first record (or BOF and EOF when it is empty).
    virtual Result<std::unique_ptr<RecordSource>> OpenRecordset(const QString &tableOrSql) = 0;
    // Asks the engine to finish pending work (writes, lock releases). Never fails.
    virtual void Idle() = 0;
    // The tables a record source can be opened on, in the engine's order.
    virtual QStringList tableNames() const = 0;
    // How text compares in this database's criteria and sort orders.
    virtual TextCompare textCompare() const = 0;
    // Makes a new, empty table `name` with `fields` (name, type, size and decimals each),
    // each in the engine's nearest type, so that a record source on it has these fields
    // (the FoxPro engine keeps dates with times as dates). InvalidArgument when a table of
    // that name exists or a field cannot be made; NotSupported on a read-only database and
    // on an engine that cannot create tables, as this default does.
    virtual Status createTable(const QString &name, const QList<FieldInfo> &fields);
    // Adds `rows` to the table `name` as one unit: afterwards every row is there, or, when
    // one cannot be written (a value the field cannot hold, a full disk), none is. Each row
    // holds values in the table's field order, Null for blank; fields past its end are
    // blank. Far quicker than AddNew and Update per record on a large batch: SQLite writes
    // them in one transaction, the FoxPro engine under one header lock with one sync at the
    // end (a failed batch leaves the rows it wrote marked deleted). NotSupported on a
    // read-only database and on an engine that cannot, as this default.
    virtual Status appendRecords(const QString &name, const QList<QVariantList> &rows);
    // Makes the index `indexName` on `fields` of the table `table`, in the order and with
    // the matching the dialect uses (text without regard to case), so that sorts, finds
    // and ID look-ups on those fields are answered from it. InvalidArgument for a field
    // the table lacks or an index name in use, NotFound for a missing table, NotSupported
    // on a read-only database and on an engine without such indexes, as this default.
    virtual Status createIndex(const QString &table, const QString &indexName,
                               const QStringList &fields);
    // The fields of the table `name` (case-insensitive) and the engine's account of it,
    // without reading its records. NotFound when there is no such table; NotSupported on
    // an engine that cannot, as this default.
    virtual Result<TableDescription> describeTable(const QString &name) const;
    // The file the database is kept in (a SQLite database file), or "" for a folder of
    // table files and a server: where a caller may keep files that belong beside it.
    virtual QString filePath() const { return QString(); }
    // Closes the database. Record sources already open stay usable until they close.
    virtual void Close() = 0;
};

// Opens `name` with the engine chosen by `connect` (see above). exclusive keeps other
// users out while it is open where the engine can; readOnly refuses every write through
// the database's record sources. NotSupported "unknown connect string" when no linked-in
// engine answers to the connect string; otherwise whatever the engine reports (NotFound
// for a missing directory or database file, Engine or IoError for a file it cannot open).
Result<std::unique_ptr<Database>> OpenDatabase(const QString &name, bool exclusive, bool readOnly,
                                               const QString &connect);

// What OpenDatabase hands an engine: its own arguments, the connect string whole.
struct DatabaseOptions
{
    bool exclusive = false;
    bool readOnly = false;
    QString connect;
};

using DatabaseOpener = Result<std::unique_ptr<Database>> (*)(const QString &name,
                                                             const DatabaseOptions &options);

// Makes `opener` the engine for connect strings whose first part is `engine`, compared
// without regard to case or surrounding blanks ("" is the engine of an empty connect
// string). An engine registers once, usually from a static object in its library; false
// when the name is taken already, and the first registration stays. Thread-safe.
bool registerDatabaseEngine(const QString &engine, DatabaseOpener opener);

// The names of the registered engines, in the order they registered.
QStringList databaseEngines();

} // namespace plx
