// apps/plxform/tests/sessionwalk_generator.cpp
#include "apps/plxform/tests/sessionwalk_generator.h"

#include <QDate>

namespace plx::walk {

namespace {

// Every step a browsing user may take, with how often (out of the sum) it is taken. Save
// and Cancel are disabled then, and Type goes into a locked row: they do nothing, and the
// walk checks that nothing happens.
struct Weighted
{
    const char *verb;
    int weight;
};
constexpr Weighted kBrowsing[] = { { "NEW", 7 },  { "COPY", 4 },   { "EDIT", 16 },  { "DELETE", 5 },
                                   { "BACK", 9 }, { "NEXT", 9 },   { "SCROLL", 8 }, { "SORT", 5 },
                                   { "FIND", 7 }, { "FILTER", 5 }, { "REOPEN", 1 }, { "TYPE", 1 },
                                   { "SAVE", 1 }, { "CANCEL", 1 } };
constexpr Weighted kEditing[] = { { "TYPE", 56 },   { "SAVE", 14 }, { "CANCEL", 12 },
                                  { "BACK", 2 },    { "NEXT", 2 },  { "SCROLL", 2 },
                                  { "NEW", 1 },     { "EDIT", 1 },  { "DELETE", 1 },
                                  { "SORT", 1 },    { "FIND", 1 },  { "REOPEN", 2 },
                                  { "FULLSAVE", 2 } };

const QStringList kNames = {
    QStringLiteral("Quarry Hill"), QStringLiteral("Birch"),     QStringLiteral("Oak Ridge"),
    QStringLiteral("Maple"),       QStringLiteral("Northgate"), QStringLiteral("Smith"),
    QStringLiteral("St. Anne's"),  QStringLiteral("Bayside"),   QStringLiteral("Greenfield"),
};
const QStringList kKinds = { QStringLiteral("Manor"), QStringLiteral("Care Center"),
                             QStringLiteral("Gardens"), QStringLiteral("Residence") };
const QStringList kCities = { QStringLiteral("Camden"), QStringLiteral("Dover"),
                              QStringLiteral("Austin"), QStringLiteral("Oakland"),
                              QStringLiteral("Salem"),  QStringLiteral("Boise") };

} // namespace

StepGenerator::StepGenerator(quint64 seed, bool typeTakenIDs)
    : m_random(seed), m_typeTakenIDs(typeTakenIDs)
{
}

Step StepGenerator::next(const WalkModel &model)
{
    return model.editing() ? editingStep(model) : browsingStep(model);
}

namespace {

template<std::size_t N> const char *chooseVerb(const Weighted (&table)[N], int roll)
{
    for (const Weighted &w : table) {
        if (roll < w.weight)
            return w.verb;
        roll -= w.weight;
    }
    return table[0].verb;
}

template<std::size_t N> int totalWeight(const Weighted (&table)[N])
{
    int sum = 0;
    for (const Weighted &w : table)
        sum += w.weight;
    return sum;
}

} // namespace

Step StepGenerator::browsingStep(const WalkModel &model)
{
    Step s{ QString::fromLatin1(chooseVerb(kBrowsing, below(totalWeight(kBrowsing)))), {}, {}, {} };
    if (s.verb == QLatin1String("TYPE"))
        return typing(model);
    if (s.verb == QLatin1String("DELETE"))
        s.answers = { yesOrNo(), yesOrNo() };
    else if (s.verb == QLatin1String("REOPEN"))
        s.answers = { below(5) == 0 ? MsgAnswer::Cancel : yesOrNo(), yesOrNo() };
    else if (s.verb == QLatin1String("CANCEL"))
        s.answers = { yesOrNo() };
    else if (s.verb == QLatin1String("SCROLL"))
        s.text = QString::number(below(model.count() + 5));
    else if (s.verb == QLatin1String("SORT"))
        s.text = pick(WalkModel::sortNames());
    else if (s.verb == QLatin1String("FILTER"))
        s.text = pick(WalkModel::filterNames());
    else if (s.verb == QLatin1String("FIND"))
        s.text = findText(model);
    return s;
}

Step StepGenerator::editingStep(const WalkModel &model)
{
    Step s{ QString::fromLatin1(chooseVerb(kEditing, below(totalWeight(kEditing)))), {}, {}, {} };
    if (s.verb == QLatin1String("TYPE"))
        return typing(model);
    // Every Cancel carries an answer, whether or not a box should come: a box that should
    // not come then shows what a user answering it would have done.
    if (s.verb == QLatin1String("CANCEL"))
        s.answers = { yesOrNo() };
    else if (s.verb == QLatin1String("DELETE"))
        s.answers = { yesOrNo(), yesOrNo() };
    else if (s.verb == QLatin1String("REOPEN"))
        s.answers = { below(5) == 0 ? MsgAnswer::Cancel : yesOrNo(), yesOrNo() };
    else if (s.verb == QLatin1String("SCROLL"))
        s.text = QString::number(below(model.count() + 5));
    else if (s.verb == QLatin1String("SORT"))
        s.text = pick(WalkModel::sortNames());
    else if (s.verb == QLatin1String("FIND"))
        s.text = findText(model);
    return s;
}

Step StepGenerator::typing(const WalkModel &model)
{
    const QString field = pick(WalkModel::rowFields());
    Step s{ QStringLiteral("TYPE"), field, {}, {} };
    if (field == QLatin1String("ID"))
        s.text = typedID(model);
    else if (field == QLatin1String("NAME"))
        s.text = typedName(kNames, 40);
    else if (field == QLatin1String("CITY"))
        s.text = typedName(kCities, 24);
    else if (field == QLatin1String("STATE"))
        s.text = pick(QStringList{ QStringLiteral("TX"), QStringLiteral("OH"), QStringLiteral("ca"),
                                   QStringLiteral("TEX"), QString(), QStringLiteral("Ny") });
    else if (field == QLatin1String("PHONE"))
        s.text = pick(QStringList{ QStringLiteral("(555) 123-4567"), QStringLiteral("555-0100"),
                                   QStringLiteral("(555) 123-45678"),
                                   QStringLiteral("\u260E 555-1234") });
    else if (field == QLatin1String("BEDS") || field == QLatin1String("RATE"))
        s.text = typedNumber(field == QLatin1String("RATE"));
    else if (field == QLatin1String("OPENED"))
        s.text = typedDate();
    else
        s.text = typedNotes();
    return s;
}

QString StepGenerator::freshID(const WalkModel &model, const QString &prefix, int digits)
{
    QString id;
    do {
        id = prefix
            + QStringLiteral("%1").arg((++m_serial * 7919 + below(7919)) % 1000000, digits, 10,
                                       QLatin1Char('0'));
    } while (model.table().contains(id.toUpper()));
    return id;
}

QString StepGenerator::typedID(const WalkModel &model)
{
    const int roll = below(100);
    if (roll < 35)
        return freshID(model, QStringLiteral("PLEW"), 6); // "PLE" + 7: the parent ID stays
    if (roll < 50)
        return freshID(model, QStringLiteral("Q"), 6); // 7 characters: no parent ID of its own
    if (roll < 60)
        return freshID(model, QStringLiteral("plew"), 6); // the row stores upper case
    if (roll < 75)
        return freshID(model, QStringLiteral("PLEW"), 7); // 11 characters: refused
    if (roll < 80)
        return QString(); // blank: refused on SAVE
    if (roll < 90 && m_typeTakenIDs && !model.table().isEmpty())
        return model.table().keys().at(below(int(model.table().size()))); // another's ID
    return model.currentID(); // the record's own ID, unchanged
}

QString StepGenerator::typedName(const QStringList &good, int limit)
{
    const int roll = below(100);
    if (roll < 50)
        return pick(good) + QLatin1Char(' ') + pick(kKinds).left(limit / 3);
    if (roll < 60)
        return good == kCities ? QStringLiteral("Montr\u00e9al")
                               : QStringLiteral("Caf\u00e9 Lumi\u00e8re");
    if (roll < 70) // not in the FoxPro table's code page
        return good == kCities ? QStringLiteral("\u041a\u0438\u0457\u0432")
                               : QStringLiteral("\u03a9\u03bc\u03ad\u03b3\u03b1 House");
    if (roll < 80) // one character too many, or more
        return QString(limit + 1 + below(8), QLatin1Char('W'));
    if (roll < 86)
        return QString(); // a required field left blank
    return pick(good);
}

QString StepGenerator::typedNumber(bool rate)
{
    const int roll = below(100);
    if (roll < 55)
        return rate ? QString::number(below(9999999) / 100.0, 'f', below(3))
                    : QString::number(below(rate ? 100000 : 600));
    if (roll < 62 && rate)
        return QStringLiteral("-%1.5").arg(below(9999));
    if (roll < 68 && rate)
        return QStringLiteral("1,234.50");
    if (roll < 78)
        return rate ? QStringLiteral("12O.50") : QStringLiteral("12a"); // letters
    if (roll < 90)
        return rate ? QStringLiteral("123456.78") : QStringLiteral("123456"); // too wide
    if (roll < 95)
        return rate ? QStringLiteral("99999.99") : QStringLiteral("99999"); // widest
    return QString(); // empty: refused
}

QString StepGenerator::typedDate()
{
    const int roll = below(100);
    if (roll < 65)
        return QDate(1960, 1, 1).addDays(below(24000)).toString(QStringLiteral("MM/dd/yyyy"));
    if (roll < 80)
        return QStringLiteral("13/45/2020");
    if (roll < 90)
        return QStringLiteral("02/30/2021");
    return QString();
}

QString StepGenerator::typedNotes()
{
    const int roll = below(100);
    if (roll < 40)
        return QStringLiteral("Visited %1; kitchen inspected.").arg(below(1000));
    if (roll < 60)
        return QStringLiteral("First line\nSecond line, caf\u00e9 \u00bd price");
    if (roll < 72) // not in the FoxPro table's code page
        return QStringLiteral("Notes \u65e5\u672c\u8a9e");
    if (roll < 85)
        return QString(300 + below(400), QLatin1Char('n'));
    return QString();
}

QString StepGenerator::findText(const WalkModel &model)
{
    const int roll = below(100);
    if (roll < 80 && !model.table().isEmpty()) {
        const Record &r = model.table()[model.table().keys().at(below(int(model.table().size())))];
        const QString field = model.sortName() == QLatin1String("City") ? QStringLiteral("CITY")
            : model.sortName() == QLatin1String("State")                ? QStringLiteral("STATE")
            : model.sortName() == QLatin1String("ID")                   ? QStringLiteral("ID")
                                                                        : QStringLiteral("NAME");
        const QString prefix = r.value(field).left(2 + below(4));
        // Wildcards of the find's LIKE are not what a user searching a name types.
        if (!prefix.contains(QRegularExpression(QStringLiteral("[*?#\\[\\]\\x00-\\x1f]"))))
            return roll < 60 ? prefix : prefix.toLower();
    }
    if (roll < 92)
        return QStringLiteral("XQZ"); // widens to nothing: "Nothing Found"
    return QStringLiteral("   ");
}

} // namespace plx::walk
