// services/recordsource/postgres/pgdatabase.cpp: the database: record sources, tables made
// and described, batches appended with COPY.
#include "services/recordsource/postgres/pgdatabase_p.h"

#include "services/recordsource/internal/indexfields.h"
#include "services/recordsource/postgres/pgkeys_p.h"
#include "services/recordsource/postgres/pgrecordsource_p.h"
#include "services/recordsource/postgres/pgschema_p.h"
#include "services/recordsource/postgres/pgvalues_p.h"

#include <libpq-fe.h>

namespace plx::postgres {

namespace {

// A value in COPY's text form: \N for Null, backslash, tab and line ends escaped.
QByteArray copyText(const PgParam &param)
{
    if (!param)
        return QByteArrayLiteral("\\N");
    QByteArray out;
    out.reserve(param->size());
    for (char c : *param) {
        switch (c) {
        case '\\': out += "\\\\"; break;
        case '\t': out += "\\t"; break;
        case '\n': out += "\\n"; break;
        case '\r': out += "\\r"; break;
        default: out += c; break;
        }
    }
    return out;
}

// Whether a row fits the table: no more values than fields, texts within their sizes,
// values of the fields' kinds.
Status checkRow(const PgTable &table, const QVariantList &row)
{
    if (row.size() > table.columns.size())
        return Status(
            Status::Code::InvalidArgument,
            QStringLiteral("%1 values for %2 fields").arg(row.size()).arg(table.columns.size()));
    for (int i = 0; i < row.size(); ++i) {
        const FieldInfo &f = table.columns.at(i).info;
        if (f.type == FieldType::Text && f.size > 0 && row.at(i).toString().size() > f.size)
            return Status(Status::Code::InvalidArgument,
                          QStringLiteral("the text is longer than field %1 (%2 characters)")
                              .arg(f.name)
                              .arg(f.size));
        if (Result<PgParam> p = paramFor(row.at(i), f); !p.isOk())
            return p.status();
    }
    return Status::ok();
}

class PgDatabase final : public Database, public SharedKeys
{
public:
    PgDatabase(std::shared_ptr<Connection> connection, QString conninfo)
        : m_conn(std::move(connection)), m_conninfo(std::move(conninfo))
    {
    }
    ~PgDatabase() override { Close(); }

    Result<std::unique_ptr<RecordSource>> OpenRecordset(const QString &tableOrSql) override
    {
        if (!m_conn)
            return closed();
        return PgRecordSource::open(m_conn, tableOrSql);
    }
    void Idle() override { }
    QStringList tableNames() const override
    {
        return m_conn ? m_conn->tableNames() : QStringList();
    }
    TextCompare textCompare() const override { return TextCompare::NoCase; }
    Status createTable(const QString &name, const QList<FieldInfo> &fields) override;
    Status appendRecords(const QString &name, const QList<QVariantList> &rows) override;
    Status createIndex(const QString &table, const QString &indexName,
                       const QStringList &fields) override;
    Result<TableDescription> describeTable(const QString &name) const override;
    void Close() override
    {
        m_conn.reset();
        m_keys.reset();
    }

    Result<std::unique_ptr<KeyLease>> leaseKey(const QString &table, int waitMs) override;

private:
    static Status closed()
    {
        return Status(Status::Code::InvalidArgument, QStringLiteral("the database is closed"));
    }
    Status writable() const
    {
        if (!m_conn)
            return closed();
        if (m_conn->isReadOnly())
            return Status(Status::Code::NotSupported,
                          QStringLiteral("the database was opened read-only"));
        return Status::ok();
    }
    Status copyRows(const PgTable &table, const QList<QVariantList> &rows);

    std::shared_ptr<Connection> m_conn;
    QString m_conninfo;
    // The keys' own connection, made at the first lease: a lease's transaction must not
    // take in the record sources' statements, nor they wait for it.
    std::shared_ptr<Connection> m_keys;
};

Result<std::unique_ptr<KeyLease>> PgDatabase::leaseKey(const QString &table, int waitMs)
{
    if (Status s = writable(); !s.isOk())
        return s;
    // A lease still held (a nested navigator's) keeps its connection; this one gets another,
    // so that the two transactions, and their locks, stay apart.
    if (!m_keys || m_keys.use_count() > 1) {
        Result<std::shared_ptr<Connection>> keys = Connection::open(m_conninfo, false);
        if (!keys.isOk())
            return keys.status();
        m_keys = std::move(keys).value();
    }
    return postgres::leaseKey(m_keys, table, waitMs);
}

Status PgDatabase::createTable(const QString &name, const QList<FieldInfo> &fields)
{
    if (Status s = writable(); !s.isOk())
        return s;
    if (m_conn->lookupTable(name))
        return Status(Status::Code::InvalidArgument,
                      QStringLiteral("a table named %1 exists already").arg(name));
    QStringList columns{
        QStringLiteral("%1 bigint GENERATED ALWAYS AS IDENTITY PRIMARY KEY").arg(KeyColumn)
    };
    for (const FieldInfo &f : fields)
        columns << quoteName(f.name) + QLatin1Char(' ') + declaredTypeFor(f);
    Status s = m_conn->run(QStringLiteral("BEGIN"));
    if (s.isOk())
        s = m_conn->run(QStringLiteral("CREATE TABLE %1 (%2)")
                            .arg(quoteName(name), columns.join(QStringLiteral(", "))));
    if (s.isOk())
        s = m_conn->run(changeTriggerFor(name));
    (void)m_conn->run(s.isOk() ? QStringLiteral("COMMIT") : QStringLiteral("ROLLBACK"));
    m_conn->forgetTables();
    if (!s.isOk() && s.code() != Status::Code::IoError)
        return Status(Status::Code::InvalidArgument,
                      QStringLiteral("cannot create table %1: %2").arg(name, s.engineMessage()),
                      s.engineCode(), s.engineMessage());
    return s;
}

Status PgDatabase::copyRows(const PgTable &table, const QList<QVariantList> &rows)
{
    QStringList names;
    for (const PgColumn &c : table.columns)
        names << quoteName(c.name);
    Result<PgResult> start =
        m_conn->exec(QStringLiteral("COPY %1 (%2) FROM STDIN")
                         .arg(quoteName(table.name), names.join(QLatin1Char(','))));
    if (!start.isOk())
        return start.status();
    Status failure = Status::ok();
    QByteArray chunk;
    for (const QVariantList &row : rows) {
        for (int i = 0; i < table.columns.size() && failure.isOk(); ++i) {
            Result<PgParam> p = paramFor(row.value(i), table.columns.at(i).info);
            if (!p.isOk())
                failure = p.status();
            else
                chunk += (i > 0 ? "\t" : "") + copyText(p.value());
        }
        chunk += '\n';
        if (!failure.isOk())
            break;
        if (chunk.size() > (1 << 20)) {
            PQputCopyData(m_conn->get(), chunk.constData(), int(chunk.size()));
            chunk.clear();
        }
    }
    if (failure.isOk())
        PQputCopyData(m_conn->get(), chunk.constData(), int(chunk.size()));
    PQputCopyEnd(m_conn->get(), failure.isOk() ? nullptr : "a value the field cannot hold");
    PgResult end(PQgetResult(m_conn->get()));
    while (PgResult(PQgetResult(m_conn->get())).get() != nullptr) { }
    if (!failure.isOk())
        return failure;
    if (!end.get() || PQresultStatus(end.get()) != PGRES_COMMAND_OK)
        return Status(Status::Code::InvalidArgument,
                      QStringLiteral("cannot append the records to %1").arg(table.name), 0,
                      QString::fromUtf8(PQerrorMessage(m_conn->get())).trimmed());
    return Status::ok();
}

Status PgDatabase::appendRecords(const QString &name, const QList<QVariantList> &rows)
{
    if (Status s = writable(); !s.isOk())
        return s;
    const std::optional<PgTable> table = m_conn->lookupTable(name);
    if (!table)
        return Status(Status::Code::NotFound, QStringLiteral("no table named %1").arg(name));
    for (qsizetype r = 0; r < rows.size(); ++r) {
        if (Status s = checkRow(*table, rows.at(r)); !s.isOk())
            return Status(Status::Code::InvalidArgument,
                          QStringLiteral("row %1: %2").arg(r + 1).arg(s.message()));
    }
    // One transaction: every row lands, or none does.
    Status s = m_conn->run(QStringLiteral("BEGIN"));
    if (s.isOk())
        s = copyRows(*table, rows);
    if (!s.isOk()) {
        (void)m_conn->run(QStringLiteral("ROLLBACK"));
        return s;
    }
    return m_conn->run(QStringLiteral("COMMIT"));
}

Status PgDatabase::createIndex(const QString &table, const QString &indexName,
                               const QStringList &fields)
{
    if (Status s = writable(); !s.isOk())
        return s;
    Result<IndexedFields> indexed = indexFields(*this, table, fields);
    if (!indexed.isOk())
        return indexed.status();
    // The text columns carry plx.nocase already: the index keeps the dialect's order.
    QStringList columns;
    for (const FieldInfo &f : indexed->fields)
        columns << quoteName(f.name);
    Status s = m_conn->run(QStringLiteral("CREATE INDEX %1 ON %2 (%3)")
                               .arg(quoteName(indexName), quoteName(indexed->table),
                                    columns.join(QStringLiteral(", "))));
    if (s.code() == Status::Code::Engine && s.engineMessage().startsWith(QLatin1String("42P07")))
        return Status(Status::Code::InvalidArgument,
                      QStringLiteral("an index named %1 exists already").arg(indexName));
    return s;
}

Result<TableDescription> PgDatabase::describeTable(const QString &name) const
{
    if (!m_conn)
        return closed();
    const std::optional<PgTable> table = m_conn->lookupTable(name);
    if (!table)
        return Status(Status::Code::NotFound, QStringLiteral("no table named %1").arg(name));
    TableDescription d;
    d.name = table->name;
    QStringList columns;
    for (const PgColumn &c : table->columns) {
        d.fields << c.info;
        columns << QStringLiteral("  %1 %2").arg(quoteName(c.name), declaredTypeFor(c.info));
    }
    d.storage = QStringLiteral("PostgreSQL table %1 (%2)\n%3")
                    .arg(quoteName(table->name),
                         table->keyed ? QStringLiteral("records keyed by %1").arg(KeyColumn)
                                      : QStringLiteral("no key column: read-only"),
                         columns.join(QLatin1Char('\n')));
    return d;
}

} // namespace

Result<std::unique_ptr<Database>> openPostgresDatabase(const QString &conninfo,
                                                       const DatabaseOptions &options)
{
    Result<std::shared_ptr<Connection>> conn = Connection::open(conninfo, options.readOnly);
    if (!conn.isOk())
        return conn.status();
    return std::unique_ptr<Database>(new PgDatabase(std::move(conn).value(), conninfo));
}

} // namespace plx::postgres
