// services/recordsource/postgres/pgschema.cpp: the engine's schema.
#include "services/recordsource/postgres/pgschema_p.h"

namespace plx::postgres {

namespace {

// A fixed advisory-lock key that serialises the installation across connections.
constexpr qint64 kInstallLockKey = 0x504c5853434845; // "PLXSCHE"

const char *const kInstall[] = {
    "CREATE SCHEMA IF NOT EXISTS plx",
    "CREATE COLLATION IF NOT EXISTS plx.nocase "
    "(provider = icu, locale = 'und-u-ks-level2', deterministic = false)",
    "CREATE TABLE IF NOT EXISTS plx.idkeys (table_name text PRIMARY KEY, last_key text NOT NULL)",
    "CREATE OR REPLACE FUNCTION plx.changed() RETURNS trigger LANGUAGE plpgsql AS $$ "
    "BEGIN PERFORM pg_notify('plx_changes', TG_TABLE_NAME); RETURN NULL; END $$",
    // UCase$ and the other $ forms refuse Null, with the evaluator's words.
    "CREATE OR REPLACE FUNCTION plx.strict_text(text) RETURNS text LANGUAGE plpgsql IMMUTABLE "
    "AS $$ BEGIN IF $1 IS NULL THEN RAISE EXCEPTION 'Invalid use of Null'; END IF; "
    "RETURN $1; END $$",
};

} // namespace

Status installSchema(const Connection &connection)
{
    Result<PgResult> present =
        connection.exec(QStringLiteral("SELECT to_regcollation('plx.nocase') IS NOT NULL AND "
                                       "to_regproc('plx.strict_text') IS NOT NULL"));
    if (!present.isOk())
        return present.status();
    if (present->text(0, 0) == QLatin1String("t"))
        return Status::ok();
    Status s = connection.run(QStringLiteral("BEGIN"));
    if (s.isOk())
        s = connection.run(QStringLiteral("SELECT pg_advisory_xact_lock(%1)").arg(kInstallLockKey));
    for (const char *statement : kInstall) {
        if (s.isOk())
            s = connection.run(QString::fromLatin1(statement));
    }
    (void)connection.run(s.isOk() ? QStringLiteral("COMMIT") : QStringLiteral("ROLLBACK"));
    if (!s.isOk())
        return Status(s.code(),
                      QStringLiteral("cannot install the engine's schema plx: %1").arg(s.message()),
                      s.engineCode(), s.engineMessage());
    return Status::ok();
}

QString changeTriggerFor(const QString &table)
{
    return QStringLiteral("CREATE TRIGGER plx_changes AFTER INSERT OR UPDATE OR DELETE ON %1 "
                          "FOR EACH STATEMENT EXECUTE FUNCTION plx.changed()")
        .arg(quoteName(table));
}

} // namespace plx::postgres
