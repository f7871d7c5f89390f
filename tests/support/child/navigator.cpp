// tests/support/child/navigator.cpp: the navigator role, a second user's navigator in its own
// process, for the tests that check what two users see of each other.
//
//   navigator hold   KIND PATH ID USER              takes the record into edit, prints
//                                                   "HELD", and waits to be killed
//   navigator create KIND PATH COUNT USER           New + Save COUNT times, printing each
//                                                   new ID in keyToASC form
//   navigator killatsave foxpro PATH ID N           edits record ID's NAME and saves it, the
//                                                   process ending before its Nth table
//                                                   write (exit 77); 0 when the save ran whole
// KIND is sqlite, foxpro or postgresql; PATH the FoxPro table file, the SQLite database file
// (table T), or for postgresql a file in the test folder whose database is meant.
#include "tests/support/child/roles.h"

#include "navigator/mvplxrecs.h"
#include "services/prompter.h"
#include "services/recordsource/database.h"
#include "services/recordsource/dbf/internal/dbftesthooks.h"
#include "services/recordsource/tests/backend.h"
#include "services/texthelpers.h"

#include <QFileInfo>
#include <QThread>

#include <cstdio>

namespace plx::testchild {
namespace {

// A user who answers every box with its first button; what the boxes said goes to stderr
// so the test can show it.
class AgreeingPrompter : public Prompter
{
public:
    MsgAnswer msgBox(const QString &text, int style, const QString &title) override
    {
        std::fprintf(
            stderr, "box: %s: %s\n", qPrintable(title),
            qPrintable(QString(text).replace(QLatin1String("\r\n"), QLatin1String(" | "))));
        return (style & 7) == MsgStyle::YesNo ? MsgAnswer::Yes : MsgAnswer::OK;
    }
    std::optional<QString> inputBox(const QString &, const QString &, const QString &) override
    {
        return std::nullopt;
    }
};

bool attach(mvPLXRecs &nav, const QString &kind, const QString &path)
{
    if (kind == QLatin1String("foxpro")) {
        nav.setSDBFPathFileName(path);
        return nav.rs() != nullptr;
    }
    // A server database stands for the test's folder, where its side files stay too.
    auto db = kind == QLatin1String("postgresql")
        ? testing::backEndNamed(QStringLiteral("PostgreSQL"))->open(QFileInfo(path).absolutePath())
        : OpenDatabase(path, false, false, QString());
    if (!db.isOk())
        return false;
    std::shared_ptr<Database> shared(std::move(db.value()));
    auto rs = shared->OpenRecordset(QStringLiteral("SELECT * from T"));
    if (!rs.isOk())
        return false;
    nav.setDatabase(shared, QStringLiteral("T"), path);
    nav.setRs(std::shared_ptr<RecordSource>(std::move(rs.value())));
    return true;
}

[[noreturn]] void holdUntilKilled()
{
    std::printf("HELD\n");
    std::fflush(stdout);
    for (;;)
        QThread::sleep(1);
}

int editAndSave(mvPLXRecs &nav, quint64 crashBeforeWrite)
{
    (void)nav.rs()->setValue(QStringLiteral("NAME"), QStringLiteral("SAVED BY THE VICTIM"));
    dbftest::setCrashBeforeWrite(crashBeforeWrite);
    nav.ClickButton(QStringLiteral("SAVE"));
    return nav.bButtonEnable(QStringLiteral("SAVE")) ? 5 : 0;
}

int createRecords(mvPLXRecs &nav, int count)
{
    // As character codes: a key may hold any character but the blank, line breaks too.
    QObject::connect(&nav, &mvPLXRecs::RecAdded, [](const QString &id) {
        std::printf("%s\n", qPrintable(keyToASC(id)));
        std::fflush(stdout);
    });
    for (int i = 0; i < count; ++i) {
        nav.ClickButton(QStringLiteral("NEW"));
        nav.ClickButton(QStringLiteral("SAVE"));
    }
    return 0;
}

} // namespace

int runNavigator(const QStringList &args)
{
    if (args.size() != 5)
        return 2;
    AgreeingPrompter prompter;
    Services services{ &prompter, nullptr, nullptr };
    mvPLXRecs nav;
    nav.setServices(&services);
    nav.setSIDfield(QStringLiteral("ID"));
    nav.setSDescfield(QStringLiteral("NAME"));
    nav.setSDesc(QStringLiteral("Facilities"));
    nav.setSUser(args[4]);
    nav.setSParentID(QStringLiteral("PLE")); // top-level records: "PLE" + a 7-character key
    nav.AddSort(QStringLiteral("ID"), QStringLiteral("ID"));
    if (!attach(nav, args[1], args[2]) || !nav.InitControl().isEmpty())
        return 3;
    if (args[0] == QLatin1String("create"))
        return createRecords(nav, args[3].toInt());
    nav.SetFindFromID(args[3]);
    nav.ClickButton(QStringLiteral("EDIT"));
    if (!nav.bButtonEnable(QStringLiteral("SAVE")))
        return 4;
    if (args[0] == QLatin1String("hold"))
        holdUntilKilled();
    if (args[0] != QLatin1String("killatsave"))
        return 2;
    return editAndSave(nav, args[4].toULongLong());
}

} // namespace plx::testchild
