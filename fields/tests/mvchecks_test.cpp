// fields/tests/mvchecks_test.cpp: the check-box stack on real tables.
#include "fields/mvchecks.h"
#include "tests/support/rowfixtures.h"

#include <QApplication>
#include <QCheckBox>
#include <QTest>

using namespace plx;
using namespace plx::rowtest;

namespace {

class ChecksTest : public TableFixture<::testing::TestWithParam<Store>>
{
protected:
    void SetUp() override
    {
        checks.setServices(env.services());
        makeT(GetParam(),
              { { QStringLiteral("A"), QVariant(), 1.0, QVariant(), false, QStringLiteral("Y"), 0,
                  1 } });
        checks.setNUbound(2);
        const char *fields[] = { "ACTIVE", "FLAGT", "FLAGN" };
        for (qint16 i = 0; i < 3; ++i) {
            checks.setSCaption(i, QString::fromLatin1(fields[i]).toLower());
            checks.setSFieldName(i, QString::fromLatin1(fields[i]));
        }
        checks.setRecordSet(rs);
        checks.UpdateDBF();
    }

    mvChecks checks;
};

} // namespace

TEST_P(ChecksTest, BoxesRoundTripInTheirFieldsOwnForms)
{
    EXPECT_EQ(checks.sValue(0), QStringLiteral("False"));
    EXPECT_EQ(checks.sValue(1), QStringLiteral("Y"));
    EXPECT_EQ(checks.sValue(2), QStringLiteral("0"));
    ASSERT_TRUE(rs->Edit().isOk());
    checks.Edit();
    for (qint16 i = 0; i < 3; ++i)
        checks.checkRow(i)->setValue(checks.checkRow(i)->Checked() ? QStringLiteral("No")
                                                                   : QStringLiteral("Yes"));
    EXPECT_TRUE(checks.bEdit(true));
    checks.EditUpdate();
    EXPECT_EQ(checks.Save(), QString());
    ASSERT_TRUE(rs->Update().isOk());
    EXPECT_EQ(stored(0, "ACTIVE").toBool(), true);
    EXPECT_EQ(stored(0, "FLAGT").toString(), QStringLiteral("N"));
    EXPECT_EQ(stored(0, "FLAGN").toInt(), -1);

    checks.UpdateDBF();
    checks.Edit();
    checks.ClearAll();
    checks.CancelEdit();
    EXPECT_EQ(checks.sValue(0), QStringLiteral("True")) << "cancel restores";
}

TEST_P(ChecksTest, BoundsNullsAndSettingsOfExistingRowsOnly)
{
    checks.setSValue(1, QVariant());
    EXPECT_EQ(checks.sValue(1), QString());
    checks.setSValue(0, QStringLiteral("True"));
    (void)checks.Clear(3);
    (void)checks.Clear(-1);
    EXPECT_EQ(checks.sValue(0), QStringLiteral("True"));

    checks.setBBoldOnChk(true);
    checks.setLocked(true);
    checks.setNUbound(4);
    EXPECT_TRUE(checks.bBoldOnChk());
    EXPECT_TRUE(checks.checkRow(2)->bBoldOnChk());
    EXPECT_FALSE(checks.checkRow(3)->bBoldOnChk());
    EXPECT_FALSE(checks.checkRow(4)->Locked());
    EXPECT_EQ(checks.checkRow(4)->focusPolicy() & Qt::TabFocus, Qt::TabFocus);
}

TEST_P(ChecksTest, TabMovesRowByRowAndSpaceToggles)
{
    checks.show();
    QApplication::setActiveWindow(&checks);
    checks.checkRow(0)->setFocus();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&checks));
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    QWidget *second = checks.checkRow(1)->findChild<QCheckBox *>();
    EXPECT_EQ(QApplication::focusWidget(), second);
    QTest::keyClick(second, Qt::Key_Space);
    EXPECT_EQ(checks.sValue(1), QStringLiteral("N"));
}

INSTANTIATE_TEST_SUITE_P(Stores, ChecksTest, ::testing::Values(Store::Sqlite, Store::FoxPro1252),
                         [](const auto &param) { return storeName(param.param); });
