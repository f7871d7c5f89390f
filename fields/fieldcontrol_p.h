// fields/fieldcontrol_p.h: what every field control keeps beside its rows: the services its
// boxes go through, the table-file check, and how its enabling reaches its parts.
//
// A field control's own enabling sets each of its parts (rows, a row's editors, a check
// box) explicitly, so that a part disabled on its own comes back with the control. The
// control forwards its changeEvent here, so that QWidget::setEnabled called on the control
// does the same; when a parent's enabling reaches the control, only Qt passes it on.
#pragma once

#include "services/env.h"

#include <QString>

class QWidget;

namespace plx {

class FieldControlPrivate
{
public:
    FieldControlPrivate() = default;
    virtual ~FieldControlPrivate();
    FieldControlPrivate(const FieldControlPrivate &) = delete;
    FieldControlPrivate &operator=(const FieldControlPrivate &) = delete;

    // True when `path` names a file; otherwise shows the one "File Not Found" box.
    bool tableFileFound(const QString &path) const;
    // Lets the user interface handle what is pending, once.
    void yieldOnce() const;

    // Sets every part to `enabled` (setPartsEnabled) and remembers whether they are now
    // held disabled one by one.
    void enableParts(bool enabled);
    // For the control's changeEvent on QEvent::EnabledChange.
    void enabledChanged(const QWidget &control);

    plx::Services *services = nullptr;

protected:
    virtual void setPartsEnabled(bool enabled) = 0;

private:
    bool partsHeldDisabled = false;
};

} // namespace plx
