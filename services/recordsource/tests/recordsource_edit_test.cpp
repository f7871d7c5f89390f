// services/recordsource/tests/recordsource_edit_test.cpp: the edit cycle of the contract
// suite. Every write is checked through a second, independent connection to the same
// files, because a back end that only changed its own cache would pass a one-connection
// test.
#include "services/texthelpers.h"
#include "services/recordsource/keptorder.h"
#include "services/recordsource/tablechanges.h"
#include "services/recordsource/tests/contractfixture.h"

#include <QDate>
#include <QThread>

namespace plx::testing {
namespace {

using Code = Status::Code;

const QString SortSql = QStringLiteral("SELECT * from T ORDER BY T.NAME, T.CITY");

TEST_P(RecordSourceContractTest, AddNewUpdateAppendsARecordSeenByAnotherConnection)
{
    auto rs = open(SortSql);
    ASSERT_TRUE(rs);
    ASSERT_TRUE(rs->setAbsolutePosition(2).isOk());
    const QString current = textOf(*rs, QStringLiteral("ID"));

    ASSERT_TRUE(rs->AddNew().isOk());
    EXPECT_EQ(rs->editMode(), EditMode::AddNew);
    ASSERT_TRUE(rs->setValue(QStringLiteral("ID"), QStringLiteral("PLE0000042")).isOk());
    ASSERT_TRUE(rs->setValue(QStringLiteral("name"), QStringLiteral("AARON, NED")).isOk());
    ASSERT_TRUE(rs->setValue(QStringLiteral("AMOUNT"), 12.34).isOk());
    ASSERT_TRUE(rs->setValue(QStringLiteral("BORN"), QDate(2001, 4, 5)).isOk());
    ASSERT_TRUE(rs->setValue(QStringLiteral("ACTIVE"), true).isOk());
    ASSERT_TRUE(
        rs->setValue(QStringLiteral("NOTES"), QStringLiteral("a memo\nof two lines")).isOk());
    EXPECT_EQ(rs->value(QStringLiteral("NAME")).value().toString(), QStringLiteral("AARON, NED"));
    Status s = rs->Update();
    ASSERT_TRUE(s.isOk()) << s.toString().toStdString();

    // The record that was current stays current; the new key joins the end of the order
    // although its name sorts first.
    EXPECT_EQ(rs->editMode(), EditMode::None);
    EXPECT_EQ(textOf(*rs, QStringLiteral("ID")), current);
    ASSERT_TRUE(rs->MoveLast().isOk());
    EXPECT_EQ(textOf(*rs, QStringLiteral("ID")), QStringLiteral("PLE0000042"));
    EXPECT_EQ(rs->RecordCount(), peopleTable().rows.size() + 1);

    auto db2 = openAgain();
    ASSERT_TRUE(db2);
    auto other = open(*db2, SortSql);
    ASSERT_TRUE(other);
    EXPECT_EQ(textOf(*other, QStringLiteral("ID")), QStringLiteral("PLE0000042"));
    EXPECT_DOUBLE_EQ(other->value(QStringLiteral("AMOUNT")).value().toDouble(), 12.34);
    EXPECT_EQ(other->value(QStringLiteral("BORN")).value().toDate(), QDate(2001, 4, 5));
    EXPECT_TRUE(other->value(QStringLiteral("ACTIVE")).value().toBool());
    EXPECT_EQ(textOf(*other, QStringLiteral("NOTES")), QStringLiteral("a memo\nof two lines"));
    EXPECT_FALSE(other->value(QStringLiteral("CITY")).value().toString().trimmed().size() > 0);
}

TEST_P(RecordSourceContractTest, EditUpdateWritesAndCancelUpdateDropsTheBuffer)
{
    auto rs = open(SortSql);
    ASSERT_TRUE(rs);
    goToId(*rs, QStringLiteral("PLE0000004"));
    EXPECT_EQ(rs->setValue(QStringLiteral("CITY"), QStringLiteral("Nowhere")).code(),
              Code::InvalidArgument);
    EXPECT_EQ(rs->Update().code(), Code::InvalidArgument);
    EXPECT_EQ(rs->CancelUpdate().code(), Code::InvalidArgument);

    ASSERT_TRUE(rs->Edit().isOk());
    ASSERT_TRUE(rs->setValue(QStringLiteral("CITY"), QStringLiteral("Nowhere")).isOk());
    EXPECT_EQ(textOf(*rs, QStringLiteral("CITY")), QStringLiteral("Nowhere"));
    ASSERT_TRUE(rs->CancelUpdate().isOk());
    EXPECT_EQ(textOf(*rs, QStringLiteral("CITY")), QStringLiteral("Denver"));

    ASSERT_TRUE(rs->Edit().isOk());
    // A value the field cannot hold is refused and leaves the buffer as it was.
    EXPECT_FALSE(rs->setValue(QStringLiteral("NAME"), QString(41, QLatin1Char('X'))).isOk());
    EXPECT_EQ(rs->setValue(QStringLiteral("BORN"), QStringLiteral("not a date")).code(),
              Code::TypeMismatch);
    ASSERT_TRUE(rs->setValue(QStringLiteral("CITY"), QStringLiteral("Lincoln")).isOk());
    ASSERT_TRUE(rs->setValue(QStringLiteral("AMOUNT"), QVariant()).isOk());
    ASSERT_TRUE(rs->Update().isOk());
    EXPECT_EQ(textOf(*rs, QStringLiteral("CITY")), QStringLiteral("Lincoln"));
    EXPECT_EQ(textOf(*rs, QStringLiteral("NAME")), QStringLiteral("JONES, MARY"));

    auto db2 = openAgain();
    ASSERT_TRUE(db2);
    auto other = open(*db2, QStringLiteral("T"));
    ASSERT_TRUE(other);
    goToId(*other, QStringLiteral("PLE0000004"));
    EXPECT_EQ(textOf(*other, QStringLiteral("CITY")), QStringLiteral("Lincoln"));
    EXPECT_EQ(textOf(*other, QStringLiteral("NAME")), QStringLiteral("JONES, MARY"));
    goToId(*other, QStringLiteral("PLE0000001"));
    EXPECT_EQ(textOf(*other, QStringLiteral("CITY")), QStringLiteral("BOSTON"));
}

TEST_P(RecordSourceContractTest, DeleteLeavesNoCurrentRecordUntilTheNextMove)
{
    auto rs = open(SortSql);
    ASSERT_TRUE(rs);
    const QStringList order = expectedByNameCity([](const QVariantList &) { return true; });
    const int at = order.indexOf(QStringLiteral("PLE0000001"));
    ASSERT_GE(at, 0);
    ASSERT_LT(at, order.size() - 1);
    goToId(*rs, QStringLiteral("PLE0000001"));
    ASSERT_TRUE(rs->Delete().isOk());
    EXPECT_LT(rs->AbsolutePosition(), 0);
    EXPECT_FALSE(rs->value(QStringLiteral("ID")).isOk());
    ASSERT_TRUE(rs->MoveNext().isOk());
    EXPECT_EQ(textOf(*rs, QStringLiteral("ID")), order.at(at + 1));

    auto db2 = openAgain();
    ASSERT_TRUE(db2);
    auto other = open(*db2, SortSql);
    ASSERT_TRUE(other);
    ASSERT_TRUE(
        other->FindFirst(QStringLiteral("ID = ") + strToASC(QStringLiteral("PLE0000001"))).isOk());
    EXPECT_TRUE(other->NoMatch());
    ASSERT_TRUE(other->MoveLast().isOk());
    EXPECT_EQ(other->RecordCount(), order.size() - 1);
}

// "Access Denied": Edit must refuse a record that another connection, or another record
// source of the same connection, is editing, and allow it once that edit is saved.
TEST_P(RecordSourceContractTest, EditOfARecordEditedElsewhereIsLockedUntilUpdate)
{
    auto db2 = openAgain();
    ASSERT_TRUE(db2);
    auto holder = open(*db2, QStringLiteral("T"));
    auto mine = open(SortSql);
    auto sibling = open(QStringLiteral("T"));
    ASSERT_TRUE(holder && mine && sibling);
    goToId(*holder, OddId);
    goToId(*mine, OddId);
    goToId(*sibling, OddId);

    ASSERT_TRUE(holder->Edit().isOk());
    EXPECT_EQ(mine->Edit().code(), Code::Locked);
    EXPECT_EQ(mine->editMode(), EditMode::None);
    EXPECT_EQ(mine->Delete().code(), Code::Locked);
    goToId(*mine, QStringLiteral("PLE0000002")); // other records stay free
    ASSERT_TRUE(mine->Edit().isOk());
    ASSERT_TRUE(mine->CancelUpdate().isOk());

    ASSERT_TRUE(holder->setValue(QStringLiteral("CITY"), QStringLiteral("Ithaca")).isOk());
    ASSERT_TRUE(holder->Update().isOk());
    goToId(*mine, OddId);
    ASSERT_TRUE(mine->Edit().isOk());
    EXPECT_EQ(textOf(*mine, QStringLiteral("CITY")), QStringLiteral("Ithaca"));
    EXPECT_EQ(sibling->Edit().code(), Code::Locked);
    ASSERT_TRUE(mine->CancelUpdate().isOk());
    ASSERT_TRUE(sibling->Edit().isOk());
    // Closing a source gives its lock up.
    sibling->Close();
    ASSERT_TRUE(holder->Edit().isOk());
}

TEST_P(RecordSourceContractTest, EditOfARecordDeletedByAnotherConnectionFails)
{
    auto db2 = openAgain();
    ASSERT_TRUE(db2);
    auto mine = open(QStringLiteral("T"));
    auto other = open(*db2, QStringLiteral("T"));
    ASSERT_TRUE(mine && other);
    goToId(*mine, QStringLiteral("PLE0000009"));
    goToId(*other, QStringLiteral("PLE0000009"));
    ASSERT_TRUE(other->Delete().isOk());
    EXPECT_FALSE(mine->Edit().isOk());
    EXPECT_EQ(mine->editMode(), EditMode::None);
}

// A record written back by Update stands where a new query would put it, ties and all, so
// the navigator need not read a million records again after every SAVE.
TEST_P(RecordSourceContractTest, ASavedRecordTakesThePlaceAFreshQueryGivesIt)
{
    const QStringList sorts{ SortSql, QStringLiteral("SELECT * from T ORDER BY T.AMOUNT DESC"),
                             QStringLiteral("SELECT * from T ORDER BY T.BORN, T.NAME DESC") };
    int added = 0;
    for (const QString &sql : sorts) {
        SCOPED_TRACE(sql.toStdString());
        auto rs = open(sql);
        ASSERT_TRUE(rs);
        auto *kept = dynamic_cast<KeptOrder *>(rs.get());
        if (!kept)
            GTEST_SKIP() << "this back end reads its records again after a write";
        // A new record, appended at the end, with a name, amount and date that tie with
        // records already there.
        const QString id = QStringLiteral("PLE00000%1").arg(70 + added++);
        ASSERT_TRUE(rs->AddNew().isOk());
        ASSERT_TRUE(rs->setValue(QStringLiteral("ID"), id).isOk());
        ASSERT_TRUE(rs->setValue(QStringLiteral("NAME"), QStringLiteral("smith, john a")).isOk());
        ASSERT_TRUE(rs->setValue(QStringLiteral("AMOUNT"), 7.0).isOk());
        ASSERT_TRUE(rs->setValue(QStringLiteral("BORN"), QDate(1971, 3, 4)).isOk());
        ASSERT_TRUE(rs->Update().isOk());
        ASSERT_TRUE(rs->MoveLast().isOk());
        ASSERT_TRUE(kept->placeCurrentInOrder());
        EXPECT_EQ(textOf(*rs, QStringLiteral("ID")), id);

        // An edited record moves from the front to the back of the order.
        ASSERT_TRUE(rs->MoveFirst().isOk());
        const QString first = textOf(*rs, QStringLiteral("ID"));
        ASSERT_TRUE(rs->Edit().isOk());
        ASSERT_TRUE(rs->setValue(QStringLiteral("NAME"), QStringLiteral("ZZ TOP")).isOk());
        ASSERT_TRUE(rs->setValue(QStringLiteral("AMOUNT"), -50.0).isOk());
        ASSERT_TRUE(rs->setValue(QStringLiteral("BORN"), QDate(2030, 1, 1)).isOk());
        ASSERT_TRUE(rs->Update().isOk());
        ASSERT_TRUE(kept->placeCurrentInOrder());
        EXPECT_EQ(textOf(*rs, QStringLiteral("ID")), first);

        auto fresh = open(sql);
        ASSERT_TRUE(fresh);
        const QStringList expected = idsToEnd(*fresh);
        ASSERT_TRUE(rs->MoveFirst().isOk());
        EXPECT_EQ(idsToEnd(*rs), expected);
    }
}

TEST_P(RecordSourceContractTest, ARecordThatLeftTheFilterIsNotPlaced)
{
    auto rs = open(QStringLiteral("SELECT * from T WHERE T.CITY = 'Denver' ORDER BY T.NAME"));
    ASSERT_TRUE(rs);
    auto *kept = dynamic_cast<KeptOrder *>(rs.get());
    if (!kept)
        GTEST_SKIP() << "this back end reads its records again after a write";
    ASSERT_TRUE(rs->Edit().isOk());
    ASSERT_TRUE(rs->setValue(QStringLiteral("CITY"), QStringLiteral("Lincoln")).isOk());
    ASSERT_TRUE(rs->Update().isOk());
    EXPECT_FALSE(kept->placeCurrentInOrder());
    EXPECT_EQ(textOf(*rs, QStringLiteral("ID")), QStringLiteral("PLE0000004"));
}

// Others' writes are told once each, so that a navigator reads its records again; its own
// writes never are, or every SAVE would read a million records twice.
TEST_P(RecordSourceContractTest, WritesByAnotherConnectionAreToldOnceAndOwnWritesNever)
{
    auto rs = open(QStringLiteral("T"));
    ASSERT_TRUE(rs);
    auto *changes = dynamic_cast<TableChanges *>(rs.get());
    if (!changes)
        GTEST_SKIP() << "this back end cannot tell when others wrote";
    // A notice travels through the server: wait for it a little, never for ever.
    const auto told = [&](int tries = 100) {
        for (; tries > 0; --tries) {
            if (changes->changedElsewhere())
                return true;
            QThread::msleep(20);
        }
        return false;
    };
    EXPECT_FALSE(changes->changedElsewhere());
    goToId(*rs, QStringLiteral("PLE0000004"));
    ASSERT_TRUE(rs->Edit().isOk());
    ASSERT_TRUE(rs->setValue(QStringLiteral("CITY"), QStringLiteral("Lincoln")).isOk());
    ASSERT_TRUE(rs->Update().isOk());
    EXPECT_FALSE(told(10));

    auto db2 = openAgain();
    ASSERT_TRUE(db2);
    auto other = open(*db2, QStringLiteral("T"));
    ASSERT_TRUE(other);
    EXPECT_FALSE(changes->changedElsewhere()) << "opening and reading is no change";
    goToId(*other, QStringLiteral("PLE0000001"));
    ASSERT_TRUE(other->Edit().isOk());
    ASSERT_TRUE(other->setValue(QStringLiteral("CITY"), QStringLiteral("Omaha")).isOk());
    ASSERT_TRUE(other->Update().isOk());
    EXPECT_TRUE(told());
    EXPECT_FALSE(changes->changedElsewhere()) << "a change is told once";
    ASSERT_TRUE(other->Delete().isOk());
    EXPECT_TRUE(told());
}

} // namespace
} // namespace plx::testing
