// services/recordsource/jetsqlite/internal/sqlitetranslate.h: Jet SQL texts run on SQLite.
//
// The controls build their queries in Jet's dialect. SQLite reads several of its
// spellings differently ("..." is a name, & is a bit operation, LIKE uses % and folds
// only ASCII), so every text is parsed by the Jet front end and re-emitted in SQLite's
// dialect, calling functions that registerJetFunctions() installs on the connection.
// Nothing of the original text is pasted through: only one statement can result, and a
// user's text can only ever become a literal.
#pragma once

#include "services/recordsource/result.h"
#include "services/recordsource/textcompare.h"

#include <QStringList>

#include <functional>
#include <optional>

struct sqlite3;

namespace plx::jet {

struct SelectStatement;

// The columns of a table as the engine knows them, in table order.
struct TableColumns
{
    QString table; // the name as stored in the database
    QStringList columns;
};
// Looks a table up by name (case-insensitively); nullopt when there is none.
using TableLookup = std::function<std::optional<TableColumns>(const QString &name)>;

struct TranslatedSelect
{
    QString sql; // the whole statement in SQLite's dialect
    QString selectList; // the output columns, translated
    QString fromClause; // "FROM ..." with any joins
    QString whereClause; // the condition without "WHERE", or empty
    QString orderClause; // the ORDER BY items without "ORDER BY", or empty
    QString baseTable; // the single table read when there are no joins; empty otherwise
    QString baseAlias; // how that table is named inside the statement (for "<alias>.rowid")
    QStringList outputNames; // the output column names, in order
    // The tables read, as named inside the statement and as stored; criteria are resolved
    // against them.
    QStringList sourceAliases;
    QList<TableColumns> sourceTables;
};

// Parses a Jet SELECT and translates it. Syntax, UnknownField (with the name),
// UnknownFunction and TypeMismatch (when it can be seen without data) are distinct errors
// whose message names the offending token and its position.
Result<TranslatedSelect> translateSelect(const QString &jetSql, const TableLookup &tables,
                                         TextCompare compare = TextCompare::NoCase);
// The same for a statement the caller has parsed, under the bounds of its engine.
Result<TranslatedSelect> translateSelect(const SelectStatement &stmt, const TableLookup &tables,
                                         TextCompare compare = TextCompare::NoCase);

// Translates a Jet criterion (a WHERE condition without the word) evaluated against the
// rows of `select`, e.g. for FindFirst.
Result<QString> translateCriterion(const QString &jetCriterion, const TranslatedSelect &select,
                                   const TableLookup &tables,
                                   TextCompare compare = TextCompare::NoCase);

// Dates are stored in SQLite as ISO text ('YYYY-MM-DD' or 'YYYY-MM-DD hh:mm:ss') and
// Booleans as -1/0; date literals are emitted in that form, so comparisons and ORDER BY
// work on the stored text.
//
// Installs the functions and collations the translated texts call. Call once per
// connection, right after opening it. Text comparisons and ORDER BY use COLLATE JETNOCASE
// (case-folded, NoCase sources) or COLLATE JETBINARY (Windows-1252 byte order, Binary
// sources); a back end may declare its columns with the same collations.
Status registerJetFunctions(sqlite3 *db);

} // namespace plx::jet
