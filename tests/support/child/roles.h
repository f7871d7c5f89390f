// tests/support/child/roles.h: the roles of plx_testchild, the second process of the
// cross-process tests. Each takes the arguments after the role's name and returns the
// process's exit code: 0 when it did its work, another code saying where it stopped.
//
//   plx_testchild settings ini FILE SECTION KEYPREFIX COUNT   writes KEYPREFIX1..COUNT
//   plx_testchild settings deletesections FILE PREFIX COUNT   deletes sections PREFIX1..COUNT
//   plx_testchild settings log COUNT TAG                      logs COUNT activity-log entries
//   plx_testchild settingslock FILE        keeps the writers' lock of FILE (settingslock.cpp)
//   plx_testchild table MODE ...           works on a FoxPro table file (table.cpp)
//   plx_testchild recordlock BACKEND DIR ID try|hold   locks a contract record (recordlock.cpp)
//   plx_testchild navigator MODE ...       a second user's navigator (navigator.cpp)
#pragma once

#include <QStringList>

namespace plx::testchild {

int runSettings(const QStringList &args);
int runSettingsLock(const QStringList &args);
int runTable(const QStringList &args);
int runRecordLock(const QStringList &args);
int runNavigator(const QStringList &args);

} // namespace plx::testchild
