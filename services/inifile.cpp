// services/inifile.cpp: the settings-file reader and the locked, atomic writer.
#include "services/ini.h"

#include "services/activitylog.h"
#include "services/env.h"
#include "services/inilock_p.h"
#include "services/iniprofile_p.h"
#include "services/paths.h"
#include "services/texthelpers.h"

#include <QDeadlineTimer>
#include <QFile>
#include <QHash>
#include <QMutex>
#include <QSaveFile>

#include <functional>

#ifndef Q_OS_WIN
#include <unistd.h>
#endif

namespace plx {

namespace {

// The reader is offered 1,999 characters of a 2,000-character buffer and keeps one for its
// terminator, so the longest value it returns has 1,998 characters.
constexpr qsizetype maxValueLength = 1998;

// The file's contents; `exists` is false for a missing or unreadable file and for one over
// the size limit, which is never read into memory.
QByteArray readAll(const QString &diskPath, bool *exists)
{
    QFile f(diskPath);
    *exists = f.open(QIODevice::ReadOnly) && f.size() <= kMaxSettingsFileBytes;
    return *exists ? f.read(kMaxSettingsFileBytes) : QByteArray();
}

bool isOverSizeLimit(const QString &diskPath)
{
    QFile f(diskPath);
    return f.exists() && f.size() > kMaxSettingsFileBytes;
}

// Files whose lock outlasted the whole wait lately. Their writers try the lock once instead
// of waiting again: a program saving several settings waits once, not once per setting.
constexpr std::chrono::seconds kStuckLockMemory{ 30 };
QMutex stuckLocksMutex;
QHash<QString, QDeadlineTimer> stuckLocks;

std::chrono::milliseconds lockWaitFor(const QString &diskPath)
{
    const QMutexLocker locker(&stuckLocksMutex);
    const auto it = stuckLocks.constFind(diskPath);
    return it != stuckLocks.cend() && !it->hasExpired() ? std::chrono::milliseconds(0)
                                                        : kSettingsLockWait;
}

// Remembers how the lock of `diskPath` went; true when it has just outlasted a whole wait.
bool noteLockState(const QString &diskPath, SettingsFileLock::State state,
                   std::chrono::milliseconds waited)
{
    const QMutexLocker locker(&stuckLocksMutex);
    if (state != SettingsFileLock::State::Busy) {
        stuckLocks.remove(diskPath);
        return false;
    }
    if (waited.count() == 0)
        return false; // still stuck; said when it was found
    stuckLocks.insert(diskPath, QDeadlineTimer(kStuckLockMemory));
    return true;
}

// The write is in the middle of its caller's step: letting UI events run here, as a log
// entry normally does, could re-enter that step.
class NoPump : public UiPump
{
public:
    void processEvents() override { }
};

void logWriteWithoutLock(const QString &routine, const QString &file)
{
    NoPump noPump;
    Services quiet{ nullptr, nullptr, &noPump };
    // The log is for support staff; a log that cannot be written changes nothing here.
    logEntry(routine,
             QStringLiteral("%1 stayed locked by another program for %2 ms; written without "
                            "the lock")
                 .arg(file)
                 .arg(kSettingsLockWait.count()),
             &quiet);
}

// Temporary file beside the target, synced to disk, then renamed over it.
bool replaceFile(const QString &diskPath, const QByteArray &contents)
{
    QSaveFile out(diskPath);
    if (!out.open(QIODevice::WriteOnly))
        return false;
    if (out.write(contents) != contents.size()) {
        out.cancelWriting();
        return false;
    }
    if (!out.flush()) {
        out.cancelWriting();
        return false;
    }
#ifndef Q_OS_WIN
    ::fsync(out.handle());
#endif
    return out.commit();
}

// Every change of a settings file: under the writers' lock, re-read the file, let `change`
// edit it (false: nothing to write), and replace the file. `routine` names the caller in
// the activity log; `file` is the trimmed name as given.
bool changeUnderLock(const QString &routine, const QString &file,
                     const std::function<bool(IniProfile &)> &change)
{
    const QString diskPath = toDiskPath(file);
    // A file this large is no settings file: rewriting it would only make it worse.
    if (isOverSizeLimit(diskPath))
        return false;
    const std::chrono::milliseconds wait = lockWaitFor(diskPath);
    const SettingsFileLock lock(diskPath, wait);
    if (lock.state() == SettingsFileLock::State::Unavailable)
        return false;
    // Never wait for ever: past the bound the write goes ahead unlocked. The rename keeps
    // the file whole for readers; only a concurrent writer's change could be lost.
    if (noteLockState(diskPath, lock.state(), wait))
        logWriteWithoutLock(routine, file);
    // Re-read under the lock: another process may have written since we last looked.
    bool exists = false;
    IniProfile profile = IniProfile::parse(readAll(diskPath, &exists));
    if (!change(profile))
        return true;
    return replaceFile(diskPath, profile.serialize());
}

} // namespace

void readINI(const QString &section, const QString &key, const QString &file, QString &value,
             const QString &def)
{
    bool exists = false;
    const QByteArray contents = readAll(toDiskPath(trimSpaces(file)), &exists);
    QString found;
    // A missing file, or one too large to be a settings file, gives the default.
    if (!exists || !IniProfile::parse(contents).find(trimSpaces(section), trimSpaces(key), &found))
        found = trimSpaces(def);
    value = found.left(maxValueLength);
}

bool writeINI(const QString &section, const QString &key, const QString &file, const QString &value)
{
    const QString s = trimSpaces(section);
    const QString k = trimSpaces(key);
    const QString f = trimSpaces(file);
    if (s.isEmpty() || k.isEmpty() || f.isEmpty())
        return false;
    return changeUnderLock(QStringLiteral("writeINI"), f, [&](IniProfile &profile) {
        profile.set(s, k, trimSpaces(value));
        return true;
    });
}

bool deleteINISection(const QString &section, const QString &file)
{
    const QString s = trimSpaces(section);
    const QString f = trimSpaces(file);
    if (s.isEmpty() || f.isEmpty())
        return false;
    return changeUnderLock(QStringLiteral("deleteINISection"), f,
                           [&](IniProfile &profile) { return profile.removeSection(s); });
}

QString settingsFileSizeProblem(const QString &file)
{
    if (!isOverSizeLimit(toDiskPath(trimSpaces(file))))
        return QString();
    return QStringLiteral("%1 is larger than %2 MB and was not read")
        .arg(file)
        .arg(kMaxSettingsFileBytes / (qint64(1024) * 1024));
}

} // namespace plx
