// services/recordsource/jet/sqlitetranslate.cpp: re-emits a Jet syntax tree in SQLite's
// dialect. Literals become standard '...' literals, names become "quoted" names resolved
// against the real tables, and every operator whose meaning differs (&, +, /, \, Mod, ^,
// Like, Between, Xor, Eqv, Imp) calls a function that registerJetFunctions() installs.
// Comparisons carry the source's collation. Booleans come out as -1/0 as in Jet.
#include "services/recordsource/jet/sqlitetranslate.h"

#include "services/recordsource/jet/evaluator.h"
#include "services/recordsource/jet/functions.h"
#include "services/recordsource/jet/like.h"
#include "services/recordsource/jet/parser.h"
#include "services/recordsource/jet/sqliteops_p.h"
#include "services/recordsource/jet/values.h"

namespace plx::jet {

namespace {

QString quoteName(const QString &name)
{
    QString q = name;
    q.replace(QLatin1Char('"'), QStringLiteral("\"\""));
    return QLatin1Char('"') + q + QLatin1Char('"');
}

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
    Result<QString> column(const Node &node, QString *outputName = nullptr);
    QString collate() const
    {
        return m_mode == TextCompare::NoCase ? QStringLiteral(" COLLATE JETNOCASE")
                                             : QStringLiteral(" COLLATE BINARY");
    }
    int modeArg() const { return m_mode == TextCompare::NoCase ? 1 : 0; }
    const std::vector<Source> &sources() const { return m_sources; }

private:
    Result<QString> args(const Node &node, size_t from, QString *out);
    Result<QString> call(const Node &node);
    const Source *findSource(const QString &name) const;
    static Status unknown(const Node &node, const QString &what)
    {
        return Status(Status::Code::UnknownField,
                      QStringLiteral("unknown field '%1' at position %2").arg(what).arg(node.pos));
    }

    std::vector<Source> m_sources;
    TextCompare m_mode;
};

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
    if (node.kind == NodeKind::Call
        && (node.name == QLatin1String("DATE") || node.name == QLatin1String("NOW")))
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
    auto arity = [&node, n](int lo, int hi) -> Status {
        if (n >= lo && n <= hi)
            return Status::ok();
        return Status(Status::Code::Syntax,
                      QStringLiteral("wrong number of arguments (%1) for %2 at position %3")
                          .arg(n)
                          .arg(node.name)
                          .arg(node.pos));
    };
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
    return QStringLiteral("%1(%2%3)").arg(sqliteFunctionName(node.name)).arg(modeArg()).arg(list);
}

} // namespace

namespace {

Result<std::vector<Source>> resolveSources(const SelectStatement &stmt, const TableLookup &tables)
{
    std::vector<Source> sources;
    auto add = [&](const TableRef &ref) -> Status {
        std::optional<TableColumns> t = tables(ref.name);
        if (!t)
            return Status(
                Status::Code::NotFound,
                QStringLiteral("unknown table '%1' at position %2").arg(ref.name).arg(ref.pos));
        sources.push_back(Source{ ref.alias.isEmpty() ? t->table : ref.alias, *t });
        return Status::ok();
    };
    if (Status s = add(stmt.from); !s.isOk())
        return s;
    for (const Join &j : stmt.joins) {
        if (Status s = add(j.table); !s.isOk())
            return s;
    }
    return sources;
}

QString fromText(const SelectStatement &stmt, const std::vector<Source> &sources,
                 const std::vector<QString> &joinConditions)
{
    auto ref = [](const Source &s) {
        return quoteName(s.table.table) + QStringLiteral(" AS ") + quoteName(s.alias);
    };
    QString from = QStringLiteral("FROM ") + ref(sources[0]);
    for (size_t i = 0; i < stmt.joins.size(); ++i) {
        static const char *const kinds[] = { " INNER JOIN ", " LEFT JOIN ", " RIGHT JOIN " };
        from += QLatin1String(kinds[int(stmt.joins[i].kind)]) + ref(sources[i + 1])
            + QStringLiteral(" ON ") + joinConditions[i];
    }
    return from;
}

// The output columns: every column of every table for '*' (a name that two tables share
// is called "T.F", as DAO names the fields of a join), the items otherwise.
Status selectItems(const SelectStatement &stmt, Translator &tr, TranslatedSelect &out)
{
    QStringList exprs;
    auto addColumn = [&](const Source &s, const QString &col, bool qualify) {
        const QString name = qualify ? s.alias + QLatin1Char('.') + col : col;
        QString e = quoteName(s.alias) + QLatin1Char('.') + quoteName(col);
        if (name != col)
            e += QStringLiteral(" AS ") + quoteName(name);
        exprs << e;
        out.outputNames << name;
    };
    auto shared = [&](const QString &col) {
        int seen = 0;
        for (const Source &s : tr.sources())
            for (const QString &c : s.table.columns)
                seen += c.compare(col, Qt::CaseInsensitive) == 0 ? 1 : 0;
        return seen > 1;
    };
    if (stmt.star) {
        for (const Source &s : tr.sources())
            for (const QString &c : s.table.columns)
                addColumn(s, c, shared(c));
        out.selectList = exprs.join(QStringLiteral(", "));
        return Status::ok();
    }
    int unnamed = 1000;
    for (const SelectItem &item : stmt.items) {
        if (!item.expr) {
            bool found = false;
            for (const Source &s : tr.sources()) {
                if (s.alias.compare(item.starTable, Qt::CaseInsensitive) == 0
                    || s.table.table.compare(item.starTable, Qt::CaseInsensitive) == 0) {
                    for (const QString &c : s.table.columns)
                        addColumn(s, c, shared(c));
                    found = true;
                    break;
                }
            }
            if (!found)
                return Status(Status::Code::NotFound,
                              QStringLiteral("unknown table '%1' in %1.*").arg(item.starTable));
            continue;
        }
        QString natural;
        Result<QString> e = item.expr->kind == NodeKind::Column ? tr.column(*item.expr, &natural)
                                                                : tr.expr(*item.expr);
        if (!e.isOk())
            return e.status();
        const QString name = !item.alias.isEmpty() ? item.alias
            : !natural.isEmpty()                   ? natural
                                                   : QStringLiteral("Expr%1").arg(unnamed++);
        exprs << e.value() + QStringLiteral(" AS ") + quoteName(name);
        out.outputNames << name;
    }
    out.selectList = exprs.join(QStringLiteral(", "));
    return Status::ok();
}

} // namespace

Result<TranslatedSelect> translateSelect(const QString &jetSql, const TableLookup &tables,
                                         TextCompare compare)
{
    Result<SelectStatement> parsed = parseSelect(jetSql);
    if (!parsed.isOk())
        return parsed.status();
    const SelectStatement &stmt = parsed.value();
    Result<std::vector<Source>> sources = resolveSources(stmt, tables);
    if (!sources.isOk())
        return sources.status();
    Translator tr(sources.value(), compare);
    TranslatedSelect out;
    if (Status s = selectItems(stmt, tr, out); !s.isOk())
        return s;
    std::vector<QString> joinConditions;
    for (const Join &j : stmt.joins) {
        Result<QString> on = tr.expr(*j.on);
        if (!on.isOk())
            return on.status();
        joinConditions.push_back(on.value());
    }
    out.fromClause = fromText(stmt, tr.sources(), joinConditions);
    if (stmt.where) {
        Result<QString> w = tr.expr(*stmt.where);
        if (!w.isOk())
            return w.status();
        out.whereClause = w.value();
    }
    QStringList order;
    for (const OrderItem &item : stmt.orderBy) {
        Result<QString> e = tr.expr(*item.expr);
        if (!e.isOk())
            return e.status();
        order << QStringLiteral("(%1)%2%3")
                     .arg(e.value(), tr.collate(),
                          item.descending ? QStringLiteral(" DESC") : QString());
    }
    out.orderClause = order.join(QStringLiteral(", "));
    if (stmt.joins.empty()) {
        out.baseTable = tr.sources().front().table.table;
        out.baseAlias = quoteName(tr.sources().front().alias);
    }
    for (const Source &s : tr.sources()) {
        out.sourceAliases << s.alias;
        out.sourceTables << s.table;
    }
    out.sql = QStringLiteral("SELECT ") + out.selectList + QLatin1Char(' ') + out.fromClause;
    if (!out.whereClause.isEmpty())
        out.sql += QStringLiteral(" WHERE ") + out.whereClause;
    if (!out.orderClause.isEmpty())
        out.sql += QStringLiteral(" ORDER BY ") + out.orderClause;
    return out;
}

Result<QString> translateCriterion(const QString &jetCriterion, const TranslatedSelect &select,
                                   const TableLookup &tables, TextCompare compare)
{
    Result<NodePtr> tree = parseExpression(jetCriterion);
    if (!tree.isOk())
        return tree.status();
    std::vector<Source> sources;
    for (qsizetype i = 0; i < select.sourceTables.size(); ++i) {
        // Re-read the columns: the table may have changed since the select was translated.
        std::optional<TableColumns> t = tables(select.sourceTables.at(i).table);
        sources.push_back(Source{ select.sourceAliases.at(i), t ? *t : select.sourceTables.at(i) });
    }
    Translator tr(std::move(sources), compare);
    return tr.expr(*tree.value());
}

} // namespace plx::jet
