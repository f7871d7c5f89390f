// benchmarks/benchtablecache.cpp: generating the benchmark tables on first use.
#include "benchmarks/benchtablecache.h"

#include "services/recordsource/tablegen/benchtable.h"
#include "services/recordsource/tablegen/foxprowriter.h"
#include "services/recordsource/tablegen/sqlitewriter.h"

#include <QDir>
#include <QFile>

#include <cstdio>

namespace plx::bench {

QString sqliteBenchFile(qint64 rows)
{
    QString dir = qEnvironmentVariable("PLX_BENCH_DIR");
    if (dir.isEmpty())
        dir = QStringLiteral("/tmp/plx-bench");
    QDir().mkpath(dir);
    // Named for its indexes: a table from before they were kept in the dialect's collation
    // is not taken for one that has them.
    const QString path = dir + QStringLiteral("/bench-%1-jetindex.sqlite").arg(rows);
    if (QFile::exists(path))
        return path;
    // Written under another name first, so an interrupted run leaves no half table behind.
    const QString partial = path + QStringLiteral(".part");
    QFile::remove(partial);
    std::fprintf(stderr, "generating %lld records into %s ...\n", rows, qPrintable(path));
    const Status s = writeSqliteBenchTable(partial, QStringLiteral("T"), rows);
    if (!s.isOk() || !QFile::rename(partial, path)) {
        std::fprintf(stderr, "cannot generate the benchmark table: %s\n", qPrintable(s.toString()));
        return {};
    }
    QFile::remove(partial + QStringLiteral("-wal"));
    QFile::remove(partial + QStringLiteral("-shm"));
    return path;
}

QString foxProBenchDir()
{
    QString root = qEnvironmentVariable("PLX_BENCH_DIR");
    if (root.isEmpty())
        root = QStringLiteral("/tmp/plx-bench");
    const QString dir = root + QStringLiteral("/foxpro");
    if (QFile::exists(dir + QStringLiteral("/T.DBF")))
        return dir;
    // Written elsewhere first, so an interrupted run leaves no half table behind.
    const QString partial = root + QStringLiteral("/foxpro.part");
    QDir(partial).removeRecursively();
    std::fprintf(stderr, "generating the FoxPro benchmark table into %s ...\n", qPrintable(dir));
    const Status s = writeFoxProBenchTable(partial, QStringLiteral("T"), DefaultBenchRows);
    if (!s.isOk() || !QDir().rename(partial, dir)) {
        std::fprintf(stderr, "cannot generate the table: %s\n", qPrintable(s.toString()));
        return {};
    }
    return dir;
}

} // namespace plx::bench
