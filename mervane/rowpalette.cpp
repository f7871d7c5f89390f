// mervane/rowpalette.cpp
#include "mervane/rowpalette.h"

#include <cmath>

namespace plx {

namespace {

QColor blend(const QColor &from, const QColor &to, double amount)
{
    auto mix = [amount](int a, int b) { return int(std::lround(a + (b - a) * amount)); };
    return QColor(mix(from.red(), to.red()), mix(from.green(), to.green()),
                  mix(from.blue(), to.blue()));
}

} // namespace

bool isDarkPalette(const QPalette &palette)
{
    return palette.color(QPalette::Base).lightness() < palette.color(QPalette::Text).lightness();
}

RowShade rowShade(bool red, bool white, bool lightGray, bool altGray, bool locked)
{
    if (red)
        return RowShade::Red;
    if (white)
        return RowShade::White;
    if (lightGray)
        return RowShade::LightGray;
    if (altGray)
        return RowShade::AlternateGray;
    return locked ? RowShade::Locked : RowShade::Normal;
}

QColor shadeColor(const QPalette &palette, RowShade shade)
{
    const QColor base = palette.color(QPalette::Active, QPalette::Base);
    const QColor text = palette.color(QPalette::Active, QPalette::Text);
    const bool dark = isDarkPalette(palette);
    switch (shade) {
    case RowShade::Normal: return base;
    // A tint strong enough to notice, weak enough to keep the palette's Text readable.
    case RowShade::Red: return blend(base, QColor(0xD0, 0x20, 0x20), dark ? 0.45 : 0.28);
    // "White" is the brightest entry colour the theme has: Base lifted a little towards
    // Text in a dark theme, where pure white would glare and hide the light text.
    case RowShade::White: return dark ? blend(base, text, 0.10) : QColor(Qt::white);
    case RowShade::LightGray: return blend(base, text, dark ? 0.22 : 0.16);
    case RowShade::AlternateGray: return blend(base, text, 0.07);
    case RowShade::Locked: return palette.color(QPalette::Active, QPalette::Window);
    }
    return base;
}

QPalette shadedPalette(const QPalette &palette, RowShade shade)
{
    QPalette p = palette;
    const QColor c = shadeColor(palette, shade);
    for (QPalette::ColorGroup g : { QPalette::Active, QPalette::Inactive }) {
        p.setColor(g, QPalette::Base, c);
        p.setColor(g, QPalette::Window, c);
    }
    return p;
}

} // namespace plx
