// services/recordsource/jet/constantset_p.h: whether a value is one of many constants, in one
// look-up.
//
// "ID In ('A', 'B', ...)" and "ID = 'A' Or ID = 'B' Or ..." compare a value with each
// constant in turn: 10,000 constants cost 10,000 comparisons a row. A set built once per
// statement answers with one look-up. It answers only where the answer cannot differ from
// comparing one by one: constants all text or all numbers, and a value of the same kind.
// Anything else (text meeting numbers is read as a number, or is a type mismatch) is left to
// the caller, who compares one by one.
#pragma once

#include "services/recordsource/textcompare.h"

#include <QSet>
#include <QString>
#include <QVariant>

#include <optional>
#include <vector>

namespace plx::jet {

class ConstantSet
{
public:
    // Null constants are left out: they equal nothing. Nothing when the others are not all
    // text or all numbers (Booleans count as the numbers -1 and 0), or when none is left.
    static std::optional<ConstantSet> build(const std::vector<QVariant> &constants,
                                            TextCompare mode);

    // Whether `value` (not Null) equals one of the constants under the set's comparison;
    // nothing when the value is not of the constants' kind.
    std::optional<bool> contains(const QVariant &value) const;

private:
    // Texts equal in the General order exactly when their keys are; in byte order exactly
    // when they are the same characters.
    QString textKey(const QString &text) const;

    TextCompare m_mode = TextCompare::Binary;
    bool m_text = false;
    QSet<QString> m_texts;
    QSet<double> m_numbers; // -0 kept as 0, which it equals
};

} // namespace plx::jet
