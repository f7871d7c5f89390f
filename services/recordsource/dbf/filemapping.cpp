// services/recordsource/dbf/filemapping.cpp: the process's registry of table mappings.
#include "services/recordsource/dbf/filemapping_p.h"

#include <QMutex>
#include <QMutexLocker>

#include <deque>
#include <vector>

namespace plx::dbfio {

namespace {

#ifdef _WIN32
// A mapped file cannot be deleted or renamed on Windows: keep nothing beyond its last table.
constexpr size_t kKeptIdle = 0;
#else
constexpr size_t kKeptIdle = 4;
#endif

struct Entry
{
    quint64 device;
    quint64 inode;
    std::weak_ptr<const FileMapping> mapping;
};

struct Registry
{
    QMutex mutex;
    std::vector<Entry> live; // the longest mapping of each file, while anyone holds it
    std::deque<std::shared_ptr<const FileMapping>> recent; // most recent first
};

Registry &registry()
{
    static Registry r;
    return r;
}

void keepRecent(Registry &r, const std::shared_ptr<const FileMapping> &m)
{
    if (kKeptIdle == 0)
        return;
    for (auto it = r.recent.begin(); it != r.recent.end(); ++it) {
        if (*it == m) {
            r.recent.erase(it);
            break;
        }
    }
    r.recent.push_front(m);
    while (r.recent.size() > kKeptIdle)
        r.recent.pop_back();
}

} // namespace

Result<std::shared_ptr<const FileMapping>>
FileMapping::acquire(FileHandle file, const QString &path, qint64 minLength, qint64 reserve)
{
    Result<FileStamp> stamp = fileStamp(file, path);
    if (!stamp.isOk())
        return stamp.status();
    Registry &r = registry();
    QMutexLocker lock(&r.mutex);
    std::erase_if(r.live, [](const Entry &e) { return e.mapping.expired(); });
    Entry *slot = nullptr;
    for (Entry &e : r.live) {
        if (e.device == stamp->device && e.inode == stamp->inode) {
            slot = &e;
            break;
        }
    }
    if (slot) {
        std::shared_ptr<const FileMapping> m = slot->mapping.lock();
        if (m && m->length() >= minLength) {
            keepRecent(r, m);
            return m;
        }
    }
    Result<std::shared_ptr<const FileMapping>> made =
        create(file, path, qMax(minLength, stamp->size) + reserve);
    if (!made.isOk())
        return made.status();
    if (slot)
        slot->mapping = made.value();
    else
        r.live.push_back({ stamp->device, stamp->inode, made.value() });
    keepRecent(r, made.value());
    return made;
}

void FileMapping::releaseIdle()
{
    Registry &r = registry();
    std::deque<std::shared_ptr<const FileMapping>> dropped;
    {
        QMutexLocker lock(&r.mutex);
        dropped.swap(r.recent);
    }
    // unmapped here, outside the lock
}

} // namespace plx::dbfio
