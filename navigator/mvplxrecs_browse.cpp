// navigator/mvplxrecs_browse.cpp: the Browse button and the find button's search results.
// The grid form and its columns are the dialog's (dialogs/frmgrideditbare.h); here the
// navigator decides what to show and moves onto the record the user chose.
#include "navigator/browsegrid_p.h"
#include "navigator/mvplxrecs_p.h"

#include "services/recordsource/recordsource.h"
#include "services/texthelpers.h"

#include <QComboBox>

namespace plx {

void mvPLXRecs::IDBrowseGrid()
{
    d_ptr->trapped("IDBrowseGrid", [&] { d_ptr->browseAll(); });
}

void mvPLXRecsPrivate::browseAll()
{
    // A record in edit keeps its record source where it is until SAVE or CANCEL.
    if (!rs || commands.mode() != RecordCommands::Mode::None || rs->editMode() != EditMode::None)
        return;
    const QString id =
        browse(BrowseGrid::wholeTableCaption(sDesc), BrowseGrid::wholeTableLayoutKey(sDesc), rs,
               rs->AbsolutePosition(), QString());
    goToChosen(id, QStringLiteral("IDBrowseGrid"));
}

void mvPLXRecsPrivate::findButtonClicked()
{
    const QString text = cboFind->currentText();
    if (getLenTrim(text) < 1)
        return;
    // Typing and Enter run the find; a text that has not been searched yet (put in the box
    // by the host, say) is searched first, as Enter would. When that find tells the user
    // why there is nothing (no sort chosen, nothing found), there is nothing more to say.
    if (findSession.searchedText() != text) {
        findEnter();
        if (findSession.searchedText() != text
            || findSession.lastOutcome() == FindSession::Outcome::NothingFound)
            return;
    }
    browseSearch();
}

void mvPLXRecsPrivate::browseSearch()
{
    const QString text = cboFind->currentText();
    const std::shared_ptr<RecordSource> found = findSession.found();
    if (!found || findSession.searchedText() != text) {
        showBox(BrowseGrid::nothingToBrowseText(), MsgStyle::Information,
                QStringLiteral("Nothing to Browse"));
        cboFind->setFocus(Qt::OtherFocusReason);
        return;
    }
    if (found->isBOF() && found->isEOF()) {
        const QString sortField =
            getDelimField(currentSortFields(), QStringLiteral(","), 1, QString());
        showBox(BrowseGrid::noResultsText(sortField, text), MsgStyle::Information,
                QStringLiteral("No Results Found"));
        return;
    }
    const QString current = currentIDText();
    const QString id =
        browse(BrowseGrid::searchCaption(text), BrowseGrid::searchLayoutKey(sDesc), found, -1,
               current.isEmpty() ? QString() : queryText().idCriterion(sIDfield, current));
    goToChosen(id, QStringLiteral("BrowseSearch"));
}

QString mvPLXRecsPrivate::browse(const QString &caption, const QString &layoutKey,
                                 std::shared_ptr<RecordSource> records, qint32 startRow,
                                 const QString &startCriterion)
{
    Q_Q(mvPLXRecs);
    BrowseGrid::Request request;
    request.caption = caption;
    request.layoutKey = layoutKey;
    request.records = std::move(records);
    request.settingsFile = sUserINIFile;
    request.idField = sIDfield;
    request.startRow = startRow;
    request.startCriterion = startCriterion;
    request.services = services;
    request.parent = q->window();
    return BrowseGrid::browse(request);
}

void mvPLXRecsPrivate::goToChosen(const QString &id, const QString &eventInfo)
{
    if (id.isEmpty())
        return;
    // Set before the move, so the one IDChange it raises already tells where it came from.
    bInitiator = true;
    sEventInfo = eventInfo;
    setFindFromID(id);
}

} // namespace plx
