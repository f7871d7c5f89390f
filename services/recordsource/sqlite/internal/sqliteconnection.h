// services/recordsource/sqlite/internal/sqliteconnection.h: one open SQLite database file.
//
// The connection is shared (std::shared_ptr) by the Database that opened it and by every
// record source handed out from it, so that a record source may outlive its Database.
// It owns the sqlite3 handle, turns engine errors into Status values, and answers the
// Jet front end's table look-ups. Used from one thread only.
#pragma once

#include "services/recordsource/jetsqlite/internal/sqlitetranslate.h"

#include <QString>
#include <QStringList>

#include <memory>

struct sqlite3;
struct sqlite3_stmt;

namespace plx::sqlite {

// How a database file is opened.
struct ConnectOptions
{
    bool exclusive = false; // keep other processes out while it is open
    bool readOnly = false; // refuse every write
    bool create = false; // make an empty database when the file is missing
};

// An owned prepared statement; finalized when it goes out of scope.
class Statement
{
public:
    Statement() = default;
    explicit Statement(sqlite3_stmt *stmt) : m_stmt(stmt) { }
    ~Statement();
    Statement(Statement &&other) noexcept : m_stmt(other.m_stmt) { other.m_stmt = nullptr; }
    Statement &operator=(Statement &&other) noexcept;
    Statement(const Statement &) = delete;
    Statement &operator=(const Statement &) = delete;

    sqlite3_stmt *get() const { return m_stmt; }
    explicit operator bool() const { return m_stmt != nullptr; }

private:
    sqlite3_stmt *m_stmt = nullptr;
};

// The Status for SQLite result code `rc`: Locked, IoError, Corrupt, NotSupported (read-only),
// NotFound, UnknownField, UnknownFunction or Syntax where the code or text says so, Engine
// otherwise; `what` is the message, SQLite's code and text are kept.
Status statusFor(int rc, const QString &what, const QString &engineText);

class Connection
{
public:
    ~Connection();
    Connection(const Connection &) = delete;
    Connection &operator=(const Connection &) = delete;

    // Opens the database file `path` (or ":memory:") and installs the Jet functions.
    // NotFound when the file is missing and options.create is false. A file that cannot be
    // written (read-only option, write-protected file, folder or companion file) opens
    // read-only and says why in readOnlyReason(). The file's journal mode is left as it is.
    static Result<std::shared_ptr<Connection>> open(const QString &path,
                                                    const ConnectOptions &options);

    sqlite3 *handle() const { return m_db; }
    // How the Jet texts run on this connection compare text: case-insensitively for a
    // SQLite database (the default), in byte order when the tables are FoxPro files
    // exposed as virtual tables.
    TextCompare textCompare() const { return m_compare; }
    void setTextCompare(TextCompare compare) { m_compare = compare; }
    const QString &path() const { return m_path; }
    bool isReadOnly() const { return !m_readOnlyReason.isEmpty(); }
    // Why every write is refused, in words for a status bar; empty when writable.
    const QString &readOnlyReason() const { return m_readOnlyReason; }

    // Prepares one statement; Engine (or Syntax for a parse error) with SQLite's text.
    Result<Statement> prepare(const QString &sql) const;
    // Runs a statement that returns no rows (PRAGMA, BEGIN, COMMIT ...).
    Status exec(const QString &sql) const;
    // A Status for the connection's last error, with our `what` as the message.
    Status engineError(const QString &what) const;
    Status engineError(const QString &what, int rc) const;
    // A failed write to `table`: a NOT NULL, CHECK or UNIQUE failure names the columns
    // concerned (InvalidArgument); anything else is engineError("cannot write to <table>").
    Status writeError(const QString &table, int rc) const;

    QStringList tableNames() const;
    // The CREATE TABLE statement of a table, matched case-insensitively; empty if none.
    QString createStatement(const QString &table) const;
    // The table's stored name and columns, matched case-insensitively; nullopt if none.
    std::optional<jet::TableColumns> lookupTable(const QString &name) const;
    jet::TableLookup tableLookup() const;

    // Write transactions: BEGIN IMMEDIATE ... COMMIT, rolled back on failure.
    Status begin() const;
    Status commit() const;
    void rollback() const;

    // Writes the WAL back into the database file when nobody is reading (cheap no-op
    // otherwise).
    void checkpoint() const;

private:
    Connection(sqlite3 *db, QString path, QString readOnlyReason)
        : m_db(db), m_path(std::move(path)), m_readOnlyReason(std::move(readOnlyReason))
    {
    }
    Status configure(const ConnectOptions &options) const;
    sqlite3 *m_db;
    QString m_path;
    QString m_readOnlyReason;
    TextCompare m_compare = TextCompare::NoCase;
};

} // namespace plx::sqlite
