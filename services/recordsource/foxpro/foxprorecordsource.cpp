// services/recordsource/foxpro/foxprorecordsource.cpp: opening, moving and reading.
#include "services/recordsource/foxpro/internal/foxprorecordsource.h"
#include "services/recordsource/foxpro/statementbounds_p.h"

#include <QFileInfo>

namespace plx::foxpro {

namespace {

// Why no table of the database can be written, whatever the table: a read-only open, or a
// write-protected folder, which marks data not to be changed (a read-only share, a CD) and
// where the files the controls keep beside a table could not be written either.
QString databaseRefusal(const QString &tablePath, bool readOnly)
{
    if (readOnly)
        return QStringLiteral("the database was opened read-only");
    if (!QFileInfo(QFileInfo(tablePath).absolutePath()).isWritable())
        return QStringLiteral("the folder is write-protected");
    return {};
}

} // namespace

FoxProRecordSource::~FoxProRecordSource()
{
    Close();
}

Result<std::unique_ptr<RecordSource>> FoxProRecordSource::open(const TablePaths &paths,
                                                               const jet::SelectStatement &stmt,
                                                               const QString &text, bool readOnly,
                                                               int codePage, TextCompare collate)
{
    if (!stmt.joins.empty())
        return Status(
            Status::Code::NotSupported,
            QStringLiteral("a query over several FoxPro tables is not supported: %1").arg(text));
    if (!stmt.star)
        return Status(
            Status::Code::NotSupported,
            QStringLiteral("FoxPro record sources select whole records (SELECT *): %1").arg(text));
    const QString path = paths(stmt.from.name);
    if (path.isEmpty())
        return Status(Status::Code::NotFound,
                      QStringLiteral("no table named %1 at position %2")
                          .arg(stmt.from.name)
                          .arg(stmt.from.pos));
    const QString refusal = databaseRefusal(path, readOnly);
    Result<std::unique_ptr<DbfTable>> table = DbfTable::open(
        path, refusal.isEmpty() ? DbfTable::OpenMode::ReadWrite : DbfTable::OpenMode::ReadOnly,
        codePage);
    if (!table.isOk())
        return table.status();
    std::unique_ptr<FoxProRecordSource> source(new FoxProRecordSource);
    source->m_table = std::move(table).value();
    source->m_readOnlyReason = refusal.isEmpty() ? source->m_table->readOnlyReason() : refusal;
    source->m_collate = collate;
    source->m_tableName = stmt.from.name;
    source->m_alias = stmt.from.effectiveAlias();
    {
        const StatementDeadline deadline;
        if (Status s = source->build(stmt); !s.isOk())
            return s;
    }
    if (!source->m_keys.empty())
        (void)source->moveTo(0);
    return std::unique_ptr<RecordSource>(std::move(source));
}

Result<QVariant> FoxProRecordSource::value(int index) const
{
    if (m_closed)
        return closedError();
    if (index < 0 || index >= m_table->fieldInfos().size())
        return Status(Status::Code::InvalidArgument, QStringLiteral("no field %1").arg(index));
    if (m_mode != EditMode::None)
        return m_buffer.at(index);
    if (!hasCurrent())
        return Status(Status::Code::NotFound, QStringLiteral("no current record"));
    return m_table->value(m_keys[size_t(m_pos)], index);
}

void FoxProRecordSource::Close()
{
    if (m_closed)
        return;
    endEdit();
    m_keys.clear();
    m_keys.shrink_to_fit();
    m_table.reset();
    m_closed = true;
}

} // namespace plx::foxpro
