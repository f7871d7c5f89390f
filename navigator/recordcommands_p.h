// navigator/recordcommands_p.h: where the record commands of the navigator's toolbar stand.
//
// NEW and COPY append a record before anyone types in it; EDIT takes a record's lock and
// holds it until SAVE or CANCEL. Between them the navigator must know which record it holds,
// whether that record is the one NEW or COPY made (only that one is ever offered for deletion
// on CANCEL, and only its SAVE raises RecAdded), and where a deleted new record leaves the
// user. Records are known by the ID they had when the command began, whatever the user
// types over it since. The commands themselves (the record source, the field controls, the
// boxes and events) are the navigator's; this is their state, kept apart so that its rules
// can be read and tested in one place.
#pragma once

#include <QString>
#include <QStringList>

#include <optional>

namespace plx {

class RecordCommands
{
public:
    enum class Command { None, New, Edit, Copy, Delete, Save, Cancel };
    // None: browsing. Edit: a record is held in edit. New: the held record is the one NEW or
    // COPY made.
    enum class Mode { None, Edit, New };

    // The command a toolbar button's caption names, without regard to case; None for
    // "Close" and any other caption.
    static Command commandFor(const QString &caption);
    // EDIT, COPY and DELETE work on the current record and are refused without one.
    static bool needsCurrentRecord(Command command);
    // What a command that went through does to the toolbar: true when editing begins (NEW,
    // EDIT, COPY), false when it ends (SAVE, CANCEL), nothing for DELETE.
    static std::optional<bool> editingAfter(Command command);
    // Where a new record's cancel returns to, from where the records stood when NEW or COPY
    // was pressed: 0 at BOF, the last record at EOF or with no current record, otherwise
    // the current one.
    static qint32 returnPositionFor(bool bof, bool eof, qint32 position, qint32 count);

    // One command at a time: a command may let the event loop run, and a click meanwhile
    // is ignored. begin() is false while another command is under way.
    bool begin();
    void finish() { m_running = false; }
    bool isRunning() const { return m_running; }

    Mode mode() const;
    // NEW or COPY was pressed with the user at `position` (returnPositionFor).
    void rememberReturnPosition(qint32 position) { m_returnPosition = position; }
    // NEW or COPY appended record `id`: it stands at the end of the records, out of their
    // order, until it is placed or the records are read again.
    void recordCreated(const QString &id)
    {
        m_newRecord = id;
        m_unplaced.append(id);
    }
    // Whether a record NEW or COPY appended, other than `id`, still stands out of order.
    bool othersUnplaced(const QString &id) const;
    // Record `id` took its place in the order.
    void recordPlaced(const QString &id);
    // The records were read again: every one stands in its place.
    void orderRestored() { m_unplaced.clear(); }
    // EDIT took record `id` into edit (its lock is held).
    void editStarted(const QString &id) { m_held = id; }
    // The ID the held record had when its edit began; "" when none is held.
    QString heldID() const { return m_held.value_or(QString()); }
    // Whether `id` names the record NEW or COPY made and no SAVE has added yet (trailing
    // blanks of a fixed-width ID column do not count).
    bool isNewRecord(const QString &id) const;
    // The edit ends (SAVE wrote it, or CANCEL dropped it): returns the ID of the record that
    // was held, whose holder note is to go, or "" when none was held.
    QString release();
    // SAVE added the new record to the table for good: it is an ordinary record from now on.
    void newRecordSaved() { m_newRecord.reset(); }
    // CANCEL of the edit that began on `editedID`, with `currentID` current now: true only
    // when both are the record NEW or COPY made, which may then be offered for deletion.
    // A record kept on that offer stays the new record, so a later SAVE still adds it.
    bool offersDeletion(const QString &editedID, const QString &currentID) const;
    // Record `id` was deleted; when it was the new record, there is none any more.
    void recordDeleted(const QString &id);
    // Where the user goes after the new record is deleted: the remembered position when it
    // is still one of `count` records, otherwise nowhere.
    std::optional<qint32> returnPositionWithin(qint32 count) const;

private:
    std::optional<QString> m_newRecord;
    std::optional<QString> m_held;
    QStringList m_unplaced;
    qint32 m_returnPosition = -1;
    bool m_running = false;
};

} // namespace plx
