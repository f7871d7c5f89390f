// services/recordsource/tablegen/foxprowriter.h: the benchmark table as FoxPro 2.6 files.
#pragma once

#include "services/recordsource/result.h"

#include <QString>

namespace plx::bench {

// Creates (replacing any earlier one) `<dir>/<table>.DBF` with its .FPT memo file: version
// 0xF5, code page mark 0x03 (Windows-1252), `rows` records of the benchmark table of which
// about 3 % are marked deleted, as a table in daily use holds them.
Status writeFoxProBenchTable(const QString &dir, const QString &table, qint64 rows);

// True for the records the writer marks deleted (1-based record numbers).
bool isDeletedBenchRecord(qint64 recno);

} // namespace plx::bench
