// services/recordsource/dbf/tests/dbf_test_util.h: helpers shared by the table-layer tests.
#pragma once

#include "services/recordsource/dbf/internal/dbftable.h"
#include "tests/support/testfiles.h"

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QVariant>

namespace plx::dbftestutil {

using test::readBytes;
using test::writeBytes;

// The directory of the shared sample tables (never copied into the project).
QString sampleDir();
// Whether the sample tables are beside this checkout. A user's clone has no ../shared;
// CI (CI=true) always has it, so there a missing folder is a failure, not a skip.
bool samplesPresent();

// Skips the test, saying why, when the sample tables are absent (fails under CI).
#define PLX_REQUIRE_SAMPLES() \
    do { \
        if (!plx::dbftestutil::samplesPresent()) { \
            if (qEnvironmentVariable("CI") == QLatin1String("true")) \
                FAIL() << "the sample tables are missing: " \
                       << plx::dbftestutil::sampleDir().toStdString(); \
            GTEST_SKIP() << "the sample tables are not beside this checkout (" \
                         << plx::dbftestutil::sampleDir().toStdString() << ")"; \
        } \
    } while (false)
QString samplePath(const QString &name);

// True when /usr/bin/python3 has both dbf and dbfread.
bool pythonReady();
// Runs tests/dbf_interop.py with `args`; its stdout split into lines. `ok` false on failure.
QStringList runInterop(const QStringList &args, bool *ok);

// The canonical text of a value, as dbf_interop.py prints it.
QString canon(const QVariant &value);
// 'L|...' lines for the live records, then 'D|...' lines for the deleted ones.
QStringList dumpTable(const DbfTable &table);

// A small FoxPro 2.x table with a memo: NAME C(10), QTY N(5), PRICE N(8,2), BORN D,
// OK L, NOTES M. Returns its path.
QString makeSmallTable(const QString &dir, int records);

} // namespace plx::dbftestutil
