// apps/plxsql/commands.cpp: the back-end table and the commands of plxsql.
#include "apps/plxsql/commands.h"

#include "apps/plxsql/textoutput.h"

#include "services/recordsource/jet/expression.h"

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
        { "--postgres", "CONNINFO", "a PostgreSQL database (libpq connection string or URI)",
          [](const QString &conninfo) {
              return OpenDatabase(conninfo, false, false, QStringLiteral("PostgreSQL"));
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

// The engine's description of one table: for a FoxPro table its header (version, code page,
// counts, lengths and fields).
Status runInfo(const Database &db, const QString &dir, const QString &table, QTextStream &out)
{
    Result<TableDescription> description = db.describeTable(table);
    if (description.status().code() == Status::Code::NotFound)
        return Status(Status::Code::NotFound, QStringLiteral("no table %1 in %2").arg(table, dir));
    if (!description.isOk())
        return description.status();
    out << description->storage;
    if (!description->storage.endsWith(QLatin1Char('\n')))
        out << '\n';
    return Status::ok();
}

// --index TABLE NAME FIELDS: an index in the dialect's order, FIELDS separated by commas.
Status runIndex(Database &db, const QStringList &args, QTextStream &out)
{
    QStringList fields;
    for (const QString &field : args.at(2).split(QLatin1Char(','), Qt::SkipEmptyParts))
        fields << field.trimmed();
    if (Status s = db.createIndex(args.at(0), args.at(1), fields); !s.isOk())
        return s;
    out << "index " << args.at(1) << " on " << args.at(0) << " ("
        << fields.join(QStringLiteral(", ")) << ")\n";
    return Status::ok();
}

Status runEval(const QString &expression, QTextStream &out)
{
    Result<QVariant> value = jet::evaluateExpression(expression);
    if (!value.isOk())
        return value.status();
    out << jet::expressionValueText(value.value()) << '\n';
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
        if (!rest.isEmpty() && rest.first() == QLatin1String("--index")) {
            if (rest.size() != 4)
                return usageError(QStringLiteral("--index takes TABLE NAME FIELD[,FIELD...]"));
            Result<std::unique_ptr<Database>> db = backEnd.open(target);
            if (!db.isOk())
                return db.status();
            return runIndex(*db.value(), rest.mid(1), out);
        }
        const bool info = rest.size() == 2 && rest.first() == QLatin1String("--info")
            && args.first() == QLatin1String("--foxpro");
        const bool countOnly = !info && rest.removeAll(QStringLiteral("--count")) > 0;
        if (!info && rest.size() != 1)
            return usageError(QStringLiteral("expected one SQL statement"));
        Result<std::unique_ptr<Database>> db = backEnd.open(target);
        if (!db.isOk())
            return db.status();
        if (info)
            return runInfo(*db.value(), target, rest.at(1), out);
        return runQuery(*db.value(), rest.first(), countOnly, out);
    }
    return usageError(QStringLiteral("unknown option %1").arg(args.first()));
}

} // namespace plx::plxsql
