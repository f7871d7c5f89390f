// navigator/tests/navigator_commands_test.cpp: the record commands end to end through the
// toolbar, with a real field stack, on SQLite and on a FoxPro table file; the table on
// disk is read back through a database opened afresh.
#include "navigator/tests/navigatorfixture.h"

#include "fields/mvname.h"
#include "services/recordsource/recordsource.h"
#include "services/texthelpers.h"

#include <QAction>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QGroupBox>
#include <QPushButton>
#include <QScrollBar>
#include <QSysInfo>
#include <QTest>
#include <QToolBar>

namespace plx::test {
namespace {

// A host form that validates saves.
class HostForm : public QObject
{
    Q_OBJECT

public:
    bool allow = true;
    QList<qint16> asked;
    Q_INVOKABLE bool OKtoSave(qint16 level)
    {
        asked << level;
        return allow;
    }
};

class Commands : public NavigatorTest
{
protected:
    void SetUp() override
    {
        NavigatorTest::SetUp();
        fields = std::make_unique<mvName>();
        fields->setObjectName(QStringLiteral("mvNameMain"));
        fields->setNUbound(2);
        const char *names[] = { "NAME", "CITY", "ID" };
        for (qint16 i = 0; i <= 2; ++i) {
            fields->setSCaption(i, QString::fromLatin1(names[i]));
            fields->setSFieldName(i, QString::fromLatin1(names[i]));
        }
        nav->setSUser(QStringLiteral("ANN"));
        nav->setFParent(&host);
        nav->setMyLevel(2);
    }
    void TearDown() override
    {
        fields.reset();
        NavigatorTest::TearDown();
    }

    // The host's part: field controls registered, and shown on every IDChange.
    void configureWithFields()
    {
        configure();
        nav->setCMervaneControls({ fields.get() });
        QObject::connect(nav.get(), &mvPLXRecs::IDChange, fields.get(),
                         [this] { fields->UpdateDBF(); });
        fields->setLocked(true);
        fields->UpdateDBF();
    }

    // One record of T read from the files through a database opened now.
    QMap<QString, QString> onDisk(const QString &id)
    {
        Result<std::unique_ptr<Database>> db = backEnd->open(dir.path());
        EXPECT_TRUE(db.isOk());
        if (!db.isOk())
            return {};
        Result<std::unique_ptr<RecordSource>> rs =
            db.value()->OpenRecordset(QStringLiteral("SELECT * from T WHERE ID = ") + strToASC(id));
        EXPECT_TRUE(rs.isOk());
        QMap<QString, QString> row;
        if (!rs.isOk() || rs.value()->isEOF())
            return row;
        for (const FieldInfo &f : rs.value()->fieldInfos())
            row[f.name] = rs.value()->value(f.name).value().toString().trimmed();
        return row;
    }

    qint32 countOnDisk()
    {
        Result<std::unique_ptr<Database>> db = backEnd->open(dir.path());
        Result<std::unique_ptr<RecordSource>> rs =
            db.value()->OpenRecordset(QStringLiteral("SELECT * from T"));
        (void)rs.value()->MoveLast();
        return rs.value()->RecordCount();
    }

    void find(const QString &text)
    {
        auto *box = nav->findChild<QComboBox *>(QStringLiteral("cboFind"));
        box->setEditText(text);
        QTest::keyClick(box, Qt::Key_Return);
        events->clear();
    }

    QString stamp() const { return QStringLiteral("01/05/2024 09:30:07 ANN"); }

    HostForm host;
    std::unique_ptr<mvName> fields;
};

TEST_P(Commands, ATypicalEditEndToEnd)
{
    configureWithFields();
    find(QStringLiteral("SMI"));
    EXPECT_EQ(fields->sValue(1), QStringLiteral("ATLANTA"));
    EXPECT_TRUE(fields->Locked());

    QStringList lockedAtEvent;
    QObject::connect(nav.get(), &mvPLXRecs::RecEditStart,
                     [&] { lockedAtEvent << QString::number(fields->Locked()); });
    QObject::connect(nav.get(), &mvPLXRecs::RecEditEnd,
                     [&] { lockedAtEvent << QString::number(fields->Locked()); });
    nav->ClickButton(QStringLiteral("EDIT"));
    EXPECT_EQ(events->texts(),
              QStringList{ QStringLiteral("RecEditStart(PLE0000007) [ButtonClick: edit] -") });
    EXPECT_FALSE(fields->Locked());
    EXPECT_FALSE(nav->bButtonEnable(QStringLiteral("EDIT")));
    EXPECT_FALSE(nav->bButtonEnable(QStringLiteral("NEW")));
    EXPECT_TRUE(nav->bButtonEnable(QStringLiteral("SAVE")));
    EXPECT_TRUE(nav->bButtonEnable(QStringLiteral("CANCEL")));
    EXPECT_FALSE(nav->findChild<QComboBox *>(QStringLiteral("cboSort"))->isEnabled());
    EXPECT_FALSE(nav->findChild<QComboBox *>(QStringLiteral("cboFind"))->isEnabled());
    // No stepping away from the record being edited.
    EXPECT_FALSE(nav->findChild<QWidget *>(QStringLiteral("cmdRecNext"))->isEnabled());
    EXPECT_FALSE(nav->findChild<QWidget *>(QStringLiteral("HScroll1"))->isEnabled());

    events->clear();
    fields->setSValue(1, QStringLiteral("ATHENS"));
    nav->ClickButton(QStringLiteral("SAVE"));
    EXPECT_EQ(host.asked, QList<qint16>{ 2 });
    EXPECT_EQ(
        events->texts(),
        (QStringList{ QStringLiteral("RecSave(PLE0000007) [ButtonClick: Save (RecSave)] -"),
                      QStringLiteral("RecEditEnd(PLE0000007) [ButtonClick: Save (EditEnd)] -") }));
    EXPECT_EQ(lockedAtEvent, (QStringList{ QStringLiteral("0"), QStringLiteral("1") }));
    EXPECT_TRUE(nav->bButtonEnable(QStringLiteral("EDIT")));
    EXPECT_FALSE(nav->bButtonEnable(QStringLiteral("SAVE")));
    EXPECT_TRUE(nav->findChild<QComboBox *>(QStringLiteral("cboSort"))->isEnabled());
    EXPECT_TRUE(nav->findChild<QWidget *>(QStringLiteral("cmdRecNext"))->isEnabled());
    const QMap<QString, QString> saved = onDisk(QStringLiteral("PLE0000007"));
    EXPECT_EQ(saved.value(QStringLiteral("CITY")), QStringLiteral("ATHENS"));
    EXPECT_EQ(saved.value(QStringLiteral("NAME")), QStringLiteral("SMITH"));
    EXPECT_EQ(saved.value(QStringLiteral("PLLASTREV")), stamp());
    // The navigator re-read the record: still current, showing what was saved.
    EXPECT_EQ(nav->sCurrentID(), QStringLiteral("PLE0000007"));
    EXPECT_EQ(nav->rs()->value(QStringLiteral("CITY")).value().toString().trimmed(),
              QStringLiteral("ATHENS"));
    EXPECT_EQ(env.prompter.shown().size(), 0);
}

TEST_P(Commands, SaveRefusedByTheParentOrWithoutParentSaysSo)
{
    configureWithFields();
    find(QStringLiteral("JONES"));
    nav->ClickButton(QStringLiteral("EDIT"));
    host.allow = false;
    env.prompter.expectMsgBox(QStringLiteral("Record Not Saved"),
                              QStringLiteral("'Facilities' record has NOT been saved."), 16,
                              MsgAnswer::OK);
    events->clear();
    nav->ClickButton(QStringLiteral("SAVE"));
    EXPECT_TRUE(events->events().isEmpty());
    EXPECT_TRUE(nav->bButtonEnable(QStringLiteral("SAVE"))); // still editing

    nav->setFParent(nullptr);
    env.prompter.expectMsgBox(
        QStringLiteral("Saving without Validation"),
        QStringLiteral(
            "Parent record for 'Facilities' has not been set, so validation cannot be performed."),
        64, MsgAnswer::OK);
    nav->ClickButton(QStringLiteral("SAVE"));
    EXPECT_EQ(events->names(),
              (QStringList{ QStringLiteral("RecSave"), QStringLiteral("RecEditEnd") }));
    EXPECT_EQ(env.prompter.pending(), 0);
}

TEST_P(Commands, NewCreatesTheRecordFirstAndCancelOffersToDeleteIt)
{
    configureWithFields();
    nav->findChild<QScrollBar *>(QStringLiteral("HScroll1"))->setValue(3); // JONES
    events->clear();
    nav->ClickButton(QStringLiteral("New"));
    EXPECT_EQ(events->texts(),
              (QStringList{ QStringLiteral("RecNew() [ButtonClick: New (RecNew)] initiator"),
                            QStringLiteral("RecEditStart(PLE0000011) [ButtonClick: edit] -") }));
    // On disk before any typing, with its ID and both stamps.
    QMap<QString, QString> created = onDisk(QStringLiteral("PLE0000011"));
    EXPECT_EQ(created.value(QStringLiteral("PLSTART")), stamp());
    EXPECT_EQ(created.value(QStringLiteral("PLLASTREV")), stamp());
    EXPECT_EQ(nav->findChild<QGroupBox *>(QStringLiteral("fraControls"))->title(),
              QStringLiteral("11 records"));

    events->clear();
    env.prompter.expectMsgBox(QStringLiteral("Delete?"), QStringLiteral("Delete the New record?"),
                              260, MsgAnswer::Yes);
    nav->ClickButton(QStringLiteral("CANCEL"));
    EXPECT_EQ(events->texts(),
              (QStringList{
                  QStringLiteral("RecCancel(PLE0000011) [ButtonClick: Cancel (RecCancel)] -"),
                  QStringLiteral("RecEditEnd(PLE0000011) [ButtonClick: Cancel (RecEditEnd)] -"),
                  QStringLiteral("RecDelete(PLE0000011) [ButtonClick: Cancel (RecDelete)] -") }));
    EXPECT_TRUE(onDisk(QStringLiteral("PLE0000011")).isEmpty());
    EXPECT_EQ(countOnDisk(), 10);
    EXPECT_EQ(nav->sCurrentID(), QStringLiteral("PLE0000001")); // back where NEW was pressed
    EXPECT_TRUE(nav->bButtonEnable(QStringLiteral("NEW")));
}

TEST_P(Commands, ANewRecordKeptOnCancelIsStillAddedWhenSaved)
{
    configureWithFields();
    nav->ClickButton(QStringLiteral("NEW"));
    fields->setSValue(0, QStringLiteral("NEWCO"));
    env.prompter.expectMsgBox(QStringLiteral("Delete?"), QStringLiteral("Delete the New record?"),
                              260, MsgAnswer::No);
    nav->ClickButton(QStringLiteral("CANCEL"));
    EXPECT_EQ(onDisk(QStringLiteral("PLE0000011")).value(QStringLiteral("NAME")),
              QString()); // cancelled typing
    events->clear();
    nav->ClickButton(QStringLiteral("EDIT"));
    fields->setSValue(0, QStringLiteral("NEWCO"));
    nav->ClickButton(QStringLiteral("SAVE"));
    EXPECT_EQ(
        events->texts(),
        (QStringList{ QStringLiteral("RecEditStart(PLE0000011) [ButtonClick: edit] -"),
                      QStringLiteral("RecSave(PLE0000011) [ButtonClick: Save (RecSave)] -"),
                      QStringLiteral("RecEditEnd(PLE0000011) [ButtonClick: Save (EditEnd)] -"),
                      QStringLiteral("RecAdded(PLE0000011) [ButtonClick: Save (RecAdded)] -"),
                      QStringLiteral("IDChange(PLE0000011) [ButtonClick: Save (IDChange)] -") }));
    EXPECT_EQ(onDisk(QStringLiteral("PLE0000011")).value(QStringLiteral("NAME")),
              QStringLiteral("NEWCO"));
    // Re-read in its place in the name order.
    EXPECT_EQ(nav->sCurrentID(), QStringLiteral("PLE0000011"));
    EXPECT_EQ(nav->rs()->AbsolutePosition(), 4);
}

TEST_P(Commands, CopyCopiesEveryFieldUnderANewIDAndStamps)
{
    configureWithFields();
    find(QStringLiteral("O'B"));
    nav->ClickButton(QStringLiteral("COPY"));
    EXPECT_EQ(
        events->texts(),
        (QStringList{ QStringLiteral("RecCopy(PLE0000011) [ButtonClick: Copy (RecCopy)] initiator"),
                      QStringLiteral("RecEditStart(PLE0000011) [ButtonClick: edit] -") }));
    const QMap<QString, QString> copy = onDisk(QStringLiteral("PLE0000011"));
    EXPECT_EQ(copy.value(QStringLiteral("NAME")), QStringLiteral("O'BRIEN"));
    EXPECT_EQ(copy.value(QStringLiteral("CITY")), QStringLiteral("CHICAGO"));
    EXPECT_EQ(copy.value(QStringLiteral("PLSTART")), stamp());
    EXPECT_EQ(onDisk(QStringLiteral("PLE0000003")).value(QStringLiteral("NAME")),
              QStringLiteral("O'BRIEN"));
}

TEST_P(Commands, DeleteAsksTwiceAndOnlyYesTwiceDeletes)
{
    configureWithFields();
    find(QStringLiteral("SNOW"));
    const QString first = QStringLiteral("Are you sure you want to delete this record?\r\nSNOW");
    const QString second = QStringLiteral("Are you sure you want to delete this record?");
    env.prompter.expectMsgBox(QStringLiteral("Delete Record?"), first, 260, MsgAnswer::Yes);
    env.prompter.expectMsgBox(QStringLiteral("Are you sure?"), second, 260, MsgAnswer::No);
    nav->ClickButton(QStringLiteral("DELETE"));
    env.prompter.expectMsgBox(QStringLiteral("Delete Record?"), first, 260, MsgAnswer::No);
    nav->ClickButton(QStringLiteral("DELETE"));
    EXPECT_TRUE(events->events().isEmpty());
    EXPECT_EQ(countOnDisk(), 10);

    env.prompter.expectMsgBox(QStringLiteral("Delete Record?"), first, 260, MsgAnswer::Yes);
    env.prompter.expectMsgBox(QStringLiteral("Are you sure?"), second, 260, MsgAnswer::Yes);
    nav->ClickButton(QStringLiteral("DELETE"));
    EXPECT_EQ(events->texts(),
              QStringList{ QStringLiteral(
                  "RecDelete(PLE0000004) [ButtonClick: Delete (RecDelete)] initiator") });
    EXPECT_EQ(countOnDisk(), 9);
    EXPECT_TRUE(onDisk(QStringLiteral("PLE0000004")).isEmpty());
    // The last record by name went: the one before it is current now.
    EXPECT_EQ(nav->sCurrentID(), QStringLiteral("PLE0000005"));
    EXPECT_EQ(nav->findChild<QScrollBar *>(QStringLiteral("HScroll1"))->value(), 8);
}

// The ID row typed over before the first SAVE: the saved record stays current under its
// new ID, so the next EDIT and SAVE change that record and no other.
TEST_P(Commands, ARecordSavedUnderATypedIDStaysCurrent)
{
    configureWithFields();
    nav->ClickButton(QStringLiteral("NEW"));
    fields->setSValue(0, QStringLiteral("NEWCO"));
    fields->setSValue(2, QStringLiteral("PLX0000123"));
    events->clear();
    nav->ClickButton(QStringLiteral("SAVE"));
    EXPECT_EQ(events->names(),
              (QStringList{ QStringLiteral("RecSave"), QStringLiteral("RecEditEnd"),
                            QStringLiteral("RecAdded"), QStringLiteral("IDChange") }));
    EXPECT_EQ(events->events().last().argument, QStringLiteral("PLX0000123"));
    EXPECT_EQ(nav->sCurrentID(), QStringLiteral("PLX0000123"));
    EXPECT_EQ(fields->sValue(2), QStringLiteral("PLX0000123"));

    nav->ClickButton(QStringLiteral("EDIT"));
    fields->setSValue(1, QStringLiteral("TOPEKA"));
    nav->ClickButton(QStringLiteral("SAVE"));
    EXPECT_EQ(onDisk(QStringLiteral("PLX0000123")).value(QStringLiteral("CITY")),
              QStringLiteral("TOPEKA"));
    EXPECT_EQ(onDisk(QStringLiteral("PLE0000006")).value(QStringLiteral("CITY")),
              QStringLiteral("GARY")); // the first record by name is untouched
    EXPECT_TRUE(onDisk(QStringLiteral("PLE0000011")).isEmpty());
    EXPECT_EQ(countOnDisk(), 11);
    EXPECT_EQ(env.prompter.pending(), 0);
}

TEST_P(Commands, AnIDAnotherRecordHoldsIsRefusedAndTheEditGoesOn)
{
    configureWithFields();
    find(QStringLiteral("JONES"));
    nav->ClickButton(QStringLiteral("EDIT"));
    fields->setSValue(1, QStringLiteral("WACO"));
    fields->setSValue(2, QStringLiteral("PLE0000006")); // ADAMS's
    env.prompter.expectMsgBox(
        QStringLiteral("Record Not Saved"),
        QStringLiteral("The ID PLE0000006 is already used by another record: ADAMS\r\n\r\n"
                       "'Facilities' record has NOT been saved."),
        16, MsgAnswer::OK);
    events->clear();
    nav->ClickButton(QStringLiteral("SAVE"));
    EXPECT_TRUE(events->events().isEmpty());
    EXPECT_TRUE(nav->bButtonEnable(QStringLiteral("SAVE"))); // still editing
    EXPECT_EQ(fields->sValue(1), QStringLiteral("WACO")); // nothing typed is lost
    EXPECT_EQ(onDisk(QStringLiteral("PLE0000001")).value(QStringLiteral("CITY")),
              QStringLiteral("AUSTIN"));

    // A free ID is taken; the record keeps what was typed.
    fields->setSValue(2, QStringLiteral("PLE0000099"));
    nav->ClickButton(QStringLiteral("SAVE"));
    EXPECT_FALSE(nav->bButtonEnable(QStringLiteral("SAVE")));
    EXPECT_EQ(onDisk(QStringLiteral("PLE0000099")).value(QStringLiteral("CITY")),
              QStringLiteral("WACO"));
    EXPECT_TRUE(onDisk(QStringLiteral("PLE0000001")).isEmpty());
    EXPECT_EQ(onDisk(QStringLiteral("PLE0000006")).value(QStringLiteral("NAME")),
              QStringLiteral("ADAMS"));
    EXPECT_EQ(env.prompter.pending(), 0);
}

TEST_P(Commands, WithoutGeneratedIDsTheUserTypesTheKey)
{
    configureWithFields();
    nav->setBGenerateIDs(false);
    nav->ClickButton(QStringLiteral("NEW"));
    EXPECT_EQ(fields->sValue(2), QString());
    EXPECT_FALSE(QFile::exists(nav->keyFilePath())); // no key file for typed keys
    fields->setSValue(0, QStringLiteral("KEYED"));
    fields->setSValue(2, QStringLiteral("K1"));
    nav->ClickButton(QStringLiteral("SAVE"));
    EXPECT_EQ(onDisk(QStringLiteral("K1")).value(QStringLiteral("NAME")), QStringLiteral("KEYED"));
    EXPECT_EQ(nav->sCurrentID(), QStringLiteral("K1"));
    EXPECT_EQ(env.prompter.pending(), 0);
}

TEST_P(Commands, NoCurrentRecordAndBlankIDAreRefusedWithTheirBoxes)
{
    configureWithFields();
    nav->SetSQLFilterAndWhere(QStringLiteral("none"), QStringLiteral("WHERE T.CITY = 'NOWHERE'"),
                              true);
    env.prompter.expectMsgBox(
        QStringLiteral("No Current Record"),
        QStringLiteral("This Edit function is only valid for an existing record\r\n\r\n"
                       "You can create a record with the 'New' button\r\n"
                       "or you can use the pulldown list to find an existing record."),
        64, MsgAnswer::OK);
    nav->ClickButton(QStringLiteral("edit"));
    EXPECT_TRUE(nav->bButtonEnable(QStringLiteral("NEW")));

    nav->SetSQLFilterAndWhere(QString(), QString(), true);
    find(QStringLiteral("ADAMS"));
    nav->ClickButton(QStringLiteral("EDIT"));
    fields->setSValue(2, QString()); // the ID row emptied
    env.prompter.expectMsgBox(QStringLiteral("Blank ID"),
                              QStringLiteral("The ID field for this record is blank.\r\n\r\n"
                                             "Blank ID records cannot be saved.\r\n"
                                             "Parent ID is: PLE (080076069)\r\n\r\n"
                                             "'Facilities' record has NOT been saved."),
                              16, MsgAnswer::OK);
    fields->EditUpdate();
    QAction *save = nullptr;
    for (QAction *a : nav->findChild<QToolBar *>(QStringLiteral("tbrBtm"))->actions())
        if (a->objectName() == QLatin1String("SAVE"))
            save = a;
    ASSERT_NE(save, nullptr);
    events->clear();
    save->trigger();
    EXPECT_TRUE(events->events().isEmpty());
    EXPECT_EQ(env.prompter.pending(), 0);
    QFile log(dir.filePath(QStringLiteral("inst/PLXLogFile.TXT")));
    ASSERT_TRUE(log.open(QIODevice::ReadOnly));
    EXPECT_EQ(QString::fromLatin1(log.readAll())
                  .count(QStringLiteral("Blank ID records cannot be saved.")),
              1);
}

TEST_P(Commands, ASecondNavigatorOnTheRecordIsDeniedAndToldWhoHoldsIt)
{
    configureWithFields();
    find(QStringLiteral("BROWN"));
    nav->ClickButton(QStringLiteral("EDIT"));

    RecordingPrompter boxes;
    FakeClock clock;
    Services otherServices{ &boxes, &clock, nullptr };
    mvPLXRecs other;
    other.setServices(&otherServices);
    other.setSIDfield(QStringLiteral("ID"));
    other.AddSort(QStringLiteral("ID"), QStringLiteral("ID"));
    if (isFoxPro()) {
        other.setSDBFPathFileName(tablePath());
    } else {
        Result<std::unique_ptr<Database>> db = backEnd->open(dir.path());
        std::shared_ptr<Database> shared(std::move(db.value()));
        other.setDatabase(shared, QStringLiteral("T"), tablePath());
        other.setRs(std::shared_ptr<RecordSource>(
            shared->OpenRecordset(QStringLiteral("SELECT * from T")).value().release()));
    }
    ASSERT_EQ(other.InitControl(), QString());
    other.SetFindFromID(QStringLiteral("PLE0000008"));
    other.ClickButton(QStringLiteral("EDIT"));
    ASSERT_EQ(boxes.titles, QStringList{ QStringLiteral("Access Denied") });
    const QString text = boxes.texts.first();
    EXPECT_TRUE(text.startsWith(
        QStringLiteral("This record is locked.  \r\nPlease try again later\r\n\r\n")))
        << text.toStdString();
    EXPECT_TRUE(text.endsWith(QStringLiteral(" since 01/05/2024 09:30:07"))) << text.toStdString();
    EXPECT_TRUE(text.contains(QStringLiteral("\r\nHeld by ANN on ") + QSysInfo::machineHostName()))
        << text.toStdString();
    EXPECT_TRUE(other.bButtonEnable(QStringLiteral("EDIT"))); // nothing changed

    // Once the first navigator saves, the record is free again.
    nav->ClickButton(QStringLiteral("SAVE"));
    other.ClickButton(QStringLiteral("EDIT"));
    EXPECT_EQ(boxes.titles.size(), 1);
    EXPECT_TRUE(other.bButtonEnable(QStringLiteral("SAVE")));
}

// A row that cannot store what was typed says so through the host's prompter (the rows
// were given none: they use the navigator's), shows what the record kept, and the rest
// of the record is saved once.
TEST_P(Commands, ARefusedValueIsToldThroughTheHostAndNotLeftShowing)
{
    configureWithFields();
    find(QStringLiteral("JONES"));
    nav->ClickButton(QStringLiteral("EDIT"));
    fields->setSValue(0, QString(31, QLatin1Char('W'))); // NAME holds 30
    fields->setSValue(1, QStringLiteral("WACO"));
    env.prompter.expectMsgBox(QStringLiteral("Value Not Saved"), QString(), 48, MsgAnswer::OK);
    nav->ClickButton(QStringLiteral("SAVE"));
    ASSERT_EQ(env.prompter.shown().size(), 1);
    EXPECT_TRUE(env.prompter.shown().first().text.startsWith(QStringLiteral("NAME ")))
        << env.prompter.shown().first().text.toStdString();
    EXPECT_FALSE(nav->bButtonEnable(QStringLiteral("SAVE")));
    EXPECT_EQ(fields->sValue(0), QStringLiteral("JONES"));
    EXPECT_EQ(onDisk(QStringLiteral("PLE0000001")).value(QStringLiteral("NAME")),
              QStringLiteral("JONES"));
    EXPECT_EQ(onDisk(QStringLiteral("PLE0000001")).value(QStringLiteral("CITY")),
              QStringLiteral("WACO"));
}

// A key file that cannot be used is named in its own box; no second box blames a blank ID,
// and nothing is created.
TEST_P(Commands, AnUnusableKeyFileIsToldOnceAndNothingIsCreated)
{
    if (isServer())
        GTEST_SKIP() << "the server keeps its keys in plx.idkeys, not in a key file";
    configureWithFields();
    ASSERT_EQ(nav->keyFilePath(), dir.filePath(QStringLiteral("T_IDLast7.TXT")));
    ASSERT_TRUE(QDir().mkdir(nav->keyFilePath()));
    env.prompter.expectMsgBox(QStringLiteral("Record ID Error"), QString(), 16, MsgAnswer::OK);
    nav->ClickButton(QStringLiteral("NEW"));
    EXPECT_TRUE(env.prompter.shown().last().text.startsWith(
        QStringLiteral("The record ID key file for Facilities cannot be used:\r\n")));
    EXPECT_EQ(countOnDisk(), 10);
    EXPECT_TRUE(nav->bButtonEnable(QStringLiteral("NEW")));
    EXPECT_EQ(env.prompter.pending(), 0);
}

// A host that attaches a SQLite database without naming its file gives the navigator no
// folder for side files: the edit goes on without the holder's note, and no folder without
// a name is asked of Qt (which would warn about it).
TEST_P(Commands, ASqliteDatabaseAttachedWithoutItsPathEditsWithoutWarnings)
{
    if (GetParam() != "SQLite")
        GTEST_SKIP() << "only a SQLite database is a file the navigator may not be told";
    configureWithFields();
    nav->setDatabase(nav->database(), QStringLiteral("T"));
    const QString id = nav->sCurrentID();
    static QStringList warnings;
    warnings.clear();
    const QtMessageHandler previous = qInstallMessageHandler(
        [](QtMsgType, const QMessageLogContext &, const QString &text) { warnings << text; });
    nav->ClickButton(QStringLiteral("EDIT"));
    // The side files go beside the database: the note naming who holds the record.
    EXPECT_FALSE(QDir(dir.filePath(QStringLiteral("T_Holders"))).isEmpty(QDir::Files));
    fields->setSValue(1, QStringLiteral("WACO"));
    nav->ClickButton(QStringLiteral("SAVE"));
    qInstallMessageHandler(previous);
    EXPECT_EQ(warnings, QStringList());
    EXPECT_EQ(nav->keyFilePath(), dir.filePath(QStringLiteral("T_IDLast7.TXT")));
    EXPECT_EQ(onDisk(id).value(QStringLiteral("CITY")), QStringLiteral("WACO"));
}

INSTANTIATE_TEST_SUITE_P(BackEnds, Commands, ::testing::ValuesIn(navigatorBackEnds()), backEndName);

} // namespace
} // namespace plx::test

#include "navigator_commands_test.moc"
