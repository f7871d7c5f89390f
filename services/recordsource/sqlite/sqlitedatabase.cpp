// services/recordsource/sqlite/sqlitedatabase.cpp: the SQLite Database.
#include "services/recordsource/sqlite/sqlitedatabase_p.h"

#include "services/recordsource/internal/indexfields.h"
#include "services/recordsource/sqlite/internal/sqliteconnection.h"
#include "services/recordsource/sqlite/internal/sqliterecordsource.h"
#include "services/recordsource/sqlite/internal/sqlitevalues.h"

#include <sqlite3.h>

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
    QString filePath() const override { return m_conn ? m_conn->path() : QString(); }

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
    Status createTable(const QString &name, const QList<FieldInfo> &fields) override;
    Status createIndex(const QString &table, const QString &indexName,
                       const QStringList &fields) override;
    Status appendRecords(const QString &name, const QList<QVariantList> &rows) override;
    Result<TableDescription> describeTable(const QString &name) const override;
    void Close() override { m_conn.reset(); }

private:
    std::shared_ptr<Connection> m_conn;
};

QString quotedName(QString name)
{
    name.replace(QLatin1Char('"'), QStringLiteral("\"\""));
    return QLatin1Char('"') + name + QLatin1Char('"');
}

Status closedDatabase()
{
    return Status(Status::Code::InvalidArgument, QStringLiteral("the database is closed"));
}

Status SqliteDatabase::createTable(const QString &name, const QList<FieldInfo> &fields)
{
    if (!m_conn)
        return closedDatabase();
    if (m_conn->isReadOnly())
        return Status(Status::Code::NotSupported, m_conn->readOnlyReason());
    if (name.trimmed().isEmpty() || fields.isEmpty())
        return Status(Status::Code::InvalidArgument,
                      QStringLiteral("a table needs a name and at least one field"));
    if (m_conn->lookupTable(name))
        return Status(Status::Code::InvalidArgument,
                      QStringLiteral("a table named %1 exists already").arg(name));
    QStringList columns;
    for (const FieldInfo &f : fields)
        columns << quotedName(f.name) + QLatin1Char(' ') + declaredTypeFor(f);
    return m_conn->exec(QStringLiteral("CREATE TABLE %1 (%2)")
                            .arg(quotedName(name), columns.join(QStringLiteral(", "))));
}

Status SqliteDatabase::createIndex(const QString &table, const QString &indexName,
                                   const QStringList &fields)
{
    if (!m_conn)
        return closedDatabase();
    if (m_conn->isReadOnly())
        return Status(Status::Code::NotSupported, m_conn->readOnlyReason());
    Result<IndexedFields> indexed = indexFields(*this, table, fields);
    if (!indexed.isOk())
        return indexed.status();
    // Text in the dialect's own order, so that its comparisons and ORDER BY can use it.
    QStringList columns;
    for (const FieldInfo &f : indexed->fields) {
        const bool text = f.type == FieldType::Text || f.type == FieldType::Memo;
        columns << quotedName(f.name) + (text ? QStringLiteral(" COLLATE JETNOCASE") : QString());
    }
    Status s = m_conn->exec(QStringLiteral("CREATE INDEX %1 ON %2 (%3)")
                                .arg(quotedName(indexName), quotedName(indexed->table),
                                     columns.join(QStringLiteral(", "))));
    if (!s.isOk() && (s.message() + s.engineMessage()).contains(QLatin1String("already exists")))
        return Status(Status::Code::InvalidArgument,
                      QStringLiteral("an index named %1 exists already").arg(indexName));
    return s;
}

Status SqliteDatabase::appendRecords(const QString &name, const QList<QVariantList> &rows)
{
    if (!m_conn)
        return closedDatabase();
    if (m_conn->isReadOnly())
        return Status(Status::Code::NotSupported, m_conn->readOnlyReason());
    Result<TableDescription> table = describeTable(name);
    if (!table.isOk())
        return table.status();
    const QList<FieldInfo> &fields = table->fields;
    QStringList marks;
    for (qsizetype i = 0; i < fields.size(); ++i)
        marks << QStringLiteral("?");
    Result<Statement> insert =
        m_conn->prepare(QStringLiteral("INSERT INTO %1 VALUES (%2)")
                            .arg(quotedName(table->name), marks.join(QLatin1Char(','))));
    if (!insert.isOk())
        return insert.status();
    if (Status s = m_conn->begin(); !s.isOk())
        return s;
    // One transaction: a row that fails rolls back the rows before it.
    const auto failed = [this](Status s) {
        m_conn->rollback();
        return s;
    };
    for (qsizetype r = 0; r < rows.size(); ++r) {
        const QVariantList &row = rows[r];
        if (row.size() > fields.size())
            return failed(Status(Status::Code::InvalidArgument,
                                 QStringLiteral("row %1 has %2 values; %3 has %4 fields")
                                     .arg(r + 1)
                                     .arg(row.size())
                                     .arg(table->name)
                                     .arg(fields.size())));
        for (int i = 0; i < fields.size(); ++i) {
            Result<QVariant> value = normalizeValue(row.value(i), fields[i]);
            if (!value.isOk())
                return failed(Status(value.status().code(),
                                     QStringLiteral("row %1, field %2: %3")
                                         .arg(r + 1)
                                         .arg(fields[i].name, value.status().message())));
            bindValue(insert->get(), i + 1, value.value(), fields[i]);
        }
        const int rc = sqlite3_step(insert->get());
        sqlite3_reset(insert->get());
        if (rc != SQLITE_DONE)
            return failed(m_conn->writeError(table->name, rc));
    }
    return m_conn->commit();
}

Result<TableDescription> SqliteDatabase::describeTable(const QString &name) const
{
    if (!m_conn)
        return closedDatabase();
    const std::optional<jet::TableColumns> table = m_conn->lookupTable(name);
    if (!table)
        return Status(Status::Code::NotFound, QStringLiteral("no table named %1").arg(name));
    TableDescription description;
    description.name = table->table;
    Result<Statement> columns =
        m_conn->prepare(QStringLiteral("SELECT * FROM %1").arg(quotedName(table->table)));
    if (!columns.isOk())
        return columns.status();
    for (int i = 0; i < sqlite3_column_count(columns->get()); ++i)
        description.fields << fieldInfoFromDeclaredType(
            QString::fromUtf8(sqlite3_column_name(columns->get(), i)),
            QString::fromUtf8(sqlite3_column_decltype(columns->get(), i)));
    Result<Statement> created = m_conn->prepare(
        QStringLiteral("SELECT sql FROM sqlite_master WHERE type = 'table' AND name = '%1'")
            .arg(QString(table->table).replace(QLatin1Char('\''), QStringLiteral("''"))));
    if (created.isOk() && sqlite3_step(created->get()) == SQLITE_ROW)
        description.storage = QString::fromUtf8(
            reinterpret_cast<const char *>(sqlite3_column_text(created->get(), 0)));
    return description;
}

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
