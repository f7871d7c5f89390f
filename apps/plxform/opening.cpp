// apps/plxform/opening.cpp
#include "apps/plxform/opening.h"

#include "apps/plxform/sampledata.h"
#include "services/ini.h"
#include "services/paths.h"
#include "services/prompter.h"
#include "services/recordsource/database.h"

#include <QFileInfo>

#include <cstdio>

namespace plx::form {

namespace {

const QString kDeclined = QStringLiteral("No table was chosen.");

Status notFound(const QString &what, const QString &path)
{
    return Status(Status::Code::NotFound, QStringLiteral("%1 %2 was not found.").arg(what, path));
}

// `form` with the table of `tables` it shows: `table`, else the only one, else the one the
// user picks. `where` names the database in messages.
Result<FormDescription> withTable(FormDescription form, const QStringList &tables,
                                  const QString &table, const QString &where,
                                  const TableChooserFn &chooseTable)
{
    if (!table.isEmpty()) {
        const auto named = std::find_if(tables.begin(), tables.end(), [&](const QString &t) {
            return t.compare(table, Qt::CaseInsensitive) == 0;
        });
        if (named == tables.end())
            return Status(Status::Code::NotFound,
                          QStringLiteral("%1 has no table %2.").arg(where, table));
        form.table = *named;
        return form;
    }
    if (tables.isEmpty())
        return Status(Status::Code::NotFound, QStringLiteral("%1 holds no table.").arg(where));
    if (tables.size() == 1) {
        form.table = tables.first();
        return form;
    }
    const std::optional<QString> chosen = chooseTable ? chooseTable(where, tables) : std::nullopt;
    if (!chosen)
        return Status(Status::Code::InvalidArgument, kDeclined);
    form.table = *chosen;
    return form;
}

// A SQLite database file and one of its tables.
Result<FormDescription> describeDatabase(const QString &path, const QString &table,
                                         const TableChooserFn &chooseTable)
{
    if (!QFileInfo(path).isFile())
        return notFound(QStringLiteral("The SQLite database"), path);
    Result<std::unique_ptr<Database>> db = OpenDatabase(path, false, true, QString());
    if (!db.isOk())
        return Status(
            db.status().code(),
            QStringLiteral("%1 is not a SQLite database: %2").arg(path, db.status().message()));
    FormDescription form;
    form.database = QFileInfo(path).absoluteFilePath();
    return withTable(form, db.value()->tableNames(), table, form.database, chooseTable);
}

// A PostgreSQL database and one of its tables.
Result<FormDescription> describeServer(const QString &conninfo, const QString &table,
                                       const TableChooserFn &chooseTable)
{
    FormDescription form;
    form.server = conninfo;
    Result<std::unique_ptr<Database>> db =
        OpenDatabase(conninfo, false, true, QStringLiteral("PostgreSQL"));
    if (!db.isOk())
        return Status(db.status().code(),
                      QStringLiteral("%1 cannot be reached: %2")
                          .arg(form.databaseLabel(), db.status().message()));
    return withTable(form, db.value()->tableNames(), table, form.databaseLabel(), chooseTable);
}

} // namespace

Result<FormDescription> describePath(const QString &path, const TableChooserFn &chooseTable,
                                     QStringList *warnings)
{
    if (path.endsWith(QLatin1String(".ini"), Qt::CaseInsensitive)) {
        if (!QFileInfo(path).isFile())
            return notFound(QStringLiteral("The form description"), path);
        return loadFormDescription(path, warnings);
    }
    if (path.endsWith(QLatin1String(".dbf"), Qt::CaseInsensitive)) {
        if (!QFileInfo(path).isFile())
            return notFound(QStringLiteral("The table file"), path);
        FormDescription form;
        form.file = QFileInfo(path).absoluteFilePath();
        return form;
    }
    return describeDatabase(path, QString(), chooseTable);
}

Result<FormDescription> describeRequest(const OpenRequest &request,
                                        const TableChooserFn &chooseTable, QStringList *warnings)
{
    Result<FormDescription> described = Status(Status::Code::Internal, QString());
    if (!request.postgres.isEmpty()) {
        described = describeServer(request.postgres, request.table, chooseTable);
    } else if (!request.sqlite.isEmpty()) {
        described = describeDatabase(request.sqlite, request.table, chooseTable);
    } else if (!request.target.isEmpty()) {
        described = describePath(request.target, chooseTable, warnings);
    } else {
        Result<SamplePaths> sample =
            ensureSample(fromDiskPath(getWorkDir()).replace(QLatin1Char('\\'), QLatin1Char('/')));
        if (!sample.isOk())
            return sample.status();
        described = describePath(sample.value().formFile, chooseTable, warnings);
    }
    if (!described.isOk())
        return described;
    FormDescription form = described.value();
    if (request.codePage)
        form.codePage = *request.codePage;
    if (request.collate)
        form.collate = *request.collate;
    return form;
}

bool wasDeclined(const Status &status)
{
    return status.message() == kDeclined;
}

void reportOpenFailure(Services *services, const QString &reason)
{
    std::fprintf(stderr, "plxform: %s\n", qPrintable(reason));
    std::fflush(stderr);
    prompterOf(services).msgBox(reason, MsgStyle::Critical, kOpenFailureTitle);
}

} // namespace plx::form
