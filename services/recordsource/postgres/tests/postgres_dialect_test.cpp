// services/recordsource/postgres/tests/postgres_dialect_test.cpp: the dialect on PostgreSQL
// gives what it gives on SQLite, record for record: the same order of names with accents,
// ß and mixed case, the same matches for each criterion; what it cannot translate exactly
// it refuses by name; an ID criterion runs on the ID's index.
#include "services/recordsource/jet/internal/parser.h"
#include "services/recordsource/postgres/pgconnection_p.h"
#include "services/recordsource/postgres/pgtranslate_p.h"
#include "services/recordsource/postgres/tests/pgserver.h"
#include "services/recordsource/tests/contractfixture.h"
#include "services/recordsource/tests/postgresbackend.h"
#include "services/texthelpers.h"

namespace plx::testing {
namespace {

using Code = Status::Code;

TableDef namesTable()
{
    TableDef t{ QStringLiteral("P"),
                { { QStringLiteral("ID"), FieldType::Text, 12, 0 },
                  { QStringLiteral("NAME"), FieldType::Text, 30, 0 },
                  { QStringLiteral("N"), FieldType::Numeric, 8, 2 } },
                {} };
    const char16_t *names[] = { u"Émile",   u"emile",   u"Emilia", u"Adams",   u"ANDERSON",
                                u"Ärger",   u"Arger",   u"Zoë",    u"zoe",     u"Straße",
                                u"Strasse", u"STRAUSS", u"o'Neil", u"O'NEIL",  u"Øster",
                                u"Oster",   u"çelik",   u"Celik",  u"smith 2", u"Smith 10",
                                u"",        u"ñandú" };
    int n = 0;
    for (const char16_t *name : names) {
        ++n;
        t.rows << QVariantList{ QStringLiteral("PLE%1").arg(n, 7, 10, QLatin1Char('0')),
                                QString::fromUtf16(name), n * 1.5 };
    }
    t.rows << QVariantList{ QStringLiteral("PLE9999999"), QVariant(), QVariant() };
    return t;
}

class DialectTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        if (!PgServer::instance().unavailable().isEmpty()) {
            if (qEnvironmentVariable("CI") == QLatin1String("true"))
                FAIL() << PgServer::instance().unavailable().toStdString();
            GTEST_SKIP() << PgServer::instance().unavailable().toStdString();
        }
        for (const char *name : { "SQLite", "PostgreSQL" }) {
            std::shared_ptr<BackEnd> backEnd = backEndNamed(QString::fromLatin1(name));
            ASSERT_TRUE(backEnd);
            auto &dir = m_dirs.emplace_back(std::make_unique<QTemporaryDir>());
            ASSERT_TRUE(backEnd->createTables(dir->path(), { namesTable() }).isOk());
            Result<std::unique_ptr<Database>> db = backEnd->open(dir->path());
            ASSERT_TRUE(db.isOk()) << db.status().toString().toStdString();
            m_dbs.push_back(std::move(db).value());
        }
    }

    // The IDs a statement gives on one database, or its error code's name.
    static QStringList ids(Database &db, const QString &sql)
    {
        Result<std::unique_ptr<RecordSource>> rs = db.OpenRecordset(sql);
        if (!rs.isOk())
            return { codeName(rs.status().code()) + QStringLiteral(": ") + rs.status().message() };
        return idsToEnd(*rs.value());
    }

    std::vector<std::unique_ptr<QTemporaryDir>> m_dirs;
    std::vector<std::unique_ptr<Database>> m_dbs; // SQLite, PostgreSQL
};

TEST_F(DialectTest, OrderAndMatchesOfAccentedAndMixedCaseNamesEqualSqlites)
{
    const QString statements[] = {
        QStringLiteral("SELECT * from P ORDER BY P.NAME, P.ID"),
        QStringLiteral("SELECT * from P ORDER BY NAME DESC, ID"),
        QStringLiteral("SELECT * from P WHERE NAME = 'EMILE' ORDER BY ID"),
        QStringLiteral("SELECT * from P WHERE NAME > 'emile' ORDER BY ID"),
        QStringLiteral("SELECT * from P WHERE NAME IN ('zoe', 'ARGER') ORDER BY ID"),
        QStringLiteral("SELECT * from P WHERE NAME BETWEEN 'a' AND 'CZ' ORDER BY ID"),
        QStringLiteral("SELECT * from P WHERE UCase([P.NAME]) LIKE 'STRA*' ORDER BY ID"),
        QStringLiteral("SELECT * from P WHERE NAME LIKE '*ss*' ORDER BY ID"),
        QStringLiteral("SELECT * from P WHERE NAME LIKE 'smith #*' ORDER BY ID"),
        QStringLiteral("SELECT * from P WHERE NAME LIKE '[!a-m]*' ORDER BY ID"),
        QStringLiteral("SELECT * from P WHERE NAME LIKE '?ster' ORDER BY ID"),
        QStringLiteral("SELECT * from P WHERE NAME Not Like 'o*' ORDER BY ID"),
        QStringLiteral("SELECT * from P WHERE InStr(Ucase$(IIF(IsNull(NAME), ' ', NAME)), 'ER')>0 "
                       "ORDER BY ID"),
        QStringLiteral("SELECT * from P WHERE InStr(3, NAME, 'e') = 4 ORDER BY ID"),
        QStringLiteral("SELECT * from P WHERE Left([NAME],3) = 'STR' ORDER BY ID"),
        QStringLiteral("SELECT * from P WHERE NAME & 'x' = 'zoex' Or IsNull(NAME) ORDER BY ID"),
        QStringLiteral("SELECT * from P WHERE N * 2 >= 30 And Not (N > 30) ORDER BY ID"),
        QStringLiteral("SELECT * from P WHERE IIF(N > 10, 'big', 'small') = 'BIG' ORDER BY ID"),
        QStringLiteral("SELECT * from P WHERE Mid(NAME, 2, 2) = 'MI' Or Right(NAME, 2) = 'SE' "
                       "ORDER BY ID"),
        QStringLiteral("SELECT * from P WHERE Len(Trim(NAME)) = 0 ORDER BY ID"),
        QStringLiteral("SELECT * from P WHERE ID = ") + strToASC(QStringLiteral("PLE0000013")),
    };
    for (const QString &sql : statements) {
        SCOPED_TRACE(sql.toStdString());
        const QStringList onSqlite = ids(*m_dbs[0], sql);
        EXPECT_FALSE(onSqlite.isEmpty());
        EXPECT_EQ(ids(*m_dbs[1], sql), onSqlite);
    }
}

// A mix Jet converts at run time in a way the translation cannot reproduce exactly is
// refused with the piece and its position; names and functions that do not exist are the
// same errors as on every engine.
TEST_F(DialectTest, WhatHasNoExactTranslationIsRefusedByName)
{
    Database &pg = *m_dbs[1];
    const std::pair<QString, QString> refused[] = {
        { QStringLiteral("SELECT * from P WHERE NAME & N = 'x'"),
          QStringLiteral("Not supported: & with a number, date or truth value at position 30 has "
                         "no exact PostgreSQL translation") },
        { QStringLiteral("SELECT * from P WHERE Format(N, '0.0') = '1.5'"),
          QStringLiteral("Not supported: the function FORMAT at position 23 has no exact "
                         "PostgreSQL translation") },
        { QStringLiteral("SELECT * from P WHERE NAME Like ID & '*'"),
          QStringLiteral("Not supported: a Like pattern that varies by record at position 36 has "
                         "no exact PostgreSQL translation") },
        { QStringLiteral("SELECT * from P WHERE NAME = 3"),
          QStringLiteral("Type mismatch: data type mismatch in the comparison at position 28") },
        { QStringLiteral("SELECT * from P WHERE Frob(NAME) = 1"),
          QStringLiteral("Unknown function: undefined function 'Frob' at position 23") },
        { QStringLiteral("SELECT * from P WHERE NAMEX = 1"),
          QStringLiteral("Unknown field: unknown field 'NAMEX' at position 23") },
    };
    for (const auto &[sql, error] : refused)
        EXPECT_EQ(ids(pg, sql), QStringList{ error }) << sql.toStdString();
}

// The navigator's ID criterion reaches the server as a plain comparison with the ID under
// the column's own collation, so an index on the ID serves it (what keeps FindFirst by ID
// fast on a large table).
TEST_F(DialectTest, AnIdCriterionInCharacterCodesRunsOnTheIdIndex)
{
    const QString database = postgresDatabaseFor(m_dirs[1]->path());
    const PgServer &server = PgServer::instance();
    Result<std::shared_ptr<postgres::Connection>> conn =
        postgres::Connection::open(server.conninfo(database), false);
    ASSERT_TRUE(conn.isOk());
    const postgres::Connection *c = conn.value().get();
    Result<jet::SelectStatement> stmt = jet::parseSelect(QStringLiteral("SELECT * from P"));
    ASSERT_TRUE(stmt.isOk());
    Result<postgres::PgSelect> select = postgres::translateSelect(
        stmt.value(), [c](const QString &name) { return c->lookupTable(name); });
    ASSERT_TRUE(select.isOk());
    Result<QString> criterion = postgres::translateCriterion(
        QStringLiteral("P.ID = ") + strToASC(QStringLiteral("PLE0000013")), select.value());
    ASSERT_TRUE(criterion.isOk()) << criterion.status().toString().toStdString();
    EXPECT_EQ(criterion.value(),
              QStringLiteral("((\"P\".\"ID\") COLLATE plx.nocase = ('PLE0000013'))"));

    server.psql(database, QStringLiteral("CREATE INDEX p_id ON \"P\" (\"ID\")"));
    const QString plan =
        server.psql(database,
                    QStringLiteral("SET enable_seqscan = off; EXPLAIN SELECT plx_key %1 WHERE %2")
                        .arg(select->fromClause, criterion.value()));
    EXPECT_TRUE(plan.contains(QLatin1String("Index Cond"))) << plan.toStdString();
}

} // namespace
} // namespace plx::testing
