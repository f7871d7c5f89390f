// A table with indexes in the dialect's collation gives the same order and the same matches as
// the same table without them, for the texts that make the General order hard (case twins,
// accents, letters spelled out or upper-cased to two, other scripts, symbols), and SQLite
// answers the navigator's ID look-up, sort and find from the indexes.
#include "services/recordsource/jetsqlite/tests/jetsqlitedb.h"
#include "services/texthelpers.h"

#include <gtest/gtest.h>

#include <random>

using namespace plx;
using namespace plx::jet;

namespace {

// Beginnings chosen where a byte or case-folding order would part from the General one.
const char16_t *const kNameStarts[] = {
    u"smith",
    u"Smith",
    u"SMITH",
    u"Sm\u00E9",
    u"\u015Cmith",
    u"\u017Fmall",
    u"\u00DFmall",
    u"Stra\u00DFe",
    u"\uFB06ar",
    u"\uFB05op",
    u"\uFB01sh",
    u"\uFB02y",
    u"\uFB00",
    u"\uFB03x",
    u"\u1E9Abc",
    u"Abc",
    u"abc",
    u"\u00C9mile",
    u"emile",
    u"Emilia",
    u"\u00C6r\u00F8",
    u"\u00D8st",
    u"\u03A3\u03BC\u03AF\u03B8",
    u"\u0421\u043C\u0438\u0442",
    u"\u53F2\u5BC6",
    u"\u20ACuro",
    u"1st",
    u"O'Brien",
    u"_under",
    u"{brace",
    u"a|pipe",
    u"\u212Aelly",
    u"\u0130stanbul",
    u"\u0131i",
    u"",
};
const char16_t *const kSuffixes[] = { u"", u"a", u"A", u"\u00E9", u" z", u"Z", u"-1" };
const char16_t *const kCities[] = { u"Austin", u"austin", u"\u00C5re", u"Are", u"" };

class JetIndexTest : public ::testing::Test
{
protected:
    // P and X hold the same records; X has indexes on ID and on NAME, CITY in JETNOCASE.
    void SetUp() override
    {
        m_db.exec(QStringLiteral("CREATE TABLE P (ID TEXT, NAME TEXT, CITY TEXT);"
                                 "CREATE TABLE X (ID TEXT, NAME TEXT, CITY TEXT);"
                                 "CREATE INDEX X_ID ON X (ID COLLATE JETNOCASE);"
                                 "CREATE INDEX X_NAME ON X (NAME COLLATE JETNOCASE,"
                                 " CITY COLLATE JETNOCASE);"));
        std::mt19937 random(20261124);
        auto pick = [&random](const auto &list) {
            return QString::fromUtf16(list[random() % std::size(list)]);
        };
        const QString idChars = QStringLiteral("aZz\u00E9\u00C9-");
        for (int row = 0; row < 3000; ++row) {
            // Unique by the record's number; every tenth record has a twin whose ID differs
            // only in case.
            QString id = QStringLiteral("PLE%1a").arg(row, 4, 10, QLatin1Char('0'));
            for (int k = 0; k < 2; ++k)
                id += idChars.at(random() % idChars.size());
            if (row % 10 == 1)
                id = m_ids.back().left(7) + m_ids.back().mid(7).toUpper();
            m_ids << id;
            const QString name = row % 97 == 0 ? QStringLiteral("NULL")
                                               : quoted(pick(kNameStarts) + pick(kSuffixes));
            const QString city = quoted(pick(kCities));
            for (const char *table : { "P", "X" })
                m_db.exec(QStringLiteral("INSERT INTO %1 VALUES (%2, %3, %4)")
                              .arg(QLatin1String(table), quoted(id), name, city));
        }
    }

    static QString quoted(QString text)
    {
        return QLatin1Char('\'') + text.replace(QLatin1Char('\''), QStringLiteral("''"))
            + QLatin1Char('\'');
    }

    QString translated(const QString &jetSql)
    {
        Result<TranslatedSelect> t = translateSelect(jetSql, m_db.lookup());
        EXPECT_TRUE(t.isOk()) << jetSql.toStdString() << ": "
                              << t.status().toString().toStdString();
        return t.isOk() ? t->sql : QString();
    }
    // A Jet SELECT in the order the record source reads its keys: ties by rowid.
    QString keyOrdered(const QString &jetSql)
    {
        QString sql = translated(jetSql);
        if (sql.contains(QLatin1String(" ORDER BY ")))
            sql += QStringLiteral(", rowid");
        return sql;
    }
    // The first column of every row it gives, one a line.
    std::string ids(const QString &jetSql)
    {
        return m_db.rows(keyOrdered(jetSql), 0).join(QLatin1Char('\n')).toStdString();
    }
    // How SQLite runs it, one step a line.
    QString plan(const QString &jetSql)
    {
        return m_db.rows(QStringLiteral("EXPLAIN QUERY PLAN ") + keyOrdered(jetSql), 3)
            .join(QLatin1Char('\n'));
    }
    // The IDs of the records a FindFirst criterion holds for, in rowid order.
    QStringList matching(const QString &table, const QString &criterion)
    {
        const QString select = QStringLiteral("SELECT * FROM ") + table;
        Result<TranslatedSelect> t = translateSelect(select, m_db.lookup());
        Result<QString> c = translateCriterion(criterion, t.value(), m_db.lookup());
        EXPECT_TRUE(c.isOk()) << criterion.toStdString();
        return m_db.rows(QStringLiteral("SELECT ID FROM \"%1\" AS \"%1\" WHERE %2 ORDER BY rowid")
                             .arg(table, c.value()));
    }

    jet::testing::JetSqliteDb m_db;
    QStringList m_ids;
};

} // namespace

TEST_F(JetIndexTest, SortsReadTheIndexInTheOrderASortGives)
{
    for (const char *order : { "NAME, CITY", "NAME DESC, CITY DESC", "ID" }) {
        const QString sql = QStringLiteral("SELECT ID FROM %1 ORDER BY ") + QLatin1String(order);
        EXPECT_EQ(ids(sql.arg(QLatin1Char('X'))), ids(sql.arg(QLatin1Char('P')))) << order;
        // A descending order reads the index backwards and puts each run of ties in rowid order.
        EXPECT_FALSE(
            plan(sql.arg(QLatin1Char('X'))).contains(QLatin1String("TEMP B-TREE FOR ORDER BY")))
            << order;
    }
}

TEST_F(JetIndexTest, FindsMatchWhatTheUpperCasedTextMatches)
{
    // The oracle spells the find so that no range is put beside it: UCase of "NAME & ''".
    const char *const prefixes[] = { "SM", "S",  "ST", "SS", "F", "FI",  "FF",       "FFL",
                                     "A",  "AB", "E",  "EM", "K", "O'B", "1",        "_",
                                     "{",  "A|", "I",  "IS", "Z", "~",   "\xC3\x89M" };
    int found = 0;
    for (const char *prefix : prefixes) {
        const QString p =
            QString::fromUtf8(prefix).replace(QLatin1Char('\''), QStringLiteral("''"));
        const std::string hits =
            ids(QStringLiteral("SELECT ID FROM X WHERE UCase([X.NAME]) LIKE '%1*' ORDER BY NAME, "
                               "CITY")
                    .arg(p));
        EXPECT_EQ(hits,
                  ids(QStringLiteral("SELECT ID FROM P WHERE UCase([P.NAME] & '') LIKE "
                                     "'%1*' ORDER BY NAME, CITY")
                          .arg(p)))
            << prefix;
        found += hits.empty() ? 0 : 1;
    }
    EXPECT_GE(found, 18);
    // The letters that upper-case to two are found where their upper case matches.
    EXPECT_NE(ids(QStringLiteral("SELECT NAME FROM X WHERE UCase(NAME) LIKE 'FI*'")).find("\uFB01"),
              std::string::npos);
    EXPECT_TRUE(plan(QStringLiteral("SELECT ID FROM X WHERE UCase(NAME) LIKE 'SM*' ORDER BY NAME, "
                                    "CITY"))
                    .contains(QLatin1String("INDEX X_NAME (NAME>? AND NAME<?)")));
}

TEST_F(JetIndexTest, IdCriteriaFindTheSameRecordsThroughTheIndex)
{
    for (qsizetype i = 0; i < m_ids.size(); i += 7) {
        const QString criterion = QStringLiteral("ID = ") + strToASC(m_ids.at(i));
        const QStringList hits = matching(QStringLiteral("X"), criterion);
        EXPECT_EQ(hits, matching(QStringLiteral("P"), criterion)) << m_ids.at(i).toStdString();
        EXPECT_TRUE(hits.contains(m_ids.at(i)));
    }
    // A case twin is found with its record: both IDs compare equal in the General order.
    EXPECT_EQ(matching(QStringLiteral("X"), QStringLiteral("ID = ") + strToASC(m_ids.at(1))),
              (QStringList{ m_ids.at(0), m_ids.at(1) }));
    EXPECT_TRUE(plan(QStringLiteral("SELECT ID FROM X WHERE ID = ") + strToASC(m_ids.at(5)))
                    .contains(QLatin1String("INDEX X_ID (ID=?)")));
}
