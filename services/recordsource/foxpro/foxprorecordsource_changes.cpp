// services/recordsource/foxpro/foxprorecordsource_changes.cpp: whether others wrote to the
// table file since the records were read.
//
// One fstat of the table file: another program's write changes its size or modification
// time, another table object's write in this process also its write counter. A write that
// lands between this source's own write and its new stamp is taken for its own; the next
// one by others is seen.
#include "services/recordsource/foxpro/internal/foxprorecordsource.h"

namespace plx::foxpro {

void FoxProRecordSource::noteOwnWrite()
{
    if (const Result<DbfChangeStamp> now = m_table->changeStamp(); now.isOk())
        m_seenStamp = now.value();
}

bool FoxProRecordSource::changedElsewhere()
{
    if (m_closed || !m_table)
        return false;
    const Result<DbfChangeStamp> now = m_table->changeStamp();
    if (!now.isOk())
        return false;
    const bool changed = m_seenStamp && !m_seenStamp->sameContents(now.value());
    m_seenStamp = now.value();
    return changed;
}

} // namespace plx::foxpro
