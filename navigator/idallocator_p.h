// navigator/idallocator_p.h: IDs for the records NEW and COPY make, unique without a server.
//
// The last key handed out for a table lives in a one-line key file beside it (or, on a
// database that keeps keys itself, in its key table): seven characters as three-digit codes
// (keyToASC), 21 digits. Every navigator, in any process, reads, advances and writes it
// under one lock, and checks each candidate against the table as it is stored, so no two
// records ever get the same ID. A missing or damaged key
// file is rebuilt from the table's highest generated ID; a key file behind the table (a
// restored backup) catches up with it once. Beside the key file lie the notes that name who
// holds a record in edit (LockHolders).
//
// GUI thread; problems are told through the table's Services (a box and the activity log).
#pragma once

#include "services/recordsource/querytext.h"

#include <QString>

#include <functional>
#include <memory>

namespace plx {

class Database;
class IdKeyStore;
class RecordSource;
struct Services;

class IdAllocator
{
public:
    // The table IDs are made for, as the navigator has it when it asks.
    struct Table
    {
        std::shared_ptr<Database> db; // the navigator's database; none: no table to check
        RecordSource *records = nullptr; // the navigator's own records, searched first
        // The table's file: a FoxPro table file, or a SQLite database's folder joined with
        // the table name. The side files are named after it; "" means none can be kept.
        QString file;
        // A FoxPro table file: its highest ID is read through its folder opened afresh.
        bool isTableFile = false;
        QueryText sql;
        QString idField, descField, desc, user;
        Services *services = nullptr; // boxes and the activity log
    };

    // The key file of table file `tableFile` ("" for ""): its path without extension +
    // "_IDLast7.TXT", in the form the file system takes.
    static QString keyFilePath(const QString &tableFile);
    // The folder of holder notes of `tableFile` ("" for "").
    static QString holdersPath(const QString &tableFile);

    // Advances `key` by one step: its last character moves to the next Windows-1252 code,
    // skipping the blank (32); past 255 it wraps to 1 and carries into the character before,
    // like an odometer. A carry that reaches the first three characters (the "PLE" prefix)
    // is reported through `log` ("Error in PLXIDIncrement; k=3") and carried on regardless.
    static QString PLXIDIncrement(const QString &key,
                                  const std::function<void(const QString &)> &log);

    // The next free ID of `table`: `parentID` followed by the key after the key file's,
    // written back as the file's last key. "" when none could be made: a read-only source,
    // no side files, no ID field, or a problem the user was told of (problemShown()).
    QString newID(const Table &table, const QString &parentID);
    // Whether NewID's last "" was explained to the user in a box already.
    bool problemShown() const { return m_problemShown; }

    // Whether record `ownID` may be saved under `id`: true when it keeps its ID or no other
    // record of the table on disk holds `id`. Otherwise takenBy() names that record.
    bool keyIsFree(const Table &table, const QString &id, const QString &ownID);
    // The description field of the record that last held a candidate or key.
    QString takenBy() const { return m_takenBy; }

private:
    enum class IdUse { Free, Taken, Twin };
    IdUse idUseOf(const Table &table, RecordSource &source, const QString &candidate);
    IdUse idInTable(const Table &table, const QString &candidate, const QString &criterion,
                    const QString &ownID);
    IdUse idTaken(const Table &table, const QString &candidate, const QString &criterion);
    QString highestKeyInTable(const Table &table, const QString &query, bool *ok) const;
    void keyFileProblem(const Table &table, const IdKeyStore &keys, const QString &reason);
    QString usableKeyLine(const Table &table, IdKeyStore &keys, const QString &query);
    QString firstFreeID(const Table &table, const QString &parentID, QString candidate,
                        IdKeyStore &keys, const QString &query);

    QString m_takenBy;
    bool m_problemShown = false;
};

} // namespace plx
