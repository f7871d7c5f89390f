// navigator/mvplxrecs.h: the record navigator a data-entry form places above its fields.
//
// mvPLXRecs owns the form's record source: it offers the sort orders the host registered,
// shows how many records the query holds, steps with Back/Next and a scroll bar, finds
// records as the user types, lists the table's saved filters and carries the toolbar of
// record commands. It tells the host what happened through its signals, always after
// storing a tag naming the code path in sEventInfo and setting bInitiator, so a host with
// nested navigators can tell which one started a change.
//
// The surface keeps the names hosts and scripts address it by: properties are
// Q_PROPERTYs, methods and keyed properties are Q_INVOKABLE (key first), events are
// signals. A typical host:
//
//     auto *nav = new plx::mvPLXRecs(form);
//     nav->setSIDfield("ID");  nav->setSDescfield("NAME");  nav->setSDesc("Facilities");
//     nav->AddSort("Name", "NAME, CITY");
//     nav->AddSort("ID", "ID");
//     nav->setSDBFPathFileName("/data/FACILITY.DBF");   // or setDatabase() + setRs()
//     QString problems = nav->InitControl();
//     nav->InitFilters();
//
// GUI thread only. Message boxes go through the Prompter of setServices().
#pragma once

#include "navigator/querytext.h"
#include "services/boundcontrol.h"
#include "services/env.h"
#include "services/texthelpers.h"

#include <QList>
#include <QPointer>
#include <QStringList>
#include <QWidget>

#include <memory>
#include <optional>

class QAction;
class QComboBox;
class QGroupBox;
class QLabel;
class QPushButton;
class QScrollBar;
class QToolBar;

namespace plx {

class Database;
class FloatingMessage;
class RecordSource;
class Status;

class mvPLXRecs : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(QString sSort READ sSort WRITE setSSort)
    Q_PROPERTY(QString sCBOSort READ sCBOSort WRITE setSCBOSort)
    Q_PROPERTY(QString sIDfield READ sIDfield WRITE setSIDfield)
    Q_PROPERTY(QString sDescfield READ sDescfield WRITE setSDescfield)
    Q_PROPERTY(QString sDesc READ sDesc WRITE setSDesc)
    Q_PROPERTY(QString sDBFPathFileName READ sDBFPathFileName WRITE setSDBFPathFileName)
    Q_PROPERTY(QStringList cArrayID READ cArrayID)
    Q_PROPERTY(bool EnableFind READ EnableFind WRITE setEnableFind)
    Q_PROPERTY(bool EnableSort READ EnableSort WRITE setEnableSort)
    Q_PROPERTY(bool EnableFilter READ EnableFilter WRITE setEnableFilter)
    Q_PROPERTY(bool EnableBrowse READ EnableBrowse WRITE setEnableBrowse)
    Q_PROPERTY(bool Enabled READ Enabled WRITE setEnabled)
    Q_PROPERTY(qint32 lAltGrayColor READ lAltGrayColor WRITE setLAltGrayColor)
    Q_PROPERTY(QString sUser READ sUser WRITE setSUser)
    Q_PROPERTY(QString sUserINIFile READ sUserINIFile WRITE setSUserINIFile)
    Q_PROPERTY(QString sSQLWhere READ sSQLWhere WRITE setSSQLWhere)
    Q_PROPERTY(QString sSQLJOIN READ sSQLJOIN WRITE setSSQLJOIN)
    Q_PROPERTY(qint16 MyLevel READ MyLevel WRITE setMyLevel)
    Q_PROPERTY(QString sParentID READ sParentID WRITE setSParentID)
    Q_PROPERTY(bool bInitiator READ bInitiator WRITE setBInitiator)
    Q_PROPERTY(QString sEventInfo READ sEventInfo)
    Q_PROPERTY(bool bRecDisplay READ bRecDisplay WRITE setBRecDisplay)
    Q_PROPERTY(bool bGenerateIDs READ bGenerateIDs WRITE setBGenerateIDs)
    Q_PROPERTY(qint32 lDelayMS READ lDelayMS WRITE setLDelayMS)
    Q_PROPERTY(qint32 lListIndex READ lListIndex WRITE setLListIndex)

public:
    explicit mvPLXRecs(QWidget *parent = nullptr);
    ~mvPLXRecs() override;

    // Where boxes, the clock and the UI pump come from; nullptr: the library-wide
    // defaults (Services::defaults(), which a host may replace with Services::setDefaults).
    // The message boxes, clock and event pump the navigator uses; field controls registered
    // in cMervaneControls without services of their own use these too.
    void setServices(Services *services);
    Services *services() const { return m_services; }

    // --- Record source -------------------------------------------------------------
    // The database the navigator opens its sort, filter and find queries on, the table
    // they select from, and the path its side files (filters, ID key file) sit beside:
    // for a SQLite database the database file, whose folder then holds them. Setting
    // sDBFPathFileName fills all three for a FoxPro table file.
    void setDatabase(std::shared_ptr<Database> database, const QString &tableName,
                     const QString &dataPath = QString());
    std::shared_ptr<Database> database() const { return m_db; }
    QString tableName() const { return m_table; }
    // Attaches a record source (nullptr detaches): button states, full count, scroll bar,
    // count display. The navigator shares it with its field controls.
    void setRs(std::shared_ptr<RecordSource> rs);
    std::shared_ptr<RecordSource> rs() const { return m_rs; }

    // The bound field controls the record commands drive (bEdit, EditUpdate, Save,
    // CancelEdit, UpdateDBF, Locked), in this order. Setting replaces the list and hands them
    // the current record source. Reading leaves out controls (QObjects) deleted since.
    void setCMervaneControls(const QList<BoundControl *> &controls);
    QList<BoundControl *> cMervaneControls() const;
    // Other widgets that are enabled while a record is edited and disabled after SAVE and
    // CANCEL. Reading leaves out widgets deleted since.
    void setCOtherControls(const QList<QWidget *> &controls);
    QList<QWidget *> cOtherControls() const;
    // The host form; it may offer `bool OKtoSave(qint16)` as a slot or Q_INVOKABLE.
    void setFParent(QObject *parent) { m_fParent = parent; }
    QObject *fParent() const { return m_fParent; }

    // --- Properties ----------------------------------------------------------------
    // The field list (as given to AddSort) of the current sort. Set before InitControl it
    // picks the sort whose fields equal it; choosing a sort overwrites it. Setting it later
    // re-orders nothing.
    QString sSort() const { return m_sSort; }
    void setSSort(const QString &sort) { m_sSort = sort; }
    // Stored for hosts that read it back; the navigator does not use it.
    QString sCBOSort() const { return m_sCBOSort; }
    void setSCBOSort(const QString &name) { m_sCBOSort = name; }
    // The ID field (required by InitControl: "No ID Field specified"); finds, IDs and the
    // sID of every signal come from it.
    QString sIDfield() const { return m_sIDfield; }
    void setSIDfield(const QString &field) { m_sIDfield = field; }
    // The field whose value names a record in the delete question and ID messages.
    QString sDescfield() const { return m_sDescfield; }
    void setSDescfield(const QString &field) { m_sDescfield = field; }
    // What the records are called in titles and messages ("mvPLXRecs " + sDesc).
    QString sDesc() const { return m_sDesc; }
    void setSDesc(const QString &desc) { m_sDesc = desc; }
    // Connects to a FoxPro table file: database, table and record source. While a record
    // source is attached it is refused with the "Already Connected" box and nothing
    // changes.
    QString sDBFPathFileName() const { return m_sDBFPathFileName; }
    void setSDBFPathFileName(const QString &path);
    // The ID each search-list entry found last, parallel to the list ("" for none).
    QStringList cArrayID() const { return m_arrayID; }
    // Enable the find, sort, filter and browse sections (label and controls); stored and
    // applied at once. setEnabled sets all four to its own value.
    bool EnableFind() const { return m_enableFind; }
    void setEnableFind(bool enable);
    bool EnableSort() const { return m_enableSort; }
    void setEnableSort(bool enable);
    bool EnableFilter() const { return m_enableFilter; }
    void setEnableFilter(bool enable);
    bool EnableBrowse() const { return m_enableBrowse; }
    void setEnableBrowse(bool enable);
    bool Enabled() const { return isEnabled(); }
    // Disabling remembers every toolbar button's state; enabling again restores it. Both
    // also set EnableFind, EnableSort, EnableFilter and EnableBrowse to `enabled`.
    void setEnabled(bool enabled);
    // Stored for hosts that read it back; the navigator's own look does not use it.
    qint32 lAltGrayColor() const { return m_lAltGrayColor; }
    void setLAltGrayColor(qint32 colour) { m_lAltGrayColor = colour; }
    // Who works: written into the audit stamps, the activity log and the note of who holds
    // a record in edit.
    QString sUser() const { return m_sUser; }
    void setSUser(const QString &user) { m_sUser = user; }
    // Stored for hosts that read it back; the navigator does not use it.
    QString sUserINIFile() const { return m_sUserINIFile; }
    void setSUserINIFile(const QString &file) { m_sUserINIFile = file; }
    // Text put as it is into every query the navigator runs: "SELECT * from <table>
    // <sSQLJOIN> <sSQLWhere> ORDER BY <sort>"; so sSQLWhere includes its "WHERE". Setting
    // them runs nothing: the next RSRefresh, sort or SetSQLFilterAndWhere does.
    QString sSQLWhere() const { return m_sSQLWhere; }
    void setSSQLWhere(const QString &where) { m_sSQLWhere = where; }
    QString sSQLJOIN() const { return m_sSQLJOIN; }
    void setSSQLJOIN(const QString &join) { m_sSQLJOIN = join; }
    // Passed to the host form's OKtoSave(qint16) on SAVE, so nested navigators can tell
    // which level is saving.
    qint16 MyLevel() const { return m_myLevel; }
    void setMyLevel(qint16 level) { m_myLevel = level; }
    // The prefix of the IDs NewIDPLX makes. Moving to a record whose ID is longer than 7
    // characters replaces it with that ID minus its last 7 (trailing blanks ignored).
    QString sParentID() const { return m_sParentID; }
    void setSParentID(const QString &id) { m_sParentID = id; }
    // True (the default): NEW and COPY give the record an ID made by NewIDPLX. False for a
    // table whose key the user types: NEW leaves the ID field blank and COPY blanks the
    // copied one, so SAVE asks for a key (blank and taken keys are refused there either way).
    bool bGenerateIDs() const { return m_bGenerateIDs; }
    void setBGenerateIDs(bool generate) { m_bGenerateIDs = generate; }
    // True when this navigator started the change now being signalled (a user action on
    // it); EDIT and SAVE's RecEditEnd clear it. The host may reset it.
    bool bInitiator() const { return m_bInitiator; }
    void setBInitiator(bool initiator) { m_bInitiator = initiator; }
    // The tag of the code path behind the latest signal ("cmdRecNext_Click",
    // "ButtonClick: Save (RecSave)", ...); read it inside the slot.
    QString sEventInfo() const { return m_sEventInfo; }
    // Whether a record is displayed: with false, EDIT, COPY and DELETE are disabled; with
    // true they are enabled unless a record is in edit (SAVE enabled).
    bool bRecDisplay() const { return m_bRecDisplay; }
    void setBRecDisplay(bool display);

    // No longer supported: every access says so in a box and changes nothing (reading
    // gives 0).
    [[deprecated("lDelayMS is no longer supported")]] qint32 lDelayMS();
    [[deprecated("lDelayMS is no longer supported")]] void setLDelayMS(qint32 value);
    [[deprecated("lListIndex is no longer supported")]] qint32 lListIndex();
    [[deprecated("lListIndex is no longer supported")]] void setLListIndex(qint32 value);

    // --- Methods -------------------------------------------------------------------
    // Registers a sort order: its name in cboSort and its comma-separated field list.
    // A blank name or field is refused; the refusal is reported by InitControl.
    Q_INVOKABLE void AddSort(const QString &sName, const QString &sField);
    // Checks the configuration, fills cboSort and selects the current sort. Returns ""
    // or the problems found, one per line ("\r\n").
    Q_INVOKABLE QString InitControl();
    // Re-runs the query of the current sort, filter and join, keeping the current record.
    Q_INVOKABLE void RSRefresh();
    // Toolbar buttons by caption, without regard to case: "NEW", "EDIT", "COPY", "DELETE",
    // "SAVE", "CANCEL", "CLOSE". An unknown caption is told in a "Button key not found: "
    // box (false / nothing done). ClickButton runs the command as a click would; a disabled
    // button is told in a "Button not enabled: " box and not run. "CLOSE" runs nothing (the
    // host handles it); a click while a command runs is ignored.
    Q_INVOKABLE void ClickButton(const QString &sButton);
    // The current record's ID as the source holds it; "" with no current record.
    Q_INVOKABLE QString sCurrentID();
    Q_INVOKABLE bool bButtonEnable(const QString &sButton);
    Q_INVOKABLE void setBButtonEnable(const QString &sButton, bool enable);
    Q_INVOKABLE void setSButtonTip(const QString &sButton, const QString &tip);
    // No longer used: says so in a box and returns "".
    [[deprecated("sButtonEnable is no longer used")]] Q_INVOKABLE QString
    sButtonEnable(const QString &sButton);

    // Find and the search list.
    // Makes the record with ID sID current (sIDfield = sID) and raises IDChange with the
    // current ID; it sets no sEventInfo of its own. No match (or an engine error) returns
    // to the record that was current, if any, and still raises IDChange. Without a record source
    // it does nothing.
    Q_INVOKABLE void SetFindFromID(const QString &sID);
    // No longer supported: says so in a box and does nothing.
    [[deprecated("SetFindFromList is no longer supported")]] Q_INVOKABLE void
    SetFindFromList(qint32 lList);
    // The ID the search-list entry at 0-based position lList found last ("" when it has
    // found none yet). Out of range: an "ID Error" box and "".
    Q_INVOKABLE QString sIDfromList(qint32 lList);
    // Empties the find box's text; the search list stays.
    Q_INVOKABLE void ClearSearch();
    // The number of search-list entries.
    Q_INVOKABLE qint16 nSearchList();
    // 0-based, most recent first; "" out of range.
    Q_INVOKABLE QString sSearchList(qint16 n);
    // Adds `s` at the end of the search list (an equal entry is removed first, with its
    // ID) and sSearchListCLR empties the list and cArrayID. Neither changes what is typed
    // in the find box.
    Q_INVOKABLE void sSearchListADD(const QString &s);
    Q_INVOKABLE void sSearchListCLR();

    // Filters.
    // Fills the filter list from "HBFiltersPLX.INI" beside the table (or data) file, then
    // " [None]"; nothing selected. Raises no FilterChange. No file: only " [None]".
    Q_INVOKABLE void InitFilters();
    // Shows sFilterDescInp in the filter list (blank: " [None]"), sets sSQLWhere and, with
    // bRefreshRS, re-runs the query, keeping the current record when the filter keeps it
    // (else the first). Every field control then reloads. Raises no FilterChange.
    Q_INVOKABLE void SetSQLFilterAndWhere(const QString &sFilterDescInp,
                                          const QString &sSQLWhereINP, bool bRefreshRS);
    // Clears the filter list's selection only: sSQLWhere and the records stay. Raises no
    // FilterChange.
    Q_INVOKABLE void ClearFilter();

    // Record IDs: the next free ID of the table ("" when none could be made). The last key
    // handed out is kept in a key file beside the table, under a lock, so navigators in
    // several processes never hand out one ID twice.
    Q_INVOKABLE QString NewIDPLX();
    // The key file: the table file's path without extension + "_IDLast7.TXT"; for a
    // SQLite database, in the database's folder and named after the table.
    QString keyFilePath() const;

    // The longest text the find box takes; longer pastes are cut there.
    static constexpr int kFindMaxLength = kFindTextMaxLength;

Q_SIGNALS:
    // sID is the record's ID as the source holds it ("" with no current record). sEventInfo
    // names the code path during each signal.
    // The current record changed: Back/Next, the scroll bar, a find (twice, see
    // SetFindFromID), SetFindFromID, and SAVE of a new record (after RecAdded). Not raised
    // for a step past either end.
    void IDChange(const QString &sID);
    // EDIT (also at the end of NEW and COPY) was accepted by every field control, which
    // are unlocked now. A refused EDIT raises nothing.
    void RecEditStart(const QString &sID);
    // Editing ended: after RecSave on SAVE, after RecCancel and the fields' reload on
    // CANCEL.
    void RecEditEnd(const QString &sID);
    // NEW appended a record with a new ID and made it current; RecEditStart follows when
    // the field controls accept the edit.
    void RecNew();
    // SAVE of a record made by NEW or COPY, after RecEditEnd.
    void RecAdded(const QString &sID);
    // COPY appended a copy under the new ID sID and made it current; RecEditStart follows
    // when the field controls accept the edit.
    void RecCopy(const QString &sID);
    // Declared for hosts that connect to it; no code path raises it.
    void RecCopied(const QString &sID);
    // DELETE removed the record (after both questions), or CANCEL of a new record removed
    // it (after RecEditEnd and a Yes).
    void RecDelete(const QString &sID);
    // SAVE wrote the record (fields saved, audit stamp, Update); RecEditEnd follows.
    void RecSave(const QString &sID);
    // CANCEL dropped the edit; the fields reload, then RecEditEnd.
    void RecCancel(const QString &sID);
    // The records were re-read in a new sort (the user's choice, InitControl, RSRefresh);
    // sSort is the sort's field list. Not raised when the query failed.
    void SortChange(const QString &sSort);
    // The user chose a saved filter (its section name, or " [None]"); the host answers
    // with SetSQLFilterAndWhere.
    void FilterChange(const QString &sFilter);
    // The user pressed the filter button (to edit the saved filters).
    void FilterEdit();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    // Layout and wiring (mvplxrecs.cpp).
    void buildChildren();
    void buildToolbar();
    void showBox(const QString &text, int style, const QString &title);
    void pump();
    void idle();
    QString messageTitle() const;

    // Record source (mvplxrecs_source.cpp).
    void refreshCountDisplay();
    void setScrollBar();
    QString currentSortFields() const;
    QueryText queryText() const;
    // Opens `sql` on the navigator's database; nullptr (the reason logged) on failure.
    std::shared_ptr<RecordSource> openQuery(const QString &sql);
    // Opens `sql`, attaches it, finds `oldID` again; false (navigator unchanged) on failure.
    bool requery(const QString &oldID, bool moveFirstWhenLost);
    bool findIDInRs(const QString &id);
    QString currentIDText() const;
    void deriveParentID();
    void hscrollChanged(int value);
    void sortClicked(int index);
    void recStep(bool forward);
    void stepClicked(bool forward);
    void connectByFile(const QString &path);
    void shareRsWithFields();
    void lendServicesToFields();
    bool beginLongWork(const QString &text);
    void endLongWork();

    // Toolbar buttons (mvplxrecs_buttons.cpp).
    QAction *findButton(const QString &sButton, bool report);
    void toolbarClicked(QAction *button);
    void setButtonsForEditing(bool editing);
    void applyReadOnly();
    void setNavigationEnabled(bool enabled);
    void obsolete(const QString &accessor);

    // Find (mvplxrecs_find.cpp).
    bool handleFindKey(QKeyEvent *key);
    void findEnter();
    void findActivated(int index);
    void runFind();
    QString cutToSortFieldWidths(const QString &search) const;
    enum class FindOutcome { Found, NothingFound, Failed };
    FindOutcome findLongestMatch(const QString &search, std::shared_ptr<RecordSource> *found);
    bool openFindSource(const QString &searchText, std::shared_ptr<RecordSource> *found);
    void putOnTopOfSearchList(const QString &text);
    void rememberFoundID(const QString &text, const QString &id);

    // Record commands (mvplxrecs_commands.cpp).
    QString auditStamp();
    QString commandCurrentID() const;
    void reportEngineError(const QString &what, const Status &status);
    QString blankIDMessage(const QString &lastLine) const;
    bool commandEdit(const QString &id);
    bool commandSave();
    bool commandCancel(const QString &id);
    bool commandDelete(const QString &id);
    Status appendRecord(const QVariantList &values, const QString &id);
    bool commandNew();
    bool commandCopy();
    bool parentAllowsSave();
    bool isNewRecord(const QString &id) const;
    bool keyIsFree(const QString &id, const QString &ownID);
    void saveFieldRows(const QList<BoundControl *> &fields);
    bool writeEditedRecord(const QString &heldID);
    void moveToNeighbour(qint32 position);
    void releaseHeldRecord();
    qint32 returnPositionForNew() const;

    // Record IDs (mvplxrecs_ids.cpp).
    QString tableFilePath() const;
    QString holdersPath() const;
    QString highestKeyInTable(const QString &query, bool *ok);
    enum class IdUse { Free, Taken, Twin };
    IdUse idUseOf(RecordSource &source, const QString &candidate);
    IdUse idInTable(const QString &candidate, const QString &criterion, const QString &ownID);
    IdUse idTaken(const QString &candidate, const QString &criterion);
    void logLines(const QStringList &lines);
    void keyFileProblem(const QString &keyFile, const QString &reason);
    QString usableKeyLine(const QString &keyFile, const QString &query);
    QString firstFreeID(QString candidate, const QString &keyFile, const QString &query);

    // Filters (mvplxrecs_filters.cpp).
    void filterClicked(int index);
    void filterButtonClicked();

    Services *m_services = nullptr;
    Services *m_lentServices = nullptr; // what the field controls were given by the navigator
    std::shared_ptr<Database> m_db;
    std::shared_ptr<RecordSource> m_rs;
    std::shared_ptr<RecordSource> m_findRs;
    QString m_table;
    QString m_dataPath;
    QList<QPointer<QObject>> m_mervaneObjects;
    QList<BoundControl *> m_mervane;
    QList<bool> m_mervaneTracked; // a QObject, so its deletion is noticed
    QList<QPointer<QWidget>> m_others;
    QPointer<QObject> m_fParent;

    QStringList m_sortNames;
    QStringList m_sortFields;
    QString m_addSortErrors;
    QString m_sSort, m_sCBOSort, m_sIDfield, m_sDescfield, m_sDesc, m_sDBFPathFileName;
    QString m_sUser, m_sUserINIFile, m_sSQLWhere, m_sSQLJOIN, m_sParentID, m_sEventInfo;
    QStringList m_arrayID; // parallel to the search list: the ID each entry found
    qint32 m_lAltGrayColor = 0;
    qint16 m_myLevel = 0;
    bool m_enableFind = true, m_enableSort = true, m_enableFilter = true, m_enableBrowse = true;
    bool m_bInitiator = false;
    bool m_bRecDisplay = false;
    bool m_bGenerateIDs = true;
    QList<bool> m_rememberedButtons;

    bool m_movingScrollBar = false; // the navigator sets the bar itself: no IDChange
    bool m_findUnderWay = false;
    bool m_settingFilter = false; // SetSQLFilterAndWhere selects: no FilterChange
    bool m_commandRunning = false; // a command (and the re-read after a save) is under way
    // The ID the record made by NEW or COPY had when it was made, until that record is saved
    // or deleted. It names the record, so that a CANCEL of another record's edit never
    // offers to delete anything.
    std::optional<QString> m_newRecordID;
    qint32 m_returnPosition = -1; // where a cancelled new record returns to
    QString m_heldID; // the record this navigator holds in edit
    QString m_takenDesc; // description of the record that took an ID candidate
    bool m_idProblemShown = false; // NewIDPLX told the user why it made no ID
    QString m_filterInForce; // the filter box's entry whose WHERE text the records follow
    QString m_lastQueryError; // first line of why the latest query could not be opened

    QComboBox *m_cboSort = nullptr;
    QComboBox *m_cboFind = nullptr;
    QComboBox *m_cboFilter = nullptr;
    QPushButton *m_cmdBrowse = nullptr;
    QPushButton *m_cmdFilter = nullptr;
    QPushButton *m_cmdFind = nullptr;
    QPushButton *m_cmdRecBack = nullptr;
    QPushButton *m_cmdRecNext = nullptr;
    QScrollBar *m_hscroll = nullptr;
    QLabel *m_lblFind = nullptr;
    QLabel *m_lblSort = nullptr;
    QLabel *m_lblFilter = nullptr;
    QLabel *m_lblBrowse = nullptr;
    QGroupBox *m_fraControls = nullptr;
    QToolBar *m_tbrBtm = nullptr;
    FloatingMessage *m_floating = nullptr;
};

} // namespace plx
