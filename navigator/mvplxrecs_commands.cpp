// navigator/mvplxrecs_commands.cpp: the record commands of the bottom toolbar.
#include "navigator/mvplxrecs.h"

#include <QAction>

namespace plx {

void mvPLXRecs::toolbarClicked(QAction *button)
{
    Q_UNUSED(button);
}

} // namespace plx
