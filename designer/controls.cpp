// designer/controls.cpp: what the widget box says about each control, and the size a new
// one gets on a form: tall enough for the rows it starts with, wide enough for a caption
// and a field.
#include "designer/controlplugin.h"

#include "fields/mvchecks.h"
#include "fields/mvchkwithtxt.h"
#include "fields/mvname.h"
#include "fields/mvvitext.h"
#include "navigator/mvplxrecs.h"

namespace plx::designer {

namespace {

// A new form entry: the object name Designer numbers from, a size in pixels, and the
// properties (as .ui XML) that give its first row a caption, as Designer's own widgets
// start with "TextLabel" or "CheckBox", so the row is seen on the form.
QString entry(const QString &className, const QString &objectName, int width, int height,
              const QString &properties = QString())
{
    return QStringLiteral("<ui language=\"c++\">\n"
                          " <widget class=\"%1\" name=\"%2\">\n"
                          "  <property name=\"geometry\">\n"
                          "   <rect><x>0</x><y>0</y><width>%3</width><height>%4</height></rect>\n"
                          "  </property>\n"
                          "%5"
                          " </widget>\n"
                          "</ui>\n")
        .arg(className, objectName)
        .arg(width)
        .arg(height)
        .arg(properties);
}

// A string-list property of one entry.
QString firstRow(const char *property, const char *text)
{
    return QStringLiteral("  <property name=\"%1\"><stringlist><string>%2</string></stringlist>"
                          "</property>\n")
        .arg(QLatin1String(property), QLatin1String(text));
}

template<typename Control> std::function<QWidget *(QWidget *)> maker()
{
    return [](QWidget *parent) -> QWidget * { return new Control(parent); };
}

ControlDescription navigator()
{
    const QString name = QStringLiteral("plx::mvPLXRecs");
    return { name,
             QStringLiteral("navigator/mvplxrecs.h"),
             QStringLiteral("Record navigator: sort, find, filter, browse and record commands"),
             QStringLiteral("Connects to a table (sDBFPathFileName, or a record source set in "
                            "code), steps through its records in the sorts the form registers, "
                            "finds records by typed text and carries NEW, COPY, EDIT, SAVE, "
                            "CANCEL and DELETE for the field controls registered with it. "
                            "Set sIDfield, sDescfield and sDesc here."),
             QStringLiteral(":/plx/designer/mvplxrecs.png"),
             entry(name, QStringLiteral("navigator"), 560, 150),
             maker<mvPLXRecs>() };
}

ControlDescription names()
{
    const QString name = QStringLiteral("plx::mvName");
    return { name,
             QStringLiteral("fields/mvname.h"),
             QStringLiteral("Bound text rows: a caption and a text field per row"),
             QStringLiteral("A stack of labelled text fields, each bound to one field of the "
                            "navigator's current record. Rows are 0 .. nUbound; give their "
                            "captions in sCaptions and their fields in sFieldNames, one line "
                            "a row."),
             QStringLiteral(":/plx/designer/mvname.png"),
             entry(name, QStringLiteral("names"), 320, 60, firstRow("sCaptions", "Caption")),
             maker<mvName>() };
}

ControlDescription valueItems()
{
    const QString name = QStringLiteral("plx::mvVIText");
    return { name,
             QStringLiteral("fields/mvvitext.h"),
             QStringLiteral("Bound text rows whose values come from a list of value items"),
             QStringLiteral("A stack of labelled text fields like mvName whose rows offer a "
                            "list of allowed values, kept in a settings file (sVINIFile, "
                            "sVINISec, sVINIVar). Rows are edited as sCaptions and sFieldNames."),
             QStringLiteral(":/plx/designer/mvvitext.png"),
             entry(name, QStringLiteral("valueItems"), 320, 60, firstRow("sCaptions", "Caption")),
             maker<mvVIText>() };
}

ControlDescription checks()
{
    const QString name = QStringLiteral("plx::mvChecks");
    return { name,
             QStringLiteral("fields/mvchecks.h"),
             QStringLiteral("Bound check boxes: one logical field per row"),
             QStringLiteral("A stack of check boxes, each bound to one field of the navigator's "
                            "current record (logical, or a T/F or 1/0 field). Rows are edited "
                            "as sCaptions and sFieldNames; bBoldOnChk shows ticked rows in bold."),
             QStringLiteral(":/plx/designer/mvchecks.png"),
             entry(name, QStringLiteral("checks"), 240, 60, firstRow("sCaptions", "CheckBox")),
             maker<mvChecks>() };
}

ControlDescription checkWithText()
{
    const QString name = QStringLiteral("plx::mvChkWithTxt");
    return { name,
             QStringLiteral("fields/mvchkwithtxt.h"),
             QStringLiteral("A bound check box with bound text rows beside it"),
             QStringLiteral("A check box (sCaptionChk, sFieldNameChk) with a stack of labelled "
                            "text fields that belong to it (sCaptionsTxt, sFieldNamesTxt, one "
                            "line a row), all bound to the navigator's current record."),
             QStringLiteral(":/plx/designer/mvchkwithtxt.png"),
             entry(name, QStringLiteral("checkWithText"), 420, 60,
                   QStringLiteral(
                       "  <property name=\"sCaptionChk\"><string>CheckBox</string></property>\n")
                       + firstRow("sCaptionsTxt", "Caption")),
             maker<mvChkWithTxt>() };
}

} // namespace

QList<ControlDescription> controlDescriptions()
{
    return { navigator(), names(), valueItems(), checks(), checkWithText() };
}

} // namespace plx::designer
