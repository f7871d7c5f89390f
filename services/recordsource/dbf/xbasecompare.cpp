// services/recordsource/dbf/xbasecompare.cpp: comparisons, logic, IIF and DELETED() in index
// expressions.
#include "services/recordsource/dbf/xbaseoperations_p.h"

#include "services/recordsource/dbf/internal/dbftable.h"

namespace plx::xbase {

namespace {

// <0, 0, >0. Texts compare bytewise (collation "MACHINE") as far as the right side goes,
// the left padded with blanks if shorter, as FoxPro does under SET EXACT OFF: "abc" = "ab".
int compare(const XbaseValue &l, const XbaseValue &r)
{
    switch (l.type) {
    case Type::Character: {
        QByteArray left = l.text.left(r.text.size());
        left.append(r.text.size() - left.size(), ' ');
        return left.compare(r.text);
    }
    case Type::Date: {
        const qint64 a = l.date.isValid() ? l.date.toJulianDay() : 0;
        const qint64 b = r.date.isValid() ? r.date.toJulianDay() : 0;
        return a < b ? -1 : (a > b ? 1 : 0);
    }
    case Type::Logical: return int(l.logical) - int(r.logical);
    case Type::Numeric:
    case Type::Integer: break;
    }
    const double a = number(l);
    const double b = number(r);
    return a < b ? -1 : (a > b ? 1 : 0);
}

} // namespace

XbaseValue iifOf(const Values &a, const Record &)
{
    const XbaseValue &chosen = a[0].logical ? a[1] : a[2];
    if (a[1].type != a[2].type) // an integer branch beside a numeric one
        return numeric(number(chosen));
    return chosen;
}

XbaseValue deletedOf(const Values &, const Record &r)
{
    return logical(r.table->isDeleted(r.recno));
}

XbaseValue equalTo(const Values &a, const Record &)
{
    return logical(compare(a[0], a[1]) == 0);
}

// == compares texts whole: trailing blanks count.
XbaseValue exactlyEqualTo(const Values &a, const Record &)
{
    if (a[0].type == Type::Character)
        return logical(a[0].text == a[1].text);
    return logical(compare(a[0], a[1]) == 0);
}

XbaseValue notEqualTo(const Values &a, const Record &)
{
    return logical(compare(a[0], a[1]) != 0);
}

XbaseValue lessThan(const Values &a, const Record &)
{
    return logical(compare(a[0], a[1]) < 0);
}

XbaseValue greaterThan(const Values &a, const Record &)
{
    return logical(compare(a[0], a[1]) > 0);
}

XbaseValue atMost(const Values &a, const Record &)
{
    return logical(compare(a[0], a[1]) <= 0);
}

XbaseValue atLeast(const Values &a, const Record &)
{
    return logical(compare(a[0], a[1]) >= 0);
}

XbaseValue containedIn(const Values &a, const Record &)
{
    return logical(a[1].text.contains(a[0].text));
}

XbaseValue both(const Values &a, const Record &)
{
    return logical(a[0].logical && a[1].logical);
}

XbaseValue either(const Values &a, const Record &)
{
    return logical(a[0].logical || a[1].logical);
}

XbaseValue notOf(const Values &a, const Record &)
{
    return logical(!a[0].logical);
}

} // namespace plx::xbase
