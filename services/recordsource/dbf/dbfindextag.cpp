// services/recordsource/dbf/dbfindextag.cpp: INDEX ON ... TAG for a table: the first tag makes
// the structural index, later ones are added to it.
#include "services/recordsource/dbf/internal/dbftable.h"

#include "services/recordsource/dbf/dbfio_p.h"
#include "services/recordsource/dbf/internal/cdxindex.h"

#include <QDir>
#include <QFileInfo>

namespace plx {

namespace {

constexpr qint64 kTableFlagsAt = 28;
constexpr quint8 kStructuralIndexFlag = 0x01;

// NAME.CDX beside NAME.DBF, the extension in the letter case of the table's.
QString structuralIndexPath(const QString &tablePath)
{
    const QFileInfo info(tablePath);
    const bool lower = info.suffix() == info.suffix().toLower();
    return info.dir().filePath(info.completeBaseName()
                               + (lower ? QStringLiteral(".cdx") : QStringLiteral(".CDX")));
}

} // namespace

Status DbfTable::addIndexTag(const CdxTagDefinition &tag)
{
    if (!isWritable())
        return m_writable;
    // The header lock keeps appends out while the tags are built from the records.
    if (Status s = lockHeader(m_headerLockTimeoutMs); !s.isOk())
        return s;
    Status s = adoptNewIndex();
    if (s.isOk()) {
        if (Result<quint32> count = refreshCount(); !count.isOk())
            s = count.status();
    }
    if (s.isOk())
        s = m_index ? m_index->addTag(tag) : createStructuralIndex(tag);
    (void)unlockHeader();
    return s;
}

// The .CDX first, then the flag that announces it: a table whose flag is set always has
// its index.
Status DbfTable::createStructuralIndex(const CdxTagDefinition &tag)
{
    if (const QString stray = dbfio::companionFile(m_path, ".cdx"); !stray.isEmpty())
        return dbfio::fileError(Status::Code::InvalidArgument, m_path,
                                QStringLiteral("%1 is there but the table does not announce it "
                                               "as its structural index")
                                    .arg(QFileInfo(stray).fileName()));
    Result<std::unique_ptr<CdxIndex>> index =
        CdxIndex::create(structuralIndexPath(m_path), *this, { tag });
    if (!index.isOk())
        return index.status();
    const auto flags = char(m_header.tableFlags | kStructuralIndexFlag);
    Status s = dbfio::writeAt(m_fd, kTableFlagsAt, &flags, 1, m_path);
    if (s.isOk())
        s = dbfio::syncData(m_fd, m_path);
    if (!s.isOk())
        return s;
    m_header.tableFlags = quint8(flags);
    m_header.structuralIndex = true;
    m_scheme = DbfLockScheme::Extended;
    m_index = std::move(*index);
    return Status::ok();
}

} // namespace plx
