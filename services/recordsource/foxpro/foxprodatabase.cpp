// services/recordsource/foxpro/foxprodatabase.cpp: the FoxPro directory as a Database.
#include "services/recordsource/foxpro/foxprodatabase_p.h"

#include "services/recordsource/foxpro/dbfvtab_p.h"
#include "services/recordsource/foxpro/indextag_p.h"
#include "services/recordsource/foxpro/internal/fieldmapping.h"
#include "services/recordsource/foxpro/internal/foxprorecordsource.h"
#include "services/recordsource/foxpro/statementbounds_p.h"
#include "services/recordsource/internal/indexfields.h"
#include "services/recordsource/jet/internal/parser.h"
#include "services/recordsource/sqlite/internal/sqliterecordsource.h"

#include <QDir>
#include <QFileInfo>

namespace plx::foxpro {

namespace {

// "SELECT" as the first word marks a statement; anything else names a table, bare or in
// brackets, which is read as the statement selecting all of it.
QString statementText(const QString &tableOrSql)
{
    const QString text = tableOrSql.trimmed();
    if (text.startsWith(QLatin1String("SELECT"), Qt::CaseInsensitive)
        && (text.size() == 6 || !text.at(6).isLetterOrNumber()))
        return tableOrSql;
    QString name = text;
    if (name.startsWith(QLatin1Char('[')) && name.endsWith(QLatin1Char(']')))
        name = name.mid(1, name.size() - 2);
    return QStringLiteral("SELECT * FROM [%1]").arg(name);
}

class FoxProDatabase final : public Database
{
public:
    FoxProDatabase(QString directory, bool readOnly, int codePage, TextCompare collate)
        : m_dir(std::move(directory)), m_readOnly(readOnly), m_codePage(codePage),
          m_collate(collate)
    {
    }

    Result<std::unique_ptr<RecordSource>> OpenRecordset(const QString &tableOrSql) override
    {
        if (m_closed)
            return Status(Status::Code::InvalidArgument, QStringLiteral("the database is closed"));
        // Parsed once, here: the record source and the SQLite path take the tree.
        const Result<jet::SelectStatement> stmt =
            jet::parseSelect(statementText(tableOrSql), statementLimits());
        if (!stmt.isOk())
            return stmt.status();
        if (!stmt->joins.empty() || !stmt->star)
            return openThroughSqlite(stmt.value());
        return FoxProRecordSource::open([this](const QString &name) { return tablePath(name); },
                                        stmt.value(), tableOrSql, m_readOnly, m_codePage,
                                        m_collate);
    }

    void Idle() override { }

    QStringList tableNames() const override
    {
        QStringList names;
        const QFileInfoList files = QDir(m_dir).entryInfoList(QDir::Files);
        for (const QFileInfo &f : files) {
            if (f.suffix().compare(QLatin1String("dbf"), Qt::CaseInsensitive) == 0)
                names << f.completeBaseName();
        }
        return names;
    }

    TextCompare textCompare() const override { return m_collate; }

    // A table is a file NAME.DBF in the directory, with NAME.FPT beside it when a field is
    // a memo.
    Status createTable(const QString &name, const QList<FieldInfo> &fields) override
    {
        if (m_closed)
            return Status(Status::Code::InvalidArgument, QStringLiteral("the database is closed"));
        if (m_readOnly)
            return Status(Status::Code::NotSupported,
                          QStringLiteral("the database was opened read-only"));
        if (!tablePath(name).isEmpty())
            return Status(Status::Code::InvalidArgument,
                          QStringLiteral("a table named %1 exists already").arg(name));
        QList<DbfField> columns;
        for (const FieldInfo &f : fields)
            columns << dbfFieldFor(f);
        Result<std::unique_ptr<DbfTable>> table = DbfTable::create(
            QDir(m_dir).filePath(name.trimmed() + QStringLiteral(".DBF")), columns);
        return table.status();
    }

    // One header lock for the batch, so no other writer's record lands between its rows,
    // and one sync at the end instead of one per record.
    Status appendRecords(const QString &name, const QList<QVariantList> &rows) override
    {
        if (m_closed)
            return Status(Status::Code::InvalidArgument, QStringLiteral("the database is closed"));
        if (m_readOnly)
            return Status(Status::Code::NotSupported,
                          QStringLiteral("the database was opened read-only"));
        const QString path = tablePath(name);
        if (path.isEmpty())
            return Status(Status::Code::NotFound, QStringLiteral("no table named %1").arg(name));
        Result<std::unique_ptr<DbfTable>> opened =
            DbfTable::open(path, DbfTable::OpenMode::ReadWrite, m_codePage);
        if (!opened.isOk())
            return opened.status();
        DbfTable &table = *opened.value();
        if (!table.isWritable())
            return table.writable();
        if (Status s = table.lockHeader(); !s.isOk())
            return s;
        table.setDurable(false);
        QList<quint32> written;
        Status s = appendEach(table, rows, &written);
        if (s.isOk())
            s = table.sync();
        if (!s.isOk()) {
            // Take back what the batch wrote: a deleted record is one no reader shows.
            for (const quint32 recno : std::as_const(written))
                (void)table.setDeleted(recno, true);
            (void)table.sync();
        }
        (void)table.unlockHeader();
        return s;
    }

    // A tag of the table's structural index (indextag_p.h). Record sources open on the table
    // take the new tag up at their next write (DbfTable::addIndexTag); sorts and finds read
    // it from the next query on.
    Status createIndex(const QString &table, const QString &indexName,
                       const QStringList &fields) override
    {
        if (m_closed)
            return Status(Status::Code::InvalidArgument, QStringLiteral("the database is closed"));
        if (m_readOnly)
            return Status(Status::Code::NotSupported,
                          QStringLiteral("the database was opened read-only"));
        const Result<IndexedFields> indexed = indexFields(*this, table, fields);
        if (!indexed.isOk())
            return indexed.status();
        Result<std::unique_ptr<DbfTable>> opened =
            DbfTable::open(tablePath(table), DbfTable::OpenMode::ReadWrite, m_codePage);
        if (!opened.isOk())
            return opened.status();
        DbfTable &dbf = *opened.value();
        QStringList names;
        for (const FieldInfo &f : indexed->fields)
            names << f.name;
        const Result<CdxTagDefinition> tag = indexTag(dbf, indexName, names);
        if (!tag.isOk())
            return tag.status();
        Status added = dbf.addIndexTag(*tag);
        if (added.code() == Status::Code::InvalidArgument
            && added.message() == QStringLiteral("an index named %1 exists already").arg(tag->name))
            return Status(Status::Code::InvalidArgument,
                          QStringLiteral("an index named %1 exists already").arg(indexName));
        return added;
    }

    Result<TableDescription> describeTable(const QString &name) const override
    {
        if (m_closed)
            return Status(Status::Code::InvalidArgument, QStringLiteral("the database is closed"));
        const QString path = tablePath(name);
        if (path.isEmpty())
            return Status(Status::Code::NotFound, QStringLiteral("no table named %1").arg(name));
        Result<std::unique_ptr<DbfTable>> table =
            DbfTable::open(path, DbfTable::OpenMode::ReadOnly, m_codePage);
        if (!table.isOk())
            return table.status();
        return TableDescription{ QFileInfo(path).completeBaseName(), table.value()->fieldInfos(),
                                 table.value()->infoText() };
    }
    void Close() override { m_closed = true; }

private:
    static Status appendEach(DbfTable &table, const QList<QVariantList> &rows,
                             QList<quint32> *written)
    {
        const qsizetype fields = table.fields().size();
        for (qsizetype r = 0; r < rows.size(); ++r) {
            if (rows[r].size() > fields)
                return Status(Status::Code::InvalidArgument,
                              QStringLiteral("row %1 has %2 values; the table has %3 fields")
                                  .arg(r + 1)
                                  .arg(rows[r].size())
                                  .arg(fields));
            Result<quint32> added = table.appendRecord(rows[r]);
            if (!added.isOk())
                return Status(
                    added.status().code(),
                    QStringLiteral("row %1: %2").arg(r + 1).arg(added.status().message()));
            *written << added.value();
        }
        return Status::ok();
    }

    // Joins and column lists are SQLite's work; the record source runs the one-table shapes.
    // The statement runs on an in-memory SQLite connection where each table it names is a
    // "dbf" virtual table. Such a record source holds its rows and is read-only.
    Result<std::unique_ptr<RecordSource>> openThroughSqlite(const jet::SelectStatement &stmt) const
    {
        if (Status s = jet::checkTerms(stmt.terms, sqliteStatementLimits()); !s.isOk())
            return s;
        Result<std::shared_ptr<sqlite::Connection>> conn =
            sqlite::Connection::open(QStringLiteral(":memory:"), {});
        if (!conn.isOk())
            return conn.status();
        conn.value()->setTextCompare(m_collate);
        const Status stopped = statementStopped();
        if (Status s =
                registerDbfModule(conn.value()->handle(), kStatementTimeLimitMs, stopped.message());
            !s.isOk())
            return s;
        std::vector<jet::TableRef> tables{ stmt.from };
        for (const jet::Join &j : stmt.joins)
            tables.push_back(j.table);
        QStringList created;
        for (const jet::TableRef &t : tables) {
            const QString path = tablePath(t.name);
            if (path.isEmpty())
                return Status(
                    Status::Code::NotFound,
                    QStringLiteral("no table named %1 at position %2").arg(t.name).arg(t.pos));
            if (created.contains(t.name, Qt::CaseInsensitive))
                continue;
            QString quotedPath = path;
            quotedPath.replace(QLatin1Char('\''), QStringLiteral("''"));
            QString quotedName = t.name;
            quotedName.replace(QLatin1Char('"'), QStringLiteral("\"\""));
            Status s =
                conn.value()->exec(QStringLiteral("CREATE VIRTUAL TABLE \"%1\" USING dbf('%2', %3)")
                                       .arg(quotedName, quotedPath)
                                       .arg(m_codePage));
            if (!s.isOk())
                return s;
            created << t.name;
        }
        Result<std::unique_ptr<RecordSource>> opened =
            sqlite::SqliteRecordSource::open(conn.value(), stmt);
        if (!opened.isOk() && opened.status().engineMessage() == stopped.message())
            return stopped; // in the engine's own words, not SQLite's wrapping of them
        return opened;
    }

    // The file of a table, its title matched without regard to case; empty when none.
    QString tablePath(const QString &name) const
    {
        const QFileInfoList files = QDir(m_dir).entryInfoList(QDir::Files);
        for (const QFileInfo &f : files) {
            if (f.suffix().compare(QLatin1String("dbf"), Qt::CaseInsensitive) == 0
                && f.completeBaseName().compare(name.trimmed(), Qt::CaseInsensitive) == 0)
                return f.absoluteFilePath();
        }
        return QString();
    }

    QString m_dir;
    bool m_readOnly;
    int m_codePage;
    TextCompare m_collate;
    bool m_closed = false;
};

} // namespace

Result<std::unique_ptr<Database>> openDatabase(const QString &directory, bool readOnly,
                                               int codePage, TextCompare collate)
{
    const QFileInfo info(directory);
    if (!info.exists())
        return Status(Status::Code::NotFound,
                      QStringLiteral("the folder %1 was not found").arg(directory));
    if (!info.isDir())
        return Status(Status::Code::NotFound,
                      QStringLiteral("%1 is not a directory of FoxPro tables").arg(directory));
    return std::unique_ptr<Database>(
        new FoxProDatabase(info.absoluteFilePath(), readOnly, codePage, collate));
}

} // namespace plx::foxpro
