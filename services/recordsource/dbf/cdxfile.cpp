// services/recordsource/dbf/cdxfile.cpp: the tag directory, tag headers and B-tree walks of a
// compound index.
#include "services/recordsource/dbf/internal/cdxfile.h"

#include "services/recordsource/dbf/cdxnode_p.h"
#include "services/recordsource/dbf/dbfio_p.h"

#include <QFileInfo>
#include <QSet>

#include <utility>

namespace plx {

namespace {

constexpr int kHeaderSize = 2 * cdxnode::kPageSize;
// Tag names are stored as 10-byte keys, blank-padded.
constexpr int kTagNameLength = 10;
// Far deeper than the few levels millions of keys need; a deeper tree is a damaged one.
constexpr int kMaxDepth = 64;

// The tag header's fields (offsets within its first page).
constexpr int kRootAt = 0;
constexpr int kFreeListAt = 4;
constexpr int kKeyLengthAt = 12;
constexpr int kOptionsAt = 14;
constexpr int kOrderAt = 502;
constexpr int kForPositionAt = 504;
constexpr int kForLengthAt = 506;
constexpr int kKeyPositionAt = 508;
constexpr int kKeyLengthOfExpressionAt = 510;

// The NUL-ended text at `position` (of at most `length` bytes) in the expression pool that
// fills the header's second page; false when it lies outside the pool.
bool poolText(const QByteArray &header, int position, int length, QByteArray *text)
{
    if (position < 0 || length < 0 || position + length > cdxnode::kPageSize)
        return false;
    const QByteArray slot = header.mid(cdxnode::kPageSize + position, length);
    const qsizetype nul = slot.indexOf('\0');
    *text = (nul < 0 ? slot : slot.left(nul)).trimmed();
    return true;
}

} // namespace

CdxFile::CdxFile() : m_fd(dbfio::noFile()) { }

CdxFile::~CdxFile()
{
    if (dbfio::isOpen(m_fd))
        dbfio::closeFile(m_fd);
}

QString CdxFile::structuralIndexOf(const QString &tablePath)
{
    return dbfio::companionFile(tablePath, ".cdx");
}

Result<std::unique_ptr<CdxFile>> CdxFile::open(const QString &path)
{
    if (path.isEmpty() || !QFileInfo::exists(path))
        return dbfio::fileError(Status::Code::NotFound, path,
                                QStringLiteral("the index file does not exist"));
    std::unique_ptr<CdxFile> cdx(new CdxFile);
    cdx->m_path = path;
    dbfio::OpenError err;
    cdx->m_fd = dbfio::openFile(path, false, &err);
    if (!dbfio::isOpen(cdx->m_fd))
        return dbfio::fileError(
            Status::Code::IoError, path,
            QStringLiteral("cannot open the index file (error %1)").arg(err.code));
    const Result<qint64> size = dbfio::fileSize(cdx->m_fd, path);
    if (!size.isOk())
        return size.status();
    cdx->m_size = *size;
    if (Status st = cdx->readDirectory(); !st.isOk())
        return st;
    return cdx;
}

const CdxTag *CdxFile::tag(const QString &name) const
{
    for (const CdxTag &t : m_tags) {
        if (t.name.compare(name, Qt::CaseInsensitive) == 0)
            return &t;
    }
    return nullptr;
}

Status CdxFile::readPage(quint32 offset, QByteArray *page) const
{
    if (offset % cdxnode::kPageSize != 0 || qint64(offset) + cdxnode::kPageSize > m_size)
        return dbfio::fileError(Status::Code::Corrupt, m_path,
                                QStringLiteral("the index points at offset %1, outside its "
                                               "%2 bytes")
                                    .arg(offset)
                                    .arg(m_size));
    page->resize(cdxnode::kPageSize);
    const Result<qint64> got = dbfio::readAt(m_fd, offset, page->data(), page->size(), m_path);
    if (!got.isOk())
        return got.status();
    if (*got != page->size())
        return dbfio::fileError(Status::Code::Corrupt, m_path,
                                QStringLiteral("the index ends inside the page at %1").arg(offset));
    return {};
}

Status CdxFile::readDirectory()
{
    if (m_size < kHeaderSize)
        return dbfio::fileError(
            Status::Code::Corrupt, m_path,
            QStringLiteral("the index is shorter than its header (%1 bytes)").arg(m_size));
    Result<CdxTag> directory = readTagHeader(QString(), 0);
    if (!directory.isOk())
        return directory.status();
    Result<QList<CdxEntry>> names = readKeys(*directory, ' ');
    if (!names.isOk())
        return names.status();
    for (const CdxEntry &entry : std::as_const(*names)) {
        QByteArray name = entry.key;
        while (!name.isEmpty() && (name.back() == ' ' || name.back() == '\0'))
            name.chop(1);
        Result<CdxTag> tag = readTagHeader(QString::fromLatin1(name), entry.recno);
        if (!tag.isOk())
            return tag.status();
        m_tags.append(std::move(*tag));
    }
    return {};
}

Result<CdxTag> CdxFile::readTagHeader(const QString &name, quint32 offset) const
{
    QByteArray header;
    QByteArray second;
    if (Status st = readPage(offset, &header); !st.isOk())
        return st;
    if (Status st = readPage(offset + cdxnode::kPageSize, &second); !st.isOk())
        return st;
    header.append(second);
    const char *h = header.constData();
    CdxTag tag;
    tag.name = name;
    tag.headerOffset = offset;
    tag.rootOffset = dbfio::le32(h + kRootAt);
    tag.freeListOffset = dbfio::le32(h + kFreeListAt);
    tag.keyLength = dbfio::le16(h + kKeyLengthAt);
    tag.options = quint8(h[kOptionsAt]);
    tag.unique = (tag.options & 0x01) != 0;
    tag.hasFor = (tag.options & 0x08) != 0;
    tag.compact = (tag.options & 0x20) != 0;
    tag.compound = (tag.options & 0x40) != 0;
    tag.descending = dbfio::le16(h + kOrderAt) != 0;
    const QString what =
        name.isEmpty() ? QStringLiteral("the tag directory") : QStringLiteral("tag %1").arg(name);
    if (tag.keyLength < 1 || tag.keyLength + 8 > cdxnode::kPageSize - 12
        || (name.isEmpty() && tag.keyLength != kTagNameLength))
        return dbfio::fileError(
            Status::Code::Corrupt, m_path,
            QStringLiteral("%1 has the impossible key length %2").arg(what).arg(tag.keyLength));
    if (!poolText(header, dbfio::le16(h + kKeyPositionAt),
                  dbfio::le16(h + kKeyLengthOfExpressionAt), &tag.keyExpression)
        || !poolText(header, dbfio::le16(h + kForPositionAt), dbfio::le16(h + kForLengthAt),
                     &tag.forExpression))
        return dbfio::fileError(
            Status::Code::Corrupt, m_path,
            QStringLiteral("%1 has its expression outside its header").arg(what));
    return tag;
}

Result<QList<CdxEntry>> CdxFile::readKeys(const CdxTag &tag, char pad) const
{
    QList<CdxEntry> keys;
    if (Status st = walk(tag.rootOffset, tag.keyLength, pad, &keys); !st.isOk())
        return st;
    return keys;
}

// Depth first, children in order, so that the leaves come out in key order. A page reached
// twice means the links form a cycle (or two parents share a child): either way the tree is
// damaged, and refusing it is what bounds the walk by the pages of the file.
Status CdxFile::walk(quint32 root, int keyLength, char pad, QList<CdxEntry> *out) const
{
    QList<std::pair<quint32, int>> pending{ { root, 0 } };
    QSet<quint32> seen;
    QByteArray page;
    cdxnode::Node node;
    QString problem;
    while (!pending.isEmpty()) {
        const auto [offset, depth] = pending.takeLast();
        if (depth > kMaxDepth || seen.contains(offset))
            return dbfio::fileError(Status::Code::Corrupt, m_path,
                                    QStringLiteral("the index page at %1 is reached twice "
                                                   "(its links form a cycle)")
                                        .arg(offset));
        seen.insert(offset);
        if (Status st = readPage(offset, &page); !st.isOk())
            return st;
        if (!cdxnode::decode(page.constData(), keyLength, pad, &node, &problem))
            return dbfio::fileError(
                Status::Code::Corrupt, m_path,
                QStringLiteral("the index page at %1 is damaged: %2").arg(offset).arg(problem));
        if (node.isLeaf()) {
            for (const cdxnode::Entry &e : std::as_const(node.entries))
                out->append({ e.key, e.recno });
            continue;
        }
        for (qsizetype i = node.entries.size() - 1; i >= 0; --i)
            pending.append({ node.entries[i].child, depth + 1 });
    }
    return {};
}

} // namespace plx
