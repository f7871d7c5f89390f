// services/recordsource/foxpro/foxprorecordsource_order.cpp: a saved record put back into
// its place in the keyset's order without sorting the keyset again.
//
// Two records compare key by key exactly as the sort ranks them (foxprorecordsource_sort.cpp):
// character, date and logical fields by their stored bytes, character fields in the General
// order by the sort keys of their text, anything else by its Jet value with Null first; ties
// in record order. The keyset is searched by halves.
#include "services/recordsource/foxpro/internal/foxprorecordsource.h"
#include "services/recordsource/foxpro/recordrow_p.h"

#include "services/recordsource/jet/internal/generalorder.h"
#include "services/recordsource/jet/internal/values.h"

#include <algorithm>
#include <cstring>

namespace plx::foxpro {

namespace {

int sign(int value)
{
    return (value > 0) - (value < 0);
}

// Two records' values of one key that the sort ranks by its Jet value.
Result<int> compareValuesOf(const jet::Node &expr, const DbfTable &table, quint32 a, quint32 b,
                            TextCompare collate)
{
    RecordRow row(table);
    row.setRecord(a);
    Result<QVariant> x = jet::evaluate(expr, &row, collate);
    if (!x.isOk())
        return x.status();
    row.setRecord(b);
    Result<QVariant> y = jet::evaluate(expr, &row, collate);
    if (!y.isOk())
        return y.status();
    const bool xNull = jet::isNull(x.value());
    const bool yNull = jet::isNull(y.value());
    if (xNull || yNull)
        return int(yNull) - int(xNull); // Null first
    Result<int> c = jet::compareValues(x.value(), y.value(), collate, 0);
    return c.isOk() ? sign(c.value()) : 0; // values the sort cannot order share a rank
}

// Two records' stored bytes of one character, date or logical field.
int compareStored(const DbfTable &table, int column, quint32 a, quint32 b, TextCompare collate)
{
    const DbfField &field = table.fields().at(column);
    if (field.type == 'C' && collate != TextCompare::Binary)
        return sign(jet::generalSortKey(table.decode(table.rawText(a, column)))
                        .compare(jet::generalSortKey(table.decode(table.rawText(b, column)))));
    return sign(std::memcmp(table.fieldBytes(a, column), table.fieldBytes(b, column),
                            size_t(field.length)));
}

} // namespace

Result<int> FoxProRecordSource::compareByOrder(quint32 a, quint32 b) const
{
    const DbfTable &table = *m_table;
    for (const jet::OrderItem &item : m_order) {
        const jet::Node &expr = *item.expr;
        int c = 0;
        const char type =
            expr.kind == jet::NodeKind::Column ? table.fields().at(expr.column).type : '\0';
        if (type == 'C' || type == 'D' || type == 'L') {
            c = compareStored(table, expr.column, a, b,
                              type == 'C' ? m_collate : TextCompare::Binary);
        } else {
            Result<int> v = compareValuesOf(expr, table, a, b, m_collate);
            if (!v.isOk())
                return v.status();
            c = v.value();
        }
        if (c != 0)
            return item.descending ? -c : c;
    }
    return 0;
}

Result<bool> FoxProRecordSource::satisfiesWhere(quint32 recno) const
{
    if (m_table->isDeleted(recno))
        return false;
    if (!m_where)
        return true;
    RecordRow row(*m_table);
    row.setRecord(recno);
    Result<QVariant> v = jet::evaluate(*m_where, &row, m_collate);
    if (!v.isOk())
        return v.status();
    return jet::isTrue(v.value());
}

bool FoxProRecordSource::placeCurrentInOrder()
{
    if (m_closed || m_mode != EditMode::None || !hasCurrent())
        return false;
    const quint32 recno = m_keys[size_t(m_pos)];
    const Result<bool> member = satisfiesWhere(recno);
    if (!member.isOk() || !member.value())
        return false;
    if (m_recnoOrder)
        return true; // record order: an edited record stays, an added one is last already
    // Search the other records, which are in order, for the first that comes after it.
    const qint64 current = m_pos;
    auto otherAt = [&](qint64 i) { return m_keys[size_t(i < current ? i : i + 1)]; };
    qint64 low = 0;
    qint64 high = qint64(m_keys.size()) - 1;
    while (low < high) {
        const qint64 mid = low + (high - low) / 2;
        const quint32 probe = otherAt(mid);
        const Result<int> c = compareByOrder(probe, recno);
        if (!c.isOk())
            return false;
        if (c.value() < 0 || (c.value() == 0 && probe < recno))
            low = mid + 1;
        else
            high = mid;
    }
    const auto from = m_keys.begin() + current;
    const auto to = m_keys.begin() + low;
    if (low < current)
        std::rotate(to, from, from + 1);
    else
        std::rotate(from, from + 1, to + 1);
    (void)moveTo(low);
    return true;
}

} // namespace plx::foxpro
