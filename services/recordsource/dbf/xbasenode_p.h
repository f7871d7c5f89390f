// services/recordsource/dbf/xbasenode_p.h: the compiled form of an xBase expression.
//
// A tree of typed nodes; the parser (xbaseparse.cpp) builds it, checking every operand's type
// as it goes, and the evaluator (xbaseexpression.cpp) walks it once per record. The
// operators and functions live in one table (xbasefunctions.cpp), so that the parser's type
// check and the evaluator's result come from the same entry.
#pragma once

#include "services/recordsource/dbf/internal/xbaseexpression.h"

#include <QList>

#include <memory>
#include <vector>

namespace plx::xbase {

using Type = cdxkey::KeyType;

// The table and record an evaluation reads, and the table's case mappings.
struct Record
{
    const DbfTable *table = nullptr;
    quint32 recno = 0;
    const char *upper = nullptr; // 256 code-page bytes each
    const char *lower = nullptr;
};

// One operator or function: how many operands it takes, the result type for given operand
// types (nullopt when they do not fit) and the result for given operand values.
struct Operation
{
    const char *name; // upper case; operators by their symbol (".AND.", "==", "U-" for minus)
    int minArgs;
    int maxArgs;
    std::optional<Type> (*resultType)(const QList<Type> &args);
    XbaseValue (*apply)(const QList<XbaseValue> &args, const Record &record);
};

// The operation `name` (a function name may be cut to four letters); nullptr if none.
const Operation *findOperation(QByteArrayView name);

struct Node
{
    enum class Kind { Literal, Field, Apply };
    Kind kind = Kind::Literal;
    Type type = Type::Character;
    XbaseValue literal; // Literal
    int field = -1; // Field: index in the table's fields
    const Operation *operation = nullptr; // Apply
    std::vector<std::unique_ptr<Node>> args;
};

// Parses and type-checks `text` against `table`'s fields.
Result<std::unique_ptr<Node>> parse(QByteArrayView text, const DbfTable &table);

} // namespace plx::xbase
