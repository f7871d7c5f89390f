// services/widgets/savedplacement_p.h: the numbers a settings file holds for a form's place, read
// and judged before any of them reaches the window.
//
// The four numbers come from a file users and other programs can damage. Before they are
// judged, 2147483647 or 1e308 twips made a window of Qt's largest size, whose first paint
// took gigabytes or crashed. A number is refused when no form could have been saved with
// it on any desk:
//   - text that holds no number ("abc", "inf", "1e999");
//   - a width or height that is negative, under kSmallestSidePixels, or larger than the
//     virtual desktop (all monitors) the form opens on;
//   - a left or top that keeps the form more than kLargestReachPixels away from the
//     virtual desktop: further than any monitor unplugged since could have been. Nearer
//     positions, on or off the desktop, are the reachability rule's to handle, as always.
// A refused number is never used: the form keeps its default size and is centred, and the
// activity log gets one entry naming every refused value. A stored 0 size and a blank
// value are not damage but "nothing saved": the size is left alone, the position default.
// Values equal to the caller's default text are the default and not judged.
#pragma once

#include <QList>
#include <QRect>
#include <QString>

namespace plx {

class clsMonitors;

// A form narrower or lower than this has not been left so by a user.
inline constexpr int kSmallestSidePixels = 32;
// How far beyond the desktop a saved form may lie: wider than any row of monitors.
inline constexpr int kLargestReachPixels = 16384;

// One of the four stored numbers of a form's placement.
struct SavedTwips
{
    QString key; // "frmVIValues-W"
    QString text; // as read; the default text when the key is missing
    double twips = 0; // the number to use; the default when nothing was saved
    bool saved = false; // false: the default (a missing key, a blank value)
    QString refusal; // why the stored number cannot be used; "" when it can

    bool usable() const { return refusal.isEmpty(); }
};

// Reads key `key` of section "CONFIG" of `file` with the default text of `def`, and takes
// the number out of it (cValP), refusing text without one.
SavedTwips readSavedTwips(const QString &file, const QString &key, qint32 def);

// The limits a stored placement must keep on the desk the form opens on.
class PlacementLimits
{
public:
    explicit PlacementLimits(const clsMonitors &monitors);

    // Refuses a stored width (horizontal) or height that no form could have; a stored 0
    // stays usable (it means "leave the size alone").
    void judgeSize(SavedTwips &side, Qt::Orientation orientation) const;
    // Refuses a stored left (horizontal) or top that puts a frame `framePixels` long on
    // that axis too far from every monitor.
    void judgePosition(SavedTwips &edge, int framePixels, Qt::Orientation orientation) const;

private:
    double toPixels(double twips, Qt::Orientation orientation) const;

    QRect m_desktop; // pixels; empty without monitors
    double m_twipsPerPixelX = 15;
    double m_twipsPerPixelY = 15;
};

// The refused values of `values`, as one line: "frmX-W=1e308 (larger than the desktop)".
// Empty when every value is usable.
QString refusedValues(const QList<SavedTwips> &values);

// Writes one activity-log entry from `where` about the refused values of `file`.
void logRefusedPlacement(const QString &where, const QString &file, const QString &refused);

} // namespace plx
