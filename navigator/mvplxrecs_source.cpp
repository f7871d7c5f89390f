// navigator/mvplxrecs_source.cpp: attaching a record source, the count and the scroll bar,
// sort changes and re-queries, connecting to a table file, and stepping Back and Next.
#include "navigator/mvplxrecs.h"

#include "dialogs/floatingmessage.h"
#include "navigator/navigatortext_p.h"
#include "services/activitylog.h"
#include "services/paths.h"
#include "services/recordsource/database.h"
#include "services/texthelpers.h"

#include <QComboBox>
#include <QElapsedTimer>
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>
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
    m_db = std::move(database);
    m_table = tableName;
    m_dataPath = dataPath;
}

void mvPLXRecs::setRs(std::shared_ptr<RecordSource> rs)
{
    m_rs = std::move(rs);
    if (!m_rs) {
        setBButtonEnable(QStringLiteral("EDIT"), false);
        setBButtonEnable(QStringLiteral("COPY"), false);
        setBButtonEnable(QStringLiteral("DELETE"), false);
    } else {
        // A record in edit keeps EDIT off; COPY and DELETE follow EDIT.
        const bool edit = !bButtonEnable(QStringLiteral("SAVE"));
        setBButtonEnable(QStringLiteral("EDIT"), edit);
        setBButtonEnable(QStringLiteral("COPY"), edit);
        setBButtonEnable(QStringLiteral("DELETE"), edit);
        // The full count: DAO-style sources count what they have visited.
        const qint32 position = m_rs->AbsolutePosition();
        if (m_rs->MoveLast().isOk()) {
            if (position >= 0)
                (void)m_rs->setAbsolutePosition(position);
            else
                (void)m_rs->MoveFirst();
        }
        idle();
        setScrollBar();
    }
    refreshCountDisplay();
    shareRsWithFields();
    applyReadOnly();
}

void mvPLXRecs::shareRsWithFields()
{
    for (BoundControl *control : cMervaneControls())
        control->setRecordSet(m_rs);
}

void mvPLXRecs::refreshCountDisplay()
{
    m_fraControls->setTitle(m_rs ? formatRecordCount(m_rs->RecordCount())
                                    + QStringLiteral(" records")
                                 : QStringLiteral("No Records"));
}

void mvPLXRecs::setScrollBar()
{
    if (!m_rs)
        return;
    // The bar's value is the 0-based record position; moving it here must not raise a
    // second IDChange for a record the host has already been told about.
    const bool wasMoving = m_movingScrollBar;
    m_movingScrollBar = true;
    const qint32 count = m_rs->RecordCount();
    m_hscroll->setMinimum(0);
    m_hscroll->setMaximum(qMax(0, count - 1));
    m_hscroll->setValue(qMax(0, m_rs->AbsolutePosition()));
    m_hscroll->setPageStep(qBound(1, count / 20, 1000));
    m_hscroll->setEnabled(count > 0);
    m_movingScrollBar = wasMoving;
}

QString mvPLXRecs::currentSortFields() const
{
    const int item = m_cboSort->currentIndex();
    if (item < 0)
        return QString();
    const int sort = m_cboSort->itemData(item).toInt();
    return sort >= 0 && sort < m_sortFields.size() ? m_sortFields[sort] : QString();
}

QueryText mvPLXRecs::queryText() const
{
    // Table files are named by their file; QueryText brackets a file name that is not an
    // identifier ("91.dbf", "my people.dbf", "ORDER.DBF").
    return QueryText(m_table.isEmpty() ? getFileTitle(tableFilePath()) : m_table);
}

QString mvPLXRecs::currentIDText() const
{
    if (!m_rs || m_rs->isBOF() || m_rs->isEOF())
        return QString();
    const Result<QVariant> id = m_rs->value(m_sIDfield);
    return id.isOk() ? id.value().toString() : QString();
}

bool mvPLXRecs::findIDInRs(const QString &id)
{
    if (!m_rs || getLenTrim(id) < 1)
        return false;
    const qint32 before = m_rs->AbsolutePosition();
    const Status found = m_rs->FindFirst(queryText().qualifiedIdCriterion(m_sIDfield, id));
    if (found.isOk() && !m_rs->NoMatch())
        return true;
    if (before >= 0)
        (void)m_rs->setAbsolutePosition(before);
    return false;
}

bool mvPLXRecs::beginLongWork(const QString &text)
{
    if (!m_rs || m_rs->RecordCount() < kShowProgressFrom)
        return false;
    m_floating->showMessage(QStringLiteral("Connecting to PLX Data"));
    m_floating->setProgress(text);
    pump();
    return true;
}

void mvPLXRecs::endLongWork()
{
    m_floating->closeMessage();
}

std::shared_ptr<RecordSource> mvPLXRecs::openQuery(const QString &sql)
{
    Result<std::unique_ptr<RecordSource>> opened = m_db->OpenRecordset(sql);
    if (opened.isOk())
        return std::shared_ptr<RecordSource>(std::move(opened.value()));
    // The navigator stays as it was; support finds the reason in the activity log.
    m_lastQueryError = opened.status().message().section(QLatin1Char('\n'), 0, 0);
    logEntry(m_sUser,
             messageTitle() + QStringLiteral(": query failed: ") + sql + QStringLiteral("\r\n")
                 + opened.status().message(),
             m_services);
    return nullptr;
}

bool mvPLXRecs::requery(const QString &oldID, bool moveFirstWhenLost)
{
    if (!m_db)
        return false;
    const bool shown = beginLongWork(
        tr("Sorting %1 records").arg(formatRecordCount(m_rs ? m_rs->RecordCount() : 0)));
    std::shared_ptr<RecordSource> opened =
        openQuery(queryText().records(m_sSQLJOIN, m_sSQLWhere, currentSortFields()));
    if (!opened) {
        endLongWork();
        return false;
    }
    if (shown) {
        pump();
        if (m_floating->cancelRequested()) {
            // The user gave up waiting: the navigator stays on the query it had.
            endLongWork();
            return false;
        }
    }
    setRs(std::move(opened));
    if (!findIDInRs(oldID) && moveFirstWhenLost && m_rs->RecordCount() > 0
        && getLenTrim(oldID) >= 1)
        (void)m_rs->MoveFirst();
    idle();
    setScrollBar();
    if (shown)
        endLongWork();
    return true;
}

void mvPLXRecs::sortClicked(int index)
{
    if (index < 0)
        return;
    m_bInitiator = true;
    RSRefresh();
    const bool sortChosen = getLenTrim(m_sSort) >= 1;
    m_cboFind->setEnabled(sortChosen && m_enableFind);
    m_cmdFind->setEnabled(m_cboFind->isEnabled());
    m_lblFind->setEnabled(m_cboFind->isEnabled());
}

void mvPLXRecs::RSRefresh()
{
    const QString oldID = currentIDText();
    const int item = m_cboSort->currentIndex();
    if (item >= 0) {
        const int sort = m_cboSort->itemData(item).toInt();
        if (sort >= 0 && sort < m_sortFields.size())
            m_sSort = m_sortFields[sort];
    }
    if (!requery(oldID, false))
        return;
    m_sEventInfo = QStringLiteral("SetRS after setHScroll");
    Q_EMIT SortChange(m_sSort);
}

void mvPLXRecs::setSDBFPathFileName(const QString &path)
{
    if (m_rs) {
        showBox(QStringLiteral("mvPLXRecs already connected to:") + QStringLiteral("\r\n\r\n")
                    + m_sDBFPathFileName + QStringLiteral("\r\n\r\n")
                    + alreadyConnectedSupportText(),
                MsgStyle::OKOnly, QStringLiteral("Already Connected"));
        return;
    }
    m_sDBFPathFileName = path;
    connectByFile(path);
}

void mvPLXRecs::connectByFile(const QString &path)
{
    const QString libraryPath = fromDiskPath(path);
    m_floating->showMessage(QStringLiteral("Connecting to PLX Data"));
    pump();
    Result<std::unique_ptr<Database>> db = OpenDatabase(toDiskPath(getFileDir(libraryPath)), false,
                                                        false, QStringLiteral("FoxPro 2.6"));
    if (!db.isOk()) {
        logEntry(m_sUser,
                 messageTitle() + QStringLiteral(": cannot open ") + path + QStringLiteral("\r\n")
                     + db.status().message(),
                 m_services);
        endLongWork();
        return;
    }
    setDatabase(std::shared_ptr<Database>(std::move(db.value())), getFileTitle(libraryPath), path);
    // In the sort chosen, if one is (currentSortFields is "" until then).
    std::shared_ptr<RecordSource> opened = openQuery(queryText().selectAll(currentSortFields()));
    if (!opened) {
        endLongWork();
        return;
    }
    setRs(std::move(opened));
    idle();
    (void)m_rs->MoveLast();
    (void)m_rs->MoveFirst();
    setScrollBar();
    endLongWork();
}

void mvPLXRecs::stepClicked(bool forward)
{
    QPushButton *button = forward ? m_cmdRecNext : m_cmdRecBack;
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
        const qint32 before = m_rs ? m_rs->AbsolutePosition() : -1;
        recStep(forward);
        if (!m_rs || m_rs->AbsolutePosition() == before || burst.nsecsElapsed() > 500000)
            break;
    }
}

void mvPLXRecs::recStep(bool forward)
{
    if (!m_rs || (forward ? m_rs->isEOF() : m_rs->isBOF()))
        return;
    if (!(forward ? m_rs->MoveNext() : m_rs->MovePrevious()).isOk())
        return;
    idle();
    if (forward ? m_rs->isEOF() : m_rs->isBOF()) {
        // Stepped off the last (first) record: stay on it, nothing happened for the host.
        (void)(forward ? m_rs->MoveLast() : m_rs->MoveFirst());
        return;
    }
    m_bInitiator = true;
    m_sEventInfo =
        forward ? QStringLiteral("cmdRecNext_Click") : QStringLiteral("cmdRecBack_Click");
    Q_EMIT IDChange(currentIDText());
    setScrollBar();
}

void mvPLXRecs::hscrollChanged(int value)
{
    if (m_movingScrollBar || !m_rs || value >= m_rs->RecordCount())
        return;
    if (!m_rs->setAbsolutePosition(value).isOk())
        return;
    deriveParentID();
    if (!m_findUnderWay)
        m_cboFind->setCurrentIndex(-1);
    m_bInitiator = true;
    m_sEventInfo = QStringLiteral("HScroll1_change");
    Q_EMIT IDChange(currentIDText());
}

void mvPLXRecs::deriveParentID()
{
    // A child record's ID is its parent's ID with a 7-character key behind it. Trailing
    // blanks of a fixed-width ID column are not part of the ID.
    const QString id = rtrimSpaces(currentIDText());
    if (id.size() > 7)
        m_sParentID = id.left(id.size() - 7);
}

void mvPLXRecs::setBRecDisplay(bool display)
{
    m_bRecDisplay = display;
    const bool edit = !bButtonEnable(QStringLiteral("SAVE")) && display;
    setBButtonEnable(QStringLiteral("EDIT"), edit);
    setBButtonEnable(QStringLiteral("COPY"), edit);
    setBButtonEnable(QStringLiteral("DELETE"), edit);
    applyReadOnly();
}

QString mvPLXRecs::sCurrentID()
{
    return currentIDText();
}

void mvPLXRecs::AddSort(const QString &sName, const QString &sField)
{
    const bool nameBlank = getLenTrim(sName) < 1;
    const bool fieldBlank = getLenTrim(sField) < 1;
    if (nameBlank && !fieldBlank) {
        m_addSortErrors =
            modAddALine(m_addSortErrors, QStringLiteral("AddSort: Blank Name for field ") + sField,
                        QStringLiteral("\r\n"), false);
        return;
    }
    if (fieldBlank && !nameBlank) {
        m_addSortErrors =
            modAddALine(m_addSortErrors, QStringLiteral("AddSort: Blank Field for name ") + sName,
                        QStringLiteral("\r\n"), false);
        return;
    }
    m_sortNames.append(sName);
    m_sortFields.append(sField);
}

QString mvPLXRecs::InitControl()
{
    const QString sep = QStringLiteral("\r\n");
    // Sorts refused by AddSort come first: that call has no result of its own.
    QString result = m_addSortErrors;
    if (!m_rs)
        return modAddALine(result, QStringLiteral("No RecordSet specified"), sep, false);
    if (getLenTrim(m_sIDfield) < 1)
        return modAddALine(result, QStringLiteral("No ID Field specified"), sep, false);
    m_floating->showMessage(QStringLiteral("Connecting to PLX Data"));
    pump();
    if (m_sortNames.isEmpty()) {
        result = modAddALine(result, QStringLiteral("No Sorts specified"), sep, false);
    } else {
        m_cboSort->clear();
        for (qsizetype i = 0; i < m_sortNames.size(); ++i)
            m_cboSort->addItem(m_sortNames[i], int(i));
    }
    if (getLenTrim(m_sSort) < 1 && m_cboSort->count() >= 1) {
        m_cboSort->setCurrentIndex(0);
    } else {
        const qsizetype sort = m_sortFields.indexOf(m_sSort);
        if (sort >= 0)
            setComboBox(m_cboSort, m_sortNames[sort], false);
    }
    // Selecting the sort is the user's choice made for them: the records take its order
    // and the find box becomes usable, exactly as after a click on the list.
    if (m_cboSort->currentIndex() >= 0)
        sortClicked(m_cboSort->currentIndex());
    endLongWork();
    return result;
}

} // namespace plx
