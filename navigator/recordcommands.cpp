// navigator/recordcommands.cpp
#include "navigator/recordcommands_p.h"

#include "services/texthelpers.h"

#include <algorithm>

namespace plx {

RecordCommands::Command RecordCommands::commandFor(const QString &caption)
{
    // By caption, not by key: a host that renames a button renames its command with it.
    const QString upper = caption.toUpper();
    if (upper == QLatin1String("NEW"))
        return Command::New;
    if (upper == QLatin1String("EDIT"))
        return Command::Edit;
    if (upper == QLatin1String("COPY"))
        return Command::Copy;
    if (upper == QLatin1String("DELETE"))
        return Command::Delete;
    if (upper == QLatin1String("SAVE"))
        return Command::Save;
    if (upper == QLatin1String("CANCEL"))
        return Command::Cancel;
    return Command::None;
}

bool RecordCommands::needsCurrentRecord(Command command)
{
    return command == Command::Edit || command == Command::Copy || command == Command::Delete;
}

std::optional<bool> RecordCommands::editingAfter(Command command)
{
    switch (command) {
    case Command::New:
    case Command::Edit:
    case Command::Copy: return true;
    case Command::Save:
    case Command::Cancel: return false;
    case Command::None:
    case Command::Delete: break;
    }
    return std::nullopt;
}

qint32 RecordCommands::returnPositionFor(bool bof, bool eof, qint32 position, qint32 count)
{
    if (bof)
        return 0;
    if (eof || position < 0)
        return count - 1;
    return position;
}

bool RecordCommands::begin()
{
    if (m_running)
        return false;
    m_running = true;
    return true;
}

RecordCommands::Mode RecordCommands::mode() const
{
    if (!m_held)
        return Mode::None;
    return isNewRecord(*m_held) ? Mode::New : Mode::Edit;
}

bool RecordCommands::isNewRecord(const QString &id) const
{
    return m_newRecord && rtrimSpaces(*m_newRecord) == rtrimSpaces(id);
}

QString RecordCommands::release()
{
    QString held = heldID();
    m_held.reset();
    return held;
}

bool RecordCommands::offersDeletion(const QString &editedID, const QString &currentID) const
{
    return isNewRecord(editedID) && isNewRecord(currentID);
}

void RecordCommands::recordDeleted(const QString &id)
{
    if (isNewRecord(id))
        m_newRecord.reset();
    recordPlaced(id);
}

bool RecordCommands::othersUnplaced(const QString &id) const
{
    const QString wanted = rtrimSpaces(id);
    return std::any_of(m_unplaced.cbegin(), m_unplaced.cend(),
                       [&](const QString &other) { return rtrimSpaces(other) != wanted; });
}

void RecordCommands::recordPlaced(const QString &id)
{
    const QString wanted = rtrimSpaces(id);
    m_unplaced.removeIf([&](const QString &other) { return rtrimSpaces(other) == wanted; });
}

std::optional<qint32> RecordCommands::returnPositionWithin(qint32 count) const
{
    if (m_returnPosition >= 0 && m_returnPosition < count)
        return m_returnPosition;
    return std::nullopt;
}

} // namespace plx
