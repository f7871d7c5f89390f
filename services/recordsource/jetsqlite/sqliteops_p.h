// services/recordsource/jetsqlite/sqliteops_p.h: the operator codes that translated SQL passes to
// the registered jet_op() function. Private to the dialect on SQLite.
#pragma once

#include "services/recordsource/jet/internal/ast.h"

namespace plx::jet {

enum class OpCode : int {
    Neg = 1,
    Not,
    Add,
    Sub,
    Mul,
    Div,
    IntDiv,
    Mod,
    Pow,
    Concat,
    Xor,
    Eqv,
    Imp,
};

// The translator sends through jet_op() only the operators listed here: comparisons, And and
// Or become SQL of their own, and None is no operator. Reaching this for one of those is a
// mistake in the translator, and answering with some other operation would compute a wrong
// value without a word, so it stops the program in every build type.
[[noreturn]] void unmappedOperator(Op op);

// No default label: the compiler names an operator added to Op and forgotten here.
inline OpCode opCodeOf(Op op)
{
    switch (op) {
    case Op::Neg: return OpCode::Neg;
    case Op::Not: return OpCode::Not;
    case Op::Add: return OpCode::Add;
    case Op::Sub: return OpCode::Sub;
    case Op::Mul: return OpCode::Mul;
    case Op::Div: return OpCode::Div;
    case Op::IntDiv: return OpCode::IntDiv;
    case Op::Mod: return OpCode::Mod;
    case Op::Pow: return OpCode::Pow;
    case Op::Concat: return OpCode::Concat;
    case Op::Xor: return OpCode::Xor;
    case Op::Eqv: return OpCode::Eqv;
    case Op::Imp: return OpCode::Imp;
    case Op::None:
    case Op::Eq:
    case Op::Ne:
    case Op::Lt:
    case Op::Gt:
    case Op::Le:
    case Op::Ge:
    case Op::And:
    case Op::Or: break;
    }
    unmappedOperator(op);
}

inline Op opOf(OpCode code)
{
    switch (code) {
    case OpCode::Neg: return Op::Neg;
    case OpCode::Not: return Op::Not;
    case OpCode::Add: return Op::Add;
    case OpCode::Sub: return Op::Sub;
    case OpCode::Mul: return Op::Mul;
    case OpCode::Div: return Op::Div;
    case OpCode::IntDiv: return Op::IntDiv;
    case OpCode::Mod: return Op::Mod;
    case OpCode::Pow: return Op::Pow;
    case OpCode::Concat: return Op::Concat;
    case OpCode::Xor: return Op::Xor;
    case OpCode::Eqv: return Op::Eqv;
    case OpCode::Imp: return Op::Imp;
    }
    return Op::None;
}

} // namespace plx::jet

#include <QString>

namespace plx::jet {

// "UCASE$" -> "jet_ucase_s": the SQLite name of a Jet function. Every such function takes
// the source's compare mode (1 case-insensitive, 0 binary) as its first argument.
inline QString sqliteFunctionName(const QString &upperName)
{
    QString n = upperName.toLower();
    n.replace(QLatin1Char('$'), QStringLiteral("_s"));
    return QStringLiteral("jet_") + n;
}

} // namespace plx::jet
