// dialogs/recordcursor.cpp
#include "dialogs/recordcursor.h"

namespace plx {

namespace {

// Puts the source back where it stood when this was made: on its record, or before the
// first / after the last one.
class PositionKeeper
{
public:
    explicit PositionKeeper(RecordSource &source)
        : m_source(source), m_position(source.AbsolutePosition()), m_bof(source.isBOF()),
          m_eof(source.isEOF())
    {
    }
    PositionKeeper(const PositionKeeper &) = delete;
    PositionKeeper &operator=(const PositionKeeper &) = delete;
    ~PositionKeeper()
    {
        if (m_position >= 0) {
            if (m_source.AbsolutePosition() != m_position)
                (void)m_source.setAbsolutePosition(m_position);
        } else if (m_eof && !m_bof && m_source.MoveLast().isOk()) {
            (void)m_source.MoveNext();
        } else if (m_bof && !m_eof && m_source.MoveFirst().isOk()) {
            (void)m_source.MovePrevious();
        }
    }

private:
    RecordSource &m_source;
    qint32 m_position;
    bool m_bof;
    bool m_eof;
};

} // namespace

RecordCursor::RecordCursor(std::shared_ptr<RecordSource> source) : m_source(std::move(source))
{
    if (!m_source)
        return;
    if (movable() && !(m_source->isBOF() && m_source->isEOF())) {
        PositionKeeper keeper(*m_source);
        (void)m_source->MoveLast();
    }
    m_count = qMax(0, m_source->RecordCount());
    m_position = m_count > 0 ? 0 : -1;
}

bool RecordCursor::movable() const
{
    return m_source && m_source->editMode() == EditMode::None;
}

void RecordCursor::setPosition(qint32 position)
{
    m_position = position >= 0 && position < m_count ? position : -1;
}

bool RecordCursor::readRows(qint32 first, qint32 rows, const RowReader &row)
{
    if (!movable() || first < 0 || first >= m_count)
        return false;
    PositionKeeper keeper(*m_source);
    if (!m_source->setAbsolutePosition(first).isOk())
        return false;
    const int fieldCount = int(fields().size());
    const qint32 last = qMin(m_count, first + rows) - 1;
    QVariantList values;
    values.reserve(fieldCount);
    for (qint32 position = first; position <= last; ++position) {
        if (position > first && (!m_source->MoveNext().isOk() || m_source->isEOF()))
            return false;
        values.clear();
        for (int f = 0; f < fieldCount; ++f) {
            Result<QVariant> v = m_source->value(f);
            values.append(v.isOk() ? v.value() : QVariant());
        }
        row(position, values);
    }
    return true;
}

QVariant RecordCursor::value(const QString &field)
{
    const int index = m_source ? m_source->fieldIndex(field) : -1;
    if (index < 0 || m_position < 0)
        return {};
    QVariant out;
    readRows(m_position, 1, [&](qint32, const QVariantList &values) { out = values.value(index); });
    return out;
}

std::optional<qint32> RecordCursor::find(const QString &criterion, bool next, Status *error)
{
    if (!movable() || m_count < 1)
        return std::nullopt;
    PositionKeeper keeper(*m_source);
    Status status = Status::ok();
    if (next && m_position >= 0) {
        status = m_source->setAbsolutePosition(m_position);
        if (status.isOk())
            status = m_source->FindNext(criterion);
    } else {
        status = m_source->FindFirst(criterion);
    }
    if (error)
        *error = status;
    if (!status.isOk() || m_source->NoMatch())
        return std::nullopt;
    m_position = m_source->AbsolutePosition();
    return m_position;
}

std::optional<qint32> RecordCursor::locate(const QString &criterion)
{
    const qint32 before = m_position;
    const std::optional<qint32> found = find(criterion, false);
    m_position = before;
    return found;
}

} // namespace plx
