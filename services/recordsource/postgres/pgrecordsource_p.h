// services/recordsource/postgres/pgrecordsource_p.h: the record source over a PostgreSQL
// query.
//
// Keyset-driven, like a DAO dynaset and the SQLite engine's sources: opening reads the
// engine keys (plx_key) of the whole result once, in the query's order, in binary form;
// records are read by key in batches of the keys around the current one, so stepping
// through costs one round trip per batch. A batch serves moves to a neighbouring record
// only: any other move (MoveFirst, MoveLast, a position, a find) reads afresh, so a
// record shows what others saved when it is come back to. Edit re-reads its record.
//
// A statement over joins, or over a table without the engine's key column, holds its rows
// in memory and is read-only.
#pragma once

#include "services/recordsource/internal/bufferedrecordsource.h"
#include "services/recordsource/jet/internal/ast.h"
#include "services/recordsource/postgres/pgrecordlock_p.h"
#include "services/recordsource/postgres/pgtranslate_p.h"
#include "services/recordsource/tablechanges.h"

#include <QHash>

#include <vector>

namespace plx::postgres {

class PgRecordSource final : public BufferedRecordSource, public TableChanges
{
public:
    static Result<std::unique_ptr<RecordSource>> open(std::shared_ptr<Connection> connection,
                                                      const QString &tableOrSql);
    ~PgRecordSource() override;

    const QList<FieldInfo> &fieldInfos() const override { return m_select.fields; }
    Result<QVariant> value(int index) const override;

    QString readOnlyReason() const override { return m_readOnlyReason; }
    Status Delete() override;
    void Close() override;

    // By the notices the engine's trigger sends after every statement that writes the
    // source's first table, from sessions other than this source's connection. A table made
    // elsewhere without the trigger never reports a change.
    bool changedElsewhere() override;

protected:
    qint64 size() const override;
    Result<qint64> locate(const QString &criterion, qint64 start) const override;
    Status lockCurrent() override;
    void releaseLock() override;
    Result<QVariantList> freshCurrentRow() override;
    bool isComputed(int index) const override;
    Result<QVariant> normalizedValue(const QVariant &value, int index) const override;
    Status insertBuffer() override;
    Status updateBuffer() override;
    void forgetReadValues() override { forgetRows(); }

private:
    explicit PgRecordSource(std::shared_ptr<Connection> connection);

    Status loadKeys();
    Status loadHeldRows();
    Result<QVariantList> currentRow() const;
    void forgetRows() const;
    Status fetchBatch(qint64 position) const;
    QString baseTable() const { return m_select.sources.front().table.name; }

    std::shared_ptr<Connection> m_conn;
    PgSelect m_select;
    QString m_readOnlyReason;
    std::vector<qint64> m_keys;
    std::vector<QVariantList> m_rows; // held rows when not keyed

    mutable QHash<qint64, QVariantList> m_batch; // rows by key around the current one
    mutable qint64 m_batchPos = -2; // the position the batch was last used at

    RecordLock m_lock;
    quint64 m_heardChanges = 0; // the connection's count of notices when last read or asked
};

} // namespace plx::postgres
