// services/widgets/formplacement.h: forms remember where the user left them.
//
// A form's position and size are kept in section "CONFIG" of a settings file under four
// keys: the key base (see formKeyBase) followed by "-X" (left), "-Y" (top), "-W" (width)
// and "-H" (height), each a plain decimal number of twips. A blank settings-file argument
// means the defaults file "HBDEFAULTS.INI". Callers save when a form closes and restore
// size, then position, before it is shown:
//
//     MainWindow w;                                          // designed size in the code
//     w.setObjectName(QStringLiteral("frmPlxForm"));          // the key base
//     plx::restoreFormPlacement(&w, QString(), iniFile);      // before show()
//     w.show();
//     ... in closeEvent(): plx::saveFormPlacement(this, QString(), iniFile);
//
// A restored position is kept reachable: when setting "MultipleMonitors" of the defaults
// file is true (the default), the whole multi-monitor desktop counts as the screen,
// otherwise the primary monitor alone. A form whose left or top edge lies before the
// desktop's is pulled back a tenth of the desktop's size in from the origin; a form of
// which less than a tenth of its width or height would remain before the desktop's right
// or bottom edge is centred on the primary monitor. The two edges are treated differently
// on purpose: a form slightly off the right is still reachable by its title bar, one off
// the left or top may have lost it.
//
// Damaged settings: a stored number no form could have been saved with (text without a
// number, a negative size, a side under 32 pixels or larger than the virtual desktop, a
// position more than 16384 pixels away from it) is refused before it is used: the form
// keeps its default size and is centred on the primary monitor, and the activity log gets
// one entry naming each refused key and value. A stored 0 size or a blank value means
// nothing was saved (the size is left alone, the position is the default). Positions
// nearer the desktop, on it or not, follow the reachability rule above.
//
// Geometry of the form: Left/Top are the frame's top-left corner (QWidget::pos(), which
// move() sets); Width/Height are the client size (QWidget::size(), which resize() sets),
// so that a save and a restore round-trip exactly, even before a window has a frame. The
// reachability and centring rules measure the frame, which is what the user sees. Pass a
// top-level window (a QMainWindow, QDialog or parentless QWidget).
//
// `monitors` is the monitor list to measure the desktop with; nullptr reads Qt's screens.
// It converts pixels to twips too (services/widgets/monitors.h). GUI thread only.
#pragma once

#include "services/widgets/monitorlist.h"

#include <QPointF>
#include <QRectF>
#include <QString>

class QWidget;

namespace plx {

class clsMonitors;

// The form's name and the suffix joined by one blank and trimmed of spaces ("frmVIValues"
// with an empty suffix, "frmVIValues Grid" with "Grid"). The name is the form's objectName();
// a form without one is known by its class name, so that unnamed forms of different classes
// still keep separate keys.
QString formKeyBase(const QWidget *form, const QString &suffix);

// True when the form is neither minimised, maximised nor full-screen: the only state whose
// geometry is worth remembering.
bool isNormalWindowState(const QWidget *form);

// Save position: in the normal state only, writes Left to key base & "-X" and Top to
// key base & "-Y". Save size: likewise Height to "-H" and Width to "-W". Each returns true
// when it wrote both keys; false when the form is null or not in the normal state (nothing
// written) or when the file could not be written.
bool saveFormPosition(QWidget *form, const QString &suffix, const QString &iniFile,
                      const MonitorList *monitors = nullptr);
bool saveFormSize(QWidget *form, const QString &suffix, const QString &iniFile,
                  const MonitorList *monitors = nullptr);

// Restore size: reads "-H" with the default text of `defaultHeight` (of the form's current
// height when `defaultHeight` < 1) and, when the number read (cValP) is above 0, makes it
// the form's height; then the same for "-W" and the width. A stored 0 leaves that side
// alone; so does a refused value (see above), which is logged.
void restoreFormSize(QWidget *form, const QString &suffix, qint32 defaultHeight,
                     qint32 defaultWidth, const QString &iniFile,
                     const MonitorList *monitors = nullptr);

// Restore position: reads "-X" and "-Y" (defaults: the given value, or the form's current
// one when the given value is below 1), then moves the form to where the reachability rule
// puts it (see reachableFormPosition). A refused value is logged and centres the form.
void restoreFormPosition(QWidget *form, const QString &suffix, qint32 defaultLeft,
                         qint32 defaultTop, const QString &iniFile,
                         const MonitorList *monitors = nullptr);

// Centres the form on the screen (the whole primary monitor, task bars included):
// Left = (screen width - form width) / 2, Top = (screen height - form height) / 2.
void setFormCenter(QWidget *form, const MonitorList *monitors = nullptr);

// Both saves (position, then size). True when everything was written.
bool saveFormPlacement(QWidget *form, const QString &suffix, const QString &iniFile,
                       const MonitorList *monitors = nullptr);
// Restore size, then restore position, each with the form's current geometry as the
// default, so a first opening keeps the designed geometry. Size goes first because the
// reachability rule measures the restored size. All four values are judged first: when
// any is refused, one log entry names them and the form keeps its size, centred.
void restoreFormPlacement(QWidget *form, const QString &suffix, const QString &iniFile,
                          const MonitorList *monitors = nullptr);

// Where a form whose frame is `formTwips` (left, top, width, height in twips) ends up under
// the reachability rule; `multipleMonitors` is the value of "MultipleMonitors". Returns the
// new left and top in twips (fractions kept, as the rule divides). Without monitors the
// position is returned unchanged: there is nothing to be reachable on.
QPointF reachableFormPosition(const QRectF &formTwips, bool multipleMonitors,
                              const clsMonitors &monitors);
// The left and top in twips that centre a frame of `formTwips` size on the primary monitor.
QPointF centredFormPosition(const QSizeF &formTwips, const clsMonitors &monitors);

} // namespace plx
