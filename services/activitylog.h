// services/activitylog.h: the append-only activity log "PLXLogFile.TXT" for support staff.
//
// Each entry is five CR LF-terminated lines in Windows-1252: twenty "=", the local time
// ("yyyyMMdd hhmmss") and `where`, `what`, "PLX " + executable name, "REV " + revision.
// The file lives in the installation directory, is never truncated, and is shared by every
// process of the product: each entry goes out in one append write, so entries of two
// processes logging at once never interleave.
#pragma once

#include <QDateTime>
#include <QString>

namespace plx {

struct Services;

// Appends one entry, closes the file, then lets pending UI events run once. The time comes
// from the clock of `services` (nullptr: the defaults). Returns false, without pumping,
// when the log could not be opened or written; `error` (optional) then receives the
// reason. Callers decide what to do with it.
bool logEntry(const QString &where, const QString &what, Services *services = nullptr,
              QString *error = nullptr);

// The five lines of one entry, as logEntry writes them (without encoding).
QString formatLogEntry(const QString &where, const QString &what, const QDateTime &when);

// The revision for line 5: the third part of the application's version, or 0.
int componentRevision();
// The executable name for line 4, without directory and extension.
QString componentName();

} // namespace plx
