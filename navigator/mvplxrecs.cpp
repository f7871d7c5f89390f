// navigator/mvplxrecs.cpp: the navigator's children, their layout and wiring, its boxes,
// the field controls it drives, enabling, and the members kept only to say they are gone.
// The record work lives in the files beside this one, one per concern.
#include "navigator/mvplxrecs_p.h"

#include "dialogs/floatingmessage.h"
#include "services/activitylog.h"
#include "services/recordsource/database.h"
#include "services/texthelpers.h"

#include <QAction>
#include <QComboBox>
#include <QEvent>
#include <QGridLayout>
#include <QGroupBox>
#include <QKeyEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QStyle>
#include <QToolBar>
#include <QVBoxLayout>

namespace plx {

namespace {

QPushButton *iconButton(QWidget *parent, const char *name, QStyle::StandardPixmap icon,
                        const QString &tip)
{
    auto *button = new QPushButton(parent);
    button->setObjectName(QString::fromLatin1(name));
    button->setIcon(parent->style()->standardIcon(icon));
    button->setToolTip(tip);
    button->setAutoDefault(false);
    return button;
}

QLabel *buddyLabel(QWidget *parent, const char *name, const QString &text, QWidget *buddy)
{
    auto *label = new QLabel(text, parent);
    label->setObjectName(QString::fromLatin1(name));
    label->setBuddy(buddy);
    return label;
}

QComboBox *combo(QWidget *parent, const char *name, bool editable)
{
    auto *box = new QComboBox(parent);
    box->setObjectName(QString::fromLatin1(name));
    box->setEditable(editable);
    box->setInsertPolicy(QComboBox::NoInsert);
    box->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    box->setMinimumContentsLength(10);
    return box;
}

// Keys reach the find box either at the line edit or at the combo box, which hands them on
// by a direct call that no filter sees: `keyWatcher` watches both.
void setUpFindBox(QComboBox *find, QObject *keyWatcher)
{
    find->lineEdit()->setMaxLength(mvPLXRecs::kFindMaxLength);
    find->lineEdit()->setPlaceholderText(mvPLXRecs::tr("Type to find"));
    find->setToolTip(
        mvPLXRecs::tr("Type the beginning of the sort's values; Enter keeps the text in the list"));
    find->installEventFilter(keyWatcher);
    find->lineEdit()->installEventFilter(keyWatcher);
    find->setEnabled(false);
}

// Holding Back or Next down walks the records quickly: the first repeat after a short
// pause, then as fast as the records can be shown.
void repeatWhileHeld(QPushButton *step)
{
    step->setAutoRepeat(true);
    step->setAutoRepeatDelay(350);
    step->setAutoRepeatInterval(1);
}

// The frame that holds the record stepping: Back, the position bar, Next.
QGroupBox *stepFrame(QWidget *parent, QPushButton *back, QScrollBar *position, QPushButton *next)
{
    auto *frame = new QGroupBox(parent);
    frame->setObjectName(QStringLiteral("fraControls"));
    auto *stepRow = new QHBoxLayout(frame);
    stepRow->setContentsMargins(6, 4, 6, 6);
    stepRow->addWidget(back);
    stepRow->addWidget(position, 1);
    stepRow->addWidget(next);
    return frame;
}

struct GridCell
{
    QWidget *widget;
    int row, column;
    int columnSpan = 1;
};

QGridLayout *gridOf(std::initializer_list<GridCell> cells)
{
    auto *grid = new QGridLayout;
    grid->setHorizontalSpacing(6);
    grid->setVerticalSpacing(4);
    for (const GridCell &cell : cells)
        grid->addWidget(cell.widget, cell.row, cell.column, 1, cell.columnSpan);
    return grid;
}

// Tab moves through `widgets` in the order given.
void setTabChain(std::initializer_list<QWidget *> widgets)
{
    QWidget *previous = nullptr;
    for (QWidget *widget : widgets) {
        if (previous)
            QWidget::setTabOrder(previous, widget);
        previous = widget;
    }
}

} // namespace

void mvPLXRecsPrivate::buildChildren()
{
    Q_Q(mvPLXRecs);
    cboSort = combo(q, "cboSort", false);
    cboFind = combo(q, "cboFind", true);
    cboFilter = combo(q, "cboFilter", false);
    setUpFindBox(cboFind, q);
    cboSort->setToolTip(mvPLXRecs::tr("Sort order"));
    cboFilter->setToolTip(mvPLXRecs::tr("Saved filters"));

    cmdFind = iconButton(q, "cmdFind", QStyle::SP_FileDialogContentsView,
                         mvPLXRecs::tr("View search results"));
    cmdFind->setEnabled(false);
    cmdFilter = iconButton(q, "cmdFilter", QStyle::SP_FileDialogDetailedView,
                           mvPLXRecs::tr("Edit the saved filters"));
    cmdBrowse = iconButton(q, "cmdBrowse", QStyle::SP_FileDialogListView,
                           mvPLXRecs::tr("Browse entire database"));
    cmdRecBack =
        iconButton(q, "cmdRecBack", QStyle::SP_ArrowBack, mvPLXRecs::tr("Previous record"));
    cmdRecNext = iconButton(q, "cmdRecNext", QStyle::SP_ArrowForward, mvPLXRecs::tr("Next record"));
    repeatWhileHeld(cmdRecBack);
    repeatWhileHeld(cmdRecNext);

    lblSort = buddyLabel(q, "lblSort", mvPLXRecs::tr("&Sort"), cboSort);
    lblFind = buddyLabel(q, "lblFind", mvPLXRecs::tr("F&ind"), cboFind);
    lblFind->setEnabled(false);
    lblFilter = buddyLabel(q, "lblFilter", mvPLXRecs::tr("Fi&lter"), cboFilter);
    lblBrowse = buddyLabel(q, "lblBrowse", mvPLXRecs::tr("Bro&wse"), cmdBrowse);

    hscroll = new QScrollBar(Qt::Horizontal, q);
    hscroll->setObjectName(QStringLiteral("HScroll1"));
    hscroll->setToolTip(mvPLXRecs::tr("Record position"));
    hscroll->setFocusPolicy(Qt::StrongFocus);
    fraControls = stepFrame(q, cmdRecBack, hscroll, cmdRecNext);
    hscroll->setParent(fraControls);
    cmdRecBack->setParent(fraControls);
    cmdRecNext->setParent(fraControls);

    layOutChildren();
    connectChildren();
}

void mvPLXRecsPrivate::layOutChildren()
{
    Q_Q(mvPLXRecs);
    QGridLayout *grid = gridOf({ { lblSort, 0, 0 },
                                 { cboSort, 0, 1 },
                                 { lblFilter, 0, 2 },
                                 { cboFilter, 0, 3 },
                                 { cmdFilter, 0, 4 },
                                 { lblFind, 1, 0 },
                                 { cboFind, 1, 1, 3 },
                                 { cmdFind, 1, 4 },
                                 { lblBrowse, 1, 5 },
                                 { cmdBrowse, 1, 6 } });
    grid->setColumnStretch(1, 3);
    grid->setColumnStretch(3, 2);

    auto *outer = new QVBoxLayout(q);
    outer->setContentsMargins(0, 0, 0, 0);
    outer->setSpacing(4);
    outer->addLayout(grid);
    outer->addWidget(fraControls);

    // Keyboard order: sort, find, filter, browse, then stepping and the commands.
    setTabChain({ cboSort, cboFind, cmdFind, cboFilter, cmdFilter, cmdBrowse, cmdRecBack, hscroll,
                  cmdRecNext });
}

void mvPLXRecsPrivate::connectChildren()
{
    Q_Q(mvPLXRecs);
    // Each child's signal is a user's action, trapped as a host's call is.
    QObject::connect(cboSort, &QComboBox::activated, q,
                     [this](int index) { trapped("cboSort_Click", [&] { sortClicked(index); }); });
    QObject::connect(cboFind, &QComboBox::activated, q, [this](int index) {
        if (index >= 0)
            trapped("cboFind_Click", [&] { findEnter(); });
    });
    QObject::connect(cboFilter, &QComboBox::currentIndexChanged, q, [this](int index) {
        trapped("cboFilter_Click", [&] { filterClicked(index); });
    });
    QObject::connect(cmdFilter, &QPushButton::clicked, q,
                     [this] { trapped("cmdFilter_Click", [&] { filterButtonClicked(); }); });
    QObject::connect(cmdFind, &QPushButton::clicked, q,
                     [this] { trapped("cmdFind_Click", [&] { findButtonClicked(); }); });
    QObject::connect(cmdBrowse, &QPushButton::clicked, q,
                     [this] { trapped("cmdBrowse_Click", [&] { browseAll(); }); });
    QObject::connect(cmdRecBack, &QPushButton::clicked, q,
                     [this] { trapped("cmdRecBack_Click", [&] { stepClicked(false); }); });
    QObject::connect(cmdRecNext, &QPushButton::clicked, q,
                     [this] { trapped("cmdRecNext_Click", [&] { stepClicked(true); }); });
    QObject::connect(hscroll, &QScrollBar::valueChanged, q, [this](int value) {
        trapped("HScroll1_Change", [&] { hscrollChanged(value); });
    });
}

void mvPLXRecsPrivate::buildToolbar()
{
    Q_Q(mvPLXRecs);
    tbrBtm = new QToolBar(q);
    tbrBtm->setObjectName(QStringLiteral("tbrBtm"));
    tbrBtm->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    tbrBtm->setIconSize(QSize(16, 16));
    // The record commands in the order hosts address them by index (1 to 6), then Close,
    // which carries no command. Only New is available before a record is shown.
    struct ToolbarButton
    {
        const char *caption, *key;
        QString tip;
        QStyle::StandardPixmap icon;
        bool enabledAtStart;
    };
    const ToolbarButton buttons[] = {
        { "New", "NEW", QStringLiteral("Create a new facility record"), QStyle::SP_FileIcon, true },
        { "Edit", "EDIT", QStringLiteral("Edit the current record"),
          QStyle::SP_FileDialogDetailedView, false },
        { "Copy", "COPY", QStringLiteral("Copy the current record to create a new record"),
          QStyle::SP_FileLinkIcon, false },
        { "Delete", "DELETE", QStringLiteral("DELETE the current record"), QStyle::SP_TrashIcon,
          false },
        { "Save", "SAVE", QStringLiteral("Save the current record"), QStyle::SP_DialogSaveButton,
          false },
        { "Cancel", "CANCEL", QStringLiteral("Abandon changes to the current record"),
          QStyle::SP_DialogCancelButton, false },
        { "Close", "CLOSE", QString(), QStyle::SP_DialogCloseButton, true },
    };
    for (const ToolbarButton &button : buttons) {
        if (qstrcmp(button.key, "CLOSE") == 0)
            tbrBtm->addSeparator();
        QAction *action = tbrBtm->addAction(q->style()->standardIcon(button.icon),
                                            QString::fromLatin1(button.caption));
        action->setObjectName(QString::fromLatin1(button.key));
        action->setToolTip(button.tip);
        action->setEnabled(button.enabledAtStart);
    }
    QObject::connect(tbrBtm, &QToolBar::actionTriggered, q, [this](QAction *button) {
        trapped("tbrBtm_ButtonClick", [&] { toolbarClicked(button); });
    });
    q->layout()->addWidget(tbrBtm);
}

mvPLXRecs::mvPLXRecs(QWidget *parent)
    : QWidget(parent), d_ptr(std::make_unique<mvPLXRecsPrivate>(this))
{
    Q_D(mvPLXRecs);
    setObjectName(QStringLiteral("mvPLXRecs"));
    d->buildChildren();
    d->buildToolbar();
    d->floating = new FloatingMessage(this);
    // On creation: an empty sort list and a scroll bar that waits for a record source.
    d->cboSort->clear();
    d->hscroll->setEnabled(false);
    d->refreshCountDisplay();
}

mvPLXRecs::~mvPLXRecs()
{
    // The floating message is a top-level window parented to the host's window; it goes
    // with the navigator.
    delete d_ptr->floating;
}

bool mvPLXRecs::eventFilter(QObject *watched, QEvent *event)
{
    Q_D(mvPLXRecs);
    if ((watched == d->cboFind || watched == d->cboFind->lineEdit())
        && event->type() == QEvent::KeyPress)
        return d->trapped("cboFind_KeyPress",
                          [&] { return d->handleFindKey(static_cast<QKeyEvent *>(event)); });
    return QWidget::eventFilter(watched, event);
}

void mvPLXRecs::changeEvent(QEvent *event)
{
    Q_D(mvPLXRecs);
    if (event->type() == QEvent::EnabledChange)
        d->trapped("Enabled", [&] { d->enabledChanged(isEnabled()); });
    QWidget::changeEvent(event);
}

void mvPLXRecsPrivate::noteEscaped(const char *operation, const char *what) const noexcept
{
    try {
        endLongWork();
        logEntry(sUser,
                 messageTitle() + QStringLiteral(": ") + QString::fromLatin1(operation)
                     + QStringLiteral(" stopped by an error: ")
                     + (what ? QString::fromLocal8Bit(what) : QStringLiteral("unknown")),
                 services);
    } catch (...) {
        // Nothing more can be done about it here: the operation ends regardless.
    }
}

void mvPLXRecsPrivate::showBox(const QString &text, int style, const QString &title) const
{
    prompterOf(services).msgBox(text, style, title);
}

void mvPLXRecsPrivate::pump() const
{
    uiPumpOf(services).processEvents();
}

void mvPLXRecsPrivate::idle()
{
    if (db)
        db->Idle();
}

QString mvPLXRecsPrivate::messageTitle() const
{
    return QStringLiteral("mvPLXRecs ") + sDesc;
}

void mvPLXRecs::setServices(Services *services)
{
    Q_D(mvPLXRecs);
    d->services = services;
    d->trapped("setServices", [&] { d->lendServicesToFields(); });
}

Services *mvPLXRecs::services() const
{
    return d_ptr->services;
}

HostControl mvPLXRecsPrivate::hostControl(QObject *object) const
{
    HostControl entry{ object, dynamic_cast<BoundControl *>(object), nullptr };
    if (!entry.control) {
        // What a host's control lacks is for its developer to read, not for the user.
        entry.adapter = std::make_shared<LateBoundControl>(object, [this](const QString &line) {
            logEntry(sUser, messageTitle() + QStringLiteral(": ") + line, services);
        });
        entry.control = entry.adapter.get();
    }
    return entry;
}

void mvPLXRecs::setCMervaneControls(const QList<QObject *> &controls)
{
    Q_D(mvPLXRecs);
    d->trapped("setCMervaneControls", [&] {
        d->mervane.clear();
        for (QObject *object : controls)
            if (object)
                d->mervane.append(d->hostControl(object));
        d->lendServicesToFields();
        d->shareRsWithFields();
    });
}

void mvPLXRecsPrivate::lendServicesToFields()
{
    // Field controls the host gave no services of their own show their boxes through the
    // navigator's, like the navigator's own boxes.
    for (BoundControl *control : fieldControls())
        if (!control->services() || control->services() == lentServices)
            control->setServices(services);
    lentServices = services;
}

void mvPLXRecsPrivate::shareRsWithFields() const
{
    for (BoundControl *control : fieldControls())
        control->setRecordSet(rs);
}

namespace {

// A control the host deleted drops out of its collection.
QList<BoundControl *> aliveControls(const QList<HostControl> &controls)
{
    QList<BoundControl *> alive;
    for (const HostControl &entry : controls)
        if (entry.object)
            alive.append(entry.control);
    return alive;
}

QList<QObject *> aliveObjects(const QList<HostControl> &controls)
{
    QList<QObject *> alive;
    for (const HostControl &entry : controls)
        if (entry.object)
            alive.append(entry.object);
    return alive;
}

} // namespace

QList<BoundControl *> mvPLXRecsPrivate::fieldControls() const
{
    return aliveControls(mervane);
}

QList<QObject *> mvPLXRecs::cMervaneControls() const
{
    return d_ptr->trapped("cMervaneControls", [&] { return aliveObjects(d_ptr->mervane); });
}

void mvPLXRecs::setCOtherControls(const QList<QObject *> &controls)
{
    Q_D(mvPLXRecs);
    d->trapped("setCOtherControls", [&] {
        d->others.clear();
        for (QObject *object : controls)
            if (object)
                d->others.append(d->hostControl(object));
    });
}

QList<BoundControl *> mvPLXRecsPrivate::otherControls() const
{
    return aliveControls(others);
}

QList<QObject *> mvPLXRecs::cOtherControls() const
{
    return d_ptr->trapped("cOtherControls", [&] { return aliveObjects(d_ptr->others); });
}

void mvPLXRecsPrivate::setEnableFind(bool enable)
{
    enableFind = enable;
    lblFind->setEnabled(enable);
    cboFind->setEnabled(enable);
    cmdFind->setEnabled(enable);
}

void mvPLXRecsPrivate::setEnableSort(bool enable)
{
    enableSort = enable;
    lblSort->setEnabled(enable);
    cboSort->setEnabled(enable);
}

void mvPLXRecsPrivate::setEnableFilter(bool enable)
{
    enableFilter = enable;
    lblFilter->setEnabled(enable);
    cboFilter->setEnabled(enable);
    cmdFilter->setEnabled(enable);
}

void mvPLXRecsPrivate::setEnableBrowse(bool enable)
{
    enableBrowse = enable;
    lblBrowse->setEnabled(enable);
    cmdBrowse->setEnabled(enable);
}

void mvPLXRecs::setEnableFind(bool enable)
{
    d_ptr->trapped("setEnableFind", [&] { d_ptr->setEnableFind(enable); });
}

void mvPLXRecs::setEnableSort(bool enable)
{
    d_ptr->trapped("setEnableSort", [&] { d_ptr->setEnableSort(enable); });
}

void mvPLXRecs::setEnableFilter(bool enable)
{
    d_ptr->trapped("setEnableFilter", [&] { d_ptr->setEnableFilter(enable); });
}

void mvPLXRecs::setEnableBrowse(bool enable)
{
    d_ptr->trapped("setEnableBrowse", [&] { d_ptr->setEnableBrowse(enable); });
}

void mvPLXRecsPrivate::enabledChanged(bool enabled)
{
    // Qt reports only a change of state, so a navigator being disabled was enabled until
    // now: the buttons' states are what enabling it again brings back.
    QList<QAction *> buttons;
    for (QAction *action : tbrBtm->actions())
        if (!action->isSeparator())
            buttons.append(action);
    if (rememberedButtons.size() != buttons.size())
        rememberedButtons = QList<bool>(buttons.size(), false);
    if (!enabled) {
        for (qsizetype i = 0; i < buttons.size(); ++i)
            rememberedButtons[i] = buttons[i]->isEnabled();
    }
    for (QAction *action : buttons)
        action->setEnabled(enabled);
    setEnableSort(enabled);
    setEnableFilter(enabled);
    setEnableFind(enabled);
    setEnableBrowse(enabled);
    if (enabled) {
        for (qsizetype i = 0; i < buttons.size(); ++i)
            buttons[i]->setEnabled(rememberedButtons[i]);
    }
}

void mvPLXRecsPrivate::obsolete(const QString &accessor) const
{
    showBox(accessor, MsgStyle::OKOnly, messageTitle());
}

qint32 mvPLXRecs::lDelayMS()
{
    d_ptr->trapped("lDelayMS", [&] {
        d_ptr->obsolete(QStringLiteral("Get_lDelayMS function no longer supported in PLXRecs"));
    });
    return 0;
}

void mvPLXRecs::setLDelayMS(qint32)
{
    d_ptr->trapped("setLDelayMS", [&] {
        d_ptr->obsolete(QStringLiteral("Let_lDelayMS function no longer supported in PLXRecs"));
    });
}

qint32 mvPLXRecs::lListIndex()
{
    d_ptr->trapped("lListIndex", [&] {
        d_ptr->obsolete(QStringLiteral("Get_lListIndex function no longer supported in PLXRecs"));
    });
    return 0;
}

void mvPLXRecs::setLListIndex(qint32)
{
    d_ptr->trapped("setLListIndex", [&] {
        d_ptr->obsolete(QStringLiteral("Let_lListIndex function no longer supported in PLXRecs"));
    });
}

QString mvPLXRecs::sButtonEnable(const QString &)
{
    d_ptr->trapped("sButtonEnable",
                   [&] { d_ptr->obsolete(QStringLiteral("sButtonEnable no longer used")); });
    return QString();
}

void mvPLXRecs::SetFindFromList(qint32)
{
    d_ptr->trapped("SetFindFromList", [&] {
        d_ptr->obsolete(QStringLiteral("SetFindFromList function no longer supported in PLXRecs"));
    });
}

} // namespace plx
