// services/widgets/boundcontrol.h: what the navigator asks of a bound field control.
//
// The navigator keeps its field controls (the text, value-item, check-box and
// check-with-text stacks) in one collection and drives them by operation name only. This
// interface is that set of operations; it lives beside the other shared seams so that the
// navigator and the field controls both see it without depending on each other.
//
// A field control is also a QWidget; the navigator never deletes one.
#pragma once

#include <QString>
#include <QVariant>

#include <memory>

namespace plx {

class RecordSource;
struct Services;

class BoundControl
{
public:
    virtual ~BoundControl() = default;

    // Shows the current record: every row loads its value from the record source's
    // current record (or its edit buffer while the record is being edited).
    virtual void UpdateDBF() = 0;

    // Enters edit mode and validates: true when every row accepts. With `bSilent` false a
    // row may tell the user itself; `vReturn` receives one line per refusing row ("caption
    // reason"), joined with "\r\n", or "" when all accept. The text comes back through a
    // reference so that a call by name (QMetaObject::invokeMethod with
    // Q_ARG(QVariant &, text)) reads it as a direct call does.
    virtual bool bEdit(bool bSilent, QVariant &vReturn) = 0;
    // The same, for a caller that needs only the answer.
    bool bEdit(bool bSilent)
    {
        QVariant unused;
        return bEdit(bSilent, unused);
    }

    // Ends editing and writes the rows' changed values into the record source's edit
    // buffer; the navigator's Update commits them.
    virtual void EditUpdate() = 0;

    // Ends editing and restores exactly what the rows showed before editing began.
    virtual void CancelEdit() = 0;

    // Saves the rows; a non-blank text is shown to the user in a box titled Name().
    virtual QString Save() = 0;

    // True while the rows refuse typing: the navigator unlocks them for an edit or a new
    // record and locks them again when it ends.
    virtual bool Locked() const = 0;
    virtual void setLocked(bool locked) = 0;

    // Enables or disables the control and every row in it.
    virtual bool Enabled() const = 0;
    virtual void setEnabled(bool enabled) = 0;

    // The control's name as the host knows it (the QObject's objectName).
    virtual QString Name() const = 0;

    // The record source every row reads and writes. The navigator hands its own record
    // source here whenever it attaches a new one (after a sort change, a filter or a
    // re-read), so rows never keep a source the navigator has replaced.
    virtual std::shared_ptr<RecordSource> RecordSet() const = 0;
    virtual void setRecordSet(std::shared_ptr<RecordSource> source) = 0;

    // The services the control shows its boxes through (nullptr: the library's defaults).
    // A control registered with a navigator without services of its own takes the
    // navigator's, so a host that gave the navigator its prompter sees every box.
    virtual Services *services() const { return nullptr; }
    virtual void setServices(Services *services) { (void)services; }
};

} // namespace plx
