// services/recordsource/dbf/internal/dbftesthooks.h: crash points for the tests of the write order,
// and a switch for the tests of the block-reading pass.
//
// A test child process sets a crash point and then writes; at that point the process ends at
// once (std::_Exit: no destructors, no flush of ours, locks dropped by the kernel), which is
// what a process killed between two writes leaves behind. Never set outside tests.
#pragma once

#include <QtGlobal>

namespace plx::dbftest {

enum class CrashPoint {
    None,
    AppendAfterMemo, // memo blocks written, record not yet
    AppendAfterRecord, // record and 0x1A written, header count not yet
    WriteAfterMemo, // writeRecord: new memo written, record still points at the old one
};

void setCrashPoint(CrashPoint point);
// Ends the process when `point` is the armed crash point.
void crashIfArmed(CrashPoint point);

// Ends the process just before its `n`th file write from now (1-based; 0 disarms), the way a
// process killed by a tracer between two system calls ends, so that a test can stop a writer
// at every write of an operation in turn.
void setCrashBeforeWrite(quint64 n);
// Called by every table and memo write before it writes.
void beforeWrite();

// Makes every table and memo write fail with the operating system's error `error` (ENOSPC:
// a full disk) before it writes anything, until called again with 0, so that tests see what
// a user sees when the disk fills up during a save.
void setFailWrites(int error);
// The error armed by setFailWrites; 0 when writes go through.
int injectedWriteError();

// Makes every pass over a table read it in blocks, as while a new mapping of a large file is
// still being populated, so that tests reach that path with small files.
void setScanByReads(bool on);
bool scanByReads();

} // namespace plx::dbftest
