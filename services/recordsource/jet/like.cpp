// services/recordsource/jet/like.cpp: the Like matcher.
#include "services/recordsource/jet/internal/like.h"

#include "services/recordsource/jet/internal/evaluationcounters.h"

namespace plx::jet {

namespace {

QChar fold(QChar c, TextCompare mode)
{
    return mode == TextCompare::NoCase ? c.toCaseFolded() : c;
}

} // namespace

Result<LikePattern> LikePattern::compile(const QString &pattern, TextCompare mode, int pos)
{
    ++evaluationCounters().patternCompilations;
    LikePattern p;
    p.m_mode = mode;
    const qsizetype n = pattern.size();
    for (qsizetype i = 0; i < n; ++i) {
        const QChar c = pattern.at(i);
        Item item;
        if (c == QLatin1Char('*')) {
            item.kind = Item::Any;
            if (!p.m_items.empty() && p.m_items.back().kind == Item::Any)
                continue; // "**" is "*"
        } else if (c == QLatin1Char('?')) {
            item.kind = Item::One;
        } else if (c == QLatin1Char('#')) {
            item.kind = Item::Digit;
        } else if (c == QLatin1Char('[')) {
            const qsizetype close = pattern.indexOf(QLatin1Char(']'), i + 1);
            if (close < 0)
                return Status(
                    Status::Code::Syntax,
                    QStringLiteral("invalid pattern string '%1' (unclosed '[') at position %2")
                        .arg(pattern)
                        .arg(pos));
            QString body = pattern.mid(i + 1, close - i - 1);
            i = close;
            if (body.isEmpty())
                continue; // "[]" matches the empty string
            item.kind = Item::Set;
            if (body.size() > 1 && body.at(0) == QLatin1Char('!')) {
                item.negate = true;
                body.remove(0, 1);
            }
            for (qsizetype k = 0; k < body.size(); ++k) {
                if (k + 2 < body.size() && body.at(k + 1) == QLatin1Char('-')) {
                    if (body.at(k) > body.at(k + 2))
                        return Status(
                            Status::Code::Syntax,
                            QStringLiteral(
                                "invalid pattern string '%1' (range %2-%3) at position %4")
                                .arg(pattern, body.at(k), body.at(k + 2))
                                .arg(pos));
                    item.ranges += body.at(k);
                    item.ranges += body.at(k + 2);
                    k += 2;
                } else {
                    item.members += fold(body.at(k), mode);
                }
            }
            if (!item.negate && item.ranges.isEmpty() && item.members.size() == 1) {
                item.kind = Item::Literal; // [*], [?], [#], [[]
                item.ch = item.members.at(0);
            }
        } else {
            item.kind = Item::Literal;
            item.ch = fold(c, mode);
        }
        p.m_items.push_back(item);
    }
    // Recognise "literal...*" so callers can use a prefix test.
    if (!p.m_items.empty() && p.m_items.back().kind == Item::Any) {
        bool literal = true;
        QString prefix;
        for (size_t k = 0; k + 1 < p.m_items.size(); ++k) {
            if (p.m_items[k].kind != Item::Literal) {
                literal = false;
                break;
            }
            prefix += p.m_items[k].ch;
        }
        p.m_prefixOnly = literal;
        p.m_prefix = prefix;
    }
    return p;
}

bool LikePattern::setMatches(const Item &item, QChar c) const
{
    auto inSet = [&item](QChar x) {
        if (item.members.contains(x))
            return true;
        for (qsizetype r = 0; r + 1 < item.ranges.size(); r += 2) {
            if (x >= item.ranges.at(r) && x <= item.ranges.at(r + 1))
                return true;
        }
        return false;
    };
    bool hit = inSet(fold(c, m_mode));
    if (!hit && m_mode == TextCompare::NoCase)
        hit = inSet(c.toUpper()) || inSet(c.toLower()) || inSet(c);
    return hit != item.negate;
}

bool LikePattern::matchFrom(size_t index, QStringView text, qsizetype at) const
{
    // Iterative matching with backtracking to the most recent '*' keeps this linear for the
    // usual patterns and never recursive on the text length.
    size_t starItem = size_t(-1);
    qsizetype starAt = 0;
    while (true) {
        if (index == m_items.size()) {
            if (at == text.size())
                return true;
        } else {
            const Item &item = m_items[index];
            if (item.kind == Item::Any) {
                starItem = index++;
                starAt = at;
                continue;
            }
            if (at < text.size()) {
                const QChar c = text.at(at);
                bool ok = false;
                switch (item.kind) {
                case Item::Literal: ok = fold(c, m_mode) == item.ch; break;
                case Item::One: ok = true; break;
                case Item::Digit: ok = c >= QLatin1Char('0') && c <= QLatin1Char('9'); break;
                case Item::Set: ok = setMatches(item, c); break;
                case Item::Any: break;
                }
                if (ok) {
                    ++index;
                    ++at;
                    continue;
                }
            }
        }
        if (starItem == size_t(-1) || starAt >= text.size())
            return false;
        index = starItem + 1;
        at = ++starAt;
    }
}

bool LikePattern::matches(QStringView text) const
{
    if (m_prefixOnly) {
        if (text.size() < m_prefix.size())
            return false;
        if (m_mode == TextCompare::Binary)
            return text.startsWith(m_prefix);
        for (qsizetype i = 0; i < m_prefix.size(); ++i) {
            if (text.at(i).toCaseFolded() != m_prefix.at(i))
                return false;
        }
        return true;
    }
    return matchFrom(0, text, 0);
}

} // namespace plx::jet
