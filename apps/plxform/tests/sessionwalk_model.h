// apps/plxform/tests/sessionwalk_model.h: what a user of the sample form should see and
// find on disk after each step, worked out from the navigator's and the rows' rules alone:
// the table (ID -> plain values), the records the navigator's query holds in their order,
// the current record and its position, the edit under way and the boxes each step shows.
//
// Where the order cannot say which of several records comes first (records equal in every
// sort field), the model names all of them and takes the one the form shows; it then checks
// that the form's position lies inside the run of equals.
//
// Decisions where the rules are silent (each is marked "Decision:" in the .cpp):
// - text orders without regard to case (Jet), blanks and Null first;
// - Back, Next and the scroll bar do nothing while a record is edited; sort, find and
//   filter are disabled then;
// - "the new record" is the record the latest NEW or COPY made, known by its ID; it stops
//   being new when it is saved or deleted, the form is reopened, or another NEW or COPY
//   runs; only CANCEL of its own edit asks "Delete the New record?";
// - a record appended by NEW or COPY stays at the end of the order until the next query;
//   every SAVE, sort, filter and delete (the form refreshes after RecDelete) queries again;
// - after DELETE the record that followed takes the deleted one's place (the one before
//   when it was the last);
// - a saved or sorted record that the filter no longer holds leaves the query; the form may
//   then show any record of it;
// - SAVE with a blank ID row is refused ("Blank ID") and the record stays in edit;
// - a value a row refuses is told in a "Value Not Saved" box, the field keeps its former
//   value, the other rows are saved, and the row shows the kept value afterwards;
// - an empty value is refused in number and date rows; Upper rows store upper case;
// - SAVE on a full disk (FULLSAVE) says why in one box, writes nothing and keeps the edit
//   with what was typed;
// - closing during an edit asks Yes (save and close), No (cancel and close) or Cancel
//   (go on editing); a refused save keeps the form open.
#pragma once

#include "apps/plxform/tests/sessionwalk_script.h"
#include "apps/plxform/tests/sessionwalk_table.h"

#include <QDateTime>
#include <QRegularExpression>
#include <QSet>

#include <optional>

namespace plx::walk {

struct ExpectedBox
{
    QString title;
    QRegularExpression text; // anchored
    int style = 0;
};

// What a step should lead to, besides the model's own new state.
struct Expectation
{
    QList<ExpectedBox> boxes;
    // Not empty: the current record may be any of these (equals in the order); the model
    // takes the one the form shows with adopt().
    QSet<QString> currentAmong;
    std::optional<int> position; // the exact position, when the rules give one
    bool createsRecord = false; // NEW or COPY: the form's current ID is the new record's
    bool touchesDisk = false; // the step may have written the table
    // The rules of the step set the scroll bar to the record's position (a query, a find,
    // a delete, the scroll bar itself). Back, Next, NEW and COPY move the record and leave
    // setting the bar to whatever comes next.
    bool setsScrollBar = false;
};

struct ModelOptions
{
    Backend backend = Backend::FoxPro;
    QString user; // the name in the audit stamps
    bool refuseDuplicateIDs = false; // an ID another record holds is refused on SAVE
    // The user may type over a record's ID. Off for the sample form: it makes its IDs
    // and keeps the ID row read only, so typing into it changes nothing.
    bool idRowTyped = false;
};

class WalkModel
{
public:
    WalkModel(Table initial, ModelOptions options);

    // Applies `step` as the rules say; `now` is the form's clock during the step.
    Expectation apply(const Step &step, const QDateTime &now);
    // NEW or COPY made `id`; "" when it is acceptable, else why not.
    QString acceptNewRecord(const QString &id);
    // The form shows `id` at `position`, one of the records the expectation allowed.
    void adopt(const QString &id, int position);

    const Table &table() const { return m_table; }
    bool editing() const { return m_editing; }
    QString currentID() const { return m_current; }
    int position() const { return m_position; }
    QString sortName() const { return m_sort; }
    // The records of the navigator's query in their order's runs of equals.
    int count() const;
    QString countText() const;
    // First and last position `id` may have (equals in the order share a run).
    std::pair<int, int> positionRange(const QString &id) const;
    // The records that may stand at `position`.
    QSet<QString> recordsAt(int position) const;
    // What row `field` shows now ("" for no current record), as sValue() gives it.
    QString shownText(const QString &field) const;
    bool typedInto(const QString &field) const { return m_typed.contains(field); }

    // The sample form's rows, in order, and their captions.
    static const QStringList &rowFields();
    static QString caption(const QString &field);
    static QStringList sortNames();
    static QStringList filterNames(); // " [None]" last

private:
    // What a row would store for `typed`, or std::nullopt (and why) when it refuses it.
    std::optional<QString> storedValue(const QString &field, const QString &typed) const;
    QString displayOf(const QString &field, const QString &plain) const;
    // What a field of a record NEW made holds before anything is typed into it.
    QString blankOf(const FieldShape &field) const;
    QStringList sortKey(const Record &record) const;
    bool inFilter(const Record &record) const;
    QStringList computeSortKey(const Record &record) const;
    bool computeInFilter(const Record &record) const;
    QString stamp(const QDateTime &now) const;
    void requery(Expectation *e, bool keepCurrent);
    void removeRecord(const QString &id);
    void refreshAfterDelete(Expectation *e);

    Expectation browseMove(int to);
    Expectation typeInto(const Step &step);
    Expectation save(const Step &step, const QDateTime &now);
    bool saveRefused(Expectation *e, const QString &newID);
    Expectation cancel(const Step &step, qsizetype answer = 0);
    Expectation remove(const Step &step);
    Expectation create(bool copy, const QDateTime &now);
    Expectation find(const QString &text);
    Expectation reopen(const Step &step, const QDateTime &now);
    MsgAnswer answerOf(const Step &step, qsizetype index) const;

    ModelOptions m_options;
    Table m_table;
    QString m_sort = QStringLiteral("Name");
    QString m_filter; // "" for none
    QString m_filterShown; // what the filter box shows; "" when nothing is chosen
    QStringList m_tail; // appended by NEW or COPY since the last query, in order
    QString m_current;
    int m_position = -1;
    bool m_editing = false;
    QString m_editedID;
    QMap<QString, QString> m_typed; // field -> text typed in this edit
    // field -> value the rows put in the record's edit buffer at a SAVE that then failed
    QMap<QString, QString> m_buffer;
    std::optional<QString> m_newRecord;
    int m_returnPosition = -1;
    std::optional<Record> m_pendingNew; // NEW or COPY waiting for its ID

    // A record's sort key and filter membership, worked out once per version of the record:
    // the position checks ask for them thousands of times a step. A record that changed no
    // longer shares its data with the copy kept here, which is how a stale entry shows.
    struct RecordFacts
    {
        Record record;
        QString sort;
        QString filter;
        QStringList key;
        bool member = false;
    };
    const RecordFacts &facts(const QString &id, const Record &record) const;
    mutable QHash<QString, RecordFacts> m_facts; // record ID -> facts

    // The query's records in order (the tail last) with their keys, kept while the table,
    // sort, filter and tail are the ones it was worked out for.
    struct Order
    {
        Table table;
        QString sort;
        QString filter;
        QStringList tail;
        QStringList ids;
        QList<QStringList> keys;
        int plain = 0; // records before the tail
    };
    const Order &order() const;
    mutable Order m_order;
};

} // namespace plx::walk
