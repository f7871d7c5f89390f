// services/widgets/formplacement.cpp: saving and restoring forms' positions and sizes, and the
// rule that keeps a restored form reachable.
#include "services/widgets/formplacement.h"

#include "services/ini.h"
#include "services/widgets/monitors.h"
#include "services/widgets/savedplacement_p.h"
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

struct StoredSize
{
    SavedTwips height, width;
};

struct StoredPosition
{
    SavedTwips left, top;
};

// "-H" and "-W", judged. Defaults: the given ones, or the current size for one below 1.
StoredSize readSize(const QWidget *form, const QString &file, const QString &keyBase,
                    qint32 defaultHeight, qint32 defaultWidth, const clsMonitors &m)
{
    StoredSize size{
        readSavedTwips(file, keyBase + QStringLiteral("-H"),
                       defaultHeight < 1 ? m.pixelsToTwipsY(form->height()) : defaultHeight),
        readSavedTwips(file, keyBase + QStringLiteral("-W"),
                       defaultWidth < 1 ? m.pixelsToTwipsX(form->width()) : defaultWidth)
    };
    const PlacementLimits limits(m);
    limits.judgeSize(size.height, Qt::Vertical);
    limits.judgeSize(size.width, Qt::Horizontal);
    return size;
}

// The client size `size` gives the form: a usable number above 0 replaces that side.
QSize sizeAfter(const QWidget *form, const StoredSize &size, const clsMonitors &m)
{
    QSize client = form->size();
    if (size.height.usable() && size.height.twips > 0)
        client.setHeight(m.twipsToPixelsY(size.height.twips));
    if (size.width.usable() && size.width.twips > 0)
        client.setWidth(m.twipsToPixelsX(size.width.twips));
    return client;
}

// "-X" and "-Y", judged for a form whose frame will be `frame` pixels. Defaults: the given
// ones, or the current position for one below 1.
StoredPosition readPosition(const QWidget *form, const QString &file, const QString &keyBase,
                            qint32 defaultLeft, qint32 defaultTop, const QSize &frame,
                            const clsMonitors &m)
{
    StoredPosition position{
        readSavedTwips(file, keyBase + QStringLiteral("-X"),
                       defaultLeft < 1 ? m.pixelsToTwipsX(form->x()) : defaultLeft),
        readSavedTwips(file, keyBase + QStringLiteral("-Y"),
                       defaultTop < 1 ? m.pixelsToTwipsY(form->y()) : defaultTop)
    };
    const PlacementLimits limits(m);
    limits.judgePosition(position.left, frame.width(), Qt::Horizontal);
    limits.judgePosition(position.top, frame.height(), Qt::Vertical);
    return position;
}

// The frame a form of client size `client` has (the frame adds what it adds now).
QSize frameFor(const QWidget *form, const QSize &client)
{
    return client + (form->frameGeometry().size() - form->size());
}

// Moves the form where the reachability rule puts the stored position.
void placeReachably(QWidget *form, const StoredPosition &position, const clsMonitors &m)
{
    // The rule runs on the stored twips, before they are rounded to pixels, so that its
    // edges fall where the numbers in the file say they do.
    const QRectF frame = frameInTwips(form, m);
    const QRectF restored(position.left.twips, position.top.twips, frame.width(), frame.height());
    moveToTwips(form, reachableFormPosition(restored, multipleMonitorsSetting(), m), m);
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
    const StoredSize size =
        readSize(form, file, formKeyBase(form, suffix), defaultHeight, defaultWidth, m);
    if (const QString refused = refusedValues({ size.height, size.width }); !refused.isEmpty())
        logRefusedPlacement(QStringLiteral("restoreFormSize"), file, refused);
    form->resize(sizeAfter(form, size, m));
}

void restoreFormPosition(QWidget *form, const QString &suffix, qint32 defaultLeft,
                         qint32 defaultTop, const QString &iniFile, const MonitorList *monitors)
{
    if (!form)
        return;
    const clsMonitors m(monitors);
    const QString file = settingsFile(iniFile);
    const StoredPosition position = readPosition(form, file, formKeyBase(form, suffix), defaultLeft,
                                                 defaultTop, form->frameGeometry().size(), m);
    if (const QString refused = refusedValues({ position.left, position.top });
        !refused.isEmpty()) {
        logRefusedPlacement(QStringLiteral("restoreFormPosition"), file, refused);
        setFormCenter(form, monitors);
        return;
    }
    placeReachably(form, position, m);
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
    if (!form)
        return;
    const clsMonitors m(monitors);
    const QString file = settingsFile(iniFile);
    const QString keyBase = formKeyBase(form, suffix);
    // All four numbers are judged before any is used, so that damage anywhere gives one
    // log entry and one outcome: the designed size, centred.
    const StoredSize size = readSize(form, file, keyBase, 0, 0, m);
    const QSize client = sizeAfter(form, size, m);
    const StoredPosition position =
        readPosition(form, file, keyBase, 0, 0, frameFor(form, client), m);
    const QString refused = refusedValues({ size.height, size.width, position.left, position.top });
    if (!refused.isEmpty()) {
        logRefusedPlacement(QStringLiteral("restoreFormPlacement"), file, refused);
        setFormCenter(form, monitors);
        return;
    }
    form->resize(client);
    placeReachably(form, position, m);
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
