// services/recordsource/tests/sqlitebackend.cpp: writing contract tables into a SQLite file
// through the raw C API, so that the back end under test reads files it did not write.
#include "services/recordsource/tests/sqlitebackend.h"

#include <QDate>
#include <QDateTime>

#include <sqlite3.h>

namespace plx::testing {

namespace {

QString declaredType(const FieldInfo &f)
{
    switch (f.type) {
    case FieldType::Text: return QStringLiteral("CHAR(%1)").arg(f.size);
    case FieldType::Memo: return QStringLiteral("MEMO");
    case FieldType::Integer: return QStringLiteral("INTEGER");
    case FieldType::Numeric: return QStringLiteral("NUMERIC(%1,%2)").arg(f.size).arg(f.decimals);
    case FieldType::Double: return QStringLiteral("DOUBLE");
    case FieldType::Boolean: return QStringLiteral("BOOLEAN");
    case FieldType::Date: return QStringLiteral("DATE");
    case FieldType::DateTime: return QStringLiteral("DATETIME");
    case FieldType::Binary: return QStringLiteral("BLOB");
    }
    return QStringLiteral("TEXT");
}

void bind(sqlite3_stmt *st, int parameter, const QVariant &v, const FieldInfo &f)
{
    if (!v.isValid() || v.isNull()) {
        sqlite3_bind_null(st, parameter);
        return;
    }
    QByteArray text;
    switch (f.type) {
    case FieldType::Integer: sqlite3_bind_int64(st, parameter, v.toLongLong()); return;
    case FieldType::Numeric:
    case FieldType::Double: sqlite3_bind_double(st, parameter, v.toDouble()); return;
    case FieldType::Boolean: sqlite3_bind_int(st, parameter, v.toBool() ? -1 : 0); return;
    case FieldType::Date: text = v.toDate().toString(Qt::ISODate).toUtf8(); break;
    case FieldType::DateTime:
        text = v.toDateTime().toString(QStringLiteral("yyyy-MM-dd hh:mm:ss")).toUtf8();
        break;
    default: text = v.toString().toUtf8(); break;
    }
    sqlite3_bind_text(st, parameter, text.constData(), int(text.size()), SQLITE_TRANSIENT);
}

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
        columns << QStringLiteral("\"%1\" %2").arg(f.name, declaredType(f));
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
            bind(st, i + 1, row.value(i), table.fields.at(i));
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

    Result<std::unique_ptr<Database>> open(const QString &dir) const override
    {
        return OpenDatabase(fileIn(dir), false, false, QString());
    }

private:
    static QString fileIn(const QString &dir) { return dir + QStringLiteral("/contract.sqlite"); }
};

} // namespace

std::shared_ptr<BackEnd> makeSqliteBackEnd()
{
    return std::make_shared<SqliteBackEnd>();
}

} // namespace plx::testing
