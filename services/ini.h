// services/ini.h: settings files (Windows-style INI): read and write primitives, typed
// readers that fall back to the defaults file, section listing, and the two well-known
// locations in the installation directory.
//
// The reader and writer behave like the Windows profile functions the settings files were
// always written with: case-insensitive section and key names, the first match wins,
// surrounding spaces and one pair of surrounding quotes are removed on read, and a write
// creates a missing file or section and leaves every other line exactly as it was. Files
// are Windows-1252 with CR LF line ends; LF files and UTF-8 files with a byte-order mark
// are read too (and a BOM file stays UTF-8 when written).
//
// Writes (and section deletes) are safe between processes: each one takes an exclusive lock
// on "<file>.lock", re-reads the file, changes it, writes a temporary file beside it, syncs
// it and renames it over the original. Readers never see a half-written file. The ".lock"
// file is left in place (removing it would race with the next writer). Anything else that
// rewrites a settings file must do so through these functions, or two programs' changes can
// cross and one be lost.
//
// A writer waits for the lock at most kSettingsLockWait (2 seconds): a process that keeps
// the lock (hung, stopped in a debugger) must not freeze every program that saves a
// setting. Past the wait the write goes ahead without the lock and the activity log gets
// one entry naming the file; for the next 30 seconds further writes of that file try the
// lock once without waiting (and without logging again), so that saving several settings
// costs one wait, not one per setting. Readers take no lock and never wait.
//
// Files over kMaxSettingsFileBytes (16 MB) are no settings files: a damaged or runaway file
// is never read into memory. The readers treat it as missing (defaults), the writer leaves
// it alone (false), and getINISections and settingsFileSizeProblem say why.
#pragma once

#include <QString>
#include <QStringList>

#include <chrono>

namespace plx {

struct Services;

// The longest wait for another process's lock on a settings file before writing without it.
inline constexpr std::chrono::milliseconds kSettingsLockWait{ 2000 };
// The largest settings file (form descriptions and filter files included) that is read.
inline constexpr qint64 kMaxSettingsFileBytes = qint64(16) * 1024 * 1024;
// The longest value a reader of whole values (IniSnapshot users) accepts; longer values are
// refused with a warning rather than cut.
inline constexpr qsizetype kMaxSettingsValueChars = qsizetype(64) * 1024;

// "" when `file` may be read; for a file over kMaxSettingsFileBytes the message
// "<file> is larger than 16 MB and was not read". Loaders of user-edited settings files
// call it first, so that the user hears why nothing was read.
QString settingsFileSizeProblem(const QString &file);

// Reads section/key of `file` into `value`; the trimmed default when the file or key is
// missing. Values longer than 1,998 characters are cut to 1,998.
void readINI(const QString &section, const QString &key, const QString &file, QString &value,
             const QString &def);
// Writes key=value into section of `file`, all four trimmed first. Returns false when the
// file could not be written (callers of the hosts' interface ignore it). A blank section
// or key writes nothing.
bool writeINI(const QString &section, const QString &key, const QString &file,
              const QString &value);
// Removes every section of that name (case-insensitive, trimmed) with all its lines, by the
// same lock, bounded wait and atomic replacement as writeINI; every other line stays exactly
// as it was. True when the section is gone, including when `file` or the section was never
// there (then nothing is written); false when the file could not be written or is over
// kMaxSettingsFileBytes. A blank section or file name deletes nothing (false).
bool deleteINISection(const QString &section, const QString &file);

// readINI with the defaults file standing in for a blank `file`; this overload overwrites
// `file` with the defaults-file path in that case, as callers rely on.
QString getINIString(const QString &section, const QString &key, const QString &def, QString &file);
QString getINIString(const QString &section, const QString &key, const QString &def,
                     const QString &file);
// True for "-1", "TRUE" or "1" (trimmed, any case); false for anything else, "" included.
bool getINIBool(const QString &section, const QString &key, bool def, const QString &file);
// The value as a number; the default when the key is missing, 0 when the value is blank
// or not numeric.
double getINIDouble(const QString &section, const QString &key, double def, const QString &file);
qint16 getINIInt(const QString &section, const QString &key, qint16 def, const QString &file);

// The section names of `file`; element 0 is always present and empty, names start at 1.
// A missing or empty file simply has no sections. A file that exists but cannot be read is
// an error of the caller's to handle: the names read so far (at least element 0) come back
// and `error`, when given, receives the reason; on success `error` is cleared. A file over
// kMaxSettingsFileBytes is not read: element 0 alone, and the settingsFileSizeProblem text.
QStringList getINISections(const QString &file, QString *error = nullptr);

// Full path of "HBDEFAULTS.INI" in the installation directory, looked up once per process.
QString getDefaultsINI();
// Forgets the held defaults-file path (tests that change the installation directory).
void resetDefaultsINI();
// Full path of the work directory "WORK-PLX" in the installation directory; asks to create
// it when missing and shows "Path Error" when it still does not exist. Returns the path
// either way.
QString getWorkDir(Services *services = nullptr);

} // namespace plx
