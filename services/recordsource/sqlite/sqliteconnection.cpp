// services/recordsource/sqlite/sqliteconnection.cpp: statements, error mapping and table
// look-ups for the Jet front end.
#include "services/recordsource/sqlite/internal/sqliteconnection.h"

#include <sqlite3.h>

namespace plx::sqlite {

Statement::~Statement()
{
    sqlite3_finalize(m_stmt);
}

Statement &Statement::operator=(Statement &&other) noexcept
{
    if (this != &other) {
        sqlite3_finalize(m_stmt);
        m_stmt = other.m_stmt;
        other.m_stmt = nullptr;
    }
    return *this;
}

Connection::~Connection()
{
    sqlite3_close_v2(m_db);
}

Status statusFor(int rc, const QString &what, const QString &engineText)
{
    Status::Code code = Status::Code::Engine;
    const int primary = rc & 0xFF;
    if (primary == SQLITE_BUSY || primary == SQLITE_LOCKED)
        code = Status::Code::Locked;
    else if (primary == SQLITE_IOERR || primary == SQLITE_CANTOPEN || primary == SQLITE_FULL)
        code = Status::Code::IoError;
    else if (primary == SQLITE_CORRUPT || primary == SQLITE_NOTADB)
        code = Status::Code::Corrupt;
    else if (primary == SQLITE_READONLY)
        code = Status::Code::NotSupported;
    else if (engineText.startsWith(QLatin1String("no such table")))
        code = Status::Code::NotFound;
    else if (engineText.startsWith(QLatin1String("no such column")))
        code = Status::Code::UnknownField;
    else if (engineText.startsWith(QLatin1String("no such function")))
        code = Status::Code::UnknownFunction;
    else if (engineText.contains(QLatin1String("syntax error")))
        code = Status::Code::Syntax;
    return Status(code, what, rc, engineText);
}

Result<Statement> Connection::prepare(const QString &sql) const
{
    sqlite3_stmt *stmt = nullptr;
    const QByteArray text = sql.toUtf8();
    const int rc = sqlite3_prepare_v2(m_db, text.constData(), int(text.size()), &stmt, nullptr);
    if (rc != SQLITE_OK) {
        sqlite3_finalize(stmt);
        return engineError(QStringLiteral("cannot prepare: %1").arg(sql), rc);
    }
    if (!stmt)
        return Status(Status::Code::Syntax, QStringLiteral("empty statement"));
    return Statement(stmt);
}

Status Connection::exec(const QString &sql) const
{
    Result<Statement> stmt = prepare(sql);
    if (!stmt.isOk())
        return stmt.status();
    int rc;
    while ((rc = sqlite3_step(stmt->get())) == SQLITE_ROW) { }
    if (rc != SQLITE_DONE)
        return engineError(sql, rc);
    return Status::ok();
}

Status Connection::engineError(const QString &what) const
{
    return engineError(what, sqlite3_extended_errcode(m_db));
}

Status Connection::engineError(const QString &what, int rc) const
{
    return statusFor(rc, what, QString::fromUtf8(sqlite3_errmsg(m_db)));
}

QStringList Connection::tableNames() const
{
    QStringList names;
    Result<Statement> stmt =
        prepare(QStringLiteral("SELECT name FROM sqlite_schema WHERE type IN ('table','view') "
                               "AND name NOT LIKE 'sqlite\\_%' ESCAPE '\\' ORDER BY name"));
    if (!stmt.isOk())
        return names;
    while (sqlite3_step(stmt->get()) == SQLITE_ROW)
        names << QString::fromUtf8(
            reinterpret_cast<const char *>(sqlite3_column_text(stmt->get(), 0)));
    return names;
}

std::optional<jet::TableColumns> Connection::lookupTable(const QString &name) const
{
    Result<Statement> stmt = prepare(QStringLiteral(
        "SELECT name FROM sqlite_schema WHERE type IN ('table','view') AND name = ?1 "
        "COLLATE NOCASE"));
    if (!stmt.isOk())
        return std::nullopt;
    const QByteArray wanted = name.toUtf8();
    sqlite3_bind_text(stmt->get(), 1, wanted.constData(), int(wanted.size()), SQLITE_TRANSIENT);
    if (sqlite3_step(stmt->get()) != SQLITE_ROW)
        return std::nullopt;
    jet::TableColumns result;
    result.table =
        QString::fromUtf8(reinterpret_cast<const char *>(sqlite3_column_text(stmt->get(), 0)));
    Result<Statement> info = prepare(QStringLiteral("SELECT name FROM pragma_table_info(?1)"));
    if (!info.isOk())
        return std::nullopt;
    const QByteArray stored = result.table.toUtf8();
    sqlite3_bind_text(info->get(), 1, stored.constData(), int(stored.size()), SQLITE_TRANSIENT);
    while (sqlite3_step(info->get()) == SQLITE_ROW)
        result.columns << QString::fromUtf8(
            reinterpret_cast<const char *>(sqlite3_column_text(info->get(), 0)));
    return result;
}

jet::TableLookup Connection::tableLookup() const
{
    return [this](const QString &name) { return lookupTable(name); };
}

Status Connection::begin() const
{
    return exec(QStringLiteral("BEGIN IMMEDIATE"));
}

Status Connection::commit() const
{
    Status s = exec(QStringLiteral("COMMIT"));
    if (!s.isOk())
        rollback();
    return s;
}

void Connection::rollback() const
{
    if (!sqlite3_get_autocommit(m_db))
        sqlite3_exec(m_db, "ROLLBACK", nullptr, nullptr, nullptr);
}

void Connection::checkpoint() const
{
    if (!isReadOnly())
        sqlite3_wal_checkpoint_v2(m_db, nullptr, SQLITE_CHECKPOINT_PASSIVE, nullptr, nullptr);
}

} // namespace plx::sqlite
