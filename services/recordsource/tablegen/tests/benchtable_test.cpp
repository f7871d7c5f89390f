// services/recordsource/tablegen/tests/benchtable_test.cpp: the benchmark table is what
// the benchmarks assume: the same records on every run, unique IDs of the navigator's
// shape, name prefixes to find, and a SQLite file the record source reads back with the
// right field types.
#include "services/recordsource/tablegen/benchtable.h"
#include "services/recordsource/tablegen/sqlitewriter.h"
#include "services/recordsource/database.h"

#include <QDate>
#include <QSet>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace plx::bench {
namespace {

constexpr int Sample = 20000;

TEST(BenchTableTest, RecordsAreDeterministicWithUniqueNavigatorIds)
{
    BenchTableGenerator a;
    BenchTableGenerator b;
    QSet<QString> ids;
    int children = 0, notes = 0, smNames = 0, upperNames = 0;
    for (int i = 0; i < Sample; ++i) {
        const QVariantList row = a.next();
        ASSERT_EQ(row, b.next()) << i;
        ASSERT_EQ(row.size(), benchTableFields().size());
        const QString id = row.at(0).toString();
        EXPECT_EQ(id, BenchTableGenerator::idOf(i));
        EXPECT_TRUE(id.startsWith(QLatin1String("PLE"))) << id.toStdString();
        ASSERT_TRUE(id.size() == 10 || id.size() == 17) << id.toStdString();
        if (id.size() == 17) {
            ++children;
            EXPECT_TRUE(ids.contains(id.left(10))) << "a child needs an earlier parent";
        }
        EXPECT_FALSE(ids.contains(id)) << id.toStdString();
        ids.insert(id);
        const QString name = row.at(1).toString();
        EXPECT_LE(name.size(), 40);
        EXPECT_TRUE(name.contains(QLatin1String(", ")));
        smNames += name.toUpper().startsWith(QLatin1String("SM"));
        upperNames += name == name.toUpper();
        notes += row.at(7).isValid();
        EXPECT_EQ(row.at(3).toString().size(), 2);
        EXPECT_LE(row.at(8).toString().size(), 30);
    }
    EXPECT_EQ(children, Sample / 10);
    EXPECT_NEAR(notes, Sample / 3, Sample / 30);
    EXPECT_GT(smNames, Sample / 10); // SMITH is the commonest surname, with its relatives
    EXPECT_GT(upperNames, Sample / 8);
    EXPECT_LT(upperNames, Sample / 2);
}

TEST(BenchTableTest, SqliteTableReadsBackThroughTheRecordSource)
{
    QTemporaryDir dir;
    const QString file = dir.filePath(QStringLiteral("bench.sqlite"));
    ASSERT_TRUE(writeSqliteBenchTable(file, QStringLiteral("T"), 50).isOk());
    Result<std::unique_ptr<Database>> db = OpenDatabase(file, false, false, QString());
    ASSERT_TRUE(db.isOk());
    Result<std::unique_ptr<RecordSource>> rs = db.value()->OpenRecordset(QStringLiteral("T"));
    ASSERT_TRUE(rs.isOk()) << rs.status().toString().toStdString();
    RecordSource &t = *rs.value();
    const QList<FieldInfo> expected = benchTableFields();
    ASSERT_EQ(t.fieldInfos().size(), expected.size());
    for (int i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(t.fieldInfos().at(i).type, expected.at(i).type) << i;
        EXPECT_EQ(t.fieldInfos().at(i).size, expected.at(i).size) << i;
    }
    BenchTableGenerator generator;
    const QVariantList first = generator.next();
    EXPECT_EQ(t.value(QStringLiteral("ID")).value(), first.at(0));
    EXPECT_EQ(t.value(QStringLiteral("BORN")).value().toDate(), first.at(5).toDate());
    EXPECT_EQ(t.value(QStringLiteral("ACTIVE")).value().toBool(), first.at(6).toBool());
    EXPECT_DOUBLE_EQ(t.value(QStringLiteral("AMOUNT")).value().toDouble(), first.at(4).toDouble());
    ASSERT_TRUE(t.MoveLast().isOk());
    EXPECT_EQ(t.RecordCount(), 50);
    // Writing again replaces the table instead of doubling it.
    rs.value()->Close();
    db.value()->Close();
    ASSERT_TRUE(writeSqliteBenchTable(file, QStringLiteral("T"), 20).isOk());
    db = OpenDatabase(file, false, false, QString());
    ASSERT_TRUE(db.isOk());
    rs = db.value()->OpenRecordset(QStringLiteral("T"));
    ASSERT_TRUE(rs.isOk());
    ASSERT_TRUE(rs.value()->MoveLast().isOk());
    EXPECT_EQ(rs.value()->RecordCount(), 20);
}

} // namespace
} // namespace plx::bench
