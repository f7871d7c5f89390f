// services/paths.h: directory checks and creation, short names, and the bridge between the
// library's "\"-separated paths and the disk.
//
// The library builds every path with "\" (setPathName, getFileDir, ...), on every platform,
// so that its text helpers behave the same everywhere. Functions that touch the disk pass
// paths through toDiskPath(), which on non-Windows systems turns each "\" into "/"; they
// therefore accept "\" and "/" alike. On Linux a file name that itself holds a "\" cannot
// be reached through these functions.
#pragma once

#include <QString>

namespace plx {

struct Services;

// The path as the operating system wants it: "\" -> "/" off Windows; unchanged on Windows.
QString toDiskPath(const QString &path);
// The path in the library's form: "/" -> "\" off Windows; unchanged on Windows.
QString fromDiskPath(const QString &path);

// True when the directory `path` exists on return. A blank path with useCurrentIfBlank
// takes the current directory after an OK/Cancel confirmation; a missing directory is
// created after a Yes/No question when `create` is set, otherwise reported. `path` is
// updated to the path that was tested (trimmed, one trailing "\" dropped). A blank path
// without useCurrentIfBlank is a missing directory like any other (question or report).
// Boxes go to `services` (nullptr: the defaults).
bool getPathExist(QString &path, bool useCurrentIfBlank, bool create, Services *services = nullptr);
// Creates every missing level of `path` ("\" or "/" separated), first level first,
// ignoring every failure. Does nothing for a blank path.
void makePath(const QString &path);
// The 8.3 short form of an existing file's name on Windows; elsewhere, or when there is
// none, the long name unchanged.
QString getShortName(const QString &longName);

} // namespace plx
