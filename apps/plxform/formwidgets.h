// apps/plxform/formwidgets.h: the controls of a form made from its description: the text
// rows, the check boxes, the flags with their text rows and the value-item rows, and the
// layout that holds them under the navigator.
#pragma once

#include "apps/plxform/formdescription.h"

#include <QList>

class QWidget;

namespace plx {
class mvChecks;
class mvChkWithTxt;
class mvName;
class mvPLXRecs;
class mvVIText;
} // namespace plx

namespace plx::form {

// How tall a memo's row is: room for a few lines.
inline constexpr qint16 kMemoRowHeight = 1300;
// Whether `fields` holds a field `name` (case and blanks around it ignored).
bool hasField(const QList<FieldInfo> &fields, const QString &name);
// Whether `name` is a memo field of `fields`.
bool isMemo(const QList<FieldInfo> &fields, const QString &name);

mvName *makeTextRows(const QList<RowDescription> &shownRows, const QList<FieldInfo> &fields);
mvChecks *makeCheckBoxes(const QList<CheckDescription> &shownChecks);
// A flag with the text rows that belong to it, one unit; `number` counts from 1.
mvChkWithTxt *makePair(const PairDescription &p, qsizetype number, const QList<FieldInfo> &fields);
// One stack per value-item row: each row keeps its own list, and a stack has one list.
// Their captions are as wide as the text rows' above them, so the values line up.
QList<mvVIText *> makeValueRows(const QList<ValueRowDescription> &shown);
// The navigator on top; below it the text rows and the value-item rows, and beside them the
// check boxes and the pairs, all in one scroll area.
QWidget *formLayout(mvPLXRecs *nav, mvName *rows, const QList<mvVIText *> &valueRows,
                    mvChecks *checks, const QList<mvChkWithTxt *> &pairs);

// The rows of the fields `required` names refuse a blank value ("is required"), as a rule of
// the row: the stack's own validation then names them like any row it refuses.
void requireValues(mvName &rows, const QStringList &required);

} // namespace plx::form
