// mervane/tests/rowfixtures.cpp
#include "mervane/tests/rowfixtures.h"

#include "services/recordsource/dbf/internal/dbftable.h"
#include "services/recordsource/sqlite/internal/sqlitevalues.h"

#include <QDir>

#include <gtest/gtest.h>
#include <sqlite3.h>

namespace plx::rowtest {

std::string storeName(Store store)
{
    switch (store) {
    case Store::Sqlite: return "Sqlite";
    case Store::FoxPro1252: return "FoxPro1252";
    case Store::FoxPro850: return "FoxPro850";
    case Store::FoxPro1251: return "FoxPro1251";
    }
    return "?";
}

int codePageOf(Store store)
{
    switch (store) {
    case Store::Sqlite: return 0;
    case Store::FoxPro1252: return 1252;
    case Store::FoxPro850: return 850;
    case Store::FoxPro1251: return 1251;
    }
    return 0;
}

QList<FieldInfo> fixtureFields()
{
    return {
        { QStringLiteral("NAME"), FieldType::Text, 20, 0 },
        { QStringLiteral("NOTES"), FieldType::Memo, 0, 0 },
        { QStringLiteral("AMOUNT"), FieldType::Numeric, 12, 2 },
        { QStringLiteral("BORN"), FieldType::Date, 8, 0 },
        { QStringLiteral("ACTIVE"), FieldType::Boolean, 1, 0 },
        { QStringLiteral("FLAGT"), FieldType::Text, 1, 0 },
        { QStringLiteral("FLAGN"), FieldType::Numeric, 2, 0 },
        { QStringLiteral("QTY"), FieldType::Numeric, 5, 0 },
    };
}

QString tableFile(const QString &dir)
{
    return dir + QStringLiteral("/T.DBF");
}

namespace {

QString sqliteFile(const QString &dir)
{
    return dir + QStringLiteral("/t.db");
}

bool createSqlite(const QString &dir)
{
    sqlite3 *db = nullptr;
    if (sqlite3_open(sqliteFile(dir).toUtf8().constData(), &db) != SQLITE_OK) {
        sqlite3_close(db);
        return false;
    }
    QStringList columns;
    for (const FieldInfo &f : fixtureFields())
        columns << QStringLiteral("\"%1\" %2").arg(f.name, sqlite::declaredTypeFor(f));
    const QByteArray sql =
        QStringLiteral("CREATE TABLE T (%1)").arg(columns.join(QLatin1Char(','))).toUtf8();
    const bool ok = sqlite3_exec(db, sql.constData(), nullptr, nullptr, nullptr) == SQLITE_OK;
    sqlite3_close(db);
    return ok;
}

bool createFoxPro(const QString &dir, int codePage)
{
    QList<DbfField> fields;
    for (const FieldInfo &f : fixtureFields()) {
        DbfField d;
        d.name = f.name;
        switch (f.type) {
        case FieldType::Text:
            d.type = 'C';
            d.length = f.size;
            break;
        case FieldType::Memo:
            d.type = 'M';
            d.length = 10;
            break;
        case FieldType::Numeric:
            d.type = 'N';
            d.length = f.size;
            d.decimals = f.decimals;
            break;
        case FieldType::Date:
            d.type = 'D';
            d.length = 8;
            break;
        case FieldType::Boolean:
            d.type = 'L';
            d.length = 1;
            break;
        default: return false;
        }
        fields << d;
    }
    auto table = DbfTable::create(tableFile(dir), fields, 0, codePage);
    EXPECT_TRUE(table.isOk()) << table.status().toString().toStdString();
    return table.isOk();
}

std::unique_ptr<Database> openStore(Store store, const QString &dir)
{
    auto db = store == Store::Sqlite
        ? OpenDatabase(sqliteFile(dir), false, false, QString())
        : OpenDatabase(dir, false, false, QStringLiteral("FoxPro 2.6"));
    EXPECT_TRUE(db.isOk()) << db.status().toString().toStdString();
    return db.isOk() ? std::move(db).value() : nullptr;
}

} // namespace

std::unique_ptr<Database> makeTable(Store store, const QString &dir,
                                    const QList<QVariantList> &rows)
{
    QDir().mkpath(dir);
    const bool created =
        store == Store::Sqlite ? createSqlite(dir) : createFoxPro(dir, codePageOf(store));
    EXPECT_TRUE(created);
    if (!created)
        return nullptr;
    std::unique_ptr<Database> db = openStore(store, dir);
    if (!db)
        return nullptr;
    auto rs = openT(*db);
    if (!rs)
        return nullptr;
    for (const QVariantList &row : rows) {
        EXPECT_TRUE(rs->AddNew().isOk());
        for (int i = 0; i < row.size(); ++i) {
            const Status s = rs->setValue(i, row.at(i));
            EXPECT_TRUE(s.isOk()) << s.toString().toStdString();
        }
        const Status s = rs->Update();
        EXPECT_TRUE(s.isOk()) << s.toString().toStdString();
    }
    rs->Close();
    return db;
}

std::shared_ptr<RecordSource> openT(Database &db, const QString &sql)
{
    auto rs = db.OpenRecordset(sql);
    EXPECT_TRUE(rs.isOk()) << rs.status().toString().toStdString();
    return rs.isOk() ? std::shared_ptr<RecordSource>(std::move(rs).value()) : nullptr;
}

QVariant reread(Store store, const QString &dir, int position, const QString &field)
{
    std::unique_ptr<Database> db = openStore(store, dir);
    if (!db)
        return QStringLiteral("<no database>");
    auto rs = openT(*db);
    if (!rs || !rs->setAbsolutePosition(position).isOk())
        return QStringLiteral("<no record>");
    auto v = rs->value(field);
    return v.isOk() ? v.value() : QStringLiteral("<no field>");
}

} // namespace plx::rowtest
