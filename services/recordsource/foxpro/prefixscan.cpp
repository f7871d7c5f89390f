// services/recordsource/foxpro/prefixscan.cpp: compiling find conditions into byte tests.
#include "services/recordsource/foxpro/prefixscan_p.h"

#include "services/recordsource/jet/internal/like.h"
#include "services/recordsource/jet/internal/values.h"

namespace plx::foxpro {

using jet::Node;
using jet::NodeKind;

std::optional<PrefixScan::Test> PrefixScan::compileOne(const DbfTable &table, const Node &like,
                                                       TextCompare collate)
{
    if (like.kind != NodeKind::Like || like.negated)
        return std::nullopt;
    const Node &value = *like.args[0];
    const Node &pattern = *like.args[1];
    if (value.kind != NodeKind::Call
        || (value.name != QLatin1String("UCASE") && value.name != QLatin1String("UCASE$"))
        || value.args.size() != 1 || value.args[0]->kind != NodeKind::Column)
        return std::nullopt;
    const int column = value.args[0]->column;
    const DbfField &field = table.fields().at(column);
    if (field.type != 'C')
        return std::nullopt;
    if (pattern.kind != NodeKind::Literal || !jet::isText(pattern.value))
        return std::nullopt;
    Result<jet::LikePattern> compiled =
        jet::LikePattern::compile(pattern.value.toString(), collate);
    if (!compiled.isOk() || !compiled->isPrefixPattern())
        return std::nullopt;
    const QString prefix = compiled->prefix();

    Test t;
    t.offset = field.offset;
    t.fieldLength = field.length;
    t.prefixLength = int(prefix.size());
    if (t.prefixLength > t.fieldLength) {
        t.never = true;
        return t;
    }
    t.blankLast = !prefix.isEmpty() && prefix.back() == QLatin1Char(' ');
    // What each byte reads as once upper-cased (and case-folded where Like ignores case, as
    // the pattern's prefix is): one character, or none (undecided).
    std::array<QChar, 256> upper;
    std::array<bool, 256> single;
    for (int b = 0; b < 256; ++b) {
        const char c = char(b);
        const QString up = table.decode(QByteArrayView(&c, 1)).toUpper();
        single[size_t(b)] = up.size() == 1;
        upper[size_t(b)] = single[size_t(b)] ? up.at(0) : QChar();
        if (collate == TextCompare::NoCase)
            upper[size_t(b)] = upper[size_t(b)].toCaseFolded();
    }
    t.verdict.resize(size_t(t.prefixLength) * 256);
    for (int i = 0; i < t.prefixLength; ++i) {
        for (int b = 0; b < 256; ++b) {
            Verdict &v = t.verdict[size_t(i) * 256 + size_t(b)];
            if (!single[size_t(b)])
                v = Verdict::Undecided;
            else
                v = upper[size_t(b)] == prefix.at(i) ? Verdict::Accept : Verdict::Reject;
        }
    }
    return t;
}

std::optional<PrefixScan> PrefixScan::compile(const DbfTable &table, const Node &where,
                                              TextCompare collate)
{
    PrefixScan scan;
    std::vector<const Node *> pending{ &where };
    while (!pending.empty()) {
        const Node *node = pending.back();
        pending.pop_back();
        if (node->kind == NodeKind::Binary && node->op == jet::Op::And) {
            pending.push_back(node->args[1].get());
            pending.push_back(node->args[0].get());
            continue;
        }
        std::optional<Test> t = compileOne(table, *node, collate);
        if (!t)
            return std::nullopt;
        scan.m_tests.push_back(std::move(*t));
    }
    return scan;
}

} // namespace plx::foxpro
