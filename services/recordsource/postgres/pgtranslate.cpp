// services/recordsource/postgres/pgtranslate.cpp: assembles a translated SELECT: resolves
// the tables, expands * and T.*, and emits the parts the record source builds its key and
// row queries from.
#include "services/recordsource/postgres/pgtranslate_p.h"

#include "services/recordsource/jet/internal/parser.h"
#include "services/recordsource/postgres/pgexpr_p.h"

namespace plx::postgres {

using jet::NodeKind;

namespace {

Result<std::vector<PgSource>> resolveSources(const jet::SelectStatement &stmt,
                                             const TableLookup &tables)
{
    std::vector<PgSource> sources;
    auto add = [&](const jet::TableRef &ref) -> Status {
        std::optional<PgTable> t = tables(ref.name);
        if (!t)
            return Status(
                Status::Code::NotFound,
                QStringLiteral("no table named %1 at position %2").arg(ref.name).arg(ref.pos));
        sources.push_back(PgSource{ ref.alias.isEmpty() ? t->name : ref.alias, *t });
        return Status::ok();
    };
    if (Status s = add(stmt.from); !s.isOk())
        return s;
    for (const jet::Join &j : stmt.joins) {
        if (Status s = add(j.table); !s.isOk())
            return s;
    }
    return sources;
}

bool sharedName(const std::vector<PgSource> &sources, const QString &column)
{
    int seen = 0;
    for (const PgSource &s : sources)
        for (const PgColumn &c : s.table.columns)
            seen += c.name.compare(column, Qt::CaseInsensitive) == 0 ? 1 : 0;
    return seen > 1;
}

void addStar(const PgSource &s, const std::vector<PgSource> &all, QStringList &exprs, PgSelect &out)
{
    for (const PgColumn &c : s.table.columns) {
        const bool qualify = sharedName(all, c.name);
        FieldInfo f = c.info;
        f.name = qualify ? s.alias + QLatin1Char('.') + c.name : c.name;
        QString e = quoteName(s.alias) + QLatin1Char('.') + quoteName(c.name);
        if (qualify)
            e += QStringLiteral(" AS ") + quoteName(f.name);
        exprs << e;
        out.fields << f;
        out.baseColumns << (&s == &all.front() ? c.name : QString());
    }
}

FieldInfo computedField(const QString &name, SqlKind kind)
{
    switch (kind) {
    case SqlKind::Bool: return { name, FieldType::Integer, 4, 0 };
    case SqlKind::Number: return { name, FieldType::Double, 8, 0 };
    case SqlKind::Date: return { name, FieldType::DateTime, 8, 0 };
    case SqlKind::Text:
    case SqlKind::Null: break;
    }
    return { name, FieldType::Memo, 0, 0 };
}

Status selectItems(const jet::SelectStatement &stmt, PgTranslator &tr, PgSelect &out)
{
    QStringList exprs;
    if (stmt.star) {
        for (const PgSource &s : out.sources)
            addStar(s, out.sources, exprs, out);
        out.selectList = exprs.join(QStringLiteral(", "));
        return Status::ok();
    }
    int unnamed = 1000;
    for (const jet::SelectItem &item : stmt.items) {
        if (!item.expr) {
            const PgSource *found = nullptr;
            for (const PgSource &s : out.sources) {
                if (s.alias.compare(item.starTable, Qt::CaseInsensitive) == 0
                    || s.table.name.compare(item.starTable, Qt::CaseInsensitive) == 0)
                    found = found ? found : &s;
            }
            if (!found)
                return Status(Status::Code::UnknownField,
                              QStringLiteral("unknown table '%1' in %1.*").arg(item.starTable));
            addStar(*found, out.sources, exprs, out);
            continue;
        }
        PgColumn column;
        const PgSource *source = nullptr;
        const bool isColumn = item.expr->kind == NodeKind::Column;
        Result<SqlPiece> e =
            isColumn ? tr.column(*item.expr, &column, &source) : tr.expr(*item.expr);
        if (!e.isOk())
            return e.status();
        const QString name = !item.alias.isEmpty() ? item.alias
            : isColumn                             ? column.name
                                                   : QStringLiteral("Expr%1").arg(unnamed++);
        exprs << PgTranslator::asValue(e.value()) + QStringLiteral(" AS ") + quoteName(name);
        FieldInfo f = isColumn ? column.info : computedField(name, e->kind);
        f.name = name;
        out.fields << f;
        out.baseColumns << (isColumn && source == &out.sources.front() ? column.name : QString());
    }
    out.selectList = exprs.join(QStringLiteral(", "));
    return Status::ok();
}

Result<QString> fromText(const jet::SelectStatement &stmt, PgTranslator &tr,
                         const std::vector<PgSource> &sources)
{
    auto ref = [](const PgSource &s) {
        return quoteName(s.table.name) + QStringLiteral(" AS ") + quoteName(s.alias);
    };
    QString from = QStringLiteral("FROM ") + ref(sources[0]);
    for (size_t i = 0; i < stmt.joins.size(); ++i) {
        Result<QString> on = tr.condition(*stmt.joins[i].on);
        if (!on.isOk())
            return on;
        static const char *const kinds[] = { " INNER JOIN ", " LEFT JOIN ", " RIGHT JOIN " };
        from += QLatin1String(kinds[int(stmt.joins[i].kind)]) + ref(sources[i + 1])
            + QStringLiteral(" ON ") + on.value();
    }
    return from;
}

// Jet sorts Nulls first going up and last going down, and text without regard to case.
Result<QString> orderText(const jet::SelectStatement &stmt, PgTranslator &tr)
{
    QStringList order;
    for (const jet::OrderItem &item : stmt.orderBy) {
        Result<SqlPiece> e = tr.expr(*item.expr);
        if (!e.isOk())
            return e.status();
        const bool text = e->kind == SqlKind::Text;
        order << QStringLiteral("%1%2%3").arg(
            text ? e->text : PgTranslator::asValue(e.value()), text ? NoCase : QString(),
            item.descending ? QStringLiteral(" DESC NULLS LAST") : QStringLiteral(" NULLS FIRST"));
    }
    return order.join(QStringLiteral(", "));
}

} // namespace

Result<PgSelect> translateSelect(const jet::SelectStatement &stmt, const TableLookup &tables)
{
    Result<std::vector<PgSource>> sources = resolveSources(stmt, tables);
    if (!sources.isOk())
        return sources.status();
    PgSelect out;
    out.sources = std::move(sources).value();
    PgTranslator tr(out.sources);
    if (Status s = selectItems(stmt, tr, out); !s.isOk())
        return s;
    Result<QString> from = fromText(stmt, tr, out.sources);
    if (!from.isOk())
        return from.status();
    out.fromClause = from.value();
    if (stmt.where) {
        Result<QString> w = tr.condition(*stmt.where);
        if (!w.isOk())
            return w.status();
        out.whereClause = w.value();
    }
    Result<QString> order = orderText(stmt, tr);
    if (!order.isOk())
        return order.status();
    out.orderClause = order.value();
    if (stmt.joins.empty()) {
        out.baseAlias = quoteName(out.sources.front().alias);
        out.keyed = out.sources.front().table.keyed;
    }
    if (!out.keyed)
        std::fill(out.baseColumns.begin(), out.baseColumns.end(), QString());
    out.sql = QStringLiteral("SELECT ") + out.selectList + QLatin1Char(' ') + out.fromClause;
    if (!out.whereClause.isEmpty())
        out.sql += QStringLiteral(" WHERE ") + out.whereClause;
    if (!out.orderClause.isEmpty())
        out.sql += QStringLiteral(" ORDER BY ") + out.orderClause;
    return out;
}

Result<QString> translateCriterion(const QString &jetCriterion, const PgSelect &select)
{
    Result<jet::NodePtr> tree = jet::parseExpression(jetCriterion);
    if (!tree.isOk())
        return tree.status();
    PgTranslator tr(select.sources);
    return tr.condition(*tree.value());
}

} // namespace plx::postgres
