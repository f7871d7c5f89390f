// navigator/mvplxrecs_p.h: what mvPLXRecs keeps behind its surface.
//
// The navigator's own work is the widget's: its children, the record source it drives,
// the field controls it tells, the boxes it shows and the events it raises, in their fixed
// order. The rules that need no widget live in collaborators it owns: the query texts
// (QueryText), the find box's session (FindSession), the record commands' state
// (RecordCommands) and the ID allocator (IdAllocator). Its functions are spread over one
// source file per concern, named in the sections below.
#pragma once

#include "navigator/findsession_p.h"
#include "navigator/idallocator_p.h"
#include "navigator/latebound_p.h"
#include "navigator/mvplxrecs.h"
#include "services/recordsource/querytext.h"
#include "navigator/recordcommands_p.h"

#include <QPointer>

#include <exception>
#include <type_traits>

class QAction;
class QComboBox;
class QGroupBox;
class QKeyEvent;
class QLabel;
class QPushButton;
class QScrollBar;
class QTimer;
class QToolBar;

namespace plx {

class FloatingMessage;
class Status;

// A control the host registered, watched so that a deleted one drops out. `control` is
// the object itself when it is one of the library's, else `adapter`.
struct HostControl
{
    QPointer<QObject> object;
    BoundControl *control = nullptr;
    std::shared_ptr<LateBoundControl> adapter;
};

class mvPLXRecsPrivate
{
    Q_DECLARE_PUBLIC(mvPLXRecs)

public:
    explicit mvPLXRecsPrivate(mvPLXRecs *q) : q_ptr(q) { }

    // Runs one operation a host or the user started (a script-callable member, a child's
    // signal, a key). An exception that gets through it (a host's slot, a field control,
    // memory running out) ends the operation there: it is noted in the activity log and
    // the operation gives its type's empty value, so none reaches the host's script or
    // Qt's event loop, which cannot take one.
    template<typename Work>
    auto trapped(const char *operation, Work &&work) noexcept -> decltype(work());
    void noteEscaped(const char *operation, const char *what) const noexcept;

    // --- Children, boxes and the field controls (mvplxrecs.cpp) ------------------------
    void buildChildren();
    void layOutChildren();
    void connectChildren();
    void buildToolbar();
    void showBox(const QString &text, int style, const QString &title) const;
    void pump() const;
    void idle();
    QString messageTitle() const;
    void obsolete(const QString &accessor) const;
    void lendServicesToFields();
    void shareRsWithFields() const;
    QList<BoundControl *> fieldControls() const;
    // The library's own controls as they are; any other QObject through a LateBoundControl.
    HostControl hostControl(QObject *object) const;
    QList<BoundControl *> otherControls() const;
    void setEnableFind(bool enable);
    void setEnableSort(bool enable);
    void setEnableFilter(bool enable);
    void setEnableBrowse(bool enable);
    // The navigator became enabled or disabled.
    void enabledChanged(bool enabled);

    // --- Record source, sorts, stepping (mvplxrecs_source.cpp) ------------------------
    void setRs(std::shared_ptr<RecordSource> source);
    void refreshCountDisplay();
    void setScrollBar();
    QString currentSortFields() const;
    QString tableFilePath() const;
    QueryText queryText() const;
    // Opens `sql` on the navigator's database; nullptr (the reason logged) on failure.
    std::shared_ptr<RecordSource> openQuery(const QString &sql);
    // Opens the records' query, attaches it, finds `oldID` again; false (navigator
    // unchanged) on failure.
    bool requery(const QString &oldID, bool moveFirstWhenLost);
    bool findIDInRs(const QString &id);
    QString currentIDText() const;
    void deriveParentID();
    void hscrollChanged(int value);
    void sortClicked(int index);
    void rsRefresh();
    void stepClicked(bool forward);
    void recStep(bool forward);
    void connectByFile(const QString &path);
    void setDBFPathFileName(const QString &path);
    void addSort(const QString &name, const QString &field);
    QString initControl();
    bool beginLongWork(const QString &text);
    void endLongWork() const;

    // --- Others' changes (mvplxrecs_watch.cpp) -----------------------------------------
    // Starts or stops asking the record source whether others changed its table.
    void watchChanges();
    void changeWatchTick();

    // --- Toolbar buttons (mvplxrecs_buttons.cpp) ---------------------------------------
    QAction *findButton(const QString &caption, bool report) const;
    bool buttonEnabled(const QString &caption) const;
    void setButtonEnabled(const QString &caption, bool enable) const;
    void setBRecDisplay(bool display);
    void setButtonsForEditing(bool editing);
    void applyReadOnly();
    void setNavigationEnabled(bool enabled);
    void clickButton(const QString &caption);

    // --- Find box (mvplxrecs_find.cpp) -------------------------------------------------
    bool handleFindKey(QKeyEvent *key);
    void findEnter();
    void runFind();
    void setFindFromID(const QString &id);
    QString idFromList(qint32 index) const;

    // --- Browse grid (mvplxrecs_browse.cpp) --------------------------------------------
    void findButtonClicked();
    void browseAll();
    void browseSearch();
    QString browse(const QString &caption, const QString &layoutKey,
                   std::shared_ptr<RecordSource> records, qint32 startRow,
                   const QString &startCriterion);
    void goToChosen(const QString &id, const QString &eventInfo);

    // --- Filters (mvplxrecs_filters.cpp) -----------------------------------------------
    void initFilters();
    void filterClicked(int index);
    void filterButtonClicked();
    void setFilterAndWhere(const QString &desc, const QString &where, bool refresh);

    // --- Record commands (mvplxrecs_commands.cpp) --------------------------------------
    void toolbarClicked(QAction *button);
    bool runCommand(RecordCommands::Command command, const QString &id);
    QString auditStamp() const;
    QString commandCurrentID() const;
    void reportEngineError(const QString &what, const Status &status) const;
    QString blankIDMessage(const QString &lastLine) const;
    bool commandEdit(const QString &id);
    bool lockForEdit(const QString &id);
    bool commandSave();
    bool parentAllowsSave() const;
    void saveFieldRows(const QList<BoundControl *> &fields) const;
    bool writeEditedRecord(const QString &heldID);
    void placeSavedRecord(const QString &heldID, const QString &id);
    bool commandCancel(const QString &id);
    bool commandDelete(const QString &id);
    void moveToNeighbour(qint32 position);
    Status appendRecord(const QVariantList &values, const QString &id);
    bool commandNew();
    bool commandCopy();
    void releaseHeldRecord();
    qint32 returnPositionForNew() const;
    QString holderOf(const QString &id) const;
    IdAllocator::Table idTable() const;
    QString newID();

    mvPLXRecs *q_ptr;

    // Collaborators.
    FindSession findSession;
    RecordCommands commands;
    IdAllocator ids;

    // Where the records come from.
    Services *services = nullptr;
    Services *lentServices = nullptr; // what the field controls were given by the navigator
    std::shared_ptr<Database> db;
    std::shared_ptr<RecordSource> rs;
    QString table;
    QString dataPath;

    // The host's controls, watched so that deleted ones drop out.
    QList<HostControl> mervane;
    QList<HostControl> others;
    QPointer<QObject> fParent;

    // Properties.
    QStringList sortNames;
    QStringList sortFields;
    QString addSortErrors;
    QString sSort, sCBOSort, sIDfield, sDescfield, sDesc, sDBFPathFileName;
    QString sUser, sUserINIFile, sSQLWhere, sSQLJOIN, sParentID, sEventInfo;
    qint32 lAltGrayColor = 0;
    qint16 myLevel = 0;
    bool enableFind = true, enableSort = true, enableFilter = true, enableBrowse = true;
    bool bInitiator = false;
    bool bRecDisplay = false;
    bool bGenerateIDs = true;
    QList<bool> rememberedButtons; // the toolbar's states while the navigator is disabled

    bool movingScrollBar = false; // the navigator sets the bar itself: no IDChange
    bool settingFilter = false; // the navigator selects in the filter box: no FilterChange
    QString filterInForce; // the filter box's entry whose WHERE text the records follow
    QString lastQueryError; // first line of why the latest query could not be opened

    QComboBox *cboSort = nullptr;
    QComboBox *cboFind = nullptr;
    QComboBox *cboFilter = nullptr;
    QPushButton *cmdBrowse = nullptr;
    QPushButton *cmdFilter = nullptr;
    QPushButton *cmdFind = nullptr;
    QPushButton *cmdRecBack = nullptr;
    QPushButton *cmdRecNext = nullptr;
    QScrollBar *hscroll = nullptr;
    QLabel *lblFind = nullptr;
    QLabel *lblSort = nullptr;
    QLabel *lblFilter = nullptr;
    QLabel *lblBrowse = nullptr;
    QGroupBox *fraControls = nullptr;
    QToolBar *tbrBtm = nullptr;
    FloatingMessage *floating = nullptr;
    QTimer *changeWatch = nullptr; // made when first needed
    qint32 watchMs = 0; // lWatchMS; 0: others' changes are not asked about
};

template<typename Work>
auto mvPLXRecsPrivate::trapped(const char *operation, Work &&work) noexcept -> decltype(work())
{
    try {
        return work();
    } catch (const std::exception &e) {
        noteEscaped(operation, e.what());
    } catch (...) {
        noteEscaped(operation, nullptr);
    }
    if constexpr (!std::is_void_v<decltype(work())>)
        return decltype(work())();
}

} // namespace plx
