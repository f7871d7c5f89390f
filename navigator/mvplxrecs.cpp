// navigator/mvplxrecs.cpp: the navigator's children, their layout and wiring, and the
// plain properties. The record work lives in the files beside this one, one per concern.
#include "navigator/mvplxrecs.h"

#include "dialogs/floatingmessage.h"
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

mvPLXRecs::mvPLXRecs(QWidget *parent) : QWidget(parent)
{
    setObjectName(QStringLiteral("mvPLXRecs"));
    buildChildren();
    buildToolbar();
    m_floating = new FloatingMessage(this);
    // On creation: an empty sort list and a scroll bar that waits for a record source.
    m_cboSort->clear();
    m_hscroll->setEnabled(false);
    refreshCountDisplay();
}

mvPLXRecs::~mvPLXRecs()
{
    // The floating message is a top-level window parented to the host's window; it goes
    // with the navigator.
    delete m_floating;
}

void mvPLXRecs::buildChildren()
{
    m_cboSort = combo(this, "cboSort", false);
    m_cboFind = combo(this, "cboFind", true);
    m_cboFilter = combo(this, "cboFilter", false);
    setUpFindBox(m_cboFind, this);
    m_cboSort->setToolTip(tr("Sort order"));
    m_cboFilter->setToolTip(tr("Saved filters"));

    m_cmdFind =
        iconButton(this, "cmdFind", QStyle::SP_FileDialogContentsView, tr("View search results"));
    m_cmdFind->setEnabled(false);
    m_cmdFilter = iconButton(this, "cmdFilter", QStyle::SP_FileDialogDetailedView,
                             tr("Edit the saved filters"));
    m_cmdBrowse =
        iconButton(this, "cmdBrowse", QStyle::SP_FileDialogListView, tr("Browse entire database"));
    m_cmdRecBack = iconButton(this, "cmdRecBack", QStyle::SP_ArrowBack, tr("Previous record"));
    m_cmdRecNext = iconButton(this, "cmdRecNext", QStyle::SP_ArrowForward, tr("Next record"));
    repeatWhileHeld(m_cmdRecBack);
    repeatWhileHeld(m_cmdRecNext);

    m_lblSort = buddyLabel(this, "lblSort", tr("&Sort"), m_cboSort);
    m_lblFind = buddyLabel(this, "lblFind", tr("F&ind"), m_cboFind);
    m_lblFind->setEnabled(false);
    m_lblFilter = buddyLabel(this, "lblFilter", tr("Fi&lter"), m_cboFilter);
    m_lblBrowse = buddyLabel(this, "lblBrowse", tr("Bro&wse"), m_cmdBrowse);

    m_hscroll = new QScrollBar(Qt::Horizontal, this);
    m_hscroll->setObjectName(QStringLiteral("HScroll1"));
    m_hscroll->setToolTip(tr("Record position"));
    m_hscroll->setFocusPolicy(Qt::StrongFocus);
    m_fraControls = stepFrame(this, m_cmdRecBack, m_hscroll, m_cmdRecNext);
    m_hscroll->setParent(m_fraControls);
    m_cmdRecBack->setParent(m_fraControls);
    m_cmdRecNext->setParent(m_fraControls);

    QGridLayout *grid = gridOf({ { m_lblSort, 0, 0 },
                                 { m_cboSort, 0, 1 },
                                 { m_lblFilter, 0, 2 },
                                 { m_cboFilter, 0, 3 },
                                 { m_cmdFilter, 0, 4 },
                                 { m_lblFind, 1, 0 },
                                 { m_cboFind, 1, 1, 3 },
                                 { m_cmdFind, 1, 4 },
                                 { m_lblBrowse, 1, 5 },
                                 { m_cmdBrowse, 1, 6 } });
    grid->setColumnStretch(1, 3);
    grid->setColumnStretch(3, 2);

    auto *outer = new QVBoxLayout(this);
    outer->setContentsMargins(0, 0, 0, 0);
    outer->setSpacing(4);
    outer->addLayout(grid);
    outer->addWidget(m_fraControls);

    connect(m_cboSort, &QComboBox::activated, this, &mvPLXRecs::sortClicked);
    connect(m_cboFind, &QComboBox::activated, this, &mvPLXRecs::findActivated);
    connect(m_cboFilter, &QComboBox::currentIndexChanged, this, &mvPLXRecs::filterClicked);
    connect(m_cmdFilter, &QPushButton::clicked, this, &mvPLXRecs::filterButtonClicked);
    connect(m_cmdFind, &QPushButton::clicked, this, [this] { findEnter(); });
    connect(m_cmdRecBack, &QPushButton::clicked, this, [this] { stepClicked(false); });
    connect(m_cmdRecNext, &QPushButton::clicked, this, [this] { stepClicked(true); });
    connect(m_hscroll, &QScrollBar::valueChanged, this, &mvPLXRecs::hscrollChanged);

    // Keyboard order: sort, find, filter, browse, then stepping and the commands.
    setTabChain({ m_cboSort, m_cboFind, m_cmdFind, m_cboFilter, m_cmdFilter, m_cmdBrowse,
                  m_cmdRecBack, m_hscroll, m_cmdRecNext });
}

void mvPLXRecs::buildToolbar()
{
    m_tbrBtm = new QToolBar(this);
    m_tbrBtm->setObjectName(QStringLiteral("tbrBtm"));
    m_tbrBtm->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    m_tbrBtm->setIconSize(QSize(16, 16));
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
            m_tbrBtm->addSeparator();
        QAction *action = m_tbrBtm->addAction(style()->standardIcon(button.icon),
                                              QString::fromLatin1(button.caption));
        action->setObjectName(QString::fromLatin1(button.key));
        action->setToolTip(button.tip);
        action->setEnabled(button.enabledAtStart);
    }
    connect(m_tbrBtm, &QToolBar::actionTriggered, this, &mvPLXRecs::toolbarClicked);
    layout()->addWidget(m_tbrBtm);
}

bool mvPLXRecs::eventFilter(QObject *watched, QEvent *event)
{
    if ((watched == m_cboFind || watched == m_cboFind->lineEdit())
        && event->type() == QEvent::KeyPress)
        return handleFindKey(static_cast<QKeyEvent *>(event));
    return QWidget::eventFilter(watched, event);
}

void mvPLXRecs::showBox(const QString &text, int style, const QString &title)
{
    prompterOf(m_services).msgBox(text, style, title);
}

void mvPLXRecs::pump()
{
    uiPumpOf(m_services).processEvents();
}

void mvPLXRecs::idle()
{
    if (m_db)
        m_db->Idle();
}

QString mvPLXRecs::messageTitle() const
{
    return QStringLiteral("mvPLXRecs ") + m_sDesc;
}

void mvPLXRecs::setCMervaneControls(const QList<BoundControl *> &controls)
{
    m_mervane = controls;
    m_mervaneObjects.clear();
    m_mervaneTracked.clear();
    for (BoundControl *control : controls) {
        auto *object = dynamic_cast<QObject *>(control);
        m_mervaneObjects.append(object);
        m_mervaneTracked.append(object != nullptr);
    }
    lendServicesToFields();
    shareRsWithFields();
}

void mvPLXRecs::setServices(Services *services)
{
    m_services = services;
    lendServicesToFields();
}

void mvPLXRecs::lendServicesToFields()
{
    // Field controls the host gave no services of their own show their boxes through the
    // navigator's, like the navigator's own boxes.
    for (BoundControl *control : cMervaneControls())
        if (!control->services() || control->services() == m_lentServices)
            control->setServices(m_services);
    m_lentServices = m_services;
}

QList<BoundControl *> mvPLXRecs::cMervaneControls() const
{
    // A field control the host deleted drops out of the collection.
    QList<BoundControl *> alive;
    for (qsizetype i = 0; i < m_mervane.size(); ++i)
        if (!m_mervaneTracked[i] || m_mervaneObjects[i])
            alive.append(m_mervane[i]);
    return alive;
}

void mvPLXRecs::setCOtherControls(const QList<QWidget *> &controls)
{
    m_others.clear();
    for (QWidget *widget : controls)
        m_others.append(widget);
}

QList<QWidget *> mvPLXRecs::cOtherControls() const
{
    QList<QWidget *> alive;
    for (const QPointer<QWidget> &widget : m_others)
        if (widget)
            alive.append(widget);
    return alive;
}

void mvPLXRecs::setEnableFind(bool enable)
{
    m_enableFind = enable;
    m_lblFind->setEnabled(enable);
    m_cboFind->setEnabled(enable);
    m_cmdFind->setEnabled(enable);
}

void mvPLXRecs::setEnableSort(bool enable)
{
    m_enableSort = enable;
    m_lblSort->setEnabled(enable);
    m_cboSort->setEnabled(enable);
}

void mvPLXRecs::setEnableFilter(bool enable)
{
    m_enableFilter = enable;
    m_lblFilter->setEnabled(enable);
    m_cboFilter->setEnabled(enable);
    m_cmdFilter->setEnabled(enable);
}

void mvPLXRecs::setEnableBrowse(bool enable)
{
    m_enableBrowse = enable;
    m_lblBrowse->setEnabled(enable);
    m_cmdBrowse->setEnabled(enable);
}

void mvPLXRecs::setEnabled(bool enabled)
{
    const QList<QAction *> buttons = m_tbrBtm->actions();
    QList<QAction *> real;
    for (QAction *action : buttons)
        if (!action->isSeparator())
            real.append(action);
    if (m_rememberedButtons.size() != real.size())
        m_rememberedButtons = QList<bool>(real.size(), false);
    if (isEnabled()) {
        for (qsizetype i = 0; i < real.size(); ++i)
            m_rememberedButtons[i] = real[i]->isEnabled();
    }
    QWidget::setEnabled(enabled);
    for (QAction *action : real)
        action->setEnabled(enabled);
    setEnableSort(enabled);
    setEnableFilter(enabled);
    setEnableFind(enabled);
    setEnableBrowse(enabled);
    if (enabled && m_rememberedButtons.size() == real.size()) {
        for (qsizetype i = 0; i < real.size(); ++i)
            real[i]->setEnabled(m_rememberedButtons[i]);
    }
}

void mvPLXRecs::obsolete(const QString &accessor)
{
    showBox(accessor, MsgStyle::OKOnly, messageTitle());
}

qint32 mvPLXRecs::lDelayMS()
{
    obsolete(QStringLiteral("Get_lDelayMS function no longer supported in PLXRecs"));
    return 0;
}

void mvPLXRecs::setLDelayMS(qint32)
{
    obsolete(QStringLiteral("Let_lDelayMS function no longer supported in PLXRecs"));
}

qint32 mvPLXRecs::lListIndex()
{
    obsolete(QStringLiteral("Get_lListIndex function no longer supported in PLXRecs"));
    return 0;
}

void mvPLXRecs::setLListIndex(qint32)
{
    obsolete(QStringLiteral("Let_lListIndex function no longer supported in PLXRecs"));
}

QString mvPLXRecs::sButtonEnable(const QString &)
{
    obsolete(QStringLiteral("sButtonEnable no longer used"));
    return QString();
}

void mvPLXRecs::SetFindFromList(qint32)
{
    obsolete(QStringLiteral("SetFindFromList function no longer supported in PLXRecs"));
}

} // namespace plx
