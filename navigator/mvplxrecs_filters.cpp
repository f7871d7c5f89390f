// navigator/mvplxrecs_filters.cpp: the filter box. The navigator lists the table's saved
// filters and reports the user's choice; the host turns a filter into a WHERE text and
// hands it back through SetSQLFilterAndWhere, and the navigator re-queries.
#include "navigator/filterlist.h"
#include "navigator/mvplxrecs_p.h"

#include "services/activitylog.h"
#include "services/ini.h"
#include "services/paths.h"
#include "services/texthelpers.h"
#include "services/widgets/listcontrols.h"

#include <QComboBox>
#include <QPushButton>
#include <QScopedValueRollback>

namespace plx {

namespace {

const QString kNoFilter = QStringLiteral(" [None]");

} // namespace

void PLXLoadFilterINI(QComboBox *list, const QString &directory)
{
    if (!list)
        return;
    const QString file = setPathName(directory, QStringLiteral("HBFiltersPLX.INI"), false);
    // A filter file too large to be one is not read; the log says why the list is empty.
    if (const QString tooLarge = settingsFileSizeProblem(file); !tooLarge.isEmpty()) {
        list->clear();
        logEntry(QStringLiteral("PLXLoadFilterINI"), tooLarge);
        return;
    }
    // Element 0 of the section list is a placeholder; the names start at 1.
    const QStringList sections = getINISections(file);
    list->clear();
    for (qsizetype i = 1; i < sections.size(); ++i)
        list->addItem(sections[i]);
}

QString filterFilePath(const QString &tablePath)
{
    return setPathName(getFileDir(fromDiskPath(tablePath)), QStringLiteral("HBFiltersPLX.INI"),
                       false);
}

void mvPLXRecs::InitFilters()
{
    d_ptr->trapped("InitFilters", [&] { d_ptr->initFilters(); });
}

void mvPLXRecsPrivate::initFilters()
{
    const QScopedValueRollback selecting(settingFilter, true);
    cboFilter->clear();
    // The filter file sits beside the table file (for SQLite, beside the database file).
    const QString tablePath = getLenTrim(sDBFPathFileName) >= 1 ? sDBFPathFileName : dataPath;
    if (getLenTrim(tablePath) >= 1)
        PLXLoadFilterINI(cboFilter, getFileDir(fromDiskPath(tablePath)));
    cboFilter->addItem(kNoFilter);
    cboFilter->setCurrentIndex(-1);
}

void mvPLXRecsPrivate::filterClicked(int index)
{
    Q_Q(mvPLXRecs);
    if (settingFilter || index < 0)
        return;
    bInitiator = true;
    sEventInfo = QStringLiteral("cboFilter_click");
    Q_EMIT q->FilterChange(cboFilter->itemText(index));
}

void mvPLXRecsPrivate::filterButtonClicked()
{
    Q_Q(mvPLXRecs);
    sEventInfo = QStringLiteral("cmdFilter_click");
    Q_EMIT q->FilterEdit();
}

void mvPLXRecs::SetSQLFilterAndWhere(const QString &sFilterDescInp, const QString &sSQLWhereINP,
                                     bool bRefreshRS)
{
    d_ptr->trapped("SetSQLFilterAndWhere",
                   [&] { d_ptr->setFilterAndWhere(sFilterDescInp, sSQLWhereINP, bRefreshRS); });
}

void mvPLXRecsPrivate::setFilterAndWhere(const QString &desc, const QString &where, bool refresh)
{
    const QScopedValueRollback selecting(settingFilter, true);
    const QString shown = getLenTrim(desc) >= 1 ? desc : kNoFilter;
    setComboBox(cboFilter, shown, false);
    const QString whereBefore = sSQLWhere;
    sSQLWhere = where;
    if (refresh) {
        // The record shown stays current when the filter keeps it; otherwise the first.
        lastQueryError.clear();
        if (requery(currentIDText(), true)) {
            filterInForce = shown;
        } else {
            // A filter that cannot run leaves everything as it was, the box included, so
            // the next sort change runs the statement that works.
            sSQLWhere = whereBefore;
            if (filterInForce.isEmpty())
                cboFilter->setCurrentIndex(-1);
            else
                setComboBox(cboFilter, filterInForce, false);
            if (!lastQueryError.isEmpty())
                showBox(QStringLiteral("The filter '") + trimSpaces(shown)
                            + QStringLiteral("' could not be applied:") + QStringLiteral("\r\n\r\n")
                            + lastQueryError,
                        MsgStyle::Exclamation, QStringLiteral("Filter Not Applied"));
        }
        idle();
    } else {
        filterInForce = shown;
    }
    for (BoundControl *control : fieldControls())
        control->UpdateDBF();
    idle();
}

void mvPLXRecs::ClearFilter()
{
    Q_D(mvPLXRecs);
    d->trapped("ClearFilter", [&] {
        const QScopedValueRollback selecting(d->settingFilter, true);
        d->cboFilter->setCurrentIndex(-1);
    });
}

} // namespace plx
