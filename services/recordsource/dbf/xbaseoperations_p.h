// services/recordsource/dbf/xbaseoperations_p.h: values and the arithmetic, date and
// comparison operations that the operation table (xbasefunctions.cpp) refers to.
#pragma once

#include "services/recordsource/dbf/xbasenode_p.h"

namespace plx::xbase {

using Values = QList<XbaseValue>;

inline bool isNumber(Type t)
{
    return t == Type::Numeric || t == Type::Integer;
}

inline double number(const XbaseValue &v)
{
    return v.type == Type::Integer ? double(v.integer) : v.number;
}

inline XbaseValue text(QByteArray bytes)
{
    XbaseValue v;
    v.text = std::move(bytes);
    return v;
}

inline XbaseValue numeric(double n)
{
    XbaseValue v;
    v.type = Type::Numeric;
    v.number = n;
    return v;
}

inline XbaseValue logical(bool b)
{
    XbaseValue v;
    v.type = Type::Logical;
    v.logical = b;
    return v;
}

inline XbaseValue dateValue(const QDate &d)
{
    XbaseValue v;
    v.type = Type::Date;
    v.date = d;
    return v;
}

// Numbers and dates (xbasenumbers.cpp).
XbaseValue strOf(const Values &a, const Record &);
XbaseValue valOf(const Values &a, const Record &);
XbaseValue dtosOf(const Values &a, const Record &);
XbaseValue dtocOf(const Values &a, const Record &);
XbaseValue plus(const Values &a, const Record &);
XbaseValue minus(const Values &a, const Record &);
XbaseValue times(const Values &a, const Record &);
XbaseValue divided(const Values &a, const Record &);
XbaseValue negated(const Values &a, const Record &);

// Comparisons and logic (xbasecompare.cpp).
XbaseValue iifOf(const Values &a, const Record &);
XbaseValue deletedOf(const Values &a, const Record &r);
XbaseValue equalTo(const Values &a, const Record &);
XbaseValue exactlyEqualTo(const Values &a, const Record &);
XbaseValue notEqualTo(const Values &a, const Record &);
XbaseValue lessThan(const Values &a, const Record &);
XbaseValue greaterThan(const Values &a, const Record &);
XbaseValue atMost(const Values &a, const Record &);
XbaseValue atLeast(const Values &a, const Record &);
XbaseValue containedIn(const Values &a, const Record &);
XbaseValue both(const Values &a, const Record &);
XbaseValue either(const Values &a, const Record &);
XbaseValue notOf(const Values &a, const Record &);

} // namespace plx::xbase
