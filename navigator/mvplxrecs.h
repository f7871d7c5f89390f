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

#include "services/widgets/boundcontrol.h"
#include "services/env.h"
#include "services/texthelpers.h"

#include <QList>
#include <QStringList>
#include <QWidget>

#include <memory>

namespace plx {

class Database;
class RecordSource;
class mvPLXRecsPrivate;

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
    // An int property (the accessors stay 16-bit): form designers know no 16-bit numbers.
    Q_PROPERTY(int MyLevel READ MyLevel WRITE setMyLevel)
    Q_PROPERTY(QString sParentID READ sParentID WRITE setSParentID)
    Q_PROPERTY(bool bInitiator READ bInitiator WRITE setBInitiator)
    Q_PROPERTY(QString sEventInfo READ sEventInfo)
    Q_PROPERTY(bool bRecDisplay READ bRecDisplay WRITE setBRecDisplay)
    Q_PROPERTY(bool bGenerateIDs READ bGenerateIDs WRITE setBGenerateIDs)
    // Obsolete (every access shows a box): a form designer does not offer them.
    Q_PROPERTY(qint32 lDelayMS READ lDelayMS WRITE setLDelayMS DESIGNABLE false)
    Q_PROPERTY(qint32 lListIndex READ lListIndex WRITE setLListIndex DESIGNABLE false)
    Q_PROPERTY(qint32 lWatchMS READ lWatchMS WRITE setLWatchMS)
    // Set by the form's code or a script once the controls exist; a form designer has no
    // editor for object lists.
    Q_PROPERTY(QList<QObject *> cMervaneControls READ cMervaneControls WRITE setCMervaneControls
                   DESIGNABLE false)
    Q_PROPERTY(QList<QObject *> cOtherControls READ cOtherControls WRITE setCOtherControls
                   DESIGNABLE false)
    Q_PROPERTY(QObject *fParent READ fParent WRITE setFParent DESIGNABLE false)

public:
    explicit mvPLXRecs(QWidget *parent = nullptr);
    ~mvPLXRecs() override;

    // Where boxes, the clock and the UI pump come from; nullptr: the library-wide
    // defaults (Services::defaults(), which a host may replace with Services::setDefaults).
    // The message boxes, clock and event pump the navigator uses; field controls registered
    // in cMervaneControls without services of their own use these too.
    void setServices(Services *services);
    Services *services() const;

    // --- Record source -------------------------------------------------------------
    // The database the navigator opens its sort, filter and find queries on, the table
    // they select from, and the path its side files (filters, ID key file) sit beside:
    // for a SQLite database the database file, whose folder then holds them (the
    // database's own file when no path is given). Setting
    // sDBFPathFileName fills all three for a FoxPro table file.
    void setDatabase(std::shared_ptr<Database> database, const QString &tableName,
                     const QString &dataPath = QString());
    std::shared_ptr<Database> database() const;
    QString tableName() const;
    // Attaches a record source (nullptr detaches): button states, full count, scroll bar,
    // count display. The navigator shares it with its field controls.
    void setRs(std::shared_ptr<RecordSource> rs);
    std::shared_ptr<RecordSource> rs() const;

    // The bound field controls the record commands drive (bEdit, EditUpdate, Save,
    // CancelEdit, UpdateDBF, Locked), in this order. Setting replaces the list; the
    // library's own (plx::BoundControl) get the current record source. Any other QObject
    // is driven by operation name: invokable methods or properties named UpdateDBF,
    // bEdit(bool, QVariant &) (or bEdit(bool)), EditUpdate, CancelEdit, Save, Locked /
    // setLocked, Enabled / setEnabled and Name (else its objectName). An operation it lacks
    // is skipped, and the first skip of each is written to the activity log as
    // "<Name> has no <operation>; skipped". Reading leaves out controls deleted since.
    void setCMervaneControls(const QList<QObject *> &controls);
    QList<QObject *> cMervaneControls() const;
    // Other controls, enabled while a record is edited and disabled after SAVE and CANCEL
    // (a QWidget's own setEnabled, or Enabled by name as above). Reading leaves out
    // controls deleted since.
    void setCOtherControls(const QList<QObject *> &controls);
    QList<QObject *> cOtherControls() const;
    // The host form; it may offer `bool OKtoSave(qint16)` as a slot or Q_INVOKABLE.
    void setFParent(QObject *parent);
    QObject *fParent() const;

    // --- Properties ----------------------------------------------------------------
    // The field list (as given to AddSort) of the current sort. Set before InitControl it
    // picks the sort whose fields equal it; choosing a sort overwrites it. Setting it later
    // re-orders nothing.
    QString sSort() const;
    void setSSort(const QString &sort);
    // Stored for hosts that read it back; the navigator does not use it.
    QString sCBOSort() const;
    void setSCBOSort(const QString &name);
    // The ID field (required by InitControl: "No ID Field specified"); finds, IDs and the
    // sID of every signal come from it.
    QString sIDfield() const;
    void setSIDfield(const QString &field);
    // The field whose value names a record in the delete question and ID messages.
    QString sDescfield() const;
    void setSDescfield(const QString &field);
    // What the records are called in titles and messages ("mvPLXRecs " + sDesc).
    QString sDesc() const;
    void setSDesc(const QString &desc);
    // Connects to a FoxPro table file: database, table and record source. While a record
    // source is attached it is refused with the "Already Connected" box and nothing
    // changes.
    QString sDBFPathFileName() const;
    void setSDBFPathFileName(const QString &path);
    // The ID each search-list entry found last, parallel to the list ("" for none).
    QStringList cArrayID() const;
    // Enable the find, sort, filter and browse sections (label and controls); stored and
    // applied at once. setEnabled sets all four to its own value.
    bool EnableFind() const;
    void setEnableFind(bool enable);
    bool EnableSort() const;
    void setEnableSort(bool enable);
    bool EnableFilter() const;
    void setEnableFilter(bool enable);
    bool EnableBrowse() const;
    void setEnableBrowse(bool enable);
    // Written through QWidget::setEnabled: disabling (also by a parent form) remembers every
    // toolbar button's state and enabling again restores it; both also set EnableFind,
    // EnableSort, EnableFilter and EnableBrowse to the new state. A call that leaves the
    // state as it is changes nothing.
    bool Enabled() const;
    // Stored for hosts that read it back; the navigator's own look does not use it.
    qint32 lAltGrayColor() const;
    void setLAltGrayColor(qint32 colour);
    // Who works: written into the audit stamps, the activity log and the note of who holds
    // a record in edit.
    QString sUser() const;
    void setSUser(const QString &user);
    // The user's settings file (a path in the library's form): the browse grid keeps its
    // columns and its place on the screen there. Blank: the defaults file.
    QString sUserINIFile() const;
    void setSUserINIFile(const QString &file);
    // Text put as it is into every query the navigator runs: "SELECT * from <table>
    // <sSQLJOIN> <sSQLWhere> ORDER BY <sort>"; so sSQLWhere includes its "WHERE". Setting
    // them runs nothing: the next RSRefresh, sort or SetSQLFilterAndWhere does.
    QString sSQLWhere() const;
    void setSSQLWhere(const QString &where);
    QString sSQLJOIN() const;
    void setSSQLJOIN(const QString &join);
    // Passed to the host form's OKtoSave(qint16) on SAVE, so nested navigators can tell
    // which level is saving.
    qint16 MyLevel() const;
    void setMyLevel(qint16 level);
    // The prefix of the IDs NewIDPLX makes. Moving to a record whose ID is longer than 7
    // characters replaces it with that ID minus its last 7 (trailing blanks ignored).
    QString sParentID() const;
    void setSParentID(const QString &id);
    // True (the default): NEW and COPY give the record an ID made by NewIDPLX. False for a
    // table whose key the user types: NEW leaves the ID field blank and COPY blanks the
    // copied one, so SAVE asks for a key (blank and taken keys are refused there either way).
    bool bGenerateIDs() const;
    void setBGenerateIDs(bool generate);
    // True when this navigator started the change now being signalled (a user action on
    // it); EDIT and SAVE's RecEditEnd clear it. The host may reset it.
    bool bInitiator() const;
    void setBInitiator(bool initiator);
    // The tag of the code path behind the latest signal ("cmdRecNext_Click",
    // "ButtonClick: Save (RecSave)", ...); read it inside the slot.
    QString sEventInfo() const;
    // Whether a record is displayed: with false, EDIT, COPY and DELETE are disabled; with
    // true they are enabled unless a record is in edit (SAVE enabled).
    bool bRecDisplay() const;
    void setBRecDisplay(bool display);
    // How often, in milliseconds, the navigator asks its record source whether another
    // user added, changed or deleted records (where the back end can tell: see
    // services/recordsource/tablechanges.h). When one did, and the user is not editing,
    // finding or answering a box, the records are read again, the current record stays
    // current (the first when it is gone) and IDChange tells the host ("ChangedByOthers").
    // 0, the default, asks never; a negative value counts as 0.
    qint32 lWatchMS() const;
    void setLWatchMS(qint32 ms);

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
    // Browse: every record of the record source in the grid form, which opens on the current
    // record. A record the user chooses there becomes current through SetFindFromID (one
    // IDChange, sEventInfo "IDBrowseGrid", bInitiator set); choosing nothing changes
    // nothing. The grid's columns are kept in sUserINIFile under "BrowseGridCol " + sDesc.
    // Nothing happens without a record source or while a record is edited. The Browse
    // button runs it; the find button ("View search results") browses the records the
    // find box found, under "BrowseSearchCol " + sDesc, with sEventInfo "BrowseSearch".
    Q_INVOKABLE void IDBrowseGrid();
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
    // Enabling and disabling, by setEnabled, the Enabled property or a parent form, all
    // come here: the toolbar's button states are remembered and restored.
    void changeEvent(QEvent *event) override;

private:
    Q_DECLARE_PRIVATE(mvPLXRecs)
    const std::unique_ptr<mvPLXRecsPrivate> d_ptr;
};

} // namespace plx
