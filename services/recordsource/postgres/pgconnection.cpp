// services/recordsource/postgres/pgconnection.cpp: connecting, running statements, reading
// the tables' descriptions.
#include "services/recordsource/postgres/pgconnection_p.h"

#include "services/recordsource/postgres/pgschema_p.h"
#include "services/recordsource/postgres/pgvalues_p.h"

#include <libpq-fe.h>

namespace plx::postgres {

namespace {

// SQLSTATEs the engine answers in its own words.
constexpr char kLockNotAvailable[] = "55P03";
constexpr char kUndefinedTable[] = "42P01";
constexpr char kInvalidCatalog[] = "3D000";

Status::Code codeForState(const QByteArray &state)
{
    if (state == kLockNotAvailable)
        return Status::Code::Locked;
    if (state == kUndefinedTable)
        return Status::Code::NotFound;
    if (state == "2201B")
        return Status::Code::Syntax; // a Like pattern too complex for the server's regex engine
    if (state == "25006")
        return Status::Code::NotSupported; // read-only transaction
    if (state.startsWith("22"))
        return Status::Code::TypeMismatch; // data exceptions: a value the column cannot hold
    return Status::Code::Engine;
}

} // namespace

PgResult &PgResult::operator=(PgResult &&other) noexcept
{
    if (this != &other) {
        PQclear(m_result);
        m_result = std::exchange(other.m_result, nullptr);
    }
    return *this;
}

PgResult::~PgResult()
{
    PQclear(m_result);
}

int PgResult::rows() const
{
    return PQntuples(m_result);
}

int PgResult::columns() const
{
    return PQnfields(m_result);
}

bool PgResult::isNull(int row, int column) const
{
    return PQgetisnull(m_result, row, column) != 0;
}

QString PgResult::text(int row, int column) const
{
    return QString::fromUtf8(PQgetvalue(m_result, row, column), PQgetlength(m_result, row, column));
}

QByteArray PgResult::bytes(int row, int column) const
{
    return QByteArray(PQgetvalue(m_result, row, column), PQgetlength(m_result, row, column));
}

unsigned PgResult::typeOf(int column) const
{
    return PQftype(m_result, column);
}

int PgResult::affected() const
{
    return QByteArray(PQcmdTuples(m_result)).toInt();
}

QString PgResult::columnName(int column) const
{
    return QString::fromUtf8(PQfname(m_result, column));
}

Result<std::shared_ptr<Connection>> Connection::open(const QString &conninfo, bool readOnly)
{
    pg_conn *conn = PQconnectdb(conninfo.toUtf8().constData());
    if (PQstatus(conn) != CONNECTION_OK) {
        const QString why = QString::fromUtf8(PQerrorMessage(conn)).trimmed();
        PQfinish(conn);
        // libpq reports a missing database only in its text; the server's SQLSTATE 3D000
        // does not reach the caller before the connection is refused.
        if (why.contains(QLatin1String("does not exist")))
            return Status(Status::Code::NotFound,
                          QStringLiteral("PostgreSQL database not found: %1").arg(why), 0, why);
        return Status(Status::Code::Engine,
                      QStringLiteral("cannot connect to PostgreSQL (%1)").arg(conninfo), 0, why);
    }
    PQsetClientEncoding(conn, "UTF8");
    std::shared_ptr<Connection> connection(new Connection(conn, readOnly));
    if (Status s = installSchema(*connection); !s.isOk())
        return s;
    if (Status s = connection->restoreSession(); !s.isOk())
        return s;
    return connection;
}

Connection::~Connection()
{
    PQfinish(m_conn);
}

Status Connection::connectionError(const QString &what) const
{
    const QString why = QString::fromUtf8(PQerrorMessage(m_conn)).trimmed();
    if (PQstatus(m_conn) == CONNECTION_BAD)
        return Status(
            Status::Code::IoError,
            QStringLiteral("%1: the connection to the PostgreSQL server was lost").arg(what), 0,
            why);
    return Status(Status::Code::Engine, what, 0, why);
}

Result<PgResult> Connection::exec(const QString &sql, const QList<PgParam> &params) const
{
    const QByteArray text = sql.toUtf8();
    std::vector<const char *> values;
    values.reserve(size_t(params.size()));
    for (const PgParam &p : params)
        values.push_back(p ? p->constData() : nullptr);
    PgResult result(PQexecParams(m_conn, text.constData(), int(params.size()), nullptr,
                                 values.data(), nullptr, nullptr, 0));
    const ExecStatusType st = result.get() ? PQresultStatus(result.get()) : PGRES_FATAL_ERROR;
    if (st == PGRES_COMMAND_OK || st == PGRES_TUPLES_OK || st == PGRES_COPY_IN)
        return result;
    if (!result.get() || PQstatus(m_conn) == CONNECTION_BAD) {
        // A server that went away: this statement failed and says so; one reconnect, so
        // that a restarted server serves the next one.
        const Status lost = connectionError(QStringLiteral("cannot run %1").arg(sql.left(200)));
        PQreset(m_conn);
        if (PQstatus(m_conn) == CONNECTION_OK)
            restoreSession();
        return lost;
    }
    const QByteArray state(PQresultErrorField(result.get(), PG_DIAG_SQLSTATE));
    const QString why = QString::fromUtf8(PQresultErrorMessage(result.get())).trimmed();
    return Status(codeForState(state), QStringLiteral("PostgreSQL refused %1").arg(sql.left(200)),
                  0, QString::fromLatin1(state) + QStringLiteral(": ") + why);
}

Status Connection::run(const QString &sql, const QList<PgParam> &params) const
{
    Result<PgResult> r = exec(sql, params);
    return r.isOk() ? Status::ok() : r.status();
}

std::optional<PgTable> Connection::lookupTable(const QString &name) const
{
    const QString lower = name.toLower();
    if (auto it = m_tables.constFind(lower); it != m_tables.constEnd())
        return *it;
    Result<PgResult> r = exec(
        QStringLiteral(
            "SELECT c.relname, a.attname, a.atttypid, a.atttypmod FROM pg_class c "
            "JOIN pg_namespace n ON n.oid = c.relnamespace "
            "JOIN pg_attribute a ON a.attrelid = c.oid AND a.attnum > 0 AND NOT a.attisdropped "
            "WHERE n.nspname = current_schema() AND c.relkind IN ('r', 'v', 'p', 'm') "
            "AND lower(c.relname) = $1 ORDER BY c.relname = $2 DESC, c.relname, a.attnum"),
        { lower.toUtf8(), name.toUtf8() });
    if (!r.isOk() || r->rows() == 0)
        return std::nullopt;
    PgTable table;
    table.name = r->text(0, 0);
    for (int i = 0; i < r->rows() && r->text(i, 0) == table.name; ++i) {
        const QString column = r->text(i, 1);
        if (column == KeyColumn) {
            table.keyed = true;
            continue;
        }
        table.columns << PgColumn{
            column, fieldInfoForType(column, r->text(i, 2).toUInt(), r->text(i, 3).toInt())
        };
    }
    m_tables.insert(lower, table);
    return table;
}

QStringList Connection::tableNames() const
{
    QStringList names;
    Result<PgResult> r =
        exec(QStringLiteral("SELECT c.relname FROM pg_class c JOIN pg_namespace n ON "
                            "n.oid = c.relnamespace WHERE n.nspname = current_schema() AND "
                            "c.relkind IN ('r', 'v', 'p', 'm') ORDER BY c.relname"));
    if (r.isOk()) {
        for (int i = 0; i < r->rows(); ++i)
            names << r->text(i, 0);
    }
    return names;
}

int Connection::backendPid() const
{
    return PQbackendPID(m_conn);
}

QString Connection::lockName(const QString &table, qint64 key)
{
    return table.toLower() + QLatin1Char('\n') + QString::number(key);
}

bool Connection::holdsLocally(const QString &table, qint64 key) const
{
    return m_held.contains(lockName(table, key));
}

QString quoteName(const QString &name)
{
    QString q = name;
    q.replace(QLatin1Char('"'), QStringLiteral("\"\""));
    return QLatin1Char('"') + q + QLatin1Char('"');
}

QString quoteText(const QString &text)
{
    QString q = text;
    q.replace(QLatin1Char('\''), QStringLiteral("''"));
    return QLatin1Char('\'') + q + QLatin1Char('\'');
}

Status Connection::restoreSession() const
{
    // Without the subscription a source only misses others' changes; it still works.
    PQclear(PQexec(m_conn, "LISTEN plx_changes"));
    PQsetClientEncoding(m_conn, "UTF8");
    if (!m_readOnly)
        return Status::ok();
    // Straight through libpq: exec would reconnect and come back here on a lost server.
    PgResult set(PQexec(m_conn, "SET SESSION CHARACTERISTICS AS TRANSACTION READ ONLY"));
    if (PQresultStatus(set.get()) != PGRES_COMMAND_OK)
        return connectionError(QStringLiteral("cannot open the session read-only"));
    return Status::ok();
}

quint64 Connection::changesHeardOf(const QString &table) const
{
    if (PQconsumeInput(m_conn) == 1) {
        const int self = PQbackendPID(m_conn);
        while (PGnotify *notice = PQnotifies(m_conn)) {
            if (notice->be_pid != self)
                ++m_heard[QString::fromUtf8(notice->extra).toLower()];
            PQfreemem(notice);
        }
    }
    return m_heard.value(table.toLower());
}

} // namespace plx::postgres
