// dialogs/frmgrideditbare_columns.cpp: the grid's columns: the saved layout applied and
// written back, fitted widths, and the header's menu.
#include "dialogs/frmgrideditbare.h"

#include "dialogs/recordsourcetablemodel.h"
#include "mervane/twips.h"
#include "services/ini.h"
#include "services/widgets/formplacement.h"

#include <QHeaderView>
#include <QMenu>
#include <QTableView>

namespace plx {

namespace {

const QString kConfig = QStringLiteral("CONFIG");

// Characters a column of this field shows without cutting most values.
int fittedCharacters(const FieldInfo &field)
{
    switch (field.type) {
    case FieldType::Text: return qBound(4, field.size, 40);
    case FieldType::Memo: return 30;
    case FieldType::Integer: return 10;
    case FieldType::Numeric: return qBound(4, field.size, 16);
    case FieldType::Double: return 14;
    case FieldType::Boolean: return 6;
    case FieldType::Date: return 10;
    case FieldType::DateTime: return 19;
    case FieldType::Binary: return 8;
    }
    return 12;
}

} // namespace

int FrmGridEditBare::fittedWidth(int column) const
{
    const QFontMetrics metrics = m_grid->fontMetrics();
    const FieldInfo &field = m_cursor.fields().at(column);
    const int values = metrics.averageCharWidth() * fittedCharacters(field);
    const QString title = m_model->headerData(column, Qt::Horizontal).toString();
    const int header = m_grid->horizontalHeader()->fontMetrics().horizontalAdvance(title);
    return qMax(values, header) + 16;
}

void FrmGridEditBare::applyLayout(const GridLayout &layout)
{
    QHeaderView *header = m_grid->horizontalHeader();
    const int columns = m_model->columnCount();
    for (int c = 0; c < columns; ++c)
        m_grid->setColumnHidden(c, true);
    int shown = 0;
    for (const GridColumnEntry &entry : layout.columns()) {
        const int column = m_cursor.source().fieldIndex(entry.field);
        if (column < 0 || !m_grid->isColumnHidden(column))
            continue; // no such field (any more), or listed twice
        m_model->setHeaderData(column, Qt::Horizontal, entry.title);
        m_grid->setColumnHidden(column, false);
        header->moveSection(header->visualIndex(column), shown++);
        m_grid->setColumnWidth(column,
                               entry.widthTwips > 0
                                   ? qMax(8, twipsToPixelsX(m_grid, entry.widthTwips))
                                   : fittedWidth(column));
        if (entry.widthTwips > 0)
            m_layoutTwips.insert(column, entry.widthTwips);
    }
    // A grid with no column is no use: without a layout that names a field, every field
    // shows, in the table's order.
    if (shown == 0)
        showEveryField();
}

void FrmGridEditBare::showEveryField()
{
    QHeaderView *header = m_grid->horizontalHeader();
    for (int c = 0; c < m_model->columnCount(); ++c) {
        m_grid->setColumnHidden(c, false);
        header->moveSection(header->visualIndex(c), c);
        m_grid->setColumnWidth(c, fittedWidth(c));
    }
}

int FrmGridEditBare::firstVisibleColumn() const
{
    const QHeaderView *header = m_grid->horizontalHeader();
    for (int v = 0; v < header->count(); ++v) {
        const int column = header->logicalIndex(v);
        if (!header->isSectionHidden(column))
            return column;
    }
    return -1;
}

GridLayout FrmGridEditBare::currentLayout() const
{
    const QHeaderView *header = m_grid->horizontalHeader();
    QList<GridColumnEntry> columns;
    for (int v = 0; v < header->count(); ++v) {
        const int column = header->logicalIndex(v);
        if (header->isSectionHidden(column))
            continue;
        const int pixels = m_grid->columnWidth(column);
        const int given = m_layoutTwips.value(column, 0);
        const int twips = given > 0 && twipsToPixelsX(m_grid, given) == pixels
            ? given
            : pixelsToTwipsX(m_grid, pixels);
        columns.append({ m_cursor.fields().at(column).name,
                         m_model->headerData(column, Qt::Horizontal).toString(), twips });
    }
    return GridLayout(std::move(columns));
}

void FrmGridEditBare::restoreSelectedColumn()
{
    QString field;
    readINI(kConfig, selectedColumnKey(m_setup.layoutKey), m_settingsFile, field, QString());
    const int column = m_cursor.source().fieldIndex(field);
    if (column >= 0 && !m_grid->isColumnHidden(column) && m_cursor.count() > 0)
        m_grid->selectColumn(column);
}

void FrmGridEditBare::saveSettings()
{
    if (m_setup.layoutKey.trimmed().isEmpty())
        return;
    writeINI(kConfig, m_setup.layoutKey, m_settingsFile, currentLayout().toString());
    int selected = 0;
    const int column = selectedColumn(&selected);
    writeINI(kConfig, selectedColumnKey(m_setup.layoutKey), m_settingsFile,
             selected == 1 ? m_cursor.fields().at(column).name : QString());
    saveFormPlacement(this, QString(), m_settingsFile);
}

void FrmGridEditBare::showHeaderMenu(const QPoint &at)
{
    QHeaderView *header = m_grid->horizontalHeader();
    const int clicked = header->logicalIndexAt(at);
    QMenu menu(this);
    if (clicked >= 0) {
        const QString title = m_model->headerData(clicked, Qt::Horizontal).toString();
        QAction *hide = menu.addAction(tr("Hide \"%1\"").arg(title));
        hide->setEnabled(header->count() - header->hiddenSectionCount() > 1);
        connect(hide, &QAction::triggered, this,
                [this, clicked] { m_grid->setColumnHidden(clicked, true); });
        menu.addAction(tr("Fit width"), this,
                       [this, clicked] { m_grid->setColumnWidth(clicked, fittedWidth(clicked)); });
        menu.addSeparator();
    }
    QMenu *columns = menu.addMenu(tr("Columns"));
    for (int c = 0; c < m_model->columnCount(); ++c) {
        QAction *toggle = columns->addAction(m_model->headerData(c, Qt::Horizontal).toString());
        toggle->setCheckable(true);
        toggle->setChecked(!m_grid->isColumnHidden(c));
        connect(toggle, &QAction::toggled, this, [this, c](bool show) {
            // The last column shown stays: a grid without columns cannot be searched.
            if (show
                || m_grid->horizontalHeader()->hiddenSectionCount() + 1 < m_model->columnCount())
                m_grid->setColumnHidden(c, !show);
            if (show && m_grid->columnWidth(c) < 8)
                m_grid->setColumnWidth(c, fittedWidth(c));
        });
    }
    menu.addAction(tr("Show all columns"), this, [this] {
        for (int c = 0; c < m_model->columnCount(); ++c) {
            if (m_grid->isColumnHidden(c)) {
                m_grid->setColumnHidden(c, false);
                m_grid->setColumnWidth(c, fittedWidth(c));
            }
        }
    });
    menu.exec(header->viewport()->mapToGlobal(at));
}

} // namespace plx
