// dialogs/listselect.cpp
#include "dialogs/listselect.h"

#include <QDialogButtonBox>
#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>

namespace plx {

namespace {

QPushButton *arrowButton(const QString &text, const char *name, const QString &tip)
{
    auto *b = new QPushButton(text);
    b->setObjectName(QString::fromLatin1(name));
    b->setToolTip(tip);
    b->setAutoDefault(false);
    b->setMaximumWidth(64);
    return b;
}

// The rows of `list` to move: the selected ones in row order, else the current one.
QList<int> rowsToMove(const QListWidget *list)
{
    QList<int> rows;
    for (const QListWidgetItem *item : list->selectedItems())
        if (!item->isHidden())
            rows << list->row(item);
    if (rows.isEmpty() && list->currentItem() && !list->currentItem()->isHidden())
        rows << list->currentRow();
    std::sort(rows.begin(), rows.end());
    return rows;
}

QStringList textsOf(const QListWidget *list)
{
    QStringList texts;
    for (int i = 0; i < list->count(); ++i)
        texts << list->item(i)->text();
    return texts;
}

QListWidget *makeList(const char *name)
{
    auto *list = new QListWidget;
    list->setObjectName(QString::fromLatin1(name));
    list->setSelectionMode(QAbstractItemView::ExtendedSelection);
    list->setUniformItemSizes(true);
    return list;
}

} // namespace

ListSelectDialog::ListSelectDialog(QWidget *parent) : QDialog(parent)
{
    setObjectName(QStringLiteral("frmListSelect"));
    setWindowTitle(QStringLiteral("Select and Order"));
    build();
    resize(520, 420);
}

void ListSelectDialog::build()
{
    m_filter = new QLineEdit;
    m_filter->setObjectName(QStringLiteral("txtFilter"));
    m_filter->setPlaceholderText(QStringLiteral("Filter"));
    m_filter->setClearButtonEnabled(true);
    m_available = makeList("lstAvailable");
    m_chosen = makeList("lstChosen");
    for (QListWidget *list : { m_available, m_chosen }) {
        list->installEventFilter(this);
        list->viewport()->installEventFilter(this);
    }
    auto *choose =
        arrowButton(QStringLiteral(">"), "cmdChoose", QStringLiteral("Add the selected items"));
    auto *chooseAll =
        arrowButton(QStringLiteral(">>"), "cmdChooseAll", QStringLiteral("Add every item shown"));
    auto *unchoose = arrowButton(QStringLiteral("<"), "cmdUnchoose",
                                 QStringLiteral("Take the selected items out"));
    auto *unchooseAll =
        arrowButton(QStringLiteral("<<"), "cmdUnchooseAll", QStringLiteral("Take every item out"));
    auto *up = arrowButton(QStringLiteral("Up"), "cmdUp",
                           QStringLiteral("Move the selected items up (Ctrl+Up)"));
    auto *down = arrowButton(QStringLiteral("Down"), "cmdDown",
                             QStringLiteral("Move the selected items down (Ctrl+Down)"));
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);

    auto *arrows = new QVBoxLayout;
    arrows->addStretch();
    for (QPushButton *b : { choose, chooseAll, unchoose, unchooseAll })
        arrows->addWidget(b);
    arrows->addStretch();
    auto *order = new QVBoxLayout;
    order->addStretch();
    order->addWidget(up);
    order->addWidget(down);
    order->addStretch();
    auto *grid = new QGridLayout(this);
    grid->addWidget(new QLabel(QStringLiteral("Available")), 0, 0);
    grid->addWidget(new QLabel(QStringLiteral("Chosen, in order")), 1, 2, Qt::AlignBottom);
    grid->addWidget(m_filter, 1, 0);
    grid->addWidget(m_available, 2, 0);
    grid->addLayout(arrows, 2, 1);
    grid->addWidget(m_chosen, 2, 2);
    grid->addLayout(order, 2, 3);
    grid->addWidget(buttons, 3, 0, 1, 4);
    grid->setRowStretch(2, 1);

    connect(m_filter, &QLineEdit::textChanged, this, &ListSelectDialog::applyFilter);
    connect(choose, &QPushButton::clicked, this, &ListSelectDialog::Choose);
    connect(chooseAll, &QPushButton::clicked, this, &ListSelectDialog::ChooseAll);
    connect(unchoose, &QPushButton::clicked, this, &ListSelectDialog::Unchoose);
    connect(unchooseAll, &QPushButton::clicked, this, &ListSelectDialog::UnchooseAll);
    connect(up, &QPushButton::clicked, this, &ListSelectDialog::MoveUp);
    connect(down, &QPushButton::clicked, this, &ListSelectDialog::MoveDown);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
}

void ListSelectDialog::setItems(const QStringList &all, const QStringList &chosen)
{
    m_all.clear();
    for (const QString &item : all)
        if (!m_all.contains(item))
            m_all << item;
    m_chosen->clear();
    for (const QString &item : chosen)
        if (m_all.contains(item) && m_chosen->findItems(item, Qt::MatchExactly).isEmpty())
            m_chosen->addItem(item);
    fillAvailable(m_all);
}

void ListSelectDialog::fillAvailable(const QStringList &items)
{
    const QStringList chosen = textsOf(m_chosen);
    m_available->clear();
    for (const QString &item : items)
        if (!chosen.contains(item))
            m_available->addItem(item);
    applyFilter();
}

QStringList ListSelectDialog::chosenItems() const
{
    return textsOf(m_chosen);
}

QStringList ListSelectDialog::availableItems() const
{
    return textsOf(m_available);
}

void ListSelectDialog::setFilterText(const QString &text)
{
    m_filter->setText(text);
}

void ListSelectDialog::applyFilter()
{
    const QString text = m_filter->text().trimmed();
    for (int i = 0; i < m_available->count(); ++i) {
        QListWidgetItem *item = m_available->item(i);
        item->setHidden(!item->text().contains(text, Qt::CaseInsensitive));
    }
}

void ListSelectDialog::Choose()
{
    const QList<int> rows = rowsToMove(m_available);
    m_chosen->clearSelection();
    for (int row : rows) {
        m_chosen->addItem(m_available->item(row)->text());
        m_chosen->item(m_chosen->count() - 1)->setSelected(true);
    }
    for (qsizetype i = rows.size() - 1; i >= 0; --i) // bottom up: rows above stay put
        delete m_available->takeItem(rows.at(i));
    if (!rows.isEmpty())
        m_chosen->setCurrentRow(m_chosen->count() - 1, QItemSelectionModel::NoUpdate);
}

void ListSelectDialog::ChooseAll()
{
    m_available->clearSelection();
    for (int i = 0; i < m_available->count(); ++i)
        m_available->item(i)->setSelected(!m_available->item(i)->isHidden());
    if (!m_available->selectedItems().isEmpty())
        Choose();
}

void ListSelectDialog::Unchoose()
{
    const QList<int> rows = rowsToMove(m_chosen);
    for (qsizetype i = rows.size() - 1; i >= 0; --i) // bottom up: rows above stay put
        delete m_chosen->takeItem(rows.at(i));
    fillAvailable(m_all);
}

void ListSelectDialog::UnchooseAll()
{
    m_chosen->clear();
    fillAvailable(m_all);
}

void ListSelectDialog::MoveUp()
{
    moveChosen(-1);
}

void ListSelectDialog::MoveDown()
{
    moveChosen(1);
}

void ListSelectDialog::moveChosen(int step)
{
    QList<int> rows = rowsToMove(m_chosen);
    if (rows.isEmpty() || (step < 0 && rows.first() == 0)
        || (step > 0 && rows.last() == m_chosen->count() - 1))
        return; // the block is at the edge already
    if (step > 0)
        std::reverse(rows.begin(), rows.end());
    for (int row : rows) {
        QListWidgetItem *item = m_chosen->takeItem(row);
        m_chosen->insertItem(row + step, item);
        item->setSelected(true);
    }
    m_chosen->setCurrentRow(rows.first() + step, QItemSelectionModel::NoUpdate);
}

bool ListSelectDialog::eventFilter(QObject *watched, QEvent *event)
{
    const bool inAvailable = watched == m_available || watched == m_available->viewport();
    const bool inChosen = watched == m_chosen || watched == m_chosen->viewport();
    if (event->type() == QEvent::MouseButtonDblClick && (inAvailable || inChosen)) {
        auto *list = inAvailable ? m_available : m_chosen;
        const QModelIndex at =
            list->indexAt(static_cast<QMouseEvent *>(event)->position().toPoint());
        if (!at.isValid())
            return false;
        list->setCurrentRow(at.row(), QItemSelectionModel::ClearAndSelect);
        inAvailable ? Choose() : Unchoose();
        return true;
    }
    if (event->type() != QEvent::KeyPress)
        return QDialog::eventFilter(watched, event);
    const auto *key = static_cast<QKeyEvent *>(event);
    const bool ctrl = key->modifiers().testFlag(Qt::ControlModifier);
    if (watched == m_available && (key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter)) {
        Choose();
        return true;
    }
    if (watched == m_chosen && key->key() == Qt::Key_Delete) {
        Unchoose();
        return true;
    }
    if (watched == m_chosen && ctrl && (key->key() == Qt::Key_Up || key->key() == Qt::Key_Down)) {
        moveChosen(key->key() == Qt::Key_Up ? -1 : 1);
        return true;
    }
    return QDialog::eventFilter(watched, event);
}

} // namespace plx
