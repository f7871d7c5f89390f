// services/recordsource/jetsqlite/sqlitelibrary.cpp: library functions that SQLite runs with its
// own operations or with a direct binding. The generic binding converts every value to a
// QVariant and back; for Nz, which only chooses one of its arguments, and for DatePart on
// a stored date, that costs more than the filter around it.
#include "services/recordsource/jetsqlite/sqlitelibrary_p.h"

#include "services/recordsource/jet/internal/functionlibrary.h"

#include <QDate>

#include <sqlite3.h>

#include <cstring>

namespace plx::jet {

const int kSqliteSubtypeFlags = SQLITE_SUBTYPE
#ifdef SQLITE_RESULT_SUBTYPE
    | SQLITE_RESULT_SUBTYPE
#endif
    ;

namespace {

// The intervals DatePart reads straight from a stored date; 0 for any other text.
enum FastInterval {
    Other,
    Year,
    Quarter,
    Month,
    DayOfYear,
    Day,
    Weekday,
    Week,
    Hour,
    Minute,
    Second
};

int intervalCode(const unsigned char *text, int len)
{
    while (len > 0 && *text == ' ')
        ++text, --len;
    while (len > 0 && text[len - 1] == ' ')
        --len;
    static const struct
    {
        const char *code;
        int interval;
    } codes[] = { { "yyyy", Year }, { "q", Quarter }, { "m", Month }, { "y", DayOfYear },
                  { "d", Day },     { "w", Weekday }, { "ww", Week }, { "h", Hour },
                  { "n", Minute },  { "s", Second } };
    for (const auto &c : codes) {
        if (int(std::strlen(c.code)) != len)
            continue;
        bool same = true;
        for (int i = 0; i < len && same; ++i)
            same = (text[i] | 0x20) == static_cast<unsigned char>(c.code[i]);
        if (same)
            return c.interval;
    }
    return Other;
}

// 'YYYY-MM-DD' or 'YYYY-MM-DD hh:mm:ss' as SQLite stores dates; false for anything else.
bool storedDate(const unsigned char *t, int len, int v[6])
{
    if (len != 10 && len != 19)
        return false;
    auto num = [t](int from, int count) {
        int n = 0;
        for (int i = from; i < from + count; ++i) {
            if (t[i] < '0' || t[i] > '9')
                return -1;
            n = n * 10 + (t[i] - '0');
        }
        return n;
    };
    if (t[4] != '-' || t[7] != '-')
        return false;
    v[0] = num(0, 4), v[1] = num(5, 2), v[2] = num(8, 2), v[3] = v[4] = v[5] = 0;
    if (len == 19) {
        if ((t[10] != ' ' && t[10] != 'T') || t[13] != ':' || t[16] != ':')
            return false;
        v[3] = num(11, 2), v[4] = num(14, 2), v[5] = num(17, 2);
    }
    for (int i = 0; i < 6; ++i) {
        if (v[i] < 0)
            return false;
    }
    return v[1] >= 1 && v[1] <= 12 && v[2] >= 1 && v[2] <= 31 && v[3] < 24 && v[4] < 60
        && v[5] < 60;
}

void deleteInterval(void *p)
{
    delete static_cast<int *>(p);
}

// jet_datepart(tag, interval, date): the two-argument form on a stored date, with the
// interval read once per statement; every other call goes through the generic binding,
// which gives the same values and the same errors.
void jetDatePart(sqlite3_context *ctx, int argc, sqlite3_value **argv)
{
    try {
        if (argc == 3 && sqlite3_value_type(argv[1]) == SQLITE_TEXT
            && sqlite3_value_type(argv[2]) == SQLITE_TEXT) {
            int interval = Other;
            if (const auto *cached = static_cast<int *>(sqlite3_get_auxdata(ctx, 1))) {
                interval = *cached;
            } else {
                interval = intervalCode(sqlite3_value_text(argv[1]), sqlite3_value_bytes(argv[1]));
                sqlite3_set_auxdata(ctx, 1, new int(interval), deleteInterval);
            }
            int v[6];
            if (interval != Other && interval != Week
                && storedDate(sqlite3_value_text(argv[2]), sqlite3_value_bytes(argv[2]), v)) {
                const QDate d(v[0], v[1], v[2]);
                if (d.isValid()) {
                    int r = 0;
                    switch (interval) {
                    case Year: r = v[0]; break;
                    case Quarter: r = (v[1] - 1) / 3 + 1; break;
                    case Month: r = v[1]; break;
                    case DayOfYear: r = d.dayOfYear(); break;
                    case Day: r = v[2]; break;
                    case Weekday: r = d.dayOfWeek() % 7 + 1; break; // Sunday first, the default
                    case Hour: r = v[3]; break;
                    case Minute: r = v[4]; break;
                    case Second: r = v[5]; break;
                    default: break;
                    }
                    return sqlite3_result_int(ctx, r);
                }
            }
        }
        callGenericJetFunction(ctx, argc, argv);
    } catch (...) {
        sqlite3_result_error(ctx, "internal error in DatePart", -1);
    }
}

} // namespace

int registerFastLibraryFunctions(sqlite3 *db)
{
    const FunctionDef *datePart = findLibraryFunction(QStringLiteral("DATEPART"));
    return sqlite3_create_function_v2(
        db, "jet_datepart", -1, SQLITE_UTF8 | SQLITE_DETERMINISTIC | kSqliteSubtypeFlags,
        const_cast<FunctionDef *>(datePart), jetDatePart, nullptr, nullptr, nullptr);
}

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
