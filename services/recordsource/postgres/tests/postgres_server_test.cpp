// services/recordsource/postgres/tests/postgres_server_test.cpp: what only a server gets
// wrong: two users on one record, no transaction left open while a user edits, and a
// server restart in the middle of a session.
#include "services/recordsource/postgres/tests/pgserver.h"
#include "services/recordsource/tests/contractfixture.h"
#include "services/recordsource/tests/postgresbackend.h"

namespace plx::testing {
namespace {

using Code = Status::Code;

class ServerTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        if (!PgServer::instance().unavailable().isEmpty()) {
            if (qEnvironmentVariable("CI") == QLatin1String("true"))
                FAIL() << PgServer::instance().unavailable().toStdString();
            GTEST_SKIP() << PgServer::instance().unavailable().toStdString();
        }
        m_backEnd = backEndNamed(QStringLiteral("PostgreSQL"));
        ASSERT_TRUE(m_backEnd);
        ASSERT_TRUE(m_backEnd->createTables(m_dir.path(), contractTables()).isOk());
    }

    std::unique_ptr<Database> connect() const
    {
        Result<std::unique_ptr<Database>> db = m_backEnd->open(m_dir.path());
        EXPECT_TRUE(db.isOk()) << db.status().toString().toStdString();
        return db.isOk() ? std::move(db).value() : nullptr;
    }

    static std::unique_ptr<RecordSource> openAt(Database &db, const QString &id)
    {
        Result<std::unique_ptr<RecordSource>> rs = db.OpenRecordset(QStringLiteral("T"));
        EXPECT_TRUE(rs.isOk());
        if (!rs.isOk())
            return nullptr;
        EXPECT_TRUE(rs.value()->FindFirst(QStringLiteral("ID = '%1'").arg(id)).isOk());
        EXPECT_FALSE(rs.value()->NoMatch());
        return std::move(rs).value();
    }

    QString psql(const QString &sql) const
    {
        return PgServer::instance().psql(postgresDatabaseFor(m_dir.path()), sql);
    }

    QTemporaryDir m_dir;
    std::shared_ptr<BackEnd> m_backEnd;
};

TEST_F(ServerTest, TwoUsersContendForOneRecordWithoutATransactionLeftOpen)
{
    auto first = connect();
    auto second = connect();
    ASSERT_TRUE(first && second);
    auto mine = openAt(*first, QStringLiteral("PLE0000002"));
    auto theirs = openAt(*second, QStringLiteral("PLE0000002"));
    auto sameConnection = openAt(*first, QStringLiteral("PLE0000002"));
    ASSERT_TRUE(mine && theirs && sameConnection);

    ASSERT_TRUE(mine->Edit().isOk());
    // Editing holds no transaction open on the server.
    EXPECT_EQ(psql(QStringLiteral("SELECT count(*) FROM pg_stat_activity WHERE state LIKE "
                                  "'idle in transaction%'")),
              QStringLiteral("0"));
    const Status refused = theirs->Edit();
    EXPECT_EQ(refused.code(), Code::Locked);
    EXPECT_TRUE(refused.message().endsWith(QLatin1String("is locked by another user")))
        << refused.message().toStdString();
    EXPECT_TRUE(refused.engineMessage().startsWith(QLatin1String("held by postgres (plx-test)")))
        << refused.engineMessage().toStdString();
    EXPECT_EQ(sameConnection->Edit().code(), Code::Locked);
    EXPECT_EQ(theirs->Delete().code(), Code::Locked);

    ASSERT_TRUE(mine->setValue(QStringLiteral("CITY"), QStringLiteral("Troy")).isOk());
    ASSERT_TRUE(mine->Update().isOk());
    ASSERT_TRUE(theirs->Edit().isOk());
    EXPECT_EQ(textOf(*theirs, QStringLiteral("CITY")), QStringLiteral("Troy"));
    EXPECT_EQ(mine->Edit().code(), Code::Locked);
    // A holder whose connection ends releases the lock.
    theirs.reset();
    second.reset();
    EXPECT_TRUE(mine->Edit().isOk());
}

TEST_F(ServerTest, ARestartMidSessionIsAClearErrorAndKeepsEveryAcknowledgedWrite)
{
    auto db = connect();
    ASSERT_TRUE(db);
    auto rs = openAt(*db, QStringLiteral("PLE0000003"));
    ASSERT_TRUE(rs);
    ASSERT_TRUE(rs->Edit().isOk());
    ASSERT_TRUE(rs->setValue(QStringLiteral("CITY"), QStringLiteral("Utica")).isOk());
    ASSERT_TRUE(rs->Update().isOk());

    ASSERT_TRUE(PgServer::instance().restart());
    const Status lost = rs->Edit();
    EXPECT_EQ(lost.code(), Code::IoError);
    EXPECT_TRUE(
        lost.message().endsWith(QLatin1String("the connection to the PostgreSQL server was lost")))
        << lost.message().toStdString();
    EXPECT_EQ(rs->editMode(), EditMode::None);

    // The connection is made again for the next call, and the saved value is there.
    ASSERT_TRUE(rs->Edit().isOk());
    EXPECT_EQ(textOf(*rs, QStringLiteral("CITY")), QStringLiteral("Utica"));
    ASSERT_TRUE(rs->CancelUpdate().isOk());
}

} // namespace
} // namespace plx::testing
