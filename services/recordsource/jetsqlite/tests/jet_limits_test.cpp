// services/recordsource/jetsqlite/tests/jet_limits_test.cpp: no text crashes the dialect. Nesting
// is refused past its limit with an error naming the limit and the position, at the parser,
// the binder, the evaluator and the SQLite translation; chains of 100,000 terms of one
// operator are built, evaluated and run on SQLite.
#include "services/recordsource/jet/internal/evaluator.h"
#include "services/recordsource/jet/internal/parser.h"
#include "services/recordsource/jetsqlite/internal/sqlitetranslate.h"

#include <QThread>

#include <sqlite3.h>

#include <gtest/gtest.h>

using namespace plx;
using namespace plx::jet;

namespace {

QString repeated(const char *piece, int n)
{
    return QString::fromLatin1(piece).repeated(n);
}

QString joined(const char *term, const char *op, int n)
{
    QStringList terms;
    for (int i = 0; i < n; ++i)
        terms << QString::fromLatin1(term);
    return terms.join(QString::fromLatin1(op));
}

// The ways of nesting one level deeper, each wrapped `n` times round "1".
QString nested(int kind, int n)
{
    switch (kind) {
    case 0: return repeated("(", n) + QStringLiteral("1") + repeated(")", n);
    case 1: return repeated("UCase(", n) + QStringLiteral("'a'") + repeated(")", n);
    case 2: return repeated("IIF(True, ", n) + QStringLiteral("1") + repeated(", 0)", n);
    case 3: return repeated("1 + (", n) + QStringLiteral("1") + repeated(")", n);
    default: return QStringLiteral("'a'") + repeated(" Like 'a'", n);
    }
}

Result<QString> translateWhere(const QString &where)
{
    const TableLookup lookup = [](const QString &name) -> std::optional<TableColumns> {
        if (name.compare(QLatin1String("T"), Qt::CaseInsensitive) != 0)
            return std::nullopt;
        return TableColumns{ QStringLiteral("T"), { QStringLiteral("NAME") } };
    };
    Result<TranslatedSelect> t =
        translateSelect(QStringLiteral("SELECT * FROM T WHERE ") + where, lookup);
    if (!t.isOk())
        return t.status();
    return t->sql;
}

// Runs translated SQL on an in-memory table T(NAME) holding 'x' and returns the rows' count,
// or SQLite's error.
Result<int> runOnSqlite(const QString &sql)
{
    sqlite3 *db = nullptr;
    sqlite3_open(":memory:", &db);
    (void)registerJetFunctions(db);
    sqlite3_exec(db, "CREATE TABLE T (NAME TEXT); INSERT INTO T VALUES ('x');", nullptr, nullptr,
                 nullptr);
    sqlite3_stmt *st = nullptr;
    const QByteArray utf8 = sql.toUtf8();
    int rows = 0;
    int rc = sqlite3_prepare_v2(db, utf8.constData(), int(utf8.size()), &st, nullptr);
    if (rc == SQLITE_OK) {
        while ((rc = sqlite3_step(st)) == SQLITE_ROW)
            ++rows;
    }
    const QString error = QString::fromUtf8(sqlite3_errmsg(db));
    sqlite3_finalize(st);
    sqlite3_close(db);
    if (rc != SQLITE_DONE)
        return Status(Status::Code::IoError, error);
    return rows;
}

} // namespace

TEST(JetLimits, NestingUpToTheLimitWorksAndBeyondItIsRefusedWithDepthAndPosition)
{
    for (int kind = 0; kind < 5; ++kind) {
        SCOPED_TRACE(kind);
        // Below and at the limit: parsed, bound and evaluated.
        for (int n : { 10, kMaxExpressionDepth - 2 }) {
            Result<QVariant> v = evaluateStandalone(nested(kind, n));
            EXPECT_TRUE(v.isOk()) << n << ": " << v.status().toString().toStdString();
        }
        // Above it: a syntax error naming the limit and where the text went too deep.
        for (int n : { kMaxExpressionDepth + 1, 5000, 200000 }) {
            Result<NodePtr> tree = parseExpression(nested(kind, n));
            ASSERT_FALSE(tree.isOk()) << n;
            EXPECT_EQ(tree.status().code(), Status::Code::Syntax);
            EXPECT_TRUE(tree.status().message().contains(
                QStringLiteral("nested deeper than %1 levels at position ")
                    .arg(kMaxExpressionDepth)))
                << tree.status().message().toStdString();
        }
    }
    // The position is that of the token where the limit is crossed.
    Result<NodePtr> parens = parseExpression(nested(0, 500));
    EXPECT_EQ(parens.status().message(),
              QStringLiteral("expression nested deeper than 100 levels at position 101"));
    // The same limit holds in every clause of a statement.
    EXPECT_EQ(
        parseSelect(QStringLiteral("SELECT * FROM T ORDER BY ") + nested(1, 300)).status().code(),
        Status::Code::Syntax);
    EXPECT_TRUE(parseSelect(QStringLiteral("SELECT * FROM T WHERE ") + nested(3, 50)).isOk());
}

TEST(JetLimits, TreesBuiltByHandAreBoundedByTheBinderAndTheEvaluator)
{
    // A tree too deep for the parser to make: UCase(UCase(...)) 5,000 deep.
    auto deep = std::make_shared<Node>();
    deep->kind = NodeKind::Literal;
    deep->value = QStringLiteral("a");
    for (int i = 0; i < 5000; ++i) {
        auto call = std::make_shared<Node>();
        call->kind = NodeKind::Call;
        call->name = QStringLiteral("UCASE");
        call->pos = i + 1;
        call->args = { deep };
        deep = call;
    }
    Status bound = jet::bind(deep, [](const Node &) -> Result<int> { return 0; });
    EXPECT_EQ(bound.code(), Status::Code::Syntax);
    EXPECT_TRUE(bound.message().contains(QStringLiteral("nested deeper than 100 levels")));
    Result<QVariant> v = evaluate(*deep, nullptr, TextCompare::Binary);
    ASSERT_FALSE(v.isOk());
    EXPECT_TRUE(v.status().message().contains(QStringLiteral("nested deeper than 100 levels")));
}

TEST(JetLimits, ChainsOfOneHundredThousandTermsAreEvaluated)
{
    constexpr int n = 100000;
    struct Case
    {
        QString text;
        QString value; // as plxsql --eval prints it
    };
    const Case cases[] = {
        { joined("'ab'", " & ", n), QLatin1Char('"') + repeated("ab", n) + QLatin1Char('"') },
        { joined("1", " + ", n), QStringLiteral("100000") },
        { joined("'a'", " + ", n), QLatin1Char('"') + repeated("a", n) + QLatin1Char('"') },
        { joined("1", " - ", n), QStringLiteral("-99998") },
        { joined("True", " And ", n), QStringLiteral("True") },
        { joined("False", " Or ", n) + QStringLiteral(" Or True"), QStringLiteral("True") },
        { joined("1 = 2", " Or ", n), QStringLiteral("False") },
        { repeated("Not ", n) + QStringLiteral("True"), QStringLiteral("True") },
        { repeated("Not ", n + 1) + QStringLiteral("True"), QStringLiteral("False") },
        { repeated("-", n + 1) + QStringLiteral("5"), QStringLiteral("-5") },
        { repeated("- ", n) + QStringLiteral("5"), QStringLiteral("5") },
        { joined("Chr(124)", " & ", n), QLatin1Char('"') + repeated("|", n) + QLatin1Char('"') },
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.text.left(60).toStdString());
        Result<QVariant> v = evaluateStandalone(c.text);
        ASSERT_TRUE(v.isOk()) << v.status().toString().toStdString();
        EXPECT_EQ(formatValue(v.value()), c.value);
    }
    // Bound against a row: the chain is evaluated per row without recursion too.
    Result<NodePtr> tree = parseExpression(joined("[NAME]", " & ", n));
    ASSERT_TRUE(tree.isOk());
    ASSERT_TRUE(jet::bind(tree.value(), [](const Node &) -> Result<int> { return 0; }).isOk());
    struct OneRow : Row
    {
        QVariant value(int) const override { return QStringLiteral("xy"); }
    } row;
    Result<QVariant> v = evaluate(*tree.value(), &row, TextCompare::Binary);
    ASSERT_TRUE(v.isOk());
    EXPECT_EQ(v.value().toString(), repeated("xy", n));
}

TEST(JetLimits, LongChainsRunOnSqlite)
{
    constexpr int n = 100000;
    // A constant chain becomes one literal; a chain over a field is emitted balanced, well
    // inside SQLite's own depth limit of 1,000.
    const QString cases[] = {
        QStringLiteral("[NAME] & ") + joined("'|'", " & ", n) + QStringLiteral(" Like 'x|*'"),
        QStringLiteral("[NAME] & ") + joined("chr(124)", " & ", n)
            + QStringLiteral(" Like 'x' & chr(124) & '*'"),
        joined("[NAME] = 'x'", " And ", n),
        joined("[NAME] = 'y'", " Or ", n) + QStringLiteral(" Or [NAME] = 'x'"),
        repeated("Not ", n) + QStringLiteral("[NAME] = 'x'"),
        repeated("- ", n) + QStringLiteral("Len([NAME]) = 1"),
    };
    for (const QString &where : cases) {
        SCOPED_TRACE(where.left(60).toStdString());
        Result<QString> sql = translateWhere(where);
        ASSERT_TRUE(sql.isOk()) << sql.status().toString().left(300).toStdString();
        Result<int> rows = runOnSqlite(sql.value());
        ASSERT_TRUE(rows.isOk()) << rows.status().message().left(300).toStdString();
        EXPECT_EQ(rows.value(), 1);
    }
    // A chain whose grouping matters keeps Jet's; past SQLite's depth SQLite refuses it
    // with its own error, nothing crashes.
    Result<QString> sub =
        translateWhere(joined("Len([NAME])", " - ", 5000) + QStringLiteral(" = 0"));
    ASSERT_TRUE(sub.isOk());
    Result<int> refused = runOnSqlite(sub.value());
    EXPECT_FALSE(refused.isOk());
    // And a deep criterion is refused by the translation itself.
    EXPECT_EQ(translateWhere(nested(1, 400) + QStringLiteral(" = [NAME]")).status().code(),
              Status::Code::Syntax);
}

TEST(JetLimits, NestingAtTheLimitFitsTheSmallestMainThreadStack)
{
    // Windows gives its main thread 1 MB of stack: the deepest text the parser takes must
    // parse, bind, evaluate and translate within it.
    bool done = false;
    QThread *t = QThread::create([&done] {
        done = true;
        for (int kind = 0; kind < 5; ++kind) {
            const QString text = nested(kind, kMaxExpressionDepth - 2);
            done = done && evaluateStandalone(text).isOk()
                && translateWhere(text + QStringLiteral(" = [NAME]")).isOk();
        }
    });
    t->setStackSize(1024 * 1024);
    t->start();
    t->wait();
    delete t;
    EXPECT_TRUE(done);
}
