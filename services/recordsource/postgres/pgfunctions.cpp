// services/recordsource/postgres/pgfunctions.cpp: the dialect's functions in PostgreSQL's
// terms: IIF, IsNull, Nz, and the text functions the controls' queries use (UCase, LCase,
// Left, Right, Mid, Len, Trim, InStr). Texts are lower-cased under ICU's root locale
// wherever case must not count, as the collation compares them. A function of the dialect
// not translated here is refused by name; constant calls never get here (the evaluator
// computes them).
#include "services/recordsource/postgres/pgexpr_p.h"

#include "services/recordsource/jet/internal/functions.h"

namespace plx::postgres {

using jet::Node;

namespace {

QString folded(const QString &text)
{
    return QStringLiteral("lower((%1)::text COLLATE \"und-x-icu\")").arg(text);
}

bool textArg(const SqlPiece &p)
{
    return p.kind == SqlKind::Text || p.kind == SqlKind::Null;
}

bool numberArg(const SqlPiece &p)
{
    return p.kind == SqlKind::Number || p.kind == SqlKind::Null;
}

// InStr([start,] text, sought): 1-based, 0 when absent, without regard to case.
QString instrText(const QString &start, const QString &text, const QString &sought)
{
    const QString from = QStringLiteral("(%1)::int").arg(start);
    const QString hit =
        QStringLiteral("strpos(%1, %2)")
            .arg(folded(QStringLiteral("substr(%1, %2)").arg(text, from)), folded(sought));
    return QStringLiteral("(CASE WHEN %1 > 0 THEN %1 + %2 - 1 ELSE 0 END)").arg(hit, from);
}

} // namespace

Result<std::vector<SqlPiece>> PgTranslator::arguments(const Node &node)
{
    std::vector<SqlPiece> args;
    for (const jet::NodePtr &a : node.args) {
        Result<SqlPiece> p = expr(*a);
        if (!p.isOk())
            return p.status();
        args.push_back(p.value());
    }
    return args;
}

Result<SqlPiece> PgTranslator::textCall(const Node &node, const std::vector<SqlPiece> &a)
{
    const QString &n = node.name;
    const QString base = n.endsWith(QLatin1Char('$')) ? n.chopped(1) : n;
    const bool strict = n.endsWith(QLatin1Char('$')); // the $ forms refuse Null
    auto text = [&](const QString &sql) {
        return SqlPiece{ strict ? QStringLiteral("plx.strict_text(%1)").arg(sql) : sql,
                         SqlKind::Text };
    };
    if (!textArg(a.at(0)))
        return notSupported(node, QStringLiteral("%1 of a number, date or truth value").arg(n));
    const QString &s = a.at(0).text;
    if (base == QLatin1String("UCASE"))
        return text(QStringLiteral("upper((%1)::text COLLATE \"und-x-icu\")").arg(s));
    if (base == QLatin1String("LCASE"))
        return text(QStringLiteral("lower((%1)::text COLLATE \"und-x-icu\")").arg(s));
    if (base == QLatin1String("TRIM"))
        return text(QStringLiteral("btrim(%1, ' ')").arg(s));
    if (base == QLatin1String("LTRIM"))
        return text(QStringLiteral("ltrim(%1, ' ')").arg(s));
    if (base == QLatin1String("RTRIM"))
        return text(QStringLiteral("rtrim(%1, ' ')").arg(s));
    if (base == QLatin1String("LEN") && !strict)
        return SqlPiece{ QStringLiteral("length(%1)").arg(s), SqlKind::Number };
    if (a.size() >= 2 && !numberArg(a.at(1)))
        return notSupported(node, QStringLiteral("%1 with a length that is no number").arg(n));
    if (base == QLatin1String("LEFT"))
        return text(QStringLiteral("left(%1, (%2)::int)").arg(s, a.at(1).text));
    if (base == QLatin1String("RIGHT"))
        return text(QStringLiteral("right(%1, (%2)::int)").arg(s, a.at(1).text));
    if (base == QLatin1String("MID")) {
        if (a.size() == 2)
            return text(QStringLiteral("substr(%1, (%2)::int)").arg(s, a.at(1).text));
        return text(
            QStringLiteral("substr(%1, (%2)::int, (%3)::int)").arg(s, a.at(1).text, a.at(2).text));
    }
    return notSupported(node, QStringLiteral("the function %1").arg(n));
}

Result<SqlPiece> PgTranslator::call(const Node &node)
{
    const int count = int(node.args.size());
    const jet::FunctionDef *def = jet::findFunction(node.name);
    if (!def && node.name != QLatin1String("IIF") && node.name != QLatin1String("ISNULL")
        && node.name != QLatin1String("NZ"))
        return Status(
            Status::Code::UnknownFunction,
            QStringLiteral("undefined function '%1' at position %2").arg(node.name).arg(node.pos));
    if (def) {
        if (Status s = jet::checkArity(node.name, count, def->minArgs, def->maxArgs, node.pos);
            !s.isOk())
            return s;
    }
    Result<std::vector<SqlPiece>> args = arguments(node);
    if (!args.isOk())
        return args.status();
    const std::vector<SqlPiece> &a = args.value();
    if (node.name == QLatin1String("IIF") && count == 3) {
        Result<QString> c = conditionOf(a[0], *node.args[0]);
        if (!c.isOk())
            return c.status();
        const SqlKind kind = a[1].kind == SqlKind::Null ? a[2].kind : a[1].kind;
        if (a[1].kind != a[2].kind && a[1].kind != SqlKind::Null && a[2].kind != SqlKind::Null)
            return notSupported(node, QStringLiteral("IIF with branches of different kinds"));
        return SqlPiece{ QStringLiteral("(CASE WHEN %1 THEN %2 ELSE %3 END)")
                             .arg(c.value(), a[1].text, a[2].text),
                         kind };
    }
    if (node.name == QLatin1String("ISNULL") && count == 1)
        return SqlPiece{ QStringLiteral("((%1) IS NULL)").arg(a[0].text), SqlKind::Bool };
    if (node.name == QLatin1String("NZ") && count == 2 && a[0].kind == a[1].kind)
        return SqlPiece{ QStringLiteral("COALESCE(%1, %2)").arg(a[0].text, a[1].text), a[0].kind };
    if (node.name == QLatin1String("INSTR") && (count == 2 || count == 3)) {
        const bool started = count == 3;
        const SqlPiece &text = a[started ? 1 : 0];
        const SqlPiece &sought = a[started ? 2 : 1];
        if (!textArg(text) || !textArg(sought) || (started && !numberArg(a[0])))
            return notSupported(node, QStringLiteral("InStr of a number or date"));
        return SqlPiece{ instrText(started ? a[0].text : QStringLiteral("1"), text.text,
                                   sought.text),
                         SqlKind::Number };
    }
    static const QStringList text{ QStringLiteral("UCASE"), QStringLiteral("LCASE"),
                                   QStringLiteral("TRIM"),  QStringLiteral("LTRIM"),
                                   QStringLiteral("RTRIM"), QStringLiteral("LEN"),
                                   QStringLiteral("LEFT"),  QStringLiteral("RIGHT"),
                                   QStringLiteral("MID") };
    QString base = node.name;
    if (base.endsWith(QLatin1Char('$')))
        base.chop(1);
    if (count >= 1 && text.contains(base))
        return textCall(node, a);
    return notSupported(node, QStringLiteral("the function %1").arg(node.name));
}

} // namespace plx::postgres
