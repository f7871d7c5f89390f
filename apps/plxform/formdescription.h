// apps/plxform/formdescription.h: what plxform shows for a table, kept in a settings file
// the user can edit.
//
//   [FORM]
//   File=/data/FACILITY.DBF          a FoxPro table file, or
//   Database=/data/care.sqlite       a SQLite database with
//   Table=FACILITY                   the table to show
//   Desc=Facilities                  what the records are (titles, messages)
//   IDField=ID                       the record ID (default: ID, else the first text field)
//   DescField=NAME                   the description shown when deleting
//   ParentID=PLE                     what new IDs start with (default PLE)
//   Sorts=Name:NAME, CITY|ID:ID      sort name ":" field list, "|" between sorts
//   Required=NAME, CITY              fields a record cannot be saved without
//   [ROW1] ... [ROWn]                text rows, in order: Caption, Field, Format, Mode,
//                                    MaxLength, LabelWidth (twips)
//   [CHECK1] ... [CHECKn]            check boxes: Caption, Field
//   [PAIR1] ... [PAIRn]              a flag with the text fields that belong to it:
//                                    Caption, Field, Details=Caption:FIELD, Caption:FIELD
#pragma once

#include "services/recordsource/recordsource.h"

#include <QList>
#include <QString>
#include <QStringList>

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

struct FormDescription
{
    QString file; // FoxPro table file
    QString database; // SQLite database file
    QString table; // SQLite table (FoxPro: the file's title)
    QString desc;
    QString idField;
    QString descField;
    QString parentID = QStringLiteral("PLE");
    QList<QPair<QString, QString>> sorts; // name, field list
    QStringList required;
    QList<RowDescription> rows;
    QList<CheckDescription> checks;
    QList<PairDescription> pairs;

    bool isFoxPro() const { return !file.isEmpty(); }
};

// Reads a form description. Keys plxform does not know and values it cannot use are told
// in `warnings`, one line each; a file that is not a form description at all gives an
// error Status. Never throws, whatever the file holds.
Result<FormDescription> loadFormDescription(const QString &path, QStringList *warnings);

// Writes `form` to `path` (replacing it).
Status saveFormDescription(const FormDescription &form, const QString &path);

// A description made from the table's own fields: text, number, date and memo fields as
// rows, logical fields as check boxes, the ID field (a field named ID, else the first
// text field), and sorts by ID and by each text field that looks like a name.
FormDescription describeTable(const QList<FieldInfo> &fields, const QString &desc);

// The field names the description uses that `fields` does not have, one line each.
QStringList checkFieldNames(const FormDescription &form, const QList<FieldInfo> &fields);

} // namespace plx::form
