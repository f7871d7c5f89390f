// tests/support/fulldisk.h: a disk that fills up, for tests of what a user sees then.
//
// While a FullDisk is alive every write to a table fails as on a full disk, before anything
// is written: FoxPro tables and memos with ENOSPC, SQLite databases and their journals with
// SQLITE_FULL (through a file layer wrapped around SQLite's default one). Reads go on. The
// disk has room again when the FullDisk goes away.
#pragma once

namespace plx::test {

class FullDisk
{
public:
    FullDisk();
    ~FullDisk();
    FullDisk(const FullDisk &) = delete;
    FullDisk &operator=(const FullDisk &) = delete;

    // Puts the SQLite file layer in place. Databases opened before it write through the
    // old layer, so a fixture calls this before it opens any database.
    static void prepare();
};

} // namespace plx::test
