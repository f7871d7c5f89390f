// apps/plxform/indextags.h: the index tags of a FoxPro table's structural .CDX file, read
// for what a generated form offers: its tags as sort orders, and a unique tag's field as
// the key of a table that has no ID field.
#pragma once

#include "services/recordsource/recordsource.h"

#include <QList>
#include <QString>
#include <QStringList>

namespace plx::form {

struct IndexTag
{
    QString name; // as FoxPro shows it, upper case
    QString expression; // the key expression, as written
    bool unique = false; // UNIQUE or a Visual FoxPro candidate (primary) key
};

// The tags of the structural index beside `tableFile` (the same name with .CDX in any
// case), in the file's (alphabetical) order; none when there is no such file or it cannot
// be read. Never throws, whatever the file holds.
QList<IndexTag> readIndexTags(const QString &tableFile);

// The fields a tag's key expression orders by, in order, when the expression names only
// fields of `fields` (joined by "+", each perhaps inside UPPER(), LOWER(), ALLTRIM(),
// STR() or DTOS()); empty for any other expression.
QStringList tagFields(const QString &expression, const QList<FieldInfo> &fields);

// The code-page mark of a FoxPro table file's header (byte 29); 0 when the table has none
// (a DOS table: its text is in whatever code page the program that wrote it used), -1
// when the file cannot be read.
int codePageMark(const QString &tableFile);

} // namespace plx::form
