// services/recordsource/jetsqlite/sqlitefunctions.cpp: the SQL functions and the collation that
// translated Jet texts call on a SQLite connection.
//
//   jet_op(code, a, b)             arithmetic, &, Not, Xor, Eqv, Imp with Jet's rules
//   jet_like(value, pattern, mode, negated)   mode 2: UCase(value) Like a prefix pattern
//   jet_concat(a, b, ...)         a & b & ... (a long run of '&' in groups)
//   jet_between(mode, x, a, b, negated)   bounds in either order
//   jet_<name>(mode, args...)     UCase, Left, InStr, Chr, ... (see jet/internal/functions.h)
//   COLLATE JETNOCASE             case-insensitive text order (Unicode case folding)
//   COLLATE JETBINARY             case-sensitive order of the Windows-1252 bytes
//
// Every callback body is inside a catch-all: no C++ exception may unwind into SQLite.
#include "services/recordsource/jetsqlite/internal/sqlitetranslate.h"

#include "services/recordsource/jet/internal/evaluator.h"
#include "services/recordsource/jet/internal/functionlibrary.h"
#include "services/recordsource/jet/internal/functions.h"
#include "services/recordsource/jet/internal/like.h"
#include "services/recordsource/jetsqlite/sqlitelibrary_p.h"
#include "services/recordsource/jetsqlite/sqliteops_p.h"
#include "services/recordsource/jet/internal/values.h"

#include <QVarLengthArray>

#include <sqlite3.h>

#include <algorithm>
#include <cstring>

namespace plx::jet {

namespace {

QVariant fromSqlite(sqlite3_value *v)
{
    switch (sqlite3_value_type(v)) {
    case SQLITE_INTEGER: return QVariant(qlonglong(sqlite3_value_int64(v)));
    case SQLITE_FLOAT: return QVariant(sqlite3_value_double(v));
    case SQLITE_TEXT: {
        QString text = QString::fromUtf8(reinterpret_cast<const char *>(sqlite3_value_text(v)),
                                         sqlite3_value_bytes(v));
        // A date a Jet function returned stays a date for the next one (CStr, &, Format).
        if (sqlite3_value_subtype(v) == kSqliteDateSubtype) {
            const QDateTime dt = parseDateText(text);
            if (dt.isValid())
                return QVariant(dt);
        }
        return QVariant(text);
    }
    case SQLITE_BLOB:
        return QVariant(
            QByteArray(static_cast<const char *>(sqlite3_value_blob(v)), sqlite3_value_bytes(v)));
    default: return QVariant();
    }
}

void toSqlite(sqlite3_context *ctx, const QVariant &v)
{
    if (isNull(v)) {
        sqlite3_result_null(ctx);
    } else if (isBoolean(v)) {
        sqlite3_result_int(ctx, v.toBool() ? -1 : 0);
    } else if (v.typeId() == QMetaType::LongLong || v.typeId() == QMetaType::Int) {
        sqlite3_result_int64(ctx, v.toLongLong());
    } else if (isNumeric(v)) {
        const double d = v.toDouble();
        if (d == double(qint64(d)) && d > -9e15 && d < 9e15)
            sqlite3_result_int64(ctx, qint64(d));
        else
            sqlite3_result_double(ctx, d);
    } else if (isDate(v)) {
        const QDateTime dt = toDateTime(v);
        const QByteArray text =
            (dt.time() == QTime(0, 0) ? dt.date().toString(Qt::ISODate)
                                      : dt.toString(QStringLiteral("yyyy-MM-dd hh:mm:ss")))
                .toUtf8();
        sqlite3_result_text(ctx, text.constData(), int(text.size()), SQLITE_TRANSIENT);
        sqlite3_result_subtype(ctx, kSqliteDateSubtype);
    } else if (v.typeId() == QMetaType::QByteArray) {
        const QByteArray b = v.toByteArray();
        sqlite3_result_blob(ctx, b.constData(), int(b.size()), SQLITE_TRANSIENT);
    } else {
        const QByteArray text = v.toString().toUtf8();
        sqlite3_result_text(ctx, text.constData(), int(text.size()), SQLITE_TRANSIENT);
    }
}

void resultFrom(sqlite3_context *ctx, const Result<QVariant> &r)
{
    if (r.isOk()) {
        toSqlite(ctx, r.value());
        return;
    }
    const QByteArray msg = r.status().message().toUtf8();
    sqlite3_result_error(ctx, msg.constData(), int(msg.size()));
}

TextCompare modeOf(sqlite3_value *v)
{
    return sqlite3_value_int(v) != 0 ? TextCompare::NoCase : TextCompare::Binary;
}

// A row of literals: lets the evaluator's operators run on values SQLite hands over.
Result<QVariant> evaluateOp(Op op, const QVariant &a, const QVariant &b)
{
    auto lit = [](const QVariant &v) {
        auto n = std::make_shared<Node>();
        n->kind = NodeKind::Literal;
        n->value = v;
        return n;
    };
    Node node;
    node.kind = op == Op::Neg || op == Op::Not ? NodeKind::Unary : NodeKind::Binary;
    node.op = op;
    node.args.push_back(lit(a));
    if (node.kind == NodeKind::Binary)
        node.args.push_back(lit(b));
    return evaluate(node, nullptr, TextCompare::NoCase);
}

void jetOp(sqlite3_context *ctx, int argc, sqlite3_value **argv)
{
    try {
        if (argc != 3)
            return sqlite3_result_error(ctx, "jet_op takes 3 arguments", -1);
        const Op op = opOf(static_cast<OpCode>(sqlite3_value_int(argv[0])));
        const QVariant a = fromSqlite(argv[1]);
        const QVariant b = fromSqlite(argv[2]);
        if (op == Op::Concat && isText(a) && isText(b)) {
            // The hot case of '&': two texts.
            const QByteArray joined =
                QByteArray(reinterpret_cast<const char *>(sqlite3_value_text(argv[1])))
                + QByteArray(reinterpret_cast<const char *>(sqlite3_value_text(argv[2])));
            sqlite3_result_text(ctx, joined.constData(), int(joined.size()), SQLITE_TRANSIENT);
            return;
        }
        resultFrom(ctx, evaluateOp(op, a, b));
    } catch (...) {
        sqlite3_result_error(ctx, "internal error in jet_op", -1);
    }
}

// jet_concat(a, b, ...): a & b & ... in one call. The translation groups a long run of '&'
// into calls of a few dozen operands, which keeps SQLite's expression depth and parser stack
// small for any length ('&' gives the same whatever the grouping).
void jetConcat(sqlite3_context *ctx, int argc, sqlite3_value **argv)
{
    try {
        Result<QVariant> acc = argc > 0 ? fromSqlite(argv[0]) : QVariant();
        for (int i = 1; i < argc && acc.isOk(); ++i)
            acc = evaluateOp(Op::Concat, acc.value(), fromSqlite(argv[i]));
        resultFrom(ctx, acc);
    } catch (...) {
        sqlite3_result_error(ctx, "internal error in jet_concat", -1);
    }
}

// Case-insensitive prefix test on UTF-8 bytes for ASCII prefixes: the find query's shape.
bool asciiPrefixMatch(const unsigned char *text, int len, const QByteArray &prefix, bool nocase)
{
    if (len < prefix.size())
        return false;
    for (int i = 0; i < prefix.size(); ++i) {
        unsigned char c = text[i];
        unsigned char p = static_cast<unsigned char>(prefix[i]);
        if (c == p)
            continue;
        if (!nocase || c >= 0x80)
            return false;
        if (c >= 'A' && c <= 'Z')
            c = c - 'A' + 'a';
        if (p >= 'A' && p <= 'Z')
            p = p - 'A' + 'a';
        if (c != p)
            return false;
    }
    return true;
}

struct CompiledLike
{
    LikePattern pattern;
    QByteArray asciiPrefix; // set when the pattern is "ASCII prefix*"
    bool useAsciiPrefix = false;
};

void deleteCompiledLike(void *p)
{
    delete static_cast<CompiledLike *>(p);
}

Result<std::unique_ptr<CompiledLike>> compileLike(const QString &pattern, TextCompare mode)
{
    Result<LikePattern> p = LikePattern::compile(pattern, mode);
    if (!p.isOk())
        return p.status();
    auto compiled = std::make_unique<CompiledLike>(CompiledLike{ p.value(), {}, false });
    if (p->isPrefixPattern()) {
        bool ascii = true;
        for (QChar c : p->prefix())
            ascii = ascii && c.unicode() < 0x80;
        compiled->useAsciiPrefix = ascii;
        compiled->asciiPrefix = p->prefix().toLatin1();
    }
    return compiled;
}

void jetLike(sqlite3_context *ctx, int argc, sqlite3_value **argv)
{
    try {
        if (argc != 4)
            return sqlite3_result_error(ctx, "jet_like takes 4 arguments", -1);
        if (sqlite3_value_type(argv[0]) == SQLITE_NULL
            || sqlite3_value_type(argv[1]) == SQLITE_NULL)
            return sqlite3_result_null(ctx);
        const TextCompare mode = modeOf(argv[2]);
        const bool negated = sqlite3_value_int(argv[3]) != 0;
        // The compiled pattern is kept with the statement while the pattern stays the same
        // (the usual literal pattern); otherwise it is compiled for this row alone.
        std::unique_ptr<CompiledLike> local;
        auto *compiled = static_cast<CompiledLike *>(sqlite3_get_auxdata(ctx, 1));
        if (!compiled) {
            Result<std::unique_ptr<CompiledLike>> fresh =
                compileLike(toText(fromSqlite(argv[1])), mode);
            if (!fresh.isOk()) {
                const QByteArray msg = fresh.status().message().toUtf8();
                return sqlite3_result_error(ctx, msg.constData(), int(msg.size()));
            }
            sqlite3_set_auxdata(ctx, 1, fresh.value().release(), deleteCompiledLike);
            compiled = static_cast<CompiledLike *>(sqlite3_get_auxdata(ctx, 1));
            if (!compiled) {
                fresh = compileLike(toText(fromSqlite(argv[1])), mode);
                local = std::move(fresh.value());
                compiled = local.get();
            }
        }
        bool hit;
        if (compiled->useAsciiPrefix && sqlite3_value_type(argv[0]) == SQLITE_TEXT) {
            const auto *text = sqlite3_value_text(argv[0]);
            const int bytes = sqlite3_value_bytes(argv[0]);
            hit = asciiPrefixMatch(text, bytes, compiled->asciiPrefix, mode == TextCompare::NoCase);
            // Mode 2 stands for UCase(value) Like 'PREFIX*'. Within the prefix's length a
            // character outside ASCII may upper-case to other letters (sharp s to SS, dotless
            // i to I): that value is upper-cased as UCase does and compared whole.
            if (!hit && sqlite3_value_int(argv[2]) == 2
                && std::any_of(text,
                               text + std::min<qsizetype>(bytes, compiled->asciiPrefix.size()),
                               [](unsigned char c) { return c >= 0x80; }))
                hit = compiled->pattern.matches(toText(fromSqlite(argv[0])).toUpper());
        } else {
            hit = compiled->pattern.matches(toText(fromSqlite(argv[0])));
        }
        sqlite3_result_int(ctx, hit != negated ? -1 : 0);
    } catch (...) {
        sqlite3_result_error(ctx, "internal error in jet_like", -1);
    }
}

void jetBetween(sqlite3_context *ctx, int argc, sqlite3_value **argv)
{
    try {
        if (argc != 5)
            return sqlite3_result_error(ctx, "jet_between takes 5 arguments", -1);
        QVariant v[3] = { fromSqlite(argv[1]), fromSqlite(argv[2]), fromSqlite(argv[3]) };
        auto lit = [](const QVariant &x) {
            auto n = std::make_shared<Node>();
            n->value = x;
            return n;
        };
        Node node;
        node.kind = NodeKind::Between;
        node.negated = sqlite3_value_int(argv[4]) != 0;
        node.args = { lit(v[0]), lit(v[1]), lit(v[2]) };
        resultFrom(ctx, evaluate(node, nullptr, modeOf(argv[0])));
    } catch (...) {
        sqlite3_result_error(ctx, "internal error in jet_between", -1);
    }
}

void jetFunction(sqlite3_context *ctx, int argc, sqlite3_value **argv)
{
    try {
        const auto *def = static_cast<const FunctionDef *>(sqlite3_user_data(ctx));
        const int n = argc - 1;
        if (argc < 1 || n < def->minArgs || n > def->maxArgs)
            return sqlite3_result_error(ctx, "wrong number of arguments", -1);
        // UCase of plain ASCII text: the find query runs it on every row.
        if ((std::strcmp(def->name, "UCASE") == 0 || std::strcmp(def->name, "UCASE$") == 0)
            && sqlite3_value_type(argv[1]) == SQLITE_TEXT) {
            const unsigned char *t = sqlite3_value_text(argv[1]);
            const int len = sqlite3_value_bytes(argv[1]);
            bool ascii = true;
            for (int i = 0; i < len && ascii; ++i)
                ascii = t[i] < 0x80;
            if (ascii) {
                char *out = static_cast<char *>(sqlite3_malloc(len + 1));
                if (!out)
                    return sqlite3_result_error_nomem(ctx);
                for (int i = 0; i < len; ++i)
                    out[i] = (t[i] >= 'a' && t[i] <= 'z') ? char(t[i] - 'a' + 'A') : char(t[i]);
                out[len] = 0;
                return sqlite3_result_text(ctx, out, len, sqlite3_free);
            }
        }
        QVarLengthArray<QVariant, 4> args(n); // Choose and Switch take long lists
        for (int i = 0; i < n; ++i)
            args[i] = fromSqlite(argv[i + 1]);
        // The first argument is the compare mode in bit 0 and the call's position above it.
        const int tag = sqlite3_value_int(argv[0]);
        resultFrom(ctx,
                   callFunction(*def, args.data(), n,
                                (tag & 1) ? TextCompare::NoCase : TextCompare::Binary, tag >> 1));
    } catch (...) {
        sqlite3_result_error(ctx, "internal error in a Jet function", -1);
    }
}

// The General order (case-insensitive, accented letters beside their base letters): ASCII
// folded byte by byte, anything else through the evaluator's comparison, so that the two
// agree.
int jetNoCase(void *, int n1, const void *p1, int n2, const void *p2)
{
    try {
        const auto *a = static_cast<const unsigned char *>(p1);
        const auto *b = static_cast<const unsigned char *>(p2);
        const int n = std::min(n1, n2);
        for (int i = 0; i < n; ++i) {
            unsigned char x = a[i], y = b[i];
            if (x >= 0x80 || y >= 0x80)
                return compareText(QString::fromUtf8(reinterpret_cast<const char *>(a), n1),
                                   QString::fromUtf8(reinterpret_cast<const char *>(b), n2),
                                   TextCompare::NoCase);
            if (x >= 'A' && x <= 'Z')
                x = x - 'A' + 'a';
            if (y >= 'A' && y <= 'Z')
                y = y - 'A' + 'a';
            if (x != y)
                return x < y ? -1 : 1;
        }
        return n1 < n2 ? -1 : (n1 > n2 ? 1 : 0);
    } catch (...) {
        return 0;
    }
}

// Binary order as the evaluator's: ASCII bytes compare directly (UTF-8 keeps their order),
// anything else is ranked by its Windows-1252 byte.
int jetBinary(void *, int n1, const void *p1, int n2, const void *p2)
{
    try {
        const auto *a = static_cast<const unsigned char *>(p1);
        const auto *b = static_cast<const unsigned char *>(p2);
        const int n = std::min(n1, n2);
        for (int i = 0; i < n; ++i) {
            const unsigned char x = a[i], y = b[i];
            if (x == y)
                continue;
            if (x >= 0x80 || y >= 0x80)
                return compareText(QString::fromUtf8(reinterpret_cast<const char *>(a), n1),
                                   QString::fromUtf8(reinterpret_cast<const char *>(b), n2),
                                   TextCompare::Binary);
            return x < y ? -1 : 1;
        }
        return n1 < n2 ? -1 : (n1 > n2 ? 1 : 0);
    } catch (...) {
        return 0;
    }
}

const char *const kFunctionNames[] = { "UCASE", "UCASE$", "LCASE", "LCASE$", "LEFT", "LEFT$",
                                       "RIGHT", "RIGHT$", "MID",   "MID$",   "LEN",  "TRIM",
                                       "TRIM$", "LTRIM",  "RTRIM", "INSTR",  "CHR",  "CHR$",
                                       "CHRW",  "ASC",    "VAL",   "STR",    "STR$", "CSTR",
                                       "CLNG",  "CINT",   "CDBL",  "DATE",   "NOW",  "YEAR",
                                       "MONTH", "DAY" };

} // namespace

void callGenericJetFunction(sqlite3_context *ctx, int argc, sqlite3_value **argv)
{
    jetFunction(ctx, argc, argv);
}

Status registerJetFunctions(sqlite3 *db)
{
    const int det = SQLITE_UTF8 | SQLITE_DETERMINISTIC | kSqliteSubtypeFlags;
    int rc =
        sqlite3_create_function_v2(db, "jet_op", 3, det, nullptr, jetOp, nullptr, nullptr, nullptr);
    if (rc == SQLITE_OK)
        rc = sqlite3_create_function_v2(db, "jet_like", 4, det, nullptr, jetLike, nullptr, nullptr,
                                        nullptr);
    if (rc == SQLITE_OK)
        rc = sqlite3_create_function_v2(db, "jet_concat", -1, det, nullptr, jetConcat, nullptr,
                                        nullptr, nullptr);
    if (rc == SQLITE_OK)
        rc = sqlite3_create_function_v2(db, "jet_between", 5, det, nullptr, jetBetween, nullptr,
                                        nullptr, nullptr);
    for (const char *name : kFunctionNames) {
        if (rc != SQLITE_OK)
            break;
        const FunctionDef *def = findFunction(QLatin1String(name));
        const bool volatileFn = std::strcmp(name, "DATE") == 0 || std::strcmp(name, "NOW") == 0;
        const QByteArray sqlName = sqliteFunctionName(QLatin1String(name)).toUtf8();
        rc = sqlite3_create_function_v2(
            db, sqlName.constData(), -1, volatileFn ? SQLITE_UTF8 | kSqliteSubtypeFlags : det,
            const_cast<FunctionDef *>(def), jetFunction, nullptr, nullptr, nullptr);
    }
    for (const FunctionDef *def : libraryFunctions()) {
        if (rc != SQLITE_OK)
            break;
        const QString name = QLatin1String(def->name);
        const QByteArray sqlName = sqliteFunctionName(name).toUtf8();
        rc = sqlite3_create_function_v2(
            db, sqlName.constData(), -1,
            isClockFunction(name) ? SQLITE_UTF8 | kSqliteSubtypeFlags : det,
            const_cast<FunctionDef *>(def), jetFunction, nullptr, nullptr, nullptr);
    }
    if (rc == SQLITE_OK)
        rc = registerFastLibraryFunctions(db);
    if (rc == SQLITE_OK)
        rc = sqlite3_create_collation_v2(db, "JETNOCASE", SQLITE_UTF8, nullptr, jetNoCase, nullptr);
    if (rc == SQLITE_OK)
        rc = sqlite3_create_collation_v2(db, "JETBINARY", SQLITE_UTF8, nullptr, jetBinary, nullptr);
    if (rc != SQLITE_OK)
        return Status(Status::Code::Engine, QStringLiteral("cannot register the Jet SQL functions"),
                      rc, QString::fromUtf8(sqlite3_errmsg(db)));
    return Status::ok();
}

} // namespace plx::jet
