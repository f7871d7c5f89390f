// services/recordsource/dbf/xbaseexpression.cpp: compiling index expressions and evaluating
// them on a table's records.
#include "services/recordsource/dbf/internal/xbaseexpression.h"

#include "services/recordsource/dbf/internal/dbftable.h"
#include "services/recordsource/dbf/xbasenode_p.h"

#include <cmath>

namespace plx {

namespace {

using xbase::Node;
using xbase::Type;

// What UPPER() or LOWER() makes of each byte of the table's code page: the letter's other
// case when it is one byte there too, the byte itself otherwise (FoxPro never changes a
// text's length).
QByteArray caseMap(const DbfTable &table, bool upper)
{
    QByteArray map(256, '\0');
    for (int b = 0; b < 256; ++b) {
        const char byte = char(b);
        map[b] = byte;
        const QString decoded = table.decode(QByteArrayView(&byte, 1));
        if (decoded.size() != 1)
            continue;
        const QChar other = upper ? decoded[0].toUpper() : decoded[0].toLower();
        const Result<QByteArray> encoded = table.encode(QString(other));
        if (encoded.isOk() && encoded->size() == 1)
            map[b] = encoded->at(0);
    }
    return map;
}

Result<XbaseValue> fieldValue(const xbase::Record &record, int field, Type type)
{
    XbaseValue v;
    v.type = type;
    if (type == Type::Character) {
        const char *bytes = record.table->fieldBytes(record.recno, field);
        v.text = QByteArray(bytes, record.table->fields()[field].length);
        return v;
    }
    const Result<QVariant> stored = record.table->value(record.recno, field);
    if (!stored.isOk())
        return stored.status();
    switch (type) {
    case Type::Numeric: v.number = stored->toDouble(); break;
    case Type::Integer: v.integer = stored->toInt(); break;
    case Type::Date: v.date = stored->toDate(); break;
    case Type::Logical: v.logical = stored->toBool(); break;
    case Type::Character: break;
    }
    return v;
}

Result<XbaseValue> evaluateNode(const Node &node, const xbase::Record &record)
{
    switch (node.kind) {
    case Node::Kind::Literal: return node.literal;
    case Node::Kind::Field: return fieldValue(record, node.field, node.type);
    case Node::Kind::Apply: break;
    }
    QList<XbaseValue> args;
    args.reserve(qsizetype(node.args.size()));
    for (const auto &arg : node.args) {
        Result<XbaseValue> value = evaluateNode(*arg, record);
        if (!value.isOk())
            return value.status();
        args.append(std::move(*value));
    }
    XbaseValue result = node.operation->apply(args, record);
    if (result.type == Type::Numeric && !std::isfinite(result.number))
        return Status(Status::Code::InvalidArgument,
                      QStringLiteral("numeric overflow in record %1").arg(record.recno));
    return result;
}

} // namespace

XbaseExpression::XbaseExpression(std::unique_ptr<xbase::Node> root, const DbfTable &table)
    : m_root(std::move(root)), m_table(&table), m_upper(caseMap(table, true)),
      m_lower(caseMap(table, false))
{
}

XbaseExpression::~XbaseExpression() = default;
XbaseExpression::XbaseExpression(XbaseExpression &&) noexcept = default;
XbaseExpression &XbaseExpression::operator=(XbaseExpression &&) noexcept = default;

Result<XbaseExpression> XbaseExpression::compile(const QByteArray &text, const DbfTable &table)
{
    Result<std::unique_ptr<Node>> root = xbase::parse(text, table);
    if (!root.isOk())
        return root.status();
    return XbaseExpression(std::move(*root), table);
}

cdxkey::KeyType XbaseExpression::type() const
{
    return m_root->type;
}

Result<XbaseValue> XbaseExpression::evaluate(quint32 recno) const
{
    if (recno == 0 || recno > m_table->recordCount())
        return Status(Status::Code::InvalidArgument,
                      QStringLiteral("record %1 is not in the table").arg(recno));
    const xbase::Record record{ m_table, recno, m_upper.constData(), m_lower.constData() };
    return evaluateNode(*m_root, record);
}

Result<QByteArray> XbaseExpression::key(quint32 recno, int keyLength) const
{
    const Result<XbaseValue> value = evaluate(recno);
    if (!value.isOk())
        return value.status();
    return keyOf(*value, keyLength);
}

QByteArray keyOf(const XbaseValue &value, int keyLength)
{
    switch (value.type) {
    case cdxkey::KeyType::Character: return cdxkey::characterKey(value.text, keyLength);
    case cdxkey::KeyType::Numeric: return cdxkey::numericKey(value.number);
    case cdxkey::KeyType::Date: return cdxkey::dateKey(value.date);
    case cdxkey::KeyType::Logical: return cdxkey::logicalKey(value.logical);
    case cdxkey::KeyType::Integer: return cdxkey::integerKey(value.integer);
    }
    return {};
}

} // namespace plx
