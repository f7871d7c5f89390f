// navigator/mvplxrecs_commands.cpp: the record commands of the bottom toolbar: New, Edit,
// Copy, Delete, Save and Cancel, and the IDs New and Copy give. Each drives the record
// source, the field controls and the host's other controls, stamps the audit fields and
// tells the host through events in a fixed order, so host forms can rely on what they see.
// Which record is held and which one is new is RecordCommands' to know; the IDs come from
// the IdAllocator.
#include "navigator/mvplxrecs_p.h"

#include "navigator/lockholder_p.h"
#include "navigator/navigatortext_p.h"
#include "services/activitylog.h"
#include "services/recordsource/database.h"
#include "services/recordsource/keptorder.h"
#include "services/recordsource/sharedkeys.h"
#include "services/texthelpers.h"

#include <QAction>
#include <QMetaObject>

namespace plx {

namespace {

const QString kCrLf = QStringLiteral("\r\n");

} // namespace

QString mvPLXRecsPrivate::auditStamp() const
{
    return clockOf(services).now().toString(QStringLiteral("MM/dd/yyyy hh:mm:ss"))
        + QLatin1Char(' ') + sUser;
}

QString mvPLXRecsPrivate::commandCurrentID() const
{
    if (!rs || rs->isBOF() || rs->isEOF() || getLenTrim(sIDfield) < 1 || rs->AbsolutePosition() < 0)
        return QString();
    return currentIDText();
}

void mvPLXRecsPrivate::reportEngineError(const QString &what, const Status &status) const
{
    // Not one of the fixed boxes: a failure the engine reported (a read-only table, a full
    // disk) that would otherwise leave the user wondering why nothing happened.
    logEntry(sUser, messageTitle() + QStringLiteral(": ") + what + kCrLf + status.toString(),
             services);
    showBox(what + kCrLf + kCrLf + statusForUser(status), MsgStyle::Critical, messageTitle());
}

QString mvPLXRecsPrivate::blankIDMessage(const QString &lastLine) const
{
    return QStringLiteral("The ID field for this record is blank.") + kCrLf + kCrLf
        + QStringLiteral("Blank ID records cannot be saved.") + kCrLf
        + QStringLiteral("Parent ID is: ") + sParentID + QStringLiteral(" (") + keyToASC(sParentID)
        + QStringLiteral(")") + kCrLf + kCrLf + lastLine;
}

void mvPLXRecsPrivate::toolbarClicked(QAction *button)
{
    // A command may yield to the event loop; a second click meanwhile waits its turn by
    // being ignored, as the toolbar's own state would have it.
    if (!button || !commands.begin())
        return;
    struct Finish
    {
        RecordCommands &running;
        ~Finish() { running.finish(); }
    } finish{ commands };
    const RecordCommands::Command command = RecordCommands::commandFor(button->text());
    const QString id = commandCurrentID();
    if (RecordCommands::needsCurrentRecord(command) && trimSpaces(id).isEmpty()) {
        showBox(
            QStringLiteral("This ") + button->text()
                + QStringLiteral(" function is only valid for an existing record") + kCrLf + kCrLf
                + QStringLiteral("You can create a record with the 'New' button") + kCrLf
                + QStringLiteral("or you can use the pulldown list to find an existing record."),
            MsgStyle::Information, QStringLiteral("No Current Record"));
        return;
    }
    if (!runCommand(command, id))
        return;
    if (const std::optional<bool> editing = RecordCommands::editingAfter(command))
        setButtonsForEditing(*editing);
}

// Runs `command`; true when the toolbar is to show its outcome (the enabling step).
bool mvPLXRecsPrivate::runCommand(RecordCommands::Command command, const QString &id)
{
    switch (command) {
    case RecordCommands::Command::Edit: return commandEdit(id);
    case RecordCommands::Command::Save: return commandSave();
    case RecordCommands::Command::Cancel: return commandCancel(id);
    case RecordCommands::Command::Delete: return commandDelete(id);
    case RecordCommands::Command::New: return commandNew();
    case RecordCommands::Command::Copy: return commandCopy();
    case RecordCommands::Command::None: break; // "Close" and any other caption: no command
    }
    return false;
}

QString mvPLXRecsPrivate::holderOf(const QString &id) const
{
    return LockHolders(IdAllocator::holdersPath(tableFilePath())).describe(id);
}

// Takes record `id` into edit: its lock, and the note that names this user as its holder.
bool mvPLXRecsPrivate::lockForEdit(const QString &id)
{
    const Status locked = rs->editMode() == EditMode::None ? rs->Edit() : Status::ok();
    if (!locked.isOk()) {
        QString description = locked.message();
        if (locked.code() == Status::Code::Locked) {
            const QString holder = holderOf(id);
            if (!holder.isEmpty())
                description += kCrLf + holder;
        }
        showBox(QStringLiteral("This record is locked.  ") + kCrLf
                    + QStringLiteral("Please try again later") + kCrLf + kCrLf + description,
                MsgStyle::Information, QStringLiteral("Access Denied"));
        return false;
    }
    if (getLenTrim(id) >= 1)
        LockHolders(IdAllocator::holdersPath(tableFilePath()))
            .claim(id, sUser, clockOf(services).now());
    // The record is known by the ID it had when the edit began, whatever is typed over it.
    commands.editStarted(id);
    return true;
}

bool mvPLXRecsPrivate::commandEdit(const QString &id)
{
    Q_Q(mvPLXRecs);
    if (!rs) {
        showBox(QStringLiteral("Not connected to a database"), MsgStyle::OKOnly, QString());
        return false;
    }
    idle();
    // The record to edit is nearly always the current one already: finding it again in a
    // million records would only land on the same record.
    if (currentIDText() != id)
        (void)rs->FindFirst(queryText().idCriterion(sIDfield, id));
    idle();
    pump();
    for (BoundControl *control : fieldControls())
        control->UpdateDBF();
    idle();
    pump();
    if (!lockForEdit(id))
        return false;
    pump();
    bool accepted = true;
    for (BoundControl *control : fieldControls())
        accepted = control->bEdit(false) && accepted;
    if (!accepted) {
        // The record source stays in edit on purpose: the host decides what comes next.
        for (BoundControl *control : fieldControls())
            control->CancelEdit();
        return false;
    }
    pump();
    for (BoundControl *control : fieldControls())
        control->setLocked(false);
    for (BoundControl *other : otherControls())
        other->setEnabled(true);
    bInitiator = false;
    sEventInfo = QStringLiteral("ButtonClick: edit");
    Q_EMIT q->RecEditStart(id);
    return true;
}

bool mvPLXRecsPrivate::parentAllowsSave() const
{
    const QString missingParent = QStringLiteral("Parent record for '") + sDesc
        + QStringLiteral("' has not been set, so validation cannot be performed.");
    if (!fParent) {
        showBox(missingParent, MsgStyle::Information, QStringLiteral("Saving without Validation"));
        return true;
    }
    bool valid = true;
    const bool called =
        QMetaObject::invokeMethod(fParent.data(), "OKtoSave", Qt::DirectConnection,
                                  Q_RETURN_ARG(bool, valid), Q_ARG(qint16, myLevel));
    if (!called) {
        // A parent form that offers no OKtoSave validates nothing: said and saved as if
        // no parent were set, and noted for the host's developer.
        logEntry(sUser,
                 messageTitle() + QStringLiteral(": the parent form offers no OKtoSave(qint16)"),
                 services);
        showBox(missingParent, MsgStyle::Information, QStringLiteral("Saving without Validation"));
        return true;
    }
    return valid;
}

// Each field row hands what was typed to the record's edit buffer; a row that refuses its
// value says so in its own box, titled with the row's name.
void mvPLXRecsPrivate::saveFieldRows(const QList<BoundControl *> &fields) const
{
    for (BoundControl *control : fields)
        control->EditUpdate();
    for (BoundControl *control : fields) {
        const QString said = control->Save();
        if (!said.isEmpty())
            showBox(said, MsgStyle::Information, control->Name());
    }
}

bool mvPLXRecsPrivate::writeEditedRecord(const QString &heldID)
{
    // The rows put their values into the record's edit buffer and the navigator writes the
    // buffer once, stamp included: the record on disk is the old one or the new one, never
    // new values under the old stamp, and the lock is held until the write is done.
    const QString notSaved =
        QStringLiteral("'") + sDesc + QStringLiteral("' record has NOT been saved.");
    if (rs->editMode() == EditMode::None) {
        // A write that failed earlier may have left the edit; take the record again.
        if (Status s = rs->Edit(); !s.isOk()) {
            reportEngineError(notSaved, s);
            return false;
        }
    }
    saveFieldRows(fieldControls());
    // The ID as the rows left it: typed over, blanked or as it was.
    const Result<QVariant> typed = rs->value(sIDfield);
    const QString id = typed.isOk() ? typed.value().toString() : QString();
    if (getLenTrim(id) < 1) {
        const QString message = blankIDMessage(notSaved);
        logEntry(sUser, message, services);
        showBox(message, MsgStyle::Critical, QStringLiteral("Blank ID"));
        return false;
    }
    if (!ids.keyIsFree(idTable(), id, heldID)) {
        showBox(QStringLiteral("The ID ") + rtrimSpaces(id)
                    + QStringLiteral(" is already used by another record: ") + ids.takenBy() + kCrLf
                    + kCrLf + notSaved,
                MsgStyle::Critical, QStringLiteral("Record Not Saved"));
        return false;
    }
    (void)rs->setValue(QStringLiteral("PLLASTREV"), auditStamp());
    if (Status s = rs->Update(); !s.isOk()) {
        // Still in edit, with everything typed on screen: the user can try again or cancel.
        reportEngineError(notSaved, s);
        return false;
    }
    return true;
}

bool mvPLXRecsPrivate::commandSave()
{
    Q_Q(mvPLXRecs);
    QString id;
    if (rs) {
        const Result<QVariant> value = rs->value(sIDfield);
        id = value.isOk() ? value.value().toString() : QString();
    }
    // A key the user types is still in its row here: it is checked once the rows are written.
    if (getLenTrim(id) < 1 && (bGenerateIDs || !rs)) {
        const QString message = blankIDMessage(QStringLiteral("'") + sDesc
                                               + QStringLiteral("' record has NOT been saved."));
        logEntry(sUser, message, services);
        showBox(message, MsgStyle::Critical, QStringLiteral("Blank ID"));
        return false;
    }
    if (!parentAllowsSave()) {
        showBox(QStringLiteral("'") + sDesc + QStringLiteral("' record has NOT been saved."),
                MsgStyle::Critical, QStringLiteral("Record Not Saved"));
        return false;
    }
    const QList<BoundControl *> fields = fieldControls();
    const QString heldID = commands.heldID();
    const bool wasNew = commands.isNewRecord(heldID);
    if (rs) {
        if (!writeEditedRecord(heldID))
            return false;
        // From here on the record is known by the ID it was saved with.
        id = currentIDText();
        releaseHeldRecord();
        pump();
        sEventInfo = QStringLiteral("ButtonClick: Save (RecSave)");
        Q_EMIT q->RecSave(id);
    } else {
        saveFieldRows(fields);
    }
    pump();
    for (BoundControl *control : fields)
        control->setLocked(true);
    for (BoundControl *other : otherControls())
        other->setEnabled(false);
    if (rs) {
        bInitiator = false;
        sEventInfo = QStringLiteral("ButtonClick: Save (EditEnd)");
        Q_EMIT q->RecEditEnd(id);
        if (wasNew) {
            sEventInfo = QStringLiteral("ButtonClick: Save (RecAdded)");
            Q_EMIT q->RecAdded(id);
            pump();
            sEventInfo = QStringLiteral("ButtonClick: Save (IDChange)");
            Q_EMIT q->IDChange(id);
            pump();
            refreshCountDisplay();
        }
    }
    if (wasNew)
        commands.newRecordSaved();
    if (rs)
        placeSavedRecord(heldID, id);
    // The rows show what the table kept, in the record that is current now.
    for (BoundControl *control : fields)
        control->UpdateDBF();
    return true;
}

// The saved record takes its place in the order and stays current. On a million records
// reading them all again costs a hundred times the write, so that is done only when the
// record source cannot place it: it does not keep its order, the record has left its
// filter, or a record NEW or COPY added earlier still stands out of order at the end.
void mvPLXRecsPrivate::placeSavedRecord(const QString &heldID, const QString &id)
{
    auto *kept = dynamic_cast<KeptOrder *>(rs.get());
    if (kept && !commands.othersUnplaced(heldID) && kept->placeCurrentInOrder()) {
        commands.recordPlaced(heldID);
        setScrollBar();
        return;
    }
    requery(id, false);
}

void mvPLXRecsPrivate::releaseHeldRecord()
{
    const QString held = commands.release();
    if (!held.isEmpty())
        LockHolders(IdAllocator::holdersPath(tableFilePath())).release(held);
}

void mvPLXRecsPrivate::moveToNeighbour(qint32 position)
{
    // A deleted record leaves no current record: its neighbour takes its place, the one
    // after it, or the one before when it was the last.
    const qint32 count = rs->RecordCount();
    if (count > 0)
        (void)rs->setAbsolutePosition(qBound(0, position, count - 1));
    setScrollBar();
    refreshCountDisplay();
}

bool mvPLXRecsPrivate::commandCancel(const QString &id)
{
    Q_Q(mvPLXRecs);
    // The record is the one whose edit began under this ID, whatever the rows put into
    // its edit buffer since; only the record NEW or COPY made is ever offered for deletion.
    const QString editedID = commands.heldID();
    if (rs)
        (void)rs->CancelUpdate();
    releaseHeldRecord();
    const QString recordID = rs ? currentIDText() : id;
    const QList<BoundControl *> fields = fieldControls();
    for (BoundControl *control : fields)
        control->CancelEdit();
    if (rs) {
        sEventInfo = QStringLiteral("ButtonClick: Cancel (RecCancel)");
        Q_EMIT q->RecCancel(recordID);
        pump();
    }
    for (BoundControl *control : fields)
        control->setLocked(true);
    for (BoundControl *other : otherControls())
        other->setEnabled(false);
    for (BoundControl *control : fields)
        control->UpdateDBF();
    if (rs) {
        sEventInfo = QStringLiteral("ButtonClick: Cancel (RecEditEnd)");
        Q_EMIT q->RecEditEnd(recordID);
    }
    if (!rs || !commands.offersDeletion(editedID, recordID))
        return true;
    const MsgAnswer answer = prompterOf(services).msgBox(QStringLiteral("Delete the New record?"),
                                                         MsgStyle::YesNo | MsgStyle::DefaultButton2,
                                                         QStringLiteral("Delete?"));
    if (answer != MsgAnswer::Yes)
        return true; // the record stays, and stays the new record: its SAVE adds it
    if (Status s = rs->Delete(); !s.isOk()) {
        reportEngineError(QStringLiteral("The new record could not be deleted."), s);
        return true;
    }
    commands.recordDeleted(recordID);
    if (const std::optional<qint32> back = commands.returnPositionWithin(rs->RecordCount()))
        (void)rs->setAbsolutePosition(*back);
    setScrollBar();
    refreshCountDisplay();
    sEventInfo = QStringLiteral("ButtonClick: Cancel (RecDelete)");
    Q_EMIT q->RecDelete(recordID);
    return true;
}

bool mvPLXRecsPrivate::commandDelete(const QString &id)
{
    Q_Q(mvPLXRecs);
    QString description;
    if (rs) {
        const Result<QVariant> desc = rs->value(sDescfield);
        description = desc.isOk() ? chkNulls(desc.value(), QString(), false).toString() : QString();
    }
    const int yesNoNo = MsgStyle::YesNo | MsgStyle::DefaultButton2;
    const QString question = QStringLiteral("Are you sure you want to delete this record?");
    Prompter &prompter = prompterOf(services);
    if (prompter.msgBox(modAddALine(question, description, kCrLf, false), yesNoNo,
                        QStringLiteral("Delete Record?"))
        != MsgAnswer::Yes)
        return true;
    if (prompter.msgBox(question, yesNoNo, QStringLiteral("Are you sure?")) != MsgAnswer::Yes)
        return true;
    const qint32 position = rs->AbsolutePosition();
    if (Status s = rs->Delete(); !s.isOk()) {
        QString what = QStringLiteral("The record could not be deleted.");
        if (s.code() == Status::Code::Locked) {
            const QString holder = holderOf(id);
            if (!holder.isEmpty())
                what += kCrLf + holder;
        }
        reportEngineError(what, s);
        return true;
    }
    commands.recordDeleted(id);
    moveToNeighbour(position);
    bInitiator = true;
    sEventInfo = QStringLiteral("ButtonClick: Delete (RecDelete)");
    Q_EMIT q->RecDelete(id);
    refreshCountDisplay();
    return true;
}

qint32 mvPLXRecsPrivate::returnPositionForNew() const
{
    if (!rs)
        return -1;
    return RecordCommands::returnPositionFor(rs->isBOF(), rs->isEOF(), rs->AbsolutePosition(),
                                             rs->RecordCount());
}

Status mvPLXRecsPrivate::appendRecord(const QVariantList &values, const QString &id)
{
    // The record is in the table, with its ID and both stamps, before anyone types in it.
    const QString stamp = auditStamp();
    Status s = rs->AddNew();
    if (values.isEmpty()) {
        // A new record's flags read False, not Null: a check box has no third state to show.
        const QList<FieldInfo> &infos = rs->fieldInfos();
        for (int i = 0; s.isOk() && i < infos.size(); ++i)
            if (infos[i].type == FieldType::Boolean)
                s = rs->setValue(i, false);
    }
    for (int i = 0; s.isOk() && i < values.size(); ++i)
        s = rs->setValue(i, values[i]);
    if (s.isOk())
        s = rs->setValue(sIDfield, id);
    if (s.isOk()) {
        // Tables without audit fields simply do not get stamped.
        (void)rs->setValue(QStringLiteral("PLSTART"), stamp);
        (void)rs->setValue(QStringLiteral("PLLASTREV"), stamp);
        s = rs->Update();
    }
    if (!s.isOk())
        (void)rs->CancelUpdate();
    return s;
}

bool mvPLXRecsPrivate::commandNew()
{
    Q_Q(mvPLXRecs);
    commands.rememberReturnPosition(returnPositionForNew());
    // A table whose key the user types gets a blank one, filled in before SAVE.
    const QString id = bGenerateIDs ? newID() : QString();
    if (bGenerateIDs && trimSpaces(id).isEmpty()) {
        // A key file that cannot be used has been named already; a second box blaming a
        // blank ID would only mislead.
        if (!ids.problemShown()) {
            const QString message =
                blankIDMessage(QStringLiteral("New record has NOT been created."));
            logEntry(sUser, message, services);
            showBox(message, MsgStyle::Critical, QStringLiteral("Record Not Saved"));
        }
        return false;
    }
    if (!rs) {
        showBox(QStringLiteral("Not connected to a database"), MsgStyle::OKOnly, QString());
        return false;
    }
    if (Status s = appendRecord({}, id); !s.isOk()) {
        reportEngineError(QStringLiteral("New record has NOT been created."), s);
        return false;
    }
    idle();
    (void)rs->MoveLast();
    refreshCountDisplay();
    commands.recordCreated(id);
    bInitiator = true;
    sEventInfo = QStringLiteral("ButtonClick: New (RecNew)");
    Q_EMIT q->RecNew();
    return commandEdit(id);
}

bool mvPLXRecsPrivate::commandCopy()
{
    Q_Q(mvPLXRecs);
    commands.rememberReturnPosition(returnPositionForNew());
    const QString id = bGenerateIDs ? newID() : QString();
    if (bGenerateIDs && trimSpaces(id).isEmpty())
        return true;
    const QList<FieldInfo> fields = rs->fieldInfos();
    QVariantList values;
    for (int i = 0; i < fields.size(); ++i) {
        const Result<QVariant> v = rs->value(i);
        values << (v.isOk() ? v.value() : QVariant());
    }
    if (Status s = appendRecord(values, id); !s.isOk()) {
        reportEngineError(QStringLiteral("The copy has NOT been created."), s);
        return false;
    }
    (void)rs->MoveLast();
    commands.recordCreated(id);
    bInitiator = true;
    sEventInfo = QStringLiteral("ButtonClick: Copy (RecCopy)");
    Q_EMIT q->RecCopy(id);
    refreshCountDisplay();
    return commandEdit(id);
}

IdAllocator::Table mvPLXRecsPrivate::idTable() const
{
    IdAllocator::Table t;
    t.db = db;
    t.records = rs.get();
    t.file = tableFilePath();
    t.isTableFile = getLenTrim(sDBFPathFileName) >= 1;
    t.sql = queryText();
    t.idField = sIDfield;
    t.descField = sDescfield;
    t.desc = sDesc;
    t.user = sUser;
    t.services = services;
    return t;
}

QString mvPLXRecsPrivate::newID()
{
    return ids.newID(idTable(), sParentID);
}

QString mvPLXRecs::NewIDPLX()
{
    return d_ptr->trapped("NewIDPLX", [&] { return d_ptr->newID(); });
}

QString mvPLXRecs::keyFilePath() const
{
    // A database that keeps the keys itself needs no key file.
    return d_ptr->trapped("keyFilePath", [&] {
        return dynamic_cast<SharedKeys *>(d_ptr->db.get())
            ? QString()
            : IdAllocator::keyFilePath(d_ptr->tableFilePath());
    });
}

} // namespace plx
