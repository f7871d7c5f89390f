// dialogs/frmgrideditbare.cpp: the form, its children, opening and closing. The columns
// (layout, header menu) are in frmgrideditbare_columns.cpp, the column Find in
// frmgrideditbare_find.cpp.
#include "dialogs/frmgrideditbare.h"

#include "dialogs/recordsourcetablemodel.h"
#include "services/ini.h"
#include "services/widgets/formplacement.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QPushButton>
#include <QTableView>
#include <QVBoxLayout>

namespace plx {

namespace {

QPushButton *button(QWidget *parent, const char *name, const QString &text)
{
    auto *b = new QPushButton(text, parent);
    b->setObjectName(QString::fromLatin1(name));
    // Enter belongs to the grid (choose the row) unless the user tabbed to a button.
    b->setAutoDefault(false);
    return b;
}

} // namespace

FrmGridEditBare::FrmGridEditBare(Setup setup, QWidget *parent)
    : QDialog(parent), m_setup(std::move(setup)), m_cursor(m_setup.records)
{
    setObjectName(QStringLiteral("frmGridEditBare"));
    setWindowTitle(m_setup.caption);
    setModal(true);
    m_settingsFile = m_setup.settingsFile;
    buildChildren();
    QString value;
    // A blank settings file means the defaults file, for reading and writing alike.
    getINIString(QStringLiteral("CONFIG"), m_setup.layoutKey, QString(), m_settingsFile);
    readINI(QStringLiteral("CONFIG"), m_setup.layoutKey, m_settingsFile, value, QString());
    applyLayout(GridLayout::parse(value));
    restoreSelectedColumn();
    resize(760, 460);
    restoreFormPlacement(this, QString(), m_settingsFile);
    qint32 start = m_setup.startRow;
    if (start < 0 && !m_setup.startCriterion.isEmpty())
        start = m_cursor.locate(m_setup.startCriterion).value_or(-1);
    startOn(start);
    m_grid->setFocus(Qt::OtherFocusReason);
}

FrmGridEditBare::~FrmGridEditBare() = default;

QString FrmGridEditBare::selectedColumnKey(const QString &layoutKey)
{
    return layoutKey + QStringLiteral(" ColSel");
}

void FrmGridEditBare::buildChildren()
{
    m_grid = new QTableView(this);
    m_grid->setObjectName(QStringLiteral("tdbGrid"));
    m_grid->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_grid->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_grid->setWordWrap(false);
    m_grid->setAlternatingRowColors(true);
    m_grid->setCornerButtonEnabled(false);
    // Every row is one line high: the view then places a row by arithmetic, never by
    // measuring the rows before it.
    QHeaderView *rows = m_grid->verticalHeader();
    rows->setSectionResizeMode(QHeaderView::Fixed);
    rows->setDefaultSectionSize(m_grid->fontMetrics().height() + 8);
    rows->hide();
    // Set up the rows before the model comes, so the header lays out its million sections
    // once.
    m_model = new RecordSourceTableModel(&m_cursor, m_grid);
    m_grid->setModel(m_model);
    QHeaderView *columns = m_grid->horizontalHeader();
    columns->setSectionsMovable(true);
    columns->setHighlightSections(true);
    columns->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(columns, &QHeaderView::customContextMenuRequested, this,
            &FrmGridEditBare::showHeaderMenu);
    connect(m_grid->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            [this](const QModelIndex &current) {
                m_cursor.setPosition(current.row());
                m_model->setCurrentRow(current.row());
            });
    connect(m_grid, &QTableView::doubleClicked, this, [this](const QModelIndex &index) {
        if (index.isValid())
            accept();
    });
    m_grid->installEventFilter(this);

    m_find = button(this, "cmdFind", tr("&Find..."));
    m_find->setToolTip(tr("Find a value in the selected column"));
    connect(m_find, &QPushButton::clicked, this, &FrmGridEditBare::findClicked);
    QPushButton *go = button(this, "cmdGoTo", tr("&Go to record"));
    connect(go, &QPushButton::clicked, this, &QDialog::accept);
    QPushButton *cancel = button(this, "cmdCancel", tr("Cancel"));
    connect(cancel, &QPushButton::clicked, this, [this] {
        m_chooseNothing = true;
        reject();
    });

    auto *buttons = new QHBoxLayout;
    buttons->addWidget(m_find);
    buttons->addStretch(1);
    buttons->addWidget(go);
    buttons->addWidget(cancel);
    auto *outer = new QVBoxLayout(this);
    outer->addWidget(m_grid, 1);
    outer->addLayout(buttons);
}

void FrmGridEditBare::startOn(qint32 row)
{
    if (m_cursor.count() < 1)
        return;
    const qint32 start = row >= 0 && row < m_cursor.count() ? row : 0;
    const int column = firstVisibleColumn();
    if (column < 0)
        return;
    m_grid->selectionModel()->setCurrentIndex(m_model->index(start, column),
                                              QItemSelectionModel::NoUpdate);
    m_grid->scrollTo(m_model->index(start, column), QAbstractItemView::PositionAtCenter);
}

void FrmGridEditBare::showEvent(QShowEvent *event)
{
    QDialog::showEvent(event);
    // Only now does the grid know how many rows it shows: centre the current one again.
    if (m_grid->currentIndex().isValid())
        m_grid->scrollTo(m_grid->currentIndex(), QAbstractItemView::PositionAtCenter);
}

void FrmGridEditBare::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape && event->modifiers() == Qt::NoModifier)
        m_chooseNothing = true;
    QDialog::keyPressEvent(event);
}

bool FrmGridEditBare::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_grid && event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent *>(event)->key();
        if (key == Qt::Key_Return || key == Qt::Key_Enter) {
            if (m_grid->currentIndex().isValid())
                accept();
            return true;
        }
    }
    return QDialog::eventFilter(watched, event);
}

void FrmGridEditBare::done(int result)
{
    if (!m_closed) {
        m_closed = true;
        const QModelIndex current = m_grid->currentIndex();
        m_chosenRow = m_chooseNothing || !current.isValid() ? -1 : current.row();
        saveSettings();
    }
    QDialog::done(result);
}

QVariant FrmGridEditBare::chosenValue(const QString &field)
{
    if (m_chosenRow < 0)
        return {};
    m_cursor.setPosition(m_chosenRow);
    return m_cursor.value(field);
}

} // namespace plx
