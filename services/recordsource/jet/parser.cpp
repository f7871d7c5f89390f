// services/recordsource/jet/parser.cpp: a recursive-descent parser with Jet's operator
// precedence (loosest first): Imp, Eqv, Xor, Or, And, Not, comparisons (= <> < > <= >=
// Like Is Between In), &, + -, Mod, \, * /, unary -, ^.
#include "services/recordsource/jet/internal/parser.h"

#include "services/recordsource/jet/descentparser_p.h"
#include "services/recordsource/jet/internal/evaluationcounters.h"

namespace plx::jet {

using detail::Parser;

namespace {

// The node's height from its operands': the left operand of a binary operator that is
// itself one, and the operand of Not or minus that is itself one, continue a chain that the
// walks follow in a loop, so they add no level.
void setHeight(Node &n)
{
    int h = 0;
    for (size_t i = 0; i < n.args.size(); ++i) {
        const Node &a = *n.args[i];
        const bool chained =
            i == 0 && a.kind == n.kind && (n.kind == NodeKind::Binary || n.kind == NodeKind::Unary);
        h = std::max(h, chained ? a.height - 1 : a.height);
    }
    n.height = h + 1;
}

NodePtr makeBinary(Op op, NodePtr l, NodePtr r, int pos)
{
    auto n = std::make_shared<Node>();
    n->kind = NodeKind::Binary;
    n->op = op;
    n->pos = pos;
    n->args = { std::move(l), std::move(r) };
    setHeight(*n);
    return n;
}

// `operand` under one `op` node for each position of a run of prefix operators (Not Not x,
// - - x); the last one read applies first, so it is the innermost.
NodePtr wrapInPrefixRun(Op op, NodePtr operand, const std::vector<int> &positions)
{
    NodePtr node = std::move(operand);
    for (size_t i = positions.size(); i-- > 0;) {
        auto n = std::make_shared<Node>();
        n->kind = NodeKind::Unary;
        n->op = op;
        n->pos = positions[i];
        n->args = { std::move(node) };
        setHeight(*n);
        node = std::move(n);
    }
    return node;
}

// The operator of a comparison symbol (= <> < > <= >=); Op::None for any other token.
Op comparisonOp(const Token &t)
{
    static const struct
    {
        const char *sym;
        Op op;
    } cmps[] = { { "=", Op::Eq }, { "<>", Op::Ne }, { "<", Op::Lt },
                 { ">", Op::Gt }, { "<=", Op::Le }, { ">=", Op::Ge } };
    for (const auto &c : cmps) {
        if (t.isSymbol(QLatin1String(c.sym)))
            return c.op;
    }
    return Op::None;
}

// Not Like, Not Between and Not In: a Not that negates the test after it rather than
// starting an operand of its own.
bool negatesNextTest(const Token &t, const Token &next)
{
    return t.isWord(QLatin1String("NOT"))
        && (next.isWord(QLatin1String("LIKE")) || next.isWord(QLatin1String("BETWEEN"))
            || next.isWord(QLatin1String("IN")));
}

} // namespace

namespace detail {

bool Parser::isReserved(const Token &t) const
{
    static const char *const words[] = { "SELECT", "FROM",  "WHERE", "ORDER",   "BY", "AND",
                                         "OR",     "NOT",   "LIKE",  "BETWEEN", "IN", "IS",
                                         "XOR",    "EQV",   "IMP",   "MOD",     "ON", "JOIN",
                                         "INNER",  "LEFT",  "RIGHT", "OUTER",   "AS", "ASC",
                                         "DESC",   "GROUP", "HAVING" };
    if (t.kind != TokenKind::Name)
        return false;
    for (const char *w : words) {
        if (t.text.compare(QLatin1String(w), Qt::CaseInsensitive) == 0)
            return true;
    }
    return false;
}

Result<NodePtr> Parser::expression()
{
    if (m_depth >= kMaxExpressionDepth)
        return tooDeep(peek().pos);
    ++m_depth;
    Result<NodePtr> e = binaryLevel(0);
    --m_depth;
    return e;
}

// Levels 0..5: Imp, Eqv, Xor, Or, And, then Not.
Result<NodePtr> Parser::binaryLevel(int level)
{
    static const struct
    {
        const char *word;
        Op op;
    } levels[] = { { "IMP", Op::Imp },
                   { "EQV", Op::Eqv },
                   { "XOR", Op::Xor },
                   { "OR", Op::Or },
                   { "AND", Op::And } };
    if (level == 5)
        return notLevel();
    Result<NodePtr> left = binaryLevel(level + 1);
    if (!left.isOk())
        return left;
    NodePtr node = left.value();
    while (peek().isWord(QLatin1String(levels[level].word))) {
        const int pos = take().pos;
        Result<NodePtr> right = binaryLevel(level + 1);
        if (!right.isOk())
            return right;
        node = makeBinary(levels[level].op, node, right.value(), pos);
        if (node->height > kMaxExpressionDepth)
            return tooDeep(pos);
    }
    return node;
}

Result<NodePtr> Parser::notLevel()
{
    // Not Not Not ... is a chain, read in a loop: any number of them costs no stack.
    std::vector<int> nots;
    while (peek().isWord(QLatin1String("NOT")))
        nots.push_back(take().pos);
    Result<NodePtr> inner = comparison();
    if (!inner.isOk())
        return inner;
    NodePtr node = wrapInPrefixRun(Op::Not, inner.value(), nots);
    if (node->height > kMaxExpressionDepth)
        return tooDeep(node->pos);
    return node;
}

Result<NodePtr> Parser::comparison()
{
    Result<NodePtr> left = arithmetic(0);
    if (!left.isOk())
        return left;
    NodePtr node = left.value();
    for (;;) {
        const Token &t = peek();
        const int pos = t.pos;
        if (const Op op = comparisonOp(t); op != Op::None) {
            take();
            Result<NodePtr> right = arithmetic(0);
            if (!right.isOk())
                return right;
            node = makeBinary(op, node, right.value(), pos);
            if (node->height > kMaxExpressionDepth)
                return tooDeep(pos);
            continue;
        }
        const bool negated = negatesNextTest(t, peek(1));
        if (negated)
            take();
        auto n = std::make_shared<Node>();
        n->pos = pos;
        n->negated = negated;
        n->args = { node };
        if (acceptWord(QLatin1String("LIKE"))) {
            Result<NodePtr> pattern = arithmetic(0);
            if (!pattern.isOk())
                return pattern;
            n->kind = NodeKind::Like;
            n->args.push_back(pattern.value());
        } else if (acceptWord(QLatin1String("BETWEEN"))) {
            Result<NodePtr> low = arithmetic(0);
            if (!low.isOk())
                return low;
            if (!acceptWord(QLatin1String("AND")))
                return error(QStringLiteral("'And' of Between"));
            Result<NodePtr> high = arithmetic(0);
            if (!high.isOk())
                return high;
            n->kind = NodeKind::Between;
            n->args.push_back(low.value());
            n->args.push_back(high.value());
        } else if (acceptWord(QLatin1String("IN"))) {
            if (!acceptSymbol(QLatin1String("(")))
                return error(QStringLiteral("'(' after In"));
            do {
                Result<NodePtr> item = expression();
                if (!item.isOk())
                    return item;
                n->args.push_back(item.value());
            } while (acceptSymbol(QLatin1String(",")));
            if (!acceptSymbol(QLatin1String(")")))
                return error(QStringLiteral("')' closing the In list"));
            n->kind = NodeKind::In;
        } else if (!negated && acceptWord(QLatin1String("IS"))) {
            n->negated = acceptWord(QLatin1String("NOT"));
            if (!acceptWord(QLatin1String("NULL")))
                return error(QStringLiteral("'Null' after Is"));
            n->kind = NodeKind::IsNull;
        } else {
            return node;
        }
        // x Like a Like b ... nests each test in the next.
        setHeight(*n);
        if (n->height > kMaxExpressionDepth)
            return tooDeep(pos);
        node = n;
    }
}

// Levels 0..4: &, + -, Mod, \, * /.
Result<NodePtr> Parser::arithmetic(int level)
{
    if (level == 5)
        return unary();
    Result<NodePtr> left = arithmetic(level + 1);
    if (!left.isOk())
        return left;
    NodePtr node = left.value();
    for (;;) {
        const Token &t = peek();
        Op op = Op::None;
        switch (level) {
        case 0: op = t.isSymbol(QLatin1String("&")) ? Op::Concat : Op::None; break;
        case 1:
            op = t.isSymbol(QLatin1String("+"))  ? Op::Add
                : t.isSymbol(QLatin1String("-")) ? Op::Sub
                                                 : Op::None;
            break;
        case 2: op = t.isWord(QLatin1String("MOD")) ? Op::Mod : Op::None; break;
        case 3: op = t.isSymbol(QLatin1String("\\")) ? Op::IntDiv : Op::None; break;
        default:
            op = t.isSymbol(QLatin1String("*"))  ? Op::Mul
                : t.isSymbol(QLatin1String("/")) ? Op::Div
                                                 : Op::None;
            break;
        }
        if (op == Op::None)
            return node;
        const int pos = take().pos;
        Result<NodePtr> right = arithmetic(level + 1);
        if (!right.isOk())
            return right;
        node = makeBinary(op, node, right.value(), pos);
        if (node->height > kMaxExpressionDepth)
            return tooDeep(pos);
    }
}

Result<NodePtr> Parser::unary()
{
    // Signs are read in a loop (- - - x): a chain of them costs no stack. '+' is dropped.
    std::vector<int> minus;
    while (peek().isSymbol(QLatin1String("-")) || peek().isSymbol(QLatin1String("+"))) {
        const Token &t = take();
        if (t.text == QLatin1String("-"))
            minus.push_back(t.pos);
    }
    Result<NodePtr> inner = power();
    if (!inner.isOk())
        return inner;
    NodePtr node = wrapInPrefixRun(Op::Neg, inner.value(), minus);
    if (node->height > kMaxExpressionDepth)
        return tooDeep(node->pos);
    return node;
}

Result<NodePtr> Parser::power()
{
    Result<NodePtr> left = primary();
    if (!left.isOk())
        return left;
    NodePtr node = left.value();
    while (peek().isSymbol(QLatin1String("^"))) {
        const int pos = take().pos;
        // The exponent may carry its own sign: 2 ^ -1. Its own exponent nests in it.
        const bool signed_ = peek().isSymbol(QLatin1String("-"));
        if (signed_ && m_depth >= kMaxExpressionDepth)
            return tooDeep(peek().pos);
        m_depth += signed_ ? 1 : 0;
        Result<NodePtr> right = signed_ ? unary() : primary();
        m_depth -= signed_ ? 1 : 0;
        if (!right.isOk())
            return right;
        node = makeBinary(Op::Pow, node, right.value(), pos);
        if (node->height > kMaxExpressionDepth)
            return tooDeep(pos);
    }
    return node;
}

Result<NodePtr> Parser::primary()
{
    const Token &t = peek();
    auto lit = std::make_shared<Node>();
    lit->kind = NodeKind::Literal;
    lit->pos = t.pos;
    switch (t.kind) {
    case TokenKind::Text:
        lit->value = t.text;
        take();
        return lit;
    case TokenKind::Number:
        lit->value = t.number;
        take();
        return lit;
    case TokenKind::Date:
        lit->value = t.date;
        take();
        return lit;
    case TokenKind::Symbol:
        if (t.isSymbol(QLatin1String("("))) {
            take();
            Result<NodePtr> inner = expression();
            if (!inner.isOk())
                return inner;
            if (!acceptSymbol(QLatin1String(")")))
                return error(QStringLiteral("')'"));
            return inner;
        }
        return error(QStringLiteral("a value"));
    case TokenKind::End: return error(QStringLiteral("a value"));
    case TokenKind::Name:
        if (t.isWord(QLatin1String("TRUE")) || t.isWord(QLatin1String("FALSE"))) {
            lit->value = t.isWord(QLatin1String("TRUE"));
            take();
            return lit;
        }
        if (t.isWord(QLatin1String("NULL"))) {
            take();
            return lit;
        }
        // Left( and Right( are functions although LEFT and RIGHT also start joins.
        if (isReserved(t) && !peek(1).isSymbol(QLatin1String("(")))
            return error(QStringLiteral("a value"));
        return nameOrCall();
    case TokenKind::BracketName: return nameOrCall();
    }
    return error(QStringLiteral("a value"));
}

Result<NodePtr> Parser::nameOrCall()
{
    const Token first = take();
    auto n = std::make_shared<Node>();
    n->pos = first.pos;
    if (first.kind == TokenKind::Name && peek().isSymbol(QLatin1String("("))) {
        take();
        n->kind = NodeKind::Call;
        n->name = first.text.toUpper();
        if (!isKnownFunction(n->name))
            return Status(Status::Code::UnknownFunction,
                          QStringLiteral("undefined function '%1' at position %2")
                              .arg(first.text)
                              .arg(first.pos));
        if (!acceptSymbol(QLatin1String(")"))) {
            do {
                Result<NodePtr> arg = expression();
                if (!arg.isOk())
                    return arg;
                n->args.push_back(arg.value());
            } while (acceptSymbol(QLatin1String(",")));
            if (!acceptSymbol(QLatin1String(")")))
                return error(QStringLiteral("')' closing %1(").arg(first.text));
        }
        setHeight(*n);
        if (n->height > kMaxExpressionDepth)
            return tooDeep(n->pos);
        return n;
    }
    n->kind = NodeKind::Column;
    if (peek().isSymbol(QLatin1String(".")) || peek().isSymbol(QLatin1String("!"))) {
        take();
        const Token &second = peek();
        if (second.kind != TokenKind::Name && second.kind != TokenKind::BracketName)
            return error(QStringLiteral("a field name after '%1.'").arg(first.text));
        take();
        n->table = first.text.trimmed();
        n->name = second.text.trimmed();
    } else {
        n->name = first.text.trimmed();
        n->wholeBracket =
            first.kind == TokenKind::BracketName && n->name.contains(QLatin1Char('.'));
    }
    return n;
}

Result<NodePtr> Parser::wholeExpression()
{
    Result<NodePtr> e = expression();
    if (!e.isOk())
        return e;
    if (peek().kind != TokenKind::End)
        return error(QStringLiteral("an operator"));
    return e;
}

} // namespace detail

Result<SelectStatement> parseSelect(const QString &sql, const ParseLimits &limits)
{
    ++evaluationCounters().statementsParsed;
    Result<std::vector<Token>> tokens = tokenize(sql, limits);
    if (!tokens.isOk())
        return tokens.status();
    const int terms = countTerms(tokens.value());
    Parser parser(std::move(tokens).value());
    Result<SelectStatement> stmt = parser.select();
    if (stmt.isOk())
        stmt->terms = terms;
    return stmt;
}

Result<NodePtr> parseExpression(const QString &text, const ParseLimits &limits)
{
    Result<std::vector<Token>> tokens = tokenize(text, limits);
    if (!tokens.isOk())
        return tokens.status();
    Parser parser(std::move(tokens).value());
    return parser.wholeExpression();
}

} // namespace plx::jet
