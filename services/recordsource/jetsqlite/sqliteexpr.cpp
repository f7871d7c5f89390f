// services/recordsource/jetsqlite/sqliteexpr.cpp: re-emits a Jet syntax tree in SQLite's
// dialect. Literals become standard '...' literals, names become "quoted" names resolved
// against the real tables, and every operator whose meaning differs (&, +, /, \, Mod, ^,
// Like, Between, Xor, Eqv, Imp) calls a function that registerJetFunctions() installs.
// Comparisons carry the source's collation. Booleans come out as -1/0 as in Jet.
#include "services/recordsource/jetsqlite/sqlitetranslator_p.h"

#include "services/recordsource/jet/internal/evaluator.h"
#include "services/recordsource/jet/internal/functionlibrary.h"
#include "services/recordsource/jet/internal/functions.h"
#include "services/recordsource/jet/internal/like.h"
#include "services/recordsource/jet/internal/parser.h"
#include "services/recordsource/jetsqlite/sqlitelibrary_p.h"
#include "services/recordsource/jetsqlite/sqliteops_p.h"
#include "services/recordsource/jet/internal/values.h"

#include <QVarLengthArray>

#include <algorithm>
#include <cstdlib>

namespace plx::jet {

void unmappedOperator(Op op)
{
    qFatal("jet: operator %d has no jet_op() code; the SQLite translation is incomplete", int(op));
    std::abort(); // qFatal does not return; this says so to every compiler
}

namespace {

using detail::quoteText;

QString literal(const QVariant &v)
{
    if (isNull(v))
        return QStringLiteral("NULL");
    if (isBoolean(v))
        return v.toBool() ? QStringLiteral("-1") : QStringLiteral("0");
    if (isDate(v)) {
        // The stored text form, passed through CDate so that it carries the date subtype:
        // a function or '&' that receives it then reads a date, as the evaluator does.
        // SQLite computes the constant call once per statement.
        const QDateTime dt = toDateTime(v);
        return QStringLiteral("jet_cdate(0, %1)")
            .arg(quoteText(dt.time() == QTime(0, 0)
                               ? dt.date().toString(Qt::ISODate)
                               : dt.toString(QStringLiteral("yyyy-MM-dd hh:mm:ss"))));
    }
    if (isNumeric(v))
        return numberText(v.toDouble());
    return quoteText(v.toString());
}

} // namespace

namespace detail {

// The find query's shape, UCase(x) Like 'SM*': an ASCII prefix without lower-case letters
// and one trailing '*'. x itself, compared case-insensitively, matches exactly then (values
// with other characters in the prefix's reach are upper-cased first), and that spares a
// converted copy of every value. UCase$ is left alone: it must still raise
// on Null.
std::optional<QString> Translator::upperPrefixLike(const Node &node)
{
    const Node &value = *node.args[0];
    const Node &pattern = *node.args[1];
    if (value.kind != NodeKind::Call || value.name != QLatin1String("UCASE")
        || value.args.size() != 1 || pattern.kind != NodeKind::Literal || !isText(pattern.value))
        return std::nullopt;
    Result<LikePattern> p =
        LikePattern::compile(pattern.value.toString(), TextCompare::Binary, pattern.pos);
    if (!p.isOk() || !p->isPrefixPattern())
        return std::nullopt;
    for (QChar c : p->prefix()) {
        if (c.unicode() >= 0x80 || c.isLower())
            return std::nullopt;
    }
    Result<QString> x = expr(*value.args[0]);
    if (!x.isOk())
        return std::nullopt;
    // Mode 2: case-insensitive, with the value upper-cased as UCase does wherever a
    // character outside ASCII could read differently once upper-cased.
    return QStringLiteral("jet_like(%1, %2, 2, %3)")
        .arg(x.value(), quoteText(pattern.value.toString()))
        .arg(node.negated ? 1 : 0);
}

const Source *Translator::findSource(const QString &name) const
{
    for (const Source &s : m_sources) {
        if (s.alias.compare(name, Qt::CaseInsensitive) == 0)
            return &s;
    }
    for (const Source &s : m_sources) {
        if (s.table.table.compare(name, Qt::CaseInsensitive) == 0)
            return &s;
    }
    return nullptr;
}

Result<QString> Translator::column(const Node &node, QString *outputName)
{
    auto columnIn = [](const Source &s, const QString &name) -> QString {
        for (const QString &c : s.table.columns) {
            if (c.compare(name, Qt::CaseInsensitive) == 0)
                return c;
        }
        return QString();
    };
    auto emit = [&](const Source &s, const QString &col) {
        if (outputName)
            *outputName = col;
        return quoteName(s.alias) + QLatin1Char('.') + quoteName(col);
    };
    QString table = node.table;
    QString name = node.name;
    if (node.wholeBracket) {
        // [T.F]: a column really named "T.F" first, else table T, field F.
        for (const Source &s : m_sources) {
            const QString c = columnIn(s, name);
            if (!c.isEmpty())
                return emit(s, c);
        }
        const qsizetype dot = name.lastIndexOf(QLatin1Char('.'));
        table = name.left(dot).trimmed();
        name = name.mid(dot + 1).trimmed();
    }
    const QString written = table.isEmpty() ? name : table + QLatin1Char('.') + name;
    if (!table.isEmpty()) {
        const Source *s = findSource(table);
        if (!s)
            return unknown(node, written);
        const QString c = columnIn(*s, name);
        if (c.isEmpty())
            return unknown(node, written);
        return emit(*s, c);
    }
    for (const Source &s : m_sources) {
        const QString c = columnIn(s, name);
        if (!c.isEmpty())
            return emit(s, c);
    }
    return unknown(node, written);
}

Result<QString> Translator::args(const Node &node, size_t from, QString *out)
{
    for (size_t i = from; i < node.args.size(); ++i) {
        Result<QString> a = expr(*node.args[i]);
        if (!a.isOk())
            return a;
        *out += QStringLiteral(", ") + a.value();
    }
    return *out;
}

// True when a subtree has no field and no clock function: its value is the same for every
// row, so it is computed once here ("CHR(80) & CHR(76) & ..." becomes 'PL...'). Walked in a
// loop: a chain of any length costs no stack.
bool isConstant(const Node &root)
{
    QVarLengthArray<const Node *, 32> pending;
    pending.append(&root);
    while (!pending.isEmpty()) {
        const Node &node = *pending.back();
        pending.removeLast();
        if (node.kind == NodeKind::Column)
            return false;
        if (node.kind == NodeKind::Call && isClockFunction(node.name))
            return false;
        for (const NodePtr &arg : node.args)
            pending.append(arg.get());
    }
    return true;
}

namespace {

// The value of a subtree without fields, as a literal. A constant that cannot be computed
// (1/0, Chr(300)) fails now, before any row is read.
Result<QString> constantLiteral(const Node &node, TextCompare mode)
{
    Result<QVariant> value = evaluate(node, nullptr, mode);
    if (!value.isOk())
        return value.status();
    return literal(value.value());
}

// A run of Not or minus. Not Not Not x is Not x and Not Not x rounds x to a whole number
// (the same for minus), so a run of one operator keeps one or two of it: SQLite's depth
// limit is never reached by a run of any length.
Result<QString> unaryRunText(Translator &translator, const Node &node)
{
    QVarLengthArray<Op, 8> ops;
    const Node *inner = &node;
    for (; inner->kind == NodeKind::Unary; inner = inner->args[0].get()) {
        const qsizetype n = ops.size();
        if (n >= 2 && ops[n - 1] == inner->op && ops[n - 2] == inner->op)
            ops.removeLast(); // three in a row act as one
        else
            ops.append(inner->op);
    }
    Result<QString> a = translator.expr(*inner);
    if (!a.isOk())
        return a;
    QString text = a.value();
    for (qsizetype i = ops.size() - 1; i >= 0; --i)
        text = QStringLiteral("jet_op(%1, %2, NULL)")
                   .arg(int(ops[i] == Op::Not ? OpCode::Not : OpCode::Neg))
                   .arg(text);
    return text;
}

// A constant pattern (a literal, or the find's 'A' & chr(124) & '*') is checked now, so a
// bad one fails as a syntax error before anything runs. A pattern that varies by row, or
// whose value is no text, is left to jet_like.
Status checkConstantPattern(const Node &pattern, TextCompare mode)
{
    if (!isConstant(pattern))
        return Status::ok();
    Result<QVariant> value = pattern.kind == NodeKind::Literal ? Result<QVariant>(pattern.value)
                                                               : evaluate(pattern, nullptr, mode);
    if (!value.isOk() || !isText(value.value()))
        return Status::ok();
    Result<LikePattern> compiled =
        LikePattern::compile(value.value().toString(), mode, pattern.pos);
    return compiled.isOk() ? Status::ok() : compiled.status();
}

// x Like p through jet_like, which knows Jet's wildcards and the compare mode.
Result<QString> likeText(Translator &translator, const Node &node, TextCompare mode)
{
    Result<QString> a = translator.expr(*node.args[0]);
    if (!a.isOk())
        return a;
    Result<QString> p = translator.expr(*node.args[1]);
    if (!p.isOk())
        return p;
    if (Status s = checkConstantPattern(*node.args[1], mode); !s.isOk())
        return s;
    return QStringLiteral("jet_like(%1, %2, %3, %4)")
        .arg(a.value(), p.value())
        .arg(translator.modeArg())
        .arg(node.negated ? 1 : 0);
}

} // namespace

Result<QString> Translator::expr(const Node &node)
{
    if (m_depth >= kMaxExpressionDepth)
        return Status(Status::Code::Syntax,
                      QStringLiteral("expression nested deeper than %1 levels at position %2")
                          .arg(kMaxExpressionDepth)
                          .arg(node.pos));
    ++m_depth;
    Result<QString> text = exprAt(node);
    --m_depth;
    return text;
}

QString Translator::binaryText(const Node &node, const QString &l, const QString &r) const
{
    switch (node.op) {
    case Op::Eq:
    case Op::Ne:
    case Op::Lt:
    case Op::Gt:
    case Op::Le:
    case Op::Ge: {
        static const char *const sym[] = { "=", "<>", "<", ">", "<=", ">=" };
        const int i = int(node.op) - int(Op::Eq);
        return QStringLiteral("(-((%1)%2 %3 (%4)))").arg(l, collate(), QLatin1String(sym[i]), r);
    }
    case Op::And: return QStringLiteral("(-((%1) AND (%2)))").arg(l, r);
    case Op::Or: return QStringLiteral("(-((%1) OR (%2)))").arg(l, r);
    default: return QStringLiteral("jet_op(%1, %2, %3)").arg(int(opCodeOf(node.op))).arg(l, r);
    }
}

// A chain leaning left (a & b & c ...), walked in loops. Its constant bottom part becomes
// one literal. SQLite refuses expressions nested more than 1,000 deep and its parser stack
// holds about 100 open parentheses, so a run of &, And or Or, whose grouping does not change
// the value, is emitted as groups of up to kGroup terms, groups of groups and so on (three
// levels for 100,000 terms); other operators keep Jet's left-to-right nesting.
Result<QString> Translator::chain(const Node &top)
{
    std::vector<const Node *> links; // bottom first
    const Node *leaf = &top;
    for (; leaf->kind == NodeKind::Binary; leaf = leaf->args[0].get())
        links.push_back(leaf);
    std::reverse(links.begin(), links.end());
    size_t next = 0;
    bool constant = isConstant(*leaf);
    while (constant && next < links.size() && isConstant(*links[next]->args[1]))
        ++next;
    QString acc;
    if (constant && next > 0) {
        Result<QString> value = constantLiteral(*links[next - 1], m_mode);
        if (!value.isOk())
            return value;
        acc = value.value();
    } else {
        Result<QString> first = expr(*leaf);
        if (!first.isOk())
            return first;
        acc = first.value();
    }
    while (next < links.size()) {
        const Op op = links[next]->op;
        const bool regroup = op == Op::Concat || op == Op::And || op == Op::Or;
        std::vector<QString> terms{ acc };
        const Node *last = nullptr;
        do {
            last = links[next];
            Result<QString> right = expr(*last->args[1]);
            if (!right.isOk())
                return right;
            terms.push_back(right.value());
            ++next;
        } while (regroup && next < links.size() && links[next]->op == op);
        if (!regroup) {
            terms = { binaryText(*last, terms[0], terms[1]) };
        } else {
            constexpr size_t kGroup = 64;
            const QString separator = op == Op::Concat ? QStringLiteral(", ")
                : op == Op::And                        ? QStringLiteral(") AND (")
                                                       : QStringLiteral(") OR (");
            while (terms.size() > 1) {
                std::vector<QString> grouped;
                for (size_t i = 0; i < terms.size(); i += kGroup) {
                    const size_t end = std::min(terms.size(), i + kGroup);
                    QString g =
                        op == Op::Concat ? QStringLiteral("jet_concat(") : QStringLiteral("((");
                    for (size_t k = i; k < end; ++k)
                        g += (k > i ? separator : QString()) + terms[k];
                    g += op == Op::Concat ? QStringLiteral(")") : QStringLiteral("))");
                    grouped.push_back(end - i == 1 ? terms[i] : g);
                }
                terms.swap(grouped);
            }
            // SQL's AND and OR give 1 for true; Jet gives -1.
            if (op != Op::Concat)
                terms.front() = QStringLiteral("(-(%1))").arg(terms.front());
        }
        acc = terms.front();
    }
    return acc;
}

Result<QString> Translator::exprAt(const Node &node)
{
    if (node.kind == NodeKind::Binary)
        return chain(node);
    if (node.kind != NodeKind::Literal && isConstant(node))
        return constantLiteral(node, m_mode);

    auto sub = [this](const Node &n) { return expr(n); };
    switch (node.kind) {
    case NodeKind::Literal: return literal(node.value);
    case NodeKind::Column: return column(node);
    case NodeKind::Unary: return unaryRunText(*this, node);
    case NodeKind::Binary: return chain(node);
    case NodeKind::Like:
        if (std::optional<QString> fast = upperPrefixLike(node))
            return *fast;
        return likeText(*this, node, m_mode);
    case NodeKind::Between: {
        QString list;
        Result<QString> r = args(node, 0, &list);
        if (!r.isOk())
            return r;
        return QStringLiteral("jet_between(%1%2, %3)")
            .arg(modeArg())
            .arg(list)
            .arg(node.negated ? 1 : 0);
    }
    case NodeKind::In: {
        Result<QString> a = sub(*node.args[0]);
        if (!a.isOk())
            return a;
        QString list;
        Result<QString> r = args(node, 1, &list);
        if (!r.isOk())
            return r;
        return QStringLiteral("(-((%1)%2 %3 (%4)))")
            .arg(a.value(), collate(),
                 node.negated ? QStringLiteral("NOT IN") : QStringLiteral("IN"), list.mid(2));
    }
    case NodeKind::IsNull: {
        Result<QString> a = sub(*node.args[0]);
        if (!a.isOk())
            return a;
        return QStringLiteral("(-((%1) IS %2NULL))")
            .arg(a.value(), node.negated ? QStringLiteral("NOT ") : QString());
    }
    case NodeKind::Call: return call(node);
    }
    return QStringLiteral("NULL");
}

Result<QString> Translator::call(const Node &node)
{
    const int n = int(node.args.size());
    auto arity = [&node, n](int lo, int hi) { return checkArity(node.name, n, lo, hi, node.pos); };
    QString list;
    if (node.name == QLatin1String("IIF")) {
        if (Status s = arity(3, 3); !s.isOk())
            return s;
        // CASE runs only the branch it takes, and a Null condition takes the ELSE branch,
        // both as Jet's IIF.
        QStringList parts;
        for (const NodePtr &a : node.args) {
            Result<QString> t = expr(*a);
            if (!t.isOk())
                return t;
            parts << t.value();
        }
        return QStringLiteral("(CASE WHEN (%1) THEN (%2) ELSE (%3) END)")
            .arg(parts[0], parts[1], parts[2]);
    }
    if (node.name == QLatin1String("ISNULL")) {
        if (Status s = arity(1, 1); !s.isOk())
            return s;
        Result<QString> a = expr(*node.args[0]);
        if (!a.isOk())
            return a;
        return QStringLiteral("(-((%1) IS NULL))").arg(a.value());
    }
    if (node.name == QLatin1String("NZ")) {
        if (Status s = arity(1, 2); !s.isOk())
            return s;
        return translateNz(node, [this](const Node &arg) { return expr(arg); });
    }
    const FunctionDef *def = findFunction(node.name);
    if (!def)
        return Status(
            Status::Code::UnknownFunction,
            QStringLiteral("undefined function '%1' at position %2").arg(node.name).arg(node.pos));
    if (Status s = arity(def->minArgs, def->maxArgs); !s.isOk())
        return s;
    Result<QString> r = args(node, 0, &list);
    if (!r.isOk())
        return r;
    // The first argument carries the compare mode (bit 0) and the call's position, so that
    // an error raised inside SQLite names the same position as the evaluator's.
    return QStringLiteral("%1(%2%3)")
        .arg(sqliteFunctionName(node.name))
        .arg(modeArg() + 2 * node.pos)
        .arg(list);
}

} // namespace detail

} // namespace plx::jet
