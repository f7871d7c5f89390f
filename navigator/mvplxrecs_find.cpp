// navigator/mvplxrecs_find.cpp: the find box. Its session (findsession_p.h) knows the
// search list, what was typed and how a find widens; here the box shows it, the boxes say
// what went wrong, and the navigator moves its own records onto the ID found.
#include "navigator/mvplxrecs_p.h"

#include "services/activitylog.h"
#include "services/recordsource/database.h"
#include "services/texthelpers.h"

#include <QComboBox>
#include <QKeyEvent>
#include <QLineEdit>

namespace plx {

namespace {

bool isTypedCharacter(const QKeyEvent *key)
{
    const QString text = key->text();
    if (text.isEmpty() || (key->modifiers() & (Qt::ControlModifier | Qt::MetaModifier)))
        return false;
    for (QChar c : text)
        if (!c.isPrint())
            return false;
    return true;
}

// The find box's text and highlighted part (or cursor) as a key reaches it.
FindSession::Box boxOf(const QLineEdit *edit)
{
    const bool selected = edit->hasSelectedText();
    return { edit->text(), selected ? edit->selectionStart() : edit->cursorPosition(),
             selected ? int(edit->selectedText().size()) : 0 };
}

// Runs `work` on the box's list and puts back what the user has typed there: changing the
// list must not change the find text.
template<typename Work> void keepingTypedText(QComboBox *box, Work work)
{
    const QString typed = box->currentText();
    work();
    box->setEditText(typed);
}

} // namespace

bool mvPLXRecsPrivate::handleFindKey(QKeyEvent *key)
{
    if (key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter) {
        // Taken here, before the combo box sees it: an editable combo box reports one
        // Enter both as returnPressed and as activated, and a find must run once.
        findEnter();
        return true;
    }
    QLineEdit *edit = cboFind->lineEdit();
    std::optional<FindSession::Typed> typed;
    if (key->key() == Qt::Key_Backspace && key->modifiers() == Qt::NoModifier)
        typed = findSession.backspace(boxOf(edit), mvPLXRecs::kFindMaxLength);
    else if (isTypedCharacter(key))
        typed = findSession.character(boxOf(edit), key->text(), mvPLXRecs::kFindMaxLength);
    else
        return false; // arrows, Home, End, Delete, Tab, Escape: the box's own business
    if (!typed)
        return true;
    if (typed->entry >= 0) {
        cboFind->setCurrentIndex(typed->entry);
        edit->setText(typed->shown);
        // Keep the cursor behind the typed characters and the offered rest highlighted.
        edit->setSelection(int(typed->typed.size()),
                           int(typed->shown.size() - typed->typed.size()));
    } else {
        edit->setText(typed->typed);
        edit->setCursorPosition(int(typed->typed.size()));
    }
    if (getLenTrim(typed->typed) >= 1)
        runFind();
    return true;
}

void mvPLXRecsPrivate::findEnter()
{
    if (getLenTrim(cboSort->currentText()) < 1) {
        showBox(QStringLiteral(
                    "You cannot use the search function unless you have selected a Sort order."),
                MsgStyle::OKOnly, QStringLiteral("No Sort Selected"));
        return;
    }
    const QString text = cboFind->currentText();
    if (getLenTrim(text) < 1)
        return;
    findSession.putFirst(text);
    cboFind->clear();
    cboFind->addItems(findSession.texts());
    cboFind->setCurrentIndex(0);
    cboFind->lineEdit()->setSelection(0, int(text.size()));
    runFind();
}

void mvPLXRecsPrivate::runFind()
{
    Q_Q(mvPLXRecs);
    if (!rs || !db || findSession.isRunning())
        return;
    // The IDChange handlers run inside the find: the scroll bar they may move leaves the
    // find box as it is.
    findSession.setRunning(true);
    struct Done
    {
        FindSession &session;
        ~Done() { session.setRunning(false); }
    } done{ findSession };
    const QString boxText = cboFind->currentText();
    const FindSession::Outcome outcome =
        findSession.find(*db, queryText(), currentSortFields(), *rs, boxText, sIDfield);
    if (outcome == FindSession::Outcome::NothingFound) {
        showBox(QStringLiteral("Search ") + cboSort->currentText() + QStringLiteral(" for '")
                    + trimSpaces(boxText) + QStringLiteral("'") + QStringLiteral("\r\n\r\n")
                    + QStringLiteral("The search did not find any records."),
                MsgStyle::Information, QStringLiteral("Nothing Found"));
    } else if (outcome == FindSession::Outcome::Failed && !findSession.failure().isOk()) {
        logEntry(sUser,
                 messageTitle() + QStringLiteral(": find failed: ")
                     + findSession.failure().message(),
                 services);
    }
    if (outcome != FindSession::Outcome::Found)
        return;
    bInitiator = true;
    const QString id = findSession.foundID();
    setFindFromID(id);
    sEventInfo = QStringLiteral("SetFindRS after SetFindFromID");
    Q_EMIT q->IDChange(id);
    setScrollBar();
    findSession.rememberFound(cboFind->currentText(), id);
}

void mvPLXRecs::SetFindFromID(const QString &sID)
{
    d_ptr->trapped("SetFindFromID", [&] { d_ptr->setFindFromID(sID); });
}

void mvPLXRecsPrivate::setFindFromID(const QString &id)
{
    Q_Q(mvPLXRecs);
    if (!rs)
        return;
    idle();
    const qint32 before = rs->AbsolutePosition();
    const Status found = rs->FindFirst(queryText().idCriterion(sIDfield, id));
    if ((!found.isOk() || rs->NoMatch()) && before >= 0)
        (void)rs->setAbsolutePosition(before);
    // The bar follows the record without raising a second IDChange of its own.
    setScrollBar();
    Q_EMIT q->IDChange(currentIDText());
    deriveParentID();
}

QString mvPLXRecs::sIDfromList(qint32 lList)
{
    return d_ptr->trapped("sIDfromList", [&] { return d_ptr->idFromList(lList); });
}

QString mvPLXRecsPrivate::idFromList(qint32 index) const
{
    if (index < 0 || index >= findSession.count()) {
        showBox(QStringLiteral("Error in ID from list: ") + QString::number(index)
                    + QStringLiteral("\r\n\r\n"),
                MsgStyle::OKOnly, QStringLiteral("ID Error"));
        return QString();
    }
    return findSession.foundIDs().value(index);
}

void mvPLXRecs::ClearSearch()
{
    d_ptr->trapped("ClearSearch", [&] { d_ptr->cboFind->setEditText(QString()); });
}

qint16 mvPLXRecs::nSearchList()
{
    return qint16(qMin(d_ptr->findSession.count(), 32767));
}

QString mvPLXRecs::sSearchList(qint16 n)
{
    return d_ptr->findSession.text(n);
}

void mvPLXRecs::sSearchListADD(const QString &s)
{
    Q_D(mvPLXRecs);
    d->trapped("sSearchListADD", [&] {
        d->findSession.append(s);
        keepingTypedText(d->cboFind, [&] {
            for (int i = d->cboFind->count() - 1; i >= 0; --i)
                if (d->cboFind->itemText(i) == s)
                    d->cboFind->removeItem(i);
            d->cboFind->addItem(s);
        });
    });
}

void mvPLXRecs::sSearchListCLR()
{
    Q_D(mvPLXRecs);
    d->trapped("sSearchListCLR", [&] {
        d->findSession.clear();
        keepingTypedText(d->cboFind, [&] { d->cboFind->clear(); });
    });
}

} // namespace plx
