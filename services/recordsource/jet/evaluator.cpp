// services/recordsource/jet/evaluator.cpp: Jet's expression semantics over rows: Null
// propagation, '&' treating one Null as "", True = -1, three-valued And/Or, lazy IIF.
#include "services/recordsource/jet/internal/evaluator.h"

#include "services/recordsource/jet/internal/deadline.h"
#include "services/recordsource/jet/evaluatorprepare_p.h"
#include "services/recordsource/jet/internal/functionlibrary.h"
#include "services/recordsource/jet/internal/functions.h"
#include "services/recordsource/jet/internal/generalorder.h"
#include "services/recordsource/jet/internal/like.h"
#include "services/recordsource/jet/internal/parser.h"
#include "services/recordsource/jet/internal/values.h"

#include <QVarLengthArray>

#include <cmath>
#include <optional>

namespace plx::jet {

namespace {

using R = Result<QVariant>;

Status divisionByZero(int pos)
{
    return Status(Status::Code::InvalidArgument,
                  QStringLiteral("division by zero at position %1").arg(pos));
}

// -1, 0 or Null (as an empty optional) for a logical operand.
Result<std::optional<bool>> truth(const QVariant &v, int pos)
{
    if (isNull(v))
        return std::optional<bool>();
    Result<double> d = toNumber(v, pos);
    if (!d.isOk())
        return d.status();
    return std::optional<bool>(d.value() != 0);
}

R arithmetic(Op op, const QVariant &a, const QVariant &b, int pos)
{
    if (isNull(a) || isNull(b))
        return QVariant();
    if (op == Op::Add && isText(a) && isText(b))
        return QVariant(a.toString() + b.toString());
    Result<double> x = toNumber(a, pos);
    if (!x.isOk())
        return x.status();
    Result<double> y = toNumber(b, pos);
    if (!y.isOk())
        return y.status();
    const double l = x.value(), r = y.value();
    switch (op) {
    case Op::Add:
    case Op::Sub: {
        const double v = op == Op::Add ? l + r : l - r;
        // A date plus or minus days stays a date; the difference of two dates is days.
        const bool dateResult =
            (isDate(a) && !isDate(b)) || (op == Op::Add && isDate(b) && !isDate(a));
        return dateResult ? QVariant(serialToDate(v)) : QVariant(v);
    }
    case Op::Mul: return QVariant(l * r);
    case Op::Div:
        if (r == 0)
            return divisionByZero(pos);
        return QVariant(l / r);
    case Op::IntDiv: {
        const double rl = roundHalfEven(l), rr = roundHalfEven(r);
        if (rr == 0)
            return divisionByZero(pos);
        return QVariant(std::trunc(rl / rr));
    }
    case Op::Mod: {
        const double rl = roundHalfEven(l), rr = roundHalfEven(r);
        if (rr == 0)
            return divisionByZero(pos);
        return QVariant(std::fmod(rl, rr));
    }
    case Op::Pow: return QVariant(std::pow(l, r));
    default: break;
    }
    return QVariant();
}

R logical(Op op, const QVariant &a, const QVariant &b, int pos)
{
    Result<std::optional<bool>> ta = truth(a, pos);
    if (!ta.isOk())
        return ta.status();
    Result<std::optional<bool>> tb = truth(b, pos);
    if (!tb.isOk())
        return tb.status();
    const std::optional<bool> x = ta.value(), y = tb.value();
    switch (op) {
    case Op::And:
        if ((x && !*x) || (y && !*y))
            return QVariant(false);
        return (x && y) ? QVariant(true) : QVariant();
    case Op::Or:
        if ((x && *x) || (y && *y))
            return QVariant(true);
        return (x && y) ? QVariant(false) : QVariant();
    case Op::Xor: return (x && y) ? QVariant(*x != *y) : QVariant();
    case Op::Eqv: return (x && y) ? QVariant(*x == *y) : QVariant();
    case Op::Imp:
        if ((x && !*x) || (y && *y))
            return QVariant(true);
        return (x && y) ? QVariant(false) : QVariant();
    default: break;
    }
    return QVariant();
}

// Compares operands i and j of `node`, whose values are a and b. In the General order a
// constant text's key was made once when the tree was bound; a row's text is keyed (if at
// all) on its own.
Result<int> compareOperands(const Node &node, size_t i, const QVariant &a, size_t j,
                            const QVariant &b, TextCompare mode)
{
    const PreparedNode *p = preparedFor(node, mode);
    if (p && mode == TextCompare::NoCase && isText(a) && isText(b)) {
        const std::vector<std::optional<QString>> &keys = p->generalKeys;
        if (j < keys.size() && keys[j])
            return compareGeneral(a.toString(), b.toString(), *keys[j]);
        if (i < keys.size() && keys[i])
            return -compareGeneral(b.toString(), a.toString(), *keys[i]);
    }
    return compareValues(a, b, mode, node.pos);
}

R comparison(const Node &node, const QVariant &a, const QVariant &b, TextCompare mode)
{
    const Op op = node.op;
    if (isNull(a) || isNull(b))
        return QVariant();
    Result<int> c = compareOperands(node, 0, a, 1, b, mode);
    if (!c.isOk())
        return c.status();
    const int v = c.value();
    switch (op) {
    case Op::Eq: return QVariant(v == 0);
    case Op::Ne: return QVariant(v != 0);
    case Op::Lt: return QVariant(v < 0);
    case Op::Gt: return QVariant(v > 0);
    case Op::Le: return QVariant(v <= 0);
    case Op::Ge: return QVariant(v >= 0);
    default: break;
    }
    return QVariant();
}

// Text joined onto the text before it in place: a chain of 100,000 pieces costs their total
// length, not that length for every piece. `a` is left empty.
QVariant appendText(QVariant &a, const QVariant &b)
{
    QString s = isNull(a) ? QString() : toText(a);
    a = QVariant(); // `s` now holds the only reference, so the append below does not copy
    s += toText(b);
    return QVariant(s);
}

// One operator over its operands' values. `a` may be consumed.
R combine(const Node &node, QVariant &a, const QVariant &b, TextCompare mode)
{
    switch (node.op) {
    case Op::Concat:
        if (isNull(a) && isNull(b))
            return QVariant();
        return appendText(a, b);
    case Op::Eq:
    case Op::Ne:
    case Op::Lt:
    case Op::Gt:
    case Op::Le:
    case Op::Ge: return comparison(node, a, b, mode);
    case Op::And:
    case Op::Or:
    case Op::Xor:
    case Op::Eqv:
    case Op::Imp: return logical(node.op, a, b, node.pos);
    case Op::Add:
        if (!isNull(a) && !isNull(b) && isText(a) && isText(b))
            return appendText(a, b);
        return arithmetic(node.op, a, b, node.pos);
    default: return arithmetic(node.op, a, b, node.pos);
    }
}

// a & b & c ... is a tree leaning left as deep as the chain is long: its left edge is walked
// down in one loop and the values folded back up in another, so no length costs stack.
R binary(const Node &top, const Row *row, TextCompare mode)
{
    QVarLengthArray<const Node *, 16> spine;
    const Node *leaf = &top;
    while (leaf->kind == NodeKind::Binary) {
        spine.append(leaf);
        leaf = leaf->args[0].get();
    }
    R first = evaluate(*leaf, row, mode);
    if (!first.isOk())
        return first;
    QVariant acc = std::move(first).value();
    for (qsizetype i = spine.size() - 1; i >= 0; --i) {
        const Node &node = *spine[i];
        // And/Or look at the right side even when the left decides, as Jet evaluates both.
        R b = evaluate(*node.args[1], row, mode);
        if (!b.isOk())
            return b;
        R v = combine(node, acc, b.value(), mode);
        if (!v.isOk())
            return v;
        acc = std::move(v).value();
    }
    return acc;
}

R unaryStep(const Node &node, const QVariant &a)
{
    if (isNull(a))
        return a;
    if (node.op == Op::Not) {
        if (isBoolean(a))
            return QVariant(!a.toBool());
        Result<double> d = toNumber(a, node.pos);
        if (!d.isOk())
            return d.status();
        const double whole = roundHalfEven(d.value());
        if (!(std::fabs(whole) < 9.2e18)) // no 64-bit integer holds it (or it is NaN)
            return Status(Status::Code::InvalidArgument,
                          QStringLiteral("overflow in Not at position %1").arg(node.pos));
        return QVariant(double(~qint64(whole)));
    }
    Result<double> d = toNumber(a, node.pos);
    if (!d.isOk())
        return d.status();
    return QVariant(-d.value());
}

// Not Not ... and - - ... chains: down in one loop, back up in another.
R unary(const Node &top, const Row *row, TextCompare mode)
{
    QVarLengthArray<const Node *, 8> chain;
    const Node *inner = &top;
    while (inner->kind == NodeKind::Unary) {
        chain.append(inner);
        inner = inner->args[0].get();
    }
    R v = evaluate(*inner, row, mode);
    for (qsizetype i = chain.size() - 1; i >= 0 && v.isOk(); --i)
        v = unaryStep(*chain[i], v.value());
    return v;
}

// A find runs one pattern over every row: keep the last compiled one per thread so that
// a row costs a text comparison, not a compilation. Null for a pattern that fails.
const LikePattern *cachedPattern(const QString &text, TextCompare mode, int pos)
{
    thread_local QString lastText;
    thread_local TextCompare lastMode = TextCompare::NoCase;
    thread_local std::optional<LikePattern> last;
    if (last && lastMode == mode && lastText == text)
        return &*last;
    Result<LikePattern> p = LikePattern::compile(text, mode, pos);
    if (!p.isOk()) {
        last.reset();
        return nullptr;
    }
    last = std::move(p.value());
    lastText = text;
    lastMode = mode;
    return &*last;
}

R like(const Node &node, const Row *row, TextCompare mode)
{
    R value = evaluate(*node.args[0], row, mode);
    if (!value.isOk())
        return value;
    if (const PreparedNode *p = preparedFor(node, mode); p && p->pattern) {
        if (isNull(value.value()))
            return QVariant();
        return QVariant(p->pattern->matches(toText(value.value())) != node.negated);
    }
    R pattern = evaluate(*node.args[1], row, mode);
    if (!pattern.isOk())
        return pattern;
    if (isNull(value.value()) || isNull(pattern.value()))
        return QVariant();
    const LikePattern *compiled = cachedPattern(toText(pattern.value()), mode, node.args[1]->pos);
    if (!compiled)
        return LikePattern::compile(toText(pattern.value()), mode, node.args[1]->pos).status();
    return QVariant(compiled->matches(toText(value.value())) != node.negated);
}

R between(const Node &node, const Row *row, TextCompare mode)
{
    QVariant v[3];
    for (int i = 0; i < 3; ++i) {
        R r = evaluate(*node.args[i], row, mode);
        if (!r.isOk())
            return r;
        v[i] = r.value();
    }
    if (isNull(v[0]) || isNull(v[1]) || isNull(v[2]))
        return QVariant();
    Result<int> order = compareOperands(node, 1, v[1], 2, v[2], mode);
    if (!order.isOk())
        return order.status();
    // Jet accepts the bounds in either order.
    const size_t low = order.value() <= 0 ? 1 : 2;
    const size_t high = 3 - low;
    Result<int> lo = compareOperands(node, 0, v[0], low, v[low], mode);
    if (!lo.isOk())
        return lo.status();
    Result<int> hi = compareOperands(node, 0, v[0], high, v[high], mode);
    if (!hi.isOk())
        return hi.status();
    return QVariant((lo.value() >= 0 && hi.value() <= 0) != node.negated);
}

// The value against each item in turn.
R inListOneByOne(const Node &node, const R &value, const Row *row, TextCompare mode)
{
    for (size_t i = 1; i < node.args.size(); ++i) {
        R item = evaluate(*node.args[i], row, mode);
        if (!item.isOk())
            return item;
        if (isNull(item.value()))
            continue;
        Result<int> c = compareOperands(node, 0, value.value(), i, item.value(), mode);
        if (!c.isOk())
            return c.status();
        if (c.value() == 0)
            return QVariant(!node.negated);
    }
    return QVariant(node.negated);
}

// A set made when the tree was bound answers in one look-up; a value it cannot judge is
// compared one by one, or, for an In made from an Or run, runs that run as written.
R inList(const Node &node, const Row *row, TextCompare mode)
{
    R value = evaluate(*node.args[0], row, mode);
    if (!value.isOk() || isNull(value.value()))
        return value;
    if (const PreparedNode *p = preparedFor(node, mode); p && p->set) {
        if (const std::optional<bool> hit = p->set->contains(value.value()))
            return QVariant(*hit != node.negated);
        if (p->orRun)
            return evaluate(*p->orRun, row, mode);
    }
    return inListOneByOne(node, value, row, mode);
}

R call(const Node &node, const Row *row, TextCompare mode)
{
    const int n = int(node.args.size());
    auto arity = [&node, n](int lo, int hi) { return checkArity(node.name, n, lo, hi, node.pos); };
    if (node.name == QLatin1String("IIF")) {
        if (Status s = arity(3, 3); !s.isOk())
            return s;
        R cond = evaluate(*node.args[0], row, mode);
        if (!cond.isOk())
            return cond;
        // Only the chosen branch runs; a Null condition chooses the false part.
        return evaluate(*node.args[isTrue(cond.value()) ? 1 : 2], row, mode);
    }
    if (node.name == QLatin1String("ISNULL")) {
        if (Status s = arity(1, 1); !s.isOk())
            return s;
        R v = evaluate(*node.args[0], row, mode);
        if (!v.isOk())
            return v;
        return QVariant(isNull(v.value()));
    }
    if (node.name == QLatin1String("NZ")) {
        // As COALESCE, which the SQL back ends run: the second value is computed only when
        // the first is Null. In a query a Null without it becomes "".
        if (Status s = arity(1, 2); !s.isOk())
            return s;
        R v = evaluate(*node.args[0], row, mode);
        if (!v.isOk() || !isNull(v.value()))
            return v;
        return n > 1 ? evaluate(*node.args[1], row, mode) : R(QVariant(QString()));
    }
    const FunctionDef *def = findFunction(node.name);
    if (!def)
        return Status(
            Status::Code::UnknownFunction,
            QStringLiteral("undefined function '%1' at position %2").arg(node.name).arg(node.pos));
    if (Status s = arity(def->minArgs, def->maxArgs); !s.isOk())
        return s;
    QVarLengthArray<QVariant, 4> args(n); // Choose and Switch take long lists
    for (int i = 0; i < n; ++i) {
        R v = evaluate(*node.args[i], row, mode);
        if (!v.isOk())
            return v;
        args[i] = v.value();
    }
    return callFunction(*def, args.data(), n, mode, node.pos);
}

} // namespace

bool isKnownFunction(const QString &upperName)
{
    return upperName == QLatin1String("IIF") || upperName == QLatin1String("ISNULL")
        || findFunction(upperName) != nullptr;
}

Result<QVariant> evaluate(const Node &node, const Row *row, TextCompare mode)
{
    // Trees from the parser stay within the depth; this bounds any other tree too.
    thread_local int depth = 0;
    if (depth >= kMaxExpressionDepth)
        return Status(Status::Code::Syntax,
                      QStringLiteral("expression nested deeper than %1 levels at position %2")
                          .arg(kMaxExpressionDepth)
                          .arg(node.pos));
    if (deadlinePassed())
        return deadlineError();
    struct Level
    {
        Level() { ++depth; }
        ~Level() { --depth; }
    } level;
    switch (node.kind) {
    case NodeKind::Literal: return node.value;
    case NodeKind::Column:
        if (!row || node.column < 0)
            return Status(Status::Code::UnknownField,
                          QStringLiteral("unknown field '%1' at position %2")
                              .arg(node.table.isEmpty() ? node.name
                                                        : node.table + QLatin1Char('.') + node.name)
                              .arg(node.pos));
        return row->value(node.column);
    case NodeKind::Unary: return unary(node, row, mode);
    case NodeKind::Binary: return binary(node, row, mode);
    case NodeKind::Like: return like(node, row, mode);
    case NodeKind::Between: return between(node, row, mode);
    case NodeKind::In: return inList(node, row, mode);
    case NodeKind::IsNull: {
        R v = evaluate(*node.args[0], row, mode);
        if (!v.isOk())
            return v;
        return QVariant(isNull(v.value()) != node.negated);
    }
    case NodeKind::Call: return call(node, row, mode);
    }
    return QVariant();
}

} // namespace plx::jet
