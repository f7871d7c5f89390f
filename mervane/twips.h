// mervane/twips.h: twips, the unit every size and position of the controls is given in.
//
// Hosts lay forms out in twips (1440 to the logical inch), so a row that is 300 twips high
// must be as high on a 144-dpi screen as 200 twips are on a 96-dpi one. The conversion uses
// the logical resolution of the screen the widget is on, never a fixed 15 twips a pixel.
#pragma once

class QWidget;

namespace plx {

constexpr int TwipsPerInch = 1440;

// Pixels for `twips` along x or y on `widget`'s screen (the primary screen when it has none
// or `widget` is nullptr; 96 dpi when there is no screen at all), rounded to the nearest.
int twipsToPixelsX(const QWidget *widget, int twips);
int twipsToPixelsY(const QWidget *widget, int twips);
// Twips for `pixels` on `widget`'s screen, on the same screen rules, rounded to the nearest.
int pixelsToTwipsX(const QWidget *widget, int pixels);
int pixelsToTwipsY(const QWidget *widget, int pixels);

} // namespace plx
