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

// A SQLite database file and one of its tables: `table`, else its only table, else the
// one the user picks.
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
    const QStringList tables = db.value()->tableNames();
    FormDescription form;
    form.database = QFileInfo(path).absoluteFilePath();
    if (!table.isEmpty()) {
        const auto named = std::find_if(tables.begin(), tables.end(), [&](const QString &t) {
            return t.compare(table, Qt::CaseInsensitive) == 0;
        });
        if (named == tables.end())
            return Status(Status::Code::NotFound,
                          QStringLiteral("%1 has no table %2.").arg(path, table));
        form.table = *named;
        return form;
    }
    if (tables.isEmpty())
        return Status(Status::Code::NotFound, QStringLiteral("%1 holds no table.").arg(path));
    if (tables.size() == 1) {
        form.table = tables.first();
        return form;
    }
    const std::optional<QString> chosen =
        chooseTable ? chooseTable(form.database, tables) : std::nullopt;
    if (!chosen)
        return Status(Status::Code::InvalidArgument, kDeclined);
    form.table = *chosen;
    return form;
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
    if (!request.sqlite.isEmpty()) {
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
