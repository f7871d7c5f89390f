// navigator/mvplxrecs_commands.cpp: the record commands of the bottom toolbar: New, Edit,
// Copy, Delete, Save and Cancel. Each drives the record source, the field controls and
// the host's other controls, stamps the audit fields and tells the host through events
// in a fixed order, so host forms can rely on what they see.
#include "navigator/mvplxrecs.h"

#include "navigator/lockholder_p.h"
#include "navigator/navigatortext_p.h"
#include "services/activitylog.h"
#include "services/recordsource/database.h"
#include "services/texthelpers.h"

#include <QAction>
#include <QMetaObject>

namespace plx {

namespace {

const QString kCrLf = QStringLiteral("\r\n");

} // namespace

QString mvPLXRecs::auditStamp()
{
    return clockOf(m_services).now().toString(QStringLiteral("MM/dd/yyyy hh:mm:ss"))
        + QLatin1Char(' ') + m_sUser;
}

QString mvPLXRecs::commandCurrentID() const
{
    if (!m_rs || m_rs->isBOF() || m_rs->isEOF() || getLenTrim(m_sIDfield) < 1
        || m_rs->AbsolutePosition() < 0)
        return QString();
    return currentIDText();
}

void mvPLXRecs::reportEngineError(const QString &what, const Status &status)
{
    // Not one of the fixed boxes: a failure the engine reported (a read-only table, a full
    // disk) that would otherwise leave the user wondering why nothing happened.
    logEntry(m_sUser, messageTitle() + QStringLiteral(": ") + what + kCrLf + status.toString(),
             m_services);
    showBox(what + kCrLf + kCrLf + statusForUser(status), MsgStyle::Critical, messageTitle());
}

QString mvPLXRecs::blankIDMessage(const QString &lastLine) const
{
    return QStringLiteral("The ID field for this record is blank.") + kCrLf + kCrLf
        + QStringLiteral("Blank ID records cannot be saved.") + kCrLf
        + QStringLiteral("Parent ID is: ") + m_sParentID + QStringLiteral(" (")
        + keyToASC(m_sParentID) + QStringLiteral(")") + kCrLf + kCrLf + lastLine;
}

void mvPLXRecs::toolbarClicked(QAction *button)
{
    if (!button || m_commandRunning)
        return;
    // A command may yield to the event loop; a second click meanwhile waits its turn by
    // being ignored, as the toolbar's own state would have it.
    m_commandRunning = true;
    const QString caption = button->text().toUpper();
    const QString id = commandCurrentID();
    bool enable = true;
    if ((caption == QLatin1String("EDIT") || caption == QLatin1String("COPY")
         || caption == QLatin1String("DELETE"))
        && trimSpaces(id).isEmpty()) {
        showBox(
            QStringLiteral("This ") + button->text()
                + QStringLiteral(" function is only valid for an existing record") + kCrLf + kCrLf
                + QStringLiteral("You can create a record with the 'New' button") + kCrLf
                + QStringLiteral("or you can use the pulldown list to find an existing record."),
            MsgStyle::Information, QStringLiteral("No Current Record"));
        m_commandRunning = false;
        return;
    }
    if (caption == QLatin1String("EDIT"))
        enable = commandEdit(id);
    else if (caption == QLatin1String("SAVE"))
        enable = commandSave();
    else if (caption == QLatin1String("CANCEL"))
        enable = commandCancel(id);
    else if (caption == QLatin1String("DELETE"))
        enable = commandDelete(id);
    else if (caption == QLatin1String("NEW"))
        enable = commandNew();
    else if (caption == QLatin1String("COPY"))
        enable = commandCopy();
    else
        enable = false; // "Close" and any other caption: no command
    if (enable) {
        if (caption == QLatin1String("NEW") || caption == QLatin1String("EDIT")
            || caption == QLatin1String("COPY"))
            setButtonsForEditing(true);
        else if (caption == QLatin1String("SAVE") || caption == QLatin1String("CANCEL"))
            setButtonsForEditing(false);
    }
    m_commandRunning = false;
}

bool mvPLXRecs::commandEdit(const QString &id)
{
    if (!m_rs) {
        showBox(QStringLiteral("Not connected to a database"), MsgStyle::OKOnly, QString());
        return false;
    }
    idle();
    // The record to edit is nearly always the current one already: finding it again in a
    // million records would only land on the same record.
    if (currentIDText() != id)
        (void)m_rs->FindFirst(queryText().idCriterion(m_sIDfield, id));
    idle();
    pump();
    for (BoundControl *control : cMervaneControls())
        control->UpdateDBF();
    idle();
    pump();
    const Status locked = m_rs->editMode() == EditMode::None ? m_rs->Edit() : Status::ok();
    if (!locked.isOk()) {
        QString description = locked.message();
        if (locked.code() == Status::Code::Locked) {
            const QString holder = LockHolders(holdersPath()).describe(id);
            if (!holder.isEmpty())
                description += kCrLf + holder;
        }
        showBox(QStringLiteral("This record is locked.  ") + kCrLf
                    + QStringLiteral("Please try again later") + kCrLf + kCrLf + description,
                MsgStyle::Information, QStringLiteral("Access Denied"));
        return false;
    }
    if (getLenTrim(id) >= 1)
        LockHolders(holdersPath()).claim(id, m_sUser, clockOf(m_services).now());
    // The record is known by the ID it had when the edit began, whatever is typed over it.
    m_heldID = id;
    pump();
    bool accepted = true;
    for (BoundControl *control : cMervaneControls())
        accepted = control->bEdit(false, nullptr) && accepted;
    if (!accepted) {
        // The record source stays in edit on purpose: the host decides what comes next.
        for (BoundControl *control : cMervaneControls())
            control->CancelEdit();
        return false;
    }
    pump();
    for (BoundControl *control : cMervaneControls())
        control->setLocked(false);
    for (QWidget *other : cOtherControls())
        other->setEnabled(true);
    m_bInitiator = false;
    m_sEventInfo = QStringLiteral("ButtonClick: edit");
    Q_EMIT RecEditStart(id);
    return true;
}

bool mvPLXRecs::parentAllowsSave()
{
    const QString missingParent = QStringLiteral("Parent record for '") + m_sDesc
        + QStringLiteral("' has not been set, so validation cannot be performed.");
    if (!m_fParent) {
        showBox(missingParent, MsgStyle::Information, QStringLiteral("Saving without Validation"));
        return true;
    }
    bool valid = true;
    const bool called =
        QMetaObject::invokeMethod(m_fParent.data(), "OKtoSave", Qt::DirectConnection,
                                  Q_RETURN_ARG(bool, valid), Q_ARG(qint16, m_myLevel));
    if (!called) {
        // A parent form that offers no OKtoSave validates nothing: said and saved as if
        // no parent were set, and noted for the host's developer.
        logEntry(m_sUser,
                 messageTitle() + QStringLiteral(": the parent form offers no OKtoSave(qint16)"),
                 m_services);
        showBox(missingParent, MsgStyle::Information, QStringLiteral("Saving without Validation"));
        return true;
    }
    return valid;
}

bool mvPLXRecs::isNewRecord(const QString &id) const
{
    return m_newRecordID && rtrimSpaces(*m_newRecordID) == rtrimSpaces(id);
}

// Each field row hands what was typed to the record's edit buffer; a row that refuses its
// value says so in its own box, titled with the row's name.
void mvPLXRecs::saveFieldRows(const QList<BoundControl *> &fields)
{
    for (BoundControl *control : fields)
        control->EditUpdate();
    for (BoundControl *control : fields) {
        const QString said = control->Save();
        if (!said.isEmpty())
            showBox(said, MsgStyle::Information, control->Name());
    }
}

bool mvPLXRecs::writeEditedRecord(const QString &heldID)
{
    // The rows put their values into the record's edit buffer and the navigator writes the
    // buffer once, stamp included: the record on disk is the old one or the new one, never
    // new values under the old stamp, and the lock is held until the write is done.
    const QString notSaved =
        QStringLiteral("'") + m_sDesc + QStringLiteral("' record has NOT been saved.");
    if (m_rs->editMode() == EditMode::None) {
        // A write that failed earlier may have left the edit; take the record again.
        if (Status s = m_rs->Edit(); !s.isOk()) {
            reportEngineError(notSaved, s);
            return false;
        }
    }
    const QList<BoundControl *> fields = cMervaneControls();
    saveFieldRows(fields);
    // The ID as the rows left it: typed over, blanked or as it was.
    const Result<QVariant> typed = m_rs->value(m_sIDfield);
    const QString id = typed.isOk() ? typed.value().toString() : QString();
    if (getLenTrim(id) < 1) {
        const QString message = blankIDMessage(notSaved);
        logEntry(m_sUser, message, m_services);
        showBox(message, MsgStyle::Critical, QStringLiteral("Blank ID"));
        return false;
    }
    if (!keyIsFree(id, heldID)) {
        showBox(QStringLiteral("The ID ") + rtrimSpaces(id)
                    + QStringLiteral(" is already used by another record: ") + m_takenDesc + kCrLf
                    + kCrLf + notSaved,
                MsgStyle::Critical, QStringLiteral("Record Not Saved"));
        return false;
    }
    (void)m_rs->setValue(QStringLiteral("PLLASTREV"), auditStamp());
    if (Status s = m_rs->Update(); !s.isOk()) {
        // Still in edit, with everything typed on screen: the user can try again or cancel.
        reportEngineError(notSaved, s);
        return false;
    }
    return true;
}

bool mvPLXRecs::commandSave()
{
    QString id;
    if (m_rs) {
        const Result<QVariant> value = m_rs->value(m_sIDfield);
        id = value.isOk() ? value.value().toString() : QString();
    }
    // A key the user types is still in its row here: it is checked once the rows are written.
    if (getLenTrim(id) < 1 && (m_bGenerateIDs || !m_rs)) {
        const QString message = blankIDMessage(QStringLiteral("'") + m_sDesc
                                               + QStringLiteral("' record has NOT been saved."));
        logEntry(m_sUser, message, m_services);
        showBox(message, MsgStyle::Critical, QStringLiteral("Blank ID"));
        return false;
    }
    if (!parentAllowsSave()) {
        showBox(QStringLiteral("'") + m_sDesc + QStringLiteral("' record has NOT been saved."),
                MsgStyle::Critical, QStringLiteral("Record Not Saved"));
        return false;
    }
    const QList<BoundControl *> fields = cMervaneControls();
    const QString heldID = m_heldID;
    const bool wasNew = isNewRecord(heldID);
    if (m_rs) {
        if (!writeEditedRecord(heldID))
            return false;
        // From here on the record is known by the ID it was saved with.
        id = currentIDText();
        releaseHeldRecord();
        pump();
        m_sEventInfo = QStringLiteral("ButtonClick: Save (RecSave)");
        Q_EMIT RecSave(id);
    } else {
        saveFieldRows(fields);
    }
    pump();
    for (BoundControl *control : fields)
        control->setLocked(true);
    for (QWidget *other : cOtherControls())
        other->setEnabled(false);
    if (m_rs) {
        m_bInitiator = false;
        m_sEventInfo = QStringLiteral("ButtonClick: Save (EditEnd)");
        Q_EMIT RecEditEnd(id);
        if (wasNew) {
            m_sEventInfo = QStringLiteral("ButtonClick: Save (RecAdded)");
            Q_EMIT RecAdded(id);
            pump();
            m_sEventInfo = QStringLiteral("ButtonClick: Save (IDChange)");
            Q_EMIT IDChange(id);
            pump();
            refreshCountDisplay();
        }
    }
    if (wasNew)
        m_newRecordID.reset();
    // The records are read again, so that the saved record and any new record kept
    // earlier stand in their places in the order, and the saved record stays current.
    if (m_rs)
        requery(id, false);
    // The rows show what the table kept, in the record that is current now.
    for (BoundControl *control : fields)
        control->UpdateDBF();
    return true;
}

void mvPLXRecs::releaseHeldRecord()
{
    if (!m_heldID.isEmpty())
        LockHolders(holdersPath()).release(m_heldID);
    m_heldID.clear();
}

void mvPLXRecs::moveToNeighbour(qint32 position)
{
    // A deleted record leaves no current record: its neighbour takes its place, the one
    // after it, or the one before when it was the last.
    const qint32 count = m_rs->RecordCount();
    if (count > 0)
        (void)m_rs->setAbsolutePosition(qBound(0, position, count - 1));
    setScrollBar();
    refreshCountDisplay();
}

bool mvPLXRecs::commandCancel(const QString &id)
{
    // The record is the one whose edit began under this ID, whatever the rows put into
    // its edit buffer since; only the record NEW or COPY made is ever offered for deletion.
    const QString editedID = m_heldID;
    if (m_rs)
        (void)m_rs->CancelUpdate();
    releaseHeldRecord();
    const QString recordID = m_rs ? currentIDText() : id;
    const QList<BoundControl *> fields = cMervaneControls();
    for (BoundControl *control : fields)
        control->CancelEdit();
    if (m_rs) {
        m_sEventInfo = QStringLiteral("ButtonClick: Cancel (RecCancel)");
        Q_EMIT RecCancel(recordID);
        pump();
    }
    for (BoundControl *control : fields)
        control->setLocked(true);
    for (QWidget *other : cOtherControls())
        other->setEnabled(false);
    for (BoundControl *control : fields)
        control->UpdateDBF();
    if (m_rs) {
        m_sEventInfo = QStringLiteral("ButtonClick: Cancel (RecEditEnd)");
        Q_EMIT RecEditEnd(recordID);
    }
    if (!m_rs || !isNewRecord(editedID) || !isNewRecord(recordID))
        return true;
    const MsgAnswer answer =
        prompterOf(m_services)
            .msgBox(QStringLiteral("Delete the New record?"),
                    MsgStyle::YesNo | MsgStyle::DefaultButton2, QStringLiteral("Delete?"));
    if (answer != MsgAnswer::Yes)
        return true; // the record stays, and stays the new record: its SAVE adds it
    if (Status s = m_rs->Delete(); !s.isOk()) {
        reportEngineError(QStringLiteral("The new record could not be deleted."), s);
        return true;
    }
    m_newRecordID.reset();
    if (m_returnPosition >= 0 && m_returnPosition < m_rs->RecordCount())
        (void)m_rs->setAbsolutePosition(m_returnPosition);
    setScrollBar();
    refreshCountDisplay();
    m_sEventInfo = QStringLiteral("ButtonClick: Cancel (RecDelete)");
    Q_EMIT RecDelete(recordID);
    return true;
}

bool mvPLXRecs::commandDelete(const QString &id)
{
    QString description;
    if (m_rs) {
        const Result<QVariant> desc = m_rs->value(m_sDescfield);
        description = desc.isOk() ? chkNulls(desc.value(), QString(), false).toString() : QString();
    }
    const int yesNoNo = MsgStyle::YesNo | MsgStyle::DefaultButton2;
    const QString question = QStringLiteral("Are you sure you want to delete this record?");
    Prompter &prompter = prompterOf(m_services);
    if (prompter.msgBox(modAddALine(question, description, kCrLf, false), yesNoNo,
                        QStringLiteral("Delete Record?"))
        != MsgAnswer::Yes)
        return true;
    if (prompter.msgBox(question, yesNoNo, QStringLiteral("Are you sure?")) != MsgAnswer::Yes)
        return true;
    const qint32 position = m_rs->AbsolutePosition();
    if (Status s = m_rs->Delete(); !s.isOk()) {
        QString what = QStringLiteral("The record could not be deleted.");
        if (s.code() == Status::Code::Locked) {
            const QString holder = LockHolders(holdersPath()).describe(id);
            if (!holder.isEmpty())
                what += kCrLf + holder;
        }
        reportEngineError(what, s);
        return true;
    }
    if (isNewRecord(id))
        m_newRecordID.reset();
    moveToNeighbour(position);
    m_bInitiator = true;
    m_sEventInfo = QStringLiteral("ButtonClick: Delete (RecDelete)");
    Q_EMIT RecDelete(id);
    refreshCountDisplay();
    return true;
}

qint32 mvPLXRecs::returnPositionForNew() const
{
    if (!m_rs)
        return -1;
    if (m_rs->isBOF())
        return 0;
    if (m_rs->isEOF() || m_rs->AbsolutePosition() < 0)
        return m_rs->RecordCount() - 1;
    return m_rs->AbsolutePosition();
}

Status mvPLXRecs::appendRecord(const QVariantList &values, const QString &id)
{
    // The record is in the table, with its ID and both stamps, before anyone types in it.
    const QString stamp = auditStamp();
    Status s = m_rs->AddNew();
    if (values.isEmpty()) {
        // A new record's flags read False, not Null: a check box has no third state to show.
        const QList<FieldInfo> &infos = m_rs->fieldInfos();
        for (int i = 0; s.isOk() && i < infos.size(); ++i)
            if (infos[i].type == FieldType::Boolean)
                s = m_rs->setValue(i, false);
    }
    for (int i = 0; s.isOk() && i < values.size(); ++i)
        s = m_rs->setValue(i, values[i]);
    if (s.isOk())
        s = m_rs->setValue(m_sIDfield, id);
    if (s.isOk()) {
        // Tables without audit fields simply do not get stamped.
        (void)m_rs->setValue(QStringLiteral("PLSTART"), stamp);
        (void)m_rs->setValue(QStringLiteral("PLLASTREV"), stamp);
        s = m_rs->Update();
    }
    if (!s.isOk())
        (void)m_rs->CancelUpdate();
    return s;
}

bool mvPLXRecs::commandNew()
{
    m_returnPosition = returnPositionForNew();
    // A table whose key the user types gets a blank one, filled in before SAVE.
    const QString id = m_bGenerateIDs ? NewIDPLX() : QString();
    if (m_bGenerateIDs && trimSpaces(id).isEmpty()) {
        // A key file that cannot be used has been named already; a second box blaming a
        // blank ID would only mislead.
        if (!m_idProblemShown) {
            const QString message =
                blankIDMessage(QStringLiteral("New record has NOT been created."));
            logEntry(m_sUser, message, m_services);
            showBox(message, MsgStyle::Critical, QStringLiteral("Record Not Saved"));
        }
        return false;
    }
    if (!m_rs) {
        showBox(QStringLiteral("Not connected to a database"), MsgStyle::OKOnly, QString());
        return false;
    }
    if (Status s = appendRecord({}, id); !s.isOk()) {
        reportEngineError(QStringLiteral("New record has NOT been created."), s);
        return false;
    }
    idle();
    (void)m_rs->MoveLast();
    refreshCountDisplay();
    m_newRecordID = id;
    m_bInitiator = true;
    m_sEventInfo = QStringLiteral("ButtonClick: New (RecNew)");
    Q_EMIT RecNew();
    return commandEdit(id);
}

bool mvPLXRecs::commandCopy()
{
    m_returnPosition = returnPositionForNew();
    const QString id = m_bGenerateIDs ? NewIDPLX() : QString();
    if (m_bGenerateIDs && trimSpaces(id).isEmpty())
        return true;
    const QList<FieldInfo> fields = m_rs->fieldInfos();
    QVariantList values;
    for (int i = 0; i < fields.size(); ++i) {
        const Result<QVariant> v = m_rs->value(i);
        values << (v.isOk() ? v.value() : QVariant());
    }
    if (Status s = appendRecord(values, id); !s.isOk()) {
        reportEngineError(QStringLiteral("The copy has NOT been created."), s);
        return false;
    }
    (void)m_rs->MoveLast();
    m_newRecordID = id;
    m_bInitiator = true;
    m_sEventInfo = QStringLiteral("ButtonClick: Copy (RecCopy)");
    Q_EMIT RecCopy(id);
    refreshCountDisplay();
    return commandEdit(id);
}

} // namespace plx
