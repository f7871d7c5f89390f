// services/recordsource/sqlite/sqliteopen.cpp: opening a database file as it is.
//
// A missing file is NotFound unless the caller asked to create one: a mistyped path must not
// become a new empty database. A file that cannot be written (the read-only option, a
// write-protected file, folder, journal or lock file) opens read-only at once, so browsing
// works and every write is refused up front with the reason, instead of failing later in a
// pragma or a commit that needs the journal.
//
// The file's journal mode is never changed. The engine needs no particular one: record
// locks live in the "-plxlock" sidecar (internal/recordlock.h), and every write is one short
// BEGIN IMMEDIATE ... COMMIT. In WAL mode readers of other connections go on while a record
// is written; in a rollback-journal mode the commit waits (busy timeout) for the readers of
// that moment, which read one record at a time and release the file between records.
#include "services/recordsource/sqlite/internal/sqliteconnection.h"

#include <QFileInfo>
#include <QUrl>

#include <sqlite3.h>

namespace plx::sqlite {

namespace {

// Readers wait this long for a writer of another connection before giving up; writes
// are single-record transactions, so a longer wait means something is stuck.
constexpr int BusyTimeoutMs = 5000;

bool isMemory(const QString &path)
{
    return path.isEmpty() || path == QLatin1String(":memory:");
}

// Why the file cannot be written, in words for a status bar; empty when it can. SQLite
// writes its journal beside the file and the record locks live beside it too, so the folder
// and those companions count as much as the file.
QString writeRefusal(const QString &path)
{
    const QFileInfo file(path);
    if (!QFileInfo(file.absolutePath()).isWritable())
        return QStringLiteral("the folder is write-protected");
    if (!file.isWritable())
        return QStringLiteral("the file is write-protected");
    for (const char *suffix : { "-journal", "-wal", "-shm", "-plxlock" }) {
        const QFileInfo companion(path + QLatin1String(suffix));
        if (companion.exists() && !companion.isWritable())
            return QStringLiteral("the file %1 beside the database is write-protected")
                .arg(companion.fileName());
    }
    return {};
}

Result<sqlite3 *> openHandle(const QByteArray &name, int flags, const QString &path)
{
    sqlite3 *db = nullptr;
    const int rc = sqlite3_open_v2(name.constData(), &db, flags | SQLITE_OPEN_NOMUTEX, nullptr);
    if (rc == SQLITE_OK) {
        sqlite3_extended_result_codes(db, 1);
        sqlite3_busy_timeout(db, BusyTimeoutMs);
        return db;
    }
    const QString text = db ? QString::fromUtf8(sqlite3_errmsg(db)) : QString();
    sqlite3_close_v2(db);
    return statusFor(rc, QStringLiteral("cannot open the database %1").arg(path), text);
}

// SQLite opens lazily: reading the schema is what finds a file that is no database, or a
// database that cannot be read this way.
Status readSchema(sqlite3 *db, const QString &path)
{
    const int rc =
        sqlite3_exec(db, "SELECT count(*) FROM sqlite_schema", nullptr, nullptr, nullptr);
    if (rc == SQLITE_OK)
        return Status::ok();
    return statusFor(rc, QStringLiteral("cannot open the database %1").arg(path),
                     QString::fromUtf8(sqlite3_errmsg(db)));
}

// The file as a "file:" URI with query parameters; only a URI carries mode=ro or immutable=1.
QByteArray fileUri(const QString &path, const char *parameters)
{
    QString absolute = QFileInfo(path).absoluteFilePath();
    if (!absolute.startsWith(QLatin1Char('/')))
        absolute.prepend(QLatin1Char('/')); // a drive letter: file:/C:/...
    return QByteArrayLiteral("file:") + QUrl::toPercentEncoding(absolute, "/:")
        + QByteArrayLiteral("?") + parameters;
}

// Read-only with the usual locks first. A WAL file needs its "-shm" index even to be read,
// and a write-protected folder may not let SQLite make one: such a file is then read as
// immutable (without locks), the only way it can be read at all.
Result<sqlite3 *> openReadOnly(const QString &path)
{
    Status failure;
    for (const char *parameters : { "mode=ro", "mode=ro&immutable=1" }) {
        Result<sqlite3 *> db =
            openHandle(fileUri(path, parameters), SQLITE_OPEN_READONLY | SQLITE_OPEN_URI, path);
        if (!db.isOk())
            return db;
        failure = readSchema(*db, path);
        if (failure.isOk())
            return db;
        sqlite3_close_v2(*db);
    }
    return failure;
}

// Opens (or, when asked, makes) the file as the options and the file allow; `reason` gets
// why it is read-only.
Result<sqlite3 *> openFile(const QString &path, const ConnectOptions &options, QString &reason)
{
    constexpr int ReadWrite = SQLITE_OPEN_READWRITE;
    if (isMemory(path))
        return openHandle(QByteArrayLiteral(":memory:"), ReadWrite | SQLITE_OPEN_CREATE, path);
    if (!QFileInfo::exists(path)) {
        if (!options.create || options.readOnly)
            return Status(Status::Code::NotFound,
                          QStringLiteral("the database %1 was not found").arg(path));
        return openHandle(path.toUtf8(), ReadWrite | SQLITE_OPEN_CREATE, path);
    }
    reason =
        options.readOnly ? QStringLiteral("the database was opened read-only") : writeRefusal(path);
    if (!reason.isEmpty())
        return openReadOnly(path);
    Result<sqlite3 *> db = openHandle(path.toUtf8(), ReadWrite, path);
    // SQLite falls back to reading a file it may not write (an immutable file, say).
    if (db.isOk() && sqlite3_db_readonly(*db, "main") == 1)
        reason = QStringLiteral("the file is write-protected");
    return db;
}

} // namespace

Result<std::shared_ptr<Connection>> Connection::open(const QString &path,
                                                     const ConnectOptions &options)
{
    QString reason;
    Result<sqlite3 *> db = openFile(path, options, reason);
    if (!db.isOk())
        return db.status();
    std::shared_ptr<Connection> conn(new Connection(*db, path, reason));
    Status s = conn->configure(options);
    if (s.isOk())
        s = readSchema(conn->handle(), path);
    if (!s.isOk())
        return s;
    return conn;
}

Status Connection::configure(const ConnectOptions &options) const
{
    if (!isReadOnly()) {
        // Every committed Update is durable when it returns. A setting of this connection
        // only: the file is not changed.
        Status s = exec(QStringLiteral("PRAGMA synchronous=FULL"));
        if (s.isOk() && options.exclusive)
            s = exec(QStringLiteral("PRAGMA locking_mode=EXCLUSIVE"));
        if (!s.isOk())
            return s;
    }
    return jet::registerJetFunctions(m_db);
}

} // namespace plx::sqlite
