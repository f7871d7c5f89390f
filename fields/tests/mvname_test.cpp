// fields/tests/mvname_test.cpp: the text stack: rows grow and shrink with their layout,
// accessors keep their bounds rules, the edit life cycle goes to every row in row order,
// and a table file opened by row 0 binds every row.
#include "fields/mvname.h"
#include "tests/support/rowfixtures.h"
#include "mervane/twips.h"

#include <QApplication>
#include <QLineEdit>
#include <QScrollArea>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>

using namespace plx;
using namespace plx::rowtest;

namespace {

class NameStackTest : public TableFixture<>
{
protected:
    void SetUp() override { names.setServices(env.services()); }

    // Rows 0..2 on NAME, AMOUNT, BORN of table T holding smithRecord().
    void bindThreeRows(Store store = Store::Sqlite)
    {
        makeT(store, { smithRecord() });
        names.setNUbound(2);
        const char *fields[] = { "NAME", "AMOUNT", "BORN" };
        const char *captions[] = { "Name", "Amount", "Born" };
        for (qint16 i = 0; i < 3; ++i) {
            names.setSCaption(i, QString::fromLatin1(captions[i]));
            names.setSFieldName(i, QString::fromLatin1(fields[i]));
        }
        names.setRecordSet(rs);
    }

    mvName names;
};

} // namespace

TEST_F(NameStackTest, RowsStackDownwardAndTheControlFitsTheLastRow)
{
    names.setIVspacing(120);
    names.setIHeight(0, 400);
    names.textRow(0)->setTwipsGeometry(300, 100, 3000);
    names.setNUbound(2);
    ASSERT_EQ(names.nUbound(), 2);
    for (qint16 i = 1; i <= 2; ++i) {
        mvText *r = names.textRow(i);
        EXPECT_EQ(r->leftTwips(), 300) << "left edge copied from the row above";
        EXPECT_EQ(r->topTwips(), names.textRow(i - 1)->topTwips() + names.iHeight(i - 1) + 120);
        EXPECT_FALSE(names.bAllowNull(i));
        EXPECT_EQ(names.sValue(i), QString());
        EXPECT_TRUE(r->isVisibleTo(&names));
    }
    const mvText *last = names.textRow(2);
    EXPECT_EQ(names.height(), twipsToPixelsY(&names, last->topTwips() + last->iHeight() + 120));

    // The same upper bound again still fits the height to the last row.
    names.resize(names.width(), 5);
    names.setNUbound(2);
    EXPECT_EQ(names.height(), twipsToPixelsY(&names, last->topTwips() + last->iHeight() + 120));
    EXPECT_EQ(names.findChildren<mvText *>().size(), 3);

    // Rows span the width less their left edge and the 60-twip right margin.
    names.show();
    names.resize(twipsToPixelsX(&names, 7200), names.height());
    EXPECT_EQ(names.textRow(1)->widthTwips(), pixelsToTwipsX(&names, names.width()) - 300 - 60);

    names.setNUbound(0);
    EXPECT_EQ(names.nUbound(), 0);
    EXPECT_EQ(names.findChildren<mvText *>().size(), 1);
    EXPECT_GE(env.pump.count(), 3) << "every change of nUbound yields once";
}

TEST_F(NameStackTest, AccessorsKeepTheirBoundsRules)
{
    names.setNUbound(1);
    names.setSCaption(2, QStringLiteral("nowhere"));
    names.setSCaption(-1, QStringLiteral("nowhere"));
    EXPECT_EQ(names.sCaption(2), QString());
    EXPECT_EQ(names.DescWidth(5), 0);
    EXPECT_FALSE(names.BackRed(-3));
    names.setSValue(1, QStringLiteral("  abc  "));
    EXPECT_EQ(names.sValue(1), QStringLiteral("abc"));
    EXPECT_EQ(names.textRow(1)->Value(), QStringLiteral("  abc  ")) << "stored unchanged";
    names.setSValue(1, QVariant());
    EXPECT_EQ(names.textRow(1)->Value(), QString());
    EXPECT_THROW((void)names.sValue(2), std::out_of_range) << "sValue get has no bounds check";
    names.setSValue(0, QStringLiteral("x"));
    EXPECT_EQ(names.Clear(0), QVariant());
    EXPECT_EQ(names.sValue(0), QString());
    (void)names.Clear(7); // ignored

    mvName fresh;
    EXPECT_EQ(fresh.DBFType(), 1);
    fresh.setDBFType(0);
    EXPECT_EQ(fresh.DBFType(), 1);
    EXPECT_EQ(fresh.Filter(), QString());
}

TEST_F(NameStackTest, SettingsReachOnlyTheRowsThatExistAtTheTime)
{
    names.setNUbound(1);
    names.setLocked(true);
    names.setLAltGrayColor(1);
    names.setDescWidthAll(2000);
    names.setNUbound(3);
    EXPECT_TRUE(names.textRow(1)->Locked());
    EXPECT_FALSE(names.textRow(2)->Locked());
    EXPECT_EQ(names.textRow(1)->lAltGrayColor(), 1);
    EXPECT_EQ(names.textRow(3)->lAltGrayColor(), 0);
    EXPECT_EQ(names.DescWidth(1), 2000);
    EXPECT_NE(names.DescWidth(2), 2000);
    EXPECT_TRUE(names.Locked()) << "row 0's flag";
    EXPECT_EQ(names.DescWidthAll(), 2000);
}

TEST_F(NameStackTest, TwoFailingRowsGiveTwoLinesInRowOrder)
{
    bindThreeRows();
    names.UpdateDBF();
    QVariant vReturn = QStringLiteral("stale");
    EXPECT_TRUE(names.bEdit(true, vReturn));
    EXPECT_EQ(vReturn.toString(), QString());

    names.setSValue(2, QStringLiteral("31/31/2000"));
    names.setSValue(0, QString(25, QLatin1Char('x')));
    names.setSValue(1, QStringLiteral("ten"));
    EXPECT_FALSE(names.bEdit(true, vReturn));
    EXPECT_EQ(vReturn.toString(),
              QStringLiteral("Name is longer than 20 characters\r\n"
                             "Amount is not a number\r\n"
                             "Born is not a date (mm/dd/yyyy)"));
    EXPECT_FALSE(names.bEdit(true)) << "vReturn is optional";

    // A host that knows the stack only by name reads the same text through the reference.
    const QString direct = vReturn.toString();
    QVariant byName;
    bool accepted = true;
    ASSERT_TRUE(QMetaObject::invokeMethod(&names, "bEdit", Q_RETURN_ARG(bool, accepted),
                                          Q_ARG(bool, true), Q_ARG(QVariant &, byName)));
    EXPECT_FALSE(accepted);
    EXPECT_EQ(byName.toString(), direct);
}

// A host's rule (set as a callable, or answered through ValidateRow) refuses like the
// field itself: one "caption reason" line per refusing row, in row order; a row the field
// already refuses is not put to the host's rule, and a locked row is put to neither.
TEST_F(NameStackTest, HostRulesRefuseLineByLineBesideTheFieldsOwnChecks)
{
    bindThreeRows();
    names.UpdateDBF();
    names.setRule(0, [](const QString &text) {
        return text.trimmed().isEmpty() ? QStringLiteral("is required") : QString();
    });
    QList<qint16> asked;
    QObject::connect(&names, &mvName::ValidateRow,
                     [&](qint16 index, const QString &value, QString &reason) {
                         asked << index;
                         if (index == 2 && value.right(4) < QStringLiteral("2000"))
                             reason = QStringLiteral("must be 2000 or later");
                     });
    names.setSValue(0, QStringLiteral("  "));
    env.prompter.expectMsgBox(QStringLiteral("Invalid Entry"), QStringLiteral("Name is required"),
                              MsgStyle::Exclamation, MsgAnswer::OK);
    env.prompter.expectMsgBox(QStringLiteral("Invalid Entry"),
                              QStringLiteral("Born must be 2000 or later"), MsgStyle::Exclamation,
                              MsgAnswer::OK);
    QVariant vReturn;
    EXPECT_FALSE(names.bEdit(false, vReturn));
    EXPECT_EQ(vReturn.toString(), QStringLiteral("Name is required\r\nBorn must be 2000 or later"));
    EXPECT_EQ(asked, (QList<qint16>{ 1, 2 })) << "row 0's callable refused before the signal";
    EXPECT_EQ(names.sRefusal(2), QStringLiteral("must be 2000 or later"));

    names.setSValue(1, QStringLiteral("ten"));
    EXPECT_FALSE(names.bEdit(true, vReturn));
    EXPECT_EQ(vReturn.toString(),
              QStringLiteral("Name is required\r\nAmount is not a number\r\n"
                             "Born must be 2000 or later"));

    names.setLocked(true);
    names.setSValue(1, QStringLiteral("10.5"));
    EXPECT_TRUE(names.bEdit(true, vReturn)) << "a locked row's text is the record's own";
}

TEST_F(NameStackTest, AFailingRowDoesNotStopTheOthers)
{
    bindThreeRows();
    names.setSFieldName(1, QStringLiteral("NO_SUCH_FIELD"));
    names.setSValue(1, QStringLiteral("left over"));
    names.UpdateDBF();
    EXPECT_EQ(names.sValue(0), QStringLiteral("SMITH"));
    EXPECT_EQ(names.sValue(1), QString());
    EXPECT_EQ(names.sValue(2), QStringLiteral("01/02/1990"));

    // Saving: row 1 cannot write (it is bound to nothing), row 2 still saves.
    ASSERT_TRUE(rs->Edit().isOk());
    names.setSValue(1, QStringLiteral("x"));
    names.setSValue(2, QStringLiteral("12/24/2001"));
    names.EditUpdate();
    env.prompter.expectMsgBox(QStringLiteral("Value Not Saved"),
                              QStringLiteral("Amount is not bound to a field of the record\r\n\r\n"
                                             "The field keeps its former value."),
                              MsgStyle::Exclamation, MsgAnswer::OK);
    EXPECT_EQ(names.SaveDBF(), QString());
    EXPECT_EQ(names.Save(), QString());
    EXPECT_EQ(names.sValue(1), QString()) << "the refused text is not left showing";
    ASSERT_TRUE(rs->Update().isOk()); // the rows fill the buffer, the edit's owner writes it
    EXPECT_EQ(stored(0, "BORN").toDate(), QDate(2001, 12, 24));
}

TEST_F(NameStackTest, TheNavigatorsCycleThroughTheSharedInterface)
{
    bindThreeRows(Store::FoxPro1252);
    BoundControl *control = &names;
    names.setObjectName(QStringLiteral("mvNameClient"));
    EXPECT_EQ(control->Name(), QStringLiteral("mvNameClient"));
    EXPECT_EQ(control->RecordSet(), rs);
    control->setLocked(true);
    control->UpdateDBF();
    ASSERT_TRUE(rs->Edit().isOk());
    EXPECT_TRUE(control->bEdit(false));
    control->setLocked(false);
    names.setSValue(0, QStringLiteral("JONES"));
    names.setSValue(1, QStringLiteral("99.5"));
    control->EditUpdate();
    EXPECT_EQ(control->Save(), QString());
    // The navigator's stamp, in the same write as the rows' values.
    ASSERT_TRUE(rs->setValue(QStringLiteral("FLAGT"), QStringLiteral("X")).isOk());
    ASSERT_TRUE(rs->Update().isOk());
    EXPECT_EQ(stored(0, "NAME").toString().trimmed(), QStringLiteral("JONES"));
    EXPECT_DOUBLE_EQ(stored(0, "AMOUNT").toDouble(), 99.5);

    // Cancel restores what was shown before editing began.
    control->UpdateDBF();
    names.Edit();
    names.setSValue(0, QStringLiteral("BROWN"));
    control->CancelEdit();
    EXPECT_EQ(names.sValue(0), QStringLiteral("JONES"));
}

TEST_F(NameStackTest, TableFileBindsEveryRowToRowZerosSource)
{
    names.setNUbound(2);
    makeT(Store::FoxPro850,
          { { QStringLiteral("Zoë"), QVariant(), 1.0, QDate(2020, 5, 6), true, QStringLiteral("T"),
              1, 3 } });
    rs.reset();
    db.reset();
    names.setSFieldName(0, QStringLiteral("NAME"));
    names.setSFieldName(1, QStringLiteral("QTY"));
    names.setSFieldName(2, QStringLiteral("BORN"));
    names.setSDBFPathFileName(tableFile(dir.path()));
    EXPECT_EQ(names.sDBFPathFileName(), tableFile(dir.path()));
    ASSERT_TRUE(names.RecordSet());
    for (qint16 i = 0; i <= 2; ++i) {
        mvDataBinding *b = names.textRow(i)->DataBinding();
        EXPECT_EQ(b->RecordSet(), names.RecordSet()) << "row " << i << " shares row 0's source";
        EXPECT_EQ(b->DBFFileName(), QStringLiteral("T.DBF"));
        EXPECT_EQ(b->DBFTableName(), QStringLiteral("T"));
        EXPECT_EQ(b->DBFType(), 1);
        EXPECT_EQ(b->CodePage(), 850);
    }
    names.UpdateDBF();
    EXPECT_EQ(names.sValue(0), QStringLiteral("Zoë"));
    EXPECT_EQ(names.sValue(1), QStringLiteral("3"));

    names.DisconnectDBF();
    EXPECT_FALSE(names.textRow(0)->hasDataBinding());
    EXPECT_FALSE(names.textRow(2)->hasDataBinding());
}

TEST_F(NameStackTest, DoubleClickTabAndFocusWorkRowByRow)
{
    names.setNUbound(2);
    QSignalSpy spy(&names, &mvName::DblClick);
    QTest::mouseDClick(names.textRow(2)->findChild<QLineEdit *>(), Qt::LeftButton);
    ASSERT_EQ(spy.count(), 1);
    EXPECT_EQ(spy.at(0).at(0).value<qint16>(), 2);

    names.show();
    QApplication::setActiveWindow(&names);
    names.textRow(0)->setFocus();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&names));
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    EXPECT_EQ(QApplication::focusWidget(), names.textRow(1)->findChild<QLineEdit *>());
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    EXPECT_EQ(QApplication::focusWidget(), names.textRow(2)->findChild<QLineEdit *>());
}

TEST(NameStackScroll, TheFocusedRowIsScrolledIntoView)
{
    QScrollArea area;
    auto *names = new mvName;
    names->setNUbound(29);
    names->resize(300, names->height());
    area.setWidget(names);
    area.resize(320, 120);
    area.show();
    QApplication::setActiveWindow(&area);
    ASSERT_TRUE(QTest::qWaitForWindowActive(&area));
    names->textRow(25)->setFocus();
    QApplication::processEvents();
    EXPECT_GT(area.verticalScrollBar()->value(), 0);
    const QRect shown(QPoint(0, area.verticalScrollBar()->value()), area.viewport()->size());
    EXPECT_TRUE(shown.contains(names->textRow(25)->geometry())) << "row 25 is on screen";
}
