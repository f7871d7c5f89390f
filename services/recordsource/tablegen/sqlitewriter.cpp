// services/recordsource/tablegen/sqlitewriter.cpp: the benchmark table written to SQLite.
#include "services/recordsource/tablegen/sqlitewriter.h"

#include "services/recordsource/jetsqlite/internal/sqlitetranslate.h"
#include "services/recordsource/sqlite/internal/sqlitevalues.h"
#include "services/recordsource/tablegen/benchtable.h"

#include <sqlite3.h>

namespace plx::bench {

namespace {

class Db
{
public:
    ~Db() { sqlite3_close(m_db); }
    Status open(const QString &path)
    {
        if (sqlite3_open(path.toUtf8().constData(), &m_db) != SQLITE_OK)
            return error(QStringLiteral("cannot open %1").arg(path));
        return Status::ok();
    }
    Status exec(const QString &sql)
    {
        if (sqlite3_exec(m_db, sql.toUtf8().constData(), nullptr, nullptr, nullptr) != SQLITE_OK)
            return error(sql);
        return Status::ok();
    }
    Status error(const QString &what) const
    {
        return Status(Status::Code::Engine, what, sqlite3_errcode(m_db),
                      QString::fromUtf8(sqlite3_errmsg(m_db)));
    }
    sqlite3 *handle() const { return m_db; }

private:
    sqlite3 *m_db = nullptr;
};

Status insertRows(Db &db, const QString &table, qint64 rows)
{
    const QList<FieldInfo> fields = benchTableFields();
    QStringList marks(fields.size(), QStringLiteral("?"));
    const QByteArray sql = QStringLiteral("INSERT INTO \"%1\" VALUES (%2)")
                               .arg(table, marks.join(QLatin1Char(',')))
                               .toUtf8();
    sqlite3_stmt *st = nullptr;
    if (sqlite3_prepare_v2(db.handle(), sql.constData(), -1, &st, nullptr) != SQLITE_OK)
        return db.error(QStringLiteral("cannot prepare the insert"));
    BenchTableGenerator generator;
    Status s = Status::ok();
    for (qint64 r = 0; r < rows && s.isOk(); ++r) {
        const QVariantList row = generator.next();
        for (int i = 0; i < fields.size(); ++i)
            sqlite::bindValue(st, i + 1, row.at(i), fields.at(i));
        if (sqlite3_step(st) != SQLITE_DONE)
            s = db.error(QStringLiteral("cannot insert record %1").arg(r));
        sqlite3_reset(st);
    }
    sqlite3_finalize(st);
    return s;
}

} // namespace

Status writeSqliteBenchTable(const QString &path, const QString &table, qint64 rows)
{
    Db db;
    Status s = db.open(path);
    // The indexes are kept in the dialect's own text order (JETNOCASE), the one the
    // translated criteria and ORDER BY compare in: an index in another collation (SQLite's
    // NOCASE) would serve none of them.
    if (s.isOk())
        s = jet::registerJetFunctions(db.handle());
    QStringList columns;
    for (const FieldInfo &f : benchTableFields())
        columns << QStringLiteral("\"%1\" %2").arg(f.name, sqlite::declaredTypeFor(f));
    // The table is written once and thrown away on failure, so no journal is needed.
    const QStringList steps{
        QStringLiteral("PRAGMA journal_mode=OFF"),
        QStringLiteral("PRAGMA synchronous=OFF"),
        QStringLiteral("DROP TABLE IF EXISTS \"%1\"").arg(table),
        QStringLiteral("CREATE TABLE \"%1\" (%2)").arg(table, columns.join(QLatin1Char(','))),
        QStringLiteral("BEGIN"),
    };
    for (const QString &step : steps) {
        if (s.isOk())
            s = db.exec(step);
    }
    if (s.isOk())
        s = insertRows(db, table, rows);
    if (s.isOk())
        s = db.exec(QStringLiteral("COMMIT"));
    if (s.isOk())
        s = db.exec(
            QStringLiteral("CREATE INDEX \"%1_ID\" ON \"%1\" (ID COLLATE JETNOCASE)").arg(table));
    if (s.isOk())
        s = db.exec(QStringLiteral("CREATE INDEX \"%1_NAME_CITY\" ON \"%1\" "
                                   "(NAME COLLATE JETNOCASE, CITY COLLATE JETNOCASE)")
                        .arg(table));
    if (s.isOk())
        s = db.exec(QStringLiteral("PRAGMA journal_mode=WAL"));
    return s;
}

} // namespace plx::bench
