// apps/plxform/hostform_designed.cpp: a form laid out in Qt Designer, run as plxform runs the
// forms it makes.
#include "apps/plxform/designedform.h"
#include "apps/plxform/formwidgets.h"
#include "apps/plxform/hostform.h"

#include "fields/mvchecks.h"
#include "fields/mvchkwithtxt.h"
#include "fields/mvname.h"
#include "fields/mvvitext.h"
#include "navigator/mvplxrecs.h"
#include "services/recordsource/recordsource.h"
#include "services/widgets/boundcontrol.h"

#include <QScrollArea>

namespace plx::form {

bool HostForm::openDesignedForm(DesignedForm designed, const FormDescription &form,
                                QStringList *warnings, QString *error)
{
    FormDescription shown = form;
    applyDesignedSettings(designed, shown, warnings);
    mvPLXRecs *nav = designed.nav;
    nav->setServices(m_services);
    std::shared_ptr<Database> db;
    if (!openTable(shown, *nav, db, error))
        return false;
    if (shown.desc.isEmpty())
        shown.desc = shown.table;
    configureNavigator(*nav, shown);
    // Memo rows a few lines high, as in the forms plxform makes, unless designed taller.
    const QList<FieldInfo> fields = nav->rs()->fieldInfos();
    for (mvName *rows : designed.names) {
        requireValues(*rows, shown.required);
        for (qint16 n = 0; n <= rows->nUbound(); ++n)
            if (isMemo(fields, rows->sFieldName(n)) && rows->iHeight(n) < kMemoRowHeight)
                rows->setIHeight(n, kMemoRowHeight);
        rows->setNUbound(rows->nUbound()); // the stack's height takes its rows' again
    }
    const QList<QObject *> controls = designed.fieldControls();
    nav->setCMervaneControls(controls);
    for (QObject *control : controls)
        if (auto *bound = dynamic_cast<BoundControl *>(control))
            bound->setLocked(true);

    const QString problems = nav->InitControl();
    if (!problems.isEmpty())
        *warnings += problems.split(QStringLiteral("\r\n"));
    nav->InitFilters();

    m_form = shown;
    m_db = db;
    // A designed form is as large as its designer made it: the window scrolls what does
    // not fit.
    auto *scroll = new QScrollArea;
    scroll->setWidgetResizable(true);
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setWidget(designed.root.release());
    QList<mvVIText *> valueRows = designed.valueRows;
    placeWidgets(scroll, nav, designed.names.value(0), valueRows, designed.checks.value(0),
                 designed.pairs);
    m_readOnlyReason = m_nav->rs()->readOnlyReason();
    m_madeIDRow = -1;
    for (qint16 n = 0; m_rows && m_form.generateIDs && n <= m_rows->nUbound(); ++n)
        if (m_rows->sFieldName(n).compare(m_form.idField, Qt::CaseInsensitive) == 0)
            m_madeIDRow = n;
    showTitle();
    updateStatus();
    return true;
}

} // namespace plx::form
