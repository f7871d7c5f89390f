// services/recordsource/dbf/dbfio.cpp: the write counter, companion files, byte-order helpers
// and error sentences (the native file calls are in dbfnative_posix.cpp and dbfnative_win.cpp).
#include "services/recordsource/dbf/dbfio_p.h"

#include "services/recordsource/dbf/internal/dbftesthooks.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <atomic>

namespace plx::dbfio {

namespace {

std::atomic<quint64> g_writeEpoch{ 0 };

} // namespace

void countWrite()
{
    dbftest::beforeWrite();
    g_writeEpoch.fetch_add(1, std::memory_order_acq_rel);
}

quint64 writeEpoch()
{
    return g_writeEpoch.load(std::memory_order_acquire);
}

QString companionFile(const QString &path, const char *ext)
{
    const QFileInfo info(path);
    const QString wanted = info.completeBaseName() + QLatin1String(ext);
    QString direct = info.dir().filePath(wanted);
    if (QFileInfo::exists(direct))
        return direct;
    const QStringList entries = info.dir().entryList(QDir::Files | QDir::Hidden);
    for (const QString &name : entries) {
        if (name.compare(wanted, Qt::CaseInsensitive) == 0)
            return info.dir().filePath(name);
    }
    return {};
}

quint16 le16(const char *p)
{
    const auto *u = reinterpret_cast<const unsigned char *>(p);
    return quint16(u[0] | (u[1] << 8));
}

quint32 le32(const char *p)
{
    const auto *u = reinterpret_cast<const unsigned char *>(p);
    return quint32(u[0]) | (quint32(u[1]) << 8) | (quint32(u[2]) << 16) | (quint32(u[3]) << 24);
}

quint32 be32(const char *p)
{
    const auto *u = reinterpret_cast<const unsigned char *>(p);
    return (quint32(u[0]) << 24) | (quint32(u[1]) << 16) | (quint32(u[2]) << 8) | quint32(u[3]);
}

quint16 be16(const char *p)
{
    const auto *u = reinterpret_cast<const unsigned char *>(p);
    return quint16((u[0] << 8) | u[1]);
}

void putLe32(char *p, quint32 v)
{
    for (int i = 0; i < 4; ++i)
        p[i] = char((v >> (8 * i)) & 0xFF);
}

void putBe32(char *p, quint32 v)
{
    for (int i = 0; i < 4; ++i)
        p[i] = char((v >> (8 * (3 - i))) & 0xFF);
}

void putBe16(char *p, quint16 v)
{
    p[0] = char(v >> 8);
    p[1] = char(v & 0xFF);
}

Status fileError(Status::Code code, const QString &path, const QString &problem)
{
    return Status(code, QStringLiteral("%1: %2").arg(QFileInfo(path).fileName(), problem));
}

} // namespace plx::dbfio
