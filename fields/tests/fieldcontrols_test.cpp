// fields/tests/fieldcontrols_test.cpp: what every field control does alike, run on each:
// a missing table file is told once and changes nothing, and enabling reaches every part
// whether it comes through the control's own setEnabled or QWidget's, and a table file named
// in the library's "\" form binds.
#include "fields/mvchecks.h"
#include "fields/mvchkwithtxt.h"
#include "fields/mvname.h"

#include "testing/fakeenv.h"
#include "tests/support/rowfixtures.h"

#include <QLineEdit>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace plx;

namespace {

struct Control
{
    const char *name;
    QWidget *(*make)(QWidget *parent);
};

void PrintTo(const Control &c, std::ostream *os)
{
    *os << c.name;
}

class FieldControlTest : public ::testing::TestWithParam<Control>
{
protected:
    void SetUp() override
    {
        widget = GetParam().make(&form);
        control = dynamic_cast<BoundControl *>(widget);
        ASSERT_TRUE(control);
        control->setServices(env.services());
    }

    // The parts of the control that are enabled, of all its parts.
    QString enabledParts() const
    {
        const QList<QWidget *> parts = widget->findChildren<QWidget *>();
        const auto on = std::count_if(parts.begin(), parts.end(),
                                      [](const QWidget *w) { return w->isEnabled(); });
        return QStringLiteral("%1 of %2").arg(on).arg(parts.size());
    }

    test::TestServices env;
    QWidget form;
    QWidget *widget = nullptr;
    BoundControl *control = nullptr;
};

} // namespace

TEST_P(FieldControlTest, AMissingTableFileIsToldOnceAndChangesNothing)
{
    QTemporaryDir dir;
    const QString missing = dir.path() + QStringLiteral("/NOPE.DBF");
    env.prompter.expectMsgBox(QStringLiteral("File Not Found"),
                              QStringLiteral("Database file not found:\r\n") + missing,
                              MsgStyle::Critical, MsgAnswer::OK);
    widget->setProperty("sDBFPathFileName", missing);
    EXPECT_EQ(env.prompter.shown().size(), 1);
    EXPECT_EQ(widget->property("sDBFPathFileName").toString(), QString()) << "nothing changed";
    EXPECT_EQ(control->RecordSet(), nullptr);
}

// The library writes "\" paths on every platform; the file is found, opened and its code
// page read through the disk's form of the path, with no box.
TEST_P(FieldControlTest, ATableFileNamedWithBackslashesBinds)
{
    QTemporaryDir dir;
    ASSERT_TRUE(
        rowtest::makeTable(rowtest::Store::FoxPro850, dir.path(), { rowtest::smithRecord() }));
    const QString libraryPath =
        QString(rowtest::tableFile(dir.path())).replace(QLatin1Char('/'), QLatin1Char('\\'));
    widget->setProperty("sDBFPathFileName", libraryPath);
    EXPECT_TRUE(env.prompter.shown().isEmpty());
    EXPECT_EQ(widget->property("sDBFPathFileName").toString(), libraryPath);
    ASSERT_TRUE(control->RecordSet());
    EXPECT_EQ(control->RecordSet()->value(QStringLiteral("NAME")).value().toString().trimmed(),
              QStringLiteral("SMITH"));
    for (mvRow *row : widget->findChildren<mvRow *>())
        EXPECT_EQ(row->DataBinding()->CodePage(), 850) << row->objectName().toStdString();
}

TEST_P(FieldControlTest, EnablingReachesEveryPartThroughAnyPointer)
{
    const QString all = enabledParts();
    control->setEnabled(false);
    EXPECT_FALSE(control->Enabled());
    EXPECT_TRUE(enabledParts().startsWith(QStringLiteral("0 of ")));
    // The parts were disabled one by one; QWidget's setEnabled on the control brings them
    // back as the control's own does.
    widget->setEnabled(true);
    EXPECT_EQ(enabledParts(), all);

    widget->setEnabled(false);
    EXPECT_TRUE(enabledParts().startsWith(QStringLiteral("0 of ")));
    control->setEnabled(true);
    EXPECT_EQ(enabledParts(), all);

    // A part the host disabled itself stays so while a parent is disabled and enabled
    // again; the control's own enabling brings it back.
    auto *editor = widget->findChild<QLineEdit *>();
    QWidget *part = editor ? static_cast<QWidget *>(editor) : widget->findChild<mvCheck *>();
    part->setEnabled(false);
    form.setEnabled(false);
    EXPECT_FALSE(control->Enabled());
    form.setEnabled(true);
    EXPECT_TRUE(control->Enabled());
    EXPECT_FALSE(part->isEnabled());
    control->setEnabled(true);
    EXPECT_TRUE(part->isEnabled());
}

// A control of type C with two text rows or boxes.
template<typename C> QWidget *make(QWidget *parent)
{
    auto *c = new C(parent);
    c->setNUbound(1);
    return c;
}

INSTANTIATE_TEST_SUITE_P(Controls, FieldControlTest,
                         ::testing::Values(Control{ "mvName", &make<mvName> },
                                           Control{ "mvChecks", &make<mvChecks> },
                                           Control{ "mvChkWithTxt", &make<mvChkWithTxt> }),
                         [](const auto &param) { return std::string(param.param.name); });
