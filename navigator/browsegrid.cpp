// navigator/browsegrid.cpp
#include "navigator/browsegrid_p.h"

#include "dialogs/frmgrideditbare.h"

namespace plx {

QString BrowseGrid::wholeTableCaption(const QString &desc)
{
    return QStringLiteral("Browse records ") + desc;
}

QString BrowseGrid::searchCaption(const QString &findText)
{
    return QStringLiteral("Search results for Find: '") + findText + QStringLiteral("'");
}

QString BrowseGrid::wholeTableLayoutKey(const QString &desc)
{
    return QStringLiteral("BrowseGridCol ") + desc;
}

QString BrowseGrid::searchLayoutKey(const QString &desc)
{
    return QStringLiteral("BrowseSearchCol ") + desc;
}

QString BrowseGrid::nothingToBrowseText()
{
    return QStringLiteral("There are no search results to browse") + QStringLiteral("\r\n\r\n")
        + QStringLiteral("Enter what you want to search for and press the Enter key.");
}

QString BrowseGrid::noResultsText(const QString &sortField, const QString &findText)
{
    const QString field =
        sortField.trimmed().isEmpty() ? QStringLiteral("Unknown field") : sortField.trimmed();
    return QStringLiteral("No records were found for the current search:")
        + QStringLiteral("\r\n\r\n") + field + QStringLiteral(" = '") + findText
        + QStringLiteral("'");
}

QString BrowseGrid::browse(const Request &request)
{
    FrmGridEditBare::Setup setup;
    setup.caption = request.caption;
    setup.records = request.records;
    setup.settingsFile = request.settingsFile;
    setup.layoutKey = request.layoutKey;
    setup.startRow = request.startRow;
    setup.startCriterion = request.startCriterion;
    setup.services = request.services;
    FrmGridEditBare form(std::move(setup), request.parent);
    form.exec();
    const QVariant id = form.chosenValue(request.idField);
    return id.isNull() ? QString() : id.toString();
}

} // namespace plx
