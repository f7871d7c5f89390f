// services/recordsource/positionedrecordsource.cpp: DAO's position rules, once for all
// back ends.
#include "services/recordsource/internal/positionedrecordsource.h"

#include <algorithm>

namespace plx {

Status PositionedRecordSource::closedError()
{
    return Status(Status::Code::InvalidArgument, QStringLiteral("the record source is closed"));
}

bool PositionedRecordSource::hasCurrent() const
{
    return !m_closed && !m_onDeleted && m_pos >= 0 && m_pos < size();
}

Status PositionedRecordSource::checkOpen() const
{
    return m_closed ? closedError() : Status::ok();
}

Status PositionedRecordSource::checkOpenAndWritable() const
{
    if (m_closed)
        return closedError();
    const QString reason = readOnlyReason();
    return reason.isEmpty() ? Status::ok() : Status(Status::Code::NotSupported, reason);
}

bool PositionedRecordSource::isBOF() const
{
    return m_closed || size() == 0 || m_pos < 0;
}

bool PositionedRecordSource::isEOF() const
{
    return m_closed || size() == 0 || m_pos >= size();
}

qint32 PositionedRecordSource::AbsolutePosition() const
{
    return hasCurrent() ? qint32(m_pos) : -1;
}

qint32 PositionedRecordSource::RecordCount() const
{
    // Deliberate: only the records reached so far are counted, as with DAO dynasets, although
    // the keys are all known; callers rely on MoveLast to make the count exact.
    return m_closed ? 0 : qint32(std::min(m_reached, size()));
}

Status PositionedRecordSource::moveTo(qint64 position)
{
    endEdit();
    m_onDeleted = false;
    m_pos = std::clamp<qint64>(position, -1, size());
    if (m_pos >= 0 && m_pos < size())
        m_reached = std::max(m_reached, m_pos + 1);
    return Status::ok();
}

Status PositionedRecordSource::setAbsolutePosition(qint32 position)
{
    if (Status s = checkOpen(); !s.isOk())
        return s;
    // Any record of the keyset may be reached this way, not only those counted so far.
    if (position < 0 || position >= size())
        return Status(
            Status::Code::InvalidArgument,
            QStringLiteral("position %1 is outside 0 .. %2").arg(position).arg(size() - 1));
    return moveTo(position);
}

Status PositionedRecordSource::MoveFirst()
{
    if (Status s = checkOpen(); !s.isOk())
        return s;
    if (size() == 0)
        return Status(Status::Code::NotFound,
                      QStringLiteral("no current record: the source is empty"));
    return moveTo(0);
}

Status PositionedRecordSource::MoveLast()
{
    if (Status s = checkOpen(); !s.isOk())
        return s;
    if (size() == 0)
        return Status(Status::Code::NotFound,
                      QStringLiteral("no current record: the source is empty"));
    return moveTo(size() - 1);
}

Status PositionedRecordSource::MoveNext()
{
    if (Status s = checkOpen(); !s.isOk())
        return s;
    if (m_onDeleted)
        return moveTo(m_pos); // the successor has moved into the deleted record's place
    if (isEOF())
        return Status(Status::Code::InvalidArgument, QStringLiteral("MoveNext at EOF"));
    return moveTo(m_pos + 1);
}

Status PositionedRecordSource::MovePrevious()
{
    if (Status s = checkOpen(); !s.isOk())
        return s;
    if (m_onDeleted)
        return moveTo(m_pos - 1);
    if (isBOF())
        return Status(Status::Code::InvalidArgument, QStringLiteral("MovePrevious at BOF"));
    return moveTo(m_pos - 1);
}

Status PositionedRecordSource::FindFirst(const QString &criterion)
{
    if (Status s = checkOpen(); !s.isOk())
        return s;
    Result<qint64> found = locate(criterion, 0);
    if (!found.isOk())
        return found.status();
    m_noMatch = found.value() < 0;
    // Deliberate: without a match the position stays; callers restore what they remembered,
    // as DAO leaves the current record undefined.
    return m_noMatch ? Status::ok() : moveTo(found.value());
}

Status PositionedRecordSource::FindNext(const QString &criterion)
{
    if (Status s = checkOpen(); !s.isOk())
        return s;
    // After a Delete the record that followed the deleted one sits at its position.
    const qint64 start = m_onDeleted ? m_pos : m_pos + 1;
    Result<qint64> found = locate(criterion, std::max<qint64>(start, 0));
    if (!found.isOk())
        return found.status();
    m_noMatch = found.value() < 0;
    return m_noMatch ? Status::ok() : moveTo(found.value());
}

} // namespace plx
