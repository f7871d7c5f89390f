// services/recordsource/tests/recordsource_createtable_test.cpp: a table made from field
// descriptions, on every back end. Describing it gives the fields back (names and types;
// sizes and decimals where the field keeps them), from the real file through a second
// connection, and a record written through a record source reads back there too.
#include "services/recordsource/tests/contractfixture.h"

#include <QDate>

namespace plx::testing {
namespace {

using Code = Status::Code;

const QList<FieldInfo> kFields = {
    { QStringLiteral("ID"), FieldType::Text, 10, 0 },
    { QStringLiteral("NAME"), FieldType::Text, 40, 0 },
    { QStringLiteral("BEDS"), FieldType::Numeric, 5, 0 },
    { QStringLiteral("RATE"), FieldType::Numeric, 8, 2 },
    { QStringLiteral("OPENED"), FieldType::Date, 8, 0 },
    { QStringLiteral("ACTIVE"), FieldType::Boolean, 1, 0 },
    { QStringLiteral("NOTES"), FieldType::Memo, 10, 0 },
};

class CreateTableTest : public ::testing::TestWithParam<std::shared_ptr<BackEnd>>
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_dir.isValid());
        const Status s = GetParam()->createTables(m_dir.path(), {});
        ASSERT_TRUE(s.isOk()) << s.toString().toStdString();
        m_db = open();
        ASSERT_TRUE(m_db);
    }

    std::unique_ptr<Database> open() const { return orFail(GetParam()->open(m_dir.path())); }

    QTemporaryDir m_dir;
    std::unique_ptr<Database> m_db;
};

TEST_P(CreateTableTest, DescriptionsMakeATableThatDescribesItselfAlikeAndKeepsRecords)
{
    const Status made = m_db->createTable(QStringLiteral("FACILITY"), kFields);
    ASSERT_TRUE(made.isOk()) << made.toString().toStdString();
    auto rs = m_db->OpenRecordset(QStringLiteral("FACILITY"));
    ASSERT_TRUE(rs.isOk()) << rs.status().toString().toStdString();
    RecordSource &source = *rs.value();
    ASSERT_TRUE(source.AddNew().isOk());
    const QVariantList values{ QStringLiteral("PLE0000001"),
                               QStringLiteral("Maple Manor"),
                               120,
                               12.75,
                               QDate(2003, 1, 31),
                               true,
                               QStringLiteral("two\r\nlines") };
    for (int i = 0; i < kFields.size(); ++i)
        ASSERT_TRUE(source.setValue(i, values[i]).isOk()) << kFields[i].name.toStdString();
    ASSERT_TRUE(source.Update().isOk());
    source.Close();

    // A second connection reads the file: the same fields, in order, and the record.
    std::unique_ptr<Database> again = open();
    ASSERT_TRUE(again);
    EXPECT_TRUE(again->tableNames().contains(QStringLiteral("FACILITY"), Qt::CaseInsensitive));
    Result<TableDescription> described = again->describeTable(QStringLiteral("facility"));
    ASSERT_TRUE(described.isOk()) << described.status().toString().toStdString();
    EXPECT_EQ(described->name.toUpper(), QStringLiteral("FACILITY"));
    ASSERT_EQ(described->fields.size(), kFields.size());
    for (int i = 0; i < kFields.size(); ++i) {
        const FieldInfo &want = kFields[i];
        const FieldInfo &got = described->fields[i];
        SCOPED_TRACE(want.name.toStdString());
        EXPECT_EQ(got.name, want.name);
        EXPECT_EQ(got.type, want.type);
        if (want.type == FieldType::Text || want.type == FieldType::Numeric) {
            EXPECT_EQ(got.size, want.size);
            EXPECT_EQ(got.decimals, want.decimals);
        }
        EXPECT_TRUE(described->storage.contains(want.name)) << described->storage.toStdString();
    }
    auto read = again->OpenRecordset(QStringLiteral("SELECT * FROM FACILITY"));
    ASSERT_TRUE(read.isOk()) << read.status().toString().toStdString();
    EXPECT_EQ(read.value()->fieldInfos().size(), kFields.size());
    for (int i = 0; i < kFields.size(); ++i)
        EXPECT_EQ(read.value()->value(i).value(), values[i]) << kFields[i].name.toStdString();
}

TEST_P(CreateTableTest, NamesTakenOrMissingAndReadOnlyDatabasesAreRefused)
{
    ASSERT_TRUE(m_db->createTable(QStringLiteral("T"), kFields.mid(0, 2)).isOk());
    const Status twice = m_db->createTable(QStringLiteral("t"), kFields.mid(0, 2));
    EXPECT_EQ(twice.code(), Code::InvalidArgument);
    EXPECT_EQ(twice.message(), QStringLiteral("a table named t exists already"));
    EXPECT_EQ(m_db->describeTable(QStringLiteral("NOPE")).status().code(), Code::NotFound);

    auto readOnly = GetParam()->openReadOnly(m_dir.path());
    ASSERT_TRUE(readOnly.isOk()) << readOnly.status().toString().toStdString();
    EXPECT_EQ(readOnly.value()->createTable(QStringLiteral("U"), kFields).code(),
              Code::NotSupported);
    EXPECT_FALSE(readOnly.value()->tableNames().contains(QStringLiteral("U"), Qt::CaseInsensitive));
}

// An index keeps the dialect's text order and matching: the same records in the same order
// as without it. What it cannot cover is refused with the reason.
TEST_P(CreateTableTest, AnIndexKeepsTheDialectsOrderAndRefusesWhatItCannotCover)
{
    ASSERT_TRUE(m_db->createTable(QStringLiteral("T"), kFields.mid(0, 3)).isOk());
    ASSERT_TRUE(m_db->appendRecords(QStringLiteral("T"),
                                    { { QStringLiteral("5"), QStringLiteral("ZOE"), 1 },
                                      { QStringLiteral("2"), QStringLiteral("\u00e9mile"), 2 },
                                      { QStringLiteral("3"), QStringLiteral("adams"), 3 },
                                      { QStringLiteral("4"), QStringLiteral("Emile"), 4 },
                                      { QStringLiteral("1"), QStringLiteral("Baker"), 5 } })
                    .isOk());
    auto ids = [this](const char *sql) {
        QStringList out;
        auto rs = m_db->OpenRecordset(QString::fromUtf8(sql));
        EXPECT_TRUE(rs.isOk()) << rs.status().toString().toStdString();
        for (RecordSource *r = rs.isOk() ? rs.value().get() : nullptr; r && !r->isEOF();
             (void)r->MoveNext())
            out << r->value(QStringLiteral("ID")).value().toString().trimmed();
        return out;
    };
    const char *byName = "SELECT * FROM T ORDER BY NAME, ID";
    const char *emile = "SELECT * FROM T WHERE NAME = 'EMILE' ORDER BY ID";
    const QStringList before = ids(byName);
    const QStringList matched = ids(emile);

    const Status made = m_db->createIndex(QStringLiteral("t"), QStringLiteral("T_NAME"),
                                          { QStringLiteral("name") });
    ASSERT_TRUE(made.isOk()) << made.toString().toStdString();
    EXPECT_EQ(ids(byName), before);
    EXPECT_EQ(ids(emile), matched);
    // The dialect's order and matching, not only the same as before.
    if (m_db->textCompare() == TextCompare::NoCase) {
        EXPECT_EQ(before,
                  (QStringList{ QStringLiteral("3"), QStringLiteral("1"), QStringLiteral("4"),
                                QStringLiteral("2"), QStringLiteral("5") }));
        EXPECT_EQ(matched, QStringList{ QStringLiteral("4") });
    }

    const Status twice =
        m_db->createIndex(QStringLiteral("T"), QStringLiteral("T_NAME"), { QStringLiteral("ID") });
    EXPECT_EQ(twice.code(), Code::InvalidArgument);
    EXPECT_EQ(twice.message(), QStringLiteral("an index named T_NAME exists already"));
    const Status unknown = m_db->createIndex(QStringLiteral("T"), QStringLiteral("T_C"),
                                             { QStringLiteral("ID"), QStringLiteral("COLOUR") });
    EXPECT_EQ(unknown.code(), Code::InvalidArgument);
    EXPECT_EQ(unknown.message(), QStringLiteral("the table T has no field COLOUR"));
    EXPECT_EQ(
        m_db->createIndex(QStringLiteral("NOPE"), QStringLiteral("N"), { QStringLiteral("ID") })
            .code(),
        Code::NotFound);
    auto readOnly = GetParam()->openReadOnly(m_dir.path());
    ASSERT_TRUE(readOnly.isOk());
    EXPECT_EQ(
        readOnly.value()
            ->createIndex(QStringLiteral("T"), QStringLiteral("T_ID"), { QStringLiteral("ID") })
            .code(),
        Code::NotSupported);
}

// Reads every record of `table` through a fresh connection, in the table's order.
QList<QVariantList> readBack(Database &db, const QString &table)
{
    QList<QVariantList> rows;
    auto rs = db.OpenRecordset(table);
    EXPECT_TRUE(rs.isOk()) << rs.status().toString().toStdString();
    if (!rs.isOk())
        return rows;
    for (RecordSource &source = *rs.value(); !source.isEOF(); (void)source.MoveNext()) {
        QVariantList row;
        for (int i = 0; i < source.fieldInfos().size(); ++i)
            row << source.value(i).value();
        rows << row;
    }
    return rows;
}

TEST_P(CreateTableTest, ABatchOfRecordsLandsWholeOrNotAtAll)
{
    const QList<FieldInfo> fields = kFields.mid(0, 5) << kFields.last();
    ASSERT_TRUE(m_db->createTable(QStringLiteral("FACILITY"), fields).isOk());
    const QList<QVariantList> batch{
        { QStringLiteral("PLE0000001"), QStringLiteral("Maple Manor"), 120, 12.75,
          QDate(2003, 1, 31), QStringLiteral("two\r\nlines") },
        // A short row leaves the rest blank.
        { QStringLiteral("PLE0000002"), QStringLiteral("Oak Gardens") },
    };
    const Status added = m_db->appendRecords(QStringLiteral("facility"), batch);
    ASSERT_TRUE(added.isOk()) << added.toString().toStdString();

    // The second row of this batch is wider than NAME: nothing of it may stay, not even
    // the good row before it, and the records already there are untouched.
    const Status refused =
        m_db->appendRecords(QStringLiteral("FACILITY"),
                            { { QStringLiteral("PLE0000003"), QStringLiteral("Pine") },
                              { QStringLiteral("PLE0000004"), QString(41, QLatin1Char('x')) } });
    EXPECT_EQ(refused.code(), Code::InvalidArgument);
    EXPECT_TRUE(refused.message().startsWith(QLatin1String("row 2")))
        << refused.message().toStdString();
    const Status tooWide = m_db->appendRecords(
        QStringLiteral("FACILITY"), { QVariantList(fields.size() + 1, QStringLiteral("x")) });
    EXPECT_EQ(tooWide.code(), Code::InvalidArgument);
    EXPECT_EQ(m_db->appendRecords(QStringLiteral("NOPE"), batch).code(), Code::NotFound);

    std::unique_ptr<Database> again = open();
    ASSERT_TRUE(again);
    const QList<QVariantList> rows = readBack(*again, QStringLiteral("FACILITY"));
    ASSERT_EQ(rows.size(), 2);
    EXPECT_EQ(rows[0], batch[0]);
    EXPECT_EQ(rows[1][0], QStringLiteral("PLE0000002"));
    EXPECT_EQ(rows[1][1], QStringLiteral("Oak Gardens"));
    EXPECT_TRUE(rows[1][5].isNull() || rows[1][5].toString().isEmpty())
        << rows[1][5].toString().toStdString();

    auto readOnly = GetParam()->openReadOnly(m_dir.path());
    ASSERT_TRUE(readOnly.isOk()) << readOnly.status().toString().toStdString();
    EXPECT_EQ(readOnly.value()->appendRecords(QStringLiteral("FACILITY"), batch).code(),
              Code::NotSupported);
    EXPECT_EQ(readBack(*again, QStringLiteral("FACILITY")).size(), 2);
}

INSTANTIATE_TEST_SUITE_P(AllBackEnds, CreateTableTest, ::testing::ValuesIn(allBackEnds()),
                         backEndName);

} // namespace
} // namespace plx::testing
