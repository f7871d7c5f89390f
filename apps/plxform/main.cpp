// apps/plxform/main.cpp: plxform, a complete data-entry form for a FoxPro table file or a
// table of a SQLite database.
//
//   plxform                              the sample facility table (made on first run)
//   plxform TABLE.DBF                    a FoxPro table file
//   plxform --sqlite FILE --table T      a table of a SQLite database
//   plxform FORM.INI                     a saved form description
//   plxform --save-form FORM.INI [...]   writes the description of what it would show
//   plxform --screenshot FILE.png [...]  draws the form into a PNG and exits
//   plxform --script FILE [...]          runs the commands of FILE on the form and exits
#include "apps/plxform/hostform.h"
#include "apps/plxform/sampledata.h"
#include "apps/plxform/scriptrunner.h"
#include "mervane/rowpalette.h"

#include "services/ini.h"
#include "services/paths.h"
#include "services/recordsource/database.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QTimer>

#include <cstdio>

namespace {

using plx::Database;
using plx::fromDiskPath;
using plx::getWorkDir;
using plx::OpenDatabase;
using plx::prompterOf;
using plx::Result;
using plx::Services;
using plx::Status;
using plx::form::ensureSample;
using plx::form::FormDescription;
using plx::form::HostForm;
using plx::form::loadFormDescription;
using plx::form::runScript;
using plx::form::SamplePaths;
using plx::form::saveFormDescription;
using plx::form::ScriptPrompter;

void say(const QString &line)
{
    std::fprintf(stderr, "plxform: %s\n", qPrintable(line));
}

// The product's folders: the installation directory given by PLX_HARROWBY_DIR, else one
// of the user's own, with its work directory made up front so nobody is asked about it.
void prepareInstallationDirectory()
{
    if (qEnvironmentVariableIsEmpty("PLX_HARROWBY_DIR")) {
        const QString own = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation)
            + QStringLiteral("/PLX");
        qputenv("PLX_HARROWBY_DIR", own.toUtf8());
    }
    QDir().mkpath(qEnvironmentVariable("PLX_HARROWBY_DIR") + QStringLiteral("/WORK-PLX"));
}

// Fusion with a dark palette: the controls take every colour from the palette.
void useDarkPalette()
{
    QApplication::setStyle(QStringLiteral("Fusion"));
    QApplication::setPalette(plx::darkPalette());
}

// A form description file, a FoxPro table file, or a SQLite database (its first table).
Result<FormDescription> describePath(const QString &path, QStringList *warnings)
{
    if (path.endsWith(QLatin1String(".ini"), Qt::CaseInsensitive))
        return loadFormDescription(path, warnings);
    FormDescription form;
    if (path.endsWith(QLatin1String(".dbf"), Qt::CaseInsensitive)) {
        form.file = QFileInfo(path).absoluteFilePath();
        return form;
    }
    Result<std::unique_ptr<Database>> db = OpenDatabase(path, false, true, QString());
    if (!db.isOk())
        return db.status();
    const QStringList tables = db.value()->tableNames();
    if (tables.isEmpty())
        return Status(Status::Code::NotFound, QStringLiteral("%1 holds no table").arg(path));
    form.database = QFileInfo(path).absoluteFilePath();
    form.table = tables.first();
    return form;
}

// The description of what `arguments` ask for; the sample when they name nothing.
Result<FormDescription> describeRequest(const QCommandLineParser &args, QStringList *warnings)
{
    if (args.isSet(QStringLiteral("sqlite"))) {
        FormDescription form;
        form.database = args.value(QStringLiteral("sqlite"));
        form.table = args.value(QStringLiteral("table"));
        if (form.table.isEmpty())
            return Status(Status::Code::InvalidArgument,
                          QStringLiteral("--sqlite needs --table T"));
        return form;
    }
    QString target = args.positionalArguments().value(0);
    if (target.isEmpty()) {
        Result<SamplePaths> sample =
            ensureSample(fromDiskPath(getWorkDir()).replace(QLatin1Char('\\'), QLatin1Char('/')));
        if (!sample.isOk())
            return sample.status();
        target = sample.value().formFile;
    }
    return describePath(target, warnings);
}

// The offscreen platform (no display) notes every window feature it lacks; those notes are
// no news to a user of --screenshot or --script.
void quietOffscreenNotes()
{
    qInstallMessageHandler([](QtMsgType type, const QMessageLogContext &, const QString &message) {
        if (type != QtDebugMsg
            && !message.startsWith(QLatin1String("This plugin does not support")))
            std::fprintf(stderr, "%s\n", qPrintable(message));
    });
}

void defineOptions(QCommandLineParser &args)
{
    args.setApplicationDescription(
        QStringLiteral("A data-entry form for a FoxPro table file or a SQLite table."));
    args.addHelpOption();
    args.addVersionOption();
    args.addPositionalArgument(
        QStringLiteral("table"),
        QStringLiteral("A FoxPro table file (.DBF) or a form description (.ini)."),
        QStringLiteral("[TABLE.DBF | FORM.INI]"));
    args.addOption({ QStringLiteral("sqlite"), QStringLiteral("A SQLite database file."),
                     QStringLiteral("FILE") });
    args.addOption({ QStringLiteral("table"), QStringLiteral("The table of the SQLite database."),
                     QStringLiteral("T") });
    args.addOption({ QStringLiteral("save-form"),
                     QStringLiteral("Write the form description and exit."),
                     QStringLiteral("FORM.INI") });
    args.addOption({ QStringLiteral("script"),
                     QStringLiteral("Run the commands of FILE on the form, then exit."),
                     QStringLiteral("FILE") });
    args.addOption({ QStringLiteral("dark"), QStringLiteral("Use a dark palette.") });
    args.addOption({ QStringLiteral("screenshot"),
                     QStringLiteral("Draw the form into a PNG file and exit."),
                     QStringLiteral("FILE.png") });
}

// --save-form: the exit code.
int saveForm(const HostForm &form, const QString &path)
{
    if (Status s = saveFormDescription(form.form(), path); !s.isOk()) {
        say(s.message());
        return 1;
    }
    std::printf("%s\n", qPrintable(path));
    return 0;
}

// --script: shows the form and runs the file's commands on it; false when the file cannot
// be read or a command fails (both told on stderr).
bool runScriptFile(HostForm &form, const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        say(QStringLiteral("cannot read %1").arg(file.fileName()));
        return false;
    }
    QString scriptError;
    form.show();
    if (!runScript(form, QString::fromUtf8(file.readAll()).split(QLatin1Char('\n')),
                   &scriptError)) {
        say(scriptError);
        return false;
    }
    return true;
}

// --screenshot: draws the form once its layout has settled; the exit code.
int saveScreenshot(HostForm &form, const QString &path)
{
    form.show();
    for (int i = 0; i < 5; ++i)
        QApplication::processEvents();
    if (!form.grab().save(path)) {
        say(QStringLiteral("cannot write %1").arg(path));
        return 1;
    }
    std::printf("%s\n", qPrintable(QFileInfo(path).absoluteFilePath()));
    return 0;
}

// The problems the form opened with, in one box once the window is up.
void showWarningsWhenShown(HostForm &form, const QStringList &warnings)
{
    QTimer::singleShot(0, &form, [warnings] {
        prompterOf(nullptr).msgBox(warnings.join(QStringLiteral("\r\n")),
                                   plx::MsgStyle::Information, QStringLiteral("plxform"));
    });
}

// The File menu's Open and Save Form: another table or form replaces this one, and what
// goes wrong is told in a box.
void connectFileMenu(HostForm &form)
{
    QObject::connect(&form, &HostForm::openRequested, &form, [&form](const QString &path) {
        QStringList problems;
        Result<FormDescription> next = describePath(path, &problems);
        QString why;
        if (!next.isOk())
            why = next.status().message();
        else if (!form.openForm(next.value(), &problems, &why))
            problems.prepend(why);
        if (!why.isEmpty() || !problems.isEmpty())
            prompterOf(nullptr).msgBox((why.isEmpty() ? problems : QStringList(why) + problems)
                                           .join(QStringLiteral("\r\n")),
                                       plx::MsgStyle::Information, QStringLiteral("plxform"));
    });
    QObject::connect(&form, &HostForm::saveFormRequested, &form, [&form](const QString &path) {
        if (Status s = saveFormDescription(form.form(), path); !s.isOk())
            prompterOf(nullptr).msgBox(s.message(), plx::MsgStyle::Critical,
                                       QStringLiteral("plxform"));
    });
}

} // namespace

int main(int argc, char **argv)
{
    quietOffscreenNotes();
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("plxform"));
    QApplication::setApplicationVersion(QStringLiteral(PLX_VERSION));
    QCommandLineParser args;
    defineOptions(args);
    args.process(app);

    if (args.isSet(QStringLiteral("dark")))
        useDarkPalette();
    prepareInstallationDirectory();
    QStringList warnings;
    Result<FormDescription> request = describeRequest(args, &warnings);
    for (const QString &w : warnings)
        say(w);
    if (!request.isOk()) {
        say(request.status().message());
        return 1;
    }
    // A script answers the form's boxes itself; they are written to stderr.
    ScriptPrompter scriptUser;
    Services scripted{ &scriptUser, nullptr, nullptr };
    const bool scripting = args.isSet(QStringLiteral("script"));
    HostForm form(scripting ? &scripted : nullptr);
    form.resize(920, 660); // the first opening's size; later ones come back as they were left
    QString error;
    warnings.clear();
    if (!form.openForm(request.value(), &warnings, &error)) {
        say(error);
        return 1;
    }
    for (const QString &w : warnings)
        say(w);
    if (args.isSet(QStringLiteral("save-form")))
        return saveForm(form, args.value(QStringLiteral("save-form")));
    if (scripting) {
        if (!runScriptFile(form, args.value(QStringLiteral("script"))))
            return 1;
        // With --screenshot too, the form is drawn as the script left it.
        if (!args.isSet(QStringLiteral("screenshot")))
            return 0;
    }
    if (args.isSet(QStringLiteral("screenshot")))
        return saveScreenshot(form, args.value(QStringLiteral("screenshot")));
    if (!warnings.isEmpty())
        showWarningsWhenShown(form, warnings);
    connectFileMenu(form);
    form.show();
    return app.exec();
}
