// tests/support/child/table.cpp: the table role, the second process of the multi-process
// FoxPro table tests. It works on a table and reports on stdout.
//
//   table append PATH COUNT TAG   append COUNT records (NAME = TAG, QTY = 1..COUNT)
//   table lock PATH RECNO         lock RECNO, print "locked" or "busy", wait for a line on
//                                 stdin, exit (the kernel drops the lock)
//   table crash PATH POINT        arm crash POINT (1 after memo, 2 after record, 3 in
//                                 writeRecord after memo), then append or rewrite record 1
//                                 with a memo; the process ends at that point (exit 77)
//   table killat DIR OP N         through a FoxPro record source on DIR's SMALL table, run OP
//                                 (update: Edit + Update of the first record, add: AddNew +
//                                 Update, delete: Delete of the first record), ending the
//                                 process before its Nth file write; exit 0 when the
//                                 operation finished first
#include "tests/support/child/roles.h"

#include "services/recordsource/database.h"
#include "services/recordsource/dbf/internal/dbftable.h"
#include "services/recordsource/dbf/internal/dbftesthooks.h"

#include <QDate>

#include <cstdio>
#include <iostream>
#include <string>

namespace plx::testchild {
namespace {

int fail(const Status &s)
{
    std::fprintf(stderr, "%s\n", qPrintable(s.toString()));
    return 2;
}

int append(DbfTable &t, int count, const QString &tag)
{
    for (int i = 1; i <= count; ++i) {
        auto r = t.appendRecord({ tag, i, i * 0.25, QDate(2020, 1, 1), true,
                                  QStringLiteral("%1 memo %2").arg(tag).arg(i) });
        if (!r.isOk())
            return fail(r.status());
    }
    return 0;
}

int lockAndWait(DbfTable &t, quint32 recno)
{
    const Status s = t.lockRecord(recno);
    std::printf("%s\n", s.isOk() ? "locked" : "busy");
    std::fflush(stdout);
    std::string line;
    std::getline(std::cin, line);
    return 0;
}

int crash(DbfTable &t, int point)
{
    using dbftest::CrashPoint;
    const CrashPoint cp = point == 1 ? CrashPoint::AppendAfterMemo
        : point == 2                 ? CrashPoint::AppendAfterRecord
                                     : CrashPoint::WriteAfterMemo;
    dbftest::setCrashPoint(cp);
    const QString memo = QStringLiteral("a memo long enough to need new blocks ").repeated(8);
    if (cp == CrashPoint::WriteAfterMemo) {
        const Status s =
            t.writeRecord(1, { QStringLiteral("CRASHED"), 1, 1, QVariant(), QVariant(), memo });
        return s.isOk() ? 0 : fail(s);
    }
    auto r = t.appendRecord({ QStringLiteral("CRASHED"), 1, 1, QVariant(), QVariant(), memo });
    return r.isOk() ? 0 : fail(r.status());
}

// The new memo is shorter than the old one, so it would fit the old one's blocks.
Status fillChanged(RecordSource &r)
{
    Status f = r.setValue(QStringLiteral("NAME"), QStringLiteral("CHANGED"));
    if (f.isOk())
        f = r.setValue(QStringLiteral("QTY"), 42);
    if (f.isOk())
        f = r.setValue(QStringLiteral("NOTES"), QStringLiteral("new memo"));
    return f;
}

Status runOperation(RecordSource &r, const QString &op)
{
    const bool update = op == QLatin1String("update");
    if (!update && op != QLatin1String("add"))
        return r.Delete();
    Status s = update ? r.Edit() : r.AddNew();
    if (s.isOk())
        s = fillChanged(r);
    return s.isOk() ? r.Update() : s;
}

int killAt(const QString &dir, const QString &op, int n)
{
    auto db = OpenDatabase(dir, false, false, QStringLiteral("FoxPro 2.6"));
    if (!db.isOk())
        return fail(db.status());
    auto rs = db.value()->OpenRecordset(QStringLiteral("SELECT * FROM SMALL"));
    if (!rs.isOk())
        return fail(rs.status());
    Status s = rs.value()->MoveFirst();
    dbftest::setCrashBeforeWrite(quint64(n));
    if (s.isOk())
        s = runOperation(*rs.value(), op);
    dbftest::setCrashBeforeWrite(0);
    return s.isOk() ? 0 : fail(s);
}

} // namespace

int runTable(const QStringList &args)
{
    if (args.size() < 3)
        return 64;
    const QString &mode = args.at(0);
    if (mode == QLatin1String("killat") && args.size() >= 4)
        return killAt(args.at(1), args.at(2), args.at(3).toInt());
    auto table = DbfTable::open(args.at(1));
    if (!table.isOk())
        return fail(table.status());
    if (mode == QLatin1String("append") && args.size() >= 4)
        return append(**table, args.at(2).toInt(), args.at(3));
    if (mode == QLatin1String("lock"))
        return lockAndWait(**table, args.at(2).toUInt());
    if (mode == QLatin1String("crash"))
        return crash(**table, args.at(2).toInt());
    return 64;
}

} // namespace plx::testchild
