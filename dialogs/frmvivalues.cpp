// dialogs/frmvivalues.cpp: the editor's frames and controls, its placement, its list file
// and the keys of its list.
#include "dialogs/frmvivalues.h"

#include "dialogs/valuelist_p.h"

#include "services/widgets/formplacement.h"

#include <QGroupBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QListWidget>
#include <QMouseEvent>
#include <QPushButton>
#include <QVBoxLayout>

namespace plx {

namespace {

QPushButton *makeButton(QWidget *parent, const char *name, const QString &caption,
                        const QString &tip)
{
    auto *b = new QPushButton(caption, parent);
    b->setObjectName(QString::fromLatin1(name));
    b->setToolTip(tip);
    // Enter belongs to the list (it inserts); no button may take it as the default.
    b->setAutoDefault(false);
    return b;
}

QGroupBox *makeFrame(QWidget *parent, const char *name, const QString &caption)
{
    auto *f = new QGroupBox(caption, parent);
    f->setObjectName(QString::fromLatin1(name));
    return f;
}

} // namespace

frmVIValues::frmVIValues(QWidget *parent) : QDialog(parent)
{
    setObjectName(QStringLiteral("frmVIValues"));
    setWindowTitle(QStringLiteral("Value Item List"));
    setModal(true);
    buildFrames();
    resize(380, 440);
}

frmVIValues::~frmVIValues() = default;

void frmVIValues::buildFrames()
{
    m_fraValList = makeFrame(this, "fraValList", QStringLiteral("Value List"));
    m_cmdAdd = makeButton(m_fraValList, "cmdAdd", QStringLiteral("&Add"),
                          QStringLiteral("Add a new value to the list"));
    m_cmdDel = makeButton(m_fraValList, "cmdDel", QStringLiteral("&Delete"),
                          QStringLiteral("Delete the selected value from the list"));
    auto *listRow = new QHBoxLayout(m_fraValList);
    listRow->addWidget(m_cmdAdd);
    listRow->addWidget(m_cmdDel);
    listRow->addStretch();

    m_fraVariable = makeFrame(this, "fraVariable", QStringLiteral("Variable"));
    m_cmdInsert = makeButton(m_fraVariable, "cmdInsert", QStringLiteral("&Insert"),
                             QStringLiteral("Insert selected value into data"));
    m_cmdRemove = makeButton(m_fraVariable, "cmdRemove", QStringLiteral("&Remove"),
                             QStringLiteral("Remove selected valuefrom data"));
    m_cmdCancel = makeButton(m_fraVariable, "cmdCancel", QStringLiteral("&Cancel"),
                             QStringLiteral("Remove selected valuefrom data"));
    m_label1 = new QLabel(QStringLiteral("Current Data Value"), m_fraVariable);
    m_label1->setObjectName(QStringLiteral("Label1"));
    m_label1->setFrameShape(QFrame::StyledPanel);
    m_label1->setTextInteractionFlags(Qt::TextSelectableByMouse);
    // A long data value must not widen the editor: it is cut at the frame's edge.
    m_label1->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    m_label1->setMinimumHeight(m_label1->sizeHint().height() + 6);
    auto *buttons = new QHBoxLayout;
    buttons->addWidget(m_cmdInsert);
    buttons->addWidget(m_cmdRemove);
    buttons->addStretch();
    buttons->addWidget(m_cmdCancel);
    auto *variable = new QVBoxLayout(m_fraVariable);
    variable->addLayout(buttons);
    variable->addWidget(m_label1);

    m_fraList = makeFrame(this, "fraList", QStringLiteral("Values"));
    m_list1 = new QListWidget(m_fraList);
    m_list1->setObjectName(QStringLiteral("List1"));
    m_list1->setUniformItemSizes(true);
    m_list1->installEventFilter(this);
    m_list1->viewport()->installEventFilter(this);
    (new QVBoxLayout(m_fraList))->addWidget(m_list1);

    // Stacked top to bottom; the values frame takes the height that is left, all take the
    // width.
    auto *stack = new QVBoxLayout(this);
    stack->addWidget(m_fraValList);
    stack->addWidget(m_fraVariable);
    stack->addWidget(m_fraList, 1);

    connect(m_cmdAdd, &QAbstractButton::clicked, this, &frmVIValues::Add);
    connect(m_cmdDel, &QAbstractButton::clicked, this, &frmVIValues::Delete);
    connect(m_cmdInsert, &QAbstractButton::clicked, this, &frmVIValues::Insert);
    connect(m_cmdRemove, &QAbstractButton::clicked, this, &frmVIValues::Remove);
    connect(m_cmdCancel, &QAbstractButton::clicked, this, &frmVIValues::Cancel);
}

void frmVIValues::setSValue(const QString &value)
{
    m_value = value;
    m_label1->setText(value);
}

void frmVIValues::InitForm()
{
    // The first opening, with nothing saved yet, keeps the editor centred over its form.
    if (const QWidget *owner = parentWidget() ? parentWidget()->window() : nullptr)
        move(owner->frameGeometry().center() - rect().center());
    else
        setFormCenter(this);
    restoreFormPlacement(this, QString(), QString());
    m_list1->clear();
    m_list1->addItems(valuelist::load({ m_file, m_section, m_key }));
}

QStringList frmVIValues::entries() const
{
    QStringList all;
    all.reserve(m_list1->count());
    for (int i = 0; i < m_list1->count(); ++i)
        all << m_list1->item(i)->text();
    return all;
}

void frmVIValues::saveList() const
{
    (void)valuelist::save({ m_file, m_section, m_key }, entries());
}

void frmVIValues::done(int result)
{
    (void)saveFormPlacement(this, QString(), QString());
    QDialog::done(result);
}

bool frmVIValues::eventFilter(QObject *watched, QEvent *event)
{
    // Enter (with an entry selected) and a double click on an entry are Insert. Both are
    // taken here, whole: the list would otherwise pass Enter on to the dialog, and it reports
    // a double click only when it saw the press before it.
    if (watched == m_list1 && event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent *>(event)->key();
        if (key == Qt::Key_Return || key == Qt::Key_Enter) {
            const int row = m_list1->currentRow();
            if (row >= 0 && row < m_list1->count())
                Insert();
            return true;
        }
    }
    if (watched == m_list1->viewport() && event->type() == QEvent::MouseButtonDblClick) {
        const auto *click = static_cast<QMouseEvent *>(event);
        const QModelIndex at = m_list1->indexAt(click->position().toPoint());
        if (click->button() == Qt::LeftButton && at.isValid()) {
            m_list1->setCurrentRow(at.row());
            Insert();
            return true;
        }
    }
    return QDialog::eventFilter(watched, event);
}

} // namespace plx
