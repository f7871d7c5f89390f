// services/recordsource/jet/evaluatorbind.cpp: preparing a tree for evaluation (binding
// names to column indexes, computing constant parts once) and the shell's side of the
// evaluator: standalone expressions and how a value is printed.
#include "services/recordsource/jet/internal/evaluator.h"

#include "services/recordsource/jet/evaluatorprepare_p.h"
#include "services/recordsource/jet/internal/functionlibrary.h"
#include "services/recordsource/jet/internal/parser.h"
#include "services/recordsource/jet/internal/values.h"

#include <QVarLengthArray>

#include <optional>

namespace plx::jet {

namespace {

// Whether a node's value is the same for every row: operators and functions over literals
// only, the clock functions excepted. Without a known text comparison only what does not
// compare text qualifies, so that the value holds under either comparison.
bool foldable(const Node &node, const std::optional<TextCompare> &mode)
{
    if (node.args.empty())
        return false;
    for (const NodePtr &arg : node.args) {
        if (arg->kind != NodeKind::Literal)
            return false;
    }
    if (node.kind == NodeKind::Call && isClockFunction(node.name))
        return false;
    if (mode)
        return true;
    if (node.kind == NodeKind::Binary)
        return node.op >= Op::Add && node.op <= Op::Concat;
    if (node.kind == NodeKind::Call)
        return node.name != QLatin1String("INSTR") && node.name != QLatin1String("IIF")
            && node.name != QLatin1String("STRCOMP") && node.name != QLatin1String("INSTRREV")
            && node.name != QLatin1String("REPLACE");
    return false;
}

// IIF with a constant condition is the branch it chooses, whatever that branch holds: the
// other one is never evaluated.
bool foldChosenBranch(Node &node)
{
    if (node.kind != NodeKind::Call || node.name != QLatin1String("IIF") || node.args.size() != 3
        || node.args[0]->kind != NodeKind::Literal)
        return false;
    Node chosen = *node.args[isTrue(node.args[0]->value) ? 1 : 2];
    node = std::move(chosen);
    return true;
}

// Computes constant parts once, so that a key written as CHR(80) & CHR(76) & ... costs one
// comparison per row. A part that fails stays as it is and fails only when it is reached
// (IIF does not evaluate the branch it does not take).
void foldConstant(Node &node, const std::optional<TextCompare> &mode)
{
    if (mode && foldChosenBranch(node))
        return;
    if (!foldable(node, mode))
        return;
    if (node.kind == NodeKind::Binary && (node.op == Op::Concat || node.op == Op::Add)) {
        // Text joined in place: folding a chain of 100,000 pieces costs their total length,
        // not that length for every piece. The left operand's text is taken over (its node
        // goes with the fold), so the append below does not copy it.
        QVariant &a = node.args[0]->value;
        const QVariant &b = node.args[1]->value;
        const bool bothNull = isNull(a) && isNull(b);
        const bool joins =
            node.op == Op::Concat || (!isNull(a) && !isNull(b) && isText(a) && isText(b));
        if (joins) {
            QString s = isNull(a) ? QString() : toText(a);
            a = QVariant();
            s += toText(b);
            node.value = bothNull ? QVariant() : QVariant(s);
            node.kind = NodeKind::Literal;
            node.op = Op::None;
            node.args.clear();
            return;
        }
    }
    Result<QVariant> v = evaluate(node, nullptr, mode.value_or(TextCompare::Binary));
    if (!v.isOk())
        return;
    node.kind = NodeKind::Literal;
    node.op = Op::None;
    node.value = v.value();
    node.args.clear();
}

Status bindAt(const NodePtr &root, const ColumnResolver &resolve,
              const std::optional<TextCompare> &mode, int depth)
{
    if (!root)
        return Status::ok();
    if (depth >= kMaxExpressionDepth)
        return Status(Status::Code::Syntax,
                      QStringLiteral("expression nested deeper than %1 levels at position %2")
                          .arg(kMaxExpressionDepth)
                          .arg(root->pos));
    if (root->kind == NodeKind::Column) {
        Result<int> index = resolve(*root);
        if (!index.isOk())
            return index.status();
        root->column = index.value();
        return Status::ok();
    }
    if (root->kind == NodeKind::Binary || root->kind == NodeKind::Unary) {
        // A chain (a & b & c ..., Not Not ...) is walked down its left edge in one loop and
        // bound and folded back up in another: no length costs stack.
        QVarLengthArray<Node *, 16> chain;
        for (Node *n = root.get(); n->kind == root->kind; n = n->args[0].get())
            chain.append(n);
        if (Status s = bindAt(chain.back()->args[0], resolve, mode, depth + 1); !s.isOk())
            return s;
        for (qsizetype i = chain.size() - 1; i >= 0; --i) {
            Node &link = *chain[i];
            for (size_t a = 1; a < link.args.size(); ++a) {
                if (Status s = bindAt(link.args[a], resolve, mode, depth + 1); !s.isOk())
                    return s;
            }
            foldConstant(link, mode); // drops the link below, already folded or bound
        }
        return Status::ok();
    }
    for (const NodePtr &arg : root->args) {
        if (Status s = bindAt(arg, resolve, mode, depth + 1); !s.isOk())
            return s;
    }
    foldConstant(*root, mode);
    return Status::ok();
}

} // namespace

Status bind(const NodePtr &root, const ColumnResolver &resolve)
{
    return bindAt(root, resolve, std::nullopt, 0);
}

Status bind(const NodePtr &root, const ColumnResolver &resolve, TextCompare mode)
{
    if (Status s = bindAt(root, resolve, mode, 0); !s.isOk())
        return s;
    prepare(root, mode);
    return Status::ok();
}

bool isTrue(const QVariant &value)
{
    if (isNull(value))
        return false;
    if (isBoolean(value))
        return value.toBool();
    Result<double> d = toNumber(value, 0);
    return d.isOk() && d.value() != 0;
}

Result<QVariant> evaluateStandalone(const QString &expression)
{
    Result<NodePtr> tree = parseExpression(expression);
    if (!tree.isOk())
        return tree.status();
    Status s = jet::bind(tree.value(), [](const Node &col) -> Result<int> {
        return Status(
            Status::Code::UnknownField,
            QStringLiteral("unknown field '%1' at position %2")
                .arg(col.table.isEmpty() ? col.name : col.table + QLatin1Char('.') + col.name)
                .arg(col.pos));
    });
    if (!s.isOk())
        return s;
    return evaluate(*tree.value(), nullptr, TextCompare::NoCase);
}

QString formatValue(const QVariant &value)
{
    if (isNull(value))
        return QStringLiteral("Null");
    if (isBoolean(value))
        return value.toBool() ? QStringLiteral("True") : QStringLiteral("False");
    if (isDate(value)) {
        const QDateTime dt = toDateTime(value);
        // A time alone lies on the epoch day and prints as a time, as CStr writes it.
        if (dt.date() == QDate(1899, 12, 30))
            return QLatin1Char('#') + dt.time().toString(QStringLiteral("hh:mm:ss"))
                + QLatin1Char('#');
        QString s = dt.date().toString(QStringLiteral("MM/dd/yyyy"));
        if (dt.time() != QTime(0, 0))
            s += QLatin1Char(' ') + dt.time().toString(QStringLiteral("hh:mm:ss"));
        return QLatin1Char('#') + s + QLatin1Char('#');
    }
    if (isNumeric(value))
        return numberText(value.toDouble());
    QString text = value.toString();
    text.replace(QLatin1Char('"'), QStringLiteral("\"\""));
    return QLatin1Char('"') + text + QLatin1Char('"');
}

} // namespace plx::jet
