// apps/plxform/hostform.cpp
#include "apps/plxform/hostform.h"

#include "apps/plxform/filtereditor.h"
#include "apps/plxform/formwidgets.h"
#include "apps/plxform/indextags.h"
#include "apps/plxform/screenfit.h"
#include "fields/mvchecks.h"
#include "fields/mvname.h"
#include "navigator/filterlist.h"
#include "navigator/mvplxrecs.h"
#include "services/widgets/boundcontrol.h"
#include "services/widgets/formplacement.h"
#include "services/ini.h"
#include "services/paths.h"
#include "services/recordsource/database.h"
#include "services/recordsource/querytext.h"
#include "services/texthelpers.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QKeyEvent>
#include <QComboBox>
#include <QCoreApplication>
#include <QFileDialog>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QMenuBar>
#include <QMessageBox>
#include <QScrollArea>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QStatusBar>
#include <QToolBar>
#include <QVBoxLayout>

namespace plx::form {

namespace {

const QString kNoFilter = QStringLiteral(" [None]");
constexpr int kRecentFiles = 6;

// The rows, check boxes or pairs whose field the table has; the others were reported by
// checkFieldNames() and are left out of the form.
template<typename Description>
QList<Description> withKnownField(const QList<Description> &items, const QList<FieldInfo> &fields)
{
    QList<Description> known;
    for (const Description &item : items)
        if (hasField(fields, item.field))
            known << item;
    return known;
}

// `form` as it will be shown. A form with no rows of its own shows every field of the
// table, keeping the table, ID field, sorts, required fields and options it names.
FormDescription completedForm(FormDescription form, const QList<FieldInfo> &fields)
{
    const QList<IndexTag> tags = form.isFoxPro() ? readIndexTags(form.file) : QList<IndexTag>();
    if (form.rows.isEmpty() && form.checks.isEmpty() && form.valueRows.isEmpty()) {
        FormDescription generated =
            describeTable(fields, form.desc.isEmpty() ? form.table : form.desc, tags);
        generated.file = form.file;
        generated.database = form.database;
        generated.server = form.server;
        generated.table = form.table;
        generated.source = form.source;
        generated.parentID = form.parentID;
        generated.codePage = form.codePage;
        generated.collate = form.collate;
        if (!form.idField.isEmpty() || !form.generateIDs) {
            generated.idField = form.idField;
            generated.generateIDs = form.generateIDs;
        }
        if (!form.sorts.isEmpty())
            generated.sorts = form.sorts;
        generated.required = form.required;
        form = generated;
    }
    chooseKey(form, fields, tags);
    if (form.desc.isEmpty())
        form.desc = form.table;
    return form;
}

} // namespace

QString systemUserName()
{
    for (const char *variable : { "USER", "LOGNAME", "USERNAME" }) {
        const QString name = qEnvironmentVariable(variable);
        if (!name.isEmpty())
            return name.toUpper();
    }
    return QStringLiteral("USER");
}

HostForm::HostForm(Services *services, QWidget *parent) : QMainWindow(parent), m_services(services)
{
    setObjectName(QStringLiteral("frmPLXForm"));
    setWindowTitle(QStringLiteral("plxform"));
    m_statusTable = new QLabel(this);
    m_statusPosition = new QLabel(this);
    m_statusUser = new QLabel(this);
    m_statusState = new QLabel(this);
    m_statusReadOnly = new QLabel(this);
    m_statusReadOnly->setObjectName(QStringLiteral("lblStatusReadOnly"));
    m_statusReadOnly->setVisible(false);
    m_statusTable->setObjectName(QStringLiteral("lblStatusTable"));
    m_statusPosition->setObjectName(QStringLiteral("lblStatusPosition"));
    m_statusUser->setObjectName(QStringLiteral("lblStatusUser"));
    m_statusState->setObjectName(QStringLiteral("lblStatusState"));
    statusBar()->addWidget(m_statusTable);
    statusBar()->addWidget(m_statusReadOnly, 1);
    statusBar()->addPermanentWidget(m_statusPosition);
    statusBar()->addPermanentWidget(m_statusUser);
    statusBar()->addPermanentWidget(m_statusState);
    buildMenus();
    // Text fields claim some of the record shortcuts for themselves (Ctrl+E moves to the
    // end of a line, Ctrl+Del deletes a word); in this form the record commands win.
    qApp->installEventFilter(this);
}

bool HostForm::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::ShortcutOverride) {
        auto *widget = qobject_cast<QWidget *>(watched);
        const auto *key = static_cast<QKeyEvent *>(event);
        const QKeySequence pressed(key->keyCombination());
        if (widget && isAncestorOf(widget)) {
            for (const QAction *action : std::as_const(m_shortcutActions))
                if (action->isEnabled() && action->shortcut() == pressed)
                    return true; // not taken by the text field: the menu's shortcut runs
        }
    }
    return QMainWindow::eventFilter(watched, event);
}

HostForm::~HostForm() = default;

QString HostForm::userSettings() const
{
    return setPathName(getWorkDir(m_services), QStringLiteral("PLXFORM.INI"), false);
}

QString HostForm::filterFile() const
{
    return toDiskPath(filterFilePath(sideFile(m_form)));
}

void HostForm::mirrorToolbar()
{
    // The menu's record commands are enabled exactly when the navigator's buttons are.
    auto *toolbar = m_nav->findChild<QToolBar *>(QStringLiteral("tbrBtm"));
    for (QAction *button : toolbar->actions()) {
        for (QAction *item : m_recordActions) {
            if (item->text() != button->text())
                continue;
            item->setEnabled(button->isEnabled());
            connect(button, &QAction::changed, item,
                    [item, button] { item->setEnabled(button->isEnabled()); });
        }
    }
}

void HostForm::configureNavigator(mvPLXRecs &nav, const FormDescription &form)
{
    nav.setSIDfield(form.idField);
    nav.setBGenerateIDs(form.generateIDs);
    nav.setSDescfield(form.descField);
    nav.setSDesc(form.desc);
    nav.setSUser(systemUserName());
    nav.setSUserINIFile(userSettings());
    nav.setSParentID(form.parentID);
    nav.setFParent(this);
    nav.setMyLevel(1);
    // Several users may keep the table: what the others save reaches the count and the
    // shown record within two seconds, while this user is not editing.
    nav.setLWatchMS(2000);
    for (const auto &[name, list] : form.sorts)
        nav.AddSort(name, list);
}

void HostForm::connectNavigator()
{
    connect(m_nav, &mvPLXRecs::IDChange, this, [this] {
        showRecord();
        updateStatus();
    });
    // A sort change keeps the current record when the new order still holds it; when it
    // does not (a kept new record the filter leaves out), another record became current.
    connect(m_nav, &mvPLXRecs::SortChange, this, [this] {
        if (!m_editing)
            showRecord();
        updateStatus();
    });
    connect(m_nav, &mvPLXRecs::RecEditStart, this, &HostForm::editStarted);
    connect(m_nav, &mvPLXRecs::RecEditEnd, this, [this] {
        m_editing = false;
        updateStatus();
    });
    connect(m_nav, &mvPLXRecs::RecDelete, this, &HostForm::recordDeleted);
    connect(m_nav, &mvPLXRecs::FilterChange, this, &HostForm::filterChosen);
    connect(m_nav, &mvPLXRecs::FilterEdit, this, &HostForm::editFilters);
    // Connected after the navigator's own handler, so this runs once the command is done
    // (a saved new record has then found its place in the order).
    connect(m_nav->findChild<QToolBar *>(QStringLiteral("tbrBtm")), &QToolBar::actionTriggered,
            this, &HostForm::toolbarClicked);
    mirrorToolbar();
}

void HostForm::toolbarClicked(QAction *button)
{
    // The navigator gives Close no command of its own: it closes this form.
    if (button->objectName() == QLatin1String("CLOSE"))
        close();
    else
        updateStatus();
}

void HostForm::editStarted()
{
    m_editing = true;
    keepMadeIDReadOnly();
    focusFirstEditableRow();
    updateStatus();
}

void HostForm::keepMadeIDReadOnly()
{
    // The navigator unlocks every row for the edit; an ID it made is not the user's to
    // change.
    if (m_rows && m_madeIDRow >= 0 && m_rows->textRow(m_madeIDRow))
        m_rows->textRow(m_madeIDRow)->setLocked(true);
}

void HostForm::focusFirstEditableRow()
{
    for (qint16 n = 0; m_rows && n <= m_rows->nUbound(); ++n) {
        mvText *row = m_rows->textRow(n);
        if (row && !row->Locked() && row->isEnabled()) {
            // As if the user had tabbed there: the row's text is selected, so what is typed
            // replaces it instead of landing in front of it.
            row->setFocus(Qt::TabFocusReason);
            return;
        }
    }
}

void HostForm::showTitle()
{
    setWindowTitle(m_form.desc + (m_readOnlyReason.isEmpty() ? QString() : tr(" (read only)"))
                   + QStringLiteral(" - plxform"));
}

bool HostForm::openForm(const FormDescription &form, QStringList *warnings, QString *error)
{
    FormDescription shown = form;
    auto nav = std::make_unique<mvPLXRecs>();
    nav->setServices(m_services);
    std::shared_ptr<Database> db;
    if (!openTable(shown, *nav, db, error))
        return false;
    const QList<FieldInfo> fields = nav->rs()->fieldInfos();
    shown = completedForm(std::move(shown), fields);
    *warnings += checkFieldNames(shown, fields);
    configureNavigator(*nav, shown);

    mvName *rows = makeTextRows(withKnownField(shown.rows, fields), fields);
    requireValues(*rows, shown.required);
    const QList<CheckDescription> shownChecks = withKnownField(shown.checks, fields);
    mvChecks *checks = makeCheckBoxes(shownChecks);
    QList<mvChkWithTxt *> pairs;
    for (const PairDescription &p : withKnownField(shown.pairs, fields))
        pairs << makePair(p, pairs.size() + 1, fields);
    const QList<mvVIText *> valueRows = makeValueRows(withKnownField(shown.valueRows, fields));
    QList<QObject *> bound{ rows };
    for (mvVIText *valueRow : valueRows)
        bound << valueRow;
    if (!shownChecks.isEmpty())
        bound << checks;
    for (mvChkWithTxt *pair : pairs)
        bound << pair;
    nav->setCMervaneControls(bound);
    rows->setLocked(true);
    checks->setLocked(true);

    const QString problems = nav->InitControl();
    if (!problems.isEmpty())
        *warnings += problems.split(QStringLiteral("\r\n"));
    nav->InitFilters();

    // The new form replaces the old one only now that it works.
    m_form = shown;
    m_db = db;
    mvPLXRecs *shownNav = nav.release();
    placeWidgets(formLayout(shownNav, rows, valueRows, checks, pairs), shownNav, rows, valueRows,
                 checks, pairs);
    m_readOnlyReason = m_nav->rs()->readOnlyReason();
    m_madeIDRow = -1;
    for (qint16 n = 0; m_form.generateIDs && n <= rows->nUbound(); ++n)
        if (rows->sFieldName(n).compare(m_form.idField, Qt::CaseInsensitive) == 0)
            m_madeIDRow = n;
    if (m_madeIDRow >= 0)
        rows->setToolTip(m_madeIDRow,
                         tr("plxform gives each new record its ID; it cannot be "
                            "typed or changed."));
    showTitle();
    // Each form comes back where the user left it, and always whole on the screens there
    // are now, at whatever scale.
    restoreFormPlacement(this, m_form.desc, userSettings());
    fitOnScreen(this);
    // A form description is what the user opened: it comes back from the recent files.
    // A server's table has no file to open again: it comes back through a form description.
    if (!shown.source.isEmpty())
        rememberRecent(QFileInfo(shown.source).absoluteFilePath());
    else if (!shown.isServer())
        rememberRecent(shown.isFoxPro() ? shown.file : shown.database);
    m_codePageAction->setEnabled(m_form.isFoxPro() && codePageMark(m_form.file) == 0);
    updateStatus();
    return true;
}

void HostForm::placeWidgets(QWidget *central, mvPLXRecs *nav, mvName *rows,
                            const QList<mvVIText *> &valueRows, mvChecks *checks,
                            const QList<mvChkWithTxt *> &pairs)
{
    setCentralWidget(central);
    m_nav = nav;
    m_rows = rows;
    m_checks = checks;
    m_pairs.clear();
    for (mvChkWithTxt *pair : pairs)
        m_pairs << pair;
    m_valueRows.clear();
    for (mvVIText *valueRow : valueRows)
        m_valueRows << valueRow;
    m_editing = false;
    connectNavigator();
    m_nav->setBRecDisplay(true);
    // Open on the first record of the chosen order. The record source is moved and the
    // scroll bar only follows it: a move by the scroll bar is the user's, and makes the
    // record's parent the parent of new records, which a top-level form must not take
    // from whatever record comes first.
    if (m_nav->rs()->RecordCount() > 0) {
        (void)m_nav->rs()->MoveFirst();
        if (auto *bar = m_nav->findChild<QScrollBar *>(QStringLiteral("HScroll1"))) {
            const QSignalBlocker quiet(bar);
            bar->setValue(0);
        }
    }
    showRecord();
}

void HostForm::showRecord()
{
    // Every field control the navigator drives, as the form laid them out.
    for (QObject *control : m_nav->cMervaneControls())
        if (auto *bound = dynamic_cast<BoundControl *>(control))
            bound->UpdateDBF();
}

bool HostForm::OKtoSave(qint16)
{
    // The required rows carry their rule (requireValues); the box names the refusing ones
    // in the order the form lists its required fields.
    QStringList missing;
    for (const QString &field : m_form.required) {
        for (qint16 n = 0; m_rows && n <= m_rows->nUbound(); ++n) {
            if (m_rows->sFieldName(n).compare(field.trimmed(), Qt::CaseInsensitive) == 0
                && !m_rows->sRefusal(n).isEmpty())
                missing << m_rows->sCaption(n);
        }
    }
    if (missing.isEmpty())
        return true;
    prompterOf(m_services)
        .msgBox(tr("A %1 record needs a value in: %2.")
                    .arg(m_form.desc, missing.join(QStringLiteral(", "))),
                MsgStyle::Exclamation, tr("Required Field"));
    return false;
}

void HostForm::filterChosen(const QString &filter)
{
    if (filter == kNoFilter || getLenTrim(filter) < 1) {
        m_nav->SetSQLFilterAndWhere(QString(), QString(), true);
    } else {
        QString where;
        readINI(filter, QStringLiteral("Where"), filterFile(), where, QString());
        m_nav->SetSQLFilterAndWhere(
            filter, getLenTrim(where) < 1 ? QString() : QStringLiteral("WHERE ") + where, true);
    }
    updateStatus();
}

void HostForm::editFilters()
{
    FilterEditor editor(filterFile(), m_db, m_form.table, this);
    editor.exec();
    m_nav->InitFilters();
}

void HostForm::recordDeleted()
{
    // The deleted record leaves no current record behind: show the records as they are now.
    m_nav->RSRefresh();
    showRecord();
    updateStatus();
}

QString HostForm::statusText() const
{
    QStringList parts{ m_statusTable->text() };
    if (!m_readOnlyReason.isEmpty())
        parts << m_statusReadOnly->text();
    parts << m_statusPosition->text() << m_statusUser->text() << m_statusState->text();
    return parts.join(QStringLiteral(" | "));
}

void HostForm::updateStatus()
{
    if (!m_nav || !m_nav->rs())
        return;
    std::shared_ptr<RecordSource> rs = m_nav->rs();
    m_statusTable->setText(
        m_form.databaseLabel()
        + (m_form.isFoxPro() ? QString() : QStringLiteral(" : ") + m_form.table));
    const QLocale english(QLocale::English);
    const qint32 count = rs->RecordCount();
    const qint32 position = rs->AbsolutePosition();
    QString where;
    if (count == 0)
        where = tr("No records");
    else if (count == 1)
        where = tr("1 record");
    else if (position < 0)
        where = tr("%1 records").arg(english.toString(count));
    else
        where = tr("Record %1 of %2").arg(english.toString(position + 1), english.toString(count));
    m_statusPosition->setText(where);
    m_statusUser->setText(m_nav->sUser());
    m_statusState->setText(m_editing ? tr("Editing") : tr("Browsing"));
    m_statusReadOnly->setVisible(!m_readOnlyReason.isEmpty());
    m_statusReadOnly->setText(tr("Read only: %1").arg(m_readOnlyReason));
    m_statusReadOnly->setToolTip(m_readOnlyReason);
}

void HostForm::rememberRecent(const QString &path)
{
    const QString settings = userSettings();
    QString first;
    readINI(QStringLiteral("RECENT"), QStringLiteral("File1"), settings, first, QString());
    if (first == path)
        return; // reopening the latest file changes nothing (and writes nothing)
    QStringList recent{ path };
    for (int i = 1; i <= kRecentFiles; ++i) {
        QString entry;
        readINI(QStringLiteral("RECENT"), QStringLiteral("File%1").arg(i), settings, entry,
                QString());
        if (!entry.isEmpty() && entry != path)
            recent << entry;
    }
    for (int i = 1; i <= kRecentFiles; ++i)
        writeINI(QStringLiteral("RECENT"), QStringLiteral("File%1").arg(i), settings,
                 recent.value(i - 1));
    fillRecentMenu();
}

void HostForm::fillRecentMenu()
{
    m_recentMenu->clear();
    const QString settings = userSettings();
    for (int i = 1; i <= kRecentFiles; ++i) {
        QString entry;
        readINI(QStringLiteral("RECENT"), QStringLiteral("File%1").arg(i), settings, entry,
                QString());
        if (!entry.isEmpty())
            m_recentMenu->addAction(QStringLiteral("&%1 %2").arg(i).arg(entry), this,
                                    [this, entry] { Q_EMIT openRequested(entry); });
    }
    m_recentMenu->setEnabled(!m_recentMenu->isEmpty());
}

void HostForm::closeEvent(QCloseEvent *event)
{
    // A record still being edited is not abandoned silently.
    if (!askToEndEdit()) {
        event->ignore();
        return;
    }
    saveFormPlacement(this, m_form.desc, userSettings());
    event->accept();
}

} // namespace plx::form
