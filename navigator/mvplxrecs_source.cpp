// navigator/mvplxrecs_source.cpp: attaching a record source, the count and the scroll bar,
// sorts and re-queries, connecting to a table file, and stepping Back and Next.
#include "navigator/mvplxrecs_p.h"

#include "dialogs/floatingmessage.h"
#include "navigator/navigatortext_p.h"
#include "services/activitylog.h"
#include "services/paths.h"
#include "services/recordsource/database.h"
#include "services/texthelpers.h"
#include "services/widgets/listcontrols.h"

#include <QComboBox>
#include <QElapsedTimer>
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>
#include <QScopedValueRollback>
#include <QScrollBar>

namespace plx {

namespace {

// Tables this large show the floating message while they are re-queried, so the user sees
// why the form waits and can cancel; smaller ones are done before it could be read.
constexpr qint32 kShowProgressFrom = 50000;
// Records one auto-repeat of a held Back or Next button steps at most.
constexpr int kStepsPerRepeat = 4;

} // namespace

void mvPLXRecs::setDatabase(std::shared_ptr<Database> database, const QString &tableName,
                            const QString &dataPath)
{
    Q_D(mvPLXRecs);
    d->db = std::move(database);
    d->table = tableName;
    // A database kept in one file keeps the navigator's side files (filters, lock holders,
    // the key file) beside it when the host names no path.
    d->dataPath = getLenTrim(dataPath) < 1 && d->db ? d->db->filePath() : dataPath;
}

void mvPLXRecs::setRs(std::shared_ptr<RecordSource> rs)
{
    d_ptr->trapped("setRs", [&] { d_ptr->setRs(std::move(rs)); });
}

void mvPLXRecsPrivate::setRs(std::shared_ptr<RecordSource> source)
{
    rs = std::move(source);
    // Records freshly read stand in their order, whatever NEW and COPY appended before.
    commands.orderRestored();
    watchChanges();
    if (!rs) {
        setButtonEnabled(QStringLiteral("EDIT"), false);
        setButtonEnabled(QStringLiteral("COPY"), false);
        setButtonEnabled(QStringLiteral("DELETE"), false);
    } else {
        // A record in edit keeps EDIT off; COPY and DELETE follow EDIT.
        const bool edit = !buttonEnabled(QStringLiteral("SAVE"));
        setButtonEnabled(QStringLiteral("EDIT"), edit);
        setButtonEnabled(QStringLiteral("COPY"), edit);
        setButtonEnabled(QStringLiteral("DELETE"), edit);
        // The full count: DAO-style sources count what they have visited.
        const qint32 position = rs->AbsolutePosition();
        if (rs->MoveLast().isOk()) {
            if (position >= 0)
                (void)rs->setAbsolutePosition(position);
            else
                (void)rs->MoveFirst();
        }
        idle();
        setScrollBar();
    }
    refreshCountDisplay();
    shareRsWithFields();
    applyReadOnly();
}

void mvPLXRecsPrivate::refreshCountDisplay()
{
    fraControls->setTitle(rs ? formatRecordCount(rs->RecordCount()) + QStringLiteral(" records")
                             : QStringLiteral("No Records"));
}

void mvPLXRecsPrivate::setScrollBar()
{
    if (!rs)
        return;
    // The bar's value is the 0-based record position; moving it here must not raise a
    // second IDChange for a record the host has already been told about.
    const QScopedValueRollback moving(movingScrollBar, true);
    const qint32 count = rs->RecordCount();
    hscroll->setMinimum(0);
    hscroll->setMaximum(qMax(0, count - 1));
    hscroll->setValue(qMax(0, rs->AbsolutePosition()));
    hscroll->setPageStep(qBound(1, count / 20, 1000));
    hscroll->setEnabled(count > 0);
}

QString mvPLXRecsPrivate::currentSortFields() const
{
    const int item = cboSort->currentIndex();
    if (item < 0)
        return QString();
    const int sort = cboSort->itemData(item).toInt();
    return sort >= 0 && sort < sortFields.size() ? sortFields[sort] : QString();
}

QString mvPLXRecsPrivate::tableFilePath() const
{
    if (getLenTrim(sDBFPathFileName) >= 1)
        return fromDiskPath(sDBFPathFileName);
    // A table of a SQLite database: named after the table, in the database's folder.
    if (getLenTrim(dataPath) >= 1 && getLenTrim(table) >= 1)
        return setPathName(getFileDir(fromDiskPath(dataPath)), table, false);
    return QString();
}

QueryText mvPLXRecsPrivate::queryText() const
{
    // Table files are named by their file; QueryText brackets a file name that is not an
    // identifier ("91.dbf", "my people.dbf", "ORDER.DBF").
    return QueryText(table.isEmpty() ? getFileTitle(tableFilePath()) : table);
}

QString mvPLXRecsPrivate::currentIDText() const
{
    if (!rs || rs->isBOF() || rs->isEOF())
        return QString();
    const Result<QVariant> id = rs->value(sIDfield);
    return id.isOk() ? id.value().toString() : QString();
}

bool mvPLXRecsPrivate::findIDInRs(const QString &id)
{
    if (!rs || getLenTrim(id) < 1)
        return false;
    const qint32 before = rs->AbsolutePosition();
    const Status found = rs->FindFirst(queryText().qualifiedIdCriterion(sIDfield, id));
    if (found.isOk() && !rs->NoMatch())
        return true;
    if (before >= 0)
        (void)rs->setAbsolutePosition(before);
    return false;
}

bool mvPLXRecsPrivate::beginLongWork(const QString &text)
{
    if (!rs || rs->RecordCount() < kShowProgressFrom)
        return false;
    floating->showMessage(QStringLiteral("Connecting to PLX Data"));
    floating->setProgress(text);
    pump();
    return true;
}

void mvPLXRecsPrivate::endLongWork() const
{
    floating->closeMessage();
}

std::shared_ptr<RecordSource> mvPLXRecsPrivate::openQuery(const QString &sql)
{
    Result<std::unique_ptr<RecordSource>> opened = db->OpenRecordset(sql);
    if (opened.isOk())
        return std::shared_ptr<RecordSource>(std::move(opened.value()));
    // The navigator stays as it was; support finds the reason in the activity log.
    lastQueryError = opened.status().message().section(QLatin1Char('\n'), 0, 0);
    logEntry(sUser,
             messageTitle() + QStringLiteral(": query failed: ") + sql + QStringLiteral("\r\n")
                 + opened.status().message(),
             services);
    return nullptr;
}

bool mvPLXRecsPrivate::requery(const QString &oldID, bool moveFirstWhenLost)
{
    if (!db)
        return false;
    const bool shown = beginLongWork(
        mvPLXRecs::tr("Sorting %1 records").arg(formatRecordCount(rs ? rs->RecordCount() : 0)));
    std::shared_ptr<RecordSource> opened =
        openQuery(queryText().records(sSQLJOIN, sSQLWhere, currentSortFields()));
    if (!opened) {
        endLongWork();
        return false;
    }
    if (shown) {
        pump();
        if (floating->cancelRequested()) {
            // The user gave up waiting: the navigator stays on the query it had.
            endLongWork();
            return false;
        }
    }
    setRs(std::move(opened));
    if (!findIDInRs(oldID) && moveFirstWhenLost && rs->RecordCount() > 0 && getLenTrim(oldID) >= 1)
        (void)rs->MoveFirst();
    idle();
    setScrollBar();
    if (shown)
        endLongWork();
    return true;
}

void mvPLXRecsPrivate::sortClicked(int index)
{
    if (index < 0)
        return;
    bInitiator = true;
    rsRefresh();
    const bool sortChosen = getLenTrim(sSort) >= 1;
    cboFind->setEnabled(sortChosen && enableFind);
    cmdFind->setEnabled(cboFind->isEnabled());
    lblFind->setEnabled(cboFind->isEnabled());
}

void mvPLXRecs::RSRefresh()
{
    d_ptr->trapped("RSRefresh", [&] { d_ptr->rsRefresh(); });
}

void mvPLXRecsPrivate::rsRefresh()
{
    Q_Q(mvPLXRecs);
    const QString oldID = currentIDText();
    const int item = cboSort->currentIndex();
    if (item >= 0) {
        const int sort = cboSort->itemData(item).toInt();
        if (sort >= 0 && sort < sortFields.size())
            sSort = sortFields[sort];
    }
    if (!requery(oldID, false))
        return;
    sEventInfo = QStringLiteral("SetRS after setHScroll");
    Q_EMIT q->SortChange(sSort);
}

void mvPLXRecs::setSDBFPathFileName(const QString &path)
{
    d_ptr->trapped("setSDBFPathFileName", [&] { d_ptr->setDBFPathFileName(path); });
}

void mvPLXRecsPrivate::setDBFPathFileName(const QString &path)
{
    if (rs) {
        showBox(QStringLiteral("mvPLXRecs already connected to:") + QStringLiteral("\r\n\r\n")
                    + sDBFPathFileName + QStringLiteral("\r\n\r\n") + alreadyConnectedSupportText(),
                MsgStyle::OKOnly, QStringLiteral("Already Connected"));
        return;
    }
    sDBFPathFileName = path;
    connectByFile(path);
}

void mvPLXRecsPrivate::connectByFile(const QString &path)
{
    const QString libraryPath = fromDiskPath(path);
    floating->showMessage(QStringLiteral("Connecting to PLX Data"));
    pump();
    Result<std::unique_ptr<Database>> opened = OpenDatabase(
        toDiskPath(getFileDir(libraryPath)), false, false, QStringLiteral("FoxPro 2.6"));
    if (!opened.isOk()) {
        logEntry(sUser,
                 messageTitle() + QStringLiteral(": cannot open ") + path + QStringLiteral("\r\n")
                     + opened.status().message(),
                 services);
        endLongWork();
        return;
    }
    db = std::shared_ptr<Database>(std::move(opened.value()));
    table = getFileTitle(libraryPath);
    dataPath = path;
    // In the sort chosen, if one is (currentSortFields is "" until then).
    std::shared_ptr<RecordSource> records = openQuery(queryText().selectAll(currentSortFields()));
    if (!records) {
        endLongWork();
        return;
    }
    setRs(std::move(records));
    idle();
    (void)rs->MoveLast();
    (void)rs->MoveFirst();
    setScrollBar();
    endLongWork();
}

void mvPLXRecsPrivate::stepClicked(bool forward)
{
    QPushButton *button = forward ? cmdRecNext : cmdRecBack;
    if (!button->isDown()) {
        recStep(forward);
        return;
    }
    // Held down: each repeat of the button steps a few records, one by one and each with
    // its IDChange, so the walk keeps a steady pace of a few thousand records a second
    // instead of the rate at which the window repaints between repeats. A slow host
    // (one that does much on every IDChange) gets one step per repeat.
    QElapsedTimer burst;
    burst.start();
    for (int step = 0; step < kStepsPerRepeat; ++step) {
        const qint32 before = rs ? rs->AbsolutePosition() : -1;
        recStep(forward);
        if (!rs || rs->AbsolutePosition() == before || burst.nsecsElapsed() > 500000)
            break;
    }
}

void mvPLXRecsPrivate::recStep(bool forward)
{
    Q_Q(mvPLXRecs);
    if (!rs || (forward ? rs->isEOF() : rs->isBOF()))
        return;
    if (!(forward ? rs->MoveNext() : rs->MovePrevious()).isOk())
        return;
    idle();
    if (forward ? rs->isEOF() : rs->isBOF()) {
        // Stepped off the last (first) record: stay on it, nothing happened for the host.
        (void)(forward ? rs->MoveLast() : rs->MoveFirst());
        return;
    }
    bInitiator = true;
    sEventInfo = forward ? QStringLiteral("cmdRecNext_Click") : QStringLiteral("cmdRecBack_Click");
    Q_EMIT q->IDChange(currentIDText());
    setScrollBar();
}

void mvPLXRecsPrivate::hscrollChanged(int value)
{
    Q_Q(mvPLXRecs);
    if (movingScrollBar || !rs || value >= rs->RecordCount())
        return;
    if (!rs->setAbsolutePosition(value).isOk())
        return;
    deriveParentID();
    if (!findSession.isRunning())
        cboFind->setCurrentIndex(-1);
    bInitiator = true;
    sEventInfo = QStringLiteral("HScroll1_change");
    Q_EMIT q->IDChange(currentIDText());
}

void mvPLXRecsPrivate::deriveParentID()
{
    // A child record's ID is its parent's ID with a 7-character key behind it. Trailing
    // blanks of a fixed-width ID column are not part of the ID.
    const QString id = rtrimSpaces(currentIDText());
    if (id.size() > 7)
        sParentID = id.left(id.size() - 7);
}

QString mvPLXRecs::sCurrentID()
{
    return d_ptr->trapped("sCurrentID", [&] { return d_ptr->currentIDText(); });
}

void mvPLXRecs::AddSort(const QString &sName, const QString &sField)
{
    d_ptr->trapped("AddSort", [&] { d_ptr->addSort(sName, sField); });
}

void mvPLXRecsPrivate::addSort(const QString &name, const QString &field)
{
    const bool nameBlank = getLenTrim(name) < 1;
    const bool fieldBlank = getLenTrim(field) < 1;
    if (nameBlank && !fieldBlank) {
        addSortErrors =
            modAddALine(addSortErrors, QStringLiteral("AddSort: Blank Name for field ") + field,
                        QStringLiteral("\r\n"), false);
        return;
    }
    if (fieldBlank && !nameBlank) {
        addSortErrors =
            modAddALine(addSortErrors, QStringLiteral("AddSort: Blank Field for name ") + name,
                        QStringLiteral("\r\n"), false);
        return;
    }
    sortNames.append(name);
    sortFields.append(field);
}

QString mvPLXRecs::InitControl()
{
    return d_ptr->trapped("InitControl", [&] { return d_ptr->initControl(); });
}

QString mvPLXRecsPrivate::initControl()
{
    const QString sep = QStringLiteral("\r\n");
    // Sorts refused by AddSort come first: that call has no result of its own.
    QString result = addSortErrors;
    if (!rs)
        return modAddALine(result, QStringLiteral("No RecordSet specified"), sep, false);
    if (getLenTrim(sIDfield) < 1)
        return modAddALine(result, QStringLiteral("No ID Field specified"), sep, false);
    floating->showMessage(QStringLiteral("Connecting to PLX Data"));
    pump();
    if (sortNames.isEmpty()) {
        result = modAddALine(result, QStringLiteral("No Sorts specified"), sep, false);
    } else {
        cboSort->clear();
        for (qsizetype i = 0; i < sortNames.size(); ++i)
            cboSort->addItem(sortNames[i], int(i));
    }
    if (getLenTrim(sSort) < 1 && cboSort->count() >= 1) {
        cboSort->setCurrentIndex(0);
    } else {
        const qsizetype sort = sortFields.indexOf(sSort);
        if (sort >= 0)
            setComboBox(cboSort, sortNames[sort], false);
    }
    // Selecting the sort is the user's choice made for them: the records take its order
    // and the find box becomes usable, exactly as after a click on the list.
    if (cboSort->currentIndex() >= 0)
        sortClicked(cboSort->currentIndex());
    endLongWork();
    return result;
}

} // namespace plx
