// services/recordsource/foxpro/tests/foxprotestsupport.h: what the FoxPro record-source
// tests share.
#pragma once

#include "services/recordsource/database.h"
#include "services/recordsource/tests/dbfbackend.h"

#include <QStringList>

#include <gtest/gtest.h>

#include <initializer_list>
#include <utility>

namespace plx::foxprotest {

using testing::TableDef;

// Text fields C(length), in this order.
inline QList<FieldInfo> textFields(std::initializer_list<std::pair<const char *, int>> fields)
{
    QList<FieldInfo> out;
    for (const auto &[name, length] : fields)
        out << FieldInfo{ QString::fromLatin1(name), FieldType::Text, length, 0 };
    return out;
}

// Writes `table` as <name>.DBF in `dir`, in `codePage`, by the FoxPro file layer.
inline void writeTable(const QString &dir, const TableDef &table, int codePage = 1252)
{
    const Status written = testing::makeDbfBackEnd(codePage)->createTables(dir, { table });
    ASSERT_TRUE(written.isOk()) << written.toString().toStdString();
}

// The directory opened as a FoxPro database; null (and a test failure) when it cannot be.
inline std::unique_ptr<Database> openDirectory(const QString &dir)
{
    auto db = OpenDatabase(dir, false, false, QStringLiteral("FoxPro 2.6"));
    EXPECT_TRUE(db.isOk()) << db.status().toString().toStdString();
    return db.isOk() ? std::move(db).value() : nullptr;
}

// One field of every record `sql` selects, in the record source's order.
inline QStringList fieldOfEachRecord(Database &db, const QString &sql, const QString &field)
{
    auto rs = db.OpenRecordset(sql);
    EXPECT_TRUE(rs.isOk()) << sql.toStdString() << ": " << rs.status().toString().toStdString();
    QStringList out;
    if (!rs.isOk())
        return out;
    for (RecordSource &r = *rs.value(); !r.isEOF(); (void)r.MoveNext())
        out << r.value(field).value().toString();
    return out;
}

} // namespace plx::foxprotest
