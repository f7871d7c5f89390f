// services/installdir.h: finding the product family's installation directory.
//
// Every file the library keeps (defaults file, work directory, activity log) lives under
// that directory. It is found, in order:
//   1. the environment variable PLX_HARROWBY_DIR, when set (deployments and tests);
//   2. on Windows, the App Paths registry entry of one of the family's executables
//      (HKLM, HKCU, HKCR); elsewhere, the first of those executables found on PATH;
//   3. the value CONFIG/HarrowbyDirectory of "HBRegistry.INI" beside the running component.
// When 2 and 3 both fail, a report is appended to "HBTecSup.Txt" beside the component.
#pragma once

#include <QString>
#include <QStringList>

namespace plx {

// The installation directory, normally with a trailing "\" (the library's separator; see
// services/paths.h). Empty when nothing was found. Never fails.
QString getHarrowbyDirectoryAny();

// The executable names tried in stage 2, in order. Default: PLX_FAMILY_EXECUTABLES
// (";"-separated) when set, else a built-in list of six names.
QStringList familyExecutables();
// Replaces the list; an empty list restores the default.
void setFamilyExecutables(const QStringList &names);

// The directory of the running component (where "HBRegistry.INI" and "HBTecSup.Txt" are):
// the value given to setComponentDir, else PLX_COMPONENT_DIR, else the application's
// directory. Native separators.
QString componentDir();
// Overrides componentDir(); an empty text restores the default.
void setComponentDir(const QString &dir);

} // namespace plx
