// mervane/tests/rowfixtures.h: real tables for the row and stack tests.
//
// Every fixture table is table T with the same fields, written into a real file: a SQLite
// database, or a FoxPro 2.6 .DBF/.FPT in a given code page. The rows then read values
// their back end decoded itself and write through the back end's own checks.
//   NAME C(20), NOTES memo, AMOUNT N(12,2), BORN date, ACTIVE logical, FLAGT C(1),
//   FLAGN N(2,0), QTY N(5,0)
#pragma once

#include "services/recordsource/database.h"

#include <QString>
#include <QVariant>

#include <memory>
#include <string>

namespace plx::rowtest {

enum class Store { Sqlite, FoxPro1252, FoxPro850, FoxPro1251 };

std::string storeName(Store store);
int codePageOf(Store store); // 0 for SQLite

QList<FieldInfo> fixtureFields();

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

} // namespace plx::rowtest
