// services/recordsource/database.cpp: OpenDatabase, choosing the engine by connect string.
#include "services/recordsource/database.h"

#include "services/recordsource/foxpro/foxprodatabase.h"
#include "services/recordsource/sqlite/sqlitedatabase.h"

namespace plx {

Database::~Database() = default;

namespace {

// "FoxPro 2.6;CodePage=850": the code page for tables whose header has no code-page mark.
int codePageOption(const QString &connect)
{
    const QStringList parts = connect.split(QLatin1Char(';'));
    for (qsizetype i = 1; i < parts.size(); ++i) {
        const QString key = parts.at(i).section(QLatin1Char('='), 0, 0).trimmed();
        if (key.compare(QLatin1String("CodePage"), Qt::CaseInsensitive) == 0)
            return parts.at(i).section(QLatin1Char('='), 1).trimmed().toInt();
    }
    return 0;
}

} // namespace

Result<std::unique_ptr<Database>> OpenDatabase(const QString &name, bool exclusive, bool readOnly,
                                               const QString &connect)
{
    // DAO connect strings may carry options after a ';' ("FoxPro 2.6;"): the engine is the
    // first part.
    const QString kind = connect.section(QLatin1Char(';'), 0, 0).trimmed();
    if (kind.isEmpty())
        return sqlite::openSqliteDatabase(name, exclusive, readOnly);
    if (kind.compare(QLatin1String("FoxPro 2.6"), Qt::CaseInsensitive) == 0)
        return foxpro::openDatabase(name, readOnly, codePageOption(connect));
    return Status(Status::Code::NotSupported,
                  QStringLiteral("unknown connect string \"%1\"").arg(connect));
}

} // namespace plx
