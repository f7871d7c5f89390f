// services/recordsource/jet/internal/ast.h: the syntax tree of Jet SQL statements and expressions.
//
// One tree serves every back end: the SQLite translator re-emits it in SQLite's dialect,
// the evaluator runs it over rows (FindFirst on FoxPro tables, standalone expressions).
// Nodes are immutable after parsing except for what binding fills in: the column index, and
// when binding knows the text comparison, constant parts computed and prepared data.
#pragma once

#include <QString>
#include <QVariant>

#include <memory>
#include <vector>

namespace plx::jet {

enum class NodeKind {
    Literal, // value: Null (invalid), QString, double, bool, QDateTime
    Column, // table (may be empty) and name
    Unary, // op: Neg, Not
    Binary, // op: arithmetic, &, comparisons, And, Or, Xor, Eqv, Imp
    Like, // args: value, pattern; negated for Not Like
    Between, // args: value, low, high; negated for Not Between
    In, // args: value, then the list; negated for Not In
    IsNull, // args: value; negated for Is Not Null
    Call, // name (upper case, '$' kept), args
};

enum class Op {
    None,
    Neg,
    Not,
    Add,
    Sub,
    Mul,
    Div,
    IntDiv,
    Mod,
    Pow,
    Concat,
    Eq,
    Ne,
    Lt,
    Gt,
    Le,
    Ge,
    And,
    Or,
    Xor,
    Eqv,
    Imp,
};

// How deeply an expression may nest: an operand inside an operand, a function argument, a
// parenthesis, an In list each take a level. The parser refuses deeper text (naming the
// limit and the position) and every walk of a tree stops there, so no input can exhaust the
// stack: 100 levels take well under 1 MB of it, the main-thread stack on Windows. Chains of
// operators leaning left (a & b & c ..., And, Or, + and -, comparisons) and runs of Not or
// unary minus do not nest: they are built, bound, evaluated and translated in loops, so
// 100,000 terms work.
inline constexpr int kMaxExpressionDepth = 100;

struct Node;
using NodePtr = std::shared_ptr<Node>;
// What binding for one text comparison worked out once for a node (a compiled Like pattern,
// a lookup set, keys of constant texts): evaluator_prepare_p.h.
struct PreparedNode;

struct Node
{
    NodeKind kind = NodeKind::Literal;
    Op op = Op::None;
    int pos = 0; // 1-based character position of the node's first token
    QVariant value; // Literal
    QString table; // Column: the qualifier as written, empty when none
    QString name; // Column: the field; Call: the function name in upper case
    bool wholeBracket = false; // Column written as [T.F] in one bracket pair
    bool negated = false;
    std::vector<NodePtr> args;
    mutable int column = -1; // Column: index filled in by binding
    // Filled in by binding for one text comparison; the evaluator ignores it under another.
    std::shared_ptr<const PreparedNode> prepared;
    // Levels of evaluation below and including this node, a chain's links not counted: set
    // by the parser, which keeps it within kMaxExpressionDepth.
    int height = 1;

    Node() = default;
    Node(const Node &) = default;
    Node(Node &&) = default;
    Node &operator=(const Node &) = default;
    Node &operator=(Node &&) = default;
    // A chain of 100,000 operators is a tree 100,000 nodes deep: its nodes are taken apart
    // one at a time here, where nested destructor calls would overflow the stack.
    ~Node()
    {
        std::vector<NodePtr> pending = std::move(args);
        while (!pending.empty()) {
            NodePtr n = std::move(pending.back());
            pending.pop_back();
            if (n && n.use_count() == 1) {
                for (NodePtr &a : n->args)
                    pending.push_back(std::move(a));
                n->args.clear();
            }
        }
    }
};

struct TableRef
{
    QString name;
    QString alias; // empty when none
    int pos = 0;
    QString effectiveAlias() const { return alias.isEmpty() ? name : alias; }
};

enum class JoinKind { Inner, Left, Right };

struct Join
{
    JoinKind kind = JoinKind::Inner;
    TableRef table;
    NodePtr on;
};

struct SelectItem
{
    NodePtr expr; // null for a star
    QString starTable; // "T" for T.*, empty for * (with expr null)
    QString alias;
};

struct OrderItem
{
    NodePtr expr;
    bool descending = false;
};

struct SelectStatement
{
    bool star = false; // SELECT *
    std::vector<SelectItem> items; // when not star
    TableRef from;
    std::vector<Join> joins;
    NodePtr where; // may be null
    std::vector<OrderItem> orderBy;
    // The text's terms, as ParseLimits counts them: an engine that runs some statements
    // under a tighter bound checks them against it without reading the text again.
    int terms = 0;
};

} // namespace plx::jet
