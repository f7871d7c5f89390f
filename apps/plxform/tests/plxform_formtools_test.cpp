// apps/plxform/tests/plxform_formtools_test.cpp: what the sample form offers beyond typing:
// the Programs row picked from the sample's list, a memo written in the text editor, the
// record printed to a PDF, and the browse grid's columns chosen in the list dialog. Each
// result is read back from the files: the table by python3-dbf, the printout by pdftotext,
// the lists and layouts from the settings files.
#include "apps/plxform/hostform.h"
#include "apps/plxform/sampledata.h"
#include "apps/plxform/scriptrunner.h"
#include "apps/plxform/tests/sampletesting.h"

#include "dialogs/frmvivalues.h"
#include "dialogs/listselect.h"
#include "dialogs/texteditor.h"
#include "tests/support/modalwatch.h"
#include "services/ini.h"
#include "testing/fakeenv.h"

#include <QAction>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

namespace plx::form {
namespace {

class SampleTools : public ::testing::Test
{
protected:
    void SetUp() override
    {
        // Where plxform makes it: in the work directory, beside its user settings.
        FormDescription form;
        ASSERT_NO_FATAL_FAILURE(
            readSample(dir.filePath(QStringLiteral("WORK-PLX")), "FoxPro", &paths, &form));
        window = std::make_unique<HostForm>(env.services());
        QStringList warnings;
        QString error;
        ASSERT_TRUE(window->openForm(form, &warnings, &error)) << error.toStdString();
        EXPECT_TRUE(warnings.isEmpty()) << warnings.join(QLatin1Char('\n')).toStdString();
        window->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(window.get()));
        id = window->navigator()->sCurrentID().trimmed();
    }
    void TearDown() override { window.reset(); }

    void menu(const char *name) { triggerMenu(*window, name); }

    // The record's fields as python3-dbf reads the table file: trimmed text, "True"/"False".
    QHash<QString, QString> recordOnDisk()
    {
        QProcess reader;
        reader.start(
            QStringLiteral("/usr/bin/python3"),
            { QStringLiteral("-c"),
              QStringLiteral(
                  "import dbf,sys\nt=dbf.Table(sys.argv[1]);t.open()\n"
                  "for r in t:\n"
                  "  if r['id'].strip()==sys.argv[2] and not dbf.is_deleted(r):\n"
                  "    for f in t.field_names:\n"
                  "      v=r[f]\n"
                  "      v='' if v is None else str(v).strip().replace('\\r\\n','\\n')\n"
                  "      sys.stdout.write(f.upper()+'\\t'+v.replace('\\n','\\\\n')+'\\n')"),
              paths.foxProTable, id });
        QHash<QString, QString> record;
        if (!reader.waitForFinished(60000) || reader.exitCode() != 0) {
            ADD_FAILURE() << "python3-dbf: " << reader.readAllStandardError().toStdString();
            return record;
        }
        for (const QString &line :
             QString::fromUtf8(reader.readAllStandardOutput()).split(QLatin1Char('\n')))
            if (const qsizetype tab = line.indexOf(QLatin1Char('\t')); tab > 0)
                record.insert(
                    line.left(tab),
                    line.mid(tab + 1).replace(QStringLiteral("\\n"), QStringLiteral("\n")));
        return record;
    }

    test::TestServices env;
    QTemporaryDir dir;
    WorkFolder work{ dir.path() };
    SamplePaths paths;
    std::unique_ptr<HostForm> window;
    QString id;
};

// The list is kept in the sample's list file, an added entry at once; the value picked goes
// into the record only through the form's save.
TEST_F(SampleTools, TheProgramsRowPicksFromTheSampleListAndBothAreKept)
{
    ASSERT_EQ(window->valueRows().size(), 1);
    mvVIText *programs = window->valueRows().first();
    EXPECT_EQ(programs->sFieldName(0), QStringLiteral("PROGRAMS"));
    EXPECT_EQ(programs->sVINIFile(), paths.listFile);
    const QString before = recordOnDisk().value(QStringLiteral("PROGRAMS"));
    EXPECT_EQ(programs->sValue(0), before) << "the row shows the record's programs";

    menu("mnuEdit");
    env.prompter.expectInputBox(QStringLiteral("Value List"),
                                QStringLiteral("Item to add to Value List:"),
                                QStringLiteral("DAY"));
    env.prompter.expectInputBox(QStringLiteral("Description"),
                                QStringLiteral("Description for this item:"),
                                QStringLiteral("Adult day care"));
    const QString sampleList =
        QStringLiteral("SNF {Skilled nursing}|REHAB {Rehabilitation}|"
                       "MC {Memory care}|AL {Assisted living}|HOSP {Hospice}");
    ModalWatch<frmVIValues> watch([&](frmVIValues *editor) {
        EXPECT_EQ(editor->windowTitle(), QStringLiteral("Value Item List: Programs"));
        EXPECT_EQ(editor->entries(), sampleList.split(QLatin1Char('|')));
        editor->Add();
        editor->findChild<QListWidget *>(QStringLiteral("List1"))->setCurrentRow(5);
        editor->Insert();
    });
    programs->SelectVI(0);
    ASSERT_EQ(watch.shown, 1);
    const QString picked =
        before.isEmpty() ? QStringLiteral("DAY") : before + QStringLiteral(",DAY");
    EXPECT_EQ(programs->sValue(0), picked);
    QString list;
    readINI(kSampleListSection, kSampleListKey, paths.listFile, list, QString());
    EXPECT_EQ(list, sampleList + QStringLiteral("|DAY {Adult day care}"));
    EXPECT_EQ(recordOnDisk().value(QStringLiteral("PROGRAMS")), before) << "not saved yet";

    menu("mnuSave");
    EXPECT_EQ(env.prompter.pending(), 0);
    EXPECT_EQ(recordOnDisk().value(QStringLiteral("PROGRAMS")), picked);
}

// A script types into a value-item row as into any other row (plxform --script).
TEST_F(SampleTools, AScriptSetsTheProgramsRowAndItIsSaved)
{
    QString error;
    EXPECT_TRUE(runScript(*window,
                          { QStringLiteral("click Edit"), QStringLiteral("set PROGRAMS MC,HOSP"),
                            QStringLiteral("click Save") },
                          &error))
        << error.toStdString();
    EXPECT_EQ(recordOnDisk().value(QStringLiteral("PROGRAMS")), QStringLiteral("MC,HOSP"));
}

// Shift+F2 in the Notes row opens the text editor; what is written there is saved with the
// record, and File > Print puts every caption with the value on disk into the PDF.
TEST_F(SampleTools, AMemoWrittenInTheEditorIsSavedAndPrintedWithTheRecord)
{
    const QString pdftotext = QStandardPaths::findExecutable(QStringLiteral("pdftotext"));
    if (pdftotext.isEmpty())
        GTEST_SKIP() << "pdftotext (poppler-utils) is not installed";
    menu("mnuEdit");
    mvName *rows = window->textRows();
    qint16 notes = 0;
    while (notes <= rows->nUbound() && rows->sFieldName(notes) != QLatin1String("NOTES"))
        ++notes;
    auto *memo = rows->textRow(notes)->findChild<QPlainTextEdit *>();
    ASSERT_TRUE(memo);
    memo->setFocus();
    ModalWatch<TextEditorDialog> watch([](TextEditorDialog *editor) {
        EXPECT_EQ(editor->windowTitle(), QStringLiteral("Notes"));
        EXPECT_FALSE(editor->isReadOnly());
        editor->setText(QStringLiteral("Rounds at nine.\nVisitors until eight."));
        editor->accept();
    });
    QTest::keyClick(memo, Qt::Key_F2, Qt::ShiftModifier);
    ASSERT_EQ(watch.shown, 1);
    menu("mnuSave");
    EXPECT_EQ(env.prompter.pending(), 0);
    const QHash<QString, QString> disk = recordOnDisk();
    EXPECT_EQ(disk.value(QStringLiteral("NOTES")),
              QStringLiteral("Rounds at nine.\nVisitors until eight."));

    const QString pdf = dir.filePath(QStringLiteral("record.pdf"));
    ASSERT_TRUE(window->printRecordToPdf(pdf));
    QProcess reader;
    reader.start(pdftotext,
                 { QStringLiteral("-enc"), QStringLiteral("UTF-8"), pdf, QStringLiteral("-") });
    ASSERT_TRUE(reader.waitForFinished(30000));
    // The PDF's font joins "fi" into one glyph, which pdftotext reads back as U+FB01.
    const QStringList printed = QString::fromUtf8(reader.readAllStandardOutput())
                                    .replace(QChar(0xFB01), QLatin1String("fi"))
                                    .split(QLatin1Char('\n'));
    auto yesNo = [&](const char *field) {
        return disk.value(QString::fromLatin1(field)) == QLatin1String("True")
            ? QStringLiteral("Yes")
            : QStringLiteral("No");
    };
    auto line = [&](const QString &caption, const QString &value) {
        return (caption + QStringLiteral(": ") + value).trimmed();
    };
    const QStringList expected{
        QStringLiteral("Facilities %1 - %2").arg(id, disk.value(QStringLiteral("NAME"))),
        line(QStringLiteral("Name"), disk.value(QStringLiteral("NAME"))),
        line(QStringLiteral("Phone"), disk.value(QStringLiteral("PHONE"))),
        QStringLiteral("Notes: Rounds at nine."),
        QStringLiteral("Visitors until eight."),
        line(QStringLiteral("Programs"), disk.value(QStringLiteral("PROGRAMS"))),
        line(QStringLiteral("Active"), yesNo("ACTIVE")),
        line(QStringLiteral("Medicare certified"), yesNo("MEDICARE")),
        line(QStringLiteral("Provider no."), disk.value(QStringLiteral("MEDNUM"))),
    };
    qsizetype at = 0;
    for (const QString &want : expected) {
        const qsizetype found = printed.indexOf(want, at);
        EXPECT_GE(found, at) << "not printed, or out of order: " << want.toStdString() << "\n"
                             << printed.join(QLatin1Char('\n')).toStdString();
        at = qMax(at, found);
    }
}

// The browse grid's columns, picked and ordered in the list dialog, are kept as the grid's
// layout value: kept columns with their titles and widths, a new one titled as the form
// shows it and fitted to its field.
TEST_F(SampleTools, BrowseColumnsChosenInTheListDialogBecomeTheGridsLayout)
{
    ModalWatch<ListSelectDialog> watch([](ListSelectDialog *pick) {
        EXPECT_EQ(pick->windowTitle(), QStringLiteral("Browse Columns"));
        EXPECT_EQ(pick->chosenItems().join(QLatin1Char(',')),
                  QStringLiteral("NAME,CITY,STATE,PHONE,BEDS,RATE,OPENED,ACTIVE,ID"));
        auto select = [pick](const char *list, const char *item) {
            auto *widget = pick->findChild<QListWidget *>(QString::fromLatin1(list));
            widget->setCurrentItem(
                widget->findItems(QString::fromLatin1(item), Qt::MatchExactly).first());
        };
        select("lstChosen", "PHONE");
        pick->Unchoose();
        select("lstAvailable", "PROGRAMS");
        pick->Choose();
        pick->accept();
    });
    menu("mnuBrowseColumns");
    ASSERT_EQ(watch.shown, 1);
    QString layout;
    readINI(QStringLiteral("CONFIG"), QStringLiteral("BrowseGridCol Facilities"),
            dir.filePath(QStringLiteral("WORK-PLX/PLXFORM.INI")), layout, QString());
    EXPECT_EQ(layout,
              QStringLiteral("NAME,Facility,3600|CITY,City,2100|STATE,State,700|BEDS,Beds,800|"
                             "RATE,Rate,1100|OPENED,Opened,1300|ACTIVE,Active,900|ID,ID,1600|"
                             "PROGRAMS,Programs,0"));
}

} // namespace
} // namespace plx::form
