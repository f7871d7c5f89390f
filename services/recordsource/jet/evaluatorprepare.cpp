// services/recordsource/jet/evaluatorprepare.cpp: compiled patterns, look-up sets and keys of
// constant texts, made once per statement. The walk keeps its own stack, so chains of any
// length cost no stack.
#include "services/recordsource/jet/evaluatorprepare_p.h"

#include "services/recordsource/jet/internal/generalorder.h"
#include "services/recordsource/jet/internal/values.h"

#include <memory>

namespace plx::jet {

namespace {

// Shorter runs cost no more compared one by one than looked up.
constexpr size_t kMinSetTerms = 4;

bool isConstant(const Node &node)
{
    return node.kind == NodeKind::Literal;
}

// A constant a set can hold: text or a number, not Null (which equals nothing and makes an
// Or's answer Null) and not a date.
bool isSettable(const QVariant &v)
{
    return !isNull(v) && (isText(v) || isNumeric(v));
}

// For "field = constant" (either way round): the field's node and the constant's; null
// otherwise.
std::pair<const Node *, const Node *> fieldEqualsConstant(const Node &term)
{
    if (term.kind != NodeKind::Binary || term.op != Op::Eq)
        return {};
    const Node *field = term.args[0].get();
    const Node *constant = term.args[1].get();
    if (field->kind != NodeKind::Column)
        std::swap(field, constant);
    if (field->kind != NodeKind::Column || field->column < 0 || !isConstant(*constant)
        || !isSettable(constant->value))
        return {};
    return { field, constant };
}

// Whether two equality terms can share a set: the same field, constants of one kind.
bool sameRun(const Node &a, const Node &b)
{
    const auto [fa, ca] = fieldEqualsConstant(a);
    const auto [fb, cb] = fieldEqualsConstant(b);
    return fa && fb && fa->column == fb->column && isText(ca->value) == isText(cb->value);
}

NodePtr orChain(const std::vector<NodePtr> &terms, size_t from, size_t to)
{
    NodePtr chain = terms[from];
    for (size_t i = from + 1; i < to; ++i) {
        auto link = std::make_shared<Node>();
        link->kind = NodeKind::Binary;
        link->op = Op::Or;
        link->pos = terms[i]->pos;
        link->args = { chain, terms[i] };
        chain = std::move(link);
    }
    return chain;
}

// The run terms[from, to) as one In node over a set; null when no set can be made.
NodePtr runAsSet(const std::vector<NodePtr> &terms, size_t from, size_t to, TextCompare mode)
{
    auto in = std::make_shared<Node>();
    in->kind = NodeKind::In;
    in->pos = terms[from]->pos;
    in->height = 2;
    std::vector<QVariant> constants;
    for (size_t i = from; i < to; ++i) {
        const auto [field, constant] = fieldEqualsConstant(*terms[i]);
        if (in->args.empty())
            in->args.push_back(std::make_shared<Node>(*field));
        in->args.push_back(std::make_shared<Node>(*constant));
        constants.push_back(constant->value);
    }
    std::optional<ConstantSet> set = ConstantSet::build(constants, mode);
    if (!set)
        return nullptr;
    auto prepared = std::make_shared<PreparedNode>();
    prepared->mode = mode;
    prepared->set = std::move(set);
    prepared->orRun = orChain(terms, from, to);
    in->prepared = std::move(prepared);
    return in;
}

// The terms of the Or chain leaning left from `top`, left to right.
std::vector<NodePtr> orTerms(const Node &top)
{
    std::vector<NodePtr> rightTerms;
    const Node *link = &top;
    while (true) {
        rightTerms.push_back(link->args[1]);
        const NodePtr &left = link->args[0];
        if (left->kind != NodeKind::Binary || left->op != Op::Or) {
            rightTerms.push_back(left);
            break;
        }
        link = left.get();
    }
    return { rightTerms.rbegin(), rightTerms.rend() };
}

// Replaces every run of equalities on one field in the Or chain at `top` with an In over a
// set. The order of the terms, and so of their errors, stays as written.
void groupOrRuns(Node &top, TextCompare mode)
{
    const std::vector<NodePtr> terms = orTerms(top);
    std::vector<NodePtr> grouped;
    size_t i = 0;
    while (i < terms.size()) {
        size_t end = i + 1;
        while (end < terms.size() && sameRun(*terms[i], *terms[end]))
            ++end;
        NodePtr set = end - i >= kMinSetTerms ? runAsSet(terms, i, end, mode) : nullptr;
        if (set) {
            grouped.push_back(std::move(set));
        } else {
            grouped.insert(grouped.end(), terms.begin() + qsizetype(i),
                           terms.begin() + qsizetype(end));
        }
        i = end;
    }
    if (grouped.size() == terms.size())
        return;
    Node rebuilt = *orChain(grouped, 0, grouped.size());
    top = std::move(rebuilt);
}

void prepareLike(Node &node, TextCompare mode)
{
    const Node &pattern = *node.args[1];
    if (!isConstant(pattern) || !isText(pattern.value))
        return;
    Result<LikePattern> compiled =
        LikePattern::compile(pattern.value.toString(), mode, pattern.pos);
    if (!compiled.isOk())
        return; // the error comes when a row reaches it
    auto prepared = std::make_shared<PreparedNode>();
    prepared->mode = mode;
    prepared->pattern = std::move(compiled).value();
    node.prepared = std::move(prepared);
}

// False when the In keeps no set (too short, not all constants, constants of mixed kinds).
bool prepareSet(Node &node, TextCompare mode)
{
    if (node.prepared)
        return true; // made from an Or run
    if (node.args.size() < kMinSetTerms + 1)
        return false;
    std::vector<QVariant> constants;
    for (size_t i = 1; i < node.args.size(); ++i) {
        if (!isConstant(*node.args[i]))
            return false;
        constants.push_back(node.args[i]->value);
    }
    std::optional<ConstantSet> set = ConstantSet::build(constants, mode);
    if (!set)
        return false;
    auto prepared = std::make_shared<PreparedNode>();
    prepared->mode = mode;
    prepared->set = std::move(set);
    node.prepared = std::move(prepared);
    return true;
}

void prepareKeys(Node &node, TextCompare mode)
{
    if (mode != TextCompare::NoCase)
        return;
    std::vector<std::optional<QString>> keys(node.args.size());
    bool any = false;
    for (size_t i = 0; i < node.args.size(); ++i) {
        const Node &arg = *node.args[i];
        if (isConstant(arg) && isText(arg.value)) {
            keys[i] = generalSortKey(arg.value.toString());
            any = true;
        }
    }
    if (!any)
        return;
    auto prepared = std::make_shared<PreparedNode>();
    prepared->mode = mode;
    prepared->generalKeys = std::move(keys);
    node.prepared = std::move(prepared);
}

void prepareNode(Node &node, TextCompare mode)
{
    switch (node.kind) {
    case NodeKind::Like: prepareLike(node, mode); break;
    case NodeKind::In:
        if (!prepareSet(node, mode))
            prepareKeys(node, mode); // a short list: its texts keyed once
        break;
    case NodeKind::Between: prepareKeys(node, mode); break;
    case NodeKind::Binary:
        if (node.op >= Op::Eq && node.op <= Op::Ge)
            prepareKeys(node, mode);
        break;
    default: break;
    }
}

} // namespace

void prepare(const NodePtr &root, TextCompare mode)
{
    std::vector<Node *> pending;
    if (root)
        pending.push_back(root.get());
    while (!pending.empty()) {
        Node &node = *pending.back();
        pending.pop_back();
        if (node.kind == NodeKind::Binary && node.op == Op::Or) {
            // The whole chain at once: its links are not visited again one by one.
            groupOrRuns(node, mode);
            if (node.kind == NodeKind::Binary && node.op == Op::Or) {
                for (const NodePtr &term : orTerms(node))
                    pending.push_back(term.get());
                continue;
            }
        }
        prepareNode(node, mode);
        for (const NodePtr &arg : node.args)
            pending.push_back(arg.get());
    }
}

} // namespace plx::jet
