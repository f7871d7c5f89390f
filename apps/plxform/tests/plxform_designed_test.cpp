// apps/plxform/tests/plxform_designed_test.cpp: forms laid out in Qt Designer. The sample form
// written as a .ui file comes back with every row, and run as a designed form on each back
// end it finds, refuses a record without its required fields, edits and saves a record that
// another connection then reads.
#include "apps/plxform/designedform.h"
#include "apps/plxform/formwidgets.h"
#include "apps/plxform/hostform.h"
#include "apps/plxform/sampledata.h"
#include "apps/plxform/tests/sampletesting.h"

#include "fields/mvchecks.h"
#include "fields/mvchkwithtxt.h"
#include "fields/mvname.h"
#include "fields/mvvitext.h"
#include "navigator/mvplxrecs.h"
#include "services/recordsource/database.h"
#include "services/recordsource/recordsource.h"
#include "testing/fakeenv.h"
#include "tests/support/testfiles.h"

#include <QComboBox>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

namespace plx::form {
namespace {

class DesignedSample : public ::testing::TestWithParam<std::string>
{
protected:
    void SetUp() override
    {
        ASSERT_NO_FATAL_FAILURE(readSample(dir.path(), GetParam(), &paths, &table));
        // The form plxform makes for the sample, written as Designer would keep it.
        HostForm generated(env.services());
        QString error;
        QStringList warnings;
        ASSERT_TRUE(generated.openForm(table, &warnings, &error)) << error.toStdString();
        made = generated.form();
        uiFile = dir.filePath(QStringLiteral("facility.ui"));
        ASSERT_NO_FATAL_FAILURE(test::writeBytes(uiFile, designedFormXml(generated)));
    }

    // The table's description alone, as a user names it beside the designed form.
    FormDescription tableOnly() const
    {
        FormDescription bare;
        bare.file = table.file;
        bare.database = table.database;
        bare.table = table.table;
        return bare;
    }

    QString nameInTable(const QString &id) const
    {
        Result<std::unique_ptr<Database>> db = table.isFoxPro()
            ? OpenDatabase(QFileInfo(table.file).absolutePath(), false, true,
                           QStringLiteral("FoxPro 2.6"))
            : OpenDatabase(table.database, false, true, QString());
        if (!db.isOk())
            return QStringLiteral("?");
        auto rs = db.value()->OpenRecordset(
            QStringLiteral("SELECT NAME FROM FACILITY WHERE ID = '%1'").arg(id));
        if (!rs.isOk() || rs.value()->isEOF())
            return QString();
        return rs.value()->value(QStringLiteral("NAME")).value().toString().trimmed();
    }

    test::TestServices env;
    QTemporaryDir dir;
    WorkFolder work{ dir.path() };
    SamplePaths paths;
    FormDescription table, made;
    QString uiFile;
};

TEST_P(DesignedSample, TheSavedFormComesBackWithEveryRowAndSetting)
{
    Result<DesignedForm> designed = loadDesignedForm(uiFile);
    ASSERT_TRUE(designed.isOk()) << designed.status().message().toStdString();
    const DesignedForm &d = designed.value();
    ASSERT_EQ(d.names.size(), 1);
    QStringList fields;
    for (const RowDescription &row : made.rows)
        fields << row.field;
    EXPECT_EQ(d.names.first()->sFieldNames(), fields);
    EXPECT_EQ(d.names.first()->sCaptions().first(), made.rows.first().caption);
    ASSERT_EQ(d.valueRows.size(), made.valueRows.size());
    EXPECT_EQ(d.valueRows.first()->sFieldNames(), QStringList{ made.valueRows.first().field });
    EXPECT_EQ(d.valueRows.first()->sVINISec(), made.valueRows.first().listSection);
    ASSERT_EQ(d.checks.size(), 1);
    EXPECT_EQ(d.checks.first()->sCaptions().size(), made.checks.size());
    ASSERT_EQ(d.pairs.size(), made.pairs.size());
    EXPECT_EQ(d.pairs.first()->sFieldNameChk(), made.pairs.first().field);

    FormDescription settings = tableOnly();
    QStringList warnings;
    applyDesignedSettings(d, settings, &warnings);
    EXPECT_TRUE(warnings.isEmpty());
    EXPECT_EQ(settings.idField, made.idField);
    EXPECT_EQ(settings.desc, made.desc);
    EXPECT_EQ(settings.sorts, made.sorts);
    EXPECT_EQ(settings.required, made.required);
}

TEST_P(DesignedSample, RunsFindsRefusesAndSavesAsAGeneratedForm)
{
    Result<DesignedForm> designed = loadDesignedForm(uiFile);
    ASSERT_TRUE(designed.isOk());
    HostForm window(env.services());
    QStringList warnings;
    QString error;
    ASSERT_TRUE(
        window.openDesignedForm(std::move(designed).value(), tableOnly(), &warnings, &error))
        << error.toStdString();
    EXPECT_TRUE(warnings.isEmpty()) << warnings.join(QLatin1Char('\n')).toStdString();
    window.show();
    mvPLXRecs *nav = window.navigator();
    mvName *rows = window.textRows();
    ASSERT_NE(rows, nullptr);
    auto row = [rows](const char *field) {
        return qint16(rows->sFieldNames().indexOf(QString::fromLatin1(field)));
    };
    // A memo's row is a few lines high, as in the forms plxform makes.
    EXPECT_EQ(rows->iHeight(row("NOTES")), kMemoRowHeight);
    // The designed sorts and the find.
    auto *sorts = nav->findChild<QComboBox *>(QStringLiteral("cboSort"));
    EXPECT_EQ(sorts->count(), made.sorts.size());
    sorts->setCurrentIndex(1);
    Q_EMIT sorts->activated(1);
    auto *find = nav->findChild<QComboBox *>(QStringLiteral("cboFind"));
    find->setEditText(QStringLiteral("Dover"));
    QTest::keyClick(find, Qt::Key_Return);
    EXPECT_EQ(rows->sValue(row("CITY")), QStringLiteral("Dover"));

    // A new record without its required name is refused as the generated form refuses it.
    nav->ClickButton(QStringLiteral("NEW"));
    expectRefusalWithoutNameAndCity(env.prompter);
    nav->ClickButton(QStringLiteral("SAVE"));
    EXPECT_EQ(env.prompter.pending(), 0);
    rows->setSValue(row("NAME"), QStringLiteral("Designed Care Home"));
    rows->setSValue(row("CITY"), QStringLiteral("Camden"));
    nav->ClickButton(QStringLiteral("SAVE"));
    const QString id = nav->sCurrentID().trimmed();
    EXPECT_EQ(nameInTable(id), QStringLiteral("Designed Care Home"));

    // An edit reaches the table too.
    nav->ClickButton(QStringLiteral("EDIT"));
    rows->setSValue(row("NAME"), QStringLiteral("Designed Care Manor"));
    nav->ClickButton(QStringLiteral("SAVE"));
    EXPECT_EQ(nameInTable(id), QStringLiteral("Designed Care Manor"));
    EXPECT_EQ(env.prompter.pending(), 0);
}

INSTANTIATE_TEST_SUITE_P(BackEnds, DesignedSample, ::testing::Values("FoxPro", "SQLite"),
                         [](const auto &param) { return param.param; });

TEST(DesignedForm, AFormWithoutOneNavigatorOrNoFormAtAllIsRefused)
{
    QTemporaryDir dir;
    EXPECT_EQ(loadDesignedForm(dir.filePath(QStringLiteral("none.ui"))).status().message(),
              QStringLiteral("The designed form %1 was not found.")
                  .arg(dir.filePath(QStringLiteral("none.ui"))));
    const QString two = dir.filePath(QStringLiteral("two.ui"));
    test::writeBytes(two,
                     "<ui version=\"4.0\"><widget class=\"QWidget\" name=\"F\">"
                     "<layout class=\"QVBoxLayout\" name=\"c\">"
                     "<item><widget class=\"plx::mvPLXRecs\" name=\"a\"/></item>"
                     "<item><widget class=\"mvPLXRecs\" name=\"b\"/></item>"
                     "</layout></widget></ui>");
    EXPECT_EQ(loadDesignedForm(two).status().message(),
              QStringLiteral("%1 holds 2 record navigators (mvPLXRecs); a form needs exactly one")
                  .arg(two));
    const QString text = dir.filePath(QStringLiteral("text.ui"));
    test::writeBytes(text, "just some text");
    EXPECT_EQ(loadDesignedForm(text).status().code(), Status::Code::InvalidArgument);
}

} // namespace
} // namespace plx::form
