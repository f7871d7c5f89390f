// mervane/tests/roundtrip_test.cpp: rows on real files, every back end and code page:
// show -> edit -> EditUpdate -> Save -> the navigator's second Edit -> Update -> re-read
// through a fresh database gives what was typed; CancelEdit restores; untouched Nulls stay;
// a character the table's code page cannot hold is refused, never changed.
#include "mervane/mvcheck.h"
#include "mervane/mvtext.h"
#include "tests/support/rowfixtures.h"

using namespace plx;
using namespace plx::rowtest;

namespace {

// Text outside ASCII that the store can hold, and a character it cannot ("" for SQLite).
struct StoreText
{
    QString storable;
    QString unstorable;
};

StoreText textFor(Store store)
{
    switch (store) {
    case Store::Sqlite: return { QStringLiteral("Zoë Straße € Жук"), {} };
    case Store::FoxPro1252: return { QStringLiteral("Zoë Straße €"), QStringLiteral("Ж") };
    case Store::FoxPro850: return { QStringLiteral("Zoë Straße ½"), QStringLiteral("€") };
    case Store::FoxPro1251: return { QStringLiteral("Жук Щука №"), QStringLiteral("é") };
    }
    return {};
}

class RowRoundTrip : public TableFixture<::testing::TestWithParam<Store>>
{
protected:
    void SetUp() override
    {
        makeT(GetParam(),
              { { QStringLiteral("SMITH"), QStringLiteral("old note"), 10.5, QDate(1990, 1, 2),
                  false, QStringLiteral("F"), 0, 3 },
                nullRecord() });
    }

    template<typename Row> Row *add(const char *field, const char *format = "")
    {
        Row *r = boundRow<Row>(field, format);
        rows << r;
        return r;
    }

    void showAll()
    {
        for (mvRow *r : rows)
            EXPECT_TRUE(r->UpdateDBF().isOk());
    }

    // The navigator's SAVE: EditUpdate and Save on the rows, then Edit again on the record
    // already in edit, a stamp of its own, and Update.
    void saveAsTheNavigatorDoes()
    {
        for (mvRow *r : rows)
            r->EditUpdate();
        for (mvRow *r : rows)
            EXPECT_EQ(r->Save(), QString());
        // The rows filled the edit buffer; the stamp goes into the same write.
        ASSERT_TRUE(rs->setValue(QStringLiteral("FLAGT"), QStringLiteral("S")).isOk());
        ASSERT_TRUE(rs->Update().isOk());
    }

    QList<mvRow *> rows;
};

} // namespace

TEST_P(RowRoundTrip, TypedValuesSurviveTheNavigatorsSaveOnEveryType)
{
    mvText *name = add<mvText>("NAME");
    mvText *notes = add<mvText>("NOTES");
    mvText *amount = add<mvText>("AMOUNT", "#,##0.00");
    mvText *born = add<mvText>("BORN", "dd.mm.yyyy");
    mvCheck *active = add<mvCheck>("ACTIVE");
    showAll();
    EXPECT_EQ(name->Value(), QStringLiteral("SMITH"));
    EXPECT_EQ(born->Value(), QStringLiteral("02.01.1990"));

    ASSERT_TRUE(rs->Edit().isOk());
    for (mvRow *r : rows)
        r->Edit();
    name->setText(textFor(GetParam()).storable);
    notes->setText(textFor(GetParam()).storable + QStringLiteral("\nline two"));
    amount->setText(QStringLiteral("12,345.67"));
    born->setText(QStringLiteral("29.02.2000"));
    active->setValue(QStringLiteral("True"));
    for (mvRow *r : rows) {
        QString reason;
        EXPECT_TRUE(r->bValidate(true, &reason)) << reason.toStdString();
    }
    saveAsTheNavigatorDoes();

    EXPECT_EQ(stored(0, "NAME").toString().trimmed(), textFor(GetParam()).storable);
    EXPECT_EQ(stored(0, "NOTES").toString(),
              textFor(GetParam()).storable + QStringLiteral("\r\nline two"));
    EXPECT_DOUBLE_EQ(stored(0, "AMOUNT").toDouble(), 12345.67);
    EXPECT_EQ(stored(0, "BORN").toDate(), QDate(2000, 2, 29));
    EXPECT_EQ(stored(0, "ACTIVE").toBool(), true);
    EXPECT_EQ(stored(0, "FLAGT").toString(), QStringLiteral("S")) << "the navigator's own write";

    showAll();
    EXPECT_EQ(notes->Value(), textFor(GetParam()).storable + QStringLiteral("\nline two"));
    EXPECT_EQ(amount->Value(), QStringLiteral("12,345.67"));
}

TEST_P(RowRoundTrip, CancelRestoresAndUntouchedNullsStay)
{
    ASSERT_TRUE(rs->MoveNext().isOk()); // the record of Nulls (blanks in FoxPro)
    mvText *name = add<mvText>("NAME");
    add<mvText>("AMOUNT");
    add<mvText>("BORN");
    add<mvCheck>("ACTIVE");
    mvText *qty = add<mvText>("QTY");
    showAll();
    const QVariant before = stored(1, "AMOUNT");
    const QVariant bornBefore = stored(1, "BORN");
    const QVariant activeBefore = stored(1, "ACTIVE");

    ASSERT_TRUE(rs->Edit().isOk());
    for (mvRow *r : rows)
        r->Edit();
    name->setText(QStringLiteral("typed"));
    qty->setText(QStringLiteral("5"));
    for (mvRow *r : rows)
        r->CancelEdit();
    ASSERT_TRUE(rs->CancelUpdate().isOk());
    EXPECT_EQ(name->Value(), QString());
    EXPECT_EQ(qty->Value(), QString());

    ASSERT_TRUE(rs->Edit().isOk());
    qty->setText(QStringLiteral("5"));
    saveAsTheNavigatorDoes();
    EXPECT_EQ(stored(1, "QTY").toInt(), 5);
    EXPECT_EQ(stored(1, "AMOUNT"), before) << "nothing typed, nothing written";
    EXPECT_EQ(stored(1, "BORN"), bornBefore);
    EXPECT_EQ(stored(1, "ACTIVE"), activeBefore);
    if (GetParam() == Store::Sqlite) {
        EXPECT_FALSE(stored(1, "AMOUNT").isValid());
        EXPECT_FALSE(stored(1, "NAME").isValid());
    }
}

TEST_P(RowRoundTrip, ACharacterTheCodePageCannotHoldIsRefusedNeverChanged)
{
    if (GetParam() == Store::Sqlite)
        GTEST_SKIP() << "SQLite stores every character";
    mvText *name = add<mvText>("NAME");
    name->setSCaption(QStringLiteral("Name"));
    showAll();
    const QString bad = QStringLiteral("A") + textFor(GetParam()).unstorable + QStringLiteral("B");

    // Bound to the table file, the row knows the code page and refuses before writing.
    name->DataBinding()->setDBFPathFileName(tableFile(dir.path()));
    name->setText(bad);
    QString reason;
    EXPECT_FALSE(name->bValidate(true, &reason));
    EXPECT_EQ(reason,
              QStringLiteral("contains the character \"%1\", which this table cannot store "
                             "(code page %2)")
                  .arg(textFor(GetParam()).unstorable)
                  .arg(codePageOf(GetParam())));

    // Handed a source alone, the row learns it when it sets the value: the source refuses
    // it, the row says so in its own box, the record's write goes through without it and
    // the table keeps its former value.
    name->DataBinding()->setCodePage(0);
    ASSERT_TRUE(rs->Edit().isOk());
    name->EditUpdate();
    const QString refused =
        QStringLiteral("could not be saved: it has characters this table cannot store");
    env.prompter.expectMsgBox(QStringLiteral("Value Not Saved"),
                              QStringLiteral("Name ") + refused
                                  + QStringLiteral("\r\n\r\nThe field keeps its former value."),
                              48, MsgAnswer::OK);
    EXPECT_EQ(name->Save(), refused);
    EXPECT_EQ(env.prompter.pending(), 0);
    EXPECT_TRUE(rs->Update().isOk());
    EXPECT_EQ(stored(0, "NAME").toString().trimmed(), QStringLiteral("SMITH"));
}

INSTANTIATE_TEST_SUITE_P(Stores, RowRoundTrip,
                         ::testing::Values(Store::Sqlite, Store::FoxPro1252, Store::FoxPro850,
                                           Store::FoxPro1251),
                         [](const auto &param) { return storeName(param.param); });
