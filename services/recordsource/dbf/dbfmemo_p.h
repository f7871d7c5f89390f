// services/recordsource/dbf/dbfmemo_p.h: the memo file beside a table (.FPT or .DBT).
//
// Memo fields hold a block number; the text lives in the memo file. Reading validates every
// pointer and length against the file, so a damaged file gives an error naming it instead
// of a crash. Writing follows FoxPro's allocation: a value goes to the header's next free
// block (the header is rewritten after the data, so a crash leaves at worst unused blocks)
// under the memo file's lock bytes (0x40000000 as CodeBase, 0 as Harbour). Unlike FoxPro, a
// changed value is never written over the blocks of the one it replaces: those blocks are
// live until the record pointing at them is rewritten, and a writer killed in between would
// leave the old record holding the new memo. The file grows by every changed memo; FoxPro's
// PACK MEMO (or any rewrite of the table) gives the dead blocks back.
#pragma once

#include "services/recordsource/dbf/internal/dbftable.h"

#include <QByteArray>
#include <QString>

#include <atomic>
#include <memory>

namespace plx {

class DbfMemoFile
{
public:
    ~DbfMemoFile();
    DbfMemoFile(const DbfMemoFile &) = delete;
    DbfMemoFile &operator=(const DbfMemoFile &) = delete;

    static Result<std::unique_ptr<DbfMemoFile>> open(const QString &path, DbfMemoKind kind,
                                                     bool writable);
    // Writes the header of an empty memo file (FPT: 64-byte blocks; DBT: 512).
    static Status create(const QString &path, DbfMemoKind kind);

    const QString &path() const { return m_path; }
    DbfMemoKind kind() const { return m_kind; }

    // The data of the memo starting at `block`. Empty for block 0 or a block inside the
    // header (some tools write such pointers for empty values); Corrupt for a block or
    // length past the end of the file.
    Result<QByteArray> read(quint32 block) const;

    // Stores `data` as a memo of FPT block type `type` (1 text, 2 object, 0 picture) and
    // returns its first block, always past every block in use. With `durable` the blocks
    // reach the disk before this returns, so the record written next never points at
    // blocks a crash could lose.
    Result<quint32> write(const QByteArray &data, quint32 type, bool durable);
    // Makes every block written so far reach the disk (after writes that were not durable).
    Status sync();

private:
    DbfMemoFile(NativeFileHandle fd, QString path, DbfMemoKind kind)
        : m_fd(fd), m_path(std::move(path)), m_kind(kind)
    {
    }
    Result<quint16> fptBlockSize() const;
    Result<QByteArray> readFpt(quint32 block) const;
    Result<QByteArray> readDbt3(quint32 block, qint64 size) const;
    Result<QByteArray> readDbt4(quint32 block, qint64 size) const;
    Result<quint32> writeLocked(const QByteArray &data, quint32 type);
    Status lock();
    void unlock();

    NativeFileHandle m_fd;
    mutable std::atomic<quint16> m_fptBlockSize{ 0 }; // 0 until read
    QString m_path;
    DbfMemoKind m_kind;
};

} // namespace plx
