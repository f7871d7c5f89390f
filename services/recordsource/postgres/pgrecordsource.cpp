// services/recordsource/postgres/pgrecordsource.cpp: opening, the keyset, batched reading
// and finds.
#include "services/recordsource/postgres/pgrecordsource_p.h"

#include "services/recordsource/internal/tableortext.h"
#include "services/recordsource/jet/internal/parser.h"
#include "services/recordsource/postgres/pgvalues_p.h"

#include <QtEndian>

#include <libpq-fe.h>

#include <algorithm>
#include <unordered_set>

namespace plx::postgres {

namespace {

constexpr qint64 kBatch = 200; // rows read per round trip while stepping
constexpr qint64 kBehind = 20; // of which before the current one (for MovePrevious)

// Reads a one-column bigint result in binary form without going through text.
Result<std::vector<qint64>> readKeys(const Connection &conn, const QString &sql)
{
    const QByteArray text = sql.toUtf8();
    PgResult result(
        PQexecParams(conn.get(), text.constData(), 0, nullptr, nullptr, nullptr, nullptr, 1));
    if (!result.get() || PQresultStatus(result.get()) != PGRES_TUPLES_OK) {
        Result<PgResult> again = conn.exec(sql); // the same statement, for its error
        return again.isOk() ? conn.connectionError(QStringLiteral("cannot read the keys"))
                            : again.status();
    }
    std::vector<qint64> keys;
    const int rows = result.rows();
    keys.reserve(size_t(rows));
    for (int i = 0; i < rows; ++i)
        keys.push_back(qFromBigEndian<qint64>(PQgetvalue(result.get(), i, 0)));
    return keys;
}

} // namespace

PgRecordSource::PgRecordSource(std::shared_ptr<Connection> connection)
    : m_conn(std::move(connection)), m_lock(m_conn)
{
}

PgRecordSource::~PgRecordSource()
{
    Close();
}

Result<std::unique_ptr<RecordSource>> PgRecordSource::open(std::shared_ptr<Connection> connection,
                                                           const QString &tableOrSql)
{
    QString sql = tableOrSql.trimmed();
    if (!isSelectStatement(sql)) {
        const std::optional<PgTable> table = connection->lookupTable(unbracketedName(sql));
        if (!table)
            return Status(Status::Code::NotFound,
                          QStringLiteral("no table named %1").arg(unbracketedName(sql)));
        sql = QStringLiteral("SELECT * FROM [%1]").arg(table->name);
    }
    const Result<jet::SelectStatement> stmt = jet::parseSelect(sql);
    if (!stmt.isOk())
        return stmt.status();
    const Connection *conn = connection.get();
    Result<PgSelect> select = translateSelect(
        stmt.value(), [conn](const QString &name) { return conn->lookupTable(name); });
    if (!select.isOk())
        return select.status();
    std::unique_ptr<PgRecordSource> source(new PgRecordSource(std::move(connection)));
    source->m_select = std::move(select).value();
    // Counted before the records are read: a write in between is seen as a change.
    source->m_heardChanges = source->m_conn->changesHeardOf(source->baseTable());
    Status s = source->m_select.keyed ? source->loadKeys() : source->loadHeldRows();
    if (!s.isOk())
        return s;
    if (source->m_conn->isReadOnly())
        source->m_readOnlyReason = QStringLiteral("the database was opened read-only");
    else if (!source->m_select.keyed)
        source->m_readOnlyReason = QStringLiteral(
            "the records come from a query that cannot be written back to one table");
    if (source->size() > 0)
        (void)source->moveTo(0);
    return std::unique_ptr<RecordSource>(std::move(source));
}

Status PgRecordSource::loadKeys()
{
    QString sql =
        QStringLiteral("SELECT %1.%2 %3").arg(m_select.baseAlias, KeyColumn, m_select.fromClause);
    if (!m_select.whereClause.isEmpty())
        sql += QStringLiteral(" WHERE ") + m_select.whereClause;
    sql += QStringLiteral(" ORDER BY ")
        + (m_select.orderClause.isEmpty() ? QString() : m_select.orderClause + QStringLiteral(", "))
        + m_select.baseAlias + QLatin1Char('.') + KeyColumn;
    Result<std::vector<qint64>> keys = readKeys(*m_conn, sql);
    if (!keys.isOk())
        return keys.status();
    m_keys = std::move(keys).value();
    return Status::ok();
}

Status PgRecordSource::loadHeldRows()
{
    Result<PgResult> r = m_conn->exec(m_select.sql);
    if (!r.isOk())
        return r.status();
    for (int row = 0; row < r->rows(); ++row) {
        QVariantList values;
        for (int i = 0; i < m_select.fields.size(); ++i)
            values << valueOf(r.value(), row, i, m_select.fields.at(i));
        m_rows.push_back(std::move(values));
    }
    return Status::ok();
}

qint64 PgRecordSource::size() const
{
    return m_select.keyed ? qint64(m_keys.size()) : qint64(m_rows.size());
}

Status PgRecordSource::fetchBatch(qint64 position) const
{
    const qint64 from = qMax<qint64>(0, position - kBehind);
    const qint64 to = qMin<qint64>(size(), from + kBatch);
    QByteArray keys = "{";
    for (qint64 i = from; i < to; ++i)
        keys += (i > from ? "," : "") + QByteArray::number(m_keys[size_t(i)]);
    keys += '}';
    Result<PgResult> r = m_conn->exec(
        QStringLiteral("SELECT %1.%2, %3 %4 WHERE %1.%2 = ANY($1::bigint[])")
            .arg(m_select.baseAlias, KeyColumn, m_select.selectList, m_select.fromClause),
        { keys });
    if (!r.isOk())
        return r.status();
    m_batch.clear();
    for (int row = 0; row < r->rows(); ++row) {
        QVariantList values;
        for (int i = 0; i < m_select.fields.size(); ++i)
            values << valueOf(r.value(), row, i + 1, m_select.fields.at(i));
        m_batch.insert(r->text(row, 0).toLongLong(), values);
    }
    return Status::ok();
}

Result<QVariantList> PgRecordSource::currentRow() const
{
    if (!m_select.keyed)
        return m_rows.at(size_t(m_pos));
    const qint64 key = m_keys[size_t(m_pos)];
    // The record last read, or a neighbour of it, comes from the batch; any other move
    // reads afresh, so a record come back to shows what others saved since.
    const bool near = m_batchPos >= 0 && qAbs(m_pos - m_batchPos) <= 1;
    if (!near || !m_batch.contains(key)) {
        if (Status s = fetchBatch(m_pos); !s.isOk())
            return s;
    }
    m_batchPos = m_pos;
    auto it = m_batch.constFind(key);
    if (it == m_batch.constEnd())
        return Status(Status::Code::NotFound,
                      QStringLiteral("record %1 was deleted by another user").arg(key));
    return *it;
}

void PgRecordSource::forgetRows() const
{
    m_batch.clear();
    m_batchPos = -2;
}

Result<QVariant> PgRecordSource::value(int index) const
{
    if (m_closed)
        return closedError();
    if (index < 0 || index >= m_select.fields.size())
        return Status(Status::Code::InvalidArgument, QStringLiteral("no field %1").arg(index));
    if (m_mode != EditMode::None)
        return m_buffer.at(index);
    if (!hasCurrent())
        return Status(Status::Code::NotFound, QStringLiteral("no current record"));
    Result<QVariantList> row = currentRow();
    if (!row.isOk())
        return row.status();
    return row->at(index);
}

Result<qint64> PgRecordSource::locate(const QString &criterion, qint64 start) const
{
    Result<QString> condition = translateCriterion(criterion, m_select);
    if (!condition.isOk())
        return condition.status();
    if (!m_select.keyed)
        return Status(Status::Code::NotSupported,
                      QStringLiteral("FindFirst on a query over joins or on a table without the "
                                     "engine's key column is not supported on PostgreSQL"));
    QString sql = QStringLiteral("SELECT %1.%2 %3 WHERE (%4)")
                      .arg(m_select.baseAlias, KeyColumn, m_select.fromClause, condition.value());
    if (!m_select.whereClause.isEmpty())
        sql += QStringLiteral(" AND (%1)").arg(m_select.whereClause);
    Result<std::vector<qint64>> hits = readKeys(*m_conn, sql);
    if (!hits.isOk())
        return hits.status();
    if (hits->empty())
        return qint64(-1);
    const auto from = m_keys.begin() + qMax<qint64>(0, qMin(start, size()));
    if (hits->size() == 1) {
        // An ID criterion: one key, found by a plain scan of the keyset (a million keys in
        // well under a millisecond), no hash to build.
        const auto at = std::find(from, m_keys.end(), hits->front());
        return at == m_keys.end() ? qint64(-1) : qint64(at - m_keys.begin());
    }
    const std::unordered_set<qint64> found(hits->begin(), hits->end());
    for (qint64 i = qMax<qint64>(0, start); i < size(); ++i) {
        if (found.count(m_keys[size_t(i)]) != 0)
            return i;
    }
    return qint64(-1);
}

void PgRecordSource::Close()
{
    if (m_closed)
        return;
    endEdit();
    m_lock.detach();
    m_keys = {};
    m_rows = {};
    forgetRows();
    m_closed = true;
    m_conn.reset();
}

bool PgRecordSource::changedElsewhere()
{
    if (m_closed)
        return false;
    const quint64 heard = m_conn->changesHeardOf(baseTable());
    if (heard == m_heardChanges)
        return false;
    m_heardChanges = heard;
    return true;
}

} // namespace plx::postgres
