// mervane/tests/rows_test.cpp: the text and check-box rows on a real SQLite table: what
// they show, what they refuse and why, what they write and what they restore.
#include "mervane/mvcheck.h"
#include "mervane/mvtext.h"
#include "mervane/rowpalette.h"
#include "tests/support/rowfixtures.h"

#include <QCheckBox>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QSignalSpy>
#include <QTest>

namespace plx::rowtest {

namespace {

class RowTest : public TableFixture<>
{
protected:
    // Record 0 holds a value in every field (FLAGT "Y", FLAGN 1), record 1 none.
    void SetUp() override
    {
        makeT(Store::Sqlite,
              { { QStringLiteral("SMITH, ANN"), QVariant(), 1234.5, QDate(2024, 3, 7), true,
                  QStringLiteral("Y"), 1, 12 },
                nullRecord() });
    }

    // The reason the row gives for `text`, or "accepted".
    static QString verdict(mvText &r, const QString &text)
    {
        r.setText(text);
        QString reason;
        return r.bValidate(true, &reason) ? QStringLiteral("accepted") : reason;
    }

    // Clicks the box on its indicator (a click beside a short caption misses the button).
    static void click(mvCheck &r)
    {
        auto *box = r.findChild<QCheckBox *>(QStringLiteral("chkValue"));
        QTest::mouseClick(box, Qt::LeftButton, {}, QPoint(6, box->height() / 2));
    }

    // Clicks the box, writes it and returns what the buffer holds for the field.
    QVariant clickAndWrite(mvCheck &r, const char *field)
    {
        click(r);
        EXPECT_TRUE(rs->Edit().isOk());
        r.EditUpdate();
        QVariant v = rs->value(QString::fromLatin1(field)).value();
        EXPECT_TRUE(rs->CancelUpdate().isOk());
        return v;
    }
};

} // namespace

TEST_F(RowTest, TextShowsTheCurrentRecordThroughItsFormat)
{
    EXPECT_EQ(boundRow<mvText>("NAME")->Value(), QStringLiteral("SMITH, ANN"));
    EXPECT_EQ(boundRow<mvText>("AMOUNT", "#,##0.00")->Value(), QStringLiteral("1,234.50"));
    EXPECT_EQ(boundRow<mvText>("BORN", "dd.mm.yyyy")->Value(), QStringLiteral("07.03.2024"));
    EXPECT_EQ(boundRow<mvText>("NOTES")->Value(), QString()) << "Null shows as empty";
    mvText missing;
    missing.DataBinding()->setRecordSet(rs);
    missing.DataBinding()->setSFieldName(QStringLiteral("NOSUCH"));
    EXPECT_EQ(missing.UpdateDBF().code(), Status::Code::UnknownField);
}

TEST_F(RowTest, TextRefusesWhatTheFieldCannotTakeInWordsAUserUnderstands)
{
    auto *name = boundRow<mvText>("NAME");
    EXPECT_EQ(verdict(*name, QString(21, QLatin1Char('x'))),
              QStringLiteral("is longer than 20 characters"));
    EXPECT_EQ(verdict(*name, QString(20, QLatin1Char('x'))), QStringLiteral("accepted"));
    name->setMaxLength(5);
    EXPECT_EQ(verdict(*name, QStringLiteral("ABCDEF")),
              QStringLiteral("is longer than 5 characters"));

    auto *amount = boundRow<mvText>("AMOUNT", "#,##0.00");
    EXPECT_EQ(verdict(*amount, QStringLiteral("12x")), QStringLiteral("is not a number"));
    EXPECT_EQ(verdict(*amount, QStringLiteral("99,999.99")), QStringLiteral("accepted"));
    EXPECT_EQ(
        verdict(*amount, QStringLiteral("123456789012")),
        QStringLiteral("is too large for this field (at most 9 digits before the decimal point)"));
    EXPECT_EQ(verdict(*amount, QString()), QStringLiteral("needs a value"));
    amount->setBAllowNull(true);
    EXPECT_EQ(verdict(*amount, QString()), QStringLiteral("accepted"));

    auto *born = boundRow<mvText>("BORN", "dd.mm.yyyy");
    EXPECT_EQ(verdict(*born, QStringLiteral("31.02.2024")),
              QStringLiteral("is not a date (dd.mm.yyyy)"));
    EXPECT_EQ(verdict(*born, QStringLiteral("29.02.2024")), QStringLiteral("accepted"));

    auto *qty = boundRow<mvText>("QTY");
    qty->setSMode(QStringLiteral("Digits"));
    EXPECT_EQ(verdict(*qty, QStringLiteral("1.5")),
              QStringLiteral("may only hold the digits 0 to 9"));

    // A value the user did not change is the record's own and never refused.
    auto *shortName = boundRow<mvText>("NAME");
    shortName->setMaxLength(3);
    QString reason;
    EXPECT_TRUE(shortName->bValidate(true, &reason));

    // Not silent, the row shows the reason itself.
    amount->setSCaption(QStringLiteral("Amount"));
    amount->setText(QStringLiteral("lots"));
    env.prompter.expectMsgBox(QStringLiteral("Invalid Entry"),
                              QStringLiteral("Amount is not a number"), MsgStyle::Exclamation,
                              MsgAnswer::OK);
    EXPECT_FALSE(amount->bValidate(false, &reason));
    EXPECT_EQ(reason, QStringLiteral("is not a number"));
}

TEST_F(RowTest, TextWritesOnlyChangedValuesAndRestoresOnCancel)
{
    auto *name = boundRow<mvText>("NAME");
    auto *amount = boundRow<mvText>("AMOUNT", "#,##0");
    ASSERT_TRUE(rs->Edit().isOk());
    // Someone else (the navigator's stamp, another control) set AMOUNT in the buffer; the
    // row showing "1,235" rounded must not write its rounded text over it.
    ASSERT_TRUE(rs->setValue(QStringLiteral("AMOUNT"), 77.25).isOk());
    name->Edit();
    amount->Edit();
    name->setText(QStringLiteral("JONES, BO"));
    name->EditUpdate();
    amount->EditUpdate();
    EXPECT_EQ(rs->value(QStringLiteral("NAME")).value().toString(), QStringLiteral("JONES, BO"));
    EXPECT_DOUBLE_EQ(rs->value(QStringLiteral("AMOUNT")).value().toDouble(), 77.25);

    // Empty becomes Null only when allowed.
    name->setText(QString());
    name->EditUpdate();
    EXPECT_EQ(rs->value(QStringLiteral("NAME")).value(), QVariant(QString()));
    name->setBAllowNull(true);
    name->EditUpdate();
    EXPECT_FALSE(rs->value(QStringLiteral("NAME")).value().isValid());
    ASSERT_TRUE(rs->CancelUpdate().isOk());

    name->setText(QStringLiteral("typed before Edit"));
    name->Edit();
    name->setText(QStringLiteral("typed during Edit"));
    name->CancelEdit();
    EXPECT_EQ(name->Value(), QStringLiteral("typed before Edit"));
}

TEST_F(RowTest, TextModesShapeWhatIsTyped)
{
    auto *name = boundRow<mvText>("NAME");
    name->setSMode(QStringLiteral("Upper"));
    auto *edit = name->findChild<QLineEdit *>(QStringLiteral("txtValue"));
    ASSERT_TRUE(edit);
    edit->clear();
    QTest::keyClicks(edit, QStringLiteral("abc"));
    EXPECT_EQ(name->Value(), QStringLiteral("ABC"));

    auto *qty = boundRow<mvText>("QTY");
    qty->setSMode(QStringLiteral("Digits"));
    auto *qtyEdit = qty->findChild<QLineEdit *>(QStringLiteral("txtValue"));
    qtyEdit->clear();
    QTest::keyClicks(qtyEdit, QStringLiteral("4a2-"));
    EXPECT_EQ(qty->Value(), QStringLiteral("42"));

    // Typing stops at the field's size.
    edit->clear();
    QTest::keyClicks(edit, QString(25, QLatin1Char('z')));
    EXPECT_EQ(name->Value().size(), 20);

    name->setLocked(true);
    QTest::keyClicks(edit, QStringLiteral("more"));
    EXPECT_EQ(name->Value().size(), 20) << "a locked row takes no typing";

    QSignalSpy spy(name, &mvRow::DblClick);
    QTest::mouseDClick(edit, Qt::LeftButton);
    EXPECT_EQ(spy.count(), 1) << "a double click on the value raises the row's event";
}

// A memo row edits over several lines; its line breaks are written as CRLF and shown as LF
// again (the round trip on every store: roundtrip_test.cpp).
TEST_F(RowTest, TextEditsAMemoOverSeveralLines)
{
    auto *notes = boundRow<mvText>("NOTES");
    EXPECT_TRUE(notes->isMultiLine());
    auto *memo = notes->findChild<QPlainTextEdit *>(QStringLiteral("txtMemo"));
    ASSERT_TRUE(memo);
    EXPECT_TRUE(memo->tabChangesFocus());
}

TEST_F(RowTest, CheckStoredFormFollowsTheFieldAndWhatItHolds)
{
    auto *logical = boundRow<mvCheck>("ACTIVE");
    EXPECT_EQ(logical->Value(), QStringLiteral("True"));
    EXPECT_EQ(clickAndWrite(*logical, "ACTIVE"), QVariant(false));

    // The numeric field holds 1 for true, so 1/0 it stays (not -1).
    auto *numeric = boundRow<mvCheck>("FLAGN");
    EXPECT_EQ(numeric->Value(), QStringLiteral("1"));
    EXPECT_EQ(clickAndWrite(*numeric, "FLAGN").toInt(), 0);
    click(*numeric);
    EXPECT_EQ(numeric->Value(), QStringLiteral("1"));

    auto *text = boundRow<mvCheck>("FLAGT");
    EXPECT_EQ(text->Value(), QStringLiteral("Y"));
    EXPECT_EQ(clickAndWrite(*text, "FLAGT").toString(), QStringLiteral("N"));
}

TEST_F(RowTest, CheckEmptyFieldsTakeTheDefaultFormsAndNullStaysNullUntilClicked)
{
    ASSERT_TRUE(rs->MoveNext().isOk());
    auto *numeric = boundRow<mvCheck>("FLAGN");
    auto *text = boundRow<mvCheck>("FLAGT");
    auto *logical = boundRow<mvCheck>("ACTIVE");
    EXPECT_EQ(numeric->Value(), QString());
    EXPECT_FALSE(numeric->Checked());

    ASSERT_TRUE(rs->Edit().isOk());
    logical->EditUpdate(); // untouched
    EXPECT_FALSE(rs->value(QStringLiteral("ACTIVE")).value().isValid()) << "Null stays Null";
    ASSERT_TRUE(rs->CancelUpdate().isOk());

    EXPECT_EQ(clickAndWrite(*numeric, "FLAGN").toInt(), -1);
    EXPECT_EQ(clickAndWrite(*text, "FLAGT").toString(), QStringLiteral("T"));
}

TEST_F(RowTest, CheckLockedBoxKeepsItsStateBoldCaptionFollowsIt)
{
    auto *r = boundRow<mvCheck>("ACTIVE");
    auto *box = r->findChild<QCheckBox *>(QStringLiteral("chkValue"));
    r->setBBoldOnChk(true);
    EXPECT_TRUE(box->font().bold());
    r->setLocked(true);
    click(*r);
    QTest::keyClick(box, Qt::Key_Space);
    EXPECT_TRUE(r->Checked()) << "a locked box does not change";
    r->setLocked(false);
    click(*r);
    EXPECT_FALSE(r->Checked());
    EXPECT_FALSE(box->font().bold());

    r->setValue(QStringLiteral("Yes"));
    EXPECT_TRUE(r->Checked());
    EXPECT_EQ(r->Value(), QStringLiteral("True"));
    r->Clear();
    EXPECT_EQ(r->Value(), QString());
    EXPECT_FALSE(r->Checked());
}

TEST(RowGeometry, SizesAreTwipsOfTheScreensResolution)
{
    mvText r;
    r.setIHeight(1440);
    EXPECT_EQ(r.height(), r.logicalDpiY());
    r.setTwipsGeometry(720, 0, 2880);
    EXPECT_EQ(r.x(), r.logicalDpiX() / 2);
    EXPECT_EQ(r.width(), r.logicalDpiX() * 2);
}

TEST(RowPalette, EveryFlagLooksDistinctAndReadableInLightAndDarkThemes)
{
    QPalette light;
    light.setColor(QPalette::Base, Qt::white);
    light.setColor(QPalette::Text, Qt::black);
    light.setColor(QPalette::Window, QColor(0xEF, 0xEF, 0xEF));
    QPalette dark;
    dark.setColor(QPalette::Base, QColor(0x2A, 0x2A, 0x2A));
    dark.setColor(QPalette::Text, QColor(0xE8, 0xE8, 0xE8));
    dark.setColor(QPalette::Window, QColor(0x35, 0x35, 0x35));
    for (const QPalette &p : { light, dark }) {
        const QList<RowShade> shades{ RowShade::Normal, RowShade::Red, RowShade::LightGray,
                                      RowShade::AlternateGray, RowShade::Locked };
        QSet<QRgb> seen;
        for (RowShade s : shades) {
            const QColor c = shadeColor(p, s);
            seen.insert(c.rgb());
            // The palette's text stays readable on every shade.
            EXPECT_GT(std::abs(c.lightness() - p.color(QPalette::Text).lightness()), 120)
                << int(s) << (isDarkPalette(p) ? " dark" : " light");
        }
        EXPECT_EQ(seen.size(), shades.size()) << (isDarkPalette(p) ? "dark" : "light");
        EXPECT_GT(shadeColor(p, RowShade::Red).red(), shadeColor(p, RowShade::Red).green() + 20);
    }
    EXPECT_EQ(rowShade(true, true, true, true, true), RowShade::Red);
    EXPECT_EQ(rowShade(false, false, false, false, true), RowShade::Locked);
    EXPECT_EQ(rowShade(false, false, false, true, true), RowShade::AlternateGray);
}

} // namespace plx::rowtest
