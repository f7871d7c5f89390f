// services/recordsource/foxpro/foxprorecordsource.cpp: opening, moving and reading.
#include "services/recordsource/foxpro/foxprorecordsource.h"

#include "services/recordsource/jet/parser.h"

namespace plx::foxpro {

namespace {

Status closedError()
{
    return Status(Status::Code::InvalidArgument, QStringLiteral("the record source is closed"));
}

// "SELECT" as the first word marks a statement; anything else names a table.
bool isStatement(const QString &text)
{
    return text.trimmed().startsWith(QLatin1String("SELECT"), Qt::CaseInsensitive)
        && (text.trimmed().size() == 6 || !text.trimmed().at(6).isLetterOrNumber());
}

} // namespace

FoxProRecordSource::~FoxProRecordSource()
{
    Close();
}

Result<std::unique_ptr<RecordSource>>
FoxProRecordSource::open(const TablePaths &paths, const QString &tableOrSql, bool readOnly)
{
    QString sql = tableOrSql;
    if (!isStatement(tableOrSql)) {
        QString name = tableOrSql.trimmed();
        if (name.startsWith(QLatin1Char('[')) && name.endsWith(QLatin1Char(']')))
            name = name.mid(1, name.size() - 2);
        sql = QStringLiteral("SELECT * FROM [%1]").arg(name);
    }
    Result<jet::SelectStatement> parsed = jet::parseSelect(sql);
    if (!parsed.isOk())
        return parsed.status();
    const jet::SelectStatement &stmt = parsed.value();
    if (!stmt.joins.empty())
        return Status(Status::Code::NotSupported,
                      QStringLiteral("a query over several FoxPro tables is not supported: %1")
                          .arg(tableOrSql));
    if (!stmt.star)
        return Status(Status::Code::NotSupported,
                      QStringLiteral("FoxPro record sources select whole records (SELECT *): %1")
                          .arg(tableOrSql));
    const QString path = paths(stmt.from.name);
    if (path.isEmpty())
        return Status(Status::Code::NotFound,
                      QStringLiteral("no table named %1 at position %2")
                          .arg(stmt.from.name)
                          .arg(stmt.from.pos));
    Result<std::unique_ptr<DbfTable>> table = DbfTable::open(
        path, readOnly ? DbfTable::OpenMode::ReadOnly : DbfTable::OpenMode::ReadWrite);
    if (!table.isOk())
        return table.status();
    std::unique_ptr<FoxProRecordSource> source(new FoxProRecordSource);
    source->m_table = std::move(table).value();
    source->m_tableName = stmt.from.name;
    source->m_alias = stmt.from.effectiveAlias();
    if (Status s = source->build(stmt); !s.isOk())
        return s;
    if (!source->m_keys.empty())
        (void)source->moveTo(0);
    return std::unique_ptr<RecordSource>(std::move(source));
}

bool FoxProRecordSource::hasCurrent() const
{
    return !m_closed && !m_onDeleted && m_pos >= 0 && m_pos < qint64(m_keys.size());
}

Status FoxProRecordSource::checkOpen() const
{
    return m_closed ? closedError() : Status::ok();
}

bool FoxProRecordSource::isBOF() const
{
    return m_closed || m_keys.empty() || m_pos < 0;
}

bool FoxProRecordSource::isEOF() const
{
    return m_closed || m_keys.empty() || m_pos >= qint64(m_keys.size());
}

qint32 FoxProRecordSource::AbsolutePosition() const
{
    return hasCurrent() ? qint32(m_pos) : -1;
}

qint32 FoxProRecordSource::RecordCount() const
{
    return m_closed ? 0 : qint32(std::min<qint64>(m_reached, qint64(m_keys.size())));
}

// Every move drops a pending edit and its lock, as moving off a record does in DAO.
Status FoxProRecordSource::moveTo(qint64 position)
{
    if (m_mode != EditMode::None)
        endEdit();
    const qint64 size = qint64(m_keys.size());
    m_onDeleted = false;
    m_pos = std::clamp<qint64>(position, -1, size);
    if (m_pos >= 0 && m_pos < size)
        m_reached = std::max(m_reached, m_pos + 1);
    return Status::ok();
}

Status FoxProRecordSource::setAbsolutePosition(qint32 position)
{
    if (Status s = checkOpen(); !s.isOk())
        return s;
    if (position < 0 || position >= qint64(m_keys.size()))
        return Status(Status::Code::InvalidArgument,
                      QStringLiteral("position %1 is outside 0 .. %2")
                          .arg(position)
                          .arg(qint64(m_keys.size()) - 1));
    return moveTo(position);
}

Status FoxProRecordSource::MoveFirst()
{
    if (Status s = checkOpen(); !s.isOk())
        return s;
    if (m_keys.empty())
        return Status(Status::Code::NotFound,
                      QStringLiteral("no current record: the source is empty"));
    return moveTo(0);
}

Status FoxProRecordSource::MoveLast()
{
    if (Status s = checkOpen(); !s.isOk())
        return s;
    if (m_keys.empty())
        return Status(Status::Code::NotFound,
                      QStringLiteral("no current record: the source is empty"));
    return moveTo(qint64(m_keys.size()) - 1);
}

Status FoxProRecordSource::MoveNext()
{
    if (Status s = checkOpen(); !s.isOk())
        return s;
    if (m_onDeleted)
        return moveTo(m_pos); // the successor has moved into the deleted record's place
    if (isEOF())
        return Status(Status::Code::InvalidArgument, QStringLiteral("MoveNext at EOF"));
    return moveTo(m_pos + 1);
}

Status FoxProRecordSource::MovePrevious()
{
    if (Status s = checkOpen(); !s.isOk())
        return s;
    if (m_onDeleted)
        return moveTo(m_pos - 1);
    if (isBOF())
        return Status(Status::Code::InvalidArgument, QStringLiteral("MovePrevious at BOF"));
    return moveTo(m_pos - 1);
}

Status FoxProRecordSource::FindFirst(const QString &criterion)
{
    if (Status s = checkOpen(); !s.isOk())
        return s;
    Result<qint64> found = findFrom(criterion, 0);
    if (!found.isOk())
        return found.status();
    m_noMatch = found.value() < 0;
    // Deliberate: without a match the position stays; callers restore what they remembered.
    return m_noMatch ? Status::ok() : moveTo(found.value());
}

Status FoxProRecordSource::FindNext(const QString &criterion)
{
    if (Status s = checkOpen(); !s.isOk())
        return s;
    const qint64 start = m_onDeleted ? m_pos : m_pos + 1;
    Result<qint64> found = findFrom(criterion, std::max<qint64>(start, 0));
    if (!found.isOk())
        return found.status();
    m_noMatch = found.value() < 0;
    return m_noMatch ? Status::ok() : moveTo(found.value());
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
