// services/env.cpp: the default services and the fallbacks for unset members.
#include "services/env.h"

#include <QCoreApplication>

namespace plx {

void QtUiPump::processEvents()
{
    if (QCoreApplication::instance())
        QCoreApplication::processEvents();
}

Services *Services::defaults()
{
    // Function-local statics: built on first use, after QApplication exists.
    static QtPrompter prompter;
    static SystemClock clock;
    static QtUiPump pump;
    static Services services{ &prompter, &clock, &pump };
    return &services;
}

Prompter &prompterOf(Services *services)
{
    if (services && services->prompter)
        return *services->prompter;
    return *Services::defaults()->prompter;
}

Clock &clockOf(Services *services)
{
    if (services && services->clock)
        return *services->clock;
    return *Services::defaults()->clock;
}

UiPump &uiPumpOf(Services *services)
{
    if (services && services->uiPump)
        return *services->uiPump;
    return *Services::defaults()->uiPump;
}

} // namespace plx
