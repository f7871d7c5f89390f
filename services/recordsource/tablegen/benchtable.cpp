// services/recordsource/tablegen/benchtable.cpp: generating the benchmark table's records.
#include "services/recordsource/tablegen/benchtable.h"

#include <QDate>

#include <algorithm>
#include <vector>

namespace plx::bench {

namespace {

// Surnames in rank order: the Zipf weights make the first ones common. Several share
// prefixes so that the find query "SM*" and incremental search meet realistic ties.
const char *const Surnames[] = {
    "SMITH",      "JOHNSON",    "WILLIAMS", "BROWN",      "JONES",     "MILLER",    "DAVIS",
    "GARCIA",     "SMITHSON",   "WILSON",   "ANDERSON",   "TAYLOR",    "THOMAS",    "MOORE",
    "SMALL",      "MARTIN",     "JACKSON",  "THOMPSON",   "WHITE",     "HARRIS",    "SMART",
    "CLARK",      "LEWIS",      "ROBINSON", "WALKER",     "SMALLEY",   "YOUNG",     "ALLEN",
    "KING",       "WRIGHT",     "SCOTT",    "SMYTHE",     "HILL",      "GREEN",     "ADAMS",
    "BAKER",      "NELSON",     "CARTER",   "SMITHERS",   "MITCHELL",  "ROBERTS",   "TURNER",
    "PHILLIPS",   "CAMPBELL",   "PARKER",   "EVANS",      "EDWARDS",   "COLLINS",   "STEWART",
    "SMOOT",      "MORRIS",     "ROGERS",   "REED",       "COOK",      "MORGAN",    "BELL",
    "MURPHY",     "BAILEY",     "COOPER",   "RICHARDSON", "COX",       "HOWARD",    "WARD",
    "BROOKS",     "BROOKSHIRE", "GRAY",     "JAMES",      "WATSON",    "KELLY",     "SANDERS",
    "PRICE",      "BENNETT",    "WOOD",     "BARNES",     "ROSS",      "HENDERSON", "COLEMAN",
    "JENKINS",    "PERRY",      "POWELL",   "LONG",       "PATTERSON", "HUGHES",    "FLORES",
    "WASHINGTON", "BUTLER",     "SIMMONS",  "FOSTER",     "BRYANT",    "ALEXANDER", "RUSSELL",
    "GRIFFIN",    "DIAZ",       "HAYES",    "MYERS",      "FORD",      "HAMILTON",  "GRAHAM",
    "SULLIVAN",   "WALLACE",    "WOODS",    "COLE",       "WEST",      "JORDAN",    "OWENS",
    "REYNOLDS",   "FISHER",     "ELLIS",    "HARRISON",   "GIBSON",    "MCDONALD",  "O'BRIEN",
    "O'NEIL",     "VAN DYKE",
};
const char *const FirstNames[] = {
    "James",   "Mary",      "John",    "Patricia", "Robert",  "Jennifer", "Michael", "Linda",
    "William", "Elizabeth", "David",   "Barbara",  "Richard", "Susan",    "Joseph",  "Jessica",
    "Thomas",  "Sarah",     "Charles", "Karen",    "Daniel",  "Nancy",    "Matthew", "Lisa",
    "Anthony", "Betty",     "Mark",    "Helen",    "Donald",  "Sandra",   "Steven",  "Donna",
    "Paul",    "Carol",     "Andrew",  "Ruth",     "Joshua",  "Sharon",
};
struct Place
{
    const char *city;
    const char *state;
};
const Place Places[] = {
    { "BOSTON", "MA" },      { "Albany", "NY" },      { "Chicago", "IL" },    { "Denver", "CO" },
    { "Austin", "TX" },      { "Seattle", "WA" },     { "Portland", "OR" },   { "Atlanta", "GA" },
    { "Miami", "FL" },       { "Phoenix", "AZ" },     { "Detroit", "MI" },    { "Columbus", "OH" },
    { "Memphis", "TN" },     { "Baltimore", "MD" },   { "Louisville", "KY" }, { "Milwaukee", "WI" },
    { "Tucson", "AZ" },      { "Fresno", "CA" },      { "Omaha", "NE" },      { "Raleigh", "NC" },
    { "Springfield", "IL" }, { "Springfield", "MA" }, { "Salem", "OR" },      { "Reno", "NV" },
};
const char *const Users[] = { "ADMIN", "JSMITH", "MBROWN", "KLEE", "OPERATOR" };
const char *const NoteWords[] = {
    "call", "back", "about",   "the",   "order", "invoice", "paid",
    "late", "new",  "address", "phone", "ask",   "for",     "renewal"
};

constexpr qint64 KeySpace = 78364164096; // 36^7 keys of 7 characters
constexpr qint64 KeyMultiplier = 48271; // coprime to 36: index -> key is one-to-one
constexpr int ChildEvery = 10;

const std::vector<double> &surnameWeights()
{
    static const std::vector<double> cumulative = [] {
        std::vector<double> c;
        double sum = 0;
        for (size_t i = 0; i < std::size(Surnames); ++i) {
            sum += 1.0 / double(i + 1);
            c.push_back(sum);
        }
        for (double &v : c)
            v /= sum;
        return c;
    }();
    return cumulative;
}

QString keyOf(qint64 index)
{
    static const char digits[] = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ";
    qint64 scrambled = (index * KeyMultiplier + 12345) % KeySpace;
    QString key(7, QLatin1Char('0'));
    for (int i = 6; i >= 0; --i) {
        key[i] = QLatin1Char(digits[scrambled % 36]);
        scrambled /= 36;
    }
    return key;
}

} // namespace

QList<FieldInfo> benchTableFields()
{
    return {
        { QStringLiteral("ID"), FieldType::Text, 20, 0 },
        { QStringLiteral("NAME"), FieldType::Text, 40, 0 },
        { QStringLiteral("CITY"), FieldType::Text, 30, 0 },
        { QStringLiteral("STATE"), FieldType::Text, 2, 0 },
        { QStringLiteral("AMOUNT"), FieldType::Numeric, 12, 2 },
        { QStringLiteral("BORN"), FieldType::Date, 8, 0 },
        { QStringLiteral("ACTIVE"), FieldType::Boolean, 1, 0 },
        { QStringLiteral("NOTES"), FieldType::Memo, 0, 0 },
        { QStringLiteral("PLSTART"), FieldType::Text, 30, 0 },
        { QStringLiteral("PLLASTREV"), FieldType::Text, 30, 0 },
    };
}

BenchTableGenerator::BenchTableGenerator(quint64 seed) : m_random(seed) { }

double BenchTableGenerator::uniform()
{
    return double(m_random() >> 11) * (1.0 / 9007199254740992.0);
}

int BenchTableGenerator::below(int n)
{
    return int(m_random() % quint64(n));
}

QString BenchTableGenerator::idOf(qint64 index)
{
    // Children follow a parent ten records back, so the parent's ID is known.
    if (index % ChildEvery == ChildEvery - 1)
        return idOf(index - 5).left(10) + keyOf(index);
    return QStringLiteral("PLE") + keyOf(index);
}

QString BenchTableGenerator::personName()
{
    const std::vector<double> &weights = surnameWeights();
    const size_t rank =
        size_t(std::lower_bound(weights.begin(), weights.end(), uniform()) - weights.begin());
    const QString last = QString::fromLatin1(Surnames[std::min(rank, std::size(Surnames) - 1)]);
    const QString first = QString::fromLatin1(FirstNames[below(int(std::size(FirstNames)))]);
    QString name =
        QStringLiteral("%1, %2 %3").arg(last, first, QChar(QLatin1Char(char('A' + below(26)))));
    // Most hosts store names in mixed case; older records were typed in capitals.
    if (below(4) == 0)
        name = name.toUpper();
    else
        name = last.left(1) + last.mid(1).toLower() + name.mid(last.size());
    return name;
}

QString BenchTableGenerator::stamp()
{
    const QDateTime when(QDate(2020, 1, 1).addDays(below(2000)), QTime(0, 0).addSecs(below(86400)));
    return when.toString(QStringLiteral("MM/dd/yyyy hh:mm:ss")) + QLatin1Char(' ')
        + QString::fromLatin1(Users[below(int(std::size(Users)))]);
}

QVariantList BenchTableGenerator::next()
{
    const Place &place = Places[below(int(std::size(Places)))];
    QString notes;
    if (below(3) == 0) {
        const int words = 3 + below(12);
        for (int i = 0; i < words; ++i)
            notes += QLatin1String(NoteWords[below(int(std::size(NoteWords)))]) + QLatin1Char(' ');
        notes.chop(1);
    }
    QVariantList row{ idOf(m_index),
                      personName(),
                      QString::fromLatin1(place.city),
                      QString::fromLatin1(place.state),
                      double(qint64(m_random() % 100000000)) / 100.0,
                      QDate(1930, 1, 1).addDays(below(27000)),
                      below(2) == 0,
                      notes.isEmpty() ? QVariant() : QVariant(notes),
                      stamp(),
                      stamp() };
    ++m_index;
    return row;
}

} // namespace plx::bench
