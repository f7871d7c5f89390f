// services/recordsource/dbf/fuzz/cdx_fuzz.cpp: libFuzzer entry for the compound-index reader,
// checker and writer.
//
// The input is a .CDX image put beside a small fixed table (ID C(8), NAME C(12), 40
// records) with the structural-index flag set. The table is opened writable, which opens the
// index: its tags are read and compiled, a marked index rebuilt. When the index is taken,
// the checker runs, every tag is read in order and searched, and a record is rewritten and
// appended, which moves keys through the damaged trees. Any crash, hang, leak or sanitizer
// report is a bug: a damaged index must give errors (or a read-only table), never undefined
// behaviour.
#include "services/recordsource/dbf/internal/cdxfile.h"
#include "services/recordsource/dbf/internal/cdxindex.h"
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
        QString d = base + QStringLiteral("/plx_cdx_fuzz_%1").arg(::getpid());
        QDir().mkpath(d);
        return d;
    }();
    return dir;
}

// The table's bytes, made once: every run starts from the same records.
const QByteArray &tableImage()
{
    static const QByteArray image = [] {
        const QString path = workDir() + QStringLiteral("/SEED.DBF");
        QFile::remove(path);
        auto table = plx::DbfTable::create(
            path, { { QStringLiteral("ID"), 'C', 8 }, { QStringLiteral("NAME"), 'C', 12 } });
        if (!table.isOk())
            return QByteArray();
        (*table)->setDurable(false);
        for (int i = 0; i < 40; ++i)
            (void)(*table)->appendRecord(
                { QStringLiteral("ID%1").arg(i * 7 % 23), QStringLiteral("name %1").arg(i % 5) });
        table->reset();
        QFile f(path);
        QByteArray bytes = f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
        if (bytes.size() > 28)
            bytes[28] = 0x01;
        return bytes;
    }();
    return image;
}

void put(const QString &path, const char *data, qsizetype size)
{
    QFile f(path);
    if (f.open(QIODevice::WriteOnly | QIODevice::Truncate))
        f.write(data, size);
}

void exercise(plx::DbfTable &t, const plx::CdxIndex &index)
{
    (void)index.check();
    for (int tag = 0; tag < index.tags().size() && tag < 8; ++tag) {
        (void)index.recordsInOrder(tag);
        (void)index.find(tag, QByteArray(index.keyLength(tag), ' '));
    }
    (void)t.writeRecord(1, { QStringLiteral("ID99"), QStringLiteral("moved") });
    (void)t.appendRecord({ QStringLiteral("ID5"), QStringLiteral("added") });
    (void)t.setDeleted(2, true);
    (void)index.check();
}

} // namespace

// The empty input stands for a sound index: one is built for the table (tags on ID, on
// UPPER(NAME) for names after "name 2", unique on LEFT(NAME,6)), and written to
// $PLX_CDX_FUZZ_SEED when set, which is how the seeds in cdx_corpus were made.
void writeSoundIndex(const QString &dbf)
{
    const QString cdx = workDir() + QStringLiteral("/T.CDX");
    QFile::remove(cdx);
    QByteArray plain = tableImage();
    plain[28] = 0;
    put(dbf, plain.constData(), plain.size());
    {
        auto table = plx::DbfTable::open(dbf);
        if (!table.isOk())
            return;
        (void)plx::CdxIndex::create(
            cdx, **table,
            { { QStringLiteral("ID"), "ID", {}, 8 },
              { QStringLiteral("NAME"), "UPPER(NAME)", "NAME > 'name 2'", 12 },
              { QStringLiteral("FIRST"), "LEFT(NAME,6)", {}, 6, true } });
    }
    put(dbf, tableImage().constData(), tableImage().size());
    const QString seed = qEnvironmentVariable("PLX_CDX_FUZZ_SEED");
    if (!seed.isEmpty()) {
        QFile::remove(seed);
        QFile::copy(cdx, seed);
    }
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (tableImage().isEmpty())
        return 0;
    const QString dbf = workDir() + QStringLiteral("/T.DBF");
    if (size == 0) {
        writeSoundIndex(dbf);
        auto table = plx::DbfTable::open(dbf);
        if (table.isOk() && (*table)->index())
            exercise(**table, *(*table)->index());
        return 0;
    }
    put(dbf, tableImage().constData(), tableImage().size());
    put(workDir() + QStringLiteral("/T.CDX"), reinterpret_cast<const char *>(data),
        qsizetype(size));
    auto table = plx::DbfTable::open(dbf);
    if (!table.isOk())
        return 0;
    (*table)->setDurable(false);
    if (const plx::CdxIndex *index = (*table)->index())
        exercise(**table, *index);
    return 0;
}
