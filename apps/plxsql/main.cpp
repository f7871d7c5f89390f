// apps/plxsql/main.cpp: plxsql, a command-line window on the record-source layer.
//
//   plxsql --sqlite FILE "SQL"          run a Jet SELECT (or a table name), print its rows
//   plxsql --sqlite FILE --count "SQL"  open the statement, MoveLast, print RecordCount
//   plxsql --foxpro DIR ...             the same on a directory of FoxPro tables
//   plxsql --foxpro DIR --info TABLE    print a FoxPro table's header and fields
//   plxsql --sqlite FILE --index TABLE NAME FIELD[,FIELD...]
//                                       make index NAME in the dialect's text order
//   plxsql --postgres CONNINFO ...      the same on a PostgreSQL database (a libpq
//                                       connection string or postgresql:// URI)
//   plxsql --eval "EXPR"                evaluate one Jet expression, print its typed value
//
// Everything goes through the same layer the controls use (OpenDatabase, OpenRecordset),
// so plxsql shows exactly what a control would see. Errors print one line beginning
// "Error:" on stderr and exit with status 1 (a wrong command line too); without any
// argument the usage goes to stderr with status 2.
#include "apps/plxsql/commands.h"
#include "apps/plxsql/textoutput.h"

#include <QCoreApplication>
#include <QTextStream>

#include <cstdio>

namespace {

void printUsage(QTextStream &err)
{
    err << "usage: plxsql --sqlite FILE [--count] \"SQL\"\n"
           "       plxsql --foxpro DIR [--count] \"SQL\"\n"
           "       plxsql --foxpro DIR --info TABLE\n"
           "       plxsql --sqlite FILE --index TABLE NAME FIELD[,FIELD...]\n"
           "       plxsql --postgres CONNINFO --index TABLE NAME FIELD[,FIELD...]\n"
           "       plxsql --postgres CONNINFO [--count] \"SQL\"\n"
           "       plxsql --eval \"EXPRESSION\"\n";
    for (const plx::plxsql::BackEnd &backEnd : plx::plxsql::backEnds())
        err << "  " << backEnd.option << ' ' << backEnd.argumentName << ": " << backEnd.description
            << '\n';
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    QTextStream out(stdout);
    QTextStream err(stderr);
    QStringList args = app.arguments().mid(1);
    if (args.isEmpty()) {
        printUsage(err);
        return 2;
    }
    plx::Status s = plx::plxsql::run(args, out);
    out.flush();
    if (!s.isOk()) {
        err << "Error: " << plx::plxsql::oneLine(s.toString()) << '\n';
        return 1;
    }
    return 0;
}
