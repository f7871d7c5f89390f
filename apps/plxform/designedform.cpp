// apps/plxform/designedform.cpp
#include "apps/plxform/designedform.h"

#include "apps/plxform/hostform.h"
#include "fields/mvchecks.h"
#include "fields/mvchkwithtxt.h"
#include "fields/mvname.h"
#include "fields/mvvitext.h"
#include "navigator/mvplxrecs.h"
#include "services/widgets/boundcontrol.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QUiLoader>
#include <QXmlStreamWriter>

#include <functional>

namespace plx::form {

namespace {

// The library's controls by the class names Designer writes (with or without the
// namespace); everything else is Qt's.
class ControlLoader final : public QUiLoader
{
public:
    QWidget *createWidget(const QString &className, QWidget *parent, const QString &name) override
    {
        static const QHash<QString, std::function<QWidget *(QWidget *)>> makers = {
            { QStringLiteral("mvPLXRecs"), [](QWidget *p) { return new mvPLXRecs(p); } },
            { QStringLiteral("mvName"), [](QWidget *p) { return new mvName(p); } },
            { QStringLiteral("mvVIText"), [](QWidget *p) { return new mvVIText(p); } },
            { QStringLiteral("mvChecks"), [](QWidget *p) { return new mvChecks(p); } },
            { QStringLiteral("mvChkWithTxt"), [](QWidget *p) { return new mvChkWithTxt(p); } },
        };
        QString bare = className;
        bare.remove(QStringLiteral("plx::"));
        const auto make = makers.constFind(bare);
        if (make == makers.constEnd())
            return QUiLoader::createWidget(className, parent, name);
        QWidget *widget = (*make)(parent);
        widget->setObjectName(name);
        return widget;
    }
};

// The controls of type T the form itself holds, not those inside another control (the text
// rows inside an mvChkWithTxt are its own).
template<typename T> QList<T *> formControls(const QWidget &root)
{
    QList<T *> found;
    for (T *control : root.findChildren<T *>()) {
        bool nested = false;
        for (QObject *up = control->parent(); up && up != &root && !nested; up = up->parent())
            nested = dynamic_cast<BoundControl *>(up) || qobject_cast<mvPLXRecs *>(up);
        if (!nested)
            found << control;
    }
    return found;
}

QString trimmedProperty(const QObject *object, const char *name)
{
    return object->property(name).toString().trimmed();
}

// Writes one <property> of a control.
void writeProperty(QXmlStreamWriter &xml, const QString &name, const QVariant &value,
                   bool dynamic = false)
{
    xml.writeStartElement(QStringLiteral("property"));
    xml.writeAttribute(QStringLiteral("name"), name);
    if (dynamic)
        xml.writeAttribute(QStringLiteral("stdset"), QStringLiteral("0"));
    if (value.typeId() == QMetaType::QStringList) {
        xml.writeStartElement(QStringLiteral("stringlist"));
        for (const QString &item : value.toStringList())
            xml.writeTextElement(QStringLiteral("string"), item);
        xml.writeEndElement();
    } else if (value.typeId() == QMetaType::Bool) {
        xml.writeTextElement(QStringLiteral("bool"),
                             value.toBool() ? QStringLiteral("true") : QStringLiteral("false"));
    } else if (value.typeId() == QMetaType::Int) {
        xml.writeTextElement(QStringLiteral("number"), QString::number(value.toInt()));
    } else {
        xml.writeTextElement(QStringLiteral("string"), value.toString());
    }
    xml.writeEndElement();
}

// One control in the column, with the properties that make it what the form shows.
void writeControl(QXmlStreamWriter &xml, const QString &className, const QString &name,
                  const QList<QPair<QString, QVariant>> &properties,
                  const QList<QPair<QString, QVariant>> &dynamicProperties = {})
{
    xml.writeStartElement(QStringLiteral("item"));
    xml.writeStartElement(QStringLiteral("widget"));
    xml.writeAttribute(QStringLiteral("class"), className);
    xml.writeAttribute(QStringLiteral("name"), name);
    for (const auto &[property, value] : properties)
        writeProperty(xml, property, value);
    for (const auto &[property, value] : dynamicProperties)
        writeProperty(xml, property, value, true);
    xml.writeEndElement();
    xml.writeEndElement();
}

void writeCustomWidgets(QXmlStreamWriter &xml)
{
    const char *const controls[][2] = {
        { "plx::mvPLXRecs", "navigator/mvplxrecs.h" },    { "plx::mvName", "fields/mvname.h" },
        { "plx::mvVIText", "fields/mvvitext.h" },         { "plx::mvChecks", "fields/mvchecks.h" },
        { "plx::mvChkWithTxt", "fields/mvchkwithtxt.h" },
    };
    xml.writeStartElement(QStringLiteral("customwidgets"));
    for (const auto &control : controls) {
        xml.writeStartElement(QStringLiteral("customwidget"));
        xml.writeTextElement(QStringLiteral("class"), QString::fromLatin1(control[0]));
        xml.writeTextElement(QStringLiteral("extends"), QStringLiteral("QWidget"));
        xml.writeTextElement(QStringLiteral("header"), QString::fromLatin1(control[1]));
        xml.writeEndElement();
    }
    xml.writeEndElement();
}

void writeFieldControls(QXmlStreamWriter &xml, const HostForm &shown)
{
    if (mvName *rows = shown.textRows())
        writeControl(xml, QStringLiteral("plx::mvName"), QStringLiteral("names"),
                     { { QStringLiteral("nUbound"), rows->nUbound() },
                       { QStringLiteral("sCaptions"), rows->sCaptions() },
                       { QStringLiteral("sFieldNames"), rows->sFieldNames() } });
    int n = 0;
    for (mvVIText *valueRow : shown.valueRows())
        if (valueRow)
            writeControl(xml, QStringLiteral("plx::mvVIText"),
                         QStringLiteral("valueItems%1").arg(++n),
                         { { QStringLiteral("sCaptions"), valueRow->sCaptions() },
                           { QStringLiteral("sFieldNames"), valueRow->sFieldNames() },
                           { QStringLiteral("sVINIFile"), valueRow->sVINIFile() },
                           { QStringLiteral("sVINISec"), valueRow->sVINISec() },
                           { QStringLiteral("sVINIVar"), valueRow->sVINIVar() } });
    if (mvChecks *checks = shown.checkRows(); checks && !checks->isHidden())
        writeControl(xml, QStringLiteral("plx::mvChecks"), QStringLiteral("checks"),
                     { { QStringLiteral("nUbound"), checks->nUbound() },
                       { QStringLiteral("sCaptions"), checks->sCaptions() },
                       { QStringLiteral("sFieldNames"), checks->sFieldNames() } });
    n = 0;
    for (mvChkWithTxt *pair : shown.pairs())
        if (pair)
            writeControl(xml, QStringLiteral("plx::mvChkWithTxt"),
                         QStringLiteral("checkWithText%1").arg(++n),
                         { { QStringLiteral("sCaptionChk"), pair->sCaptionChk() },
                           { QStringLiteral("sFieldNameChk"), pair->sFieldNameChk() },
                           { QStringLiteral("sCaptionsTxt"), pair->sCaptionsTxt() },
                           { QStringLiteral("sFieldNamesTxt"), pair->sFieldNamesTxt() } });
}

} // namespace

QList<QObject *> DesignedForm::fieldControls() const
{
    QList<QObject *> controls;
    for (mvName *c : names)
        controls << c;
    for (mvVIText *c : valueRows)
        controls << c;
    for (mvChecks *c : checks)
        controls << c;
    for (mvChkWithTxt *c : pairs)
        controls << c;
    return controls;
}

Result<DesignedForm> loadDesignedForm(const QString &path)
{
    QFile file(path);
    if (!file.exists())
        return Status(Status::Code::NotFound,
                      QStringLiteral("The designed form %1 was not found.").arg(path));
    if (!file.open(QIODevice::ReadOnly))
        return Status(Status::Code::IoError,
                      QStringLiteral("%1 cannot be read: %2").arg(path, file.errorString()));
    ControlLoader loader;
    loader.setWorkingDirectory(QFileInfo(path).absoluteDir());
    DesignedForm designed;
    designed.root.reset(loader.load(&file));
    if (!designed.root)
        return Status(
            Status::Code::InvalidArgument,
            QStringLiteral("%1 is not a form Qt can read: %2").arg(path, loader.errorString()));
    const QList<mvPLXRecs *> navigators = formControls<mvPLXRecs>(*designed.root);
    if (navigators.size() != 1)
        return Status(Status::Code::InvalidArgument,
                      QStringLiteral("%1 holds %2 record navigators (mvPLXRecs); a form needs "
                                     "exactly one")
                          .arg(path)
                          .arg(navigators.size()));
    designed.nav = navigators.first();
    designed.names = formControls<mvName>(*designed.root);
    designed.valueRows = formControls<mvVIText>(*designed.root);
    designed.checks = formControls<mvChecks>(*designed.root);
    designed.pairs = formControls<mvChkWithTxt>(*designed.root);
    return designed;
}

void applyDesignedSettings(const DesignedForm &designed, FormDescription &form,
                           QStringList *warnings)
{
    const mvPLXRecs *nav = designed.nav;
    auto take = [](QString &field, const QString &designedValue) {
        if (!designedValue.isEmpty())
            field = designedValue;
    };
    take(form.idField, trimmedProperty(nav, "sIDfield"));
    take(form.descField, trimmedProperty(nav, "sDescfield"));
    take(form.desc, trimmedProperty(nav, "sDesc"));
    take(form.parentID, trimmedProperty(nav, "sParentID"));
    if (!nav->bGenerateIDs())
        form.generateIDs = false;
    const QString sorts = trimmedProperty(nav, "sorts");
    if (!sorts.isEmpty())
        form.sorts = readSorts(sorts, warnings);
    const QString required = trimmedProperty(nav, "required");
    if (!required.isEmpty()) {
        form.required.clear();
        for (const QString &field : required.split(QLatin1Char(','), Qt::SkipEmptyParts))
            form.required << field.trimmed();
    }
    // The designed rows are the form's: none is generated from the table.
    form.rows.clear();
    form.checks.clear();
    form.pairs.clear();
    form.valueRows.clear();
}

QByteArray designedFormXml(const HostForm &shown)
{
    const FormDescription &form = shown.form();
    QByteArray out;
    QXmlStreamWriter xml(&out);
    xml.setAutoFormatting(true);
    xml.setAutoFormattingIndent(1);
    xml.writeStartDocument();
    xml.writeStartElement(QStringLiteral("ui"));
    xml.writeAttribute(QStringLiteral("version"), QStringLiteral("4.0"));
    xml.writeTextElement(QStringLiteral("class"), QStringLiteral("Form"));
    xml.writeStartElement(QStringLiteral("widget"));
    xml.writeAttribute(QStringLiteral("class"), QStringLiteral("QWidget"));
    xml.writeAttribute(QStringLiteral("name"), QStringLiteral("Form"));
    writeProperty(xml, QStringLiteral("windowTitle"), form.desc);
    xml.writeStartElement(QStringLiteral("layout"));
    xml.writeAttribute(QStringLiteral("class"), QStringLiteral("QVBoxLayout"));
    xml.writeAttribute(QStringLiteral("name"), QStringLiteral("column"));
    writeControl(xml, QStringLiteral("plx::mvPLXRecs"), QStringLiteral("navigator"),
                 { { QStringLiteral("sIDfield"), form.idField },
                   { QStringLiteral("sDescfield"), form.descField },
                   { QStringLiteral("sDesc"), form.desc },
                   { QStringLiteral("sParentID"), form.parentID },
                   { QStringLiteral("bGenerateIDs"), form.generateIDs } },
                 { { QStringLiteral("sorts"), sortsText(form.sorts) },
                   { QStringLiteral("required"), form.required.join(QStringLiteral(", ")) } });
    writeFieldControls(xml, shown);
    // What is left of the column's height goes below the controls, not between them.
    xml.writeStartElement(QStringLiteral("item"));
    xml.writeStartElement(QStringLiteral("spacer"));
    xml.writeAttribute(QStringLiteral("name"), QStringLiteral("rest"));
    xml.writeStartElement(QStringLiteral("property"));
    xml.writeAttribute(QStringLiteral("name"), QStringLiteral("orientation"));
    xml.writeTextElement(QStringLiteral("enum"), QStringLiteral("Qt::Vertical"));
    xml.writeEndElement();
    xml.writeEndElement();
    xml.writeEndElement();
    xml.writeEndElement(); // layout
    xml.writeEndElement(); // widget
    writeCustomWidgets(xml);
    xml.writeEndElement(); // ui
    xml.writeEndDocument();
    return out;
}

} // namespace plx::form
