// mervane/tests/mvcheck_test.cpp: the check-box row: the stored form follows the field's
// type and what the field already holds; Null stays Null unless the box is clicked.
#include "mervane/mvcheck.h"
#include "mervane/tests/rowfixtures.h"

#include <QCheckBox>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

using namespace plx;
using namespace plx::rowtest;

namespace {

// Clicks the box on its indicator (a click beside a short caption misses the button).
void click(QCheckBox *box)
{
    QTest::mouseClick(box, Qt::LeftButton, {}, QPoint(6, box->height() / 2));
}

class CheckRowTest : public ::testing::Test
{
protected:
    // Record 0: ACTIVE true, FLAGT "Y", FLAGN 1. Record 1: all Null/blank.
    void SetUp() override
    {
        db = makeTable(
            Store::Sqlite, dir.path(),
            { { QStringLiteral("A"), QVariant(), 1.0, QVariant(), true, QStringLiteral("Y"), 1, 1 },
              { QStringLiteral("B"), QVariant(), QVariant(), QVariant(), QVariant(), QVariant(),
                QVariant(), QVariant() } });
        ASSERT_TRUE(db);
        rs = openT(*db);
        ASSERT_TRUE(rs);
    }

    std::unique_ptr<mvCheck> row(const char *field)
    {
        auto r = std::make_unique<mvCheck>();
        r->DataBinding()->setRecordSet(rs);
        r->DataBinding()->setSFieldName(QString::fromLatin1(field));
        EXPECT_TRUE(r->UpdateDBF().isOk());
        return r;
    }

    // Clicks the box, writes it and returns what the buffer holds for the field.
    QVariant clickAndWrite(mvCheck &r, const char *field)
    {
        click(r.findChild<QCheckBox *>(QStringLiteral("chkValue")));
        EXPECT_TRUE(rs->Edit().isOk());
        r.EditUpdate();
        QVariant v = rs->value(QString::fromLatin1(field)).value();
        EXPECT_TRUE(rs->CancelUpdate().isOk());
        return v;
    }

    QTemporaryDir dir;
    std::unique_ptr<Database> db;
    std::shared_ptr<RecordSource> rs;
};

} // namespace

TEST_F(CheckRowTest, StoredFormFollowsTheFieldAndWhatItHolds)
{
    auto logical = row("ACTIVE");
    EXPECT_EQ(logical->Value(), QStringLiteral("True"));
    EXPECT_EQ(clickAndWrite(*logical, "ACTIVE"), QVariant(false));

    // The numeric field holds 1 for true, so 1/0 it stays (not -1).
    auto numeric = row("FLAGN");
    EXPECT_EQ(numeric->Value(), QStringLiteral("1"));
    EXPECT_EQ(clickAndWrite(*numeric, "FLAGN").toInt(), 0);
    click(numeric->findChild<QCheckBox *>(QStringLiteral("chkValue")));
    EXPECT_EQ(numeric->Value(), QStringLiteral("1"));

    auto text = row("FLAGT");
    EXPECT_EQ(text->Value(), QStringLiteral("Y"));
    EXPECT_EQ(clickAndWrite(*text, "FLAGT").toString(), QStringLiteral("N"));
}

TEST_F(CheckRowTest, EmptyFieldsTakeTheDefaultFormsAndNullStaysNullUntilClicked)
{
    ASSERT_TRUE(rs->MoveNext().isOk());
    auto numeric = row("FLAGN");
    auto text = row("FLAGT");
    auto logical = row("ACTIVE");
    EXPECT_EQ(numeric->Value(), QString());
    EXPECT_FALSE(numeric->Checked());

    ASSERT_TRUE(rs->Edit().isOk());
    logical->EditUpdate(); // untouched
    EXPECT_FALSE(rs->value(QStringLiteral("ACTIVE")).value().isValid()) << "Null stays Null";
    ASSERT_TRUE(rs->CancelUpdate().isOk());

    EXPECT_EQ(clickAndWrite(*numeric, "FLAGN").toInt(), -1);
    EXPECT_EQ(clickAndWrite(*text, "FLAGT").toString(), QStringLiteral("T"));
}

TEST_F(CheckRowTest, LockedBoxKeepsItsStateBoldCaptionFollowsIt)
{
    auto r = row("ACTIVE");
    auto *box = r->findChild<QCheckBox *>(QStringLiteral("chkValue"));
    r->setBBoldOnChk(true);
    EXPECT_TRUE(box->font().bold());
    r->setLocked(true);
    click(box);
    QTest::keyClick(box, Qt::Key_Space);
    EXPECT_TRUE(r->Checked()) << "a locked box does not change";
    r->setLocked(false);
    click(box);
    EXPECT_FALSE(r->Checked());
    EXPECT_FALSE(box->font().bold());

    r->setValue(QStringLiteral("Yes"));
    EXPECT_TRUE(r->Checked());
    EXPECT_EQ(r->Value(), QStringLiteral("True"));
    r->Clear();
    EXPECT_EQ(r->Value(), QString());
    EXPECT_FALSE(r->Checked());
}
