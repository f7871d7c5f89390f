// services/recordsource/dbf/xbaseparse.cpp: reading an index expression into typed nodes.
//
// Precedence, lowest first, as in FoxPro: .OR., .AND., .NOT., comparisons, + -, * /, unary
// minus. The first problem found is kept and parsing stops there.
#include "services/recordsource/dbf/xbasenode_p.h"

#include "services/recordsource/dbf/xbaselex_p.h"

#include "services/recordsource/dbf/internal/dbftable.h"

namespace plx::xbase {

namespace {

using NodePtr = std::unique_ptr<Node>;
// Deeper nesting than any tag has; the bound keeps a crafted expression off the stack's end.
constexpr int kMaxNesting = 100;
constexpr qsizetype kMaxLength = 512;

std::optional<Type> fieldType(char type)
{
    switch (type) {
    case 'C': return Type::Character;
    case 'N':
    case 'F':
    case 'B': return Type::Numeric;
    case 'D': return Type::Date;
    case 'L': return Type::Logical;
    case 'I': return Type::Integer;
    default: return std::nullopt;
    }
}

class Parser
{
public:
    Parser(QByteArrayView text, const DbfTable &table)
        : m_text(text.toByteArray()), m_lexer(m_text), m_table(table)
    {
    }

    Result<NodePtr> parseAll()
    {
        // An index keeps its expressions in one 512-byte page; the bound also keeps the
        // operator chains of a longer text from nesting the evaluation too deeply.
        if (m_text.size() > kMaxLength)
            fail(QStringLiteral("the expression is longer than an index can hold"));
        advance();
        NodePtr root = orExpr();
        if (m_status.isOk() && m_token.kind != Token::Kind::End)
            fail(QStringLiteral("unexpected \"%1\"").arg(QString::fromLatin1(m_token.text)));
        if (!m_status.isOk())
            return m_status;
        return root;
    }

private:
    void fail(const QString &why, Status::Code code = Status::Code::Syntax)
    {
        if (m_status.isOk())
            m_status =
                Status(code, QStringLiteral("%1 in \"%2\"").arg(why, QString::fromLatin1(m_text)));
    }

    bool isSymbol(const char *symbol) const
    {
        return m_token.kind == Token::Kind::Symbol && m_token.text == symbol;
    }

    void advance();
    NodePtr orExpr();
    NodePtr andExpr();
    NodePtr notExpr();
    NodePtr comparison();
    NodePtr additive();
    NodePtr multiplicative();
    NodePtr unary();
    NodePtr primary();
    NodePtr nameOrCall();
    NodePtr field(const QByteArray &name);
    NodePtr apply(const QByteArray &name, std::vector<NodePtr> args);

    QByteArray m_text;
    Lexer m_lexer;
    const DbfTable &m_table;
    Token m_token;
    Status m_status;
    int m_depth = 0;
};

void Parser::advance()
{
    QString problem;
    m_token = m_lexer.next(&problem);
    if (!problem.isEmpty())
        fail(problem);
}

NodePtr Parser::orExpr()
{
    NodePtr left = andExpr();
    while (m_status.isOk() && isSymbol(".OR.")) {
        advance();
        std::vector<NodePtr> args;
        args.push_back(std::move(left));
        args.push_back(andExpr());
        left = apply(".OR.", std::move(args));
    }
    return left;
}

NodePtr Parser::andExpr()
{
    NodePtr left = notExpr();
    while (m_status.isOk() && isSymbol(".AND.")) {
        advance();
        std::vector<NodePtr> args;
        args.push_back(std::move(left));
        args.push_back(notExpr());
        left = apply(".AND.", std::move(args));
    }
    return left;
}

NodePtr Parser::notExpr()
{
    if (!isSymbol(".NOT."))
        return comparison();
    if (++m_depth > kMaxNesting) {
        fail(QStringLiteral("the expression nests too deeply"));
        return nullptr;
    }
    advance();
    std::vector<NodePtr> args;
    args.push_back(notExpr());
    --m_depth;
    return apply(".NOT.", std::move(args));
}

NodePtr Parser::comparison()
{
    static const char *const kComparisons[] = { "=", "==", "#", "<", ">", "<=", ">=", "$" };
    NodePtr left = additive();
    for (const char *op : kComparisons) {
        if (m_status.isOk() && isSymbol(op)) {
            advance();
            std::vector<NodePtr> args;
            args.push_back(std::move(left));
            args.push_back(additive());
            return apply(op, std::move(args));
        }
    }
    return left;
}

NodePtr Parser::additive()
{
    NodePtr left = multiplicative();
    while (m_status.isOk() && (isSymbol("+") || isSymbol("-"))) {
        const QByteArray op = m_token.text;
        advance();
        std::vector<NodePtr> args;
        args.push_back(std::move(left));
        args.push_back(multiplicative());
        left = apply(op, std::move(args));
    }
    return left;
}

NodePtr Parser::multiplicative()
{
    NodePtr left = unary();
    while (m_status.isOk() && (isSymbol("*") || isSymbol("/"))) {
        const QByteArray op = m_token.text;
        advance();
        std::vector<NodePtr> args;
        args.push_back(std::move(left));
        args.push_back(unary());
        left = apply(op, std::move(args));
    }
    return left;
}

NodePtr Parser::unary()
{
    if (!isSymbol("-") && !isSymbol("+"))
        return primary();
    const bool minus = isSymbol("-");
    if (++m_depth > kMaxNesting) {
        fail(QStringLiteral("the expression nests too deeply"));
        return nullptr;
    }
    advance();
    NodePtr operand = unary();
    --m_depth;
    if (!minus || !operand)
        return operand;
    std::vector<NodePtr> args;
    args.push_back(std::move(operand));
    return apply("U-", std::move(args));
}

NodePtr Parser::primary()
{
    if (!m_status.isOk())
        return nullptr;
    auto literal = std::make_unique<Node>();
    switch (m_token.kind) {
    case Token::Kind::Text:
        literal->literal.text = m_token.text;
        advance();
        return literal;
    case Token::Kind::Number: {
        bool ok = false;
        literal->type = literal->literal.type = Type::Numeric;
        literal->literal.number = m_token.text.toDouble(&ok);
        if (!ok)
            fail(QStringLiteral("\"%1\" is no number").arg(QString::fromLatin1(m_token.text)));
        advance();
        return literal;
    }
    case Token::Kind::Name: return nameOrCall();
    case Token::Kind::End: fail(QStringLiteral("the expression ends too soon")); return nullptr;
    case Token::Kind::Symbol: break;
    }
    if (isSymbol(".T.") || isSymbol(".F.") || isSymbol(".Y.") || isSymbol(".N.")) {
        literal->type = literal->literal.type = Type::Logical;
        literal->literal.logical = isSymbol(".T.") || isSymbol(".Y.");
        advance();
        return literal;
    }
    if (!isSymbol("(")) {
        fail(QStringLiteral("unexpected \"%1\"").arg(QString::fromLatin1(m_token.text)));
        return nullptr;
    }
    if (++m_depth > kMaxNesting) {
        fail(QStringLiteral("the expression nests too deeply"));
        return nullptr;
    }
    advance();
    NodePtr inner = orExpr();
    --m_depth;
    if (m_status.isOk() && !isSymbol(")"))
        fail(QStringLiteral("a \"(\" without its \")\""));
    advance();
    return inner;
}

NodePtr Parser::nameOrCall()
{
    QByteArray name = m_token.text;
    advance();
    if (isSymbol("->")) { // an alias: the table itself
        advance();
        if (m_token.kind != Token::Kind::Name) {
            fail(QStringLiteral("a field name must follow \"->\""));
            return nullptr;
        }
        name = m_token.text;
        advance();
    }
    if (!isSymbol("("))
        return field(name);
    if (++m_depth > kMaxNesting) {
        fail(QStringLiteral("the expression nests too deeply"));
        return nullptr;
    }
    advance();
    std::vector<NodePtr> args;
    while (m_status.isOk() && !isSymbol(")")) {
        if (!args.empty()) {
            if (!isSymbol(","))
                fail(QStringLiteral("a \",\" or \")\" must follow an argument of %1")
                         .arg(QString::fromLatin1(name)));
            advance();
        }
        args.push_back(orExpr());
    }
    --m_depth;
    advance();
    return apply(name, std::move(args));
}

NodePtr Parser::field(const QByteArray &name)
{
    const int index = m_table.fieldIndex(QString::fromLatin1(name));
    if (index < 0) {
        fail(QStringLiteral("%1 is no field of the table").arg(QString::fromLatin1(name)),
             Status::Code::UnknownField);
        return nullptr;
    }
    const DbfField &f = m_table.fields()[index];
    const std::optional<Type> type = fieldType(f.type);
    if (!type) {
        fail(QStringLiteral("field %1 of type %2 cannot be used")
                 .arg(f.name, QChar::fromLatin1(f.type)),
             Status::Code::TypeMismatch);
        return nullptr;
    }
    auto node = std::make_unique<Node>();
    node->kind = Node::Kind::Field;
    node->type = *type;
    node->field = index;
    return node;
}

NodePtr Parser::apply(const QByteArray &name, std::vector<NodePtr> args)
{
    if (!m_status.isOk())
        return nullptr;
    const Operation *op = findOperation(name);
    const QString shown = QString::fromLatin1(name == "U-" ? "-" : name);
    if (!op) {
        fail(QStringLiteral("%1 is no function this index reader knows").arg(shown),
             Status::Code::UnknownFunction);
        return nullptr;
    }
    QList<Type> types;
    for (const NodePtr &arg : args)
        types.append(arg->type);
    const std::optional<Type> result =
        (int(args.size()) >= op->minArgs && int(args.size()) <= op->maxArgs) ? op->resultType(types)
                                                                             : std::nullopt;
    if (!result) {
        fail(QStringLiteral("%1 cannot take these operands").arg(shown),
             Status::Code::TypeMismatch);
        return nullptr;
    }
    auto node = std::make_unique<Node>();
    node->kind = Node::Kind::Apply;
    node->type = *result;
    node->operation = op;
    node->args = std::move(args);
    return node;
}

} // namespace

Result<std::unique_ptr<Node>> parse(QByteArrayView text, const DbfTable &table)
{
    return Parser(text, table).parseAll();
}

} // namespace plx::xbase
