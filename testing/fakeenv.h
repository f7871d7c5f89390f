// testing/fakeenv.h: a fixed clock, a counting UI pump, and a Services bundle of
// the test doubles, so a test builds its own world in one line.
#pragma once

#include "services/env.h"
#include "testing/scriptedprompter.h"

#include <QDateTime>

namespace plx::test {

// Returns the time it was given; advance() moves it on.
class FakeClock : public Clock
{
public:
    explicit FakeClock(QDateTime t = QDateTime(QDate(2024, 1, 5), QTime(9, 30, 7)))
        : m_now(std::move(t))
    {
    }
    QDateTime now() override { return m_now; }
    void set(const QDateTime &t) { m_now = t; }
    void advance(qint64 seconds) { m_now = m_now.addSecs(seconds); }

private:
    QDateTime m_now;
};

// Counts how often the UI was asked to process pending events.
class CountingUiPump : public UiPump
{
public:
    void processEvents() override { ++m_count; }
    int count() const { return m_count; }

private:
    int m_count = 0;
};

// The three doubles wired into one Services; pass services() to the code under test.
struct TestServices
{
    ScriptedPrompter prompter;
    FakeClock clock;
    CountingUiPump pump;
    Services bundle{ &prompter, &clock, &pump };
    Services *services() { return &bundle; }
};

} // namespace plx::test
