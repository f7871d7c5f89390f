// services/recordsource/dbf/cdxaddtag.cpp: one more tag in an existing compound index.
//
// The file is built anew beside a temporary directory, as create() builds it, then written
// over the old one in place: readers and writers holding the file open keep their handle,
// and the raised update counter tells them to read the tag directory again.
#include "services/recordsource/dbf/cdxindex_p.h"

#include "services/recordsource/dbf/cdxpages_p.h"
#include "services/recordsource/dbf/dbfio_p.h"
#include "services/recordsource/internal/filelock.h"

#include <QFile>
#include <QTemporaryDir>

#include <cstring>

namespace plx {

namespace {

constexpr quint64 kIndexLockAt = 0x7FFFFFFE;

CdxTagDefinition definitionOf(const CdxTag &tag)
{
    return { tag.name,      tag.keyExpression, tag.forExpression,
             tag.keyLength, tag.unique,        tag.descending };
}

// The file `tags` make from `table`, as create() writes it.
Result<QByteArray> builtFile(const DbfTable &table, const QList<CdxTagDefinition> &tags)
{
    QTemporaryDir scratch;
    if (!scratch.isValid())
        return Status(Status::Code::IoError,
                      QStringLiteral("no temporary folder to build the index in"));
    const QString path = scratch.filePath(QStringLiteral("NEW.CDX"));
    if (Result<std::unique_ptr<CdxIndex>> made = CdxIndex::create(path, table, tags); !made.isOk())
        return made.status();
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return dbfio::fileError(Status::Code::IoError, path,
                                QStringLiteral("cannot read the built index"));
    return file.readAll();
}

} // namespace

Status CdxIndex::addTag(const CdxTagDefinition &tag)
{
    if (!m_writable)
        return Status(Status::Code::NotSupported,
                      QStringLiteral("%1 is open read only").arg(path()));
    QList<CdxTagDefinition> all;
    for (const CdxTag &t : tags()) {
        if (t.name.compare(tag.name, Qt::CaseInsensitive) == 0)
            return Status(Status::Code::InvalidArgument,
                          QStringLiteral("an index named %1 exists already").arg(tag.name));
        all << definitionOf(t);
    }
    all << tag;
    if (Status st = lockRange(m_fd, kIndexLockAt, 1, LockKind::Exclusive, 5000); !st.isOk())
        return st;
    m_locked = true;
    cdxpages::PageFile pages(m_fd, path());
    Status st = pages.markUpdate();
    Result<QByteArray> file = st.isOk() ? builtFile(*m_table, all) : Result<QByteArray>(st);
    if (file.isOk()) {
        // The old counter and the update mark go with the new bytes, so that a write cut
        // short is still seen as one, and endUpdate() raises the counter past the old one.
        st = dbfio::readAt(m_fd, cdxpages::kCounterAt, file->data() + cdxpages::kCounterAt, 4,
                           path())
                 .status();
        if (st.isOk())
            st = dbfio::readAt(m_fd, cdxpages::kUpdateMarkAt,
                               file->data() + cdxpages::kUpdateMarkAt, 4, path())
                     .status();
        if (st.isOk())
            st = dbfio::writeAt(m_fd, 0, file->constData(), file->size(), path());
    } else {
        st = file.status();
    }
    if (st.isOk() && !QFile::resize(path(), file->size()))
        st = dbfio::fileError(Status::Code::IoError, path(),
                              QStringLiteral("cannot shorten the rewritten index"));
    if (st.isOk())
        st = pages.endUpdate();
    if (st.isOk())
        st = dbfio::syncData(m_fd, path());
    if (st.isOk())
        st = reload();
    const Result<quint32> counter = pages.readWord(cdxpages::kCounterAt);
    if (counter.isOk())
        m_counter = *counter;
    (void)unlockRange(m_fd, kIndexLockAt, 1);
    m_locked = false;
    return st;
}

} // namespace plx
