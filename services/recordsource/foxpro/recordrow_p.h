// services/recordsource/foxpro/recordrow_p.h: one record of a table as the Jet evaluator's row.
#pragma once

#include "services/recordsource/dbf/internal/dbftable.h"
#include "services/recordsource/jet/internal/evaluator.h"

namespace plx::foxpro {

// The values of one record, decoded only when the expression asks for them.
class RecordRow final : public jet::Row
{
public:
    explicit RecordRow(const DbfTable &table) : m_table(table) { }
    void setRecord(quint32 recno) { m_recno = recno; }
    QVariant value(int column) const override
    {
        Result<QVariant> v = m_table.value(m_recno, column);
        return v.isOk() ? v.value() : QVariant();
    }

private:
    const DbfTable &m_table;
    quint32 m_recno = 0;
};

} // namespace plx::foxpro
