// navigator/mvplxrecs_ids.cpp: record IDs for new records. The last key handed out for a
// table lives in a one-line key file beside it; every navigator, in any process, reads,
// advances and writes it under one lock, and checks each candidate against the table as
// it is on disk, so no two records ever get the same ID.
#include "navigator/mvplxrecs.h"

#include "navigator/recordid_p.h"
#include "services/activitylog.h"
#include "services/paths.h"
#include "services/recordsource/database.h"
#include "services/recordsource/filelock_p.h"
#include "services/texthelpers.h"

#include <QFile>
#include <QSaveFile>

namespace plx {

namespace {

const QString kCrLf = QStringLiteral("\r\n");
// How long NewIDPLX waits for another navigator that is making an ID for the same table.
constexpr int kKeyLockWaitMs = 10000;
// Candidates skipped as case twins before giving up: more than one wrap of a key character.
constexpr int kMaxTwins = 1000;

QString readKeyLine(const QString &diskPath)
{
    QFile file(diskPath);
    if (!file.open(QIODevice::ReadOnly))
        return QString();
    return QString::fromLatin1(file.readLine()).remove(QLatin1Char('\r')).remove(QLatin1Char('\n'));
}

// Replaces the key file's line in one step: readers see the old line or the new one.
// Returns why it could not (a full disk, a write-protected folder), or "".
QString writeKeyLine(const QString &diskPath, const QString &line)
{
    QSaveFile file(diskPath);
    if (file.open(QIODevice::WriteOnly)) {
        file.write(line.toLatin1() + "\r\n");
        if (file.commit())
            return QString();
    }
    return file.errorString().isEmpty() ? QStringLiteral("cannot write") : file.errorString();
}

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

QString mvPLXRecs::tableFilePath() const
{
    if (getLenTrim(m_sDBFPathFileName) >= 1)
        return fromDiskPath(m_sDBFPathFileName);
    // A table of a SQLite database: named after the table, in the database's folder.
    if (getLenTrim(m_dataPath) >= 1 && getLenTrim(m_table) >= 1)
        return setPathName(getFileDir(fromDiskPath(m_dataPath)), m_table, false);
    return QString();
}

QString mvPLXRecs::keyFilePath() const
{
    const QString table = tableFilePath();
    return table.isEmpty()
        ? QString()
        : toDiskPath(getPathNoExt(table) + QStringLiteral("_IDLast7") + QStringLiteral(".TXT"));
}

QString mvPLXRecs::holdersPath() const
{
    const QString table = tableFilePath();
    return table.isEmpty() ? QString()
                           : toDiskPath(getPathNoExt(table) + QStringLiteral("_Holders"));
}

void mvPLXRecs::logLines(const QStringList &lines)
{
    logEntry(m_sUser, lines.join(kCrLf), m_services);
}

QString mvPLXRecs::highestKeyInTable(const QString &query, bool *ok)
{
    *ok = false;
    std::shared_ptr<Database> db = m_db;
    if (getLenTrim(m_sDBFPathFileName) >= 1) {
        // The table's folder opened afresh, so the highest ID is read from the file as it
        // is now, whatever this navigator's own database has cached.
        Result<std::unique_ptr<Database>> opened =
            OpenDatabase(toDiskPath(getFileDir(getShortName(fromDiskPath(m_sDBFPathFileName)))),
                         false, false, QStringLiteral("FoxPro 2.6"));
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
    const Result<QVariant> id = rs.value()->value(m_sIDfield);
    return id.isOk() ? rtrimSpaces(id.value().toString()).right(7) : QString();
}

mvPLXRecs::IdUse mvPLXRecs::idUseOf(RecordSource &source, const QString &candidate)
{
    // Which record holds the candidate decides: the very same ID, or only one that the
    // engine's text comparison takes for it (a case-insensitive engine sees "PLE000000a" in
    // "PLE000000A"). Such a twin could never be found apart from its record.
    const Result<QVariant> desc = source.value(m_sDescfield);
    m_takenDesc = desc.isOk() ? desc.value().toString() : QString();
    const Result<QVariant> id = source.value(m_sIDfield);
    return id.isOk() && rtrimSpaces(id.value().toString()) == rtrimSpaces(candidate) ? IdUse::Taken
                                                                                     : IdUse::Twin;
}

mvPLXRecs::IdUse mvPLXRecs::idInTable(const QString &candidate, const QString &criterion,
                                      const QString &ownID)
{
    // The table as it is on disk: another user may have added the ID since this
    // navigator's query ran. The record known as `ownID` does not count.
    if (!m_db)
        return IdUse::Free;
    auto isOwn = [&](RecordSource &source) {
        const Result<QVariant> id = source.value(m_sIDfield);
        return !ownID.isNull() && id.isOk()
            && rtrimSpaces(id.value().toString()) == rtrimSpaces(ownID);
    };
    // A table file is searched through a fresh source over all of it (the driver finds an
    // ID in an open source faster than it runs a WHERE over the file); a database answers
    // the WHERE from its index.
    const bool tableFile = getLenTrim(m_sDBFPathFileName) >= 1;
    Result<std::unique_ptr<RecordSource>> fresh = m_db->OpenRecordset(
        tableFile ? queryText().selectAll() : queryText().selectWhere(criterion));
    if (!fresh.isOk())
        return IdUse::Free;
    RecordSource &source = *fresh.value();
    bool atMatch =
        tableFile ? source.FindFirst(criterion).isOk() && !source.NoMatch() : !source.isEOF();
    while (atMatch) {
        if (!isOwn(source))
            return idUseOf(source, candidate);
        atMatch = tableFile ? source.FindNext(criterion).isOk() && !source.NoMatch()
                            : source.MoveNext().isOk() && !source.isEOF();
    }
    return IdUse::Free;
}

mvPLXRecs::IdUse mvPLXRecs::idTaken(const QString &candidate, const QString &criterion)
{
    // The navigator's own record source first, as it stands.
    if (m_rs) {
        const qint32 position = m_rs->AbsolutePosition();
        const Status found = m_rs->FindFirst(criterion);
        const bool match = found.isOk() && !m_rs->NoMatch();
        const IdUse use = match ? idUseOf(*m_rs, candidate) : IdUse::Free;
        if (position >= 0)
            (void)m_rs->setAbsolutePosition(position);
        if (match)
            return use;
    }
    return idInTable(candidate, criterion, QString());
}

bool mvPLXRecs::keyIsFree(const QString &id, const QString &ownID)
{
    // A record that keeps its ID keeps it, even where the table already held it twice.
    if (rtrimSpaces(id) == rtrimSpaces(ownID))
        return true;
    return idInTable(id, queryText().idCriterion(m_sIDfield, id), ownID) == IdUse::Free;
}

void mvPLXRecs::keyFileProblem(const QString &keyFile, const QString &reason)
{
    // Not "blank ID": the user (or support) must know it is the key file that failed.
    const QString text = QStringLiteral("The record ID key file for ") + m_sDesc
        + QStringLiteral(" cannot be used:") + kCrLf + fromDiskPath(keyFile) + kCrLf + kCrLf
        + reason + kCrLf + kCrLf + QStringLiteral("New record has NOT been created.");
    logLines({ text });
    showBox(text, MsgStyle::Critical, QStringLiteral("Record ID Error"));
    m_idProblemShown = true;
}

// The key file's last key, rebuilt from the table when the file is missing or holds no
// key of this generator; empty (and the user told) when it cannot be made usable.
QString mvPLXRecs::usableKeyLine(const QString &keyFile, const QString &query)
{
    // The table itself knows its highest key; an empty table starts at zero, so that its
    // first ID ends in 0000001.
    auto rebuild = [&]() {
        bool ok = false;
        QString key = highestKeyInTable(query, &ok);
        if (ok && key.size() != 7)
            key = QStringLiteral("0000000");
        const QString code = keyToASC(key);
        const QString failed = writeKeyLine(keyFile, code);
        if (!failed.isEmpty()) {
            keyFileProblem(keyFile, failed);
            return false;
        }
        logLines(rebuiltKeyLines(m_sDesc, query, key, code));
        return true;
    };
    if (!getFileExistLEN(keyFile, false) && !rebuild())
        return QString();

    const int lFlag = 0;
    QString code = readKeyLine(keyFile);
    if (isGeneratorKeyLine(trimSpaces(code)))
        return code;
    // Damaged, written by something else, or the last key there is: said, and rebuilt.
    const QStringList lines = unexpectedKeyLines(m_sDesc, query, code, lFlag);
    showBox(lines.join(kCrLf), MsgStyle::Information, QStringLiteral("Record ID Error"));
    logLines(QStringList(lines) << (getLenTrim(code) != 21
                                        ? QStringLiteral("Len_Trim(sLastIDasc) <> 21")
                                        : QStringLiteral("sLastIDasc is not a key of seven "
                                                         "character codes")));
    if (!rebuild())
        return QString();
    code = readKeyLine(keyFile);
    return isGeneratorKeyLine(trimSpaces(code)) ? code : QString();
}

// The first ID after `candidate` that no record holds, written back as the key file's
// last key; empty (and the user told) when none is found or the key cannot be kept.
QString mvPLXRecs::firstFreeID(QString candidate, const QString &keyFile, const QString &query)
{
    auto logStep = [this](const QString &line) { logLines({ line }); };
    const int lFlag = 0;
    // Case twins are skipped without counting as attempts; the key space bounds them.
    int twins = 0;
    bool caughtUp = false;
    for (int attempts = 0;;) {
        const QString criterion = queryText().idCriterion(m_sIDfield, candidate);
        const IdUse use = idTaken(candidate, criterion);
        if (use == IdUse::Twin && ++twins < kMaxTwins) {
            candidate = PLXIDIncrement(candidate, logStep);
            continue;
        }
        if (use == IdUse::Free) {
            if (const QString failed = writeKeyLine(keyFile, keyToASC(candidate).right(21));
                !failed.isEmpty()) {
                keyFileProblem(keyFile, failed);
                return QString();
            }
            return candidate;
        }
        if (!caughtUp) {
            // A key file behind the table (restored from a backup, copied from another
            // machine) would fail every NEW: the table's highest key takes its place once.
            caughtUp = true;
            bool ok = false;
            const QString highest = highestKeyInTable(query, &ok);
            if (ok && highest.size() == 7 && keyToASC(highest) > keyToASC(candidate.right(7))) {
                logLines({ QStringLiteral("Key file behind the table for ") + m_sDesc,
                           QStringLiteral("Last ID Key (last 7):  ") + highest,
                           QStringLiteral("From ") + keyFile });
                candidate = PLXIDIncrement(m_sParentID + highest, logStep);
                continue;
            }
        }
        if (attempts >= 10) {
            const QStringList lines =
                duplicateIdLines({ m_takenDesc, query, candidate, criterion, lFlag, attempts });
            logLines(lines);
            showBox(lines.join(kCrLf), MsgStyle::Critical,
                    QStringLiteral("Error on New Record ID"));
            return QString();
        }
        ++attempts;
        candidate = PLXIDIncrement(candidate, logStep);
    }
}

QString mvPLXRecs::NewIDPLX()
{
    const QString keyFile = keyFilePath();
    // No side files beside a table that cannot be written: its records get no new IDs.
    if (keyFile.isEmpty() || getLenTrim(m_sIDfield) < 1
        || (m_rs && !m_rs->readOnlyReason().isEmpty()))
        return QString();
    // The table's generated IDs, highest first: the first row holds the last key.
    const QString query = queryText().highestGeneratedID(m_sIDfield);

    // One navigator at a time makes an ID for this table, in every process.
    Result<std::unique_ptr<LockFile>> lock = LockFile::open(keyFile + QStringLiteral(".lock"));
    m_idProblemShown = false;
    if (!lock.isOk() || !lock.value()->lock(0, 1, LockKind::Exclusive, kKeyLockWaitMs).isOk()) {
        keyFileProblem(keyFile,
                       lock.isOk() ? QStringLiteral("another program holds it too long")
                                   : lock.status().message());
        return QString();
    }

    const QString code = usableKeyLine(keyFile, query);
    if (code.isEmpty())
        return QString();
    const QString lastID = m_sParentID + ascToKey(code, 3);
    const QString candidate =
        PLXIDIncrement(lastID, [this](const QString &line) { logLines({ line }); });
    logLines({ QStringLiteral("ParentID ") + m_sParentID, QStringLiteral("LastID   ") + lastID,
               QStringLiteral("New ID   ") + candidate, QStringLiteral("From ") + keyFile });
    return firstFreeID(candidate, keyFile, query);
}

} // namespace plx
