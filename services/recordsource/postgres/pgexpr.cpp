// services/recordsource/postgres/pgexpr.cpp: re-emits a Jet syntax tree in PostgreSQL's
// dialect: literals, fields, operators, Like, In, Between and Is Null. Parts without a field
// are computed once by the Jet evaluator and become literals ("CHR(80) & CHR(76) & ..."
// becomes 'PL...'), so an ID criterion reaches the server as "ID" = '...' and uses the
// index on the ID.
#include "services/recordsource/postgres/pgexpr_p.h"

#include "services/recordsource/jet/internal/evaluator.h"
#include "services/recordsource/jet/internal/functionlibrary.h"
#include "services/recordsource/jet/internal/like.h"
#include "services/recordsource/jet/internal/values.h"

#include <QDateTime>
#include <QVarLengthArray>

#include <algorithm>

namespace plx::postgres {

using jet::Node;
using jet::NodeKind;
using jet::Op;

bool isConstantTree(const Node &root)
{
    QVarLengthArray<const Node *, 32> pending;
    pending.append(&root);
    while (!pending.isEmpty()) {
        const Node &node = *pending.back();
        pending.removeLast();
        if (node.kind == NodeKind::Column)
            return false;
        if (node.kind == NodeKind::Call && jet::isClockFunction(node.name))
            return false;
        for (const jet::NodePtr &arg : node.args)
            pending.append(arg.get());
    }
    return true;
}

namespace {

SqlPiece literal(const QVariant &v)
{
    if (jet::isNull(v))
        return { QStringLiteral("NULL"), SqlKind::Null };
    if (jet::isBoolean(v))
        return { v.toBool() ? QStringLiteral("TRUE") : QStringLiteral("FALSE"), SqlKind::Bool };
    if (jet::isDate(v)) {
        const QDateTime dt = jet::toDateTime(v);
        if (dt.time() == QTime(0, 0))
            return { QStringLiteral("DATE '%1'").arg(dt.date().toString(Qt::ISODate)),
                     SqlKind::Date };
        return { QStringLiteral("TIMESTAMP '%1'")
                     .arg(dt.toString(QStringLiteral("yyyy-MM-dd hh:mm:ss"))),
                 SqlKind::Date };
    }
    if (jet::isNumeric(v))
        return { QStringLiteral("(%1)::float8").arg(jet::numberText(v.toDouble())),
                 SqlKind::Number };
    return { quoteText(v.toString()), SqlKind::Text };
}

SqlKind kindOf(FieldType type)
{
    switch (type) {
    case FieldType::Text:
    case FieldType::Memo: return SqlKind::Text;
    case FieldType::Integer:
    case FieldType::Numeric:
    case FieldType::Double: return SqlKind::Number;
    case FieldType::Boolean: return SqlKind::Bool;
    case FieldType::Date:
    case FieldType::DateTime: return SqlKind::Date;
    case FieldType::Binary: break;
    }
    return SqlKind::Null;
}

bool textLike(SqlKind k)
{
    return k == SqlKind::Text || k == SqlKind::Null;
}

// A Boolean used where a number is (Jet's True is -1), every other kind as it is.
SqlPiece numeric(const SqlPiece &piece)
{
    if (piece.kind != SqlKind::Bool)
        return piece;
    return { PgTranslator::asValue(piece), SqlKind::Number };
}

QString escapeRegexChar(QChar c)
{
    static const QString special = QStringLiteral("\\^$.|?*+()[]{}");
    return special.contains(c) ? QStringLiteral("\\") + c : QString(c);
}

} // namespace

Status PgTranslator::notSupported(const Node &node, const QString &what)
{
    return Status(Status::Code::NotSupported,
                  QStringLiteral("%1 at position %2 has no exact PostgreSQL translation")
                      .arg(what)
                      .arg(node.pos));
}

QString PgTranslator::asValue(const SqlPiece &piece)
{
    if (piece.kind != SqlKind::Bool)
        return piece.text;
    return QStringLiteral("(CASE WHEN %1 THEN -1 WHEN NOT %1 THEN 0 END)").arg(piece.text);
}

Result<QString> likeRegex(const QString &pattern, int pos)
{
    Result<jet::LikePattern> check = jet::LikePattern::compile(pattern, TextCompare::NoCase, pos);
    if (!check.isOk())
        return check.status();
    QString re = QStringLiteral("^");
    const QString p = pattern.toLower();
    for (qsizetype i = 0; i < p.size(); ++i) {
        const QChar c = p.at(i);
        if (c == QLatin1Char('*')) {
            re += QStringLiteral(".*");
        } else if (c == QLatin1Char('?')) {
            re += QLatin1Char('.');
        } else if (c == QLatin1Char('#')) {
            re += QStringLiteral("[0-9]");
        } else if (c == QLatin1Char('[')) {
            const qsizetype close = p.indexOf(QLatin1Char(']'), i + 1);
            QString body = p.mid(i + 1, close - i - 1);
            i = close;
            QString set = QStringLiteral("[");
            if (body.startsWith(QLatin1Char('!'))) {
                set += QLatin1Char('^');
                body.remove(0, 1);
            }
            for (QChar m : body)
                set += (m == QLatin1Char('\\') || m == QLatin1Char('^') || m == QLatin1Char('['))
                    ? QStringLiteral("\\") + m
                    : QString(m);
            re += body.isEmpty() ? QString() : set + QLatin1Char(']');
        } else {
            re += escapeRegexChar(c);
        }
    }
    return re + QLatin1Char('$');
}

const PgSource *PgTranslator::findSource(const QString &name) const
{
    for (const PgSource &s : m_sources) {
        if (s.alias.compare(name, Qt::CaseInsensitive) == 0)
            return &s;
    }
    for (const PgSource &s : m_sources) {
        if (s.table.name.compare(name, Qt::CaseInsensitive) == 0)
            return &s;
    }
    return nullptr;
}

Result<SqlPiece> PgTranslator::column(const Node &node, PgColumn *field, const PgSource **source)
{
    auto in = [](const PgSource &s, const QString &name) -> const PgColumn * {
        for (const PgColumn &c : s.table.columns) {
            if (c.name.compare(name, Qt::CaseInsensitive) == 0)
                return &c;
        }
        return nullptr;
    };
    auto emit = [&](const PgSource &s, const PgColumn &c) -> SqlPiece {
        if (field)
            *field = c;
        if (source)
            *source = &s;
        return { quoteName(s.alias) + QLatin1Char('.') + quoteName(c.name), kindOf(c.info.type) };
    };
    QString table = node.table;
    QString name = node.name;
    if (node.wholeBracket) {
        for (const PgSource &s : m_sources) {
            if (const PgColumn *c = in(s, name))
                return emit(s, *c);
        }
        const qsizetype dot = name.lastIndexOf(QLatin1Char('.'));
        table = name.left(dot).trimmed();
        name = name.mid(dot + 1).trimmed();
    }
    const QString written = table.isEmpty() ? name : table + QLatin1Char('.') + name;
    const auto unknown = [&] {
        return Status(
            Status::Code::UnknownField,
            QStringLiteral("unknown field '%1' at position %2").arg(written).arg(node.pos));
    };
    if (!table.isEmpty()) {
        const PgSource *s = findSource(table);
        const PgColumn *c = s ? in(*s, name) : nullptr;
        if (!c)
            return unknown();
        return emit(*s, *c);
    }
    for (const PgSource &s : m_sources) {
        if (const PgColumn *c = in(s, name))
            return emit(s, *c);
    }
    return unknown();
}

Result<SqlPiece> PgTranslator::expr(const Node &node)
{
    if (m_depth >= jet::kMaxExpressionDepth)
        return Status(Status::Code::Syntax,
                      QStringLiteral("expression nested deeper than %1 levels at position %2")
                          .arg(jet::kMaxExpressionDepth)
                          .arg(node.pos));
    ++m_depth;
    Result<SqlPiece> piece = exprAt(node);
    --m_depth;
    return piece;
}

Result<QString> PgTranslator::conditionOf(const SqlPiece &piece, const Node &node)
{
    switch (piece.kind) {
    case SqlKind::Bool: return piece.text;
    case SqlKind::Number: return QStringLiteral("((%1) <> 0)").arg(piece.text);
    case SqlKind::Null: return QStringLiteral("(NULL::boolean)");
    case SqlKind::Text:
    case SqlKind::Date: break;
    }
    return Status(
        Status::Code::TypeMismatch,
        QStringLiteral("a condition at position %1 is no number or truth value").arg(node.pos));
}

Result<QString> PgTranslator::condition(const Node &node)
{
    Result<SqlPiece> piece = expr(node);
    if (!piece.isOk())
        return piece.status();
    return conditionOf(piece.value(), node);
}

Result<SqlPiece> PgTranslator::exprAt(const Node &node)
{
    if (node.kind != NodeKind::Literal && isConstantTree(node)) {
        Result<QVariant> value = jet::evaluate(node, nullptr, TextCompare::NoCase);
        if (!value.isOk())
            return value.status();
        return literal(value.value());
    }
    switch (node.kind) {
    case NodeKind::Literal: return literal(node.value);
    case NodeKind::Column: return column(node);
    case NodeKind::Binary: return binary(node);
    case NodeKind::Like: return like(node);
    case NodeKind::Between:
    case NodeKind::In: return listTest(node);
    case NodeKind::IsNull: {
        Result<SqlPiece> a = expr(*node.args[0]);
        if (!a.isOk())
            return a;
        return SqlPiece{ QStringLiteral("((%1) IS %2NULL)")
                             .arg(a->text, node.negated ? QStringLiteral("NOT ") : QString()),
                         SqlKind::Bool };
    }
    case NodeKind::Unary: {
        Result<SqlPiece> a = expr(*node.args[0]);
        if (!a.isOk())
            return a;
        if (node.op == Op::Not) {
            if (a->kind != SqlKind::Bool)
                return notSupported(node, QStringLiteral("Not on a number (a bit operation)"));
            return SqlPiece{ QStringLiteral("(NOT %1)").arg(a->text), SqlKind::Bool };
        }
        const SqlPiece n = numeric(a.value());
        if (n.kind != SqlKind::Number && n.kind != SqlKind::Null)
            return notSupported(node, QStringLiteral("minus on a text or date"));
        return SqlPiece{ QStringLiteral("(-(%1))").arg(n.text), SqlKind::Number };
    }
    case NodeKind::Call: return call(node);
    }
    return SqlPiece{ QStringLiteral("NULL"), SqlKind::Null };
}

Result<SqlPiece> PgTranslator::comparison(const Node &node, const SqlPiece &l, const SqlPiece &r)
{
    static const char *const sym[] = { "=", "<>", "<", ">", "<=", ">=" };
    const QLatin1String op(sym[int(node.op) - int(Op::Eq)]);
    if (textLike(l.kind) && textLike(r.kind))
        return SqlPiece{ QStringLiteral("((%1)%2 %3 (%4))").arg(l.text, NoCase, op, r.text),
                         SqlKind::Bool };
    const SqlPiece a = l.kind == SqlKind::Bool && r.kind != SqlKind::Bool ? numeric(l) : l;
    const SqlPiece b = r.kind == SqlKind::Bool && l.kind != SqlKind::Bool ? numeric(r) : r;
    if (a.kind != b.kind && a.kind != SqlKind::Null && b.kind != SqlKind::Null)
        return Status(
            Status::Code::TypeMismatch,
            QStringLiteral("data type mismatch in the comparison at position %1").arg(node.pos));
    return SqlPiece{ QStringLiteral("((%1) %2 (%3))").arg(a.text, op, b.text), SqlKind::Bool };
}

Result<SqlPiece> PgTranslator::binary(const Node &node)
{
    if (node.op == Op::Concat)
        return concatChain(node);
    if (node.op == Op::And || node.op == Op::Or)
        return logicChain(node);
    Result<SqlPiece> l = expr(*node.args[0]);
    if (!l.isOk())
        return l;
    Result<SqlPiece> r = expr(*node.args[1]);
    if (!r.isOk())
        return r;
    if (node.op >= Op::Eq && node.op <= Op::Ge)
        return comparison(node, l.value(), r.value());
    const SqlPiece a = numeric(l.value());
    const SqlPiece b = numeric(r.value());
    if (node.op == Op::Add && a.kind == SqlKind::Text && b.kind == SqlKind::Text)
        return SqlPiece{ QStringLiteral("(%1 || %2)").arg(a.text, b.text), SqlKind::Text };
    const bool numbers = (a.kind == SqlKind::Number || a.kind == SqlKind::Null)
        && (b.kind == SqlKind::Number || b.kind == SqlKind::Null);
    if (!numbers)
        return notSupported(node, QStringLiteral("arithmetic on a text or date"));
    switch (node.op) {
    case Op::Add: return SqlPiece{ QStringLiteral("(%1 + %2)").arg(a.text, b.text), a.kind };
    case Op::Sub: return SqlPiece{ QStringLiteral("(%1 - %2)").arg(a.text, b.text), a.kind };
    case Op::Mul: return SqlPiece{ QStringLiteral("(%1 * %2)").arg(a.text, b.text), a.kind };
    case Op::Div:
        return SqlPiece{ QStringLiteral("((%1)::float8 / (%2)::float8)").arg(a.text, b.text),
                         SqlKind::Number };
    case Op::Pow:
        return SqlPiece{ QStringLiteral("power((%1)::float8, (%2)::float8)").arg(a.text, b.text),
                         SqlKind::Number };
    default: break;
    }
    return notSupported(node, QStringLiteral("the operators \\, Mod, Xor, Eqv and Imp"));
}

// a & b & c ...: the texts joined, Null only when every part is Null.
Result<SqlPiece> PgTranslator::concatChain(const Node &top)
{
    std::vector<const Node *> parts;
    const Node *leaf = &top;
    for (; leaf->kind == NodeKind::Binary && leaf->op == Op::Concat; leaf = leaf->args[0].get())
        parts.push_back(leaf->args[1].get());
    parts.push_back(leaf);
    std::reverse(parts.begin(), parts.end());
    QStringList texts;
    for (const Node *part : parts) {
        Result<SqlPiece> p = expr(*part);
        if (!p.isOk())
            return p;
        if (!textLike(p->kind))
            return notSupported(*part, QStringLiteral("& with a number, date or truth value"));
        texts << p->text;
    }
    const QString list = texts.join(QStringLiteral(", "));
    return SqlPiece{
        QStringLiteral("(CASE WHEN num_nonnulls(%1) = 0 THEN NULL ELSE concat(%1) END)").arg(list),
        SqlKind::Text
    };
}

// A run of And or Or, walked in a loop so that a long chain costs no stack.
Result<SqlPiece> PgTranslator::logicChain(const Node &top)
{
    std::vector<const Node *> parts;
    const Node *leaf = &top;
    for (; leaf->kind == NodeKind::Binary && leaf->op == top.op; leaf = leaf->args[0].get())
        parts.push_back(leaf->args[1].get());
    parts.push_back(leaf);
    std::reverse(parts.begin(), parts.end());
    QStringList conditions;
    for (const Node *part : parts) {
        Result<QString> c = condition(*part);
        if (!c.isOk())
            return c.status();
        conditions << c.value();
    }
    const QString joint = top.op == Op::And ? QStringLiteral(" AND ") : QStringLiteral(" OR ");
    return SqlPiece{ QLatin1Char('(') + conditions.join(joint) + QLatin1Char(')'), SqlKind::Bool };
}

Result<SqlPiece> PgTranslator::like(const Node &node)
{
    Result<SqlPiece> value = expr(*node.args[0]);
    if (!value.isOk())
        return value;
    const Node &pattern = *node.args[1];
    if (!isConstantTree(pattern))
        return notSupported(pattern, QStringLiteral("a Like pattern that varies by record"));
    Result<QVariant> p = jet::evaluate(pattern, nullptr, TextCompare::NoCase);
    if (!p.isOk())
        return p.status();
    if (jet::isNull(p.value()))
        return SqlPiece{ QStringLiteral("(NULL::boolean)"), SqlKind::Bool };
    if (!textLike(value->kind))
        return notSupported(node, QStringLiteral("Like on a number or date"));
    const QString text = jet::toText(p.value());
    const QString negation = node.negated ? QStringLiteral("NOT ") : QString();
    const QString folded =
        QStringLiteral("lower((%1)::text COLLATE \"und-x-icu\")").arg(value->text);
    // Only * and ?: SQL's own LIKE, which takes patterns of any length; # and [...] need a
    // regular expression.
    if (!text.contains(QLatin1Char('#')) && !text.contains(QLatin1Char('['))) {
        Result<jet::LikePattern> check =
            jet::LikePattern::compile(text, TextCompare::NoCase, pattern.pos);
        if (!check.isOk())
            return check.status();
        QString sql;
        for (QChar c : text.toLower()) {
            if (c == QLatin1Char('*'))
                sql += QLatin1Char('%');
            else if (c == QLatin1Char('?'))
                sql += QLatin1Char('_');
            else if (c == QLatin1Char('%') || c == QLatin1Char('_') || c == QLatin1Char('\\'))
                sql += QLatin1Char('\\') + QString(c);
            else
                sql += c;
        }
        return SqlPiece{
            QStringLiteral("(%1(%2) COLLATE \"C\" LIKE %3)").arg(negation, folded, quoteText(sql)),
            SqlKind::Bool
        };
    }
    Result<QString> re = likeRegex(text, pattern.pos);
    if (!re.isOk())
        return re.status();
    return SqlPiece{ QStringLiteral("(%1%2 ~ %3)").arg(negation, folded, quoteText(re.value())),
                     SqlKind::Bool };
}

Result<SqlPiece> PgTranslator::listTest(const Node &node)
{
    QStringList texts;
    bool text = true;
    for (const jet::NodePtr &arg : node.args) {
        Result<SqlPiece> a = expr(*arg);
        if (!a.isOk())
            return a;
        text = text && textLike(a->kind);
        texts << numeric(a.value()).text;
    }
    const QString first =
        QStringLiteral("(%1)%2").arg(texts.takeFirst(), text ? NoCase : QString());
    const QString negation = node.negated ? QStringLiteral("NOT ") : QString();
    if (node.kind == NodeKind::Between)
        return SqlPiece{ QStringLiteral("(%1 %2BETWEEN %3 AND %4)")
                             .arg(first, negation, texts.at(0), texts.at(1)),
                         SqlKind::Bool };
    return SqlPiece{
        QStringLiteral("(%1 %2IN (%3))").arg(first, negation, texts.join(QStringLiteral(", "))),
        SqlKind::Bool
    };
}

} // namespace plx::postgres
