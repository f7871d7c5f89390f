// fields/fieldcontrol.cpp
#include "fields/fieldcontrol_p.h"

#include "services/paths.h"

#include <QFileInfo>
#include <QWidget>

namespace plx {

FieldControlPrivate::~FieldControlPrivate() = default;

bool FieldControlPrivate::tableFileFound(const QString &path) const
{
    // Hosts write the library's "\" paths; the disk wants its own separators.
    const QFileInfo file(plx::toDiskPath(path));
    if (file.exists() && !file.isDir())
        return true;
    (void)plx::prompterOf(services).msgBox(QStringLiteral("Database file not found:\r\n") + path,
                                           plx::MsgStyle::Critical,
                                           QStringLiteral("File Not Found"));
    return false;
}

void FieldControlPrivate::yieldOnce() const
{
    plx::uiPumpOf(services).processEvents();
}

void FieldControlPrivate::enableParts(bool enabled)
{
    setPartsEnabled(enabled);
    partsHeldDisabled = !enabled;
}

void FieldControlPrivate::enabledChanged(const QWidget &control)
{
    // Qt marks a widget disabled by its own setEnabled(false) as force-disabled; one that a
    // parent disabled is not, and its parts follow the parent without help. Parts held
    // disabled one by one come back only with the control's own enabling, which is the
    // only way out of its force-disabled state.
    if (!control.isEnabled()) {
        if (control.testAttribute(Qt::WA_ForceDisabled))
            enableParts(false);
    } else if (partsHeldDisabled) {
        enableParts(true);
    }
}

} // namespace plx
