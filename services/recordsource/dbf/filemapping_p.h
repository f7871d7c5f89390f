// services/recordsource/dbf/filemapping_p.h: read-only mappings of table files, shared by
// every table of the process that opens the same file.
//
// Mapping a file is cheap; touching its pages the first time is not: every page costs a
// fault, and a million-record table has tens of thousands of pages. The navigator opens the
// same table again for every sort change and every find while its own record source keeps it
// open, so the tables of one file share one mapping, and the few most recently used mappings
// stay alive for a while after their last table closed. A mapping never changes length: a
// table whose file outgrew its mapping gets a longer one, and the old one lives on for as
// long as a table still reads through it. Mappings are MAP_SHARED (a view of the page
// cache), so every one of them sees every write, whoever made it.
//
// A new mapping of a large file enters its pages on a thread of its own (one
// MADV_POPULATE_READ call, ~60 ms for a million records on a virtual machine), while the
// first pass over the file reads it with plain reads; later passes read the mapping.
#pragma once

#include "services/recordsource/dbf/dbfio_p.h"

#include <atomic>
#include <memory>
#ifndef _WIN32
#include <thread>
#endif

namespace plx::dbfio {

class FileMapping
{
public:
    ~FileMapping();
    FileMapping(const FileMapping &) = delete;
    FileMapping &operator=(const FileMapping &) = delete;

    const char *data() const { return m_data; }
    qint64 length() const { return m_length; }
    // False while the pages of a large file are still being entered in the background: then
    // a pass over the whole file reads it in blocks instead of faulting page by page.
    bool populated() const { return m_populated.load(std::memory_order_acquire); }

    // A mapping of at least the first `minLength` bytes of the open file: a live one of the
    // same file when it is long enough, else a new one of the file's size plus `reserve`
    // bytes (where the platform allows mapping beyond the end), so that appends rarely need
    // another.
    static Result<std::shared_ptr<const FileMapping>> acquire(FileHandle file, const QString &path,
                                                              qint64 minLength, qint64 reserve);

    // Lets go of the mappings kept only for reuse (tests, and hosts that want the address
    // space back at once).
    static void releaseIdle();

private:
    FileMapping(const char *data, qint64 length) : m_data(data), m_length(length) { }
    static Result<std::shared_ptr<const FileMapping>> create(FileHandle file, const QString &path,
                                                             qint64 length);

    const char *m_data;
    qint64 m_length;
    std::atomic<bool> m_populated{ true };
#ifndef _WIN32
    std::thread m_populator; // joined before the view goes
#endif
#ifdef _WIN32
    void *m_section = nullptr; // the file-mapping object behind the view
#endif
};

} // namespace plx::dbfio
