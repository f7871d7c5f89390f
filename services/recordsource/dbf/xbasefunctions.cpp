// services/recordsource/dbf/xbasefunctions.cpp: the operators and functions of index
// expressions, with FoxPro's results.
#include "services/recordsource/dbf/xbaseoperations_p.h"

#include "services/recordsource/dbf/internal/dbftable.h"

#include <algorithm>
#include <cmath>

namespace plx::xbase {

namespace {

using Types = QList<Type>;

// ---- type rules ----

template<Type... Wanted> std::optional<Type> returns(Type result, const Types &args)
{
    const Type wanted[] = { Wanted... };
    for (qsizetype i = 0; i < args.size(); ++i) {
        const Type w = wanted[std::min<qsizetype>(i, sizeof...(Wanted) - 1)];
        if (!(args[i] == w || (w == Type::Numeric && isNumber(args[i]))))
            return std::nullopt;
    }
    return result;
}

std::optional<Type> textToText(const Types &a)
{
    return returns<Type::Character>(Type::Character, a);
}
std::optional<Type> textNumbersToText(const Types &a)
{
    return returns<Type::Character, Type::Numeric>(Type::Character, a);
}
std::optional<Type> numbersToText(const Types &a)
{
    return returns<Type::Numeric>(Type::Character, a);
}
std::optional<Type> dateToText(const Types &a)
{
    return returns<Type::Date>(Type::Character, a);
}
std::optional<Type> textToNumber(const Types &a)
{
    return returns<Type::Character>(Type::Numeric, a);
}
std::optional<Type> numbersToNumber(const Types &a)
{
    return returns<Type::Numeric>(Type::Numeric, a);
}
std::optional<Type> logicalsToLogical(const Types &a)
{
    return returns<Type::Logical>(Type::Logical, a);
}
std::optional<Type> noneToLogical(const Types &)
{
    return Type::Logical;
}
std::optional<Type> textsToLogical(const Types &a)
{
    return returns<Type::Character>(Type::Logical, a);
}

std::optional<Type> comparable(const Types &a)
{
    if (a[0] == a[1] || (isNumber(a[0]) && isNumber(a[1])))
        return Type::Logical;
    return std::nullopt;
}

std::optional<Type> plusType(const Types &a)
{
    if (a[0] == Type::Character && a[1] == Type::Character)
        return Type::Character;
    if (a[0] == Type::Date && isNumber(a[1]))
        return Type::Date;
    if (isNumber(a[0]) && a[1] == Type::Date)
        return Type::Date;
    return numbersToNumber(a);
}

std::optional<Type> minusType(const Types &a)
{
    if (a[0] == Type::Date && a[1] == Type::Date)
        return Type::Numeric;
    if (a[0] == Type::Date && isNumber(a[1]))
        return Type::Date;
    if (a[0] == Type::Character && a[1] == Type::Character)
        return Type::Character;
    return numbersToNumber(a);
}

std::optional<Type> iifType(const Types &a)
{
    if (a[0] != Type::Logical)
        return std::nullopt;
    if (a[1] == a[2])
        return a[1];
    if (isNumber(a[1]) && isNumber(a[2]))
        return Type::Numeric;
    return std::nullopt;
}

// ---- text ----

QByteArray mapped(QByteArray s, const char *table)
{
    for (char &c : s)
        c = table[quint8(c)];
    return s;
}

XbaseValue upperOf(const Values &a, const Record &r)
{
    return text(mapped(a[0].text, r.upper));
}

XbaseValue lowerOf(const Values &a, const Record &r)
{
    return text(mapped(a[0].text, r.lower));
}

// A count argument as FoxPro takes it: the integer part, never below zero.
qsizetype count(const XbaseValue &v)
{
    const double n = std::trunc(number(v));
    return n <= 0 ? 0 : qsizetype(std::min(n, 1e9));
}

XbaseValue leftOf(const Values &a, const Record &)
{
    return text(a[0].text.left(count(a[1])));
}

XbaseValue rightOf(const Values &a, const Record &)
{
    return text(a[0].text.right(count(a[1])));
}

XbaseValue substrOf(const Values &a, const Record &)
{
    const qsizetype start = count(a[1]);
    if (start < 1 || start > a[0].text.size())
        return text({});
    return text(a.size() > 2 ? a[0].text.mid(start - 1, count(a[2])) : a[0].text.mid(start - 1));
}

QByteArray trimmed(const QByteArray &s, bool front, bool back)
{
    qsizetype from = 0;
    qsizetype to = s.size();
    while (front && from < to && s[from] == ' ')
        ++from;
    while (back && to > from && s[to - 1] == ' ')
        --to;
    return s.mid(from, to - from);
}

XbaseValue alltrimOf(const Values &a, const Record &)
{
    return text(trimmed(a[0].text, true, true));
}

XbaseValue ltrimOf(const Values &a, const Record &)
{
    return text(trimmed(a[0].text, true, false));
}

XbaseValue rtrimOf(const Values &a, const Record &)
{
    return text(trimmed(a[0].text, false, true));
}

XbaseValue concat(const Values &a, const Record &)
{
    return text(a[0].text + a[1].text);
}

// FoxPro's - of texts: the left side's trailing blanks move to the end of the result.
XbaseValue concatTrimmed(const Values &a, const Record &)
{
    const QByteArray left = trimmed(a[0].text, false, true);
    QByteArray joined = left + a[1].text;
    joined.append(a[0].text.size() - left.size(), ' ');
    return text(joined);
}

XbaseValue plusAny(const Values &a, const Record &r)
{
    return a[0].type == Type::Character ? concat(a, r) : plus(a, r);
}

XbaseValue minusAny(const Values &a, const Record &r)
{
    return a[0].type == Type::Character ? concatTrimmed(a, r) : minus(a, r);
}

const Operation kOperations[] = {
    { "UPPER", 1, 1, textToText, upperOf },
    { "LOWER", 1, 1, textToText, lowerOf },
    { "LEFT", 2, 2, textNumbersToText, leftOf },
    { "RIGHT", 2, 2, textNumbersToText, rightOf },
    { "SUBSTR", 2, 3, textNumbersToText, substrOf },
    { "ALLTRIM", 1, 1, textToText, alltrimOf },
    { "LTRIM", 1, 1, textToText, ltrimOf },
    { "RTRIM", 1, 1, textToText, rtrimOf },
    { "TRIM", 1, 1, textToText, rtrimOf },
    { "STR", 1, 3, numbersToText, strOf },
    { "DTOS", 1, 1, dateToText, dtosOf },
    { "DTOC", 1, 1, dateToText, dtocOf },
    { "VAL", 1, 1, textToNumber, valOf },
    { "IIF", 3, 3, iifType, iifOf },
    { "DELETED", 0, 0, noneToLogical, deletedOf },
    { "+", 2, 2, plusType, plusAny },
    { "-", 2, 2, minusType, minusAny },
    { "*", 2, 2, numbersToNumber, times },
    { "/", 2, 2, numbersToNumber, divided },
    { "U-", 1, 1, numbersToNumber, negated },
    { "=", 2, 2, comparable, equalTo },
    { "==", 2, 2, comparable, exactlyEqualTo },
    { "#", 2, 2, comparable, notEqualTo },
    { "<", 2, 2, comparable, lessThan },
    { ">", 2, 2, comparable, greaterThan },
    { "<=", 2, 2, comparable, atMost },
    { ">=", 2, 2, comparable, atLeast },
    { "$", 2, 2, textsToLogical, containedIn },
    { ".AND.", 2, 2, logicalsToLogical, both },
    { ".OR.", 2, 2, logicalsToLogical, either },
    { ".NOT.", 1, 1, logicalsToLogical, notOf },
};

} // namespace

const Operation *findOperation(QByteArrayView name)
{
    for (const Operation &op : kOperations) {
        const QByteArrayView full(op.name);
        if (full == name)
            return &op;
    }
    // FoxPro reads a function name from its first four letters on.
    if (name.size() < 4)
        return nullptr;
    for (const Operation &op : kOperations) {
        const QByteArrayView full(op.name);
        if (full.size() > name.size() && full.startsWith(name) && full[0] != '.')
            return &op;
    }
    return nullptr;
}

} // namespace plx::xbase
