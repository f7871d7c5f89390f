// services/recordsource/tests/postgresbackend.cpp: contract tables in a database per test
// folder on the throwaway server.
#include "services/recordsource/tests/postgresbackend.h"

#include "services/recordsource/postgres/tests/pgserver.h"

#include <QCryptographicHash>
#include <QDir>

#include <iostream>

namespace plx::testing {

namespace {

Status unavailable()
{
    return Status(Status::Code::NotSupported, PgServer::instance().unavailable());
}

class PostgresBackEnd final : public BackEnd
{
public:
    QString name() const override { return QStringLiteral("PostgreSQL"); }

    Status createTables(const QString &dir, const QList<TableDef> &tables) const override
    {
        const PgServer &server = PgServer::instance();
        if (!server.unavailable().isEmpty())
            return unavailable();
        const QString failure = server.createDatabase(postgresDatabaseFor(dir));
        if (!failure.isEmpty())
            return Status(Status::Code::Engine, failure);
        Result<std::unique_ptr<Database>> db = open(dir, false);
        if (!db.isOk())
            return db.status();
        for (const TableDef &t : tables) {
            Status s = db.value()->createTable(t.name, t.fields);
            if (s.isOk())
                s = db.value()->appendRecords(t.name, t.rows);
            if (!s.isOk())
                return s;
        }
        return Status::ok();
    }

    Result<std::unique_ptr<Database>> open(const QString &dir, bool readOnly) const override
    {
        if (!PgServer::instance().unavailable().isEmpty())
            return unavailable();
        return OpenDatabase(PgServer::instance().conninfo(postgresDatabaseFor(dir)), false,
                            readOnly, QStringLiteral("PostgreSQL"));
    }

    QString tableFile(const QString &, const QString &) const override { return {}; }
};

} // namespace

QString postgresDatabaseFor(const QString &dir)
{
    const QByteArray path = QDir::cleanPath(dir).toUtf8();
    return QStringLiteral("plx_")
        + QString::fromLatin1(
               QCryptographicHash::hash(path, QCryptographicHash::Sha1).toHex().left(24));
}

std::shared_ptr<BackEnd> makePostgresBackEnd()
{
    return std::make_shared<PostgresBackEnd>();
}

bool postgresJoinsTheSuite()
{
    if (qEnvironmentVariable("CI") == QLatin1String("true")
        || !qEnvironmentVariableIsEmpty("PLX_TEST_PGHOST"))
        return true;
    const bool present = !QDir(QStringLiteral("/usr/lib/postgresql"))
                              .entryList({ QStringLiteral("[0-9]*") }, QDir::Dirs)
                              .isEmpty();
    if (!present)
        std::cerr << "PostgreSQL back end skipped: no server binaries under /usr/lib/postgresql "
                     "(install the postgresql package: tools/setup.sh)\n";
    return present;
}

} // namespace plx::testing
