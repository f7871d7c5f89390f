// navigator/tests/navigatorchild.cpp: a second user's navigator, in its own process, for
// the tests that check what two users see of each other.
//
//   navigator_child hold   sqlite|foxpro PATH ID USER   takes the record into edit, prints
//                                                       "HELD", and waits to be killed
//   navigator_child create sqlite|foxpro PATH COUNT USER  New + Save COUNT times, printing
//                                                       each new ID in keyToASC form
//   navigator_child killatsave foxpro PATH ID N     edits record ID's NAME and saves it, the
//                                                   process ending before its Nth table write
//                                                   (exit 77); 0 when the save ran whole
// PATH is the FoxPro table file or the SQLite database file (table T).
#include "navigator/mvplxrecs.h"
#include "services/prompter.h"
#include "services/recordsource/dbf/internal/dbftesthooks.h"
#include "services/recordsource/database.h"
#include "services/texthelpers.h"

#include <QApplication>
#include <QThread>

#include <cstdio>

namespace {

// A user who answers every box with its first button; what the boxes said goes to stderr
// so the test can show it.
class AgreeingPrompter : public plx::Prompter
{
public:
    plx::MsgAnswer msgBox(const QString &text, int style, const QString &title) override
    {
        std::fprintf(
            stderr, "box: %s: %s\n", qPrintable(title),
            qPrintable(QString(text).replace(QLatin1String("\r\n"), QLatin1String(" | "))));
        return (style & 7) == plx::MsgStyle::YesNo ? plx::MsgAnswer::Yes : plx::MsgAnswer::OK;
    }
    std::optional<QString> inputBox(const QString &, const QString &, const QString &) override
    {
        return std::nullopt;
    }
};

bool attach(plx::mvPLXRecs &nav, const QString &kind, const QString &path)
{
    if (kind == QLatin1String("foxpro")) {
        nav.setSDBFPathFileName(path);
        return nav.rs() != nullptr;
    }
    auto db = plx::OpenDatabase(path, false, false, QString());
    if (!db.isOk())
        return false;
    std::shared_ptr<plx::Database> shared(std::move(db.value()));
    auto rs = shared->OpenRecordset(QStringLiteral("SELECT * from T"));
    if (!rs.isOk())
        return false;
    nav.setDatabase(shared, QStringLiteral("T"), path);
    nav.setRs(std::shared_ptr<plx::RecordSource>(std::move(rs.value())));
    return true;
}

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_LOGGING_RULES", "qt.qpa.*=false");
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
    QApplication app(argc, argv);
    const QStringList args = app.arguments();
    if (args.size() != 6)
        return 2;
    AgreeingPrompter prompter;
    plx::Services services{ &prompter, nullptr, nullptr };
    plx::mvPLXRecs nav;
    nav.setServices(&services);
    nav.setSIDfield(QStringLiteral("ID"));
    nav.setSDescfield(QStringLiteral("NAME"));
    nav.setSDesc(QStringLiteral("Facilities"));
    nav.setSUser(args[5]);
    nav.setSParentID(QStringLiteral("PLE")); // top-level records: "PLE" + a 7-character key
    nav.AddSort(QStringLiteral("ID"), QStringLiteral("ID"));
    if (!attach(nav, args[2], args[3]) || !nav.InitControl().isEmpty())
        return 3;
    if (args[1] == QLatin1String("hold")) {
        nav.SetFindFromID(args[4]);
        nav.ClickButton(QStringLiteral("EDIT"));
        if (!nav.bButtonEnable(QStringLiteral("SAVE")))
            return 4;
        std::printf("HELD\n");
        std::fflush(stdout);
        for (;;)
            QThread::sleep(1);
    }
    if (args[1] == QLatin1String("killatsave")) {
        nav.SetFindFromID(args[4]);
        nav.ClickButton(QStringLiteral("EDIT"));
        if (!nav.bButtonEnable(QStringLiteral("SAVE")))
            return 4;
        (void)nav.rs()->setValue(QStringLiteral("NAME"), QStringLiteral("SAVED BY THE VICTIM"));
        plx::dbftest::setCrashBeforeWrite(args[5].toULongLong());
        nav.ClickButton(QStringLiteral("SAVE"));
        return nav.bButtonEnable(QStringLiteral("SAVE")) ? 5 : 0;
    }
    // As character codes: a key may hold any character but the blank, line breaks too.
    QObject::connect(&nav, &plx::mvPLXRecs::RecAdded, [](const QString &id) {
        std::printf("%s\n", qPrintable(plx::keyToASC(id)));
        std::fflush(stdout);
    });
    const int count = args[4].toInt();
    for (int i = 0; i < count; ++i) {
        nav.ClickButton(QStringLiteral("NEW"));
        nav.ClickButton(QStringLiteral("SAVE"));
    }
    return 0;
}
