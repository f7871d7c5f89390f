// tests/support/rowfixtures.cpp: the row tables, written by the contract suite's back ends.
#include "tests/support/rowfixtures.h"

#include "services/recordsource/tests/dbfbackend.h"
#include "services/recordsource/tests/sqlitebackend.h"

#include <QDir>

#include <gtest/gtest.h>

namespace plx::rowtest {

namespace {

// Each Store's name in test names and the code page its table is written in.
struct StoreInfo
{
    const char *name;
    int codePage;
};
constexpr StoreInfo Stores[] = {
    { "Sqlite", 0 }, { "FoxPro1252", 1252 }, { "FoxPro850", 850 }, { "FoxPro1251", 1251 }
};

} // namespace

std::string storeName(Store store)
{
    return Stores[int(store)].name;
}

int codePageOf(Store store)
{
    return Stores[int(store)].codePage;
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

QVariantList smithRecord()
{
    return { QStringLiteral("SMITH"), QVariant(), 10.5, QDate(1990, 1, 2), true,
             QStringLiteral("T"),     1,          3 };
}

QVariantList nullRecord()
{
    return QVariantList(fixtureFields().size());
}

QString tableFile(const QString &dir)
{
    return dir + QStringLiteral("/T.DBF");
}

namespace {

std::shared_ptr<testing::BackEnd> backEndOf(Store store)
{
    return store == Store::Sqlite ? testing::makeSqliteBackEnd()
                                  : testing::makeDbfBackEnd(codePageOf(store));
}

std::unique_ptr<Database> openStore(Store store, const QString &dir)
{
    auto db = backEndOf(store)->open(dir);
    EXPECT_TRUE(db.isOk()) << db.status().toString().toStdString();
    return db.isOk() ? std::move(db).value() : nullptr;
}

} // namespace

std::unique_ptr<Database> makeTable(Store store, const QString &dir,
                                    const QList<QVariantList> &rows)
{
    QDir().mkpath(dir);
    const Status created =
        backEndOf(store)->createTables(dir, { { QStringLiteral("T"), fixtureFields(), rows } });
    EXPECT_TRUE(created.isOk()) << created.toString().toStdString();
    return created.isOk() ? openStore(store, dir) : nullptr;
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
