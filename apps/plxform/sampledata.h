// apps/plxform/sampledata.h: the sample facility table plxform opens when it is given no
// table: the same few thousand records as a FoxPro table file and as a SQLite table, with
// a filter file beside each and the list of care programs the form's Programs row picks
// from, written once into a folder of the user's.
#pragma once

#include "services/recordsource/result.h"

#include <QString>

namespace plx::form {

struct SamplePaths
{
    QString foxProTable; // .../sample/foxpro/FACILITY.DBF
    QString sqliteFile; // .../sample/facility.sqlite, table FACILITY
    QString formFile; // .../sample/facility.ini, the form description of the FoxPro table
    QString listFile; // .../sample/VALUELISTS.INI, the list of the programs row
};

// Where the sample keeps the list of care programs its Programs row picks from: the file
// (beside the form description), section and key.
inline const QString kSampleListFile = QStringLiteral("VALUELISTS.INI");
inline const QString kSampleListSection = QStringLiteral("FACILITY");
inline const QString kSampleListKey = QStringLiteral("Programs");

constexpr int kSampleRecords = 3000;

// Writes the sample into `directory` unless it is already there; the tables are written
// under temporary names and renamed, so an interrupted run never leaves half a sample. A new
// sample also gives the browse grids of its form a first column layout in PLXFORM.INI of
// `directory` (plxform's user settings), unless the user has one.
Result<SamplePaths> ensureSample(const QString &directory);

} // namespace plx::form
