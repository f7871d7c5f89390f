// apps/plxform/formdescription.h: what plxform shows for a table, kept in a settings file
// the user can edit.
//
//   [FORM]
//   File=/data/FACILITY.DBF          a FoxPro table file, or
//   Database=/data/care.sqlite       a SQLite database with
//   Table=FACILITY                   the table to show
//   Desc=Facilities                  what the records are (titles, messages)
//   IDField=ID                       the record ID (default: a field named ID)
//   GenerateIDs=No                   the user types the key (default Yes when the ID field
//                                    can hold a made ID; a table without an ID field
//                                    gets a typed key: the field of its unique index tag,
//                                    else its first field)
//   DescField=NAME                   the description shown when deleting
//   ParentID=PLE                     what new IDs start with (default PLE)
//   Sorts=Name:NAME, CITY|ID:ID      sort name ":" field list, "|" between sorts
//   Required=NAME, CITY              fields a record cannot be saved without
//   CodePage=850                     the code page of a DOS table's text (a table whose
//                                    header names none)
//   Collate=General                  how a FoxPro table orders text: General (a, A, b,
//                                    B...) or Machine (character codes)
//   [ROW1] ... [ROWn]                text rows, in order: Caption, Field, Format, Mode,
//                                    MaxLength, LabelWidth (twips)
//   [CHECK1] ... [CHECKn]            check boxes: Caption, Field
//   [PAIR1] ... [PAIRn]              a flag with the text fields that belong to it:
//                                    Caption, Field, Details=Caption:FIELD, Caption:FIELD
//   [VALUES1] ... [VALUESn]          value-item rows (mvVIText), below the text rows:
//                                    Caption, Field, and where the row's list of allowed
//                                    values is kept: ListFile (a settings file; a relative
//                                    path is beside the description), ListSection, ListKey
#pragma once

#include "apps/plxform/indextags.h"
#include "services/recordsource/recordsource.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

namespace plx::form {

struct RowDescription
{
    QString caption, field, format, mode;
    int maxLength = 0; // 0: the field's size
    int labelWidth = 0; // twips; 0: the form's default
};

struct CheckDescription
{
    QString caption, field;
};

struct PairDescription
{
    QString caption, field; // the flag
    QList<QPair<QString, QString>> details; // caption, field of each detail row
};

// A text row whose values are picked from a list the user keeps (a double click opens the
// list): the list is the settings value at listFile / listSection / listKey.
struct ValueRowDescription
{
    QString caption, field;
    QString listFile, listSection, listKey;
};

struct FormDescription
{
    QString file; // FoxPro table file
    QString database; // SQLite database file
    QString server; // PostgreSQL: a libpq connection string or postgresql:// URI
    QString table; // SQLite table (FoxPro: the file's title)
    QString source; // the form description file this was read from ("" when made)
    QString desc;
    QString idField;
    QString descField;
    QString parentID = QStringLiteral("PLE");
    bool generateIDs = true; // false: the user types the key in the ID field
    int codePage = 0; // 0: the table's own (or the engine's default for a DOS table)
    QString collate; // "General", "Machine" or "" (the engine's default)
    QList<QPair<QString, QString>> sorts; // name, field list
    QStringList required;
    QList<RowDescription> rows;
    QList<CheckDescription> checks;
    QList<PairDescription> pairs;
    QList<ValueRowDescription> valueRows;

    bool isFoxPro() const { return !file.isEmpty(); }
    bool isServer() const { return !server.isEmpty(); }
    // What the user knows the table's database as: the table file, the SQLite database's
    // file name, or "PostgreSQL <database>" (never the connection string, which may hold a
    // password).
    QString databaseLabel() const;
};

// Sorts as a form description writes them, "Name:FIELD, FIELD|Name:FIELD", and back; a sort
// without a name or fields is warned of and left out.
QList<QPair<QString, QString>> readSorts(const QString &text, QStringList *warnings);
QString sortsText(const QList<QPair<QString, QString>> &sorts);

// The database a libpq connection string or URI names ("" when it names none).
QString serverDatabaseName(const QString &conninfo);

// Reads a form description. Keys plxform does not know and values it cannot use are told
// in `warnings`, one line each; a file that is not a form description at all gives an
// error Status. Never throws, whatever the file holds.
Result<FormDescription> loadFormDescription(const QString &path, QStringList *warnings);

// Writes `form` to `path` (replacing it).
Status saveFormDescription(const FormDescription &form, const QString &path);

// A description made from the table's own fields: text, number, date and memo fields as
// rows (each with the input mode and length its field takes), logical fields as check
// boxes, the key (chooseKey), and sorts by the key, by each index tag whose expression
// names fields, and by each text, number and date field.
FormDescription describeTable(const QList<FieldInfo> &fields, const QString &desc,
                              const QList<IndexTag> &tags = {});

// Settles form.idField and form.generateIDs for `fields`: the field IDField names, else a
// field named ID, gets IDs made by the navigator when it is a text field long enough for
// one (ParentID + 7 characters) and GenerateIDs is not No. Without either field the user
// types the key: the field of a unique index tag, else the first field.
void chooseKey(FormDescription &form, const QList<FieldInfo> &fields, const QList<IndexTag> &tags);

// A text row for `field`: its caption, and the mode, length and format that keep typing
// within what the field can hold.
RowDescription rowFor(const FieldInfo &field);

// Reads a code page (a number 1..65535) or a collation ("General", "Machine", any case);
// std::nullopt for anything else.
std::optional<int> parseCodePage(const QString &text);
std::optional<QString> parseCollate(const QString &text);

// The field names the description uses that `fields` does not have, one line each.
QStringList checkFieldNames(const FormDescription &form, const QList<FieldInfo> &fields);

} // namespace plx::form
