// apps/plxsql/commands.cpp: the back-end table and the three commands of plxsql.
#include "apps/plxsql/commands.h"

#include "apps/plxsql/textoutput.h"

#include "services/recordsource/dbf/internal/dbftable.h"
#include "services/recordsource/jet/internal/evaluator.h"

#include <QDir>
#include <QFileInfo>

namespace plx::plxsql {

const QList<BackEnd> &backEnds()
{
    static const QList<BackEnd> table{
        { "--sqlite", "FILE", "a SQLite database file",
          [](const QString &file) { return OpenDatabase(file, false, false, QString()); } },
        { "--foxpro", "DIR", "a directory of FoxPro 2.6 tables (.DBF)",
          [](const QString &dir) {
              return OpenDatabase(dir, false, false, QStringLiteral("FoxPro 2.6"));
          } },
    };
    return table;
}

namespace {

Status usageError(const QString &why)
{
    return Status(Status::Code::InvalidArgument, why);
}

Status runQuery(Database &db, const QString &sql, bool countOnly, QTextStream &out)
{
    Result<std::unique_ptr<RecordSource>> source = db.OpenRecordset(sql);
    if (!source.isOk())
        return source.status();
    RecordSource &rs = *source.value();
    if (countOnly) {
        if (!rs.isEOF()) {
            Status s = rs.MoveLast();
            if (!s.isOk())
                return s;
        }
        out << rs.RecordCount() << '\n';
        return Status::ok();
    }
    return writeRows(rs, out);
}

// The header of one FoxPro table: version, code page, counts, lengths and fields.
Status runInfo(const QString &dir, const QString &table, QTextStream &out)
{
    const QFileInfoList files = QDir(dir).entryInfoList(QDir::Files);
    for (const QFileInfo &f : files) {
        if (f.suffix().compare(QLatin1String("dbf"), Qt::CaseInsensitive) != 0
            || f.completeBaseName().compare(table, Qt::CaseInsensitive) != 0)
            continue;
        Result<std::unique_ptr<DbfTable>> t =
            DbfTable::open(f.absoluteFilePath(), DbfTable::OpenMode::ReadOnly);
        if (!t.isOk())
            return t.status();
        out << t.value()->infoText();
        if (!t.value()->infoText().endsWith(QLatin1Char('\n')))
            out << '\n';
        return Status::ok();
    }
    return Status(Status::Code::NotFound, QStringLiteral("no table %1 in %2").arg(table, dir));
}

Status runEval(const QString &expression, QTextStream &out)
{
    Result<QVariant> value = jet::evaluateStandalone(expression);
    if (!value.isOk())
        return value.status();
    out << jet::formatValue(value.value()) << '\n';
    return Status::ok();
}

} // namespace

Status run(const QStringList &args, QTextStream &out)
{
    if (args.first() == QLatin1String("--eval")) {
        if (args.size() != 2)
            return usageError(QStringLiteral("--eval takes one expression"));
        return runEval(args.at(1), out);
    }
    for (const BackEnd &backEnd : backEnds()) {
        if (args.first() != QLatin1String(backEnd.option))
            continue;
        QStringList rest = args.mid(1);
        if (rest.isEmpty())
            return usageError(
                QStringLiteral("%1 needs a %2")
                    .arg(QLatin1String(backEnd.option), QLatin1String(backEnd.argumentName)));
        const QString target = rest.takeFirst();
        if (rest.size() == 2 && rest.first() == QLatin1String("--info")
            && args.first() == QLatin1String("--foxpro"))
            return runInfo(target, rest.at(1), out);
        const bool countOnly = rest.removeAll(QStringLiteral("--count")) > 0;
        if (rest.size() != 1)
            return usageError(QStringLiteral("expected one SQL statement"));
        Result<std::unique_ptr<Database>> db = backEnd.open(target);
        if (!db.isOk())
            return db.status();
        return runQuery(*db.value(), rest.first(), countOnly, out);
    }
    return usageError(QStringLiteral("unknown option %1").arg(args.first()));
}

} // namespace plx::plxsql
