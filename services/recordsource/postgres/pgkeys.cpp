// services/recordsource/postgres/pgkeys.cpp
#include "services/recordsource/postgres/pgkeys_p.h"

#include "services/recordsource/postgres/pgconnection_p.h"

namespace plx::postgres {

namespace {

class PgKeyLease final : public KeyLease
{
public:
    PgKeyLease(std::shared_ptr<Connection> keys, QString table, QString lastKey)
        : m_keys(std::move(keys)), m_table(std::move(table)), m_lastKey(std::move(lastKey))
    {
    }
    ~PgKeyLease() override
    {
        if (m_open)
            (void)m_keys->run(QStringLiteral("ROLLBACK"));
    }

    QString lastKey() const override { return m_lastKey; }
    QString location() const override { return QStringLiteral("plx.idkeys, row ") + m_table; }

    Status store(const QString &key) override
    {
        if (!m_open)
            return ended();
        Status s =
            m_keys->run(QStringLiteral("UPDATE plx.idkeys SET last_key = $2 WHERE table_name = $1"),
                        { m_table.toUtf8(), key.toUtf8() });
        if (s.isOk())
            m_lastKey = key;
        return s;
    }

    Status commit() override
    {
        if (!m_open)
            return ended();
        m_open = false;
        return m_keys->run(QStringLiteral("COMMIT"));
    }

private:
    static Status ended()
    {
        return Status(Status::Code::InvalidArgument, QStringLiteral("the key lease has ended"));
    }

    std::shared_ptr<Connection> m_keys;
    QString m_table;
    QString m_lastKey;
    bool m_open = true;
};

} // namespace

Result<std::unique_ptr<KeyLease>> leaseKey(std::shared_ptr<Connection> keys, const QString &table,
                                           int waitMs)
{
    const QByteArray name = table.toLower().toUtf8();
    if (Status s = keys->run(QStringLiteral("BEGIN")); !s.isOk())
        return s;
    // The row is made once, empty; a second maker waits for the first and then finds it.
    Status s = keys->run(QStringLiteral("SET LOCAL lock_timeout = %1").arg(qMax(1, waitMs)));
    if (s.isOk())
        s = keys->run(QStringLiteral("INSERT INTO plx.idkeys (table_name, last_key) "
                                     "VALUES ($1, '') ON CONFLICT (table_name) DO NOTHING"),
                      { name });
    Result<PgResult> row = s.isOk()
        ? keys->exec(QStringLiteral("SELECT last_key FROM plx.idkeys WHERE table_name = $1 "
                                    "FOR UPDATE"),
                     { name })
        : Result<PgResult>(s);
    if (!row.isOk() || row->rows() != 1) {
        (void)keys->run(QStringLiteral("ROLLBACK"));
        if (!row.isOk())
            return row.status();
        return Status(Status::Code::Engine,
                      QStringLiteral("the key row of %1 vanished").arg(table));
    }
    const QString last = row->text(0, 0);
    return std::unique_ptr<KeyLease>(new PgKeyLease(std::move(keys), QString::fromUtf8(name),
                                                    last.isEmpty() ? QString() : last));
}

} // namespace plx::postgres
