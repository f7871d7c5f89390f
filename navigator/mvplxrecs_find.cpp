// navigator/mvplxrecs_find.cpp: the find box. Every key typed runs a find at once, so the
// navigator follows the user's typing; Enter keeps the text in the search list. A find
// never filters the navigator's records: a separate query finds the first match, and the
// navigator then moves its own record source onto that record's ID.
#include "navigator/mvplxrecs.h"

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

} // namespace

bool mvPLXRecs::handleFindKey(QKeyEvent *key)
{
    if (key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter) {
        // Taken here, before the combo box sees it: an editable combo box reports one
        // Enter both as returnPressed and as activated, and a find must run once.
        findEnter();
        return true;
    }
    QLineEdit *edit = m_cboFind->lineEdit();
    const QString current = edit->text();
    const int selStart = edit->hasSelectedText() ? edit->selectionStart() : edit->cursorPosition();
    const int selLength = edit->hasSelectedText() ? int(edit->selectedText().size()) : 0;
    QString typed;
    if (key->key() == Qt::Key_Backspace && key->modifiers() == Qt::NoModifier) {
        // The highlighted remainder was never typed: Backspace takes it and the character
        // before it, as a user who typed those characters expects.
        if (selLength > 0 && selStart + selLength == current.size())
            typed = current.left(qMax(0, selStart - 1));
        else if (selLength > 0)
            typed = current.left(selStart) + current.mid(selStart + selLength);
        else if (selStart > 0)
            typed = current.left(selStart - 1) + current.mid(selStart);
        else
            return true;
    } else if (isTypedCharacter(key)) {
        // The highlighted part is what the search list offered, not what was typed.
        typed = current.left(selStart) + key->text() + current.mid(selStart + selLength);
    } else {
        return false; // arrows, Home, End, Delete, Tab, Escape: the box's own business
    }
    typed.truncate(kFindMaxLength);
    m_findRs.reset();

    int entry = -1;
    for (int i = 0; i < m_cboFind->count() && !typed.isEmpty(); ++i) {
        if (m_cboFind->itemText(i).startsWith(typed, Qt::CaseInsensitive)) {
            entry = i;
            break;
        }
    }
    if (entry >= 0) {
        // The characters typed keep the case they were typed in.
        const QString offered = typed + m_cboFind->itemText(entry).mid(typed.size());
        m_cboFind->setCurrentIndex(entry);
        edit->setText(offered);
        // Keep the cursor behind the typed characters and the remainder highlighted.
        edit->setSelection(int(typed.size()), int(offered.size() - typed.size()));
    } else {
        edit->setText(typed);
        edit->setCursorPosition(int(typed.size()));
    }
    if (getLenTrim(typed) >= 1)
        runFind();
    return true;
}

void mvPLXRecs::findActivated(int index)
{
    if (index >= 0)
        findEnter();
}

void mvPLXRecs::findEnter()
{
    if (getLenTrim(m_cboSort->currentText()) < 1) {
        showBox(QStringLiteral(
                    "You cannot use the search function unless you have selected a Sort order."),
                MsgStyle::OKOnly, QStringLiteral("No Sort Selected"));
        return;
    }
    const QString text = m_cboFind->currentText();
    if (getLenTrim(text) < 1)
        return;
    putOnTopOfSearchList(text);
    runFind();
}

void mvPLXRecs::putOnTopOfSearchList(const QString &text)
{
    QStringList texts{ text };
    QStringList ids{ m_arrayID.value(m_cboFind->findText(text, Qt::MatchExactly)) };
    for (int i = 0; i < m_cboFind->count(); ++i) {
        if (m_cboFind->itemText(i) != text) {
            texts.append(m_cboFind->itemText(i));
            ids.append(m_arrayID.value(i));
        }
    }
    m_cboFind->clear();
    m_cboFind->addItems(texts);
    m_arrayID = ids;
    m_cboFind->setCurrentIndex(0);
    m_cboFind->lineEdit()->setSelection(0, int(text.size()));
}

bool mvPLXRecs::openFindSource(const QString &searchText, std::shared_ptr<RecordSource> *found)
{
    const QString sql = queryText().find(searchText, currentSortFields());
    if (sql.isEmpty())
        return false;
    Result<std::unique_ptr<RecordSource>> opened = m_db->OpenRecordset(sql);
    if (!opened.isOk()) {
        logEntry(m_sUser,
                 messageTitle() + QStringLiteral(": find failed: ") + opened.status().message(),
                 m_services);
        return false;
    }
    *found = std::shared_ptr<RecordSource>(std::move(opened.value()));
    return true;
}

QString mvPLXRecs::cutToSortFieldWidths(const QString &search) const
{
    // No value of a text field is longer than the field, so the characters beyond its
    // width can never match: dropping them first spares the widening loop one query per
    // character of a long pasted text.
    const QString sortFields = currentSortFields();
    QStringList pieces = search.split(QLatin1Char('\t'));
    for (qsizetype i = 0; i < pieces.size(); ++i) {
        const QString field =
            trimSpaces(getDelimField(sortFields, QStringLiteral(","), qint16(i + 1), QString()));
        const int index = m_rs->fieldIndex(field);
        if (index < 0)
            continue;
        const FieldInfo &info = m_rs->fieldInfos().at(index);
        if (info.type == FieldType::Text && info.size > 0 && pieces[i].size() > info.size)
            pieces[i].truncate(info.size);
    }
    return pieces.join(QLatin1Char('\t'));
}

mvPLXRecs::FindOutcome mvPLXRecs::findLongestMatch(const QString &search,
                                                   std::shared_ptr<RecordSource> *found)
{
    // The text as typed first: nearly always something starts with it. Otherwise the find
    // widens to the longest start of the text that something starts with. A shorter start
    // matches whatever a longer one matches, so halving the range finds that length in a
    // few queries however long the text is.
    auto matches = [&](qsizetype length, std::shared_ptr<RecordSource> *hit, bool *failed) {
        std::shared_ptr<RecordSource> rs;
        if (!openFindSource(search.left(length), &rs)) {
            *failed = true;
            return false;
        }
        if (rs->isBOF() && rs->isEOF())
            return false;
        *hit = std::move(rs);
        return true;
    };
    bool failed = false;
    if (matches(search.size(), found, &failed))
        return FindOutcome::Found;
    qsizetype known = 0; // longest length known to match (0: none yet)
    qsizetype fails = search.size(); // shortest length known to find nothing
    while (!failed && fails - known > 1) {
        const qsizetype mid = known + (fails - known) / 2;
        std::shared_ptr<RecordSource> hit;
        if (matches(mid, &hit, &failed)) {
            known = mid;
            *found = std::move(hit);
        } else {
            fails = mid;
        }
    }
    if (failed)
        return FindOutcome::Failed; // the query could not run: said in the activity log
    return known > 0 ? FindOutcome::Found : FindOutcome::NothingFound;
}

void mvPLXRecs::runFind()
{
    if (!m_rs || !m_db || m_findUnderWay)
        return;
    m_findUnderWay = true;
    const QString trimmed = trimSpaces(m_cboFind->currentText());
    const QString search = cutToSortFieldWidths(trimmed.toUpper());
    std::shared_ptr<RecordSource> found;
    const FindOutcome outcome = findLongestMatch(search, &found);
    if (outcome != FindOutcome::Found) {
        if (outcome == FindOutcome::NothingFound)
            showBox(QStringLiteral("Search ") + m_cboSort->currentText() + QStringLiteral(" for '")
                        + trimmed + QStringLiteral("'") + QStringLiteral("\r\n\r\n")
                        + QStringLiteral("The search did not find any records."),
                    MsgStyle::Information, QStringLiteral("Nothing Found"));
        m_findUnderWay = false;
        return;
    }
    m_findRs = found;
    (void)m_findRs->MoveLast();
    (void)m_findRs->MoveFirst();
    idle();
    m_bInitiator = true;
    const Result<QVariant> firstID = m_findRs->value(m_sIDfield);
    const QString id = firstID.isOk() ? firstID.value().toString() : QString();
    SetFindFromID(id);
    m_sEventInfo = QStringLiteral("SetFindRS after SetFindFromID");
    Q_EMIT IDChange(id);
    setScrollBar();
    rememberFoundID(m_cboFind->currentText(), id);
    m_findUnderWay = false;
}

void mvPLXRecs::rememberFoundID(const QString &text, const QString &id)
{
    const int entry = m_cboFind->findText(text, Qt::MatchExactly);
    if (entry < 0)
        return;
    while (m_arrayID.size() < m_cboFind->count())
        m_arrayID.append(QString());
    m_arrayID[entry] = id;
}

void mvPLXRecs::SetFindFromID(const QString &sID)
{
    if (!m_rs)
        return;
    idle();
    const qint32 before = m_rs->AbsolutePosition();
    const Status found = m_rs->FindFirst(queryText().idCriterion(m_sIDfield, sID));
    if ((!found.isOk() || m_rs->NoMatch()) && before >= 0)
        (void)m_rs->setAbsolutePosition(before);
    // The bar follows the record without raising a second IDChange of its own.
    setScrollBar();
    Q_EMIT IDChange(currentIDText());
    deriveParentID();
}

QString mvPLXRecs::sIDfromList(qint32 lList)
{
    if (lList < 0 || lList >= m_cboFind->count()) {
        showBox(QStringLiteral("Error in ID from list: ") + QString::number(lList)
                    + QStringLiteral("\r\n\r\n"),
                MsgStyle::OKOnly, QStringLiteral("ID Error"));
        return QString();
    }
    return m_arrayID.value(lList);
}

void mvPLXRecs::ClearSearch()
{
    m_cboFind->setEditText(QString());
}

qint16 mvPLXRecs::nSearchList()
{
    return qint16(qMin(m_cboFind->count(), 32767));
}

QString mvPLXRecs::sSearchList(qint16 n)
{
    return n >= 0 && n < m_cboFind->count() ? m_cboFind->itemText(n) : QString();
}

void mvPLXRecs::sSearchListADD(const QString &s)
{
    // Changing the list must not change what the user has typed.
    const QString typed = m_cboFind->currentText();
    for (int i = m_cboFind->count() - 1; i >= 0; --i) {
        if (m_cboFind->itemText(i) == s) {
            m_cboFind->removeItem(i);
            if (i < m_arrayID.size())
                m_arrayID.removeAt(i);
        }
    }
    m_cboFind->addItem(s);
    while (m_arrayID.size() < m_cboFind->count())
        m_arrayID.append(QString());
    m_cboFind->setEditText(typed);
}

void mvPLXRecs::sSearchListCLR()
{
    const QString typed = m_cboFind->currentText();
    m_cboFind->clear();
    m_arrayID.clear();
    m_cboFind->setEditText(typed);
}

} // namespace plx
