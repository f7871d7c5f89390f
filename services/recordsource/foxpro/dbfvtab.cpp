// services/recordsource/foxpro/dbfvtab.cpp: the "dbf" virtual-table module (read only).
//
// Shaped like SQLite's own modules: structs whose first member is the SQLite base, a
// static callback table, and every callback body inside a catch-all so that no C++
// exception unwinds into SQLite's C frames.
#include "services/recordsource/foxpro/dbfvtab_p.h"

#include "services/recordsource/dbf/internal/dbftable.h"
#include "services/recordsource/jet/internal/deadline.h"

#include <sqlite3.h>

#include <cstring>
#include <type_traits>

namespace plx::foxpro {

namespace {

// When the statement running on the connection began, and how long it may run. One per
// connection, owned by the module registration.
struct StatementClock
{
    qint64 limitMs = 0; // 0: no limit
    QByteArray stoppedMessage;
    qint64 startedMs = 0;
    int rowsUntilClockRead = 0;
};

constexpr int kRowsPerClockRead = 64;

int onStatementStart(unsigned, void *clock, void *, void *)
{
    auto *c = static_cast<StatementClock *>(clock);
    c->startedMs = jet::deadlineClockNow();
    c->rowsUntilClockRead = 0;
    return 0;
}

struct DbfVtab
{
    sqlite3_vtab base;
    DbfTable *table; // owned
    StatementClock *clock; // the connection's; null without a limit
};
static_assert(std::is_standard_layout_v<DbfVtab>);

struct DbfCursor
{
    sqlite3_vtab_cursor base;
    quint32 recno; // current record; past the end when done
};
static_assert(std::is_standard_layout_v<DbfCursor>);

void setError(sqlite3_vtab *vtab, const QString &message)
{
    sqlite3_free(vtab->zErrMsg);
    vtab->zErrMsg = sqlite3_mprintf("%s", message.toUtf8().constData());
}

QString declaredType(const DbfField &f)
{
    switch (f.type) {
    case 'C': return QStringLiteral("CHAR(%1)").arg(f.length);
    case 'N':
    case 'F': return QStringLiteral("NUMERIC(%1,%2)").arg(f.length).arg(f.decimals);
    case 'D': return QStringLiteral("DATE");
    case 'T': return QStringLiteral("DATETIME");
    case 'L': return QStringLiteral("BOOLEAN");
    case 'M': return QStringLiteral("MEMO");
    case 'I': return QStringLiteral("INTEGER");
    case 'B': return QStringLiteral("DOUBLE");
    default: return QStringLiteral("BLOB");
    }
}

int dbfConnect(sqlite3 *db, void *clock, int argc, const char *const *argv, sqlite3_vtab **out,
               char **err)
{
    try {
        if (argc < 4) {
            *err = sqlite3_mprintf("dbf: the table file is missing: USING dbf('path')");
            return SQLITE_ERROR;
        }
        QString path = QString::fromUtf8(argv[3]).trimmed();
        if (path.size() >= 2
            && (path.startsWith(QLatin1Char('\'')) || path.startsWith(QLatin1Char('"'))))
            path = path.mid(1, path.size() - 2);
        // An optional second argument: the code page of a table without a code-page mark.
        const int codePage = argc > 4 ? QString::fromUtf8(argv[4]).trimmed().toInt() : 0;
        Result<std::unique_ptr<DbfTable>> table =
            DbfTable::open(path, DbfTable::OpenMode::ReadOnly, codePage);
        if (!table.isOk()) {
            *err = sqlite3_mprintf("%s", table.status().message().toUtf8().constData());
            return SQLITE_ERROR;
        }
        QStringList columns;
        for (const DbfField &f : table.value()->fields()) {
            QString name = f.name;
            name.replace(QLatin1Char('"'), QStringLiteral("\"\""));
            columns << QStringLiteral("\"%1\" %2").arg(name, declaredType(f));
        }
        const QByteArray schema =
            QStringLiteral("CREATE TABLE x(%1)").arg(columns.join(QStringLiteral(", "))).toUtf8();
        const int rc = sqlite3_declare_vtab(db, schema.constData());
        if (rc != SQLITE_OK) {
            *err = sqlite3_mprintf("dbf: cannot declare %s", schema.constData());
            return rc;
        }
        auto *vtab = static_cast<DbfVtab *>(sqlite3_malloc(sizeof(DbfVtab)));
        if (!vtab)
            return SQLITE_NOMEM;
        std::memset(vtab, 0, sizeof(DbfVtab));
        vtab->table = table.value().release();
        vtab->clock = static_cast<StatementClock *>(clock);
        *out = &vtab->base;
        return SQLITE_OK;
    } catch (...) {
        *err = sqlite3_mprintf("dbf: internal error while opening the table");
        return SQLITE_ERROR;
    }
}

int dbfDisconnect(sqlite3_vtab *base)
{
    auto *vtab = reinterpret_cast<DbfVtab *>(base);
    delete vtab->table;
    sqlite3_free(vtab->base.zErrMsg);
    sqlite3_free(vtab);
    return SQLITE_OK;
}

int dbfBestIndex(sqlite3_vtab *base, sqlite3_index_info *info)
{
    // Every plan is a full scan of the mapped file: cheap, and the order SQLite asks for is
    // done by SQLite itself.
    auto *vtab = reinterpret_cast<DbfVtab *>(base);
    info->estimatedCost = double(vtab->table->recordCount()) + 1;
    info->estimatedRows = vtab->table->recordCount();
    return SQLITE_OK;
}

int dbfOpen(sqlite3_vtab *, sqlite3_vtab_cursor **out)
{
    auto *cursor = static_cast<DbfCursor *>(sqlite3_malloc(sizeof(DbfCursor)));
    if (!cursor)
        return SQLITE_NOMEM;
    std::memset(cursor, 0, sizeof(DbfCursor));
    *out = &cursor->base;
    return SQLITE_OK;
}

int dbfClose(sqlite3_vtab_cursor *cursor)
{
    sqlite3_free(cursor);
    return SQLITE_OK;
}

DbfTable &tableOf(sqlite3_vtab_cursor *cursor)
{
    return *reinterpret_cast<DbfVtab *>(cursor->pVtab)->table;
}

void skipDeleted(DbfCursor *c, const DbfTable &table)
{
    while (c->recno <= table.recordCount() && table.isDeleted(c->recno))
        ++c->recno;
}

// SQLITE_ERROR with the limit's message once the running statement has had its time; read
// between rows, every kRowsPerClockRead of them.
int checkTime(sqlite3_vtab_cursor *base)
{
    auto *vtab = reinterpret_cast<DbfVtab *>(base->pVtab);
    StatementClock *clock = vtab->clock;
    if (!clock || --clock->rowsUntilClockRead > 0)
        return SQLITE_OK;
    clock->rowsUntilClockRead = kRowsPerClockRead;
    if (jet::deadlineClockNow() - clock->startedMs < clock->limitMs)
        return SQLITE_OK;
    sqlite3_free(vtab->base.zErrMsg);
    vtab->base.zErrMsg = sqlite3_mprintf("%s", clock->stoppedMessage.constData());
    return SQLITE_ERROR;
}

int dbfFilter(sqlite3_vtab_cursor *base, int, const char *, int, sqlite3_value **)
{
    auto *c = reinterpret_cast<DbfCursor *>(base);
    c->recno = 1;
    skipDeleted(c, tableOf(base));
    return checkTime(base);
}

int dbfNext(sqlite3_vtab_cursor *base)
{
    auto *c = reinterpret_cast<DbfCursor *>(base);
    ++c->recno;
    skipDeleted(c, tableOf(base));
    return checkTime(base);
}

int dbfEof(sqlite3_vtab_cursor *base)
{
    return reinterpret_cast<DbfCursor *>(base)->recno > tableOf(base).recordCount() ? 1 : 0;
}

int dbfColumn(sqlite3_vtab_cursor *base, sqlite3_context *ctx, int column)
{
    try {
        auto *c = reinterpret_cast<DbfCursor *>(base);
        Result<QVariant> v = tableOf(base).value(c->recno, column);
        if (!v.isOk()) {
            setError(base->pVtab, v.status().message());
            return SQLITE_ERROR;
        }
        const QVariant &value = v.value();
        switch (value.typeId()) {
        case QMetaType::UnknownType: sqlite3_result_null(ctx); break;
        case QMetaType::Bool: sqlite3_result_int(ctx, value.toBool() ? -1 : 0); break;
        case QMetaType::Int:
        case QMetaType::LongLong: sqlite3_result_int64(ctx, value.toLongLong()); break;
        case QMetaType::Double: sqlite3_result_double(ctx, value.toDouble()); break;
        case QMetaType::QDate: {
            const QByteArray text = value.toDate().toString(Qt::ISODate).toUtf8();
            sqlite3_result_text(ctx, text.constData(), int(text.size()), SQLITE_TRANSIENT);
            break;
        }
        case QMetaType::QDateTime: {
            const QByteArray text =
                value.toDateTime().toString(QStringLiteral("yyyy-MM-dd hh:mm:ss")).toUtf8();
            sqlite3_result_text(ctx, text.constData(), int(text.size()), SQLITE_TRANSIENT);
            break;
        }
        case QMetaType::QByteArray: {
            const QByteArray bytes = value.toByteArray();
            sqlite3_result_blob(ctx, bytes.constData(), int(bytes.size()), SQLITE_TRANSIENT);
            break;
        }
        default: {
            const QByteArray text = value.toString().toUtf8();
            sqlite3_result_text(ctx, text.constData(), int(text.size()), SQLITE_TRANSIENT);
            break;
        }
        }
        return SQLITE_OK;
    } catch (...) {
        setError(base->pVtab, QStringLiteral("dbf: internal error while reading a value"));
        return SQLITE_ERROR;
    }
}

int dbfRowid(sqlite3_vtab_cursor *base, sqlite3_int64 *rowid)
{
    *rowid = reinterpret_cast<DbfCursor *>(base)->recno;
    return SQLITE_OK;
}

const sqlite3_module kDbfModule = {
    0, // iVersion
    dbfConnect, // xCreate: the same as connecting, the file already exists
    dbfConnect,
    dbfBestIndex,
    dbfDisconnect,
    dbfDisconnect, // xDestroy: the table file itself is never removed
    dbfOpen,
    dbfClose,
    dbfFilter,
    dbfNext,
    dbfEof,
    dbfColumn,
    dbfRowid,
    nullptr, // xUpdate: read only
    nullptr,
    nullptr,
    nullptr,
    nullptr,
    nullptr,
    nullptr,
    nullptr,
    nullptr,
    nullptr,
    nullptr,
};

} // namespace

Status registerDbfModule(sqlite3 *db, qint64 timeLimitMs, const QString &stoppedMessage)
{
    StatementClock *clock = nullptr;
    if (timeLimitMs > 0) {
        clock = new StatementClock;
        clock->limitMs = timeLimitMs;
        clock->stoppedMessage = stoppedMessage.toUtf8();
        clock->startedMs = jet::deadlineClockNow();
    }
    // The module owns the clock: SQLite deletes it when the connection closes (or at once when
    // the registration fails).
    const int rc = sqlite3_create_module_v2(
        db, "dbf", &kDbfModule, clock, [](void *c) { delete static_cast<StatementClock *>(c); });
    if (rc == SQLITE_OK && clock)
        sqlite3_trace_v2(db, SQLITE_TRACE_STMT, onStatementStart, clock);
    if (rc != SQLITE_OK)
        return Status(Status::Code::Engine, QStringLiteral("cannot register the dbf module"), rc,
                      QString::fromUtf8(sqlite3_errmsg(db)));
    return Status::ok();
}

} // namespace plx::foxpro
