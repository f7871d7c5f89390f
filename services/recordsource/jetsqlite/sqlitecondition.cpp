// services/recordsource/jetsqlite/sqlitecondition.cpp: conditions written so that SQLite can
// answer them from an index.
//
// Where a value only decides whether a row is taken (WHERE, ON, a FindFirst criterion), its
// truth is all that counts: a comparison and a run of And or Or are written as SQL's own
// (true is 1 there, -1 in Jet, and only a value that is read must be -1). SQLite searches an
// index for "x COLLATE JETNOCASE = 'PLE...'" but scans the table for the -(...) a value
// needs, so ID look-ups and finds become index look-ups on a table with an index in the
// dialect's collation.
//
// The find's UCase(x) Like 'SM*' gets a range of x beside it for the same reason. The
// General order puts every text whose letters begin with "sm" between 'sm' and 'sn'; the
// only texts that upper-case to a match without sorting there hold one of the letters that
// upper-case to two ("ﬁ" to "FI", "ﬆ" to "ST", "ẚ" to "Aʾ"): their own keys sort after every
// Latin letter, so the ranges those can start are added too. jet_like still decides each row.
#include "services/recordsource/jetsqlite/sqlitetranslator_p.h"

#include "services/recordsource/jet/internal/generalorder.h"
#include "services/recordsource/jet/internal/like.h"

#include <algorithm>

namespace plx::jet::detail {

namespace {

// Runs longer than this are left to the value translation, which groups them for SQLite's
// parser.
constexpr size_t kMaxConditionRun = 64;

bool isComparison(Op op)
{
    return op == Op::Eq || op == Op::Ne || op == Op::Lt || op == Op::Gt || op == Op::Le
        || op == Op::Ge;
}

// The letters that upper-case to more than one letter and whose General key is the letter
// itself, with the ASCII their upper case begins with (case-folded). The list is complete
// for Unicode as Qt knows it: every other character upper-cases to letters its key begins
// with, or to no ASCII at all.
struct Expanding
{
    char16_t letter;
    const char *ascii;
};
constexpr Expanding kExpanding[] = {
    { u'\u1E9A', "a" },   { u'\uFB00', "ff" },  { u'\uFB01', "fi" }, { u'\uFB02', "fl" },
    { u'\uFB03', "ffi" }, { u'\uFB04', "ffl" }, { u'\uFB05', "st" }, { u'\uFB06', "st" },
};

// Key ranges [from, to) holding every text whose upper case begins with `prefix` (ASCII,
// no lower-case letters) in the General order.
QList<std::pair<QString, QString>> prefixRanges(const QString &prefix)
{
    const QString folded = prefix.toLower();
    // The first text after every text that begins with `text`, compared as keys: its last
    // character moves on to the next one that is its own key (the one after "ẚ", "ẛ", is
    // an "s" with an accent; the one after "@", "A", is "a").
    auto after = [](QString text) {
        do
            text.back() = QChar(text.back().unicode() + 1);
        while (generalSortKey(text) != text);
        return text;
    };
    QList<std::pair<QString, QString>> ranges{ { folded, after(folded) } };
    for (qsizetype at = 0; at < folded.size(); ++at) {
        const QString rest = folded.mid(at);
        for (const Expanding &e : kExpanding) {
            const QString ascii = QLatin1String(e.ascii);
            // "ẚ" upper-cases to "A" and a letter no ASCII pattern matches: only a prefix
            // that ends with its "a" can be met by it.
            const bool fits = e.letter == u'\u1E9A'
                ? rest == ascii
                : rest.startsWith(ascii) || ascii.startsWith(rest);
            if (fits) {
                const QString from = folded.left(at) + QChar(e.letter);
                ranges.append({ from, after(from) });
            }
        }
    }
    return ranges;
}

} // namespace

Result<QString> Translator::condition(const Node &node)
{
    if (m_depth >= kMaxExpressionDepth)
        return expr(node); // which says why
    ++m_depth;
    Result<QString> text = conditionAt(node);
    --m_depth;
    return text;
}

Result<QString> Translator::conditionAt(const Node &node)
{
    if (isConstant(node))
        return expr(node);
    if (node.kind == NodeKind::Like) {
        if (std::optional<QString> ranged = prefixRange(node))
            return *ranged;
        return expr(node);
    }
    if (node.kind != NodeKind::Binary)
        return expr(node);
    if (isComparison(node.op))
        return comparisonCondition(node);
    if (node.op == Op::And || node.op == Op::Or)
        return runCondition(node);
    return expr(node);
}

Result<QString> Translator::comparisonCondition(const Node &node)
{
    Result<QString> l = expr(*node.args[0]);
    if (!l.isOk())
        return l;
    Result<QString> r = expr(*node.args[1]);
    if (!r.isOk())
        return r;
    static const char *const sym[] = { "=", "<>", "<", ">", "<=", ">=" };
    return QStringLiteral("((%1)%2 %3 (%4))")
        .arg(l.value(), collate(), QLatin1String(sym[int(node.op) - int(Op::Eq)]), r.value());
}

Result<QString> Translator::runCondition(const Node &top)
{
    std::vector<const Node *> terms; // right to left
    const Node *link = &top;
    for (; link->kind == NodeKind::Binary && link->op == top.op; link = link->args[0].get()) {
        terms.push_back(link->args[1].get());
        if (terms.size() > kMaxConditionRun)
            return expr(top);
    }
    terms.push_back(link);
    std::reverse(terms.begin(), terms.end());
    QStringList parts;
    for (const Node *term : terms) {
        Result<QString> part = condition(*term);
        if (!part.isOk())
            return part;
        parts << part.value();
    }
    const QString separator =
        top.op == Op::And ? QStringLiteral(") AND (") : QStringLiteral(") OR (");
    return QStringLiteral("((") + parts.join(separator) + QStringLiteral("))");
}

// UCase(field) Like 'SM*' on a case-insensitive source: the Like as the value form writes it,
// and the field within the ranges its matches sort in.
std::optional<QString> Translator::prefixRange(const Node &like)
{
    if (m_mode != TextCompare::NoCase || like.negated)
        return std::nullopt;
    const Node &value = *like.args[0];
    if (value.kind != NodeKind::Call || value.args.size() != 1
        || value.args[0]->kind != NodeKind::Column)
        return std::nullopt;
    std::optional<QString> test = upperPrefixLike(like);
    if (!test)
        return std::nullopt;
    Result<LikePattern> pattern =
        LikePattern::compile(like.args[1]->value.toString(), TextCompare::Binary, like.pos);
    Result<QString> field = column(*value.args[0]);
    if (!pattern.isOk() || pattern->prefix().isEmpty() || !field.isOk())
        return std::nullopt;
    QStringList ranges;
    const QString x = QStringLiteral("(%1)%2").arg(field.value(), collate());
    for (const auto &[from, to] : prefixRanges(pattern->prefix()))
        ranges << QStringLiteral("(%1 >= %2 AND %1 < %3)").arg(x, quoteText(from), quoteText(to));
    return QStringLiteral("((%1) AND %2)").arg(ranges.join(QStringLiteral(" OR ")), *test);
}

} // namespace plx::jet::detail
