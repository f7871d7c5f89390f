// apps/plxdemo/main.cpp: the sample host program, showing the shared services at work.
//
// Runs without user interaction (boxes are answered by a small auto-answering prompter),
// so it also serves as a smoke test: it makes a temporary installation directory, writes
// and reads settings, lists sections, encodes a record ID, writes a log entry and prints
// what it did. Exits 0 when every step behaved; run it with QT_QPA_PLATFORM=offscreen
// where there is no display.
#include "services/activitylog.h"
#include "services/env.h"
#include "services/ini.h"
#include "services/installdir.h"
#include "services/paths.h"
#include "services/texthelpers.h"

#include <QApplication>
#include <QFile>
#include <QTemporaryDir>
#include <QTextStream>

namespace {

QTextStream out(stdout);

// Answers every box with its first button and prints it, so the demo never blocks.
class PrintingPrompter : public plx::Prompter
{
public:
    plx::MsgAnswer msgBox(const QString &prompt, int style, const QString &title) override
    {
        out << "  [box \"" << title << "\" style " << style << "] "
            << QString(prompt).replace(QStringLiteral("\r\n"), QStringLiteral(" / ")) << "\n";
        const int buttons = style & 0x7;
        return buttons == plx::MsgStyle::YesNo ? plx::MsgAnswer::Yes : plx::MsgAnswer::OK;
    }
    std::optional<QString> inputBox(const QString &, const QString &,
                                    const QString &defaultText) override
    {
        return defaultText;
    }
};

bool check(bool ok, const char *what)
{
    out << (ok ? "ok    " : "FAILED") << "  " << what << "\n";
    return ok;
}

} // namespace

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    QApplication::setApplicationVersion(QStringLiteral("1.0.7"));
    QTemporaryDir install;
    if (!install.isValid())
        return 2;
    qputenv("PLX_HARROWBY_DIR", install.path().toLocal8Bit());

    PrintingPrompter prompter;
    plx::SystemClock clock;
    plx::QtUiPump pump;
    plx::Services services{ &prompter, &clock, &pump };
    bool ok = true;

    const QString dir = plx::getHarrowbyDirectoryAny();
    out << "installation directory: " << dir << "  (on disk: " << plx::toDiskPath(dir) << ")\n";
    const QString defaults = plx::getDefaultsINI();
    out << "defaults file:          " << defaults << "\n";

    plx::writeINI(QStringLiteral("CONFIG"), QStringLiteral("Company"), defaults,
                  QStringLiteral("  Harrowby Ltd  "));
    plx::writeINI(QStringLiteral("CONFIG"), QStringLiteral("MultipleMonitors"), defaults,
                  QStringLiteral("TRUE"));
    plx::writeINI(QStringLiteral("Sorts"), QStringLiteral("Default"), defaults,
                  QStringLiteral("ID"));
    QString blank;
    const QString company =
        plx::getINIString(QStringLiteral("config"), QStringLiteral("company"), QString(), blank);
    out << "Company read back:      \"" << company << "\" (from " << blank << ")\n";
    ok &= check(company == QStringLiteral("Harrowby Ltd"), "settings round trip, spaces trimmed");
    ok &= check(plx::getINIBool(QStringLiteral("CONFIG"), QStringLiteral("MultipleMonitors"), false,
                                QString()),
                "boolean setting");
    const QStringList sections = plx::getINISections(defaults);
    out << "sections:               " << sections.mid(1).join(QStringLiteral(", ")) << "\n";
    ok &= check(sections.size() == 3 && sections.at(0).isEmpty(), "section list");

    const QString id = QStringLiteral("AB'1");
    out << "strToASC(" << id << "): " << plx::strToASC(id) << "\n";
    out << "keyToASC(" << id << "): " << plx::keyToASC(id) << "\n";
    ok &= check(plx::ascToKey(plx::keyToASC(id), 3) == id, "key codes round trip");

    out << "work directory:\n";
    const QString work = plx::getWorkDir(&services);
    ok &= check(QFile::exists(plx::toDiskPath(work)), "work directory created");

    ok &= check(plx::logEntry(QStringLiteral("plxdemo"), QStringLiteral("services demonstration"),
                              &services),
                "log entry written");
    QFile log(plx::toDiskPath(plx::setPathName(dir, QStringLiteral("PLXLogFile.TXT"), false)));
    if (log.open(QIODevice::ReadOnly))
        out << "log file:\n" << QString::fromLatin1(log.readAll()).remove(QLatin1Char('\r'));
    out << (ok ? "all steps passed" : "some steps FAILED") << "\n";
    out.flush();
    return ok ? 0 : 1;
}
