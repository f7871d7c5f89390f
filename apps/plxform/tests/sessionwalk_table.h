// apps/plxform/tests/sessionwalk_table.h: the sample facility table as the session walk
// sees it: every record as field name -> value in one plain text form, read from the files
// by readers of the walk's own (a DBF/FPT reader written here, the sqlite3 C library on its
// own read-only connection), never through the project's table code.
//
// The plain form makes the two back ends and the model comparable: text without the blanks
// FoxPro pads with, numbers with the field's decimals, dates as YYYYMMDD, logicals T/F,
// memos with "\n" line ends; Null is "" everywhere (a FoxPro table cannot tell them apart),
// and a logical that is Null reads F (a check box has no third state).
#pragma once

#include <QMap>
#include <QString>
#include <QStringList>

namespace plx::walk {

enum class Backend { FoxPro, SQLite };

QString backendName(Backend backend);

enum class FieldKind { Text, Number, Date, Logical, Memo };

struct FieldShape
{
    QString name;
    FieldKind kind;
    int size = 0; // characters of a text field, width of a number
    int decimals = 0;
};

// The fields of the sample facility table, in table order.
const QList<FieldShape> &sampleFieldShapes();
const FieldShape *fieldShape(const QString &name);

using Record = QMap<QString, QString>; // field name -> plain value
using Table = QMap<QString, Record>; // ID (plain) -> record

// A SQLite field holding Null. It differs from an empty text there: Null sorts before every
// text, the empty one included, and a record whose blank fields differ only in that must
// still be told apart. A FoxPro table has no Null, so its plain values never hold this.
const QString &nullPlain();
inline bool isNullPlain(const QString &plain)
{
    return plain == nullPlain();
}
// What a row shows of a plain value: Null shows empty.
inline QString textOf(const QString &plain)
{
    return isNullPlain(plain) ? QString() : plain;
}

// The plain form of a number, a date (from a QDate-able text) or a memo.
QString plainNumber(double value, int decimals);
QString plainMemo(QString text);
// True when every character of `text` has a byte in Windows-1252, the sample table's code page.
bool fitsCp1252(const QString &text);

// Reads the table; false with `error` when the file cannot be read. Deleted FoxPro records
// are left out. `duplicates` (when given) receives IDs held by more than one record.
bool readFoxProTable(const QString &dbfPath, Table *table, QString *error,
                     QStringList *duplicates = nullptr);
bool readSqliteTable(const QString &dbPath, const QString &tableName, Table *table, QString *error,
                     QStringList *duplicates = nullptr);
// The same table read by python3-dbf, a third program; false with `error` when python3 or
// its dbf module is missing or fails.
bool readFoxProWithPythonDbf(const QString &dbfPath, Table *table, QString *error);

// The differences between two tables in words, at most `limit` lines ("" when equal).
QStringList tableDifferences(const Table &expected, const Table &actual, int limit = 8);

} // namespace plx::walk
