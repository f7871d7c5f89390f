// tests/support/rowfixtures.h: real tables for the row and stack tests.
//
// Every fixture table is table T with the same fields, written into a real file: a SQLite
// database, or a FoxPro 2.6 .DBF/.FPT in a given code page, made by the contract suite's
// back ends, records and all. The rows then read values their back end decoded itself and
// write through the back end's own checks.
//   NAME C(20), NOTES memo, AMOUNT N(12,2), BORN date, ACTIVE logical, FLAGT C(1),
//   FLAGN N(2,0), QTY N(5,0)
#pragma once

#include "mervane/mvrow.h"

#include "services/recordsource/database.h"
#include "testing/fakeenv.h"

#include <QDate>
#include <QString>
#include <QTemporaryDir>
#include <QVariant>
#include <QWidget>

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace plx::rowtest {

enum class Store { Sqlite, FoxPro1252, FoxPro850, FoxPro1251 };

std::string storeName(Store store);
int codePageOf(Store store); // 0 for SQLite

QList<FieldInfo> fixtureFields();

// A record of every field type ("SMITH", no note, 10.5, 1990-01-02, true, "T", 1, 3) and
// one of Nulls (blanks in a FoxPro table).
QVariantList smithRecord();
QVariantList nullRecord();

// A table T holding `rows` (values in fixtureFields() order; QVariant() is Null), in a new
// file under `dir`. Returns the opened database (nullptr and a test failure on error).
std::unique_ptr<Database> makeTable(Store store, const QString &dir,
                                    const QList<QVariantList> &rows);

// The path of the table file makeTable wrote for a FoxPro store.
QString tableFile(const QString &dir);

// A record source on "T" (nullptr and a test failure on error).
std::shared_ptr<RecordSource> openT(Database &db, const QString &sql = QStringLiteral("T"));

// The value of `field` in record `position` (0-based) read through a fresh database, so
// that nothing cached by the source under test can answer.
QVariant reread(Store store, const QString &dir, int position, const QString &field);

// The world of a row or stack test: services whose boxes the test scripts, a temporary
// folder, and table T in it. Base is ::testing::Test or a TestWithParam.
template<typename Base = ::testing::Test> class TableFixture : public Base
{
protected:
    // Writes table T holding `records` in `store` and opens `rs` on it.
    void makeT(Store store, const QList<QVariantList> &records)
    {
        m_store = store;
        db = makeTable(store, dir.path(), records);
        ASSERT_TRUE(db);
        rs = openT(*db);
        ASSERT_TRUE(rs);
    }

    // What record `record` holds in `field` in the table file itself.
    QVariant stored(int record, const char *field) const
    {
        return reread(m_store, dir.path(), record, QString::fromLatin1(field));
    }

    // A row of `host` bound to `field` of rs, captioned with the field's name and showing
    // the current record; a text row shows it in `format`.
    template<typename Row> Row *boundRow(const char *field, const char *format = "")
    {
        auto *r = new Row(&host);
        r->setServices(env.services());
        r->setSCaption(QString::fromLatin1(field));
        if constexpr (requires { r->setSFormat(QString()); })
            r->setSFormat(QString::fromLatin1(format));
        r->DataBinding()->setRecordSet(rs);
        r->DataBinding()->setSFieldName(QString::fromLatin1(field));
        EXPECT_TRUE(r->UpdateDBF().isOk()) << field;
        return r;
    }

    test::TestServices env;
    QTemporaryDir dir;
    std::unique_ptr<Database> db;
    std::shared_ptr<RecordSource> rs;
    QWidget host; // the rows' parent, gone before the table

private:
    Store m_store = Store::Sqlite;
};

} // namespace plx::rowtest
