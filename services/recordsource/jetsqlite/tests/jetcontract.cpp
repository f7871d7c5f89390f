// Both ways of running a Jet expression, for the function library's contract tests.
#include "services/recordsource/jetsqlite/tests/jetcontract.h"

#include "services/recordsource/jet/internal/evaluator.h"
#include "services/recordsource/jet/internal/lexer.h"
#include "services/recordsource/jet/internal/parser.h"
#include "services/recordsource/jet/tests/jettestrows.h"
#include "services/recordsource/jetsqlite/tests/jetsqlitedb.h"
#include "services/recordsource/jet/internal/values.h"

#include <sqlite3.h>

#include <gtest/gtest.h>

namespace plx::jet::testing {

namespace {

struct Rewritten
{
    QString text; // the expression with literals replaced by [A1], [A2], ...
    QVariantList values; // the literals, in column order
};

// Moves every text and number literal of an expression into a column.
Rewritten moveLiteralsToColumns(const QString &expression)
{
    Rewritten out;
    Result<std::vector<Token>> tokens = tokenize(expression);
    EXPECT_TRUE(tokens.isOk()) << expression.toStdString();
    if (!tokens.isOk())
        return { expression, {} };
    const std::vector<Token> &t = tokens.value();
    qsizetype copied = 0;
    for (size_t i = 0; i + 1 < t.size(); ++i) {
        // A Null keyword moves too, except in "Is [Not] Null".
        const bool null = t[i].isWord(QLatin1String("Null"))
            && (i == 0
                || (!t[i - 1].isWord(QLatin1String("Is"))
                    && !t[i - 1].isWord(QLatin1String("Not"))));
        if (t[i].kind != TokenKind::Text && t[i].kind != TokenKind::Number && !null)
            continue;
        const qsizetype start = t[i].pos - 1;
        qsizetype end = t[i + 1].pos - 1;
        if (t[i + 1].kind == TokenKind::End)
            end = expression.size();
        while (end > start && expression.at(end - 1).isSpace())
            --end;
        out.text += expression.mid(copied, start - copied);
        out.values << (null                               ? QVariant()
                           : t[i].kind == TokenKind::Text ? QVariant(t[i].text)
                                                          : QVariant(t[i].number));
        out.text += QStringLiteral("[A%1]").arg(out.values.size());
        copied = end;
    }
    out.text += expression.mid(copied);
    return out;
}

// SQLite keeps dates as ISO text and Booleans as -1/0; read the value back as the type the
// expected text shows, then print it as the shell does.
QString printedFromSqlite(const QVariant &v, const QString &expected)
{
    if (isNull(v))
        return QStringLiteral("Null");
    if (expected.startsWith(QLatin1Char('#')) && isText(v)) {
        const QDateTime dt = parseDateText(v.toString());
        if (dt.isValid())
            return formatValue(dt);
    }
    if ((expected == QLatin1String("True") || expected == QLatin1String("False")) && isNumeric(v)
        && (v.toDouble() == -1 || v.toDouble() == 0))
        return v.toDouble() != 0 ? QStringLiteral("True") : QStringLiteral("False");
    return formatValue(v);
}

} // namespace

void expectBothWays(const std::vector<Case> &cases)
{
    for (const Case &c : cases) {
        const QString expression = QString::fromUtf8(c.expression);
        const QString expected = QString::fromUtf8(c.expected);

        Result<QVariant> ev = evaluateStandalone(expression);
        EXPECT_TRUE(ev.isOk()) << "evaluator: " << c.expression << ": "
                               << ev.status().toString().toStdString();
        if (ev.isOk()) {
            EXPECT_EQ(formatValue(ev.value()).toStdString(), expected.toStdString())
                << "evaluator: " << c.expression;
        }

        const JetSqliteDb db;
        const Rewritten r = moveLiteralsToColumns(expression);
        QStringList cols, marks;
        for (int i = 0; i < r.values.size(); ++i) {
            cols << QStringLiteral("A%1").arg(i + 1);
            marks << QStringLiteral("?");
        }
        if (cols.isEmpty())
            cols << QStringLiteral("A0"), marks << QStringLiteral("NULL");
        db.exec(QStringLiteral("CREATE TABLE V (%1)").arg(cols.join(QStringLiteral(", "))));
        sqlite3_stmt *ins = nullptr;
        sqlite3_prepare_v2(db.handle(),
                           QStringLiteral("INSERT INTO V VALUES (%1)")
                               .arg(marks.join(QStringLiteral(", ")))
                               .toUtf8()
                               .constData(),
                           -1, &ins, nullptr);
        for (int i = 0; i < r.values.size(); ++i) {
            const QVariant &v = r.values[i];
            if (isNull(v)) {
                sqlite3_bind_null(ins, i + 1);
            } else if (isText(v)) {
                const QByteArray u = v.toString().toUtf8();
                sqlite3_bind_text(ins, i + 1, u.constData(), int(u.size()), SQLITE_TRANSIENT);
            } else {
                sqlite3_bind_double(ins, i + 1, v.toDouble());
            }
        }
        EXPECT_EQ(sqlite3_step(ins), SQLITE_DONE);
        sqlite3_finalize(ins);

        Result<TranslatedSelect> t = translateSelect(
            QStringLiteral("SELECT ") + r.text + QStringLiteral(" FROM V"), db.lookup());
        EXPECT_TRUE(t.isOk()) << "SQLite: " << r.text.toStdString() << ": "
                              << t.status().toString().toStdString();
        if (!t.isOk())
            continue;
        Result<QVariant> sv = db.firstValue(t->sql);
        EXPECT_TRUE(sv.isOk()) << "SQLite: " << c.expression << " as " << t->sql.toStdString()
                               << ": " << sv.status().toString().toStdString();
        if (sv.isOk()) {
            EXPECT_EQ(printedFromSqlite(sv.value(), expected).toStdString(), expected.toStdString())
                << "SQLite: " << c.expression << " as " << t->sql.toStdString();
        }
    }
}

void expectErrorBothWays(std::initializer_list<ErrorCase> cases)
{
    const QStringList names = { QStringLiteral("S"), QStringLiteral("N"), QStringLiteral("Z"),
                                QStringLiteral("D") };
    const QVariantList values = { QStringLiteral("Boston"), 12.5, QVariant(),
                                  QDateTime(QDate(2003, 1, 31), QTime(0, 0)) };
    for (const ErrorCase &c : cases) {
        const QString expression = QString::fromUtf8(c.expression);
        const QString mentions = QString::fromUtf8(c.mentions);

        Result<NodePtr> tree = parseExpression(expression);
        Status evalStatus = tree.status();
        if (tree.isOk()) {
            evalStatus = jet::bind(tree.value(), [&](const Node &col) -> Result<int> {
                const qsizetype i = names.indexOf(col.name.toUpper());
                if (i < 0)
                    return Status(Status::Code::UnknownField, col.name);
                return int(i);
            });
            if (evalStatus.isOk()) {
                ListRow row(values);
                Result<QVariant> v = evaluate(*tree.value(), &row, TextCompare::NoCase);
                evalStatus = v.isOk() ? Status::ok() : v.status();
            }
        }
        EXPECT_EQ(evalStatus.code(), c.code)
            << "evaluator: " << c.expression << " gave " << evalStatus.toString().toStdString();
        EXPECT_TRUE(evalStatus.message().contains(mentions))
            << "evaluator: " << c.expression << " gave " << evalStatus.message().toStdString();

        const JetSqliteDb db;
        db.exec(QStringLiteral("CREATE TABLE R (S, N, Z, D);"
                               "INSERT INTO R VALUES ('Boston', 12.5, NULL, '2003-01-31')"));
        // As a criterion, so that positions count from the expression's own start.
        Result<TranslatedSelect> all =
            translateSelect(QStringLiteral("SELECT * FROM R"), db.lookup());
        EXPECT_TRUE(all.isOk());
        if (!all.isOk())
            continue;
        Result<QString> where = translateCriterion(expression, all.value(), db.lookup());
        Status sqliteStatus = where.status();
        if (where.isOk()) {
            Result<QVariant> v =
                db.firstValue(QStringLiteral("SELECT (%1) FROM \"R\"").arg(where.value()));
            sqliteStatus = v.isOk() ? Status::ok() : v.status();
        }
        EXPECT_FALSE(sqliteStatus.isOk()) << "SQLite: " << c.expression;
        EXPECT_TRUE(sqliteStatus.message().contains(mentions))
            << "SQLite: " << c.expression << " gave " << sqliteStatus.message().toStdString();
    }
}

} // namespace plx::jet::testing
