// services/recordsource/jet/internal/like.h: Jet's Like patterns (ANSI-89 wildcards).
//
// '*' any run of characters, '?' one character, '#' one digit, [abc] [a-z] a character of
// the group, [!a-z] one not in it; [*] [?] [#] [[] stand for themselves; '%' and '_' are
// ordinary characters. The whole text must match. Case follows the source's TextCompare.
#pragma once

#include "services/recordsource/result.h"
#include "services/recordsource/textcompare.h"

#include <QString>

#include <vector>

namespace plx::jet {

class LikePattern
{
public:
    // Syntax error for an unclosed '[' or a descending range, naming `pos`.
    static Result<LikePattern> compile(const QString &pattern, TextCompare mode, int pos = 0);

    bool matches(QStringView text) const;

    // A pattern that is a literal prefix followed by one '*' ("SM*"): the prefix, so that
    // callers can test it without the general matcher. Empty otherwise.
    bool isPrefixPattern() const { return m_prefixOnly; }
    const QString &prefix() const { return m_prefix; }
    TextCompare mode() const { return m_mode; }

private:
    struct Item
    {
        enum Kind { Literal, Any, One, Digit, Set } kind = Literal;
        QChar ch; // Literal (case-folded for NoCase)
        QString members; // Set: single characters
        QString ranges; // Set: pairs of characters (low, high)
        bool negate = false;
    };
    bool setMatches(const Item &item, QChar c) const;
    bool matchFrom(size_t index, QStringView text, qsizetype at) const;

    std::vector<Item> m_items;
    TextCompare m_mode = TextCompare::NoCase;
    bool m_prefixOnly = false;
    QString m_prefix;
};

} // namespace plx::jet
