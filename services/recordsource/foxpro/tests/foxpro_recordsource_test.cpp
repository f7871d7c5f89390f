// What is particular to FoxPro tables behind the record source (the contract suite covers
// what all back ends share; byte order: foxpro_collation_test.cpp): deleted records, joins,
// unmarked code pages, and the statements the driver refuses (read-only tables:
// foxpro_samplefiles_test.cpp).
#include "services/recordsource/database.h"
#include "services/recordsource/dbf/internal/dbftable.h"
#include "services/recordsource/foxpro/tests/foxprotestsupport.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace plx {

namespace {

class FoxProRecordSourceTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_dir.isValid());
        QList<QVariantList> rows;
        for (const char *name : { "apple", "Banana", "cherry", "Apricot", "banana" })
            rows << QVariantList{ QStringLiteral("F%1").arg(rows.size() + 1),
                                  QString::fromLatin1(name) };
        ASSERT_NO_FATAL_FAILURE(foxprotest::writeTable(
            m_dir.path(),
            { QStringLiteral("FRUIT"), foxprotest::textFields({ { "ID", 10 }, { "NAME", 20 } }),
              rows }));
        auto table = DbfTable::open(m_dir.filePath(QStringLiteral("FRUIT.DBF")));
        ASSERT_TRUE(table.isOk());
        ASSERT_TRUE(table.value()->setDeleted(5, true).isOk()); // the lower-case "banana"
    }

    std::unique_ptr<Database> database() { return foxprotest::openDirectory(m_dir.path()); }

    QStringList names(const QString &sql)
    {
        auto db = database();
        return db ? foxprotest::fieldOfEachRecord(*db, sql, QStringLiteral("NAME")) : QStringList();
    }

    QTemporaryDir m_dir;
};

} // namespace

TEST_F(FoxProRecordSourceTest, DeletedRecordsAreHiddenAndDeleteMarksTheFile)
{
    EXPECT_EQ(names(QStringLiteral("FRUIT")).size(), 4);
    {
        auto db = database();
        auto rs = db->OpenRecordset(QStringLiteral("FRUIT"));
        ASSERT_TRUE(rs.isOk());
        ASSERT_TRUE(rs.value()->FindFirst(QStringLiteral("ID = CHR(70) & CHR(51)")).isOk());
        ASSERT_FALSE(rs.value()->NoMatch());
        ASSERT_TRUE(rs.value()->Delete().isOk());
    }
    EXPECT_EQ(names(QStringLiteral("FRUIT")),
              QStringList({ QStringLiteral("apple"), QStringLiteral("Banana"),
                            QStringLiteral("Apricot") }));
    // The record is still in the file, flagged as FoxPro flags it.
    auto table =
        DbfTable::open(m_dir.filePath(QStringLiteral("FRUIT.DBF")), DbfTable::OpenMode::ReadOnly);
    ASSERT_TRUE(table.isOk());
    EXPECT_EQ(table.value()->recordCount(), 5u);
    EXPECT_TRUE(table.value()->isDeleted(3));
}

// Joins and column lists run through SQLite with the tables as virtual tables, still in
// byte order, and are read-only.
TEST_F(FoxProRecordSourceTest, JoinsRunThroughTheVirtualTableModule)
{
    const auto row = [](const char *id, const char *colour) {
        return QVariantList{ QString::fromLatin1(id), QString::fromLatin1(colour) };
    };
    ASSERT_NO_FATAL_FAILURE(
        foxprotest::writeTable(m_dir.path(),
                               { QStringLiteral("COLOURS"),
                                 foxprotest::textFields({ { "ID", 10 }, { "COLOUR", 10 } }),
                                 { row("F1", "red"), row("F2", "Yellow"), row("F5", "brown") } }));

    auto db = database();
    auto rs = db->OpenRecordset(QStringLiteral(
        "SELECT F.NAME, C.COLOUR FROM FRUIT AS F INNER JOIN COLOURS AS C ON F.ID = C.ID "
        "WHERE C.COLOUR <> 'RED' ORDER BY C.COLOUR"));
    ASSERT_TRUE(rs.isOk()) << rs.status().toString().toStdString();
    RecordSource &r = *rs.value();
    QStringList rows;
    for (; !r.isEOF(); (void)r.MoveNext())
        rows << r.value(0).value().toString() + QLatin1Char('/') + r.value(1).value().toString();
    // "red" differs from 'RED' in byte order; the deleted F5 is not joined; Y < r.
    EXPECT_EQ(rows, QStringList({ QStringLiteral("Banana/Yellow"), QStringLiteral("apple/red") }));
    ASSERT_TRUE(r.MoveFirst().isOk());
    EXPECT_EQ(r.Edit().code(), Status::Code::NotSupported);

    auto unknown = db->OpenRecordset(QStringLiteral("SELECT * FROM FRUIT WHERE COLOUR = 'red'"));
    EXPECT_EQ(unknown.status().code(), Status::Code::UnknownField);
    EXPECT_EQ(db->OpenRecordset(QStringLiteral("VEGETABLE")).status().code(),
              Status::Code::NotFound);
}

// A table whose header carries no code-page mark is read as Windows-1252 unless the
// connect string names its code page.
TEST(FoxProCodePageTest, ConnectStringGivesTheCodePageOfUnmarkedTables)
{
    QTemporaryDir dir;
    ASSERT_NO_FATAL_FAILURE(foxprotest::writeTable(dir.path(),
                                                   { QStringLiteral("PEOPLE"),
                                                     foxprotest::textFields({ { "NAME", 10 } }),
                                                     { { QStringLiteral("José") } } },
                                                   850));
    const QString path = dir.filePath(QStringLiteral("PEOPLE.DBF"));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    file.seek(29);
    file.write(QByteArray(1, '\0')); // remove the mark; the stored byte is 850's é (0x82)
    file.close();

    auto read = [&dir](const QString &connect) {
        auto db = OpenDatabase(dir.path(), false, true, connect);
        EXPECT_TRUE(db.isOk());
        auto rs = db.value()->OpenRecordset(QStringLiteral("PEOPLE"));
        EXPECT_TRUE(rs.isOk()) << rs.status().toString().toStdString();
        return rs.isOk() ? rs.value()->value(0).value().toString() : QString();
    };
    EXPECT_EQ(read(QStringLiteral("FoxPro 2.6;CodePage=850")), QStringLiteral("José"));
    EXPECT_EQ(read(QStringLiteral("FoxPro 2.6")), QString::fromUtf8("Jos\u201A")); // 0x82 in 1252
}

// A megabyte-long text in a condition costs time in proportion to its length: every shape
// the driver runs (its own fast paths and the general evaluator) gives its answer.
TEST_F(FoxProRecordSourceTest, MegabyteLiteralsInConditionsGiveTheirAnswers)
{
    const QString big = QStringLiteral("x").repeated(1 << 20);
    const QString quoted = QStringLiteral("'") + big + QStringLiteral("'");
    const QString wheres[] = {
        QStringLiteral("NAME = ") + quoted,
        QStringLiteral("NAME <> ") + quoted,
        QStringLiteral("NAME Like ") + quoted,
        QStringLiteral("UCase(NAME) Like 'X") + big + QStringLiteral("*'"),
        QStringLiteral("NAME & ") + quoted + QStringLiteral(" = ") + quoted,
        QStringLiteral("InStr(") + quoted + QStringLiteral(", NAME) > 0"),
        QStringLiteral("NAME Like '*") + big + QStringLiteral("*'"),
        QStringLiteral("NAME In (") + quoted + QStringLiteral(", 'apple')"),
    };
    const int expected[] = { 0, 4, 0, 0, 0, 0, 0, 1 };
    for (int i = 0; i < int(std::size(wheres)); ++i) {
        SCOPED_TRACE(i);
        EXPECT_EQ(names(QStringLiteral("SELECT * from FRUIT WHERE ") + wheres[i]).size(),
                  expected[i]);
    }
}

} // namespace plx
