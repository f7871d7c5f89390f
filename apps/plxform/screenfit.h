// apps/plxform/screenfit.h: keeps a window whole on the screen it is on, whatever the
// scale factor makes of its size in pixels.
#pragma once

class QWidget;

namespace plx::form {

// Shrinks `window` to the available area of its screen (less the frame the window manager
// adds) and moves it inside that area; a window that fits where it is stays there.
void fitOnScreen(QWidget *window);

} // namespace plx::form
