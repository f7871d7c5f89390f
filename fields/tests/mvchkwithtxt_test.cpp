// fields/tests/mvchkwithtxt_test.cpp: one check box over a text stack, as one unit.
#include "fields/mvchkwithtxt.h"
#include "tests/support/rowfixtures.h"

#include <QLineEdit>
#include <QSignalSpy>
#include <QTest>

using namespace plx;
using namespace plx::rowtest;

namespace {

class ChkWithTxtTest : public TableFixture<>
{
protected:
    void SetUp() override
    {
        unit.setServices(env.services());
        unit.setSCaptionChk(QStringLiteral("Active"));
        unit.setNUbound(1);
        unit.setSCaptionTxt(0, QStringLiteral("Name"));
        unit.setSCaptionTxt(1, QStringLiteral("Amount"));
    }

    // Table T holding smithRecord(); the check box on ACTIVE, the text rows on NAME, AMOUNT.
    void bind(Store store)
    {
        makeT(store, { smithRecord() });
        unit.setSFieldNameChk(QStringLiteral("ACTIVE"));
        unit.setSFieldNameTxt(0, QStringLiteral("NAME"));
        unit.setSFieldNameTxt(1, QStringLiteral("AMOUNT"));
    }

    mvChkWithTxt unit;
};

} // namespace

TEST_F(ChkWithTxtTest, EitherPartRefusingRefusesTheUnit)
{
    bind(Store::Sqlite);
    unit.setRecordSet(rs);
    unit.Update();
    EXPECT_EQ(unit.sValueChk(), QStringLiteral("True"));
    EXPECT_EQ(unit.sValueTxt(0), QStringLiteral("SMITH"));
    QVariant vReturn;
    EXPECT_TRUE(unit.bEdit(true, vReturn));

    unit.setSValueTxt(1, QStringLiteral("many"));
    EXPECT_FALSE(unit.bEdit(true, vReturn));
    EXPECT_EQ(vReturn.toString(), QStringLiteral("Amount is not a number"));

    unit.setSValueTxt(1, QStringLiteral("10.50"));
    unit.setSValueChk(QStringLiteral("perhaps"));
    EXPECT_FALSE(unit.bEdit(true, vReturn));
    EXPECT_EQ(vReturn.toString(), QStringLiteral("Active is not Yes or No"));

    unit.setSValueTxt(0, QString(21, QLatin1Char('x')));
    EXPECT_FALSE(unit.bEdit(true, vReturn));
    EXPECT_EQ(vReturn.toString(),
              QStringLiteral("Name is longer than 20 characters\r\nActive is not Yes or No"));
}

TEST_F(ChkWithTxtTest, ClearsKeepToTheirPartAndBoundsAreChecked)
{
    unit.setSValueChk(QStringLiteral("True"));
    unit.setSValueTxt(0, QStringLiteral("kept"));
    unit.ClearTxt(0);
    EXPECT_EQ(unit.sValueChk(), QStringLiteral("True"));
    unit.setSValueTxt(0, QStringLiteral("kept"));
    unit.ClearChk();
    EXPECT_EQ(unit.sValueTxt(0), QStringLiteral("kept"));
    EXPECT_EQ(unit.sValueChk(), QString());
    EXPECT_EQ(unit.sValueTxt(5), QString());
    EXPECT_EQ(unit.sCaptionTxt(-1), QString());
    unit.setSValueChk(QVariant());
    EXPECT_EQ(unit.sValueChk(), QString());

    // Layout: the text stack right below the check box, the unit as high as both.
    EXPECT_EQ(unit.textStack()->y(), unit.checkBox()->y() + unit.checkBox()->height());
    EXPECT_EQ(unit.height(), unit.textStack()->y() + unit.textStack()->height());
    const int before = unit.height();
    unit.setNUbound(3);
    EXPECT_GT(unit.height(), before);
}

TEST_F(ChkWithTxtTest, TableFileAndTheNavigatorsCycleCoverBothParts)
{
    bind(Store::FoxPro1251);
    rs.reset();
    db.reset();
    unit.setSDBFPathFileName(tableFile(dir.path()));
    ASSERT_TRUE(unit.RecordSet());
    EXPECT_EQ(unit.RecordSet(), unit.textStack()->RecordSet());
    EXPECT_EQ(unit.sDBFPathFileName(), tableFile(dir.path()));

    BoundControl *control = &unit;
    control->UpdateDBF();
    rs = control->RecordSet();
    ASSERT_TRUE(rs->Edit().isOk());
    control->setLocked(false);
    unit.setSValueChk(QStringLiteral("False"));
    unit.setSValueTxt(0, QStringLiteral("Жук"));
    EXPECT_TRUE(control->bEdit(true));
    control->EditUpdate();
    EXPECT_EQ(control->Save(), QString());
    ASSERT_TRUE(rs->Update().isOk());
    EXPECT_EQ(stored(0, "NAME").toString().trimmed(), QStringLiteral("Жук"));
    EXPECT_EQ(stored(0, "ACTIVE").toBool(), false);

    control->setLocked(true);
    EXPECT_TRUE(unit.checkBox()->Locked());
    EXPECT_TRUE(unit.textStack()->Locked());

    QSignalSpy spy(&unit, &mvChkWithTxt::DblClick);
    QTest::mouseDClick(unit.textStack()->textRow(1)->findChild<QLineEdit *>(), Qt::LeftButton);
    ASSERT_EQ(spy.count(), 1);
    EXPECT_EQ(spy.at(0).at(0).value<qint16>(), 1);

    unit.Disconnect();
    EXPECT_FALSE(unit.checkBox()->hasDataBinding());
    EXPECT_FALSE(unit.textStack()->textRow(0)->hasDataBinding());
}
