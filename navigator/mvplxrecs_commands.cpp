// navigator/mvplxrecs_commands.cpp: the record commands of the bottom toolbar: New, Edit,
// Copy, Delete, Save and Cancel. Each drives the record source, the field controls and
// the host's other controls, stamps the audit fields and tells the host through events
// in a fixed order, so host forms can rely on what they see.
#include "navigator/mvplxrecs.h"

#include "navigator/lockholder_p.h"
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
    showBox(what + kCrLf + kCrLf + status.message(), MsgStyle::Critical, messageTitle());
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
        (void)m_rs->FindFirst(m_sIDfield + QStringLiteral(" = ") + strToASC(id));
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
    LockHolders(holdersPath()).claim(id, m_sUser, clockOf(m_services).now());
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

bool mvPLXRecs::commandSave()
{
    QString id;
    if (m_rs) {
        const Result<QVariant> value = m_rs->value(m_sIDfield);
        id = value.isOk() ? value.value().toString() : QString();
    }
    if (getLenTrim(id) < 1) {
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
    // The order of the records changes only when a sort field changes.
    const QStringList sortValuesBefore = sortFieldValues();
    for (BoundControl *control : fields)
        control->EditUpdate();
    for (BoundControl *control : fields) {
        const QString said = control->Save();
        if (!said.isEmpty())
            showBox(said, MsgStyle::Information, control->Name());
    }
    if (m_rs) {
        // The rows wrote into the record's edit buffer: editing again would drop it.
        if (m_rs->editMode() == EditMode::None) {
            if (Status s = m_rs->Edit(); !s.isOk()) {
                reportEngineError(QStringLiteral("'") + m_sDesc
                                      + QStringLiteral("' record has NOT been saved."),
                                  s);
                return false;
            }
        }
        (void)m_rs->setValue(QStringLiteral("PLLASTREV"), auditStamp());
        if (Status s = m_rs->Update(); !s.isOk()) {
            // Still in edit: the user can try again or cancel; nothing typed is lost.
            reportEngineError(
                QStringLiteral("'") + m_sDesc + QStringLiteral("' record has NOT been saved."), s);
            return false;
        }
        releaseHeldRecord();
        pump();
        m_sEventInfo = QStringLiteral("ButtonClick: Save (RecSave)");
        Q_EMIT RecSave(id);
    }
    pump();
    for (BoundControl *control : fields)
        control->setLocked(true);
    for (QWidget *other : cOtherControls())
        other->setEnabled(false);
    const bool wasNew = m_newRecord;
    if (m_rs) {
        m_bInitiator = false;
        m_sEventInfo = QStringLiteral("ButtonClick: Save (EditEnd)");
        Q_EMIT RecEditEnd(id);
        if (m_newRecord) {
            m_sEventInfo = QStringLiteral("ButtonClick: Save (RecAdded)");
            Q_EMIT RecAdded(id);
            pump();
            m_sEventInfo = QStringLiteral("ButtonClick: Save (IDChange)");
            Q_EMIT IDChange(id);
            pump();
            refreshCountDisplay();
        }
    }
    m_newRecord = false;
    // The record is re-read in its place in the order. An edit that left every sort field
    // as it was keeps the order as it is, so the query need not run again.
    if (m_rs && (wasNew || sortFieldValues() != sortValuesBefore))
        requery(id, false);
    return true;
}

QStringList mvPLXRecs::sortFieldValues() const
{
    QStringList values;
    if (!m_rs)
        return values;
    const QString fields = currentSortFields();
    const qint16 count = getDelimCount(fields, QStringLiteral(","));
    for (qint16 i = 1; i <= count; ++i) {
        const Result<QVariant> v =
            m_rs->value(trimSpaces(getDelimField(fields, QStringLiteral(","), i, QString())));
        values << (v.isOk() ? v.value().toString() : QString());
    }
    return values;
}

void mvPLXRecs::releaseHeldRecord()
{
    if (!m_heldID.isEmpty())
        LockHolders(holdersPath()).release(m_heldID);
    m_heldID.clear();
}

bool mvPLXRecs::commandCancel(const QString &id)
{
    if (m_rs)
        (void)m_rs->CancelUpdate();
    releaseHeldRecord();
    const QList<BoundControl *> fields = cMervaneControls();
    for (BoundControl *control : fields)
        control->CancelEdit();
    if (m_rs) {
        m_sEventInfo = QStringLiteral("ButtonClick: Cancel (RecCancel)");
        Q_EMIT RecCancel(id);
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
        Q_EMIT RecEditEnd(id);
    }
    if (m_newRecord) {
        const MsgAnswer answer =
            prompterOf(m_services)
                .msgBox(QStringLiteral("Delete the New record?"),
                        MsgStyle::YesNo | MsgStyle::DefaultButton2, QStringLiteral("Delete?"));
        if (answer == MsgAnswer::Yes && m_rs) {
            if (Status s = m_rs->Delete(); !s.isOk()) {
                reportEngineError(QStringLiteral("The new record could not be deleted."), s);
                return true;
            }
            m_newRecord = false;
            if (m_returnPosition >= 0 && m_returnPosition < m_rs->RecordCount())
                (void)m_rs->setAbsolutePosition(m_returnPosition);
            setScrollBar();
            refreshCountDisplay();
            m_sEventInfo = QStringLiteral("ButtonClick: Cancel (RecDelete)");
            Q_EMIT RecDelete(id);
        }
    }
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
    if (Status s = m_rs->Delete(); !s.isOk()) {
        reportEngineError(QStringLiteral("The record could not be deleted."), s);
        return true;
    }
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
    const QString id = NewIDPLX();
    if (trimSpaces(id).isEmpty()) {
        const QString message = blankIDMessage(QStringLiteral("New record has NOT been created."));
        logEntry(m_sUser, message, m_services);
        showBox(message, MsgStyle::Critical, QStringLiteral("Record Not Saved"));
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
    m_newRecord = true;
    m_bInitiator = true;
    m_sEventInfo = QStringLiteral("ButtonClick: New (RecNew)");
    Q_EMIT RecNew();
    return commandEdit(id);
}

bool mvPLXRecs::commandCopy()
{
    m_returnPosition = returnPositionForNew();
    const QString id = NewIDPLX();
    if (trimSpaces(id).isEmpty())
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
    m_newRecord = true;
    m_bInitiator = true;
    m_sEventInfo = QStringLiteral("ButtonClick: Copy (RecCopy)");
    Q_EMIT RecCopy(id);
    refreshCountDisplay();
    return commandEdit(id);
}

} // namespace plx
