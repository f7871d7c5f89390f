// services/recordsource/jet/parserselect.cpp: the SELECT grammar: the output list, FROM
// with Jet's (parenthesised) INNER/LEFT/RIGHT joins, WHERE and ORDER BY, and nothing after
// an optional ';'.
#include "services/recordsource/jet/descentparser_p.h"

namespace plx::jet::detail {

Result<TableRef> Parser::tableRef()
{
    const Token &t = peek();
    if ((t.kind != TokenKind::Name && t.kind != TokenKind::BracketName) || isReserved(t))
        return error(QStringLiteral("a table name"));
    TableRef ref;
    ref.pos = t.pos;
    ref.name = take().text.trimmed();
    if (acceptWord(QLatin1String("AS")) || (peek().kind == TokenKind::BracketName)
        || (peek().kind == TokenKind::Name && !isReserved(peek()))) {
        const Token &a = peek();
        if (a.kind != TokenKind::Name && a.kind != TokenKind::BracketName)
            return error(QStringLiteral("an alias"));
        ref.alias = take().text.trimmed();
    }
    return ref;
}

// FROM a [AS x] { [INNER|LEFT [OUTER]|RIGHT [OUTER]] JOIN b ON cond }, with Jet's
// parentheses around nested joins: they are flattened left to right.
Status Parser::fromClause(SelectStatement &stmt)
{
    int open = 0;
    while (acceptSymbol(QLatin1String("(")))
        ++open;
    Result<TableRef> first = tableRef();
    if (!first.isOk())
        return first.status();
    stmt.from = first.value();
    for (;;) {
        if (open > 0 && acceptSymbol(QLatin1String(")"))) {
            --open;
            continue;
        }
        JoinKind kind = JoinKind::Inner;
        if (acceptWord(QLatin1String("INNER"))) {
            kind = JoinKind::Inner;
        } else if (acceptWord(QLatin1String("LEFT"))) {
            kind = JoinKind::Left;
            acceptWord(QLatin1String("OUTER"));
        } else if (acceptWord(QLatin1String("RIGHT"))) {
            kind = JoinKind::Right;
            acceptWord(QLatin1String("OUTER"));
        } else if (!peek().isWord(QLatin1String("JOIN"))) {
            break;
        }
        if (!acceptWord(QLatin1String("JOIN")))
            return error(QStringLiteral("'JOIN'"));
        Join join;
        join.kind = kind;
        Result<TableRef> table = tableRef();
        if (!table.isOk())
            return table.status();
        join.table = table.value();
        if (!acceptWord(QLatin1String("ON")))
            return error(QStringLiteral("'ON'"));
        Result<NodePtr> on = expression();
        if (!on.isOk())
            return on.status();
        join.on = on.value();
        stmt.joins.push_back(std::move(join));
    }
    if (open > 0)
        return error(QStringLiteral("')'"));
    return Status::ok();
}

Status Parser::selectList(SelectStatement &stmt)
{
    if (acceptSymbol(QLatin1String("*"))) {
        stmt.star = true;
        return Status::ok();
    }
    do {
        SelectItem item;
        const Token &t = peek();
        if ((t.kind == TokenKind::Name || t.kind == TokenKind::BracketName)
            && (peek(1).isSymbol(QLatin1String(".")) || peek(1).isSymbol(QLatin1String("!")))
            && peek(2).isSymbol(QLatin1String("*"))) {
            item.starTable = take().text.trimmed();
            take();
            take();
        } else {
            Result<NodePtr> e = expression();
            if (!e.isOk())
                return e.status();
            item.expr = e.value();
            if (acceptWord(QLatin1String("AS"))) {
                const Token &a = peek();
                if (a.kind != TokenKind::Name && a.kind != TokenKind::BracketName)
                    return error(QStringLiteral("a column alias"));
                item.alias = take().text.trimmed();
            }
        }
        stmt.items.push_back(std::move(item));
    } while (acceptSymbol(QLatin1String(",")));
    return Status::ok();
}

Result<SelectStatement> Parser::select()
{
    SelectStatement stmt;
    if (!acceptWord(QLatin1String("SELECT")))
        return error(QStringLiteral("SELECT"));
    if (peek().isWord(QLatin1String("DISTINCT")) || peek().isWord(QLatin1String("TOP")))
        return Status(Status::Code::NotSupported,
                      QStringLiteral("'%1' at position %2 is not supported")
                          .arg(peek().text)
                          .arg(peek().pos));
    if (Status s = selectList(stmt); !s.isOk())
        return s;
    if (!acceptWord(QLatin1String("FROM")))
        return error(QStringLiteral("FROM"));
    if (Status s = fromClause(stmt); !s.isOk())
        return s;
    if (acceptWord(QLatin1String("WHERE"))) {
        Result<NodePtr> where = expression();
        if (!where.isOk())
            return where.status();
        stmt.where = where.value();
    }
    if (acceptWord(QLatin1String("ORDER"))) {
        if (!acceptWord(QLatin1String("BY")))
            return error(QStringLiteral("BY after ORDER"));
        do {
            OrderItem item;
            Result<NodePtr> e = expression();
            if (!e.isOk())
                return e.status();
            item.expr = e.value();
            if (acceptWord(QLatin1String("DESC")))
                item.descending = true;
            else
                acceptWord(QLatin1String("ASC"));
            stmt.orderBy.push_back(std::move(item));
        } while (acceptSymbol(QLatin1String(",")));
    }
    acceptSymbol(QLatin1String(";"));
    if (peek().kind != TokenKind::End)
        return error(QStringLiteral("end of statement"));
    return stmt;
}

} // namespace plx::jet::detail
