// dialogs/recordsourcetablemodel.h: a table model over a record source of any size.
//
// One row per record in the source's order, one column per field in the table's order.
// The row count is known from the start; the values are read only when a view asks for
// them, a batch of neighbouring records at a time (a page of a grid is one or two reads),
// and only the most recently used batches are kept, so the model holds the same few
// kilobytes whether the source has a hundred records or ten million.
//
// Cells show what the field controls show: numbers with the field's decimals, dates
// MM/DD/YYYY, logicals True/False, the first line of a memo, nothing for Null.
#pragma once

#include "dialogs/recordcursor.h"

#include <QAbstractTableModel>
#include <QHash>
#include <QStringList>

namespace plx {

class RecordSourceTableModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    // Records read from the source at a time, and batches kept.
    static constexpr qint32 kBatchRows = 64;
    static constexpr int kKeptBatches = 8;

    // `cursor` must outlive the model.
    explicit RecordSourceTableModel(RecordCursor *cursor, QObject *parent = nullptr);

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    int columnCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    // Horizontal: the column's title (the field name until setHeaderData gives another).
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;
    bool setHeaderData(int section, Qt::Orientation orientation, const QVariant &value,
                       int role = Qt::EditRole) override;

    // The row of the view's current record, shown in bold so that it stands out even in a
    // selected column (-1: none).
    void setCurrentRow(int row);

    // The text a cell of this field shows for `value`.
    static QString cellText(const QVariant &value, const FieldInfo &field);
    // Records read from the source so far (batches re-read after being dropped count again).
    qint64 recordsRead() const { return m_recordsRead; }
    // Batches held now (at most kKeptBatches).
    int batchesHeld() const { return int(m_batches.size()); }

private:
    struct Batch
    {
        QStringList cells; // row-major, columnCount() per record
        quint64 lastUse = 0;
    };
    const Batch *batchFor(qint32 row) const;
    void dropOldestBatch() const;

    RecordCursor *m_cursor;
    QStringList m_titles;
    int m_currentRow = -1;
    // Reading is what data() does lazily; the batches are a cache of the source.
    mutable QHash<qint32, Batch> m_batches;
    mutable quint64 m_useClock = 0;
    mutable qint64 m_recordsRead = 0;
};

} // namespace plx
