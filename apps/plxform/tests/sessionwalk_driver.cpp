// apps/plxform/tests/sessionwalk_driver.cpp
#include "apps/plxform/tests/sessionwalk_driver.h"

#include "tests/support/fulldisk.h"

#include "apps/plxform/hostform.h"
#include "fields/mvname.h"
#include "mervane/mvtext.h"
#include "navigator/mvplxrecs.h"
#include "services/recordsource/recordsource.h"

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QGroupBox>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QScrollBar>
#include <QToolBar>

namespace plx::walk {

void WalkPrompter::beginStep(const QList<MsgAnswer> &answers)
{
    m_answers = answers;
}

QList<ShownBox> WalkPrompter::takeShown()
{
    return std::exchange(m_shown, {});
}

MsgAnswer WalkPrompter::msgBox(const QString &prompt, int style, const QString &title)
{
    m_shown.append({ title, prompt, style });
    constexpr int yesNoCancel = 3;
    const int buttons = style & 7;
    if (buttons == yesNoCancel) // Cancel when the step says nothing: the cautious choice
        return m_answers.isEmpty() ? MsgAnswer::Cancel : m_answers.takeFirst();
    if (buttons != MsgStyle::YesNo)
        return buttons == MsgStyle::OKCancel ? MsgAnswer::Cancel : MsgAnswer::OK;
    if (m_answers.isEmpty())
        return MsgAnswer::No;
    const MsgAnswer answer = m_answers.takeFirst();
    return answer == MsgAnswer::Yes ? MsgAnswer::Yes : MsgAnswer::No;
}

std::optional<QString> WalkPrompter::inputBox(const QString &prompt, const QString &title,
                                              const QString &defaultText)
{
    Q_UNUSED(defaultText)
    m_shown.append({ title, prompt, -1 });
    return std::nullopt;
}

FormDriver::FormDriver(Backend backend, const QString &dataDir)
    : m_backend(backend), m_dataDir(dataDir)
{
    // The form hands its Services to the navigator only; the rows and check boxes show
    // their boxes through the defaults, as in plxform itself, so the walk's prompter
    // becomes the default while the walk runs.
    Services::setDefaults(&m_services);
}

FormDriver::~FormDriver()
{
    if (m_window)
        m_window->hide(); // no close: a record in edit is not asked about at the end
    m_window.reset();
    Services::setDefaults(nullptr);
}

QString FormDriver::tablePath() const
{
    return m_backend == Backend::FoxPro ? m_dataDir + QStringLiteral("/foxpro/FACILITY.DBF")
                                        : m_dataDir + QStringLiteral("/facility.sqlite");
}

bool FormDriver::open(QString *error)
{
    QStringList warnings;
    const Result<form::FormDescription> loaded =
        form::loadFormDescription(m_dataDir + QStringLiteral("/facility.ini"), &warnings);
    if (!loaded.isOk()) {
        *error = loaded.status().message();
        return false;
    }
    m_description = loaded.value();
    if (m_backend == Backend::FoxPro) {
        m_description.file = tablePath();
    } else {
        m_description.file.clear();
        m_description.database = tablePath();
        m_description.table = QStringLiteral("FACILITY");
    }
    m_window = std::make_unique<form::HostForm>(&m_services);
    if (!m_window->openForm(m_description, &warnings, error))
        return false;
    m_window->resize(920, 660);
    m_window->show();
    QApplication::processEvents();
    return true;
}

void FormDriver::perform(const Step &step)
{
    m_prompter.beginStep(step.answers);
    static const QStringList commands = { QStringLiteral("NEW"),    QStringLiteral("COPY"),
                                          QStringLiteral("EDIT"),   QStringLiteral("SAVE"),
                                          QStringLiteral("CANCEL"), QStringLiteral("DELETE") };
    mvPLXRecs *nav = m_window->navigator();
    const QString &v = step.verb;
    if (commands.contains(v)) {
        clickToolbar(v);
    } else if (v == QLatin1String("TYPE")) {
        typeInto(step.field, step.text);
    } else if (v == QLatin1String("BACK") || v == QLatin1String("NEXT")) {
        nav->findChild<QPushButton *>(v == QLatin1String("BACK") ? QStringLiteral("cmdRecBack")
                                                                 : QStringLiteral("cmdRecNext"))
            ->click();
    } else if (v == QLatin1String("SCROLL")) {
        auto *bar = nav->findChild<QScrollBar *>(QStringLiteral("HScroll1"));
        if (bar->isEnabled())
            bar->setValue(step.text.toInt());
    } else if (v == QLatin1String("SORT")) {
        pickSort(step.text);
    } else if (v == QLatin1String("FIND")) {
        find(step.text);
    } else if (v == QLatin1String("FILTER")) {
        pickFilter(step.text);
    } else if (v == QLatin1String("REOPEN")) {
        reopen();
    } else if (v == QLatin1String("FULLSAVE")) {
        // The disk is full for the length of one SAVE.
        const test::FullDisk full;
        clickToolbar(QStringLiteral("SAVE"));
    }
    QApplication::processEvents();
}

void FormDriver::clickToolbar(const QString &caption)
{
    auto *toolbar = m_window->navigator()->findChild<QToolBar *>(QStringLiteral("tbrBtm"));
    for (QAction *action : toolbar->actions()) {
        if (action->text().compare(caption, Qt::CaseInsensitive) != 0)
            continue;
        // The button the user clicks; a disabled one does nothing.
        if (auto *button = qobject_cast<QAbstractButton *>(toolbar->widgetForAction(action)))
            button->click();
        return;
    }
}

void FormDriver::typeInto(const QString &field, const QString &text)
{
    mvName *rows = m_window->textRows();
    for (qint16 n = 0; n <= rows->nUbound(); ++n) {
        if (rows->sFieldName(n).compare(field, Qt::CaseInsensitive) != 0)
            continue;
        if (!rows->textRow(n)->Locked() && rows->textRow(n)->isEnabled())
            rows->setSValue(n, text);
        return;
    }
}

void FormDriver::pickSort(const QString &name)
{
    auto *box = m_window->navigator()->findChild<QComboBox *>(QStringLiteral("cboSort"));
    const int index = box->findText(name);
    if (!box->isEnabled() || index < 0)
        return;
    box->setCurrentIndex(index);
    Q_EMIT box->activated(index);
}

void FormDriver::find(const QString &text)
{
    auto *box = m_window->navigator()->findChild<QComboBox *>(QStringLiteral("cboFind"));
    if (!box->isEnabled())
        return;
    box->setEditText(text);
    QKeyEvent press(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier, QStringLiteral("\r"));
    QCoreApplication::sendEvent(box, &press);
    QKeyEvent release(QEvent::KeyRelease, Qt::Key_Return, Qt::NoModifier, QStringLiteral("\r"));
    QCoreApplication::sendEvent(box, &release);
}

void FormDriver::pickFilter(const QString &name)
{
    auto *box = m_window->navigator()->findChild<QComboBox *>(QStringLiteral("cboFilter"));
    const int index = box->findText(name);
    if (box->isEnabled() && index >= 0)
        box->setCurrentIndex(index);
}

void FormDriver::reopen()
{
    if (!m_window->close())
        return; // the form refused to close (a save it could not make)
    m_window.reset();
    QApplication::processEvents();
    QString error;
    if (!open(&error))
        qFatal("the sample form could not be opened again: %s", qPrintable(error));
}

FormView FormDriver::view() const
{
    FormView v;
    mvPLXRecs *nav = m_window->navigator();
    v.currentID = nav->sCurrentID();
    while (v.currentID.endsWith(QLatin1Char(' ')))
        v.currentID.chop(1);
    v.position = nav->rs() ? nav->rs()->AbsolutePosition() : -1;
    const auto *bar = nav->findChild<QScrollBar *>(QStringLiteral("HScroll1"));
    v.scrollValue = bar->value();
    v.scrollMaximum = bar->maximum();
    v.countText = nav->findChild<QGroupBox *>(QStringLiteral("fraControls"))->title();
    v.status = m_window->findChild<QLabel *>(QStringLiteral("lblStatusPosition"))->text();
    v.editing = nav->bButtonEnable(QStringLiteral("SAVE"));
    v.browsingButtons = nav->bButtonEnable(QStringLiteral("EDIT"));
    v.navigationEnabled = nav->findChild<QComboBox *>(QStringLiteral("cboSort"))->isEnabled();
    mvName *rows = m_window->textRows();
    for (qint16 n = 0; n <= rows->nUbound(); ++n)
        v.rows.insert(rows->sFieldName(n).toUpper(), rows->sValue(n));
    return v;
}

bool FormDriver::readTable(Table *table, QString *error, QStringList *duplicates) const
{
    return m_backend == Backend::FoxPro
        ? readFoxProTable(tablePath(), table, error, duplicates)
        : readSqliteTable(tablePath(), QStringLiteral("FACILITY"), table, error, duplicates);
}

} // namespace plx::walk
