// services/recordsource/postgres/pgconnection_p.h: one libpq connection shared by a
// database and its record sources.
//
// Every statement runs with its values as parameters in text form, so no value of a user
// ever becomes SQL. The connection keeps the tables' descriptions it has read (names, types,
// whether they carry the engine's key column) and the record locks its own record sources
// hold, because the server cannot tell two sources on one connection apart.
#pragma once

#include "services/recordsource/recordsource.h"

#include <QByteArrayList>
#include <QHash>
#include <QSet>

#include <memory>
#include <optional>

struct pg_conn;
struct pg_result;

namespace plx::postgres {

// The hidden key column that the engine gives every table it makes: records are addressed
// by it (rowid on SQLite), it is no field of a record source.
inline const QString KeyColumn = QStringLiteral("plx_key");
// The schema the engine installs its collation, functions and key table in.
inline const QString EngineSchema = QStringLiteral("plx");

// A result owned by one object; cleared when it goes.
class PgResult
{
public:
    PgResult() = default;
    explicit PgResult(pg_result *result) : m_result(result) { }
    PgResult(PgResult &&other) noexcept : m_result(std::exchange(other.m_result, nullptr)) { }
    PgResult &operator=(PgResult &&other) noexcept;
    PgResult(const PgResult &) = delete;
    PgResult &operator=(const PgResult &) = delete;
    ~PgResult();

    int rows() const;
    int columns() const;
    bool isNull(int row, int column) const;
    QString text(int row, int column) const;
    QByteArray bytes(int row, int column) const;
    unsigned typeOf(int column) const; // the column's type OID
    QString columnName(int column) const;
    // Rows an INSERT, UPDATE or DELETE touched.
    int affected() const;
    pg_result *get() const { return m_result; }

private:
    pg_result *m_result = nullptr;
};

// A column of a table as the server describes it.
struct PgColumn
{
    QString name;
    FieldInfo info;
};

struct PgTable
{
    QString name; // as stored
    QList<PgColumn> columns; // without the key column
    bool keyed = false; // carries the engine's key column
};

// A parameter: text in the server's input form, or Null.
using PgParam = std::optional<QByteArray>;

class Connection
{
public:
    // Connects with a libpq connection string or URI. NotFound for a database that is not
    // there, Engine otherwise.
    static Result<std::shared_ptr<Connection>> open(const QString &conninfo, bool readOnly);
    ~Connection();
    Connection(const Connection &) = delete;
    Connection &operator=(const Connection &) = delete;

    // Runs a statement; a server error becomes Engine (Locked for a lock conflict, NotFound
    // for a missing table) with the server's SQLSTATE and text.
    Result<PgResult> exec(const QString &sql, const QList<PgParam> &params = {}) const;
    // The same, for statements whose failure is the whole answer.
    Status run(const QString &sql, const QList<PgParam> &params = {}) const;

    // The table of this name (case-insensitive, in the search path's first schema).
    std::optional<PgTable> lookupTable(const QString &name) const;
    // Forgets what it knows of the tables (after one was made or changed).
    void forgetTables() const { m_tables.clear(); }
    QStringList tableNames() const;

    bool isReadOnly() const { return m_readOnly; }
    // The server's process for this connection (names the lock holder in pg_locks).
    int backendPid() const;

    // Record locks of this connection's own record sources, by table and key.
    bool holdsLocally(const QString &table, qint64 key) const;
    void noteLock(const QString &table, qint64 key) { m_held.insert(lockName(table, key)); }
    void dropLock(const QString &table, qint64 key) { m_held.remove(lockName(table, key)); }

    Status connectionError(const QString &what) const;
    pg_conn *get() const { return m_conn; }

    // How many writes by other sessions to `table` this connection has heard of so far (the
    // NOTIFY the engine's trigger sends after every writing statement). Reads only what has
    // already arrived: no round trip, never waits.
    quint64 changesHeardOf(const QString &table) const;

private:
    Connection(pg_conn *conn, bool readOnly) : m_conn(conn), m_readOnly(readOnly) { }
    static QString lockName(const QString &table, qint64 key);
    // What a session of this connection needs beyond the server's defaults, at the first
    // connect and again after a reconnect: the change notices, UTF-8, read-only when asked.
    Status restoreSession() const;

    pg_conn *m_conn;
    bool m_readOnly;
    mutable QHash<QString, PgTable> m_tables; // by lower-case name
    QSet<QString> m_held;
    mutable QHash<QString, quint64> m_heard; // notices by lower-case table name
};

// "name" with inner quotes doubled: a PostgreSQL identifier, whatever the name holds.
QString quoteName(const QString &name);
// 'text' with inner quotes doubled: a standard-conforming literal.
QString quoteText(const QString &text);

} // namespace plx::postgres
