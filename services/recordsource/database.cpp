// services/recordsource/database.cpp: OpenDatabase and the registry of engines it consults.
#include "services/recordsource/database.h"

#include <QMutex>

#include <utility>
#include <vector>

namespace plx {

Database::~Database() = default;

namespace {

struct Engine
{
    QString name;
    DatabaseOpener open;
};

// Filled from static initializers of the engines' libraries, so it is built on first use
// rather than relying on the order in which translation units initialize.
struct EngineRegistry
{
    QMutex mutex;
    std::vector<Engine> engines;
};

EngineRegistry &registry()
{
    static EngineRegistry instance;
    return instance;
}

} // namespace

bool registerDatabaseEngine(const QString &engine, DatabaseOpener opener)
{
    if (opener == nullptr)
        return false;
    EngineRegistry &r = registry();
    QMutexLocker lock(&r.mutex);
    for (const Engine &e : r.engines) {
        if (e.name.compare(engine, Qt::CaseInsensitive) == 0)
            return false;
    }
    r.engines.push_back({ engine.trimmed(), opener });
    return true;
}

QStringList databaseEngines()
{
    EngineRegistry &r = registry();
    QMutexLocker lock(&r.mutex);
    QStringList names;
    for (const Engine &e : r.engines)
        names.append(e.name);
    return names;
}

Result<std::unique_ptr<Database>> OpenDatabase(const QString &name, bool exclusive, bool readOnly,
                                               const QString &connect)
{
    // DAO connect strings may carry options after a ';' ("FoxPro 2.6;CodePage=850"): the
    // engine is the first part.
    const QString kind = connect.section(QLatin1Char(';'), 0, 0).trimmed();
    DatabaseOpener opener = nullptr;
    {
        EngineRegistry &r = registry();
        QMutexLocker lock(&r.mutex);
        for (const Engine &e : r.engines) {
            if (e.name.compare(kind, Qt::CaseInsensitive) == 0) {
                opener = e.open;
                break;
            }
        }
    }
    if (opener == nullptr)
        return Status(Status::Code::NotSupported,
                      QStringLiteral("unknown connect string \"%1\"").arg(connect));
    return opener(name, DatabaseOptions{ exclusive, readOnly, connect });
}

} // namespace plx
