// samples/hostapp/main.cpp: the smallest host of the library. It opens (or creates) a
// SQLite database, opens a record source on a table and prints how many records it holds.
#include "services/recordsource/database.h"

#include <QCoreApplication>
#include <QTextStream>

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    QTextStream out(stdout);
    const QStringList args = app.arguments();
    if (args.size() < 3) {
        out << "usage: hostapp DATABASE TABLE\n";
        return 2;
    }
    auto db = plx::OpenDatabase(args.at(1), false, true, QString());
    if (!db.isOk()) {
        out << "Error: " << db.status().message() << "\n";
        return 1;
    }
    auto rs = db.value()->OpenRecordset(args.at(2));
    if (!rs.isOk()) {
        out << "Error: " << rs.status().message() << "\n";
        return 1;
    }
    plx::RecordSource &records = *rs.value();
    if (!records.isEOF())
        (void)records.MoveLast();
    out << records.RecordCount() << " records\n";
    return 0;
}
