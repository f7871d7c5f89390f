// services/recordsource/jet/deadline.cpp: the thread's deadline and its clock.
#include "services/recordsource/jet/internal/deadline.h"

#include <atomic>
#include <chrono>
#include <limits>

namespace plx::jet {

namespace {

constexpr int kChecksPerClockRead = 256;
constexpr qint64 kNever = std::numeric_limits<qint64>::max();

qint64 steadyNow()
{
    const auto sinceEpoch = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::milliseconds>(sinceEpoch).count();
}

std::atomic<DeadlineClock> g_clock{ nullptr };

struct ThreadDeadline
{
    qint64 endMs = kNever;
    Status error;
    int checksLeft = kChecksPerClockRead;
    bool passed = false;
};

ThreadDeadline &current()
{
    thread_local ThreadDeadline deadline;
    return deadline;
}

} // namespace

struct ScopedDeadline::Saved
{
    ThreadDeadline before;
};

qint64 deadlineClockNow()
{
    const DeadlineClock clock = g_clock.load(std::memory_order_relaxed);
    return clock ? clock() : steadyNow();
}

void setDeadlineClockForTesting(DeadlineClock clock)
{
    g_clock.store(clock, std::memory_order_relaxed);
}

ScopedDeadline::ScopedDeadline(qint64 limitMs, Status error) : m_saved(new Saved{ current() })
{
    ThreadDeadline &d = current();
    const qint64 now = deadlineClockNow();
    const qint64 end = limitMs >= kNever - now ? kNever : now + limitMs;
    if (end < d.endMs) {
        d.endMs = end;
        d.error = std::move(error);
    }
    d.checksLeft = kChecksPerClockRead;
}

ScopedDeadline::~ScopedDeadline()
{
    current() = std::move(m_saved->before);
}

bool deadlinePassed()
{
    ThreadDeadline &d = current();
    if (--d.checksLeft > 0)
        return d.passed;
    d.checksLeft = kChecksPerClockRead;
    if (!d.passed && d.endMs != kNever)
        d.passed = deadlineClockNow() >= d.endMs;
    return d.passed;
}

Status deadlineError()
{
    return current().error;
}

} // namespace plx::jet
