// tests/support/child/recordlock.cpp: the recordlock role, the second process of the
// two-process record-lock tests. It opens a contract database with the named back end,
// goes to one record and
//   try    tries Edit once and prints the outcome ("OK" or the code name, e.g. "Locked");
//   hold   takes the lock with Edit, prints "HELD", then obeys lines on stdin:
//          "update CITY" writes CITY and Updates (prints "UPDATED"), "quit" ends.
//   recordlock BACKEND DIR ID try|hold
#include "tests/support/child/roles.h"

#include "services/recordsource/tests/backend.h"
#include "services/texthelpers.h"

#include <QTextStream>

namespace plx::testchild {
namespace {

int fail(QTextStream &out, const Status &s)
{
    out << codeName(s.code()) << Qt::endl;
    return 1;
}

int hold(RecordSource &rs, QTextStream &out)
{
    Status s = rs.Edit();
    if (!s.isOk())
        return fail(out, s);
    out << "HELD" << Qt::endl;
    QTextStream in(stdin);
    QString line;
    while (in.readLineInto(&line)) {
        if (line.startsWith(QLatin1String("update "))) {
            s = rs.setValue(QStringLiteral("CITY"), line.mid(7));
            if (s.isOk())
                s = rs.Update();
            out << (s.isOk() ? QStringLiteral("UPDATED") : codeName(s.code())) << Qt::endl;
        } else if (line == QLatin1String("quit")) {
            break;
        }
    }
    return 0;
}

} // namespace

int runRecordLock(const QStringList &args)
{
    QTextStream out(stdout);
    if (args.size() != 4)
        return 2;
    std::shared_ptr<testing::BackEnd> backEnd = testing::backEndNamed(args.at(0));
    if (!backEnd)
        return 2;
    Result<std::unique_ptr<Database>> db = backEnd->open(args.at(1));
    if (!db.isOk())
        return fail(out, db.status());
    Result<std::unique_ptr<RecordSource>> rs = db.value()->OpenRecordset(QStringLiteral("T"));
    if (!rs.isOk())
        return fail(out, rs.status());
    Status s = rs.value()->FindFirst(QStringLiteral("ID = ") + strToASC(args.at(2)));
    if (!s.isOk() || rs.value()->NoMatch())
        return fail(out, s.isOk() ? Status(Status::Code::NotFound, QString()) : s);
    if (args.at(3) == QLatin1String("hold"))
        return hold(*rs.value(), out);
    s = rs.value()->Edit();
    out << (s.isOk() ? QStringLiteral("OK") : codeName(s.code())) << Qt::endl;
    return 0;
}

} // namespace plx::testchild
