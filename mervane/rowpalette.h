// mervane/rowpalette.h: the colours of a row's value field, derived from the palette.
//
// Hosts mark rows red (a value needing attention), white (an entry field standing out on a
// grey form), light grey (a field for reference) or alternate grey (every other row of a
// long stack). Fixed RGB values would be unreadable in a dark theme, so each colour is a
// blend of the palette's own Base and Text (or a red) and keeps the palette's Text colour
// for the characters: the same flags read the same way in light and dark themes.
#pragma once

#include <QColor>
#include <QPalette>

namespace plx {

// Red tints Base towards red (more strongly in a dark theme); White is pure white in a light
// theme and Base lifted slightly towards Text in a dark one; LightGray blends Base towards
// Text, AlternateGray only slightly.
enum class RowShade {
    Normal, // the palette's Base, as any entry field
    Red,
    White,
    LightGray,
    AlternateGray,
    Locked, // read-only: the form's own Window colour, so it reads as "not for typing"
};

// Picks the shade: an explicit flag wins over the alternate grey, which wins over the
// locked look. Red before white before light grey when several flags are set.
RowShade rowShade(bool red, bool white, bool lightGray, bool altGray, bool locked);

// The background colour of `shade` under `palette`, from its Active group.
QColor shadeColor(const QPalette &palette, RowShade shade);

// `palette` with Base (and Window, for check boxes) set to the shade in the active and
// inactive groups; the disabled group keeps the palette's own disabled look.
QPalette shadedPalette(const QPalette &palette, RowShade shade);

// True when the palette is a dark one (its Base is darker than its Text, by lightness).
bool isDarkPalette(const QPalette &palette);

// A complete dark palette for the Fusion style (every role the controls draw with, and a
// grey disabled text), for hosts that offer a dark theme; plxform --dark and the README's
// dark pictures use it.
QPalette darkPalette();

} // namespace plx
