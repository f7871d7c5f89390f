// apps/plxform/tests/sessionwalk_model.cpp: the rules of the record commands, the order,
// find and filters, and the rows, written out for the sample form.
#include "apps/plxform/tests/sessionwalk_model.h"

#include "services/cp1252.h"

#include <QHash>

#include <QDate>
#include <QLocale>

#include <algorithm>
#include <cmath>

namespace plx::walk {

namespace {

const QString kCrLf = QStringLiteral("\r\n");
const QString kNoFilter = QStringLiteral(" [None]");
constexpr int kYesNoNo = MsgStyle::YesNo | MsgStyle::DefaultButton2; // 260
constexpr int kYesNoCancel = 3;

QStringList sortFields(const QString &sort)
{
    if (sort == QLatin1String("City"))
        return { QStringLiteral("CITY"), QStringLiteral("NAME") };
    if (sort == QLatin1String("State"))
        return { QStringLiteral("STATE"), QStringLiteral("CITY") };
    if (sort == QLatin1String("ID"))
        return { QStringLiteral("ID") };
    return { QStringLiteral("NAME"), QStringLiteral("CITY") };
}

int compareKeys(const QStringList &a, const QStringList &b)
{
    for (qsizetype i = 0; i < a.size() && i < b.size(); ++i)
        if (const int c = a[i].compare(b[i]); c != 0)
            return c;
    return 0;
}

ExpectedBox exactBox(const QString &title, const QString &text, int style)
{
    return { title,
             QRegularExpression(
                 QRegularExpression::anchoredPattern(QRegularExpression::escape(text))),
             style };
}

ExpectedBox patternBox(const QString &title, const QString &pattern, int style)
{
    return { title,
             QRegularExpression(QRegularExpression::anchoredPattern(pattern),
                                QRegularExpression::DotMatchesEverythingOption),
             style };
}

QString notSavedText()
{
    return QStringLiteral("'Facilities' record has NOT been saved.");
}

bool isUpperRow(const QString &field)
{
    return field == QLatin1String("ID") || field == QLatin1String("STATE");
}

} // namespace

WalkModel::WalkModel(Table initial, ModelOptions options)
    : m_options(std::move(options)), m_table(std::move(initial))
{
    // The form opens on the first record of its first sort.
    const QSet<QString> first = recordsAt(0);
    if (!first.isEmpty()) {
        m_current = *first.begin();
        m_position = 0;
    }
}

const QStringList &WalkModel::rowFields()
{
    static const QStringList fields = { QStringLiteral("ID"),    QStringLiteral("NAME"),
                                        QStringLiteral("CITY"),  QStringLiteral("STATE"),
                                        QStringLiteral("PHONE"), QStringLiteral("BEDS"),
                                        QStringLiteral("RATE"),  QStringLiteral("OPENED"),
                                        QStringLiteral("NOTES") };
    return fields;
}

QString WalkModel::caption(const QString &field)
{
    static const QMap<QString, QString> captions = {
        { QStringLiteral("ID"), QStringLiteral("ID") },
        { QStringLiteral("NAME"), QStringLiteral("Name") },
        { QStringLiteral("CITY"), QStringLiteral("City") },
        { QStringLiteral("STATE"), QStringLiteral("State") },
        { QStringLiteral("PHONE"), QStringLiteral("Phone") },
        { QStringLiteral("BEDS"), QStringLiteral("Beds") },
        { QStringLiteral("RATE"), QStringLiteral("Daily rate") },
        { QStringLiteral("OPENED"), QStringLiteral("Opened") },
        { QStringLiteral("NOTES"), QStringLiteral("Notes") },
    };
    return captions.value(field, field);
}

QStringList WalkModel::sortNames()
{
    return { QStringLiteral("Name"), QStringLiteral("City"), QStringLiteral("State"),
             QStringLiteral("ID") };
}

QStringList WalkModel::filterNames()
{
    return { QStringLiteral("Active facilities"), QStringLiteral("Medicare, 100 beds or more"),
             QStringLiteral("Texas and Ohio"), QStringLiteral("Opened since 2000"), kNoFilter };
}

// --- The order ------------------------------------------------------------------------

const WalkModel::RecordFacts &WalkModel::facts(const QString &id, const Record &record) const
{
    RecordFacts &f = m_facts[id];
    if (!f.record.isSharedWith(record) || f.record.isEmpty() || f.sort != m_sort
        || f.filter != m_filter) {
        f.record = record;
        f.sort = m_sort;
        f.filter = m_filter;
        f.key = computeSortKey(record);
        f.member = computeInFilter(record);
    }
    return f;
}

QStringList WalkModel::sortKey(const Record &record) const
{
    return facts(record.value(QStringLiteral("ID")), record).key;
}

bool WalkModel::inFilter(const Record &record) const
{
    return facts(record.value(QStringLiteral("ID")), record).member;
}

namespace {

// SQLite's text order, two levels as a reader files names: first the letters without case
// or accents, then, only where a letter carries one, each letter's accents in turn (a
// letter's accents end with a mark below every accent; a separator below every letter
// starts the level, so a text whose letters run out first sorts first).
QString generalKey(const QString &value)
{
    // Letters a reader files under other letters; the letter itself is then the accent of
    // the first, so "ø" sorts with "o" and stays apart from "ö".
    static const QHash<QChar, QString> filedAs = {
        { QChar(0x00E6), QStringLiteral("ae") }, { QChar(0x0153), QStringLiteral("oe") },
        { QChar(0x00DF), QStringLiteral("ss") }, { QChar(0x00F8), QStringLiteral("o") },
        { QChar(0x0111), QStringLiteral("d") },  { QChar(0x00F0), QStringLiteral("d") },
        { QChar(0x0142), QStringLiteral("l") },  { QChar(0x00FE), QStringLiteral("th") },
        { QChar(0x0131), QStringLiteral("i") },  { QChar(0x0127), QStringLiteral("h") },
    };
    QString letters;
    QStringList accents; // one entry per letter
    for (const QChar c : value.normalized(QString::NormalizationForm_D)) {
        const QChar folded = c.toCaseFolded();
        if (c.isMark() && !letters.isEmpty()) {
            accents.last() += folded;
        } else if (filedAs.contains(folded)) {
            const QString as = filedAs.value(folded);
            letters += as;
            accents << QString(folded);
            for (qsizetype i = 1; i < as.size(); ++i)
                accents << QString();
        } else {
            letters += folded;
            accents << QString();
        }
    }
    if (std::all_of(accents.cbegin(), accents.cend(), [](const QString &a) { return a.isEmpty(); }))
        return letters;
    while (!accents.isEmpty() && accents.last().isEmpty())
        accents.removeLast();
    return letters + QChar(0) + accents.join(QChar(1));
}

} // namespace

QStringList WalkModel::computeSortKey(const Record &record) const
{
    // Each back end's text order: a FoxPro table compares its code page's bytes; SQLite
    // compares letters without case and accents first, then the accents (generalKey).
    // Null comes first, then blank (the same thing in a FoxPro table).
    const bool bytes = m_options.backend == Backend::FoxPro;
    QStringList key;
    for (const QString &field : sortFields(m_sort)) {
        const QString value = record.value(field);
        if (isNullPlain(value)) {
            key << QString(); // before every text, the empty one too (SQLite's order)
            continue;
        }
        if (bytes) {
            // The bytes of Windows-1252 (the sample table's code page), one character each.
            QString codes;
            for (const QChar c : value)
                codes += QChar(char16_t(cp1252::fromUnicode(c)));
            key << codes;
            continue;
        }
        key << QChar(1) + generalKey(value); // after Null's empty key
    }
    return key;
}

bool WalkModel::computeInFilter(const Record &record) const
{
    const auto value = [&record](const char *field) {
        return textOf(record.value(QLatin1String(field)));
    };
    if (m_filter == QLatin1String("Active facilities"))
        return value("ACTIVE") == QLatin1String("T");
    if (m_filter == QLatin1String("Medicare, 100 beds or more"))
        return value("MEDICARE") == QLatin1String("T") && !value("BEDS").isEmpty()
            && value("BEDS").toDouble() >= 100;
    if (m_filter == QLatin1String("Texas and Ohio")) {
        const QString state = value("STATE").toUpper();
        return state == QLatin1String("TX") || state == QLatin1String("OH");
    }
    if (m_filter == QLatin1String("Opened since 2000"))
        return !value("OPENED").isEmpty() && value("OPENED") >= QLatin1String("20000101");
    return true;
}

const WalkModel::Order &WalkModel::order() const
{
    Order &o = m_order;
    if (o.table.isSharedWith(m_table) && !o.table.isEmpty() && o.sort == m_sort
        && o.filter == m_filter && o.tail == m_tail)
        return o;
    QList<std::pair<QStringList, QString>> sorted;
    for (auto it = m_table.cbegin(); it != m_table.cend(); ++it) {
        if (m_tail.contains(it.key()))
            continue;
        if (const RecordFacts &f = facts(it.key(), *it); f.member)
            sorted.append({ f.key, it.key() });
    }
    std::stable_sort(sorted.begin(), sorted.end(), [](const auto &a, const auto &b) {
        return compareKeys(a.first, b.first) < 0;
    });
    o = Order{ m_table, m_sort, m_filter, m_tail, {}, {}, int(sorted.size()) };
    for (auto &[key, id] : sorted) {
        o.ids << id;
        o.keys << std::move(key);
    }
    for (const QString &id : m_tail) {
        o.ids << id;
        o.keys << QStringList{ QStringLiteral("\x01tail"), id };
    }
    return o;
}

int WalkModel::count() const
{
    return int(order().ids.size());
}

QString WalkModel::countText() const
{
    return QLocale(QLocale::English).toString(count()) + QStringLiteral(" records");
}

std::pair<int, int> WalkModel::positionRange(const QString &id) const
{
    const auto record = m_table.constFind(id);
    if (record == m_table.cend())
        return { -1, -1 };
    const Order &o = order();
    if (const qsizetype t = m_tail.indexOf(id); t >= 0)
        return { o.plain + int(t), o.plain + int(t) };
    if (!inFilter(*record))
        return { -1, -1 };
    const QStringList key = sortKey(*record);
    const auto plainEnd = o.keys.cbegin() + o.plain;
    const auto less = [](const QStringList &a, const QStringList &b) {
        return compareKeys(a, b) < 0;
    };
    const auto from = std::lower_bound(o.keys.cbegin(), plainEnd, key, less);
    const auto to = std::upper_bound(from, plainEnd, key, less);
    return { int(from - o.keys.cbegin()), int(to - o.keys.cbegin()) - 1 };
}

QSet<QString> WalkModel::recordsAt(int position) const
{
    const Order &o = order();
    QSet<QString> at;
    if (position < 0 || position >= o.ids.size())
        return at;
    for (qsizetype i = 0; i < o.ids.size(); ++i)
        if (compareKeys(o.keys[i], o.keys[position]) == 0)
            at.insert(o.ids[i]);
    return at;
}

void WalkModel::adopt(const QString &id, int position)
{
    m_current = id;
    m_position = position;
}

// --- Rows -----------------------------------------------------------------------------

std::optional<QString> WalkModel::storedValue(const QString &field, const QString &typed) const
{
    const FieldShape *shape = fieldShape(field);
    if (!shape)
        return std::nullopt;
    const bool foxPro = m_options.backend == Backend::FoxPro;
    switch (shape->kind) {
    case FieldKind::Text: {
        const QString text = isUpperRow(field) ? typed.toUpper() : typed;
        if (text.size() > shape->size || (foxPro && !fitsCp1252(text)))
            return std::nullopt;
        QString kept = text;
        while (kept.endsWith(QLatin1Char(' ')))
            kept.chop(1);
        return kept;
    }
    case FieldKind::Memo:
        if (foxPro && !fitsCp1252(typed))
            return std::nullopt;
        return plainMemo(typed);
    case FieldKind::Number: {
        // Decision: an empty number is refused (the rows allow no Null by default); Beds
        // takes digits only, the daily rate a signed decimal with thousands separators.
        QString text = typed.trimmed();
        const bool digitsOnly = field == QLatin1String("BEDS");
        static const QRegularExpression digits(QStringLiteral("^[0-9]+$"));
        static const QRegularExpression decimal(
            QStringLiteral("^[+-]?([0-9]+\\.?[0-9]*|\\.[0-9]+)$"));
        if (!digitsOnly)
            text.remove(QLatin1Char(',')).remove(QLatin1Char(' '));
        if (!(digitsOnly ? digits : decimal).match(text).hasMatch())
            return std::nullopt;
        const double v = text.toDouble();
        if (QString::number(v, 'f', shape->decimals).size() > shape->size)
            return std::nullopt; // wider than the field
        return plainNumber(v, shape->decimals);
    }
    case FieldKind::Date: {
        const QDate d = QDate::fromString(typed.trimmed(), QStringLiteral("MM/dd/yyyy"));
        if (!d.isValid())
            return std::nullopt;
        return d.toString(QStringLiteral("yyyyMMdd"));
    }
    case FieldKind::Logical: return std::nullopt;
    }
    return std::nullopt;
}

QString WalkModel::displayOf(const QString &field, const QString &plain) const
{
    const FieldShape *shape = fieldShape(field);
    if (!shape || plain.isEmpty() || isNullPlain(plain))
        return textOf(plain);
    if (field == QLatin1String("BEDS"))
        return QLocale(QLocale::English).toString(qlonglong(std::llround(plain.toDouble())));
    if (shape->kind == FieldKind::Date) {
        const QDate d = QDate::fromString(plain, QStringLiteral("yyyyMMdd"));
        return d.isValid() ? d.toString(QStringLiteral("MM/dd/yyyy")) : plain;
    }
    return plain;
}

QString WalkModel::blankOf(const FieldShape &field) const
{
    if (field.kind == FieldKind::Logical)
        return QStringLiteral("F");
    // SQLite leaves a field nobody wrote Null; a FoxPro record starts out blank.
    return m_options.backend == Backend::SQLite ? nullPlain() : QString();
}

QString WalkModel::shownText(const QString &field) const
{
    if (m_editing && m_typed.contains(field))
        return m_typed[field];
    if (m_editing && m_buffer.contains(field))
        return displayOf(field, m_buffer[field]);
    if (!m_table.contains(m_current))
        return QString();
    return displayOf(field, m_table[m_current].value(field));
}

QString WalkModel::stamp(const QDateTime &now) const
{
    return now.toString(QStringLiteral("MM/dd/yyyy hh:mm:ss")) + QLatin1Char(' ') + m_options.user;
}

MsgAnswer WalkModel::answerOf(const Step &step, qsizetype index) const
{
    return index < step.answers.size() ? step.answers[index] : MsgAnswer::No;
}

void WalkModel::removeRecord(const QString &id)
{
    m_table.remove(id);
    m_tail.removeAll(id);
    if (m_newRecord && *m_newRecord == id)
        m_newRecord.reset(); // a deleted record is nobody's new record
}

void WalkModel::requery(Expectation *e, bool keepCurrent)
{
    m_tail.clear();
    e->setsScrollBar = true;
    const bool kept = keepCurrent && m_table.contains(m_current) && inFilter(m_table[m_current]);
    if (kept) {
        e->currentAmong = { m_current };
        return;
    }
    // Decision: a record the new query does not hold leaves the form on the query's first
    // record (a filter says so; the other re-queries are taken to do the same).
    e->currentAmong = recordsAt(0);
    if (e->currentAmong.isEmpty())
        adopt(QString(), -1);
}

void WalkModel::refreshAfterDelete(Expectation *e)
{
    // The form shows the records as they are now: the query runs again and keeps the
    // record the navigator went to, unless the filter no longer holds it (a kept new
    // record the filter leaves out): then the query's first record.
    m_tail.clear();
    QSet<QString> kept;
    for (const QString &id : std::as_const(e->currentAmong))
        if (positionRange(id).first >= 0)
            kept.insert(id);
    e->currentAmong = kept;
    if (kept.isEmpty())
        requery(e, false);
    e->setsScrollBar = true;
}

// --- Steps ----------------------------------------------------------------------------

Expectation WalkModel::apply(const Step &step, const QDateTime &now)
{
    const QString &v = step.verb;
    const bool browsing = !m_editing;
    const bool onRecord = browsing && m_table.contains(m_current);
    Expectation e;
    if (v == QLatin1String("NEW") && browsing)
        return create(false, now);
    if (v == QLatin1String("COPY") && onRecord)
        return create(true, now);
    if (v == QLatin1String("EDIT") && onRecord) {
        m_editing = true;
        m_editedID = m_current;
        m_typed.clear();
        m_buffer.clear();
    } else if (v == QLatin1String("TYPE")) {
        return typeInto(step);
    } else if ((v == QLatin1String("SAVE") || v == QLatin1String("FULLSAVE")) && m_editing) {
        return save(step, now);
    } else if (v == QLatin1String("CANCEL") && m_editing) {
        return cancel(step);
    } else if (v == QLatin1String("DELETE") && onRecord) {
        return remove(step);
    } else if (v == QLatin1String("BACK") && browsing && m_position > 0) {
        return browseMove(m_position - 1);
    } else if (v == QLatin1String("NEXT") && browsing && m_position + 1 < count()) {
        return browseMove(m_position + 1);
    } else if (v == QLatin1String("SCROLL") && browsing && count() > 0) {
        const int to = std::clamp(step.text.toInt(), 0, count() - 1);
        if (to != m_position) {
            e = browseMove(to);
            e.setsScrollBar = true;
        }
    } else if (v == QLatin1String("SORT") && browsing && sortNames().contains(step.text)) {
        m_sort = step.text;
        requery(&e, true);
    } else if (v == QLatin1String("FIND") && browsing) {
        return find(step.text);
    } else if (v == QLatin1String("FILTER") && browsing && filterNames().contains(step.text)
               && step.text != m_filterShown) {
        // Picking the entry the filter box already shows changes nothing.
        m_filterShown = step.text;
        m_filter = step.text == kNoFilter ? QString() : step.text;
        requery(&e, true);
    } else if (v == QLatin1String("REOPEN")) {
        return reopen(step, now);
    }
    return e;
}

Expectation WalkModel::browseMove(int to)
{
    // Decision: while a record is edited the form does not step (the caller checks).
    Expectation e;
    e.position = to;
    e.currentAmong = recordsAt(to);
    return e;
}

Expectation WalkModel::typeInto(const Step &step)
{
    // A row is locked unless a record is edited: the user cannot type then. The ID row
    // of a form that makes its IDs stays locked.
    const bool readOnly = step.field == QLatin1String("ID") && !m_options.idRowTyped;
    if (m_editing && !readOnly && rowFields().contains(step.field))
        m_typed[step.field] = step.text;
    return {};
}

Expectation WalkModel::create(bool copy, const QDateTime &now)
{
    Expectation e;
    m_returnPosition = m_position >= 0 ? m_position : count() - 1;
    Record r;
    if (copy) {
        r = m_table[m_current]; // every field, the old ID too, before the new ID overwrites it
    } else {
        for (const FieldShape &f : sampleFieldShapes())
            r.insert(f.name, blankOf(f));
    }
    r[QStringLiteral("PLSTART")] = stamp(now);
    r[QStringLiteral("PLLASTREV")] = stamp(now);
    m_pendingNew = r;
    e.createsRecord = true;
    e.touchesDisk = true;
    e.position = count(); // appended behind every record of the query
    return e;
}

QString WalkModel::acceptNewRecord(const QString &id)
{
    if (!m_pendingNew)
        return QStringLiteral("no record was being made");
    // The parent ID stays "PLE": the walk only types IDs of 7 characters or "PLE" + 7.
    if (id.size() != 10 || !id.startsWith(QLatin1String("PLE")))
        return QStringLiteral("the new record's ID \"%1\" is not \"PLE\" and a 7-character key")
            .arg(id);
    if (m_table.contains(id))
        return QStringLiteral("the new record's ID %1 is already held by %2")
            .arg(id, m_table[id].value(QStringLiteral("NAME")));
    Record r = *m_pendingNew;
    m_pendingNew.reset();
    r[QStringLiteral("ID")] = id;
    m_table.insert(id, r);
    m_tail << id;
    m_newRecord = id;
    m_editing = true;
    m_editedID = id;
    m_typed.clear();
    m_buffer.clear();
    adopt(id, count() - 1);
    return QString();
}

bool WalkModel::saveRefused(Expectation *e, const QString &newID)
{
    if (newID.trimmed().isEmpty()) {
        // Decision: a blank ID typed over the record's own is refused like a blank one.
        e->boxes << exactBox(QStringLiteral("Blank ID"),
                             QStringLiteral("The ID field for this record is blank.") + kCrLf
                                 + kCrLf + QStringLiteral("Blank ID records cannot be saved.")
                                 + kCrLf + QStringLiteral("Parent ID is: PLE (080076069)") + kCrLf
                                 + kCrLf + notSavedText(),
                             MsgStyle::Critical);
        return true;
    }
    if (m_options.refuseDuplicateIDs && newID != m_editedID && m_table.contains(newID)) {
        e->boxes << patternBox(QStringLiteral("Record Not Saved"),
                               QStringLiteral(".*") + QRegularExpression::escape(newID)
                                   + QStringLiteral(".*"),
                               MsgStyle::Critical);
        return true;
    }
    return false;
}

Expectation WalkModel::save(const Step &step, const QDateTime &now)
{
    Expectation e;
    // The form validates first: a record needs a name and a city (what the rows show).
    QStringList missing;
    for (const QString &field : { QStringLiteral("NAME"), QStringLiteral("CITY") })
        if (shownText(field).trimmed().isEmpty())
            missing << caption(field);
    if (!missing.isEmpty()) {
        e.boxes << exactBox(QStringLiteral("Required Field"),
                            QStringLiteral("A Facilities record needs a value in: ")
                                + missing.join(QStringLiteral(", ")) + QLatin1Char('.'),
                            MsgStyle::Exclamation)
                << exactBox(QStringLiteral("Record Not Saved"), notSavedText(), MsgStyle::Critical);
        return e;
    }
    Record r = m_table[m_editedID];
    for (auto it = m_buffer.cbegin(); it != m_buffer.cend(); ++it)
        r[it.key()] = it.value();
    QStringList refused;
    for (const QString &field : rowFields()) {
        if (!m_typed.contains(field) || m_typed[field] == displayOf(field, r.value(field)))
            continue; // what the row loaded is not written again
        if (const std::optional<QString> stored = storedValue(field, m_typed[field])) {
            r[field] = *stored;
            continue;
        }
        refused << field;
        e.boxes << patternBox(
            QStringLiteral("Value Not Saved"),
            QRegularExpression::escape(caption(field))
                + QStringLiteral(" .+\r\n\r\nThe field keeps its former value\\."),
            MsgStyle::Exclamation);
    }
    const QString newID = r.value(QStringLiteral("ID"));
    if (saveRefused(&e, newID))
        return e;
    if (step.verb == QLatin1String("FULLSAVE")) {
        // The write fails on the full disk: the box says why, nothing is written, the
        // record stays in edit with what was typed; a refused row shows its former value.
        // What the rows wrote stays in the record's edit buffer: a later refusal shows it.
        for (const QString &field : std::as_const(refused))
            m_typed.remove(field);
        for (const QString &field : rowFields())
            if (r.value(field) != m_table[m_editedID].value(field))
                m_buffer[field] = r.value(field);
        e.boxes << patternBox(QStringLiteral("mvPLXRecs Facilities"),
                              QRegularExpression::escape(notSavedText())
                                  + QStringLiteral("\r\n\r\n.*(No space left on device|"
                                                   "database or disk is full).*"),
                              MsgStyle::Critical);
        return e;
    }
    r[QStringLiteral("PLLASTREV")] = stamp(now);
    const bool wasNew = m_newRecord && *m_newRecord == m_editedID;
    m_table.remove(m_editedID);
    m_tail.removeAll(m_editedID);
    m_table.insert(newID, r);
    if (wasNew)
        m_newRecord.reset();
    m_editing = false;
    m_typed.clear();
    m_buffer.clear();
    m_current = newID; // the saved record, whatever its ID became
    e.touchesDisk = true;
    requery(&e, true);
    return e;
}

Expectation WalkModel::cancel(const Step &step, qsizetype answer)
{
    Expectation e;
    m_editing = false;
    m_typed.clear();
    m_buffer.clear();
    // Only the edit of the record NEW or COPY made offers to delete it.
    if (!m_newRecord || *m_newRecord != m_editedID)
        return e;
    e.boxes << exactBox(QStringLiteral("Delete?"), QStringLiteral("Delete the New record?"),
                        kYesNoNo);
    if (answerOf(step, answer) != MsgAnswer::Yes)
        return e; // kept, and still the new record
    removeRecord(m_editedID);
    e.touchesDisk = true;
    // The form goes back to where NEW or COPY started, then shows the records as they are.
    e.currentAmong = m_returnPosition >= 0 && m_returnPosition < count()
        ? recordsAt(m_returnPosition)
        : QSet<QString>();
    refreshAfterDelete(&e);
    return e;
}

Expectation WalkModel::remove(const Step &step)
{
    Expectation e;
    const QString question = QStringLiteral("Are you sure you want to delete this record?");
    const QString desc = textOf(m_table[m_current].value(QStringLiteral("NAME")));
    e.boxes << patternBox(QStringLiteral("Delete Record?"),
                          QRegularExpression::escape(question)
                              + (desc.isEmpty() ? QStringLiteral("(\r\n)?")
                                                : QStringLiteral("\r\n")
                                         + QRegularExpression::escape(desc) + QStringLiteral(" *")),
                          kYesNoNo);
    if (answerOf(step, 0) != MsgAnswer::Yes)
        return e;
    e.boxes << exactBox(QStringLiteral("Are you sure?"), question, kYesNoNo);
    if (answerOf(step, 1) != MsgAnswer::Yes)
        return e;
    removeRecord(m_current);
    e.touchesDisk = true;
    // Decision: the record behind the deleted one takes its place (the one before it when
    // it was the last); the form then shows the records as they are now.
    const int n = count();
    e.currentAmong = n > 0 ? recordsAt(std::min(m_position, n - 1)) : QSet<QString>();
    refreshAfterDelete(&e);
    return e;
}

Expectation WalkModel::find(const QString &typed)
{
    Expectation e;
    const QString text = typed.trimmed();
    if (text.isEmpty())
        return e;
    const QString field = sortFields(m_sort).constFirst();
    QString search = text.toUpper();
    QStringList hits;
    // The find widens itself one character at a time until something is found.
    for (; !search.isEmpty(); search.chop(1)) {
        for (auto it = m_table.begin(); it != m_table.end(); ++it)
            if (textOf(it->value(field)).toUpper().startsWith(search))
                hits << it.key();
        if (!hits.isEmpty())
            break;
    }
    if (hits.isEmpty()) {
        e.boxes << exactBox(QStringLiteral("Nothing Found"),
                            QStringLiteral("Search ") + m_sort + QStringLiteral(" for '") + text
                                + QStringLiteral("'") + kCrLf + kCrLf
                                + QStringLiteral("The search did not find any records."),
                            MsgStyle::Information);
        return e;
    }
    // The first hit in the order of the sort (any of its equals), made current when the
    // navigator's query holds it; otherwise the form stays where it was.
    QStringList first;
    QStringList firstKey;
    for (const QString &id : std::as_const(hits)) {
        const QStringList key = sortKey(m_table[id]);
        const int c = first.isEmpty() ? -1 : compareKeys(key, firstKey);
        if (c < 0) {
            first = { id };
            firstKey = key;
        } else if (c == 0) {
            first << id;
        }
    }
    bool outsideQuery = false;
    for (const QString &id : std::as_const(first)) {
        if (positionRange(id).first >= 0)
            e.currentAmong.insert(id);
        else
            outsideQuery = true;
    }
    if (outsideQuery)
        e.currentAmong.insert(m_current);
    e.setsScrollBar = true;
    return e;
}

Expectation WalkModel::reopen(const Step &step, const QDateTime &now)
{
    Expectation e;
    if (m_editing) {
        e.boxes << exactBox(QStringLiteral("Close plxform"),
                            QStringLiteral("The record is still being edited.") + kCrLf + kCrLf
                                + QStringLiteral("Yes: save it and close") + kCrLf
                                + QStringLiteral("No: discard the changes and close") + kCrLf
                                + QStringLiteral("Cancel: go on editing"),
                            kYesNoCancel | MsgStyle::Question);
        const MsgAnswer answer = step.answers.value(0, MsgAnswer::Cancel);
        if (answer != MsgAnswer::Yes && answer != MsgAnswer::No) {
            e.currentAmong = { m_current }; // the user goes on editing
            return e;
        }
        const Expectation ended = answer == MsgAnswer::Yes ? save(step, now) : cancel(step, 1);
        e.boxes << ended.boxes;
        e.touchesDisk = ended.touchesDisk;
        if (m_editing) {
            e.currentAmong = { m_current }; // the save was refused: the form stays open
            return e;
        }
    }
    // A new form: the first sort, no filter, the first record, nothing new.
    m_sort = QStringLiteral("Name");
    m_filter.clear();
    m_filterShown.clear();
    m_tail.clear();
    m_newRecord.reset();
    e.currentAmong = recordsAt(0);
    e.position = e.currentAmong.isEmpty() ? -1 : 0;
    e.setsScrollBar = true;
    return e;
}

} // namespace plx::walk
