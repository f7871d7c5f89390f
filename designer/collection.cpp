// designer/collection.cpp
#include "designer/collection.h"

#include "designer/controlplugin.h"

namespace plx::designer {

Collection::Collection(QObject *parent) : QObject(parent)
{
    for (ControlDescription &description : controlDescriptions())
        m_widgets.append(new ControlPlugin(std::move(description), this));
}

} // namespace plx::designer
