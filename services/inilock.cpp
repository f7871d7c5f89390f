// services/inilock.cpp: the settings-file writers' lock and its bounded wait.
#include "services/inilock_p.h"

namespace plx {

namespace {

// The byte of "<file>.lock" that stands for the whole settings file.
constexpr quint64 kWholeFileByte = 0;

} // namespace

SettingsFileLock::SettingsFileLock(const QString &diskPath, std::chrono::milliseconds wait)
    : m_file(diskPath + QStringLiteral(".lock"))
{
    if (!m_file.isOpen())
        return;
    // A lock the system refuses outright (a file system without locks) is no better than
    // one held for the whole wait: the writer goes on without it either way.
    const filelock::Outcome outcome =
        filelock::lock(m_file.handle(), kWholeFileByte, 1, LockKind::Exclusive, wait);
    m_state = outcome.isOk() ? State::Locked : State::Busy;
}

SettingsFileLock::~SettingsFileLock()
{
    // Closing the file would release the lock too, but Windows may take its time to do so;
    // the next writer should not have to wait for that.
    if (m_state == State::Locked)
        (void)filelock::unlock(m_file.handle(), kWholeFileByte, 1);
}

} // namespace plx
