// services/recordsource/dbf/tests/cdx_write_test.cpp: compound indexes kept up to date key by
// key — random inserts, key-moving edits and deletes checked after every write on trees of one
// to three levels, page splits and freed pages at their boundaries, FoxPro's own index edited
// and rebuilt byte for byte, damage found by the checker.
#include "dbf_test_util.h"

#include "services/recordsource/dbf/internal/cdxfile.h"
#include "services/recordsource/dbf/internal/cdxindex.h"
#include "services/recordsource/dbf/internal/dbftable.h"

#include <QDir>
#include <QFile>
#include <QRandomGenerator>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace plx {

using dbftestutil::readBytes;
using dbftestutil::samplePath;
using dbftestutil::writeBytes;

namespace {

quint32 le32At(const QByteArray &bytes, qsizetype at)
{
    return quint8(bytes[at]) | quint32(quint8(bytes[at + 1])) << 8
        | quint32(quint8(bytes[at + 2])) << 16 | quint32(quint8(bytes[at + 3])) << 24;
}

// A FoxPro 2.x table (ID C(8), NAME C(20), QTY N(6), BORN D) with a structural index whose
// tags cover what maintenance must get right: plain, expression, FOR, unique, descending.
class CdxWrite : public ::testing::Test
{
protected:
    void makeTable(int records)
    {
        const QString stem = m_dir.filePath(QStringLiteral("people%1").arg(++m_tables));
        m_path = stem + QStringLiteral(".dbf");
        auto table = DbfTable::create(m_path,
                                      { { QStringLiteral("ID"), 'C', 8 },
                                        { QStringLiteral("NAME"), 'C', 20 },
                                        { QStringLiteral("QTY"), 'N', 6 },
                                        { QStringLiteral("BORN"), 'D', 8 } });
        ASSERT_TRUE(table.isOk()) << table.status().message().toStdString();
        m_table = std::move(*table);
        m_table->setDurable(false);
        for (int i = 0; i < records; ++i)
            ASSERT_TRUE(m_table->appendRecord(randomValues()).isOk());
        auto index =
            CdxIndex::create(stem + QStringLiteral(".cdx"), *m_table,
                             { { QStringLiteral("ID"), "ID", {}, 8 },
                               { QStringLiteral("NAME"), "UPPER(NAME)", {}, 20 },
                               { QStringLiteral("BIG"), "QTY", "QTY > 500", 8 },
                               { QStringLiteral("FIRST"), "LEFT(NAME,2)", {}, 2, true },
                               { QStringLiteral("BORN"), "DTOS(BORN)+ID", {}, 16, false, true } });
        ASSERT_TRUE(index.isOk()) << index.status().message().toStdString();
        m_index = std::move(*index);
    }

    // Names from a small alphabet so that keys repeat, share prefixes and have trailing blanks.
    QVariantList randomValues()
    {
        QString name;
        const int length = 1 + int(m_random.bounded(18));
        for (int i = 0; i < length; ++i)
            name.append(QLatin1Char("abcAB"[m_random.bounded(5)]));
        return { QStringLiteral("%1").arg(m_random.bounded(400)), name, int(m_random.bounded(1000)),
                 QDate(1990, 1, 1).addDays(m_random.bounded(300)) };
    }

    // One table write with its index update, as the table layer makes it.
    Status change(quint32 recno, const std::function<Status()> &write)
    {
        const auto before =
            recno ? m_index->keysOf(recno) : Result<CdxIndex::Keys>(CdxIndex::Keys(5));
        if (!before.isOk())
            return before.status();
        if (Status st = m_index->beginUpdate(); !st.isOk())
            return st;
        Status st = write();
        const quint32 written = recno ? recno : m_table->recordCount();
        const auto after = m_index->keysOf(written);
        if (st.isOk())
            st = after.isOk() ? m_index->applyChange(written, *before, *after) : after.status();
        const Status ended = m_index->endUpdate(st.isOk(), false);
        return st.isOk() ? ended : st;
    }

    Status randomWrite()
    {
        const auto count = m_table->recordCount();
        const auto recno = quint32(1 + m_random.bounded(count));
        switch (m_random.bounded(4)) {
        case 0: return change(0, [&] { return m_table->appendRecord(randomValues()).status(); });
        case 1:
            return change(recno,
                          [&] { return m_table->setDeleted(recno, !m_table->isDeleted(recno)); });
        default: return change(recno, [&] { return m_table->writeRecord(recno, randomValues()); });
        }
    }

    // Every tag's entries as the reader sees them.
    QList<QList<CdxEntry>> allKeys() const
    {
        QList<QList<CdxEntry>> keys;
        auto cdx = CdxFile::open(m_index->path());
        EXPECT_TRUE(cdx.isOk());
        for (const CdxTag &tag : (*cdx)->tags()) {
            auto entries = (*cdx)->readKeys(tag, tag.name == QLatin1String("BIG") ? '\0' : ' ');
            EXPECT_TRUE(entries.isOk()) << entries.status().message().toStdString();
            keys.append(entries.isOk() ? *entries : QList<CdxEntry>());
        }
        return keys;
    }

    // Levels from the root of tag `name` down to its leaves.
    int depth(const QString &name)
    {
        const QByteArray file = readBytes(m_index->path());
        auto cdx = CdxFile::open(m_index->path());
        const CdxTag *tag = cdx.isOk() ? (*cdx)->tag(name) : nullptr;
        if (!tag)
            return 0;
        quint32 page = le32At(file, tag->headerOffset);
        int levels = 1;
        while ((quint8(file[page]) & 0x02) == 0) {
            const qsizetype child = page + 12 + tag->keyLength + 4; // big-endian
            page = quint32(quint8(file[child])) << 24 | quint32(quint8(file[child + 1])) << 16
                | quint32(quint8(file[child + 2])) << 8 | quint8(file[child + 3]);
            ++levels;
        }
        return levels;
    }

    QTemporaryDir m_dir;
    int m_tables = 0;
    QString m_path;
    QRandomGenerator m_random{ 24 };
    std::unique_ptr<DbfTable> m_table;
    std::unique_ptr<CdxIndex> m_index;
};

TEST_F(CdxWrite, RandomWritesKeepEveryTagConsistentAtOneTwoAndThreeLevels)
{
    struct Size
    {
        int records;
        int writes;
        int levels;
    };
    for (const Size size : { Size{ 12, 1500, 1 }, Size{ 150, 1500, 2 }, Size{ 1500, 400, 3 } }) {
        SCOPED_TRACE(size.records);
        makeTable(size.records);
        ASSERT_TRUE(m_index->check().isOk()) << m_index->check().message().toStdString();
        EXPECT_EQ(depth(QStringLiteral("NAME")), size.levels);
        for (int i = 0; i < size.writes; ++i) {
            ASSERT_TRUE(randomWrite().isOk()) << "write " << i;
            const Status checked = m_index->check();
            ASSERT_TRUE(checked.isOk())
                << "after write " << i << ": " << checked.message().toStdString();
        }
        EXPECT_GE(depth(QStringLiteral("NAME")), size.levels);
        // A rebuild of the edited table gives the same keys the edits left.
        const QList<QList<CdxEntry>> edited = allKeys();
        ASSERT_TRUE(m_index->reindex().isOk());
        EXPECT_TRUE(m_index->check().isOk());
        EXPECT_EQ(allKeys(), edited);
    }
}

} // namespace

namespace {

quint16 le16At(const QByteArray &bytes, qsizetype at)
{
    return quint16(quint8(bytes[at]) | quint8(bytes[at + 1]) << 8);
}

// A table of 8-byte IDs "00000001", "00000002", ... under one tag.
class CdxPages : public ::testing::Test
{
protected:
    void SetUp() override
    {
        auto table = DbfTable::create(m_dir.filePath(QStringLiteral("ids.dbf")),
                                      { { QStringLiteral("ID"), 'C', 8 } });
        ASSERT_TRUE(table.isOk());
        m_table = std::move(*table);
        m_table->setDurable(false);
        auto index = CdxIndex::create(m_dir.filePath(QStringLiteral("ids.cdx")), *m_table,
                                      { { QStringLiteral("ID"), "ID", {}, 8 } });
        ASSERT_TRUE(index.isOk());
        m_index = std::move(*index);
    }

    static QString id(int n) { return QStringLiteral("%1").arg(n, 8, 10, QLatin1Char('0')); }

    void write(quint32 recno, const QString &value)
    {
        const auto before = recno ? *m_index->keysOf(recno) : CdxIndex::Keys(1);
        ASSERT_TRUE(m_index->beginUpdate().isOk());
        if (recno)
            ASSERT_TRUE(m_table->writeRecord(recno, { value }).isOk());
        else
            ASSERT_TRUE(m_table->appendRecord({ value }).isOk());
        const quint32 written = recno ? recno : m_table->recordCount();
        ASSERT_TRUE(m_index->applyChange(written, before, *m_index->keysOf(written)).isOk());
        ASSERT_TRUE(m_index->endUpdate(true, false).isOk());
        const Status checked = m_index->check();
        ASSERT_TRUE(checked.isOk()) << checked.message().toStdString();
    }

    QByteArray file() const { return readBytes(m_index->path()); }
    quint32 root() const { return le32At(file(), m_index->tags()[0].headerOffset); }
    bool rootIsLeaf() const { return (quint8(file()[root()]) & 0x02) != 0; }

    QTemporaryDir m_dir;
    std::unique_ptr<DbfTable> m_table;
    std::unique_ptr<CdxIndex> m_index;
};

TEST_F(CdxPages, AFullLeafSplitsAnEmptiedOneIsFreedAndItsPageReused)
{
    int n = 0;
    while (rootIsLeaf()) {
        const QByteArray before = file();
        write(0, id(++n));
        if (!rootIsLeaf()) {
            // The key that split the leaf did not fit its free bytes: one entry (2 bytes for
            // records up to 1023 and counts up to 8) and the one digit after the shared prefix.
            EXPECT_LT(le16At(before, le32At(before, m_index->tags()[0].headerOffset) + 12), 3);
        }
    }
    ASSERT_GT(n, 20);
    // Moving the first leaf's keys past the last empties it: the page goes to the free list.
    const QByteArray split = file();
    const quint32 rootPage = root();
    const quint32 firstLeaf = quint32(quint8(split[rootPage + 12 + 12])) << 24
        | quint32(quint8(split[rootPage + 12 + 13])) << 16
        | quint32(quint8(split[rootPage + 12 + 14])) << 8 | quint8(split[rootPage + 12 + 15]);
    const int keysInFirst = le16At(split, firstLeaf + 2);
    for (int r = 1; r <= keysInFirst; ++r)
        write(quint32(r), id(90000000 + r));
    EXPECT_EQ(le32At(file(), 4), firstLeaf);
    const qsizetype size = file().size();
    // The next split takes the freed page instead of growing the file.
    while (le32At(file(), 4) != 0)
        write(0, id(++n));
    EXPECT_EQ(file().size(), size);
}

TEST_F(CdxPages, TheCheckerNamesTheFirstInconsistency)
{
    for (int n = 1; n <= 5; ++n)
        write(0, id(n));
    const QByteArray good = file();
    const quint32 leaf = root();
    auto damaged = [&](const std::function<void(QByteArray &)> &damage) {
        QByteArray bytes = good;
        damage(bytes);
        writeBytes(m_index->path(), bytes);
        return m_index->check().message().toStdString();
    };
    const std::string prefix = "ids.cdx: ";
    auto ends = [&](const std::string &message, const std::string &tail) {
        return message.size() >= tail.size()
            && message.compare(message.size() - tail.size(), tail.size(), tail) == 0;
    };
    // The first key is stored last-most at the end of the page: its final digit '1' -> '7'.
    const std::string wrongKey = damaged([&](QByteArray &b) { b[leaf + 511] = '7'; });
    EXPECT_TRUE(ends(wrongKey, "tag ID: record 1 has no key 3030303030303031 in the index"))
        << wrongKey;
    const std::string link = damaged([&](QByteArray &b) { b[leaf + 8] = 0; });
    EXPECT_TRUE(ends(link,
                     "tag ID: page " + std::to_string(leaf)
                         + " links to 4294967295 and 4294967040 instead of 4294967295 and "
                           "4294967295"))
        << link;
    const std::string marked = damaged([&](QByteArray &b) {
        b[480] = 'P';
        b[481] = 'L';
        b[482] = 'X';
        b[483] = 'U';
    });
    EXPECT_TRUE(ends(marked, "an update of the index was cut short; it needs rebuilding"))
        << marked;
    writeBytes(m_index->path(), good);
    ASSERT_TRUE(m_table->writeRecord(2, { id(9) }).isOk()); // the table alone
    const std::string stale = m_index->check().message().toStdString();
    EXPECT_TRUE(ends(stale,
                     "tag ID: the index files record 2 under key 3030303030303032, which "
                     "the table does not give it"))
        << stale;
    EXPECT_EQ(stale.rfind(prefix, 0), 0U) << stale;
}

// FoxPro's own calls.CDX: checked as written, a record's keys taken out and put back, and
// rebuilt: the leaves come out as FoxPro wrote them.
TEST(CdxSample, CallsIndexEditedAndRebuiltMatchesFoxPro)
{
    PLX_REQUIRE_SAMPLES();
    QTemporaryDir dir;
    const QString cdxPath = dir.filePath(QStringLiteral("calls.CDX"));
    ASSERT_TRUE(QFile::copy(samplePath(QStringLiteral("calls.CDX")), cdxPath));
    ASSERT_TRUE(QFile::setPermissions(cdxPath, QFile::ReadOwner | QFile::WriteOwner));
    auto table =
        DbfTable::open(samplePath(QStringLiteral("calls.dbf")), DbfTable::OpenMode::ReadOnly);
    ASSERT_TRUE(table.isOk());
    auto index = CdxIndex::open(cdxPath, **table, true);
    ASSERT_TRUE(index.isOk()) << index.status().message().toStdString();
    ASSERT_TRUE((*index)->check().isOk()) << (*index)->check().message().toStdString();
    const QByteArray original = readBytes(cdxPath);

    const auto keys = (*index)->keysOf(7);
    ASSERT_TRUE(keys.isOk());
    const CdxIndex::Keys none(keys->size());
    ASSERT_TRUE((*index)->beginUpdate().isOk());
    ASSERT_TRUE((*index)->applyChange(7, *keys, none).isOk());
    ASSERT_TRUE((*index)->endUpdate(true, false).isOk());
    EXPECT_TRUE((*index)->check().message().endsWith(
        QLatin1String("tag CALL_ID: record 7 has no key 80000007 in the index")))
        << (*index)->check().message().toStdString();
    ASSERT_TRUE((*index)->beginUpdate().isOk());
    ASSERT_TRUE((*index)->applyChange(7, none, *keys).isOk());
    ASSERT_TRUE((*index)->endUpdate(true, false).isOk());
    EXPECT_TRUE((*index)->check().isOk()) << (*index)->check().message().toStdString();

    ASSERT_TRUE((*index)->reindex().isOk());
    EXPECT_TRUE((*index)->check().isOk());
    const QByteArray rebuilt = readBytes(cdxPath);
    // Each tag's single leaf: header, packed entries and key bytes equal FoxPro's (the
    // bytes between entries and keys are unused, and FoxPro leaves old bytes there).
    const quint32 leaves[][2] = { { 0xA00, le32At(rebuilt, (*index)->tags()[0].headerOffset) },
                                  { 0x1600, le32At(rebuilt, (*index)->tags()[1].headerOffset) } };
    for (const auto &leaf : leaves) {
        const QByteArray foxpro = original.mid(leaf[0], 512);
        const QByteArray ours = rebuilt.mid(leaf[1], 512);
        const int used = 24 + 16 * 2;
        const int free = le16At(foxpro, 12);
        EXPECT_EQ(ours.left(used).toHex().toStdString(), foxpro.left(used).toHex().toStdString());
        EXPECT_EQ(ours.mid(used + free).toHex().toStdString(),
                  foxpro.mid(used + free).toHex().toStdString());
    }
    // The tag directory: the same layout; only CONTACT_ID's header offset differs.
    EXPECT_EQ(rebuilt.mid(0x400, 27), original.mid(0x400, 27));
    EXPECT_EQ(rebuilt.mid(0x400 + 512 - 17, 17), original.mid(0x400 + 512 - 17, 17));
}

} // namespace

} // namespace plx
