// apps/plxform/hostform.cpp
#include "apps/plxform/hostform.h"

#include "apps/plxform/filtereditor.h"
#include "fields/mvchecks.h"
#include "fields/mvname.h"
#include "navigator/filterlist.h"
#include "navigator/mvplxrecs.h"
#include "services/formplacement.h"
#include "services/ini.h"
#include "services/paths.h"
#include "services/recordsource/database.h"
#include "services/texthelpers.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QKeyEvent>
#include <QComboBox>
#include <QFileDialog>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QMenuBar>
#include <QMessageBox>
#include <QScrollArea>
#include <QScrollBar>
#include <QStatusBar>
#include <QToolBar>
#include <QVBoxLayout>

namespace plx::form {

namespace {

const QString kNoFilter = QStringLiteral(" [None]");
constexpr int kRecentFiles = 6;

bool hasField(const QList<FieldInfo> &fields, const QString &name)
{
    for (const FieldInfo &f : fields)
        if (f.name.compare(name.trimmed(), Qt::CaseInsensitive) == 0)
            return true;
    return false;
}

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
// table, keeping the table, ID field, sorts and required fields it names.
FormDescription completedForm(FormDescription form, const QList<FieldInfo> &fields)
{
    if (form.rows.isEmpty() && form.checks.isEmpty()) {
        FormDescription generated =
            describeTable(fields, form.desc.isEmpty() ? form.table : form.desc);
        generated.file = form.file;
        generated.database = form.database;
        generated.table = form.table;
        if (!form.idField.isEmpty())
            generated.idField = form.idField;
        if (!form.sorts.isEmpty())
            generated.sorts = form.sorts;
        generated.required = form.required;
        form = generated;
    }
    if (form.desc.isEmpty())
        form.desc = form.table;
    return form;
}

mvName *makeTextRows(const QList<RowDescription> &shownRows, const QList<FieldInfo> &fields)
{
    auto *rows = new mvName;
    rows->setObjectName(QStringLiteral("mvNameFields"));
    rows->setNUbound(qint16(qMax<qsizetype>(0, shownRows.size() - 1)));
    rows->setDescWidthAll(1500);
    for (qsizetype i = 0; i < shownRows.size(); ++i) {
        const RowDescription &r = shownRows[i];
        const qint16 n = qint16(i);
        rows->setSCaption(n, r.caption);
        rows->setSFieldName(n, r.field);
        rows->setSFormat(n, r.format);
        rows->setSMode(n, r.mode);
        if (r.maxLength > 0)
            rows->setMaxLength(n, r.maxLength);
        if (r.labelWidth > 0)
            rows->setDescWidth(n, r.labelWidth);
    }
    // A memo in the last row gets room for a few lines (rows above keep their places).
    if (!shownRows.isEmpty()) {
        const qint16 last = qint16(shownRows.size() - 1);
        for (const FieldInfo &f : fields)
            if (f.type == FieldType::Memo
                && f.name.compare(shownRows.last().field, Qt::CaseInsensitive) == 0) {
                rows->setIHeight(last, 1300);
                rows->setNUbound(last); // the stack takes the new height
            }
    }
    return rows;
}

mvChecks *makeCheckBoxes(const QList<CheckDescription> &shownChecks)
{
    auto *checks = new mvChecks;
    checks->setObjectName(QStringLiteral("mvChecksFlags"));
    checks->setNUbound(qint16(qMax<qsizetype>(0, shownChecks.size() - 1)));
    for (qsizetype i = 0; i < shownChecks.size(); ++i) {
        checks->setSCaption(qint16(i), shownChecks[i].caption);
        checks->setSFieldName(qint16(i), shownChecks[i].field);
    }
    checks->setVisible(!shownChecks.isEmpty());
    return checks;
}

// A flag with the text rows that belong to it, one unit; `number` counts from 1.
mvChkWithTxt *makePair(const PairDescription &p, qsizetype number, const QList<FieldInfo> &fields)
{
    auto *pair = new mvChkWithTxt;
    pair->setObjectName(QStringLiteral("mvChkWithTxt%1").arg(number));
    pair->setSCaptionChk(p.caption);
    pair->setSFieldNameChk(p.field);
    QList<QPair<QString, QString>> details;
    for (const auto &detail : p.details)
        if (hasField(fields, detail.second))
            details << detail;
    pair->setNUbound(qint16(qMax<qsizetype>(0, details.size() - 1)));
    for (qsizetype i = 0; i < details.size(); ++i) {
        pair->setSCaptionTxt(qint16(i), details[i].first);
        pair->setSFieldNameTxt(qint16(i), details[i].second);
    }
    pair->setLocked(true);
    return pair;
}

// The navigator on top; below it the text rows, and beside them the check boxes and the
// pairs, all in one scroll area.
QWidget *formLayout(mvPLXRecs *nav, mvName *rows, mvChecks *checks,
                    const QList<mvChkWithTxt *> &pairs)
{
    auto *central = new QWidget;
    auto *layout = new QVBoxLayout(central);
    layout->setContentsMargins(8, 8, 8, 4);
    layout->addWidget(nav);
    auto *scroll = new QScrollArea;
    scroll->setObjectName(QStringLiteral("scrFields"));
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setWidgetResizable(true);
    auto *stacks = new QWidget;
    auto *side = new QHBoxLayout(stacks);
    side->setContentsMargins(0, 6, 0, 0);
    side->addWidget(rows, 3, Qt::AlignTop);
    auto *flags = new QVBoxLayout;
    flags->addWidget(checks);
    for (mvChkWithTxt *pair : pairs)
        flags->addWidget(pair);
    flags->addStretch(1);
    side->addLayout(flags, 2);
    scroll->setWidget(stacks);
    layout->addWidget(scroll, 1);
    return central;
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
    m_statusTable->setObjectName(QStringLiteral("lblStatusTable"));
    m_statusPosition->setObjectName(QStringLiteral("lblStatusPosition"));
    m_statusUser->setObjectName(QStringLiteral("lblStatusUser"));
    m_statusState->setObjectName(QStringLiteral("lblStatusState"));
    statusBar()->addWidget(m_statusTable, 1);
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
            for (const QAction *action : std::as_const(m_recordActions))
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
    const QString table = m_form.isFoxPro() ? m_form.file : m_form.database;
    return toDiskPath(filterFilePath(table));
}

void HostForm::buildMenus()
{
    QMenu *file = menuBar()->addMenu(tr("&File"));
    file->addAction(tr("&Open Table..."), QKeySequence::Open, this, [this] {
        const QString path =
            QFileDialog::getOpenFileName(this, tr("Open Table"), QString(),
                                         tr("Tables (*.dbf *.DBF *.sqlite *.db);;All files (*)"));
        if (!path.isEmpty())
            Q_EMIT openRequested(path);
    });
    file->addAction(tr("Open &Form..."), this, [this] {
        const QString path = QFileDialog::getOpenFileName(this, tr("Open Form"), QString(),
                                                          tr("Form descriptions (*.ini *.INI)"));
        if (!path.isEmpty())
            Q_EMIT openRequested(path);
    });
    file->addAction(tr("&Save Form..."), this, [this] {
        const QString path = QFileDialog::getSaveFileName(this, tr("Save Form"), QString(),
                                                          tr("Form descriptions (*.ini)"));
        if (!path.isEmpty())
            Q_EMIT saveFormRequested(path);
    });
    m_recentMenu = file->addMenu(tr("&Recent Files"));
    fillRecentMenu();
    file->addSeparator();
    file->addAction(tr("&Quit"), QKeySequence::Quit, this, &QWidget::close);

    QMenu *record = menuBar()->addMenu(tr("&Record"));
    const struct
    {
        const char *caption;
        QKeySequence key;
    } commands[] = {
        { "New", QKeySequence(Qt::CTRL | Qt::Key_N) },
        { "Edit", QKeySequence(Qt::CTRL | Qt::Key_E) },
        { "Copy", QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_C) },
        { "Delete", QKeySequence(Qt::CTRL | Qt::Key_Delete) },
        { "Save", QKeySequence(Qt::CTRL | Qt::Key_S) },
        { "Cancel", QKeySequence(Qt::Key_Escape) },
    };
    for (const auto &c : commands) {
        const QString caption = QString::fromLatin1(c.caption);
        QAction *action = record->addAction(caption, c.key, this, [this, caption] {
            if (m_nav && m_nav->bButtonEnable(caption))
                m_nav->ClickButton(caption);
        });
        action->setObjectName(QStringLiteral("mnu") + caption);
        m_recordActions << action;
    }
    record->addSeparator();
    record->addAction(tr("&Back"), QKeySequence(Qt::Key_PageUp), this, [this] {
        if (m_nav)
            if (auto *back = m_nav->findChild<QAbstractButton *>(QStringLiteral("cmdRecBack"));
                back && back->isEnabled())
                back->click();
    });
    record->addAction(tr("&Next"), QKeySequence(Qt::Key_PageDown), this, [this] {
        if (m_nav)
            if (auto *next = m_nav->findChild<QAbstractButton *>(QStringLiteral("cmdRecNext"));
                next && next->isEnabled())
                next->click();
    });
    record->addAction(tr("&Find"), QKeySequence::Find, this, [this] {
        if (m_nav)
            if (auto *find = m_nav->findChild<QComboBox *>(QStringLiteral("cboFind"));
                find && find->isEnabled())
                find->setFocus(Qt::ShortcutFocusReason);
    });

    QMenu *help = menuBar()->addMenu(tr("&Help"));
    help->addAction(tr("&About plxform"), this, [this] {
        QMessageBox::about(
            this, tr("About plxform"),
            tr("<b>plxform</b> %1<br>A data-entry form for FoxPro and SQLite tables, "
               "built with PLX Controls.")
                .arg(QCoreApplication::applicationVersion()));
    });
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

bool HostForm::openTable(FormDescription &form, mvPLXRecs &nav, std::shared_ptr<Database> &db,
                         QString *error)
{
    if (form.isFoxPro()) {
        if (!QFileInfo::exists(form.file)) {
            *error = tr("The table file %1 does not exist.").arg(form.file);
            return false;
        }
        nav.setSDBFPathFileName(form.file);
        if (!nav.rs()) {
            *error = tr("The table %1 could not be opened (see the activity log).").arg(form.file);
            return false;
        }
        db = nav.database();
        form.table = nav.tableName();
        return true;
    }
    Result<std::unique_ptr<Database>> opened = OpenDatabase(form.database, false, false, QString());
    if (!opened.isOk()) {
        *error = opened.status().message();
        return false;
    }
    db = std::move(opened.value());
    Result<std::unique_ptr<RecordSource>> rs =
        db->OpenRecordset(QStringLiteral("SELECT * from ") + form.table);
    if (!rs.isOk()) {
        *error = rs.status().message();
        return false;
    }
    nav.setDatabase(db, form.table, form.database);
    nav.setRs(std::shared_ptr<RecordSource>(std::move(rs.value())));
    return true;
}

void HostForm::configureNavigator(mvPLXRecs &nav, const FormDescription &form)
{
    nav.setSIDfield(form.idField);
    nav.setSDescfield(form.descField);
    nav.setSDesc(form.desc);
    nav.setSUser(systemUserName());
    nav.setSUserINIFile(userSettings());
    nav.setSParentID(form.parentID);
    nav.setFParent(this);
    nav.setMyLevel(1);
    for (const auto &[name, list] : form.sorts)
        nav.AddSort(name, list);
}

void HostForm::connectNavigator()
{
    connect(m_nav, &mvPLXRecs::IDChange, this, [this] {
        showRecord();
        updateStatus();
    });
    connect(m_nav, &mvPLXRecs::SortChange, this, &HostForm::updateStatus);
    connect(m_nav, &mvPLXRecs::RecEditStart, this, [this] {
        m_editing = true;
        updateStatus();
    });
    connect(m_nav, &mvPLXRecs::RecEditEnd, this, [this] {
        m_editing = false;
        updateStatus();
    });
    connect(m_nav, &mvPLXRecs::RecDelete, this, &HostForm::recordDeleted);
    connect(m_nav, &mvPLXRecs::FilterChange, this, &HostForm::filterChosen);
    connect(m_nav, &mvPLXRecs::FilterEdit, this, &HostForm::editFilters);
    mirrorToolbar();
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
    const QList<CheckDescription> shownChecks = withKnownField(shown.checks, fields);
    mvChecks *checks = makeCheckBoxes(shownChecks);
    QList<mvChkWithTxt *> pairs;
    for (const PairDescription &p : withKnownField(shown.pairs, fields))
        pairs << makePair(p, pairs.size() + 1, fields);
    QList<BoundControl *> bound{ rows };
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
    setCentralWidget(formLayout(nav.get(), rows, checks, pairs));
    m_form = shown;
    m_db = db;
    m_nav = nav.release();
    m_rows = rows;
    m_checks = checks;
    m_pairs.clear();
    for (mvChkWithTxt *pair : pairs)
        m_pairs << pair;
    m_editing = false;
    connectNavigator();
    m_nav->setBRecDisplay(true);
    // Open on the first record of the chosen order.
    if (auto *bar = m_nav->findChild<QScrollBar *>(QStringLiteral("HScroll1"));
        bar && m_nav->rs()->RecordCount() > 0)
        bar->setValue(0);
    showRecord();
    setWindowTitle(shown.desc + QStringLiteral(" - plxform"));
    // Each form comes back where the user left it, and always reachable on the monitors
    // there are now.
    restoreFormPlacement(this, m_form.desc, userSettings());
    rememberRecent(shown.isFoxPro() ? shown.file : shown.database);
    updateStatus();
    return true;
}

void HostForm::showRecord()
{
    m_rows->UpdateDBF();
    m_checks->UpdateDBF();
    for (const QPointer<mvChkWithTxt> &pair : m_pairs)
        if (pair)
            pair->UpdateDBF();
}

bool HostForm::OKtoSave(qint16)
{
    QStringList missing;
    for (const QString &field : m_form.required) {
        for (qint16 n = 0; m_rows && n <= m_rows->nUbound(); ++n) {
            if (m_rows->sFieldName(n).compare(field.trimmed(), Qt::CaseInsensitive) == 0
                && getLenTrim(m_rows->sValue(n)) < 1)
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
    return QStringList{ m_statusTable->text(), m_statusPosition->text(), m_statusUser->text(),
                        m_statusState->text() }
        .join(QStringLiteral(" | "));
}

void HostForm::updateStatus()
{
    if (!m_nav || !m_nav->rs())
        return;
    std::shared_ptr<RecordSource> rs = m_nav->rs();
    m_statusTable->setText(
        QFileInfo(m_form.isFoxPro() ? m_form.file : m_form.database).fileName()
        + (m_form.isFoxPro() ? QString() : QStringLiteral(" : ") + m_form.table));
    const qint32 position = rs->AbsolutePosition();
    m_statusPosition->setText(
        position < 0 ? tr("No record")
                     : tr("Record %1 of %2")
                           .arg(QLocale(QLocale::English).toString(position + 1),
                                QLocale(QLocale::English).toString(rs->RecordCount())));
    m_statusUser->setText(m_nav->sUser());
    m_statusState->setText(m_editing ? tr("Editing") : tr("Browsing"));
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
    if (m_nav && m_nav->bButtonEnable(QStringLiteral("SAVE"))) {
        const MsgAnswer answer =
            prompterOf(m_services)
                .msgBox(tr("The record is still being edited. Save it before closing?"),
                        MsgStyle::YesNo | MsgStyle::Question, tr("Close plxform"));
        m_nav->ClickButton(answer == MsgAnswer::Yes ? QStringLiteral("SAVE")
                                                    : QStringLiteral("CANCEL"));
        if (m_nav->bButtonEnable(QStringLiteral("SAVE"))) {
            event->ignore(); // the save was refused: stay open
            return;
        }
    }
    saveFormPlacement(this, m_form.desc, userSettings());
    event->accept();
}

} // namespace plx::form
