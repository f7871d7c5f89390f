// services/internal/filelock.h: byte-range file locks shared between processes; every lock
// of the project (settings writers, table records and headers, ID key files, SQLite record
// locks) is taken through them, so that any two of its locks on one file exclude each other.
//
// Record and header locks of every file-based back end are byte ranges of a file, the way
// FoxPro, Clipper and Jet lock records on a share; a whole-file lock (a settings file's
// writers) is byte 0 of a sidecar "<file>.lock". On Linux they are open-file-description
// locks (F_OFD_SETLK): they belong to one open file, not to the process, so two opens in
// one process exclude each other just as two processes do, and the kernel drops them when
// the holder dies, so a crashed program never blocks anyone for good. (flock and classic
// fcntl locks would not do: neither sees the other's locks, and classic fcntl locks are the
// process's, so a second open in one process would pass.) On Windows they are LockFileEx
// locks, which have the same properties.
//
// Offsets are unsigned 64-bit: FoxPro's lock offsets lie near 0x7FFFFFFE and beyond the
// end of the file, which is allowed.
//
// Shared by the project's libraries, not installed: the settings code, the record sources
// and the programs above them each map an outcome to their own way of reporting it.
#pragma once

#include <QString>

#include <chrono>

namespace plx {

#ifdef _WIN32
using NativeFileHandle = void *; // HANDLE
#else
using NativeFileHandle = int;
#endif

enum class LockKind { Shared, Exclusive };

namespace filelock {

// How one lock, unlock or open went.
struct Outcome
{
    enum class State {
        Ok, // the lock is taken (or released, or the file open)
        Busy, // another open file, in this process or another, holds a conflicting lock
        Failed, // the system refused for any other reason
    };

    State state = State::Ok;
    // Busy and Failed: errno on POSIX, GetLastError() on Windows.
    int systemCode = 0;
    // Failed: what could not be done, e.g. "cannot set a file lock".
    QString error;
    // Failed on POSIX: the system's words for systemCode; empty on Windows.
    QString systemText;

    bool isOk() const { return state == State::Ok; }
};

// Tries once.
Outcome tryLock(NativeFileHandle file, quint64 offset, quint64 length, LockKind kind);
// Tries until the lock is taken, the system refuses it (Failed) or `wait` has passed (Busy).
// Tries at least once, so a zero wait is a single try.
Outcome lock(NativeFileHandle file, quint64 offset, quint64 length, LockKind kind,
             std::chrono::milliseconds wait);
// Releases a range locked through the same handle. Unlocking a range not held is harmless.
Outcome unlock(NativeFileHandle file, quint64 offset, quint64 length);

// A file held open only for its locks (a sidecar lock file such as "<file>.lock"), created
// when missing and never written. Closing it releases every lock taken through it.
class SidecarFile
{
public:
    explicit SidecarFile(const QString &path);
    ~SidecarFile();
    SidecarFile(const SidecarFile &) = delete;
    SidecarFile &operator=(const SidecarFile &) = delete;

    bool isOpen() const { return m_opened.isOk(); }
    // Failed with "cannot open the lock file" when the file could not be opened or created
    // (a read-only folder, a bad path).
    const Outcome &openOutcome() const { return m_opened; }
    NativeFileHandle handle() const { return m_handle; }

private:
    NativeFileHandle m_handle;
    Outcome m_opened;
};

} // namespace filelock

} // namespace plx
