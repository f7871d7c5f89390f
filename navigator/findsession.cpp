// navigator/findsession.cpp
#include "navigator/findsession_p.h"

#include "services/recordsource/querytext.h"
#include "services/recordsource/database.h"
#include "services/texthelpers.h"

namespace plx {

namespace {

// No value of a text field is longer than the field, so the characters beyond its width
// can never match: dropping them first spares the widening one query per character of a
// long pasted text.
QString cutToFieldWidths(const QString &search, const QString &sortFields,
                         const RecordSource &records)
{
    QStringList pieces = search.split(QLatin1Char('\t'));
    for (qsizetype i = 0; i < pieces.size(); ++i) {
        const QString field =
            trimSpaces(getDelimField(sortFields, QStringLiteral(","), qint16(i + 1), QString()));
        const int index = records.fieldIndex(field);
        if (index < 0)
            continue;
        const FieldInfo &info = records.fieldInfos().at(index);
        if (info.type == FieldType::Text && info.size > 0 && pieces[i].size() > info.size)
            pieces[i].truncate(info.size);
    }
    return pieces.join(QLatin1Char('\t'));
}

} // namespace

void FindSession::putFirst(const QString &text)
{
    QStringList texts{ text };
    QStringList ids{ m_ids.value(m_texts.indexOf(text)) };
    for (qsizetype i = 0; i < m_texts.size(); ++i) {
        if (m_texts[i] != text) {
            texts.append(m_texts[i]);
            ids.append(m_ids.value(i));
        }
    }
    m_texts = texts;
    m_ids = ids;
}

void FindSession::append(const QString &text)
{
    for (qsizetype i = m_texts.size() - 1; i >= 0; --i) {
        if (m_texts[i] == text) {
            m_texts.removeAt(i);
            if (i < m_ids.size())
                m_ids.removeAt(i);
        }
    }
    m_texts.append(text);
    while (m_ids.size() < m_texts.size())
        m_ids.append(QString());
}

void FindSession::clear()
{
    m_texts.clear();
    m_ids.clear();
}

void FindSession::rememberFound(const QString &text, const QString &id)
{
    const qsizetype entry = m_texts.indexOf(text);
    if (entry < 0)
        return;
    while (m_ids.size() < m_texts.size())
        m_ids.append(QString());
    m_ids[entry] = id;
}

std::optional<FindSession::Typed> FindSession::backspace(const Box &box, int maxLength)
{
    const QString &current = box.text;
    const int start = box.selectionStart;
    const int length = box.selectionLength;
    if (length > 0 && start + length == current.size())
        return completed(current.left(qMax(0, start - 1)), maxLength);
    if (length > 0)
        return completed(current.left(start) + current.mid(start + length), maxLength);
    if (start > 0)
        return completed(current.left(start - 1) + current.mid(start), maxLength);
    return std::nullopt;
}

FindSession::Typed FindSession::character(const Box &box, const QString &characters, int maxLength)
{
    const QString &current = box.text;
    return *completed(current.left(box.selectionStart) + characters
                          + current.mid(box.selectionStart + box.selectionLength),
                      maxLength);
}

std::optional<FindSession::Typed> FindSession::completed(QString typed, int maxLength)
{
    typed.truncate(maxLength);
    // The user types again: the last find's query is done with.
    m_found.reset();
    Typed result{ typed, typed, -1 };
    for (qsizetype i = 0; i < m_texts.size() && !typed.isEmpty(); ++i) {
        if (m_texts[i].startsWith(typed, Qt::CaseInsensitive)) {
            // The characters typed keep the case they were typed in.
            result.entry = int(i);
            result.shown = typed + m_texts[i].mid(typed.size());
            break;
        }
    }
    return result;
}

bool FindSession::matches(Database &db, const QueryText &sql, const QString &sortFields,
                          const QString &search, std::shared_ptr<RecordSource> *hit, bool *failed)
{
    // No piece of the text meets a sort field: nothing can be found, and nothing went wrong
    // that the log should keep.
    const QString query = sql.find(search, sortFields);
    if (query.isEmpty()) {
        *failed = true;
        return false;
    }
    Result<std::unique_ptr<RecordSource>> opened = db.OpenRecordset(query);
    if (!opened.isOk()) {
        *failed = true;
        m_failure = opened.status();
        return false;
    }
    if (opened.value()->isBOF() && opened.value()->isEOF())
        return false;
    *hit = std::shared_ptr<RecordSource>(std::move(opened.value()));
    return true;
}

FindSession::Outcome FindSession::find(Database &db, const QueryText &sql,
                                       const QString &sortFields, const RecordSource &records,
                                       const QString &boxText, const QString &idField)
{
    const QString search = cutToFieldWidths(trimSpaces(boxText).toUpper(), sortFields, records);
    m_failure = Status::ok();
    m_found.reset();
    m_searchedText = boxText;
    m_outcome = findRecords(db, sql, sortFields, search, idField);
    return m_outcome;
}

FindSession::Outcome FindSession::findRecords(Database &db, const QueryText &sql,
                                              const QString &sortFields, const QString &search,
                                              const QString &idField)
{
    // The text as typed first: nearly always something starts with it. Otherwise the find
    // widens to the longest start of the text that something starts with. A shorter start
    // matches whatever a longer one matches, so halving the range finds that length in a
    // few queries however long the text is.
    bool failed = false;
    std::shared_ptr<RecordSource> found;
    if (!matches(db, sql, sortFields, search, &found, &failed)) {
        qsizetype known = 0; // longest length known to match (0: none yet)
        qsizetype fails = search.size(); // shortest length known to find nothing
        while (!failed && fails - known > 1) {
            const qsizetype mid = known + (fails - known) / 2;
            std::shared_ptr<RecordSource> hit;
            if (matches(db, sql, sortFields, search.left(mid), &hit, &failed)) {
                known = mid;
                found = std::move(hit);
            } else {
                fails = mid;
            }
        }
    }
    if (failed)
        return Outcome::Failed;
    if (!found)
        return Outcome::NothingFound;
    m_found = found;
    (void)m_found->MoveLast();
    (void)m_found->MoveFirst();
    db.Idle();
    const Result<QVariant> firstID = m_found->value(idField);
    m_foundID = firstID.isOk() ? firstID.value().toString() : QString();
    return Outcome::Found;
}

} // namespace plx
