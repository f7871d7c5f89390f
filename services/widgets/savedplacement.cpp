// services/widgets/savedplacement.cpp: reading and judging a form's stored placement numbers.
#include "services/widgets/savedplacement_p.h"

#include "services/activitylog.h"
#include "services/ini.h"
#include "services/widgets/monitors.h"
#include "services/texthelpers.h"

#include <QLocale>

#include <cmath>

namespace plx {

namespace {

// True for text that is a plain number equal to 0 ("0", " -0.0 "): the one case where
// cValP's 0 is the stored number rather than the sign that there was none.
bool isNumericZero(const QString &text)
{
    bool ok = false;
    const double d = QLocale::c().toDouble(text.trimmed(), &ok);
    return ok && d == 0;
}

double axisLength(const QRect &r, Qt::Orientation o)
{
    return o == Qt::Horizontal ? r.width() : r.height();
}

double axisStart(const QRect &r, Qt::Orientation o)
{
    return o == Qt::Horizontal ? r.left() : r.top();
}

} // namespace

SavedTwips readSavedTwips(const QString &file, const QString &key, qint32 def)
{
    SavedTwips v;
    v.key = key;
    const QString defText = QString::number(def);
    v.text = getINIString(QStringLiteral("CONFIG"), key, defText, file);
    v.twips = def;
    if (v.text == defText || getLenTrim(v.text) < 1)
        return v; // nothing saved, or the default itself
    v.saved = true;
    v.twips = cValP(v.text);
    // cValP gives 0 for text it takes no number from; only a written 0 is a stored 0.
    if (v.twips == 0 && !isNumericZero(v.text))
        v.refusal = QStringLiteral("not a number");
    if (!std::isfinite(v.twips))
        v.refusal = QStringLiteral("not a number");
    return v;
}

PlacementLimits::PlacementLimits(const clsMonitors &monitors)
    : m_twipsPerPixelX(monitors.TwipsPerPixelX()), m_twipsPerPixelY(monitors.TwipsPerPixelY())
{
    if (monitors.Count() > 0)
        m_desktop = QRect(monitors.DesktopLeft(), monitors.DesktopTop(), monitors.DesktopWidth(),
                          monitors.DesktopHeight());
}

double PlacementLimits::toPixels(double twips, Qt::Orientation orientation) const
{
    return twips / (orientation == Qt::Horizontal ? m_twipsPerPixelX : m_twipsPerPixelY);
}

void PlacementLimits::judgeSize(SavedTwips &side, Qt::Orientation orientation) const
{
    if (!side.saved || !side.usable() || side.twips == 0)
        return;
    const double pixels = toPixels(side.twips, orientation);
    // Without monitors there is no desktop to measure against; the reach stands in.
    const double largest =
        m_desktop.isEmpty() ? kLargestReachPixels : axisLength(m_desktop, orientation);
    if (side.twips < 0)
        side.refusal = QStringLiteral("negative");
    else if (pixels < kSmallestSidePixels)
        side.refusal = QStringLiteral("smaller than %1 pixels").arg(kSmallestSidePixels);
    else if (pixels > largest)
        side.refusal = QStringLiteral("larger than the desktop");
}

void PlacementLimits::judgePosition(SavedTwips &edge, int framePixels,
                                    Qt::Orientation orientation) const
{
    if (!edge.saved || !edge.usable())
        return;
    const double start = toPixels(edge.twips, orientation);
    const double deskStart = m_desktop.isEmpty() ? 0 : axisStart(m_desktop, orientation);
    const double deskEnd = deskStart + axisLength(m_desktop, orientation);
    if (start + framePixels < deskStart - kLargestReachPixels
        || start > deskEnd + kLargestReachPixels)
        edge.refusal = QStringLiteral("too far from every monitor");
}

QString refusedValues(const QList<SavedTwips> &values)
{
    // Enough of a damaged value to recognise it; a line of 1,998 digits helps nobody.
    constexpr qsizetype shownChars = 40;
    QStringList refused;
    for (const SavedTwips &v : values)
        if (!v.usable())
            refused << QStringLiteral("%1=%2 (%3)")
                           .arg(v.key,
                                v.text.size() > shownChars
                                    ? v.text.left(shownChars) + QStringLiteral("...")
                                    : v.text,
                                v.refusal);
    return refused.join(QStringLiteral(", "));
}

void logRefusedPlacement(const QString &where, const QString &file, const QString &refused)
{
    // Support staff learn why a form did not come back where it was; the user sees a
    // centred form of its usual size. A log that cannot be written changes nothing here.
    logEntry(where,
             QStringLiteral("%1: refused %2; the form opens centred at its default size")
                 .arg(file, refused));
}

} // namespace plx
