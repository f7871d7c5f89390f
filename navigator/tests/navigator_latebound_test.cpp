// navigator/tests/navigator_latebound_test.cpp: a host's own control, registered by
// property name and driven by operation name, takes part in a whole edit beside the
// library's field stack; a control lacking operations is skipped without stopping them.
#include "navigator/tests/navigatorfixture.h"

#include "fields/mvname.h"

#include <QFile>
#include <QVariant>
#include <QWidget>

namespace plx::test {
namespace {

// A plain widget that offers the field-control operations as invokables only, and notes
// every call in order.
class NotesPanel : public QWidget
{
    Q_OBJECT

public:
    QStringList calls;
    QString refusal; // bEdit refuses with it when not blank
    QString saveText;
    bool locked = true;

    Q_INVOKABLE void UpdateDBF() { calls << QStringLiteral("UpdateDBF"); }
    Q_INVOKABLE bool bEdit(bool bSilent, QVariant &vReturn)
    {
        calls << QStringLiteral("bEdit(%1)").arg(bSilent);
        vReturn = refusal;
        return refusal.isEmpty();
    }
    Q_INVOKABLE void EditUpdate() { calls << QStringLiteral("EditUpdate"); }
    Q_INVOKABLE void CancelEdit() { calls << QStringLiteral("CancelEdit"); }
    Q_INVOKABLE QString Save()
    {
        calls << QStringLiteral("Save");
        return saveText;
    }
    Q_INVOKABLE bool Locked() const { return locked; }
    Q_INVOKABLE void setLocked(bool on)
    {
        calls << QStringLiteral("setLocked(%1)").arg(on);
        locked = on;
    }
    Q_INVOKABLE QString Name() const { return QStringLiteral("Visit notes"); }
};

// A host form that allows every save.
class ParentForm : public QObject
{
    Q_OBJECT

public:
    Q_INVOKABLE bool OKtoSave(qint16) { return true; }
};

class LateBound : public NavigatorTest
{
protected:
    void SetUp() override
    {
        NavigatorTest::SetUp();
        fields = std::make_unique<mvName>();
        fields->setSCaption(0, QStringLiteral("NAME"));
        fields->setSFieldName(0, QStringLiteral("NAME"));
        configure();
        bare.setObjectName(QStringLiteral("bareObject"));
        ASSERT_TRUE(nav->setProperty("fParent", QVariant::fromValue<QObject *>(&parent)));
        ASSERT_TRUE(
            nav->setProperty("cMervaneControls",
                             QVariant::fromValue(QList<QObject *>{ &bare, fields.get(), &notes })));
        ASSERT_TRUE(
            nav->setProperty("cOtherControls", QVariant::fromValue(QList<QObject *>{ &other })));
        fields->setLocked(true);
        other.setEnabled(false);
        notes.calls.clear();
    }
    void TearDown() override
    {
        fields.reset();
        NavigatorTest::TearDown();
    }

    QString logText()
    {
        QFile log(dir.filePath(QStringLiteral("inst/PLXLogFile.TXT")));
        return log.open(QIODevice::ReadOnly) ? QString::fromLatin1(log.readAll()) : QString();
    }

    ParentForm parent;
    NotesPanel notes;
    QObject bare; // offers none of the operations
    QWidget other;
    std::unique_ptr<mvName> fields;
};

TEST_P(LateBound, RegisteredByNameTheHostsControlTakesPartInAWholeEdit)
{
    EXPECT_EQ(nav->property("cMervaneControls").value<QList<QObject *>>(),
              (QList<QObject *>{ &bare, fields.get(), &notes }));
    EXPECT_EQ(nav->property("fParent").value<QObject *>(), &parent);

    notes.saveText = QStringLiteral("Notes kept for the visit");
    nav->ClickButton(QStringLiteral("EDIT"));
    EXPECT_FALSE(fields->Locked());
    EXPECT_TRUE(other.isEnabled());
    env.prompter.expectMsgBox(QStringLiteral("Visit notes"),
                              QStringLiteral("Notes kept for the visit"), MsgStyle::Information,
                              MsgAnswer::OK);
    nav->ClickButton(QStringLiteral("SAVE"));
    EXPECT_EQ(notes.calls,
              (QStringList{ QStringLiteral("UpdateDBF"), QStringLiteral("bEdit(0)"),
                            QStringLiteral("setLocked(0)"), QStringLiteral("EditUpdate"),
                            QStringLiteral("Save"), QStringLiteral("setLocked(1)"),
                            QStringLiteral("UpdateDBF") }));
    EXPECT_TRUE(fields->Locked()) << "the library's stack beside it went through the edit";
    EXPECT_FALSE(other.isEnabled());

    notes.calls.clear();
    events->clear();
    notes.refusal = QStringLiteral("Visit notes are being typed elsewhere");
    nav->ClickButton(QStringLiteral("EDIT"));
    EXPECT_EQ(notes.calls,
              (QStringList{ QStringLiteral("UpdateDBF"), QStringLiteral("bEdit(0)"),
                            QStringLiteral("CancelEdit") }));
    EXPECT_TRUE(events->texts().isEmpty()) << "a refusing bEdit refuses the edit";
    EXPECT_TRUE(fields->Locked());
}

TEST_P(LateBound, AControlWithoutTheOperationsIsSkippedWithOneLogLinePerOperation)
{
    nav->ClickButton(QStringLiteral("EDIT"));
    nav->ClickButton(QStringLiteral("SAVE"));
    nav->ClickButton(QStringLiteral("EDIT"));
    nav->ClickButton(QStringLiteral("CANCEL"));
    EXPECT_EQ(notes.calls.count(QStringLiteral("Save")), 1);
    const QString log = logText();
    for (const char *operation :
         { "UpdateDBF", "bEdit", "Locked", "EditUpdate", "Save", "CancelEdit" }) {
        const QString line = QStringLiteral("mvPLXRecs Facilities: bareObject has no ")
            + QString::fromLatin1(operation) + QStringLiteral("; skipped");
        EXPECT_EQ(log.count(line), 1) << operation;
    }
}

INSTANTIATE_TEST_SUITE_P(BackEnds, LateBound, ::testing::ValuesIn(navigatorBackEnds()),
                         backEndName);

} // namespace
} // namespace plx::test

#include "navigator_latebound_test.moc"
