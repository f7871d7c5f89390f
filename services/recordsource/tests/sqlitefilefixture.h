// services/recordsource/tests/sqlitefilefixture.h: a SQLite file in a temporary folder that
// the SQLite back end's own tests open, and change or read beside it as another program would.
#pragma once

#include "services/recordsource/database.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>
#include <sqlite3.h>

namespace plx::testing {

class SqliteFileFixture : public ::testing::Test
{
protected:
    void SetUp() override { ASSERT_TRUE(m_dir.isValid()); }

    // Runs `sql` on the file through a connection of its own, as another program would.
    void exec(const QString &sql) const
    {
        sqlite3 *db = nullptr;
        ASSERT_EQ(sqlite3_open(m_file.toUtf8().constData(), &db), SQLITE_OK);
        char *error = nullptr;
        EXPECT_EQ(sqlite3_exec(db, sql.toUtf8().constData(), nullptr, nullptr, &error), SQLITE_OK)
            << (error ? error : "");
        sqlite3_free(error);
        sqlite3_close(db);
    }

    // The first value `sql` reads from the file as SQLite stores it, through a connection of
    // its own ("" when there is none).
    QString rawText(const char *sql) const
    {
        sqlite3 *db = nullptr;
        sqlite3_open_v2(m_file.toUtf8().constData(), &db, SQLITE_OPEN_READONLY, nullptr);
        sqlite3_stmt *st = nullptr;
        sqlite3_prepare_v2(db, sql, -1, &st, nullptr);
        QString text;
        if (sqlite3_step(st) == SQLITE_ROW)
            text = QString::fromUtf8(reinterpret_cast<const char *>(sqlite3_column_text(st, 0)));
        sqlite3_finalize(st);
        sqlite3_close(db);
        return text;
    }

    std::unique_ptr<Database> openDb() const
    {
        auto db = OpenDatabase(m_file, false, false, QString());
        EXPECT_TRUE(db.isOk()) << db.status().toString().toStdString();
        return db.isOk() ? std::move(db).value() : nullptr;
    }

    QTemporaryDir m_dir;
    QString m_file = m_dir.filePath(QStringLiteral("db.sqlite"));
};

} // namespace plx::testing
