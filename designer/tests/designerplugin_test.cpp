// The Designer plugin as Designer and QUiLoader use it: loaded from its file, offering every
// control under "PLX Controls", and a form holding every control, saved by Designer as a
// .ui file, comes back with the properties set in it on the controls.
//
// The widgets come from the plugin's own copy of the libraries, so the test reaches them
// through their meta-objects (by property and method name), as a form loaded at run time
// is reached.
#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QPluginLoader>
#include <QStringList>
#include <QUiLoader>
#include <QWidget>
#include <QtUiPlugin/QDesignerCustomWidgetCollectionInterface>

#include <gtest/gtest.h>

#include <memory>

namespace {

const QStringList kControls{ QStringLiteral("plx::mvPLXRecs"), QStringLiteral("plx::mvName"),
                             QStringLiteral("plx::mvVIText"), QStringLiteral("plx::mvChecks"),
                             QStringLiteral("plx::mvChkWithTxt") };

// The plugin file: the build's, or the one named in PLX_DESIGNER_PLUGIN (the package check
// points it at the installed copy).
QString pluginFile()
{
    return qEnvironmentVariable("PLX_DESIGNER_PLUGIN", QStringLiteral(PLX_DESIGNER_PLUGIN));
}

std::string str(const QString &text)
{
    return text.toStdString();
}

// Row n's text of an indexed accessor (sCaption(n), sCaptionTxt(n) …), called by name.
QString rowText(QObject *control, const char *method, qint16 n)
{
    QString out;
    EXPECT_TRUE(
        QMetaObject::invokeMethod(control, method, Q_RETURN_ARG(QString, out), Q_ARG(qint16, n)))
        << control->metaObject()->className() << "::" << method;
    return out;
}

TEST(DesignerPlugin, LoadsFromItsFileAndMakesEveryControl)
{
    QPluginLoader loader(pluginFile());
    ASSERT_TRUE(loader.load()) << str(loader.errorString());
    auto *collection = qobject_cast<QDesignerCustomWidgetCollectionInterface *>(loader.instance());
    ASSERT_NE(collection, nullptr);
    QStringList names;
    QWidget form;
    for (QDesignerCustomWidgetInterface *control : collection->customWidgets()) {
        const QString name = control->name();
        names << name;
        EXPECT_EQ(str(control->group()), "PLX Controls") << str(name);
        EXPECT_FALSE(control->icon().isNull()) << str(name);
        EXPECT_FALSE(control->toolTip().isEmpty()) << str(name);
        EXPECT_FALSE(control->whatsThis().isEmpty()) << str(name);
        EXPECT_FALSE(control->isContainer()) << str(name);
        // The header a form's generated code includes is one the library installs.
        EXPECT_TRUE(QFileInfo::exists(QStringLiteral(PLX_SOURCE_DIR "/") + control->includeFile()))
            << str(control->includeFile());
        EXPECT_TRUE(control->domXml().contains(QStringLiteral("class=\"%1\"").arg(name)))
            << str(control->domXml());
        QWidget *made = control->createWidget(&form);
        ASSERT_NE(made, nullptr) << str(name);
        EXPECT_EQ(made->metaObject()->className(), name.toLatin1()) << str(name);
        EXPECT_EQ(made->parentWidget(), &form);
    }
    EXPECT_EQ(names, kControls);
}

class DesignedForm : public ::testing::Test
{
protected:
    void SetUp() override
    {
        loader.clearPluginPaths();
        loader.addPluginPath(QFileInfo(pluginFile()).absolutePath());
        QFile ui(QStringLiteral(PLX_DESIGNER_TESTDATA "/allcontrols.ui"));
        ASSERT_TRUE(ui.open(QIODevice::ReadOnly));
        form.reset(loader.load(&ui));
        ASSERT_TRUE(form) << str(loader.errorString());
    }

    QObject *control(const char *name, const char *className)
    {
        auto *found = form->findChild<QWidget *>(QString::fromLatin1(name));
        EXPECT_NE(found, nullptr) << name;
        if (found) {
            EXPECT_STREQ(found->metaObject()->className(), className);
        }
        return found;
    }

    QUiLoader loader;
    std::unique_ptr<QWidget> form;
};

TEST_F(DesignedForm, TheLoaderKnowsEveryControl)
{
    const QStringList available = loader.availableWidgets();
    for (const QString &name : kControls)
        EXPECT_TRUE(available.contains(name)) << str(name);
}

// What Designer puts on a form when a control is dropped: each entry loads, at its size,
// and a stack's first row has a caption to be seen by.
TEST_F(DesignedForm, EveryControlsNewFormEntryLoads)
{
    QPluginLoader plugin(pluginFile());
    auto *collection = qobject_cast<QDesignerCustomWidgetCollectionInterface *>(plugin.instance());
    ASSERT_NE(collection, nullptr);
    for (QDesignerCustomWidgetInterface *control : collection->customWidgets()) {
        QByteArray xml = control->domXml().toUtf8();
        QBuffer entry(&xml);
        std::unique_ptr<QWidget> made(loader.load(&entry));
        ASSERT_TRUE(made) << str(control->name()) << ": " << str(loader.errorString());
        EXPECT_EQ(made->metaObject()->className(), control->name().toLatin1());
        EXPECT_GE(made->width(), made->minimumSizeHint().width()) << str(control->name());
        EXPECT_GE(made->height(), made->sizeHint().height()) << str(control->name());
        const QVariant captions = made->property(
            control->name() == QStringLiteral("plx::mvChkWithTxt") ? "sCaptionsTxt" : "sCaptions");
        if (captions.isValid()) {
            EXPECT_FALSE(captions.toStringList().value(0).isEmpty()) << str(control->name());
        }
    }
}

TEST_F(DesignedForm, NavigatorPropertiesArrive)
{
    QObject *nav = control("navigator", "plx::mvPLXRecs");
    ASSERT_TRUE(nav);
    EXPECT_EQ(str(nav->property("sIDfield").toString()), "ID");
    EXPECT_EQ(str(nav->property("sDescfield").toString()), "NAME");
    EXPECT_EQ(str(nav->property("sDesc").toString()), "Facilities");
    EXPECT_EQ(str(nav->property("sUser").toString()), "designer");
    EXPECT_FALSE(nav->property("EnableBrowse").toBool());
    EXPECT_EQ(nav->property("MyLevel").toInt(), 2);
    EXPECT_TRUE(nav->property("EnableFind").toBool()); // not in the form: the default
}

TEST_F(DesignedForm, StackRowsArriveAsListsAndReachEveryRow)
{
    QObject *names = control("names", "plx::mvName");
    ASSERT_TRUE(names);
    // Four rows as the form says, the last one left without a caption by the list.
    EXPECT_EQ(names->property("nUbound").toInt(), 3);
    EXPECT_EQ(names->property("sCaptions").toStringList(),
              (QStringList{ QStringLiteral("ID"), QStringLiteral("Name"), QStringLiteral("City"),
                            QString() }));
    EXPECT_EQ(str(rowText(names, "sCaption", 2)), "City");
    EXPECT_EQ(str(rowText(names, "sFieldName", 1)), "NAME");
    EXPECT_EQ(names->property("DescWidthAll").toInt(), 1200);

    // The other stacks' rows were made by their lists alone.
    QObject *valueItems = control("valueItems", "plx::mvVIText");
    ASSERT_TRUE(valueItems);
    EXPECT_EQ(valueItems->property("nUbound").toInt(), 0);
    EXPECT_EQ(str(rowText(valueItems, "sCaption", 0)), "State");
    EXPECT_EQ(str(rowText(valueItems, "sFieldName", 0)), "STATE");
    EXPECT_EQ(str(valueItems->property("sVINIFile").toString()), "values.ini");
    EXPECT_EQ(str(valueItems->property("sVINISec").toString()), "VALUES");
    EXPECT_EQ(str(valueItems->property("sVINIVar").toString()), "STATE");

    QObject *checks = control("checks", "plx::mvChecks");
    ASSERT_TRUE(checks);
    EXPECT_EQ(checks->property("nUbound").toInt(), 1);
    EXPECT_EQ(checks->property("sCaptions").toStringList(),
              (QStringList{ QStringLiteral("Active"), QStringLiteral("Audited") }));
    EXPECT_EQ(str(rowText(checks, "sFieldName", 1)), "AUDITED");
    EXPECT_TRUE(checks->property("bBoldOnChk").toBool());

    QObject *unit = control("checkWithText", "plx::mvChkWithTxt");
    ASSERT_TRUE(unit);
    EXPECT_EQ(str(unit->property("sCaptionChk").toString()), "Closed");
    EXPECT_EQ(str(unit->property("sFieldNameChk").toString()), "CLOSED");
    EXPECT_EQ(unit->property("nUbound").toInt(), 1);
    EXPECT_EQ(str(rowText(unit, "sCaptionTxt", 0)), "Closed on");
    EXPECT_EQ(str(rowText(unit, "sFieldNameTxt", 1)), "REASON");
}

} // namespace
