// apps/plxgen/main.cpp: plxgen, the benchmark-table generator.
//
//   plxgen --sqlite FILE [--rows N]   writes table T with N records (default 1,000,000)
//   plxgen --foxpro DIR [--rows N]    writes DIR/T.DBF and T.FPT (FoxPro 2.6, ~3 % deleted)
//   plxgen --postgres CONNINFO [--rows N]  writes table T in that PostgreSQL database
//
// The records are the same on every run (fixed seed). Writers for other engines are
// further rows of the writer table below.
#include "services/recordsource/tablegen/benchtable.h"
#include "services/recordsource/tablegen/foxprowriter.h"
#include "services/recordsource/tablegen/postgreswriter.h"
#include "services/recordsource/tablegen/sqlitewriter.h"

#include <QCoreApplication>
#include <QTextStream>

#include <functional>

namespace {

struct Writer
{
    const char *option;
    const char *argumentName;
    std::function<plx::Status(const QString &target, qint64 rows)> write;
};

const QList<Writer> &writers()
{
    static const QList<Writer> table{
        { "--sqlite", "FILE",
          [](const QString &file, qint64 rows) {
              return plx::bench::writeSqliteBenchTable(file, QStringLiteral("T"), rows);
          } },
        { "--foxpro", "DIR",
          [](const QString &dir, qint64 rows) {
              return plx::bench::writeFoxProBenchTable(dir, QStringLiteral("T"), rows);
          } },
        { "--postgres", "CONNINFO",
          [](const QString &conninfo, qint64 rows) {
              return plx::bench::writePostgresBenchTable(conninfo, QStringLiteral("T"), rows);
          } },
    };
    return table;
}

int usage(QTextStream &err)
{
    err << "usage: plxgen";
    for (const Writer &w : writers())
        err << " " << w.option << ' ' << w.argumentName;
    err << " [--rows N]\n";
    return 2;
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    QTextStream err(stderr);
    QStringList args = app.arguments().mid(1);
    qint64 rows = plx::bench::DefaultBenchRows;
    const qsizetype rowsAt = args.indexOf(QStringLiteral("--rows"));
    if (rowsAt >= 0) {
        bool ok = false;
        rows = args.value(rowsAt + 1).toLongLong(&ok);
        if (!ok || rows < 0)
            return usage(err);
        args.remove(rowsAt, 2);
    }
    if (args.size() != 2)
        return usage(err);
    for (const Writer &w : writers()) {
        if (args.first() != QLatin1String(w.option))
            continue;
        const plx::Status s = w.write(args.at(1), rows);
        if (!s.isOk()) {
            err << "Error: " << s.toString() << '\n';
            return 1;
        }
        return 0;
    }
    return usage(err);
}
