// services/recordsource/dbf/tests/cdx_process_test.cpp: tables with a structural index written
// through the record source: writable when every tag can be kept, read only naming the tag
// when one cannot, and a writer killed at any write leaving the index consistent or marked
// for the rebuild the next writable open makes.
#include "dbf_test_util.h"

#include "services/recordsource/dbf/internal/cdxindex.h"
#include "services/recordsource/dbf/internal/dbftable.h"
#include "tests/support/testchild.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace plx {

using dbftestutil::makeSmallTable;
using dbftestutil::readBytes;
using dbftestutil::writeBytes;
using test::TestChild;

namespace {

QString indexPathOf(const QString &tablePath)
{
    return tablePath.left(tablePath.size() - 4) + QStringLiteral(".cdx");
}

// Gives SMALL.DBF a structural index: the tag NAME on UPPER(NAME), QTY on QTY for the
// records marked OK, and BORN on DTOS(BORN)+NAME, descending.
void indexTable(const QString &tablePath)
{
    {
        auto table = DbfTable::open(tablePath);
        ASSERT_TRUE(table.isOk());
        auto index = CdxIndex::create(
            indexPathOf(tablePath), **table,
            { { QStringLiteral("NAME"), "UPPER(NAME)", {}, 10 },
              { QStringLiteral("QTY"), "QTY", "OK", 8 },
              { QStringLiteral("BORN"), "DTOS(BORN)+NAME", {}, 18, false, true } });
        ASSERT_TRUE(index.isOk()) << index.status().message().toStdString();
    }
    QByteArray bytes = readBytes(tablePath);
    bytes[28] = 0x01;
    writeBytes(tablePath, bytes);
}

} // namespace

TEST(CdxTables, ATagThatCannotBeEvaluatedKeepsTheTableReadOnlyAndSaysWhich)
{
    QTemporaryDir dir;
    const QString path = makeSmallTable(dir.path(), 3);
    ASSERT_NO_FATAL_FAILURE(indexTable(path));
    {
        auto table = DbfTable::open(path);
        ASSERT_TRUE(table.isOk());
        EXPECT_TRUE((*table)->isWritable()) << (*table)->writable().message().toStdString();
        ASSERT_NE((*table)->index(), nullptr);
        EXPECT_TRUE((*table)->index()->check().isOk());
    }
    QByteArray cdx = readBytes(indexPathOf(path));
    const qsizetype at = cdx.indexOf("UPPER(NAME)");
    ASSERT_GT(at, 0);
    cdx.replace(at, 11, "SOUNX(NAME)");
    writeBytes(indexPathOf(path), cdx);
    const QByteArray before = readBytes(path);
    auto table = DbfTable::open(path);
    ASSERT_TRUE(table.isOk());
    EXPECT_EQ((*table)->writable().message(),
              QStringLiteral("Index tag NAME (SOUNX(NAME)) cannot be maintained; the table is "
                             "read-only."));
    EXPECT_EQ((*table)->readOnlyReason(),
              QStringLiteral("the table has an index this program cannot keep up to date "
                             "(SMALL.cdx)"));
    EXPECT_EQ((*table)->writeRecord(1, { QStringLiteral("X") }).code(), Status::Code::NotSupported);
    EXPECT_EQ(readBytes(path), before);
    EXPECT_EQ(readBytes(indexPathOf(path)), cdx);
}

// Two processes appending to one indexed table at once: every record of both gets its keys,
// none twice, as the index lock taken after the header lock orders the updates.
TEST(CdxTables, TwoProcessesAppendingKeepOneConsistentIndex)
{
    QTemporaryDir dir;
    const QString path = makeSmallTable(dir.path(), 3);
    ASSERT_NO_FATAL_FAILURE(indexTable(path));
    TestChild a({ QStringLiteral("table"), QStringLiteral("append"), path, QStringLiteral("300"),
                  QStringLiteral("AAA") });
    TestChild b({ QStringLiteral("table"), QStringLiteral("append"), path, QStringLiteral("300"),
                  QStringLiteral("BBB") });
    ASSERT_EQ(a.exitCode(60000), 0) << a.errors().toStdString();
    ASSERT_EQ(b.exitCode(60000), 0) << b.errors().toStdString();
    auto table = DbfTable::open(path, DbfTable::OpenMode::ReadOnly);
    ASSERT_TRUE(table.isOk());
    EXPECT_EQ((*table)->recordCount(), 603U);
    ASSERT_NE((*table)->index(), nullptr);
    EXPECT_TRUE((*table)->index()->check().isOk())
        << (*table)->index()->check().message().toStdString();
}

// A record source's Edit+Update, AddNew+Update and Delete on an indexed table, ended before
// each of its writes in turn (table, memo and index writes alike): the table is whole, old
// or new, and the index either passes the checker or carries the mark of an update cut short,
// which the next writable open rebuilds into one that passes.
TEST(CdxTables, WriterKilledAtEveryWriteLeavesTheIndexConsistentOrMarkedForRebuild)
{
    for (const char *op : { "update", "add", "delete" }) {
        SCOPED_TRACE(op);
        int kills = 0;
        int marked = 0;
        for (int n = 1; n <= 64; ++n) {
            SCOPED_TRACE(n);
            QTemporaryDir dir;
            const QString path = makeSmallTable(dir.path(), 40);
            ASSERT_NO_FATAL_FAILURE(indexTable(path));
            TestChild child({ QStringLiteral("table"), QStringLiteral("killat"), dir.path(),
                              QString::fromLatin1(op), QString::number(n) });
            const int code = child.exitCode(20000);
            ASSERT_TRUE(code == 0 || code == 77) << child.errors().toStdString();
            {
                auto table = DbfTable::open(path, DbfTable::OpenMode::ReadOnly);
                ASSERT_TRUE(table.isOk());
                auto index = CdxIndex::open(indexPathOf(path), **table, false);
                ASSERT_TRUE(index.isOk());
                if (*(*index)->stale())
                    ++marked;
                else
                    EXPECT_TRUE((*index)->check().isOk())
                        << (*index)->check().message().toStdString();
            }
            auto table = DbfTable::open(path);
            ASSERT_TRUE(table.isOk());
            ASSERT_NE((*table)->index(), nullptr) << (*table)->writable().message().toStdString();
            EXPECT_TRUE((*table)->index()->check().isOk())
                << (*table)->index()->check().message().toStdString();
            if (code == 0)
                break;
            ++kills;
        }
        // Every operation writes the index at least three times (mark, a leaf, counter
        // and mark cleared), each a kill point.
        EXPECT_GE(kills, 4);
        EXPECT_GE(marked, 3);
    }
}

} // namespace plx
