// navigator/findsession_p.h: what the navigator's find box has been given and has found.
//
// The find box follows the user's typing key by key: each key gives the text typed so far,
// which the search list completes (the offered rest highlighted, not counted as typed), and
// a find runs at once for the first record whose sort fields start with it. When nothing
// does, the find widens to the longest start of the text that something starts with, so a
// typing slip still lands near. Enter keeps the text at the top of the search list, with the
// ID it found, for the host to read back (sSearchList, sIDfromList, cArrayID).
//
// A find never moves the navigator's records: it opens a query of its own, kept until the
// user types again, and the navigator then moves its own records onto the ID found.
#pragma once

#include "services/recordsource/status.h"

#include <QStringList>

#include <memory>
#include <optional>

namespace plx {

class Database;
class QueryText;
class RecordSource;

class FindSession
{
public:
    // --- The search list: most recent first, each text once, with the ID it found last.
    int count() const { return int(m_texts.size()); }
    // Text `index` (0-based); "" out of range.
    QString text(int index) const { return m_texts.value(index); }
    const QStringList &texts() const { return m_texts; }
    // The IDs, parallel to texts() ("" where a text has found nothing yet).
    const QStringList &foundIDs() const { return m_ids; }
    // Enter: `text` goes first, the others follow in their order, and an equal entry
    // behind it is dropped; the ID it found stays with it.
    void putFirst(const QString &text);
    // Adds `text` at the end; an equal entry, with its ID, is removed first.
    void append(const QString &text);
    void clear();
    // `id` is what the entry equal to `text` found; nothing when there is none.
    void rememberFound(const QString &text, const QString &id);

    // --- Typing. The box as a key reaches it: its text and its highlighted part (or the
    // cursor, with length 0).
    struct Box
    {
        QString text;
        int selectionStart = 0;
        int selectionLength = 0;
    };
    // What the box shows after a key: `shown`, of which the first `typed` characters were
    // typed and the rest is offered by search-list entry `entry` (-1: none offered).
    struct Typed
    {
        QString typed;
        QString shown;
        int entry = -1;
    };
    // The highlighted part was offered, not typed: a character replaces it, and Backspace
    // takes it together with the character before. Nothing (the key is spent) for
    // Backspace with nothing before the cursor. The typed text is cut at `maxLength`; the
    // query of the last find is closed.
    std::optional<Typed> backspace(const Box &box, int maxLength);
    Typed character(const Box &box, const QString &characters, int maxLength);

    // --- Finding.
    enum class Outcome { Found, NothingFound, Failed };
    // Finds the first record, in the order of `sortFields`, whose fields start with the
    // tab-separated pieces of `boxText` (trimmed, upper-cased, cut to the width of
    // `records`' text fields), widening when nothing does. Found: foundID() is its ID.
    // Failed: no query could be written for the text, or one could not run, which
    // failure() then says. `sql` writes the queries; `db` runs them.
    Outcome find(Database &db, const QueryText &sql, const QString &sortFields,
                 const RecordSource &records, const QString &boxText, const QString &idField);
    QString foundID() const { return m_foundID; }
    // The records the last find found (the search results, in the sort's order); nullptr
    // when it found nothing or failed, and from the next key typed on.
    std::shared_ptr<RecordSource> found() const { return m_found; }
    // The find box's text as the last find was given it, and how that find ended.
    QString searchedText() const { return m_searchedText; }
    Outcome lastOutcome() const { return m_outcome; }
    // Why the last find's query could not run; ok when it did (or none could be written).
    const Status &failure() const { return m_failure; }
    // A find is under way (the navigator's IDChange handlers run inside it).
    bool isRunning() const { return m_running; }
    void setRunning(bool running) { m_running = running; }

private:
    std::optional<Typed> completed(QString typed, int maxLength);
    Outcome findRecords(Database &db, const QueryText &sql, const QString &sortFields,
                        const QString &search, const QString &idField);
    bool matches(Database &db, const QueryText &sql, const QString &sortFields,
                 const QString &search, std::shared_ptr<RecordSource> *hit, bool *failed);

    QStringList m_texts;
    QStringList m_ids;
    std::shared_ptr<RecordSource> m_found;
    QString m_foundID;
    QString m_searchedText;
    Outcome m_outcome = Outcome::NothingFound;
    Status m_failure;
    bool m_running = false;
};

} // namespace plx
