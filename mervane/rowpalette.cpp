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

QPalette darkPalette()
{
    const QColor text(0xe6, 0xe6, 0xe6);
    const QColor window(0x2f, 0x31, 0x35);
    const QColor raised(0x3a, 0x3d, 0x42);
    QPalette p;
    p.setColor(QPalette::Window, window);
    p.setColor(QPalette::WindowText, text);
    p.setColor(QPalette::Base, QColor(0x1f, 0x21, 0x24));
    p.setColor(QPalette::AlternateBase, QColor(0x2a, 0x2c, 0x30));
    p.setColor(QPalette::Text, text);
    p.setColor(QPalette::Button, raised);
    p.setColor(QPalette::ButtonText, text);
    p.setColor(QPalette::ToolTipBase, raised);
    p.setColor(QPalette::ToolTipText, text);
    p.setColor(QPalette::Highlight, QColor(0x3d, 0x8e, 0xe0));
    p.setColor(QPalette::HighlightedText, Qt::white);
    p.setColor(QPalette::Link, QColor(0x6c, 0xb4, 0xff));
    p.setColor(QPalette::PlaceholderText, QColor(0x8c, 0x8f, 0x94));
    for (QPalette::ColorRole role : { QPalette::WindowText, QPalette::Text, QPalette::ButtonText })
        p.setColor(QPalette::Disabled, role, QColor(0x80, 0x80, 0x80));
    // A disabled field looks like the form around it, not like an entry field.
    p.setColor(QPalette::Disabled, QPalette::Base, window);
    return p;
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
