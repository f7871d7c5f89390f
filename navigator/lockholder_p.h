// navigator/lockholder_p.h: who holds a record in edit, and since when.
//
// The engines' record locks say only that someone holds a record. So that "Access Denied"
// can name the holder, a navigator that takes a record into edit leaves a small note
// beside the table (user, machine, process, time) and removes it when the edit ends. The
// lock itself stays the engine's: a note never blocks anyone, and a note whose process has
// died (on this machine) is ignored, as its lock died with it.
#pragma once

#include <QDateTime>
#include <QString>

namespace plx {

class LockHolders
{
public:
    // `directory`: the folder of notes of one table; "" (a table with no folder for side
    // files) keeps no notes.
    explicit LockHolders(QString directory) : m_dir(std::move(directory)) { }

    // Records that this process now holds record `id` for `user`. Failures are ignored:
    // the note is a courtesy, the lock is the engine's.
    void claim(const QString &id, const QString &user, const QDateTime &since) const;
    // Removes this process's note for `id`.
    void release(const QString &id) const;
    // "Held by ANN on host-1 since 11/23/2026 14:05:09", or "" when nobody alive left one.
    QString describe(const QString &id) const;

private:
    QString notePath(const QString &id) const;
    QString m_dir;
};

} // namespace plx
