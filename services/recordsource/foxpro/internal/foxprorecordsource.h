// services/recordsource/foxpro/internal/foxprorecordsource.h: a record source over one FoxPro
// table.
//
// Keyset-driven: opening evaluates the WHERE condition over the table's live records and
// sorts their record numbers by the ORDER BY keys (4 bytes a record); values are decoded
// from the mapped file when asked for, so they are always the file's latest. Deleted
// records are hidden (FoxPro's SET DELETED ON, and Jet's rule). Text compares in the code
// page's byte order, or in the General order (case-insensitive, accented letters beside
// their base letters) when the database was opened with Collate=General.
//
// Two shapes skip the general evaluator, because the controls send them on every find
// and every save: UCase(field) Like 'PREFIX*' (the find query) is tested on the raw bytes
// through per-byte tables (prefixscan_p.h), and field = constant (the ID criterion)
// compares the raw bytes of the field (through a table of each byte's case-folded class in
// the General order). Sorts reuse the ranks an earlier sort of the unchanged file kept
// (internal/rankcache.h); in the General order a character field ranks its distinct values by
// their sort keys, so no record goes through the evaluator for it either.
//
// Statements and finds are bound for the source's text comparison: their constant parts are
// worked out once (a 1 MB constant costs one comparison a record), and In lists and Or runs
// of IDs become look-up sets. They run within the limits of statementbounds_p.h: refused
// beyond 4,000,000 characters, 1,000,000 terms or 100 levels of nesting, stopped after 10
// seconds.
#pragma once

#include "services/recordsource/dbf/internal/dbftable.h"
#include "services/recordsource/internal/positionedrecordsource.h"
#include "services/recordsource/jet/internal/ast.h"
#include "services/recordsource/keptorder.h"
#include "services/recordsource/tablechanges.h"
#include "services/recordsource/textcompare.h"

#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace plx::foxpro {

// The file of a table by name; empty when there is none.
using TablePaths = std::function<QString(const QString &table)>;

struct ScanRanking;

class FoxProRecordSource final : public PositionedRecordSource,
                                 public KeptOrder,
                                 public TableChanges
{
public:
    // A SELECT * on one table with WHERE and ORDER BY, as the database parsed it from `text`
    // (a table name or the statement). NotFound for an unknown table, NotSupported for a
    // join or a column list, naming `text`. `codePage` applies to tables without a
    // code-page mark (0: Windows-1252); `collate` is how text compares in the statement and
    // in later finds (Binary: byte order).
    static Result<std::unique_ptr<RecordSource>>
    open(const TablePaths &paths, const jet::SelectStatement &stmt, const QString &text,
         bool readOnly, int codePage = 0, TextCompare collate = TextCompare::Binary);
    ~FoxProRecordSource() override;

    const QList<FieldInfo> &fieldInfos() const override { return m_table->fieldInfos(); }
    Result<QVariant> value(int index) const override;
    Status setValue(int index, const QVariant &value) override;

    EditMode editMode() const override { return m_mode; }
    // A read-only open, a write-protected folder, or why the table itself cannot be written
    // (DbfTable::readOnlyReason).
    QString readOnlyReason() const override { return m_readOnlyReason; }
    Status AddNew() override;
    Status Edit() override;
    Status Update() override;
    Status CancelUpdate() override;
    Status Delete() override;

    void Close() override;

    // By the statement's ORDER BY, each key compared as the sort ranks it, ties in record
    // order; the WHERE is tested on the record alone.
    bool placeCurrentInOrder() override;

    // By the table file's change stamp (its size, times and record count): a write by any
    // other process or table object counts, this source's own writes do not.
    bool changedElsewhere() override;

    // Bytes held for the keyset (for the memory benchmark).
    size_t keysetBytes() const { return m_keys.capacity() * sizeof(quint32); }

protected:
    qint64 size() const override { return qint64(m_keys.size()); }
    void endEdit() override;
    Result<qint64> locate(const QString &criterion, qint64 start) const override;

private:
    qint64 locateInFileOrder(const std::function<bool(quint32)> &matches, qint64 start) const;
    FoxProRecordSource() = default;

    Status build(const jet::SelectStatement &stmt);
    std::optional<std::vector<quint32>> tagOrder(const jet::SelectStatement &stmt) const;
    // NotSupported with readOnlyReason() when writes are refused; OK otherwise.
    Status checkWritable() const;
    Result<jet::NodePtr> bindExpression(const jet::NodePtr &node) const;
    Result<std::vector<quint32>> filter(const jet::NodePtr &where,
                                        std::vector<ScanRanking> &rankings) const;
    // The ranks of one ORDER BY key: kept whole-table ranks (indexed by record number) or the
    // keyset's own (indexed by position).
    struct KeyRanks
    {
        std::shared_ptr<const std::vector<quint32>> kept;
        std::vector<quint32> own;
        bool descending = false;
        quint32 top = 0; // the highest rank among the keyset's records
        quint32 raw(const std::vector<quint32> &keys, size_t i) const
        {
            return kept ? (*kept)[keys[i]] : own[i];
        }
        quint32 rank(const std::vector<quint32> &keys, size_t i) const
        {
            return descending ? top - raw(keys, i) : raw(keys, i);
        }
    };
    // Sorts the keys; byteKeys[k] holds the ranks of ORDER BY item k when it is a character,
    // date or logical field.
    Status sort(const std::vector<jet::OrderItem> &order,
                std::vector<std::optional<KeyRanks>> byteKeys);

    // The order of records `a` and `b` by the ORDER BY keys alone: below, at or above 0.
    Result<int> compareByOrder(quint32 a, quint32 b) const;
    Result<bool> satisfiesWhere(quint32 recno) const;
    // This source wrote to the table: its own write is no change by others.
    void noteOwnWrite();

    std::unique_ptr<DbfTable> m_table;
    TextCompare m_collate = TextCompare::Binary;
    QString m_tableName;
    QString m_alias;
    std::vector<quint32> m_keys; // record numbers in the source's order
    bool m_recnoOrder = true; // no ORDER BY: m_keys ascend
    jet::NodePtr m_where; // bound; null without WHERE
    std::vector<jet::OrderItem> m_order; // bound
    std::optional<DbfChangeStamp> m_seenStamp; // the table as last read or asked

    QString m_readOnlyReason; // decided at open; empty when writable

    EditMode m_mode = EditMode::None;
    QVariantList m_buffer;
    quint32 m_editRecno = 0;
};

} // namespace plx::foxpro
