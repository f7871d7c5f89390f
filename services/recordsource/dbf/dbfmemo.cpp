// services/recordsource/dbf/dbfmemo.cpp: reading and writing .FPT and .DBT memo blocks.
#include "services/recordsource/dbf/dbfmemo_p.h"

#include "services/recordsource/dbf/dbfio_p.h"
#include "services/recordsource/internal/filelock.h"

#include <QFile>

#include <cstring>

namespace plx {

namespace {

constexpr int kHeaderSize = 512;
constexpr quint64 kCodeBaseLockByte = 0x40000000;
constexpr quint64 kHarbourLockByte = 0;
constexpr int kLockTimeoutMs = 5000;

Status corrupt(const QString &path, const QString &problem)
{
    return dbfio::fileError(Status::Code::Corrupt, path, problem);
}

} // namespace

DbfMemoFile::~DbfMemoFile()
{
    dbfio::closeFile(m_fd);
}

Result<std::unique_ptr<DbfMemoFile>> DbfMemoFile::open(const QString &path, DbfMemoKind kind,
                                                       bool writable)
{
    dbfio::OpenError err;
    const dbfio::FileHandle fd = dbfio::openFile(path, writable, &err);
    if (!dbfio::isOpen(fd))
        return dbfio::fileError(
            Status::Code::NotFound, path,
            QStringLiteral("cannot open the memo file (error %1)").arg(err.code));
    return std::unique_ptr<DbfMemoFile>(new DbfMemoFile(fd, path, kind));
}

Status DbfMemoFile::create(const QString &path, DbfMemoKind kind)
{
    QByteArray header(kHeaderSize, '\0');
    if (kind == DbfMemoKind::Fpt) {
        // 64-byte blocks, FoxPro's default; the 512-byte header fills blocks 0..7.
        dbfio::putBe32(header.data(), kHeaderSize / 64);
        dbfio::putBe16(header.data() + 6, 64);
    } else {
        dbfio::putLe32(header.data(), 1);
        header[16] = 0x03; // dBASE III memo version
    }
    QFile file(path);
    if (!file.open(QIODevice::NewOnly | QIODevice::WriteOnly))
        return dbfio::fileError(
            Status::Code::IoError, path,
            QStringLiteral("cannot create the memo file: %1").arg(file.errorString()));
    if (file.write(header) != header.size())
        return dbfio::fileError(Status::Code::IoError, path,
                                QStringLiteral("cannot write the memo file header"));
    return Status::ok();
}

Result<QByteArray> DbfMemoFile::read(quint32 block) const
{
    if (block == 0)
        return QByteArray();
    if (m_kind == DbfMemoKind::Fpt)
        return readFpt(block);
    auto size = dbfio::fileSize(m_fd, m_path);
    if (!size.isOk())
        return size.status();
    switch (m_kind) {
    case DbfMemoKind::Fpt: break;
    case DbfMemoKind::Dbt3: return readDbt3(block, *size);
    case DbfMemoKind::Dbt4: return readDbt4(block, *size);
    case DbfMemoKind::None: break;
    }
    return QByteArray();
}

// The block size is set when the memo file is made and stays for its life (only rewriting
// the file changes it), so it is read once.
Result<quint16> DbfMemoFile::fptBlockSize() const
{
    if (const quint16 known = m_fptBlockSize.load(std::memory_order_relaxed))
        return known;
    char head[8];
    auto got = dbfio::readAt(m_fd, 0, head, 8, m_path);
    if (!got.isOk())
        return got.status();
    const quint16 blockSize = dbfio::be16(head + 6);
    if (*got < 8 || blockSize == 0)
        return corrupt(m_path, QStringLiteral("the memo file header is damaged (block size 0)"));
    m_fptBlockSize.store(blockSize, std::memory_order_relaxed);
    return blockSize;
}

Result<QByteArray> DbfMemoFile::readFpt(quint32 block) const
{
    Result<quint16> blockSize = fptBlockSize();
    if (!blockSize.isOk())
        return blockSize.status();
    if (qint64(block) * *blockSize < kHeaderSize)
        return QByteArray(); // a pointer into the header: read as empty, as FoxPro shows it
    const qint64 offset = qint64(block) * *blockSize;
    // One read fetches the block's header and, for the usual short memo, the whole value.
    char first[8 + 504];
    auto got = dbfio::readAt(m_fd, offset, first, sizeof first, m_path);
    if (!got.isOk())
        return got.status();
    if (*got < 8)
        return corrupt(m_path,
                       QStringLiteral("memo block %1 is past the end of the file").arg(block));
    const quint32 length = dbfio::be32(first + 4);
    if (qint64(length) <= *got - 8)
        return QByteArray(first + 8, qsizetype(length));
    auto claimsTooMuch = [&] {
        return corrupt(
            m_path,
            QStringLiteral("the memo at block %1 claims %2 bytes, past the end of the file")
                .arg(block)
                .arg(length));
    };
    // A longer value: check the claim against the file before allocating for it.
    auto size = dbfio::fileSize(m_fd, m_path);
    if (!size.isOk())
        return size.status();
    if (qint64(length) > *size - offset - 8)
        return claimsTooMuch();
    QByteArray data(qsizetype(length), Qt::Uninitialized);
    const qint64 have = *got - 8;
    std::memcpy(data.data(), first + 8, size_t(have));
    got = dbfio::readAt(m_fd, offset + 8 + have, data.data() + have, length - have, m_path);
    if (!got.isOk())
        return got.status();
    if (*got < length - have)
        return claimsTooMuch(); // the file shrank under us
    return data;
}

Result<QByteArray> DbfMemoFile::readDbt3(quint32 block, qint64 size) const
{
    const qint64 offset = qint64(block) * kHeaderSize;
    if (offset >= size)
        return corrupt(m_path,
                       QStringLiteral("memo block %1 is past the end of the file").arg(block));
    // dBASE III stores no length: the text runs to the first 0x1A (or the end of the file).
    QByteArray data;
    char chunk[kHeaderSize];
    for (qint64 at = offset; at < size; at += kHeaderSize) {
        auto got = dbfio::readAt(m_fd, at, chunk, kHeaderSize, m_path);
        if (!got.isOk())
            return got.status();
        const char *end = static_cast<const char *>(memchr(chunk, 0x1A, size_t(*got)));
        if (end) {
            data.append(chunk, end - chunk);
            return data;
        }
        data.append(chunk, qsizetype(*got));
    }
    return data;
}

Result<QByteArray> DbfMemoFile::readDbt4(quint32 block, qint64 size) const
{
    char head[24];
    auto got = dbfio::readAt(m_fd, 0, head, sizeof head, m_path);
    if (!got.isOk())
        return got.status();
    quint16 blockSize = *got >= 22 ? dbfio::le16(head + 20) : 0;
    if (blockSize == 0)
        blockSize = kHeaderSize;
    const qint64 offset = qint64(block) * blockSize;
    if (offset + 8 > size)
        return corrupt(m_path,
                       QStringLiteral("memo block %1 is past the end of the file").arg(block));
    char blockHead[8];
    got = dbfio::readAt(m_fd, offset, blockHead, 8, m_path);
    if (!got.isOk())
        return got.status();
    // dBASE IV counts the 8-byte block header in the length.
    const quint32 length = dbfio::le32(blockHead + 4);
    if (length < 8)
        return QByteArray();
    if (qint64(length) - 8 > size - offset - 8)
        return corrupt(
            m_path,
            QStringLiteral("the memo at block %1 claims %2 bytes, past the end of the file")
                .arg(block)
                .arg(length));
    QByteArray data(qsizetype(length - 8), Qt::Uninitialized);
    got = dbfio::readAt(m_fd, offset + 8, data.data(), length - 8, m_path);
    if (!got.isOk())
        return got.status();
    return data;
}

// Not const: the lock is state of the file that every program sharing it sees.
// NOLINTNEXTLINE(readability-make-member-function-const)
Status DbfMemoFile::lock()
{
    Status s = lockRange(m_fd, kCodeBaseLockByte, 1, LockKind::Exclusive, kLockTimeoutMs);
    if (!s.isOk())
        return s;
    s = lockRange(m_fd, kHarbourLockByte, 1, LockKind::Exclusive, kLockTimeoutMs);
    if (!s.isOk())
        (void)unlockRange(m_fd, kCodeBaseLockByte, 1);
    return s;
}

// NOLINTNEXTLINE(readability-make-member-function-const): see lock()
void DbfMemoFile::unlock()
{
    (void)unlockRange(m_fd, kHarbourLockByte, 1);
    (void)unlockRange(m_fd, kCodeBaseLockByte, 1);
}

Result<quint32> DbfMemoFile::write(const QByteArray &data, quint32 type, bool durable)
{
    if (m_kind != DbfMemoKind::Fpt && m_kind != DbfMemoKind::Dbt3)
        return dbfio::fileError(Status::Code::NotSupported, m_path,
                                QStringLiteral("dBASE IV memo files are read only"));
    Status s = lock();
    if (!s.isOk())
        return s;
    Result<quint32> block = writeLocked(data, type);
    if (block.isOk() && durable) {
        s = dbfio::syncData(m_fd, m_path);
        if (!s.isOk())
            block = s;
    }
    unlock();
    return block;
}

Status DbfMemoFile::sync()
{
    return dbfio::syncData(m_fd, m_path);
}

Result<quint32> DbfMemoFile::writeLocked(const QByteArray &data, quint32 type)
{
    // The header is re-read under the lock: another program may have allocated since.
    char head[8];
    auto got = dbfio::readAt(m_fd, 0, head, 8, m_path);
    if (!got.isOk())
        return got.status();
    if (*got < 8)
        return corrupt(m_path, QStringLiteral("the memo file header is truncated"));
    const bool fpt = m_kind == DbfMemoKind::Fpt;
    const quint32 blockSize = fpt ? dbfio::be16(head + 6) : kHeaderSize;
    if (blockSize == 0)
        return corrupt(m_path, QStringLiteral("the memo file header is damaged (block size 0)"));
    const quint32 headerBlocks = (kHeaderSize + blockSize - 1) / blockSize;
    quint32 nextFree = fpt ? dbfio::be32(head) : dbfio::le32(head);
    nextFree = qMax(nextFree, headerBlocks);

    QByteArray bytes;
    if (fpt) {
        bytes.resize(8);
        dbfio::putBe32(bytes.data(), type);
        dbfio::putBe32(bytes.data() + 4, quint32(data.size()));
        bytes += data;
    } else {
        bytes = data + QByteArray("\x1A\x1A", 2);
    }
    const quint64 needed = (quint64(bytes.size()) + blockSize - 1) / blockSize;

    if (quint64(nextFree) + needed > 0xFFFFFFFFu)
        return dbfio::fileError(Status::Code::IoError, m_path,
                                QStringLiteral("the memo file is full"));
    bytes.resize(qsizetype(needed * blockSize), '\0');
    // Data first, header after: a crash in between leaves unused blocks, never a pointer to
    // blocks that another writer could hand out again.
    Status s =
        dbfio::writeAt(m_fd, qint64(nextFree) * blockSize, bytes.constData(), bytes.size(), m_path);
    if (!s.isOk())
        return s;
    char newHead[4];
    if (fpt)
        dbfio::putBe32(newHead, quint32(nextFree + needed));
    else
        dbfio::putLe32(newHead, quint32(nextFree + needed));
    s = dbfio::writeAt(m_fd, 0, newHead, 4, m_path);
    if (!s.isOk())
        return s;
    return nextFree;
}

} // namespace plx
