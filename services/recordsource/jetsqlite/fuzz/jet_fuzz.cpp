// services/recordsource/jetsqlite/fuzz/jet_fuzz.cpp: libFuzzer entry for the Jet dialect.
//
// The input is Jet text (UTF-8). It is parsed as an expression and as a statement, bound
// against a row of three fields, evaluated under both text comparisons, translated to SQLite
// and run there on a one-row table. Any crash, hang, leak or sanitizer report is a bug: text
// the dialect cannot take must give an error, never undefined behaviour.
#include "services/recordsource/jet/internal/evaluator.h"
#include "services/recordsource/jet/internal/parser.h"
#include "services/recordsource/jetsqlite/internal/sqlitetranslate.h"

#include <sqlite3.h>

#include <cstddef>
#include <cstdint>

namespace {

using namespace plx;
using namespace plx::jet;

const QStringList kColumns = { QStringLiteral("ID"), QStringLiteral("NAME"), QStringLiteral("N") };

class FuzzRow final : public Row
{
public:
    QVariant value(int column) const override
    {
        switch (column) {
        case 0: return QStringLiteral("PLE'A|B C");
        case 1: return QStringLiteral("ßchmidt, Ève");
        default: return QVariant();
        }
    }
};

Result<int> resolve(const Node &column)
{
    const qsizetype i = kColumns.indexOf(column.name.toUpper());
    if (i < 0)
        return Status(Status::Code::UnknownField, QStringLiteral("unknown field"));
    return int(i);
}

std::optional<TableColumns> lookup(const QString &name)
{
    if (name.compare(QLatin1String("T"), Qt::CaseInsensitive) != 0)
        return std::nullopt;
    return TableColumns{ QStringLiteral("T"), kColumns };
}

sqlite3 *database()
{
    static sqlite3 *db = [] {
        sqlite3 *d = nullptr;
        sqlite3_open(":memory:", &d);
        (void)registerJetFunctions(d);
        sqlite3_exec(d,
                     "CREATE TABLE T (ID TEXT, NAME TEXT, N NUMERIC);"
                     "INSERT INTO T VALUES ('PLE''A|B C', 'ßchmidt, Ève', NULL);",
                     nullptr, nullptr, nullptr);
        return d;
    }();
    return db;
}

void runOnSqlite(const QString &sql)
{
    sqlite3_stmt *st = nullptr;
    const QByteArray utf8 = sql.toUtf8();
    if (sqlite3_prepare_v2(database(), utf8.constData(), int(utf8.size()), &st, nullptr)
        == SQLITE_OK) {
        for (int rows = 0; rows < 4 && sqlite3_step(st) == SQLITE_ROW; ++rows) { }
    }
    sqlite3_finalize(st);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString text = QString::fromUtf8(reinterpret_cast<const char *>(data), qsizetype(size));
    (void)evaluateStandalone(text);
    Result<NodePtr> tree = parseExpression(text);
    if (tree.isOk() && jet::bind(tree.value(), resolve).isOk()) {
        const FuzzRow row;
        (void)evaluate(*tree.value(), &row, TextCompare::Binary);
        (void)evaluate(*tree.value(), &row, TextCompare::NoCase);
    }
    const QString statements[] = { QStringLiteral("SELECT * FROM T WHERE ") + text, text };
    for (const QString &sql : statements) {
        Result<TranslatedSelect> translated = translateSelect(sql, lookup, TextCompare::Binary);
        if (translated.isOk())
            runOnSqlite(translated->sql);
    }
    return 0;
}
