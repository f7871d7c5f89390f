// services/recordsource/postgres/pgexpr_p.h: the expression half of the PostgreSQL
// translation. Every emitted piece carries its kind, because PostgreSQL resolves types when
// it plans a statement while Jet converts values as it meets them.
#pragma once

#include "services/recordsource/postgres/pgtranslate_p.h"

namespace plx::postgres {

enum class SqlKind { Bool, Text, Number, Date, Null };

struct SqlPiece
{
    QString text;
    SqlKind kind = SqlKind::Null;
};

// The collation every text comparison and text sort runs under.
inline const QString NoCase = QStringLiteral(" COLLATE plx.nocase");

class PgTranslator
{
public:
    explicit PgTranslator(const std::vector<PgSource> &sources) : m_sources(sources) { }

    Result<SqlPiece> expr(const jet::Node &node);
    // A piece as a SQL condition (Jet: nonzero is true) or as a value (Booleans as -1/0).
    Result<QString> condition(const jet::Node &node);
    static QString asValue(const SqlPiece &piece);
    // A column reference; `field` receives the column's description.
    Result<SqlPiece> column(const jet::Node &node, PgColumn *field = nullptr,
                            const PgSource **source = nullptr);

    static Status notSupported(const jet::Node &node, const QString &what);

private:
    Result<SqlPiece> exprAt(const jet::Node &node);
    Result<SqlPiece> binary(const jet::Node &node);
    Result<SqlPiece> comparison(const jet::Node &node, const SqlPiece &l, const SqlPiece &r);
    Result<SqlPiece> concatChain(const jet::Node &top);
    Result<SqlPiece> logicChain(const jet::Node &top);
    Result<SqlPiece> like(const jet::Node &node);
    Result<SqlPiece> listTest(const jet::Node &node);
    Result<SqlPiece> call(const jet::Node &node);
    Result<SqlPiece> textCall(const jet::Node &node, const std::vector<SqlPiece> &args);
    Result<std::vector<SqlPiece>> arguments(const jet::Node &node);
    Result<QString> conditionOf(const SqlPiece &piece, const jet::Node &node);
    const PgSource *findSource(const QString &name) const;

    const std::vector<PgSource> &m_sources;
    int m_depth = 0;
};

// Whether a subtree reads no field and no clock: its value is the same for every row.
bool isConstantTree(const jet::Node &root);
// The regular expression (anchored, lower-cased) that matches what a Jet Like pattern
// matches once both sides are lower-cased; Syntax for a malformed pattern.
Result<QString> likeRegex(const QString &pattern, int pos);

} // namespace plx::postgres
