// services/recordsource/jetsqlite/sqlitetranslate.cpp: assembles a translated SELECT: resolves
// the tables against the database, expands * and T.*, and emits the FROM, WHERE and
// ORDER BY parts the SQLite back end builds its keyset and record queries from.
#include "services/recordsource/jetsqlite/internal/sqlitetranslate.h"

#include "services/recordsource/jet/internal/parser.h"
#include "services/recordsource/jetsqlite/sqlitetranslator_p.h"

namespace plx::jet {

using detail::quoteName;
using detail::Source;
using detail::Translator;

namespace {

Result<std::vector<Source>> resolveSources(const SelectStatement &stmt, const TableLookup &tables)
{
    std::vector<Source> sources;
    auto add = [&](const TableRef &ref) -> Status {
        std::optional<TableColumns> t = tables(ref.name);
        if (!t)
            return Status(
                Status::Code::UnknownField,
                QStringLiteral("unknown table '%1' at position %2").arg(ref.name).arg(ref.pos));
        sources.push_back(Source{ ref.alias.isEmpty() ? t->table : ref.alias, *t });
        return Status::ok();
    };
    if (Status s = add(stmt.from); !s.isOk())
        return s;
    for (const Join &j : stmt.joins) {
        if (Status s = add(j.table); !s.isOk())
            return s;
    }
    return sources;
}

QString fromText(const SelectStatement &stmt, const std::vector<Source> &sources,
                 const std::vector<QString> &joinConditions)
{
    auto ref = [](const Source &s) {
        return quoteName(s.table.table) + QStringLiteral(" AS ") + quoteName(s.alias);
    };
    QString from = QStringLiteral("FROM ") + ref(sources[0]);
    for (size_t i = 0; i < stmt.joins.size(); ++i) {
        static const char *const kinds[] = { " INNER JOIN ", " LEFT JOIN ", " RIGHT JOIN " };
        from += QLatin1String(kinds[int(stmt.joins[i].kind)]) + ref(sources[i + 1])
            + QStringLiteral(" ON ") + joinConditions[i];
    }
    return from;
}

// The output columns: every column of every table for '*' (a name that two tables share
// is called "T.F", as DAO names the fields of a join), the items otherwise.
Status selectItems(const SelectStatement &stmt, Translator &tr, TranslatedSelect &out)
{
    QStringList exprs;
    auto addColumn = [&](const Source &s, const QString &col, bool qualify) {
        const QString name = qualify ? s.alias + QLatin1Char('.') + col : col;
        QString e = quoteName(s.alias) + QLatin1Char('.') + quoteName(col);
        if (name != col)
            e += QStringLiteral(" AS ") + quoteName(name);
        exprs << e;
        out.outputNames << name;
    };
    auto shared = [&](const QString &col) {
        int seen = 0;
        for (const Source &s : tr.sources())
            for (const QString &c : s.table.columns)
                seen += c.compare(col, Qt::CaseInsensitive) == 0 ? 1 : 0;
        return seen > 1;
    };
    if (stmt.star) {
        for (const Source &s : tr.sources())
            for (const QString &c : s.table.columns)
                addColumn(s, c, shared(c));
        out.selectList = exprs.join(QStringLiteral(", "));
        return Status::ok();
    }
    int unnamed = 1000;
    for (const SelectItem &item : stmt.items) {
        if (!item.expr) {
            bool found = false;
            for (const Source &s : tr.sources()) {
                if (s.alias.compare(item.starTable, Qt::CaseInsensitive) == 0
                    || s.table.table.compare(item.starTable, Qt::CaseInsensitive) == 0) {
                    for (const QString &c : s.table.columns)
                        addColumn(s, c, shared(c));
                    found = true;
                    break;
                }
            }
            if (!found)
                return Status(Status::Code::UnknownField,
                              QStringLiteral("unknown table '%1' in %1.*").arg(item.starTable));
            continue;
        }
        QString natural;
        Result<QString> e = item.expr->kind == NodeKind::Column ? tr.column(*item.expr, &natural)
                                                                : tr.expr(*item.expr);
        if (!e.isOk())
            return e.status();
        const QString name = !item.alias.isEmpty() ? item.alias
            : !natural.isEmpty()                   ? natural
                                                   : QStringLiteral("Expr%1").arg(unnamed++);
        exprs << e.value() + QStringLiteral(" AS ") + quoteName(name);
        out.outputNames << name;
    }
    out.selectList = exprs.join(QStringLiteral(", "));
    return Status::ok();
}

} // namespace

Result<TranslatedSelect> translateSelect(const QString &jetSql, const TableLookup &tables,
                                         TextCompare compare)
{
    Result<SelectStatement> parsed = parseSelect(jetSql);
    if (!parsed.isOk())
        return parsed.status();
    return translateSelect(parsed.value(), tables, compare);
}

Result<TranslatedSelect> translateSelect(const SelectStatement &stmt, const TableLookup &tables,
                                         TextCompare compare)
{
    Result<std::vector<Source>> sources = resolveSources(stmt, tables);
    if (!sources.isOk())
        return sources.status();
    Translator tr(sources.value(), compare);
    TranslatedSelect out;
    if (Status s = selectItems(stmt, tr, out); !s.isOk())
        return s;
    std::vector<QString> joinConditions;
    for (const Join &j : stmt.joins) {
        Result<QString> on = tr.condition(*j.on);
        if (!on.isOk())
            return on.status();
        joinConditions.push_back(on.value());
    }
    out.fromClause = fromText(stmt, tr.sources(), joinConditions);
    if (stmt.where) {
        Result<QString> w = tr.condition(*stmt.where);
        if (!w.isOk())
            return w.status();
        out.whereClause = w.value();
    }
    QStringList order;
    for (const OrderItem &item : stmt.orderBy) {
        Result<QString> e = tr.expr(*item.expr);
        if (!e.isOk())
            return e.status();
        order << QStringLiteral("(%1)%2%3")
                     .arg(e.value(), tr.collate(),
                          item.descending ? QStringLiteral(" DESC") : QString());
    }
    out.orderClause = order.join(QStringLiteral(", "));
    if (stmt.joins.empty()) {
        out.baseTable = tr.sources().front().table.table;
        out.baseAlias = quoteName(tr.sources().front().alias);
    }
    for (const Source &s : tr.sources()) {
        out.sourceAliases << s.alias;
        out.sourceTables << s.table;
    }
    out.sql = QStringLiteral("SELECT ") + out.selectList + QLatin1Char(' ') + out.fromClause;
    if (!out.whereClause.isEmpty())
        out.sql += QStringLiteral(" WHERE ") + out.whereClause;
    if (!out.orderClause.isEmpty())
        out.sql += QStringLiteral(" ORDER BY ") + out.orderClause;
    return out;
}

Result<QString> translateCriterion(const QString &jetCriterion, const TranslatedSelect &select,
                                   const TableLookup &tables, TextCompare compare)
{
    Result<NodePtr> tree = parseExpression(jetCriterion);
    if (!tree.isOk())
        return tree.status();
    std::vector<Source> sources;
    for (qsizetype i = 0; i < select.sourceTables.size(); ++i) {
        // Re-read the columns: the table may have changed since the select was translated.
        std::optional<TableColumns> t = tables(select.sourceTables.at(i).table);
        sources.push_back(Source{ select.sourceAliases.at(i), t ? *t : select.sourceTables.at(i) });
    }
    Translator tr(std::move(sources), compare);
    return tr.condition(*tree.value());
}

} // namespace plx::jet
