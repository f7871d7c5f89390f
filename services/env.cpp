// services/env.cpp: the default services and the fallbacks for unset members.
#include "services/env.h"

#include "services/internal/libraryprompter.h"

#include <QCoreApplication>

namespace plx {

void QtUiPump::processEvents()
{
    if (QCoreApplication::instance())
        QCoreApplication::processEvents();
}

namespace {

Services *g_hostDefaults = nullptr;
Prompter *g_libraryPrompter = nullptr;

// The library's prompter in a program without message boxes: every box counts as closed
// without a button, and every input box as cancelled.
class UnattendedPrompter : public Prompter
{
public:
    MsgAnswer msgBox(const QString &, int style, const QString &) override
    {
        switch (style & 0x7) {
        case MsgStyle::OKOnly: return MsgAnswer::OK;
        case MsgStyle::YesNo: return MsgAnswer::No;
        default: return MsgAnswer::Cancel;
        }
    }
    std::optional<QString> inputBox(const QString &, const QString &, const QString &) override
    {
        return std::nullopt;
    }
};

} // namespace

void setLibraryPrompter(Prompter *prompter)
{
    g_libraryPrompter = prompter;
}

void Services::setDefaults(Services *services)
{
    g_hostDefaults = services;
}

// Function-local statics: built on first use. The prompter is looked up on every call, so
// one installed by the widgets library counts however early the first call comes.
static Services *libraryOwn()
{
    static UnattendedPrompter unattended;
    static SystemClock clock;
    static QtUiPump pump;
    static Services services{ &unattended, &clock, &pump };
    services.prompter = g_libraryPrompter ? g_libraryPrompter : &unattended;
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
