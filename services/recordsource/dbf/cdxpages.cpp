// services/recordsource/dbf/cdxpages.cpp: page reads, writes and the free list of an index.
#include "services/recordsource/dbf/cdxpages_p.h"

#include "services/recordsource/dbf/cdxnode_p.h"

namespace plx::cdxpages {

Result<qint64> PageFile::size() const
{
    return dbfio::fileSize(m_file, m_path);
}

Status PageFile::read(quint32 offset, char *page) const
{
    const Result<qint64> got = dbfio::readAt(m_file, offset, page, cdxnode::kPageSize, m_path);
    if (!got.isOk())
        return got.status();
    if (offset % cdxnode::kPageSize != 0 || *got != cdxnode::kPageSize)
        return dbfio::fileError(
            Status::Code::Corrupt, m_path,
            QStringLiteral("the index points at offset %1, outside its pages").arg(offset));
    return {};
}

Status PageFile::write(quint32 offset, const char *page)
{
    return dbfio::writeAt(m_file, offset, page, cdxnode::kPageSize, m_path);
}

Status PageFile::writeWord(quint32 offset, quint32 value)
{
    char bytes[4];
    dbfio::putLe32(bytes, value);
    return dbfio::writeAt(m_file, offset, bytes, 4, m_path);
}

Result<quint32> PageFile::readWord(quint32 offset) const
{
    char bytes[4];
    const Result<qint64> got = dbfio::readAt(m_file, offset, bytes, 4, m_path);
    if (!got.isOk())
        return got.status();
    if (*got != 4)
        return dbfio::fileError(Status::Code::Corrupt, m_path,
                                QStringLiteral("the index ends at offset %1").arg(offset));
    return dbfio::le32(bytes);
}

Result<quint32> PageFile::allocate()
{
    const Result<quint32> head = readWord(kFreeListAt);
    if (!head.isOk())
        return head.status();
    const Result<qint64> bytes = size();
    if (!bytes.isOk())
        return bytes.status();
    if (*head != 0 && *head != cdxnode::kNoPage) {
        if (*head % cdxnode::kPageSize != 0 || qint64(*head) + cdxnode::kPageSize > *bytes)
            return dbfio::fileError(Status::Code::Corrupt, m_path,
                                    QStringLiteral("the free list points at offset %1, outside "
                                                   "the index")
                                        .arg(*head));
        const Result<quint32> next = readWord(*head);
        if (!next.isOk())
            return next.status();
        if (Status st = writeWord(kFreeListAt, *next); !st.isOk())
            return st;
        return *head;
    }
    const qint64 end = (*bytes + cdxnode::kPageSize - 1) / cdxnode::kPageSize * cdxnode::kPageSize;
    if (end > 0x7FFFFE00)
        return dbfio::fileError(Status::Code::IoError, m_path,
                                QStringLiteral("the index has reached its 2 GB limit"));
    // The page is claimed by writing it, so the next allocate() sees a longer file.
    const QByteArray zeros(cdxnode::kPageSize, '\0');
    if (Status st = write(quint32(end), zeros.constData()); !st.isOk())
        return st;
    return quint32(end);
}

Status PageFile::release(quint32 offset)
{
    const Result<quint32> head = readWord(kFreeListAt);
    if (!head.isOk())
        return head.status();
    QByteArray page(cdxnode::kPageSize, '\0');
    dbfio::putLe32(page.data(), *head == cdxnode::kNoPage ? 0 : *head);
    if (Status st = write(offset, page.constData()); !st.isOk())
        return st;
    return writeWord(kFreeListAt, offset);
}

Result<bool> PageFile::updateMarked() const
{
    const Result<quint32> mark = readWord(kUpdateMarkAt);
    if (!mark.isOk())
        return mark.status();
    return *mark == kUpdateMark;
}

Status PageFile::markUpdate()
{
    return writeWord(kUpdateMarkAt, kUpdateMark);
}

Status PageFile::endUpdate()
{
    char bytes[4];
    const Result<qint64> got = dbfio::readAt(m_file, kCounterAt, bytes, 4, m_path);
    if (!got.isOk())
        return got.status();
    dbfio::putBe32(bytes, dbfio::be32(bytes) + 1);
    if (Status st = dbfio::writeAt(m_file, kCounterAt, bytes, 4, m_path); !st.isOk())
        return st;
    return writeWord(kUpdateMarkAt, 0);
}

} // namespace plx::cdxpages
