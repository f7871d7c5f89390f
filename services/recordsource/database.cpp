// services/recordsource/database.cpp: OpenDatabase and the registry of engines it consults.
#include "services/recordsource/database.h"

#include <QMutex>

#include <utility>
#include <vector>

namespace plx {

Database::~Database() = default;

Status Database::createTable(const QString &name, const QList<FieldInfo> &)
{
    return Status(Status::Code::NotSupported,
                  QStringLiteral("this database cannot create the table %1").arg(name));
}

Status Database::appendRecords(const QString &name, const QList<QVariantList> &)
{
    return Status(Status::Code::NotSupported,
                  QStringLiteral("this database cannot append records to %1").arg(name));
}

Status Database::createIndex(const QString &table, const QString &, const QStringList &)
{
    return Status(Status::Code::NotSupported,
                  QStringLiteral("this database cannot index the table %1").arg(table));
}

Result<TableDescription> Database::describeTable(const QString &name) const
{
    return Status(Status::Code::NotSupported,
                  QStringLiteral("this database cannot describe the table %1").arg(name));
}

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

// The engine registered as `name` (without regard to case), or null; the caller holds the
// registry's mutex.
const Engine *findEngine(const EngineRegistry &r, const QString &name)
{
    for (const Engine &e : r.engines) {
        if (e.name.compare(name, Qt::CaseInsensitive) == 0)
            return &e;
    }
    return nullptr;
}

} // namespace

bool registerDatabaseEngine(const QString &engine, DatabaseOpener opener)
{
    if (opener == nullptr)
        return false;
    const QString name = engine.trimmed(); // as OpenDatabase reads it from a connect string
    EngineRegistry &r = registry();
    QMutexLocker lock(&r.mutex);
    if (findEngine(r, name) != nullptr)
        return false;
    r.engines.push_back({ name, opener });
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
        if (const Engine *e = findEngine(r, kind))
            opener = e->open;
    }
    if (opener == nullptr)
        return Status(Status::Code::NotSupported,
                      QStringLiteral("unknown connect string \"%1\"").arg(connect));
    return opener(name, DatabaseOptions{ exclusive, readOnly, connect });
}

} // namespace plx
