// services/recordsource/database.cpp: OpenDatabase, choosing the engine by connect string.
#include "services/recordsource/database.h"

#include "services/recordsource/sqlite/sqlitedatabase.h"

namespace plx {

Database::~Database() = default;

Result<std::unique_ptr<Database>> OpenDatabase(const QString &name, bool exclusive, bool readOnly,
                                               const QString &connect)
{
    const QString kind = connect.trimmed();
    if (kind.isEmpty())
        return sqlite::openSqliteDatabase(name, exclusive, readOnly);
    if (kind.compare(QLatin1String("FoxPro 2.6"), Qt::CaseInsensitive) == 0)
        return Status(
            Status::Code::NotSupported,
            QStringLiteral("FoxPro 2.6 table directories are not available in this build"));
    return Status(Status::Code::NotSupported,
                  QStringLiteral("unknown connect string \"%1\"").arg(connect));
}

} // namespace plx
