// services/recordsource/jet/internal/deadline.h: a time limit on the work of one thread.
//
// An engine arms a deadline around a statement it runs; the evaluator checks it at every
// node it evaluates and the engine's scans at every record, so a statement stops within a
// moment of its limit, whatever one record costs. Checking reads the clock only every 256th
// time, so a check costs a decrement. Without an armed deadline nothing ever stops.
//
//     ScopedDeadline limit(10'000, Status(Status::Code::NotSupported, QStringLiteral("...")));
//     ... if (deadlinePassed()) return deadlineError(); ...
#pragma once

#include "services/recordsource/status.h"

#include <memory>

namespace plx::jet {

class ScopedDeadline
{
public:
    // Arms a deadline `limitMs` milliseconds from now on this thread, failing with `error`;
    // an earlier deadline already armed stays in force when it comes first. The one armed
    // before comes back when this one goes.
    ScopedDeadline(qint64 limitMs, Status error);
    ~ScopedDeadline();
    ScopedDeadline(const ScopedDeadline &) = delete;
    ScopedDeadline &operator=(const ScopedDeadline &) = delete;

private:
    struct Saved;
    std::unique_ptr<Saved> m_saved;
};

// True once the armed deadline has passed (and from then on until it is disarmed).
bool deadlinePassed();
// The armed deadline's error.
Status deadlineError();

// Milliseconds on a steady clock. Tests replace the clock to make time pass without waiting;
// nullptr brings back the real one.
using DeadlineClock = qint64 (*)();
qint64 deadlineClockNow();
void setDeadlineClockForTesting(DeadlineClock clock);

} // namespace plx::jet
