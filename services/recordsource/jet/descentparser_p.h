// services/recordsource/jet/descentdescentparser_p.h: the recursive-descent parser shared by the
// expression grammar (parser.cpp) and the SELECT grammar (parserselect.cpp). Private to
// the Jet layer.
#pragma once

#include "services/recordsource/jet/internal/ast.h"
#include "services/recordsource/jet/internal/lexer.h"
#include "services/recordsource/result.h"

namespace plx::jet::detail {

class Parser
{
public:
    explicit Parser(std::vector<Token> tokens) : m_tokens(std::move(tokens)) { }

    Result<SelectStatement> select();
    Result<NodePtr> wholeExpression();

private:
    const Token &peek(int ahead = 0) const
    {
        const size_t i = std::min(m_index + size_t(ahead), m_tokens.size() - 1);
        return m_tokens[i];
    }
    const Token &take() { return m_tokens[std::min(m_index++, m_tokens.size() - 1)]; }
    bool acceptWord(QLatin1String w)
    {
        if (!peek().isWord(w))
            return false;
        ++m_index;
        return true;
    }
    bool acceptSymbol(QLatin1String s)
    {
        if (!peek().isSymbol(s))
            return false;
        ++m_index;
        return true;
    }
    Status error(const QString &expected) const
    {
        const Token &t = peek();
        const QString found = t.kind == TokenKind::End ? QStringLiteral("end of text")
                                                       : QStringLiteral("'%1'").arg(t.text);
        return Status(Status::Code::Syntax,
                      QStringLiteral("%1 expected but %2 found at position %3")
                          .arg(expected, found)
                          .arg(t.pos));
    }
    bool isReserved(const Token &t) const;
    Status tooDeep(int pos) const
    {
        return Status(Status::Code::Syntax,
                      QStringLiteral("expression nested deeper than %1 levels at position %2")
                          .arg(kMaxExpressionDepth)
                          .arg(pos));
    }

    // Every recursion of the grammar passes here or through an exponent's sign, both of
    // which count the depth.
    Result<NodePtr> expression();
    Result<NodePtr> binaryLevel(int level);
    Result<NodePtr> notLevel();
    Result<NodePtr> comparison();
    Result<NodePtr> arithmetic(int level);
    Result<NodePtr> unary();
    Result<NodePtr> power();
    Result<NodePtr> primary();
    Result<NodePtr> nameOrCall();
    Result<TableRef> tableRef();
    Status fromClause(SelectStatement &stmt);
    Status selectList(SelectStatement &stmt);

    std::vector<Token> m_tokens;
    size_t m_index = 0;
    int m_depth = 0; // nested expressions being parsed
};

} // namespace plx::jet::detail
