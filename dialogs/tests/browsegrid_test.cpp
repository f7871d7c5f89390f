// dialogs/tests/browsegrid_test.cpp: the grid form on real tables of each back end: its
// columns from the settings file and back, what the cells show, the column Find with its
// boxes, the chosen row, and a source that never moves.
#include "dialogs/frmgrideditbare.h"
#include "dialogs/recordsourcetablemodel.h"
#include "dialogs/tests/gridtesting.h"

#include "mervane/twips.h"
#include "services/ini.h"
#include "services/recordsource/tests/backend.h"
#include "testing/fakeenv.h"

#include <QDate>
#include <QDir>
#include <QFont>
#include <QHeaderView>
#include <QPushButton>
#include <QTableView>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

namespace plx {

void PrintTo(const GridColumnEntry &c, std::ostream *out)
{
    *out << c.field.toStdString() << ',' << c.title.toStdString() << ',' << c.widthTwips;
}

namespace test {
namespace {

const QString kKey = QStringLiteral("BrowseGridCol Facilities");

QStringList split(const char *texts)
{
    return QString::fromLatin1(texts).split(QLatin1Char('|'));
}

testing::TableDef gridTable()
{
    testing::TableDef t;
    t.name = QStringLiteral("T");
    t.fields = { { QStringLiteral("ID"), FieldType::Text, 6, 0 },
                 { QStringLiteral("NAME"), FieldType::Text, 20, 0 },
                 { QStringLiteral("NOTES"), FieldType::Memo, 0, 0 },
                 { QStringLiteral("AMOUNT"), FieldType::Numeric, 10, 2 },
                 { QStringLiteral("BORN"), FieldType::Date, 8, 0 },
                 { QStringLiteral("ACTIVE"), FieldType::Boolean, 1, 0 } };
    // File order differs from the name order the grid shows.
    const auto text = [](const char *s) { return QVariant(QString::fromUtf8(s)); };
    t.rows = {
        { text("G1"), text("SMITH"), text("first line\r\nsecond"), 10.5, QDate(1990, 1, 2), true },
        { text("G2"), text("JONES"), QVariant(), 3, QDate(1985, 12, 31), false },
        { text("G3"), text("SMITHERS"), text("note"), QVariant(), QVariant(), QVariant() },
        { text("G4"), text("O'BRIEN"), text("note"), 0, QDate(2001, 5, 6), true },
        { text("G5"), text("ADAMS"), text("note"), 7.25, QDate(1970, 7, 8), false },
        { text("G6"), text("BLACKSMITH"), text("note"), 1, QDate(1999, 9, 9), true },
    };
    return t;
}

class GridTest : public ::testing::TestWithParam<std::string>
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(dir.isValid());
        qputenv("PLX_HARROWBY_DIR", dir.path().toUtf8());
        backEnd = testing::backEndNamed(QString::fromStdString(GetParam()));
        ASSERT_TRUE(backEnd->createTables(dir.path(), { gridTable() }).isOk());
        Result<std::unique_ptr<Database>> opened = backEnd->open(dir.path());
        ASSERT_TRUE(opened.isOk());
        db = std::move(opened.value());
        Result<std::unique_ptr<RecordSource>> rs =
            db->OpenRecordset(QStringLiteral("SELECT * from T ORDER BY NAME"));
        ASSERT_TRUE(rs.isOk());
        records = std::move(rs.value());
        settings = dir.filePath(QStringLiteral("USER.INI"));
    }
    void TearDown() override { qunsetenv("PLX_HARROWBY_DIR"); }

    std::unique_ptr<FrmGridEditBare> makeForm(qint32 startRow = -1)
    {
        return std::make_unique<FrmGridEditBare>(
            FrmGridEditBare::Setup{ QStringLiteral("Browse records Facilities"), records, settings,
                                    kKey, startRow, QString(), env.services() });
    }
    QString layoutStored() const
    {
        QString value;
        readINI(QStringLiteral("CONFIG"), kKey, settings, value, QString());
        return value;
    }
    static QStringList visibleTitles(const FrmGridEditBare &form)
    {
        QStringList titles;
        const QHeaderView *header = form.grid()->horizontalHeader();
        for (int v = 0; v < header->count(); ++v) {
            const int c = header->logicalIndex(v);
            if (!header->isSectionHidden(c))
                titles << form.model()->headerData(c, Qt::Horizontal).toString();
        }
        return titles;
    }
    static QString cell(const FrmGridEditBare &form, int row, int column)
    {
        return form.model()->index(row, column).data().toString();
    }

    TestServices env;
    QTemporaryDir dir;
    std::shared_ptr<testing::BackEnd> backEnd;
    std::unique_ptr<Database> db;
    std::shared_ptr<RecordSource> records;
    QString settings;
};

// Row r of the grid is record r in the source's order (ADAMS, BLACKSMITH, JONES, O'BRIEN,
// SMITH, SMITHERS); cells read as the field controls show the values.
TEST_P(GridTest, CellsShowTheValuesAsTheFieldsDo)
{
    auto form = makeForm();
    ASSERT_EQ(form->model()->rowCount(), 6);
    ASSERT_EQ(form->model()->columnCount(), 6);
    const QStringList adams = split("G5|ADAMS|note|7.25|07/08/1970|False");
    const QStringList smith = split("G1|SMITH|first line|10.50|01/02/1990|True");
    for (int c = 0; c < 6; ++c) {
        EXPECT_EQ(cell(*form, 0, c), adams[c]) << c;
        EXPECT_EQ(cell(*form, 4, c), smith[c]) << c;
        // Null shows nothing (blank in a FoxPro table reads as Null).
        if (c >= 3) {
            EXPECT_EQ(cell(*form, 5, c), QString()) << c;
        }
    }
    EXPECT_EQ(cell(*form, 2, 2), QString());
}

// The layout names the fields, their order, titles and widths; a field the table lacks, a
// field named twice, a damaged width and the trailing "|" are passed over. What the user
// changes is written back and reads back the same in the next grid.
TEST_P(GridTest, LayoutIsAppliedAndSurvivesTheNextOpening)
{
    writeINI(
        QStringLiteral("CONFIG"), kKey, settings,
        QStringLiteral("NAME,Facility,2400|GONE,Old,900|ID,,abc|NAME,Twice,100|BORN,Born,1450|"));
    auto form = makeForm();
    form->show();
    EXPECT_EQ(visibleTitles(*form), split("Facility|ID|Born"));
    QTableView *grid = form->grid();
    EXPECT_EQ(grid->columnWidth(1), twipsToPixelsX(grid, 2400));
    EXPECT_EQ(grid->columnWidth(4), twipsToPixelsX(grid, 1450));
    EXPECT_GT(grid->columnWidth(0), 20); // no width given: one that fits the field
    EXPECT_TRUE(grid->isColumnHidden(2) && grid->isColumnHidden(3) && grid->isColumnHidden(5));

    // The user moves BORN first, widens ID, shows AMOUNT, hides NAME, selects BORN.
    grid->horizontalHeader()->moveSection(grid->horizontalHeader()->visualIndex(4), 0);
    grid->setColumnWidth(0, twipsToPixelsX(grid, 3000));
    grid->setColumnHidden(3, false);
    grid->setColumnWidth(3, twipsToPixelsX(grid, 1200));
    grid->setColumnHidden(1, true);
    grid->selectColumn(4);
    const GridLayout changed = form->currentLayout();
    form->close();
    EXPECT_EQ(GridLayout::parse(layoutStored()).columns(), changed.columns());
    EXPECT_EQ(GridLayout::parse(layoutStored()).columns().value(1).title, QStringLiteral("ID"));
    // A width the user left alone is written as it was read, not rounded through pixels.
    EXPECT_EQ(GridLayout::parse(layoutStored()).columns().value(0),
              (GridColumnEntry{ QStringLiteral("BORN"), QStringLiteral("Born"), 1450 }));

    auto again = makeForm();
    EXPECT_EQ(visibleTitles(*again), split("Born|ID|AMOUNT"));
    EXPECT_EQ(again->currentLayout().columns(), changed.columns());
    EXPECT_TRUE(again->grid()->selectionModel()->isColumnSelected(4, QModelIndex()));
}

// No layout, or one that names no field of the table: every field shows, never an empty grid.
TEST_P(GridTest, WithoutAUsableLayoutEveryFieldShows)
{
    for (const char *value : { "", "|||", ",,,|,x,1|NOSUCH,Field,100", "\x01\x02,|,,|" }) {
        writeINI(QStringLiteral("CONFIG"), kKey, settings, QString::fromLatin1(value));
        auto form = makeForm();
        EXPECT_EQ(visibleTitles(*form), split("ID|NAME|NOTES|AMOUNT|BORN|ACTIVE")) << value;
        for (int c = 0; c < 6; ++c)
            EXPECT_GT(form->grid()->columnWidth(c), 20) << value;
    }
}

// Find needs one column selected as a whole; its boxes go through the prompter.
TEST_P(GridTest, FindAsksForExactlyOneColumn)
{
    auto form = makeForm();
    auto *find = form->findChild<QPushButton *>(QStringLiteral("cmdFind"));
    ASSERT_NE(find, nullptr);
    env.prompter.expectMsgBox(
        QStringLiteral("No Column Selected"),
        QStringLiteral(
            "Click the header of the column you want to search, then use the Find button."),
        MsgStyle::Information, MsgAnswer::OK);
    find->click();
    form->grid()->selectColumn(1);
    form->grid()->selectionModel()->select(
        QItemSelection(form->model()->index(0, 2), form->model()->index(5, 2)),
        QItemSelectionModel::Select | QItemSelectionModel::Columns);
    env.prompter.expectMsgBox(QStringLiteral("Select One Column"),
                              QStringLiteral("Multiple columns are selected.\r\n\r\n"
                                             "Click the header of ONE column you want to search."),
                              MsgStyle::Information, MsgAnswer::OK);
    find->click();
    form->grid()->selectColumn(1);
    env.prompter.expectInputBox(QStringLiteral("Find"),
                                QStringLiteral("What to you want to find in the NAME column?"),
                                QString());
    env.prompter.expectMsgBox(QStringLiteral("Cancelled"), QStringLiteral("No search specified"),
                              MsgStyle::Information, MsgAnswer::OK);
    find->click();
    EXPECT_EQ(form->focusWidget(), find);
    EXPECT_EQ(env.prompter.pending(), 0);

    // A Null cell is searched as one blank.
    form->grid()->selectColumn(3);
    env.prompter.expectInputBox(QStringLiteral("Find"),
                                QStringLiteral("What to you want to find in the AMOUNT column?"),
                                QStringLiteral(" "));
    find->click();
    EXPECT_EQ(cell(*form, form->grid()->currentIndex().row(), 1), QStringLiteral("SMITHERS"));
}

// "smith" in any case finds BLACKSMITH first (from the top, wherever the grid stands), then,
// with the same column and text, SMITH and SMITHERS; then there are no more and the row
// stays on SMITHERS.
TEST_P(GridTest, FindGoesOnWithTheSameTextAndRestoresThePosition)
{
    writeINI(QStringLiteral("CONFIG"), kKey, settings,
             QStringLiteral("NAME,Facility,2000|ID,ID,900"));
    auto form = makeForm(2);
    form->show();
    auto *find = form->findChild<QPushButton *>(QStringLiteral("cmdFind"));
    const qint32 sourceBefore = records->AbsolutePosition();
    form->grid()->selectColumn(1);
    const QString prompt = QStringLiteral("What to you want to find in the Facility column?");
    for (int expected : { 1, 4, 5 }) {
        env.prompter.expectInputBox(QStringLiteral("Find"), prompt, QStringLiteral("smith"));
        find->click();
        EXPECT_EQ(form->grid()->currentIndex().row(), expected);
    }
    env.prompter.expectInputBox(QStringLiteral("Find"), prompt, QStringLiteral("smith"));
    env.prompter.expectMsgBox(QStringLiteral("Not Found"),
                              QStringLiteral("No more records containing 'SMITH' were found in "
                                             "the column labeledFacility"),
                              MsgStyle::Information, MsgAnswer::OK);
    find->click();
    EXPECT_EQ(form->grid()->currentIndex().row(), 5);
    // The found row stands out inside the selected column; the row left does not.
    EXPECT_TRUE(form->model()->index(5, 3).data(Qt::FontRole).value<QFont>().bold());
    EXPECT_FALSE(form->model()->index(4, 3).data(Qt::FontRole).isValid());
    // A quote makes a criterion the engine refuses: not found, nothing moves.
    env.prompter.expectInputBox(QStringLiteral("Find"), prompt, QStringLiteral("o'b"));
    env.prompter.expectMsgBox(QStringLiteral("Not Found"),
                              QStringLiteral("'O'B' was not found in the column labeledFacility"),
                              MsgStyle::Information, MsgAnswer::OK);
    find->click();
    EXPECT_EQ(form->grid()->currentIndex().row(), 5);
    EXPECT_TRUE(form->grid()->selectionModel()->isColumnSelected(1, QModelIndex()));
    EXPECT_EQ(form->focusWidget(), find);
    // The source the grid shows stood still all along.
    EXPECT_EQ(records->AbsolutePosition(), sourceBefore);
    form->close();
    EXPECT_EQ(form->chosenValue(QStringLiteral("ID")).toString(), QStringLiteral("G3"));
}

// The chosen record is the current row when the form closes, however it closes; Escape
// and Cancel choose nothing.
TEST_P(GridTest, TheChosenRowIsTheCurrentOneAtClosing)
{
    struct Case
    {
        const char *how;
        std::function<void(FrmGridEditBare *)> close;
        const char *chosen;
    };
    const QList<Case> cases = {
        { "Enter", [](FrmGridEditBare *f) { QTest::keyClick(f->grid(), Qt::Key_Return); }, "G1" },
        { "close", [](FrmGridEditBare *f) { f->close(); }, "G1" },
        { "Escape", [](FrmGridEditBare *f) { QTest::keyClick(f->grid(), Qt::Key_Escape); }, "" },
        { "Cancel",
          [](FrmGridEditBare *f) {
              f->findChild<QPushButton *>(QStringLiteral("cmdCancel"))->click();
          },
          "" },
    };
    for (const Case &c : cases) {
        auto form = makeForm(1);
        whenGridShows([&](FrmGridEditBare *shown) {
            EXPECT_EQ(shown->grid()->currentIndex().row(), 1) << c.how; // the start row
            shown->grid()->setCurrentIndex(shown->model()->index(4, 1));
            c.close(shown);
        });
        form->exec();
        EXPECT_FALSE(form->isVisible()) << c.how;
        EXPECT_EQ(form->chosenValue(QStringLiteral("ID")).toString(), QString::fromLatin1(c.chosen))
            << c.how;
    }
}

// The model reads what is painted, a batch at a time, and keeps a bounded number of
// batches however far the user scrolls.
TEST_P(GridTest, TheModelReadsOnlyWhatIsShown)
{
    testing::TableDef big = gridTable();
    big.name = QStringLiteral("BIG");
    const QVariantList first = big.rows.first();
    big.rows.clear();
    for (int i = 0; i < 20000; ++i) {
        QVariantList row = first;
        row[0] = QStringLiteral("B%1").arg(i);
        big.rows.append(row);
    }
    QTemporaryDir bigDir;
    ASSERT_TRUE(backEnd->createTables(bigDir.path(), { big }).isOk());
    Result<std::unique_ptr<Database>> bigDb = backEnd->open(bigDir.path());
    ASSERT_TRUE(bigDb.isOk());
    Result<std::unique_ptr<RecordSource>> rs = bigDb.value()->OpenRecordset(QStringLiteral("BIG"));
    ASSERT_TRUE(rs.isOk());
    FrmGridEditBare form({ QStringLiteral("Big"), std::move(rs.value()), settings, kKey, 10000,
                           QString(), env.services() });
    form.show();
    QApplication::processEvents();
    auto *model = qobject_cast<RecordSourceTableModel *>(form.model());
    EXPECT_EQ(model->rowCount(), 20000);
    EXPECT_GT(model->recordsRead(), 0);
    EXPECT_LE(model->recordsRead(), 2 * RecordSourceTableModel::kBatchRows);
    EXPECT_EQ(cell(form, 10000, 0), QStringLiteral("B10000"));
    for (int row = 0; row < 20000; row += 200)
        form.grid()->scrollTo(form.model()->index(row, 0));
    EXPECT_LE(model->batchesHeld(), RecordSourceTableModel::kKeptBatches);
    EXPECT_EQ(cell(form, 19999, 0), QStringLiteral("B19999"));
    form.close();
}

} // namespace

std::string backEndParam(const ::testing::TestParamInfo<std::string> &param)
{
    return param.param;
}

INSTANTIATE_TEST_SUITE_P(BackEnds, GridTest, ::testing::Values("SQLite", "FoxPro"), backEndParam);

} // namespace test
} // namespace plx
