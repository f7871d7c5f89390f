// dialogs/recordsourcetablemodel.cpp
#include "dialogs/recordsourcetablemodel.h"

#include "mervane/valueformat.h"

#include <QFont>

#include <algorithm>

namespace plx {

namespace {

bool isNumber(FieldType type)
{
    return type == FieldType::Integer || type == FieldType::Numeric || type == FieldType::Double;
}

} // namespace

RecordSourceTableModel::RecordSourceTableModel(RecordCursor *cursor, QObject *parent)
    : QAbstractTableModel(parent), m_cursor(cursor)
{
    for (const FieldInfo &field : m_cursor->fields())
        m_titles.append(field.name);
}

int RecordSourceTableModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : m_cursor->count();
}

int RecordSourceTableModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_titles.size());
}

QString RecordSourceTableModel::cellText(const QVariant &value, const FieldInfo &field)
{
    QString text = formatFieldValue(value, field, QString());
    if (field.type == FieldType::Memo || field.type == FieldType::Text) {
        // A grid row is one line high: a memo shows its first line.
        const auto lineEnd = std::find_if(text.cbegin(), text.cend(), [](QChar c) {
            return c == QLatin1Char('\r') || c == QLatin1Char('\n');
        });
        if (lineEnd != text.cend())
            text.truncate(lineEnd - text.cbegin());
    }
    return text;
}

QVariant RecordSourceTableModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.column() >= columnCount())
        return {};
    if (role == Qt::TextAlignmentRole) {
        const bool number = isNumber(m_cursor->fields().at(index.column()).type);
        return QVariant::fromValue((number ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);
    }
    if (role == Qt::FontRole) {
        if (index.row() != m_currentRow)
            return {};
        QFont bold;
        bold.setBold(true);
        return bold;
    }
    if (role != Qt::DisplayRole && role != Qt::ToolTipRole)
        return {};
    const Batch *batch = batchFor(index.row());
    if (!batch)
        return QString();
    const qsizetype cell = qsizetype(index.row() % kBatchRows) * columnCount() + index.column();
    return batch->cells.value(cell);
}

const RecordSourceTableModel::Batch *RecordSourceTableModel::batchFor(qint32 row) const
{
    const qint32 key = row / kBatchRows;
    auto found = m_batches.find(key);
    if (found != m_batches.end()) {
        found->lastUse = ++m_useClock;
        return &*found;
    }
    if (m_batches.size() >= kKeptBatches)
        dropOldestBatch();
    Batch batch;
    batch.lastUse = ++m_useClock;
    const QList<FieldInfo> &fields = m_cursor->fields();
    batch.cells.reserve(qsizetype(kBatchRows) * fields.size());
    m_cursor->readRows(key * kBatchRows, kBatchRows, [&](qint32, const QVariantList &values) {
        ++m_recordsRead;
        for (qsizetype f = 0; f < fields.size(); ++f)
            batch.cells.append(cellText(values.value(f), fields.at(f)));
    });
    return &*m_batches.insert(key, batch);
}

void RecordSourceTableModel::dropOldestBatch() const
{
    auto oldest = m_batches.begin();
    for (auto it = m_batches.begin(); it != m_batches.end(); ++it)
        if (it->lastUse < oldest->lastUse)
            oldest = it;
    m_batches.erase(oldest);
}

void RecordSourceTableModel::setCurrentRow(int row)
{
    const int before = m_currentRow;
    m_currentRow = row;
    const int lastColumn = columnCount() - 1;
    if (before >= 0 && before < rowCount())
        Q_EMIT dataChanged(index(before, 0), index(before, lastColumn), { Qt::FontRole });
    if (row >= 0 && row < rowCount())
        Q_EMIT dataChanged(index(row, 0), index(row, lastColumn), { Qt::FontRole });
}

QVariant RecordSourceTableModel::headerData(int section, Qt::Orientation orientation,
                                            int role) const
{
    if (orientation == Qt::Horizontal && (role == Qt::DisplayRole || role == Qt::ToolTipRole)) {
        if (role == Qt::ToolTipRole)
            return m_cursor->fields().value(section).name;
        return m_titles.value(section);
    }
    if (orientation == Qt::Vertical && role == Qt::DisplayRole)
        return section + 1;
    return QAbstractTableModel::headerData(section, orientation, role);
}

bool RecordSourceTableModel::setHeaderData(int section, Qt::Orientation orientation,
                                           const QVariant &value, int role)
{
    if (orientation != Qt::Horizontal || section < 0 || section >= m_titles.size()
        || (role != Qt::EditRole && role != Qt::DisplayRole))
        return false;
    m_titles[section] = value.toString();
    Q_EMIT headerDataChanged(orientation, section, section);
    return true;
}

} // namespace plx
