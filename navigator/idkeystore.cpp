// navigator/idkeystore.cpp
#include "navigator/idkeystore_p.h"

#include "navigator/idallocator_p.h"
#include "services/paths.h"
#include "services/recordsource/database.h"
#include "services/recordsource/internal/filelock.h"
#include "services/recordsource/sharedkeys.h"
#include "services/texthelpers.h"

#include <QFile>
#include <QSaveFile>

namespace plx {

namespace {

// What the user is told of a failed step: the engine's own words too, when it has some.
QString whyNot(const Status &s)
{
    return s.engineMessage().isEmpty() ? s.message()
                                       : s.message() + QStringLiteral("\r\n") + s.engineMessage();
}

// The key file beside the table, and a lock file beside it that one navigator at a time,
// in every process, holds while it advances the key.
class KeyFileStore final : public IdKeyStore
{
public:
    explicit KeyFileStore(QString keyFile) : m_keyFile(std::move(keyFile)) { }

    QString acquire(int waitMs) override
    {
        Result<std::unique_ptr<LockFile>> lock =
            LockFile::open(m_keyFile + QStringLiteral(".lock"));
        if (!lock.isOk())
            return lock.status().message();
        if (!lock.value()->lock(0, 1, LockKind::Exclusive, waitMs).isOk())
            return QStringLiteral("another program holds it too long");
        m_lock = std::move(lock).value();
        return QString();
    }

    bool exists() const override { return getFileExistLEN(m_keyFile, false); }

    QString read() const override
    {
        QFile file(m_keyFile);
        if (!file.open(QIODevice::ReadOnly))
            return QString();
        return QString::fromLatin1(file.readLine())
            .remove(QLatin1Char('\r'))
            .remove(QLatin1Char('\n'));
    }

    // Replaces the line in one step: readers see the old line or the new one.
    QString write(const QString &line) override
    {
        QSaveFile file(m_keyFile);
        if (file.open(QIODevice::WriteOnly)) {
            file.write(line.toLatin1() + "\r\n");
            if (file.commit())
                return QString();
        }
        return file.errorString().isEmpty() ? QStringLiteral("cannot write") : file.errorString();
    }

    // Each write was already committed to the file; the lock goes with the store.
    QString finish() override { return QString(); }
    QString location() const override { return fromDiskPath(m_keyFile); }
    QString noun() const override { return QStringLiteral("record ID key file"); }

private:
    QString m_keyFile;
    std::unique_ptr<LockFile> m_lock;
};

// The key as the database keeps it, in a lease held until finish().
class SharedKeyStore final : public IdKeyStore
{
public:
    SharedKeyStore(SharedKeys &keys, QString table) : m_keys(keys), m_table(std::move(table)) { }

    QString acquire(int waitMs) override
    {
        Result<std::unique_ptr<KeyLease>> lease = m_keys.leaseKey(m_table, waitMs);
        if (!lease.isOk())
            return lease.status().code() == Status::Code::Locked
                ? QStringLiteral("another program holds it too long")
                : whyNot(lease.status());
        m_lease = std::move(lease).value();
        return QString();
    }

    bool exists() const override { return m_lease && !m_lease->lastKey().isNull(); }
    QString read() const override { return m_lease ? m_lease->lastKey() : QString(); }

    QString write(const QString &line) override
    {
        const Status s = m_lease
            ? m_lease->store(line)
            : Status(Status::Code::InvalidArgument, QStringLiteral("no lease"));
        return s.isOk() ? QString() : whyNot(s);
    }

    QString finish() override
    {
        if (!m_lease)
            return QString();
        const Status s = m_lease->commit();
        m_lease.reset();
        return s.isOk() ? QString() : whyNot(s);
    }

    QString location() const override
    {
        return m_lease ? m_lease->location() : QStringLiteral("the database's keys");
    }
    QString noun() const override { return QStringLiteral("record ID key"); }

private:
    SharedKeys &m_keys;
    QString m_table;
    std::unique_ptr<KeyLease> m_lease;
};

} // namespace

std::unique_ptr<IdKeyStore> IdKeyStore::forTable(Database *db, const QString &table,
                                                 const QString &tableFile)
{
    if (auto *keys = dynamic_cast<SharedKeys *>(db); keys && !table.isEmpty())
        return std::make_unique<SharedKeyStore>(*keys, table);
    const QString keyFile = IdAllocator::keyFilePath(tableFile);
    if (keyFile.isEmpty())
        return nullptr;
    return std::make_unique<KeyFileStore>(keyFile);
}

} // namespace plx
