// apps/plxform/designedform.h: forms laid out in Qt Designer (.ui files) run by plxform, and
// plxform's own forms written as .ui files that Designer opens.
//
// A designed form holds one navigator and any number of field controls (mvName, mvVIText,
// mvChecks, mvChkWithTxt) with their rows set as properties. What a form description would
// add comes from the navigator: sIDfield, sDescfield, sDesc and sParentID as set in
// Designer, and two dynamic properties: "sorts" ("Name:FIELD, FIELD|Name:FIELD", as a form
// description writes them) and "required" (fields, separated by commas). A companion form
// description given as the table adds what the navigator leaves blank.
#pragma once

#include "apps/plxform/formdescription.h"

#include <QList>
#include <QWidget>

#include <memory>

namespace plx {
class mvChecks;
class mvChkWithTxt;
class mvName;
class mvPLXRecs;
class mvVIText;
} // namespace plx

namespace plx::form {

class HostForm;

struct DesignedForm
{
    std::unique_ptr<QWidget> root;
    mvPLXRecs *nav = nullptr;
    QList<mvName *> names;
    QList<mvVIText *> valueRows;
    QList<mvChecks *> checks;
    QList<mvChkWithTxt *> pairs;

    // The field controls the navigator drives, in the form's order.
    QList<QObject *> fieldControls() const;
};

// Loads `path`, making the library's controls itself (no Designer plugin needed). NotFound
// for a missing file; InvalidArgument for a file Qt cannot read as a form, or one without
// exactly one navigator.
Result<DesignedForm> loadDesignedForm(const QString &path);

// `form` completed by what the designed navigator says (see above); a sort written wrongly
// is told in `warnings`.
void applyDesignedSettings(const DesignedForm &designed, FormDescription &form,
                           QStringList *warnings);

// The form `shown` shows, as .ui XML: a column of its navigator and field controls with
// their rows, and the form's sorts and required fields on the navigator.
QByteArray designedFormXml(const HostForm &shown);

} // namespace plx::form
