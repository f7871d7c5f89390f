// apps/plxform/sampledata.h: the sample facility table plxform opens when it is given no
// table: the same few thousand records as a FoxPro table file and as a SQLite table, with
// a filter file beside each, written once into a folder of the user's.
#pragma once

#include "services/recordsource/result.h"

#include <QString>

namespace plx::form {

struct SamplePaths
{
    QString foxProTable; // .../sample/foxpro/FACILITY.DBF
    QString sqliteFile; // .../sample/facility.sqlite, table FACILITY
    QString formFile; // .../sample/facility.ini, the form description of the FoxPro table
};

constexpr int kSampleRecords = 3000;

// Writes the sample into `directory` unless it is already there; the tables are written
// under temporary names and renamed, so an interrupted run never leaves half a sample. A new
// sample also gives the browse grids of its form a first column layout in PLXFORM.INI of
// `directory` (plxform's user settings), unless the user has one.
Result<SamplePaths> ensureSample(const QString &directory);

} // namespace plx::form
