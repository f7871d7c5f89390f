// services/formplacement.cpp: saving and restoring forms' positions and sizes, and the
// rule that keeps a restored form reachable.
#include "services/formplacement.h"

#include "services/ini.h"
#include "services/monitors.h"
#include "services/texthelpers.h"

#include <QWidget>

namespace plx {

namespace {

const QString &configSection()
{
    static const QString section = QStringLiteral("CONFIG");
    return section;
}

// The settings file to use: a blank argument means the defaults file.
QString settingsFile(const QString &iniFile)
{
    return getLenTrim(iniFile) < 1 ? getDefaultsINI() : iniFile;
}

// "MultipleMonitors" lives in the defaults file whatever file the form's keys are in: it
// describes the machine, not the form.
bool multipleMonitorsSetting()
{
    return getINIBool(configSection(), QStringLiteral("MultipleMonitors"), true, QString());
}

// The stored number of twips under key base & `ending`, or `def` when the key is missing.
double readTwips(const QString &file, const QString &keyBase, const char *ending, qint32 def)
{
    const QString key = keyBase + QLatin1String(ending);
    return cValP(getINIString(configSection(), key, QString::number(def), file));
}

bool writeTwips(const QString &file, const QString &keyBase, const char *ending, qint32 twips)
{
    return writeINI(configSection(), keyBase + QLatin1String(ending), file, QString::number(twips));
}

QRectF frameInTwips(const QWidget *form, const clsMonitors &m)
{
    const QRect frame = form->frameGeometry();
    return QRectF(m.pixelsToTwipsX(form->x()), m.pixelsToTwipsY(form->y()),
                  m.pixelsToTwipsX(frame.width()), m.pixelsToTwipsY(frame.height()));
}

void moveToTwips(QWidget *form, const QPointF &twips, const clsMonitors &m)
{
    form->move(m.twipsToPixelsX(twips.x()), m.twipsToPixelsY(twips.y()));
}

} // namespace

QString formKeyBase(const QWidget *form, const QString &suffix)
{
    if (!form)
        return trimSpaces(suffix);
    QString name = form->objectName();
    if (name.isEmpty())
        name = QString::fromLatin1(form->metaObject()->className());
    return trimSpaces(name + QLatin1Char(' ') + suffix);
}

bool isNormalWindowState(const QWidget *form)
{
    return form
        && !(form->windowState()
             & (Qt::WindowMinimized | Qt::WindowMaximized | Qt::WindowFullScreen));
}

bool saveFormPosition(QWidget *form, const QString &suffix, const QString &iniFile,
                      const MonitorList *monitors)
{
    // A minimised or maximised form's geometry is not where the user put it; writing
    // nothing keeps the normal-state values of the last save.
    if (!isNormalWindowState(form))
        return false;
    const clsMonitors m(monitors);
    const QString file = settingsFile(iniFile);
    const QString keyBase = formKeyBase(form, suffix);
    const bool x = writeTwips(file, keyBase, "-X", m.pixelsToTwipsX(form->x()));
    const bool y = writeTwips(file, keyBase, "-Y", m.pixelsToTwipsY(form->y()));
    return x && y;
}

bool saveFormSize(QWidget *form, const QString &suffix, const QString &iniFile,
                  const MonitorList *monitors)
{
    if (!isNormalWindowState(form))
        return false;
    const clsMonitors m(monitors);
    const QString file = settingsFile(iniFile);
    const QString keyBase = formKeyBase(form, suffix);
    const bool h = writeTwips(file, keyBase, "-H", m.pixelsToTwipsY(form->height()));
    const bool w = writeTwips(file, keyBase, "-W", m.pixelsToTwipsX(form->width()));
    return h && w;
}

void restoreFormSize(QWidget *form, const QString &suffix, qint32 defaultHeight,
                     qint32 defaultWidth, const QString &iniFile, const MonitorList *monitors)
{
    if (!form)
        return;
    const clsMonitors m(monitors);
    const QString file = settingsFile(iniFile);
    const QString keyBase = formKeyBase(form, suffix);

    const double height = readTwips(
        file, keyBase, "-H", defaultHeight < 1 ? m.pixelsToTwipsY(form->height()) : defaultHeight);
    if (height > 0)
        form->resize(form->width(), m.twipsToPixelsY(height));
    const double width = readTwips(
        file, keyBase, "-W", defaultWidth < 1 ? m.pixelsToTwipsX(form->width()) : defaultWidth);
    if (width > 0)
        form->resize(m.twipsToPixelsX(width), form->height());
}

void restoreFormPosition(QWidget *form, const QString &suffix, qint32 defaultLeft,
                         qint32 defaultTop, const QString &iniFile, const MonitorList *monitors)
{
    if (!form)
        return;
    const clsMonitors m(monitors);
    const QString file = settingsFile(iniFile);
    const QString keyBase = formKeyBase(form, suffix);

    const double left =
        readTwips(file, keyBase, "-X", defaultLeft < 1 ? m.pixelsToTwipsX(form->x()) : defaultLeft);
    const double top =
        readTwips(file, keyBase, "-Y", defaultTop < 1 ? m.pixelsToTwipsY(form->y()) : defaultTop);
    // The rule runs on the stored twips, before they are rounded to pixels, so that its
    // edges fall where the numbers in the file say they do.
    const QRectF frame = frameInTwips(form, m);
    const QRectF restored(left, top, frame.width(), frame.height());
    moveToTwips(form, reachableFormPosition(restored, multipleMonitorsSetting(), m), m);
}

void setFormCenter(QWidget *form, const MonitorList *monitors)
{
    if (!form)
        return;
    const clsMonitors m(monitors);
    if (m.Count() == 0)
        return;
    moveToTwips(form, centredFormPosition(frameInTwips(form, m).size(), m), m);
}

bool saveFormPlacement(QWidget *form, const QString &suffix, const QString &iniFile,
                       const MonitorList *monitors)
{
    const bool position = saveFormPosition(form, suffix, iniFile, monitors);
    const bool size = saveFormSize(form, suffix, iniFile, monitors);
    return position && size;
}

void restoreFormPlacement(QWidget *form, const QString &suffix, const QString &iniFile,
                          const MonitorList *monitors)
{
    restoreFormSize(form, suffix, 0, 0, iniFile, monitors);
    restoreFormPosition(form, suffix, 0, 0, iniFile, monitors);
}

QPointF centredFormPosition(const QSizeF &formTwips, const clsMonitors &monitors)
{
    // The screen is the primary monitor. Its own corner is added so that a primary that
    // does not sit at the desktop's origin (possible with Qt) still gets the form.
    const clsMonitor screen = monitors.PrimaryMonitor();
    const double left = monitors.pixelsToTwipsX(screen.Left());
    const double top = monitors.pixelsToTwipsY(screen.Top());
    const double width = monitors.pixelsToTwipsX(screen.Width());
    const double height = monitors.pixelsToTwipsY(screen.Height());
    return { left + (width - formTwips.width()) / 2, top + (height - formTwips.height()) / 2 };
}

QPointF reachableFormPosition(const QRectF &formTwips, bool multipleMonitors,
                              const clsMonitors &monitors)
{
    if (monitors.Count() == 0)
        return formTwips.topLeft();
    double left = formTwips.left();
    double top = formTwips.top();
    double deskLeft = 0;
    double deskTop = 0;
    double deskWidth = 0;
    double deskHeight = 0;
    // Where a form that is off the left or top edge comes back to.
    double pullLeft = 0;
    double pullTop = 0;
    if (multipleMonitors) {
        deskLeft = monitors.DesktopLeftTwps();
        deskTop = monitors.DesktopTopTwps();
        deskWidth = monitors.DesktopWidthTwps();
        deskHeight = monitors.DesktopHeightTwps();
        // Deliberate: a tenth of the desktop's size measured from the origin (the primary
        // monitor's corner on the hosts' platform), not from the desktop's own corner.
        pullLeft = deskWidth / 10;
        pullTop = deskHeight / 10;
    } else {
        const clsMonitor screen = monitors.PrimaryMonitor();
        deskLeft = monitors.pixelsToTwipsX(screen.Left());
        deskTop = monitors.pixelsToTwipsY(screen.Top());
        deskWidth = monitors.pixelsToTwipsX(screen.Width());
        deskHeight = monitors.pixelsToTwipsY(screen.Height());
        pullLeft = deskLeft + deskWidth / 10;
        pullTop = deskTop + deskHeight / 10;
    }
    // Deliberate: any overhang on the left or top is pulled back, while on the right or
    // bottom a tenth of the form may still show before the form is centred. The title bar
    // and the left edge are what the user needs to get the form back.
    if (left < deskLeft)
        left = pullLeft;
    if (top < deskTop)
        top = pullTop;
    const double right = deskLeft + deskWidth;
    const double bottom = deskTop + deskHeight;
    if (left + formTwips.width() / 10 > right || top + formTwips.height() / 10 > bottom)
        return centredFormPosition(formTwips.size(), monitors);
    return { left, top };
}

} // namespace plx
