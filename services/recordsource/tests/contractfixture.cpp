// services/recordsource/tests/contractfixture.cpp: the shared tables and helpers.
#include "services/texthelpers.h"
#include "services/recordsource/tests/contractfixture.h"

#include <QDate>

#include <algorithm>

namespace plx::testing {

namespace {

QList<FieldInfo> peopleFields()
{
    return {
        { QStringLiteral("ID"), FieldType::Text, 20, 0 },
        { QStringLiteral("NAME"), FieldType::Text, 40, 0 },
        { QStringLiteral("CITY"), FieldType::Text, 30, 0 },
        { QStringLiteral("AMOUNT"), FieldType::Numeric, 12, 2 },
        { QStringLiteral("BORN"), FieldType::Date, 8, 0 },
        { QStringLiteral("ACTIVE"), FieldType::Boolean, 1, 0 },
        { QStringLiteral("NOTES"), FieldType::Memo, 0, 0 },
    };
}

QVariantList person(const char *id, const char *name, const char *city, double amount, QDate born,
                    bool active, const char *notes)
{
    return { QString::fromLatin1(id),
             QString::fromLatin1(name),
             QString::fromLatin1(city),
             amount,
             born.isValid() ? QVariant(born) : QVariant(),
             active,
             QString::fromLatin1(notes) };
}

TableDef makePeople()
{
    TableDef t{ QStringLiteral("T"), peopleFields(), {} };
    t.rows << person("PLE0000001", "SMITH, JOHN A", "BOSTON", 10.5, QDate(1970, 1, 2), true,
                     "first")
           << person("PLE0000002", "Smithson, Ann", "Albany", 20.25, QDate(1980, 5, 6), false, "")
           << person("PLE0000003", "SMALL, BOB", "Chicago", 0, QDate(), true, "third")
           << person("PLE0000004", "JONES, MARY", "Denver", -3.75, QDate(1990, 12, 31), false, "")
           << person("PLE'A|B C", "SMITH, ADAM", "Austin", 1, QDate(2000, 2, 29), true, "odd id")
           << person("PLE0000005", "SMITH, JOHN A", "ALBANY", 7, QDate(1971, 3, 4), false, "")
           << person("PLE0000010", "ADAMS, ZOE", "Zurich", 99.99, QDate(1960, 7, 8), true, "")
           << person("XYZ0000099", "BROWN, TOM", "Erie", 5, QDate(1950, 1, 1), false, "")
           << person("PLE0000009", "SMART, KIM", "Reno", 2.5, QDate(1999, 9, 9), true, "")
           << person("PLE0000007", "Smalley, Lee", "Macon", 3, QDate(1985, 8, 7), false, "");
    return t;
}

} // namespace

const TableDef &peopleTable()
{
    static const TableDef table = makePeople();
    return table;
}

QList<TableDef> contractTables()
{
    TableDef big{ QStringLiteral("BIG"),
                  { { QStringLiteral("ID"), FieldType::Text, 20, 0 },
                    { QStringLiteral("N"), FieldType::Numeric, 10, 0 } },
                  {} };
    for (int i = 0; i < BigRows; ++i)
        big.rows << QVariantList{ QStringLiteral("PLE%1").arg(i, 7, 10, QLatin1Char('0')), i };
    return { peopleTable(), big };
}

QString textOf(const RecordSource &rs, const QString &field)
{
    Result<QVariant> v = rs.value(field);
    return v.isOk() ? v.value().toString().trimmed() : QString();
}

QStringList idsToEnd(RecordSource &rs)
{
    QStringList ids;
    while (!rs.isEOF() && !rs.isBOF()) {
        ids << textOf(rs, QStringLiteral("ID"));
        if (!rs.MoveNext().isOk())
            break;
    }
    return ids;
}

void RecordSourceContractTest::SetUp()
{
    ASSERT_TRUE(m_dir.isValid());
    Status s = GetParam()->createTables(m_dir.path(), contractTables());
    ASSERT_TRUE(s.isOk()) << s.toString().toStdString();
    m_db = openAgain();
    ASSERT_TRUE(m_db);
}

std::unique_ptr<Database> RecordSourceContractTest::openAgain() const
{
    return orFail(GetParam()->open(m_dir.path()));
}

std::unique_ptr<RecordSource> RecordSourceContractTest::open(Database &db, const QString &sql) const
{
    SCOPED_TRACE(sql.toStdString());
    return orFail(db.OpenRecordset(sql));
}

void RecordSourceContractTest::goToId(RecordSource &rs, const QString &id) const
{
    Status s = rs.FindFirst(QStringLiteral("ID = ") + strToASC(id));
    ASSERT_TRUE(s.isOk()) << s.toString().toStdString();
    ASSERT_FALSE(rs.NoMatch()) << id.toStdString();
}

QStringList RecordSourceContractTest::expectedByNameCity(
    const std::function<bool(const QVariantList &)> &keep) const
{
    const Qt::CaseSensitivity cs =
        m_db->textCompare() == TextCompare::NoCase ? Qt::CaseInsensitive : Qt::CaseSensitive;
    QList<QVariantList> rows;
    for (const QVariantList &row : peopleTable().rows) {
        if (keep(row))
            rows << row;
    }
    std::stable_sort(rows.begin(), rows.end(), [cs](const QVariantList &a, const QVariantList &b) {
        const int byName = a.at(1).toString().compare(b.at(1).toString(), cs);
        return byName != 0 ? byName < 0 : a.at(2).toString().compare(b.at(2).toString(), cs) < 0;
    });
    QStringList ids;
    for (const QVariantList &row : rows)
        ids << row.at(0).toString();
    return ids;
}

std::string backEndName(const ::testing::TestParamInfo<std::shared_ptr<BackEnd>> &info)
{
    return info.param->name().toStdString();
}

} // namespace plx::testing
