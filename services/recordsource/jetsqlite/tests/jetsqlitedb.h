// services/recordsource/jetsqlite/tests/jetsqlitedb.h: an in-memory SQLite database with the
// Jet functions installed, for the tests that run translated statements on real SQLite.
#pragma once

#include "services/recordsource/jetsqlite/internal/sqlitetranslate.h"

#include <QStringList>
#include <QVariant>

#include <sqlite3.h>

#include <gtest/gtest.h>

namespace plx::jet::testing {

class JetSqliteDb
{
public:
    JetSqliteDb()
    {
        EXPECT_EQ(sqlite3_open(":memory:", &m_db), SQLITE_OK);
        EXPECT_TRUE(registerJetFunctions(m_db).isOk());
    }
    ~JetSqliteDb() { sqlite3_close(m_db); }
    JetSqliteDb(const JetSqliteDb &) = delete;
    JetSqliteDb &operator=(const JetSqliteDb &) = delete;

    sqlite3 *handle() const { return m_db; }

    // Runs statements that return no rows; a test failure names SQLite's error.
    void exec(const QString &sql) const
    {
        char *err = nullptr;
        const int rc = sqlite3_exec(m_db, sql.toUtf8().constData(), nullptr, nullptr, &err);
        EXPECT_EQ(rc, SQLITE_OK) << (err ? err : "") << " in " << sql.toStdString();
        sqlite3_free(err);
    }

    // The columns of the database's tables, as the translator asks for them.
    TableLookup lookup() const
    {
        return [db = m_db](const QString &name) -> std::optional<TableColumns> {
            TableColumns cols;
            cols.table = name;
            sqlite3_stmt *st = nullptr;
            const QByteArray q = "PRAGMA table_info(\"" + name.toUtf8() + "\")";
            sqlite3_prepare_v2(db, q.constData(), -1, &st, nullptr);
            while (sqlite3_step(st) == SQLITE_ROW)
                cols.columns << QString::fromUtf8(
                    reinterpret_cast<const char *>(sqlite3_column_text(st, 1)));
            sqlite3_finalize(st);
            if (cols.columns.isEmpty())
                return std::nullopt;
            return cols;
        };
    }

    // Every row `sql` gives, its columns' texts joined by '|' (Null as ""); only the text of
    // column `only` when it is given.
    QStringList rows(const QString &sql, int only = -1) const
    {
        QStringList out;
        sqlite3_stmt *st = nullptr;
        const QByteArray utf8 = sql.toUtf8();
        EXPECT_EQ(sqlite3_prepare_v2(m_db, utf8.constData(), -1, &st, nullptr), SQLITE_OK)
            << sqlite3_errmsg(m_db) << " in " << utf8.constData();
        int rc = SQLITE_OK;
        while ((rc = sqlite3_step(st)) == SQLITE_ROW) {
            QStringList cols;
            for (int c = 0; c < sqlite3_column_count(st); ++c) {
                if (only < 0 || c == only)
                    cols << QString::fromUtf8(
                        reinterpret_cast<const char *>(sqlite3_column_text(st, c)));
            }
            out << cols.join(QLatin1Char('|'));
        }
        EXPECT_EQ(rc, SQLITE_DONE) << sqlite3_errmsg(m_db) << " in " << utf8.constData();
        sqlite3_finalize(st);
        return out;
    }

    // The first column of the first row as SQLite typed it, or the error SQLite reports.
    Result<QVariant> firstValue(const QString &sql) const
    {
        sqlite3_stmt *st = nullptr;
        if (sqlite3_prepare_v2(m_db, sql.toUtf8().constData(), -1, &st, nullptr) != SQLITE_OK)
            return Status(Status::Code::Engine, QString::fromUtf8(sqlite3_errmsg(m_db)));
        QVariant v;
        const int rc = sqlite3_step(st);
        if (rc == SQLITE_ROW) {
            switch (sqlite3_column_type(st, 0)) {
            case SQLITE_INTEGER: v = QVariant(qlonglong(sqlite3_column_int64(st, 0))); break;
            case SQLITE_FLOAT: v = QVariant(sqlite3_column_double(st, 0)); break;
            case SQLITE_TEXT:
                v = QVariant(
                    QString::fromUtf8(reinterpret_cast<const char *>(sqlite3_column_text(st, 0))));
                break;
            default: break;
            }
        }
        const QString err = QString::fromUtf8(sqlite3_errmsg(m_db));
        sqlite3_finalize(st);
        if (rc != SQLITE_ROW)
            return Status(Status::Code::Engine, err);
        return v;
    }

private:
    sqlite3 *m_db = nullptr;
};

} // namespace plx::jet::testing
