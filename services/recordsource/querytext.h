// services/recordsource/querytext.h: the Jet SQL texts the controls send for one table.
//
// Every statement and criterion the navigator, the rows and plxform hand a Database or a
// RecordSource is written here, so names are bracketed in one way everywhere: a table or
// field name that is not a plain identifier, or that is a reserved word, stands in brackets
// ("[my people]", "[ORDER]", "[91]"); a name already in brackets is left as it is. IDs in
// criteria are always chains of CHR codes (strToASC), never quoted literals, so no ID can
// break one.
//
// Hosts that open record sources of their own on the same table may use it too:
//
//     const plx::QueryText sql(QStringLiteral("my people"));
//     db->OpenRecordset(sql.selectWhere(QStringLiteral("CITY = 'GARY'")));
//     // SELECT * from [my people] WHERE CITY = 'GARY'
//
// A value type; every function is pure and thread-safe.
#pragma once

#include <QString>

namespace plx {

class QueryText
{
public:
    // Texts for the table named `table` (as the database names it, unbracketed).
    explicit QueryText(QString table = QString()) : m_table(std::move(table)) { }

    QString table() const { return m_table; }

    // `name` as it can stand in a statement: unchanged when it is a plain identifier that
    // is not a reserved word, in brackets otherwise.
    static QString name(const QString &name);
    // `field` of this table for a criterion or sort, each name bracketed as name() does:
    // "T.NAME", "[my people].NAME", "T.[first name]".
    QString qualified(const QString &field) const;

    // A sort field list ("NAME, CITY DESC") as an ORDER BY list of this table
    // ("T.NAME, T.CITY DESC"): blank pieces dropped, names bracketed, directions kept.
    QString orderByList(const QString &sortFields) const;

    // "SELECT * from <table>", followed by " ORDER BY <list>" when `sortFields` gives one.
    QString selectAll(const QString &sortFields = QString()) const;
    // "SELECT * from <table> WHERE <criterion>".
    QString selectWhere(const QString &criterion) const;
    // The navigator's records: "SELECT * from <table> <join> <where> " and " ORDER BY
    // <list>" when `sortFields` gives one. `join` and `where` go in as the host wrote them,
    // so `where` carries its own "WHERE".
    QString records(const QString &join, const QString &where, const QString &sortFields) const;

    // The find for `search` (already upper-cased and trimmed by the caller): its
    // tab-separated pieces matched as prefixes, piece i against field i of `sortFields`,
    // "SELECT * from T WHERE UCase([T.NAME]) LIKE 'SM*' AND UCase([T.CITY]) LIKE 'B*'
    // ORDER BY T.NAME, T.CITY"; quotes doubled and pipes written as character codes. ""
    // when no piece meets a field (nothing to find).
    QString find(const QString &search, const QString &sortFields) const;

    // "<field> = CHR(..)&CHR(..)", the criterion that finds record `id` by `idField`.
    QString idCriterion(const QString &idField, const QString &id) const;
    // The same with the field qualified by the table ("T.ID = ..."), for statements that
    // join other tables.
    QString qualifiedIdCriterion(const QString &idField, const QString &id) const;

    // The table's generated IDs (those starting with "PLE"), highest first.
    QString highestGeneratedID(const QString &idField) const;

private:
    QString m_table;
};

} // namespace plx
