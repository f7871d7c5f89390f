// services/recordsource/jet/sqlitelibrary.cpp: library functions that SQLite runs with its
// own operations instead of a registered function. A registered function converts every
// value to a QVariant and back; for Nz, which only chooses one of its arguments, that
// would cost more than the filter around it.
#include "services/recordsource/jet/functionlibrary.h"

namespace plx::jet {

Result<QString> translateNz(const Node &call,
                            const std::function<Result<QString>(const Node &)> &sub)
{
    Result<QString> value = sub(*call.args[0]);
    if (!value.isOk())
        return value;
    QString ifNull = QStringLiteral("''"); // in a query a Null without it becomes ""
    if (call.args.size() > 1) {
        Result<QString> second = sub(*call.args[1]);
        if (!second.isOk())
            return second;
        ifNull = second.value();
    }
    return QStringLiteral("COALESCE(%1, %2)").arg(value.value(), ifNull);
}

} // namespace plx::jet
