// services/recordsource/dbf/fuzz/dbf_fuzz.cpp: libFuzzer entry for the table and memo readers.
//
// The input is split into a .DBF and an .FPT image (the first two bytes give the length of
// the table image); both are written to a private directory and opened the way a user's
// table is. Every record is decoded field by field, the header description is built and
// the count refreshed. Any crash, hang, leak or sanitizer report is a bug: damaged files
// must give errors, never undefined behaviour.
#include "services/recordsource/dbf/internal/dbftable.h"

#include <QByteArray>
#include <QDir>
#include <QFile>

#include <cstddef>
#include <cstdint>
#include <unistd.h>

namespace {

const QString &workDir()
{
    static const QString dir = [] {
        const QString base = QDir(QStringLiteral("/dev/shm")).exists() ? QStringLiteral("/dev/shm")
                                                                       : QDir::tempPath();
        const QString d = base + QStringLiteral("/plx_dbf_fuzz_%1").arg(::getpid());
        QDir().mkpath(d);
        return d;
    }();
    return dir;
}

void put(const QString &path, const char *data, qsizetype size)
{
    QFile f(path);
    if (f.open(QIODevice::WriteOnly | QIODevice::Truncate))
        f.write(data, size);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size < 3)
        return 0;
    const auto *bytes = reinterpret_cast<const char *>(data);
    const qsizetype split =
        qMin<qsizetype>(qsizetype(size) - 2, (quint8(bytes[0]) << 8 | quint8(bytes[1])) * 4);
    const int codePages[] = { 0, 437, 850, 1251 };
    const QString dbf = workDir() + QStringLiteral("/T.DBF");
    const QString fpt = workDir() + QStringLiteral("/T.FPT");
    put(dbf, bytes + 2, split);
    put(fpt, bytes + 2 + split, qsizetype(size) - 2 - split);
    auto table = plx::DbfTable::open(dbf, plx::DbfTable::OpenMode::ReadOnly,
                                     codePages[quint8(bytes[1]) % 4]);
    if (!table.isOk())
        return 0;
    plx::DbfTable &t = **table;
    const quint32 count = qMin<quint32>(t.recordCount(), 64);
    for (quint32 r = 1; r <= count; ++r) {
        (void)t.isDeleted(r);
        for (int f = 0; f < t.fields().size(); ++f) {
            (void)t.rawText(r, f);
            (void)t.value(r, f);
        }
    }
    (void)t.infoText();
    (void)t.refreshCount();
    return 0;
}
