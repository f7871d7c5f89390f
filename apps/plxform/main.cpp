// apps/plxform/main.cpp: plxform, a complete data-entry form for a FoxPro table file or a
// table of a SQLite database.
//
//   plxform                              the sample facility table (made on first run)
//   plxform TABLE.DBF                    a FoxPro table file
//   plxform --sqlite FILE [--table T]    a table of a SQLite database (a list to choose
//                                        from when it holds several and none is named)
//   plxform --codepage 850 TABLE.DBF     a DOS table's text read in that code page
//   plxform --collate general TABLE.DBF  text ordered a A b B instead of by code
//   plxform FORM.INI                     a saved form description
//   plxform --save-form FORM.INI [...]   writes the description of what it would show
//   plxform --screenshot FILE.png [...]  draws the form into a PNG and exits
//   plxform --script FILE [...]          runs the commands of FILE on the form and exits
#include "apps/plxform/designedform.h"
#include "apps/plxform/hostform.h"
#include "apps/plxform/opening.h"
#include "apps/plxform/scriptrunner.h"
#include "apps/plxform/tablechooser.h"
#include "mervane/rowpalette.h"

#include "services/ini.h"
#include "services/paths.h"
#include "services/recordsource/database.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QStandardPaths>

#include <cstdio>

namespace {

using plx::prompterOf;
using plx::Result;
using plx::Services;
using plx::Status;
using plx::form::describePath;
using plx::form::describeRequest;
using plx::form::DesignedForm;
using plx::form::designedFormXml;
using plx::form::FormDescription;
using plx::form::HostForm;
using plx::form::loadDesignedForm;
using plx::form::OpenRequest;
using plx::form::parseCodePage;
using plx::form::parseCollate;
using plx::form::reportOpenFailure;
using plx::form::runScript;
using plx::form::saveFormDescription;
using plx::form::ScriptPrompter;
using plx::form::TableChooser;
using plx::form::TableChooserFn;
using plx::form::wasDeclined;

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

// What the command line names; false (told on stderr) for a value plxform cannot use.
bool readRequest(const QCommandLineParser &args, OpenRequest *request)
{
    request->target = args.positionalArguments().value(0);
    request->sqlite = args.value(QStringLiteral("sqlite"));
    request->postgres = args.value(QStringLiteral("postgres"));
    if (!request->sqlite.isEmpty() && !request->postgres.isEmpty()) {
        say(QStringLiteral("--sqlite and --postgres name two databases: give one"));
        return false;
    }
    request->table = args.value(QStringLiteral("table"));
    if (args.isSet(QStringLiteral("codepage"))) {
        request->codePage = parseCodePage(args.value(QStringLiteral("codepage")));
        if (!request->codePage) {
            say(QStringLiteral("--codepage needs a code page number such as 437 or 850"));
            return false;
        }
    }
    if (args.isSet(QStringLiteral("collate"))) {
        request->collate = parseCollate(args.value(QStringLiteral("collate")));
        if (!request->collate) {
            say(QStringLiteral("--collate is general or machine"));
            return false;
        }
    }
    return true;
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
        QStringLiteral("A data-entry form for a FoxPro table file, a SQLite table or a PostgreSQL "
                       "table."));
    args.addHelpOption();
    args.addVersionOption();
    args.addPositionalArgument(
        QStringLiteral("table"),
        QStringLiteral("A FoxPro table file (.DBF) or a form description (.ini)."),
        QStringLiteral("[TABLE.DBF | FORM.INI]"));
    args.addOption({ QStringLiteral("sqlite"), QStringLiteral("A SQLite database file."),
                     QStringLiteral("FILE") });
    args.addOption({ QStringLiteral("postgres"),
                     QStringLiteral("A PostgreSQL database: a libpq connection string "
                                    "(\"host=... dbname=... user=...\") or a postgresql:// URI."),
                     QStringLiteral("CONNINFO") });
    args.addOption({ QStringLiteral("table"),
                     QStringLiteral("The table of the SQLite or PostgreSQL database."),
                     QStringLiteral("T") });
    args.addOption({ QStringLiteral("save-form"),
                     QStringLiteral("Write the form description and exit."),
                     QStringLiteral("FORM.INI") });
    args.addOption({ QStringLiteral("script"),
                     QStringLiteral("Run the commands of FILE on the form, then exit."),
                     QStringLiteral("FILE") });
    args.addOption({ QStringLiteral("codepage"),
                     QStringLiteral("The code page of a DOS table's text (437, 850, ...), for a "
                                    "FoxPro table whose header names none."),
                     QStringLiteral("N") });
    args.addOption({ QStringLiteral("collate"),
                     QStringLiteral("How a FoxPro table orders text: general (a A b B) or "
                                    "machine (character codes)."),
                     QStringLiteral("general|machine") });
    args.addOption({ QStringLiteral("ui"),
                     QStringLiteral("A form laid out in Qt Designer, run on the table named."),
                     QStringLiteral("FORM.ui") });
    args.addOption({ QStringLiteral("save-ui"),
                     QStringLiteral("Write the form as a .ui file Qt Designer opens, and exit."),
                     QStringLiteral("FORM.ui") });
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

// --save-ui: the exit code.
int saveUi(const HostForm &form, const QString &path)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(designedFormXml(form)) < 0
        || !file.commit()) {
        say(QStringLiteral("cannot write %1: %2").arg(path, file.errorString()));
        return 1;
    }
    std::printf("%s\n", qPrintable(path));
    return 0;
}

// Opens what was asked: the form plxform makes for the table, or the designed one (--ui).
bool openRequested(HostForm &form, const QCommandLineParser &args, const FormDescription &described,
                   QStringList *warnings, QString *error)
{
    if (!args.isSet(QStringLiteral("ui")))
        return form.openForm(described, warnings, error);
    Result<DesignedForm> designed = loadDesignedForm(args.value(QStringLiteral("ui")));
    if (!designed.isOk()) {
        *error = designed.status().message();
        return false;
    }
    return form.openDesignedForm(std::move(designed).value(), described, warnings, error);
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

// The list of a database's tables, over `form`.
TableChooserFn chooseTableOf(QWidget *form)
{
    return [form](const QString &database, const QStringList &tables) {
        return TableChooser::choose(database, tables, form);
    };
}

// The File menu's Open and Save Form: another table or form replaces this one; a table
// that cannot be opened is told in a box, and so are the problems of one that opens.
void connectFileMenu(HostForm &form, Services *services)
{
    QObject::connect(
        &form, &HostForm::openRequested, &form, [&form, services](const QString &path) {
            QStringList problems;
            Result<FormDescription> next = describePath(path, chooseTableOf(&form), &problems);
            QString why;
            if (!next.isOk())
                why = next.status().message();
            else if (!form.openForm(next.value(), &problems, &why))
                problems.clear();
            if (!next.isOk() && wasDeclined(next.status()))
                return;
            if (!why.isEmpty())
                reportOpenFailure(services, why);
            else if (!problems.isEmpty())
                prompterOf(services).msgBox(problems.join(QStringLiteral("\r\n")),
                                            plx::MsgStyle::Information, QStringLiteral("plxform"));
        });
    QObject::connect(&form, &HostForm::saveFormRequested, &form,
                     [&form, services](const QString &path) {
                         if (Status s = saveFormDescription(form.form(), path); !s.isOk())
                             prompterOf(services).msgBox(s.message(), plx::MsgStyle::Critical,
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
    // Without a person at the screen (a script, a picture, a saved description) every box
    // is answered at once and written to stderr instead of waiting for a click.
    ScriptPrompter scriptUser;
    Services scripted{ &scriptUser, nullptr, nullptr };
    const bool unattended = args.isSet(QStringLiteral("script"))
        || args.isSet(QStringLiteral("screenshot")) || args.isSet(QStringLiteral("save-form"))
        || args.isSet(QStringLiteral("save-ui"));
    Services *services = unattended ? &scripted : nullptr;
    // Every control of the process answers to the same prompter, also one that was never
    // handed these services (a dialog, a field made later).
    if (unattended)
        Services::setDefaults(&scripted);

    OpenRequest request;
    if (!readRequest(args, &request))
        return 2;
    QStringList warnings;
    Result<FormDescription> described =
        describeRequest(request, unattended ? TableChooserFn() : chooseTableOf(nullptr), &warnings);
    for (const QString &w : warnings)
        say(w);
    if (!described.isOk()) {
        if (!wasDeclined(described.status()))
            reportOpenFailure(services, described.status().message());
        return 1;
    }
    HostForm form(services);
    form.resize(920, 660); // the first opening's size; later ones come back as they were left
    QString error;
    warnings.clear();
    if (!openRequested(form, args, described.value(), &warnings, &error)) {
        reportOpenFailure(services, error);
        return 1;
    }
    for (const QString &w : warnings)
        say(w);
    if (args.isSet(QStringLiteral("save-form")))
        return saveForm(form, args.value(QStringLiteral("save-form")));
    if (args.isSet(QStringLiteral("save-ui")))
        return saveUi(form, args.value(QStringLiteral("save-ui")));
    if (args.isSet(QStringLiteral("script"))) {
        if (!runScriptFile(form, args.value(QStringLiteral("script"))))
            return 1;
        // With --screenshot too, the form is drawn as the script left it.
        if (!args.isSet(QStringLiteral("screenshot")))
            return 0;
    }
    if (args.isSet(QStringLiteral("screenshot")))
        return saveScreenshot(form, args.value(QStringLiteral("screenshot")));
    connectFileMenu(form, services);
    form.show();
    // The problems the form opened with, in one box over the window.
    if (!warnings.isEmpty())
        prompterOf(services).msgBox(warnings.join(QStringLiteral("\r\n")),
                                    plx::MsgStyle::Information, QStringLiteral("plxform"));
    return app.exec();
}
