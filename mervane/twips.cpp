// mervane/twips.cpp
#include "mervane/twips.h"

#include <QGuiApplication>
#include <QScreen>
#include <QWidget>

#include <cmath>

namespace plx {

namespace {

// The logical dots per inch of the widget's screen; 96 when there is no screen at all.
double dpi(const QWidget *widget, bool vertical)
{
    const QScreen *screen = widget ? widget->screen() : nullptr;
    if (!screen)
        screen = QGuiApplication::primaryScreen();
    if (!screen)
        return 96.0;
    const double d = vertical ? screen->logicalDotsPerInchY() : screen->logicalDotsPerInchX();
    return d > 0 ? d : 96.0;
}

int toPixels(double dotsPerInch, int twips)
{
    return int(std::lround(double(twips) * dotsPerInch / TwipsPerInch));
}

int toTwips(double dotsPerInch, int pixels)
{
    return int(std::lround(double(pixels) * TwipsPerInch / dotsPerInch));
}

} // namespace

int twipsToPixelsX(const QWidget *widget, int twips)
{
    return toPixels(dpi(widget, false), twips);
}

int twipsToPixelsY(const QWidget *widget, int twips)
{
    return toPixels(dpi(widget, true), twips);
}

int pixelsToTwipsX(const QWidget *widget, int pixels)
{
    return toTwips(dpi(widget, false), pixels);
}

int pixelsToTwipsY(const QWidget *widget, int pixels)
{
    return toTwips(dpi(widget, true), pixels);
}

} // namespace plx
