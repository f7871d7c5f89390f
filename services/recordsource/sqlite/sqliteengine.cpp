// services/recordsource/sqlite/sqliteengine.cpp: makes SQLite the engine of the empty
// connect string when this library is linked in; ";Create=Yes" after it makes a missing
// database file instead of reporting it NotFound.
//
// The symbol below is what the plx::sqlite target asks the linker to keep (see its
// CMakeLists.txt): nothing else refers to this file, and a linker only takes from a static
// library the objects something refers to.
#include "services/recordsource/database.h"
#include "services/recordsource/sqlite/sqlitedatabase_p.h"

namespace {

// ";Create=Yes" (also True or 1, any case): make the database when the file is missing.
bool createOption(const QString &connect)
{
    const QStringList parts = connect.split(QLatin1Char(';'));
    for (qsizetype i = 1; i < parts.size(); ++i) {
        const QString key = parts.at(i).section(QLatin1Char('='), 0, 0).trimmed();
        const QString value = parts.at(i).section(QLatin1Char('='), 1).trimmed();
        if (key.compare(QLatin1String("Create"), Qt::CaseInsensitive) == 0)
            return value.compare(QLatin1String("Yes"), Qt::CaseInsensitive) == 0
                || value.compare(QLatin1String("True"), Qt::CaseInsensitive) == 0
                || value == QLatin1String("1");
    }
    return false;
}

plx::Result<std::unique_ptr<plx::Database>> openSqlite(const QString &name,
                                                       const plx::DatabaseOptions &options)
{
    plx::sqlite::ConnectOptions connect;
    connect.exclusive = options.exclusive;
    connect.readOnly = options.readOnly;
    connect.create = createOption(options.connect);
    return plx::sqlite::openSqliteDatabase(name, connect);
}

} // namespace

extern "C" const bool plx_sqlite_engine = plx::registerDatabaseEngine(QString(), &openSqlite);
