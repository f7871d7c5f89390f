// services/recordsource/jetsqlite/sqlitetranslator_p.h: the expression half of the SQLite
// translation, shared by the statement assembly (sqlitetranslate.cpp) and the expression
// emitter (sqliteexpr.cpp). Private to the dialect on SQLite.
#pragma once

#include "services/recordsource/jet/internal/ast.h"
#include "services/recordsource/jetsqlite/internal/sqlitetranslate.h"

#include <optional>
#include <vector>

namespace plx::jet::detail {

// "name" with inner quotes doubled: a SQLite identifier, whatever the name holds.
inline QString quoteName(const QString &name)
{
    QString q = name;
    q.replace(QLatin1Char('"'), QStringLiteral("\"\""));
    return QLatin1Char('"') + q + QLatin1Char('"');
}

// 'text' with inner quotes doubled: a SQLite text literal, whatever the text holds.
inline QString quoteText(const QString &text)
{
    QString q = text;
    q.replace(QLatin1Char('\''), QStringLiteral("''"));
    return QLatin1Char('\'') + q + QLatin1Char('\'');
}

// True when a subtree has no field and no clock function: its value is the same for every
// row, and the translation writes it as one literal.
bool isConstant(const Node &root);

struct Source
{
    QString alias; // as written (or the table name)
    TableColumns table; // real spelling
};

class Translator
{
public:
    Translator(std::vector<Source> sources, TextCompare mode)
        : m_sources(std::move(sources)), m_mode(mode)
    {
    }

    Result<QString> expr(const Node &node);
    // A condition whose value only decides whether a row is taken (WHERE, ON, a FindFirst
    // criterion): see sqlitecondition.cpp.
    Result<QString> condition(const Node &node);
    Result<QString> column(const Node &node, QString *outputName = nullptr);
    QString collate() const
    {
        return m_mode == TextCompare::NoCase ? QStringLiteral(" COLLATE JETNOCASE")
                                             : QStringLiteral(" COLLATE JETBINARY");
    }
    int modeArg() const { return m_mode == TextCompare::NoCase ? 1 : 0; }
    const std::vector<Source> &sources() const { return m_sources; }

private:
    Result<QString> exprAt(const Node &node);
    Result<QString> chain(const Node &top);
    QString binaryText(const Node &node, const QString &l, const QString &r) const;
    Result<QString> args(const Node &node, size_t from, QString *out);
    Result<QString> call(const Node &node);
    std::optional<QString> upperPrefixLike(const Node &node);
    Result<QString> conditionAt(const Node &node);
    Result<QString> comparisonCondition(const Node &node);
    Result<QString> runCondition(const Node &top);
    std::optional<QString> prefixRange(const Node &like);
    const Source *findSource(const QString &name) const;
    static Status unknown(const Node &node, const QString &what)
    {
        return Status(Status::Code::UnknownField,
                      QStringLiteral("unknown field '%1' at position %2").arg(what).arg(node.pos));
    }

    std::vector<Source> m_sources;
    TextCompare m_mode;
    int m_depth = 0; // nested expr() calls
};

} // namespace plx::jet::detail
