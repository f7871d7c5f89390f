// apps/plxform/tests/plxform_realtables_test.cpp: plxform on tables other programs wrote
// (FoxPro, Visual FoxPro, dBASE files of public test suites, copied to a temporary folder),
// on a DOS table of its own, and on SQLite databases: which key each generated form uses,
// what the rows let a user type, the code page of a DOS table, what is said when a table
// cannot be opened, the table chooser, the question on closing during an edit, and the
// status bar's count and position.
#include "apps/plxform/filtereditor.h"
#include "apps/plxform/hostform.h"
#include "apps/plxform/indextags.h"
#include "apps/plxform/opening.h"
#include "apps/plxform/sampledata.h"
#include "apps/plxform/tablechooser.h"
#include "apps/plxform/tests/sampletesting.h"

#include "navigator/mvplxrecs.h"
#include "services/ini.h"
#include "testing/fakeenv.h"
#include "tests/support/testfiles.h"

#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QListWidget>
#include <QScreen>
#include <QTemporaryDir>
#include <QTest>
#include <QToolBar>
#include <QToolButton>

#include <gtest/gtest.h>
#include <sqlite3.h>

namespace plx::form {
namespace {

const QString kSamples = QStringLiteral(PLX_TESTDATA_DIR);

// A DOS table (version 0x03, no code-page mark) with ID C(4) and NAME C(10): record 1's
// name is the bytes 9B E5 ("¢σ" in code page 437, "øÕ" in 850, "›å" in Windows-1252).
void writeDosTable(const QString &path)
{
    QByteArray header(32, '\0');
    header[0] = 0x03;
    header[1] = 124;
    header[2] = 1;
    header[3] = 1;
    header[4] = 1; // one record
    const int headerLength = 32 + 2 * 32 + 1, recordLength = 1 + 4 + 10;
    header[8] = char(headerLength);
    header[10] = char(recordLength);
    auto field = [](const char *name, int width) {
        QByteArray f(32, '\0');
        f.replace(0, int(qstrlen(name)), name);
        f[11] = 'C';
        f[16] = char(width);
        return f;
    };
    test::writeBytes(path,
                     header + field("ID", 4) + field("NAME", 10) + "\r" + QByteArray(" 1   ")
                         + QByteArray("\x9B\xE5        ", 10) + "\x1A");
}

// A SQLite database holding `tables` (each with an ID and a NAME and `rows` records).
void writeDatabase(const QString &path, const QStringList &tables, int rows)
{
    sqlite3 *db = nullptr;
    ASSERT_EQ(sqlite3_open(path.toUtf8().constData(), &db), SQLITE_OK);
    for (const QString &table : tables) {
        QString sql = QStringLiteral("CREATE TABLE %1 (ID TEXT, NAME TEXT);").arg(table);
        for (int r = 1; r <= rows; ++r)
            sql += QStringLiteral("INSERT INTO %1 VALUES ('PLE000000%2', 'Name %2');")
                       .arg(table)
                       .arg(r);
        ASSERT_EQ(sqlite3_exec(db, sql.toUtf8().constData(), nullptr, nullptr, nullptr), SQLITE_OK);
    }
    sqlite3_close(db);
}

class RealTables : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(dir.isValid());
        window = std::make_unique<HostForm>(env.services());
        window->resize(920, 660);
    }
    void TearDown() override { window.reset(); }

    // A copy of the sample table `name` (with its memo and index files), writable.
    QString copied(const QString &name)
    {
        if (!QFile::exists(kSamples + QLatin1Char('/') + name)) {
            if (qEnvironmentVariable("CI") == QLatin1String("true"))
                ADD_FAILURE() << "the sample tables are missing: " << kSamples.toStdString();
            return {};
        }
        const QString stem = name.section(QLatin1Char('.'), 0, 0);
        for (const QString &file :
             QDir(kSamples).entryList({ stem + QStringLiteral(".*") }, QDir::Files)) {
            QFile::copy(kSamples + QLatin1Char('/') + file, dir.filePath(file));
            QFile(dir.filePath(file)).setPermissions(QFile::ReadOwner | QFile::WriteOwner);
        }
        return dir.filePath(name);
    }

    bool open(const FormDescription &form)
    {
        QStringList warnings;
        QString error;
        const bool opened = window->openForm(form, &warnings, &error);
        EXPECT_TRUE(opened) << error.toStdString();
        return opened;
    }
    bool openFile(const QString &path)
    {
        FormDescription form;
        form.file = path;
        return open(form);
    }
    QStringList sortNames()
    {
        auto *sorts = window->navigator()->findChild<QComboBox *>(QStringLiteral("cboSort"));
        QStringList names;
        for (int i = 0; i < sorts->count(); ++i)
            names << sorts->itemText(i);
        return names;
    }
    mvText *row(const char *field)
    {
        const qint16 n = rowOf(*window, field);
        return n < 0 ? nullptr : window->textRows()->textRow(n);
    }
    QString settings() { return dir.filePath(QStringLiteral("WORK-PLX/PLXFORM.INI")); }

    test::TestServices env;
    QTemporaryDir dir;
    WorkFolder work{ dir.path() };
    std::unique_ptr<HostForm> window;
};

#define REQUIRE_SAMPLE(path) \
    if ((path).isEmpty()) \
    GTEST_SKIP() << "the sample tables are not beside this checkout"

TEST_F(RealTables, ATableWithoutAnIDFieldGetsATypedKeyAndNoMadeIDs)
{
    const QString people = copied(QStringLiteral("people.dbf"));
    REQUIRE_SAMPLE(people);
    ASSERT_TRUE(openFile(people));
    EXPECT_EQ(window->navigator()->sIDfield(), QStringLiteral("NAME")); // its first field
    EXPECT_FALSE(window->navigator()->bGenerateIDs());
    EXPECT_EQ(sortNames(), (QStringList{ QStringLiteral("Name"), QStringLiteral("Birthdate") }));
    // Rows that hold no more than the fields do.
    EXPECT_EQ(row("NAME")->MaxLength(), 16);
    EXPECT_EQ(row("BIRTHDATE")->sMode(), QStringLiteral("Date"));
    EXPECT_EQ(row("BIRTHDATE")->MaxLength(), 10);

    const QString cp1251 = copied(QStringLiteral("cp1251.dbf"));
    ASSERT_TRUE(openFile(cp1251));
    EXPECT_EQ(window->navigator()->sIDfield(), QStringLiteral("RN"));
    EXPECT_FALSE(window->navigator()->bGenerateIDs());
    EXPECT_EQ(row("RN")->sMode(), QStringLiteral("Number"));
    EXPECT_EQ(row("RN")->MaxLength(), 4);
}

// A table file named by a number, with a blank, or by an SQL keyword opens, sorts and
// takes a new record under a key the user types.
TEST_F(RealTables, TablesNamedByNumbersBlanksOrKeywordsOpenAndTakeNewRecords)
{
    const QString people = copied(QStringLiteral("people.dbf"));
    REQUIRE_SAMPLE(people);
    for (const char *name : { "91.dbf", "my people.dbf", "ORDER.DBF" }) {
        SCOPED_TRACE(name);
        const QString path = dir.filePath(QString::fromLatin1(name));
        ASSERT_TRUE(QFile::copy(people, path));
        QFile(path).setPermissions(QFile::ReadOwner | QFile::WriteOwner);
        ASSERT_TRUE(openFile(path));
        EXPECT_EQ(window->windowTitle(),
                  QFileInfo(path).completeBaseName() + QStringLiteral(" - plxform"));
        mvPLXRecs *nav = window->navigator();
        ASSERT_EQ(nav->rs()->RecordCount(), 2);
        auto *sorts = nav->findChild<QComboBox *>(QStringLiteral("cboSort"));
        sorts->setCurrentIndex(1);
        Q_EMIT sorts->activated(1);
        EXPECT_EQ(nav->rs()->RecordCount(), 2);
        nav->ClickButton(QStringLiteral("NEW"));
        for (qint16 n = 0; n <= window->textRows()->nUbound(); ++n)
            if (window->textRows()->sFieldName(n) == QLatin1String("NAME"))
                window->textRows()->setSValue(n, QStringLiteral("Zed"));
        nav->ClickButton(QStringLiteral("SAVE"));
        EXPECT_FALSE(nav->bButtonEnable(QStringLiteral("SAVE")));
        EXPECT_EQ(nav->rs()->RecordCount(), 3);
        EXPECT_EQ(nav->sCurrentID().trimmed(), QStringLiteral("Zed"));
        EXPECT_EQ(env.prompter.shown().size(), 0);
    }
}

TEST_F(RealTables, AUniqueIndexTagIsTheKeyAndTagsAreOfferedAsSorts)
{
    const QString calls = copied(QStringLiteral("calls.dbf"));
    REQUIRE_SAMPLE(calls);
    const QList<IndexTag> tags = readIndexTags(calls);
    ASSERT_EQ(tags.size(), 2);
    EXPECT_EQ(tags[0].name, QStringLiteral("CALL_ID"));
    EXPECT_EQ(tags[0].expression, QStringLiteral("call_id"));
    EXPECT_TRUE(tags[0].unique);
    EXPECT_EQ(tags[1].name, QStringLiteral("CONTACT_ID"));
    EXPECT_FALSE(tags[1].unique);

    ASSERT_TRUE(openFile(calls));
    EXPECT_EQ(window->navigator()->sIDfield(), QStringLiteral("CALL_ID"));
    EXPECT_FALSE(window->navigator()->bGenerateIDs());
    EXPECT_EQ(sortNames(),
              (QStringList{ QStringLiteral("Call id"), QStringLiteral("Contact id (index)"),
                            QStringLiteral("Call date"), QStringLiteral("Call time"),
                            QStringLiteral("Subject") }));
    EXPECT_EQ(row("CALL_ID")->sMode(), QStringLiteral("Number"));
    EXPECT_EQ(row("SUBJECT")->MaxLength(), 254);
    // The memo in the middle of the stack is several lines high, and the row after it
    // starts below it.
    mvText *notes = row("NOTES");
    ASSERT_NE(notes, nullptr);
    EXPECT_TRUE(notes->isMultiLine());
    EXPECT_GE(notes->iHeight(), 1000);
    // The engine refuses to write a table whose index it cannot keep: the form says so.
    ASSERT_FALSE(window->readOnlyReason().isEmpty());
    EXPECT_TRUE(window->windowTitle().startsWith(QStringLiteral("calls (read only) - plxform")))
        << window->windowTitle().toStdString();
    EXPECT_TRUE(
        window->statusText().contains(QStringLiteral("Read only: ") + window->readOnlyReason()))
        << window->statusText().toStdString();
}

TEST_F(RealTables, ANumericIDFieldIsTypedAndAMemoBetweenRowsPushesTheRestDown)
{
    const QString shop = copied(QStringLiteral("dbase_83.dbf"));
    REQUIRE_SAMPLE(shop);
    ASSERT_TRUE(openFile(shop));
    // ID is N(19): no "PLE..." text fits a number.
    EXPECT_EQ(window->navigator()->sIDfield(), QStringLiteral("ID"));
    EXPECT_FALSE(window->navigator()->bGenerateIDs());
    EXPECT_EQ(row("PRICE")->sMode(), QStringLiteral("Number"));
    EXPECT_EQ(row("PRICE")->MaxLength(), 13);
    mvText *desc = row("DESC");
    mvText *weight = row("WEIGHT");
    ASSERT_TRUE(desc && weight);
    EXPECT_GE(weight->topTwips(), desc->topTwips() + desc->iHeight());
}

TEST_F(RealTables, AMadeIDIsReadOnlyAndTheFocusGoesToTheFirstRowToType)
{
    Result<SamplePaths> sample = ensureSample(dir.filePath(QStringLiteral("sample")));
    ASSERT_TRUE(sample.isOk());
    ASSERT_TRUE(openFile(sample.value().foxProTable)); // the table alone: a generated form
    EXPECT_EQ(window->navigator()->sIDfield(), QStringLiteral("ID"));
    EXPECT_TRUE(window->navigator()->bGenerateIDs());
    EXPECT_EQ(sortNames().first(), QStringLiteral("ID"));
    EXPECT_TRUE(sortNames().contains(QStringLiteral("Opened")));
    window->show();
    window->findChild<QAction *>(QStringLiteral("mnuNew"))->trigger();
    EXPECT_TRUE(window->navigator()->sCurrentID().startsWith(QLatin1String("PLE")));
    EXPECT_TRUE(row("ID")->Locked());
    EXPECT_FALSE(row("NAME")->Locked());
    EXPECT_TRUE(row("NAME")->isAncestorOf(window->focusWidget()));
    // Cancelling the new record offers to delete it.
    env.prompter.expectMsgBox(QStringLiteral("Delete?"), QStringLiteral("Delete the New record?"),
                              MsgAnswer::Yes);
    window->findChild<QAction *>(QStringLiteral("mnuCancel"))->trigger();
    EXPECT_EQ(env.prompter.pending(), 0);
    EXPECT_TRUE(window->statusText().contains(QStringLiteral(" of 3,000")))
        << window->statusText().toStdString();
}

TEST_F(RealTables, ADosTableIsReadInTheCodePageChosenAndTheChoiceIsRemembered)
{
    const QString table = dir.filePath(QStringLiteral("DOSNAMES.DBF"));
    writeDosTable(table);
    EXPECT_EQ(codePageMark(table), 0);
    FormDescription form;
    form.file = table;
    form.codePage = 437;
    ASSERT_TRUE(open(form));
    EXPECT_EQ(row("NAME")->Value(), QStringLiteral("\u00A2\u03C3"));
    form.codePage = 850;
    ASSERT_TRUE(open(form));
    EXPECT_EQ(row("NAME")->Value(), QStringLiteral("\u00F8\u00D5"));

    // The File menu's choice: asked, shown, remembered for the next opening.
    auto *menu = window->findChild<QAction *>(QStringLiteral("mnuCodePage"));
    ASSERT_TRUE(menu->isEnabled());
    const QString question = QStringLiteral(
        "DOSNAMES.DBF does not say which code page its text is in.\r\nRead it in code page "
        "(437 DOS US, 850 DOS Western Europe, 852 DOS Central Europe, 866 DOS Cyrillic, 1252 "
        "Windows):");
    env.prompter.expectInputBox(QStringLiteral("Code Page"), question, QStringLiteral("437"));
    menu->trigger();
    EXPECT_EQ(row("NAME")->Value(), QStringLiteral("\u00A2\u03C3"));
    EXPECT_EQ(window->rememberedCodePage(table), 437);
    window = std::make_unique<HostForm>(env.services());
    form.codePage = 0; // nothing named: the remembered choice
    ASSERT_TRUE(open(form));
    EXPECT_EQ(row("NAME")->Value(), QStringLiteral("\u00A2\u03C3"));
    EXPECT_EQ(window->form().codePage, 437);

    // A bad answer changes nothing; a table that names its code page offers no choice.
    env.prompter.expectInputBox(QStringLiteral("Code Page"), question, QStringLiteral("DOS"));
    env.prompter.expectMsgBox(QStringLiteral("Code Page"),
                              QStringLiteral("\"DOS\" is not a code page number."), 48,
                              MsgAnswer::OK);
    window->findChild<QAction *>(QStringLiteral("mnuCodePage"))->trigger();
    EXPECT_EQ(window->rememberedCodePage(table), 437);
    const QString marked = copied(QStringLiteral("cp1251.dbf"));
    if (!marked.isEmpty()) {
        ASSERT_TRUE(openFile(marked));
        EXPECT_FALSE(window->findChild<QAction *>(QStringLiteral("mnuCodePage"))->isEnabled());
    }
}

TEST_F(RealTables, ACodePageAndCollationFromTheCommandLineWinOverTheDescription)
{
    const QString table = dir.filePath(QStringLiteral("DOSNAMES.DBF"));
    writeDosTable(table);
    const QString ini = dir.filePath(QStringLiteral("dos.ini"));
    ASSERT_NO_FATAL_FAILURE(test::writeBytes(
        ini, "[FORM]\r\nFile=" + table.toUtf8() + "\r\nCodePage=850\r\nCollate=general\r\n"));
    QStringList warnings;
    OpenRequest request;
    request.target = ini;
    Result<FormDescription> described = describeRequest(request, {}, &warnings);
    ASSERT_TRUE(described.isOk()) << described.status().message().toStdString();
    EXPECT_TRUE(warnings.isEmpty()) << warnings.join(QLatin1Char('\n')).toStdString();
    EXPECT_EQ(described.value().codePage, 850);
    EXPECT_EQ(described.value().collate, QStringLiteral("General"));
    request.codePage = 437;
    request.collate = QStringLiteral("Machine");
    described = describeRequest(request, {}, &warnings);
    ASSERT_TRUE(described.isOk());
    EXPECT_EQ(described.value().codePage, 437);
    EXPECT_EQ(described.value().collate, QStringLiteral("Machine"));
    ASSERT_TRUE(open(described.value()));
    EXPECT_EQ(row("NAME")->Value(), QStringLiteral("\u00A2\u03C3"));
    // Recent files keep the description that was opened, not its table.
    QString recent;
    readINI(QStringLiteral("RECENT"), QStringLiteral("File1"), settings(), recent, QString());
    EXPECT_EQ(recent, QFileInfo(ini).absoluteFilePath());
}

TEST_F(RealTables, ATableThatCannotBeOpenedIsToldInABoxWithTheReason)
{
    // A SQLite database that is not there is not made by asking for it.
    const QString missing = dir.filePath(QStringLiteral("nothere.sqlite"));
    OpenRequest request;
    request.sqlite = missing;
    QStringList warnings;
    Result<FormDescription> described = describeRequest(request, {}, &warnings);
    ASSERT_FALSE(described.isOk());
    EXPECT_EQ(described.status().code(), Status::Code::NotFound);
    const QString reason = described.status().message();
    EXPECT_EQ(reason, QStringLiteral("The SQLite database %1 was not found.").arg(missing));
    EXPECT_FALSE(QFile::exists(missing));
    env.prompter.expectMsgBox(kOpenFailureTitle, reason, 16, MsgAnswer::OK);
    reportOpenFailure(env.services(), reason);
    EXPECT_EQ(env.prompter.pending(), 0);

    FormDescription form;
    form.database = missing;
    form.table = QStringLiteral("T");
    QString error;
    EXPECT_FALSE(window->openForm(form, &warnings, &error));
    EXPECT_EQ(error, reason);
    EXPECT_FALSE(QFile::exists(missing));

    // A file that is no table: the engine's reason, after what could not be opened.
    const QString bogus = dir.filePath(QStringLiteral("NOTATABLE.DBF"));
    ASSERT_NO_FATAL_FAILURE(test::writeBytes(bogus, "this is a letter, not a table\n"));
    form = FormDescription();
    form.file = bogus;
    EXPECT_FALSE(window->openForm(form, &warnings, &error));
    EXPECT_TRUE(error.startsWith(QStringLiteral("The table %1 could not be opened: ").arg(bogus)))
        << error.toStdString();
    EXPECT_GT(error.size(), QStringLiteral("The table %1 could not be opened: ").arg(bogus).size());
    request = OpenRequest();
    request.target = dir.filePath(QStringLiteral("GONE.DBF"));
    EXPECT_EQ(describeRequest(request, {}, &warnings).status().message(),
              QStringLiteral("The table file %1 was not found.").arg(request.target));
}

TEST_F(RealTables, ADatabaseOfSeveralTablesAsksWhichOne)
{
    const QString path = dir.filePath(QStringLiteral("two.sqlite"));
    writeDatabase(path, { QStringLiteral("CLIENTS"), QStringLiteral("ORDERS") }, 1);
    QStringList offered;
    auto chooseSecond = [&](const QString &, const QStringList &tables) {
        offered = tables;
        return std::optional<QString>(tables.value(1));
    };
    OpenRequest request;
    request.sqlite = path;
    QStringList warnings;
    Result<FormDescription> described = describeRequest(request, chooseSecond, &warnings);
    ASSERT_TRUE(described.isOk()) << described.status().message().toStdString();
    EXPECT_EQ(offered, (QStringList{ QStringLiteral("CLIENTS"), QStringLiteral("ORDERS") }));
    EXPECT_EQ(described.value().table, QStringLiteral("ORDERS"));

    // Declined: nothing opens and nothing is to be told.
    described = describeRequest(
        request, [](const QString &, const QStringList &) { return std::optional<QString>(); },
        &warnings);
    ASSERT_FALSE(described.isOk());
    EXPECT_TRUE(wasDeclined(described.status()));
    // A named table is not asked for; one the database lacks is an error.
    request.table = QStringLiteral("clients");
    described = describeRequest(request, {}, &warnings);
    ASSERT_TRUE(described.isOk());
    EXPECT_EQ(described.value().table, QStringLiteral("CLIENTS"));
    request.table = QStringLiteral("INVOICES");
    EXPECT_EQ(describeRequest(request, {}, &warnings).status().message(),
              QStringLiteral("%1 has no table INVOICES.").arg(path));

    // The list itself.
    TableChooser chooser(path, offered);
    auto *list = chooser.findChild<QListWidget *>(QStringLiteral("lstTables"));
    ASSERT_EQ(list->count(), 2);
    EXPECT_EQ(chooser.chosen(), QStringLiteral("CLIENTS"));
    list->setCurrentRow(1);
    EXPECT_EQ(chooser.chosen(), QStringLiteral("ORDERS"));
}

TEST_F(RealTables, TheStatusBarCountsOneRecordInTheSingular)
{
    const QString path = dir.filePath(QStringLiteral("one.sqlite"));
    writeDatabase(path, { QStringLiteral("T") }, 1);
    FormDescription form;
    form.database = path;
    form.table = QStringLiteral("T");
    ASSERT_TRUE(open(form));
    EXPECT_TRUE(window->statusText().contains(QStringLiteral(" | 1 record | ")))
        << window->statusText().toStdString();
    writeDatabase(dir.filePath(QStringLiteral("two.sqlite")), { QStringLiteral("T") }, 2);
    form.database = dir.filePath(QStringLiteral("two.sqlite"));
    ASSERT_TRUE(open(form));
    EXPECT_TRUE(window->statusText().contains(QStringLiteral(" | Record 1 of 2 | ")))
        << window->statusText().toStdString();
}

// The first record of the order is a child record (its ID is its parent's and seven more
// characters). Opening on it is no move of the user's: a new record of this top-level
// form still gets a top-level ID.
TEST_F(RealTables, OpeningOnAChildRecordKeepsTheFormsParentID)
{
    const QString path = dir.filePath(QStringLiteral("family.sqlite"));
    sqlite3 *db = nullptr;
    ASSERT_EQ(sqlite3_open(path.toUtf8().constData(), &db), SQLITE_OK);
    ASSERT_EQ(sqlite3_exec(db,
                           "CREATE TABLE T (ID TEXT, NAME TEXT);"
                           "INSERT INTO T VALUES ('PLE0000001XYZ0001', 'Aaron');"
                           "INSERT INTO T VALUES ('PLE0000002', 'Zoe');",
                           nullptr, nullptr, nullptr),
              SQLITE_OK);
    sqlite3_close(db);
    FormDescription form;
    form.database = path;
    form.table = QStringLiteral("T");
    form.idField = QStringLiteral("ID");
    ASSERT_TRUE(open(form));
    ASSERT_EQ(window->navigator()->sCurrentID(), QStringLiteral("PLE0000001XYZ0001"));
    EXPECT_EQ(window->navigator()->sParentID(), QStringLiteral("PLE"));
    window->navigator()->ClickButton(QStringLiteral("NEW"));
    const QString made = window->navigator()->sCurrentID().trimmed();
    EXPECT_EQ(made.size(), 10) << made.toStdString();
    EXPECT_TRUE(made.startsWith(QLatin1String("PLE000000"))) << made.toStdString();
}

class SampleWindow : public RealTables
{
protected:
    void SetUp() override
    {
        RealTables::SetUp();
        SamplePaths paths;
        FormDescription form;
        ASSERT_NO_FATAL_FAILURE(
            readSample(dir.filePath(QStringLiteral("sample")), "FoxPro", &paths, &form));
        ASSERT_TRUE(open(form));
        window->show();
        QApplication::processEvents();
    }
    void menu(const char *name) { triggerMenu(*window, name); }
    QString position() { return window->statusText().section(QStringLiteral(" | "), 1, 1); }
    const QString closeTitle = QStringLiteral("Close plxform");
    const QString closeQuestion = QStringLiteral(
        "The record is still being edited.\r\n\r\nYes: save it and close\r\nNo: discard the "
        "changes and close\r\nCancel: go on editing");
};

TEST_F(SampleWindow, ASavedNewRecordIsCountedWhereTheOrderPutsIt)
{
    menu("mnuNew");
    row("NAME")->setValue(QStringLiteral("Aardvark Care Center"));
    row("CITY")->setValue(QStringLiteral("Camden"));
    menu("mnuSave");
    // Sorted by name, it is the first record, not the last one it was appended as.
    EXPECT_EQ(position(), QStringLiteral("Record 1 of 3,001"));
    EXPECT_EQ(row("NAME")->Value(), QStringLiteral("Aardvark Care Center"));
}

TEST_F(SampleWindow, FirstLastAndGoToRecordMoveAsTheScrollBarWould)
{
    QStringList shownIDs;
    QObject::connect(window->navigator(), &mvPLXRecs::IDChange,
                     [&](const QString &id) { shownIDs << id; });
    menu("mnuLast");
    EXPECT_EQ(position(), QStringLiteral("Record 3,000 of 3,000"));
    ASSERT_EQ(shownIDs.size(), 1); // the host hears of the move like any other
    EXPECT_EQ(shownIDs.last(), window->navigator()->sCurrentID());
    menu("mnuFirst");
    EXPECT_EQ(position(), QStringLiteral("Record 1 of 3,000"));
    env.prompter.expectInputBox(QStringLiteral("Go to Record"),
                                QStringLiteral("Record number (1 to 3,000):"),
                                QStringLiteral("1,234"));
    menu("mnuGoTo");
    EXPECT_EQ(position(), QStringLiteral("Record 1,234 of 3,000"));
    env.prompter.expectInputBox(QStringLiteral("Go to Record"),
                                QStringLiteral("Record number (1 to 3,000):"),
                                QStringLiteral("3001"));
    env.prompter.expectMsgBox(
        QStringLiteral("Go to Record"),
        QStringLiteral("There is no record number 3001. The records are numbered 1 to 3,000."), 48,
        MsgAnswer::OK);
    menu("mnuGoTo");
    EXPECT_EQ(position(), QStringLiteral("Record 1,234 of 3,000"));
    // While a record is edited the records stay where they are.
    menu("mnuEdit");
    menu("mnuFirst");
    EXPECT_EQ(position(), QStringLiteral("Record 1,234 of 3,000"));
    menu("mnuCancel");
}

TEST_F(SampleWindow, ClosingDuringAnEditAsksToSaveDiscardOrStay)
{
    menu("mnuEdit");
    const QString before = row("NAME")->Value();
    row("NAME")->setValue(QStringLiteral("Renamed Home"));
    // Cancel: the form stays, still editing.
    env.prompter.expectMsgBox(closeTitle, closeQuestion, 3 | 32, MsgAnswer::Cancel);
    EXPECT_FALSE(window->close());
    EXPECT_TRUE(window->isVisible());
    EXPECT_TRUE(window->navigator()->bButtonEnable(QStringLiteral("SAVE")));
    // No: the change is dropped and the form closes.
    env.prompter.expectMsgBox(closeTitle, closeQuestion, 3 | 32, MsgAnswer::No);
    EXPECT_TRUE(window->close());
    EXPECT_EQ(row("NAME")->Value(), before);
    // Yes: saved, then closed.
    window->show();
    menu("mnuEdit");
    row("NAME")->setValue(QStringLiteral("Renamed Home"));
    env.prompter.expectMsgBox(closeTitle, closeQuestion, 3 | 32, MsgAnswer::Yes);
    EXPECT_TRUE(window->close());
    EXPECT_EQ(env.prompter.pending(), 0);
    auto rs = window->navigator()->rs();
    ASSERT_TRUE(rs);
    EXPECT_EQ(rs->value(QStringLiteral("NAME")).value().toString().trimmed(),
              QStringLiteral("Renamed Home"));
}

TEST_F(SampleWindow, TheToolbarsCloseButtonClosesTheForm)
{
    auto *toolbar = window->navigator()->findChild<QToolBar *>(QStringLiteral("tbrBtm"));
    QAction *close = nullptr;
    for (QAction *a : toolbar->actions())
        if (a->objectName() == QLatin1String("CLOSE"))
            close = a;
    ASSERT_TRUE(close);
    auto *button = qobject_cast<QToolButton *>(toolbar->widgetForAction(close));
    ASSERT_TRUE(button);
    QTest::mouseClick(button, Qt::LeftButton);
    EXPECT_FALSE(window->isVisible());
}

TEST_F(SampleWindow, AConditionsMistakeIsPlacedInTheConditionAsTyped)
{
    FilterEditor editor(window->filterFile(), window->navigator()->database(),
                        window->form().table);
    EXPECT_EQ(editor.checkCondition(QStringLiteral("COLOUR = 'red'")),
              QStringLiteral("unknown field 'COLOUR' at position 1 of the condition"));
    const QString later = editor.checkCondition(QStringLiteral("BEDS > 3 And COLOUR = 'red'"));
    EXPECT_TRUE(later.contains(QStringLiteral("at position 14 of the condition")))
        << later.toStdString();
}

TEST_F(SampleWindow, TheWindowAndItsDialogsFitTheScreen)
{
    const QRect area = window->screen()->availableGeometry();
    EXPECT_LE(window->frameGeometry().width(), area.width());
    EXPECT_TRUE(area.contains(window->frameGeometry().topLeft()));
    FilterEditor editor(window->filterFile(), window->navigator()->database(), window->form().table,
                        window.get());
    EXPECT_LE(editor.width(), area.width());
    EXPECT_LE(editor.height(), area.height());
}

} // namespace
} // namespace plx::form
