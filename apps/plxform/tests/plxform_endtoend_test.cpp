// apps/plxform/tests/plxform_endtoend_test.cpp: the sample form used as a person uses it,
// through its menus and widgets (open, sort, find, filter, new, edit, save, cancel,
// delete), on the FoxPro sample table and on the SQLite sample table; the files are then
// read by other programs (python3-dbf, the sqlite3 tool).
#include "apps/plxform/filtereditor.h"
#include "apps/plxform/hostform.h"
#include "apps/plxform/sampledata.h"
#include "apps/plxform/tests/sampletesting.h"

#include "fields/mvname.h"
#include "navigator/mvplxrecs.h"
#include "services/recordsource/postgres/tests/pgserver.h"
#include "services/recordsource/recordsource.h"
#include "services/recordsource/tests/postgresbackend.h"
#include "testing/fakeenv.h"
#include "tests/support/fulldisk.h"

#include <QAction>
#include <QComboBox>
#include <QDir>
#include <QFileInfo>
#include <QGroupBox>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>
#include <QToolBar>

#include <gtest/gtest.h>

namespace plx::form {
namespace {

class SampleForm : public ::testing::TestWithParam<std::string>
{
protected:
    void SetUp() override
    {
        test::FullDisk::prepare();
        ASSERT_NO_FATAL_FAILURE(readSample(dir.path(), GetParam(), &paths, &description));
        if (isServer()) {
            ASSERT_NO_FATAL_FAILURE(copySampleToServer());
            description.file.clear();
            description.server = testing::PgServer::instance().conninfo(serverDatabase());
            description.table = QStringLiteral("FACILITY");
        }
        window = std::make_unique<HostForm>(env.services());
        QStringList warnings;
        QString error;
        ASSERT_TRUE(window->openForm(description, &warnings, &error)) << error.toStdString();
        EXPECT_TRUE(warnings.isEmpty()) << warnings.join(QLatin1Char('\n')).toStdString();
        window->resize(920, 660);
        window->show();
        QApplication::processEvents();
    }
    void TearDown() override { window.reset(); }

    mvPLXRecs *nav() { return window->navigator(); }
    void menu(const char *name) { triggerMenu(*window, name); }
    qint16 row(const char *field) { return rowOf(*window, field); }
    QString shown(const char *field) { return window->textRows()->sValue(row(field)); }
    void type(const char *field, const QString &text)
    {
        window->textRows()->setSValue(row(field), text);
    }
    QString count()
    {
        return nav()->findChild<QGroupBox *>(QStringLiteral("fraControls"))->title();
    }

    QString serverDatabase() const { return testing::postgresDatabaseFor(dir.path()); }
    // The SQLite sample's table made on the test's server database, with the sample's saved
    // filters in the folder plxform keeps a server table's filters in.
    void copySampleToServer()
    {
        Result<std::unique_ptr<Database>> sqlite =
            OpenDatabase(paths.sqliteFile, false, true, QString());
        ASSERT_TRUE(sqlite.isOk());
        testing::TableDef table;
        table.name = QStringLiteral("FACILITY");
        Result<TableDescription> described =
            sqlite.value()->describeTable(QStringLiteral("FACILITY"));
        ASSERT_TRUE(described.isOk());
        table.fields = described.value().fields;
        Result<std::unique_ptr<RecordSource>> rs =
            sqlite.value()->OpenRecordset(QStringLiteral("SELECT * FROM FACILITY"));
        ASSERT_TRUE(rs.isOk());
        for (RecordSource &r = *rs.value(); !r.isEOF(); (void)r.MoveNext()) {
            QVariantList row;
            for (const FieldInfo &f : table.fields)
                row << r.value(f.name).value();
            table.rows << row;
        }
        const Status made = testing::makePostgresBackEnd()->createTables(dir.path(), { table });
        ASSERT_TRUE(made.isOk()) << made.message().toStdString();
        const QString folder =
            dir.filePath(QStringLiteral("WORK-PLX/PostgreSQL/") + serverDatabase());
        ASSERT_TRUE(QDir().mkpath(folder));
        ASSERT_TRUE(QFile::copy(
            QFileInfo(paths.sqliteFile).dir().filePath(QStringLiteral("HBFiltersPLX.INI")),
            folder + QStringLiteral("/HBFiltersPLX.INI")));
    }

    // NAME of the record with `id` as another program reads the file (or the server),
    // "" when it is gone.
    QString nameOnDisk(const QString &id)
    {
        if (isServer())
            return testing::PgServer::instance().psql(
                serverDatabase(),
                QStringLiteral("SELECT \"NAME\" FROM \"FACILITY\" WHERE \"ID\" = '%1'").arg(id));
        QProcess reader;
        if (GetParam() == "FoxPro") {
            reader.start(
                QStringLiteral("/usr/bin/python3"),
                { QStringLiteral("-c"),
                  QStringLiteral(
                      "import dbf,sys\nt=dbf.Table(sys.argv[1]);t.open()\n"
                      "print(''.join(r['name'].strip() for r in t if r['id'].strip()==sys.argv[2] "
                      "and not dbf.is_deleted(r)))"),
                  paths.foxProTable, id });
        } else {
            reader.start(QStringLiteral("sqlite3"),
                         { paths.sqliteFile,
                           QStringLiteral("SELECT NAME FROM FACILITY WHERE ID = '%1'").arg(id) });
        }
        if (!reader.waitForFinished(60000) || reader.exitCode() != 0) {
            ADD_FAILURE() << "reader failed: " << reader.readAllStandardError().toStdString();
            return QStringLiteral("?");
        }
        return QString::fromUtf8(reader.readAllStandardOutput()).trimmed();
    }

    bool isFoxPro() const { return GetParam() == "FoxPro"; }
    bool isServer() const { return GetParam() == "PostgreSQL"; }
    // The table's files as they are on disk: the table and memo, or the database.
    QByteArray tableBytes() const
    {
        QByteArray bytes;
        const QStringList files = isFoxPro()
            ? QStringList{ paths.foxProTable,
                           paths.foxProTable.left(paths.foxProTable.size() - 3)
                               + QStringLiteral("FPT") }
            : QStringList{ paths.sqliteFile };
        for (const QString &path : files) {
            QFile file(path);
            if (file.open(QIODevice::ReadOnly))
                bytes += file.readAll();
        }
        return bytes;
    }

    test::TestServices env;
    QTemporaryDir dir;
    WorkFolder work{ dir.path() };
    SamplePaths paths;
    FormDescription description;
    std::unique_ptr<HostForm> window;
};

TEST_P(SampleForm, LaysOutWithoutOverlapsOrCutOffWidgets)
{
    EXPECT_EQ(count(), QStringLiteral("3,000 records"));
    // Siblings never overlap, and every visible widget lies inside its parent.
    const QList<QWidget *> widgets = window->findChildren<QWidget *>();
    for (QWidget *w : widgets) {
        if (!w->isVisible() || w->isWindow() || !w->parentWidget())
            continue;
        const QRect inside = w->parentWidget()->rect();
        const bool scrolled =
            w->parentWidget()->objectName() == QLatin1String("qt_scrollarea_viewport");
        if (!scrolled) {
            EXPECT_TRUE(inside.contains(w->geometry()))
                << w->objectName().toStdString() << " is cut off";
        }
        for (QWidget *other : widgets) {
            if (other == w || other->parentWidget() != w->parentWidget() || !other->isVisible()
                || other->isWindow())
                continue;
            EXPECT_FALSE(w->geometry().intersects(other->geometry()))
                << w->objectName().toStdString() << " overlaps "
                << other->objectName().toStdString();
        }
    }
}

TEST_P(SampleForm, SortFindFilterNewEditCancelDeleteThroughTheMenus)
{
    // Sort by city, then find as a user types.
    auto *sorts = nav()->findChild<QComboBox *>(QStringLiteral("cboSort"));
    sorts->setCurrentIndex(1);
    Q_EMIT sorts->activated(1);
    auto *find = nav()->findChild<QComboBox *>(QStringLiteral("cboFind"));
    find->setEditText(QStringLiteral("Dover"));
    QTest::keyClick(find, Qt::Key_Return);
    EXPECT_EQ(shown("CITY"), QStringLiteral("Dover"));

    // A saved filter, as the host turns it into a WHERE text.
    auto *filters = nav()->findChild<QComboBox *>(QStringLiteral("cboFilter"));
    filters->setCurrentIndex(filters->findText(QStringLiteral("Texas and Ohio")));
    const QString filtered = count();
    EXPECT_NE(filtered, QStringLiteral("3,000 records"));
    EXPECT_TRUE(shown("STATE") == QLatin1String("TX") || shown("STATE") == QLatin1String("OH"))
        << shown("STATE").toStdString();
    filters->setCurrentIndex(filters->findText(QStringLiteral(" [None]")));
    EXPECT_EQ(count(), QStringLiteral("3,000 records"));

    // New: the record exists at once; the required name is asked for before it is saved.
    menu("mnuNew");
    const QString id = nav()->sCurrentID().trimmed();
    ASSERT_TRUE(id.startsWith(QLatin1String("PLE"))) << id.toStdString();
    expectRefusalWithoutNameAndCity(env.prompter);
    menu("mnuSave");
    type("NAME", QStringLiteral("Quarry Hill Care Center"));
    type("CITY", QStringLiteral("Camden"));
    menu("mnuSave");
    EXPECT_EQ(env.prompter.pending(), 0);
    EXPECT_EQ(count(), QStringLiteral("3,001 records"));
    EXPECT_EQ(nameOnDisk(id), QStringLiteral("Quarry Hill Care Center"));
    EXPECT_TRUE(window->statusText().endsWith(QStringLiteral("Browsing")))
        << window->statusText().toStdString();

    // Edit and save; edit and cancel.
    menu("mnuEdit");
    EXPECT_TRUE(window->statusText().endsWith(QStringLiteral("Editing")));
    type("NAME", QStringLiteral("Quarry Hill Manor"));
    menu("mnuSave");
    EXPECT_EQ(nameOnDisk(id), QStringLiteral("Quarry Hill Manor"));
    menu("mnuEdit");
    type("NAME", QStringLiteral("Never Saved"));
    menu("mnuCancel");
    EXPECT_EQ(shown("NAME"), QStringLiteral("Quarry Hill Manor"));
    EXPECT_EQ(nameOnDisk(id), QStringLiteral("Quarry Hill Manor"));

    // Delete asks twice.
    env.prompter.expectMsgBox(
        QStringLiteral("Delete Record?"),
        QStringLiteral("Are you sure you want to delete this record?\r\nQuarry Hill Manor"), 260,
        MsgAnswer::Yes);
    env.prompter.expectMsgBox(QStringLiteral("Are you sure?"),
                              QStringLiteral("Are you sure you want to delete this record?"), 260,
                              MsgAnswer::Yes);
    menu("mnuDelete");
    EXPECT_EQ(env.prompter.pending(), 0);
    EXPECT_EQ(nameOnDisk(id), QString());
    EXPECT_EQ(count(), QStringLiteral("3,000 records"));
}

// The disk fills up while a record is saved: the box says so, the record stays in edit
// with everything typed still on screen, nothing on disk changes; once there is room again
// the same SAVE stores it. For an edit, and for a new record with a memo.
TEST_P(SampleForm, AFullDiskDuringSaveKeepsWhatWasTypedAndChangesNothing)
{
    if (isServer())
        GTEST_SKIP() << "the server's disk is not this machine's";
    const QString notSaved = QStringLiteral("'Facilities' record has NOT been saved.");
    auto saveOnFullDisk = [&](const char *what) {
        SCOPED_TRACE(what);
        const QByteArray before = tableBytes();
        {
            test::FullDisk full;
            env.prompter.expectMsgBox(QStringLiteral("mvPLXRecs Facilities"), QString(), 16,
                                      MsgAnswer::OK);
            menu("mnuSave");
        }
        ASSERT_EQ(env.prompter.pending(), 0);
        const QString box = env.prompter.shown().constLast().text;
        EXPECT_TRUE(box.startsWith(notSaved + QStringLiteral("\r\n\r\n"))) << box.toStdString();
        EXPECT_TRUE(box.contains(isFoxPro() ? QStringLiteral("No space left on device")
                                            : QStringLiteral("database or disk is full")))
            << box.toStdString();
        EXPECT_TRUE(window->statusText().endsWith(QStringLiteral("Editing")))
            << window->statusText().toStdString();
        EXPECT_EQ(tableBytes(), before);
    };

    menu("mnuEdit");
    const QString edited = nav()->sCurrentID().trimmed();
    type("NAME", QStringLiteral("Typed As The Disk Filled"));
    saveOnFullDisk("edit");
    EXPECT_EQ(shown("NAME"), QStringLiteral("Typed As The Disk Filled"));
    menu("mnuSave");
    EXPECT_EQ(nameOnDisk(edited), QStringLiteral("Typed As The Disk Filled"));

    menu("mnuNew");
    const QString made = nav()->sCurrentID().trimmed();
    type("NAME", QStringLiteral("Full Disk Manor"));
    type("CITY", QStringLiteral("Camden"));
    type("NOTES", QStringLiteral("A memo written\nwhile the disk was full."));
    saveOnFullDisk("new record with a memo");
    EXPECT_EQ(shown("NAME"), QStringLiteral("Full Disk Manor"));
    EXPECT_EQ(shown("NOTES"), QStringLiteral("A memo written\nwhile the disk was full."));
    menu("mnuSave");
    EXPECT_EQ(nameOnDisk(made), QStringLiteral("Full Disk Manor"));
    EXPECT_TRUE(window->statusText().endsWith(QStringLiteral("Browsing")));
}

TEST_P(SampleForm, FiltersAreCheckedOnTheTableBeforeTheyAreKept)
{
    FilterEditor editor(window->filterFile(), nav()->database(), window->form().table);
    const QStringList before = editor.filterNames();
    ASSERT_EQ(before.size(), 4);
    // A condition that cannot run is refused with the engine's words, and nothing is saved.
    EXPECT_FALSE(
        editor.saveFilter(QString(), QStringLiteral("Broken"), QStringLiteral("BEDS >>> 3")));
    EXPECT_FALSE(
        editor.saveFilter(QString(), QStringLiteral("Unknown"), QStringLiteral("COLOUR = 'red'")));
    EXPECT_FALSE(editor.checkCondition(QStringLiteral("COLOUR = 'red'")).isEmpty());
    EXPECT_EQ(editor.filterNames(), before);
    // A good one is kept, renamed, and used by the navigator's list.
    ASSERT_TRUE(editor.saveFilter(QString(), QStringLiteral("Big"), QStringLiteral("BEDS >= 250")));
    ASSERT_TRUE(editor.saveFilter(QStringLiteral("Big"), QStringLiteral("Large homes"),
                                  QStringLiteral("BEDS >= 250")));
    EXPECT_EQ(editor.filterNames(), before + QStringList{ QStringLiteral("Large homes") });
    // Deleting one filter keeps every other one as it was.
    ASSERT_TRUE(editor.deleteFilter(QStringLiteral("Texas and Ohio")));
    QStringList expected = before + QStringList{ QStringLiteral("Large homes") };
    expected.removeAll(QStringLiteral("Texas and Ohio"));
    EXPECT_EQ(editor.filterNames(), expected);
    nav()->InitFilters();
    auto *filters = nav()->findChild<QComboBox *>(QStringLiteral("cboFilter"));
    filters->setCurrentIndex(filters->findText(QStringLiteral("Large homes")));
    EXPECT_GE(shown("BEDS").remove(QLatin1Char(',')).toInt(), 250);
}

std::vector<std::string> sampleBackEnds()
{
    std::vector<std::string> names{ "FoxPro", "SQLite" };
    if (testing::postgresJoinsTheSuite())
        names.emplace_back("PostgreSQL");
    return names;
}

INSTANTIATE_TEST_SUITE_P(BackEnds, SampleForm, ::testing::ValuesIn(sampleBackEnds()),
                         [](const auto &param) { return param.param; });

} // namespace
} // namespace plx::form
