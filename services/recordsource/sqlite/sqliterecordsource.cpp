// services/recordsource/sqlite/sqliterecordsource.cpp: opening, positions and reading.
#include "services/recordsource/sqlite/internal/sqliterecordsource.h"

#include "services/recordsource/internal/tableortext.h"
#include "services/recordsource/jet/internal/parser.h"
#include "services/recordsource/sqlite/internal/sqlitevalues.h"

#include <QRegularExpression>

#include <sqlite3.h>

namespace plx::sqlite {

namespace {

// The statement without its quoted parts ('text', "name", [name]), so that a keyword
// inside a literal or a name is not taken for a clause.
QString unquoted(const QString &sql)
{
    static const QRegularExpression quoted(
        QStringLiteral("'(?:[^']|'')*'|\"(?:[^\"]|\"\")*\"|\\[[^\\]]*\\]"));
    return QString(sql).replace(quoted, QStringLiteral(" "));
}

// True when the statement consists of its select list, FROM, WHERE and ORDER BY parts
// only: no clause the front end reports no part for (DISTINCT, GROUP BY, HAVING, LIMIT,
// a compound SELECT). Only then can the parts be recombined, as the keyset and the finds do.
bool hasPlainShape(const jet::TranslatedSelect &select)
{
    static const QRegularExpression extra(
        QStringLiteral("\\b(DISTINCT|GROUP\\s+BY|HAVING|LIMIT|OFFSET|UNION|INTERSECT|EXCEPT|"
                       "WINDOW)\\b"),
        QRegularExpression::CaseInsensitiveOption);
    return !extra.match(unquoted(select.sql)).hasMatch();
}

// Keying on rowid is only right when every result row is one row of the base table: a
// plain statement on one table without an aggregate in its select list.
bool isRowPerBaseRow(const jet::TranslatedSelect &select)
{
    if (select.baseTable.isEmpty() || select.baseAlias.isEmpty() || !hasPlainShape(select))
        return false;
    static const QRegularExpression aggregate(
        QStringLiteral("\\b(count|sum|min|max|avg|total|group_concat)\\s*\\("),
        QRegularExpression::CaseInsensitiveOption);
    return !aggregate.match(unquoted(select.selectList)).hasMatch();
}

// The translator reports a table it cannot find as an unknown name; to the caller of
// OpenRecordset it is NotFound, as on every back end. OK when every table is there.
Status missingTable(const Connection &connection, const jet::SelectStatement &stmt)
{
    std::vector<jet::TableRef> tables{ stmt.from };
    for (const jet::Join &j : stmt.joins)
        tables.push_back(j.table);
    for (const jet::TableRef &t : tables) {
        if (!connection.lookupTable(t.name))
            return Status(
                Status::Code::NotFound,
                QStringLiteral("no table named %1 at position %2").arg(t.name).arg(t.pos));
    }
    return Status::ok();
}

} // namespace

SqliteRecordSource::SqliteRecordSource(std::shared_ptr<Connection> connection)
    : m_conn(std::move(connection)), m_lock(m_conn->path())
{
}

SqliteRecordSource::~SqliteRecordSource()
{
    Close();
}

Result<std::unique_ptr<RecordSource>>
SqliteRecordSource::open(std::shared_ptr<Connection> connection, const QString &tableOrSql)
{
    QString sql = tableOrSql.trimmed();
    if (!isSelectStatement(sql)) {
        const std::optional<jet::TableColumns> table =
            connection->lookupTable(unbracketedName(sql));
        if (!table)
            return Status(Status::Code::NotFound,
                          QStringLiteral("no table named %1").arg(unbracketedName(sql)));
        sql = QStringLiteral("SELECT * FROM [%1]").arg(table->table);
    }
    const Result<jet::SelectStatement> stmt = jet::parseSelect(sql);
    if (!stmt.isOk())
        return stmt.status();
    return open(std::move(connection), stmt.value());
}

Result<std::unique_ptr<RecordSource>>
SqliteRecordSource::open(std::shared_ptr<Connection> connection, const jet::SelectStatement &stmt)
{
    Result<jet::TranslatedSelect> translated =
        jet::translateSelect(stmt, connection->tableLookup(), connection->textCompare());
    if (!translated.isOk()) {
        if (translated.status().code() == Status::Code::UnknownField)
            if (Status missing = missingTable(*connection, stmt); !missing.isOk())
                return missing;
        return translated.status();
    }
    std::unique_ptr<SqliteRecordSource> source(new SqliteRecordSource(std::move(connection)));
    source->m_select = std::move(translated).value();
    source->m_plainShape = hasPlainShape(source->m_select);
    // Taken before the records are read: a write in between is seen as a change.
    if (const Result<qint64> version = source->dataVersion(); version.isOk())
        source->m_dataVersion = version.value();
    Status s = source->describeColumns();
    if (s.isOk())
        s = isRowPerBaseRow(source->m_select) ? source->loadKeyset() : source->loadHeldRows();
    if (!s.isOk())
        return s;
    source->m_readOnlyReason = source->m_conn->readOnlyReason();
    if (source->m_readOnlyReason.isEmpty() && !source->m_keyed)
        source->m_readOnlyReason = QStringLiteral(
            "the records come from a query that cannot be written back to one table");
    if (source->size() > 0)
        (void)source->moveTo(0);
    return std::unique_ptr<RecordSource>(std::move(source));
}

Status SqliteRecordSource::describeColumns()
{
    Result<Statement> stmt = m_conn->prepare(m_select.sql);
    if (!stmt.isOk())
        return stmt.status();
    sqlite3_stmt *st = stmt->get();
    const int count = sqlite3_column_count(st);
    for (int i = 0; i < count; ++i) {
        const QString name = i < m_select.outputNames.size()
            ? m_select.outputNames.at(i)
            : QString::fromUtf8(sqlite3_column_name(st, i));
        const char *decl = sqlite3_column_decltype(st, i);
        m_fields << fieldInfoFromDeclaredType(name, QString::fromUtf8(decl));
        m_typed << (decl != nullptr);
        const char *table = sqlite3_column_table_name(st, i);
        const char *origin = sqlite3_column_origin_name(st, i);
        const bool fromBase = table && origin
            && m_select.baseTable.compare(QString::fromUtf8(table), Qt::CaseInsensitive) == 0;
        m_baseColumns << (fromBase ? QString::fromUtf8(origin) : QString());
    }
    return Status::ok();
}

Status SqliteRecordSource::loadKeyset()
{
    QString keySql =
        QStringLiteral("SELECT %1.rowid %2").arg(m_select.baseAlias, m_select.fromClause);
    if (!m_select.whereClause.isEmpty())
        keySql += QStringLiteral(" WHERE ") + m_select.whereClause;
    // Ties in rowid order, as a sort of the table's rows gives them and an index (which holds
    // the rowid as its last key) reads them: the same order with or without an index, in
    // either direction.
    if (!m_select.orderClause.isEmpty())
        keySql +=
            QStringLiteral(" ORDER BY %1, %2.rowid").arg(m_select.orderClause, m_select.baseAlias);
    Result<Statement> keys = m_conn->prepare(keySql);
    Result<Statement> row =
        m_conn->prepare(QStringLiteral("SELECT %1 %2 WHERE %3.rowid = ?1")
                            .arg(m_select.selectList, m_select.fromClause, m_select.baseAlias));
    // A view or a table without rowid has no key: hold its rows instead.
    if (!keys.isOk() || !row.isOk())
        return loadHeldRows();
    int rc;
    while ((rc = sqlite3_step(keys->get())) == SQLITE_ROW)
        m_keys.append(sqlite3_column_int64(keys->get(), 0));
    if (rc != SQLITE_DONE)
        return m_conn->engineError(
            QStringLiteral("cannot read the records of %1").arg(m_select.sql), rc);
    m_rowStmt = std::move(row).value();
    m_keyed = true;
    return Status::ok();
}

Status SqliteRecordSource::loadHeldRows()
{
    m_keyed = false;
    std::fill(m_baseColumns.begin(), m_baseColumns.end(), QString());
    Result<Statement> stmt = m_conn->prepare(m_select.sql);
    if (!stmt.isOk())
        return stmt.status();
    int rc;
    while ((rc = sqlite3_step(stmt->get())) == SQLITE_ROW) {
        QVariantList values;
        values.reserve(m_fields.size());
        for (int i = 0; i < m_fields.size(); ++i)
            values << readColumn(stmt->get(), i, m_fields.at(i), m_typed.at(i));
        m_rows.push_back(std::move(values));
    }
    if (rc != SQLITE_DONE)
        return m_conn->engineError(
            QStringLiteral("cannot read the records of %1").arg(m_select.sql), rc);
    return Status::ok();
}

qint64 SqliteRecordSource::size() const
{
    return m_keyed ? m_keys.size() : qint64(m_rows.size());
}

Status SqliteRecordSource::loadCurrent() const
{
    if (!m_keyed) {
        m_cache = m_rows.at(size_t(m_pos));
        return Status::ok();
    }
    const qint64 key = m_keys.at(m_pos);
    if (m_cacheValid && m_cachedKey == key)
        return Status::ok();
    sqlite3_stmt *st = m_rowStmt.get();
    sqlite3_bind_int64(st, 1, key);
    const int rc = sqlite3_step(st);
    Status result = Status::ok();
    if (rc == SQLITE_ROW) {
        m_cache.resize(m_fields.size());
        for (int i = 0; i < m_fields.size(); ++i)
            m_cache[i] = readColumn(st, i, m_fields.at(i), m_typed.at(i));
        m_cachedKey = key;
        m_cacheValid = true;
    } else if (rc == SQLITE_DONE) {
        result = Status(Status::Code::NotFound,
                        QStringLiteral("record %1 was deleted by another user").arg(key));
    } else {
        result = m_conn->engineError(QStringLiteral("cannot read record %1").arg(key), rc);
    }
    sqlite3_reset(st);
    return result;
}

Result<QVariant> SqliteRecordSource::value(int index) const
{
    if (m_closed)
        return closedError();
    if (index < 0 || index >= m_fields.size())
        return Status(Status::Code::InvalidArgument, QStringLiteral("no field %1").arg(index));
    if (m_mode != EditMode::None)
        return m_buffer.at(index);
    if (!hasCurrent())
        return Status(Status::Code::NotFound, QStringLiteral("no current record"));
    Status s = loadCurrent();
    if (!s.isOk())
        return s;
    return m_cache.at(index);
}

void SqliteRecordSource::Close()
{
    if (m_closed)
        return;
    endEdit();
    m_lock.release();
    m_rowStmt = Statement();
    m_keys.clear();
    m_rows = {};
    m_cacheValid = false;
    m_closed = true;
    m_conn.reset();
}

} // namespace plx::sqlite
