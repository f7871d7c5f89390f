// designer/controlplugin.cpp
#include "designer/controlplugin.h"

#include "designer/designtime.h"

namespace plx::designer {

ControlPlugin::ControlPlugin(ControlDescription description, QObject *parent)
    : QObject(parent), m_description(std::move(description))
{
}

QString ControlPlugin::group() const
{
    return QStringLiteral("PLX Controls");
}

QIcon ControlPlugin::icon() const
{
    return QIcon(m_description.iconPath);
}

void ControlPlugin::initialize(QDesignerFormEditorInterface *core)
{
    // Designer passes its form editor; a form loader at run time passes none (or does not
    // call this at all), and its controls keep the host's services.
    if (core != nullptr)
        useDesignTimeServices();
    m_initialized = true;
}

} // namespace plx::designer
