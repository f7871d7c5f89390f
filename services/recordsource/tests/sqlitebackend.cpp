// services/recordsource/tests/sqlitebackend.cpp: writing contract tables into a SQLite file
// through the raw C API (in the back end's storage conventions: declared types, ISO dates,
// -1/0 booleans), so that the record source under test reads rows it did not write.
#include "services/recordsource/tests/sqlitebackend.h"

#include "services/recordsource/sqlite/internal/sqlitevalues.h"

#include <QDate>
#include <QDateTime>

#include <sqlite3.h>

namespace plx::testing {

namespace {

Status fail(sqlite3 *db, const QString &what)
{
    return Status(Status::Code::Engine, what, sqlite3_errcode(db),
                  QString::fromUtf8(sqlite3_errmsg(db)));
}

Status writeTable(sqlite3 *db, const TableDef &table)
{
    QStringList columns;
    QStringList marks;
    for (const FieldInfo &f : table.fields) {
        columns << QStringLiteral("\"%1\" %2").arg(f.name, sqlite::declaredTypeFor(f));
        marks << QStringLiteral("?");
    }
    const QByteArray create = QStringLiteral("CREATE TABLE \"%1\" (%2)")
                                  .arg(table.name, columns.join(QLatin1Char(',')))
                                  .toUtf8();
    if (sqlite3_exec(db, create.constData(), nullptr, nullptr, nullptr) != SQLITE_OK)
        return fail(db, QStringLiteral("create %1").arg(table.name));
    const QByteArray insert = QStringLiteral("INSERT INTO \"%1\" VALUES (%2)")
                                  .arg(table.name, marks.join(QLatin1Char(',')))
                                  .toUtf8();
    sqlite3_stmt *st = nullptr;
    if (sqlite3_prepare_v2(db, insert.constData(), -1, &st, nullptr) != SQLITE_OK)
        return fail(db, QStringLiteral("prepare insert"));
    for (const QVariantList &row : table.rows) {
        for (int i = 0; i < table.fields.size(); ++i)
            sqlite::bindValue(st, i + 1, row.value(i), table.fields.at(i));
        if (sqlite3_step(st) != SQLITE_DONE) {
            sqlite3_finalize(st);
            return fail(db, QStringLiteral("insert into %1").arg(table.name));
        }
        sqlite3_reset(st);
    }
    sqlite3_finalize(st);
    return Status::ok();
}

class SqliteBackEnd final : public BackEnd
{
public:
    QString name() const override { return QStringLiteral("SQLite"); }

    Status createTables(const QString &dir, const QList<TableDef> &tables) const override
    {
        sqlite3 *db = nullptr;
        if (sqlite3_open(fileIn(dir).toUtf8().constData(), &db) != SQLITE_OK) {
            sqlite3_close(db);
            return Status(Status::Code::IoError,
                          QStringLiteral("cannot create %1").arg(fileIn(dir)));
        }
        Status s = Status::ok();
        sqlite3_exec(db, "BEGIN", nullptr, nullptr, nullptr);
        for (const TableDef &table : tables) {
            s = writeTable(db, table);
            if (!s.isOk())
                break;
        }
        sqlite3_exec(db, s.isOk() ? "COMMIT" : "ROLLBACK", nullptr, nullptr, nullptr);
        sqlite3_close(db);
        return s;
    }

    Result<std::unique_ptr<Database>> open(const QString &dir, bool readOnly) const override
    {
        return OpenDatabase(fileIn(dir), false, readOnly, QString());
    }

    QString tableFile(const QString &dir, const QString &) const override { return fileIn(dir); }

private:
    static QString fileIn(const QString &dir) { return dir + QStringLiteral("/contract.sqlite"); }
};

} // namespace

std::shared_ptr<BackEnd> makeSqliteBackEnd()
{
    return std::make_shared<SqliteBackEnd>();
}

} // namespace plx::testing
