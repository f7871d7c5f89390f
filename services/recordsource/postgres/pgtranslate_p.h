// services/recordsource/postgres/pgtranslate_p.h: Jet SQL texts run on PostgreSQL.
//
// The controls' queries are parsed by the Jet front end and re-emitted in PostgreSQL's
// dialect, with the dialect's meaning: text compares and sorts without regard to case
// (COLLATE plx.nocase), Like's wildcards become an anchored regular expression over the
// lower-cased text, & keeps Null only when every part is Null, Booleans read -1/0, Nulls
// sort first. PostgreSQL types strictly where Jet converts at run time, so every emitted
// piece carries its kind, and a mix that Jet would convert in a way this translation cannot
// reproduce exactly (a number joined to a text by &, a function without a PostgreSQL
// equivalent yet) fails with NotSupported naming the piece and its position, never a result
// that differs from Jet's. Nothing of the original text is pasted through: a user's text can
// only ever become a literal.
#pragma once

#include "services/recordsource/jet/internal/ast.h"
#include "services/recordsource/postgres/pgconnection_p.h"

#include <functional>

namespace plx::postgres {

using TableLookup = std::function<std::optional<PgTable>(const QString &name)>;

struct PgSource
{
    QString alias; // as written (or the table name)
    PgTable table;
};

struct PgSelect
{
    QString sql; // the whole statement
    QString selectList; // the output columns, translated
    QString fromClause; // "FROM ..." with any joins
    QString whereClause; // the condition without "WHERE", or empty
    QString orderClause; // the ORDER BY items without "ORDER BY", or empty
    QString baseAlias; // the single table's quoted alias; empty with joins
    bool keyed = false; // one table with the engine's key column: rows addressed by key
    QList<FieldInfo> fields; // the output fields, in order
    QStringList baseColumns; // the base column each field writes to; empty: computed
    std::vector<PgSource> sources;
};

// Translates a parsed SELECT. Syntax, UnknownField, UnknownFunction and TypeMismatch as
// the other engines report them; NotSupported for a piece without an exact translation.
Result<PgSelect> translateSelect(const jet::SelectStatement &stmt, const TableLookup &tables);
// Translates a criterion (FindFirst) against the tables of `select`; the result is a SQL
// boolean.
Result<QString> translateCriterion(const QString &jetCriterion, const PgSelect &select);

} // namespace plx::postgres
