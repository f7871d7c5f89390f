// services/recordsource/jet/sqliteexpr.cpp: re-emits a Jet syntax tree in SQLite's
// dialect. Literals become standard '...' literals, names become "quoted" names resolved
// against the real tables, and every operator whose meaning differs (&, +, /, \, Mod, ^,
// Like, Between, Xor, Eqv, Imp) calls a function that registerJetFunctions() installs.
// Comparisons carry the source's collation. Booleans come out as -1/0 as in Jet.
#include "services/recordsource/jet/sqlitetranslator_p.h"

#include "services/recordsource/jet/evaluator.h"
#include "services/recordsource/jet/functionlibrary.h"
#include "services/recordsource/jet/functions.h"
#include "services/recordsource/jet/like.h"
#include "services/recordsource/jet/parser.h"
#include "services/recordsource/jet/sqliteops_p.h"
#include "services/recordsource/jet/values.h"

namespace plx::jet {

namespace {

QString quoteText(const QString &text)
{
    QString q = text;
    q.replace(QLatin1Char('\''), QStringLiteral("''"));
    return QLatin1Char('\'') + q + QLatin1Char('\'');
}

QString literal(const QVariant &v)
{
    if (isNull(v))
        return QStringLiteral("NULL");
    if (isBoolean(v))
        return v.toBool() ? QStringLiteral("-1") : QStringLiteral("0");
    if (isDate(v)) {
        const QDateTime dt = toDateTime(v);
        return quoteText(dt.time() == QTime(0, 0)
                             ? dt.date().toString(Qt::ISODate)
                             : dt.toString(QStringLiteral("yyyy-MM-dd hh:mm:ss")));
    }
    if (isNumeric(v))
        return numberText(v.toDouble());
    return quoteText(v.toString());
}

} // namespace

namespace detail {

// The find query's shape, UCase(x) Like 'SM*': an ASCII prefix without lower-case letters
// and one trailing '*'. x itself, compared case-insensitively, matches exactly then, and
// that spares a converted copy of every value. UCase$ is left alone: it must still raise
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
    return QStringLiteral("jet_like(%1, %2, 1, %3)")
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
// row, so it is computed once here ("CHR(80) & CHR(76) & ..." becomes 'PL...').
bool isConstant(const Node &node)
{
    if (node.kind == NodeKind::Column)
        return false;
    if (node.kind == NodeKind::Call && isClockFunction(node.name))
        return false;
    for (const NodePtr &arg : node.args) {
        if (!isConstant(*arg))
            return false;
    }
    return true;
}

Result<QString> Translator::expr(const Node &node)
{
    if (node.kind != NodeKind::Literal && isConstant(node)) {
        // A constant that cannot be computed (1/0, Chr(300)) fails now, before any row is read.
        Result<QVariant> value = evaluate(node, nullptr, m_mode);
        if (!value.isOk())
            return value.status();
        return literal(value.value());
    }

    auto sub = [this](const Node &n) { return expr(n); };
    switch (node.kind) {
    case NodeKind::Literal: return literal(node.value);
    case NodeKind::Column: return column(node);
    case NodeKind::Unary: {
        Result<QString> a = sub(*node.args[0]);
        if (!a.isOk())
            return a;
        return node.op == Op::Not
            ? QStringLiteral("jet_op(%1, %2, NULL)").arg(int(OpCode::Not)).arg(a.value())
            : QStringLiteral("jet_op(%1, %2, NULL)").arg(int(OpCode::Neg)).arg(a.value());
    }
    case NodeKind::Binary: {
        Result<QString> a = sub(*node.args[0]);
        if (!a.isOk())
            return a;
        Result<QString> b = sub(*node.args[1]);
        if (!b.isOk())
            return b;
        const QString &l = a.value(), &r = b.value();
        switch (node.op) {
        case Op::Eq:
        case Op::Ne:
        case Op::Lt:
        case Op::Gt:
        case Op::Le:
        case Op::Ge: {
            static const char *const sym[] = { "=", "<>", "<", ">", "<=", ">=" };
            const int i = int(node.op) - int(Op::Eq);
            return QStringLiteral("(-((%1)%2 %3 (%4)))")
                .arg(l, collate(), QLatin1String(sym[i]), r);
        }
        case Op::And: return QStringLiteral("(-((%1) AND (%2)))").arg(l, r);
        case Op::Or: return QStringLiteral("(-((%1) OR (%2)))").arg(l, r);
        default: return QStringLiteral("jet_op(%1, %2, %3)").arg(int(opCodeOf(node.op))).arg(l, r);
        }
    }
    case NodeKind::Like: {
        if (std::optional<QString> fast = upperPrefixLike(node))
            return *fast;
        Result<QString> a = sub(*node.args[0]);
        if (!a.isOk())
            return a;
        Result<QString> p = sub(*node.args[1]);
        if (!p.isOk())
            return p;
        // A literal pattern is checked now, so a bad one fails before anything runs.
        if (node.args[1]->kind == NodeKind::Literal && isText(node.args[1]->value)) {
            Result<LikePattern> ok =
                LikePattern::compile(node.args[1]->value.toString(), m_mode, node.args[1]->pos);
            if (!ok.isOk())
                return ok.status();
        }
        return QStringLiteral("jet_like(%1, %2, %3, %4)")
            .arg(a.value(), p.value())
            .arg(modeArg())
            .arg(node.negated ? 1 : 0);
    }
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
