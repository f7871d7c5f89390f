// services/recordsource/jet/constantset.cpp: the look-up set of an In list or an Or run.
#include "services/recordsource/jet/constantset_p.h"

#include "services/recordsource/jet/internal/generalorder.h"
#include "services/recordsource/jet/internal/values.h"

#include <cmath>

namespace plx::jet {

namespace {

// The number a number or Boolean stands for; nothing for NaN, which compares equal to
// every number one by one and so has no place in a set.
std::optional<double> numberKey(const QVariant &v)
{
    const double d = isBoolean(v) ? (v.toBool() ? -1.0 : 0.0) : v.toDouble();
    if (std::isnan(d))
        return std::nullopt;
    return d == 0 ? 0.0 : d;
}

} // namespace

QString ConstantSet::textKey(const QString &text) const
{
    return m_mode == TextCompare::NoCase ? generalSortKey(text) : text;
}

std::optional<ConstantSet> ConstantSet::build(const std::vector<QVariant> &constants,
                                              TextCompare mode)
{
    ConstantSet set;
    set.m_mode = mode;
    bool anyText = false, anyNumber = false;
    for (const QVariant &c : constants) {
        if (isNull(c))
            continue;
        if (isText(c)) {
            anyText = true;
            set.m_texts.insert(set.textKey(c.toString()));
        } else if (isNumeric(c)) {
            const std::optional<double> key = numberKey(c);
            if (!key)
                return std::nullopt;
            anyNumber = true;
            set.m_numbers.insert(*key);
        } else {
            return std::nullopt; // a date: compared as a date, one by one
        }
    }
    if (anyText == anyNumber) // both kinds, or nothing to look up
        return std::nullopt;
    set.m_text = anyText;
    return set;
}

std::optional<bool> ConstantSet::contains(const QVariant &value) const
{
    if (m_text) {
        if (!isText(value))
            return std::nullopt;
        return m_texts.contains(textKey(value.toString()));
    }
    if (!isNumeric(value))
        return std::nullopt;
    const std::optional<double> key = numberKey(value);
    if (!key)
        return std::nullopt;
    return m_numbers.contains(*key);
}

} // namespace plx::jet
