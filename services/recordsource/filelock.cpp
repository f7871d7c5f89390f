// services/recordsource/filelock.cpp: file-lock outcomes as record-source statuses.
#include "services/recordsource/internal/filelock.h"

#include <chrono>

namespace plx {

namespace {

Status toStatus(const filelock::Outcome &outcome)
{
    switch (outcome.state) {
    case filelock::Outcome::State::Ok: return Status::ok();
    case filelock::Outcome::State::Busy:
        return Status(Status::Code::Locked, QStringLiteral("the range is locked by another user"),
                      outcome.systemCode);
    case filelock::Outcome::State::Failed: break;
    }
    return Status(Status::Code::IoError, outcome.error, outcome.systemCode, outcome.systemText);
}

} // namespace

Status tryLockRange(NativeFileHandle file, quint64 offset, quint64 length, LockKind kind)
{
    return toStatus(filelock::tryLock(file, offset, length, kind));
}

Status lockRange(NativeFileHandle file, quint64 offset, quint64 length, LockKind kind,
                 int timeoutMs)
{
    return toStatus(
        filelock::lock(file, offset, length, kind, std::chrono::milliseconds(timeoutMs)));
}

Status unlockRange(NativeFileHandle file, quint64 offset, quint64 length)
{
    return toStatus(filelock::unlock(file, offset, length));
}

Result<std::unique_ptr<LockFile>> LockFile::open(const QString &path)
{
    std::unique_ptr<LockFile> file(new LockFile(path));
    if (!file->m_file.isOpen())
        return toStatus(file->m_file.openOutcome());
    return file;
}

} // namespace plx
