// services/env.h: the outside world the services touch (clock, UI pump, boxes), bundled.
//
// Like an Env of a storage engine, Services lets each test build its own world: a fixed
// clock for audit stamps and log lines, a pump that only counts, a scripted prompter.
// Functions that need them take a `Services *` where nullptr means Services::defaults().
#pragma once

#include "services/prompter.h"

#include <QDateTime>

namespace plx {

// The local time, for audit stamps and log entries.
class Clock
{
public:
    virtual ~Clock() = default;
    virtual QDateTime now() = 0;
};

// "Let pending user-interface events run once", so long steps keep the UI responsive.
class UiPump
{
public:
    virtual ~UiPump() = default;
    virtual void processEvents() = 0;
};

class SystemClock : public Clock
{
public:
    QDateTime now() override { return QDateTime::currentDateTime(); }
};

// Runs QCoreApplication::processEvents() once; does nothing without an application object.
class QtUiPump : public UiPump
{
public:
    void processEvents() override;
};

// Everything that touches the outside world. Members are not owned; a null member falls
// back to the matching member of defaults().
struct Services
{
    Prompter *prompter = nullptr;
    Clock *clock = nullptr;
    UiPump *uiPump = nullptr;

    // The library-wide default: the library's own instance (message boxes when the program links
    // plx::widgetservices, else unattended answers; system clock; Qt
    // event loop) unless a host installed its own with setDefaults(). Never delete it.
    static Services *defaults();
    // Makes `services` the default of every control that was given no Services of its own
    // (nullptr: back to the library's own). The host keeps it alive while controls live.
    // A host routes every box of every control through its prompter this way.
    static void setDefaults(Services *services);
};

// The member to use for `services` (nullptr or a null member means the default one).
Prompter &prompterOf(Services *services);
Clock &clockOf(Services *services);
UiPump &uiPumpOf(Services *services);

} // namespace plx
