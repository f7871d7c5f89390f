// services/inilock_p.h: the lock that serialises writers of one settings file across
// processes, with a bounded wait.
//
// The lock is an exclusive lock on byte 0 of "<file>.lock", the project's ordinary file lock
// (services/internal/filelock.h), so every program that changes a settings file excludes
// every other, whichever part of the project it changes it through. It dies with its
// process, so a crashed writer never blocks the next one; but a live process that keeps it
// (a hung program, a debugger, a backup tool) would block every writer for ever. So the
// lock is waited for at most a given time, and the caller decides what to do without it.
#pragma once

#include "services/internal/filelock.h"

#include <QString>

#include <chrono>

namespace plx {

class SettingsFileLock
{
public:
    enum class State {
        Locked, // the lock is ours until destruction
        Busy, // another process held it for the whole wait (or the system would not lock)
        Unavailable, // "<file>.lock" cannot be opened (a read-only folder, a bad path)
    };

    // Tries for the lock on `diskPath` + ".lock" until `wait` has passed.
    SettingsFileLock(const QString &diskPath, std::chrono::milliseconds wait);
    ~SettingsFileLock();
    SettingsFileLock(const SettingsFileLock &) = delete;
    SettingsFileLock &operator=(const SettingsFileLock &) = delete;

    State state() const { return m_state; }

private:
    filelock::SidecarFile m_file;
    State m_state = State::Unavailable;
};

} // namespace plx
