// navigator/mvplxrecs_filters.cpp: the filter box. The navigator lists the table's saved
// filters and reports the user's choice; the host turns a filter into a WHERE text and
// hands it back through SetSQLFilterAndWhere, and the navigator re-queries.
#include "navigator/mvplxrecs.h"
#include "navigator/filterlist.h"

#include "services/activitylog.h"
#include "services/ini.h"
#include "services/paths.h"
#include "services/texthelpers.h"
#include "services/widgets/listcontrols.h"

#include <QComboBox>
#include <QPushButton>

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
    m_settingFilter = true;
    m_cboFilter->clear();
    // The filter file sits beside the table file (for SQLite, beside the database file).
    const QString tablePath = getLenTrim(m_sDBFPathFileName) >= 1 ? m_sDBFPathFileName : m_dataPath;
    if (getLenTrim(tablePath) >= 1)
        PLXLoadFilterINI(m_cboFilter, getFileDir(fromDiskPath(tablePath)));
    m_cboFilter->addItem(kNoFilter);
    m_cboFilter->setCurrentIndex(-1);
    m_settingFilter = false;
}

void mvPLXRecs::filterClicked(int index)
{
    if (m_settingFilter || index < 0)
        return;
    m_bInitiator = true;
    m_sEventInfo = QStringLiteral("cboFilter_click");
    Q_EMIT FilterChange(m_cboFilter->itemText(index));
}

void mvPLXRecs::filterButtonClicked()
{
    m_sEventInfo = QStringLiteral("cmdFilter_click");
    Q_EMIT FilterEdit();
}

void mvPLXRecs::SetSQLFilterAndWhere(const QString &sFilterDescInp, const QString &sSQLWhereINP,
                                     bool bRefreshRS)
{
    m_settingFilter = true;
    const QString shown = getLenTrim(sFilterDescInp) >= 1 ? sFilterDescInp : kNoFilter;
    setComboBox(m_cboFilter, shown, false);
    const QString whereBefore = m_sSQLWhere;
    m_sSQLWhere = sSQLWhereINP;
    if (bRefreshRS) {
        // The record shown stays current when the filter keeps it; otherwise the first.
        m_lastQueryError.clear();
        if (requery(currentIDText(), true)) {
            m_filterInForce = shown;
        } else {
            // A filter that cannot run leaves everything as it was, the box included, so
            // the next sort change runs the statement that works.
            m_sSQLWhere = whereBefore;
            if (m_filterInForce.isEmpty())
                m_cboFilter->setCurrentIndex(-1);
            else
                setComboBox(m_cboFilter, m_filterInForce, false);
            if (!m_lastQueryError.isEmpty())
                showBox(QStringLiteral("The filter '") + trimSpaces(shown)
                            + QStringLiteral("' could not be applied:") + QStringLiteral("\r\n\r\n")
                            + m_lastQueryError,
                        MsgStyle::Exclamation, QStringLiteral("Filter Not Applied"));
        }
        idle();
    } else {
        m_filterInForce = shown;
    }
    for (BoundControl *control : cMervaneControls())
        control->UpdateDBF();
    idle();
    m_settingFilter = false;
}

void mvPLXRecs::ClearFilter()
{
    m_settingFilter = true;
    m_cboFilter->setCurrentIndex(-1);
    m_settingFilter = false;
}

} // namespace plx
