// services/recordsource/tests/querytext_test.cpp: the exact statements and criteria the
// controls send, for plain names and for names that need brackets.
#include "services/recordsource/querytext.h"

#include <gtest/gtest.h>

namespace plx {
namespace {

TEST(QueryText, NamesThatAreNotIdentifiersOrAreReservedStandInBrackets)
{
    for (const char *plain : { "T", "first_name", "_x9", "[my people]" })
        EXPECT_EQ(QueryText::name(QString::fromLatin1(plain)), QString::fromLatin1(plain));
    for (const char *odd : { "my people", "91", "order" })
        EXPECT_EQ(QueryText::name(QString::fromLatin1(odd)),
                  QLatin1Char('[') + QString::fromLatin1(odd) + QLatin1Char(']'));
    const QueryText people(QStringLiteral("my people"));
    EXPECT_EQ(people.qualified(QStringLiteral("ID")), QStringLiteral("[my people].ID"));
    EXPECT_EQ(people.find(QStringLiteral("S"), QStringLiteral("NAME")),
              QStringLiteral("SELECT * from [my people] WHERE UCase([my people].NAME) LIKE 'S*' "
                             "ORDER BY [my people].NAME"));
    EXPECT_EQ(
        QueryText(QStringLiteral("T")).idCriterion(QStringLiteral("my id"), QStringLiteral("A")),
        QStringLiteral("[my id] = CHR(65)"));
}

TEST(QueryText, TheNavigatorsStatementsAsTheEngineAndTheLogSeeThem)
{
    const QueryText t(QStringLiteral("T"));
    const struct
    {
        QString text, expected;
    } rows[] = {
        { t.orderByList(QStringLiteral("NAME, , city desc,first name ASC")),
          QStringLiteral("T.NAME, T.city desc, T.[first name] ASC") },
        { t.selectAll(), QStringLiteral("SELECT * from T") },
        { t.selectAll(QStringLiteral("NAME, CITY")),
          QStringLiteral("SELECT * from T ORDER BY T.NAME, T.CITY") },
        { t.records(QString(), QString(), QStringLiteral("ID")),
          QStringLiteral("SELECT * from T    ORDER BY T.ID") },
        { t.records(QStringLiteral("JOIN U"), QStringLiteral("WHERE X = 1"), QStringLiteral(" ")),
          QStringLiteral("SELECT * from T JOIN U WHERE X = 1 ") },
        { t.selectWhere(QStringLiteral("ID = 1")), QStringLiteral("SELECT * from T WHERE ID = 1") },
        { t.idCriterion(QStringLiteral("ID"), QStringLiteral("A'1")),
          QStringLiteral("ID = CHR(65) & CHR(39) & CHR(49)") },
        { t.qualifiedIdCriterion(QStringLiteral("ID"), QStringLiteral("A")),
          QStringLiteral("T.ID = CHR(65)") },
        { t.highestGeneratedID(QStringLiteral("ID")),
          QStringLiteral("Select * from T WHERE  Left([ID],3) = 'PLE' Order By ID DESC") },
        // Tab pieces against the sort's fields; a blank piece or one beyond the fields
        // looks for nothing; quotes doubled, pipes as character codes.
        { t.find(QStringLiteral("SM\tB"), QStringLiteral("NAME, CITY")),
          QStringLiteral("SELECT * from T WHERE UCase([T.NAME]) LIKE 'SM*' AND UCase([T.CITY]) "
                         "LIKE 'B*' ORDER BY T.NAME, T.CITY") },
        { t.find(QStringLiteral(" \tO'B\tX"), QStringLiteral("NAME, CITY")),
          QStringLiteral("SELECT * from T WHERE UCase([T.CITY]) LIKE 'O''B*' ORDER BY T.NAME, "
                         "T.CITY") },
        { t.find(QStringLiteral("A|B"), QStringLiteral("NAME")),
          QStringLiteral("SELECT * from T WHERE UCase([T.NAME]) LIKE 'A' & chr(124) & 'B*' "
                         "ORDER BY T.NAME") },
        { t.find(QStringLiteral("  "), QStringLiteral("NAME")), QString() },
    };
    for (const auto &row : rows)
        EXPECT_EQ(row.text, row.expected);
}

} // namespace
} // namespace plx
