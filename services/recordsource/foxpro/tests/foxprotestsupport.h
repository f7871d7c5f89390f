// services/recordsource/foxpro/tests/foxprotestsupport.h: what the FoxPro record-source
// tests share.
#pragma once

#include "services/recordsource/database.h"

#include <QStringList>

#include <gtest/gtest.h>

namespace plx::foxprotest {

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
