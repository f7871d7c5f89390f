// apps/plxform/hostform_commands.cpp: the form's menus and what they do beyond the
// navigator's own buttons: moving to the first, last or a numbered record, the code page of
// a DOS table, the browse grid's columns, and the question before a form with a record in
// edit closes.
#include "apps/plxform/hostform.h"

#include "apps/plxform/indextags.h"
#include "dialogs/gridlayout.h"
#include "dialogs/listselect.h"
#include "services/ini.h"
#include "services/prompter.h"

#include <QAbstractButton>
#include <QAction>
#include <QComboBox>
#include <QCoreApplication>
#include <QFileDialog>
#include <QFileInfo>
#include <QLocale>
#include <QMenu>
#include <QMenuBar>
#include <QScrollBar>

namespace plx::form {

namespace {

const QString kCodePageSection = QStringLiteral("CODEPAGE");
const QString kConfigSection = QStringLiteral("CONFIG");
const QString kCrLf = QStringLiteral("\r\n");
constexpr int kYesNoCancel = 3;

// The grid's columns once the user chose `fields`, in that order: a column kept keeps its
// title and width; a new one is titled with the form's caption for its field (else the
// field's name) and fitted to the field.
GridLayout chosenColumns(const GridLayout &current, const QStringList &fields,
                         const QHash<QString, QString> &captions)
{
    QList<GridColumnEntry> columns;
    for (const QString &field : fields) {
        GridColumnEntry column{ field, captions.value(field.toUpper(), field), 0 };
        for (const GridColumnEntry &kept : current.columns())
            if (kept.field.compare(field, Qt::CaseInsensitive) == 0)
                column = { field, kept.title, kept.widthTwips };
        columns << column;
    }
    return GridLayout(columns);
}

} // namespace

void HostForm::buildMenus()
{
    buildFileMenu();
    buildRecordMenu();
    QMenu *help = menuBar()->addMenu(tr("&Help"));
    help->addAction(tr("&About plxform"), this, [this] {
        prompterOf(m_services)
            .msgBox(tr("plxform %1").arg(QCoreApplication::applicationVersion()) + kCrLf
                        + tr("A data-entry form for FoxPro and SQLite tables, built with PLX "
                             "Controls."),
                    MsgStyle::Information, tr("About plxform"));
    });
}

void HostForm::buildFileMenu()
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
    m_codePageAction = file->addAction(tr("Code &Page..."), this, &HostForm::askForCodePage);
    m_codePageAction->setObjectName(QStringLiteral("mnuCodePage"));
    m_codePageAction->setEnabled(false);
    file->addAction(tr("Browse &Columns..."), this, &HostForm::chooseBrowseColumns)
        ->setObjectName(QStringLiteral("mnuBrowseColumns"));
    file->addSeparator();
    file->addAction(tr("&Print..."), QKeySequence::Print, this, &HostForm::printRecord)
        ->setObjectName(QStringLiteral("mnuPrint"));
    file->addAction(tr("Print Pre&view..."), this, &HostForm::previewRecord)
        ->setObjectName(QStringLiteral("mnuPrintPreview"));
    file->addSeparator();
    file->addAction(tr("&Quit"), QKeySequence::Quit, this, &QWidget::close);
}

QAction *HostForm::addRecordAction(QMenu *menu, const QString &text, const QKeySequence &key,
                                   const std::function<void()> &run)
{
    QAction *action = menu->addAction(text, key, this, run);
    m_shortcutActions << action;
    return action;
}

void HostForm::buildRecordMenu()
{
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
        QAction *action = addRecordAction(record, caption, c.key, [this, caption] {
            if (m_nav && m_nav->bButtonEnable(caption)) {
                m_nav->ClickButton(caption);
                updateStatus(); // the command is done: the record is where it ended up
            }
        });
        action->setObjectName(QStringLiteral("mnu") + caption);
        m_recordActions << action;
    }
    record->addSeparator();
    auto click = [this](const char *button) {
        if (m_nav)
            if (auto *b = m_nav->findChild<QAbstractButton *>(QString::fromLatin1(button));
                b && b->isEnabled())
                b->click();
    };
    record->addAction(tr("&Back"), QKeySequence(Qt::Key_PageUp), this,
                      [click] { click("cmdRecBack"); });
    record->addAction(tr("&Next"), QKeySequence(Qt::Key_PageDown), this,
                      [click] { click("cmdRecNext"); });
    addRecordAction(record, tr("F&irst Record"), QKeySequence(Qt::CTRL | Qt::Key_Home), [this] {
        goToFirst();
    })->setObjectName(QStringLiteral("mnuFirst"));
    addRecordAction(record, tr("&Last Record"), QKeySequence(Qt::CTRL | Qt::Key_End), [this] {
        goToLast();
    })->setObjectName(QStringLiteral("mnuLast"));
    addRecordAction(record, tr("&Go to Record..."), QKeySequence(Qt::CTRL | Qt::Key_G), [this] {
        askForRecordNumber();
    })->setObjectName(QStringLiteral("mnuGoTo"));
    record->addAction(tr("&Find"), QKeySequence::Find, this, [this] {
        if (m_nav)
            if (auto *find = m_nav->findChild<QComboBox *>(QStringLiteral("cboFind"));
                find && find->isEnabled())
                find->setFocus(Qt::ShortcutFocusReason);
    });
}

void HostForm::moveToPosition(qint32 position)
{
    if (!m_nav)
        return;
    // The scroll bar moved as the user's hand would: the navigator shows the record and
    // tells every field, and it rests while a record is edited.
    auto *bar = m_nav->findChild<QScrollBar *>(QStringLiteral("HScroll1"));
    if (!bar || !bar->isEnabled() || position < bar->minimum() || position > bar->maximum())
        return;
    bar->setValue(position);
    updateStatus();
}

void HostForm::goToLast()
{
    if (m_nav && m_nav->rs())
        moveToPosition(m_nav->rs()->RecordCount() - 1);
}

void HostForm::askForRecordNumber()
{
    if (!m_nav || !m_nav->rs() || m_editing)
        return;
    const QLocale english(QLocale::English);
    const qint32 count = m_nav->rs()->RecordCount();
    const QString title = tr("Go to Record");
    if (count < 1) {
        prompterOf(m_services)
            .msgBox(tr("There are no records to go to."), MsgStyle::Information, title);
        return;
    }
    const std::optional<QString> typed =
        prompterOf(m_services)
            .inputBox(tr("Record number (1 to %1):").arg(english.toString(count)), title,
                      QString::number(qMax(0, m_nav->rs()->AbsolutePosition()) + 1));
    if (!typed)
        return;
    bool ok = false;
    const qint32 number = english.toInt(typed->trimmed(), &ok);
    if (!ok || number < 1 || number > count) {
        prompterOf(m_services)
            .msgBox(tr("There is no record number %1. The records are numbered 1 to %2.")
                        .arg(typed->trimmed(), english.toString(count)),
                    MsgStyle::Exclamation, title);
        return;
    }
    moveToPosition(number - 1);
}

int HostForm::rememberedCodePage(const QString &tableFile) const
{
    QString text;
    readINI(kCodePageSection, QFileInfo(tableFile).absoluteFilePath(), userSettings(), text,
            QString());
    return parseCodePage(text).value_or(0);
}

void HostForm::rememberCodePage(const QString &tableFile, int codePage)
{
    writeINI(kCodePageSection, QFileInfo(tableFile).absoluteFilePath(), userSettings(),
             QString::number(codePage));
}

void HostForm::askForCodePage()
{
    if (!m_form.isFoxPro() || codePageMark(m_form.file) != 0)
        return;
    const QString title = tr("Code Page");
    if (m_editing) {
        prompterOf(m_services)
            .msgBox(tr("Save or cancel the record first."), MsgStyle::Information, title);
        return;
    }
    const std::optional<QString> typed =
        prompterOf(m_services)
            .inputBox(
                tr("%1 does not say which code page its text is in.")
                        .arg(QFileInfo(m_form.file).fileName())
                    + kCrLf
                    + tr(
                        "Read it in code page (437 DOS US, 850 DOS Western Europe, 852 DOS Central "
                        "Europe, 866 DOS Cyrillic, 1252 Windows):"),
                title, QString::number(m_form.codePage > 0 ? m_form.codePage : 437));
    if (!typed || typed->trimmed().isEmpty())
        return;
    const std::optional<int> codePage = parseCodePage(*typed);
    if (!codePage) {
        prompterOf(m_services)
            .msgBox(tr("\"%1\" is not a code page number.").arg(typed->trimmed()),
                    MsgStyle::Exclamation, title);
        return;
    }
    rememberCodePage(m_form.file, *codePage);
    FormDescription again = m_form;
    again.codePage = *codePage;
    QStringList warnings;
    QString error;
    if (!openForm(again, &warnings, &error))
        prompterOf(m_services).msgBox(error, MsgStyle::Critical, title);
}

void HostForm::chooseBrowseColumns()
{
    if (!m_nav || !m_nav->rs())
        return;
    // The key the navigator's grid reads its columns from (docs/browsegrid.md).
    const QString key = QStringLiteral("BrowseGridCol ") + m_nav->sDesc();
    QString value;
    readINI(kConfigSection, key, userSettings(), value, QString());
    const GridLayout current = GridLayout::parse(value);
    QStringList fields;
    for (const FieldInfo &f : m_nav->rs()->fieldInfos())
        fields << f.name;
    QStringList shown;
    for (const GridColumnEntry &column : current.columns())
        for (const QString &field : fields)
            if (field.compare(column.field, Qt::CaseInsensitive) == 0)
                shown << field;
    ListSelectDialog pick(this);
    pick.setWindowTitle(tr("Browse Columns"));
    // No layout yet: the grid shows every field, so every field starts out chosen.
    pick.setItems(fields, shown.isEmpty() ? fields : shown);
    if (pick.exec() != QDialog::Accepted)
        return;
    writeINI(kConfigSection, key, userSettings(),
             chosenColumns(current, pick.chosenItems(), captionsByField()).toString());
}

QHash<QString, QString> HostForm::captionsByField() const
{
    QHash<QString, QString> captions;
    for (const RowDescription &r : m_form.rows)
        captions.insert(r.field.toUpper(), r.caption);
    for (const ValueRowDescription &v : m_form.valueRows)
        captions.insert(v.field.toUpper(), v.caption);
    for (const CheckDescription &c : m_form.checks)
        captions.insert(c.field.toUpper(), c.caption);
    for (const PairDescription &p : m_form.pairs) {
        captions.insert(p.field.toUpper(), p.caption);
        for (const auto &[caption, field] : p.details)
            captions.insert(field.toUpper(), caption);
    }
    return captions;
}

bool HostForm::askToEndEdit()
{
    if (!m_nav || !m_nav->bButtonEnable(QStringLiteral("SAVE")))
        return true;
    const MsgAnswer answer = prompterOf(m_services)
                                 .msgBox(tr("The record is still being edited.") + kCrLf + kCrLf
                                             + tr("Yes: save it and close") + kCrLf
                                             + tr("No: discard the changes and close") + kCrLf
                                             + tr("Cancel: go on editing"),
                                         kYesNoCancel | MsgStyle::Question, tr("Close plxform"));
    if (answer == MsgAnswer::Yes)
        m_nav->ClickButton(QStringLiteral("SAVE"));
    else if (answer == MsgAnswer::No)
        m_nav->ClickButton(QStringLiteral("CANCEL"));
    else
        return false;
    // A refused save (or a kept new record) leaves the record in edit: the form stays.
    return !m_nav->bButtonEnable(QStringLiteral("SAVE"));
}

} // namespace plx::form
