// services/recordsource/tablegen/postgreswriter.cpp: the benchmark table through the engine,
// with the statements the engine has no operation for (dropping a table, indexes) sent
// through libpq.
#include "services/recordsource/tablegen/postgreswriter.h"

#include "services/recordsource/database.h"
#include "services/recordsource/tablegen/benchtable.h"

#include <libpq-fe.h>

namespace plx::bench {

namespace {

constexpr int kBatchRows = 50000;

Status runStatements(const QString &conninfo, const QStringList &statements)
{
    PGconn *conn = PQconnectdb(conninfo.toUtf8().constData());
    Status s = Status::ok();
    if (PQstatus(conn) != CONNECTION_OK)
        s = Status(Status::Code::Engine, QStringLiteral("cannot connect to %1").arg(conninfo), 0,
                   QString::fromUtf8(PQerrorMessage(conn)));
    for (const QString &sql : statements) {
        if (!s.isOk())
            break;
        PGresult *r = PQexec(conn, sql.toUtf8().constData());
        if (PQresultStatus(r) != PGRES_COMMAND_OK)
            s = Status(Status::Code::Engine, QStringLiteral("cannot run %1").arg(sql), 0,
                       QString::fromUtf8(PQresultErrorMessage(r)));
        PQclear(r);
    }
    PQfinish(conn);
    return s;
}

QString quoted(const QString &name)
{
    return QLatin1Char('"') + QString(name).replace(QLatin1Char('"'), QStringLiteral("\"\""))
        + QLatin1Char('"');
}

} // namespace

Status writePostgresBenchTable(const QString &conninfo, const QString &table, qint64 rows)
{
    if (Status s = runStatements(conninfo,
                                 { QStringLiteral("DROP TABLE IF EXISTS %1").arg(quoted(table)) });
        !s.isOk())
        return s;
    Result<std::unique_ptr<Database>> db =
        OpenDatabase(conninfo, false, false, QStringLiteral("PostgreSQL"));
    if (!db.isOk())
        return db.status();
    if (Status s = db.value()->createTable(table, benchTableFields()); !s.isOk())
        return s;
    BenchTableGenerator generator;
    for (qint64 done = 0; done < rows;) {
        QList<QVariantList> batch;
        for (; done < rows && batch.size() < kBatchRows; ++done)
            batch << generator.next();
        if (Status s = db.value()->appendRecords(table, batch); !s.isOk())
            return s;
    }
    db.value()->Close();
    return runStatements(
        conninfo,
        { QStringLiteral("CREATE INDEX ON %1 (\"ID\")").arg(quoted(table)),
          // The engine's sort order: Nulls first, ties in key order.
          QStringLiteral("CREATE INDEX ON %1 (\"NAME\" NULLS FIRST, \"CITY\" NULLS "
                         "FIRST, plx_key)")
              .arg(quoted(table)),
          QStringLiteral("VACUUM ANALYZE %1").arg(quoted(table)) });
}

} // namespace plx::bench
