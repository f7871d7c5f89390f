// services/recordsource/tests/recordsource_contract_test.cpp: what every record-source back
// end must do for the controls: positions and counts, finds in the source's order, the
// navigator's own query texts, fields, the edit cycle seen from a second connection, and
// record locks between connections.
#include "services/texthelpers.h"
#include "services/recordsource/jet/internal/evaluationcounters.h"
#include "services/recordsource/tests/contractfixture.h"

#include <QDate>

#include <algorithm>

namespace plx::testing {
namespace {

using Code = Status::Code;

// Guards against reading a field or a position from an empty result: the navigator tests
// BOF and EOF before anything else.
TEST_P(RecordSourceContractTest, EmptyResultHasBothEndsAndNoRecord)
{
    auto rs = open(QStringLiteral("SELECT * FROM T WHERE ID = 'NOBODY'"));
    ASSERT_TRUE(rs);
    EXPECT_TRUE(rs->isBOF());
    EXPECT_TRUE(rs->isEOF());
    EXPECT_LT(rs->AbsolutePosition(), 0);
    EXPECT_EQ(rs->RecordCount(), 0);
    EXPECT_FALSE(rs->value(QStringLiteral("ID")).isOk());
    EXPECT_EQ(rs->MoveNext().code(), Code::InvalidArgument);
    EXPECT_EQ(rs->MovePrevious().code(), Code::InvalidArgument);
    EXPECT_EQ(rs->setAbsolutePosition(0).code(), Code::InvalidArgument);
}

// The count is exact once MoveLast has read everything; moves past either end set BOF or EOF;
// and the scroll bar and every re-query restore a remembered AbsolutePosition.
TEST_P(RecordSourceContractTest, CountsEndsAndPositionsOverABigResult)
{
    const auto idAt = [](int i) { return QStringLiteral("PLE%1").arg(i, 7, 10, QLatin1Char('0')); };
    auto rs = open(QStringLiteral("SELECT * FROM BIG ORDER BY ID"));
    ASSERT_TRUE(rs);
    EXPECT_GE(rs->RecordCount(), 1);
    EXPECT_LE(rs->RecordCount(), BigRows);
    ASSERT_TRUE(rs->MoveLast().isOk());
    EXPECT_EQ(rs->RecordCount(), BigRows);
    EXPECT_EQ(rs->AbsolutePosition(), BigRows - 1);
    // Counting must not lose the records in between.
    ASSERT_TRUE(rs->MoveFirst().isOk());
    EXPECT_EQ(idsToEnd(*rs).size(), BigRows);
    EXPECT_EQ(rs->RecordCount(), BigRows);

    ASSERT_TRUE(rs->MoveFirst().isOk());
    EXPECT_FALSE(rs->isBOF());
    ASSERT_TRUE(rs->MovePrevious().isOk());
    EXPECT_TRUE(rs->isBOF());
    EXPECT_FALSE(rs->isEOF());
    EXPECT_LT(rs->AbsolutePosition(), 0);
    EXPECT_EQ(rs->MovePrevious().code(), Code::InvalidArgument);
    ASSERT_TRUE(rs->MoveNext().isOk());
    EXPECT_EQ(textOf(*rs, QStringLiteral("ID")), idAt(0));
    ASSERT_TRUE(rs->MoveLast().isOk());
    ASSERT_TRUE(rs->MoveNext().isOk());
    EXPECT_TRUE(rs->isEOF());
    EXPECT_FALSE(rs->isBOF());
    EXPECT_LT(rs->AbsolutePosition(), 0);
    EXPECT_EQ(rs->MoveNext().code(), Code::InvalidArgument);
    ASSERT_TRUE(rs->MovePrevious().isOk());
    EXPECT_EQ(rs->AbsolutePosition(), BigRows - 1);
    EXPECT_EQ(textOf(*rs, QStringLiteral("ID")), idAt(BigRows - 1));

    auto descending = open(QStringLiteral("SELECT * FROM BIG ORDER BY ID DESC"));
    ASSERT_TRUE(descending);
    ASSERT_TRUE(descending->MoveLast().isOk());
    ASSERT_TRUE(descending->setAbsolutePosition(17).isOk());
    EXPECT_EQ(textOf(*descending, QStringLiteral("ID")), idAt(BigRows - 1 - 17));
    ASSERT_TRUE(descending->MoveFirst().isOk());
    ASSERT_TRUE(descending->setAbsolutePosition(17).isOk());
    EXPECT_EQ(descending->AbsolutePosition(), 17);
    EXPECT_EQ(textOf(*descending, QStringLiteral("ID")), idAt(BigRows - 1 - 17));
    EXPECT_EQ(descending->setAbsolutePosition(-1).code(), Code::InvalidArgument);
    EXPECT_EQ(descending->setAbsolutePosition(BigRows).code(), Code::InvalidArgument);
    EXPECT_EQ(descending->AbsolutePosition(), 17);
}

// Finds run in the source's order from its first record, wherever the source stands; IDs
// are found by character codes so that a quote, a pipe or a blank in an ID cannot break the
// criterion; a find without a match sets NoMatch and the caller restores the position.
TEST_P(RecordSourceContractTest, FindsFollowTheSourceOrderAndReportNoMatch)
{
    auto rs = open(QStringLiteral("SELECT * from T ORDER BY T.NAME, T.CITY"));
    ASSERT_TRUE(rs);
    const QStringList order = expectedByNameCity([](const QVariantList &) { return true; });
    goToId(*rs, OddId);
    EXPECT_EQ(textOf(*rs, QStringLiteral("ID")), OddId);
    EXPECT_EQ(rs->AbsolutePosition(), order.indexOf(OddId));
    EXPECT_EQ(textOf(*rs, QStringLiteral("NAME")), QStringLiteral("SMITH, ADAM"));

    const QStringList expected = expectedByNameCity([](const QVariantList &row) {
        return row.at(1).toString().toUpper().startsWith(QLatin1String("SMI"));
    });
    ASSERT_GE(expected.size(), 3);
    const QString criterion = QStringLiteral("UCase([NAME]) LIKE 'SMI*'");
    ASSERT_TRUE(rs->MoveLast().isOk());
    QStringList found;
    ASSERT_TRUE(rs->FindFirst(criterion).isOk());
    while (!rs->NoMatch()) {
        found << textOf(*rs, QStringLiteral("ID"));
        ASSERT_TRUE(rs->FindNext(criterion).isOk());
        ASSERT_LE(found.size(), expected.size());
    }
    EXPECT_EQ(found, expected);

    ASSERT_TRUE(rs->setAbsolutePosition(3).isOk());
    const QString before = textOf(*rs, QStringLiteral("ID"));
    ASSERT_TRUE(
        rs->FindFirst(QStringLiteral("ID = ") + strToASC(QStringLiteral("PLE9999999"))).isOk());
    EXPECT_TRUE(rs->NoMatch());
    ASSERT_TRUE(rs->setAbsolutePosition(3).isOk());
    EXPECT_EQ(textOf(*rs, QStringLiteral("ID")), before);
    // A later successful find clears the flag.
    goToId(*rs, QStringLiteral("PLE0000004"));
    EXPECT_FALSE(rs->NoMatch());
}

// The navigator's own query texts: the sort query with an empty join and WHERE text (double
// blanks), the find query keeping upper-cased prefix matches, and the last-ID query putting
// the highest PLE ID first.
TEST_P(RecordSourceContractTest, NavigatorQueryTextsGiveTheirRecordsInOrder)
{
    QStringList ple;
    for (const QVariantList &row : peopleTable().rows) {
        if (row.at(0).toString().startsWith(QLatin1String("PLE")))
            ple << row.at(0).toString();
    }
    std::sort(ple.begin(), ple.end(), std::greater<QString>());
    const std::pair<QString, QStringList> queries[] = {
        { QStringLiteral("SELECT * from T") + QLatin1Char(' ') + QString() + QLatin1Char(' ')
              + QString() + QStringLiteral(" ORDER BY T.NAME, T.CITY"),
          expectedByNameCity([](const QVariantList &) { return true; }) },
        { QStringLiteral(
              "SELECT * from T WHERE UCase([T.NAME]) LIKE 'SM*' ORDER BY T.NAME, T.CITY"),
          expectedByNameCity([](const QVariantList &row) {
              return row.at(1).toString().toUpper().startsWith(QLatin1String("SM"));
          }) },
        { QStringLiteral("Select * from T WHERE  Left([ID],3) = 'PLE' Order By ID DESC"), ple },
    };
    for (const auto &[sql, expected] : queries) {
        SCOPED_TRACE(sql.toStdString());
        auto rs = open(sql);
        ASSERT_TRUE(rs);
        EXPECT_EQ(idsToEnd(*rs), expected);
        ASSERT_TRUE(rs->MoveLast().isOk());
        EXPECT_EQ(rs->RecordCount(), expected.size());
    }
}

TEST_P(RecordSourceContractTest, FieldsCarryNameValueSizeAndNull)
{
    auto rs = open(QStringLiteral("T"));
    ASSERT_TRUE(rs);
    FieldList fields = rs->Fields();
    const TableDef &table = peopleTable();
    ASSERT_EQ(fields.Count(), table.fields.size());
    for (int i = 0; i < table.fields.size(); ++i) {
        EXPECT_EQ(fields[i].Name().toUpper(), table.fields.at(i).name);
        EXPECT_EQ(fields[i].Type(), table.fields.at(i).type) << i;
    }
    EXPECT_EQ(fields(QStringLiteral("id")).Size(), 20);
    EXPECT_EQ(fields(QStringLiteral("City")).Size(), 30);
    EXPECT_FALSE(fields(QStringLiteral("NOSUCH")).isValid());
    EXPECT_EQ(rs->value(QStringLiteral("NOSUCH")).status().code(), Code::UnknownField);

    goToId(*rs, QStringLiteral("PLE0000004"));
    EXPECT_EQ(fields(QStringLiteral("NAME")).Value().toString().trimmed(),
              QStringLiteral("JONES, MARY"));
    EXPECT_DOUBLE_EQ(fields(QStringLiteral("AMOUNT")).Value().toDouble(), -3.75);
    EXPECT_EQ(fields(QStringLiteral("BORN")).Value().toDate(), QDate(1990, 12, 31));
    EXPECT_EQ(fields(QStringLiteral("ACTIVE")).Value().typeId(), QMetaType::Bool);
    EXPECT_FALSE(fields(QStringLiteral("ACTIVE")).Value().toBool());
    goToId(*rs, QStringLiteral("PLE0000003"));
    EXPECT_FALSE(fields(QStringLiteral("BORN")).Value().isValid()); // Null date
    EXPECT_TRUE(fields(QStringLiteral("ACTIVE")).Value().toBool());
}

TEST_P(RecordSourceContractTest, MalformedQueryUnknownFieldAndBadCriterionAreDistinctErrors)
{
    EXPECT_EQ(m_db->OpenRecordset(QStringLiteral("SELECT * FROM T WHERE (ID = ")).status().code(),
              Code::Syntax);
    EXPECT_EQ(
        m_db->OpenRecordset(QStringLiteral("SELECT * FROM T ORDER BY NOSUCH")).status().code(),
        Code::UnknownField);
    EXPECT_EQ(m_db->OpenRecordset(QStringLiteral("NOTABLE")).status().code(), Code::NotFound);

    auto rs = open(QStringLiteral("SELECT * from T ORDER BY T.NAME, T.CITY"));
    ASSERT_TRUE(rs);
    ASSERT_TRUE(rs->setAbsolutePosition(2).isOk());
    EXPECT_EQ(rs->FindFirst(QStringLiteral("NOSUCH = 1")).code(), Code::UnknownField);
    EXPECT_EQ(rs->FindFirst(QStringLiteral("ID = (")).code(), Code::Syntax);
    EXPECT_EQ(rs->AbsolutePosition(), 2); // a failed find moves nothing
}

// Every open parses its text once, whatever path the engine takes: a table name, a statement
// the engine runs itself, a column list and a join (which FoxPro hands to SQLite), and a
// statement naming a missing table, whose NotFound is worked out from the same tree.
TEST_P(RecordSourceContractTest, EachOpenParsesItsTextOnce)
{
    const std::pair<const char *, Code> opens[] = {
        { "T", Code::Ok },
        { "SELECT * FROM T WHERE AMOUNT < 3 ORDER BY NAME", Code::Ok },
        { "SELECT ID, NAME FROM T WHERE AMOUNT < 3", Code::Ok },
        { "SELECT T.ID, B.ID FROM T INNER JOIN BIG AS B ON T.ID = B.ID", Code::Ok },
        { "SELECT * FROM NOPE WHERE AMOUNT > 1", Code::NotFound },
    };
    for (const auto &[text, code] : opens) {
        SCOPED_TRACE(text);
        jet::evaluationCounters() = {};
        const Status opened = m_db->OpenRecordset(QString::fromLatin1(text)).status();
        EXPECT_EQ(jet::evaluationCounters().statementsParsed, 1u);
        EXPECT_EQ(opened.code(), code) << opened.message().toStdString();
    }
}

INSTANTIATE_TEST_SUITE_P(AllBackEnds, RecordSourceContractTest, ::testing::ValuesIn(allBackEnds()),
                         backEndName);

} // namespace
} // namespace plx::testing
