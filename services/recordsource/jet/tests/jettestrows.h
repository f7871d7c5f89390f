// services/recordsource/jet/tests/jettestrows.h: rows held in lists and the column names the
// evaluator tests bind to them, as a back end binds a criterion to its table's fields.
#pragma once

#include "services/recordsource/jet/internal/evaluator.h"
#include "services/recordsource/jet/internal/parser.h"

#include <QStringList>

#include <gtest/gtest.h>

namespace plx::jet::testing {

// The columns, in row order: ID, NAME, AMOUNT, BORN.
inline const QStringList &columnNames()
{
    static const QStringList names = { QStringLiteral("ID"), QStringLiteral("NAME"),
                                       QStringLiteral("AMOUNT"), QStringLiteral("BORN") };
    return names;
}

// A row whose values are a list in column order; a column beyond the list is Null.
class ListRow : public Row
{
public:
    explicit ListRow(QVariantList values) : m_values(std::move(values)) { }
    QVariant value(int column) const override { return m_values.value(column); }

private:
    QVariantList m_values;
};

// A column name (any case) to its index; an unknown name is named with its position.
inline Result<int> resolve(const Node &column)
{
    const qsizetype c = columnNames().indexOf(column.name.toUpper());
    if (c < 0)
        return Status(
            Status::Code::UnknownField,
            QStringLiteral("unknown field '%1' at position %2").arg(column.name).arg(column.pos));
    return int(c);
}

// The parsed expression; null (and a test failure) when it does not parse.
inline NodePtr parsed(const QString &text)
{
    Result<NodePtr> tree = parseExpression(text);
    EXPECT_TRUE(tree.isOk()) << text.left(80).toStdString() << ": "
                             << tree.status().toString().toStdString();
    return tree.isOk() ? tree.value() : nullptr;
}

} // namespace plx::jet::testing
