// apps/plxform/tests/sampletesting.h: what the plxform tests share to set up the sample
// form: a work folder of their own, the sample made and its description read, and the
// form's menus and rows reached by name.
#pragma once

#include "apps/plxform/formdescription.h"
#include "apps/plxform/hostform.h"
#include "apps/plxform/sampledata.h"

#include "fields/mvname.h"
#include "testing/scriptedprompter.h"

#include <QAction>
#include <QDir>
#include <QString>

#include <gtest/gtest.h>

#include <ostream>
#include <string>

// Readable QString values in failure messages.
inline void PrintTo(const QString &text, std::ostream *out)
{
    *out << '"' << text.toStdString() << '"';
}

namespace plx::form {

// plxform's work folder (PLX_HARROWBY_DIR) is `dir` while the test runs, with its WORK-PLX
// folder made, so no test reads or writes a user's settings.
class WorkFolder
{
public:
    explicit WorkFolder(const QString &dir)
    {
        qputenv("PLX_HARROWBY_DIR", dir.toUtf8());
        QDir().mkpath(dir + QStringLiteral("/WORK-PLX"));
    }
    ~WorkFolder() { qunsetenv("PLX_HARROWBY_DIR"); }
    WorkFolder(const WorkFolder &) = delete;
    WorkFolder &operator=(const WorkFolder &) = delete;
};

// The sample made in `folder` and its description read back. With `backEnd` "SQLite" the
// description names the sample's SQLite table in place of its FoxPro file.
inline void readSample(const QString &folder, const std::string &backEnd, SamplePaths *paths,
                       FormDescription *description)
{
    Result<SamplePaths> sample = ensureSample(folder);
    ASSERT_TRUE(sample.isOk()) << sample.status().message().toStdString();
    *paths = sample.value();
    QStringList warnings;
    Result<FormDescription> form = loadFormDescription(paths->formFile, &warnings);
    ASSERT_TRUE(form.isOk());
    *description = form.value();
    if (backEnd == "SQLite") {
        description->file.clear();
        description->database = paths->sqliteFile;
        description->table = QStringLiteral("FACILITY");
    }
}

inline void triggerMenu(const QWidget &window, const char *name)
{
    window.findChild<QAction *>(QString::fromLatin1(name))->trigger();
}

// The number of the form's text row bound to `field`, -1 when none is.
inline qint16 rowOf(const HostForm &window, const char *field)
{
    for (qint16 n = 0; n <= window.textRows()->nUbound(); ++n)
        if (window.textRows()->sFieldName(n) == QLatin1String(field))
            return n;
    return -1;
}

// The two boxes a SAVE of a sample record without a name and a city shows, in order.
inline void expectRefusalWithoutNameAndCity(test::ScriptedPrompter &prompter)
{
    prompter.expectMsgBox(QStringLiteral("Required Field"),
                          QStringLiteral("A Facilities record needs a value in: Name, City."), 48,
                          MsgAnswer::OK);
    prompter.expectMsgBox(QStringLiteral("Record Not Saved"),
                          QStringLiteral("'Facilities' record has NOT been saved."), 16,
                          MsgAnswer::OK);
}

} // namespace plx::form
