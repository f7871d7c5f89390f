// navigator/idallocator.cpp
#include "navigator/idallocator_p.h"

#include "navigator/idkeystore_p.h"

#include "services/activitylog.h"
#include "services/cp1252.h"
#include "services/env.h"
#include "services/paths.h"
#include "services/prompter.h"
#include "services/recordsource/database.h"
#include "services/texthelpers.h"

namespace plx {

namespace {

const QString kCrLf = QStringLiteral("\r\n");
// How long NewIDPLX waits for another navigator that is making an ID for the same table.
constexpr int kKeyLockWaitMs = 10000;
// Candidates skipped as case twins before giving up: more than one wrap of a key character.
constexpr int kMaxTwins = 1000;

// True for a line this generator writes: seven character codes of three digits each, none
// of them 0 or the blank, and not the last key there is (seven times 255), after which
// the next key would carry into the parent ID.
bool isGeneratorKeyLine(const QString &code)
{
    if (code.size() != 21)
        return false;
    int highest = 0;
    for (int i = 0; i < 21; i += 3) {
        bool digits = true;
        for (int j = i; j < i + 3; ++j)
            digits = digits && code[j] >= QLatin1Char('0') && code[j] <= QLatin1Char('9');
        const int c = digits ? code.mid(i, 3).toInt() : -1;
        if (c < 1 || c > 255 || c == 32)
            return false;
        highest += c == 255 ? 1 : 0;
    }
    return highest < 7;
}

void logLines(const IdAllocator::Table &table, const QStringList &lines)
{
    logEntry(table.user, lines.join(kCrLf), table.services);
}

void showBox(const IdAllocator::Table &table, const QString &text, int style, const QString &title)
{
    prompterOf(table.services).msgBox(text, style, title);
}

// The lines NewIDPLX logs, and for its errors also shows, one fact a line.

QStringList rebuiltKeyLines(const QString &desc, const QString &query, const QString &key,
                            const QString &code)
{
    return { QStringLiteral("New Key Text File for ") + desc, QStringLiteral("SQL:  ") + query,
             QStringLiteral("Last ID Key (last 7):  ") + key,
             QStringLiteral("Last ID ASC (last 7):  ") + code };
}

QStringList unexpectedKeyLines(const QString &desc, const QString &query, const QString &code,
                               int lFlag)
{
    return { QStringLiteral("Unexpected results for Last ID in ") + desc,
             QStringLiteral("SQL: ") + query,
             QStringLiteral("New ID KEY ") + ascToKey(code, 3),
             QStringLiteral("New ID ASC ") + code,
             QStringLiteral("FindFirst ") + QString(),
             QStringLiteral("lFlag ") + QString::number(lFlag) };
}

// What the search for a free ID had when it gave up.
struct DuplicateId
{
    QString takenDesc, query, candidate, criterion;
    int lFlag = 0;
    int attempts = 0;
};

QStringList duplicateIdLines(const DuplicateId &d)
{
    return { QStringLiteral("Duplicate ID Error in mvPLXRecs.NewIDPLX"),
             QStringLiteral("Desc Field: ") + d.takenDesc,
             QStringLiteral("Cannot create new record."),
             QStringLiteral("SQL:  ") + d.query,
             QStringLiteral("New ID KEY:  ") + d.candidate,
             QStringLiteral("New ID ASC:  ") + keyToASC(d.candidate),
             QStringLiteral("FindFirst:  ") + d.criterion,
             QStringLiteral("lFlag:  ") + QString::number(d.lFlag),
             QStringLiteral("Unsuccessful after ") + QString::number(d.attempts)
                 + QStringLiteral(" attempts") };
}

} // namespace

QString IdAllocator::keyFilePath(const QString &tableFile)
{
    return tableFile.isEmpty()
        ? QString()
        : toDiskPath(getPathNoExt(tableFile) + QStringLiteral("_IDLast7") + QStringLiteral(".TXT"));
}

QString IdAllocator::holdersPath(const QString &tableFile)
{
    return tableFile.isEmpty() ? QString()
                               : toDiskPath(getPathNoExt(tableFile) + QStringLiteral("_Holders"));
}

QString IdAllocator::PLXIDIncrement(const QString &key,
                                    const std::function<void(const QString &)> &log)
{
    QString next = key;
    qint32 k = getLenTrim(key);
    while (k >= 1) {
        if (k < 4 && log)
            log(QStringLiteral("Error in PLXIDIncrement; k=") + QString::number(k));
        int code = cp1252::fromUnicode(next[k - 1], 0);
        bool carry = false;
        do {
            ++code;
            if (code > 255) {
                code -= 255;
                carry = true;
            }
        } while (code == 32);
        next[k - 1] = cp1252::toUnicode(static_cast<unsigned char>(code));
        if (!carry)
            break;
        --k;
    }
    return next;
}

QString IdAllocator::highestKeyInTable(const Table &table, const QString &query, bool *ok) const
{
    *ok = false;
    std::shared_ptr<Database> db = table.db;
    if (table.isTableFile) {
        // The table's folder opened afresh, so the highest ID is read from the file as it
        // is now, whatever the navigator's own database has cached.
        Result<std::unique_ptr<Database>> opened =
            OpenDatabase(toDiskPath(getFileDir(getShortName(table.file))), false, false,
                         QStringLiteral("FoxPro 2.6"));
        if (!opened.isOk())
            return QString();
        db = std::move(opened.value());
    }
    if (!db)
        return QString();
    Result<std::unique_ptr<RecordSource>> rs = db->OpenRecordset(query);
    if (!rs.isOk())
        return QString();
    *ok = true;
    if (rs.value()->isEOF())
        return QString();
    const Result<QVariant> id = rs.value()->value(table.idField);
    return id.isOk() ? rtrimSpaces(id.value().toString()).right(7) : QString();
}

IdAllocator::IdUse IdAllocator::idUseOf(const Table &table, RecordSource &source,
                                        const QString &candidate)
{
    // Which record holds the candidate decides: the very same ID, or only one that the
    // engine's text comparison takes for it (a case-insensitive engine sees "PLE000000a" in
    // "PLE000000A"). Such a twin could never be found apart from its record.
    const Result<QVariant> desc = source.value(table.descField);
    m_takenBy = desc.isOk() ? desc.value().toString() : QString();
    const Result<QVariant> id = source.value(table.idField);
    return id.isOk() && rtrimSpaces(id.value().toString()) == rtrimSpaces(candidate) ? IdUse::Taken
                                                                                     : IdUse::Twin;
}

IdAllocator::IdUse IdAllocator::idInTable(const Table &table, const QString &candidate,
                                          const QString &criterion, const QString &ownID)
{
    // The table as it is on disk: another user may have added the ID since the
    // navigator's query ran. The record known as `ownID` does not count.
    if (!table.db)
        return IdUse::Free;
    auto isOwn = [&](RecordSource &source) {
        const Result<QVariant> id = source.value(table.idField);
        return !ownID.isNull() && id.isOk()
            && rtrimSpaces(id.value().toString()) == rtrimSpaces(ownID);
    };
    // A fresh source of the records that hold the ID, so that the table is read as it is
    // now: a database answers the WHERE from its index on the ID field, a FoxPro table from
    // its kept ID index (or one pass over the file while none is kept).
    Result<std::unique_ptr<RecordSource>> fresh =
        table.db->OpenRecordset(table.sql.selectWhere(criterion));
    if (!fresh.isOk())
        return IdUse::Free;
    RecordSource &source = *fresh.value();
    for (bool atMatch = !source.isEOF(); atMatch;
         atMatch = source.MoveNext().isOk() && !source.isEOF()) {
        if (!isOwn(source))
            return idUseOf(table, source, candidate);
    }
    return IdUse::Free;
}

IdAllocator::IdUse IdAllocator::idTaken(const Table &table, const QString &candidate,
                                        const QString &criterion)
{
    // The navigator's own record source first, as it stands.
    if (RecordSource *records = table.records) {
        const qint32 position = records->AbsolutePosition();
        const Status found = records->FindFirst(criterion);
        const bool match = found.isOk() && !records->NoMatch();
        const IdUse use = match ? idUseOf(table, *records, candidate) : IdUse::Free;
        if (position >= 0)
            (void)records->setAbsolutePosition(position);
        if (match)
            return use;
    }
    return idInTable(table, candidate, criterion, QString());
}

bool IdAllocator::keyIsFree(const Table &table, const QString &id, const QString &ownID)
{
    // A record that keeps its ID keeps it, even where the table already held it twice.
    if (rtrimSpaces(id) == rtrimSpaces(ownID))
        return true;
    return idInTable(table, id, table.sql.idCriterion(table.idField, id), ownID) == IdUse::Free;
}

void IdAllocator::keyFileProblem(const Table &table, const IdKeyStore &keys, const QString &reason)
{
    // Not "blank ID": the user (or support) must know it is the key that failed.
    const QString text = QStringLiteral("The ") + keys.noun() + QStringLiteral(" for ") + table.desc
        + QStringLiteral(" cannot be used:") + kCrLf + keys.location() + kCrLf + kCrLf + reason
        + kCrLf + kCrLf + QStringLiteral("New record has NOT been created.");
    logLines(table, { text });
    showBox(table, text, MsgStyle::Critical, QStringLiteral("Record ID Error"));
    m_problemShown = true;
}

// The key file's last key, rebuilt from the table when the file is missing or holds no
// key of this generator; empty (and the user told) when it cannot be made usable.
QString IdAllocator::usableKeyLine(const Table &table, IdKeyStore &keys, const QString &query)
{
    // The table itself knows its highest key; an empty table starts at zero, so that its
    // first ID ends in 0000001.
    auto rebuild = [&]() {
        bool ok = false;
        QString key = highestKeyInTable(table, query, &ok);
        if (ok && key.size() != 7)
            key = QStringLiteral("0000000");
        const QString code = keyToASC(key);
        const QString failed = keys.write(code);
        if (!failed.isEmpty()) {
            keyFileProblem(table, keys, failed);
            return false;
        }
        logLines(table, rebuiltKeyLines(table.desc, query, key, code));
        return true;
    };
    if (!keys.exists() && !rebuild())
        return QString();

    const int lFlag = 0;
    QString code = keys.read();
    if (isGeneratorKeyLine(trimSpaces(code)))
        return code;
    // Damaged, written by something else, or the last key there is: said, and rebuilt.
    const QStringList lines = unexpectedKeyLines(table.desc, query, code, lFlag);
    showBox(table, lines.join(kCrLf), MsgStyle::Information, QStringLiteral("Record ID Error"));
    logLines(table,
             QStringList(lines) << (getLenTrim(code) != 21
                                        ? QStringLiteral("Len_Trim(sLastIDasc) <> 21")
                                        : QStringLiteral("sLastIDasc is not a key of seven "
                                                         "character codes")));
    if (!rebuild())
        return QString();
    code = keys.read();
    return isGeneratorKeyLine(trimSpaces(code)) ? code : QString();
}

// The first ID after `candidate` that no record holds, written back as the key file's
// last key; empty (and the user told) when none is found or the key cannot be kept.
QString IdAllocator::firstFreeID(const Table &table, const QString &parentID, QString candidate,
                                 IdKeyStore &keys, const QString &query)
{
    auto logStep = [&table](const QString &line) { logLines(table, { line }); };
    const int lFlag = 0;
    // Case twins are skipped without counting as attempts; the key space bounds them.
    int twins = 0;
    bool caughtUp = false;
    for (int attempts = 0;;) {
        const QString criterion = table.sql.idCriterion(table.idField, candidate);
        const IdUse use = idTaken(table, candidate, criterion);
        if (use == IdUse::Twin && ++twins < kMaxTwins) {
            candidate = PLXIDIncrement(candidate, logStep);
            continue;
        }
        if (use == IdUse::Free) {
            QString failed = keys.write(keyToASC(candidate).right(21));
            if (failed.isEmpty())
                failed = keys.finish();
            if (!failed.isEmpty()) {
                keyFileProblem(table, keys, failed);
                return QString();
            }
            return candidate;
        }
        if (!caughtUp) {
            // A key file behind the table (restored from a backup, copied from another
            // machine) would fail every NEW: the table's highest key takes its place once.
            caughtUp = true;
            bool ok = false;
            const QString highest = highestKeyInTable(table, query, &ok);
            if (ok && highest.size() == 7 && keyToASC(highest) > keyToASC(candidate.right(7))) {
                logLines(table,
                         { QStringLiteral("Key file behind the table for ") + table.desc,
                           QStringLiteral("Last ID Key (last 7):  ") + highest,
                           QStringLiteral("From ") + keys.location() });
                candidate = PLXIDIncrement(parentID + highest, logStep);
                continue;
            }
        }
        if (attempts >= 10) {
            const QStringList lines =
                duplicateIdLines({ m_takenBy, query, candidate, criterion, lFlag, attempts });
            logLines(table, lines);
            showBox(table, lines.join(kCrLf), MsgStyle::Critical,
                    QStringLiteral("Error on New Record ID"));
            return QString();
        }
        ++attempts;
        candidate = PLXIDIncrement(candidate, logStep);
    }
}

QString IdAllocator::newID(const Table &table, const QString &parentID)
{
    m_problemShown = false;
    // No key beside a table that cannot be written: its records get no new IDs.
    std::unique_ptr<IdKeyStore> keys =
        IdKeyStore::forTable(table.db.get(), table.sql.table(), table.file);
    if (!keys || getLenTrim(table.idField) < 1
        || (table.records && !table.records->readOnlyReason().isEmpty()))
        return QString();
    // The table's generated IDs, highest first: the first row holds the last key.
    const QString query = table.sql.highestGeneratedID(table.idField);

    // One navigator at a time makes an ID for this table, in every process.
    if (const QString failed = keys->acquire(kKeyLockWaitMs); !failed.isEmpty()) {
        keyFileProblem(table, *keys, failed);
        return QString();
    }

    const QString code = usableKeyLine(table, *keys, query);
    if (code.isEmpty())
        return QString();
    const QString lastID = parentID + ascToKey(code, 3);
    const QString candidate =
        PLXIDIncrement(lastID, [&table](const QString &line) { logLines(table, { line }); });
    logLines(table,
             { QStringLiteral("ParentID ") + parentID, QStringLiteral("LastID   ") + lastID,
               QStringLiteral("New ID   ") + candidate,
               QStringLiteral("From ") + keys->location() });
    return firstFreeID(table, parentID, candidate, *keys, query);
}

} // namespace plx
