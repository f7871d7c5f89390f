// services/env.cpp: the default services and the fallbacks for unset members.
#include "services/env.h"

#include <QCoreApplication>

namespace plx {

void QtUiPump::processEvents()
{
    if (QCoreApplication::instance())
        QCoreApplication::processEvents();
}

namespace {
Services *g_hostDefaults = nullptr;
} // namespace

void Services::setDefaults(Services *services)
{
    g_hostDefaults = services;
}

// Function-local statics: built on first use, after QApplication exists.
static Services *libraryOwn()
{
    static QtPrompter prompter;
    static SystemClock clock;
    static QtUiPump pump;
    static Services services{ &prompter, &clock, &pump };
    return &services;
}

Services *Services::defaults()
{
    return g_hostDefaults ? g_hostDefaults : libraryOwn();
}

// The member of `services`, else of the host's default, else the library's own.
template<typename T> static T &memberOf(Services *services, T *Services::*member)
{
    if (services && services->*member)
        return *(services->*member);
    if (g_hostDefaults && g_hostDefaults->*member)
        return *(g_hostDefaults->*member);
    return *(libraryOwn()->*member);
}

Prompter &prompterOf(Services *services)
{
    return memberOf(services, &Services::prompter);
}

Clock &clockOf(Services *services)
{
    return memberOf(services, &Services::clock);
}

UiPump &uiPumpOf(Services *services)
{
    return memberOf(services, &Services::uiPump);
}

} // namespace plx
