// services/recordsource/foxpro/rankcache.cpp: the process's kept ranks.
#include "services/recordsource/foxpro/internal/rankcache.h"

#include <QMutexLocker>

namespace plx::foxpro {

namespace {

size_t entryBytes(const RankCache::Ranks &ranks)
{
    return ranks ? ranks->size() * sizeof(quint32) : 0;
}

} // namespace

RankCache &RankCache::global()
{
    static RankCache cache;
    return cache;
}

RankCache::Ranks RankCache::find(const DbfChangeStamp &stamp, int field, TextCompare order)
{
    QMutexLocker lock(&m_mutex);
    for (auto it = m_entries.begin(); it != m_entries.end(); ++it) {
        if (!it->stamp.sameFile(stamp) || it->field != field || it->order != order)
            continue;
        if (!it->stamp.sameContents(stamp)) {
            m_entries.erase(it);
            return nullptr;
        }
        Entry hit = *it;
        m_entries.erase(it);
        m_entries.push_front(hit);
        return hit.ranks;
    }
    return nullptr;
}

void RankCache::store(const DbfChangeStamp &stamp, int field, TextCompare order, Ranks ranks)
{
    if (!stamp.settled || entryBytes(ranks) > kBudgetBytes)
        return;
    QMutexLocker lock(&m_mutex);
    std::erase_if(m_entries, [&](const Entry &e) {
        return e.stamp.sameFile(stamp)
            && ((e.field == field && e.order == order) || !e.stamp.sameContents(stamp));
    });
    m_entries.push_front({ stamp, field, order, std::move(ranks) });
    size_t total = 0;
    for (auto it = m_entries.begin(); it != m_entries.end(); ++it) {
        total += entryBytes(it->ranks);
        if (total > kBudgetBytes) {
            m_entries.erase(it, m_entries.end());
            break;
        }
    }
}

void RankCache::clear()
{
    QMutexLocker lock(&m_mutex);
    m_entries.clear();
}

size_t RankCache::bytes() const
{
    QMutexLocker lock(&m_mutex);
    size_t total = 0;
    for (const Entry &e : m_entries)
        total += entryBytes(e.ranks);
    return total;
}

} // namespace plx::foxpro
