// mervane/tests/mvtext_test.cpp: the text row on a real SQLite table: what it shows, what
// it refuses and why, what it writes and what it restores.
#include "mervane/mvtext.h"
#include "mervane/rowpalette.h"
#include "mervane/tests/rowfixtures.h"

#include "tests/support/fakeenv.h"

#include <QApplication>
#include <QDate>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

using namespace plx;
using namespace plx::rowtest;

namespace {

class TextRowTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        db = makeTable(Store::Sqlite, dir.path(),
                       { { QStringLiteral("SMITH, ANN"), QVariant(), 1234.5, QDate(2024, 3, 7),
                           true, QStringLiteral("T"), 0, 12 } });
        ASSERT_TRUE(db);
        rs = openT(*db);
        ASSERT_TRUE(rs);
    }

    std::unique_ptr<mvText> row(const char *field, const char *format = "")
    {
        auto r = std::make_unique<mvText>();
        r->setServices(env.services());
        r->setSCaption(QString::fromLatin1(field).toLower());
        r->setSFormat(QString::fromLatin1(format));
        r->DataBinding()->setRecordSet(rs);
        r->DataBinding()->setSFieldName(QString::fromLatin1(field));
        EXPECT_TRUE(r->UpdateDBF().isOk());
        return r;
    }

    // The reason the row gives for `text`, or "accepted".
    QString verdict(mvText &r, const QString &text)
    {
        r.setText(text);
        QString reason;
        return r.bValidate(true, &reason) ? QStringLiteral("accepted") : reason;
    }

    test::TestServices env;
    QTemporaryDir dir;
    std::unique_ptr<Database> db;
    std::shared_ptr<RecordSource> rs;
};

} // namespace

TEST_F(TextRowTest, ShowsTheCurrentRecordThroughItsFormat)
{
    EXPECT_EQ(row("NAME")->Value(), QStringLiteral("SMITH, ANN"));
    EXPECT_EQ(row("AMOUNT", "#,##0.00")->Value(), QStringLiteral("1,234.50"));
    EXPECT_EQ(row("BORN", "dd.mm.yyyy")->Value(), QStringLiteral("07.03.2024"));
    EXPECT_EQ(row("NOTES")->Value(), QString()) << "Null shows as empty";
    auto missing = std::make_unique<mvText>();
    missing->DataBinding()->setRecordSet(rs);
    missing->DataBinding()->setSFieldName(QStringLiteral("NOSUCH"));
    EXPECT_EQ(missing->UpdateDBF().code(), Status::Code::UnknownField);
}

TEST_F(TextRowTest, RefusesWhatTheFieldCannotTakeInWordsAUserUnderstands)
{
    auto name = row("NAME");
    EXPECT_EQ(verdict(*name, QString(21, QLatin1Char('x'))),
              QStringLiteral("is longer than 20 characters"));
    EXPECT_EQ(verdict(*name, QString(20, QLatin1Char('x'))), QStringLiteral("accepted"));
    name->setMaxLength(5);
    EXPECT_EQ(verdict(*name, QStringLiteral("ABCDEF")),
              QStringLiteral("is longer than 5 characters"));

    auto amount = row("AMOUNT", "#,##0.00");
    EXPECT_EQ(verdict(*amount, QStringLiteral("12x")), QStringLiteral("is not a number"));
    EXPECT_EQ(verdict(*amount, QStringLiteral("99,999.99")), QStringLiteral("accepted"));
    EXPECT_EQ(
        verdict(*amount, QStringLiteral("123456789012")),
        QStringLiteral("is too large for this field (at most 9 digits before the decimal point)"));
    EXPECT_EQ(verdict(*amount, QString()), QStringLiteral("needs a value"));
    amount->setBAllowNull(true);
    EXPECT_EQ(verdict(*amount, QString()), QStringLiteral("accepted"));

    auto born = row("BORN", "dd.mm.yyyy");
    EXPECT_EQ(verdict(*born, QStringLiteral("31.02.2024")),
              QStringLiteral("is not a date (dd.mm.yyyy)"));
    EXPECT_EQ(verdict(*born, QStringLiteral("29.02.2024")), QStringLiteral("accepted"));

    auto qty = row("QTY");
    qty->setSMode(QStringLiteral("Digits"));
    EXPECT_EQ(verdict(*qty, QStringLiteral("1.5")),
              QStringLiteral("may only hold the digits 0 to 9"));

    // A value the user did not change is the record's own and never refused.
    auto shortName = row("NAME");
    shortName->setMaxLength(3);
    QString reason;
    EXPECT_TRUE(shortName->bValidate(true, &reason));
}

TEST_F(TextRowTest, NotSilentValidationShowsTheReasonItself)
{
    auto amount = row("AMOUNT");
    amount->setSCaption(QStringLiteral("Amount"));
    amount->setText(QStringLiteral("lots"));
    env.prompter.expectMsgBox(QStringLiteral("Invalid Entry"),
                              QStringLiteral("Amount is not a number"), MsgStyle::Exclamation,
                              MsgAnswer::OK);
    QString reason;
    EXPECT_FALSE(amount->bValidate(false, &reason));
    EXPECT_EQ(reason, QStringLiteral("is not a number"));
}

TEST_F(TextRowTest, WritesOnlyChangedValuesAndRestoresOnCancel)
{
    auto name = row("NAME");
    auto amount = row("AMOUNT", "#,##0");
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
    ASSERT_TRUE(rs->CancelUpdate().isOk());

    name->setText(QStringLiteral("typed before Edit"));
    name->Edit();
    name->setText(QStringLiteral("typed during Edit"));
    name->CancelEdit();
    EXPECT_EQ(name->Value(), QStringLiteral("typed before Edit"));
}

TEST_F(TextRowTest, EmptyBecomesNullOnlyWhenAllowed)
{
    auto name = row("NAME");
    ASSERT_TRUE(rs->Edit().isOk());
    name->setText(QString());
    name->EditUpdate();
    EXPECT_EQ(rs->value(QStringLiteral("NAME")).value(), QVariant(QString()));
    name->setBAllowNull(true);
    name->EditUpdate();
    EXPECT_FALSE(rs->value(QStringLiteral("NAME")).value().isValid());
}

TEST_F(TextRowTest, ModesShapeWhatIsTyped)
{
    auto name = row("NAME");
    name->setSMode(QStringLiteral("Upper"));
    auto *edit = name->findChild<QLineEdit *>(QStringLiteral("txtValue"));
    ASSERT_TRUE(edit);
    edit->clear();
    QTest::keyClicks(edit, QStringLiteral("abc"));
    EXPECT_EQ(name->Value(), QStringLiteral("ABC"));

    auto qty = row("QTY");
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
}

TEST_F(TextRowTest, MemoIsEditedOverSeveralLines)
{
    auto notes = row("NOTES");
    EXPECT_TRUE(notes->isMultiLine());
    auto *memo = notes->findChild<QPlainTextEdit *>(QStringLiteral("txtMemo"));
    ASSERT_TRUE(memo);
    EXPECT_TRUE(memo->tabChangesFocus());
    ASSERT_TRUE(rs->Edit().isOk());
    notes->setText(QStringLiteral("first line\nsecond line"));
    notes->EditUpdate();
    EXPECT_EQ(rs->value(QStringLiteral("NOTES")).value().toString(),
              QStringLiteral("first line\r\nsecond line"));
    ASSERT_TRUE(rs->Update().isOk());
    EXPECT_TRUE(notes->UpdateDBF().isOk());
    EXPECT_EQ(notes->Value(), QStringLiteral("first line\nsecond line"));
}

TEST_F(TextRowTest, DoubleClickRaisesTheRowsEvent)
{
    auto name = row("NAME");
    QSignalSpy spy(name.get(), &mvRow::DblClick);
    QTest::mouseDClick(name->findChild<QLineEdit *>(QStringLiteral("txtValue")), Qt::LeftButton);
    EXPECT_EQ(spy.count(), 1);
}

TEST_F(TextRowTest, SizesAreTwipsOfTheScreensResolution)
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
