// services/recordsource/foxpro/foxprorecordsource_query.cpp: WHERE, ORDER BY and finds over
// the mapped table, with fast paths for the shapes the controls send on every keystroke
// and every save.
#include "services/recordsource/foxpro/foxprorecordsource.h"

#include "services/recordsource/jet/evaluator.h"
#include "services/recordsource/jet/like.h"
#include "services/recordsource/jet/parser.h"
#include "services/recordsource/jet/values.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>

namespace plx::foxpro {

namespace {

using jet::Node;
using jet::NodeKind;
using jet::NodePtr;

// The values of one record, decoded only when the expression asks for them.
class RecordRow final : public jet::Row
{
public:
    explicit RecordRow(const DbfTable &table) : m_table(table) { }
    void setRecord(quint32 recno) { m_recno = recno; }
    QVariant value(int column) const override
    {
        Result<QVariant> v = m_table.value(m_recno, column);
        return v.isOk() ? v.value() : QVariant();
    }

private:
    const DbfTable &m_table;
    quint32 m_recno = 0;
};

bool isTextField(const DbfTable &table, int column)
{
    const char t = table.fields().at(column).type;
    return t == 'C';
}

// byte -> the upper-case character it stands for in the table's code page.
std::array<QChar, 256> upperTable(const DbfTable &table)
{
    std::array<QChar, 256> upper;
    for (int b = 0; b < 256; ++b) {
        const char c = char(b);
        const QString s = table.decode(QByteArrayView(&c, 1));
        upper[size_t(b)] = s.isEmpty() ? QChar() : s.at(0).toUpper();
    }
    return upper;
}

// UCase(field) Like 'PREFIX*' on a character field: the find query.
std::function<bool(quint32)> prefixPredicate(const DbfTable &table, const Node &like)
{
    if (like.kind != NodeKind::Like || like.negated)
        return nullptr;
    const Node &value = *like.args[0];
    const Node &pattern = *like.args[1];
    if (value.kind != NodeKind::Call
        || (value.name != QLatin1String("UCASE") && value.name != QLatin1String("UCASE$"))
        || value.args.size() != 1 || value.args[0]->kind != NodeKind::Column
        || !isTextField(table, value.args[0]->column))
        return nullptr;
    if (pattern.kind != NodeKind::Literal || !jet::isText(pattern.value))
        return nullptr;
    Result<jet::LikePattern> p =
        jet::LikePattern::compile(pattern.value.toString(), TextCompare::Binary);
    if (!p.isOk() || !p->isPrefixPattern())
        return nullptr;
    const QString prefix = p->prefix();
    const int column = value.args[0]->column;
    auto upper = std::make_shared<std::array<QChar, 256>>(upperTable(table));
    return [&table, prefix, column, upper](quint32 recno) {
        const QByteArrayView raw = table.rawText(recno, column);
        if (raw.size() < prefix.size())
            return false;
        for (qsizetype i = 0; i < prefix.size(); ++i) {
            if ((*upper)[static_cast<unsigned char>(raw[i])] != prefix.at(i))
                return false;
        }
        return true;
    };
}

// A predicate over raw records for the whole condition, or nullptr when some part of it
// needs the general evaluator.
std::function<bool(quint32)> fastPredicate(const DbfTable &table, const Node &node)
{
    if (node.kind == NodeKind::Binary && node.op == jet::Op::And) {
        auto left = fastPredicate(table, *node.args[0]);
        auto right = left ? fastPredicate(table, *node.args[1]) : nullptr;
        if (!right)
            return nullptr;
        return [left, right](quint32 recno) { return left(recno) && right(recno); };
    }
    return prefixPredicate(table, node);
}

// field = 'text' on a character field (the ID criterion; binding has already computed the
// CHR(n) & ... chain into one literal): the text's bytes in the table's code page, compared
// with the stored bytes less their padding.
std::function<bool(quint32)> equalityPredicate(const DbfTable &table, const Node &node)
{
    if (node.kind != NodeKind::Binary || node.op != jet::Op::Eq)
        return nullptr;
    const Node *column = node.args[0].get();
    const Node *constant = node.args[1].get();
    if (column->kind != NodeKind::Column)
        std::swap(column, constant);
    if (column->kind != NodeKind::Column || !isTextField(table, column->column)
        || constant->kind != NodeKind::Literal || !jet::isText(constant->value))
        return nullptr;
    Result<QByteArray> bytes = table.encode(constant->value.toString());
    if (!bytes.isOk())
        return [](quint32) { return false; }; // no stored text can hold that character
    const QByteArray wanted = bytes.value();
    const int field = column->column;
    return [&table, wanted, field](quint32 recno) { return table.rawText(recno, field) == wanted; };
}

} // namespace

Result<NodePtr> FoxProRecordSource::bindExpression(const NodePtr &node) const
{
    const DbfTable &table = *m_table;
    const QString alias = m_alias;
    const QString tableName = m_tableName;
    Status s = jet::bind(node, [&](const Node &col) -> Result<int> {
        QString qualifier = col.table;
        QString name = col.name;
        if (col.wholeBracket) {
            const qsizetype dot = name.lastIndexOf(QLatin1Char('.'));
            qualifier = name.left(dot).trimmed();
            name = name.mid(dot + 1).trimmed();
        }
        const QString written = qualifier.isEmpty() ? name : qualifier + QLatin1Char('.') + name;
        const bool ours = qualifier.isEmpty() || qualifier.compare(alias, Qt::CaseInsensitive) == 0
            || qualifier.compare(tableName, Qt::CaseInsensitive) == 0;
        const int index = ours ? table.fieldIndex(name) : -1;
        if (index < 0)
            return Status(
                Status::Code::UnknownField,
                QStringLiteral("unknown field '%1' at position %2").arg(written).arg(col.pos));
        return index;
    });
    if (!s.isOk())
        return s;
    return node;
}

Result<std::vector<quint32>> FoxProRecordSource::filter(const NodePtr &where) const
{
    const DbfTable &table = *m_table;
    const quint32 count = table.recordCount();
    std::vector<quint32> keys;
    keys.reserve(count);
    std::function<bool(quint32)> fast = where ? fastPredicate(table, *where) : nullptr;
    RecordRow row(table);
    for (quint32 recno = 1; recno <= count; ++recno) {
        if (table.isDeleted(recno))
            continue;
        if (where) {
            if (fast) {
                if (!fast(recno))
                    continue;
            } else {
                row.setRecord(recno);
                Result<QVariant> v = jet::evaluate(*where, &row, TextCompare::Binary);
                if (!v.isOk())
                    return v.status();
                if (!jet::isTrue(v.value()))
                    continue;
            }
        }
        keys.push_back(recno);
    }
    keys.shrink_to_fit();
    return keys;
}

Status FoxProRecordSource::build(const jet::SelectStatement &stmt)
{
    if (stmt.where) {
        Result<NodePtr> bound = bindExpression(stmt.where);
        if (!bound.isOk())
            return bound.status();
    }
    for (const jet::OrderItem &item : stmt.orderBy) {
        Result<NodePtr> bound = bindExpression(item.expr);
        if (!bound.isOk())
            return bound.status();
    }
    Result<std::vector<quint32>> keys = filter(stmt.where);
    if (!keys.isOk())
        return keys.status();
    m_keys = std::move(keys).value();
    return sort(stmt.orderBy);
}

namespace {

// Replaces each record's stored bytes of one field by the rank of that value among the
// distinct values, in byte order. Tables repeat their values a lot (names, cities, states),
// so sorting the distinct values and then comparing small integers is far cheaper than
// comparing the bytes of every pair.
std::vector<quint32> byteRanks(const DbfTable &table, const std::vector<quint32> &recnos, int field)
{
    const size_t length = size_t(table.fields().at(field).length);
    // An open-addressing table of distinct values (ids + 1, 0 = empty), grown at half load;
    // a value's bytes stay in the mapped file, so nothing is copied.
    auto hashOf = [length](const char *p) {
        quint64 h = 0x9E3779B97F4A7C15ull ^ length;
        size_t i = 0;
        for (; i + 8 <= length; i += 8) {
            quint64 w;
            std::memcpy(&w, p + i, 8);
            h = (h ^ w) * 0xFF51AFD7ED558CCDull;
            h ^= h >> 32;
        }
        for (; i < length; ++i)
            h = (h ^ static_cast<unsigned char>(p[i])) * 0x100000001B3ull;
        return h ^ (h >> 29);
    };
    std::vector<const char *> distinct;
    std::vector<quint64> distinctHash;
    std::vector<quint32> slots(1024, 0);
    auto insert = [&](const char *p, quint64 h) -> quint32 {
        size_t mask = slots.size() - 1;
        for (size_t i = size_t(h) & mask;; i = (i + 1) & mask) {
            const quint32 slot = slots[i];
            if (slot == 0) {
                distinct.push_back(p);
                distinctHash.push_back(h);
                slots[i] = quint32(distinct.size());
                return quint32(distinct.size() - 1);
            }
            if (distinctHash[slot - 1] == h && std::memcmp(distinct[slot - 1], p, length) == 0)
                return slot - 1;
        }
    };
    std::vector<quint32> rank(recnos.size());
    for (size_t r = 0; r < recnos.size(); ++r) {
        if (distinct.size() * 2 >= slots.size()) {
            std::vector<quint32> grown(slots.size() * 2, 0);
            const size_t mask = grown.size() - 1;
            for (size_t d = 0; d < distinct.size(); ++d) {
                size_t i = size_t(distinctHash[d]) & mask;
                while (grown[i] != 0)
                    i = (i + 1) & mask;
                grown[i] = quint32(d + 1);
            }
            slots.swap(grown);
        }
        const char *p = table.fieldBytes(recnos[r], field);
        rank[r] = insert(p, hashOf(p));
    }
    std::vector<quint32> order(distinct.size());
    for (size_t i = 0; i < order.size(); ++i)
        order[i] = quint32(i);
    std::sort(order.begin(), order.end(), [&distinct, length](quint32 a, quint32 b) {
        return std::memcmp(distinct[a], distinct[b], length) < 0;
    });
    std::vector<quint32> rankOfId(distinct.size());
    for (size_t r = 0; r < order.size(); ++r)
        rankOfId[order[r]] = quint32(r);
    for (quint32 &r : rank)
        r = rankOfId[r];
    return rank;
}

} // namespace

// Sorts the keys. Character, date and logical fields compare by their stored bytes (blank
// padded, so shorter texts come first, in the code page's byte order as FoxPro's own
// indexes); numeric fields by value; any other expression by its Jet value. Nulls first,
// ties in record order.
Status FoxProRecordSource::sort(const std::vector<jet::OrderItem> &order)
{
    if (order.empty() || m_keys.size() < 2)
        return Status::ok();
    const DbfTable &table = *m_table;
    const size_t n = m_keys.size();
    // One rank per record and key: byte ranks for C, D and L fields, otherwise the
    // position of the record's value after sorting the values.
    std::vector<std::vector<quint32>> ranks;
    std::vector<bool> descending;
    RecordRow row(table);
    for (const jet::OrderItem &item : order) {
        descending.push_back(item.descending);
        const bool column = item.expr->kind == NodeKind::Column;
        const char type = column ? table.fields().at(item.expr->column).type : 0;
        if (type == 'C' || type == 'D' || type == 'L') {
            ranks.push_back(byteRanks(table, m_keys, item.expr->column));
            continue;
        }
        std::vector<QVariant> values(n);
        for (size_t i = 0; i < n; ++i) {
            row.setRecord(m_keys[i]);
            Result<QVariant> v = jet::evaluate(*item.expr, &row, TextCompare::Binary);
            if (!v.isOk())
                return v.status();
            values[i] = v.value();
        }
        auto valueLess = [&values](quint32 a, quint32 b) {
            const QVariant &x = values[a], &y = values[b];
            if (jet::isNull(x) || jet::isNull(y))
                return jet::isNull(x) && !jet::isNull(y); // Null first
            Result<int> c = jet::compareValues(x, y, TextCompare::Binary, 0);
            return c.isOk() && c.value() < 0;
        };
        std::vector<quint32> byValue(n);
        for (size_t i = 0; i < n; ++i)
            byValue[i] = quint32(i);
        std::stable_sort(byValue.begin(), byValue.end(), valueLess);
        std::vector<quint32> rank(n);
        quint32 r = 0;
        for (size_t i = 0; i < n; ++i) {
            if (i > 0 && valueLess(byValue[i - 1], byValue[i]))
                ++r;
            rank[byValue[i]] = r;
        }
        ranks.push_back(std::move(rank));
    }
    // The first two keys packed into one integer settle almost every comparison.
    struct Entry
    {
        quint64 key;
        quint32 index;
    };
    auto packed = [&](size_t k, size_t i) -> quint64 {
        if (k >= ranks.size())
            return 0;
        const quint32 r = ranks[k][i];
        return descending[k] ? quint64(~r) : quint64(r);
    };
    std::vector<Entry> entries(n);
    for (size_t i = 0; i < n; ++i)
        entries[i] = { (packed(0, i) << 32) | packed(1, i), quint32(i) };
    std::sort(entries.begin(), entries.end(), [&](const Entry &a, const Entry &b) {
        if (a.key != b.key)
            return a.key < b.key;
        for (size_t k = 2; k < ranks.size(); ++k) {
            const quint32 x = ranks[k][a.index], y = ranks[k][b.index];
            if (x != y)
                return descending[k] ? x > y : x < y;
        }
        return a.index < b.index;
    });
    std::vector<quint32> sorted(n);
    for (size_t i = 0; i < n; ++i)
        sorted[i] = m_keys[entries[i].index];
    m_keys = std::move(sorted);
    return Status::ok();
}

Result<qint64> FoxProRecordSource::locate(const QString &criterion, qint64 start) const
{
    Result<NodePtr> tree = jet::parseExpression(criterion);
    if (!tree.isOk())
        return tree.status();
    Result<NodePtr> bound = bindExpression(tree.value());
    if (!bound.isOk())
        return bound.status();
    const Node &node = *bound.value();
    std::function<bool(quint32)> fast = equalityPredicate(*m_table, node);
    if (!fast)
        fast = fastPredicate(*m_table, node);
    RecordRow row(*m_table);
    for (qint64 i = start; i < qint64(m_keys.size()); ++i) {
        const quint32 recno = m_keys[size_t(i)];
        if (m_table->isDeleted(recno))
            continue; // deleted by another user since the open
        if (fast) {
            if (fast(recno))
                return i;
            continue;
        }
        row.setRecord(recno);
        Result<QVariant> v = jet::evaluate(node, &row, TextCompare::Binary);
        if (!v.isOk())
            return v.status();
        if (jet::isTrue(v.value()))
            return i;
    }
    return qint64(-1);
}

} // namespace plx::foxpro
