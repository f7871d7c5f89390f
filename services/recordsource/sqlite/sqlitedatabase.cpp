// services/recordsource/sqlite/sqlitedatabase.cpp: the SQLite Database.
#include "services/recordsource/sqlite/sqlitedatabase_p.h"

#include "services/recordsource/sqlite/internal/sqliteconnection.h"
#include "services/recordsource/sqlite/internal/sqliterecordsource.h"

namespace plx::sqlite {

namespace {

class SqliteDatabase final : public Database
{
public:
    explicit SqliteDatabase(std::shared_ptr<Connection> connection) : m_conn(std::move(connection))
    {
    }

    Result<std::unique_ptr<RecordSource>> OpenRecordset(const QString &tableOrSql) override
    {
        if (!m_conn)
            return Status(Status::Code::InvalidArgument, QStringLiteral("the database is closed"));
        return SqliteRecordSource::open(m_conn, tableOrSql);
    }

    // Writes are committed and synced by Update itself and record locks are released by
    // Update/CancelUpdate, so nothing is pending. In WAL mode a passive checkpoint keeps the
    // write-ahead log short; it never waits for readers and costs nothing when the log
    // is already written back (or the file has no WAL).
    void Idle() override
    {
        if (m_conn)
            m_conn->checkpoint();
    }

    QStringList tableNames() const override
    {
        return m_conn ? m_conn->tableNames() : QStringList();
    }
    TextCompare textCompare() const override { return TextCompare::NoCase; }
    void Close() override { m_conn.reset(); }

private:
    std::shared_ptr<Connection> m_conn;
};

} // namespace

Result<std::unique_ptr<Database>> openSqliteDatabase(const QString &path,
                                                     const ConnectOptions &options)
{
    Result<std::shared_ptr<Connection>> conn = Connection::open(path, options);
    if (!conn.isOk())
        return conn.status();
    return std::unique_ptr<Database>(new SqliteDatabase(std::move(conn).value()));
}

} // namespace plx::sqlite
