// services/recordsource/sqlite/internal/sqliterecordsource.h: the record source over a SQLite
// query.
//
// Keyset-driven, like a DAO dynaset: opening reads the rowids of the whole result once,
// in the query's order (8 bytes a record, see keyset.h); the values of a record are
// read by rowid when it becomes current and kept until another record does. So moving
// is cheap, every record shows the latest committed values, and edits by other users
// appear at the next visit. Records that others add after the open are not in the
// keyset, as with DAO.
//
// A statement that reads no single base table (a join, a grouped or aggregate query) has
// no rowid to key on; its rows are held in memory and it is read-only.
#pragma once

#include "services/recordsource/internal/bufferedrecordsource.h"
#include "services/recordsource/keptorder.h"
#include "services/recordsource/tablechanges.h"
#include "services/recordsource/sqlite/internal/keyset.h"
#include "services/recordsource/sqlite/internal/recordlock.h"
#include "services/recordsource/sqlite/internal/sqliteconnection.h"

#include <vector>

namespace plx::sqlite {

class SqliteRecordSource final : public BufferedRecordSource, public KeptOrder, public TableChanges
{
public:
    // Opens a record source on a table name or a Jet SELECT. NotFound for an unknown
    // table; the front end's errors (Syntax, UnknownField, ...) for a bad statement.
    static Result<std::unique_ptr<RecordSource>> open(std::shared_ptr<Connection> connection,
                                                      const QString &tableOrSql);
    // The same for a SELECT the caller has parsed, under the bounds of its engine.
    static Result<std::unique_ptr<RecordSource>> open(std::shared_ptr<Connection> connection,
                                                      const jet::SelectStatement &stmt);
    ~SqliteRecordSource() override;

    const QList<FieldInfo> &fieldInfos() const override { return m_fields; }
    Result<QVariant> value(int index) const override;

    // The connection's reason (a write-protected file or folder, a read-only open), or that
    // the statement reads no single table.
    QString readOnlyReason() const override { return m_readOnlyReason; }
    Status Delete() override;

    void Close() override;

    // By the statement's ORDER BY, compared by SQLite itself with ties in rowid order, in
    // about twenty probes of two records each.
    bool placeCurrentInOrder() override;

    // By the file's data version: a commit by any other connection to the file, to any of
    // its tables, counts (SQLite keeps no version per table).
    bool changedElsewhere() override;

    // Bytes held for the keyset (for the memory benchmark).
    size_t keysetBytes() const { return m_keys.bytes(); }

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
    void forgetReadValues() override { m_cacheValid = false; }

private:
    explicit SqliteRecordSource(std::shared_ptr<Connection> connection);

    Status describeColumns();
    Status loadKeyset();
    Status loadHeldRows();
    Status loadCurrent() const;
    Result<qint64> findKeyed(const QString &sqlCriterion, qint64 start) const;
    Result<qint64> findHeld(const QString &sqlCriterion, qint64 start) const;
    Status runWrite(Statement &stmt);
    QString quotedBase() const;
    Result<bool> satisfiesWhere(qint64 key) const;
    Result<qint64> placeAmongOthers(qint64 key) const;
    Result<qint64> dataVersion() const;

    std::shared_ptr<Connection> m_conn;
    jet::TranslatedSelect m_select;
    QList<FieldInfo> m_fields;
    QList<bool> m_typed; // the column has a declared type
    QStringList m_baseColumns; // the base-table column each field writes to; empty: read-only
    bool m_keyed = false;
    bool m_plainShape = false; // the statement is its parts recombined (see hasPlainShape)
    QString m_readOnlyReason; // decided at open; empty when writable
    KeySet m_keys;
    std::vector<QVariantList> m_rows; // held rows when not keyed
    Statement m_rowStmt; // the values of one record by rowid

    mutable qint64 m_cachedKey = -1;
    mutable bool m_cacheValid = false;
    mutable QVariantList m_cache;

    RecordLock m_lock;
    qint64 m_dataVersion = -1; // the file's data version when last read or asked
};

} // namespace plx::sqlite
