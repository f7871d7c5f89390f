// services/recordsource/sqlite/sqliterecordsource_changes.cpp: whether others wrote to the
// file since the records were read.
//
// PRAGMA data_version changes when another connection commits to the file, and never for
// this connection's own writes; it costs no read of the table, so a navigator may ask every
// second.
#include "services/recordsource/sqlite/internal/sqliterecordsource.h"

#include <sqlite3.h>

namespace plx::sqlite {

Result<qint64> SqliteRecordSource::dataVersion() const
{
    Result<Statement> stmt = m_conn->prepare(QStringLiteral("PRAGMA data_version"));
    if (!stmt.isOk())
        return stmt.status();
    const int rc = sqlite3_step(stmt->get());
    if (rc != SQLITE_ROW)
        return m_conn->engineError(QStringLiteral("cannot read the data version"), rc);
    return qint64(sqlite3_column_int64(stmt->get(), 0));
}

bool SqliteRecordSource::changedElsewhere()
{
    if (m_closed)
        return false;
    const Result<qint64> now = dataVersion();
    if (!now.isOk() || now.value() == m_dataVersion)
        return false;
    m_dataVersion = now.value();
    return true;
}

} // namespace plx::sqlite
