// services/recordsource/sqlite/internal/recordlock.h: the record lock that Edit takes on SQLite.
//
// SQLite itself only locks the whole file, and only for the duration of a write, so the
// lock that keeps two users from editing one record lives beside the database: a sidecar
// file "<database file>-plxlock" in which each record owns one byte,
//   offset = (22-bit FNV-1a hash of the lower-cased table name) * 2^40 + rowid.
// Offsets beyond the end of a file may be locked, so the file stays empty. The locks are
// open-file-description locks (plx::LockFile): every record source opens the sidecar
// itself, so two record sources of one process exclude each other like two processes,
// and the kernel drops the locks of a program that dies. Two tables whose hashes collide
// or rowids beyond 2^40 can only make a lock look taken, never let two editors in.
#pragma once

#include "services/recordsource/internal/filelock.h"

#include <memory>

namespace plx::sqlite {

class RecordLock
{
public:
    // `databasePath` empty (an in-memory database): locks are not needed and always succeed.
    explicit RecordLock(const QString &databasePath);

    // Takes the lock of (table, rowid), giving up any lock held before. Locked when
    // another record source holds it.
    Status acquire(const QString &table, qint64 rowid);
    // Gives up the held lock, if any.
    void release();
    bool isHeld() const { return m_held; }

    static quint64 offsetFor(const QString &table, qint64 rowid);

private:
    QString m_lockPath;
    std::unique_ptr<LockFile> m_file;
    quint64 m_offset = 0;
    bool m_held = false;
};

} // namespace plx::sqlite
