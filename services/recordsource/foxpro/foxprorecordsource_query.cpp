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

bool isConstant(const Node &node)
{
    if (node.kind == NodeKind::Column)
        return false;
    for (const NodePtr &arg : node.args) {
        if (!isConstant(*arg))
            return false;
    }
    return true;
}

// field = constant on a character field (the ID criterion): the constant's bytes in the
// table's code page, compared with the stored bytes less their padding.
std::function<bool(quint32)> equalityPredicate(const DbfTable &table, const Node &node)
{
    if (node.kind != NodeKind::Binary || node.op != jet::Op::Eq)
        return nullptr;
    const Node *column = node.args[0].get();
    const Node *constant = node.args[1].get();
    if (column->kind != NodeKind::Column)
        std::swap(column, constant);
    if (column->kind != NodeKind::Column || !isTextField(table, column->column)
        || !isConstant(*constant))
        return nullptr;
    Result<QVariant> v = jet::evaluate(*constant, nullptr, TextCompare::Binary);
    if (!v.isOk() || !jet::isText(v.value()))
        return nullptr;
    Result<QByteArray> bytes = table.encode(v.value().toString());
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

// Sorts the keys. Character, date and logical fields compare by their stored bytes (blank
// padded, so shorter texts come first, in the code page's byte order as FoxPro's own
// indexes); numeric fields by value; any other expression by its Jet value. Nulls first,
// ties in record order.
Status FoxProRecordSource::sort(const std::vector<jet::OrderItem> &order)
{
    if (order.empty() || m_keys.size() < 2)
        return Status::ok();
    const DbfTable &table = *m_table;
    struct Key
    {
        enum Kind { Bytes, Number, Value } kind;
        int field = -1;
        int offset = 0; // Bytes: where the field's bytes sit in the extracted key
        int length = 0;
        bool descending = false;
        std::vector<double> numbers;
        std::vector<QVariant> values;
    };
    std::vector<Key> keys;
    int byteWidth = 0;
    for (const jet::OrderItem &item : order) {
        Key k;
        k.descending = item.descending;
        if (item.expr->kind == NodeKind::Column) {
            k.field = item.expr->column;
            const DbfField &f = table.fields().at(k.field);
            if (f.type == 'C' || f.type == 'D' || f.type == 'L') {
                k.kind = Key::Bytes;
                k.offset = byteWidth;
                k.length = f.length;
                byteWidth += f.length;
            } else if (f.type == 'N' || f.type == 'F') {
                k.kind = Key::Number;
            } else {
                k.kind = Key::Value;
            }
        } else {
            k.kind = Key::Value;
        }
        keys.push_back(std::move(k));
    }
    // Extract the keys once, in key order, so the sort reads contiguous memory.
    const size_t n = m_keys.size();
    std::vector<char> bytes(size_t(byteWidth) * n);
    RecordRow row(table);
    for (size_t i = 0; i < n; ++i) {
        const quint32 recno = m_keys[i];
        for (size_t o = 0; o < keys.size(); ++o) {
            Key &k = keys[o];
            if (k.kind == Key::Bytes) {
                std::memcpy(bytes.data() + i * size_t(byteWidth) + size_t(k.offset),
                            table.fieldBytes(recno, k.field), size_t(k.length));
            } else {
                row.setRecord(recno);
                Result<QVariant> v = jet::evaluate(*order[o].expr, &row, TextCompare::Binary);
                if (!v.isOk())
                    return v.status();
                if (k.kind == Key::Number) {
                    k.numbers.push_back(jet::isNull(v.value())
                                            ? -std::numeric_limits<double>::infinity()
                                            : v.value().toDouble());
                } else {
                    k.values.push_back(v.value());
                }
            }
        }
    }
    std::vector<quint32> index(n);
    for (size_t i = 0; i < n; ++i)
        index[i] = quint32(i);
    const char *base = bytes.data();
    auto less = [&](quint32 a, quint32 b) {
        for (const Key &k : keys) {
            int c = 0;
            if (k.kind == Key::Bytes) {
                c = std::memcmp(base + size_t(a) * size_t(byteWidth) + size_t(k.offset),
                                base + size_t(b) * size_t(byteWidth) + size_t(k.offset),
                                size_t(k.length));
            } else if (k.kind == Key::Number) {
                c = k.numbers[a] < k.numbers[b] ? -1 : (k.numbers[a] > k.numbers[b] ? 1 : 0);
            } else {
                const QVariant &x = k.values[a];
                const QVariant &y = k.values[b];
                if (jet::isNull(x) || jet::isNull(y)) {
                    c = jet::isNull(x) == jet::isNull(y) ? 0 : (jet::isNull(x) ? -1 : 1);
                } else {
                    Result<int> r = jet::compareValues(x, y, TextCompare::Binary, 0);
                    c = r.isOk() ? r.value() : 0;
                }
            }
            if (c != 0)
                return k.descending ? c > 0 : c < 0;
        }
        return a < b;
    };
    std::sort(index.begin(), index.end(), less);
    std::vector<quint32> sorted(n);
    for (size_t i = 0; i < n; ++i)
        sorted[i] = m_keys[index[i]];
    m_keys = std::move(sorted);
    return Status::ok();
}

Result<qint64> FoxProRecordSource::findFrom(const QString &criterion, qint64 start) const
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
