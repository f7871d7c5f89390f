// services/recordsource/dbf/tests/dbf_child.cpp: the second process of the multi-process
// table tests. The tests start it with QProcess; it works on a table and reports on stdout.
//
//   dbf_child append PATH COUNT TAG     append COUNT records (NAME = TAG, QTY = 1..COUNT)
//   dbf_child lock PATH RECNO           lock RECNO, print "locked" or "busy", wait for a line
//                                       on stdin, exit (the kernel drops the lock)
//   dbf_child crash PATH POINT          arm crash POINT (1 after memo, 2 after record, 3 in
//                                       writeRecord after memo), then append or rewrite
//                                       record 1 with a memo; the process ends at that point
//   dbf_child killat DIR OP N           through a FoxPro record source on DIR's SMALL table,
//                                       run OP (update: Edit + Update of the first record,
//                                       add: AddNew + Update, delete: Delete of the first
//                                       record), ending the process before its Nth file write;
//                                       exit 0 when the operation finished first
#include "services/recordsource/database.h"
#include "services/recordsource/dbf/internal/dbftable.h"
#include "services/recordsource/dbf/internal/dbftesthooks.h"

#include <QCoreApplication>
#include <QDate>

#include <cstdio>
#include <iostream>
#include <string>

namespace {

int fail(const plx::Status &s)
{
    std::fprintf(stderr, "%s\n", qPrintable(s.toString()));
    return 2;
}

int append(plx::DbfTable &t, int count, const QString &tag)
{
    for (int i = 1; i <= count; ++i) {
        auto r = t.appendRecord({ tag, i, i * 0.25, QDate(2020, 1, 1), true,
                                  QStringLiteral("%1 memo %2").arg(tag).arg(i) });
        if (!r.isOk())
            return fail(r.status());
    }
    return 0;
}

int lockAndWait(plx::DbfTable &t, quint32 recno)
{
    const plx::Status s = t.lockRecord(recno);
    std::printf("%s\n", s.isOk() ? "locked" : "busy");
    std::fflush(stdout);
    std::string line;
    std::getline(std::cin, line);
    return 0;
}

int crash(plx::DbfTable &t, int point)
{
    using plx::dbftest::CrashPoint;
    const CrashPoint cp = point == 1 ? CrashPoint::AppendAfterMemo
        : point == 2                 ? CrashPoint::AppendAfterRecord
                                     : CrashPoint::WriteAfterMemo;
    plx::dbftest::setCrashPoint(cp);
    const QString memo = QStringLiteral("a memo long enough to need new blocks ").repeated(8);
    if (cp == CrashPoint::WriteAfterMemo) {
        const plx::Status s =
            t.writeRecord(1, { QStringLiteral("CRASHED"), 1, 1, QVariant(), QVariant(), memo });
        return s.isOk() ? 0 : fail(s);
    }
    auto r = t.appendRecord({ QStringLiteral("CRASHED"), 1, 1, QVariant(), QVariant(), memo });
    return r.isOk() ? 0 : fail(r.status());
}

int killAt(const QString &dir, const QString &op, int n)
{
    auto db = plx::OpenDatabase(dir, false, false, QStringLiteral("FoxPro 2.6"));
    if (!db.isOk())
        return fail(db.status());
    auto rs = db.value()->OpenRecordset(QStringLiteral("SELECT * FROM SMALL"));
    if (!rs.isOk())
        return fail(rs.status());
    plx::RecordSource &r = *rs.value();
    plx::Status s = r.MoveFirst();
    // The new memo is shorter than the old one, so it would fit the old one's blocks.
    auto fill = [&r] {
        plx::Status f = r.setValue(QStringLiteral("NAME"), QStringLiteral("CHANGED"));
        if (f.isOk())
            f = r.setValue(QStringLiteral("QTY"), 42);
        if (f.isOk())
            f = r.setValue(QStringLiteral("NOTES"), QStringLiteral("new memo"));
        return f;
    };
    plx::dbftest::setCrashBeforeWrite(quint64(n));
    if (s.isOk() && op == QLatin1String("update")) {
        s = r.Edit();
        if (s.isOk())
            s = fill();
        if (s.isOk())
            s = r.Update();
    } else if (s.isOk() && op == QLatin1String("add")) {
        s = r.AddNew();
        if (s.isOk())
            s = fill();
        if (s.isOk())
            s = r.Update();
    } else if (s.isOk()) {
        s = r.Delete();
    }
    plx::dbftest::setCrashBeforeWrite(0);
    return s.isOk() ? 0 : fail(s);
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    const QStringList args = app.arguments();
    if (args.size() < 4)
        return 64;
    if (args[1] == QLatin1String("killat") && args.size() >= 5)
        return killAt(args[2], args[3], args[4].toInt());
    auto table = plx::DbfTable::open(args[2]);
    if (!table.isOk())
        return fail(table.status());
    const QString mode = args[1];
    if (mode == QLatin1String("append") && args.size() >= 5)
        return append(**table, args[3].toInt(), args[4]);
    if (mode == QLatin1String("lock"))
        return lockAndWait(**table, args[3].toUInt());
    if (mode == QLatin1String("crash"))
        return crash(**table, args[3].toInt());
    return 64;
}
