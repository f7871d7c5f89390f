// apps/plxform/hostform_open.cpp: opening the form's table, a FoxPro table file, a table of
// a SQLite database or of a PostgreSQL database, and handing it to the navigator.
#include "apps/plxform/hostform.h"

#include "apps/plxform/indextags.h"
#include "navigator/mvplxrecs.h"
#include "services/ini.h"
#include "services/paths.h"
#include "services/recordsource/database.h"
#include "services/recordsource/querytext.h"
#include "services/texthelpers.h"

#include <QDir>
#include <QFileInfo>

namespace plx::form {

namespace {

// The FoxPro connect string for a form's table options.
QString foxProConnect(const FormDescription &form)
{
    QString connect = QStringLiteral("FoxPro 2.6");
    if (form.codePage > 0)
        connect += QStringLiteral(";CodePage=%1").arg(form.codePage);
    if (!form.collate.isEmpty())
        connect += QStringLiteral(";Collate=") + form.collate;
    return connect;
}

struct OpenedTable
{
    std::shared_ptr<Database> db;
    std::shared_ptr<RecordSource> rs;
};

// The table file's folder as a FoxPro database, and the table in it.
Result<OpenedTable> openTableFile(const QString &file, const QString &connect)
{
    Result<std::unique_ptr<Database>> db =
        OpenDatabase(toDiskPath(getFileDir(fromDiskPath(file))), false, false, connect);
    if (!db.isOk())
        return db.status();
    OpenedTable opened{ std::shared_ptr<Database>(std::move(db.value())), nullptr };
    Result<std::unique_ptr<RecordSource>> rs =
        opened.db->OpenRecordset(QueryText(getFileTitle(fromDiskPath(file))).selectAll());
    if (!rs.isOk())
        return rs.status();
    opened.rs = std::move(rs.value());
    return opened;
}

} // namespace

bool HostForm::openTable(FormDescription &form, mvPLXRecs &nav, std::shared_ptr<Database> &db,
                         QString *error)
{
    if (form.isServer())
        return openServerTable(form, nav, db, error);
    return form.isFoxPro() ? openFoxProTable(form, nav, db, error)
                           : openSqliteTable(form, nav, db, error);
}

bool HostForm::openFoxProTable(FormDescription &form, mvPLXRecs &nav, std::shared_ptr<Database> &db,
                               QString *error) const
{
    if (!QFileInfo(form.file).isFile()) {
        *error = tr("The table file %1 was not found.").arg(form.file);
        return false;
    }
    // A DOS table (no code page in its header) is read in the code page the user chose for
    // it last, unless this opening names one.
    if (form.codePage == 0 && codePageMark(form.file) == 0)
        form.codePage = rememberedCodePage(form.file);
    const QString connect = foxProConnect(form);
    if (connect == QLatin1String("FoxPro 2.6")) {
        nav.setSDBFPathFileName(form.file);
        if (nav.rs()) {
            db = nav.database();
            form.table = nav.tableName();
            return true;
        }
    }
    // Opened here when it has options the navigator's own connection does not take, and
    // again when the navigator could not open it, to learn why.
    Result<OpenedTable> opened = openTableFile(form.file, connect);
    if (!opened.isOk()) {
        *error =
            tr("The table %1 could not be opened: %2").arg(form.file, opened.status().message());
        return false;
    }
    db = opened.value().db;
    form.table = getFileTitle(fromDiskPath(form.file));
    nav.setDatabase(db, form.table, form.file);
    nav.setRs(opened.value().rs);
    return true;
}

bool HostForm::openSqliteTable(FormDescription &form, mvPLXRecs &nav, std::shared_ptr<Database> &db,
                               QString *error)
{
    // Opening a file that is not there would make a new, empty database.
    if (!QFileInfo(form.database).isFile()) {
        *error = tr("The SQLite database %1 was not found.").arg(form.database);
        return false;
    }
    Result<std::unique_ptr<Database>> opened = OpenDatabase(form.database, false, false, QString());
    if (!opened.isOk()) {
        *error = tr("The SQLite database %1 could not be opened: %2")
                     .arg(form.database, opened.status().message());
        return false;
    }
    db = std::move(opened.value());
    Result<std::unique_ptr<RecordSource>> rs = db->OpenRecordset(QueryText(form.table).selectAll());
    if (!rs.isOk()) {
        *error = tr("The table %1 of %2 could not be opened: %3")
                     .arg(form.table, form.database, rs.status().message());
        return false;
    }
    nav.setDatabase(db, form.table, form.database);
    nav.setRs(std::shared_ptr<RecordSource>(std::move(rs.value())));
    return true;
}

bool HostForm::openServerTable(FormDescription &form, mvPLXRecs &nav, std::shared_ptr<Database> &db,
                               QString *error)
{
    Result<std::unique_ptr<Database>> opened =
        OpenDatabase(form.server, false, false, QStringLiteral("PostgreSQL"));
    if (!opened.isOk()) {
        *error = tr("The PostgreSQL database %1 could not be opened: %2")
                     .arg(serverDatabaseName(form.server), opened.status().message());
        return false;
    }
    db = std::move(opened.value());
    Result<std::unique_ptr<RecordSource>> rs = db->OpenRecordset(QueryText(form.table).selectAll());
    if (!rs.isOk()) {
        *error = tr("The table %1 of %2 could not be opened: %3")
                     .arg(form.table, form.databaseLabel(), rs.status().message());
        return false;
    }
    // The server keeps the record IDs; the filters the user saves stay on this machine.
    const QString sides = sideFile(form);
    QDir().mkpath(QFileInfo(toDiskPath(sides)).absolutePath());
    nav.setDatabase(db, form.table, sides);
    nav.setRs(std::shared_ptr<RecordSource>(std::move(rs.value())));
    return true;
}

QString HostForm::sideFile(const FormDescription &form) const
{
    if (form.isFoxPro())
        return form.file;
    if (!form.isServer())
        return form.database;
    // A folder of the work directory for each server database, named so that any database
    // name gives a valid folder name.
    QString name = serverDatabaseName(form.server);
    for (QChar &c : name) {
        if (!c.isLetterOrNumber() && c != QLatin1Char('_') && c != QLatin1Char('-'))
            c = QLatin1Char('_');
    }
    const QString folder = setPathName(getWorkDir(m_services), QStringLiteral("PostgreSQL"), false);
    return setPathName(
        setPathName(folder, name.isEmpty() ? QStringLiteral("default") : name.left(60), false),
        form.table, false);
}

} // namespace plx::form
